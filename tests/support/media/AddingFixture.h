#pragma once

#include "media/KXVideoFile.h"
#include "support/FakePlaces.h"
#include "support/FakeTool.h"
#include "support/Scratch.h"

namespace support {

/// A file that is open, with hand-made tracks, and files to add to it: "new.srt", and others as a test
/// makes them. The probe plays what the test wants, whatever file it is run on.
class AddingFixture final
{
public:
    /// The types of the tracks that are there: "Video,Audio".
    explicit AddingFixture(const QString &types = QStringLiteral("Video,Audio"));

    void play(const QByteArray &answer, const QStringList &before = {});
    void playStreams(const QList<QByteArrayList> &streams);
    /// Lets the probe hang from that run on, counted from 1.
    void hangFrom(int run, const QByteArray &answer);
    /// The runs of a probe that is to hang.
    qsizetype countedRuns() const { return m_scratch.read(QStringLiteral("counted")).count('x'); }
    /// The runs of any other.
    QList<FakeTool::Run> runs() const
    {
        return FakeTool::recordedRuns(m_scratch.path(QStringLiteral("runs")));
    }

    KXVideoFile &file() { return m_file; }
    QUrl url(const QString &name = QStringLiteral("new.srt")) const;
    QString path(const QString &name = QStringLiteral("new.srt")) const { return url(name).toLocalFile(); }
    QUrl newFile(const QString &name) const;
    QString add(const QString &name = QStringLiteral("new.srt")) { return m_file.addTrack(url(name)); }
    QString whatToDo(const QString &name = QStringLiteral("new.srt")) const;
    media::AddedTracks created(const QString &name = QStringLiteral("new.srt")) const;
    /// All that an addition could change in the open file, as lines.
    QStringList everything() const;

    /// What lies beside the files to add, these included.
    QStringList names() const;
    bool leftAnErrorFile(const QString &name = QStringLiteral("new.srt")) const;
    QByteArray errorFile(const QString &name = QStringLiteral("new.srt")) const;
    void removeErrorFile(const QString &name = QStringLiteral("new.srt")) const;
    const Scratch &scratch() const { return m_scratch; }

private:
    QString tool() const;

    Scratch m_scratch;
    FakePlaces m_places;
    KXVideoFile m_file;
};

/// Tracks of those types, separated by commas, and nothing else.
TrackList tracksOfTypes(const QString &types);
/// One field of each track, joined by commas.
QString fieldOf(const TrackList &tracks, const char *word);

} // namespace support

#include "support/media/AddingFixture.h"

#include "support/FakeTool.h"
#include "support/ProbeJson.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QString errorName(const QString &name)
{
    return u"media/"_s + name + u".error.txt"_s;
}

} // namespace

AddingFixture::AddingFixture(const QString &types)
    : m_places(m_scratch.path(u"home"_s))
    , m_file(&m_places)
{
    m_file.setTrackList(tracksOfTypes(types));
    newFile(u"new.srt"_s);
}

QString AddingFixture::tool() const
{
    return m_places.toolsLocation().toLocalFile() + u"/ffmpeg/ffprobe"_s;
}

void AddingFixture::play(const QByteArray &answer, const QStringList &before)
{
    const QStringList after{u"play out "_s + m_scratch.write(u"answer"_s, answer)};
    FakeTool::install(tool(), QStringList{u"record "_s + m_scratch.path(u"runs"_s)} + before + after);
}

void AddingFixture::playStreams(const QList<QByteArrayList> &streams)
{
    play(probeJson(streams));
}

void AddingFixture::hangFrom(int run, const QByteArray &answer)
{
    const QString script = u"echo x >> %1\n[ $(wc -l < %1) -ge %2 ] && exec sleep 600\ncat %3"_s;
    const QString filled =
        script.arg(m_scratch.path(u"counted"_s), QString::number(run), m_scratch.write(u"answer"_s, answer));
    installScript(tool(), filled);
}

QUrl AddingFixture::url(const QString &name) const
{
    return m_scratch.url(u"media/"_s + name);
}

QUrl AddingFixture::newFile(const QString &name) const
{
    return QUrl::fromLocalFile(m_scratch.write(u"media/"_s + name, "new"));
}

QString AddingFixture::whatToDo(const QString &name) const
{
    return m_file.whatToDoWithFile(url(name));
}

media::AddedTracks AddingFixture::created(const QString &name) const
{
    return m_file.createAddedTrackForURL(url(name));
}

QStringList AddingFixture::everything() const
{
    QStringList lines{m_file.stringFromFileProperties()};
    for (const TrackPointer &track : m_file.trackList()) {
        lines.append(QString::number(quintptr(track.get())));
        for (const QString &name : KXVideoTrack::fieldNames())
            lines.append(track->property(qPrintable(name)).toString());
    }
    return lines;
}

QStringList AddingFixture::names() const
{
    return QDir(m_scratch.path(u"media"_s))
        .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

bool AddingFixture::leftAnErrorFile(const QString &name) const
{
    return QFile::exists(m_scratch.path(errorName(name)));
}

QByteArray AddingFixture::errorFile(const QString &name) const
{
    return m_scratch.read(errorName(name));
}

void AddingFixture::removeErrorFile(const QString &name) const
{
    QFile::remove(m_scratch.path(errorName(name)));
}

TrackList tracksOfTypes(const QString &types)
{
    TrackList tracks;
    for (const QString &type : types.split(u',', Qt::SkipEmptyParts)) {
        tracks.append(std::make_shared<KXVideoTrack>());
        tracks.constLast()->setTrackType(type);
    }
    return tracks;
}

QString fieldOf(const TrackList &tracks, const char *word)
{
    QStringList values;
    for (const TrackPointer &track : tracks)
        values.append(track->property(word).toString());
    return values.join(u',');
}

} // namespace support

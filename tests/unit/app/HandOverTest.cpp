// Subtitles that come back from the subtitle application.
#include "app/FileIntake.h"

#include "support/AppDesk.h"
#include "support/Clips.h"
#include "support/Waiting.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::AppDesk;

namespace {

/// "subitle" is meant.
const QString failed = u"Transfer From Lintwick Failed|Tessaray must have a video file opened before a "
                       "subtitle can be transferred from Lintwick.  Open video file and resend the "
                       "subitle.|10000"_s;
const QString slowSubtitle = u"case \"$*\" in *s.srt*) sleep 0.5;; esac"_s;

} // namespace

class HandOverTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_desk = std::make_unique<AppDesk>();
        m_srt = m_desk->film(support::srtFile(), u"s.srt"_s);
    }
    void cleanup() { m_desk.reset(); }

    void aSubtitleIsAddedToTheVideoThatIsOpen()
    {
        open(u"a.mkv"_s);
        QVERIFY(m_desk->intake().applicationOpenFile(m_srt));
        QCOMPARE(m_desk->file().trackList().size(), 7);
        QVERIFY(m_desk->file().trackList().constLast()->externalTrackFlag());
        QCOMPARE(m_desk->openNames(), QStringList{u"a.mkv"_s});
        QVERIFY(m_desk->alerts().shown().isEmpty());
    }

    void withoutAVideoAnAlertStaysForTenSeconds()
    {
        QVERIFY(m_desk->intake().applicationOpenFile(m_srt)); // always true: meant
        QCOMPARE(m_desk->shownAlerts(), QStringList{failed});
        QCOMPARE(m_desk->alerts().shown().constFirst()->style, platform::AlertStyle::Informational);
        QVERIFY(m_desk->file().trackList().isEmpty());
    }

    void whatIsNoSubtitleIsRefused()
    {
        const QString film = open(u"a.mkv"_s);
        QVERIFY(m_desk->intake().applicationOpenFile(film));
        QCOMPARE(m_desk->shownAlerts(),
                 QStringList{u"Error Opening: a.mkv|The application can't add this track to the current "
                             "video.|5000"_s});
        QCOMPARE(m_desk->file().trackList().size(), 6);
    }

    void aSubtitleThatComesWhileFilesAreProbedIsAddedAfterwards()
    {
        meanwhile([this] { QVERIFY(m_desk->intake().applicationOpenFile(m_srt)); });
        open(u"a.mkv"_s);
        QCOMPARE(m_desk->file().theFileName(), u"a.mkv"_s);
        QCOMPARE(m_desk->file().trackList().size(), 7);
    }

    void aSubtitleThatWaitedForAFileThatWasRefusedNeedsAVideoToo()
    {
        meanwhile([this] { m_desk->intake().applicationOpenFile(m_srt); });
        m_desk->drop({m_desk->text(u"t.txt"_s)});
        QCOMPARE(m_desk->alerts().shown().size(), 2);
        QCOMPARE(m_desk->shownAlerts().constLast(), failed);
        QVERIFY(m_desk->file().trackList().isEmpty());
    }

    void aVideoThatComesWhileASubtitleIsProbedDoesNotGetTheSubtitle()
    {
        open(u"a.mkv"_s);
        m_desk->prepend(u"ffmpeg/ffprobe"_s, slowSubtitle);
        const QString other = m_desk->film(support::textMp4(), u"b.mp4"_s);
        QTimer::singleShot(100, this, [this, other] { m_desk->drop({other}); });
        m_desk->intake().applicationOpenFile(m_srt);
        QTRY_COMPARE(m_desk->file().theFileName(), u"b.mp4"_s);
        QCOMPARE(m_desk->file().trackList().size(), 3);
        QVERIFY(!m_desk->intake().isBusy());
    }

    void stoppingASubtitlesProbeSaysNothing()
    {
        open(u"a.mkv"_s);
        m_desk->prepend(u"ffmpeg/ffprobe"_s, u"case \"$*\" in *s.srt*) sleep 60;; esac"_s);
        QTimer::singleShot(100, this, [this] { m_desk->intake().stopProbing(); });
        m_desk->intake().applicationOpenFile(m_srt);
        QVERIFY(m_desk->alerts().shown().isEmpty());
        QCOMPARE(m_desk->file().trackList().size(), 6);
    }

private:
    QString open(const QString &name)
    {
        const QString film = m_desk->film(support::fullMkv(), name);
        m_desk->drop({film});
        return film;
    }
    /// Does it while the next files are probed; once.
    void meanwhile(const std::function<void()> &action)
    {
        connect(&m_desk->intake(), &app::FileIntake::probing, this, action, Qt::SingleShotConnection);
    }

    std::unique_ptr<AppDesk> m_desk;
    QString m_srt;
};

QTEST_GUILESS_MAIN(HandOverTest)
#include "HandOverTest.moc"

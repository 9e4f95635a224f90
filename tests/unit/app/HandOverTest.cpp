// Subtitles that come back from the subtitle application.
#include "app/FileIntake.h"

#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/app/AppFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;

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
        m_fixture = std::make_unique<AppFixture>();
        m_srt = m_fixture->film(support::srtFile(), u"s.srt"_s);
    }
    void cleanup() { m_fixture.reset(); }

    void aSubtitleIsAddedToTheVideoThatIsOpen()
    {
        open(u"a.mkv"_s);
        QVERIFY(m_fixture->intake().applicationOpenFile(m_srt));
        QCOMPARE(m_fixture->file().trackList().size(), 7);
        QVERIFY(m_fixture->file().trackList().constLast()->externalTrackFlag());
        QCOMPARE(m_fixture->openNames(), QStringList{u"a.mkv"_s});
        QVERIFY(m_fixture->alerts().shown().isEmpty());
    }

    void withoutAVideoAnAlertStaysForTenSeconds()
    {
        QVERIFY(m_fixture->intake().applicationOpenFile(m_srt)); // always true: meant
        QCOMPARE(m_fixture->shownAlerts(), QStringList{failed});
        QCOMPARE(m_fixture->alerts().shown().constFirst()->style, platform::AlertStyle::Informational);
        QVERIFY(m_fixture->file().trackList().isEmpty());
    }

    void whatIsNoSubtitleIsRefused()
    {
        const QString film = open(u"a.mkv"_s);
        QVERIFY(m_fixture->intake().applicationOpenFile(film));
        QCOMPARE(m_fixture->shownAlerts(),
                 QStringList{u"Error Opening: a.mkv|The application can't add this track to the current "
                             "video.|5000"_s});
        QCOMPARE(m_fixture->file().trackList().size(), 6);
    }

    void aSubtitleThatComesWhileFilesAreProbedIsAddedAfterwards()
    {
        meanwhile([this] { QVERIFY(m_fixture->intake().applicationOpenFile(m_srt)); });
        open(u"a.mkv"_s);
        QCOMPARE(m_fixture->file().theFileName(), u"a.mkv"_s);
        QCOMPARE(m_fixture->file().trackList().size(), 7);
    }

    void aSubtitleThatWaitedForAFileThatWasRefusedNeedsAVideoToo()
    {
        meanwhile([this] { m_fixture->intake().applicationOpenFile(m_srt); });
        m_fixture->drop({m_fixture->text(u"t.txt"_s)});
        QCOMPARE(m_fixture->alerts().shown().size(), 2);
        QCOMPARE(m_fixture->shownAlerts().constLast(), failed);
        QVERIFY(m_fixture->file().trackList().isEmpty());
    }

    void aVideoThatComesWhileASubtitleIsProbedDoesNotGetTheSubtitle()
    {
        open(u"a.mkv"_s);
        m_fixture->prepend(u"ffmpeg/ffprobe"_s, slowSubtitle);
        const QString other = m_fixture->film(support::textMp4(), u"b.mp4"_s);
        QTimer::singleShot(100, this, [this, other] { m_fixture->drop({other}); });
        m_fixture->intake().applicationOpenFile(m_srt);
        QTRY_COMPARE(m_fixture->file().theFileName(), u"b.mp4"_s);
        QCOMPARE(m_fixture->file().trackList().size(), 3);
        QVERIFY(!m_fixture->intake().isBusy());
    }

    void stoppingASubtitlesProbeSaysNothing()
    {
        open(u"a.mkv"_s);
        m_fixture->prepend(u"ffmpeg/ffprobe"_s, u"case \"$*\" in *s.srt*) sleep 60;; esac"_s);
        QTimer::singleShot(100, this, [this] { m_fixture->intake().stopProbing(); });
        m_fixture->intake().applicationOpenFile(m_srt);
        QVERIFY(m_fixture->alerts().shown().isEmpty());
        QCOMPARE(m_fixture->file().trackList().size(), 6);
    }

private:
    QString open(const QString &name)
    {
        const QString film = m_fixture->film(support::fullMkv(), name);
        m_fixture->drop({film});
        return film;
    }
    /// Does it while the next files are probed; once.
    void meanwhile(const std::function<void()> &action)
    {
        connect(&m_fixture->intake(), &app::FileIntake::probing, this, action, Qt::SingleShotConnection);
    }

    std::unique_ptr<AppFixture> m_fixture;
    QString m_srt;
};

TESSARAY_TEST(HandOverTest)
#include "HandOverTest.moc"

// What is told when files that differ are to be joined, with real files.
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/MkvRuns.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

/// One second of a picture and a tone in an MKV file: the streams that map names, of that size, rate and
/// audio codec.
QString film(const QString &name, const QString &map, const QString &size = u"320x240"_s,
             const QString &rate = u"25"_s, const QString &audioCodec = u"aac"_s)
{
    return clip(name, [&](const QString &path) {
        const QString line =
            u"-nostdin -y -v error -f lavfi -i testsrc=size=%1:rate=%2 -f lavfi -i sine=sample_rate=48000 "
            "%3 -t 1 -c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a %4"_s.arg(size, rate, map,
                                                                                    audioCodec);
        runProgram(u"ffmpeg"_s, line.split(u' ') << path);
    });
}

const QString usualMap = u"-map 0:v -map 1:a"_s;

QString usual()
{
    return film(u"join-usual.mkv"_s, usualMap);
}

QString faster()
{
    return film(u"join-faster.mkv"_s, usualMap, u"320x240"_s, u"30"_s);
}

QString smaller()
{
    return film(u"join-smaller.mkv"_s, usualMap, u"160x120"_s);
}

QString otherCodec()
{
    return film(u"join-ac3.mkv"_s, usualMap, u"320x240"_s, u"25"_s, u"ac3"_s);
}

QString otherOrder()
{
    return film(u"join-order.mkv"_s, u"-map 1:a -map 0:v"_s);
}

QString moreTracks()
{
    return film(u"join-tracks.mkv"_s, u"-map 0:v -map 1:a -map 1:a"_s);
}

QString otherInAll()
{
    return film(u"join-all.mkv"_s, u"-map 1:a -map 0:v -map 1:a"_s, u"160x120"_s, u"30"_s, u"ac3"_s);
}

QString inMp4(const QString &film, const QString &name)
{
    return clip(name, [&](const QString &path) {
        runProgram(u"ffmpeg"_s,
                   {u"-nostdin"_s, u"-y"_s, u"-v"_s, u"error"_s, u"-i"_s, film, u"-c"_s, u"copy"_s, path});
    });
}

const QString joining = u"MKV Joining"_s;
const QString message =
    u"The files to be joined appear to have the following properties mismatched, which may cause errors or "
    "unexpected results in the join process."_s;

} // namespace

class JoinWarningTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_runs = std::make_unique<MkvRuns>(); }
    void cleanup() { m_runs.reset(); }

    /// Real files can't differ in the number of their tracks alone, nor in the types alone: another number
    /// is other types, and no codec belongs to two types. So these come with what they bring along.
    void whatDiffersIsNamed_data()
    {
        QTest::addColumn<QStringList>("clips");
        QTest::addColumn<QString>("names"); ///< empty: no warning
        QTest::newRow("nothing") << QStringList{usual(), usual()} << QString();
        QTest::newRow("Frame Rate") << QStringList{usual(), faster()} << u"Frame Rate"_s;
        QTest::newRow("Video Resolution") << QStringList{usual(), smaller()} << u"Video Resolution"_s;
        QTest::newRow("two files that differ only in the codec of their audio track report only Track Codecs")
            << QStringList{usual(), otherCodec()} << u"Track Codecs"_s;
        QTest::newRow("Track Types") << QStringList{usual(), otherOrder()} << u"Track Types, Track Codecs"_s;
        QTest::newRow("Track Count") << QStringList{usual(), moreTracks()}
                                     << u"Track Count, Track Types, Track Codecs"_s;
        QTest::newRow("all five")
            << QStringList{usual(), otherInAll()}
            << u"Frame Rate, Video Resolution, Track Count, Track Types, Track Codecs"_s;
        QTest::newRow("neighbours, each name once")
            << QStringList{usual(), smaller(), usual(), faster()} << u"Frame Rate, Video Resolution"_s;
        QTest::newRow("a file that can't be probed is left out")
            << QStringList{usual(), emptyMkv(), faster()} << u"Frame Rate"_s;
    }

    void whatDiffersIsNamed() { joinAndCompare({}); }

    void theEditJobSaysTheSame_data()
    {
        QTest::addColumn<QStringList>("clips");
        QTest::addColumn<QString>("names");
        QTest::newRow("nothing") << QStringList{usual(), usual()} << QString();
        QTest::newRow("two of them") << QStringList{usual(), smaller(), usual(), faster()}
                                     << u"Frame Rate, Video Resolution"_s;
    }
    void theEditJobSaysTheSame() { joinAndCompare(jobs::JobKind::MkvEditing); }

    void differentFrameRateAndSizeWarnWithBothNamesJoinedByACommaAndABlankAndAreThenRefused()
    {
        copyOf(inMp4(usual(), u"join-usual.mp4"_s), m_runs->runs.base.scratch, u"a.mp4"_s);
        const QString other = film(u"join-both.mkv"_s, usualMap, u"160x120"_s, u"30"_s);
        copyOf(inMp4(other, u"join-both.mp4"_s), m_runs->runs.base.scratch, u"b.mp4"_s);
        const auto job = m_runs->add(
            MkvRuns::filesSelection({m_runs->path(u"a.mp4"_s), m_runs->path(u"b.mp4"_s)}, joining));
        QVERIFY(m_runs->run());
        QCOMPARE(alerts().shown().size(), 1);
        QCOMPARE(alerts().shown().constFirst()->informativeText, u"Frame Rate, Video Resolution"_s);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(
            job->outcome().sentence.startsWith(
                u"b.mp4 can't be joined to a.mp4, so nothing was started: track 1 has the size 160x120 and "
                "not 320x240, track 1 has the frame rate 30 and not 25"_s),
            qPrintable(job->outcome().sentence));
        QCOMPARE(m_runs->names(), QStringList({u"a.mp4"_s, u"b.mp4"_s}));
    }

    void theWarningClosesItselfAfter15Seconds()
    {
        copies({usual(), faster()});
        m_runs->add(MkvRuns::filesSelection(m_paths, joining));
        QElapsedTimer clock;
        clock.start();
        m_runs->queue().theQueueLoop();
        QVERIFY(waitFor([&] { return alerts().openCount() == 1; }));
        QVERIFY(waitFor([&] { return alerts().openCount() == 0; }));
        QVERIFY2(clock.elapsed() >= 14000,
                 qPrintable(QString::number(clock.elapsed()))); // also after the join
        QCOMPARE(alerts().closed(), alerts().shown());
        QVERIFY(m_runs->waitForEnd());
    }

private:
    void copies(const QStringList &clips)
    {
        m_paths.clear();
        for (const QString &clip : clips)
            m_paths.append(m_runs->runs.film(clip, u"%1.mkv"_s.arg(m_paths.size())));
    }

    /// A join of copies as that class of job; compares the alert, and whether mkvmerge got to work.
    void joinAndCompare(std::optional<jobs::JobKind> kind)
    {
        QFETCH(QStringList, clips);
        QFETCH(QString, names);
        m_runs->runs.base.setKeepLogs(true);
        copies(clips);
        const auto job = m_runs->add(MkvRuns::filesSelection(m_paths, joining), kind);
        QVERIFY(m_runs->run());
        QCOMPARE(alerts().shown().size(), names.isEmpty() ? 0 : 1);
        if (!names.isEmpty()) {
            const auto alert = alerts().shown().constFirst();
            QCOMPARE(alert->message, message);
            QCOMPARE(alert->informativeText, names);
            QCOMPARE(alert->style, platform::AlertStyle::Warning);
            QCOMPARE(alert->closesAfter, std::chrono::milliseconds(15000));
        }
        const QByteArray log = m_runs->runs.base.scratch.read(u"0.mkv.joined.log"_s);
        QCOMPARE(log.contains("\nmkvmerge v"), names.isEmpty());
        QCOMPARE(job->outcome().verdict, names.isEmpty() ? Verdict::Ok : Verdict::Failed);
    }

    const ScriptedAlerts &alerts() const { return m_runs->runs.base.alerts; }

    std::unique_ptr<MkvRuns> m_runs;
    QStringList m_paths;
};

TESSARAY_TEST(JoinWarningTest)
#include "JoinWarningTest.moc"

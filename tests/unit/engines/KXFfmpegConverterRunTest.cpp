#include "support/TestMain.h"
#include "support/engines/FfmpegFixture.h"
#include "support/selection/HandMade.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// A fixture whose converter follows a film of two minutes.
class Following final : public FfmpegFixture
{
public:
    explicit Following(const QString &passes = u"1"_s)
    {
        converter.setConverterSelection(selection(u"General"_s, {videoTrack()}, passes));
        converter.setDurationInSeconds(u"120"_s);
        converter.setOldProgress(u"00:00:00"_s);
        converter.setLogFileURL(url(u"log"_s));
    }
};

} // namespace

/// How ffmpeg is followed while it runs, and what its end means.
class KXFfmpegConverterRunTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    // Progress.

    void percentAreThoseOfTheTime_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("percent");
        QTest::newRow("a quarter") << u"time=00:00:30.00 "_s << u"25%"_s;
        QTest::newRow("truncated") << u"frame= 9 time=00:00:31.19 bitrate"_s << u"25%"_s;
        QTest::newRow("nothing yet") << u"time=00:00:00.00 "_s << u"0%"_s;
        QTest::newRow("the end") << u"time=00:02:00.00 "_s << u"100%"_s;
        QTest::newRow("beyond the end") << u"time=00:03:00.00 "_s << u"100%"_s;
        QTest::newRow("negative") << u"frame=0 time=-00:00:00.07 bitrate"_s << u"0%"_s;
        QTest::newRow("no time") << u"frame=0 time=N/A bitrate"_s << u"0%"_s;
        QTest::newRow("no progress line") << u"Press [q] to stop"_s << u"0%"_s;
        QTest::newRow("a title") << u"    title           : time=00:01:00.00 x"_s << u"0%"_s;
        QTest::newRow("two times in one chunk")
            << u"frame=0 time=-00:00:00.07 bitrate\rframe=9 time=00:01:00.00 bitrate"_s << u"50%"_s;
    }

    void percentAreThoseOfTheTime()
    {
        QFETCH(QString, text);
        QFETCH(QString, percent);
        Following one;
        one.read(text);
        QCOMPARE(one.progress(), QStringList{percent});
        Following two(u"2"_s);
        two.converter.setCurrentPass(2);
        two.read(text);
        QCOMPARE(two.progress(), QStringList{u"Pass #2 "_s + percent});
        two.converter.setCurrentPass(1);
        two.read(u"\rtime=00:00:12.00 "_s);
        QCOMPARE(two.progress().last(), u"Pass #1 10%"_s);
    }

    void progressTellsWhoseItIs()
    {
        Following fixture;
        fixture.read(u"time=00:00:30.00 "_s);
        const auto info = fixture.record.named(u"monitorConversionUpdate"_s).first().userInfo;
        QCOMPARE(info.keys(), QStringList({u"stepName"_s, u"theConverter"_s, u"theTask"_s}));
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Video Conversion"_s);
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &fixture.converter);
    }

    void whatComesDuringTheLookIsReadInItsOrder()
    {
        Following fixture;
        fixture.base.installTool(u"ffmpeg/ffprobe"_s,
                                 {u"sleep 300"_s, u"out   Duration: 00:02:00.00, start: 0.0"_s});
        fixture.converter.setInputFileURL(fixture.source);
        fixture.converter.setDurationInSeconds(u"0"_s);
        const auto tell = [&](const QByteArray &data) {
            fixture.converter.readTaskError({tools::ToolProcess::Channel::Error, data, nullptr});
        };
        tell("frame=1 time=00:00:30.00 bitrate\r");
        tell("frame=2 time=00:01:00.00 bitrate\r");
        tell({});
        fixture.converter.readTaskOutput({tools::ToolProcess::Channel::Output, {}, nullptr});
        QVERIFY(fixture.converter.isHolding()); // the look is not waited for
        QVERIFY(fixture.record.all().isEmpty());
        QVERIFY(fixture.waitForEnds(1));
        QCOMPARE(fixture.progress(), QStringList({u"25%"_s, u"50%"_s}));
        QCOMPARE(fixture.record.all().last().name, u"taskCompletion"_s);
        QVERIFY(!fixture.converter.isHolding());
    }

    void withoutANewTimeTheOldOneCounts()
    {
        Following fixture;
        fixture.read(u"frame=1 time=00:00:30.00 bitrate\r"_s);
        fixture.read(u"[libx264 @ 0x1] something\n"_s);
        QCOMPARE(fixture.progress(), QStringList({u"25%"_s, u"25%"_s}));
        QCOMPARE(fixture.converter.oldProgress(), u"00:00:30.00"_s);
    }

    void aTimeMayComeInPieces()
    {
        Following fixture;
        fixture.read(u"frame=   74 fps=0.0 q=21.0 size=       0kB ti"_s);
        fixture.read(u"me=00:00:3"_s);
        fixture.read(u"0.00 bitrate="_s);
        QCOMPARE(fixture.progress(), QStringList({u"0%"_s, u"0%"_s, u"25%"_s}));
    }

    void onlyTheErrorStreamCounts()
    {
        Following fixture;
        fixture.read(u"time=00:00:30.00 "_s, tools::ToolProcess::Channel::Output);
        QVERIFY(fixture.progress().isEmpty());
        QCOMPARE(fixture.converter.logString(), u"time=00:00:30.00 "_s);
    }

    void theMoovAtomIsTold()
    {
        Following fixture;
        fixture.read(u"frame=1 time=00:02:00.00 bitrate\r"_s);
        fixture.read(
            u"[mp4 @ 0x1] Starting second pass: moving the moov atom to the beginning of the file\n"_s);
        QCOMPARE(fixture.progress(), QStringList({u"100%"_s, u"moving moov atom"_s}));
    }

    void theDurationIsLookedUpOnce()
    {
        Following fixture;
        fixture.converter.setDurationInSeconds(u"0"_s);
        fixture.converter.setInputFileURL(fixture.source);
        fixture.read(u"time=00:00:30.00 "_s);
        QCOMPARE(fixture.converter.durationInSeconds(), u"120"_s);
        QCOMPARE(fixture.progress(), QStringList{u"25%"_s});
    }

    /// Whatever is written for a duration: no division by zero.
    void aDurationThatIsNoneGivesNoPercent()
    {
        Following fixture;
        for (const QString &duration : {u""_s, u"-5"_s, u"none"_s}) {
            fixture.converter.setDurationInSeconds(duration);
            fixture.read(u"\rtime=00:00:30.00 "_s);
            QCOMPARE(fixture.progress().last(), u"0%"_s);
        }
    }

    void fontsComeFirstWhileThereIsNoCache()
    {
        Following fixture;
        fixture.converter.setSubToBurnURL(fixture.url(u"b.srt"_s));
        fixture.read(u"time=00:00:30.00 "_s);
        QCOMPARE(fixture.progress(), QStringList{u"Initializing Fontconfig"_s});
        fixture.base.scratch.write(u".fontconfig/cache"_s, "x");
        fixture.converter.setFontconfigDirectoryExists(false);
        fixture.converter.setFontconfigIsRebuilding(true);
        fixture.read(u"\rtime=00:01:00.00 "_s);
        QCOMPARE(fixture.progress().last(), u"50%"_s);
        QVERIFY(fixture.converter.fontconfigDirectoryExists());
        QVERIFY(!fixture.converter.fontconfigIsRebuilding());
    }

    // The end of a run.

    void theEndIsClassified_data()
    {
        QTest::addColumn<int>("pass");
        QTest::addColumn<QString>("log");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("error");
        const auto row = [](const char *name, int pass, const char *log, const char *text, bool error) {
            QTest::newRow(name) << pass << QString::fromLatin1(log) << QString::fromLatin1(text) << error;
        };
        const char *fine = "frame=  9 time=00:00:01.00 bitrate\n";
        const char *stamps = "frame=9\n[matroska @ 0x1] Can't write packet with unknown timestamp\n"
                             "av_interleaved_write_frame(): Invalid argument\n";
        row("one pass, fine", 0, fine, "Complete", false);
        row("one pass, no frame", 0, "x.mkv: No such file or directory\n", "Complete", true);
        row("one pass, nothing said", 0, "", "Complete", true);
        row("one pass, a packet was refused", 0, "frame=9\nav_interleaved_write_frame(): Invalid argument\n",
            "Complete", true);
        row("one pass, another write error", 0, "frame=9\nav_interleaved_write_frame(): Broken pipe\n",
            "Complete", false);
        row("one pass, timestamps", 0, stamps, "timestamp error", false);
        row("pass 1, fine", 1, fine, "Pass 1 Complete", false);
        row("pass 1, no frame", 1, "", "Pass 1 Complete", false);
        row("pass 1, timestamps", 1, stamps, "Pass 1 Complete", false);
        row("pass 2, fine", 2, fine, "Complete", false);
        row("pass 2, no frame", 2, "", "Complete", true);
        row("pass 2, timestamps", 2, stamps, "timestamp error", false);
    }

    void theEndIsClassified()
    {
        QFETCH(int, pass);
        QFETCH(QString, log);
        QFETCH(QString, text);
        QFETCH(bool, error);
        Following fixture;
        fixture.converter.setPasslogfileString(fixture.path(u"temp/passLog"_s));
        fixture.converter.setCurrentPass(pass);
        fixture.converter.setLogString(log);
        fixture.converter.setOldProgress(u"00:01:00"_s);
        fixture.converter.backgroundReadingCompleted();
        QCOMPARE(fixture.posted(u"taskCompletion"_s), QStringList{text});
        QCOMPARE(fixture.converter.conversionError(), error);
        QCOMPARE(fixture.converter.oldProgress(), pass == 1 ? u"00:00:00"_s : u"00:01:00"_s);
        const auto info = fixture.record.named(u"taskCompletion"_s).first().userInfo;
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &fixture.converter);
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Video Conversion"_s);
    }

    void anErrorIsForgottenWhenTheNextRunEndsWell()
    {
        Following fixture;
        fixture.converter.setConversionError(true);
        fixture.converter.setLogString(u"frame=9"_s);
        fixture.converter.backgroundReadingCompleted();
        QVERIFY(!fixture.converter.conversionError());
    }

    void passTwoRemovesWhatAnInterruptedPassOneLeft()
    {
        Following fixture;
        for (const QString &name :
             {u"passLog-0.log.temp"_s, u"passLog-0.log.mbtree.temp"_s, u"passLog-0.log"_s})
            fixture.base.scratch.write(u"temp/"_s + name, "x");
        fixture.converter.setPasslogfileString(fixture.path(u"temp/passLog"_s));
        fixture.converter.setCurrentPass(0);
        fixture.converter.backgroundReadingCompleted();
        QVERIFY(QFile::exists(fixture.path(u"temp/passLog-0.log.temp"_s)));
        fixture.converter.setCurrentPass(2);
        fixture.converter.backgroundReadingCompleted();
        QVERIFY(!QFile::exists(fixture.path(u"temp/passLog-0.log.temp"_s)));
        QVERIFY(!QFile::exists(fixture.path(u"temp/passLog-0.log.mbtree.temp"_s)));
        QVERIFY(QFile::exists(fixture.path(u"temp/passLog-0.log"_s)));
    }

    /// ffmpeg ended well, so every packet was written, whatever a title in its log says.
    void aTitleIsNoTimestampError()
    {
        FfmpegFixture fixture({u"err Unknown packet with unknown timestamp"_s,
                               u"err frame=9 time=00:02:00.00 "_s, u"write 10 last"_s});
        QVERIFY(fixture.convert(fixture.selection(u"MKV"_s, {videoTrack(u"passthru"_s)})));
        QCOMPARE(fixture.posted(u"taskCompletion"_s), QStringList{u"Complete"_s});
        QCOMPARE(fixture.converter.outcome().verdict, steps::Verdict::Ok);
    }

    void aRunThatFailedForItsTimestampsAsksForARetry()
    {
        FfmpegFixture fixture(
            {u"err [matroska @ 0x1] Can't write packet with unknown timestamp"_s, u"exit 1"_s});
        QVERIFY(fixture.convert(fixture.selection(u"MKV"_s, {videoTrack(u"passthru"_s)})));
        QCOMPARE(fixture.posted(u"taskCompletion"_s), QStringList{u"timestamp error"_s});
    }

    void theOutcome_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<int>("verdict");
        QTest::addColumn<QString>("words");
        const auto row = [](const char *name, const QStringList &script, steps::Verdict verdict,
                            const QString &words) {
            QTest::newRow(name) << script << static_cast<int>(verdict) << words;
        };
        const QString done = u"err frame=9 time=00:02:00.00 "_s;
        row("well", {done, u"write 10 last"_s}, steps::Verdict::Ok, {});
        row("exit status", {done, u"write 10 last"_s, u"exit 1"_s}, steps::Verdict::Failed,
            u"exit status 1"_s);
        row("killed", {done, u"write 10 last"_s, u"die KILL"_s}, steps::Verdict::Failed,
            u"ended from outside"_s);
        row("no output", {done}, steps::Verdict::Failed, u"without writing a (2).mkv"_s);
        row("empty output", {done, u"write 0 last"_s}, steps::Verdict::Failed, u"wrote nothing"_s);
        row("no picture", {u"err time=00:02:00.00 "_s, u"write 10 last"_s}, steps::Verdict::Failed,
            u"no picture"_s);
        row("full disk", {done, u"err x: No space left on device"_s, u"write 10 last"_s},
            steps::Verdict::Failed, u"There is no room left in /"_s);
        row("full disk, exit status",
            {done, u"err x: No space left on device"_s, u"write 10 last"_s, u"exit 1"_s},
            steps::Verdict::Failed, u"ffmpeg failed: There is no room left in /"_s);
        row("damaged", {u"err [matroska @ 0x1] File ended prematurely"_s, done, u"write 10 last"_s},
            steps::Verdict::Warnings, u"ends early"_s);
    }

    void theOutcome()
    {
        QFETCH(QStringList, script);
        QFETCH(int, verdict);
        QFETCH(QString, words);
        FfmpegFixture fixture(script);
        QVERIFY(fixture.convert(fixture.selection(u"MKV"_s, {videoTrack()})));
        const auto outcome = fixture.converter.outcome();
        QCOMPARE(static_cast<int>(outcome.verdict), verdict);
        QVERIFY2(outcome.sentence.contains(words), qPrintable(outcome.sentence));
    }

    void aRunWithoutAFontCacheIsWell()
    {
        FfmpegFixture fixture({u"err frame=9 time=00:02:00.00 "_s, u"write 10 last"_s});
        fixture.converter.setSubToBurnURL(fixture.source);
        fixture.converter.setDurationInSeconds(u"120"_s);
        QVERIFY(fixture.convert(fixture.selection(
            u"General"_s, {videoTrack(), subtitleTrack(u"3"_s, u"teletext"_s, u"burn"_s)})));
        QCOMPARE(fixture.posted(u"monitorConversionUpdate"_s).last(), u"Initializing Fontconfig"_s);
        QCOMPARE(fixture.converter.outcome().verdict, steps::Verdict::Ok);
    }

    /// A run without video has no "frame=" to miss.
    void soundAloneIsNoError()
    {
        FfmpegFixture fixture({u"err size= 9kB time=00:02:00.00 "_s, u"write 10 last"_s});
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s));
        QVERIFY(fixture.convert(fixture.selection(u"MKV"_s, {audio})));
        QVERIFY(fixture.converter.conversionError());
        QCOMPARE(fixture.converter.outcome().verdict, steps::Verdict::Ok);
    }

    void whatWasLeftOutIsAWarning()
    {
        FfmpegFixture fixture({u"err frame=9 time=00:02:00.00 "_s, u"write 10 last"_s});
        const auto pgs = subtitleTrack(u"3"_s, u"teletext"_s);
        pgs->setProbedCodecName(u"hdmv_pgs_subtitle"_s);
        QVERIFY(fixture.convert(fixture.selection(u"General"_s, {videoTrack(), pgs})));
        QVERIFY(!fixture.calls().first().contains(u"-codec:s:0"_s));
        QVERIFY(tools::textsOf(fixture.converter.optionArray1()).contains(u"-codec:s:0"_s));
        QCOMPARE(fixture.converter.outcome().verdict, steps::Verdict::Warnings);
        QVERIFY(fixture.converter.outcome().sentence.contains(u"subtitle track 3 (hdmv_pgs_subtitle)"_s));
    }

    void anAviSaysWhichSubtitlesItLeavesOut()
    {
        FfmpegFixture fixture({u"err frame=9 time=00:02:00.00 "_s, u"write 10 last"_s});
        QVERIFY(
            fixture.convert(fixture.selection(u"AVI"_s, {videoTrack(), subtitleTrack(u"3"_s, u"srt"_s)})));
        QCOMPARE(fixture.converter.outcome().verdict, steps::Verdict::Warnings);
        QCOMPARE(fixture.converter.outcome().sentence,
                 u"An AVI carries no subtitles, so track 3 was left out."_s);
    }

    /// ffmpeg repeats them in its log, and a line feed makes a line of its own of what stands behind it.
    void namesOfAddedFilesSayNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("a full disk") << u"a\nNo space left on device.srt"_s;
        QTest::newRow("damage") << u"a\nError while decoding stream #0:0.srt"_s;
    }

    void namesOfAddedFilesSayNothing()
    {
        QFETCH(QString, name);
        FfmpegFixture fixture;
        const QString path = fixture.path(name);
        const QString shown = QString(path).replace(u'\n', u"\\n"_s);
        fixture.base.installTool(u"ffmpeg/ffmpeg"_s,
                                 {u"err Input #1, srt, from '%1':"_s.arg(shown),
                                  u"err frame=9 time=00:02:00.00 "_s, u"write 10 last"_s});
        QVERIFY(fixture.convert(
            fixture.selection(u"MKV"_s, {videoTrack(), external(subtitleTrack(u"0"_s, u"srt"_s), path)})));
        QVERIFY(fixture.converter.logString().contains(path));
        QCOMPARE(fixture.converter.outcome().sentence, QString());
        QCOMPARE(fixture.converter.outcome().verdict, steps::Verdict::Ok);
    }

    /// Their stream is always 0: the file's name tells them.
    void anAviNamesTheAddedFilesItLeavesOut()
    {
        FfmpegFixture fixture({u"err frame=9 time=00:02:00.00 "_s, u"write 10 last"_s});
        const auto text = external(subtitleTrack(u"0"_s, u"srt"_s), fixture.path(u"100% new.srt"_s));
        QVERIFY(fixture.convert(fixture.selection(u"AVI"_s, {videoTrack(), text})));
        QCOMPARE(fixture.converter.outcome().sentence,
                 u"An AVI carries no subtitles, so the subtitle 100% new.srt was left out."_s);
    }

    void anOutputThatIsASourceIsNotStarted()
    {
        FfmpegFixture fixture;
        steps::OutputGuard strict(fixture.base.outputs, steps::WhenTaken::Refuse);
        fixture.base.scratch.write(u"a.m4v"_s, "precious");
        strict.setInputs({fixture.source, fixture.url(u"a.m4v"_s), fixture.url(u"a (2).m4v"_s)});
        KXFfmpegConverter converter(fixture.base.converterContext(strict));
        QVERIFY(!converter.startConversionForSelection(fixture.selection(u"General"_s, {videoTrack()})));
        QVERIFY(!converter.refusal().isNull());
        QCOMPARE(converter.outcome().verdict, steps::Verdict::Failed);
        QVERIFY(fixture.calls().isEmpty());
        QCOMPARE(fixture.record.count(u"conversionStarted"_s), 0);
        QCOMPARE(fixture.base.scratch.read(u"a.m4v"_s), QByteArray("precious"));
    }
};

TESSARAY_TEST(KXFfmpegConverterRunTest)
#include "KXFfmpegConverterRunTest.moc"

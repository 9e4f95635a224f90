#include "engines/KXTrackDumper.h"
#include "support/FakeTool.h"
#include "support/HandMade.h"
#include "support/JobWorld.h"
#include "support/Waiting.h"
#include "tools/Numbers.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using tools::ToolProcess;

namespace {

/// A dumper for one track of "a.mkv" in the scratch folder.
class DumperBench final
{
public:
    explicit DumperBench(const QStringList &script = {u"write 10 last"_s})
        : source(world.scratch.url(u"a.mkv"_s))
        , guard(world.outputs, step::WhenTaken::NextFreeName)
        , dumper(world.converterContext(guard))
        , record(world.notifications,
                 {u"conversionStarted"_s, u"monitorExtractionUpdate"_s, u"taskCompletion"_s})
    {
        world.scratch.write(u"a.mkv"_s, "film");
        const QStringList whole = QStringList{u"record "_s + path(u"runs"_s)} + script;
        world.installTool(u"ffmpeg/ffmpeg"_s, whole);
        world.installTool(u"mkvtoolnix/mkvextract"_s, whole);
        world.installTool(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
        guard.setInputs({source});
    }
    ~DumperBench() { dumper.terminatePIDWaitUntilTerminated(dumper.doShell_ID(), KXHelpers::Wait::No); }
    Q_DISABLE_COPY_MOVE(DumperBench)

    SelectionPointer selection(const TrackList &tracks) const
    {
        for (const TrackPointer &track : tracks)
            track->setTrackFileURL(source);
        const auto made = handMadeSelection(u"General"_s, tracks);
        made->setVideoTrackFileURL(source);
        return made;
    }
    void use(qint64 track, KXConverter::Keeping keeping)
    {
        dumper.inititializeForTrackWithStepLabelKeepingTheOutput(track, u"Extracting"_s, keeping);
    }
    QStringList call() const
    {
        const auto runs = FakeTool::recordedRuns(path(u"runs"_s));
        QStringList arguments;
        for (const QByteArray &argument : runs.isEmpty() ? QByteArrayList() : runs.first().arguments)
            arguments << QString::fromUtf8(argument);
        return arguments;
    }
    QString program() const
    {
        const auto runs = FakeTool::recordedRuns(path(u"runs"_s));
        return runs.isEmpty() ? QString() : QString::fromUtf8(runs.first().program).section(u'/', -1);
    }
    bool waitForEnd() const
    {
        return waitFor([&] { return record.count(u"taskCompletion"_s) > 0; });
    }
    /// Waits for what a background run does first.
    bool waitForRun() const
    {
        return waitFor([&] { return !call().isEmpty(); });
    }
    QStringList progress() const
    {
        QStringList texts;
        for (const auto &update : record.named(u"monitorExtractionUpdate"_s))
            texts << update.object.toString();
        return texts;
    }
    QString path(const QString &name) const { return world.scratch.path(name); }
    QUrl url(const QString &name) const { return world.scratch.url(name); }

    JobWorld world{JobWorld::Tools::Fake};
    QUrl source;
    step::OutputGuard guard;
    KXTrackDumper dumper;
    NotificationRecord record;
};

TrackPointer pgs(const QString &extension = u"mkv"_s)
{
    const auto track = subtitleTrack(u"5"_s, u"pgs"_s);
    track->setTrackExtension(u"sup"_s);
    track->setTrackMkvmergeID(u"3"_s);
    track->setTrackFileExtension(extension);
    return track;
}

} // namespace

class KXTrackDumperTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Stream 0 of a.mkv without a save folder, with the start codes of a raw stream.
    void theVideoIsWrittenBesideTheSource()
    {
        DumperBench bench;
        const auto task = bench.dumper.startConversionForSelectionWithSaveDirectoryURL(
            bench.selection({videoTrack()}), QUrl());
        QVERIFY(task);
        QCOMPARE(bench.dumper.converterTask(), task);
        QCOMPARE(bench.dumper.inputFileURL(), bench.source);
        QCOMPARE(bench.dumper.outputFileURL(), bench.url(u"a.mkv.stream0.h264"_s));
        QCOMPARE(bench.dumper.logFileURL(), bench.url(u"a.mkv.stream0.h264.log"_s));
        QCOMPARE(bench.dumper.extractorName(), u"ffmpeg"_s);
        QCOMPARE(bench.dumper.oldProgress(), u"00:00:00"_s);
        QCOMPARE(bench.record.named(u"conversionStarted"_s).first().object.toUrl(),
                 bench.dumper.outputFileURL());
        QVERIFY(bench.waitForEnd());
        QCOMPARE(
            bench.call(),
            words(u"-i %1 -map 0:0 -vcodec copy -bsf:v h264_mp4toannexb -an -sn -y %1.stream0.h264"_s.arg(
                bench.source.toLocalFile())));
        QCOMPARE(bench.record.named(u"taskCompletion"_s).first().object.toString(), u"Complete"_s);
    }

    void aFolderIsUsedWhenGiven_data()
    {
        QTest::addColumn<QString>("ending");
        QTest::newRow("plain") << QString();
        QTest::newRow("with a slash") << u"/"_s;
    }

    void aFolderIsUsedWhenGiven()
    {
        QFETCH(QString, ending);
        DumperBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        const auto folder = QUrl::fromLocalFile(bench.path(u"s"_s) + ending);
        bench.use(1, KXConverter::Keeping::TheOutput);
        bench.dumper.startConversionForSelectionWithSaveDirectoryURL(
            bench.selection({videoTrack(), audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {})}), folder);
        QCOMPARE(bench.dumper.outputFileURL(), bench.url(u"s/a.mkv.stream1.ac3"_s));
        QVERIFY(bench.waitForEnd());
    }

    void anotherWayToStartTakesThePreferencesFolder()
    {
        DumperBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.world.setSaveFolder(bench.path(u"s"_s));
        bench.dumper.startConversionForSelection(bench.selection({videoTrack()}));
        QCOMPARE(bench.dumper.outputFileURL(), bench.url(u"s/a.mkv.stream0.h264"_s));
        QVERIFY(bench.waitForEnd());
    }

    void onlyAnIntermediateOutputIsATemporaryFile_data()
    {
        QTest::addColumn<bool>("isTemporary");
        QTest::newRow("intermediate") << true;
        QTest::newRow("wanted") << false;
    }

    void onlyAnIntermediateOutputIsATemporaryFile()
    {
        QFETCH(bool, isTemporary);
        DumperBench bench;
        bench.use(0, isTemporary ? KXConverter::Keeping::Temporary : KXConverter::Keeping::TheOutput);
        QCOMPARE(bench.dumper.stepName(), u"Extracting"_s);
        const QString pid = bench.dumper.startConversionFor(bench.selection({videoTrack()}));
        QVERIFY(tools::isAllDigits(pid));
        QCOMPARE(bench.dumper.doShell_ID(), pid);
        QCOMPARE(bench.dumper.tempFileToDeleteURL(),
                 isTemporary ? bench.url(u"a.mkv.stream0.h264"_s) : QUrl());
        QVERIFY(bench.waitForRun());
    }

    void ttxtBecomesAss()
    {
        DumperBench bench;
        bench.dumper.startConversionForSelection(bench.selection({subtitleTrack(u"2"_s, u"ttxt"_s)}));
        QCOMPARE(bench.dumper.outputFileURL(), bench.url(u"a.mkv.stream2.ass"_s));
        QVERIFY(bench.waitForEnd());
    }

    void aPgsOfAnMkvIsWrittenByMkvextract()
    {
        DumperBench bench;
        QVERIFY(bench.dumper.startConversionForSelection(bench.selection({pgs()})));
        QCOMPARE(bench.dumper.extractorName(), u"mkvextractor"_s);
        QCOMPARE(bench.record.count(u"conversionStarted"_s), 1);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.program(), u"mkvextract"_s);
        QCOMPARE(bench.call(), QStringList({u"tracks"_s, bench.path(u"a.mkv"_s),
                                            u"3:"_s + bench.path(u"a.mkv.stream5.sup"_s)}));
    }

    void inTheBackgroundToo()
    {
        DumperBench bench({u"out Progress: 100%"_s});
        QVERIFY(!bench.dumper.startConversionFor(bench.selection({pgs()})).isEmpty());
        QCOMPARE(bench.dumper.extractorName(), u"mkvextractor"_s);
        QVERIFY(bench.waitForRun());
        QCOMPARE(bench.program(), u"mkvextract"_s);
        QCOMPARE(bench.call(), QStringList({u"tracks"_s, bench.path(u"a.mkv"_s),
                                            u"3:"_s + bench.path(u"a.mkv.stream5.sup"_s)}));
    }

    void otherPicturesAreLeftToFfmpeg()
    {
        DumperBench bench;
        bench.dumper.startConversionForSelection(bench.selection({pgs(u"mp4"_s)}));
        QCOMPARE(bench.dumper.extractorName(), u"ffmpeg"_s);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.program(), u"ffmpeg"_s);
    }

    /// No tool, no id; whoever waits for it finds it finished.
    void aPictureOfAnMp4StartsNothingInTheBackground()
    {
        DumperBench bench;
        QVERIFY(bench.dumper.startConversionFor(bench.selection({pgs(u"m4v"_s)})).isEmpty());
        QCOMPARE(bench.dumper.extractorName(), u"mp4box"_s);
        QVERIFY(bench.dumper.doShell_ID().isEmpty());
        QCOMPARE(bench.dumper.monitorConversion(), u"Complete"_s);
        QCOMPARE(bench.record.count(u"conversionStarted"_s), 0);
        QVERIFY(bench.call().isEmpty());
        QCOMPARE(bench.dumper.outcome().verdict, step::Verdict::Failed);
    }

    void aTrackThatIsNotThere()
    {
        DumperBench bench;
        bench.use(7, KXConverter::Keeping::TheOutput);
        const auto selection = bench.selection({videoTrack()});
        QVERIFY(!bench.dumper.startConversionForSelection(selection));
        QVERIFY(!bench.dumper.startConversionForSelectionWithSaveDirectoryURL(selection, {}));
        QVERIFY(bench.dumper.startConversionFor(selection).isEmpty());
        QCOMPARE(bench.dumper.outcome().verdict, step::Verdict::Failed);
        QVERIFY(bench.call().isEmpty());
    }

    // Progress of a process.

    void percentOfAProcess()
    {
        DumperBench bench;
        bench.dumper.setExtractorName(u"ffmpeg"_s);
        bench.dumper.setStepName(u"Extracting"_s);
        bench.dumper.setInputFileURL(bench.source);
        bench.dumper.setLogFileURL(bench.url(u"log"_s));
        bench.dumper.setDurationInSeconds({}); // absent counts as not known
        const auto read = [&](const char *text, ToolProcess::Channel channel = ToolProcess::Channel::Error) {
            bench.dumper.handleNewTaskResult({channel, QByteArray(text), nullptr});
            waitFor([&] { return !bench.dumper.isHolding(); });
        };
        read("frame=1 time=00:00:30.00 bitrate\r", ToolProcess::Channel::Output);
        QVERIFY(bench.progress().isEmpty());
        read("frame=1 time=00:00:30.00 bitrate\r");
        read("nothing new\n");
        read("frame=2 time=00:01:00.99 bitrate\r");
        QCOMPARE(bench.progress(), QStringList({u"25%"_s, u"25%"_s, u"50%"_s}));
        QCOMPARE(bench.dumper.durationInSeconds(), u"120"_s);
        const auto info = bench.record.named(u"monitorExtractionUpdate"_s).first().userInfo;
        QCOMPARE(info.keys(), QStringList({u"stepName"_s, u"theConverter"_s, u"theTask"_s}));
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Extracting"_s);
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &bench.dumper);
    }

    // Poll of a background run.

    void pollOfFfmpeg()
    {
        DumperBench bench(
            {u"part err frame=1 time=00:00:30.00 bitrate\\rframe=2 time=00:01:00.00 bitrate\\r"_s,
             u"hang"_s});
        bench.dumper.startConversionFor(bench.selection({videoTrack()}));
        QVERIFY(bench.waitForRun());
        QVERIFY(waitFor([&] { return bench.dumper.monitorConversion() == u"50%"_s; }));
        QCOMPARE(bench.dumper.oldProgress(), u"00:01:00.00"_s);
        bench.world.scratch.write(u"a.mkv.stream0.h264.log"_s,
                                  "frame=2 time=00:01:30.00 bitrate\rsomething else\n");
        QCOMPARE(bench.dumper.monitorConversion(), u"50%"_s); // the last line has none
    }

    void pollOfMkvextract()
    {
        DumperBench bench({u"part out Progress: 10%\\rProgress: 45%\\r"_s, u"hang"_s});
        bench.dumper.startConversionFor(bench.selection({pgs()}));
        QVERIFY(bench.waitForRun());
        QVERIFY(waitFor([&] { return bench.dumper.monitorConversion() == u"45%"_s; }));
        bench.world.scratch.write(u"a.mkv.stream5.sup.log"_s, "Progress: 60%\rWarning: something\n");
        QCOMPARE(bench.dumper.monitorConversion(), u"45%"_s);
        QCOMPARE(bench.dumper.oldProgress(), u"45%"_s);
    }

    void pollOfMp4box()
    {
        DumperBench bench;
        bench.dumper.setExtractorName(u"mp4box"_s);
        bench.dumper.setDoShell_ID(QString::number(QCoreApplication::applicationPid()));
        bench.dumper.setLogFileURL(bench.url(u"log"_s));
        bench.world.scratch.write(u"log"_s, "12\r45 of 100\n");
        QCOMPARE(bench.dumper.monitorConversion(), u"45%"_s);
        bench.world.scratch.write(u"log"_s, "Error: 45\n");
        QCOMPARE(bench.dumper.monitorConversion(), u"error"_s);
        bench.dumper.setDoShell_ID({});
    }

    void aRunThatHasEndedIsComplete()
    {
        for (const QString &extractor : {u"ffmpeg"_s, u"mkvextractor"_s, u"mp4box"_s}) {
            DumperBench bench;
            bench.dumper.setExtractorName(extractor);
            QCOMPARE(bench.dumper.monitorConversion(), u"Complete"_s);
        }
    }

    // How it ended.

    void theOutcome_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<bool>("isBackground");
        QTest::addColumn<int>("verdict");
        QTest::addColumn<QString>("words");
        const auto row = [](const char *name, const QStringList &script, step::Verdict verdict,
                            const QString &words) {
            QTest::addRow("process, %s", name) << script << false << static_cast<int>(verdict) << words;
            QTest::addRow("background, %s", name) << script << true << static_cast<int>(verdict) << words;
        };
        const QString end = u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s;
        row("well", {end, u"write 10 last"_s}, step::Verdict::Ok, {});
        row("failed", {u"err No such stream"_s, u"exit 1"_s}, step::Verdict::Failed,
            u"Track 0, Video: (h264), was not written. ffmpeg"_s);
        row("nothing written", {end}, step::Verdict::Failed,
            u"Track 0, Video: (h264), was not written. ffmpeg"_s);
        QTest::newRow("process, full disk")
            << QStringList{end, u"err x: No space left on device"_s, u"write 10 last"_s, u"exit 1"_s} << false
            << static_cast<int>(step::Verdict::Failed)
            << u"Track 0, Video: (h264), was not written. There was no space left for the output."_s;
        row("empty", {end, u"write 0 last"_s}, step::Verdict::Failed, u"wrote nothing"_s);
    }

    void theOutcome()
    {
        QFETCH(QStringList, script);
        QFETCH(bool, isBackground);
        QFETCH(int, verdict);
        QFETCH(QString, words);
        DumperBench bench(script);
        const auto track = videoTrack();
        track->setTrackInfo(u"Video: (h264)"_s);
        if (isBackground) {
            const QString pid = bench.dumper.startConversionFor(bench.selection({track}));
            QVERIFY(waitFor([&] { return !runs(pid.toLongLong()); }));
        } else {
            bench.dumper.startConversionForSelection(bench.selection({track}));
            QVERIFY(bench.waitForEnd());
        }
        const auto outcome = bench.dumper.outcome();
        QCOMPARE(static_cast<int>(outcome.verdict), verdict);
        QVERIFY2(outcome.sentence.contains(words), qPrintable(outcome.sentence));
    }

    void aShortVideoIsAWarning()
    {
        DumperBench bench({u"err frame=9 Lsize=9kB time=00:00:10.00 bitrate"_s, u"write 10 last"_s});
        bench.dumper.startConversionForSelection(bench.selection({videoTrack()}));
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.dumper.outcome().verdict, step::Verdict::Warnings);
    }
};

QTEST_GUILESS_MAIN(KXTrackDumperTest)
#include "KXTrackDumperTest.moc"

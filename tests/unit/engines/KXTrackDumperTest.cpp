#include "engines/ffmpeg/KXTrackDumper.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/selection/HandMade.h"
#include "tools/Numbers.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using tools::ToolProcess;

namespace {

/// A dumper for one track of "a.mkv" in the scratch folder.
class DumperFixture final
{
public:
    explicit DumperFixture(const QStringList &script = {u"write 10 last"_s})
        : source(base.scratch.url(u"a.mkv"_s))
        , guard(base.outputs, steps::WhenTaken::NextFreeName)
        , dumper(base.converterContext(guard))
        , record(base.notifications,
                 {u"conversionStarted"_s, u"monitorExtractionUpdate"_s, u"taskCompletion"_s})
    {
        base.scratch.write(u"a.mkv"_s, "film");
        const QStringList whole = QStringList{u"record "_s + path(u"runs"_s)} + script;
        base.installTool(u"ffmpeg/ffmpeg"_s, whole);
        base.installTool(u"mkvtoolnix/mkvextract"_s, whole);
        base.installTool(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
        guard.setInputs({source});
    }
    ~DumperFixture() { dumper.terminatePIDWaitUntilTerminated(dumper.doShell_ID(), KXHelpers::Wait::No); }
    Q_DISABLE_COPY_MOVE(DumperFixture)

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
        return runs.isEmpty() ? QStringList() : base.launcher.named(runs.first().arguments);
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
    QString path(const QString &name) const { return base.scratch.path(name); }
    QUrl url(const QString &name) const { return base.scratch.url(name); }

    JobFixture base{JobFixture::Tools::Fake};
    QUrl source;
    steps::OutputGuard guard;
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
        DumperFixture fixture;
        const auto task = fixture.dumper.startConversionForSelectionWithSaveDirectoryURL(
            fixture.selection({videoTrack()}), QUrl());
        QVERIFY(task);
        QCOMPARE(fixture.dumper.converterTask(), task);
        QCOMPARE(fixture.dumper.inputFileURL(), fixture.source);
        QCOMPARE(fixture.dumper.outputFileURL(), fixture.url(u"a.mkv.stream0.h264"_s));
        QCOMPARE(fixture.dumper.logFileURL(), fixture.url(u"a.mkv.stream0.h264.log"_s));
        QCOMPARE(fixture.dumper.extractorName(), u"ffmpeg"_s);
        QCOMPARE(fixture.dumper.oldProgress(), u"00:00:00"_s);
        QCOMPARE(fixture.record.named(u"conversionStarted"_s).first().object.toUrl(),
                 fixture.dumper.outputFileURL());
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(
            fixture.call(),
            words(u"-i %1 -map 0:0 -vcodec copy -bsf:v h264_mp4toannexb -an -sn -y %1.stream0.h264"_s.arg(
                fixture.source.toLocalFile())));
        QCOMPARE(fixture.record.named(u"taskCompletion"_s).first().object.toString(), u"Complete"_s);
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
        DumperFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        const auto folder = QUrl::fromLocalFile(fixture.path(u"s"_s) + ending);
        fixture.use(1, KXConverter::Keeping::TheOutput);
        fixture.dumper.startConversionForSelectionWithSaveDirectoryURL(
            fixture.selection({videoTrack(), audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {})}), folder);
        QCOMPARE(fixture.dumper.outputFileURL(), fixture.url(u"s/a.mkv.stream1.ac3"_s));
        QVERIFY(fixture.waitForEnd());
    }

    void anotherWayToStartTakesThePreferencesFolder()
    {
        DumperFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        fixture.dumper.startConversionForSelection(fixture.selection({videoTrack()}));
        QCOMPARE(fixture.dumper.outputFileURL(), fixture.url(u"s/a.mkv.stream0.h264"_s));
        QVERIFY(fixture.waitForEnd());
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
        DumperFixture fixture;
        fixture.use(0, isTemporary ? KXConverter::Keeping::Temporary : KXConverter::Keeping::TheOutput);
        QCOMPARE(fixture.dumper.stepName(), u"Extracting"_s);
        const QString pid = fixture.dumper.startConversionFor(fixture.selection({videoTrack()}));
        QVERIFY(tools::isAllDigits(pid));
        QCOMPARE(fixture.dumper.doShell_ID(), pid);
        QCOMPARE(fixture.dumper.tempFileToDeleteURL(),
                 isTemporary ? fixture.url(u"a.mkv.stream0.h264"_s) : QUrl());
        QVERIFY(fixture.waitForRun());
    }

    void ttxtBecomesAss()
    {
        DumperFixture fixture;
        fixture.dumper.startConversionForSelection(fixture.selection({subtitleTrack(u"2"_s, u"ttxt"_s)}));
        QCOMPARE(fixture.dumper.outputFileURL(), fixture.url(u"a.mkv.stream2.ass"_s));
        QVERIFY(fixture.waitForEnd());
    }

    void aPgsOfAnMkvIsWrittenByMkvextract()
    {
        DumperFixture fixture;
        QVERIFY(fixture.dumper.startConversionForSelection(fixture.selection({pgs()})));
        QCOMPARE(fixture.dumper.extractorName(), u"mkvextractor"_s);
        QCOMPARE(fixture.record.count(u"conversionStarted"_s), 1);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.program(), u"mkvextract"_s);
        QCOMPARE(fixture.call(), QStringList({u"tracks"_s, fixture.path(u"a.mkv"_s),
                                              u"3:"_s + fixture.path(u"a.mkv.stream5.sup"_s)}));
    }

    void inTheBackgroundToo()
    {
        DumperFixture fixture({u"out Progress: 100%"_s});
        QVERIFY(!fixture.dumper.startConversionFor(fixture.selection({pgs()})).isEmpty());
        QCOMPARE(fixture.dumper.extractorName(), u"mkvextractor"_s);
        QVERIFY(fixture.waitForRun());
        QCOMPARE(fixture.program(), u"mkvextract"_s);
        QCOMPARE(fixture.call(), QStringList({u"tracks"_s, fixture.path(u"a.mkv"_s),
                                              u"3:"_s + fixture.path(u"a.mkv.stream5.sup"_s)}));
    }

    void otherPicturesAreLeftToFfmpeg()
    {
        DumperFixture fixture;
        fixture.dumper.startConversionForSelection(fixture.selection({pgs(u"mp4"_s)}));
        QCOMPARE(fixture.dumper.extractorName(), u"ffmpeg"_s);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.program(), u"ffmpeg"_s);
    }

    /// No tool, no id; a wait for it finds it finished.
    void aPictureOfAnMp4StartsNothingInTheBackground()
    {
        DumperFixture fixture;
        QVERIFY(fixture.dumper.startConversionFor(fixture.selection({pgs(u"m4v"_s)})).isEmpty());
        QCOMPARE(fixture.dumper.extractorName(), u"mp4box"_s);
        QVERIFY(fixture.dumper.doShell_ID().isEmpty());
        QCOMPARE(fixture.dumper.monitorConversion(), u"Complete"_s);
        QCOMPARE(fixture.record.count(u"conversionStarted"_s), 0);
        QVERIFY(fixture.call().isEmpty());
        QCOMPARE(fixture.dumper.outcome().verdict, steps::Verdict::Failed);
    }

    void aTrackThatIsNotThere()
    {
        DumperFixture fixture;
        fixture.use(7, KXConverter::Keeping::TheOutput);
        const auto selection = fixture.selection({videoTrack()});
        QVERIFY(!fixture.dumper.startConversionForSelection(selection));
        QVERIFY(!fixture.dumper.startConversionForSelectionWithSaveDirectoryURL(selection, {}));
        QVERIFY(fixture.dumper.startConversionFor(selection).isEmpty());
        QCOMPARE(fixture.dumper.outcome().verdict, steps::Verdict::Failed);
        QVERIFY(fixture.call().isEmpty());
    }

    // Progress of a process.

    void percentOfAProcess()
    {
        DumperFixture fixture;
        fixture.dumper.setExtractorName(u"ffmpeg"_s);
        fixture.dumper.setStepName(u"Extracting"_s);
        fixture.dumper.setInputFileURL(fixture.source);
        fixture.dumper.setLogFileURL(fixture.url(u"log"_s));
        fixture.dumper.setDurationInSeconds({}); // absent counts as not known
        const auto read = [&](const char *text, ToolProcess::Channel channel = ToolProcess::Channel::Error) {
            fixture.dumper.handleNewTaskResult({channel, QByteArray(text), nullptr});
            waitFor([&] { return !fixture.dumper.isHolding(); });
        };
        read("frame=1 time=00:00:30.00 bitrate\r", ToolProcess::Channel::Output);
        QVERIFY(fixture.progress().isEmpty());
        read("frame=1 time=00:00:30.00 bitrate\r");
        read("nothing new\n");
        read("frame=2 time=00:01:00.99 bitrate\r");
        QCOMPARE(fixture.progress(), QStringList({u"25%"_s, u"25%"_s, u"50%"_s}));
        QCOMPARE(fixture.dumper.durationInSeconds(), u"120"_s);
        const auto info = fixture.record.named(u"monitorExtractionUpdate"_s).first().userInfo;
        QCOMPARE(info.keys(), QStringList({u"stepName"_s, u"theConverter"_s, u"theTask"_s}));
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Extracting"_s);
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &fixture.dumper);
    }

    // Poll of a background run.

    void pollOfFfmpeg()
    {
        DumperFixture fixture(
            {u"part err frame=1 time=00:00:30.00 bitrate\\rframe=2 time=00:01:00.00 bitrate\\r"_s,
             u"hang"_s});
        fixture.dumper.startConversionFor(fixture.selection({videoTrack()}));
        QVERIFY(fixture.waitForRun());
        QVERIFY(waitFor([&] { return fixture.dumper.monitorConversion() == u"50%"_s; }));
        QCOMPARE(fixture.dumper.oldProgress(), u"00:01:00.00"_s);
        fixture.guard.files().write(fixture.dumper.logFileURL(),
                                    "frame=2 time=00:01:30.00 bitrate\rsomething else\n");
        QCOMPARE(fixture.dumper.monitorConversion(), u"50%"_s); // the last line has none
    }

    void pollOfMkvextract()
    {
        DumperFixture fixture({u"part out Progress: 10%\\rProgress: 45%\\r"_s, u"hang"_s});
        fixture.dumper.startConversionFor(fixture.selection({pgs()}));
        QVERIFY(fixture.waitForRun());
        QVERIFY(waitFor([&] { return fixture.dumper.monitorConversion() == u"45%"_s; }));
        fixture.guard.files().write(fixture.dumper.logFileURL(), "Progress: 60%\rWarning: something\n");
        QCOMPARE(fixture.dumper.monitorConversion(), u"45%"_s);
        QCOMPARE(fixture.dumper.oldProgress(), u"45%"_s);
    }

    void pollOfMp4box()
    {
        DumperFixture fixture;
        fixture.dumper.setExtractorName(u"mp4box"_s);
        fixture.dumper.setDoShell_ID(QString::number(QCoreApplication::applicationPid()));
        fixture.dumper.setLogFileURL(fixture.url(u"log"_s));
        fixture.base.scratch.write(u"log"_s, "12\r45 of 100\n");
        QCOMPARE(fixture.dumper.monitorConversion(), u"45%"_s);
        fixture.base.scratch.write(u"log"_s, "Error: 45\n");
        QCOMPARE(fixture.dumper.monitorConversion(), u"error"_s);
        fixture.dumper.setDoShell_ID({});
    }

    void aRunThatHasEndedIsComplete()
    {
        for (const QString &extractor : {u"ffmpeg"_s, u"mkvextractor"_s, u"mp4box"_s}) {
            DumperFixture fixture;
            fixture.dumper.setExtractorName(extractor);
            QCOMPARE(fixture.dumper.monitorConversion(), u"Complete"_s);
        }
    }

    // How it ended.

    void theOutcome_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<bool>("isBackground");
        QTest::addColumn<int>("verdict");
        QTest::addColumn<QString>("words");
        const auto row = [](const char *name, const QStringList &script, steps::Verdict verdict,
                            const QString &words) {
            QTest::addRow("process, %s", name) << script << false << static_cast<int>(verdict) << words;
            QTest::addRow("background, %s", name) << script << true << static_cast<int>(verdict) << words;
        };
        const QString end = u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s;
        row("well", {end, u"write 10 last"_s}, steps::Verdict::Ok, {});
        row("failed", {u"err No such stream"_s, u"exit 1"_s}, steps::Verdict::Failed,
            u"Track 0, Video: (h264), was not written. ffmpeg"_s);
        row("nothing written", {end}, steps::Verdict::Failed,
            u"Track 0, Video: (h264), was not written. ffmpeg"_s);
        QTest::newRow("process, full disk")
            << QStringList{end, u"err x: No space left on device"_s, u"write 10 last"_s, u"exit 1"_s} << false
            << static_cast<int>(steps::Verdict::Failed)
            << u"Track 0, Video: (h264), was not written. ffmpeg failed: There is no room left in "_s;
        row("empty", {end, u"write 0 last"_s}, steps::Verdict::Failed, u"wrote nothing"_s);
    }

    void theOutcome()
    {
        QFETCH(QStringList, script);
        QFETCH(bool, isBackground);
        QFETCH(int, verdict);
        QFETCH(QString, words);
        DumperFixture fixture(script);
        const auto track = videoTrack();
        track->setTrackInfo(u"Video: (h264)"_s);
        if (isBackground) {
            fixture.dumper.startConversionFor(fixture.selection({track}));
            QVERIFY(waitFor([&] { return !fixture.dumper.backgroundRuns(); }));
        } else {
            fixture.dumper.startConversionForSelection(fixture.selection({track}));
            QVERIFY(fixture.waitForEnd());
        }
        const auto outcome = fixture.dumper.outcome();
        QCOMPARE(static_cast<int>(outcome.verdict), verdict);
        QVERIFY2(outcome.sentence.contains(words), qPrintable(outcome.sentence));
    }

};

TESSARAY_TEST(KXTrackDumperTest)
#include "KXTrackDumperTest.moc"

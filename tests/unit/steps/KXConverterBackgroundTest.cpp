// Runs in the shell's background, and how both kinds of run are judged.
#include "steps/KXConverter.h"

#include "steps/OutputGuard.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;
using steps::Verdict;
using support::JobFixture;

namespace {

class OpenConverter final : public KXConverter
{
public:
    using KXConverter::claimLog;
    using KXConverter::claimOutput;
    using KXConverter::KXConverter;
    using KXConverter::lastLogLine;
    using KXConverter::lastStatusInLog;
    using KXConverter::launchOfLine;
    using KXConverter::startInBackground;

    tools::OptionList launchForm(const tools::OptionList &meant) override
    {
        return added.isEmpty() ? meant : added + meant;
    }
    void backgroundReadingCompleted() override { ended = true; }

    tools::OptionList added;
    bool ended = false;
};

struct Run
{
    explicit Run(steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName)
        : guard(fixture.outputs, whenTaken)
        , converter(fixture.converterContext(guard))
    {
        converter.claimLog(fixture.scratch.url(u"step.log"_s));
        converter.setOutputFileURL(fixture.scratch.url(u"out.mkv"_s));
        converter.setInputFileURL(fixture.scratch.url(u"in.mkv"_s));
    }
    ~Run()
    {
        if (!converter.doShell_ID().isEmpty() && support::runs(converter.doShell_ID().toLongLong()))
            ::kill(converter.doShell_ID().toInt(), SIGKILL);
    }
    Q_DISABLE_COPY_MOVE(Run)

    QString start(const QUrl &tool, const tools::OptionList &options = {})
    {
        converter.setDoShell_ID(converter.startInBackground(
            tool, options + tools::OptionList{u"&>", converter.logFileURL(), u"& echo $!"}));
        return converter.doShell_ID();
    }
    QString start(const QString &place, const QStringList &script, const tools::OptionList &options = {})
    {
        return start(fixture.installTool(place, script), options);
    }
    bool ends()
    {
        return support::waitFor([&] { return !converter.backgroundRuns(); });
    }
    /// A run of that script, which may write "last", as a process object or in the background.
    steps::Outcome outcomeOf(const QString &place, const QStringList &script, bool inBackground)
    {
        converter.ended = false;
        const QUrl tool = fixture.installTool(place, script);
        if (inBackground)
            start(tool, {converter.outputFileURL()});
        else
            converter.runAndMonitorBinaryURLWithOptionsShouldWait(tool, {converter.outputFileURL()},
                                                                  KXConverter::ShouldWait::No);
        support::waitFor([&] { return inBackground ? !converter.backgroundRuns() : converter.ended; });
        return converter.outcome();
    }

    QByteArray log() const
    {
        QFile file(guard.fileOf(fixture.scratch.url(u"step.log"_s)).toLocalFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    steps::OutputGuard guard;
    OpenConverter converter;
};

} // namespace

class KXConverterBackgroundTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startAnswersTheToolsOwnId()
    {
        Run run;
        const QString pids = run.fixture.scratch.path(u"pids"_s);
        const QString pid = run.start(u"ffmpeg/ffmpeg"_s, {u"pid "_s + pids, u"hang"_s});
        QVERIFY(pid.toLongLong() > 1);
        QVERIFY(support::waitFor([&] { return !run.fixture.scratch.read(u"pids"_s).isEmpty(); }));
        QCOMPARE(QString::fromUtf8(run.fixture.scratch.read(u"pids"_s)).trimmed(), pid);
    }

    void bothStreamsGoIntoTheLog()
    {
        Run run;
        run.start(u"ffmpeg/ffmpeg"_s, {u"out one"_s, u"err two"_s});
        QVERIFY(run.ends());
        QCOMPARE(run.log(), QByteArray("one\ntwo\n"));
    }

    /// They come from a monitor thread, while the main thread claims and publishes names.
    void pollsKeepToTheLogOfTheRunWhateverTheGuardDoes()
    {
        Run run;
        run.start(u"ffmpeg/ffmpeg"_s, {u"out size=1kB time=00:00:01.00 bitrate=1kbits/s"_s});
        QVERIFY(run.ends());
        const QString line = run.converter.lastLogLine();
        QVERIFY(line.contains(u"time="_s));
        run.guard.published({run.converter.logFileURL()});
        QCOMPARE(run.converter.lastLogLine(), line);
        QCOMPARE(run.converter.lastStatusInLog(), line);
        QVERIFY(run.converter.stringFoundInLog(u"time="_s));
    }

    void launchFormIsWhatRuns()
    {
        Run run;
        run.converter.added = {u"-fflags", u"genpts"};
        const QString record = run.fixture.scratch.path(u"record"_s);
        run.start(u"ffmpeg/ffmpeg"_s, {u"record "_s + record}, {u"-i"});
        QVERIFY(run.ends());
        const QByteArrayList expected{"-fflags", "genpts", "-i"};
        QCOMPARE(support::FakeTool::recordedRuns(record).first().arguments, expected);
    }

    void missingToolCountsAsEndedWithItsMessageInTheLog()
    {
        Run run;
        const QString pid = run.start(run.fixture.scratch.url(u"missing/ffmpeg"_s));
        QVERIFY(pid.toLongLong() > 1);
        QVERIFY(run.ends());
        QCOMPARE(run.converter.monitorConversion(), u"Complete"_s);
        QCOMPARE(run.converter.outcome().verdict, Verdict::Failed);
        QVERIFY(run.log().contains("not found") || run.log().contains("No such file"));
    }

    void toolWithoutANameIsTheReason()
    {
        Run run;
        QVERIFY(run.start(QUrl()).isNull());
        QVERIFY(run.converter.refusal().contains(u"could not be started."_s));
        QCOMPARE(run.converter.outcome().verdict, Verdict::Failed);
        QVERIFY(run.log().isNull());
    }

    /// A line in a shell's background has neither.
    void hasAnExitStatusAndLeadsAGroupOfItsOwn()
    {
        Run run;
        const QString pid = run.start(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        QVERIFY(support::waitFor([&] { return ::getpgid(pid.toInt()) == pid.toInt(); }));
        QVERIFY(run.converter.backgroundRuns());
        ::kill(pid.toInt(), SIGKILL);
        QVERIFY(run.ends());
        QCOMPARE(run.converter.monitorConversion(), u"Complete"_s);
        QCOMPARE(run.converter.outcome().sentence,
                 u"ffmpeg was ended from outside or crashed: The tool was killed."_s);
    }

    void goesWithItsConverter()
    {
        qint64 pid = 0;
        {
            Run run;
            pid = run.start(u"ffmpeg/ffmpeg"_s, {u"hang"_s}).toLongLong();
            QVERIFY(support::waitFor([&] { return support::runs(pid); }));
            run.converter.setDoShell_ID({}); // else the fixture ends it
        }
        QVERIFY(!support::runs(pid));
    }

    void hearsOfItsEndOnce()
    {
        Run run;
        QSignalSpy ended(&run.converter, &KXConverter::toolEnded);
        run.start(u"ffmpeg/ffmpeg"_s, {u"out one"_s, u"err two"_s});
        QVERIFY(run.ends());
        QCOMPARE(ended.size(), 1);
        QVERIFY(!run.converter.ended); // nothing is announced: a job asks
    }

    void isALineOfWhichTheWordsRun()
    {
        Run run;
        run.converter.added = {u"-y"};
        const QUrl tool = run.fixture.installTool(u"ffmpeg/ffmpeg"_s);
        const steps::Launch launch = run.converter.launchOfLine(tool, {u"-i"});
        QVERIFY(launch.line.has_value());
        QCOMPARE(launch.line->meant, u"\"%1\" -i"_s.arg(tool.toLocalFile()));
        QCOMPARE(launch.line->launched, u"\"%1\" -y -i"_s.arg(tool.toLocalFile()));
        QVERIFY(run.converter.refusal().isNull());
    }

    void pollTellsThePercentageOfTheLastTime()
    {
        Run run;
        run.converter.setDurationInSeconds(u"120"_s);
        run.start(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto poll = [&](const QByteArray &log) {
            run.guard.files().write(run.fixture.scratch.url(u"step.log"_s), log);
            return run.converter.monitorConversion();
        };
        QCOMPARE(poll(""), u"0%"_s);
        QCOMPARE(poll("frame= 1 time=00:00:06.00 bitrate=1\rframe= 2 time=00:00:30.00 bitrate=1\r"),
                 u"25%"_s);
        QCOMPARE(poll("frame= 2 time=00:00:30.00 bitrate=1\rframe= 3 ti"),
                 u"25%"_s); // nothing new: the old one
        QCOMPARE(poll("frame= 3 time=N/A bitrate=N/A\r"), u"25%"_s);
        QCOMPARE(poll("    title : time=00:02:00.00 x\n"), u"25%"_s);
        QCOMPARE(poll("size= 3 time=00:01:00.00 bitrate=1\r"), u"50%"_s);
    }

    void pollMeasuresTheDurationOnce()
    {
        Run run;
        const QString record = run.fixture.scratch.path(u"record"_s);
        run.fixture.scratch.write(u"in.mkv"_s, "film");
        run.fixture.installTool(u"ffmpeg/ffprobe"_s,
                                {u"record "_s + record, u"err   Duration: 00:00:40.00, start: 0.0"_s});
        run.start(u"ffmpeg/ffmpeg"_s, {u"err frame= 1 time=00:00:10.00 bitrate=1"_s, u"hang"_s});
        QVERIFY(support::waitFor([&] { return !run.log().isEmpty(); }));
        QCOMPARE(run.converter.monitorConversion(), u"25%"_s);
        QCOMPARE(run.converter.monitorConversion(), u"25%"_s);
        QCOMPARE(support::FakeTool::recordedRuns(record).size(), 1);
    }

    void endOfTheFirstPassIsSaidOnce()
    {
        Run run;
        run.converter.setCurrentPass(1);
        run.start(u"ffmpeg/ffmpeg"_s, {});
        QVERIFY(run.ends());
        QCOMPARE(run.converter.monitorConversion(), u"Pass 1 Complete"_s);
        QCOMPARE(run.converter.monitorConversion(), u"Complete"_s);
    }

    void pollEndsWithComplete_data()
    {
        QTest::addColumn<int>("pass");
        QTest::newRow("no passes") << 0;
        QTest::newRow("second pass") << 2;
    }

    void pollEndsWithComplete()
    {
        QFETCH(int, pass);
        Run run;
        run.converter.setCurrentPass(pass);
        run.start(u"ffmpeg/ffmpeg"_s, {});
        QVERIFY(run.ends());
        QCOMPARE(run.converter.monitorConversion(), u"Complete"_s);
    }

    void namesWithLineFeedsAreNotTakenForTheToolsWords()
    {
        Run run;
        run.converter.setInputFileURL(run.fixture.scratch.url(u"a\nWarning: x.mkv"_s));
        const QString said = u"out "_s + run.fixture.scratch.path(u"a\\nWarning: x.mkv"_s);
        const QStringList script{said, u"out Warning: odd"_s, u"write 5 last"_s, u"exit 1"_s};
        const auto mkvmerge = u"mkvtoolnix/mkvmerge"_s;
        QCOMPARE(run.outcomeOf(mkvmerge, script, true).sentence, u"mkvmerge warned: Warning: odd."_s);
    }

    void runIsJudgedByItsExitStatus_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<Verdict>("verdict");
        QTest::addColumn<QString>("sentence");
        const auto ffmpeg = u"ffmpeg/ffmpeg"_s;
        const auto mkvmerge = u"mkvtoolnix/mkvmerge"_s;
        const auto write = u"write 5 last"_s;
        QTest::newRow("well") << ffmpeg << QStringList{write} << Verdict::Ok << u""_s;
        QTest::newRow("words don't matter")
            << ffmpeg << QStringList{u"err Error: Conversion failed!"_s, write} << Verdict::Ok << u""_s;
        QTest::newRow("failed") << ffmpeg
                                << QStringList{u"err No such filter"_s, u"err Conversion failed!"_s, write,
                                               u"exit 1"_s}
                                << Verdict::Failed << u"ffmpeg failed (exit status 1): No such filter."_s;
        QTest::newRow("failed without a word")
            << ffmpeg << QStringList{u"exit 8"_s} << Verdict::Failed << u"ffmpeg failed (exit status 8)."_s;
        QTest::newRow("killed") << ffmpeg << QStringList{write, u"die KILL"_s} << Verdict::Failed
                                << u"ffmpeg was ended from outside or crashed: The tool was killed."_s;
        QTest::newRow("too large a file")
            << ffmpeg << QStringList{write, u"die XFSZ"_s} << Verdict::Failed
            << u"ffmpeg was ended from outside or crashed: The file may not grow further."_s;
        QTest::newRow("crashed") << ffmpeg << QStringList{write, u"die SEGV"_s} << Verdict::Failed
                                 << u"ffmpeg was ended from outside or crashed."_s;
        QTest::newRow("mkvmerge warned")
            << mkvmerge
            << QStringList{u"out 'Warning: .mkv': Using"_s, u"out Warning: odd"_s, write, u"exit 1"_s}
            << Verdict::Warnings << u"mkvmerge warned: Warning: odd."_s;
        QTest::newRow("mkvmerge failed")
            << mkvmerge << QStringList{u"out Error: gone."_s, write, u"exit 2"_s} << Verdict::Failed
            << u"mkvmerge failed (exit status 2): Error: gone."_s;
        QTest::newRow("no output") << mkvmerge << QStringList{} << Verdict::Failed
                                   << u"mkvmerge ended without writing out.mkv."_s;
        QTest::newRow("empty output") << mkvmerge << QStringList{u"write 0 last"_s, u"exit 1"_s}
                                      << Verdict::Failed << u"mkvmerge wrote nothing into out.mkv."_s;
    }

    void runIsJudgedByItsExitStatus()
    {
        QFETCH(QString, tool);
        QFETCH(QStringList, script);
        QFETCH(Verdict, verdict);
        QFETCH(QString, sentence);
        for (const bool inBackground : {false, true}) {
            Run run;
            const steps::Outcome outcome = run.outcomeOf(tool, script, inBackground);
            QCOMPARE(outcome.verdict, verdict);
            QCOMPARE(outcome.sentence, sentence);
        }
    }

    void stepThatWasNeverStartedFailed()
    {
        Run run;
        QCOMPARE(run.converter.outcome().verdict, Verdict::Failed);
        QVERIFY(!run.converter.outcome().sentence.isEmpty());
    }
};

TESSARAY_TEST(KXConverterBackgroundTest)
#include "KXConverterBackgroundTest.moc"

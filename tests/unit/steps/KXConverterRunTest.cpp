// Runs as process objects, through a tool that plays what it is told.
#include "steps/KXConverter.h"

#include "steps/OutputGuard.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using support::JobFixture;
using tools::ToolProcess;

namespace {

/// Counts what it is told and gives its own words through.
class Listener final : public KXConverter
{
public:
    using KXConverter::claimLog;
    using KXConverter::claimOutput;
    using KXConverter::KXConverter;

    void handleNewTaskResult(const steps::ReadEvent &event) override
    {
        KXConverter::handleNewTaskResult(event);
        ++chunks;
    }
    void backgroundReadingCompleted() override
    {
        KXConverter::backgroundReadingCompleted();
        ++completions;
        statusAtEnd = backgroundReadStatus();
    }
    void logObjectWithString(const QVariant &object, const QString &label) const override
    {
        logged.insert(label, object);
    }

    int chunks = 0;
    int completions = 0;
    int statusAtEnd = -1;
    mutable QVariantMap logged;
};

struct Run
{
    explicit Run(steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName)
        : guard(fixture.outputs, whenTaken)
        , converter(fixture.converterContext(guard))
    {
        converter.claimLog(fixture.scratch.url(u"step.log"_s));
        converter.setOutputFileURL(fixture.scratch.url(u"out.mkv"_s));
    }

    tools::ToolProcessPointer start(const QUrl &tool, const tools::OptionList &options = {},
                                    KXConverter::ShouldWait wait = KXConverter::ShouldWait::No)
    {
        return converter.runAndMonitorBinaryURLWithOptionsShouldWait(tool, options, wait);
    }
    bool play(const QString &place, const QStringList &script, const tools::OptionList &options = {})
    {
        const int before = converter.completions;
        start(fixture.installTool(place, script), options);
        return support::waitFor([&] { return converter.completions > before; });
    }
    QByteArray log() const { return readFile(u"step.log"_s); }
    /// Where the file of that name lies while the job runs.
    QString placeOf(const QString &name) const
    {
        return guard.fileOf(fixture.scratch.url(name)).toLocalFile();
    }
    QByteArray readFile(const QString &name) const
    {
        QFile file(placeOf(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList environmentOf(const QString &place, const QString &variable,
                              const tools::OptionList &options = {})
    {
        const QString seen = fixture.scratch.path(u"seen"_s);
        QFile::remove(seen);
        play(place, {u"environment %1 %2"_s.arg(variable, seen)}, options);
        return QString::fromUtf8(fixture.scratch.read(u"seen"_s)).split(u'\n', Qt::SkipEmptyParts);
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    steps::OutputGuard guard;
    Listener converter;
};

steps::ReadEvent end(const KXConverter &converter, ToolProcess::Channel channel)
{
    return {channel, {}, converter.converterTask().get()};
}

} // namespace

class KXConverterRunTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outputOfBothStreamsGoesIntoTheLog()
    {
        Run run;
        QVERIFY(run.play(u"tool"_s, {u"out one"_s, u"err two"_s, u"part out half\\r"_s}));
        const QByteArray log = run.log();
        QVERIFY(log.contains("one\n") && log.contains("two\n") && log.contains("half\r"));
        QCOMPARE(log.size(), 13);
        QCOMPARE(run.converter.logString().size(), 13);
        QVERIFY(!run.converter.monitorOutputString().isEmpty());
    }

    void theLogOfTheRunBeforeGoesFirst()
    {
        Run run;
        QVERIFY(run.play(u"tool"_s, {u"out yesterday"_s}));
        QVERIFY(run.play(u"tool"_s, {u"out today"_s}));
        QCOMPARE(run.log(), QByteArray("today\n"));
        QVERIFY(run.play(u"tool"_s, {}));
        QVERIFY(!QFile::exists(run.fixture.scratch.path(u"step.log"_s)));
    }

    void whatStandsAtTheNameOfTheLogIsLeftAlone_data()
    {
        QTest::addColumn<bool>("isLink");
        QTest::newRow("a file") << false;
        QTest::newRow("a link") << true;
    }

    void whatStandsAtTheNameOfTheLogIsLeftAlone()
    {
        QFETCH(bool, isLink);
        Run run;
        const QString log = run.fixture.scratch.path(u"step.log"_s);
        const QString theirs = isLink ? u"theirs"_s : u"step.log"_s;
        run.fixture.scratch.write(theirs, "theirs");
        if (isLink)
            QVERIFY(QFile::link(run.fixture.scratch.path(theirs), log));
        QVERIFY(run.play(u"tool"_s, {u"out words"_s}));
        QCOMPARE(run.fixture.scratch.read(theirs), QByteArray("theirs"));
        QCOMPARE(QFileInfo(log).isSymLink(), isLink);
        QCOMPARE(run.converter.logString(), u"words\n"_s);
    }

    void logThatIsAnInputIsNeitherDeletedNorWritten()
    {
        Run run;
        run.fixture.scratch.write(u"film.mkv"_s, "film");
        QVERIFY(
            QFile::link(run.fixture.scratch.path(u"film.mkv"_s), run.fixture.scratch.path(u"link.mkv"_s)));
        run.guard.setInputs({run.fixture.scratch.url(u"film.mkv"_s)});
        for (const auto &name : {u"film.mkv"_s, u"link.mkv"_s}) {
            run.converter.setLogFileURL(run.fixture.scratch.url(name));
            QVERIFY(run.play(u"tool"_s, {u"out words"_s}));
            QCOMPARE(run.fixture.scratch.read(u"film.mkv"_s), QByteArray("film"));
            QCOMPARE(run.converter.logString(), u"words\n"_s);
        }
    }

    void logThatCannotBeWrittenDoesNotEndTheTool()
    {
        Run run;
        run.converter.claimLog(run.fixture.scratch.url(u"no folder/step.log"_s));
        QVERIFY(run.play(u"tool"_s, {u"out words"_s}));
        QCOMPARE(run.converter.logString(), u"words\n"_s);
        QCOMPARE(run.converter.converterTask()->exitStatus(), std::optional<int>(0));
    }

    void missingLogIsWrittenWholeAgain()
    {
        Run run;
        run.start(run.fixture.installTool(u"tool"_s, {u"hang"_s}));
        const auto *source = run.converter.converterTask().get();
        run.converter.readTaskOutput({ToolProcess::Channel::Output, "one ", source});
        QVERIFY(QFile::remove(run.placeOf(u"step.log"_s)));
        run.converter.readTaskOutput({ToolProcess::Channel::Output, "two", source});
        QCOMPARE(run.log(), QByteArray("one two"));
    }

    void floodOnBothStreamsIsReadToTheEnd()
    {
        Run run;
        QVERIFY(run.play(u"tool"_s, {u"flood err 300000"_s, u"flood out 300000"_s, u"flood err 100000"_s}));
        QCOMPARE(run.log().size(), 700000);
    }

    void charactersAreDecodedAcrossChunksOfEachStream()
    {
        Run run;
        const auto gate = [&](int number) { return run.fixture.scratch.path(u"go%1"_s.arg(number)); };
        run.start(run.fixture.installTool(u"tool"_s,
                                          {u"part out \\xe2\\x82"_s, u"await "_s + gate(1),
                                           u"part err \\xc3"_s, u"await "_s + gate(2), u"part out \\xac"_s,
                                           u"await "_s + gate(3), u"part err \\xa9"_s}));
        for (int chunk = 1; chunk <= 3; ++chunk) {
            QVERIFY(support::waitFor([&] { return run.converter.chunks == chunk; }));
            run.fixture.scratch.write(u"go%1"_s.arg(chunk), {});
        }
        QVERIFY(support::waitFor([&] { return run.converter.completions > 0; }));
        const QString text = run.converter.logString();
        QCOMPARE(text.size(), 2);
        QVERIFY(text.contains(u"€"_s) && text.contains(u"é"_s));
        QCOMPARE(run.log(), QByteArray("\xe2\x82\xc3\xac\xa9")); // the log keeps the bytes as they came
    }

    void readingCompletesOnceWhicheverStreamIsUsed_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::newRow("only standard error") << QStringList{u"err words"_s};
        QTest::newRow("only standard output") << QStringList{u"out words"_s};
        QTest::newRow("both") << QStringList{u"out words"_s, u"err words"_s};
        QTest::newRow("nothing") << QStringList{};
        QTest::newRow("failure") << QStringList{u"err words"_s, u"exit 3"_s};
        QTest::newRow("crash") << QStringList{u"die SEGV"_s};
    }

    void readingCompletesOnceWhicheverStreamIsUsed()
    {
        QFETCH(QStringList, script);
        Run run;
        QVERIFY(run.play(u"tool"_s, script));
        QVERIFY(!support::waitFor([&] { return run.converter.completions > 1; }, 100));
        QCOMPARE(run.converter.completions, 1);
    }

    void streamsMayEndInEitherOrder_data()
    {
        QTest::addColumn<bool>("outputFirst");
        QTest::addColumn<int>("status");
        QTest::newRow("output first") << true << 1;
        QTest::newRow("error first") << false << 2;
    }

    void streamsMayEndInEitherOrder()
    {
        QFETCH(bool, outputFirst);
        QFETCH(int, status);
        Run run;
        run.start(run.fixture.installTool(u"tool"_s, {u"hang"_s}));
        KXConverter &converter = run.converter;
        QCOMPARE(converter.backgroundReadStatus(), 0);
        const auto endOutput = [&] {
            converter.readTaskOutput(end(converter, ToolProcess::Channel::Output));
        };
        const auto endError = [&] { converter.readTaskError(end(converter, ToolProcess::Channel::Error)); };
        outputFirst ? endOutput() : endError();
        QCOMPARE(converter.backgroundReadStatus(), status);
        QCOMPARE(run.converter.completions, 0);
        outputFirst ? endError() : endOutput();
        QCOMPARE(run.converter.completions, 1);
        QCOMPARE(run.converter.statusAtEnd, status);
    }

    void eventsOfAnotherProcessAreIgnored()
    {
        Run run;
        const auto old = run.start(run.fixture.installTool(u"tool"_s, {u"hang"_s}));
        run.start(run.fixture.installTool(u"tool"_s, {u"hang"_s}));
        for (const ToolProcess *source :
             {static_cast<const ToolProcess *>(old.get()), static_cast<const ToolProcess *>(nullptr)}) {
            run.converter.readTaskOutput({ToolProcess::Channel::Output, "words", source});
            run.converter.readTaskError({ToolProcess::Channel::Error, {}, source});
        }
        QCOMPARE(run.converter.chunks, 0);
        QCOMPARE(run.converter.backgroundReadStatus(), 0);
        QVERIFY(run.converter.logString().isEmpty());
    }

    void secondRunStartsAfresh()
    {
        Run run;
        QVERIFY(run.play(u"tool"_s, {u"out first"_s}));
        QVERIFY(run.play(u"tool"_s, {u"err second"_s}));
        QCOMPARE(run.converter.logString(), u"second\n"_s);
        QCOMPARE(run.log(), QByteArray("second\n"));
        QCOMPARE(run.converter.completions, 2);
    }

    void toolThatCannotStartEndsWithItsMessageInTheLog()
    {
        Run run;
        QVERIFY(run.start(run.fixture.scratch.url(u"missing"_s)));
        QVERIFY(support::waitFor([&] { return run.converter.completions > 0; }));
        QCOMPARE(run.converter.completions, 1);
        QVERIFY(run.log().contains("missing could not be started"));
        QCOMPARE(run.converter.outcome().verdict, steps::Verdict::Failed);
        QVERIFY(run.converter.outcome().sentence.contains(u"could not be started"_s));
    }

    void waitingBlocksUntilTheEnd()
    {
        Run run;
        const QUrl tool = run.fixture.installTool(u"tool"_s, {u"sleep 200"_s, u"exit 4"_s});
        const auto task = run.start(tool, {}, KXConverter::ShouldWait::Yes);
        QVERIFY(!task->isRunning());
        QCOMPARE(task->exitStatus(), std::optional<int>(4));
    }

    void argumentsArriveAsTheyStand()
    {
        Run run;
        const QString record = run.fixture.scratch.path(u"record"_s);
        const tools::OptionList options{u"a b", u"$HOME", u"';x", run.fixture.scratch.url(u"in \"1\".mkv"_s)};
        QVERIFY(run.play(u"tool"_s, {u"record "_s + record}, options));
        const auto runs = support::FakeTool::recordedRuns(record);
        QCOMPARE(runs.size(), 1);
        const QByteArrayList expected{"a b", "$HOME", "';x",
                                      run.fixture.scratch.path(u"in \"1\".mkv"_s).toUtf8()};
        QCOMPARE(runs.first().arguments, expected);
    }

    void standardInputIsClosed()
    {
        Run run;
        QVERIFY(run.play(u"tool"_s, {u"cat"_s, u"out on"_s}));
        QCOMPARE(run.converter.logString(), u"on\n"_s);
    }

    void environmentGoesByFamily()
    {
        Run run;
        const QString tools = run.fixture.preferences.toolsLocation().toLocalFile();
        const QString fonts = run.fixture.preferences.resourcesLocation().toLocalFile() + u"/fonts"_s;
        const QString library = tools + u"/mkvtoolnix/lib"_s;
        const tools::OptionList burning{u"-vf", u"subtitles=/tmp/x.ass"};
        const auto one = [](const QString &text) { return QStringList{text}; };
        QCOMPARE(run.environmentOf(u"mkvtoolnix/mkvmerge"_s, u"LANG"_s), one(u"LANG=en_US.UTF-8"_s));
        QCOMPARE(run.environmentOf(u"mkvtoolnix/mkvmerge"_s, u"DYLD_LIBRARY_PATH"_s),
                 one(u"DYLD_LIBRARY_PATH="_s + library));
        QCOMPARE(run.environmentOf(u"mkvtoolnix/MKVmerge"_s, u"LD_LIBRARY_PATH"_s),
                 one(u"LD_LIBRARY_PATH="_s + library));
        QCOMPARE(run.environmentOf(u"ffmpeg/ffmpeg"_s, u"FONTCONFIG_PATH"_s, burning),
                 one(u"FONTCONFIG_PATH="_s + fonts));
        QCOMPARE(run.environmentOf(u"ffmpeg/ffmpeg"_s, u"FONTCONFIG_FILE"_s, burning),
                 one(u"FONTCONFIG_FILE="_s + fonts + u"/fonts.conf"_s));
        QCOMPARE(run.environmentOf(u"ffmpeg/ffmpeg"_s, u"FONTCONFIG_PATH"_s, {u"-vf"}),
                 one(u"FONTCONFIG_PATH unset"_s));
        QCOMPARE(run.environmentOf(u"other"_s, u"FONTCONFIG_PATH"_s, burning),
                 one(u"FONTCONFIG_PATH unset"_s));
        QCOMPARE(run.environmentOf(u"AtomicParsley"_s, u"AP_PADDING"_s),
                 one(u"AP_PADDING=DEFAULT_PAD=5128:MIN_PAD=0:MAX_PAD=5128"_s));
    }

    void logHooksTellTheRunExceptOfQuietTools()
    {
        Run run;
        QVERIFY(run.play(u"ffmpeg/ffmpeg"_s, {}, {u"-i", u"x y"}));
        QCOMPARE(run.converter.logged.value(u"[theTask launchPath]"_s).toString(),
                 run.fixture.preferences.toolsLocation().toLocalFile() + u"/ffmpeg/ffmpeg"_s);
        QVERIFY(!run.converter.logged.value(u"[theTask environment]"_s).toStringList().isEmpty());
        QCOMPARE(run.converter.logged.value(u"optionsArray"_s).toStringList(),
                 (QStringList{u"-i"_s, u"x y"_s}));
        QCOMPARE(run.converter.logged.value(u"optionsArrayString"_s).toString(), u"-i x y"_s);
        for (const auto &quiet : {u"mediainfo"_s, u"mkvtoolnix/mkvinfo"_s, u"MediaInfo"_s}) {
            run.converter.logged.clear();
            QVERIFY(run.play(quiet, {}));
            QVERIFY(run.converter.logged.isEmpty());
        }
    }

    void oldOutputStaysWhileTheToolRuns()
    {
        Run run(steps::WhenTaken::Replace);
        run.fixture.scratch.write(u"out.mkv"_s, "old");
        QVERIFY(run.converter.claimOutput(run.fixture.scratch.url(u"out.mkv"_s)));
        QVERIFY(run.play(u"tool"_s, {u"write 3 last"_s}, {run.fixture.scratch.url(u"out.mkv"_s)}));
        QCOMPARE(run.readFile(u"out.mkv"_s), QByteArray("www"));
        QCOMPARE(run.fixture.scratch.read(u"out.mkv"_s), QByteArray("old"));
    }

    void converterThatGoesWhileItsToolRunsIsNotToldAnyMore()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        steps::OutputGuard guard(fixture.outputs, steps::WhenTaken::NextFreeName);
        auto converter = std::make_unique<Listener>(fixture.converterContext(guard));
        converter->claimLog(fixture.scratch.url(u"step.log"_s));
        const auto task = converter->runAndMonitorBinaryURLWithOptionsShouldWait(
            fixture.installTool(u"tool"_s, {u"sleep 100"_s, u"out late"_s}), {}, KXConverter::ShouldWait::No);
        converter.reset();
        QVERIFY(support::waitFor([&] { return !task->isRunning(); }));
        QVERIFY(!QFile::exists(fixture.scratch.path(u"step.log"_s)));
    }
};

TESSARAY_TEST(KXConverterRunTest)
#include "KXConverterRunTest.moc"

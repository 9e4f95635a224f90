// What a step is told and what it is called; its runs are tested in KXConverterRunTest and
// KXConverterBackgroundTest.
#include "steps/KXConverter.h"

#include "media/KXVideoTrack.h"
#include "steps/OutputGuard.h"
#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::JobFixture;

namespace {

/// A converter with its doors open.
class OpenConverter final : public KXConverter
{
public:
    using KXConverter::claimLog;
    using KXConverter::claimOutput;
    using KXConverter::durationIsAssumed;
    using KXConverter::KXConverter;
    using KXConverter::post;
    using KXConverter::postConversionStarted;
};

struct Step
{
    explicit Step(steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName)
        : guard(fixture.outputs, whenTaken)
        , converter(fixture.converterContext(guard))
    {
    }

    /// Lets ffprobe print this, and asks for the duration.
    QString durationOf(const QStringList &probeLines)
    {
        QStringList script;
        for (const QString &line : probeLines)
            script.append(u"err "_s + line);
        fixture.installTool(u"ffmpeg/ffprobe"_s, script);
        fixture.scratch.write(u"film.mkv"_s, "film");
        converter.setInputFileURL(fixture.scratch.url(u"film.mkv"_s));
        converter.findDurationInSeconds();
        return converter.durationInSeconds();
    }

    bool finds(const QByteArray &log, const QString &text)
    {
        fixture.scratch.write(u"step.log"_s, log);
        converter.setLogFileURL(fixture.scratch.url(u"step.log"_s));
        return converter.stringFoundInLog(text);
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    steps::OutputGuard guard;
    OpenConverter converter;
};

QByteArray numberedLines(int from, int to, char end = '\n')
{
    QByteArray lines;
    for (int i = from; i <= to; ++i)
        lines += "line " + QByteArray::number(i) + end;
    return lines;
}

} // namespace

class KXConverterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshConverter()
    {
        Step step;
        const KXConverter &converter = step.converter;
        QCOMPARE(converter.trackItemToProcess(), 0);
        QVERIFY(!converter.conversionError());
        QVERIFY(!converter.isTemporaryOutput());
        QCOMPARE(&converter.appPreferences(), &step.fixture.preferences);
        QCOMPARE(converter.durationInSeconds(), u"0"_s);
        QCOMPARE(converter.currentPass(), 0);
        QCOMPARE(converter.backgroundReadStatus(), 0);
        QCOMPARE(converter.monitorCounter(), 0);
        QVERIFY(!converter.converterIsDone());
        QVERIFY(!converter.converterTask());
        QVERIFY(converter.doShell_ID().isNull());
        QVERIFY(converter.refusal().isNull());
    }

    void fieldsGoByTheirWords()
    {
        Step step;
        const QMetaObject *meta = step.converter.metaObject();
        for (const char *word : {"isTemporaryOutput",
                                 "conversionError",
                                 "currentPass",
                                 "backgroundReadStatus",
                                 "monitorCounter",
                                 "converterName",
                                 "stepName",
                                 "subtitleFontURL",
                                 "saveDirectoryURL",
                                 "doShell_ID",
                                 "logFileURL",
                                 "inputFileURL",
                                 "outputFileURL",
                                 "converterSelection",
                                 "trackItemToProcess",
                                 "tempFileToDeleteURL",
                                 "oldProgress",
                                 "converterStatus",
                                 "lg",
                                 "converterIsDone",
                                 "durationInSeconds",
                                 "converterTask",
                                 "monitorOutputString",
                                 "logString"})
            QVERIFY2(meta->indexOfProperty(word) >= 0, word);
    }

    void initializeForNamesEverythingAfterTheChosenTrack()
    {
        Step step;
        const auto selection = step.fixture.selectionFor(u"/v/film.mkv"_s);
        selection->setTrackList({JobFixture::track(u"Video"_s, u"/v/film.mkv"_s),
                                 JobFixture::track(u"Audio"_s, u"/other/sound.ac3"_s)});
        step.converter.setTrackItemToProcess(1);
        step.converter.initializeFor(selection);
        QCOMPARE(step.converter.converterSelection(), selection);
        QCOMPARE(step.converter.inputFileURL(), QUrl::fromLocalFile(u"/other/sound.ac3"_s));
        QCOMPARE(step.converter.subtitleFontURL(),
                 QUrl::fromLocalFile(u"/Library/Fonts/Arial Unicode.ttf"_s));
    }

    void withoutSaveFolderEverythingGoesNextToTheSourceMovie()
    {
        Step step;
        const auto selection = step.fixture.selectionFor(u"/v/film.mkv"_s);
        selection->setTrackList({JobFixture::track(u"Audio"_s, u"/other/sound.ac3"_s)});
        step.converter.initializeFor(selection);
        QCOMPARE(step.converter.saveDirectoryURL(), QUrl::fromLocalFile(u"/v"_s));
        QCOMPARE(step.converter.outputFileURL(), QUrl::fromLocalFile(u"/v/sound.ac3"_s));
        QCOMPARE(step.converter.logFileURL(), QUrl::fromLocalFile(u"/v/sound.ac3"_s));
    }

    void saveFolderOfThePreferencesWins()
    {
        for (const auto &folder : {u"/saved"_s, u"/saved/"_s}) {
            Step step;
            step.fixture.setSaveFolder(folder);
            const auto selection = step.fixture.selectionFor(u"/v/film.mkv"_s);
            selection->setTrackList({JobFixture::track(u"Video"_s, u"/v/film.mkv"_s)});
            step.converter.initializeFor(selection);
            QCOMPARE(step.converter.outputFileURL(), QUrl::fromLocalFile(u"/saved/film.mkv"_s));
            QCOMPARE(step.converter.logFileURL(), QUrl::fromLocalFile(u"/saved/film.mkv"_s));
        }
    }

    void trackThatIsNotThereLeavesTheInput()
    {
        Step step;
        step.converter.setInputFileURL(QUrl::fromLocalFile(u"/v/before.mkv"_s));
        step.converter.setTrackItemToProcess(-1);
        step.converter.initializeFor(step.fixture.selectionFor(u"/v/film.mkv"_s));
        QCOMPARE(step.converter.inputFileURL(), QUrl::fromLocalFile(u"/v/before.mkv"_s));
    }

    void determineSaveDirectoryFallsBackToTheInput()
    {
        Step step;
        step.converter.setInputFileURL(QUrl::fromLocalFile(u"/in/film.mkv"_s));
        step.converter.determineSaveDirectoryURL();
        QCOMPARE(step.converter.saveDirectoryURL(), QUrl::fromLocalFile(u"/in"_s));
        step.fixture.setSaveFolder(u"/saved"_s);
        step.converter.determineSaveDirectoryURL();
        QCOMPARE(step.converter.saveDirectoryURL(), QUrl::fromLocalFile(u"/saved"_s));
    }

    void stepOnOneTrack()
    {
        Step step;
        step.converter.inititializeForTrackWithStepLabelKeepingTheOutput(3, u"Extracting"_s,
                                                                         KXConverter::Keeping::Temporary);
        QCOMPARE(step.converter.trackItemToProcess(), 3);
        QCOMPARE(step.converter.stepName(), u"Extracting"_s);
        QVERIFY(step.converter.isTemporaryOutput());
        step.converter.inititializeForTrackWithStepLabelKeepingTheOutput(0, u"Extracting"_s,
                                                                         KXConverter::Keeping::TheOutput);
        QVERIFY(!step.converter.isTemporaryOutput());
    }

    void whatTheBaseLeavesToOthers()
    {
        Step step;
        const auto selection = step.fixture.selectionFor(u"/v/film.mkv"_s);
        QCOMPARE(step.converter.startConversionFor(selection), u"Parent"_s);
        QVERIFY(!step.converter.startConversionForSelection(selection));
        QVERIFY(!step.converter.startConversionForSelectionWithSaveDirectoryURL(
            selection, QUrl::fromLocalFile(u"/v"_s)));
        QVERIFY(step.converter.monitorConversion().isNull());
        step.converter.backgroundReadingCompleted();
        step.converter.taskCompletion({});
    }

    void baseFindsNoErrorsOnPurpose()
    {
        Step step;
        const auto answer = [&](const QString &output) {
            return step.converter.checkForErrorsInOutputURLAndLogURL(step.fixture.scratch.url(output), {});
        };
        step.fixture.scratch.write(u"empty.m4v"_s, "");
        for (const auto &name : {u"empty.m4v"_s, u"missing.m4v"_s}) {
            QVERIFY(answer(name).isEmpty());
            QVERIFY(!answer(name).isNull());
        }
    }

    void announcementsCarryStepTaskAndConverter()
    {
        Step step;
        const support::NotificationRecord record(step.fixture.notifications,
                                                 {u"monitorSplitUpdate"_s, u"conversionStarted"_s});
        step.converter.setStepName(u"Splitting"_s);
        step.converter.setOutputFileURL(QUrl::fromLocalFile(u"/v/out.mkv"_s));
        step.converter.post(u"monitorSplitUpdate"_s, u"45%"_s);
        step.converter.postConversionStarted();
        QCOMPARE(record.all().size(), 2);
        const KXNotification &monitor = record.all().at(0);
        QCOMPARE(monitor.object.toString(), u"45%"_s);
        QCOMPARE(monitor.userInfo.keys(), (QStringList{u"stepName"_s, u"theConverter"_s, u"theTask"_s}));
        QCOMPARE(monitor.userInfo.value(u"stepName"_s).toString(), u"Splitting"_s);
        QCOMPARE(monitor.userInfo.value(u"theConverter"_s).value<QObject *>(), &step.converter);
        QCOMPARE(record.all().at(1).object.toUrl(), QUrl::fromLocalFile(u"/v/out.mkv"_s));
        QVERIFY(record.all().at(1).userInfo.isEmpty());
    }

    void claimsGoThroughTheGuard()
    {
        Step step(steps::WhenTaken::Refuse);
        step.fixture.scratch.write(u"a.m4v"_s, "old");
        step.fixture.scratch.write(u"a.log"_s, "old");
        QVERIFY(!step.converter.claimOutput(step.fixture.scratch.url(u"a.m4v"_s)));
        QVERIFY(step.converter.refusal().contains(u"exists already"_s));
        QCOMPARE(step.converter.outcome().verdict, steps::Verdict::Failed);
        QCOMPARE(step.converter.outcome().sentence, step.converter.refusal());
        QVERIFY(step.converter.claimOutput(step.fixture.scratch.url(u"b.m4v"_s)));
        QVERIFY(step.converter.refusal().isNull());
        QCOMPARE(step.converter.outputFileURL(), step.fixture.scratch.url(u"b.m4v"_s));
        step.converter.claimLog(step.fixture.scratch.url(u"a.log"_s));
        QCOMPARE(step.converter.logFileURL(), step.fixture.scratch.url(u"a (2).log"_s));
    }

    void duration_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("seconds");
        QTest::addColumn<bool>("isAssumed");
        const auto line = u"  Duration: 01:23:45.67, start: 0.000000, bitrate: 1234 kb/s"_s;
        QTest::newRow("as printed") << QStringList{line} << u"5025"_s << false;
        QTest::newRow("not known") << QStringList{u"  Duration: N/A, start: 0.000000, bitrate: N/A"_s}
                                   << u"10800"_s << true;
        QTest::newRow("the first that is known")
            << QStringList{u"  Duration: N/A, start: 0"_s, line, u"  Duration: 00:00:01.00, start: 0"_s}
            << u"5025"_s << false;
        QTest::newRow("nothing at all") << QStringList{} << u"10800"_s << true;
        QTest::newRow("no video") << QStringList{u"film.mkv: Invalid data found"_s} << u"10800"_s << true;
        QTest::newRow("under a second")
            << QStringList{u"  Duration: 00:00:00.71, start: 0"_s} << u"180"_s << true;
        QTest::newRow("no time") << QStringList{u"  Duration: forever, start: 0"_s} << u"180"_s << true;
        QTest::newRow("line ends early") << QStringList{u"  Duration:"_s} << u"10800"_s << true;
        QTest::newRow("hostile title")
            << QStringList{u"    title           : Duration: 00:00:09.00, start"_s,
                           u"                    : Duration: 00:00:08.00, start"_s, line}
            << u"5025"_s << false;
        QTest::newRow("hostile name")
            << QStringList{u"Input #0, matroska, from '/v/Duration: 00:00:09.00, x.mkv':"_s, line}
            << u"5025"_s << false;
        QTest::newRow("only hostile")
            << QStringList{u"    title : Duration: 00:00:09.00, start"_s} << u"10800"_s << true;
    }

    void duration()
    {
        QFETCH(QStringList, lines);
        QFETCH(QString, seconds);
        QFETCH(bool, isAssumed);
        Step step;
        QCOMPARE(step.durationOf(lines), seconds);
        QCOMPARE(step.converter.durationIsAssumed(), isAssumed);
    }

    void durationInANameWithLineFeedsDoesNotCount()
    {
        Step step;
        const QString name = u"a\n  Duration: 00:00:09.00, b.mkv"_s;
        step.fixture.installTool(
            u"ffmpeg/ffprobe"_s,
            {u"err Input #0, from '%1':"_s.arg(step.fixture.scratch.path(name)).replace(u"\n"_s, u"\\n"_s),
             u"err   Duration: 00:00:40.00, start: 0"_s});
        step.fixture.scratch.write(name, "film");
        step.converter.setInputFileURL(step.fixture.scratch.url(name));
        step.converter.findDurationInSeconds();
        QCOMPARE(step.converter.durationInSeconds(), u"40"_s);
    }

    void missingProbeGivesThreeHours()
    {
        Step step;
        step.converter.setInputFileURL(step.fixture.scratch.url(u"film.mkv"_s));
        step.converter.findDurationInSeconds();
        QCOMPARE(step.converter.durationInSeconds(), u"10800"_s);
    }

    void logIsSearchedInItsLastTwentyLines()
    {
        Step step;
        QVERIFY(step.finds("the phrase\n" + numberedLines(1, 19), u"phrase"_s));
        QVERIFY(!step.finds("the phrase\n" + numberedLines(1, 20), u"phrase"_s));
        QVERIFY(step.finds(numberedLines(1, 500) + "the phrase", u"the phrase"_s));
    }

    void carriageReturnsEndLinesOfTheLog()
    {
        Step step;
        QVERIFY(step.finds("the phrase\r" + numberedLines(1, 19, '\r'), u"phrase"_s));
        QVERIFY(!step.finds("the phrase\r" + numberedLines(1, 20, '\r'), u"phrase"_s));
    }

    void hostilePhraseRunsNothing()
    {
        Step step;
        const QString ran = step.fixture.scratch.path(u"ran"_s);
        QVERIFY(!step.finds("nothing\n", u"';touch %1;#"_s.arg(ran)));
        QVERIFY(!step.finds("nothing\n", u"$(touch %1)"_s.arg(ran)));
        QVERIFY(!QFile::exists(ran));
        QVERIFY(step.finds("it's here\n", u"it's"_s));
    }

    void missingLogHoldsNothing()
    {
        Step step;
        step.converter.setLogFileURL(step.fixture.scratch.url(u"No such file.log"_s));
        QVERIFY(!step.converter.stringFoundInLog(u"No such file"_s));
    }
};

TESSARAY_TEST(KXConverterTest)
#include "KXConverterTest.moc"

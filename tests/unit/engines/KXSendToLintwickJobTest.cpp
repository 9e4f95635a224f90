#include "engines/KXSendToLintwickJob.h"
#include "support/HandMade.h"
#include "support/MkvBench.h"
#include "support/Waiting.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using step::Verdict;

namespace {

const QString application = u"/Applications/Lintwick.app"_s;

class SendingBench final : public MkvBench
{
public:
    explicit SendingBench(const QString &lintwickPath = application)
    {
        world.preferences.overrideForThisRun(u"lintwickPath"_s, lintwickPath);
    }

    std::shared_ptr<KXSendToLintwickJob> begin(const TrackList &tracks)
    {
        return start<KXSendToLintwickJob>(selection(u"Send To Lintwick"_s, tracks));
    }
    void post(const QString &name, const QString &text, QObject *converter)
    {
        world.notifications.post(name, text,
                                 {{u"stepName"_s, u"Extracting Subtitle Track"_s},
                                  {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }
    QObject *step() const { return job->stepConverterList().first().get(); }
    QStringList asked() const
    {
        QStringList texts;
        for (const QString &text : world.workspace.asked())
            texts << shown(text);
        return texts;
    }
    /// The only alert, as its two texts; empty when there was none or the style is another.
    QStringList warning() const
    {
        const auto alerts = world.alerts.shown();
        if (alerts.size() != 1 || alerts.first()->style != platform::AlertStyle::Warning)
            return {};
        return {alerts.first()->message, alerts.first()->informativeText};
    }
};

TrackPointer subtitle(const QString &stream = u"2"_s)
{
    return subtitleTrack(stream, u"srt"_s);
}

TrackPointer sound()
{
    return audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {});
}

const QStringList notLaunched{u"Lintwick Could Not Be Launched"_s,
                              u"Verify that a valid path to Lintwick has been entered in the preferences."_s};

const QStringList handedOver{u"launch "_s + application, u"open /v/a.mkv.stream2.srt with "_s + application,
                             u"open /v/a.mkv with "_s + application};

} // namespace

class KXSendToLintwickJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSubtitleAndThenTheFilmAreOpened()
    {
        SendingBench bench;
        const auto job = bench.begin({videoTrack(), sound(), subtitle()});
        QCOMPARE(job->progressList(), jobs::ProgressList({{u"Extracting Subtitle Track"_s, u"0%"_s}}));
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.asked(), handedOver);
        QVERIFY(bench.world.alerts.shown().isEmpty());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(u"a.mkv.stream2.srt"_s)});
        QVERIFY(bench.world.scratch.names().contains(u"a.mkv.stream2.srt"_s)); // not temporary
        QCOMPARE(bench.progressTexts().last(), u"Extracting Subtitle Track=Complete"_s);
        // Which codec a subtitle gets is left to ffmpeg: no track has the type "Subittle".
        QCOMPARE(bench.meant(0, u"ffmpeg"_s), u"-i|/v/a.mkv|-map|0:2|-y|/v/a.mkv.stream2.srt"_s);
    }

    void ofTwoSubtitlesOnlyTheFirstIsSent()
    {
        SendingBench bench;
        const auto job = bench.begin({videoTrack(), subtitle(), subtitle(u"3"_s)});
        QCOMPARE(job->stepConverterList().size(), 1);
        QCOMPARE(job->stepConverterList().first()->trackItemToProcess(), 1);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.calls(u"ffmpeg"_s).size(), 1);
        QCOMPARE(bench.asked(), handedOver);
    }

    void anExternalSubtitleIsOneToo()
    {
        SendingBench bench;
        const TrackPointer foreign = subtitle();
        foreign->setTrackType(u"External Subtitle"_s);
        bench.begin({foreign, subtitle(u"3"_s)});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.asked(), handedOver);
    }

    void theSaveFolderIsThePreferences()
    {
        SendingBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.world.setSaveFolder(bench.path(u"s"_s));
        bench.begin({subtitle()});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.asked().value(1), u"open /v/s/a.mkv.stream2.srt with "_s + application);
        QCOMPARE(bench.asked().value(2), u"open /v/a.mkv with "_s + application);
    }

    void withoutASubtitleThereIsNoStepAndNothingIsLaunched()
    {
        SendingBench bench;
        const auto job = bench.begin({videoTrack(), sound()});
        QVERIFY(job->stepConverterList().isEmpty());
        QVERIFY(job->progressList().isEmpty());
        QVERIFY(bench.waitForEnd());
        QVERIFY(bench.asked().isEmpty());
        QVERIFY(bench.world.alerts.shown().isEmpty());
        QVERIFY(bench.calls(u"ffmpeg"_s).isEmpty());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QCOMPARE(job->outcome().sentence, u"There is no subtitle to send."_s);
    }

    // The application.

    void aPathThatDoesNotNameTheApplicationIsRefusedEvenIfItWasLaunched_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("another application") << u"/Applications/Editor.app"_s;
        QTest::newRow("small letters") << u"/Applications/lintwick.app"_s;
    }

    void aPathThatDoesNotNameTheApplicationIsRefusedEvenIfItWasLaunched()
    {
        QFETCH(QString, path);
        SendingBench bench(path);
        const auto job = bench.begin({subtitle()});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.asked(), QStringList{u"launch "_s + path}); // meant: it is launched first
        QCOMPARE(bench.warning(), notLaunched);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(bench.world.scratch.names().contains(u"a.mkv.stream2.srt"_s));
    }

    void theNameMayStandAnywhereInThePath()
    {
        SendingBench bench(u"/opt/Lintwick 2/bin/editor"_s);
        bench.begin({subtitle()});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.asked().size(), 3);
        QVERIFY(bench.world.alerts.shown().isEmpty());
    }

    void noPathIsNoLocation()
    {
        SendingBench bench(u""_s);
        bench.begin({subtitle()});
        QVERIFY(bench.waitForEnd());
        QVERIFY(bench.asked().isEmpty());
        QCOMPARE(bench.warning(), notLaunched);
    }

    void anApplicationThatDoesNotStartIsAWarning()
    {
        SendingBench bench;
        bench.world.workspace.launches = false;
        const auto job = bench.begin({subtitle()});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.asked(), QStringList{u"launch "_s + application});
        QCOMPARE(bench.warning(), notLaunched);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
    }

    void aSubtitleThatIsNotOpenedIsAWarningAndTheFilmIsOpenedAllTheSame()
    {
        SendingBench bench;
        bench.world.workspace.opens = false;
        bench.begin({subtitle()});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.asked(), handedOver);
        // Two blanks behind "installed.", on purpose.
        QCOMPARE(bench.warning(),
                 QStringList({u"Error Sending the Subtitle to Lintwick"_s,
                              u"Make sure that you have the most recent version of Lintwick installed.  "
                              "Check the Orvane website for the current version."_s}));
    }

    void aSubtitleThatWasNotWrittenIsNotSent()
    {
        SendingBench bench;
        bench.setScript(u"ffmpeg/ffmpeg"_s, {u"err Conversion failed!"_s, u"exit 1"_s});
        const auto job = bench.begin({subtitle()});
        QVERIFY(bench.waitForEnd());
        QVERIFY(bench.asked().isEmpty());
        QVERIFY(bench.world.alerts.shown().isEmpty());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
    }

    // A subtitle of pictures comes as two files.

    void aVobSubIsTwoFiles()
    {
        SendingBench bench;
        bench.setScript(u"mkvtoolnix/mkvextract"_s,
                        {u"out Progress: 100%"_s, u"write 10 "_s + bench.path(u"a.mkv.stream2.idx"_s),
                         u"write 10 "_s + bench.path(u"a.mkv.stream2.sub"_s)});
        const TrackPointer pictures = subtitleTrack(u"2"_s, u"vobsub"_s);
        pictures->setTrackExtension(u"idx"_s);
        const auto job = bench.begin({pictures});
        QVERIFY(bench.waitForEnd());
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(job->outputs(),
                 QList<QUrl>({bench.url(u"a.mkv.stream2.idx"_s), bench.url(u"a.mkv.stream2.sub"_s)}));
        QCOMPARE(bench.asked().value(1), u"open /v/a.mkv.stream2.idx with "_s + application);
        QCOMPARE(bench.calls(u"mkvextract"_s),
                 QList<QStringList>{QStringList({u"tracks"_s, u"/v/a.mkv"_s, u"2:/v/a.mkv.stream2.idx"_s})});
    }

    void aVobSubOfWhichOneFileIsMissingIsNotSent()
    {
        SendingBench bench;
        bench.setScript(u"mkvtoolnix/mkvextract"_s,
                        {u"out Progress: 100%"_s, u"write 10 "_s + bench.path(u"a.mkv.stream2.idx"_s)});
        const TrackPointer pictures = subtitleTrack(u"2"_s, u"vobsub"_s);
        pictures->setTrackExtension(u"idx"_s);
        const auto job = bench.begin({pictures});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(bench.asked().isEmpty());
    }

    // What it listens to.

    void theExtractorAnnouncesUnderThisJobsNameToo()
    {
        SendingBench bench;
        bench.setScript(u"ffmpeg/ffmpeg"_s,
                        {u"part err frame=1 time=00:01:00.00 bitrate=1\\r"_s, u"sleep 300"_s,
                         u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s, u"write 10 last"_s});
        bench.begin({subtitle()});
        QVERIFY(bench.waitForEnd());
        const QStringList texts = bench.posted(u"monitorSendToLintwickUpdate"_s);
        QVERIFY2(texts.contains(u"50%"_s), qPrintable(texts.join(u' ')));
        QCOMPARE(texts, bench.posted(u"monitorExtractionUpdate"_s)); // in addition
        QVERIFY(bench.progressTexts().contains(u"Extracting Subtitle Track=50%"_s));
    }

    void onlyPercentagesOfItsOwnStepAreShown()
    {
        SendingBench bench;
        bench.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = bench.begin({subtitle()});
        QObject other;
        bench.post(u"monitorSendToLintwickUpdate"_s, u"45%"_s, &other);
        bench.post(u"monitorSendToLintwickUpdate"_s, u"no number"_s, bench.step());
        bench.post(u"monitorExtractionUpdate"_s, u"45%"_s, bench.step());
        QCOMPARE(job->progressList().first().progress, u"0%"_s);
        bench.post(u"monitorSendToLintwickUpdate"_s, u"45%"_s, bench.step());
        QCOMPARE(job->progressList().first().progress, u"45%"_s);
    }

    void theEndOfAnotherStepSendsNothing()
    {
        SendingBench bench;
        bench.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = bench.begin({subtitle()});
        QObject other;
        bench.post(u"taskCompletion"_s, u"Complete"_s, &other);
        QCOMPARE(job->progressList().first().progress, u"0%"_s);
        QVERIFY(bench.asked().isEmpty());
        QVERIFY(!waitFor([&] { return bench.record.count(u"jobDone"_s) > 0; }, 150));
    }
};

QTEST_GUILESS_MAIN(KXSendToLintwickJobTest)
#include "KXSendToLintwickJobTest.moc"

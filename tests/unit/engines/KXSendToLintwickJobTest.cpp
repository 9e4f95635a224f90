#include "engines/mkvtoolnix/KXSendToLintwickJob.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

const QString application = u"/Applications/Lintwick.app"_s;

class SendingFixture final : public MkvFixture
{
public:
    explicit SendingFixture(const QString &lintwickPath = application)
    {
        base.preferences.overrideForThisRun(u"lintwickPath"_s, lintwickPath);
    }

    std::shared_ptr<KXSendToLintwickJob> begin(const TrackList &tracks)
    {
        return start<KXSendToLintwickJob>(selection(u"Send To Lintwick"_s, tracks));
    }
    void post(const QString &name, const QString &text, QObject *converter)
    {
        base.notifications.post(name, text,
                                {{u"stepName"_s, u"Extracting Subtitle Track"_s},
                                 {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }
    QObject *step() const { return job->stepConverterList().first().get(); }
    QStringList asked() const
    {
        QStringList texts;
        for (const QString &text : base.workspace.asked())
            texts << shown(text);
        return texts;
    }
    /// The only alert, as its two texts; empty when there was none or the style is another.
    QStringList warning() const
    {
        const auto alerts = base.alerts.shown();
        if (alerts.size() != 1 || alerts.first()->style != platform::AlertStyle::Warning)
            return {};
        return {alerts.first()->message, alerts.first()->informativeText};
    }
};

TrackPointer subtitle(const QString &stream = u"2"_s)
{
    return subtitleTrack(stream, u"srt"_s);
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
        SendingFixture fixture;
        const auto job = fixture.begin({videoTrack(), surroundSound(), subtitle()});
        QCOMPARE(job->progressList(), jobs::ProgressList({{u"Extracting Subtitle Track"_s, u"0%"_s}}));
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.asked(), handedOver);
        QVERIFY(fixture.base.alerts.shown().isEmpty());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"a.mkv.stream2.srt"_s)});
        QVERIFY(fixture.base.scratch.names().contains(u"a.mkv.stream2.srt"_s)); // not temporary
        QCOMPARE(fixture.progressTexts().last(), u"Extracting Subtitle Track=Complete"_s);
        // Which codec a subtitle gets is left to ffmpeg: no track has the type "Subittle".
        QCOMPARE(fixture.meant(0, u"ffmpeg"_s), u"-i|/v/a.mkv|-map|0:2|-y|/v/a.mkv.stream2.srt"_s);
    }

    void ofTwoSubtitlesOnlyTheFirstIsSent()
    {
        SendingFixture fixture;
        const auto job = fixture.begin({videoTrack(), subtitle(), subtitle(u"3"_s)});
        QCOMPARE(job->stepConverterList().size(), 1);
        QCOMPARE(job->stepConverterList().first()->trackItemToProcess(), 1);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.calls(u"ffmpeg"_s).size(), 1);
        QCOMPARE(fixture.asked(), handedOver);
    }

    void anExternalSubtitleIsOneToo()
    {
        SendingFixture fixture;
        const TrackPointer foreign = subtitle();
        foreign->setTrackType(u"External Subtitle"_s);
        fixture.begin({foreign, subtitle(u"3"_s)});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.asked(), handedOver);
    }

    void theSaveFolderIsThePreferences()
    {
        SendingFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        fixture.begin({subtitle()});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.asked().value(1), u"open /v/s/a.mkv.stream2.srt with "_s + application);
        QCOMPARE(fixture.asked().value(2), u"open /v/a.mkv with "_s + application);
    }

    void withoutASubtitleThereIsNoStepAndNothingIsLaunched()
    {
        SendingFixture fixture;
        const auto job = fixture.begin({videoTrack(), surroundSound()});
        QVERIFY(job->stepConverterList().isEmpty());
        QVERIFY(job->progressList().isEmpty());
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.asked().isEmpty());
        QVERIFY(fixture.base.alerts.shown().isEmpty());
        QVERIFY(fixture.calls(u"ffmpeg"_s).isEmpty());
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
        SendingFixture fixture(path);
        const auto job = fixture.begin({subtitle()});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.asked(), QStringList{u"launch "_s + path}); // meant: it is launched first
        QCOMPARE(fixture.warning(), notLaunched);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(fixture.base.scratch.names().contains(u"a.mkv.stream2.srt"_s));
    }

    void theNameMayStandAnywhereInThePath()
    {
        SendingFixture fixture(u"/opt/Lintwick 2/bin/editor"_s);
        fixture.begin({subtitle()});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.asked().size(), 3);
        QVERIFY(fixture.base.alerts.shown().isEmpty());
    }

    void noPathIsNoLocation()
    {
        SendingFixture fixture(u""_s);
        fixture.begin({subtitle()});
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.asked().isEmpty());
        QCOMPARE(fixture.warning(), notLaunched);
    }

    void anApplicationThatDoesNotStartIsAWarning()
    {
        SendingFixture fixture;
        fixture.base.workspace.launches = false;
        const auto job = fixture.begin({subtitle()});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.asked(), QStringList{u"launch "_s + application});
        QCOMPARE(fixture.warning(), notLaunched);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
    }

    void aSubtitleThatIsNotOpenedIsAWarningAndTheFilmIsOpenedAllTheSame()
    {
        SendingFixture fixture;
        fixture.base.workspace.opens = false;
        fixture.begin({subtitle()});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.asked(), handedOver);
        // Two blanks behind "installed.", on purpose.
        QCOMPARE(fixture.warning(),
                 QStringList({u"Error Sending the Subtitle to Lintwick"_s,
                              u"Make sure that you have the most recent version of Lintwick installed.  "
                              "Check the Orvane website for the current version."_s}));
    }

    void aSubtitleThatWasNotWrittenIsNotSent()
    {
        SendingFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"err Conversion failed!"_s, u"exit 1"_s});
        const auto job = fixture.begin({subtitle()});
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.asked().isEmpty());
        QVERIFY(fixture.base.alerts.shown().isEmpty());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
    }

    // A subtitle of pictures comes as two files.

    void aVobSubIsTwoFiles()
    {
        SendingFixture fixture;
        fixture.setScript(u"mkvtoolnix/mkvextract"_s,
                          {u"out Progress: 100%"_s, u"write 10 1.idx"_s, u"write 10 1.sub"_s});
        const TrackPointer pictures = subtitleTrack(u"2"_s, u"vobsub"_s);
        pictures->setTrackExtension(u"idx"_s);
        const auto job = fixture.begin({pictures});
        QVERIFY(fixture.waitForEnd());
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(job->outputs(),
                 QList<QUrl>({fixture.url(u"a.mkv.stream2.idx"_s), fixture.url(u"a.mkv.stream2.sub"_s)}));
        QCOMPARE(fixture.asked().value(1), u"open /v/a.mkv.stream2.idx with "_s + application);
        QCOMPARE(fixture.calls(u"mkvextract"_s),
                 QList<QStringList>{QStringList({u"tracks"_s, u"/v/a.mkv"_s, u"2:/v/a.mkv.stream2.idx"_s})});
    }

    void aVobSubOfWhichOneFileIsMissingIsNotSent()
    {
        SendingFixture fixture;
        fixture.setScript(u"mkvtoolnix/mkvextract"_s,
                          {u"out Progress: 100%"_s, u"write 10 "_s + fixture.path(u"a.mkv.stream2.idx"_s)});
        const TrackPointer pictures = subtitleTrack(u"2"_s, u"vobsub"_s);
        pictures->setTrackExtension(u"idx"_s);
        const auto job = fixture.begin({pictures});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(fixture.asked().isEmpty());
    }

    // What it listens to.

    void theExtractorAnnouncesUnderThisJobsNameToo()
    {
        SendingFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s,
                          {u"part err frame=1 time=00:01:00.00 bitrate=1\\r"_s,
                           u"await "_s + fixture.path(u"go"_s),
                           u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s, u"write 10 last"_s});
        fixture.begin({subtitle()});
        QVERIFY(waitFor([&] { return fixture.posted(u"monitorSendToLintwickUpdate"_s).contains(u"50%"_s); }));
        fixture.base.scratch.write(u"go"_s, {});
        QVERIFY(fixture.waitForEnd());
        const QStringList texts = fixture.posted(u"monitorSendToLintwickUpdate"_s);
        QCOMPARE(texts, fixture.posted(u"monitorExtractionUpdate"_s)); // in addition
        QVERIFY(fixture.progressTexts().contains(u"Extracting Subtitle Track=50%"_s));
    }

    void onlyPercentagesOfItsOwnStepAreShown()
    {
        SendingFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = fixture.begin({subtitle()});
        QObject other;
        fixture.post(u"monitorSendToLintwickUpdate"_s, u"45%"_s, &other);
        fixture.post(u"monitorSendToLintwickUpdate"_s, u"no number"_s, fixture.step());
        fixture.post(u"monitorExtractionUpdate"_s, u"45%"_s, fixture.step());
        QCOMPARE(job->progressList().first().progress, u"0%"_s);
        fixture.post(u"monitorSendToLintwickUpdate"_s, u"45%"_s, fixture.step());
        QCOMPARE(job->progressList().first().progress, u"45%"_s);
    }

    void theEndOfAnotherStepSendsNothing()
    {
        SendingFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = fixture.begin({subtitle()});
        QObject other;
        fixture.post(u"taskCompletion"_s, u"Complete"_s, &other);
        QCOMPARE(job->progressList().first().progress, u"0%"_s);
        QVERIFY(fixture.asked().isEmpty());
        QVERIFY(!waitFor([&] { return fixture.record.count(u"jobDone"_s) > 0; }, 150));
    }
};

TESSARAY_TEST(KXSendToLintwickJobTest)
#include "KXSendToLintwickJobTest.moc"

#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/ConversionFixture.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// Answers its polls from a script, then "Complete".
class AnsweringConverter final : public KXFfmpegConverter
{
public:
    AnsweringConverter(const steps::ConverterContext &context, const QStringList &answers)
        : KXFfmpegConverter(context)
        , m_answers(answers)
    {
        setStepName(u"Step"_s);
    }

    QString monitorConversion() override
    {
        ++polls;
        return m_answers.isEmpty() ? u"Complete"_s : m_answers.takeFirst();
    }

    std::atomic_int polls = 0;

private:
    QStringList m_answers;
};

/// A job that polls the given converters instead of its own. Tools that it starts run on, so that only
/// the polls decide.
class Polling final : public ConversionFixture
{
public:
    Polling()
        : ConversionFixture({u"hang"_s})
        , guard(base.outputs, steps::WhenTaken::NextFreeName)
    {
        make(u"General"_s, {videoTrack()});
    }

    ~Polling()
    {
        if (!job)
            return;
        job->stopJob();
        waitFor([&] { return job->monitorQueue()->activeThreadCount() == 0; });
    }
    Q_DISABLE_COPY_MOVE(Polling)

    std::shared_ptr<AnsweringConverter> answering(const QStringList &answers)
    {
        const auto converter = std::make_shared<AnsweringConverter>(base.converterContext(guard), answers);
        converter->setConverterSelection(job->jobSelection());
        converter->setOptionArray1({u"first"});
        converter->setOptionArray2({u"second"});
        converter->setOutputFileURL(url(u"a.m4v"_s));
        converter->setLogFileURL(url(u"a.log"_s));
        return converter;
    }

    /// The lists of progress items as the polls announced them.
    QStringList poll(const QList<ConverterPointer> &converters)
    {
        job->setStepConverterList(converters);
        job->monitorStartJob();
        waitForEnd();
        return progressTexts();
    }

    steps::OutputGuard guard;
};

} // namespace

/// The polling monitor is not started by the job itself; started by a caller, it does this.
class ConversionPollingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAnswerHasItsItem_data()
    {
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<QStringList>("texts");
        const QString complete = u"Step=Complete"_s;
        const auto row = [&](const char *name, const QStringList &answers, const QStringList &texts) {
            QTest::newRow(name) << answers << QStringList(texts + QStringList{complete});
        };
        row("complete at once", {}, {});
        row("percent", {u"45%"_s}, {u"Step=45%"_s});
        row("fonts", {u"no fontconfig 1"_s}, {u"Fontconfig Cache=Rebuilding"_s});
        row("fonts, blinking", {u"no fontconfig 2"_s}, {u"Fontconfig Cache="_s});
        row("index", {u"Moving MOOV Atom 1"_s}, {u"MOOV Atom=Moving"_s});
        row("index, blinking", {u"Moving MOOV Atom 2"_s}, {u"MOOV Atom="_s});
        row("any other text", {u"whatever"_s}, {u"Step=whatever"_s});
        row("error after a percentage", {u"45%"_s, u"error"_s, u"46%"_s}, {u"Step=45%"_s, u"Step=46%"_s});
        row("error at first", {u"error"_s}, {u"Step=0%"_s}); // the fresh list's item
    }

    void everyAnswerHasItsItem()
    {
        QFETCH(QStringList, answers);
        QFETCH(QStringList, texts);
        Polling fixture;
        const auto converter = fixture.answering(answers);
        QCOMPARE(fixture.poll({converter}), texts);
        QCOMPARE(converter->polls.load(), static_cast<int>(answers.size()) + 1);
        QCOMPARE(fixture.record.count(u"jobDone"_s), 1);
        QVERIFY(fixture.base.alerts.shown().isEmpty());
    }

    void passOneCompleteStartsPassTwo()
    {
        Polling fixture;
        const auto converter = fixture.answering({u"Pass 1 Complete"_s, u"50%"_s});
        const auto texts = fixture.poll({converter});
        QCOMPARE(texts, QStringList({u"Step=Pass 1 Complete"_s, u"Step=50%"_s, u"Step=Complete"_s}));
        QCOMPARE(converter->currentPass(), 2);
        QVERIFY(waitFor([&] { return fixture.calls().size() == 1; }));
        QCOMPARE(fixture.calls().first(), QStringList{u"second"_s});
    }

    void aTimestampErrorStartsARetryAndShowsNothing()
    {
        Polling fixture;
        const auto converter = fixture.answering({u"45%"_s, u"timestamp error"_s, u"50%"_s});
        QCOMPARE(fixture.poll({converter}),
                 QStringList({u"Step=45%"_s, QString(), u"Step=50%"_s, u"Step=Complete"_s}));
        QVERIFY(waitFor([&] { return fixture.calls().size() == 1; }));
        QCOMPARE(fixture.calls().first(), QStringList({u"-fflags"_s, u"genpts"_s, u"first"_s}));
    }

    /// "error" takes the item of its position in the last cycle; without one, an empty text.
    void anErrorBehindAnEmptyCycle()
    {
        Polling fixture;
        const auto converter = fixture.answering({u"timestamp error"_s, u"error"_s});
        QCOMPARE(fixture.poll({converter}), QStringList({QString(), u"Step="_s, u"Step=Complete"_s}));
    }

    /// A step with nothing to do counts as finished and shows nothing.
    void aStepWithNothingToDo()
    {
        Polling fixture;
        const auto converter = fixture.answering({u"45%"_s});
        QCOMPARE(fixture.poll({nullptr, converter, nullptr}),
                 QStringList({u"Step=45%"_s, u"Step=Complete"_s}));
        Polling empty;
        empty.poll({nullptr});
        QCOMPARE(empty.record.count(u"jobDone"_s), 1);
    }

    void itEndsWhenEveryStepHasEnded()
    {
        Polling fixture;
        const auto slow = fixture.answering({u"10%"_s, u"20%"_s});
        const auto quick = fixture.answering({});
        QCOMPARE(fixture.poll({quick, slow}),
                 QStringList({u"Step=Complete,Step=10%"_s, u"Step=Complete,Step=20%"_s,
                              u"Step=Complete,Step=Complete"_s}));
    }

    void theListIsSetBeforeItIsAnnounced()
    {
        Polling fixture;
        jobs::ProgressList set;
        const auto subscription = fixture.base.notifications.subscribe(
            u"progressUpdate"_s, [&](const KXNotification &) { set = fixture.job->progressList(); });
        fixture.job->setStepConverterList({fixture.answering({u"45%"_s})});
        fixture.job->monitorStartJob();
        QVERIFY(waitFor([&] { return !set.isEmpty(); }));
        QCOMPARE(set, jobs::ProgressList({{u"Step"_s, u"45%"_s}}));
        QVERIFY(fixture.waitForEnd());
    }

    void aStopEndsItWithoutACheck()
    {
        Polling fixture;
        const auto converter = fixture.answering(QStringList(1000, u"45%"_s));
        converter->setConversionError(true);
        fixture.job->setStepConverterList({converter});
        fixture.job->monitorStartJob();
        QVERIFY(waitFor([&] { return converter->polls > 0; }));
        fixture.job->stopJob();
        QVERIFY(fixture.job->monitorQueue()->waitForDone(support::patience));
        const int polls = converter->polls;
        QVERIFY(!waitFor([&] { return converter->polls > polls; }, 700));
        QVERIFY(fixture.base.alerts.shown().isEmpty());
        QCOMPARE(fixture.record.count(u"jobDone"_s), 0);
    }

    // The check at the end.

    void aFailedConversionIsAnAlert()
    {
        Polling fixture;
        const auto converter = fixture.answering({});
        converter->setConversionError(true);
        fixture.job->setStepConverterList({nullptr, fixture.answering({}), converter, converter});
        fixture.job->setProgressList({{u"Step"_s, u"Complete"_s}});
        QElapsedTimer clock;
        clock.start();
        fixture.job->errorCheck();
        QCOMPARE(fixture.base.alerts.shown().size(), 1);
        const auto alert = fixture.base.alerts.shown().first();
        QCOMPARE(alert->message, u"An error occured during the processing of this video."_s); // spelled so
        QCOMPARE(alert->informativeText, u"Check the created log file for error messages."_s);
        QCOMPARE(alert->style, platform::AlertStyle::Warning);
        QCOMPARE(fixture.progressTexts(), QStringList{u"Step=Complete"_s});
        QCOMPARE(fixture.record.count(u"jobDone"_s), 0);
        QVERIFY(fixture.waitForEnd());
        QVERIFY(clock.elapsed() >= 95);
        QVERIFY(fixture.base.alerts.answer(platform::firstButtonReturn)); // and nothing more
        QCOMPARE(fixture.record.count(u"jobDone"_s), 1);
    }

    void theAlertMayOutliveTheJob()
    {
        Polling fixture;
        const auto converter = fixture.answering({});
        converter->setConversionError(true);
        fixture.job->setStepConverterList({converter});
        fixture.job->errorCheck();
        QVERIFY(fixture.waitForEnd());
        fixture.job.reset();
        QVERIFY(fixture.base.alerts.answer(platform::firstButtonReturn));
    }

    void aConverterOfAnotherKindIsNotAsked()
    {
        Polling fixture;
        const auto converter = fixture.answering({});
        converter->setConversionError(true);
        converter->setConverterName(u"another"_s);
        fixture.job->setStepConverterList({converter});
        fixture.job->errorCheck();
        QVERIFY(fixture.base.alerts.shown().isEmpty());
        QCOMPARE(fixture.record.count(u"jobDone"_s), 1);
    }

    void withoutConvertersTheJobIsDone()
    {
        Polling fixture;
        fixture.job->setStepConverterList({});
        fixture.job->errorCheck();
        QCOMPARE(fixture.record.count(u"jobDone"_s), 1);
    }
};

TESSARAY_TEST(ConversionPollingTest)
#include "ConversionPollingTest.moc"

#include "support/ConversionBench.h"
#include "support/HandMade.h"
#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// Answers its polls from a script, then "Complete".
class Answering final : public KXFfmpegConverter
{
public:
    Answering(const step::ConverterContext &context, const QStringList &answers)
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
class Polling final : public ConversionBench
{
public:
    Polling()
        : ConversionBench({u"hang"_s})
        , guard(world.outputs, step::WhenTaken::NextFreeName)
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

    std::shared_ptr<Answering> answering(const QStringList &answers)
    {
        const auto converter = std::make_shared<Answering>(world.converterContext(guard), answers);
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

    step::OutputGuard guard;
};

} // namespace

/// The polling monitor is not started by the job itself; whoever starts it gets this.
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
        Polling bench;
        const auto converter = bench.answering(answers);
        QCOMPARE(bench.poll({converter}), texts);
        QCOMPARE(converter->polls.load(), static_cast<int>(answers.size()) + 1);
        QCOMPARE(bench.record.count(u"jobDone"_s), 1);
        QVERIFY(bench.world.alerts.shown().isEmpty());
    }

    void passOneCompleteStartsPassTwo()
    {
        Polling bench;
        const auto converter = bench.answering({u"Pass 1 Complete"_s, u"50%"_s});
        const auto texts = bench.poll({converter});
        QCOMPARE(texts, QStringList({u"Step=Pass 1 Complete"_s, u"Step=50%"_s, u"Step=Complete"_s}));
        QCOMPARE(converter->currentPass(), 2);
        QVERIFY(waitFor([&] { return bench.calls().size() == 1; }));
        QCOMPARE(bench.calls().first(), QStringList{u"second"_s});
    }

    void aTimestampErrorStartsARetryAndShowsNothing()
    {
        Polling bench;
        const auto converter = bench.answering({u"45%"_s, u"timestamp error"_s, u"50%"_s});
        QCOMPARE(bench.poll({converter}),
                 QStringList({u"Step=45%"_s, QString(), u"Step=50%"_s, u"Step=Complete"_s}));
        QVERIFY(waitFor([&] { return bench.calls().size() == 1; }));
        QCOMPARE(bench.calls().first(), QStringList({u"-fflags"_s, u"genpts"_s, u"first"_s}));
    }

    /// "error" takes the item of its position in the last cycle; without one, an empty text.
    void anErrorBehindAnEmptyCycle()
    {
        Polling bench;
        const auto converter = bench.answering({u"timestamp error"_s, u"error"_s});
        QCOMPARE(bench.poll({converter}), QStringList({QString(), u"Step="_s, u"Step=Complete"_s}));
    }

    /// A step with nothing to do counts as finished and shows nothing.
    void aStepWithNothingToDo()
    {
        Polling bench;
        const auto converter = bench.answering({u"45%"_s});
        QCOMPARE(bench.poll({nullptr, converter, nullptr}), QStringList({u"Step=45%"_s, u"Step=Complete"_s}));
        Polling empty;
        empty.poll({nullptr});
        QCOMPARE(empty.record.count(u"jobDone"_s), 1);
    }

    void itEndsWhenEveryStepHasEnded()
    {
        Polling bench;
        const auto slow = bench.answering({u"10%"_s, u"20%"_s});
        const auto quick = bench.answering({});
        QCOMPARE(bench.poll({quick, slow}),
                 QStringList({u"Step=Complete,Step=10%"_s, u"Step=Complete,Step=20%"_s,
                              u"Step=Complete,Step=Complete"_s}));
    }

    void theListIsSetBeforeItIsAnnounced()
    {
        Polling bench;
        jobs::ProgressList set;
        const auto subscription = bench.world.notifications.subscribe(
            u"progressUpdate"_s, [&](const KXNotification &) { set = bench.job->progressList(); });
        bench.job->setStepConverterList({bench.answering({u"45%"_s})});
        bench.job->monitorStartJob();
        QVERIFY(waitFor([&] { return !set.isEmpty(); }));
        QCOMPARE(set, jobs::ProgressList({{u"Step"_s, u"45%"_s}}));
        QVERIFY(bench.waitForEnd());
    }

    void halfASecondBetweenTwoPolls()
    {
        Polling bench;
        QElapsedTimer clock;
        clock.start();
        bench.poll({bench.answering({u"1%"_s, u"2%"_s})});
        QVERIFY2(clock.elapsed() >= 1000, qPrintable(QString::number(clock.elapsed())));
    }

    void aStopEndsItWithoutACheck()
    {
        Polling bench;
        const auto converter = bench.answering(QStringList(1000, u"45%"_s));
        converter->setConversionError(true);
        bench.job->setStepConverterList({converter});
        bench.job->monitorStartJob();
        QVERIFY(waitFor([&] { return converter->polls > 0; }));
        bench.job->stopJob();
        QVERIFY(bench.job->monitorQueue()->waitForDone(2000));
        const int polls = converter->polls;
        QVERIFY(!waitFor([&] { return converter->polls > polls; }, 700));
        QVERIFY(bench.world.alerts.shown().isEmpty());
        QCOMPARE(bench.record.count(u"jobDone"_s), 0);
    }

    // The check at the end.

    void aFailedConversionIsAnAlert()
    {
        Polling bench;
        const auto converter = bench.answering({});
        converter->setConversionError(true);
        bench.job->setStepConverterList({nullptr, bench.answering({}), converter, converter});
        bench.job->setProgressList({{u"Step"_s, u"Complete"_s}});
        QElapsedTimer clock;
        clock.start();
        bench.job->errorCheck();
        QCOMPARE(bench.world.alerts.shown().size(), 1);
        const auto alert = bench.world.alerts.shown().first();
        QCOMPARE(alert->message, u"An error occured during the processing of this video."_s); // spelled so
        QCOMPARE(alert->informativeText, u"Check the created log file for error messages."_s);
        QCOMPARE(alert->style, platform::AlertStyle::Warning);
        QCOMPARE(bench.progressTexts(), QStringList{u"Step=Complete"_s});
        QCOMPARE(bench.record.count(u"jobDone"_s), 0);
        QVERIFY(bench.waitForEnd());
        QVERIFY(clock.elapsed() >= 95);
        QVERIFY(bench.world.alerts.answer(platform::firstButtonReturn)); // and nothing more
        QCOMPARE(bench.record.count(u"jobDone"_s), 1);
    }

    void theAlertMayOutliveTheJob()
    {
        Polling bench;
        const auto converter = bench.answering({});
        converter->setConversionError(true);
        bench.job->setStepConverterList({converter});
        bench.job->errorCheck();
        QVERIFY(bench.waitForEnd());
        bench.job.reset();
        QVERIFY(bench.world.alerts.answer(platform::firstButtonReturn));
    }

    void aConverterOfAnotherKindIsNotAsked()
    {
        Polling bench;
        const auto converter = bench.answering({});
        converter->setConversionError(true);
        converter->setConverterName(u"another"_s);
        bench.job->setStepConverterList({converter});
        bench.job->errorCheck();
        QVERIFY(bench.world.alerts.shown().isEmpty());
        QCOMPARE(bench.record.count(u"jobDone"_s), 1);
    }

    void withoutConvertersTheJobIsDone()
    {
        Polling bench;
        bench.job->setStepConverterList({});
        bench.job->errorCheck();
        QCOMPARE(bench.record.count(u"jobDone"_s), 1);
    }
};

QTEST_GUILESS_MAIN(ConversionPollingTest)
#include "ConversionPollingTest.moc"

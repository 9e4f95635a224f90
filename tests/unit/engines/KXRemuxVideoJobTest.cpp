#include "engines/KXRemuxVideoJob.h"
#include "support/MkvBench.h"
#include "support/Waiting.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using step::Verdict;

namespace {

class RemuxBench final : public MkvBench
{
public:
    using MkvBench::MkvBench;

    std::shared_ptr<KXRemuxVideoJob> begin() { return start<KXRemuxVideoJob>(selection(u"MKV Remux"_s, {})); }
    void post(const QString &name, const QString &text, QObject *converter)
    {
        world.notifications.post(name, text,
                                 {{u"stepName"_s, u"Re-Muxing MKV"_s},
                                  {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }
    QObject *step() const { return job->stepConverterList().first().get(); }
};

} // namespace

class KXRemuxVideoJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itHasOneStep()
    {
        RemuxBench bench({u"hang"_s});
        const auto job = bench.begin();
        QCOMPARE(job->progressList(), jobs::ProgressList({{u"Re-Muxing MKV"_s, u"0%"_s}}));
        QCOMPARE(job->stepConverterList().size(), 1);
        QCOMPARE(job->stepTaskList().size(), 1);
        QVERIFY(std::holds_alternative<tools::ToolProcessPointer>(job->stepTaskList().first()));
        QCOMPARE(job->logFilesToDeleteList(), QList<QUrl>{bench.url(u"a.mkv.remuxing.log"_s)});
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
        QCOMPARE(bench.progressTexts(), QStringList{u"Re-Muxing MKV=0%"_s});
    }

    void fromZeroToDone()
    {
        RemuxBench bench({u"part out Progress: 45%\\r"_s, u"sleep 300"_s,
                          u"out Multiplexing took 0 seconds."_s, u"write 10 after:-o"_s});
        const auto job = bench.begin();
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.progressTexts(),
                 QStringList({u"Re-Muxing MKV=0%"_s, u"Re-Muxing MKV=45%"_s, u"Re-Muxing MKV=Complete"_s}));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(u"a.mkv.remux.mkv"_s)});
        QCOMPARE(bench.world.scratch.names().filter(u"a.mkv"_s),
                 QStringList({u"a.mkv"_s, u"a.mkv.remux.mkv"_s})); // the log is gone
    }

    void theSaveFolderIsThePreferences()
    {
        RemuxBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.world.setSaveFolder(bench.path(u"s"_s));
        const auto job = bench.begin();
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(u"s/a.mkv.remux.mkv"_s)});
    }

    void onlyPercentagesOfItsOwnStepAreShown()
    {
        RemuxBench bench({u"hang"_s});
        const auto job = bench.begin();
        QObject other;
        bench.post(u"monitorSplitUpdate"_s, u"45%"_s, &other);
        bench.post(u"monitorSplitUpdate"_s, u"no number"_s, bench.step());
        bench.post(u"monitorJoinUpdate"_s, u"45%"_s, bench.step());
        QCOMPARE(job->progressList().first().progress, u"0%"_s);
        bench.post(u"monitorSplitUpdate"_s, u"45%"_s, bench.step()); // the splitter's name: meant
        QCOMPARE(job->progressList().first().progress, u"45%"_s);
        bench.post(u"taskCompletion"_s, u"Complete"_s, &other);
        QCOMPARE(job->progressList().first().progress, u"45%"_s);
        bench.post(u"taskCompletion"_s, u"Pass 1 Complete"_s, bench.step());
        QVERIFY(!waitFor([&] { return bench.record.count(u"jobDone"_s) > 0; }, 100));
        bench.post(u"taskCompletion"_s, u"Complete"_s, bench.step());
        QCOMPARE(job->progressList().first().progress, u"Complete"_s);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.record.count(u"jobDone"_s), 1);
    }

    void aFailedToolIsCompleteAndItsMessageStaysInTheLog()
    {
        RemuxBench bench({u"out Error: The file is damaged."_s, u"exit 2"_s});
        const auto job = bench.begin();
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.progressTexts().last(), u"Re-Muxing MKV=Complete"_s);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"The file is damaged."_s),
                 qPrintable(job->outcome().sentence));
        QVERIFY(bench.world.scratch.read(u"a.mkv.remuxing.log"_s).contains("Error: The file is damaged."));
        QVERIFY(bench.world.alerts.shown().isEmpty());
    }

    void aWarningIsNoFailure()
    {
        RemuxBench bench(QStringList{u"out Warning: 'a.mkv' track 1: odd."_s} + MkvBench::wellMuxed() +
                         QStringList{u"exit 1"_s});
        const auto job = bench.begin();
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Warnings);
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(u"a.mkv.remux.mkv"_s)});
    }
};

QTEST_GUILESS_MAIN(KXRemuxVideoJobTest)
#include "KXRemuxVideoJobTest.moc"

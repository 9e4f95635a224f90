#include "engines/mkvtoolnix/KXRemuxVideoJob.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

class RemuxFixture final : public MkvFixture
{
public:
    using MkvFixture::MkvFixture;

    std::shared_ptr<KXRemuxVideoJob> begin() { return start<KXRemuxVideoJob>(selection(u"MKV Remux"_s, {})); }
    void post(const QString &name, const QString &text, QObject *converter)
    {
        base.notifications.post(name, text,
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
        RemuxFixture fixture({u"hang"_s});
        const auto job = fixture.begin();
        QCOMPARE(job->progressList(), jobs::ProgressList({{u"Re-Muxing MKV"_s, u"0%"_s}}));
        QCOMPARE(job->stepConverterList().size(), 1);
        QCOMPARE(job->stepTaskList().size(), 1);
        QVERIFY(std::holds_alternative<tools::ToolProcessPointer>(job->stepTaskList().first()));
        QCOMPARE(job->logFilesToDeleteList(), QList<QUrl>{fixture.url(u"a.mkv.remuxing.log"_s)});
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
        QCOMPARE(fixture.progressTexts(), QStringList{u"Re-Muxing MKV=0%"_s});
    }

    void fromZeroToDone()
    {
        RemuxFixture fixture;
        fixture.setScript(u"mkvtoolnix/mkvmerge"_s,
                          {u"part out Progress: 45%\\r"_s, u"await "_s + fixture.path(u"go"_s),
                           u"out Multiplexing took 0 seconds."_s, u"write 10 after:-o"_s});
        const auto job = fixture.begin();
        QVERIFY(waitFor([&] { return fixture.progressTexts().contains(u"Re-Muxing MKV=45%"_s); }));
        fixture.base.scratch.write(u"go"_s, {});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.progressTexts(),
                 QStringList({u"Re-Muxing MKV=0%"_s, u"Re-Muxing MKV=45%"_s, u"Re-Muxing MKV=Complete"_s}));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"a.mkv.remux.mkv"_s)});
        QCOMPARE(fixture.base.scratch.names().filter(u"a.mkv"_s),
                 QStringList({u"a.mkv"_s, u"a.mkv.remux.mkv"_s})); // the log is gone
    }

    void theSaveFolderIsThePreferences()
    {
        RemuxFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        const auto job = fixture.begin();
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"s/a.mkv.remux.mkv"_s)});
    }

    void onlyPercentagesOfItsOwnStepAreShown()
    {
        RemuxFixture fixture({u"hang"_s});
        const auto job = fixture.begin();
        QObject other;
        fixture.post(u"monitorSplitUpdate"_s, u"45%"_s, &other);
        fixture.post(u"monitorSplitUpdate"_s, u"no number"_s, fixture.step());
        fixture.post(u"monitorJoinUpdate"_s, u"45%"_s, fixture.step());
        QCOMPARE(job->progressList().first().progress, u"0%"_s);
        fixture.post(u"monitorSplitUpdate"_s, u"45%"_s, fixture.step()); // the splitter's name: meant
        QCOMPARE(job->progressList().first().progress, u"45%"_s);
        fixture.post(u"taskCompletion"_s, u"Complete"_s, &other);
        QCOMPARE(job->progressList().first().progress, u"45%"_s);
        fixture.post(u"taskCompletion"_s, u"Pass 1 Complete"_s, fixture.step());
        QVERIFY(!waitFor([&] { return fixture.record.count(u"jobDone"_s) > 0; }, 100));
        fixture.post(u"taskCompletion"_s, u"Complete"_s, fixture.step());
        QCOMPARE(job->progressList().first().progress, u"Complete"_s);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.record.count(u"jobDone"_s), 1);
    }

    void aFailedToolIsCompleteAndItsMessageStaysInTheLog()
    {
        RemuxFixture fixture({u"out Error: The file is damaged."_s, u"exit 2"_s});
        const auto job = fixture.begin();
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.progressTexts().last(), u"Re-Muxing MKV=Complete"_s);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"The file is damaged."_s),
                 qPrintable(job->outcome().sentence));
        QVERIFY(fixture.base.scratch.read(u"a.mkv.remuxing.log"_s).contains("Error: The file is damaged."));
        QVERIFY(fixture.base.alerts.shown().isEmpty());
    }

    void aWarningIsNoFailure()
    {
        RemuxFixture fixture(QStringList{u"out Warning: 'a.mkv' track 1: odd."_s} + MkvFixture::wellMuxed() +
                             QStringList{u"exit 1"_s});
        const auto job = fixture.begin();
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Warnings);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"a.mkv.remux.mkv"_s)});
    }
};

TESSARAY_TEST(KXRemuxVideoJobTest)
#include "KXRemuxVideoJobTest.moc"

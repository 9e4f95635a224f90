// What a job leaves behind when it ends by itself, and what it says about it.
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using steps::Outcome;
using steps::Verdict;
using support::JobFixture;
using support::NotificationRecord;
using support::TestConverterPointer;

namespace {

/// A job whose steps' tools write outputs of some bytes and say a word.
struct Job
{
    explicit Job(steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName)
        : job(support::makeTestJob(fixture.jobContext(whenTaken)))
    {
        fixture.setKeepLogs(false);
        fixture.scratch.write(u"film.mkv"_s, "film");
        job->initJobWithSelectionAndPreferences(fixture.selectionFor(path(u"film.mkv"_s)),
                                                fixture.preferences);
    }

    QString path(const QString &name) const { return fixture.scratch.path(name); }
    bool exists(const QString &name) const { return QFileInfo::exists(path(name)); }
    QUrl tool(int bytes, int status = 0)
    {
        QStringList script{u"out words"_s};
        if (bytes >= 0)
            script.append(u"write %1 last"_s.arg(bytes));
        script.append(u"exit %1"_s.arg(status));
        return fixture.installTool(u"tool%1_%2"_s.arg(bytes).arg(status), script);
    }
    TestConverterPointer run(const QString &output, int bytes = 5, int status = 0)
    {
        return job->runStep(output, fixture.scratch.url(output), tool(bytes, status));
    }
    bool ends()
    {
        return support::waitFor([this] { return job->hasEnded(); });
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    support::TestJobPointer job;
    NotificationRecord record{fixture.notifications, {u"progressUpdate"_s, u"jobDone"_s}};
};

QString lastLine(const QByteArray &log)
{
    const QStringList lines = QString::fromUtf8(log).split(u'\n', Qt::SkipEmptyParts);
    return lines.isEmpty() ? QString() : lines.last();
}

} // namespace

class KXJobEndTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logsAndTemporaryFilesGoOrStayTogether_data()
    {
        QTest::addColumn<bool>("keepsLogs");
        QTest::newRow("logs are kept") << true;
        QTest::newRow("logs are not kept") << false;
    }

    void logsAndTemporaryFilesGoOrStayTogether() // the coupling is meant
    {
        QFETCH(bool, keepsLogs);
        Job job;
        job.fixture.setKeepLogs(keepsLogs);
        job.run(u"out.m4v"_s);
        const QUrl temporary = job.job->guard().claimFree(job.fixture.scratch.url(u"it's a temp.ass"_s));
        QVERIFY(job.job->guard().files().create(temporary, "x"));
        job.job->setTempFilesToDeleteList({temporary, job.fixture.scratch.url(u"never made.ass"_s)});
        QVERIFY(job.ends());
        QCOMPARE(job.exists(u"out.m4v.log"_s), keepsLogs);
        QCOMPARE(job.exists(u"it's a temp.ass"_s), keepsLogs);
        QVERIFY(job.exists(u"out.m4v"_s));
        QVERIFY(job.exists(u"film.mkv"_s));
    }

    void temporaryFolderIsGoneWhateverIsKept()
    {
        Job job;
        job.fixture.setKeepLogs(true);
        const QString folder = job.job->temporaryFolder();
        QVERIFY(folder.endsWith(u'/') && QFileInfo(folder).isDir());
        QCOMPARE(job.job->temporaryFolder(), folder);
        job.job->jobDone();
        QVERIFY(!QFileInfo::exists(folder));
    }

    void temporaryFolderGoesWithAJobThatNeverRan()
    {
        Job job;
        const QString folder = job.job->temporaryFolder();
        job.job.reset();
        QVERIFY(!QFileInfo::exists(folder));
    }

    void inputsAreNeverDeleted()
    {
        Job job;
        QVERIFY(QFile::link(job.path(u"film.mkv"_s), job.path(u"link.mkv"_s)));
        const QList<QUrl> inputs{job.fixture.scratch.url(u"film.mkv"_s),
                                 job.fixture.scratch.url(u"link.mkv"_s), QUrl()};
        job.job->setTempFilesToDeleteList(inputs);
        job.job->setLogFilesToDeleteList(inputs);
        job.job->jobDone();
        QCOMPARE(job.fixture.scratch.read(u"film.mkv"_s), QByteArray("film")); // no outcome in it either
        QVERIFY(job.exists(u"link.mkv"_s));
    }

    void endIsAnnouncedOnceWithAnEmptyList()
    {
        Job job;
        QSignalSpy changed(job.job.get(), &KXJob::outcomeChanged);
        job.job->setProgressList({{u"one"_s, u"Complete"_s}});
        job.job->jobDone();
        job.job->jobDone();
        QCOMPARE(job.record.count(u"jobDone"_s), 1);
        const KXNotification done = job.record.named(u"jobDone"_s).first();
        QVERIFY(done.object.value<jobs::ProgressList>().isEmpty());
        QCOMPARE(done.userInfo.value(u"theJob"_s).value<QObject *>(), job.job.get());
        QVERIFY(job.job->progressList().isEmpty());
        QCOMPARE(changed.size(), 1);
        job.fixture.notifications.post(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(job.job->heard, 0);
    }

    void outcomeIsKnownWhenTheEndIsAnnounced()
    {
        Job job;
        Verdict seen = Verdict::Unknown;
        const auto subscription = job.fixture.notifications.subscribe(
            u"jobDone"_s, [&](const KXNotification &) { seen = job.job->outcome().verdict; });
        job.job->jobDone();
        QCOMPARE(seen, Verdict::Ok);
    }

    void outcomeIsTheLastLineOfEveryLog()
    {
        Job job;
        job.fixture.setKeepLogs(true);
        job.run(u"a.m4v"_s);
        job.run(u"b.m4v"_s)->judged = Outcome::warnings(u"The end is missing."_s);
        QVERIFY(job.ends());
        for (const auto &log : {u"a.m4v.log"_s, u"b.m4v.log"_s}) {
            const QByteArray text = job.fixture.scratch.read(log);
            QCOMPARE(lastLine(text), u"Tessaray: warnings: The end is missing."_s);
            QVERIFY(text.contains("\nwords\n"));
            QVERIFY(text.endsWith('\n'));
        }
    }

    void aKeptLogBeginsWithWhatRan()
    {
        Job job;
        job.fixture.setKeepLogs(true);
        job.run(u"it's a film.m4v"_s);
        QVERIFY(job.ends());
        const QStringList lines =
            QString::fromUtf8(job.fixture.scratch.read(u"it's a film.m4v.log"_s)).split(u'\n');
        const QString tool = job.tool(5).toLocalFile();
        QCOMPARE(lines.at(0), u"Tessaray: meant: %1 '%2'"_s.arg(tool, job.path(u"it'\\''s a film.m4v"_s)));
        static const QRegularExpression aside(
            u"^Tessaray: launched: [^ ]+ [^ ]+/\\.tessaray-[a-z0-9]{6}/1\\.m4v$"_s);
        QVERIFY2(aside.match(lines.at(1)).hasMatch(), qPrintable(lines.at(1)));
        QCOMPARE(lines.at(2), u"words"_s);
    }

    void goodOutcomeIsOneWord()
    {
        Job job;
        job.fixture.setKeepLogs(true);
        job.run(u"a.m4v"_s);
        QVERIFY(job.ends());
        QCOMPARE(lastLine(job.fixture.scratch.read(u"a.m4v.log"_s)), u"Tessaray: ok"_s);
    }

    void logThatWasNeverWrittenIsNotMade()
    {
        Job job;
        job.fixture.setKeepLogs(true);
        job.job->setLogFilesToDeleteList({job.fixture.scratch.url(u"never.log"_s)});
        job.job->jobDone();
        QVERIFY(!job.exists(u"never.log"_s));
    }

    void outcomesOfAllStepsAreJoined()
    {
        Job job;
        job.run(u"a.m4v"_s)->judged = Outcome::warnings(u"One."_s);
        job.run(u"b.m4v"_s);
        job.job->addOutcome(Outcome::warnings(u"Before."_s));
        QVERIFY(job.ends());
        QCOMPARE(job.job->outcome().verdict, Verdict::Warnings);
        QCOMPARE(job.job->outcome().sentence, u"Before. One."_s);
    }

    void jobWithoutStepsIsWell()
    {
        Job job;
        job.job->jobDone();
        QCOMPARE(job.job->outcome().verdict, Verdict::Ok);
        QVERIFY(job.job->outcome().sentence.isEmpty());
    }

    void outputsAreTheGoodOnesThatTheUserWanted()
    {
        Job job;
        job.run(u"a.m4v"_s);
        job.run(u"b.m4v"_s, 5, 1);
        job.run(u"temp.ac3"_s)->setIsTemporaryOutput(true);
        job.run(u"c.m4v"_s)->judged = Outcome::warnings(u"Short."_s);
        QVERIFY(job.ends());
        const QList<QUrl> expected{job.fixture.scratch.url(u"a.m4v"_s), job.fixture.scratch.url(u"c.m4v"_s)};
        QCOMPARE(job.job->outputs(), expected);
    }

    void logOfAFailedStepIsKeptAndNamed()
    {
        Job job;
        job.run(u"good.m4v"_s);
        job.run(u"bad.m4v"_s, 5, 1);
        QVERIFY(job.ends());
        QCOMPARE(job.job->outcome().verdict, Verdict::Failed);
        QVERIFY(job.exists(u"bad.m4v.log"_s));
        QVERIFY(!job.exists(u"good.m4v.log"_s));
        const QString named = u"The log is %1."_s.arg(job.path(u"bad.m4v.log"_s));
        QVERIFY2(job.job->outcome().sentence.contains(named), qPrintable(job.job->outcome().sentence));
        QCOMPARE(lastLine(job.fixture.scratch.read(u"bad.m4v.log"_s)),
                 u"Tessaray: failed: "_s + job.job->outcome().sentence);
    }

    void emptyOutputOfAFailedStepGoes()
    {
        Job job;
        job.run(u"bad.m4v"_s, 0, 1);
        QVERIFY(job.ends());
        QVERIFY(!job.exists(u"bad.m4v"_s));
        QVERIFY(!job.job->outcome().sentence.contains(u"incomplete"_s));
    }

    void anyOtherOutputOfAFailedStepStaysAndIsNamed()
    {
        Job job;
        job.run(u"bad.m4v"_s, 1, 1);
        QVERIFY(job.ends());
        QVERIFY(!job.exists(u"bad.m4v"_s));
        QVERIFY(job.exists(u"bad (incomplete).m4v"_s));
        const QString named =
            u"The incomplete output %1 was kept."_s.arg(job.path(u"bad (incomplete).m4v"_s));
        QVERIFY(job.job->outcome().sentence.contains(named));
    }

    void ofSeveralFailedStepsTheLargestOutputStays()
    {
        Job job;
        job.run(u"small.m4v"_s, 5, 1);
        job.run(u"large.m4v"_s, 50, 1);
        job.run(u"good.m4v"_s, 500);
        QVERIFY(job.ends());
        QVERIFY(job.exists(u"large (incomplete).m4v"_s) && job.exists(u"good.m4v"_s));
        QVERIFY(!job.exists(u"small (incomplete).m4v"_s));
        QCOMPARE(job.fixture.scratch.names().filter(u".tessaray"_s), QStringList());
    }

    void intermediateOutputOfAFailedStepIsNotCalledKept()
    {
        Job job;
        const auto converter = job.run(u"temp.ac3"_s, 5, 1);
        converter->setIsTemporaryOutput(true);
        job.job->setTempFilesToDeleteList({converter->outputFileURL()});
        QVERIFY(job.ends());
        QVERIFY(!job.exists(u"temp.ac3"_s));
        QVERIFY(!job.job->outcome().sentence.contains(u"was kept"_s));
    }

    void refusedOutputIsLeftAlone()
    {
        Job job(steps::WhenTaken::Refuse);
        job.fixture.scratch.write(u"old.m4v"_s, "");
        const auto converter = job.run(u"old.m4v"_s);
        QVERIFY(!converter->converterTask());
        job.job->endIfNothingRuns();
        QVERIFY(job.ends());
        QVERIFY(job.exists(u"old.m4v"_s));
        QCOMPARE(job.job->outcome().verdict, Verdict::Failed);
        QCOMPARE(job.job->outcome().sentence, converter->refusal());
    }

    void emptyFileUnderARefusedNameIsLeftAloneEvenIfTheStepRanBefore()
    {
        Job job(steps::WhenTaken::Refuse);
        job.fixture.scratch.write(u"old.m4v"_s, "");
        const auto converter = job.run(u"new.m4v"_s, 5, 1);
        QVERIFY(!converter->claimOutput(job.fixture.scratch.url(u"old.m4v"_s)));
        QVERIFY(job.ends());
        QVERIFY(job.exists(u"old.m4v"_s));
    }

    void replacedFileReturnsWhenTheJobFails()
    {
        Job job(steps::WhenTaken::Replace);
        job.fixture.scratch.write(u"a.m4v"_s, "old");
        job.run(u"a.m4v"_s, 5, 1);
        QVERIFY(job.ends());
        QCOMPARE(job.fixture.scratch.read(u"a.m4v"_s), QByteArray("old"));
        QCOMPARE(job.fixture.scratch.read(u"a (incomplete).m4v"_s), QByteArray("wwwww"));
        const QString sentence = job.job->outcome().sentence;
        QVERIFY(sentence.contains(
            u"The incomplete output %1 was kept."_s.arg(job.path(u"a (incomplete).m4v"_s))));
        QVERIFY(sentence.contains(u"The log is %1."_s.arg(job.path(u"a.m4v.log"_s))));
        QVERIFY(job.exists(u"a.m4v.log"_s));
    }

    void replacedFileGoesWhenTheJobEndsWell()
    {
        Job job(steps::WhenTaken::Replace);
        job.fixture.scratch.write(u"a.m4v"_s, "old");
        job.run(u"a.m4v"_s)->judged = Outcome::warnings(u"Short."_s);
        QVERIFY(job.ends());
        QCOMPARE(job.fixture.scratch.read(u"a.m4v"_s), QByteArray("wwwww"));
        QVERIFY(!job.exists(u"a (replaced).m4v"_s));
        QVERIFY(!job.exists(u"a (incomplete).m4v"_s));
    }

    void namesAreFreeForOthersAfterTheEnd()
    {
        Job job;
        const auto converter = job.run(u"a.m4v"_s);
        QVERIFY(job.fixture.outputs.isTaken(converter->outputFileURL(), nullptr));
        QVERIFY(job.ends());
        QVERIFY(!job.fixture.outputs.isTaken(converter->outputFileURL(), nullptr));
        QVERIFY(!job.fixture.outputs.isTaken(job.fixture.scratch.url(u"film.mkv"_s), nullptr));
    }

    void almostFullVolumeIsTold_data()
    {
        QTest::addColumn<qint64>("free");
        QTest::addColumn<bool>("isTold");
        QTest::newRow("999,999 bytes") << qint64(999'999) << true;
        QTest::newRow("1,000,000 bytes") << qint64(1'000'000) << false;
        QTest::newRow("nothing") << qint64(0) << true;
    }

    void almostFullVolumeIsTold()
    {
        QFETCH(qint64, free);
        QFETCH(bool, isTold);
        Job job;
        job.fixture.volumes.setFree(free);
        job.job->jobDone();
        QCOMPARE(job.fixture.alerts.shown().size(), isTold ? 1 : 0);
        QCOMPARE(job.record.count(u"jobDone"_s), 1);
        if (!isTold)
            return;
        const auto alert = job.fixture.alerts.shown().first();
        QCOMPARE(alert->message, u"It appears that your save volume is almost out of free space."_s);
        QCOMPARE(alert->informativeText, u"The output of the just finished job may not be complete."_s);
        QCOMPARE(alert->style, platform::AlertStyle::Plain);
        QCOMPARE(alert->closesAfter, std::chrono::milliseconds(10000));
    }

    void volumeThatCannotBeReadIsPassedOver()
    {
        Job job;
        job.fixture.volumes.setFree(std::nullopt);
        job.job->jobDone();
        QVERIFY(job.fixture.alerts.shown().isEmpty());
    }

    void volumeOfTheSaveFolderIsAsked()
    {
        Job job;
        job.job->jobDone();
        QCOMPARE(job.fixture.volumes.asked(), QList<QUrl>{QUrl::fromLocalFile(job.fixture.scratch.path())});
        Job saved;
        saved.fixture.setSaveFolder(u"/saved"_s);
        saved.job->jobDone();
        QCOMPARE(saved.fixture.volumes.asked(), QList<QUrl>{QUrl::fromLocalFile(u"/saved"_s)});
    }

    void alertClosesItselfAfterTenSeconds()
    {
        Job job;
        job.fixture.volumes.setFree(0);
        QElapsedTimer clock;
        clock.start();
        job.job->jobDone();
        const auto &alerts = job.fixture.alerts;
        QVERIFY(support::waitFor([&] { return !alerts.closed().isEmpty(); }));
        QVERIFY2(clock.elapsed() >= 9500, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(alerts.closed().first(), alerts.shown().first());
        QCOMPARE(alerts.openCount(), 0);
    }

    void alertDoesNotKeepTheJob()
    {
        Job job;
        job.fixture.volumes.setFree(0);
        job.job->jobDone();
        const std::weak_ptr<KXJob> weak = job.job;
        job.job.reset();
        QVERIFY(weak.expired());
    }
};

TESSARAY_TEST(KXJobEndTest)
#include "KXJobEndTest.moc"

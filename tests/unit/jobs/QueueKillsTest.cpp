// A program with a stored queue that is killed at any moment, again and again: no job is lost, none is done
// twice.
#include "jobs/KXQueueController.h"
#include "jobs/StoredQueue.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSet>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using support::JobFixture;
using support::Scratch;
using support::TestJob;

namespace {

constexpr int jobsOfARound = 6;
constexpr int longestDelay = 40; // milliseconds from a line that was said to the kill

QString filmOf(int number)
{
    return u"film%1"_s.arg(number);
}

/// What a kill leaves that hits the making of a claim: it holds nothing, and the next job that works there
/// after two seconds takes it away.
bool isHalfClaim(const QString &name)
{
    return name.startsWith(u".tessaray-claim-"_s) && name.size() > u".tessaray-claim-"_s.size() + 40;
}

void tell(const QString &line)
{
    std::puts(qPrintable(line));
    std::fflush(stdout);
}

bool isOver(const KXQueueController &queue)
{
    const QList<JobPointer> &list = queue.qJobList();
    return std::all_of(list.begin(), list.end(),
                       [](const JobPointer &job) { return job->jobStatus() == u"Completed"_s; });
}

/// Gives the queue all films that it does not have and that are not done, runs again what was interrupted,
/// and ends when all of it is done.
void work(KXQueueController &queue, const JobFixture &fixture, const QString &place)
{
    QStringList known;
    for (qsizetype row = queue.qJobList().size() - 1; row >= 0; --row) {
        const JobPointer job = queue.qJobList().at(row);
        known.append(job->jobFileName());
        tell(u"has "_s + job->jobFileName());
    }
    tell(u"open"_s);
    for (qsizetype row = queue.qJobList().size() - 1; row >= 0; --row) {
        if (queue.qJobList().at(row)->outcome().verdict == steps::Verdict::Interrupted)
            queue.runJobAgain(static_cast<int>(row));
    }
    for (int number = 0; number < jobsOfARound; ++number) {
        const QString film = filmOf(number);
        if (known.contains(film) || QFileInfo::exists(place + u"/out/"_s + film + u".m4v"_s))
            continue;
        queue.addToQueue(fixture.selectionFor(place + u'/' + film, u"MKV Conversion"_s));
        tell(u"added "_s + film);
    }
    queue.pauseQueueButton(u"Resume"_s);
}

int runQueueIn(const QString &place)
{
    JobFixture fixture(JobFixture::Tools::Fake);
    const QUrl tool = fixture.installTool(u"tool"_s, {u"sleep 3"_s, u"write 2000 last"_s});
    jobs::JobFactory factory;
    support::registerTestJob(factory, jobs::JobKind::Conversion, [&](TestJob &made) {
        made.onStart = [&](TestJob &self) {
            const QUrl output = QUrl::fromLocalFile(place + u"/out/"_s + self.jobFileName() + u".m4v"_s);
            fixture.notifications.post(u"conversionStarted"_s, output);
            self.runStep(u"Converting"_s, output, tool);
        };
    });
    KXQueueController queue(fixture.jobContext(), factory, nullptr);
    queue.initialize();
    jobs::StoredQueue stored(place + u"/queue"_s, queue);
    const QString problem = stored.open();
    if (!problem.isNull())
        tell(u"problem "_s + problem);
    QObject::connect(&queue, &KXQueueController::jobChanged, &queue, [&](int row) {
        const KXJob &job = *queue.qJobList().at(row);
        const QStringList words{job.jobFileName(), job.jobStatus(), job.outcome().word(),
                                job.outcome().sentence};
        tell(words.join(u' '));
    });
    work(queue, fixture, place);
    return support::waitFor([&] { return isOver(queue); }) ? 0 : 1;
}

/// One program, killed a while after a line that it says, or left to end.
struct Killed
{
    Killed(const QString &place, qsizetype lines, qsizetype delay)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TMPDIR"_s, place + u"/tmp"_s);
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), {u"--run-queue"_s, place});
        while (said.count('\n') < lines && process.waitForReadyRead(support::patience))
            said += process.readAllStandardOutput();
        if (lines < unlimited) {
            QThread::msleep(static_cast<unsigned long>(delay));
            process.kill();
        }
        process.waitForFinished(support::patience);
        said += process.readAllStandardOutput();
        endedWell = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
        said += process.readAllStandardError();
    }
    QStringList after(const QString &word) const
    {
        QStringList found;
        for (const QString &line : QString::fromUtf8(said).split(u'\n')) {
            if (line.startsWith(word + u' '))
                found.append(line.mid(word.size() + 1));
        }
        return found;
    }
    bool hasOpened() const { return said.contains("open\n"); }

    static constexpr qsizetype unlimited = 1'000'000;
    QByteArray said;
    bool endedWell = false;
};

/// A place for programs that are killed, and what is known to be stored there.
class Round
{
public:
    Round()
    {
        for (int number = 0; number < jobsOfARound; ++number)
            m_place.write(filmOf(number), "film");
        QDir().mkpath(m_place.path(u"out"_s));
        QDir().mkpath(m_place.path(u"tmp"_s));
    }

    /// Answers whether it came to its end by itself.
    bool run(qsizetype lines, qsizetype delay)
    {
        const Killed program(m_place.path(), lines, delay);
        m_said += u"--- killed\n"_s + QString::fromUtf8(program.said);
        const QStringList shown = program.after(u"has"_s);
        m_isWell = program.after(u"problem"_s).isEmpty() &&
                   QSet<QString>(shown.begin(), shown.end()).size() == shown.size();
        for (const QString &film : std::as_const(m_added)) // each is shown, or was done before
            m_isWell = m_isWell && (!program.hasOpened() || shown.contains(film) || m_done.contains(film));
        m_added += program.after(u"added"_s);
        m_done = QDir(m_place.path(u"out"_s)).entryList({u"*.m4v"_s}, QDir::Files);
        m_done.replaceInStrings(u".m4v"_s, QString());
        return program.endedWell;
    }
    bool isWell() const { return m_isWell; }
    const QString &said() const { return m_said; }
    QStringList outputs() const
    {
        return QDir(m_place.path(u"out"_s))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    QStringList records() const
    {
        return QDir(m_place.path(u"queue"_s)).entryList(QDir::Files | QDir::Hidden);
    }

private:
    Scratch m_place;
    QStringList m_added; ///< of which a program said so
    QStringList m_done;
    QString m_said; ///< by all programs
    bool m_isWell = true;
};

} // namespace

class QueueKillsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noJobIsLostAndNoneIsDoneTwice()
    {
        support::Chances chances(support::seed());
        int rounds = 0;
        for (int kills = support::times(200, 8); kills > 0; ++rounds) {
            Round round;
            while (kills > 0 && !round.run(chances.below(14), chances.below(longestDelay))) {
                --kills;
                QVERIFY2(round.isWell(), qPrintable(round.said()));
            }
            QVERIFY2(round.run(Killed::unlimited, 0), qPrintable(round.said()));
            QVERIFY2(round.isWell(), qPrintable(round.said()));
            QStringList expected;
            for (int number = 0; number < jobsOfARound; ++number)
                expected.append(filmOf(number) + u".m4v"_s);
            QStringList outputs = round.outputs();
            outputs.removeIf(
                [](const QString &name) { return name.endsWith(u".log"_s) || isHalfClaim(name); });
            QVERIFY2(outputs == expected, qPrintable(outputs.join(u' ') + u'\n' + round.said()));
            QCOMPARE(round.records(), QStringList());
        }
        qInfo("%d rounds of %d jobs", rounds, jobsOfARound);
    }
};

TESSARAY_TEST(QueueKillsTest)
TESSARAY_ROLE("--run-queue", runQueueIn(words.value(1)))
#include "QueueKillsTest.moc"

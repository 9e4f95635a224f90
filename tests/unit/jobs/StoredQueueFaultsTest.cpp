// Each call by which a change of the stored queue is written fails once, or is the program's end. No job that
// was there before is lost, none is there twice, and what could not be stored was told. The short form draws
// some of the calls, the long form takes each with each error.
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
#include <QTest>

#include <cerrno>
#include <cstdio>

using namespace Qt::StringLiterals;
using support::JobFixture;
using support::Scratch;

namespace {

constexpr int killed = 0; // in the place of an error

void sayLine(const QString &line)
{
    std::puts(qPrintable(line));
    std::fflush(stdout);
}

/// A program with the queue that is stored in that place.
struct Keeping
{
    explicit Keeping(const QString &where)
        : place(where)
        , stored(where + u"/queue"_s, queue)
    {
        support::registerTestJob(factory, jobs::JobKind::Conversion);
        queue.initialize();
        QObject::connect(&stored, &jobs::StoredQueue::failed, &stored,
                         [](const QString &sentence) { sayLine(u"failed "_s + sentence); });
        problem = stored.open();
    }
    void add(const QString &film)
    {
        queue.addToQueue(fixture.selectionFor(place + u'/' + film, u"MKV Conversion"_s));
    }
    QStringList names() const
    {
        QStringList all;
        for (const JobPointer &job : queue.qJobList())
            all.append(job->jobFileName());
        return all;
    }

    QString place;
    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXQueueController queue{fixture.jobContext(), factory, nullptr};
    jobs::StoredQueue stored;
    QString problem;
};

/// A job is added, one is moved in front, one is taken away.
int changeQueueIn(const QString &place)
{
    Keeping program(place);
    if (!program.problem.isNull())
        sayLine(u"problem "_s + program.problem);
    if (!program.stored.isOpen())
        return 2;
    program.add(u"d"_s);
    sayLine(u"added"_s);
    program.queue.moveJob(2, 0);
    sayLine(u"moved"_s);
    program.queue.deleteJobRow(0, 1); // "a", behind "c"
    sayLine(u"removed"_s);
    return 0;
}

struct ChangeFault
{
    int call;
    int error;
};

} // namespace

class StoredQueueFaultsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aChangeMeetsAFault_data()
    {
        QTest::addColumn<int>("call");
        QTest::addColumn<int>("error");
        QList<ChangeFault> faults;
        const int calls = callsOfAChange();
        QVERIFY(calls > 5);
        for (int call = 1; call <= calls; ++call) {
            for (const int error : {ENOSPC, EIO, EACCES, killed})
                faults.append({call, error});
        }
        for (const ChangeFault &fault : support::drawn(faults, 24))
            QTest::addRow("call %d, error %d", fault.call, fault.error) << fault.call << fault.error;
    }

    void aChangeMeetsAFault()
    {
        QFETCH(int, call);
        QFETCH(int, error);
        const Scratch home;
        prepare(home);
        const QByteArray said = change(home, call, error);
        QVERIFY(QFileInfo::exists(home.path(u"met"_s)));
        Keeping next(home.path());
        const QStringList names = next.names();
        const QString where = QString::fromUtf8(said) + u" | "_s + names.join(u' ') + next.problem;
        QVERIFY2(next.problem.isNull(), qPrintable(where)); // nothing is damaged
        QVERIFY2(names.contains(u"b"_s) && names.contains(u"c"_s), qPrintable(where));
        QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), names.size());
        const bool isTold = said.contains("failed ") || said.contains("problem ");
        const bool isStored = names == QStringList{u"c"_s, u"b"_s, u"d"_s};
        QVERIFY2(isStored || isTold || error == killed, qPrintable(where));
        if (said.contains("added") && !isTold) // and so is what was done before a kill
            QVERIFY2(names.contains(u"d"_s), qPrintable(where));
        if (said.contains("removed") && !isTold)
            QVERIFY2(!names.contains(u"a"_s), qPrintable(where));
    }

private:
    static void prepare(const Scratch &home)
    {
        for (const auto &film : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
            home.write(film, "film");
        Keeping first(home.path());
        for (const auto &film : {u"a"_s, u"b"_s, u"c"_s})
            first.add(film);
    }

    static QByteArray change(const Scratch &home, int call, int error)
    {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"LD_PRELOAD"_s, QStringLiteral(TESSARAY_FAULT_LIBRARY));
        environment.insert(u"TESSARAY_FAULT"_s, u"%1 %2"_s.arg(call).arg(error));
        environment.insert(u"TESSARAY_FAULT_IN"_s, u"--change-queue "_s + home.path());
        environment.insert(u"TESSARAY_FAULT_MET"_s, home.path(u"met"_s));
        environment.insert(u"TESSARAY_FAULT_COUNT"_s, home.path(u"counted"_s));
        environment.insert(u"TESSARAY_FAULT_FOLDER"_s, home.path(u"queue"_s));
        program.setProcessEnvironment(environment);
        program.start(QCoreApplication::applicationFilePath(), {u"--change-queue"_s, home.path()});
        program.waitForFinished(support::patience);
        return program.readAllStandardOutput();
    }

    static int callsOfAChange()
    {
        const Scratch home;
        prepare(home);
        change(home, 1'000'000, killed);
        return static_cast<int>(QFileInfo(home.path(u"counted"_s)).size());
    }
};

TESSARAY_TEST(StoredQueueFaultsTest)
TESSARAY_ROLE("--change-queue", changeQueueIn(words.value(1)))
#include "StoredQueueFaultsTest.moc"

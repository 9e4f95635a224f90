#include "platform/FileLock.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QLockFile>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;
using platform::FileLock;
using support::Scratch;

namespace {

constexpr int rounds = 60;

/// Another program that takes the lock, says so, and holds it until it is killed.
std::unique_ptr<QProcess> holder(const QString &path)
{
    auto process = std::make_unique<QProcess>();
    process->start(QCoreApplication::applicationFilePath(), {u"--hold"_s, path});
    if (!process->waitForReadyRead())
        qFatal("the holder does not start");
    return process;
}

/// Only one process may work on the file at a time: what it wrote is unchanged when it reads it again.
int addOneAtATime(const QString &lockPath, const QString &countPath)
{
    for (int round = 0; round < rounds; ++round) {
        FileLock lock(lockPath);
        if (!lock.tryLock(60000))
            return 1;
        QFile file(countPath);
        if (!file.open(QIODevice::ReadWrite))
            return 2;
        const int count = file.readAll().toInt();
        ::usleep(200);
        file.seek(0);
        file.write(QByteArray::number(count + 1));
    }
    return 0;
}

int hold(const QString &path)
{
    FileLock lock(path);
    if (!lock.tryLock(0))
        return 1;
    ::write(STDOUT_FILENO, "x", 1) == 1 && ::sleep(60);
    return 0;
}

} // namespace

class FileLockTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFileIsThereAsLongAsTheLock()
    {
        const Scratch scratch;
        {
            FileLock lock(scratch.path(u"lock"_s));
            QVERIFY(lock.tryLock(0));
            QCOMPARE(scratch.names(), QStringList({u"lock"_s}));
            FileLock second(scratch.path(u"lock"_s));
            QVERIFY(!second.tryLock(100));
        }
        QCOMPARE(scratch.names(), QStringList());
    }

    void oneThatWasLeftBehindBlocksNothing()
    {
        const Scratch scratch;
        for (const QByteArray &content : {QByteArray(), QByteArray("1\nsomebody\nhere\n")}) {
            scratch.write(u"lock"_s, content);
            FileLock lock(scratch.path(u"lock"_s));
            QVERIFY(lock.tryLock(0));
        }
    }

    void oneWhoseHolderWasKilledBlocksNothing()
    {
        const Scratch scratch;
        const auto other = holder(scratch.path(u"lock"_s));
        FileLock lock(scratch.path(u"lock"_s));
        QVERIFY(!lock.tryLock(200));
        other->kill();
        QVERIFY(lock.tryLock(10000));
        other->waitForFinished();
    }

    void oneWhoLivesIsWaitedFor()
    {
        const Scratch scratch;
        auto first = std::make_unique<FileLock>(scratch.path(u"lock"_s));
        QVERIFY(first->tryLock(0));
        FileLock second(scratch.path(u"lock"_s));
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!second.tryLock(500));
        QVERIFY(clock.elapsed() >= 500);
        first.reset();
        QVERIFY(second.tryLock(0));
    }

    void neverTwoAtOnce()
    {
        const Scratch scratch;
        scratch.write(u"count"_s, "0");
        std::vector<std::unique_ptr<QProcess>> programs;
        for (int number = 0; number < 6; ++number) {
            programs.push_back(std::make_unique<QProcess>());
            programs.back()->start(QCoreApplication::applicationFilePath(),
                                   {u"--add"_s, scratch.path(u"lock"_s), scratch.path(u"count"_s)});
        }
        for (const auto &program : programs) {
            QVERIFY(program->waitForFinished(120000));
            QCOMPARE(program->exitCode(), 0);
        }
        QCOMPARE(scratch.read(u"count"_s).toInt(), 6 * rounds);
        QCOMPARE(scratch.names(), QStringList({u"count"_s}));
    }

    void whereNoneCanBeMadeThereIsNoWait()
    {
        const Scratch scratch;
        const int tooLong = 10 * support::patience; // a wait for it would be ended as a hang
        FileLock lock(scratch.path(u"none/lock"_s));
        QVERIFY(!lock.tryLock(tooLong));
        QVERIFY(QFile::link(scratch.path(u"elsewhere"_s), scratch.path(u"link"_s)));
        FileLock link(scratch.path(u"link"_s));
        QVERIFY(!link.tryLock(tooLong)); // nothing is made where a link leads
        QVERIFY(!QFile::exists(scratch.path(u"elsewhere"_s)));
    }

    void oneOfAnotherKindThatLivesIsRespected()
    {
        const Scratch scratch;
        QLockFile other(scratch.path(u"lock"_s));
        QVERIFY(other.lock());
        FileLock lock(scratch.path(u"lock"_s));
        QVERIFY(!lock.tryLock(100));
    }
};

TESSARAY_TEST(FileLockTest)
TESSARAY_ROLE("--hold", hold(words.value(1)))
TESSARAY_ROLE("--add", addOneAtATime(words.value(1), words.value(2)))
#include "FileLockTest.moc"

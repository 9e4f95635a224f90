// A second start hands its files to the one that runs.
#include "window/SingleInstance.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDir>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::waitFor;
using window::SingleInstance;

class SingleInstanceTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scratch = std::make_unique<support::Scratch>();
        QDir().mkdir(folder());
        QFile::setPermissions(folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder()));
    }

    void withoutARunningProgramNoFilesAreTaken()
    {
        const SingleInstance second(u"key"_s);
        QVERIFY(!second.handOver({u"/films/a.mkv"_s}));
    }

    void theOneThatRunsTakesTheFiles()
    {
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QSignalSpy taken(&first, &SingleInstance::filesHandedOver);
        const QStringList paths{u"/films/it's \"a\" $(x)\n.mkv"_s, u"/films/Élise 映画.mkv"_s};
        QVERIFY(handedOver(u"key"_s, paths));
        QTRY_COMPARE(taken.size(), 1);
        QCOMPARE(taken.constFirst().constFirst().toStringList(), paths);
        QVERIFY(handedOver(u"key"_s, {})); // a start without files brings the window to the front
        QTRY_COMPARE(taken.size(), 2);
    }

    /// More than a socket holds at once.
    void manyFilesArriveWhole()
    {
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QSignalSpy taken(&first, &SingleInstance::filesHandedOver);
        QStringList paths;
        for (int i = 0; i < 5000; ++i)
            paths.append(u"/films/a folder with a long name/another one/film number %1.mkv"_s.arg(i));
        QVERIFY(handedOver(u"key"_s, paths));
        QTRY_COMPARE(taken.size(), 1);
        QCOMPARE(taken.constFirst().constFirst().toStringList(), paths);
    }

    void anotherKeyIsAnotherProgram()
    {
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QVERIFY(!handedOver(u"other"_s, {u"/films/a.mkv"_s}));
        SingleInstance other(u"other"_s);
        QVERIFY(other.listen());
    }

    void whatACrashedOneLeftIsReplaced()
    {
        {
            SingleInstance first(u"key"_s);
            QVERIFY(first.listen());
            const QString name = QDir(folder()).entryList(QDir::System | QDir::Files).value(0);
            QVERIFY(!name.isEmpty());
            m_left = QFile::encodeName(folder() + u'/' + name);
        }
        QVERIFY(!QFileInfo::exists(QFile::decodeName(m_left))); // a proper end leaves nothing
        leaveSocketAt(m_left);
        SingleInstance next(u"key"_s);
        QVERIFY(!next.handOver({u"/films/a.mkv"_s}));
        QVERIFY(next.listen());
        QVERIFY(handedOver(u"key"_s, {u"/films/a.mkv"_s}));
    }

    /// One that hangs must not keep the second from starting.
    void oneThatDoesNotAnswerIsNotWaitedForForever()
    {
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QSignalSpy taken(&first, &SingleInstance::filesHandedOver);
        const SingleInstance second(u"key"_s);
        QVERIFY(!second.handOver({u"/films/a.mkv"_s})); // our event loop stands still meanwhile
        // More than the socket takes before it is read.
        QVERIFY(!second.handOver(QStringList(20000, u"/films/a folder with a long name/a.mkv"_s)));
        const QList<int> callers = manyCallers(); // more than may wait to be let in
        QVERIFY(!second.handOver({u"/films/a.mkv"_s}));
        for (const int caller : callers)
            ::close(caller);
        QCOMPARE(taken.size(), 0);
    }

    /// It did not answer in time, so another one took its place; its end is not the other's.
    void oneThatLostItsPlaceLeavesTheOtherAlone()
    {
        auto slow = std::make_unique<SingleInstance>(u"key"_s);
        QVERIFY(slow->listen());
        SingleInstance other(u"key"_s);
        QVERIFY(other.listen());
        QSignalSpy taken(&other, &SingleInstance::filesHandedOver);
        slow.reset();
        QVERIFY(handedOver(u"key"_s, {u"/films/a.mkv"_s}));
        QTRY_COMPARE(taken.size(), 1);
    }

    /// More than any command line holds: 10 MB.
    void theLargestHandOverIsTakenInTime()
    {
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QSignalSpy taken(&first, &SingleInstance::filesHandedOver);
        QStringList paths;
        for (int i = 0; i < 50000; ++i)
            paths.append(u"/films/%1/"_s.arg(i).leftJustified(100, u'x') + u".mkv"_s);
        QVERIFY(handedOver(u"key"_s, paths));
        QTRY_COMPARE(taken.size(), 1);
        QCOMPARE(taken.constFirst().constFirst().toStringList(), paths);
    }

    void callersThatLieAreDismissed_data()
    {
        QTest::addColumn<QByteArray>("said");
        const QByteArray many = QByteArray::fromHex("ffffffff");
        const QByteArray one = QByteArray::fromHex("00000001");
        QTest::newRow("about the number") << many;
        QTest::newRow("about a length") << one + QByteArray::fromHex("7ffffffe");
        QTest::newRow("with half a letter") << one + QByteArray::fromHex("00000003");
    }

    void callersThatLieAreDismissed()
    {
        QFETCH(QByteArray, said);
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QSignalSpy taken(&first, &SingleInstance::filesHandedOver);
        const int caller = call();
        QCOMPARE(::send(caller, said.constData(), size_t(said.size()), 0), said.size());
        char answer = 0;
        QVERIFY(waitFor([&] { return ::recv(caller, &answer, 1, MSG_DONTWAIT) == 0; }));
        ::close(caller);
        QCOMPARE(taken.size(), 0);
    }

    /// Says that it hands over as many files as it may, and never comes to an end.
    void aFloodNeitherFreezesNorGrowsIt()
    {
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QSignalSpy taken(&first, &SingleInstance::filesHandedOver);
        const int caller = call();
        qint64 sent = 0;
        const std::unique_ptr<QThread> other(QThread::create([&] { sent = flood(caller); }));
        other->start();
        QElapsedTimer sinceTurn;
        qint64 longestTurn = 0;
        sinceTurn.start();
        QVERIFY(waitFor(
            [&] {
                longestTurn = std::max(longestTurn, sinceTurn.restart());
                return other->isFinished();
            },
            60000));
        ::close(caller);
        QVERIFY2(sent < 32LL * 1024 * 1024, qPrintable(QString::number(sent)));
        QVERIFY2(longestTurn < 10000, qPrintable(QString::number(longestTurn)));
        QCOMPARE(taken.size(), 0);
        QVERIFY(handedOver(u"key"_s, {u"/films/a.mkv"_s}));
    }

    void slowAndSilentCallersBlockNoOther()
    {
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QList<int> callers;
        for (int i = 0; i < 60; ++i) {
            callers.append(call());
            QVERIFY(callers.constLast() >= 0);
            QCOMPARE(::send(callers.constLast(), "\0\0", 2, 0), 2);
            QTest::qWait(5);
        }
        QVERIFY(handedOver(u"key"_s, {u"/films/a.mkv"_s}));
        const auto isDismissed = [](int caller) {
            char answer = 0;
            return ::recv(caller, &answer, 1, MSG_DONTWAIT) == 0;
        };
        QVERIFY(waitFor([&] { return std::all_of(callers.begin(), callers.end(), isDismissed); }));
        for (const int caller : callers)
            ::close(caller);
        QVERIFY(handedOver(u"key"_s, {u"/films/a.mkv"_s}));
    }

    void aCallerThatGoesBeforeItHasSaidAllIsForgotten()
    {
        SingleInstance first(u"key"_s);
        QVERIFY(first.listen());
        QSignalSpy taken(&first, &SingleInstance::filesHandedOver);
        const int caller = call();
        QVERIFY(caller >= 0);
        QCOMPARE(::send(caller, "\0\0", 2, 0), 2);
        ::close(caller);
        QTest::qWait(100);
        QCOMPARE(taken.size(), 0);
        QVERIFY(handedOver(u"key"_s, {u"/films/a.mkv"_s}));
        QTRY_COMPARE(taken.size(), 1);
    }

private:
    QString folder() const { return m_scratch->path(u"run"_s); }

    static sockaddr_un addressOf(const QByteArray &path)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(path.cbegin(), path.cend(), address.sun_path);
        return address;
    }

    /// Connected to the one that listens; below 0 when it does not let us in.
    int call() const
    {
        const QString name = QDir(folder()).entryList(QDir::System | QDir::Files).value(0);
        const int caller = ::socket(AF_UNIX, SOCK_STREAM, 0);
        const sockaddr_un address = addressOf(QFile::encodeName(folder() + u'/' + name));
        const int result = ::connect(caller, reinterpret_cast<const sockaddr *>(&address), sizeof(address));
        return result == 0 ? caller : -1;
    }

    /// How much it got rid of before it was sent away.
    static qint64 flood(int caller)
    {
        const QByteArray count = QByteArray::fromHex("00010000");
        const QByteArray path = QByteArray::fromHex("00001000") + QByteArray(4096, '\1');
        qint64 sent = ::send(caller, count.constData(), size_t(count.size()), MSG_NOSIGNAL);
        for (int i = 0; i < 16384; ++i) { // 64 MB
            const auto more = ::send(caller, path.constData(), size_t(path.size()), MSG_NOSIGNAL);
            if (more < 0)
                return sent;
            sent += more;
        }
        return sent;
    }

    QList<int> manyCallers() const
    {
        const QString name = QDir(folder()).entryList(QDir::System | QDir::Files).value(0);
        const sockaddr_un address = addressOf(QFile::encodeName(folder() + u'/' + name));
        QList<int> callers;
        for (int i = 0; i < 20; ++i) {
            callers.append(::socket(AF_UNIX, SOCK_STREAM, 0));
            ::fcntl(callers.constLast(), F_SETFL, O_NONBLOCK);
            (void)::connect(callers.constLast(), reinterpret_cast<const sockaddr *>(&address),
                            sizeof(address));
        }
        return callers;
    }

    static void leaveSocketAt(const QByteArray &path)
    {
        const int left = ::socket(AF_UNIX, SOCK_STREAM, 0);
        const sockaddr_un address = addressOf(path);
        QCOMPARE(::bind(left, reinterpret_cast<const sockaddr *>(&address), sizeof(address)), 0);
        ::close(left);
    }

    /// As another program would, while our event loop goes on.
    static bool handedOver(const QString &key, const QStringList &paths)
    {
        bool taken = false;
        const std::unique_ptr<QThread> other(
            QThread::create([&] { taken = SingleInstance(key).handOver(paths); }));
        other->start();
        return waitFor([&] { return other->isFinished(); }) && taken;
    }

    std::unique_ptr<support::Scratch> m_scratch;
    QByteArray m_left;
};

TESSARAY_TEST(SingleInstanceTest)
#include "SingleInstanceTest.moc"

#include "app/Interrupts.h"
#include "support/TestMain.h"
#include "tools/ShellRunner.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <csignal>

using namespace Qt::StringLiterals;
using app::Interrupts;

class InterruptsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFlagIsSetThoughNoEventLoopRuns()
    {
        const Interrupts interrupts;
        QVERIFY(!*interrupts.flag());
        QCOMPARE(interrupts.signalNumber(), 0);
        std::raise(SIGTERM);
        QVERIFY(*interrupts.flag());
        QCOMPARE(interrupts.signalNumber(), SIGTERM);
    }

    void aWaitOnTheMainThreadEnds()
    {
        const Interrupts interrupts;
        tools::ShellRequest request;
        request.line = u"exec sleep 1000"_s;
        request.waiting = tools::Waiting::Blocking;
        request.stop = interrupts.flag();
        const std::unique_ptr<QThread> other(QThread::create([] {
            QThread::msleep(300);
            ::kill(::getpid(), SIGTERM);
        }));
        other->start();
        QCOMPARE(tools::runShell(request).status, -1);
        other->wait();
    }

    void theEventLoopIsToldOnce()
    {
        const Interrupts interrupts;
        QSignalSpy told(&interrupts, &Interrupts::interrupted);
        std::raise(SIGINT);
        QVERIFY(told.isEmpty());
        QVERIFY(told.wait());
        QCOMPARE(told.size(), 1);
        QCOMPARE(interrupts.signalNumber(), SIGINT);
    }

    void aNewOneStartsAfresh()
    {
        {
            const Interrupts interrupts;
            std::raise(SIGTERM);
        }
        const Interrupts next;
        QVERIFY(!*next.flag());
        QCOMPARE(next.signalNumber(), 0);
    }

    void theFlagOutlivesIt()
    {
        tools::StopFlag flag;
        {
            const Interrupts interrupts;
            flag = interrupts.flag();
        }
        QVERIFY(flag && !*flag);
    }
};

TESSARAY_TEST(InterruptsTest)
#include "InterruptsTest.moc"

#include "tools/ProcessGroup.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QProcess>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::runs;
using support::waitFor;

class ProcessGroupTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Its number may be another's by then: here that of a process which leads no group.
    void theNumberOfALeaderThatEndedIsNotSignalled()
    {
        QProcess other;
        other.start(u"/bin/sleep"_s, {u"1000"_s});
        QVERIFY(other.waitForStarted());
        tools::killGroupLedBy(other.processId(), tools::Leader::Ended);
        QVERIFY(!waitFor([&] { return !runs(other.processId()); }, 200));
        tools::killGroupLedBy(other.processId(), tools::Leader::Runs);
        QVERIFY(other.waitForFinished(support::patience));
    }

    void theRestOfItsGroupIs()
    {
        QProcess leader;
        tools::startInOwnGroup(leader, u"/bin/sh"_s, {u"-c"_s, u"sleep 1000 >/dev/null 2>&1 & echo $!"_s});
        const qint64 group = leader.processId();
        QVERIFY(leader.waitForFinished(support::patience));
        const qint64 left = leader.readAllStandardOutput().trimmed().toLongLong();
        QVERIFY(runs(left));
        tools::killGroupLedBy(group, tools::Leader::Ended);
        QVERIFY(waitFor([&] { return !runs(left); }));
    }
};

TESSARAY_TEST(ProcessGroupTest)
#include "ProcessGroupTest.moc"

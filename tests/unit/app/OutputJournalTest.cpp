#include "app/OutputJournal.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using app::OutputJournal;

namespace {

/// The id of a process that has ended and was reaped.
qint64 deadProcess()
{
    QProcess process;
    process.start(u"/bin/true"_s);
    process.waitForStarted();
    const qint64 pid = process.processId();
    process.waitForFinished();
    return pid;
}

QString journalOf(qint64 pid)
{
    return u"started-%1.journal"_s.arg(pid);
}

} // namespace

class OutputJournalTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatADeadProcessStartedIsNamedOnce()
    {
        const support::Scratch scratch;
        scratch.write(journalOf(deadProcess()), QByteArray("/w/a.m4v\0/w/b.m4v\0", 18));
        const OutputJournal journal(scratch.path());
        QCOMPARE(journal.takeLeftOver(), QStringList({u"/w/a.m4v"_s, u"/w/b.m4v"_s}));
        QVERIFY(scratch.names().isEmpty());
        QVERIFY(journal.takeLeftOver().isEmpty());
    }

    void whatIsFarTooLargeForAJournalIsNone()
    {
        const support::Scratch scratch;
        scratch.write(journalOf(deadProcess()), QByteArray(64 * 1024 * 1024 + 1, 'x'));
        const OutputJournal journal(scratch.path());
        QVERIFY(journal.takeLeftOver().isEmpty());
    }

    void whatALivingProcessStartedIsLeftToIt()
    {
        const support::Scratch scratch;
        QProcess living;
        living.start(u"sleep"_s, {u"60"_s});
        QVERIFY(living.waitForStarted());
        scratch.write(journalOf(living.processId()), QByteArray("/w/a.m4v\0", 9));
        scratch.write(journalOf(1), QByteArray("/w/b.m4v\0", 9)); // also one that we may not signal
        const OutputJournal journal(scratch.path());
        QVERIFY(journal.takeLeftOver().isEmpty());
        QCOMPARE(scratch.names().size(), 2);
        living.kill();
        living.waitForFinished();
        QCOMPARE(journal.takeLeftOver(), QStringList{u"/w/a.m4v"_s});
        QCOMPARE(scratch.names(), QStringList{journalOf(1)});
    }

    void itsOwnIsNotLeftOver()
    {
        const support::Scratch scratch;
        OutputJournal journal(scratch.path());
        journal.started(u"/w/a.m4v"_s);
        QVERIFY(journal.takeLeftOver().isEmpty());
        QCOMPARE(scratch.names(), QStringList{journalOf(QCoreApplication::applicationPid())});
    }

    void itIsOnTheDiskWhileTheJobRunsAndGoneAfterwards()
    {
        const support::Scratch scratch;
        const QString own = journalOf(QCoreApplication::applicationPid());
        OutputJournal journal(scratch.path(u"new/folder"_s)); // made when it is needed
        QVERIFY(scratch.names().isEmpty());
        journal.started(u"/w/a.m4v"_s);
        journal.started(u"/w/Männer\n.m4v"_s);
        QCOMPARE(scratch.read(u"new/folder/"_s + own), QByteArray("/w/a.m4v\0/w/M\xC3\xA4nner\n.m4v\0", 25));
        journal.finished();
        QVERIFY(!QFile::exists(scratch.path(u"new/folder/"_s + own)));
        journal.started(u"/w/b.m4v"_s);
        QCOMPARE(scratch.read(u"new/folder/"_s + own), QByteArray("/w/b.m4v\0", 9));
    }

    void anOrderlyEndLeavesNothing()
    {
        const support::Scratch scratch;
        {
            OutputJournal journal(scratch.path());
            journal.started(u"/w/a.m4v"_s);
        }
        QVERIFY(scratch.names().isEmpty());
    }

    void namesWithLineFeedsStayOneName()
    {
        const support::Scratch scratch;
        scratch.write(journalOf(deadProcess()), QByteArray("/w/a\nb.m4v\0", 11));
        QCOMPARE(OutputJournal(scratch.path()).takeLeftOver(), QStringList{u"/w/a\nb.m4v"_s});
    }

    void aJournalThatWasCutOffIsReadAsFarAsItGoes()
    {
        const support::Scratch scratch;
        scratch.write(journalOf(deadProcess()), QByteArray("/w/a.m4v\0/w/b", 13));
        QCOMPARE(OutputJournal(scratch.path()).takeLeftOver(), QStringList({u"/w/a.m4v"_s, u"/w/b"_s}));
    }

    void otherFilesAreLeftAlone()
    {
        const support::Scratch scratch;
        for (const QString &name : {u"defaults.json"_s, u"started-x.journal"_s, u"started-.journal"_s})
            scratch.write(name, "mine");
        QVERIFY(OutputJournal(scratch.path()).takeLeftOver().isEmpty());
        QCOMPARE(scratch.names().size(), 3);
    }

    void aFolderThatIsNotThereHasNothingLeftOver()
    {
        const support::Scratch scratch;
        QVERIFY(OutputJournal(scratch.path(u"gone"_s)).takeLeftOver().isEmpty());
        QVERIFY(scratch.names().isEmpty());
    }
};

TESSARAY_TEST(OutputJournalTest)
#include "OutputJournalTest.moc"

// Names held against other programs: by a file beside them, whose holder is known.
#include "steps/OutputClaims.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using steps::OutputClaims;

namespace {

QStringList hiddenIn(const support::Scratch &scratch)
{
    return QDir(scratch.path()).entryList({u".*"_s}, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

/// What a lock file holds: process, program, host.
QByteArray claimBy(qint64 pid, const QString &host, const QByteArray &machine = QSysInfo::machineUniqueId())
{
    return QByteArray::number(pid) + "\n\n" + host.toUtf8() + '\n' + machine + '\n' +
           QSysInfo::bootUniqueId() + "\na word\n";
}

/// A number that no process has any more.
qint64 pidOfNoProcess()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    int status = 0;
    ::waitpid(child, &status, 0);
    return child;
}

} // namespace

class OutputClaimsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneHoldsANameAtATime()
    {
        const support::Scratch scratch;
        OutputClaims first;
        OutputClaims second;
        QCOMPARE(first.take(scratch.url(u"a.mkv"_s)), OutputClaims::Answer::Held);
        QCOMPARE(first.take(scratch.url(u"a.mkv"_s)), OutputClaims::Answer::Held);
        QCOMPARE(second.take(scratch.url(u"a.mkv"_s)), OutputClaims::Answer::Taken);
        QCOMPARE(second.take(scratch.url(u"b.mkv"_s)), OutputClaims::Answer::Held);
        first.release(scratch.url(u"a.mkv"_s));
        QCOMPARE(second.take(scratch.url(u"a.mkv"_s)), OutputClaims::Answer::Held);
        second.releaseAll();
        QCOMPARE(hiddenIn(scratch), QStringList());
    }

    void namesThatAVolumeMayTakeForOneShareAClaim()
    {
        const support::Scratch scratch;
        OutputClaims first;
        OutputClaims second;
        QCOMPARE(first.take(scratch.url(u"Caf\u00e9.MKV"_s)), OutputClaims::Answer::Held);
        QCOMPARE(second.take(scratch.url(u"cafe\u0301.mkv"_s)), OutputClaims::Answer::Taken);
    }

    void longNamesFit()
    {
        const support::Scratch scratch;
        OutputClaims claims;
        QCOMPARE(claims.take(scratch.url(QString(251, u'x') + u".mkv"_s)), OutputClaims::Answer::Held);
    }

    void claimOfAProcessThatIsGoneIsTakenOver()
    {
        const support::Scratch scratch;
        const QString claim = OutputClaims::claimOf(scratch.url(u"a.mkv"_s)).toLocalFile();
        scratch.write(claim.mid(scratch.path().size() + 1),
                      claimBy(pidOfNoProcess(), QSysInfo::machineHostName()));
        OutputClaims claims;
        QCOMPARE(claims.take(scratch.url(u"a.mkv"_s)), OutputClaims::Answer::Held);
    }

    void claimOfAnotherHostIsNeverTakenOver()
    {
        const support::Scratch scratch;
        const QString claim = OutputClaims::claimOf(scratch.url(u"a.mkv"_s)).toLocalFile();
        scratch.write(claim.mid(scratch.path().size() + 1),
                      claimBy(1, u"another-host"_s, "0123456789abcdef0123456789abcdef"));
        OutputClaims claims;
        QCOMPARE(claims.take(scratch.url(u"a.mkv"_s)), OutputClaims::Answer::Taken);
        claims.releaseAll();
        QVERIFY(QFile::exists(claim));
    }

    void aFolderThatTakesNoFileIsSaid()
    {
        const support::Scratch scratch;
        OutputClaims claims;
        QCOMPARE(claims.take(scratch.url(u"nowhere/a.mkv"_s)), OutputClaims::Answer::Impossible);
    }

    void theClaimOfAnotherIsLeftWhenOursWasClearedAway()
    {
        const support::Scratch scratch;
        const QUrl name = scratch.url(u"a.mkv"_s);
        OutputClaims first;
        QCOMPARE(first.take(name), OutputClaims::Answer::Held);
        QVERIFY(QFile::remove(OutputClaims::claimOf(name).toLocalFile()));
        QVERIFY(!first.isStillHeld(name));
        OutputClaims second;
        QCOMPARE(second.take(name), OutputClaims::Answer::Held);
        first.releaseAll();
        QVERIFY(second.isStillHeld(name));
    }
};

TESSARAY_TEST(OutputClaimsTest)
#include "OutputClaimsTest.moc"

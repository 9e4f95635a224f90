#include "steps/DryRun.h"

#include "steps/OutputGuard.h"
#include "steps/OutputRegistry.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

steps::Launch someLaunch(const QString &name)
{
    steps::Launch launch;
    launch.stepName = name;
    launch.pass = 2;
    launch.tool = QUrl::fromLocalFile(u"/tools/ffmpeg"_s);
    launch.meant = {u"-i"};
    return launch;
}

} // namespace

class DryRunTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void processIsKeptAndNotStarted()
    {
        const support::Scratch scratch;
        steps::DryRun dryRun;
        tools::ToolProcess::Request request;
        request.program = u"/bin/sh"_s;
        request.arguments = {u"-c"_s, u"touch "_s + scratch.path(u"ran"_s)};
        QVERIFY(!dryRun.startProcess(someLaunch(u"Converting"_s), request));
        QCOMPARE(dryRun.entries().size(), 1);
        const auto &entry = dryRun.entries().first();
        QVERIFY(!entry.isShellLine);
        QCOMPARE(entry.launch.stepName, u"Converting"_s);
        QCOMPARE(entry.launch.pass, 2);
        QCOMPARE(entry.launch.meant, tools::OptionList{u"-i"});
        QVERIFY(scratch.names().isEmpty());
    }

    void shellLineIsKeptAndNotRun()
    {
        steps::DryRun dryRun;
        QVERIFY(!dryRun.startLine(someLaunch(u"Extracting"_s), {u"meant"_s, u"launched"_s}, {}));
        QVERIFY(dryRun.entries().first().isShellLine);
        QCOMPARE(dryRun.entries().first().line.meant, u"meant"_s);
        QCOMPARE(dryRun.entries().first().line.launched, u"launched"_s);
    }

    void orderIsKeptUntilItIsCleared()
    {
        steps::DryRun dryRun;
        dryRun.startProcess(someLaunch(u"one"_s), {});
        dryRun.startLine(someLaunch(u"two"_s), {}, {});
        dryRun.startProcess(someLaunch(u"three"_s), {});
        QCOMPARE(dryRun.entries().size(), 3);
        QCOMPARE(dryRun.entries().at(1).launch.stepName, u"two"_s);
        QCOMPARE(dryRun.entries().at(2).launch.stepName, u"three"_s);
        dryRun.clear();
        QVERIFY(dryRun.entries().isEmpty());
    }

    void noFileIsCopiedNorMoved()
    {
        const support::Scratch scratch;
        scratch.write(u"old.m4v"_s, "old");
        steps::OutputRegistry registry;
        steps::OutputGuard guard(registry, steps::WhenTaken::Replace);
        guard.claimOutput(scratch.url(u"old.m4v"_s));
        steps::DryRun dryRun;
        QVERIFY(dryRun.isDryRun());
        QVERIFY(dryRun.copyFile(guard, scratch.url(u"old.m4v"_s), scratch.url(u"copy.m4v"_s)));
        QVERIFY(dryRun.makeWay(guard, scratch.url(u"old.m4v"_s)).isNull());
        QCOMPARE(scratch.names(), QStringList{u"old.m4v"_s});
    }

    void realLauncherDoesAllOfIt()
    {
        const support::Scratch scratch;
        scratch.write(u"new.ass"_s, "new");
        scratch.write(u"private/temp.ass"_s, "of an earlier try, and longer");
        scratch.write(u"others.ass"_s, "another's");
        steps::StepLauncher launcher;
        QVERIFY(!launcher.isDryRun());
        steps::OutputRegistry registry;
        steps::OutputGuard guard(registry, steps::WhenTaken::Replace);
        guard.files().setPrivateFolder(scratch.path(u"private"_s));
        QVERIFY(launcher.copyFile(guard, scratch.url(u"new.ass"_s), scratch.url(u"private/temp.ass"_s)));
        QCOMPARE(scratch.read(u"private/temp.ass"_s), QByteArray("new"));
        QVERIFY(!launcher.copyFile(guard, scratch.url(u"missing.ass"_s), scratch.url(u"private/o.ass"_s)));
        QVERIFY(!launcher.copyFile(guard, scratch.url(u"new.ass"_s), scratch.url(u"others.ass"_s)));
        QCOMPARE(scratch.read(u"others.ass"_s), QByteArray("another's"));
        guard.claimOutput(scratch.url(u"new.ass"_s));
        QVERIFY(launcher.makeWay(guard, scratch.url(u"new.ass"_s)).isNull());
        QCOMPARE(scratch.read(u"new (replaced).ass"_s), QByteArray("new"));
    }
};

TESSARAY_TEST(DryRunTest)
#include "DryRunTest.moc"

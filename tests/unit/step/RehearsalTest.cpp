#include "tools/step/Rehearsal.h"

#include "support/Scratch.h"
#include "tools/step/OutputGuard.h"
#include "tools/step/OutputRegistry.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

step::Launch someLaunch(const QString &name)
{
    step::Launch launch;
    launch.stepName = name;
    launch.pass = 2;
    launch.tool = QUrl::fromLocalFile(u"/tools/ffmpeg"_s);
    launch.meant = {u"-i"};
    return launch;
}

} // namespace

class RehearsalTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void processIsKeptAndNotStarted()
    {
        const support::Scratch scratch;
        step::Rehearsal rehearsal;
        tools::ToolProcess::Request request;
        request.program = u"/bin/sh"_s;
        request.arguments = {u"-c"_s, u"touch "_s + scratch.path(u"ran"_s)};
        QVERIFY(!rehearsal.startProcess(someLaunch(u"Converting"_s), request));
        QCOMPARE(rehearsal.entries().size(), 1);
        const auto &entry = rehearsal.entries().first();
        QVERIFY(!entry.isShellLine);
        QCOMPARE(entry.launch.stepName, u"Converting"_s);
        QCOMPARE(entry.launch.pass, 2);
        QCOMPARE(entry.launch.meant, tools::OptionList{u"-i"});
        QVERIFY(scratch.names().isEmpty());
    }

    void shellLineIsKeptAndNotRun()
    {
        step::Rehearsal rehearsal;
        bool ran = false;
        const QString answer =
            rehearsal.startShellLine(someLaunch(u"Extracting"_s), {u"meant"_s, u"launched"_s}, [&] {
                ran = true;
                return u"17"_s;
            });
        QVERIFY(answer.isNull());
        QVERIFY(!ran);
        QVERIFY(rehearsal.entries().first().isShellLine);
        QCOMPARE(rehearsal.entries().first().line.meant, u"meant"_s);
        QCOMPARE(rehearsal.entries().first().line.launched, u"launched"_s);
    }

    void orderIsKeptUntilItIsCleared()
    {
        step::Rehearsal rehearsal;
        rehearsal.startProcess(someLaunch(u"one"_s), {});
        rehearsal.startShellLine(someLaunch(u"two"_s), {}, [] { return QString(); });
        rehearsal.startProcess(someLaunch(u"three"_s), {});
        QCOMPARE(rehearsal.entries().size(), 3);
        QCOMPARE(rehearsal.entries().at(1).launch.stepName, u"two"_s);
        QCOMPARE(rehearsal.entries().at(2).launch.stepName, u"three"_s);
        rehearsal.clear();
        QVERIFY(rehearsal.entries().isEmpty());
    }

    void noFileIsCopiedNorMoved()
    {
        const support::Scratch scratch;
        scratch.write(u"old.m4v"_s, "old");
        step::OutputRegistry registry;
        step::OutputGuard guard(registry, step::WhenTaken::Replace);
        guard.claimOutput(scratch.url(u"old.m4v"_s));
        step::Rehearsal rehearsal;
        QVERIFY(rehearsal.isRehearsal());
        QVERIFY(rehearsal.copyFile(guard, scratch.url(u"old.m4v"_s), scratch.url(u"copy.m4v"_s)));
        QVERIFY(rehearsal.makeWay(guard, scratch.url(u"old.m4v"_s)).isNull());
        QCOMPARE(scratch.names(), QStringList{u"old.m4v"_s});
    }

    void realLauncherDoesAllOfIt()
    {
        const support::Scratch scratch;
        scratch.write(u"new.ass"_s, "new");
        scratch.write(u"private/temp.ass"_s, "of an earlier try, and longer");
        scratch.write(u"others.ass"_s, "another's");
        step::StepLauncher launcher;
        QVERIFY(!launcher.isRehearsal());
        step::OutputRegistry registry;
        step::OutputGuard guard(registry, step::WhenTaken::Replace);
        guard.files().setPrivateFolder(scratch.path(u"private"_s));
        QVERIFY(launcher.copyFile(guard, scratch.url(u"new.ass"_s), scratch.url(u"private/temp.ass"_s)));
        QCOMPARE(scratch.read(u"private/temp.ass"_s), QByteArray("new"));
        QVERIFY(!launcher.copyFile(guard, scratch.url(u"missing.ass"_s), scratch.url(u"private/o.ass"_s)));
        QVERIFY(!launcher.copyFile(guard, scratch.url(u"new.ass"_s), scratch.url(u"others.ass"_s)));
        QCOMPARE(scratch.read(u"others.ass"_s), QByteArray("another's"));
        QCOMPARE(launcher.startShellLine({}, {}, [] { return u"17"_s; }), u"17"_s);
        guard.claimOutput(scratch.url(u"new.ass"_s));
        QVERIFY(launcher.makeWay(guard, scratch.url(u"new.ass"_s)).isNull());
        QCOMPARE(scratch.read(u"new (replaced).ass"_s), QByteArray("new"));
    }
};

QTEST_GUILESS_MAIN(RehearsalTest)
#include "RehearsalTest.moc"

#include "steps/OutputRegistry.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class OutputRegistryTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameOfAnotherIsTaken()
    {
        const support::Scratch scratch;
        steps::OutputRegistry registry;
        const int one = 1;
        const int two = 2;
        registry.add(&one, scratch.url(u"a.m4v"_s));
        QVERIFY(registry.isTaken(scratch.url(u"a.m4v"_s), &two));
        QVERIFY(registry.isTaken(scratch.url(u"a.m4v"_s), nullptr));
        QVERIFY(!registry.isTaken(scratch.url(u"a.m4v"_s), &one));
        QVERIFY(!registry.isTaken(scratch.url(u"b.m4v"_s), &two));
    }

    void nameThatTwoSpokeForStaysTakenForBoth()
    {
        const support::Scratch scratch;
        steps::OutputRegistry registry;
        const int one = 1;
        const int two = 2;
        registry.add(&one, scratch.url(u"a.m4v"_s));
        registry.add(&two, scratch.url(u"a.m4v"_s));
        QVERIFY(registry.isTaken(scratch.url(u"a.m4v"_s), &one));
        registry.release(&two);
        QVERIFY(!registry.isTaken(scratch.url(u"a.m4v"_s), &one));
    }

    void releaseFreesAllNamesOfOneOwnerOnly()
    {
        const support::Scratch scratch;
        steps::OutputRegistry registry;
        const int one = 1;
        const int two = 2;
        registry.add(&one, scratch.url(u"a.m4v"_s));
        registry.add(&one, scratch.url(u"b.m4v"_s));
        registry.add(&two, scratch.url(u"c.m4v"_s));
        registry.release(&one);
        QVERIFY(!registry.isTaken(scratch.url(u"a.m4v"_s), nullptr));
        QVERIFY(!registry.isTaken(scratch.url(u"b.m4v"_s), nullptr));
        QVERIFY(registry.isTaken(scratch.url(u"c.m4v"_s), nullptr));
    }

    void otherSpellingsOfAPathAreTheSameName()
    {
        const support::Scratch scratch;
        QDir().mkpath(scratch.path(u"real"_s));
        QVERIFY(QFile::link(scratch.path(u"real"_s), scratch.path(u"link"_s)));
        steps::OutputRegistry registry;
        const int one = 1;
        registry.add(&one, scratch.url(u"real/a.m4v"_s));
        QVERIFY(registry.isTaken(scratch.url(u"real//a.m4v"_s), nullptr));
        QVERIFY(registry.isTaken(scratch.url(u"real/../real/a.m4v"_s), nullptr));
        QVERIFY(registry.isTaken(scratch.url(u"link/a.m4v"_s), nullptr));
        registry.add(&one, scratch.url(u"link//b.m4v"_s));
        QVERIFY(registry.isTaken(scratch.url(u"real/b.m4v"_s), nullptr));
    }
};

TESSARAY_TEST(OutputRegistryTest)
#include "OutputRegistryTest.moc"

#include "prefs/StoredChanges.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QVariantMap preset(const QString &name, int width = 0)
{
    return {{u"pName"_s, name}, {u"pWidth"_s, width}};
}

} // namespace

class StoredChangesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreAlikeHoweverTheyWereRead()
    {
        QVERIFY(prefs::storedAlike(5, 5.0));
        QVERIFY(prefs::storedAlike(QVariantMap{{u"a"_s, 5}}, QVariantMap{{u"a"_s, qlonglong(5)}}));
        QVERIFY(prefs::storedAlike(QString(), u""_s));
        QVERIFY(!prefs::storedAlike(u"5"_s, 5));
        QVERIFY(!prefs::storedAlike(false, 0));
    }

    void textTakesOurChangeAndLeavesTheirs()
    {
        QCOMPARE(prefs::merged(u"theirs"_s, u"old"_s, u"ours"_s), QVariant(u"ours"_s));
        QCOMPARE(prefs::merged(u"theirs"_s, u"old"_s, u"old"_s), QVariant(u"theirs"_s));
    }

    void dictionaryIsMergedKeyByKey()
    {
        const QVariantMap loaded{{u"a"_s, 1}, {u"b"_s, 1}, {u"gone"_s, 1}};
        const QVariantMap stored{{u"a"_s, 1}, {u"b"_s, 2}, {u"gone"_s, 1}, {u"new"_s, 3}};
        const QVariantMap now{{u"a"_s, 9}, {u"b"_s, 1}, {u"ours"_s, 4}};
        const QVariantMap expected{{u"a"_s, 9}, {u"b"_s, 2}, {u"new"_s, 3}, {u"ours"_s, 4}};
        QCOMPARE(prefs::merged(stored, loaded, now).toMap(), expected);
    }

    void listIsTheGivenOneWhenNoOtherProgramWrote()
    {
        const QVariantList loaded{preset(u"a"_s), preset(u"b"_s), preset(u"c"_s)};
        const QVariantList now{preset(u"c"_s), preset(u"a"_s, 7), preset(u"new"_s)};
        QCOMPARE(prefs::merged(loaded, loaded, now).toList(), now);
    }

    void listMayHoldOneEntryTwice()
    {
        const QVariantList loaded{preset(u"a"_s)};
        const QVariantList now{preset(u"a"_s), preset(u"a"_s)};
        QCOMPARE(prefs::merged(loaded, loaded, now).toList(), now);
        QCOMPARE(prefs::merged(now, now, loaded).toList(), loaded);
    }

    void whatTheOtherAddedStaysBehindOurs()
    {
        const QVariantList loaded{preset(u"a"_s)};
        const QVariantList stored{preset(u"a"_s), preset(u"theirs"_s)};
        const QVariantList now{preset(u"a"_s), preset(u"ours"_s)};
        const QVariantList expected{preset(u"a"_s), preset(u"ours"_s), preset(u"theirs"_s)};
        QCOMPARE(prefs::merged(stored, loaded, now).toList(), expected);
    }

    void whatBothAddedStandsOnce()
    {
        const QVariantList both{preset(u"same"_s)};
        QCOMPARE(prefs::merged(both, QVariantList(), both).toList(), both);
    }

    void whatTheOtherRemovedStaysRemoved()
    {
        const QVariantList loaded{preset(u"a"_s), preset(u"b"_s)};
        const QVariantList stored{preset(u"b"_s)};
        const QVariantList now{preset(u"a"_s), preset(u"b"_s), preset(u"ours"_s)};
        const QVariantList expected{preset(u"b"_s), preset(u"ours"_s)};
        QCOMPARE(prefs::merged(stored, loaded, now).toList(), expected);
    }

    void whatBothChangedIsKeptTwice()
    {
        const QVariantList loaded{preset(u"a"_s, 1)};
        const QVariantList expected{preset(u"a"_s, 3), preset(u"a"_s, 2)};
        QCOMPARE(
            prefs::merged(QVariantList{preset(u"a"_s, 2)}, loaded, QVariantList{preset(u"a"_s, 3)}).toList(),
            expected);
    }

    void nothingStoredYet()
    {
        QCOMPARE(prefs::merged(QVariant(), QVariantList(), QVariantList{preset(u"a"_s)}).toList(),
                 QVariantList{preset(u"a"_s)});
        const QVariantMap now{{u"k"_s, true}};
        QCOMPARE(prefs::merged(QVariant(), QVariantMap(), now).toMap(), now);
    }
};

TESSARAY_TEST(StoredChangesTest)
#include "StoredChangesTest.moc"

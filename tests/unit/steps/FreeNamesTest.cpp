#include "steps/FreeNames.h"

#include "platform/PlainFiles.h"
#include "support/TestMain.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;

class FreeNamesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theMarkStandsInFrontOfTheExtension_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("marked");
        QTest::newRow("plain") << u"a.m4v"_s << u"a (2).m4v"_s;
        QTest::newRow("no extension") << u"a"_s << u"a (2)"_s;
        QTest::newRow("a full stop at the end") << u"a.split."_s << u"a.split (2)."_s;
        QTest::newRow("255 bytes") << QString(251, u'a') + u".m4v"_s << QString(247, u'a') + u" (2).m4v"_s;
        QTest::newRow("letters of two bytes")
            << QString(125, u'\u00e9') + u"x.m4v"_s << QString(123, u'\u00e9') + u" (2).m4v"_s;
        QTest::newRow("an accent of its own")
            << QString(246, u'a') + u"e\u0301xx.m4v"_s << QString(246, u'a') + u" (2).m4v"_s;
        QTest::newRow("a long end is no extension")
            << u"a."_s + QString(253, u'b') << u"a."_s + QString(249, u'b') + u" (2)"_s;
    }

    void theMarkStandsInFrontOfTheExtension()
    {
        QFETCH(QString, name);
        QFETCH(QString, marked);
        const QUrl made = steps::withMark(QUrl::fromLocalFile(u"/tmp/"_s + name), u" (2)"_s);
        QCOMPARE(made, QUrl::fromLocalFile(u"/tmp/"_s + marked));
        QVERIFY(QFile::encodeName(QFileInfo(made.toLocalFile()).fileName()).size() <= 255);
    }

    void aNameMayHave255Bytes()
    {
        QVERIFY(!platform::isTooLongName(QUrl::fromLocalFile(u"/tmp/"_s + QString(255, u'a'))));
        QVERIFY(platform::isTooLongName(QUrl::fromLocalFile(u"/tmp/"_s + QString(256, u'a'))));
        QVERIFY(!platform::isTooLongName(QUrl::fromLocalFile(u"/tmp/"_s + QString(127, u'\u00e9'))));
        QVERIFY(platform::isTooLongName(QUrl::fromLocalFile(u"/tmp/"_s + QString(128, u'\u00e9'))));
    }
};

TESSARAY_TEST(FreeNamesTest)
#include "FreeNamesTest.moc"

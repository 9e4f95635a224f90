#include "selection/Targets.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TargetsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void devicesAreThoseThatAConversionKnows()
    {
        const QStringList expected{u"iPod (All non-Touch)"_s,
                                   u"iPhone (3 and Earlier)"_s,
                                   u"iPod Touch (3 and Earlier)"_s,
                                   u"iPad (2 and Earlier)"_s,
                                   u"Apple TV 2"_s,
                                   u"iPhone 4"_s,
                                   u"iPod Touch (4 and Later)"_s,
                                   u"Apple TV (3 and Later)"_s,
                                   u"iPad (3 and Later)"_s,
                                   u"iPad Mini (All)"_s,
                                   u"iPhone (4S and Later)"_s,
                                   u"PS3"_s,
                                   u"Xbox"_s};
        QCOMPARE(selection::deviceNames(), expected);
    }

    void popupOffersGeneralTheDevicesAndTheTwoKindsOfFile()
    {
        const QStringList targets = selection::targetNames();
        QCOMPARE(targets.size(), 16);
        QCOMPARE(targets.first(), u"General"_s);
        QCOMPARE(targets.mid(1, 13), selection::deviceNames());
        QCOMPARE(targets.mid(14), QStringList({u"MKV"_s, u"AVI"_s}));
    }

    void noTargetStandsTwice()
    {
        QStringList targets = selection::targetNames();
        QCOMPARE(targets.removeDuplicates(), 0);
    }
};

TESSARAY_TEST(TargetsTest)
#include "TargetsTest.moc"

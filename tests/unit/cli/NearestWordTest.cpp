#include "cli/NearestWord.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using cli::didYouMean;
using cli::nearestWord;

/// What was most likely meant by a word that is none.
class NearestWordTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNearestIsFound_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("nearest");
        const auto row = [](const QString &typed, const QString &nearest) {
            QTest::newRow(qPrintable(typed)) << typed << nearest;
        };
        row(u"devic"_s, u"device"_s);
        row(u"devices"_s, u"device"_s);
        row(u"dvice"_s, u"device"_s);
        row(u"divece"_s, u"device"_s);
        row(u"edvice"_s, u"device"_s); // exchanged letters count once
        row(u"sav"_s, u"save-dir"_s);  // the start of a word
        row(u"jsno"_s, u"json"_s);
        row(u"DEVICE"_s, {});
        row(u"x"_s, {});
        row(u""_s, {});
        row(u"nothing-like-it"_s, {});
        row(QString(41, u'd'), {});
    }

    void theNearestIsFound()
    {
        QFETCH(const QString, typed);
        QFETCH(const QString, nearest);
        const QStringList words{u"json"_s, u"save-dir"_s, u"device"_s, u"width"_s};
        QCOMPARE(nearestWord(typed, words), nearest);
        QCOMPARE(didYouMean(typed, words, u"--"_s),
                 nearest.isEmpty() ? QString() : u" Did you mean --%1?"_s.arg(nearest));
    }

    void ofTwoTheNearerOneIsMeant()
    {
        QCOMPARE(nearestWord(u"outputs1"_s, {u"output"_s, u"outputs0"_s}), u"outputs0"_s);
        QCOMPARE(nearestWord(u"abc"_s, {}), QString());
    }
};

TESSARAY_TEST(NearestWordTest)
#include "NearestWordTest.moc"

#include "prefs/KXToolTips.h"
#include "prefs/ToolTipTexts.h"
#include "support/TestMain.h"

#include <QCryptographicHash>
#include <QMetaProperty>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The properties of the controls, in their order.
QStringList controlProperties()
{
    QStringList names;
    const QMetaObject &meta = KXToolTips::staticMetaObject;
    for (int index = meta.propertyOffset(); index < meta.propertyCount(); ++index)
        names.append(QString::fromLatin1(meta.property(index).name()));
    return names;
}

} // namespace

class KXToolTipsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereAreFiftyEightControls()
    {
        QCOMPARE(controlProperties().size(), 58);
        QCOMPARE(prefs::toolTipTexts().size(), 58);
        for (const QString &name : controlProperties())
            QVERIFY2(name.startsWith(u"tt"_s), qPrintable(name));
    }

    void tableAndPropertiesHaveTheSameOrder()
    {
        QStringList inTable;
        for (const auto &tip : prefs::toolTipTexts())
            inTable.append(QString::fromLatin1(tip.property));
        QCOMPARE(inTable, controlProperties());
    }

    void everyLetterIsAsItWasDecided()
    {
        // The digest of "name=text" lines of the sheet in which the wording was decided.
        QByteArray sheet;
        for (const auto &tip : prefs::toolTipTexts())
            sheet += QByteArray(tip.property) + '=' + tip.text.toUtf8() + '\n';
        QCOMPARE(QCryptographicHash::hash(sheet, QCryptographicHash::Sha256).toHex(),
                 QByteArray("f0c8ccaca51e1a5d82b2b4ce0e6b540da0cf16c3291f3cc14f58cc693b43dcda"));
    }

    void doubledWordsAndMisspellingsStay_data()
    {
        QTest::addColumn<QString>("part");
        QTest::newRow("ttMultipleAudioTrackPopUp") << u"if only one audio trak is selected."_s;
        QTest::newRow("ttOpenFilesQueueButton") << u"see a list of the files that you opened"_s;
        QTest::newRow("ttOpenFilesQueuePanelTable") << u"make slecections manually or"_s;
        QTest::newRow("ttOpenFilesQueuePanelMatrix") << u"will overide any manual selections"_s;
        QTest::newRow("ttStartTrackEditButton") << u"Start the editing track process."_s;
        QTest::newRow("ttEditPAR")
            << u"this is not the same at the display aspect ratio.  With a PAR of 1:1, the "
               "video displayed aspect ratio wil match"_s;
        QTest::newRow("ttAddButton") << u"external subtitle file to your tacks."_s;
        QTest::newRow("ttStartWatchingFolderButton") << u"All current files in the qeue will"_s;
        QTest::newRow("ttPrefAddPaddingButton") << u"will speed up speed up any editing"_s;
        QTest::newRow("ttPVideoActionList") << u"custom bitrate and wdith values"_s;
        QTest::newRow("ttPVideoGenericList") << u"ignored if the video is passed thru."_s;
        QTest::newRow("ttPSubActionList") << u"want done to selected the subtitle track(s)."_s;
        QTest::newRow("ttPSubActionList") << u"then burning the subtiles will not"_s;
        QTest::newRow("ttSplitStartTime") << u"from the entered value. All tracks"_s; // one blank, not two
    }

    void doubledWordsAndMisspellingsStay()
    {
        QFETCH(QString, part);
        KXToolTips tips(nullptr);
        tips.modifyToolTips(KXToolTips::Tips::Shown);
        const QString text = tips.property(QTest::currentDataTag()).toString();
        QVERIFY2(text.contains(part), qPrintable(text));
    }

    void shownTipsReachTheirProperties()
    {
        KXToolTips tips(nullptr);
        tips.modifyToolTips(KXToolTips::Tips::Shown);
        QCOMPARE(tips.ttPrefToolTipsButton(), u"Turns tool tips on/off."_s);
        QCOMPARE(tips.ttAddFilterButton(),
                 u"Click to add/remove a filter.  How multiple filters are applied is set "
                 "by the filter mode."_s);
        for (const QString &name : controlProperties())
            QVERIFY2(!tips.property(name.toLatin1().constData()).toString().isEmpty(), qPrintable(name));
    }

    void hiddenTipsAreTheEmptyText()
    {
        KXToolTips tips(nullptr);
        tips.modifyToolTips(KXToolTips::Tips::Shown);
        tips.modifyToolTips(KXToolTips::Tips::Hidden);
        for (const QString &name : controlProperties()) {
            const QString text = tips.property(name.toLatin1().constData()).toString();
            QVERIFY2(text.isEmpty() && !text.isNull(), qPrintable(name));
        }
    }
};

TESSARAY_TEST(KXToolTipsTest)
#include "KXToolTipsTest.moc"

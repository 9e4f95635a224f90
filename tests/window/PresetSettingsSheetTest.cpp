#include "window/PresetSettingsSheet.h"

#include "support/SheetBench.h"
#include "window/SheetHand.h"
#include "window/ToolTipBinder.h"

#include <QCheckBox>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using support::SheetBench;

namespace {

constexpr int forPs3 = 1; // rows of the sheet
constexpr int forXbox = 2;

/// The open sheet of a program that chose "For PS3" for its settings.
struct Desk
{
    explicit Desk(int chosen = 2)
        : tips(bench.program.preferences, nullptr)
    {
        bench.program.preferences.modifyToolTips();
        bench.presets.setSettingMethodIndex(chosen);
        sheet = new window::PresetSettingsSheet(bench.presets, tips, nullptr);
        sheet->open();
        if (!QTest::qWaitForWindowActive(sheet))
            qFatal("The sheet is not active.");
    }
    ~Desk() { delete sheet; }

    SheetHand hand() const { return SheetHand(*sheet); }
    bool isChecked(const char *word) const { return hand().find<QCheckBox>(word)->isChecked(); }
    void close() const { hand().click("OkPresetButton"); }
    /// A value of the first stored preset, "For PS3".
    QVariant stored(const QString &word) const
    {
        const QVariantList records =
            support::storedSettings(bench.scratch).value(u"presetSettingsArray"_s).toList();
        return records.constFirst().toMap().value(word);
    }

    SheetBench bench;
    window::ToolTipBinder tips;
    QPointer<window::PresetSettingsSheet> sheet;
};

KXPresetSettings &presetOf(const Desk &desk, int row)
{
    return *desk.bench.presets.presetSettingsList().at(row + 1);
}

} // namespace

class PresetSettingsSheetTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theChosenPresetIsShown()
    {
        Desk desk;
        QCOMPARE(desk.hand().rows(), u"Extract Tracks, For PS3, For Xbox"_s);
        QCOMPARE(desk.hand().selectedRow(), forPs3);
        QCOMPARE(desk.hand().entered("PresetName"), u"For PS3"_s);
        QCOMPARE(desk.hand().shown("PDeviceList"), u"PS3"_s);
        QCOMPARE(desk.hand().shown("PVideoActionList"), u"Pass Thru"_s);
        QCOMPARE(desk.hand().shown("PVideoBitRateList"), u"Custom"_s);
        QCOMPARE(desk.hand().entered("PVideoBitRate"), u"1000"_s);
        QCOMPARE(desk.hand().shown("PWidthList"), u"Original"_s);
        QCOMPARE(desk.hand().entered("PWidth"), QString());
        QCOMPARE(desk.hand().shown("PStereoBitRateList"), u"160"_s);
        QCOMPARE(desk.hand().shown("PSurroundBitRateList"), u"448"_s);
        QCOMPARE(desk.hand().shown("PSubActionList"), u"Mux (soft)"_s);
        QVERIFY(!desk.isChecked("PAudioAddStereo"));
    }

    void everyPopupIsStored_data()
    {
        QTest::addColumn<QByteArray>("popup");
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QVariant>("value");
        const auto row = [](const char *popup, const char *entry, const char *word, const QVariant &value) {
            QTest::addRow("%s", popup)
                << QByteArray(popup) << QString::fromLatin1(entry) << QString::fromLatin1(word) << value;
        };
        row("PDeviceList", "MKV", "pDevice", u"MKV"_s);
        row("PVideoActionList", "H264 (2-pass)", "pVideoActionIndex", 2);
        row("PVideoBitRateList", "Original", "pVideoBitRateIndex", 0);
        row("PWidthList", "Custom", "pWidthIndex", 1);
        row("PStereoActionList", "AAC (2-Ch.)", "pStereoActionIndex", 1);
        row("PStereoBitRateList", "320", "pStereoBitRate", u"320"_s);
        row("PSurroundActionList", "AC3 (5.1)", "pSurroundActionIndex", 3);
        row("PSurroundBitRateList", "640", "pSurroundBitRate", u"640"_s);
        row("PSubActionList", "Burn (hard)", "pSubAction", u"Burn (hard)"_s);
    }

    void everyPopupIsStored()
    {
        QFETCH(const QByteArray, popup);
        QFETCH(const QString, entry);
        QFETCH(const QString, word);
        QFETCH(const QVariant, value);
        Desk desk;
        desk.hand().pick(popup.constData(), entry);
        desk.close();
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.stored(word).toString(), value.toString());
    }

    void everyTickIsStored_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QString>("word");
        QTest::newRow("stereo") << QByteArray("PAudioAddStereo") << u"pAudioAddStereo"_s;
        QTest::newRow("keep stereo") << QByteArray("PKeepStereoTrack") << u"pKeepStereoTrack"_s;
        QTest::newRow("keep surround") << QByteArray("PKeepSurroundTrack") << u"pKeepSurroundTrack"_s;
    }

    void everyTickIsStored()
    {
        QFETCH(const QByteArray, box);
        QFETCH(const QString, word);
        Desk desk;
        desk.hand().find(box.constData())->setFocus();
        desk.hand().key(Qt::Key_Space);
        desk.close();
        QTRY_VERIFY(desk.sheet.isNull());
        for (const QString &each : {u"pAudioAddStereo"_s, u"pKeepStereoTrack"_s, u"pKeepSurroundTrack"_s})
            QCOMPARE(desk.stored(each).toBool(), each == word);
    }

    void numbersCountOnlyWhereTheyAreCustom()
    {
        Desk desk;
        QVERIFY(desk.hand().isEnabled("PVideoBitRate"));
        QVERIFY(!desk.hand().isEnabled("PWidth"));
        desk.hand().pick("PVideoBitRateList", u"Original"_s);
        QVERIFY(!desk.hand().isEnabled("PVideoBitRate"));
        desk.hand().pick("PWidthList", u"Custom"_s);
        QVERIFY(desk.hand().isEnabled("PWidth"));
    }

    void numbersAreStored()
    {
        Desk desk;
        desk.hand().pick("PWidthList", u"Custom"_s);
        desk.hand().type("PWidth", u"720"_s);
        desk.hand().type("PVideoBitRate", u"1500"_s);
        QTest::keyClick(desk.hand().find("PVideoBitRate"), Qt::Key_Escape);
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.stored(u"pWidth"_s).toString(), u"720"_s);
        QCOMPARE(desk.stored(u"pVideoBitRate"_s).toString(), u"1500"_s);
    }

    void lettersAreNoNumber()
    {
        Desk desk;
        desk.hand().type("PVideoBitRate", u"2x5"_s);
        QCOMPARE(desk.hand().entered("PVideoBitRate"), u"25"_s);
    }

    void anotherRowShowsItsOwnFields()
    {
        Desk desk;
        desk.hand().find("PAudioAddStereo")->setFocus();
        desk.hand().key(Qt::Key_Space);
        desk.hand().chooseRow(forXbox);
        QCOMPARE(desk.hand().shown("PDeviceList"), presetOf(desk, forXbox).pDevice());
        QVERIFY(!desk.isChecked("PAudioAddStereo"));
        desk.hand().pick("PDeviceList", u"AVI"_s);
        QCOMPARE(presetOf(desk, forXbox).pDevice(), u"AVI"_s);
        QCOMPARE(presetOf(desk, forPs3).pDevice(), u"PS3"_s);
        desk.hand().chooseRow(forPs3);
        QVERIFY(desk.isChecked("PAudioAddStereo"));
    }

    void aBuiltInPresetIsEmptyAndOff()
    {
        Desk desk(1);
        QCOMPARE(desk.hand().selectedRow(), 0);
        for (const char *word : {"PDeviceList", "PVideoActionList", "PVideoBitRateList", "PWidthList",
                                 "PStereoActionList", "PSurroundBitRateList", "PSubActionList"}) {
            QVERIFY2(!desk.hand().isEnabled(word), word);
            QCOMPARE(desk.hand().shown(word), QString());
        }
        for (const char *word : {"PresetName", "PVideoBitRate", "PWidth", "PAudioAddStereo"})
            QVERIFY2(!desk.hand().isEnabled(word), word);
    }

    void aDeviceThatIsNotOfferedIsShown()
    {
        Desk desk;
        desk.hand().click("AddPresetButton");
        QCOMPARE(desk.hand().shown("PDeviceList"), u"Apple TV"_s);
        desk.hand().chooseRow(forPs3);
        QCOMPARE(desk.hand().find<QComboBox>("PDeviceList")->findText(u"Apple TV"_s), -1);
    }

    void storedGuessesAndOriginalsAreShown()
    {
        Desk desk;
        presetOf(desk, forXbox).setPVideoActionIndex(3);
        presetOf(desk, forXbox).setPStereoBitRate(u"Original"_s);
        desk.hand().chooseRow(forXbox);
        QCOMPARE(desk.hand().shown("PVideoActionList"), u"Best Guess"_s);
        QCOMPARE(desk.hand().shown("PStereoBitRateList"), u"Original"_s);
        desk.close();
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(presetOf(desk, forXbox).pVideoActionIndex(), 3);
        QCOMPARE(presetOf(desk, forXbox).pStereoBitRate(), u"Original"_s);
    }

    void presetsAreAddedNamedAndRemoved()
    {
        Desk desk;
        desk.hand().click("AddPresetButton");
        QCOMPARE(desk.hand().focus(), u"PresetName"_s);
        QTest::keyClicks(desk.hand().find("PresetName"), u"For all"_s);
        desk.hand().chooseRow(forPs3);
        desk.hand().click("RemovePresetButton");
        QCOMPARE(desk.hand().rows(), u"Extract Tracks, For Xbox, For all"_s);
        QCOMPARE(desk.hand().selectedRow(), 0);
        desk.close();
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.bench.storedNames(u"presetSettingsArray"_s), u"For Xbox, For all"_s);
        QCOMPARE(desk.bench.presets.settingMethodIndex(), 1);
    }

    void aBuiltInsNameIsRefused()
    {
        Desk desk;
        desk.hand().type("PresetName", u"Extract Tracks"_s);
        desk.close();
        QVERIFY(desk.sheet != nullptr && desk.sheet->isVisible());
        QCOMPARE(desk.hand().find<QLabel>("PresetRefusal")->text(),
                 u"The name \"Extract Tracks\" belongs to a built-in preset."_s);
        QCOMPARE(desk.bench.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
    }

    void closingAppliesOnce()
    {
        Desk desk;
        QSignalSpy methods(&desk.bench.presets, &KXPresetsController::methodsChanged);
        desk.hand().chooseRow(forXbox);
        desk.close();
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(methods.count(), 1);
        QCOMPARE(desk.bench.presets.currentPresetSettingName(), u"For Xbox"_s);
    }

    void controlsHaveTheirTips_data()
    {
        QTest::addColumn<QByteArray>("control");
        QTest::addColumn<QString>("start");
        QTest::newRow("target") << QByteArray("PDeviceList") << u"Select the type of device"_s;
        QTest::newRow("video") << QByteArray("PVideoActionList") << u"You can either specify what"_s;
        QTest::newRow("bit rate") << QByteArray("PVideoBitRateList") << u"Specify if you want"_s;
        QTest::newRow("width") << QByteArray("PWidthList") << u"Specify if you want"_s;
        QTest::newRow("stereo") << QByteArray("PStereoActionList") << u"to a selected stereo audio"_s;
        QTest::newRow("surround") << QByteArray("PSurroundBitRateList") << u"to a selected surround audio"_s;
        QTest::newRow("subtitles") << QByteArray("PSubActionList") << u"Select what you want done"_s;
    }

    void controlsHaveTheirTips()
    {
        QFETCH(const QByteArray, control);
        QFETCH(const QString, start);
        Desk desk;
        QVERIFY(desk.hand().find(control.constData())->toolTip().contains(start));
    }

    void everyControlHasANameForTheReader()
    {
        Desk desk;
        for (const QWidget *control : desk.sheet->findChildren<QWidget *>()) {
            if (control->focusPolicy() != Qt::NoFocus && control->window() == desk.sheet)
                QVERIFY2(!control->accessibleName().isEmpty(), control->metaObject()->className());
        }
    }
};

QTEST_MAIN(PresetSettingsSheetTest)
#include "PresetSettingsSheetTest.moc"

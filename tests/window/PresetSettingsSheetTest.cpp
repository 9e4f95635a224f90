#include "window/PresetSettingsSheet.h"

#include "support/TestMain.h"
#include "support/presets/SheetFixture.h"
#include "window/SheetDriver.h"
#include "window/ToolTipBinder.h"

#include <QCheckBox>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using support::SheetFixture;

namespace {

constexpr int forPs3 = 1; // rows of the sheet
constexpr int forXbox = 2;

/// The open sheet of a program that chose "For PS3" for its settings.
struct Fixture
{
    explicit Fixture(int chosen = 2)
        : tips(base.program.preferences, nullptr)
    {
        base.program.preferences.modifyToolTips();
        base.presets.setSettingMethodIndex(chosen);
        sheet = new window::PresetSettingsSheet(base.presets, tips, nullptr);
        sheet->open();
        if (!QTest::qWaitForWindowActive(sheet))
            qFatal("The sheet is not active.");
    }
    ~Fixture() { delete sheet; }

    SheetDriver driver() const { return SheetDriver(*sheet); }
    bool isChecked(const char *word) const { return driver().find<QCheckBox>(word)->isChecked(); }
    void close() const { driver().click("OkPresetButton"); }
    /// A value of the first stored preset, "For PS3".
    QVariant stored(const QString &word) const
    {
        const QVariantList records =
            support::storedSettings(base.scratch).value(u"presetSettingsArray"_s).toList();
        return records.constFirst().toMap().value(word);
    }

    SheetFixture base;
    window::ToolTipBinder tips;
    QPointer<window::PresetSettingsSheet> sheet;
};

KXPresetSettings &presetOf(const Fixture &fixture, int row)
{
    return *fixture.base.presets.presetSettingsList().at(row + 1);
}

} // namespace

class PresetSettingsSheetTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theChosenPresetIsShown()
    {
        Fixture fixture;
        QCOMPARE(fixture.driver().rows(), u"Extract Tracks, For PS3, For Xbox"_s);
        QCOMPARE(fixture.driver().selectedRow(), forPs3);
        QCOMPARE(fixture.driver().entered("PresetName"), u"For PS3"_s);
        QCOMPARE(fixture.driver().shown("PDeviceList"), u"PS3"_s);
        QCOMPARE(fixture.driver().shown("PVideoActionList"), u"Pass Thru"_s);
        QCOMPARE(fixture.driver().shown("PVideoBitRateList"), u"Custom"_s);
        QCOMPARE(fixture.driver().entered("PVideoBitRate"), u"1000"_s);
        QCOMPARE(fixture.driver().shown("PWidthList"), u"Original"_s);
        QCOMPARE(fixture.driver().entered("PWidth"), QString());
        QCOMPARE(fixture.driver().shown("PStereoBitRateList"), u"160"_s);
        QCOMPARE(fixture.driver().shown("PSurroundBitRateList"), u"448"_s);
        QCOMPARE(fixture.driver().shown("PSubActionList"), u"Mux (soft)"_s);
        QVERIFY(!fixture.isChecked("PAudioAddStereo"));
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
        Fixture fixture;
        fixture.driver().pick(popup.constData(), entry);
        fixture.close();
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.stored(word).toString(), value.toString());
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
        Fixture fixture;
        fixture.driver().find(box.constData())->setFocus();
        fixture.driver().key(Qt::Key_Space);
        fixture.close();
        QTRY_VERIFY(fixture.sheet.isNull());
        for (const QString &each : {u"pAudioAddStereo"_s, u"pKeepStereoTrack"_s, u"pKeepSurroundTrack"_s})
            QCOMPARE(fixture.stored(each).toBool(), each == word);
    }

    void numbersCountOnlyWhereTheyAreCustom()
    {
        Fixture fixture;
        QVERIFY(fixture.driver().isEnabled("PVideoBitRate"));
        QVERIFY(!fixture.driver().isEnabled("PWidth"));
        fixture.driver().pick("PVideoBitRateList", u"Original"_s);
        QVERIFY(!fixture.driver().isEnabled("PVideoBitRate"));
        fixture.driver().pick("PWidthList", u"Custom"_s);
        QVERIFY(fixture.driver().isEnabled("PWidth"));
    }

    void numbersAreStored()
    {
        Fixture fixture;
        fixture.driver().pick("PWidthList", u"Custom"_s);
        fixture.driver().type("PWidth", u"720"_s);
        fixture.driver().type("PVideoBitRate", u"1500"_s);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.stored(u"pWidth"_s).toString(), u"720"_s);
        QCOMPARE(fixture.stored(u"pVideoBitRate"_s).toString(), u"1500"_s);
    }

    void lettersAreNoNumber()
    {
        Fixture fixture;
        fixture.driver().type("PVideoBitRate", u"2x5"_s);
        QCOMPARE(fixture.driver().entered("PVideoBitRate"), u"25"_s);
    }

    void anotherRowShowsItsOwnFields()
    {
        Fixture fixture;
        fixture.driver().find("PAudioAddStereo")->setFocus();
        fixture.driver().key(Qt::Key_Space);
        fixture.driver().chooseRow(forXbox);
        QCOMPARE(fixture.driver().shown("PDeviceList"), presetOf(fixture, forXbox).pDevice());
        QVERIFY(!fixture.isChecked("PAudioAddStereo"));
        fixture.driver().pick("PDeviceList", u"AVI"_s);
        QCOMPARE(presetOf(fixture, forXbox).pDevice(), u"AVI"_s);
        QCOMPARE(presetOf(fixture, forPs3).pDevice(), u"PS3"_s);
        fixture.driver().chooseRow(forPs3);
        QVERIFY(fixture.isChecked("PAudioAddStereo"));
    }

    void aBuiltInPresetIsEmptyAndOff()
    {
        Fixture fixture(1);
        QCOMPARE(fixture.driver().selectedRow(), 0);
        for (const char *word : {"PDeviceList", "PVideoActionList", "PVideoBitRateList", "PWidthList",
                                 "PStereoActionList", "PSurroundBitRateList", "PSubActionList"}) {
            QVERIFY2(!fixture.driver().isEnabled(word), word);
            QCOMPARE(fixture.driver().shown(word), QString());
        }
        for (const char *word : {"PresetName", "PVideoBitRate", "PWidth", "PAudioAddStereo"})
            QVERIFY2(!fixture.driver().isEnabled(word), word);
    }

    void aDeviceThatIsNotOfferedIsShown()
    {
        Fixture fixture;
        fixture.driver().click("AddPresetButton");
        QCOMPARE(fixture.driver().shown("PDeviceList"), u"Apple TV"_s);
        fixture.driver().chooseRow(forPs3);
        QCOMPARE(fixture.driver().find<QComboBox>("PDeviceList")->findText(u"Apple TV"_s), -1);
    }

    void storedGuessesAndOriginalsAreShown()
    {
        Fixture fixture;
        presetOf(fixture, forXbox).setPVideoActionIndex(3);
        presetOf(fixture, forXbox).setPStereoBitRate(u"Original"_s);
        fixture.driver().chooseRow(forXbox);
        QCOMPARE(fixture.driver().shown("PVideoActionList"), u"Best Guess"_s);
        QCOMPARE(fixture.driver().shown("PStereoBitRateList"), u"Original"_s);
        fixture.close();
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(presetOf(fixture, forXbox).pVideoActionIndex(), 3);
        QCOMPARE(presetOf(fixture, forXbox).pStereoBitRate(), u"Original"_s);
    }

    void presetsAreAddedNamedAndRemoved()
    {
        Fixture fixture;
        fixture.driver().click("AddPresetButton");
        QCOMPARE(fixture.driver().focus(), u"PresetName"_s);
        QTest::keyClicks(fixture.driver().find("PresetName"), u"For all"_s);
        fixture.driver().chooseRow(forPs3);
        fixture.driver().click("RemovePresetButton");
        QCOMPARE(fixture.driver().rows(), u"Extract Tracks, For Xbox, For all"_s);
        QCOMPARE(fixture.driver().selectedRow(), 0);
        fixture.close();
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.base.storedNames(u"presetSettingsArray"_s), u"For Xbox, For all"_s);
        QCOMPARE(fixture.base.presets.settingMethodIndex(), 1);
    }

    void aBuiltInsNameIsRefused()
    {
        Fixture fixture;
        fixture.driver().type("PresetName", u"Extract Tracks"_s);
        fixture.close();
        QVERIFY(fixture.sheet != nullptr && fixture.sheet->isVisible());
        QCOMPARE(fixture.driver().find<QLabel>("PresetRefusal")->text(),
                 u"The name \"Extract Tracks\" belongs to a built-in preset."_s);
        QCOMPARE(fixture.base.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
    }

    void closingAppliesOnce()
    {
        Fixture fixture;
        QSignalSpy methods(&fixture.base.presets, &KXPresetsController::methodsChanged);
        fixture.driver().chooseRow(forXbox);
        fixture.close();
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(methods.count(), 1);
        QCOMPARE(fixture.base.presets.currentPresetSettingName(), u"For Xbox"_s);
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
        Fixture fixture;
        QVERIFY(fixture.driver().find(control.constData())->toolTip().contains(start));
    }

    void everyControlHasANameForTheReader()
    {
        Fixture fixture;
        for (const QWidget *control : fixture.sheet->findChildren<QWidget *>()) {
            if (control->focusPolicy() != Qt::NoFocus && control->window() == fixture.sheet)
                QVERIFY2(!control->accessibleName().isEmpty(), control->metaObject()->className());
        }
    }
};

TESSARAY_TEST(PresetSettingsSheetTest)
#include "PresetSettingsSheetTest.moc"

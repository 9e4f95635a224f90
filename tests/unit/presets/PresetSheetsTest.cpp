#include "presets/KXPresetsController.h"

#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"
#include "support/presets/SheetFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using support::firstSubtitle;
using support::PresetFixture;
using support::secondSound;
using support::SheetFixture;

/// The two sheets in which presets are edited.
class PresetSheetsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noRowIsSelectedBeforeASheetOpens()
    {
        const SheetFixture fixture;
        QCOMPARE(fixture.presets.selectionPanelRow(), -1);
        QCOMPARE(fixture.presets.settingsPanelRow(), -1);
    }

    void openedSheetShowsTheChosenRule_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("audio");
        QTest::addColumn<QString>("subtitle");
        // "Manual" has no row: the first one is selected in its place.
        QTest::newRow("manual") << 0 << 0 << u"Audio Track Number|1|||"_s << firstSubtitle;
        QTest::newRow("first track") << 1 << 0 << u"Audio Track Number|1|||"_s << firstSubtitle;
        QTest::newRow("all tracks") << 2 << 1 << u"All||||"_s << u"All|1|Any Language|Any Codec"_s;
        QTest::newRow("a user's") << 3 << 2 << secondSound << firstSubtitle;
    }

    void openedSheetShowsTheChosenRule()
    {
        QFETCH(const int, index);
        SheetFixture fixture;
        fixture.presets.setSelectionMethodIndex(index);
        const QSignalSpy lists(&fixture.presets, &KXPresetsController::listsChanged);
        const QSignalSpy rows(&fixture.presets, &KXPresetsController::panelRowsChanged);
        fixture.presets.openPresetSelectionPanel();
        QTEST(fixture.presets.selectionPanelRow(), "row");
        QTEST(support::textOf(fixture.presets.filterEditor().currentAudioFilterArray()), "audio");
        QTEST(support::textOf(fixture.presets.filterEditor().currentSubtitleFilterArray()), "subtitle");
        QCOMPARE(lists.count(), 1); // the table loads anew
        QCOMPARE(rows.count(), 1);
        QCOMPARE(fixture.presets.selectionMethodIndex(), index);
    }

    void openedSheetShowsTheChosenSettings_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("row");
        QTest::newRow("manual") << 0 << 0;
        QTest::newRow("extract tracks") << 1 << 0;
        QTest::newRow("a user's") << 2 << 1;
        QTest::newRow("the last") << 3 << 2;
    }

    void openedSheetShowsTheChosenSettings()
    {
        QFETCH(const int, index);
        SheetFixture fixture;
        fixture.presets.setSettingMethodIndex(index);
        const QSignalSpy lists(&fixture.presets, &KXPresetsController::listsChanged);
        const QSignalSpy rows(&fixture.presets, &KXPresetsController::panelRowsChanged);
        fixture.presets.openPresetSettingsPanel();
        QTEST(fixture.presets.settingsPanelRow(), "row");
        QCOMPARE(lists.count(), 1);
        QCOMPARE(rows.count(), 1);
        QCOMPARE(fixture.presets.selectionPanelRow(), -1); // the other sheet is another one
        QCOMPARE(fixture.presets.settingMethodIndex(), index);
    }

    void openedSheetWithoutRowsSelectsNone()
    {
        SheetFixture fixture;
        for (int i = 0; i < 4; ++i) {
            fixture.presets.selectionListTableClicked(0);
            fixture.presets.removePresetSelection();
            fixture.presets.settingsListTableClicked(0);
            fixture.presets.removePresetSettings();
        }
        QCOMPARE(fixture.listed(), u"Manual"_s);
        QCOMPARE(fixture.settingsListed(), u"Manual"_s);
        fixture.presets.openPresetSelectionPanel();
        fixture.presets.openPresetSettingsPanel();
        QCOMPARE(fixture.presets.selectionPanelRow(), -1);
        QCOMPARE(fixture.presets.settingsPanelRow(), -1);
        QVERIFY(fixture.presets.filterEditor().currentAudioFilterArray().isEmpty());
    }

    void clickedRowShowsItsFilters()
    {
        SheetFixture fixture;
        fixture.presets.openPresetSelectionPanel();
        const QSignalSpy rows(&fixture.presets, &KXPresetsController::panelRowsChanged);
        FilterEditor &editor = fixture.presets.filterEditor();
        fixture.presets.selectionListTableClicked(2);
        QCOMPARE(fixture.presets.selectionPanelRow(), 2);
        QCOMPARE(support::textOf(editor.currentAudioFilterArray()), secondSound);
        QCOMPARE(support::textOf(editor.currentSubtitleFilterArray()), firstSubtitle);
        editor.addFilterButtonClicked(192);
        QVERIFY(editor.af2Visibility());
        fixture.presets.selectionListTableClicked(3);
        QVERIFY(!editor.af2Visibility()); // the rows follow the preset's filters
        fixture.presets.selectionListTableClicked(2);
        QVERIFY(editor.af2Visibility());
        QCOMPARE(rows.count(), 3);
        fixture.presets.settingsListTableClicked(1);
        QCOMPARE(fixture.presets.settingsPanelRow(), 1);
        QCOMPARE(fixture.presets.selectionPanelRow(), 2);
        QCOMPARE(rows.count(), 4);
        QCOMPARE(fixture.presets.selectionMethodIndex(), 0); // nothing is chosen before OK
        QCOMPARE(fixture.presets.settingMethodIndex(), 0);
    }

    void clickBesideTheRowsShowsNoFilters_data()
    {
        QTest::addColumn<int>("row");
        QTest::newRow("none") << -1; // this is not "Manual", which no sheet ever shows
        QTest::newRow("further up") << -2;
        QTest::newRow("behind the last") << 4;
    }

    void clickBesideTheRowsShowsNoFilters()
    {
        QFETCH(const int, row);
        SheetFixture fixture;
        fixture.presets.selectionListTableClicked(2);
        fixture.presets.selectionListTableClicked(row);
        QVERIFY(fixture.presets.filterEditor().currentAudioFilterArray().isEmpty());
        QVERIFY(fixture.presets.filterEditor().currentSubtitleFilterArray().isEmpty());
        fixture.presets.filterEditor().addFilterButtonClicked(192);
        QCOMPARE(support::textOf(fixture.presets.presetSelectionsList().at(0)->pAudioFilterArray()),
                 u"None|1|||"_s);
    }

    void onlyUsersPresetsCanHaveTheirFiltersEdited()
    {
        SheetFixture fixture;
        FilterEditor &editor = fixture.presets.filterEditor();
        for (int row = 0; row < 4; ++row) {
            fixture.presets.selectionListTableClicked(row);
            const bool isUsers = row >= 2;
            QCOMPARE(editor.rows(FilterKind::Audio).filterButton(1).enabled, isUsers);
            QCOMPARE(editor.rows(FilterKind::Subtitle).addButton(2).enabled, isUsers);
        }
    }

    void addedPresetsStandLast()
    {
        SheetFixture fixture;
        fixture.presets.openPresetSelectionPanel();
        fixture.presets.openPresetSettingsPanel();
        const QSignalSpy lists(&fixture.presets, &KXPresetsController::listsChanged);
        fixture.presets.addPresetSelection();
        QCOMPARE(fixture.listed(), u"Manual, First Track, All Tracks, Second, Own, User Preset"_s);
        QCOMPARE(lists.count(), 1);
        fixture.presets.addPresetSettings();
        QCOMPARE(fixture.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox, User Preset"_s);
        QCOMPARE(lists.count(), 2);
        fixture.presets.addPresetSelection(); // the same name twice
        fixture.presets.addPresetSettings();
        QCOMPARE(fixture.presets.presetSelectionsList().size(), 7);
        QCOMPARE(fixture.presets.presetSettingsList().size(), 6);
        QVERIFY(fixture.presets.presetSelectionsList().constLast()->isEditable());
        QCOMPARE(support::textOf(fixture.presets.presetSelectionsList().constLast()->pSubtitleFilterArray()),
                 u"None|1|Any Language|Any Codec"_s);
        QVERIFY(fixture.presets.presetSettingsList().constLast()->isEditable());
        QCOMPARE(fixture.presets.presetSettingsList().constLast()->pDevice(), u"Apple TV"_s);
        QCOMPARE(fixture.presets.selectionPanelRow(), 0); // the selected row stays
        QCOMPARE(fixture.presets.settingsPanelRow(), 0);
        QCOMPARE(fixture.storedNames(u"presetSelectionsArray"_s), u"Second, Own"_s); // not before OK
        QCOMPARE(fixture.storedNames(u"presetSettingsArray"_s), u"For PS3, For Xbox"_s);
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Second, Own"_s);
    }

    void removingSelectsTheRowBefore()
    {
        SheetFixture fixture;
        fixture.presets.selectionListTableClicked(3);
        const QSignalSpy lists(&fixture.presets, &KXPresetsController::listsChanged);
        const QSignalSpy rows(&fixture.presets, &KXPresetsController::panelRowsChanged);
        fixture.presets.removePresetSelection();
        QCOMPARE(fixture.listed(), u"Manual, First Track, All Tracks, Second"_s);
        QCOMPARE(fixture.presets.selectionPanelRow(), 2);
        QCOMPARE(support::textOf(fixture.presets.filterEditor().currentAudioFilterArray()), secondSound);
        QCOMPARE(lists.count(), 1);
        QCOMPARE(rows.count(), 1);
        fixture.presets.settingsListTableClicked(1);
        fixture.presets.removePresetSettings();
        QCOMPARE(fixture.settingsListed(), u"Manual, Extract Tracks, For Xbox"_s);
        QCOMPARE(fixture.presets.settingsPanelRow(), 0);
        QCOMPARE(lists.count(), 2);
        QCOMPARE(rows.count(), 3);
    }

    void removingTheFirstRowSelectsNone()
    {
        SheetFixture fixture;
        fixture.presets.selectionListTableClicked(0);
        fixture.presets.removePresetSelection();
        QCOMPARE(fixture.presets.selectionPanelRow(), -1);
        QVERIFY(fixture.presets.filterEditor().currentAudioFilterArray().isEmpty());
        fixture.presets.settingsListTableClicked(0);
        fixture.presets.removePresetSettings();
        QCOMPARE(fixture.presets.settingsPanelRow(), -1);
        QCOMPARE(fixture.listed(), u"Manual, All Tracks, Second, Own"_s);
        QCOMPARE(fixture.settingsListed(), u"Manual, For PS3, For Xbox"_s);
    }

    /// Meant: nothing asks whether a preset may be removed, since built-ins are made anew.
    void removedBuiltInsAreBackAtTheNextStart()
    {
        SheetFixture fixture;
        fixture.presets.selectionListTableClicked(1);
        fixture.presets.removePresetSelection();
        fixture.presets.removePresetSelection();
        fixture.presets.settingsListTableClicked(0);
        fixture.presets.removePresetSettings();
        QVERIFY(fixture.presets.okPresetSelectionPanel().isNull());
        QVERIFY(fixture.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(fixture.names(), u"Manual, Second, Own"_s);
        QCOMPARE(fixture.settingsNames(), u"Manual, For PS3, For Xbox"_s);
        const PresetFixture next(fixture.scratch);
        QCOMPARE(next.presets.presetSelectionsNamesList().join(u", "_s),
                 u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(next.presets.presetSettingsNamesList().join(u", "_s),
                 u"Manual, Extract Tracks, For PS3, For Xbox"_s);
    }

    void removingWithoutASelectedRowRemovesNothing_data()
    {
        QTest::addColumn<int>("row");
        QTest::newRow("none") << -1; // the entry before the first row is "Manual"
        QTest::newRow("further up") << -2;
        QTest::newRow("behind the last") << 4;
    }

    void removingWithoutASelectedRowRemovesNothing()
    {
        QFETCH(const int, row);
        SheetFixture fixture;
        fixture.presets.selectionListTableClicked(row);
        fixture.presets.settingsListTableClicked(row);
        fixture.presets.removePresetSelection();
        fixture.presets.removePresetSettings();
        QCOMPARE(fixture.listed(), u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(fixture.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
        QCOMPARE(fixture.presets.selectionPanelRow(), row);
        QCOMPARE(fixture.presets.settingsPanelRow(), row);
    }
};

TESSARAY_TEST(PresetSheetsTest)
#include "PresetSheetsTest.moc"

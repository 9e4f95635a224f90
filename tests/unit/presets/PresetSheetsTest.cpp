#include "presets/KXPresetsController.h"

#include "support/PresetBench.h"
#include "support/Scratch.h"
#include "support/SheetBench.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using support::firstSubtitle;
using support::PresetBench;
using support::secondSound;
using support::SheetBench;

/// The two sheets in which presets are edited.
class PresetSheetsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noRowIsSelectedBeforeASheetOpens()
    {
        const SheetBench bench;
        QCOMPARE(bench.presets.selectionPanelRow(), -1);
        QCOMPARE(bench.presets.settingsPanelRow(), -1);
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
        SheetBench bench;
        bench.presets.setSelectionMethodIndex(index);
        const QSignalSpy lists(&bench.presets, &KXPresetsController::listsChanged);
        const QSignalSpy rows(&bench.presets, &KXPresetsController::panelRowsChanged);
        bench.presets.openPresetSelectionPanel();
        QTEST(bench.presets.selectionPanelRow(), "row");
        QTEST(support::textOf(bench.presets.filterEditor().currentAudioFilterArray()), "audio");
        QTEST(support::textOf(bench.presets.filterEditor().currentSubtitleFilterArray()), "subtitle");
        QCOMPARE(lists.count(), 1); // the table loads anew
        QCOMPARE(rows.count(), 1);
        QCOMPARE(bench.presets.selectionMethodIndex(), index);
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
        SheetBench bench;
        bench.presets.setSettingMethodIndex(index);
        const QSignalSpy lists(&bench.presets, &KXPresetsController::listsChanged);
        const QSignalSpy rows(&bench.presets, &KXPresetsController::panelRowsChanged);
        bench.presets.openPresetSettingsPanel();
        QTEST(bench.presets.settingsPanelRow(), "row");
        QCOMPARE(lists.count(), 1);
        QCOMPARE(rows.count(), 1);
        QCOMPARE(bench.presets.selectionPanelRow(), -1); // the other sheet is another one
        QCOMPARE(bench.presets.settingMethodIndex(), index);
    }

    void openedSheetWithoutRowsSelectsNone()
    {
        SheetBench bench;
        for (int i = 0; i < 4; ++i) {
            bench.presets.selectionListTableClicked(0);
            bench.presets.removePresetSelection();
            bench.presets.settingsListTableClicked(0);
            bench.presets.removePresetSettings();
        }
        QCOMPARE(bench.listed(), u"Manual"_s);
        QCOMPARE(bench.settingsListed(), u"Manual"_s);
        bench.presets.openPresetSelectionPanel();
        bench.presets.openPresetSettingsPanel();
        QCOMPARE(bench.presets.selectionPanelRow(), -1);
        QCOMPARE(bench.presets.settingsPanelRow(), -1);
        QVERIFY(bench.presets.filterEditor().currentAudioFilterArray().isEmpty());
    }

    void clickedRowShowsItsFilters()
    {
        SheetBench bench;
        bench.presets.openPresetSelectionPanel();
        const QSignalSpy rows(&bench.presets, &KXPresetsController::panelRowsChanged);
        FilterEditor &editor = bench.presets.filterEditor();
        bench.presets.selectionListTableClicked(2);
        QCOMPARE(bench.presets.selectionPanelRow(), 2);
        QCOMPARE(support::textOf(editor.currentAudioFilterArray()), secondSound);
        QCOMPARE(support::textOf(editor.currentSubtitleFilterArray()), firstSubtitle);
        editor.addFilterButtonClicked(192);
        QVERIFY(editor.af2Visibility());
        bench.presets.selectionListTableClicked(3);
        QVERIFY(!editor.af2Visibility()); // the rows follow the preset's filters
        bench.presets.selectionListTableClicked(2);
        QVERIFY(editor.af2Visibility());
        QCOMPARE(rows.count(), 3);
        bench.presets.settingsListTableClicked(1);
        QCOMPARE(bench.presets.settingsPanelRow(), 1);
        QCOMPARE(bench.presets.selectionPanelRow(), 2);
        QCOMPARE(rows.count(), 4);
        QCOMPARE(bench.presets.selectionMethodIndex(), 0); // nothing is chosen before OK
        QCOMPARE(bench.presets.settingMethodIndex(), 0);
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
        SheetBench bench;
        bench.presets.selectionListTableClicked(2);
        bench.presets.selectionListTableClicked(row);
        QVERIFY(bench.presets.filterEditor().currentAudioFilterArray().isEmpty());
        QVERIFY(bench.presets.filterEditor().currentSubtitleFilterArray().isEmpty());
        bench.presets.filterEditor().addFilterButtonClicked(192);
        QCOMPARE(support::textOf(bench.presets.presetSelectionsList().at(0)->pAudioFilterArray()),
                 u"None|1|||"_s);
    }

    void onlyUsersPresetsCanHaveTheirFiltersEdited()
    {
        SheetBench bench;
        FilterEditor &editor = bench.presets.filterEditor();
        for (int row = 0; row < 4; ++row) {
            bench.presets.selectionListTableClicked(row);
            const bool isUsers = row >= 2;
            QCOMPARE(editor.rows(FilterKind::Audio).filterButton(1).enabled, isUsers);
            QCOMPARE(editor.rows(FilterKind::Subtitle).addButton(2).enabled, isUsers);
        }
    }

    void addedPresetsStandLast()
    {
        SheetBench bench;
        bench.presets.openPresetSelectionPanel();
        bench.presets.openPresetSettingsPanel();
        const QSignalSpy lists(&bench.presets, &KXPresetsController::listsChanged);
        bench.presets.addPresetSelection();
        QCOMPARE(bench.listed(), u"Manual, First Track, All Tracks, Second, Own, User Preset"_s);
        QCOMPARE(lists.count(), 1);
        bench.presets.addPresetSettings();
        QCOMPARE(bench.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox, User Preset"_s);
        QCOMPARE(lists.count(), 2);
        bench.presets.addPresetSelection(); // the same name twice
        bench.presets.addPresetSettings();
        QCOMPARE(bench.presets.presetSelectionsList().size(), 7);
        QCOMPARE(bench.presets.presetSettingsList().size(), 6);
        QVERIFY(bench.presets.presetSelectionsList().constLast()->isEditable());
        QCOMPARE(support::textOf(bench.presets.presetSelectionsList().constLast()->pSubtitleFilterArray()),
                 u"None|1|Any Language|Any Codec"_s);
        QVERIFY(bench.presets.presetSettingsList().constLast()->isEditable());
        QCOMPARE(bench.presets.presetSettingsList().constLast()->pDevice(), u"Apple TV"_s);
        QCOMPARE(bench.presets.selectionPanelRow(), 0); // the selected row stays
        QCOMPARE(bench.presets.settingsPanelRow(), 0);
        QCOMPARE(bench.storedNames(u"presetSelectionsArray"_s), u"Second, Own"_s); // not before OK
        QCOMPARE(bench.storedNames(u"presetSettingsArray"_s), u"For PS3, For Xbox"_s);
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Second, Own"_s);
    }

    void removingSelectsTheRowBefore()
    {
        SheetBench bench;
        bench.presets.selectionListTableClicked(3);
        const QSignalSpy lists(&bench.presets, &KXPresetsController::listsChanged);
        const QSignalSpy rows(&bench.presets, &KXPresetsController::panelRowsChanged);
        bench.presets.removePresetSelection();
        QCOMPARE(bench.listed(), u"Manual, First Track, All Tracks, Second"_s);
        QCOMPARE(bench.presets.selectionPanelRow(), 2);
        QCOMPARE(support::textOf(bench.presets.filterEditor().currentAudioFilterArray()), secondSound);
        QCOMPARE(lists.count(), 1);
        QCOMPARE(rows.count(), 1);
        bench.presets.settingsListTableClicked(1);
        bench.presets.removePresetSettings();
        QCOMPARE(bench.settingsListed(), u"Manual, Extract Tracks, For Xbox"_s);
        QCOMPARE(bench.presets.settingsPanelRow(), 0);
        QCOMPARE(lists.count(), 2);
        QCOMPARE(rows.count(), 3);
    }

    void removingTheFirstRowSelectsNone()
    {
        SheetBench bench;
        bench.presets.selectionListTableClicked(0);
        bench.presets.removePresetSelection();
        QCOMPARE(bench.presets.selectionPanelRow(), -1);
        QVERIFY(bench.presets.filterEditor().currentAudioFilterArray().isEmpty());
        bench.presets.settingsListTableClicked(0);
        bench.presets.removePresetSettings();
        QCOMPARE(bench.presets.settingsPanelRow(), -1);
        QCOMPARE(bench.listed(), u"Manual, All Tracks, Second, Own"_s);
        QCOMPARE(bench.settingsListed(), u"Manual, For PS3, For Xbox"_s);
    }

    /// Meant: nothing asks whether a preset may be removed, since built-ins are made anew.
    void removedBuiltInsAreBackAtTheNextStart()
    {
        SheetBench bench;
        bench.presets.selectionListTableClicked(1);
        bench.presets.removePresetSelection();
        bench.presets.removePresetSelection();
        bench.presets.settingsListTableClicked(0);
        bench.presets.removePresetSettings();
        QVERIFY(bench.presets.okPresetSelectionPanel().isNull());
        QVERIFY(bench.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(bench.names(), u"Manual, Second, Own"_s);
        QCOMPARE(bench.settingsNames(), u"Manual, For PS3, For Xbox"_s);
        const PresetBench next(bench.scratch);
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
        SheetBench bench;
        bench.presets.selectionListTableClicked(row);
        bench.presets.settingsListTableClicked(row);
        bench.presets.removePresetSelection();
        bench.presets.removePresetSettings();
        QCOMPARE(bench.listed(), u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(bench.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
        QCOMPARE(bench.presets.selectionPanelRow(), row);
        QCOMPARE(bench.presets.settingsPanelRow(), row);
    }
};

QTEST_GUILESS_MAIN(PresetSheetsTest)
#include "PresetSheetsTest.moc"

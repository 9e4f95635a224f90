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

/// Names in the sheets, and what OK makes of everything.
class PresetSheetsOkTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void presetsAreRenamed()
    {
        SheetBench bench;
        QVERIFY(bench.presets.renamePresetSelection(2, u"Zweite Spur"_s).isNull());
        QVERIFY(bench.presets.renamePresetSettings(1, u"Für alle"_s).isNull());
        QCOMPARE(bench.listed(), u"Manual, First Track, All Tracks, Zweite Spur, Own"_s);
        QCOMPARE(bench.settingsListed(), u"Manual, Extract Tracks, Für alle, For Xbox"_s);
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Second, Own"_s); // not before OK
        QVERIFY(bench.presets.okPresetSelectionPanel().isNull());
        QVERIFY(bench.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Zweite Spur, Own"_s);
        QCOMPARE(bench.settingsNames(), u"Manual, Extract Tracks, Für alle, For Xbox"_s);
        QCOMPARE(bench.storedNames(u"presetSelectionsArray"_s), u"Zweite Spur, Own"_s);
        QCOMPARE(bench.storedNames(u"presetSettingsArray"_s), u"Für alle, For Xbox"_s);
    }

    void namesOfBuiltInsAndNoneAreRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("sentence");
        const QString needed = u"A preset needs a name."_s;
        QTest::newRow("empty") << u""_s << needed;
        QTest::newRow("blank") << u"  \t"_s << needed;
        for (const char *name : {"Manual", "Extract Tracks", "Remove Tracks", "First Track", "All Tracks"}) {
            const QString text = QString::fromLatin1(name);
            QTest::newRow(name) << text << u"The name \"%1\" belongs to a built-in preset."_s.arg(text);
        }
    }

    void namesOfBuiltInsAndNoneAreRefused()
    {
        QFETCH(const QString, name);
        QFETCH(const QString, sentence);
        SheetBench bench;
        QCOMPARE(bench.presets.renamePresetSelection(2, name), sentence);
        QCOMPARE(bench.presets.renamePresetSettings(1, name), sentence);
        QCOMPARE(bench.listed(), u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(bench.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
    }

    void namesThatOnlyLookLikeABuiltInsAreFree_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("other capitals") << u"manual"_s;
        QTest::newRow("longer") << u"All Tracks (2)"_s;
        QTest::newRow("what a new one is called") << u"User Preset"_s;
        QTest::newRow("another user's") << u"Own"_s;
        QTest::newRow("its own") << u"Second"_s;
    }

    void namesThatOnlyLookLikeABuiltInsAreFree()
    {
        QFETCH(const QString, name);
        SheetBench bench;
        QVERIFY(bench.presets.renamePresetSelection(2, name).isNull());
        QCOMPARE(bench.presets.presetSelectionsList().at(3)->pName(), name);
        QVERIFY(bench.presets.renamePresetSettings(1, name).isNull());
        QCOMPARE(bench.presets.presetSettingsList().at(2)->pName(), name);
    }

    void onlyUsersPresetsCanBeRenamed_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("settingsRow");
        QTest::newRow("first built-in") << 0 << 0;
        QTest::newRow("last built-in") << 1 << 0;
        QTest::newRow("none") << -1 << -1;
        QTest::newRow("further up") << -2 << -2;
        QTest::newRow("behind the last") << 4 << 3;
    }

    void onlyUsersPresetsCanBeRenamed()
    {
        QFETCH(const int, row);
        QFETCH(const int, settingsRow);
        SheetBench bench;
        const QString sentence = u"This preset can't be renamed."_s;
        QCOMPARE(bench.presets.renamePresetSelection(row, u"Mine"_s), sentence);
        QCOMPARE(bench.presets.renamePresetSettings(settingsRow, u"Mine"_s), sentence);
        QCOMPARE(bench.listed(), u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(bench.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
    }

    void okChoosesTheSelectedRuleAndStores()
    {
        SheetBench bench;
        bench.presets.openPresetSelectionPanel();
        bench.presets.addPresetSelection();
        bench.presets.selectionListTableClicked(2);
        QCOMPARE(bench.ticked(), u""_s);
        QVERIFY(bench.presets.okPresetSelectionPanel().isNull());
        QCOMPARE(bench.presets.selectionMethodIndex(), 3);
        QCOMPARE(bench.ticked(), u"1 3 4"_s);
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Second, Own, User Preset"_s);
        QCOMPARE(bench.storedNames(u"presetSelectionsArray"_s), u"Second, Own, User Preset"_s);
        QCOMPARE(bench.storedNames(u"presetSettingsArray"_s), u"For PS3, For Xbox"_s);
    }

    void okChoosesTheSelectedSettingsAndStores()
    {
        SheetBench bench;
        bench.presets.openPresetSettingsPanel();
        bench.presets.addPresetSettings();
        bench.presets.settingsListTableClicked(2);
        QList<bool> seen;
        connect(&bench.program.controller, &KXSelectionController::trackRowsDeselected, this,
                [&] { seen.append(bench.presets.changingPresetSetting()); });
        QVERIFY(bench.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(bench.presets.settingMethodIndex(), 3);
        QCOMPARE(bench.program.controller.mp4Device(), u"Xbox"_s);
        QCOMPARE(seen, QList<bool>{true});
        QCOMPARE(bench.settingsNames(), u"Manual, Extract Tracks, For PS3, For Xbox, User Preset"_s);
        QCOMPARE(bench.storedNames(u"presetSettingsArray"_s), u"For PS3, For Xbox, User Preset"_s);
    }

    /// The row before the first is that of "Manual".
    void okWithoutASelectedRowChoosesManual()
    {
        SheetBench bench;
        bench.presets.setSelectionMethodIndex(1);
        bench.presets.setSettingMethodIndex(1);
        bench.presets.selectionListTableClicked(-1);
        bench.presets.settingsListTableClicked(-1);
        QVERIFY(bench.presets.okPresetSelectionPanel().isNull());
        QVERIFY(bench.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(bench.presets.selectionMethodIndex(), 0);
        QCOMPARE(bench.presets.settingMethodIndex(), 0);
        QCOMPARE(bench.ticked(), u"1 2 4"_s); // as "First Track" left them
    }

    void okAfterRemovingTheChosenOneChoosesTheRowBefore()
    {
        SheetBench bench;
        bench.presets.setSelectionMethodIndex(4);
        bench.presets.setSettingMethodIndex(3);
        bench.presets.openPresetSelectionPanel();
        bench.presets.openPresetSettingsPanel();
        bench.presets.removePresetSelection();
        bench.presets.removePresetSettings();
        QVERIFY(bench.presets.okPresetSelectionPanel().isNull());
        QVERIFY(bench.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(bench.presets.selectionMethodIndex(), 3);
        QCOMPARE(bench.ticked(), u"1 3 4"_s);
        QCOMPARE(bench.presets.currentPresetSettingName(), u"For PS3"_s);
        QCOMPARE(bench.program.controller.mp4Device(), u"PS3"_s);
    }

    void okWritesBackWhatIsBeingEdited()
    {
        SheetBench bench;
        FilterEditor &editor = bench.presets.filterEditor();
        bench.presets.selectionListTableClicked(2);
        editor.pointerEntered(101);
        editor.editFilterPanel(101);
        editor.setField(FilterKind::Audio, u"currentTrackNumber"_s, u"1"_s);
        editor.pointerEntered(201);
        editor.editFilterPanel(201);
        editor.setField(FilterKind::Subtitle, u"currentTrackChoice"_s, u"None"_s);
        QVERIFY(bench.presets.okPresetSelectionPanel().isNull());
        const QVariantMap record =
            support::storedSettings(bench.scratch).value(u"presetSelectionsArray"_s).toList().at(0).toMap();
        QCOMPARE(support::textOf(record.value(u"pAudioFilterArray"_s).toList()),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(support::textOf(record.value(u"pSubtitleFilterArray"_s).toList()),
                 u"None|1|Any Language|Any Codec"_s);
        QCOMPARE(bench.ticked(), u"1 2"_s); // and applied as edited
        QVERIFY(!editor.isEditingAudioFilter());
        QVERIFY(!editor.isEditingSubtitleFilter());
        QVERIFY(editor.currentAudioFilterArray().isEmpty()); // the sheet is closed
    }

    void anotherRowWritesBackWhatIsBeingEdited()
    {
        SheetBench bench;
        FilterEditor &editor = bench.presets.filterEditor();
        bench.presets.selectionListTableClicked(2);
        editor.pointerEntered(101);
        editor.editFilterPanel(101);
        editor.setField(FilterKind::Audio, u"currentTrackNumber"_s, u"7"_s);
        bench.presets.selectionListTableClicked(3);
        QCOMPARE(support::textOf(bench.presets.presetSelectionsList().at(3)->pAudioFilterArray()),
                 u"Audio Track Number|7|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(support::textOf(bench.presets.presetSelectionsList().at(4)->pAudioFilterArray()),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
    }

    void removingWhileEditingChangesNoOther()
    {
        SheetBench bench;
        FilterEditor &editor = bench.presets.filterEditor();
        bench.presets.selectionListTableClicked(3);
        editor.pointerEntered(101);
        editor.editFilterPanel(101);
        editor.setField(FilterKind::Audio, u"currentTrackNumber"_s, u"7"_s);
        bench.presets.removePresetSelection();
        QCOMPARE(bench.listed(), u"Manual, First Track, All Tracks, Second"_s);
        QCOMPARE(support::textOf(bench.presets.presetSelectionsList().at(3)->pAudioFilterArray()),
                 secondSound);
        QVERIFY(!editor.isEditingAudioFilter());
    }

    void okThatCantStoreSaysSoAndKeepsWhatWasEdited()
    {
        SheetBench bench;
        bench.presets.selectionListTableClicked(2);
        bench.presets.settingsListTableClicked(1);
        QVERIFY(bench.presets.renamePresetSelection(2, u"Mine"_s).isNull());
        QVERIFY(bench.presets.renamePresetSettings(1, u"Mine"_s).isNull());
        QVERIFY(bench.block());
        QVERIFY(bench.presets.okPresetSelectionPanel().startsWith(u"The settings in"_s));
        QVERIFY(bench.presets.okPresetSettingsPanel().startsWith(u"The settings in"_s));
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Mine, Own"_s);
        QCOMPARE(bench.settingsNames(), u"Manual, Extract Tracks, Mine, For Xbox"_s);
        QCOMPARE(bench.presets.selectionMethodIndex(), 3);
        QCOMPARE(bench.presets.settingMethodIndex(), 2);
    }
};

QTEST_GUILESS_MAIN(PresetSheetsOkTest)
#include "PresetSheetsOkTest.moc"

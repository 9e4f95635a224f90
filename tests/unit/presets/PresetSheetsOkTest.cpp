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

/// Names in the sheets, and what OK makes of everything.
class PresetSheetsOkTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void presetsAreRenamed()
    {
        SheetFixture fixture;
        QVERIFY(fixture.presets.renamePresetSelection(2, u"Zweite Spur"_s).isNull());
        QVERIFY(fixture.presets.renamePresetSettings(1, u"Für alle"_s).isNull());
        QCOMPARE(fixture.listed(), u"Manual, First Track, All Tracks, Zweite Spur, Own"_s);
        QCOMPARE(fixture.settingsListed(), u"Manual, Extract Tracks, Für alle, For Xbox"_s);
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Second, Own"_s); // not before OK
        QVERIFY(fixture.presets.okPresetSelectionPanel().isNull());
        QVERIFY(fixture.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Zweite Spur, Own"_s);
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, Für alle, For Xbox"_s);
        QCOMPARE(fixture.storedNames(u"presetSelectionsArray"_s), u"Zweite Spur, Own"_s);
        QCOMPARE(fixture.storedNames(u"presetSettingsArray"_s), u"Für alle, For Xbox"_s);
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
        SheetFixture fixture;
        QCOMPARE(fixture.presets.renamePresetSelection(2, name), sentence);
        QCOMPARE(fixture.presets.renamePresetSettings(1, name), sentence);
        QCOMPARE(fixture.listed(), u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(fixture.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
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
        SheetFixture fixture;
        QVERIFY(fixture.presets.renamePresetSelection(2, name).isNull());
        QCOMPARE(fixture.presets.presetSelectionsList().at(3)->pName(), name);
        QVERIFY(fixture.presets.renamePresetSettings(1, name).isNull());
        QCOMPARE(fixture.presets.presetSettingsList().at(2)->pName(), name);
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
        SheetFixture fixture;
        const QString sentence = u"This preset can't be renamed."_s;
        QCOMPARE(fixture.presets.renamePresetSelection(row, u"Mine"_s), sentence);
        QCOMPARE(fixture.presets.renamePresetSettings(settingsRow, u"Mine"_s), sentence);
        QCOMPARE(fixture.listed(), u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(fixture.settingsListed(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
    }

    void aCancelledSheetOfTracksChangesNothing()
    {
        SheetFixture fixture;
        const QByteArray stored = fixture.scratch.read(u"defaults.json"_s);
        const QList<PresetSelectionsPointer> before = fixture.presets.presetSelectionsList();
        QVariantList records;
        for (const PresetSelectionsPointer &preset : before)
            records.append(preset->makeRecord());
        fixture.presets.openPresetSelectionPanel();
        fixture.presets.addPresetSelection();
        fixture.presets.selectionListTableClicked(0);
        fixture.presets.removePresetSelection(); // a built-in
        fixture.presets.selectionListTableClicked(1);
        QVERIFY(fixture.presets.renamePresetSelection(1, u"Changed"_s).isNull());
        fixture.presets.presetSelectionsList().at(2)->setPSelectedVideoTrack(u"0"_s);
        fixture.presets.filterEditor().addFilterButtonClicked(192);
        fixture.presets.filterEditor().pointerEntered(101);
        fixture.presets.filterEditor().editFilterPanel(101);
        fixture.presets.filterEditor().setField(FilterKind::Audio, u"currentTrackNumber"_s, u"9"_s);
        fixture.presets.cancelPresetSelectionPanel();
        QCOMPARE(fixture.presets.presetSelectionsList(), before);
        for (qsizetype i = 0; i < before.size(); ++i)
            QCOMPARE(before.at(i)->makeRecord(), records.at(i).toMap());
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(fixture.presets.selectionMethodIndex(), 0);
        QCOMPARE(fixture.ticked(), u""_s);
        QCOMPARE(fixture.scratch.read(u"defaults.json"_s), stored);
        fixture.presets.cancelPresetSelectionPanel(); // there is no sheet now
        QCOMPARE(fixture.presets.presetSelectionsList(), before);
    }

    void aCancelledSheetOfSettingsChangesNothing()
    {
        SheetFixture fixture;
        const QByteArray stored = fixture.scratch.read(u"defaults.json"_s);
        const QList<PresetSettingsPointer> before = fixture.presets.presetSettingsList();
        const QVariantMap record = before.at(2)->makeRecord();
        fixture.presets.openPresetSettingsPanel();
        fixture.presets.addPresetSettings();
        QVERIFY(fixture.presets.renamePresetSettings(1, u"Changed"_s).isNull());
        fixture.presets.presetSettingsList().at(2)->setPWidth(u"99"_s);
        fixture.presets.settingsListTableClicked(2);
        fixture.presets.removePresetSettings();
        fixture.presets.cancelPresetSettingsPanel();
        QCOMPARE(fixture.presets.presetSettingsList(), before);
        QCOMPARE(before.at(2)->makeRecord(), record);
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, For PS3, For Xbox"_s);
        QCOMPARE(fixture.presets.settingMethodIndex(), 0);
        QCOMPARE(fixture.scratch.read(u"defaults.json"_s), stored);
    }

    void cancelAfterAFailedSavingTakesTheChoiceBack()
    {
        SheetFixture fixture;
        QVERIFY(fixture.block());
        fixture.presets.openPresetSelectionPanel();
        fixture.presets.openPresetSettingsPanel();
        fixture.presets.selectionListTableClicked(2);
        fixture.presets.settingsListTableClicked(1);
        QVERIFY(!fixture.presets.okPresetSelectionPanel().isNull());
        QVERIFY(!fixture.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(fixture.presets.selectionMethodIndex(), 3);
        fixture.presets.cancelPresetSelectionPanel();
        fixture.presets.cancelPresetSettingsPanel();
        QCOMPARE(fixture.presets.selectionMethodIndex(), 0);
        QCOMPARE(fixture.presets.settingMethodIndex(), 0);
    }

    void okSaysWhatItWillApply()
    {
        SheetFixture fixture;
        fixture.presets.openPresetSelectionPanel();
        fixture.presets.openPresetSettingsPanel();
        fixture.presets.selectionListTableClicked(2);
        QCOMPARE(
            fixture.presets.okPresetSelectionSentence(),
            u"OK saves your presets and applies \"Second\". The first track is taken if it is video. Audio: "
            "track 2. Subtitles: track 1."_s);
        fixture.presets.settingsListTableClicked(1);
        QCOMPARE(
            fixture.presets.okPresetSettingsSentence(),
            u"OK saves your presets and applies \"For PS3\". For PS3. The video is copied. Stereo sound is "
            "copied. Surround sound is copied. Subtitles stay tracks."_s);
        fixture.presets.settingsListTableClicked(-1);
        QCOMPARE(fixture.presets.okPresetSettingsSentence(),
                 u"OK saves your presets and applies \"Manual\". Settings are chosen by hand."_s);
    }

    void okChoosesTheSelectedRuleAndStores()
    {
        SheetFixture fixture;
        fixture.presets.openPresetSelectionPanel();
        fixture.presets.addPresetSelection();
        fixture.presets.selectionListTableClicked(2);
        QCOMPARE(fixture.ticked(), u""_s);
        QVERIFY(fixture.presets.okPresetSelectionPanel().isNull());
        QCOMPARE(fixture.presets.selectionMethodIndex(), 3);
        QCOMPARE(fixture.ticked(), u"1 3 4"_s);
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Second, Own, User Preset"_s);
        QCOMPARE(fixture.storedNames(u"presetSelectionsArray"_s), u"Second, Own, User Preset"_s);
        QCOMPARE(fixture.storedNames(u"presetSettingsArray"_s), u"For PS3, For Xbox"_s);
    }

    void okChoosesTheSelectedSettingsAndStores()
    {
        SheetFixture fixture;
        fixture.presets.openPresetSettingsPanel();
        fixture.presets.addPresetSettings();
        fixture.presets.settingsListTableClicked(2);
        QList<bool> seen;
        connect(&fixture.program.controller, &KXSelectionController::trackRowsDeselected, this,
                [&] { seen.append(fixture.presets.changingPresetSetting()); });
        QVERIFY(fixture.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(fixture.presets.settingMethodIndex(), 3);
        QCOMPARE(fixture.program.controller.mp4Device(), u"Xbox"_s);
        QCOMPARE(seen, QList<bool>{true});
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, For PS3, For Xbox, User Preset"_s);
        QCOMPARE(fixture.storedNames(u"presetSettingsArray"_s), u"For PS3, For Xbox, User Preset"_s);
    }

    /// The row before the first is that of "Manual".
    void okWithoutASelectedRowChoosesManual()
    {
        SheetFixture fixture;
        fixture.presets.setSelectionMethodIndex(1);
        fixture.presets.setSettingMethodIndex(1);
        fixture.presets.selectionListTableClicked(-1);
        fixture.presets.settingsListTableClicked(-1);
        QVERIFY(fixture.presets.okPresetSelectionPanel().isNull());
        QVERIFY(fixture.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(fixture.presets.selectionMethodIndex(), 0);
        QCOMPARE(fixture.presets.settingMethodIndex(), 0);
        QCOMPARE(fixture.ticked(), u"1 2 4"_s); // as "First Track" left them
    }

    void okAfterRemovingTheChosenOneChoosesTheRowBefore()
    {
        SheetFixture fixture;
        fixture.presets.setSelectionMethodIndex(4);
        fixture.presets.setSettingMethodIndex(3);
        fixture.presets.openPresetSelectionPanel();
        fixture.presets.openPresetSettingsPanel();
        fixture.presets.removePresetSelection();
        fixture.presets.removePresetSettings();
        QVERIFY(fixture.presets.okPresetSelectionPanel().isNull());
        QVERIFY(fixture.presets.okPresetSettingsPanel().isNull());
        QCOMPARE(fixture.presets.selectionMethodIndex(), 3);
        QCOMPARE(fixture.ticked(), u"1 3 4"_s);
        QCOMPARE(fixture.presets.currentPresetSettingName(), u"For PS3"_s);
        QCOMPARE(fixture.program.controller.mp4Device(), u"PS3"_s);
    }

    void okWritesBackWhatIsBeingEdited()
    {
        SheetFixture fixture;
        FilterEditor &editor = fixture.presets.filterEditor();
        fixture.presets.selectionListTableClicked(2);
        editor.pointerEntered(101);
        editor.editFilterPanel(101);
        editor.setField(FilterKind::Audio, u"currentTrackNumber"_s, u"1"_s);
        editor.pointerEntered(201);
        editor.editFilterPanel(201);
        editor.setField(FilterKind::Subtitle, u"currentTrackChoice"_s, u"None"_s);
        QVERIFY(fixture.presets.okPresetSelectionPanel().isNull());
        const QVariantMap record =
            support::storedSettings(fixture.scratch).value(u"presetSelectionsArray"_s).toList().at(0).toMap();
        QCOMPARE(support::textOf(record.value(u"pAudioFilterArray"_s).toList()),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(support::textOf(record.value(u"pSubtitleFilterArray"_s).toList()),
                 u"None|1|Any Language|Any Codec"_s);
        QCOMPARE(fixture.ticked(), u"1 2"_s); // and applied as edited
        QVERIFY(!editor.isEditingAudioFilter());
        QVERIFY(!editor.isEditingSubtitleFilter());
        QVERIFY(editor.currentAudioFilterArray().isEmpty()); // the sheet is closed
    }

    void anotherRowWritesBackWhatIsBeingEdited()
    {
        SheetFixture fixture;
        FilterEditor &editor = fixture.presets.filterEditor();
        fixture.presets.selectionListTableClicked(2);
        editor.pointerEntered(101);
        editor.editFilterPanel(101);
        editor.setField(FilterKind::Audio, u"currentTrackNumber"_s, u"7"_s);
        fixture.presets.selectionListTableClicked(3);
        QCOMPARE(support::textOf(fixture.presets.presetSelectionsList().at(3)->pAudioFilterArray()),
                 u"Audio Track Number|7|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(support::textOf(fixture.presets.presetSelectionsList().at(4)->pAudioFilterArray()),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
    }

    void removingWhileEditingChangesNoOther()
    {
        SheetFixture fixture;
        FilterEditor &editor = fixture.presets.filterEditor();
        fixture.presets.selectionListTableClicked(3);
        editor.pointerEntered(101);
        editor.editFilterPanel(101);
        editor.setField(FilterKind::Audio, u"currentTrackNumber"_s, u"7"_s);
        fixture.presets.removePresetSelection();
        QCOMPARE(fixture.listed(), u"Manual, First Track, All Tracks, Second"_s);
        QCOMPARE(support::textOf(fixture.presets.presetSelectionsList().at(3)->pAudioFilterArray()),
                 secondSound);
        QVERIFY(!editor.isEditingAudioFilter());
    }

    void okThatCantStoreSaysSoAndKeepsWhatWasEdited()
    {
        SheetFixture fixture;
        fixture.presets.selectionListTableClicked(2);
        fixture.presets.settingsListTableClicked(1);
        QVERIFY(fixture.presets.renamePresetSelection(2, u"Mine"_s).isNull());
        QVERIFY(fixture.presets.renamePresetSettings(1, u"Mine"_s).isNull());
        QVERIFY(fixture.block());
        QVERIFY(fixture.presets.okPresetSelectionPanel().startsWith(u"The settings in"_s));
        QVERIFY(fixture.presets.okPresetSettingsPanel().startsWith(u"The settings in"_s));
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Mine, Own"_s);
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, Mine, For Xbox"_s);
        QCOMPARE(fixture.presets.selectionMethodIndex(), 3);
        QCOMPARE(fixture.presets.settingMethodIndex(), 2);
    }
};

TESSARAY_TEST(PresetSheetsOkTest)
#include "PresetSheetsOkTest.moc"

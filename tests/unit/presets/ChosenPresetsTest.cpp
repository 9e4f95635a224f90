#include "presets/KXPresetsController.h"

#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::PresetFixture;
using support::settingsRecord;
using support::storeTwoOfEach;

/// Which presets are chosen, when they are applied, and which index is stored for the next start.
class ChosenPresetsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choosingManualChangesNoTick()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.file->trackList().at(2)->setTrackSelected(true);
        const QSignalSpy ticks(&fixture.controller, &KXSelectionController::trackTicksChanged);
        fixture.presets.setSelectionMethodIndex(0);
        QCOMPARE(support::ticksOf(fixture.file->trackList()), u"3"_s);
        QCOMPARE(ticks.count(), 0);
        fixture.presets.applyCurrentPresetSelections();
        QCOMPARE(support::ticksOf(fixture.file->trackList()), u"3"_s);
        QCOMPARE(ticks.count(), 0);
    }

    void choosingARuleAppliesIt_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("chosen");
        QTest::addColumn<QString>("ticked");
        QTest::newRow("first track") << 1 << 1 << u"1 2 4"_s;
        QTest::newRow("all tracks") << 2 << 2 << u"1 2 3 4"_s;
        QTest::newRow("a user's") << 3 << 3 << u"1 3 4"_s;
        QTest::newRow("the last one") << 4 << 4 << u"1 2"_s;
        // An index of no preset is that of "Manual".
        QTest::newRow("behind the last") << 5 << 0 << u"3 4"_s;
        QTest::newRow("far behind") << 2000000000 << 0 << u"3 4"_s;
        QTest::newRow("negative") << -1 << 0 << u"3 4"_s;
    }

    void choosingARuleAppliesIt()
    {
        QFETCH(const int, index);
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.file->trackList().at(2)->setTrackSelected(true);
        fixture.file->trackList().at(3)->setTrackSelected(true);
        fixture.presets.setSelectionMethodIndex(1);
        fixture.file->trackList().at(0)->setTrackSelected(false);
        fixture.file->trackList().at(1)->setTrackSelected(false);
        fixture.file->trackList().at(2)->setTrackSelected(true);
        const QSignalSpy methods(&fixture.presets, &KXPresetsController::methodsChanged);
        fixture.presets.setSelectionMethodIndex(index);
        QTEST(fixture.presets.selectionMethodIndex(), "chosen");
        QTEST(support::ticksOf(fixture.file->trackList()), "ticked");
        QCOMPARE(methods.count(), 1);
    }

    void choosingTheSameRuleAgainAppliesItAgain()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.presets.setSelectionMethodIndex(1);
        fixture.file->trackList().at(2)->setTrackSelected(true);
        fixture.presets.setSelectionMethodIndex(1);
        QCOMPARE(support::ticksOf(fixture.file->trackList()), u"1 2 4"_s);
    }

    void nextFileGetsTheChosenRule()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        fixture.presets.setSelectionMethodIndex(2);
        fixture.open(support::probedFilm());
        QCOMPARE(support::ticksOf(fixture.file->trackList()), u""_s);
        fixture.presets.applyCurrentPresetSelections();
        QCOMPARE(support::ticksOf(fixture.file->trackList()), u"1 2 3 4"_s);
        QCOMPARE(fixture.selection->trackList().size(), 4);
    }

    void tickingByHandLeavesTheRule()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.presets.setSelectionMethodIndex(1);
        fixture.file->trackList().at(2)->setTrackSelected(true);
        fixture.controller.trackTableSelectionChanged(KXSelectionController::Sender::TrackTable);
        QCOMPARE(fixture.presets.selectionMethodIndex(), 0);
        QCOMPARE(support::ticksOf(fixture.file->trackList()), u"1 2 3 4"_s);
    }

    void choosingManualSettingsOnlyStoresIt()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.presets.setSettingMethodIndex(2);
        fixture.selection->setJobType(u"none"_s);
        fixture.file->trackList().at(0)->setTrackSelected(true);
        fixture.selection->setVidCount(u"1"_s); // an update would make of it that conversion is possible
        const QSignalSpy state(&fixture.controller, &KXSelectionController::stateChanged);
        const QSignalSpy methods(&fixture.presets, &KXPresetsController::methodsChanged);
        fixture.presets.setSettingMethodIndex(0);
        QCOMPARE(fixture.presets.settingMethodIndex(), 0);
        QCOMPARE(fixture.selection->jobType(), u"none"_s);
        QCOMPARE(state.count(), 0);
        QCOMPARE(methods.count(), 1);
        QVERIFY(!fixture.controller.canConvert());
    }

    void choosingSettingsAppliesThem_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("chosen");
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<QString>("device");
        QTest::newRow("extract") << 1 << 1 << u"MKV Track Extraction"_s << u"General"_s;
        QTest::newRow("a user's") << 2 << 2 << u"MKV Conversion"_s << u"PS3"_s;
        QTest::newRow("the last one") << 3 << 3 << u"MKV Conversion"_s << u"Xbox"_s;
        // An index of no preset is that of "Manual".
        QTest::newRow("behind the last") << 4 << 0 << u"none"_s << u"General"_s;
        QTest::newRow("far behind") << 2000000000 << 0 << u"none"_s << u"General"_s;
        QTest::newRow("negative") << -1 << 0 << u"none"_s << u"General"_s;
    }

    void choosingSettingsAppliesThem()
    {
        QFETCH(const int, index);
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.presets.setSettingMethodIndex(index);
        QTEST(fixture.presets.settingMethodIndex(), "chosen");
        QTEST(fixture.selection->jobType(), "jobType");
        QTEST(fixture.controller.mp4Device(), "device");
        QVERIFY(!fixture.presets.changingPresetSetting());
    }

    void whileSettingsAreAppliedTheyAreBeingChanged()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        QList<bool> seen;
        connect(&fixture.controller, &KXSelectionController::trackRowsDeselected, this,
                [&] { seen.append(fixture.presets.changingPresetSetting()); });
        fixture.presets.setSettingMethodIndex(2);
        fixture.presets.applyCurrentPresetSettings(); // nothing was chosen here
        fixture.presets.setSettingMethodIndex(1);
        QCOMPARE(seen, QList<bool>({true, false, true}));
        QVERIFY(!fixture.presets.changingPresetSetting());
    }

    /// The change of the tab does not take back the choice that made it.
    void choosingSettingsOnTheOtherTabKeepsThem()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        fixture.presets.setSettingMethodIndex(3);
        QCOMPARE(fixture.controller.currentTab(), u"MKV"_s);
        QCOMPARE(fixture.presets.settingMethodIndex(), 3);
        fixture.controller.setCurrentTab(u"Edit Files"_s); // but a change by hand leaves it
        QCOMPARE(fixture.presets.settingMethodIndex(), 0);
    }

    void appliedSettingsReachTheTracks()
    {
        const support::Scratch scratch;
        QVariantMap record = settingsRecord(u"Burn"_s);
        record.insert(u"pSubAction"_s, u"Burn (hard)"_s);
        record.insert(u"pVideoActionIndex"_s, 2);
        support::storePresets(scratch, {}, {record});
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.presets.setSelectionMethodIndex(2);
        fixture.presets.setSettingMethodIndex(2);
        // The update behind the settings is what writes these.
        QCOMPARE(fixture.file->trackList().at(0)->userCodec(), u"h264"_s);
        QCOMPARE(fixture.file->trackList().at(3)->userCodec(), u"burn"_s);
        QCOMPARE(fixture.selection->userPassNumber(), u"2"_s);
    }

    void everyNewSelectionGetsTheChosenSettings()
    {
        const support::Scratch scratch;
        QVariantMap record = settingsRecord(u"AC3"_s);
        record.insert(u"pSurroundActionIndex"_s, 3);
        support::storePresets(scratch, {}, {record});
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.presets.setSelectionMethodIndex(1);
        fixture.presets.setSettingMethodIndex(2);
        QCOMPARE(support::outputsOf(*fixture.file->trackList().at(2)), u"passthru 6 0"_s);
        fixture.file->trackList().at(2)->setTrackSelected(true);
        fixture.controller.trackTableSelectionChanged(KXSelectionController::Sender::TrackTable);
        QCOMPARE(support::outputsOf(*fixture.file->trackList().at(2)), u"ac3 6 448"_s);
        QCOMPARE(fixture.presets.settingMethodIndex(), 2);
    }

    void manualSettingsStillUpdateWhatMayBeDone()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        fixture.open(support::probedFilm());
        fixture.selection->setVidCount(u"1"_s);
        QVERIFY(!fixture.controller.canConvert());
        fixture.presets.applyCurrentPresetSettings();
        QVERIFY(fixture.controller.canConvert());
    }

    void chosenSettingsHaveAName()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        QCOMPARE(fixture.presets.currentPresetSettingName(), u"Manual"_s);
        fixture.presets.setSettingMethodIndex(1);
        QCOMPARE(fixture.presets.currentPresetSettingName(), u"Extract Tracks"_s);
        fixture.presets.setSettingMethodIndex(3);
        QCOMPARE(fixture.presets.currentPresetSettingName(), u"For Xbox"_s);
    }

    /// Rows are of the sheet, which hides "Manual"; they are removed one after another.
    void indexOfARuleToStore_data()
    {
        QTest::addColumn<QList<int>>("removedRows");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("stored");
        const QList<int> nothing;
        QTest::newRow("manual") << nothing << 0 << u"Manual"_s << 0;
        QTest::newRow("first track") << nothing << 1 << u"First Track"_s << 1;
        QTest::newRow("all tracks") << nothing << 2 << u"All Tracks"_s << 2;
        QTest::newRow("a user's") << nothing << 3 << u"Second"_s << 3;
        QTest::newRow("the last") << nothing << 4 << u"Own"_s << 4;
        QTest::newRow("without first track, all tracks") << QList<int>{0} << 1 << u"All Tracks"_s << 2;
        QTest::newRow("without first track, a user's") << QList<int>{0} << 2 << u"Second"_s << 3;
        QTest::newRow("without all tracks, first track") << QList<int>{1} << 1 << u"First Track"_s << 1;
        QTest::newRow("without all tracks, the last") << QList<int>{1} << 3 << u"Own"_s << 4;
        QTest::newRow("without both, a user's") << QList<int>{0, 0} << 1 << u"Second"_s << 3;
        QTest::newRow("without both, the last") << QList<int>{0, 0} << 2 << u"Own"_s << 4;
        QTest::newRow("without a user's, the other") << QList<int>{2} << 3 << u"Own"_s << 3;
        QTest::newRow("without a built-in and a user's") << QList<int>{0, 1} << 2 << u"Own"_s << 3;
        QTest::newRow("without any, manual") << QList<int>{0, 0, 0, 0} << 0 << u"Manual"_s << 0;
    }

    void indexOfARuleToStore()
    {
        QFETCH(const QList<int>, removedRows);
        QFETCH(const int, index);
        QFETCH(const QString, name);
        QFETCH(const int, stored);
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        {
            PresetFixture fixture(scratch);
            for (const int row : removedRows) {
                fixture.presets.selectionListTableClicked(row);
                fixture.presets.removePresetSelection();
            }
            QVERIFY(fixture.presets.savePresetSelectionsListToUserDefaults().isNull());
            fixture.presets.setSelectionMethodIndex(index);
            QCOMPARE(fixture.presets.presetSelectionsList().at(index)->pName(), name);
            QCOMPARE(fixture.presets.selectionMethodIndexToStore(), stored);
        }
        const PresetFixture next(scratch);
        QCOMPARE(next.presets.presetSelectionsNamesList().at(stored), name);
    }

    void indexOfSettingsToStore_data()
    {
        QTest::addColumn<QList<int>>("removedRows");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("stored");
        const QList<int> nothing;
        QTest::newRow("manual") << nothing << 0 << u"Manual"_s << 0;
        QTest::newRow("extract tracks") << nothing << 1 << u"Extract Tracks"_s << 1;
        QTest::newRow("a user's") << nothing << 2 << u"For PS3"_s << 2;
        QTest::newRow("the last") << nothing << 3 << u"For Xbox"_s << 3;
        QTest::newRow("without extract tracks, a user's") << QList<int>{0} << 1 << u"For PS3"_s << 2;
        QTest::newRow("without extract tracks, the last") << QList<int>{0} << 2 << u"For Xbox"_s << 3;
        QTest::newRow("without a user's, the other") << QList<int>{1} << 2 << u"For Xbox"_s << 2;
        QTest::newRow("without any, manual") << QList<int>{0, 0, 0} << 0 << u"Manual"_s << 0;
    }

    void indexOfSettingsToStore()
    {
        QFETCH(const QList<int>, removedRows);
        QFETCH(const int, index);
        QFETCH(const QString, name);
        QFETCH(const int, stored);
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        {
            PresetFixture fixture(scratch);
            for (const int row : removedRows) {
                fixture.presets.settingsListTableClicked(row);
                fixture.presets.removePresetSettings();
            }
            QVERIFY(fixture.presets.savePresetSettingsListToUserDefaults().isNull());
            fixture.presets.setSettingMethodIndex(index);
            QCOMPARE(fixture.presets.presetSettingsList().at(index)->pName(), name);
            QCOMPARE(fixture.presets.settingMethodIndexToStore(), stored);
        }
        const PresetFixture next(scratch);
        QCOMPARE(next.presets.presetSettingsNamesList().at(stored), name);
    }

    void chosenPresetThatIsGoneIsStoredAsManual()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        fixture.presets.setSelectionMethodIndex(4);
        fixture.presets.setSettingMethodIndex(3);
        fixture.presets.selectionListTableClicked(3);
        fixture.presets.removePresetSelection();
        fixture.presets.settingsListTableClicked(2);
        fixture.presets.removePresetSettings();
        // The sheets are still open: the indices point behind the lists.
        QCOMPARE(fixture.presets.selectionMethodIndexToStore(), 0);
        QCOMPARE(fixture.presets.settingMethodIndexToStore(), 0);
        QVERIFY(fixture.presets.currentPresetSettingName().isNull());
        fixture.presets.applyCurrentPresetSelections();
        fixture.presets.applyCurrentPresetSettings();
    }
};

TESSARAY_TEST(ChosenPresetsTest)
#include "ChosenPresetsTest.moc"

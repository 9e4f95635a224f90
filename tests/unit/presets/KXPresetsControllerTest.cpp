#include "presets/KXPresetsController.h"

#include "support/PresetBench.h"
#include "support/Scratch.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::PresetBench;
using support::selectionsRecord;
using support::settingsRecord;
using support::storeTwoOfEach;

namespace {

QString names(const QStringList &list)
{
    return list.join(u", "_s);
}

} // namespace

/// The lists of presets and what is stored of them.
class KXPresetsControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void popupsStartWithTheBuiltIns()
    {
        const support::Scratch scratch;
        const PresetBench bench(scratch);
        QCOMPARE(names(bench.presets.presetSelectionsNamesList()), u"Manual, First Track, All Tracks"_s);
        // "Remove Tracks" can be made, but is not offered: meant.
        QCOMPARE(names(bench.presets.presetSettingsNamesList()), u"Manual, Extract Tracks"_s);
        QCOMPARE(bench.presets.selectionMethodIndex(), 0);
        QCOMPARE(bench.presets.settingMethodIndex(), 0);
        QVERIFY(!scratch.names().contains(u"defaults.json"_s)); // and nothing is stored for that
    }

    void popupsGoOnWithTheSavedNames()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        const PresetBench bench(scratch);
        QCOMPARE(names(bench.presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(names(bench.presets.presetSettingsNamesList()),
                 u"Manual, Extract Tracks, For PS3, For Xbox"_s);
        QCOMPARE(bench.presets.property("presetSelectionsNamesList").toStringList().size(), 5);
        QCOMPARE(bench.presets.property("presetSettingsNamesList").toStringList().size(), 4);
    }

    void listsHoldWhatIsStored()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        const PresetBench bench(scratch);
        QCOMPARE(bench.presets.presetSelectionsList().at(3)->makeRecord(),
                 selectionsRecord(u"Second"_s, support::secondSound, support::firstSubtitle));
        QCOMPARE(bench.presets.presetSelectionsList().at(4)->makeRecord(), selectionsRecord(u"Own"_s));
        QCOMPARE(bench.presets.presetSettingsList().at(2)->makeRecord(), settingsRecord(u"For PS3"_s));
        QCOMPARE(bench.presets.presetSettingsList().at(3)->makeRecord(),
                 settingsRecord(u"For Xbox"_s, u"Xbox"_s));
        for (const int builtIn : {0, 1, 2})
            QVERIFY(!bench.presets.presetSelectionsList().at(builtIn)->isEditable());
        for (const int builtIn : {0, 1})
            QVERIFY(!bench.presets.presetSettingsList().at(builtIn)->isEditable());
        QCOMPARE(bench.presets.presetSelectionsList().at(2)->pSelectedAudioTrack(), u"All Tracks"_s);
        QCOMPARE(bench.presets.presetSelectionsList().at(1)->pSelectedAudioTrack(), u"First Track"_s);
    }

    void atTheStartTheSettingsPopupIsToldItsIndex()
    {
        const support::Scratch scratch;
        PresetBench bench(scratch);
        const QSignalSpy methods(&bench.presets, &KXPresetsController::methodsChanged);
        bench.presets.initialize();
        QCOMPARE(methods.count(), 1);
        bench.open(support::probedFilm());
        bench.presets.setSettingMethodIndex(1);
        bench.selection->setJobType(u"none"_s);
        bench.presets.initialize();
        QCOMPARE(bench.presets.settingMethodIndex(), 1);
        QCOMPARE(bench.selection->jobType(), u"MKV Track Extraction"_s);
    }

    void buildingListsAnewDoublesNothing()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetBench bench(scratch);
        const QSignalSpy lists(&bench.presets, &KXPresetsController::listsChanged);
        bench.presets.initializeSelectionsList();
        bench.presets.initializeSettingsList();
        QCOMPARE(bench.presets.presetSelectionsNamesList().size(), 5);
        QCOMPARE(bench.presets.presetSettingsNamesList().size(), 4);
        QCOMPARE(lists.count(), 2);
    }

    void namesListsAreMadeAnewFromTheNames()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetBench bench(scratch);
        bench.presets.presetSelectionsList().at(3)->setPName(u"Renamed"_s);
        bench.presets.presetSettingsList().at(2)->setPName(u"Renamed too"_s);
        QCOMPARE(bench.presets.presetSelectionsNamesList().at(3), u"Second"_s);
        QCOMPARE(bench.presets.presetSettingsNamesList().at(2), u"For PS3"_s);
        const QSignalSpy lists(&bench.presets, &KXPresetsController::listsChanged);
        bench.presets.creatSelectionsNamesList();
        QCOMPARE(names(bench.presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, Renamed, Own"_s);
        QCOMPARE(bench.presets.presetSettingsNamesList().at(2), u"For PS3"_s);
        bench.presets.creatSettingsNamesList();
        QCOMPARE(names(bench.presets.presetSettingsNamesList()),
                 u"Manual, Extract Tracks, Renamed too, For Xbox"_s);
        QCOMPARE(lists.count(), 2);
    }

    void builtInPresetsAreNeverSaved()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetBench bench(scratch);
        bench.presets.addPresetSelection();
        bench.presets.addPresetSettings();
        bench.presets.presetSelectionsList().at(3)->setIsEditable(false);
        bench.presets.presetSettingsList().at(3)->setIsEditable(false);
        QVERIFY(bench.presets.savePresetSelectionsListToUserDefaults().isNull());
        QCOMPARE(support::namesIn(support::storedSettings(scratch).value(u"presetSelectionsArray"_s)),
                 u"Own, User Preset"_s);
        QCOMPARE(support::namesIn(support::storedSettings(scratch).value(u"presetSettingsArray"_s)),
                 u"For PS3, For Xbox"_s); // not asked for
        QVERIFY(bench.presets.savePresetSettingsListToUserDefaults().isNull());
        QCOMPARE(support::namesIn(support::storedSettings(scratch).value(u"presetSettingsArray"_s)),
                 u"For PS3, User Preset"_s);
        for (const QVariant &record :
             support::storedSettings(scratch).value(u"presetSelectionsArray"_s).toList())
            QCOMPARE(record.toMap().value(u"isEditable"_s), QVariant(true));
    }

    void storedRecordsHaveExactlyTheirKeys()
    {
        const support::Scratch scratch;
        PresetBench bench(scratch);
        bench.presets.addPresetSelection();
        bench.presets.addPresetSettings();
        QVERIFY(bench.presets.savePresetSelectionsListToUserDefaults().isNull());
        QVERIFY(bench.presets.savePresetSettingsListToUserDefaults().isNull());
        const QVariantMap stored = support::storedSettings(scratch);
        const QVariantMap selections = stored.value(u"presetSelectionsArray"_s).toList().at(0).toMap();
        QCOMPARE(selections.keys(), selectionsRecord({}).keys());
        const QVariantMap settings = stored.value(u"presetSettingsArray"_s).toList().at(0).toMap();
        QCOMPARE(settings.keys(), settingsRecord({}).keys());
    }

    void anotherStartHasTheSamePresets()
    {
        const support::Scratch scratch;
        {
            PresetBench bench(scratch);
            for (int i = 0; i < 3; ++i) {
                bench.presets.addPresetSelection();
                bench.presets.addPresetSettings();
                bench.presets.presetSelectionsList().constLast()->setPName(u"rule %1"_s.arg(3 - i));
                bench.presets.presetSettingsList().constLast()->setPName(u"bundle %1"_s.arg(3 - i));
            }
            KXPresetSelections &rule = *bench.presets.presetSelectionsList().at(4);
            rule.addDictionaryToAudioFilterArray();
            rule.addDictionaryToSubtitleFilterArray();
            rule.setPAudioFilterMode(u"Prioritized"_s);
            bench.presets.presetSettingsList().at(3)->setPVideoActionIndex(4);
            QVERIFY(bench.presets.savePresetSelectionsListToUserDefaults().isNull());
            QVERIFY(bench.presets.savePresetSettingsListToUserDefaults().isNull());
        }
        const PresetBench next(scratch);
        QCOMPARE(names(next.presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, rule 3, rule 2, rule 1"_s);
        QCOMPARE(names(next.presets.presetSettingsNamesList()),
                 u"Manual, Extract Tracks, bundle 3, bundle 2, bundle 1"_s);
        const KXPresetSelections &rule = *next.presets.presetSelectionsList().at(4);
        QCOMPARE(support::textOf(rule.pAudioFilterArray()),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type; "
                 "Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(support::textOf(rule.pSubtitleFilterArray()),
                 u"None|1|Any Language|Any Codec; Subtitle Track Number|1|Any Language|Any Codec"_s);
        QCOMPARE(rule.pAudioFilterMode(), u"Prioritized"_s);
        QCOMPARE(next.presets.presetSettingsList().at(3)->pVideoActionIndex(), 4);
        QVERIFY(next.presets.presetSettingsList().at(3)->pVideoActionIsBestGuess());
    }

    /// A record that says it is none of a user's is loaded, and gone with the next saving: meant.
    void storedPresetThatIsNotEditableIsSavedNoMore()
    {
        const support::Scratch scratch;
        QVariantMap record = selectionsRecord(u"Fixed"_s);
        record.insert(u"isEditable"_s, false);
        support::storePresets(scratch, {record, selectionsRecord(u"Own"_s)}, {});
        PresetBench bench(scratch);
        QCOMPARE(names(bench.presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, Fixed, Own"_s);
        bench.presets.setSelectionMethodIndex(3);
        QCOMPARE(bench.presets.selectionMethodIndexToStore(), 0);
        bench.presets.setSelectionMethodIndex(4);
        QCOMPARE(bench.presets.selectionMethodIndexToStore(), 3);
        QVERIFY(bench.presets.savePresetSelectionsListToUserDefaults().isNull());
        QCOMPARE(names(PresetBench(scratch).presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, Own"_s);
    }

    void savingThatFailsSaysSo()
    {
        const support::Scratch scratch;
        PresetBench bench(scratch);
        QVERIFY(QDir().mkdir(scratch.path(u"defaults.json"_s))); // can be neither read nor replaced
        bench.presets.addPresetSelection();
        bench.presets.addPresetSettings();
        QVERIFY(!bench.presets.savePresetSelectionsListToUserDefaults().isEmpty());
        QVERIFY(!bench.presets.savePresetSettingsListToUserDefaults().isEmpty());
        QCOMPARE(bench.presets.presetSelectionsList().size(), 4);
    }
};

QTEST_GUILESS_MAIN(KXPresetsControllerTest)
#include "KXPresetsControllerTest.moc"

#include "presets/PresetExchange.h"

#include "presets/KXPresetsController.h"
#include "support/ExchangeBench.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::ExchangeBench;
using support::PresetBench;
using support::presetFile;
using support::secondSound;
using support::selectionsRecord;
using support::settingsRecord;
using support::with;

namespace {

QByteArray bytesOf(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

} // namespace

/// Presets as a file that is carried from one user to another.
class PresetExchangeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void manyOfOneNameGetNumbersInOrder()
    {
        ExchangeBench bench;
        const QVariantList records(1000, selectionsRecord(u"Own"_s));
        const presets::Import import = presets::importInto(bench.presets, presetFile(records, {}));
        QVERIFY2(import.problem.isNull(), qPrintable(import.problem));
        const QStringList names = bench.presets.presetSelectionsNamesList();
        const qsizetype first = names.indexOf(u"Own"_s);
        for (int number = 2; number <= 1001; ++number)
            QCOMPARE(names.at(first + number - 1), u"Own (%1)"_s.arg(number));
    }

    void exportedFileIsLiteral()
    {
        const ExchangeBench bench;
        const QJsonObject expected{
            {u"version"_s, 1},
            {u"presetSelectionsArray"_s, QJsonArray{QJsonObject::fromVariantMap(selectionsRecord(u"Own"_s))}},
            {u"presetSettingsArray"_s,
             QJsonArray{QJsonObject::fromVariantMap(settingsRecord(u"For PS3"_s))}}};
        QCOMPARE(presets::exported(bench.presets), expected);
    }

    void builtInsAloneAreExportedAsEmptyLists()
    {
        const support::Scratch scratch;
        const PresetBench bench(scratch);
        const QJsonObject expected{{u"version"_s, 1},
                                   {u"presetSelectionsArray"_s, QJsonArray()},
                                   {u"presetSettingsArray"_s, QJsonArray()}};
        QCOMPARE(presets::exported(bench.presets), expected);
    }

    void presetsComeToAnotherUserAsTheyWere()
    {
        const support::Scratch from;
        const QVariantMap rule = with(selectionsRecord(u"Größtes 5.1 \"best\""_s, secondSound),
                                      u"pAudioFilterMode"_s, u"Prioritized"_s);
        const QVariantMap bundle = with(settingsRecord(u"日本"_s), u"pVideoActionIndex"_s, 2);
        support::storePresets(from, {rule, selectionsRecord(u"Other"_s)},
                              {bundle, settingsRecord(u"Third"_s), settingsRecord(u"Fourth"_s)});
        const QByteArray file = bytesOf(presets::exported(PresetBench(from).presets));

        const support::Scratch to;
        PresetBench bench(to);
        const QSignalSpy lists(&bench.presets, &KXPresetsController::listsChanged);
        const presets::Import result = presets::importInto(bench.presets, file);
        QVERIFY(result.problem.isNull());
        QCOMPARE(result.selections, 2);
        QCOMPARE(result.settings, 3);
        QVERIFY(lists.count() > 0);
        QCOMPARE(bench.presets.presetSelectionsNamesList().join(u", "_s),
                 u"Manual, First Track, All Tracks, Größtes 5.1 \"best\", Other"_s);
        QCOMPARE(bench.presets.presetSettingsNamesList().join(u", "_s),
                 u"Manual, Extract Tracks, 日本, Third, Fourth"_s);
        QCOMPARE(bench.presets.presetSelectionsList().at(3)->makeRecord(), rule);
        QCOMPARE(bench.presets.presetSettingsList().at(2)->makeRecord(), bundle);
        QCOMPARE(bytesOf(presets::exported(bench.presets)), file);
        QCOMPARE(bytesOf(presets::exported(PresetBench(to).presets)), file); // stored at once
        QCOMPARE(bench.presets.selectionMethodIndex(), 0);
        QCOMPARE(bench.presets.settingMethodIndex(), 0);
    }

    void storedRecordsAreExactlyThoseOfTheFile()
    {
        const support::Scratch scratch;
        PresetBench bench(scratch);
        QVERIFY(presets::importInto(bench.presets,
                                    presetFile({selectionsRecord(u"New"_s)}, {settingsRecord(u"New"_s)}))
                    .problem.isNull());
        const QVariantMap expected{{u"presetSelectionsArray"_s, QVariantList{selectionsRecord(u"New"_s)}},
                                   {u"presetSettingsArray"_s, QVariantList{settingsRecord(u"New"_s)}}};
        QCOMPARE(QJsonObject::fromVariantMap(support::storedSettings(scratch)),
                 QJsonObject::fromVariantMap(expected));
    }

    void importAddsBehindWhatIsThere()
    {
        ExchangeBench bench;
        const presets::Import result =
            presets::importInto(bench.presets, presetFile({selectionsRecord(u"New"_s)}, {}));
        QVERIFY(result.problem.isNull());
        QCOMPARE(result.selections, 1);
        QCOMPARE(result.settings, 0);
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Own, New"_s);
        QCOMPARE(bench.settingsNames(), u"Manual, Extract Tracks, For PS3"_s);
        QCOMPARE(bench.namesAtNextStart(),
                 u"Manual, First Track, All Tracks, Own, New / Manual, Extract Tracks, For PS3"_s);
        QVERIFY(
            presets::importInto(bench.presets, presetFile({}, {settingsRecord(u"New"_s)})).problem.isNull());
        QCOMPARE(bench.namesAtNextStart(),
                 u"Manual, First Track, All Tracks, Own, New / Manual, Extract Tracks, For PS3, New"_s);
    }

    void emptyListsAddNothing()
    {
        ExchangeBench bench;
        const QByteArray before = bench.storedBytes();
        const presets::Import result = presets::importInto(bench.presets, presetFile({}, {}));
        QVERIFY(result.problem.isNull());
        QCOMPARE(result.selections, 0);
        QCOMPARE(result.settings, 0);
        QCOMPARE(bench.storedBytes(), before);
    }

    void namesThatAreTakenGetANumber()
    {
        ExchangeBench bench;
        const QByteArray file =
            presetFile({selectionsRecord(u"Own"_s), selectionsRecord(u"New"_s), selectionsRecord(u"Own"_s),
                        selectionsRecord(u"New"_s), selectionsRecord(u"For PS3"_s)},
                       {settingsRecord(u"For PS3"_s), settingsRecord(u"Own"_s)});
        QVERIFY(presets::importInto(bench.presets, file).problem.isNull());
        QCOMPARE(bench.names(),
                 u"Manual, First Track, All Tracks, Own, Own (2), New, Own (3), New (2), For PS3"_s);
        QCOMPARE(bench.settingsNames(), u"Manual, Extract Tracks, For PS3, For PS3 (2), Own"_s);
        QCOMPARE(bench.presets.presetSelectionsList().at(4)->pName(), u"Own (2)"_s);
        QCOMPARE(bench.namesAtNextStart(), bench.names() + u" / "_s + bench.settingsNames());
    }

    void numbersThatAreTakenAreLeftOut()
    {
        ExchangeBench bench;
        const QByteArray file = presetFile(
            {selectionsRecord(u"Own (2)"_s), selectionsRecord(u"Own"_s), selectionsRecord(u"Own (2)"_s)}, {});
        QVERIFY(presets::importInto(bench.presets, file).problem.isNull());
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Own, Own (2), Own (3), Own (2) (2)"_s);
    }

    void namesAreTextsAndNotPatterns()
    {
        ExchangeBench bench;
        const QByteArray file =
            presetFile({selectionsRecord(u"%2 of %1"_s), selectionsRecord(u"%2 of %1"_s)}, {});
        QVERIFY(presets::importInto(bench.presets, file).problem.isNull());
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Own, %2 of %1, %2 of %1 (2)"_s);
    }

    void sameFileTwiceComesTwice()
    {
        ExchangeBench bench;
        const QByteArray file = bytesOf(presets::exported(bench.presets));
        QVERIFY(presets::importInto(bench.presets, file).problem.isNull());
        QVERIFY(presets::importInto(bench.presets, file).problem.isNull());
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Own, Own (2), Own (3)"_s);
        QCOMPARE(bench.settingsNames(), u"Manual, Extract Tracks, For PS3, For PS3 (2), For PS3 (3)"_s);
    }

    void whatARecordLeavesOpenIsDerived()
    {
        ExchangeBench bench;
        QVariantMap record = with(selectionsRecord(u"Old"_s), u"pAudioFilterArray"_s, QVariantList());
        record.insert(u"pSelectedAudioTrack"_s, u"By Language"_s);
        record.insert(u"pAudioIsByLanguage"_s, false); // it says otherwise and does not count
        QVERIFY(presets::importInto(bench.presets, presetFile({record}, {})).problem.isNull());
        const KXPresetSelections &preset = *bench.presets.presetSelectionsList().at(4);
        QVERIFY(preset.pAudioIsByLanguage());
        QCOMPARE(support::textOf(preset.pAudioFilterArray()),
                 u"Tracks w/ Properties ...|1|English|Any Codec|Any Type"_s);
    }

    /// What settings do not offer they still tolerate: best guesses, odd indices, odd words.
    void oddValuesOfTheRightKindFit()
    {
        ExchangeBench bench;
        QVariantMap bundle = settingsRecord(u"Guess"_s, u"Kitchen radio"_s);
        bundle.insert(u"pVideoActionIndex"_s, 4);
        bundle.insert(u"pSurroundActionIndex"_s, -9);
        bundle.insert(u"pSubAction"_s, u""_s);
        const QVariantMap rule = selectionsRecord(u"Odd"_s, u"Every|x|Klingon|wv|Mono"_s, u"||||"_s);
        QVERIFY(presets::importInto(bench.presets, presetFile({rule}, {bundle})).problem.isNull());
        QCOMPARE(bench.presets.presetSettingsList().at(3)->makeRecord(), bundle);
        QVERIFY(bench.presets.presetSettingsList().at(3)->pVideoActionIsBestGuess());
        QCOMPARE(bench.presets.presetSelectionsList().at(4)->makeRecord(), rule);
    }

    void storeThatCantBeWrittenLeavesTheListsAsBefore()
    {
        ExchangeBench bench;
        const QByteArray stored = bench.storedBytes();
        const QJsonObject exported = presets::exported(bench.presets);
        QVERIFY(QFile::remove(bench.scratch.path(u"defaults.json"_s)));
        QVERIFY(QDir().mkdir(bench.scratch.path(u"defaults.json"_s))); // can be neither read nor replaced
        const QSignalSpy changed(&bench.presets, &KXPresetsController::listsChanged);
        const presets::Import result = presets::importInto(
            bench.presets, presetFile({selectionsRecord(u"New"_s)}, {settingsRecord(u"New"_s)}));
        QVERIFY2(result.problem.startsWith(u"The settings in"_s), qPrintable(result.problem));
        QCOMPARE(result.selections, 0);
        QCOMPARE(result.settings, 0);
        QCOMPARE(presets::exported(bench.presets), exported);
        QCOMPARE(bench.names(), u"Manual, First Track, All Tracks, Own"_s);
        QCOMPARE(bench.settingsNames(), u"Manual, Extract Tracks, For PS3"_s);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(support::namesIn(bench.program.preferences.userPresetSelectionsList()), u"Own"_s);
        QCOMPARE(support::namesIn(bench.program.preferences.userPresetSettingsList()), u"For PS3"_s);

        // And nothing of it comes in later by itself.
        QVERIFY(QDir().rmdir(bench.scratch.path(u"defaults.json"_s)));
        bench.scratch.write(u"defaults.json"_s, stored);
        QVERIFY(bench.program.preferences.savePreferencesToDefaults().isNull());
        QCOMPARE(bench.storedBytes(), stored);
        QVERIFY(presets::importInto(bench.presets, presetFile({selectionsRecord(u"New"_s)}, {}))
                    .problem.isNull());
        QCOMPARE(bench.namesAtNextStart(),
                 u"Manual, First Track, All Tracks, Own, New / Manual, Extract Tracks, For PS3"_s);
    }
};

QTEST_GUILESS_MAIN(PresetExchangeTest)
#include "PresetExchangeTest.moc"

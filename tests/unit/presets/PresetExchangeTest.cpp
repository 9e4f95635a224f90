#include "presets/PresetExchange.h"

#include "presets/KXPresetsController.h"
#include "support/TestMain.h"
#include "support/presets/ExchangeFixture.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::ExchangeFixture;
using support::presetFile;
using support::PresetFixture;
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
        ExchangeFixture fixture;
        const QVariantList records(1000, selectionsRecord(u"Own"_s));
        const presets::Import import = presets::importInto(fixture.presets, presetFile(records, {}));
        QVERIFY2(import.problem.isNull(), qPrintable(import.problem));
        const QStringList names = fixture.presets.presetSelectionsNamesList();
        const qsizetype first = names.indexOf(u"Own"_s);
        for (int number = 2; number <= 1001; ++number)
            QCOMPARE(names.at(first + number - 1), u"Own (%1)"_s.arg(number));
    }

    void exportedFileIsLiteral()
    {
        const ExchangeFixture fixture;
        const QJsonObject expected{
            {u"version"_s, 1},
            {u"presetSelectionsArray"_s, QJsonArray{QJsonObject::fromVariantMap(selectionsRecord(u"Own"_s))}},
            {u"presetSettingsArray"_s,
             QJsonArray{QJsonObject::fromVariantMap(settingsRecord(u"For PS3"_s))}}};
        QCOMPARE(presets::exported(fixture.presets), expected);
    }

    void builtInsAloneAreExportedAsEmptyLists()
    {
        const support::Scratch scratch;
        const PresetFixture fixture(scratch);
        const QJsonObject expected{{u"version"_s, 1},
                                   {u"presetSelectionsArray"_s, QJsonArray()},
                                   {u"presetSettingsArray"_s, QJsonArray()}};
        QCOMPARE(presets::exported(fixture.presets), expected);
    }

    void presetsComeToAnotherUserAsTheyWere()
    {
        const support::Scratch from;
        const QVariantMap rule = with(selectionsRecord(u"Größtes 5.1 \"best\""_s, secondSound),
                                      u"pAudioFilterMode"_s, u"Prioritized"_s);
        const QVariantMap bundle = with(settingsRecord(u"日本"_s), u"pVideoActionIndex"_s, 2);
        support::storePresets(from, {rule, selectionsRecord(u"Other"_s)},
                              {bundle, settingsRecord(u"Third"_s), settingsRecord(u"Fourth"_s)});
        const QByteArray file = bytesOf(presets::exported(PresetFixture(from).presets));

        const support::Scratch to;
        PresetFixture fixture(to);
        const QSignalSpy lists(&fixture.presets, &KXPresetsController::listsChanged);
        const presets::Import result = presets::importInto(fixture.presets, file);
        QVERIFY(result.problem.isNull());
        QCOMPARE(result.selections, 2);
        QCOMPARE(result.settings, 3);
        QVERIFY(lists.count() > 0);
        QCOMPARE(fixture.presets.presetSelectionsNamesList().join(u", "_s),
                 u"Manual, First Track, All Tracks, Größtes 5.1 \"best\", Other"_s);
        QCOMPARE(fixture.presets.presetSettingsNamesList().join(u", "_s),
                 u"Manual, Extract Tracks, 日本, Third, Fourth"_s);
        QCOMPARE(fixture.presets.presetSelectionsList().at(3)->makeRecord(), rule);
        QCOMPARE(fixture.presets.presetSettingsList().at(2)->makeRecord(), bundle);
        QCOMPARE(bytesOf(presets::exported(fixture.presets)), file);
        QCOMPARE(bytesOf(presets::exported(PresetFixture(to).presets)), file); // stored at once
        QCOMPARE(fixture.presets.selectionMethodIndex(), 0);
        QCOMPARE(fixture.presets.settingMethodIndex(), 0);
    }

    void storedRecordsAreExactlyThoseOfTheFile()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        QVERIFY(presets::importInto(fixture.presets,
                                    presetFile({selectionsRecord(u"New"_s)}, {settingsRecord(u"New"_s)}))
                    .problem.isNull());
        const QVariantMap expected{{u"presetSelectionsArray"_s, QVariantList{selectionsRecord(u"New"_s)}},
                                   {u"presetSettingsArray"_s, QVariantList{settingsRecord(u"New"_s)}}};
        QCOMPARE(QJsonObject::fromVariantMap(support::storedSettings(scratch)),
                 QJsonObject::fromVariantMap(expected));
    }

    void importAddsBehindWhatIsThere()
    {
        ExchangeFixture fixture;
        const presets::Import result =
            presets::importInto(fixture.presets, presetFile({selectionsRecord(u"New"_s)}, {}));
        QVERIFY(result.problem.isNull());
        QCOMPARE(result.selections, 1);
        QCOMPARE(result.settings, 0);
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Own, New"_s);
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, For PS3"_s);
        QCOMPARE(fixture.namesAtNextStart(),
                 u"Manual, First Track, All Tracks, Own, New / Manual, Extract Tracks, For PS3"_s);
        QVERIFY(presets::importInto(fixture.presets, presetFile({}, {settingsRecord(u"New"_s)}))
                    .problem.isNull());
        QCOMPARE(fixture.namesAtNextStart(),
                 u"Manual, First Track, All Tracks, Own, New / Manual, Extract Tracks, For PS3, New"_s);
    }

    void emptyListsAddNothing()
    {
        ExchangeFixture fixture;
        const QByteArray before = fixture.storedBytes();
        const presets::Import result = presets::importInto(fixture.presets, presetFile({}, {}));
        QVERIFY(result.problem.isNull());
        QCOMPARE(result.selections, 0);
        QCOMPARE(result.settings, 0);
        QCOMPARE(fixture.storedBytes(), before);
    }

    void namesThatAreTakenGetANumber()
    {
        ExchangeFixture fixture;
        const QByteArray file =
            presetFile({selectionsRecord(u"Own"_s), selectionsRecord(u"New"_s), selectionsRecord(u"Own"_s),
                        selectionsRecord(u"New"_s), selectionsRecord(u"For PS3"_s)},
                       {settingsRecord(u"For PS3"_s), settingsRecord(u"Own"_s)});
        QVERIFY(presets::importInto(fixture.presets, file).problem.isNull());
        QCOMPARE(fixture.names(),
                 u"Manual, First Track, All Tracks, Own, Own (2), New, Own (3), New (2), For PS3"_s);
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, For PS3, For PS3 (2), Own"_s);
        QCOMPARE(fixture.presets.presetSelectionsList().at(4)->pName(), u"Own (2)"_s);
        QCOMPARE(fixture.namesAtNextStart(), fixture.names() + u" / "_s + fixture.settingsNames());
    }

    void numbersThatAreTakenAreLeftOut()
    {
        ExchangeFixture fixture;
        const QByteArray file = presetFile(
            {selectionsRecord(u"Own (2)"_s), selectionsRecord(u"Own"_s), selectionsRecord(u"Own (2)"_s)}, {});
        QVERIFY(presets::importInto(fixture.presets, file).problem.isNull());
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Own, Own (2), Own (3), Own (2) (2)"_s);
    }

    void namesAreTextsAndNotPatterns()
    {
        ExchangeFixture fixture;
        const QByteArray file =
            presetFile({selectionsRecord(u"%2 of %1"_s), selectionsRecord(u"%2 of %1"_s)}, {});
        QVERIFY(presets::importInto(fixture.presets, file).problem.isNull());
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Own, %2 of %1, %2 of %1 (2)"_s);
    }

    void sameFileTwiceComesTwice()
    {
        ExchangeFixture fixture;
        const QByteArray file = bytesOf(presets::exported(fixture.presets));
        QVERIFY(presets::importInto(fixture.presets, file).problem.isNull());
        QVERIFY(presets::importInto(fixture.presets, file).problem.isNull());
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Own, Own (2), Own (3)"_s);
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, For PS3, For PS3 (2), For PS3 (3)"_s);
    }

    void whatARecordLeavesOpenIsDerived()
    {
        ExchangeFixture fixture;
        QVariantMap record = with(selectionsRecord(u"Old"_s), u"pAudioFilterArray"_s, QVariantList());
        record.insert(u"pSelectedAudioTrack"_s, u"By Language"_s);
        record.insert(u"pAudioIsByLanguage"_s, false); // it says otherwise and does not count
        QVERIFY(presets::importInto(fixture.presets, presetFile({record}, {})).problem.isNull());
        const KXPresetSelections &preset = *fixture.presets.presetSelectionsList().at(4);
        QVERIFY(preset.pAudioIsByLanguage());
        QCOMPARE(support::textOf(preset.pAudioFilterArray()),
                 u"Tracks w/ Properties ...|1|English|Any Codec|Any Type"_s);
    }

    /// What settings do not offer they still tolerate: best guesses, odd indices, odd words.
    void oddValuesOfTheRightKindFit()
    {
        ExchangeFixture fixture;
        QVariantMap bundle = settingsRecord(u"Guess"_s, u"Factory radio"_s);
        bundle.insert(u"pVideoActionIndex"_s, 4);
        bundle.insert(u"pSurroundActionIndex"_s, -9);
        bundle.insert(u"pSubAction"_s, u""_s);
        const QVariantMap rule = selectionsRecord(u"Odd"_s, u"Every|x|Klingon|wv|Mono"_s, u"||||"_s);
        QVERIFY(presets::importInto(fixture.presets, presetFile({rule}, {bundle})).problem.isNull());
        QCOMPARE(fixture.presets.presetSettingsList().at(3)->makeRecord(), bundle);
        QVERIFY(fixture.presets.presetSettingsList().at(3)->pVideoActionIsBestGuess());
        QCOMPARE(fixture.presets.presetSelectionsList().at(4)->makeRecord(), rule);
    }

    void storeThatCantBeWrittenLeavesTheListsAsBefore()
    {
        ExchangeFixture fixture;
        const QByteArray stored = fixture.storedBytes();
        const QJsonObject exported = presets::exported(fixture.presets);
        QVERIFY(QFile::remove(fixture.scratch.path(u"defaults.json"_s)));
        QVERIFY(QDir().mkdir(fixture.scratch.path(u"defaults.json"_s))); // can be neither read nor replaced
        const QSignalSpy changed(&fixture.presets, &KXPresetsController::listsChanged);
        const presets::Import result = presets::importInto(
            fixture.presets, presetFile({selectionsRecord(u"New"_s)}, {settingsRecord(u"New"_s)}));
        QVERIFY2(result.problem.startsWith(u"The settings in"_s), qPrintable(result.problem));
        QCOMPARE(result.selections, 0);
        QCOMPARE(result.settings, 0);
        QCOMPARE(presets::exported(fixture.presets), exported);
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Own"_s);
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, For PS3"_s);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(support::namesIn(fixture.program.preferences.userPresetSelectionsList()), u"Own"_s);
        QCOMPARE(support::namesIn(fixture.program.preferences.userPresetSettingsList()), u"For PS3"_s);

        // And nothing of it comes in later by itself.
        QVERIFY(QDir().rmdir(fixture.scratch.path(u"defaults.json"_s)));
        fixture.scratch.write(u"defaults.json"_s, stored);
        QVERIFY(fixture.program.preferences.savePreferencesToDefaults().isNull());
        QCOMPARE(fixture.storedBytes(), stored);
        QVERIFY(presets::importInto(fixture.presets, presetFile({selectionsRecord(u"New"_s)}, {}))
                    .problem.isNull());
        QCOMPARE(fixture.namesAtNextStart(),
                 u"Manual, First Track, All Tracks, Own, New / Manual, Extract Tracks, For PS3"_s);
    }
};

TESSARAY_TEST(PresetExchangeTest)
#include "PresetExchangeTest.moc"

#include "presets/PresetExchange.h"

#include "presets/KXPresetsController.h"
#include "presets/PresetFields.h"
#include "support/Seeds.h"
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

/// Sets a field that is drawn to one of its values, or leaves the preset as it is where that is refused: a
/// third filter where there is only one.
template <typename Preset>
void setOne(Preset &preset, const QList<presets::FieldWord> &fields, support::Chances &chances)
{
    const presets::FieldWord field = fields.at(chances.below(fields.size()));
    QStringList values = field.rule.choices();
    if (values.isEmpty())
        values = {u""_s, u"25"_s, u"720"_s, u"2500"_s};
    presets::setField(preset, field.word, values.at(chances.below(values.size())));
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
        const QVariantList records(2000, selectionsRecord(u"Own"_s));
        const presets::Import import = presets::importInto(fixture.presets, presetFile(records, {}));
        QVERIFY2(import.problem.isNull(), qPrintable(import.problem));
        const QStringList names = fixture.presets.presetSelectionsNamesList();
        const qsizetype first = names.indexOf(u"Own"_s);
        for (int number = 2; number <= 2001; ++number)
            QCOMPARE(names.at(first + number - 1), u"Own (%1)"_s.arg(number));
    }

    /// Whatever can be set in a preset, by the words of the command line, comes through a file as it was.
    void whateverCanBeSetComesThroughAFile()
    {
        support::Chances chances = support::chancesAt(__LINE__);
        for (int round = support::times(2000, 40); round > 0; --round) {
            const support::Scratch from;
            PresetFixture fixture(from);
            fixture.presets.addPresetSelection();
            fixture.presets.addPresetSettings();
            KXPresetSelections &rule = *fixture.presets.presetSelectionsList().constLast();
            KXPresetSettings &bundle = *fixture.presets.presetSettingsList().constLast();
            for (int change = 0; change < 12; ++change) {
                setOne(rule, presets::tracksFields(), chances);
                setOne(bundle, presets::settingsFields(), chances);
            }
            const presets::Export file = presets::exported(fixture.presets);
            QCOMPARE(file.leftOut, QStringList());
            const support::Scratch to;
            PresetFixture other(to);
            const presets::Import import = presets::importInto(other.presets, bytesOf(file.file));
            QVERIFY2(import.problem.isNull(), qPrintable(import.problem));
            QCOMPARE(other.presets.presetSelectionsList().constLast()->makeRecord(), rule.makeRecord());
            QCOMPARE(other.presets.presetSettingsList().constLast()->makeRecord(), bundle.makeRecord());
        }
    }

    /// What was stored by another hand and fits no preset is left out by name; the rest can be imported.
    void whateverIsStoredGivesAFileThatIsTaken()
    {
        support::Chances chances = support::chancesAt(__LINE__);
        const QVariantList odd{QVariant(),
                               7,
                               -1,
                               1e9,
                               u""_s,
                               u"Manual"_s,
                               u"Klingon"_s,
                               true,
                               QVariantMap(),
                               0.5,
                               QVariantList{1},
                               u"1"_s,
                               QString(20000, u'x')};
        for (int round = support::times(3000, 60); round > 0; --round) {
            QVariantMap rule = selectionsRecord(u"Odd"_s);
            QVariantMap bundle = settingsRecord(u"Odd"_s);
            rule.insert(rule.keys().at(chances.below(rule.size())), odd.at(chances.below(odd.size())));
            bundle.insert(bundle.keys().at(chances.below(bundle.size())), odd.at(chances.below(odd.size())));
            const support::Scratch from;
            support::storePresets(from, {rule, selectionsRecord(u"Good"_s)},
                                  {bundle, settingsRecord(u"Good"_s)});
            const presets::Export file = presets::exported(PresetFixture(from).presets);
            const support::Scratch to;
            PresetFixture other(to);
            const presets::Import import = presets::importInto(other.presets, bytesOf(file.file));
            QVERIFY2(import.problem.isNull(), qPrintable(import.problem));
            QVERIFY(other.presets.presetSelectionsNamesList().contains(u"Good"_s));
            QVERIFY(other.presets.presetSettingsNamesList().contains(u"Good"_s));
            for (const QString &sentence : file.leftOut)
                QVERIFY2(sentence.startsWith(u"The preset \""_s) && sentence.contains(u" was left out: "_s),
                         qPrintable(sentence));
        }
    }

    void whatIsLeftOutIsNamedWithItsField()
    {
        const support::Scratch scratch;
        support::storePresets(scratch, {with(selectionsRecord(u"One"_s), u"pAudioFilterMode"_s, u"Some"_s)},
                              {with(settingsRecord(u"Two"_s), u"pDevice"_s, u"Toaster"_s),
                               with(settingsRecord(u"New"_s), u"pDevice"_s, u"Apple TV"_s)});
        const presets::Export file = presets::exported(PresetFixture(scratch).presets);
        QCOMPARE(file.leftOut.size(), 2);
        QCOMPARE(
            file.leftOut.constFirst(),
            u"The preset \"One\" was left out: its \"pAudioFilterMode\" is \"Some\", and right is \"Apply "
            "All\" or \"Prioritized\"."_s);
        QVERIFY(file.leftOut.constLast().startsWith(
            u"The preset \"Two\" was left out: its \"pDevice\" is \"Toaster\""_s));
        // The device that the sheet gives a preset that was just added is stored and comes through.
        QCOMPARE(file.file.value(u"presetSettingsArray"_s).toArray().size(), 1);
    }

    void exportedFileIsLiteral()
    {
        const ExchangeFixture fixture;
        const QJsonObject expected{
            {u"version"_s, 1},
            {u"presetSelectionsArray"_s, QJsonArray{QJsonObject::fromVariantMap(selectionsRecord(u"Own"_s))}},
            {u"presetSettingsArray"_s,
             QJsonArray{QJsonObject::fromVariantMap(settingsRecord(u"For PS3"_s))}}};
        QCOMPARE(presets::exported(fixture.presets).file, expected);
    }

    void builtInsAloneAreExportedAsEmptyLists()
    {
        const support::Scratch scratch;
        const PresetFixture fixture(scratch);
        const QJsonObject expected{{u"version"_s, 1},
                                   {u"presetSelectionsArray"_s, QJsonArray()},
                                   {u"presetSettingsArray"_s, QJsonArray()}};
        QCOMPARE(presets::exported(fixture.presets).file, expected);
    }

    void presetsComeToAnotherUserAsTheyWere()
    {
        const support::Scratch from;
        const QVariantMap rule = with(selectionsRecord(u"Größtes 5.1 \"best\""_s, secondSound),
                                      u"pAudioFilterMode"_s, u"Prioritized"_s);
        const QVariantMap bundle = with(settingsRecord(u"日本"_s), u"pVideoActionIndex"_s, 2);
        support::storePresets(from, {rule, selectionsRecord(u"Other"_s)},
                              {bundle, settingsRecord(u"Third"_s), settingsRecord(u"Fourth"_s)});
        const QByteArray file = bytesOf(presets::exported(PresetFixture(from).presets).file);

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
        QCOMPARE(bytesOf(presets::exported(fixture.presets).file), file);
        QCOMPARE(bytesOf(presets::exported(PresetFixture(to).presets).file), file); // stored at once
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
        const QByteArray file = bytesOf(presets::exported(fixture.presets).file);
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

    /// What the sheets store but do not offer: a best guess, no device picked yet, another codec's word, and
    /// no word for the video in older records.
    void whatIsStoredButNotOfferedFits()
    {
        ExchangeFixture fixture;
        QVariantMap bundle = settingsRecord(u"Guess"_s, u"Apple TV"_s);
        bundle.insert(u"pVideoActionIndex"_s, 4);
        bundle.insert(u"pStereoBitRate"_s, u"Original"_s);
        const QVariantMap rule =
            with(selectionsRecord(u"Odd"_s, u"Tracks w/ Properties ...|1|German|hevc_2|Any Type"_s),
                 u"pSelectedVideoTrack"_s, u""_s);
        QVERIFY(presets::importInto(fixture.presets, presetFile({rule}, {bundle})).problem.isNull());
        QCOMPARE(fixture.presets.presetSettingsList().at(3)->makeRecord(), bundle);
        QVERIFY(fixture.presets.presetSettingsList().at(3)->pVideoActionIsBestGuess());
        QCOMPARE(fixture.presets.presetSelectionsList().at(4)->makeRecord(), rule);
    }

    void storeThatCantBeWrittenLeavesTheListsAsBefore()
    {
        ExchangeFixture fixture;
        const QByteArray stored = fixture.storedBytes();
        const QJsonObject exported = presets::exported(fixture.presets).file;
        QVERIFY(QFile::remove(fixture.scratch.path(u"defaults.json"_s)));
        QVERIFY(QDir().mkdir(fixture.scratch.path(u"defaults.json"_s))); // can be neither read nor replaced
        const QSignalSpy changed(&fixture.presets, &KXPresetsController::listsChanged);
        const presets::Import result = presets::importInto(
            fixture.presets, presetFile({selectionsRecord(u"New"_s)}, {settingsRecord(u"New"_s)}));
        QVERIFY2(result.problem.startsWith(u"The settings in"_s), qPrintable(result.problem));
        QCOMPARE(result.selections, 0);
        QCOMPARE(result.settings, 0);
        QCOMPARE(presets::exported(fixture.presets).file, exported);
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

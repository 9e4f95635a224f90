#include "presets/KXPresetSettings.h"

#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"

#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct Fixture
{
    Fixture()
        : preset(window.file, window.controller)
    {
    }

    support::ControllerFixture window;
    KXPresetSettings preset;
};

/// A record in which nothing has the value that a new preset has, and no two keys the same one.
QVariantMap ownRecord()
{
    return {{u"pName"_s, u"Mine"_s},
            {u"pDevice"_s, u"PS3"_s},
            {u"pVideoActionIndex"_s, 2},
            {u"pVideoBitRate"_s, u"1500"_s},
            {u"pVideoBitRateIndex"_s, 5},
            {u"pWidth"_s, u"720"_s},
            {u"pWidthIndex"_s, 6},
            {u"pFPS"_s, u"29.97"_s},
            {u"pFPSIndex"_s, 7},
            {u"pStereoActionIndex"_s, 8},
            {u"pStereoBitRate"_s, u"192"_s},
            {u"pSurroundActionIndex"_s, 9},
            {u"pSurroundBitRate"_s, u"640"_s},
            {u"pAudioAddStereo"_s, true},
            {u"pKeepStereoTrack"_s, true},
            {u"pKeepSurroundTrack"_s, true},
            {u"pSubAction"_s, u"Burn (hard)"_s},
            {u"isEditable"_s, true}};
}

/// What a preset of that name holds on which nothing else was ever set.
QVariantMap bareRecord(const QString &name)
{
    QVariantMap record = ownRecord();
    for (QVariant &value : record) {
        const QMetaType type = value.metaType();
        value = QVariant(type);
    }
    record.insert(u"pName"_s, name);
    return record;
}

using Initializer = void (KXPresetSettings::*)();

} // namespace

Q_DECLARE_METATYPE(Initializer)

/// A bundle of conversion settings, as a record and as a built-in.
class KXPresetSettingsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsSetAtFirst()
    {
        const Fixture fixture;
        const KXPresetSettings &preset = fixture.preset;
        for (const QString &text :
             {preset.pName(), preset.pDevice(), preset.pVideoBitRate(), preset.pWidth(), preset.pFPS(),
              preset.pStereoBitRate(), preset.pSurroundBitRate(), preset.pSubAction()})
            QVERIFY(text.isNull());
        for (const int index :
             {preset.pVideoActionIndex(), preset.pVideoBitRateIndex(), preset.pWidthIndex(),
              preset.pFPSIndex(), preset.pStereoActionIndex(), preset.pSurroundActionIndex()})
            QCOMPARE(index, 0);
        QVERIFY(!preset.pAudioAddStereo());
        QVERIFY(!preset.pKeepStereoTrack());
        QVERIFY(!preset.pKeepSurroundTrack());
        QVERIFY(!preset.isEditable());
        QVERIFY(!preset.pVideoActionIsBestGuess());
    }

    void builtInsAreANameAndNothingElse_data()
    {
        QTest::addColumn<Initializer>("initializer");
        QTest::addColumn<QString>("name");
        QTest::newRow("manual") << Initializer(&KXPresetSettings::initializeAsByID) << u"Manual"_s;
        QTest::newRow("extract") << Initializer(&KXPresetSettings::initializeAsExtract)
                                 << u"Extract Tracks"_s;
        QTest::newRow("remove") << Initializer(&KXPresetSettings::initializeAsRemove) << u"Remove Tracks"_s;
    }

    void builtInsAreANameAndNothingElse()
    {
        QFETCH(const Initializer, initializer);
        QFETCH(const QString, name);
        Fixture fixture;
        (fixture.preset.*initializer)();
        QCOMPARE(fixture.preset.makeRecord(), bareRecord(name));
        fixture.preset.initFromRecord(ownRecord());
        (fixture.preset.*initializer)();
        QVariantMap record = ownRecord();
        record.insert(u"pName"_s, name);
        record.insert(u"isEditable"_s, false);
        QCOMPARE(fixture.preset.makeRecord(), record);
    }

    void newUserPresetIsLiteral()
    {
        const QVariantMap expected{{u"pName"_s, u"User Preset"_s},
                                   {u"pDevice"_s, u"Apple TV"_s}, // no target's name: meant
                                   {u"pVideoActionIndex"_s, 0},
                                   {u"pVideoBitRate"_s, u"1000"_s},
                                   {u"pVideoBitRateIndex"_s, 1},
                                   {u"pWidth"_s, u""_s},
                                   {u"pWidthIndex"_s, 0},
                                   {u"pFPS"_s, u""_s},
                                   {u"pFPSIndex"_s, 0},
                                   {u"pStereoActionIndex"_s, 0},
                                   {u"pStereoBitRate"_s, u"160"_s},
                                   {u"pSurroundActionIndex"_s, 0},
                                   {u"pSurroundBitRate"_s, u"448"_s},
                                   {u"pAudioAddStereo"_s, false},
                                   {u"pKeepStereoTrack"_s, false},
                                   {u"pKeepSurroundTrack"_s, false},
                                   {u"pSubAction"_s, u"Mux (soft)"_s},
                                   {u"isEditable"_s, true}};
        Fixture fixture;
        fixture.preset.initializeAsNewUserPreset();
        QCOMPARE(fixture.preset.makeRecord(), expected);
        fixture.preset.initFromRecord(ownRecord());
        fixture.preset.initializeAsNewUserPreset();
        QCOMPARE(fixture.preset.makeRecord(), expected);
    }

    void recordHasExactlyTheEighteenKeys()
    {
        const QStringList keys{u"pName"_s,
                               u"pDevice"_s,
                               u"pVideoActionIndex"_s,
                               u"pVideoBitRate"_s,
                               u"pVideoBitRateIndex"_s,
                               u"pWidth"_s,
                               u"pWidthIndex"_s,
                               u"pFPS"_s,
                               u"pFPSIndex"_s,
                               u"pStereoActionIndex"_s,
                               u"pStereoBitRate"_s,
                               u"pSurroundActionIndex"_s,
                               u"pSurroundBitRate"_s,
                               u"pAudioAddStereo"_s,
                               u"pKeepStereoTrack"_s,
                               u"pKeepSurroundTrack"_s,
                               u"pSubAction"_s,
                               u"isEditable"_s};
        QCOMPARE(keys.size(), 18);
        QCOMPARE(KXPresetSettings::recordWords(), keys);
        const Fixture fixture;
        const QVariantMap record = fixture.preset.makeRecord();
        const QStringList found = record.keys();
        QCOMPARE(QSet<QString>(found.begin(), found.end()), QSet<QString>(keys.begin(), keys.end()));
        const QStringList flags{u"pAudioAddStereo"_s, u"pKeepStereoTrack"_s, u"pKeepSurroundTrack"_s,
                                u"isEditable"_s};
        for (const QString &key : keys) {
            const int type = key.endsWith(u"Index"_s) ? QMetaType::Int
                             : flags.contains(key)    ? QMetaType::Bool
                                                      : QMetaType::QString;
            QVERIFY2(record.value(key).typeId() == type, qPrintable(key));
        }
    }

    void recordIsTakenAndMadeAgain()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(ownRecord());
        const KXPresetSettings &preset = fixture.preset;
        QCOMPARE(preset.pName(), u"Mine"_s);
        QCOMPARE(preset.pDevice(), u"PS3"_s);
        QCOMPARE(preset.pVideoActionIndex(), 2);
        QCOMPARE(preset.pVideoBitRate(), u"1500"_s);
        QCOMPARE(preset.pVideoBitRateIndex(), 5);
        QCOMPARE(preset.pWidth(), u"720"_s);
        QCOMPARE(preset.pWidthIndex(), 6);
        QCOMPARE(preset.pFPS(), u"29.97"_s);
        QCOMPARE(preset.pFPSIndex(), 7);
        QCOMPARE(preset.pStereoActionIndex(), 8);
        QCOMPARE(preset.pStereoBitRate(), u"192"_s);
        QCOMPARE(preset.pSurroundActionIndex(), 9);
        QCOMPARE(preset.pSurroundBitRate(), u"640"_s);
        QVERIFY(preset.pAudioAddStereo());
        QVERIFY(preset.pKeepStereoTrack());
        QVERIFY(preset.pKeepSurroundTrack());
        QCOMPARE(preset.pSubAction(), u"Burn (hard)"_s);
        QVERIFY(preset.isEditable());
        QCOMPARE(preset.makeRecord(), ownRecord());
    }

    void recordSurvivesTheStore()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(QJsonObject::fromVariantMap(ownRecord()).toVariantMap());
        QCOMPARE(fixture.preset.makeRecord(), ownRecord());
    }

    void missingKeyIsEmptyOrZero_data()
    {
        QTest::addColumn<QString>("key");
        const QVariantMap record = ownRecord();
        for (const QString &key : record.keys())
            QTest::newRow(qPrintable(key)) << key;
    }

    void missingKeyIsEmptyOrZero()
    {
        QFETCH(const QString, key);
        QVariantMap record = ownRecord();
        record.remove(key);
        Fixture fixture;
        fixture.preset.initFromRecord(ownRecord()); // no rest of this may stay
        fixture.preset.initFromRecord(record);
        QVariantMap expected = ownRecord();
        if (expected.value(key).typeId() == QMetaType::QString)
            expected.insert(key, u""_s);
        else if (expected.value(key).typeId() == QMetaType::Int)
            expected.insert(key, 0);
        else
            expected.insert(key, false);
        QCOMPARE(fixture.preset.makeRecord(), expected);
    }

    void actionsThreeAndFourAreGuesses_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<bool>("guesses");
        QTest::newRow("-1") << -1 << false;
        QTest::newRow("0") << 0 << false;
        QTest::newRow("1") << 1 << false;
        QTest::newRow("2") << 2 << false;
        QTest::newRow("3") << 3 << true;
        QTest::newRow("4") << 4 << true;
        QTest::newRow("5") << 5 << false;
    }

    void actionsThreeAndFourAreGuesses()
    {
        QFETCH(const int, action);
        QFETCH(const bool, guesses);
        Fixture fixture;
        fixture.preset.setPVideoActionIsBestGuess(!guesses);
        fixture.preset.setPVideoActionIndex(action);
        QCOMPARE(fixture.preset.pVideoActionIndex(), action);
        QCOMPARE(fixture.preset.pVideoActionIsBestGuess(), guesses);

        QVariantMap record = ownRecord();
        record.insert(u"pVideoActionIndex"_s, action);
        record.insert(u"pVideoActionIsBestGuess"_s, !guesses); // no such key is read, nor written
        Fixture stored;
        stored.preset.initFromRecord(record);
        QCOMPARE(stored.preset.pVideoActionIsBestGuess(), guesses);
        QVERIFY(!stored.preset.makeRecord().contains(u"pVideoActionIsBestGuess"_s));
        QCOMPARE(stored.preset.makeRecord().value(u"pVideoActionIndex"_s), QVariant(action));
    }

    void bitRateShrinksWithTheWidth_data()
    {
        QTest::addColumn<QString>("bitRate");
        QTest::addColumn<QString>("newWidth");
        QTest::addColumn<QString>("oldWidth");
        QTest::addColumn<QString>("expected");
        QTest::newRow("narrower") << u"3000"_s << u"720"_s << u"1920"_s << u"1125"_s;
        QTest::newRow("rounded down") << u"2500"_s << u"1280"_s << u"1920"_s << u"1666"_s;
        QTest::newRow("a pixel narrower") << u"1500"_s << u"1279"_s << u"1280"_s << u"1498"_s;
        // In single precision 1000/1920 of 480 is a little less than 250, and 7/10 of 90 is not less than 63.
        QTest::newRow("in single precision, down") << u"480"_s << u"1000"_s << u"1920"_s << u"249"_s;
        QTest::newRow("in single precision, up") << u"90"_s << u"7"_s << u"10"_s << u"63"_s;
        QTest::newRow("nearly nothing") << u"999"_s << u"1"_s << u"1000"_s << u"0"_s;
        QTest::newRow("no width") << u"3000"_s << u""_s << u"1920"_s << u"0"_s;
        QTest::newRow("no bit rate") << u""_s << u"720"_s << u"1920"_s << u"0"_s;
        QTest::newRow("bit rate with its unit") << u"3000 kb/s"_s << u"720"_s << u"1920"_s << u"1125"_s;
        QTest::newRow("as wide") << u"3000"_s << u"1920"_s << u"1920"_s << u"3000"_s;
        QTest::newRow("wider") << u"3000"_s << u"1921"_s << u"1920"_s << u"3000"_s;
        QTest::newRow("as wide, any text") << u"3000 kb/s"_s << u"1920"_s << u"1920"_s << u"3000 kb/s"_s;
        QTest::newRow("wider, no number") << u"abc"_s << u"2000"_s << u"1920"_s << u"abc"_s;
        QTest::newRow("widths are numbers, not texts") << u"3000"_s << u"1280"_s << u"720"_s << u"3000"_s;
        QTest::newRow("no widths") << u"3000"_s << u""_s << u""_s << u"3000"_s;
        QTest::newRow("width below an unknown one") << u"3000"_s << u"-1"_s << u"0"_s << u"3000"_s;
    }

    void bitRateShrinksWithTheWidth()
    {
        QFETCH(const QString, bitRate);
        QFETCH(const QString, newWidth);
        QFETCH(const QString, oldWidth);
        QTEST(KXPresetSettings::quickBitRateCalcForForNewWidthFromOldWidth(bitRate, newWidth, oldWidth),
              "expected");
    }
};

TESSARAY_TEST(KXPresetSettingsTest)
#include "KXPresetSettingsTest.moc"

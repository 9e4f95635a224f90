#include "presets/PresetFields.h"

#include "presets/ChoiceLists.h"
#include "presets/KXPresetSelections.h"
#include "presets/KXPresetSettings.h"
#include "presets/ReadyPresets.h"
#include "selection/Targets.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using presets::setField;
using support::textOf;

namespace {

struct FieldsFixture
{
    FieldsFixture()
        : program(scratch)
        , rule(program.file, program.controller)
        , bundle(program.file, program.controller)
    {
        rule.initializeAsNewUserPreset();
        bundle.initializeAsNewUserPreset();
    }

    /// The sentence for a field "word=value" of one of both; null when it was taken.
    QString set(const QString &field)
    {
        const QString word = field.section(u'=', 0, 0);
        const QString value = field.section(u'=', 1);
        return word.startsWith(u'p') && word != u"pSelectedVideoTrack"_s ? setField(bundle, word, value)
                                                                         : setField(rule, word, value);
    }

    support::Scratch scratch;
    support::PresetFixture program;
    KXPresetSelections rule;
    KXPresetSettings bundle;
};

} // namespace

/// What a person may write for each field of a preset, and what is stored of it.
class PresetFieldsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settingsAreTakenAsShownAndAsStored_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QVariant>("stored");
        const auto row = [](const QString &field, const QVariant &stored) {
            QTest::newRow(qPrintable(field)) << field << stored;
        };
        row(u"pDevice=PS3"_s, u"PS3"_s);
        row(u"pDevice=iPad (3 and Later)"_s, u"iPad (3 and Later)"_s);
        row(u"pDevice=MKV"_s, u"MKV"_s);
        row(u"pVideoActionIndex=Pass Thru"_s, 0);
        row(u"pVideoActionIndex=H264 (1-pass)"_s, 1);
        row(u"pVideoActionIndex=H264 (2-pass)"_s, 2);
        for (const int action : {0, 1, 2, 3, 4})
            row(u"pVideoActionIndex="_s + QString::number(action), action);
        row(u"pVideoBitRate=2500"_s, u"2500"_s);
        row(u"pVideoBitRate="_s, u""_s);
        row(u"pVideoBitRateIndex=Original"_s, 0);
        row(u"pVideoBitRateIndex=1"_s, 1);
        row(u"pWidth=720"_s, u"720"_s);
        row(u"pWidthIndex=Custom"_s, 1);
        row(u"pFPS=23.976"_s, u"23.976"_s);
        row(u"pFPSIndex=Custom"_s, 1);
        row(u"pStereoActionIndex=AAC (2-Ch.)"_s, 1);
        row(u"pStereoBitRate=320"_s, u"320"_s);
        row(u"pStereoBitRate=Original"_s, u"Original"_s);
        row(u"pSurroundActionIndex=AC3 (5.1)"_s, 3);
        row(u"pSurroundActionIndex=2"_s, 2);
        row(u"pSurroundBitRate=640"_s, u"640"_s);
        row(u"pAudioAddStereo=true"_s, true);
        row(u"pKeepStereoTrack=on"_s, true);
        row(u"pKeepSurroundTrack=yes"_s, true);
        row(u"pKeepSurroundTrack=no"_s, false);
        row(u"pSubAction=Burn (hard)"_s, u"Burn (hard)"_s);
    }

    void settingsAreTakenAsShownAndAsStored()
    {
        QFETCH(const QString, field);
        QFETCH(const QVariant, stored);
        FieldsFixture fixture;
        QCOMPARE(fixture.set(field), QString());
        QCOMPARE(fixture.bundle.property(field.section(u'=', 0, 0).toLatin1().constData()), stored);
    }

    void everyFieldOfTheRecordCanBeSetButNameAndRight()
    {
        QStringList words;
        for (const presets::FieldWord &field : presets::settingsFields())
            words.append(field.word);
        QStringList expected = KXPresetSettings::recordWords();
        expected.removeAll(u"pName"_s);
        expected.removeAll(u"isEditable"_s);
        QCOMPARE(words, expected);
        QCOMPARE(words.size(), 16);
    }

    void whatIsWrongIsRefusedWithWhatIsRight_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("right");
        const auto row = [](const QString &field, const QString &right) {
            QTest::newRow(qPrintable(field)) << field << right;
        };
        row(u"pDevice=Apple TV"_s, u"\"Apple TV 2\""_s); // stored by the sheet, but no target
        row(u"pDevice=ps3"_s, u"\"PS3\""_s);
        row(u"pVideoActionIndex=5"_s, u"\"Pass Thru\", \"H264 (1-pass)\" or \"H264 (2-pass)\""_s);
        row(u"pVideoActionIndex=-1"_s, u"a number from 0 to 4"_s);
        row(u"pVideoActionIndex=01"_s, u"a number from 0 to 4"_s);
        row(u"pVideoActionIndex="_s, u"a number from 0 to 4"_s);
        row(u"pWidthIndex=2"_s, u"\"Original\" or \"Custom\""_s);
        row(u"pStereoActionIndex=AAC (5.1)"_s, u"\"Pass Thru\" or \"AAC (2-Ch.)\""_s);
        row(u"pSurroundActionIndex=4"_s, u"\"AC3 (5.1)\""_s);
        row(u"pVideoBitRate=-1"_s, u"whole number"_s);
        row(u"pVideoBitRate=2.5"_s, u"whole number"_s);
        row(u"pWidth=720px"_s, u"whole number"_s);
        row(u"pWidth=1234567890"_s, u"up to nine digits"_s);
        row(u"pFPS=25,0"_s, u"23.976"_s);
        row(u"pFPS=.5"_s, u"23.976"_s);
        row(u"pStereoBitRate=100"_s, u"\"128\", \"160\""_s);
        row(u"pSurroundBitRate=128"_s, u"\"320\", \"384\""_s);
        row(u"pAudioAddStereo=1"_s, u"\"true\" or \"false\""_s);
        row(u"pSubAction=Mux"_s, u"\"Burn (hard)\" or \"Mux (soft)\""_s);
        row(u"pName=Mine"_s, u"pDevice, pVideoActionIndex"_s);
        row(u"isEditable=false"_s, u"audio1.choice"_s);
        row(u"pVideoActionIsBestGuess=true"_s, u"pDevice, pVideoActionIndex"_s);
        row(u"width=720"_s, u"pSelectedVideoTrack, audio.mode, audio1.choice"_s);
        row(u"audio4.choice=All"_s, u"audio3.channels, subtitle.mode"_s);
        row(u"audio0.choice=All"_s, u"audio1.choice"_s);
        row(u"subtitle1.channels=Any Type"_s, u"subtitle1.codec"_s);
        row(u"audio1.colour=blue"_s, u"audio1.codec"_s);
        row(u"pSelectedVideoTrack=Second"_s, u"\"First track, if it is video\" or \"None\""_s);
        row(u"audio.mode=Some"_s, u"\"Apply All\" or \"Prioritized\""_s);
        row(u"audio1.choice=Subtitle Track Number"_s, u"\"Audio Track Number\""_s);
        row(u"audio1.number=0"_s, u"\"1\", \"2\""_s);
        row(u"audio1.number=10"_s, u"\"9\""_s);
        row(u"audio1.language=Klingon"_s, u"\"English\""_s);
        row(u"audio1.language=eng"_s, u"\"English\""_s);
        row(u"audio1.codec=two words"_s, u"another codec's word"_s);
        row(u"audio1.codec="_s, u"\"ac3\""_s);
        row(u"audio1.channels=Mono"_s, u"\"Surround Only\""_s);
        row(u"audio3.choice=All"_s, u"the next one is number 2"_s);
        row(u"audio1="_s, u"last filter"_s);
        row(u"subtitle2="_s, u"no such filter"_s);
        row(u"audio1=All"_s, u"takes no value"_s);
    }

    void whatIsWrongIsRefusedWithWhatIsRight()
    {
        QFETCH(const QString, field);
        QFETCH(const QString, right);
        FieldsFixture fixture;
        const QVariantMap rule = fixture.rule.makeRecord();
        const QVariantMap bundle = fixture.bundle.makeRecord();
        const QString sentence = fixture.set(field);
        QVERIFY2(sentence.contains(right), qPrintable(sentence));
        QVERIFY2(sentence.endsWith(u'.'), qPrintable(sentence));
        QCOMPARE(fixture.rule.makeRecord(), rule);
        QCOMPARE(fixture.bundle.makeRecord(), bundle);
    }

    void everyChoiceOfTheEditorIsTaken()
    {
        FieldsFixture fixture;
        const auto takes = [&](const QString &word, const QStringList &values) {
            for (const QString &value : values)
                QCOMPARE(fixture.set(word + u'=' + value), QString());
        };
        takes(u"audio1.choice"_s, presets::afTrackChoiceList());
        takes(u"audio1.number"_s, presets::trackNumberList());
        takes(u"audio1.language"_s, presets::languageList());
        takes(u"audio1.codec"_s, presets::afCodecList());
        takes(u"audio1.channels"_s, presets::afChannelsList());
        takes(u"subtitle1.choice"_s, presets::sfTrackChoiceList());
        takes(u"subtitle1.number"_s, presets::trackNumberList());
        takes(u"subtitle1.language"_s, presets::languageList());
        takes(u"subtitle1.codec"_s, presets::sfCodecList());
        takes(u"pDevice"_s, selection::targetNames());
    }

    void filtersAreChangedAddedAndTakenAway()
    {
        FieldsFixture fixture;
        for (const QString &field :
             {u"audio1.language=English"_s, u"audio1.codec=ac3"_s, u"audio1.channels=Surround Only"_s,
              u"audio2.number=3"_s, u"audio3.choice=All"_s, u"audio.mode=Prioritized"_s,
              u"subtitle1.codec=hdmv_text"_s, u"subtitle.mode=Prioritized"_s, u"pSelectedVideoTrack=None"_s})
            QCOMPARE(fixture.set(field), QString());
        QCOMPARE(textOf(fixture.rule.pAudioFilterArray()),
                 u"Tracks w/ Properties ...|1|English|ac3|Surround Only; "
                 "Audio Track Number|3|Any Language|Any Codec|Any Type; "
                 "All|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(textOf(fixture.rule.pSubtitleFilterArray()),
                 u"Tracks w/ Properties ...|1|Any Language|hdmv_text"_s);
        QCOMPARE(fixture.rule.pAudioFilterMode(), u"Prioritized"_s);
        QCOMPARE(fixture.rule.pSubtitleFilterMode(), u"Prioritized"_s);
        QCOMPARE(fixture.rule.pSelectedVideoTrack(), u"0"_s);
        QCOMPARE(fixture.set(u"audio2="_s), QString()); // the second goes, not the last
        QCOMPARE(fixture.set(u"pSelectedVideoTrack=First Track"_s), QString());
        QCOMPARE(textOf(fixture.rule.pAudioFilterArray()),
                 u"Tracks w/ Properties ...|1|English|ac3|Surround Only; "
                 "All|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(fixture.rule.pSelectedVideoTrack(), u"First Track"_s);
    }

    void aNumberOrPropertyMakesItsChoiceCount()
    {
        FieldsFixture fixture;
        QCOMPARE(fixture.set(u"audio1.language=German"_s), QString());
        QCOMPARE(fixture.set(u"audio1.number=2"_s), QString());
        QCOMPARE(textOf(fixture.rule.pAudioFilterArray()),
                 u"Audio Track Number|2|German|Any Codec|Any Type"_s);
        QCOMPARE(fixture.set(u"audio1.choice=None"_s), QString()); // the last word counts
        QCOMPARE(textOf(fixture.rule.pAudioFilterArray()), u"None|2|German|Any Codec|Any Type"_s);
        for (const auto *word : {"pVideoBitRate", "pWidth", "pFPS"}) {
            const QString field = QString::fromLatin1(word);
            QCOMPARE(fixture.set(field + u"Index=Original"_s), QString());
            QCOMPARE(fixture.set(field + u"="_s), QString());
            QCOMPARE(fixture.bundle.property((field + u"Index"_s).toLatin1().constData()), QVariant(0));
            QCOMPARE(fixture.set(field + u"=25"_s), QString());
            QCOMPARE(fixture.bundle.property((field + u"Index"_s).toLatin1().constData()), QVariant(1));
        }
    }

    void aReadyPresetFitsItsDevice()
    {
        // What the makers say: of all devices these three play AC3 in a film.
        const QStringList ac3{u"Apple TV 2"_s, u"Apple TV (3 and Later)"_s, u"PS3"_s};
        QCOMPARE(selection::deviceNames().size(), 13);
        for (const QString &device : selection::deviceNames()) {
            FieldsFixture fixture;
            const bool playsAc3 = ac3.contains(device);
            QCOMPARE(presets::makeReadyFor(device, fixture.bundle), QString());
            const QVariantMap expected{{u"pName"_s, u"User Preset"_s},
                                       {u"pDevice"_s, device},
                                       {u"pVideoActionIndex"_s, 1},
                                       {u"pVideoBitRate"_s, u""_s},
                                       {u"pVideoBitRateIndex"_s, 0},
                                       {u"pWidth"_s, u""_s},
                                       {u"pWidthIndex"_s, 0},
                                       {u"pFPS"_s, u""_s},
                                       {u"pFPSIndex"_s, 0},
                                       {u"pStereoActionIndex"_s, 1},
                                       {u"pStereoBitRate"_s, u"160"_s},
                                       {u"pSurroundActionIndex"_s, playsAc3 ? 0 : 1},
                                       {u"pSurroundBitRate"_s, u"448"_s},
                                       {u"pAudioAddStereo"_s, playsAc3},
                                       {u"pKeepStereoTrack"_s, false},
                                       {u"pKeepSurroundTrack"_s, false},
                                       {u"pSubAction"_s, u"Mux (soft)"_s},
                                       {u"isEditable"_s, true}};
            QCOMPARE(fixture.bundle.makeRecord(), expected);
        }
    }

    void theManualNamesEveryFieldAndEveryWordOfTheRecord()
    {
        QFile file(QStringLiteral(TESSARAY_SOURCE_DIR "/packaging/man/tessaray-cli.1"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString manual = QString::fromUtf8(file.readAll());
        QStringList words = KXPresetSelections::recordWords() + KXPresetSettings::recordWords() +
                            presets::filterWords(FilterKind::Audio);
        for (const auto *word : {"audio1.choice", "audio1.number", "audio1.language", "audio1.codec",
                                 "audio1.channels", "audio.mode", "subtitle1.choice", "subtitle.mode"})
            words.append(QString::fromLatin1(word));
        for (const QString &word : std::as_const(words))
            QVERIFY2(manual.contains(word), qPrintable(word));
        for (const QStringList &list :
             {presets::pVideoActionList(), presets::pStereoActionList(), presets::pSurroundActionList(),
              presets::pSubActionList(), presets::afTrackChoiceList(), presets::afChannelsList()}) {
            for (const QString &value : list)
                QVERIFY2(manual.contains(u"\\(dq"_s + value + u"\\(dq"_s), qPrintable(value));
        }
    }

    void whatIsNoDeviceGetsNone()
    {
        for (const QString &name : {u"General"_s, u"MKV"_s, u"AVI"_s, u"Apple TV"_s, u""_s, u"ps3"_s}) {
            FieldsFixture fixture;
            const QVariantMap before = fixture.bundle.makeRecord();
            const QString sentence = presets::makeReadyFor(name, fixture.bundle);
            QVERIFY2(sentence.startsWith(u"There is no device \"%1\". There are: iPod"_s.arg(name)),
                     qPrintable(sentence));
            QCOMPARE(fixture.bundle.makeRecord(), before);
        }
    }
};

TESSARAY_TEST(PresetFieldsTest)
#include "PresetFieldsTest.moc"

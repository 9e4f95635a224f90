#include "presets/PresetSentence.h"

#include "presets/KXPresetSelections.h"
#include "presets/KXPresetSettings.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using presets::sentenceFor;
using support::filterOf;

namespace {

const QString none = u"None|1|Any Language|Any Codec|Any Type"_s;

} // namespace

/// What a preset says about itself.
class PresetSentenceTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtInsSayWhatTheyAre()
    {
        const support::Scratch scratch;
        const support::PresetFixture fixture(scratch);
        QStringList sentences;
        for (const PresetSelectionsPointer &preset : fixture.presets.presetSelectionsList())
            sentences.append(sentenceFor(*preset));
        for (const PresetSettingsPointer &preset : fixture.presets.presetSettingsList())
            sentences.append(sentenceFor(*preset));
        QCOMPARE(
            sentences,
            QStringList({u"Tracks are ticked by hand."_s,
                         u"The first track is taken if it is video. Audio: track 1. Subtitles: track 1."_s,
                         u"The first track is taken if it is video. Audio: all tracks. Subtitles: all "
                         "tracks."_s,
                         u"Settings are chosen by hand."_s,
                         u"Each chosen track is written to a file of its own."_s}));
    }

    void filtersAreToldInTheirOrder()
    {
        const support::Scratch scratch;
        support::PresetFixture fixture(scratch);
        KXPresetSelections preset(fixture.file, fixture.controller);
        preset.initializeAsNewUserPreset();
        preset.setPSelectedVideoTrack(u"0"_s);
        preset.setPAudioFilterArray(
            {filterOf(u"Tracks w/ Properties ...|1|English|ac3|Surround Only"_s), filterOf(none),
             filterOf(u"Tracks w/ Properties ...|1|Any Language|Any Codec|Stereo Only"_s),
             filterOf(u"Audio Track Number|2|German|Any Codec|Any Type"_s)});
        QCOMPARE(sentenceFor(preset),
                 u"No video track is taken. Audio: English ac3 surround tracks and stereo "
                 "tracks and track 2. Subtitles: none."_s);
        preset.setPAudioFilterMode(u"Prioritized"_s);
        QCOMPARE(
            sentenceFor(preset),
            u"No video track is taken. Audio: the first of these that the film has: English ac3 surround "
            "tracks; stereo tracks; track 2. Subtitles: none."_s);
        preset.setPSubtitleFilterMode(u"Prioritized"_s); // of one filter it says nothing
        preset.setPSubtitleFilterArray({filterOf(u"Tracks w/ Properties ...|1|German|Any Codec"_s)});
        QVERIFY(sentenceFor(preset).endsWith(u" Subtitles: German tracks."_s));
        // "All" does not end such a list, nor do properties that are all any.
        preset.setPAudioFilterArray(
            {filterOf(u"Tracks w/ Properties ...|1|Any Language|Any Codec|Any Type"_s),
             filterOf(u"Audio Track Number|2|German|Any Codec|Any Type"_s)});
        QVERIFY(
            sentenceFor(preset).contains(u"Audio: these in turn, up to the first that the film has by number "
                                         "or properties: all tracks; track 2."_s));
    }

    void settingsAreTold_data()
    {
        QTest::addColumn<QVariantMap>("values");
        QTest::addColumn<QString>("told");
        const auto row = [](const char *name, const QVariantMap &values, const QString &told) {
            QTest::newRow(name) << values << told;
        };
        row("a target", {{u"pDevice"_s, u"PS3"_s}}, u"For PS3. "_s);
        row("no target", {{u"pDevice"_s, u"Apple TV"_s}},
            u"For \"Apple TV\", which is no target: films become MP4 as for General. "_s);
        row("video copied", {{u"pVideoActionIndex"_s, 0}}, u"The video is copied."_s);
        row("one pass", {{u"pVideoActionIndex"_s, 1}},
            u"The video becomes H.264 in one pass at 1000 kb/s."_s);
        row("two passes", {{u"pVideoActionIndex"_s, 2}, {u"pVideoBitRateIndex"_s, 0}},
            u"The video becomes H.264 in two passes at the original's bit rate."_s);
        row("sizes",
            {{u"pVideoActionIndex"_s, 1},
             {u"pWidth"_s, u"720"_s},
             {u"pWidthIndex"_s, 1},
             {u"pFPS"_s, u"25"_s},
             {u"pFPSIndex"_s, 1}},
            u"at 1000 kb/s, at most 720 pixels wide, at 25 frames a second."_s);
        row("numbers that don't count", {{u"pVideoActionIndex"_s, 1}, {u"pWidth"_s, u"720"_s}},
            u"in one pass at 1000 kb/s. "_s);
        row("quality", {{u"pVideoActionIndex"_s, 3}}, u"is guessed for quality."_s);
        row("speed", {{u"pVideoActionIndex"_s, 4}}, u"is guessed for speed."_s);
        row("sound copied", {}, u"Stereo sound is copied. Surround sound is copied. "_s);
        row("sound made", {{u"pStereoActionIndex"_s, 1}, {u"pSurroundActionIndex"_s, 3}},
            u"Stereo sound becomes AAC stereo at 160 kb/s. Surround sound becomes AC3 (5.1) at 448 kb/s. "_s);
        row("kept too",
            {{u"pStereoActionIndex"_s, 1}, {u"pSurroundActionIndex"_s, 2}, {u"pKeepStereoTrack"_s, true}},
            u"AAC stereo at 160 kb/s, and is copied beside it. Surround sound becomes AAC (5.1) at 448 kb/s, "
            u"and "
            "is copied beside it. "_s);
        row("copied once", {{u"pKeepSurroundTrack"_s, true}},
            u"Stereo sound is copied. Surround sound is copied. "_s);
        row("stereo beside it", {{u"pAudioAddStereo"_s, true}},
            u"Surround sound is copied, with a version in AAC stereo at 160 kb/s. "_s);
        row("one stereo is enough", {{u"pAudioAddStereo"_s, true}, {u"pSurroundActionIndex"_s, 1}},
            u"Surround sound becomes AAC stereo at 160 kb/s. "_s);
        row("original rates",
            {{u"pStereoActionIndex"_s, 1},
             {u"pStereoBitRate"_s, u"Original"_s},
             {u"pSurroundActionIndex"_s, 3},
             {u"pSurroundBitRate"_s, u"Original"_s}},
            u"AAC stereo at 160 kb/s. Surround sound becomes AC3 (5.1) at the original's bit rate. "_s);
        row("muxed", {}, u" Subtitles stay tracks."_s);
        row("burned", {{u"pSubAction"_s, u"Burn (hard)"_s}}, u" A subtitle is drawn into the picture."_s);
    }

    void settingsAreTold()
    {
        QFETCH(const QVariantMap, values);
        QFETCH(const QString, told);
        const support::Scratch scratch;
        support::PresetFixture fixture(scratch);
        KXPresetSettings preset(fixture.file, fixture.controller);
        preset.initializeAsNewUserPreset();
        for (const QString &word : values.keys())
            QVERIFY(preset.setProperty(word.toLatin1().constData(), values.value(word)));
        const QString sentence = sentenceFor(preset);
        QVERIFY2(sentence.contains(told), qPrintable(sentence));
    }
};

TESSARAY_TEST(PresetSentenceTest)
#include "PresetSentenceTest.moc"

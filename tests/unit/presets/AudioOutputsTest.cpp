#include "presets/KXPresetSettings.h"

#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::outputsOf;

namespace {

TrackPointer soundOf(const QString &channels)
{
    const TrackPointer track = support::probedAudio(u"ac3"_s, channels);
    track->setTrackBitRate(u"640"_s);
    support::setOutputs(*track, u"mp3 2 99"_s); // what was there before
    return track;
}

/// `flags` holds "add", "stereo" and "surround" for a stereo stream in addition and for keeping the source;
/// `rates` is "STEREO/SURROUND". The sound's own bit rate is 640.
void audioRow(const char *name, const QString &channels, int stereoAction, int surroundAction,
              const QString &flags, const QString &rates, const QString &outputs)
{
    QTest::newRow(name) << channels << stereoAction << surroundAction << flags << rates << outputs;
}

void audioColumns()
{
    QTest::addColumn<QString>("channels");
    QTest::addColumn<int>("stereoAction");
    QTest::addColumn<int>("surroundAction");
    QTest::addColumn<QString>("flags");
    QTest::addColumn<QString>("rates");
    QTest::addColumn<QString>("outputs");
}

void takeAudioRow(KXPresetSettings &preset)
{
    QFETCH(const int, stereoAction);
    QFETCH(const int, surroundAction);
    QFETCH(const QString, flags);
    QFETCH(const QString, rates);
    preset.setPStereoActionIndex(stereoAction);
    preset.setPSurroundActionIndex(surroundAction);
    preset.setPAudioAddStereo(flags.contains(u"add"_s));
    preset.setPKeepStereoTrack(flags.contains(u"stereo"_s));
    preset.setPKeepSurroundTrack(flags.contains(u"surround"_s));
    preset.setPStereoBitRate(rates.section(u'/', 0, 0));
    preset.setPSurroundBitRate(rates.section(u'/', 1));
}

} // namespace

/// Which streams a preset makes of a track, over what it asks for and the track's channels.
class AudioOutputsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stereoOutputs_data()
    {
        audioColumns();
        const QString r = u"192/384"_s;
        const QString original = u"Original/Original"_s;
        audioRow("pass through", u"2"_s, 0, 3, u""_s, r, u"passthru 2 0"_s);
        audioRow("aac", u"2"_s, 1, 3, u""_s, r, u"aac 2 192"_s);
        audioRow("mono, pass through", u"1"_s, 0, 3, u""_s, r, u"passthru 1 0"_s);
        audioRow("mono, aac", u"1"_s, 1, 3, u""_s, r, u"aac 2 192"_s);
        audioRow("action 2", u"2"_s, 2, 3, u""_s, r, u""_s);
        audioRow("action 3", u"2"_s, 3, 3, u""_s, r, u""_s);
        audioRow("action 9", u"2"_s, 9, 3, u""_s, r, u""_s);
        audioRow("action -1", u"2"_s, -1, 3, u""_s, r, u""_s);
        // Meant: "Original" is 160, whatever the source has.
        audioRow("aac, original rate", u"2"_s, 1, 3, u""_s, original, u"aac 2 160"_s);
        audioRow("pass through has no rate", u"2"_s, 0, 3, u""_s, original, u"passthru 2 0"_s);
        audioRow("no second stereo", u"2"_s, 1, 3, u"add"_s, r, u"aac 2 192"_s);
        audioRow("no stereo beside", u"2"_s, 0, 3, u"add"_s, r, u"passthru 2 0"_s);
        audioRow("nothing to add to nothing", u"2"_s, 9, 3, u"add"_s, r, u""_s);
        audioRow("kept once", u"2"_s, 0, 3, u"stereo"_s, r, u"passthru 2 0"_s);
        audioRow("kept once by the other flag", u"2"_s, 0, 3, u"surround"_s, r, u"passthru 2 0"_s);
        audioRow("kept once by both", u"2"_s, 0, 3, u"stereo surround"_s, r, u"passthru 2 0"_s);
        audioRow("aac, kept", u"2"_s, 1, 3, u"stereo"_s, r, u"aac 2 192, passthru 2 0"_s);
        // Meant: both flags act alike.
        audioRow("aac, kept by the other flag", u"2"_s, 1, 3, u"surround"_s, r, u"aac 2 192, passthru 2 0"_s);
        audioRow("aac, kept by both", u"2"_s, 1, 3, u"stereo surround"_s, r, u"aac 2 192, passthru 2 0"_s);
        audioRow("mono, kept", u"1"_s, 1, 3, u"stereo"_s, r, u"aac 2 192, passthru 1 0"_s);
        audioRow("nothing but kept", u"2"_s, 9, 3, u"stereo"_s, r, u"passthru 2 0"_s);
        audioRow("nothing but kept, the other flag", u"1"_s, 9, 3, u"surround add"_s, r, u"passthru 1 0"_s);
        audioRow("unknown channels count as stereo", u"none"_s, 1, 3, u"stereo"_s, r,
                 u"aac 2 192, passthru none 0"_s);
        audioRow("2.1 counts as stereo", u"2.1"_s, 0, 3, u""_s, r, u"passthru 2.1 0"_s);
    }

    void stereoOutputs() { checkOutputs(); }

    void surroundOutputs_data()
    {
        audioColumns();
        const QString r = u"192/384"_s;
        const QString original = u"Original/Original"_s;
        audioRow("pass through", u"6"_s, 1, 0, u""_s, r, u"passthru 6 0"_s);
        audioRow("aac stereo", u"6"_s, 0, 1, u""_s, r, u"aac 2 192"_s);
        audioRow("aac surround", u"6"_s, 0, 2, u""_s, r, u"aac 6 384"_s);
        audioRow("ac3", u"6"_s, 0, 3, u""_s, r, u"ac3 6 384"_s);
        audioRow("three channels, pass through", u"3"_s, 1, 0, u""_s, r, u"passthru 3 0"_s);
        audioRow("three channels, aac", u"3"_s, 0, 2, u""_s, r, u"aac 6 384"_s);
        audioRow("eight channels, pass through", u"8"_s, 1, 0, u""_s, r, u"passthru 8 0"_s);
        audioRow("eight channels, ac3", u"8"_s, 0, 3, u""_s, r, u"ac3 6 384"_s);
        audioRow("ten channels are surround", u"10"_s, 1, 0, u""_s, r, u"passthru 10 0"_s);
        audioRow("action 4", u"6"_s, 0, 4, u""_s, r, u""_s);
        audioRow("action 9", u"6"_s, 0, 9, u""_s, r, u""_s);
        audioRow("action -1", u"6"_s, 0, -1, u""_s, r, u""_s);
        audioRow("aac surround, original rate", u"6"_s, 0, 2, u""_s, original, u"aac 6 640"_s);
        audioRow("ac3, original rate", u"6"_s, 0, 3, u""_s, original, u"ac3 6 640"_s);
        audioRow("aac stereo, original rate", u"6"_s, 0, 1, u""_s, original, u"aac 2 160"_s);
        audioRow("pass through, stereo added", u"6"_s, 1, 0, u"add"_s, r, u"passthru 6 0, aac 2 192"_s);
        audioRow("aac surround, stereo added", u"6"_s, 0, 2, u"add"_s, r, u"aac 6 384, aac 2 192"_s);
        audioRow("ac3, stereo added", u"6"_s, 0, 3, u"add"_s, r, u"ac3 6 384, aac 2 192"_s);
        audioRow("added at the original rate", u"6"_s, 0, 3, u"add"_s, original, u"ac3 6 640, aac 2 160"_s);
        audioRow("aac stereo, no second one", u"6"_s, 0, 1, u"add"_s, r, u"aac 2 192"_s);
        audioRow("nothing but stereo", u"6"_s, 0, 9, u"add"_s, r, u"aac 2 192"_s);
        audioRow("pass through, kept once", u"6"_s, 1, 0, u"surround"_s, r, u"passthru 6 0"_s);
        audioRow("pass through, stereo added, kept once", u"8"_s, 1, 0, u"add surround stereo"_s, r,
                 u"passthru 8 0, aac 2 192"_s);
        audioRow("aac stereo, kept", u"6"_s, 0, 1, u"surround"_s, r, u"aac 2 192, passthru 6 0"_s);
        audioRow("aac stereo, no second one, kept", u"6"_s, 0, 1, u"add surround"_s, r,
                 u"aac 2 192, passthru 6 0"_s);
        audioRow("aac surround, kept", u"6"_s, 0, 2, u"surround"_s, r, u"aac 6 384, passthru 6 0"_s);
        // Meant: both flags act alike.
        audioRow("aac surround, kept by the other flag", u"6"_s, 0, 2, u"stereo"_s, r,
                 u"aac 6 384, passthru 6 0"_s);
        audioRow("ac3, kept by both", u"3"_s, 0, 3, u"stereo surround"_s, r, u"ac3 6 384, passthru 3 0"_s);
        audioRow("all there is", u"8"_s, 0, 2, u"add stereo surround"_s, original,
                 u"aac 6 640, aac 2 160, passthru 8 0"_s);
        audioRow("nothing but kept", u"6"_s, 0, 9, u"surround"_s, r, u"passthru 6 0"_s);
        audioRow("nothing but stereo and kept", u"6"_s, 0, 9, u"add surround"_s, r,
                 u"aac 2 192, passthru 6 0"_s);
    }

    void surroundOutputs() { checkOutputs(); }

private:
    /// The popup's track is written once more by the controls: it must come out the same.
    static void checkOutputs()
    {
        QFETCH(const QString, channels);
        QFETCH(const QString, outputs);
        const TrackList sounds{soundOf(channels), soundOf(channels)};
        support::ControllerFixture fixture({support::probedVideo(), sounds.at(0), sounds.at(1)});
        fixture.selectAll();
        KXPresetSettings preset(fixture.file, fixture.controller);
        preset.initializeAsNewUserPreset();
        takeAudioRow(preset);
        preset.makeSettings();
        QCOMPARE(outputsOf(*sounds.at(0)), outputs);
        QCOMPARE(outputsOf(*sounds.at(1)), outputs);
    }
};

TESSARAY_TEST(AudioOutputsTest)
#include "AudioOutputsTest.moc"

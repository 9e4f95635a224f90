#include "selection/ConversionSettings.h"

#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using selection::AudioOutputs;
using selection::ConversionSettings;
using selection::Picture;
using selection::SubtitleUse;

namespace {

/// Of a video track, an audio track of six channels and a subtitle.
SelectionPointer film()
{
    const auto made = handMadeSelection(
        u"PS3"_s, {videoTrack(), audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {}), subtitleTrack(u"2"_s, u"srt"_s)});
    made->setUserVideoBitRate(u"2500"_s);
    made->setUserWidth(u"1280"_s);
    made->setUserFPS(u"25"_s);
    made->setUserPassNumber(u"2"_s);
    return made;
}

} // namespace

/// A choice as a value, and as the words of a selection.
class ConversionSettingsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatWasNotChosenStays()
    {
        const SelectionPointer selection = film();
        ConversionSettings().writeTo(*selection);
        QCOMPARE(selection->theDevice(), u"PS3"_s);
        QCOMPARE(selection->userVideoBitRate(), u"2500"_s);
        QCOMPARE(selection->userWidth(), u"1280"_s);
        QCOMPARE(selection->userFPS(), u"25"_s);
        QCOMPARE(selection->userPassNumber(), u"2"_s);
        QCOMPARE(selection->trackList().at(0)->userCodec(), u"h264"_s);
        QCOMPARE(selection->trackList().at(2)->userCodec(), u"mux"_s);
    }

    void picturesHaveTheirWords_data()
    {
        QTest::addColumn<Picture>("picture");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("passes");
        QTest::newRow("copied") << Picture::PassThrough << u"passthru"_s << u"1"_s;
        QTest::newRow("one pass") << Picture::OnePass << u"h264"_s << u"1"_s;
        QTest::newRow("two passes") << Picture::TwoPasses << u"h264"_s << u"2"_s;
    }

    void picturesHaveTheirWords()
    {
        QFETCH(Picture, picture);
        const SelectionPointer selection = film();
        ConversionSettings settings;
        settings.picture = picture;
        settings.writeTo(*selection);
        QTEST(selection->trackList().at(0)->userCodec(), "codec");
        QTEST(selection->userPassNumber(), "passes");
        QVERIFY(ConversionSettings::of(*selection).picture == picture);
    }

    void aWordThatIsNoChoiceIsNoPicture()
    {
        const SelectionPointer selection = film();
        selection->trackList().at(0)->setUserCodec(u"none"_s);
        QVERIFY(!ConversionSettings::of(*selection).picture);
    }

    void subtitlesAreMuxedOrBurned()
    {
        const SelectionPointer selection = film();
        for (const auto &[use, word] :
             {std::pair(SubtitleUse::Burn, u"burn"_s), std::pair(SubtitleUse::Mux, u"mux"_s)}) {
            ConversionSettings settings;
            settings.subtitles = use;
            settings.writeTo(*selection);
            QCOMPARE(selection->trackList().at(2)->userCodec(), word);
            QVERIFY(ConversionSettings::of(*selection).subtitles == use);
        }
    }

    /// Where no channels were chosen they are the track's.
    void outputsAreWrittenIntoTheirTrack()
    {
        const SelectionPointer selection = film();
        const TrackPointer audio = selection->trackList().at(1);
        ConversionSettings settings;
        settings.audio.insert(audio, {{u"passthru"_s, {}, u"0"_s}, {u"aac"_s, u"2"_s, u"160"_s}});
        settings.writeTo(*selection);
        QCOMPARE(audio->userAudioSettingsDictionaryArray(),
                 AudioSettingsList({audioSettings(u"passthru"_s, u"6"_s, u"0"_s),
                                    audioSettings(u"aac"_s, u"2"_s, u"160"_s)}));
        QCOMPARE(ConversionSettings::of(*selection).audio.value(audio),
                 AudioOutputs({{u"passthru"_s, u"6"_s, u"0"_s}, {u"aac"_s, u"2"_s, u"160"_s}}));
    }
};

TESSARAY_TEST(ConversionSettingsTest)
#include "ConversionSettingsTest.moc"

#include "jobs/MuxingTracks.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

TrackPointer soundWith(const AudioSettingsList &outputs)
{
    const TrackPointer track = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {});
    track->setUserAudioSettingsDictionaryArray(outputs);
    return track;
}

QStringList choicesOf(const KXVideoTrack &track)
{
    return {track.userCodec(), track.userNumberOfChannels(), track.userBitRate()};
}

} // namespace

class MuxingTracksTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void soundTakesItsChoicesFromTheFirstOutput()
    {
        const TrackPointer sound = soundWith({audioSettings(u"aac"_s, u"2"_s, u"160"_s)});
        QCOMPARE(jobs::tracksForMuxing({sound}), TrackList{sound});
        QCOMPARE(choicesOf(*sound), QStringList({u"aac"_s, u"2"_s, u"160"_s}));
        QVERIFY(!sound->isStereoCopyFlag());
    }

    void eachFurtherOutputIsAStereoCopyBehindItsTrack()
    {
        const TrackPointer sound =
            soundWith({audioSettings(u"passthru"_s), audioSettings(u"aac"_s, u"2"_s, u"160"_s),
                       audioSettings(u"ac3"_s, u"6"_s, u"448"_s)});
        const TrackPointer video = videoTrack();
        const TrackPointer subtitle = subtitleTrack(u"2"_s, u"srt"_s);
        const TrackList all = jobs::tracksForMuxing({video, sound, subtitle});
        QCOMPARE(all.size(), 5);
        QCOMPARE(all.at(0), video);
        QCOMPARE(all.at(1), sound);
        QCOMPARE(all.at(4), subtitle);
        QVERIFY(!all.at(1)->isStereoCopyFlag());
        QVERIFY(all.at(2)->isStereoCopyFlag() && all.at(3)->isStereoCopyFlag());
        QCOMPARE(all.at(1)->userCodec(), u"passthru"_s);
        QCOMPARE(choicesOf(*all.at(2)), QStringList({u"aac"_s, u"2"_s, u"160"_s}));
        QCOMPARE(choicesOf(*all.at(3)), QStringList({u"ac3"_s, u"6"_s, u"448"_s}));
        QVERIFY(all.at(2) != all.at(3) && all.at(2) != sound);
        for (int i = 1; i < 4; ++i) {
            QCOMPARE(all.at(i)->trackTitle(), u"Audio1"_s);
            QCOMPARE(all.at(i)->trackMkvmergeID(), u"1"_s);
        }
    }

    void aCopyOfAConvertedTrackKeepsTheChoicesOfItsOwn()
    {
        const TrackPointer sound =
            soundWith({audioSettings(u"aac"_s, u"2"_s, u"160"_s), audioSettings(u"ac3"_s, u"6"_s, u"448"_s)});
        const TrackList all = jobs::tracksForMuxing({sound});
        all.at(1)->setUserBitRate(u"1"_s);
        QCOMPARE(choicesOf(*sound), QStringList({u"aac"_s, u"2"_s, u"160"_s}));
    }

    /// The picture is not re-encoded with a subtitle in it, so there is nothing it could be burned into.
    void aSubtitleToBurnIsMuxed()
    {
        const TrackPointer burned = subtitleTrack(u"2"_s, u"srt"_s, u"burn"_s);
        const TrackPointer muxed = subtitleTrack(u"3"_s, u"srt"_s, u"mux"_s);
        const TrackPointer other = subtitleTrack(u"4"_s, u"srt"_s, u"srt"_s);
        QCOMPARE(jobs::tracksForMuxing({burned, muxed, other}), TrackList({burned, muxed, other}));
        QCOMPARE(burned->userCodec(), u"mux"_s);
        QCOMPARE(muxed->userCodec(), u"mux"_s);
        QCOMPARE(other->userCodec(), u"srt"_s);
    }

    void aVideoStaysAsItIs()
    {
        const TrackPointer video = videoTrack(u"h264"_s);
        video->setUserAudioSettingsDictionaryArray({audioSettings(u"aac"_s), audioSettings(u"ac3"_s)});
        QCOMPARE(jobs::tracksForMuxing({video}), TrackList{video});
        QCOMPARE(video->userCodec(), u"h264"_s);
    }

    void soundWithoutAnOutputIsNotWritten() { QVERIFY(jobs::tracksForMuxing({soundWith({})}).isEmpty()); }

    void nothingStaysNothing() { QVERIFY(jobs::tracksForMuxing({}).isEmpty()); }
};

TESSARAY_TEST(MuxingTracksTest)
#include "MuxingTracksTest.moc"

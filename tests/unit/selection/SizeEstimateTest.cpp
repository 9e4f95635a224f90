#include "selection/SizeEstimate.h"

#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using selection::estimateOf;

namespace {

TrackPointer soundOf(const QString &codec, const QString &channels, const QString &rate,
                     const QVariantMap &output)
{
    const TrackPointer track = audioTrack(u"1"_s, codec, channels, output);
    track->setProbedCodecName(codec);
    track->setTrackBitRate(rate);
    return track;
}

TrackPointer copiedVideo(const QString &rate)
{
    const TrackPointer track = videoTrack(u"passthru"_s);
    track->setTrackBitRate(rate);
    return track;
}

/// In whole kB.
qint64 kilobytesOf(const QString &device, const TrackList &tracks, double seconds)
{
    const auto size = estimateOf(*handMadeSelection(device, tracks), seconds);
    return size ? size->bytes / 1000 : -1;
}

} // namespace

class SizeEstimateTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// (2500 + 160) kb/s of 100 s are 33250 kB, and half a percent more is the container's.
    void bitRatesTimesLength()
    {
        const TrackPointer sound =
            soundOf(u"dts"_s, u"6"_s, u"1509"_s, audioSettings(u"aac"_s, u"2"_s, u"160"_s));
        QCOMPARE(kilobytesOf(u"General"_s, {videoTrack(), sound}, 100), 33416);
    }

    void theDevicesCapCounts()
    {
        QCOMPARE(kilobytesOf(u"iPod (All non-Touch)"_s, {videoTrack()}, 100), 18843); // 1500 kb/s
    }

    void whatIsCopiedKeepsItsRate()
    {
        const TrackPointer sound = soundOf(u"ac3"_s, u"6"_s, u"448"_s, audioSettings(u"passthru"_s));
        QCOMPARE(kilobytesOf(u"MKV"_s, {copiedVideo(u"3552"_s), sound}, 100), 50250); // 4000 kb/s
    }

    /// The picture's rate is what the container left, so the sound that told none is in it already.
    void soundOfNoRateIsNotCountedTwice()
    {
        const TrackPointer sound = soundOf(u"aac"_s, u"2"_s, u"0"_s, audioSettings(u"passthru"_s));
        QCOMPARE(kilobytesOf(u"MKV"_s, {copiedVideo(u"4000"_s), sound}, 100), 50250);
    }

    void everyOutputOfATrackCounts()
    {
        const TrackPointer sound = soundOf(u"ac3"_s, u"6"_s, u"448"_s, {});
        sound->setUserAudioSettingsDictionaryArray(
            {audioSettings(u"passthru"_s), audioSettings(u"aac"_s, u"2"_s, u"160"_s)});
        QCOMPARE(kilobytesOf(u"PS3"_s, {copiedVideo(u"3392"_s), sound}, 100), 50250);
    }

    void whatIsNotKnownHasNoSize()
    {
        QVERIFY(!estimateOf(*handMadeSelection(u"MKV"_s, {videoTrack()}), std::nullopt));
        QVERIFY(!estimateOf(*handMadeSelection(u"MKV"_s, {copiedVideo(u"0"_s)}), 100));
        QVERIFY(!estimateOf(*handMadeSelection(u"MKV"_s, {copiedVideo(u"-7"_s)}), 100));
    }

    void growthIsTold()
    {
        const Scratch scratch;
        const QString film = scratch.path(u"film.mkv"_s);
        scratch.write(u"film.mkv"_s, QByteArray(1000000, 'x'));
        const auto selection = handMadeSelection(u"MKV"_s, {videoTrack()}); // 2500 kb/s
        selection->setVideoTrackFileURL(QUrl::fromLocalFile(film));
        const auto larger = estimateOf(*selection, 4);
        QCOMPARE(larger->sourceBytes, 1000000);
        QCOMPARE(larger->wordOfGrowth(), u"About 1.3 MB, more than the 1.0 MB of the source."_s);
        QVERIFY(estimateOf(*selection, 3)->wordOfGrowth().isNull());
        QVERIFY(estimateOf(*selection, 3.3)->wordOfGrowth().isNull()); // no more than an estimate errs
    }

    void sizesAsTexts()
    {
        QCOMPARE(selection::sizeText(0), u"0 bytes"_s);
        QCOMPARE(selection::sizeText(999), u"999 bytes"_s);
        QCOMPARE(selection::sizeText(1500), u"1.5 kB"_s);
        QCOMPARE(selection::sizeText(52000000), u"52 MB"_s);
        QCOMPARE(selection::sizeText(1440000000), u"1.4 GB"_s);
    }
};

TESSARAY_TEST(SizeEstimateTest)
#include "SizeEstimateTest.moc"

#include "engines/ffmpeg/FfmpegArguments.h"
#include "engines/ffmpeg/FfmpegAudioOrder.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;

namespace {

/// "stream:codec:channels" of each output, in order.
QStringList orderOf(const TrackList &tracks)
{
    QStringList order;
    for (const AudioOutput &output : orderedAudioOutputs(tracks))
        order << output.track->trackFfmpegID() + u':' + output.userCodec + u':' + output.userNumberOfChannels;
    return order;
}

TrackPointer withOutputs(const QString &stream, const QString &codec, const QString &channels,
                         const AudioSettingsList &outputs)
{
    const auto track = audioTrack(stream, codec, channels, {});
    track->setUserAudioSettingsDictionaryArray(outputs);
    return track;
}

/// What an MKV conversion of these tracks says about sound, without the picture in front and the tail.
QString audioLine(const TrackList &tracks, bool useDplii = false)
{
    const auto selection = handMadeSelection(u"MKV"_s, TrackList{videoTrack(u"passthru"_s)} + tracks);
    ConversionRequest request;
    request.kind = OutputKind::Mkv;
    request.output = QUrl::fromLocalFile(u"/v/out"_s);
    request.useDplii = useDplii;
    const QString line = tools::textsOf(conversionLists(*selection, request).first).join(u' ');
    return line.section(u"title=Video0 "_s, 1).section(u" -f matroska"_s, 0, 0);
}

} // namespace

class FfmpegAudioTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Each row against a stereo AAC, another AAC, an AC-3 and an MP3 output: where does it come?
    void everyPairHasItsGroup_data()
    {
        QTest::addColumn<QString>("trackCodec");
        QTest::addColumn<QString>("userCodec");
        QTest::addColumn<QString>("channels");
        QTest::addColumn<int>("group");
        const auto row = [](const char *name, const QString &track, const QString &user,
                            const QString &channels,
                            int group) { QTest::newRow(name) << track << user << channels << group; };
        row("stereo AAC passed through", u"aac"_s, u"passthru"_s, u"2"_s, 0);
        row("mono AAC passed through", u"aac"_s, u"passthru"_s, u"1"_s, 0);
        row("surround AAC passed through", u"aac"_s, u"passthru"_s, u"6"_s, 3);
        row("AAC passed through, channels not known", u"aac"_s, u"passthru"_s, {}, 3);
        row("stereo AC-3 passed through", u"ac3"_s, u"passthru"_s, u"2"_s, 3);
        row("surround AC-3 passed through", u"ac3"_s, u"passthru"_s, u"6"_s, 3);
        row("DTS passed through", u"dts"_s, u"passthru"_s, u"6"_s, 3);
        row("made stereo AAC", u"ac3"_s, u"aac"_s, u"2"_s, 0);
        row("made mono AAC", u"ac3"_s, u"aac"_s, u"1"_s, 1);
        row("made surround AAC", u"ac3"_s, u"aac"_s, u"6"_s, 1);
        row("made AAC, channels not known", u"ac3"_s, u"aac"_s, {}, 1);
        row("made stereo AC-3", u"aac"_s, u"ac3"_s, u"2"_s, 2);
        row("made surround AC-3", u"aac"_s, u"ac3"_s, u"6"_s, 2);
        row("made MP3", u"aac"_s, u"mp3"_s, u"2"_s, 3);
        row("another codec", u"aac"_s, u"vorbis"_s, u"2"_s, 3);
    }

    void everyPairHasItsGroup()
    {
        QFETCH(QString, trackCodec);
        QFETCH(QString, userCodec);
        QFETCH(QString, channels);
        QFETCH(int, group);
        const TrackList before{audioTrack(u"1"_s, u"dts"_s, u"6"_s, audioSettings(u"mp3"_s, u"2"_s)),
                               audioTrack(u"2"_s, u"dts"_s, u"6"_s, audioSettings(u"ac3"_s, u"6"_s)),
                               audioTrack(u"3"_s, u"dts"_s, u"6"_s, audioSettings(u"aac"_s, u"6"_s)),
                               audioTrack(u"4"_s, u"dts"_s, u"6"_s, audioSettings(u"aac"_s, u"2"_s))};
        const auto asked = audioTrack(u"9"_s, trackCodec, u"6"_s, audioSettings(userCodec, channels));
        QStringList expected{u"4:aac:2"_s, u"3:aac:6"_s, u"2:ac3:6"_s, u"1:mp3:2"_s};
        expected.insert(group + 1, u"9:"_s + userCodec + u':' + channels); // last of its group
        QCOMPARE(orderOf(before + TrackList{asked}), expected);
    }

    void groupsKeepTheTrackOrder()
    {
        QCOMPARE(orderOf({audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s, u"6"_s)),
                          audioTrack(u"2"_s, u"aac"_s, u"2"_s, audioSettings(u"passthru"_s, u"2"_s)),
                          audioTrack(u"3"_s, u"dts"_s, u"6"_s, audioSettings(u"passthru"_s, u"6"_s)),
                          audioTrack(u"4"_s, u"aac"_s, u"1"_s, audioSettings(u"passthru"_s, u"1"_s)),
                          audioTrack(u"5"_s, u"dts"_s, u"6"_s, audioSettings(u"aac"_s, u"2"_s))}),
                 QStringList({u"2:passthru:2"_s, u"4:passthru:1"_s, u"5:aac:2"_s, u"1:passthru:6"_s,
                              u"3:passthru:6"_s}));
    }

    void alsoWhenThereAreMany()
    {
        TrackList tracks;
        QStringList expected;
        for (int stream = 1; stream <= 40; ++stream) {
            const bool isFirst = stream % 3 == 0;
            tracks << audioTrack(QString::number(stream), u"dts"_s, u"6"_s,
                                 audioSettings(isFirst ? u"aac"_s : u"mp3"_s, u"2"_s));
            if (isFirst)
                expected << QString::number(stream) + u":aac:2"_s;
        }
        for (int stream = 1; stream <= 40; ++stream) {
            if (stream % 3 != 0)
                expected << QString::number(stream) + u":mp3:2"_s;
        }
        QCOMPARE(orderOf(tracks), expected);
    }

    void onlyAudioTracksCount()
    {
        const auto video = videoTrack();
        video->setUserAudioSettingsDictionaryArray({audioSettings(u"aac"_s, u"2"_s)});
        QVERIFY(orderedAudioOutputs({video, subtitleTrack(u"2"_s, u"srt"_s)}).isEmpty());
        QVERIFY(orderedAudioOutputs({withOutputs(u"1"_s, u"aac"_s, u"2"_s, {})}).isEmpty());
    }

    /// A track with two settings is written twice: the AAC stream first, the copy behind it.
    void oneTrackCanGiveTwoStreams()
    {
        const auto track =
            withOutputs(u"1"_s, u"ac3"_s, u"6"_s,
                        {audioSettings(u"passthru"_s, u"6"_s), audioSettings(u"aac"_s, u"2"_s, u"160"_s)});
        QCOMPARE(audioLine({track}),
                 u"-map 0:1 -codec:a:0 aac -strict experimental -ab:a:0 160k -ac:a:0 2 -ar:a:0 48000 "
                 "-metadata:s:a:0 language=eng -metadata:s:a:0 title=Audio1 "
                 "-map 0:1 -codec:a:1 copy -metadata:s:a:1 language=eng -metadata:s:a:1 title=Audio1"_s);
    }

    void everyCodecHasItsArguments_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("arguments");
        const QString numbers = u"-ab:a:0 448k -ac:a:0 6 -ar:a:0 48000 "_s;
        QTest::newRow("passthru") << u"passthru"_s << u"-codec:a:0 copy "_s;
        QTest::newRow("aac") << u"aac"_s << u"-codec:a:0 aac -strict experimental "_s + numbers;
        QTest::newRow("ac3") << u"ac3"_s << u"-codec:a:0 ac3 "_s + numbers;
        QTest::newRow("mp3") << u"mp3"_s << u"-codec:a:0 libmp3lame "_s + numbers;
        QTest::newRow("other") << u"vorbis"_s << numbers;
    }

    void everyCodecHasItsArguments()
    {
        QFETCH(QString, codec);
        QFETCH(QString, arguments);
        QCOMPARE(audioLine({audioTrack(u"1"_s, u"dts"_s, u"6"_s, audioSettings(codec, u"6"_s, u"448"_s))}),
                 u"-map 0:1 "_s + arguments + u"-metadata:s:a:0 language=eng -metadata:s:a:0 title=Audio1"_s);
    }

    void anExternalTrackIsMappedWhole()
    {
        const auto track = external(
            audioTrack(u"0"_s, u"ac3"_s, u"6"_s, audioSettings(u"ac3"_s, u"6"_s, u"448"_s)), u"/s/b.ac3"_s);
        QVERIFY(audioLine({track}).startsWith(u"-map 1 -codec:a:0 ac3 "_s));
    }

    void surroundMixesDownOnlyWhenAskedTo_data()
    {
        QTest::addColumn<QString>("channels");
        QTest::addColumn<QString>("sourceChannels");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<bool>("flag");
        QTest::addColumn<bool>("isExternal");
        QTest::addColumn<bool>("mixes");
        const auto row = [](const char *name, const QString &channels, const QString &source,
                            const QString &codec, bool flag, bool isExternal, bool mixes) {
            QTest::newRow(name) << channels << source << codec << flag << isExternal << mixes;
        };
        row("surround to stereo", u"2"_s, u"6"_s, u"aac"_s, true, false, true);
        row("three channels to stereo", u"2"_s, u"3"_s, u"ac3"_s, true, false, true);
        row("stereo to stereo", u"2"_s, u"2"_s, u"aac"_s, true, false, false);
        row("surround stays surround", u"6"_s, u"6"_s, u"aac"_s, true, false, false);
        row("surround to mono", u"1"_s, u"6"_s, u"aac"_s, true, false, false);
        row("the preference is off", u"2"_s, u"6"_s, u"aac"_s, false, false, false);
        row("an external track", u"2"_s, u"6"_s, u"aac"_s, true, true, false);
        row("a copy", u"2"_s, u"6"_s, u"passthru"_s, true, false, false);
    }

    void surroundMixesDownOnlyWhenAskedTo()
    {
        QFETCH(QString, channels);
        QFETCH(QString, sourceChannels);
        QFETCH(QString, codec);
        QFETCH(bool, flag);
        QFETCH(bool, isExternal);
        QFETCH(bool, mixes);
        const auto track =
            audioTrack(u"1"_s, u"dts"_s, sourceChannels, audioSettings(codec, channels, u"160"_s));
        if (isExternal)
            external(track, u"/s/b.dts"_s);
        const QString line = audioLine({track}, flag);
        QCOMPARE(line.contains(u" -ar:a:0 48000 -af aresample=matrix_encoding=dplii -metadata:s:a:0 "_s),
                 mixes);
        QCOMPARE(line.contains(u"-af"_s), mixes);
    }

    void languageAndTitleAreTheTracks()
    {
        const auto track = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s));
        track->setTrackLanguage(u"French"_s);
        track->setTrackTitle(u"Surround"_s);
        QCOMPARE(audioLine({track}), u"-map 0:1 -codec:a:0 copy -metadata:s:a:0 language=fra "
                                     "-metadata:s:a:0 title=Surround"_s);
    }

    void bothPassesHaveTheSameSound()
    {
        const auto track = audioTrack(u"1"_s, u"dts"_s, u"6"_s, audioSettings(u"aac"_s, u"2"_s, u"160"_s));
        const auto selection = handMadeSelection(u"MKV"_s, {videoTrack(), track}, u"2"_s);
        ConversionRequest request;
        request.kind = OutputKind::Mkv;
        const auto lists = conversionLists(*selection, request);
        const QString sound = u" -map 0:1 -codec:a:0 aac -strict experimental -ab:a:0 160k -ac:a:0 2 "
                              "-ar:a:0 48000 -metadata:s:a:0 language=eng -metadata:s:a:0 title=Audio1 "_s;
        QVERIFY(tools::textsOf(lists.first).join(u' ').contains(sound));
        QVERIFY(tools::textsOf(lists.second).join(u' ').contains(sound));
    }
};

TESSARAY_TEST(FfmpegAudioTest)
#include "FfmpegAudioTest.moc"

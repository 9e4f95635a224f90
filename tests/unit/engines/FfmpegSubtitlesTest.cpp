#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "engines/ffmpeg/FfmpegArguments.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;

namespace {

const QUrl source = QUrl::fromLocalFile(u"/v/a.mkv"_s);

ConversionLists burningLists(const SelectionPointer &selection, const QString &subtitle = {})
{
    ConversionRequest request;
    request.kind = outputKindNamed(appNameForDevice(selection->theDevice()));
    request.output = QUrl::fromLocalFile(u"/v/out"_s);
    request.passlogfile = u"/t/passLog"_s;
    if (!subtitle.isNull())
        request.subToBurn = QUrl::fromLocalFile(subtitle);
    return conversionLists(*selection, request);
}

QString firstBurning(const SelectionPointer &selection, const QString &subtitle = {})
{
    return tools::textsOf(burningLists(selection, subtitle).first).join(u' ');
}

/// The selection of a film that is scaled to 640 pixels.
SelectionPointer scaled(const TrackList &tracks, const QString &passes = u"1"_s)
{
    const auto selection = handMadeSelection(u"General"_s, tracks, passes);
    selection->setUserWidth(u"640"_s);
    return selection;
}

const QString scale = u"scale=trunc(640/1920*iw/2)*2:trunc(ow/a/2)*2"_s;
TrackPointer pictureSubtitle(const QString &stream)
{
    return subtitleTrack(stream, u"teletext"_s, u"burn"_s);
}

} // namespace

class FfmpegSubtitlesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void softSubtitles_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("codec");
        QTest::newRow("MP4") << u"General"_s << u"mov_text"_s;
        QTest::newRow("MKV") << u"MKV"_s << u"copy"_s;
    }

    void softSubtitles()
    {
        QFETCH(QString, device);
        QFETCH(QString, codec);
        const auto german = external(subtitleTrack(u"0"_s, u"srt"_s), u"/s/g.srt"_s);
        german->setTrackLanguage(u"German"_s);
        german->setTrackTitle(u"Untertitel"_s);
        const auto line = firstBurning(
            handMadeSelection(device, {videoTrack(u"passthru"_s), subtitleTrack(u"3"_s, u"srt"_s), german}));
        const QString expected =
            u" -map 0:3 -codec:s:0 %1 -metadata:s:s:0 language=eng -metadata:s:s:0 title=Subtitle3"
            " -map 1 -codec:s:1 %1 -metadata:s:s:1 language=deu -metadata:s:s:1 title=Untertitel -f "_s;
        QVERIFY2(line.contains(expected.arg(codec)), qPrintable(line));
    }

    void aviNeverCarriesSubtitles()
    {
        for (const QString &passes : {u"1"_s, u"2"_s}) {
            const auto lists = burningLists(
                handMadeSelection(u"AVI"_s, {videoTrack(), subtitleTrack(u"3"_s, u"srt"_s)}, passes));
            for (const auto &list : {lists.first, lists.second}) {
                const QString line = tools::textsOf(list).join(u' ');
                QVERIFY(!line.contains(u"-codec:s"_s));
                QVERIFY(!line.contains(u"0:3"_s));
            }
        }
    }

    void onlySubtitlesToMuxAreMuxed_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("userCodec");
        QTest::addColumn<bool>("isMuxed");
        QTest::newRow("a subtitle to mux") << u"Subtitle"_s << u"mux"_s << true;
        QTest::newRow("the type that nothing assigns") << u"External Subtitle"_s << u"mux"_s << true;
        QTest::newRow("to burn") << u"Subtitle"_s << u"burn"_s << false;
        QTest::newRow("to extract") << u"Subtitle"_s << u"extract"_s << false;
        QTest::newRow("in capitals") << u"Subtitle"_s << u"MUX"_s << false;
        QTest::newRow("no subtitle") << u"Data"_s << u"mux"_s << false;
    }

    void onlySubtitlesToMuxAreMuxed()
    {
        QFETCH(QString, type);
        QFETCH(QString, userCodec);
        QFETCH(bool, isMuxed);
        const auto track = subtitleTrack(u"3"_s, u"srt"_s, userCodec);
        track->setTrackType(type);
        QCOMPARE(firstBurning(handMadeSelection(u"MKV"_s, {videoTrack(), track}))
                     .contains(u"-map 0:3 -codec:s:0"_s),
                 isMuxed);
    }

    /// The numbers count what is muxed.
    void numbersHaveNoGaps()
    {
        const auto line = firstBurning(
            handMadeSelection(u"MKV"_s, {videoTrack(), subtitleTrack(u"2"_s, u"srt"_s, u"extract"_s),
                                         subtitleTrack(u"3"_s, u"srt"_s), subtitleTrack(u"4"_s, u"ass"_s)}));
        QVERIFY(line.contains(u"-map 0:3 -codec:s:0 copy"_s));
        QVERIFY(line.contains(u"-map 0:4 -codec:s:1 copy"_s));
    }

    void inTwoPassesOnlyTheSecondHasThem()
    {
        const auto lists = burningLists(
            handMadeSelection(u"MKV"_s, {videoTrack(), subtitleTrack(u"3"_s, u"srt"_s)}, u"2"_s));
        const auto one = tools::textsOf(lists.first);
        const auto two = tools::textsOf(lists.second);
        QCOMPARE(one.count(u"-sn"_s), 1);
        QVERIFY(!one.contains(u"-codec:s:0"_s));
        QVERIFY(two.contains(u"-codec:s:0"_s));
        QVERIFY(!two.contains(u"-sn"_s));
    }

    void textIsBurnedByItsFilter_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isBurned");
        for (const QString &extension : {u"srt"_s, u"ssa"_s, u"ass"_s, u"ttxt"_s, u"SRT"_s, u"Ass"_s})
            QTest::newRow(qPrintable(extension)) << u"/s/b."_s + extension << true;
        for (const QString &extension : {u"sub"_s, u"idx"_s, u"sup"_s, u"txt"_s, u"mkv"_s})
            QTest::newRow(qPrintable(extension)) << u"/s/b."_s + extension << false;
        QTest::newRow("no extension") << u"/s/srt"_s << false;
    }

    void textIsBurnedByItsFilter()
    {
        QFETCH(QString, path);
        QFETCH(bool, isBurned);
        const QString line = firstBurning(handMadeSelection(u"General"_s, {videoTrack()}), path);
        const QString filter = isBurned ? u" -vf subtitles="_s + path : QString();
        QCOMPARE(line, u"-i /v/a.mkv -map 0:0 -vcodec libx264 -b:v 2500k "_s + videoMetadata + filter +
                           u" -f mp4 -y /v/out"_s);
    }

    /// An external picture subtitle is neither burned nor muxed.
    void anExternalPictureSubtitleIsLeftOut()
    {
        const auto track = external(subtitleTrack(u"0"_s, u"vobsub"_s, u"burn"_s), u"/s/b.idx"_s);
        const QString line =
            firstBurning(handMadeSelection(u"General"_s, {videoTrack(), track}), u"/s/b.idx"_s);
        QCOMPARE(line, u"-i /v/a.mkv -i /s/b.idx -map 0:0 -vcodec libx264 -b:v 2500k "_s + videoMetadata +
                           u" -f mp4 -y /v/out"_s);
    }

    /// The text is drawn before the picture gets smaller.
    void textStandsInFrontOfTheScale()
    {
        const QString line = firstBurning(scaled({videoTrack()}), u"/s/b.srt"_s);
        QVERIFY(line.contains(u" -vf subtitles=/s/b.srt,%1 -b:v 2500k "_s.arg(scale)));
        QCOMPARE(line.count(u"-vf"_s), 1);
    }

    void thePathOfATextStandsAsItIs()
    {
        const auto lists = burningLists(handMadeSelection(u"MKV"_s, {videoTrack()}), u"/s/a b %1 50%.srt"_s);
        const auto texts = tools::textsOf(lists.first);
        QCOMPARE(texts.at(texts.indexOf(u"-vf"_s) + 1), u"subtitles=/s/a b %1 50%.srt"_s);
        const auto both = tools::textsOf(burningLists(scaled({videoTrack()}), u"/s/%1%2.srt"_s).first);
        QCOMPARE(both.at(both.indexOf(u"-vf"_s) + 1), u"subtitles=/s/%1%2.srt,"_s + scale);
    }

    void aBurnedSubtitleLeavesNoSoftOnes()
    {
        const QString line = firstBurning(
            handMadeSelection(u"MKV"_s, {videoTrack(), subtitleTrack(u"3"_s, u"srt"_s)}), u"/s/b.srt"_s);
        QVERIFY(!line.contains(u"-codec:s"_s));
    }

    void inTwoPassesTextIsBurnedIntoTheSecond()
    {
        const auto lists = burningLists(scaled({videoTrack()}, u"2"_s), u"/s/b.srt"_s);
        const QString one = tools::textsOf(lists.first).join(u' ');
        const QString two = tools::textsOf(lists.second).join(u' ');
        QVERIFY(one.contains(u" -vf %1 "_s.arg(scale)));
        QVERIFY(!one.contains(u"subtitles="_s));
        QVERIFY(!one.contains(u"-sn"_s));
        QVERIFY(two.contains(u" -vf subtitles=/s/b.srt,%1 "_s.arg(scale)));
    }

    void aPictureIsLaidOverTheVideo()
    {
        const auto selection = handMadeSelection(u"General"_s, {videoTrack(), pictureSubtitle(u"3"_s)});
        QCOMPARE(firstBurning(selection, u"/v/a.mkv"_s),
                 u"-i /v/a.mkv -filter_complex [0:3]scale=1920:1080[sub];[0:v][sub]overlay[outv] -map [outv] "
                 "-vcodec libx264 -b:v 2500k "_s +
                     videoMetadata + u" -f mp4 -y /v/out"_s);
    }

    void aPictureIsScaledWithTheVideo()
    {
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s));
        QCOMPARE(firstBurning(scaled({videoTrack(), audio, pictureSubtitle(u"3"_s)}), u"/v/a.mkv"_s),
                 u"-i /v/a.mkv -filter_complex [0:3]scale=1920:1080[subInitialize];[subInitialize]%1[sub];"
                 "[0:v]%1[vid];[vid][sub]overlay[outv] -map [outv] -vcodec libx264 -b:v 2500k %2 "
                 "-map 0:1 -codec:a:0 copy -metadata:s:a:0 language=eng -metadata:s:a:0 title=Audio1 "
                 "-f mp4 -y /v/out"_s.arg(scale, videoMetadata));
    }

    /// Of several, the last subtitle stream is the one that is laid over: meant.
    void theLastSubtitleIsThePicture()
    {
        const auto odd = pictureSubtitle(u"5"_s);
        odd->setTrackType(u"External Subtitle"_s);
        const QString line =
            firstBurning(handMadeSelection(u"General"_s, {videoTrack(), pictureSubtitle(u"2"_s),
                                                          pictureSubtitle(u"4"_s), odd}),
                         u"/v/a.mkv"_s);
        QVERIFY(line.contains(u"[0:4]scale=1920:1080[sub]"_s));
    }

    void inTwoPassesThePictureIsInTheSecond()
    {
        const auto lists =
            burningLists(scaled({videoTrack(), pictureSubtitle(u"3"_s)}, u"2"_s), u"/v/a.mkv"_s);
        QCOMPARE(tools::textsOf(lists.first).join(u' '),
                 u"-i /v/a.mkv -pass 1 -map 0:0 -vcodec libx264 -vf %1 -b:v 2500k %2 -f mp4 "
                 "-passlogfile /t/passLog -y /dev/null"_s.arg(scale, videoMetadata));
        const QString two = tools::textsOf(lists.second).join(u' ');
        QVERIFY(
            two.startsWith(u"-i /v/a.mkv -pass 2 -filter_complex [0:3]scale=1920:1080[subInitialize];"_s));
        QVERIFY(two.contains(u" -map [outv] -vcodec libx264 -b:v 2500k "_s));
        QVERIFY(!two.contains(u"-vf"_s));
        QVERIFY(!two.contains(u"-map 0:0"_s));
    }

    /// Files are no options, whatever they are called.
    void optionsAreNeverFoundInFileNames()
    {
        tools::OptionList list{u"-i",        QUrl::fromLocalFile(u"-map"_s),
                               u"-i",        QUrl::fromLocalFile(u"-vf"_s),
                               u"-metadata", u"title=-map -vf",
                               u"-map",      u"0:0",
                               u"-vcodec",   u"libx264"};
        const auto selection = handMadeSelection(u"General"_s, {videoTrack(), pictureSubtitle(u"3"_s)});
        auto drawn = list;
        burnSubtitle(drawn, *selection, QUrl::fromLocalFile(u"/s/b.srt"_s));
        QCOMPARE(tools::textsOf(drawn),
                 tools::textsOf(list) + QStringList({u"-vf"_s, u"subtitles=/s/b.srt"_s}));
        burnSubtitle(list, *selection, source);
        QCOMPARE(tools::textsOf(list).mid(0, 6),
                 QStringList({u"-i"_s, u"-map"_s, u"-i"_s, u"-vf"_s, u"-metadata"_s, u"title=-map -vf"_s}));
        QCOMPARE(tools::textsOf(list).mid(6),
                 QStringList({u"-filter_complex"_s, u"[0:3]scale=1920:1080[sub];[0:v][sub]overlay[outv]"_s,
                              u"-map"_s, u"[outv]"_s, u"-vcodec"_s, u"libx264"_s}));
    }

    void someCharactersCantStandInAFilter_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("can");
        for (const QChar c : u"':,;\\=[]"_s)
            QTest::addRow("%c", c.toLatin1()) << u"/s/a%1b.srt"_s.arg(c) << false;
        for (const QChar c : u" %$(@\"\u00fc\u20ac"_s)
            QTest::addRow("U+%04x", c.unicode()) << u"/s/a%1b.srt"_s.arg(c) << true;
        QTest::newRow("in the folder") << u"/s[1]/b.srt"_s << false;
    }

    void someCharactersCantStandInAFilter()
    {
        QFETCH(QString, path);
        QFETCH(bool, can);
        QCOMPARE(filterCanTake(path), can);
    }

    void externalFilesAreThoseOfExternalTracks()
    {
        const TrackList tracks{videoTrack(), external(subtitleTrack(u"0"_s, u"srt"_s), u"/s/1.srt"_s),
                               subtitleTrack(u"3"_s, u"srt"_s),
                               external(subtitleTrack(u"0"_s, u"srt"_s), u"/s/2.srt"_s)};
        QCOMPARE(externalFiles(tracks),
                 QList<QUrl>({QUrl::fromLocalFile(u"/s/1.srt"_s), QUrl::fromLocalFile(u"/s/2.srt"_s)}));
        QCOMPARE(mapArgument(*tracks.at(1), tracks, 0).text(), u"1"_s);
        QCOMPARE(mapArgument(*tracks.at(3), tracks, 0).text(), u"2"_s);
        QCOMPARE(mapArgument(*tracks.at(2), tracks, 0).text(), u"0:3"_s);
        QCOMPARE(mapArgument(*tracks.at(2), tracks, 1).text(), u"1:3"_s);
    }
};

TESSARAY_TEST(FfmpegSubtitlesTest)
#include "FfmpegSubtitlesTest.moc"

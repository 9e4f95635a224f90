// What becomes of tracks in a conversion, track by track.
#include "engines/ffmpeg/FfmpegFates.h"
#include "support/TestMain.h"
#include "support/media/Fates.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;

namespace {

const QUrl source = QUrl::fromLocalFile(u"/v/a.mkv"_s);

ConversionRequest requestFor(OutputKind kind, const QUrl &subToBurn = {})
{
    ConversionRequest request{kind, QUrl::fromLocalFile(u"/v/out.film"_s), subToBurn, {}};
    return request;
}

TrackPointer sound(const QString &stream, const QString &codec, const QVariantMap &settings)
{
    return audioTrack(stream, codec, u"6"_s, settings);
}

QStringList fatesOf(const TrackList &tracks, const ConversionRequest &request)
{
    return told(conversionOutput(*handMadeSelection(u"General"_s, tracks), request).tracks);
}

QStringList fatesOf(const TrackList &tracks, OutputKind kind)
{
    return fatesOf(tracks, requestFor(kind));
}

} // namespace

class FfmpegFatesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thePicture_data()
    {
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &chosen, OutputKind kind,
                            const QString &expected) {
            QTest::newRow(name) << chosen << static_cast<int>(kind) << u"a.mkv:0 video "_s + expected;
        };
        row("copied into MP4", u"passthru"_s, OutputKind::Mp4, u"copied #0"_s);
        row("copied into AVI", u"passthru"_s, OutputKind::Avi, u"copied #0"_s);
        row("re-encoded into MP4", u"h264"_s, OutputKind::Mp4, u"> h264 #0"_s);
        row("re-encoded into MKV", u"h264"_s, OutputKind::Mkv, u"> h264 #0"_s);
        row("re-encoded into AVI", u"h264"_s, OutputKind::Avi, u"> mpeg4 #0"_s);
    }

    void thePicture()
    {
        QFETCH(QString, chosen);
        QFETCH(int, kind);
        QTEST(fatesOf({videoTrack(chosen)}, static_cast<OutputKind>(kind)).join(u'|'), "expected");
    }

    void soundStandsInTheOrderOfTheOutput()
    {
        const TrackPointer both = sound(u"1"_s, u"dts"_s, audioSettings(u"passthru"_s, u"6"_s));
        both->setUserAudioSettingsDictionaryArray(
            {audioSettings(u"passthru"_s, u"6"_s), audioSettings(u"aac"_s, u"2"_s)});
        const TrackPointer ac3 = sound(u"2"_s, u"dts"_s, audioSettings(u"ac3"_s, u"6"_s));
        const TrackPointer mp3 = sound(u"3"_s, u"aac"_s, audioSettings(u"mp3"_s, u"2"_s));
        QCOMPARE(fatesOf({both, mp3, ac3, videoTrack()}, OutputKind::Mkv),
                 QStringList({u"a.mkv:0 video > h264 #0"_s, u"a.mkv:1 audio > aac #1"_s,
                              u"a.mkv:2 audio > ac3 #2"_s, u"a.mkv:1 audio copied #3"_s,
                              u"a.mkv:3 audio > mp3 #4"_s}));
    }

    void aStereoCopyIsItsTrackOnceMore()
    {
        const TrackPointer track = sound(u"1"_s, u"ac3"_s, audioSettings(u"passthru"_s, u"6"_s));
        const TrackPointer copy = sound(u"1"_s, u"ac3"_s, audioSettings(u"aac"_s, u"2"_s));
        copy->setIsStereoCopyFlag(true);
        QCOMPARE(fatesOf({track, copy}, OutputKind::Mp4),
                 QStringList({u"a.mkv:1 audio > aac #0"_s, u"a.mkv:1 audio copied #1"_s}));
    }

    void soundThatHasNoOutputWasNotChosen()
    {
        const TrackPointer track = sound(u"1"_s, u"ac3"_s, {});
        track->setUserAudioSettingsDictionaryArray({});
        QCOMPARE(fatesOf({track}, OutputKind::Mp4),
                 QStringList({u"a.mkv:1 audio left: It was not chosen."_s}));
    }

    void aMuxedSubtitle_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &codec, OutputKind kind,
                            const QString &expected) {
            QTest::newRow(name) << codec << static_cast<int>(kind) << u"a.mkv:3 subtitle "_s + expected;
        };
        const QString notHeld = u"left: The output can't hold it."_s;
        row("srt in MP4", u"srt"_s, OutputKind::Mp4, u"> mov_text #0"_s);
        row("MP4's own text in MP4", u"ttxt"_s, OutputKind::Mp4, u"> mov_text #0"_s);
        row("a picture in MP4", u"pgs"_s, OutputKind::Mp4, notHeld);
        row("a VobSub in MP4", u"vobsub"_s, OutputKind::Mp4, notHeld);
        row("ass in MKV", u"ass"_s, OutputKind::Mkv, u"copied #0"_s);
        row("a picture in MKV", u"pgs"_s, OutputKind::Mkv, u"copied #0"_s);
        row("MP4's own text in MKV", u"ttxt"_s, OutputKind::Mkv, u"> subrip #0"_s);
        row("srt in AVI", u"srt"_s, OutputKind::Avi, u"left: An AVI carries no subtitles."_s);
    }

    void aMuxedSubtitle()
    {
        QFETCH(QString, codec);
        QFETCH(int, kind);
        QTEST(fatesOf({subtitleTrack(u"3"_s, codec)}, static_cast<OutputKind>(kind)).join(u'|'), "expected");
    }

    void teletextFitsNoContainer()
    {
        const TrackPointer track = subtitleTrack(u"3"_s, u"teletext"_s);
        track->setProbedCodecName(u"dvb_teletext"_s);
        QCOMPARE(fatesOf({track}, OutputKind::Mkv),
                 QStringList({u"a.mkv:3 subtitle dvb_teletext left: The output can't hold it."_s}));
    }

    void whatIsLeftOutTakesNoPlaceInTheOutput()
    {
        QCOMPARE(
            fatesOf({videoTrack(), subtitleTrack(u"1"_s, u"pgs"_s), subtitleTrack(u"2"_s, u"srt"_s)},
                    OutputKind::Mp4),
            QStringList({u"a.mkv:0 video > h264 #0"_s, u"a.mkv:1 subtitle left: The output can't hold it."_s,
                         u"a.mkv:2 subtitle > mov_text #1"_s}));
    }

    void aTextThatIsDrawn()
    {
        const TrackList tracks{videoTrack(), subtitleTrack(u"1"_s, u"srt"_s, u"burn"_s),
                               subtitleTrack(u"2"_s, u"srt"_s, u"burn"_s), subtitleTrack(u"3"_s, u"ass"_s),
                               subtitleTrack(u"4"_s, u"ass"_s, u"extract"_s)};
        QCOMPARE(fatesOf(tracks, requestFor(OutputKind::Mkv, QUrl::fromLocalFile(u"/t/temp.ass"_s))),
                 QStringList({u"a.mkv:0 video > h264 #0"_s, u"a.mkv:1 subtitle burned"_s,
                              u"a.mkv:2 subtitle left: Another subtitle is drawn into the picture."_s,
                              u"a.mkv:3 subtitle left: A subtitle is drawn into the picture, so no other is "
                              "carried."_s,
                              u"a.mkv:4 subtitle left: It gets a file of its own."_s}));
    }

    /// The graph takes the source's last one, so that is what is drawn.
    void aPictureThatIsDrawn()
    {
        QCOMPARE(fatesOf({videoTrack(), subtitleTrack(u"1"_s, u"pgs"_s, u"burn"_s)},
                         requestFor(OutputKind::Mp4, source)),
                 QStringList({u"a.mkv:0 video > h264 #0"_s, u"a.mkv:1 subtitle burned"_s}));
        QCOMPARE(fatesOf({videoTrack(), subtitleTrack(u"1"_s, u"pgs"_s, u"burn"_s),
                          subtitleTrack(u"2"_s, u"pgs"_s, u"burn"_s)},
                         requestFor(OutputKind::Mp4, source)),
                 QStringList({u"a.mkv:0 video > h264 #0"_s,
                              u"a.mkv:1 subtitle left: Another subtitle is drawn into the picture."_s,
                              u"a.mkv:2 subtitle burned"_s}));
    }

    void whatCannotBeDrawnIsToldSo()
    {
        const TrackPointer added = external(subtitleTrack(u"0"_s, u"pgs"_s, u"burn"_s), u"/v/s.sup"_s);
        QCOMPARE(fatesOf({added}, requestFor(OutputKind::Mp4, QUrl::fromLocalFile(u"/v/s.sup"_s))),
                 QStringList({u"s.sup:0 subtitle left: It can't be drawn into the picture."_s}));
        QCOMPARE(fatesOf({subtitleTrack(u"1"_s, u"srt"_s, u"burn"_s)}, OutputKind::Mp4),
                 QStringList({u"a.mkv:1 subtitle left: It can't be drawn into the picture."_s}));
    }

    void anAddedFileIsASourceOfItsOwn()
    {
        const TrackPointer added = external(subtitleTrack(u"0"_s, u"srt"_s), u"/v/s.srt"_s);
        const auto meant = conversionOutput(*handMadeSelection(u"General"_s, {videoTrack(), added}),
                                            requestFor(OutputKind::Mp4));
        QCOMPARE(told(meant.tracks),
                 QStringList({u"a.mkv:0 video > h264 #0"_s, u"s.srt:0 subtitle > mov_text #1"_s}));
        QCOMPARE(meant.sources, QList<QUrl>({source, QUrl::fromLocalFile(u"/v/s.srt"_s)}));
        QCOMPARE(meant.output, QUrl::fromLocalFile(u"/v/out.film"_s));
        QVERIFY(meant.extent == media::Extent::Whole);
        QVERIFY(!meant.isRaw && meant.hasOneSetOfChapters);
    }

    void whatWasNotTickedIsLeftOut()
    {
        const auto selection = handMadeSelection(u"General"_s, {videoTrack()});
        const TrackPointer cover = videoTrack();
        cover->setTrackFfmpegID(u"5"_s);
        cover->setIsCover(true);
        cover->setProbedCodecName(u"mjpeg"_s);
        selection->setKeepTracksList({sound(u"1"_s, u"ac3"_s, audioSettings(u"passthru"_s)), cover});
        QCOMPARE(told(conversionOutput(*selection, requestFor(OutputKind::Mp4)).tracks),
                 QStringList({u"a.mkv:0 video > h264 #0"_s, u"a.mkv:1 audio left: It was not chosen."_s,
                              u"a.mkv:5 cover mjpeg left: It was not chosen."_s}));
    }

    void aSecondPictureHasNoPlace()
    {
        const TrackPointer second = videoTrack();
        second->setTrackFfmpegID(u"1"_s);
        QCOMPARE(fatesOf({videoTrack(), second}, OutputKind::Mp4),
                 QStringList(
                     {u"a.mkv:0 video > h264 #0"_s, u"a.mkv:1 video left: The output has one picture."_s}));
    }

    void theRest_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("chapters");
        QTest::newRow("MP4") << static_cast<int>(OutputKind::Mp4) << u"chapters copied"_s;
        QTest::newRow("MKV") << static_cast<int>(OutputKind::Mkv) << u"chapters copied"_s;
        QTest::newRow("AVI") << static_cast<int>(OutputKind::Avi)
                             << u"chapters left: An AVI carries no chapters."_s;
    }

    void theRest()
    {
        QFETCH(int, kind);
        QFETCH(QString, chapters);
        const auto meant =
            conversionOutput(*handMadeSelection(u"General"_s, {}), requestFor(static_cast<OutputKind>(kind)));
        QCOMPARE(toldPatterns(meant.rest),
                 QStringList({u"attachment left: A conversion carries no attachments."_s,
                              u"data left: A conversion carries no data streams."_s, chapters}));
    }

    void fontsThatAreMissedAreTold_data()
    {
        QTest::addColumn<TrackPointer>("track");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QUrl>("drawn");
        QTest::addColumn<bool>("areTold");
        const auto row = [](const char *name, const TrackPointer &track, OutputKind kind, bool areTold,
                            const QUrl &drawn = {}) {
            QTest::newRow(name) << track << static_cast<int>(kind) << drawn << areTold;
        };
        row("ass in MKV", subtitleTrack(u"1"_s, u"ass"_s), OutputKind::Mkv, true);
        row("ssa in MKV", subtitleTrack(u"1"_s, u"ssa"_s), OutputKind::Mkv, true);
        row("ass in MP4, where styles go", subtitleTrack(u"1"_s, u"ass"_s), OutputKind::Mp4, false);
        row("ass in AVI", subtitleTrack(u"1"_s, u"ass"_s), OutputKind::Avi, false);
        row("srt in MKV", subtitleTrack(u"1"_s, u"srt"_s), OutputKind::Mkv, false);
        row("ass that is drawn", subtitleTrack(u"1"_s, u"ass"_s, u"burn"_s), OutputKind::Mp4, true,
            QUrl::fromLocalFile(u"/t/temp.ass"_s));
        row("no subtitle", videoTrack(), OutputKind::Mkv, false);
    }

    void fontsThatAreMissedAreTold()
    {
        QFETCH(TrackPointer, track);
        QFETCH(int, kind);
        QFETCH(QUrl, drawn);
        const auto rest = conversionOutput(*handMadeSelection(u"General"_s, {videoTrack(), track}),
                                           requestFor(static_cast<OutputKind>(kind), drawn))
                              .rest;
        const QString sentence =
            u"attachment ttf left: A conversion carries no fonts, so styled subtitles may look different."_s;
        QTEST(toldPatterns(rest).contains(sentence), "areTold");
        QVERIFY((rest.constFirst().told == media::Told::AsANote) == toldPatterns(rest).contains(sentence));
    }

    void aSingleTrack_data()
    {
        QTest::addColumn<TrackPointer>("track");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        const auto chosen = [](const TrackPointer &track, const QString &codec) {
            track->setUserCodec(codec);
            return track;
        };
        const auto row = [](const char *name, const TrackPointer &track, OutputKind kind,
                            const QString &expected) {
            QTest::newRow(name) << track << static_cast<int>(kind) << expected;
        };
        row("a picture", videoTrack(), OutputKind::Mp4, u"a.mkv:0 video > h264 #0"_s);
        row("a picture that is copied", videoTrack(u"passthru"_s), OutputKind::Mp4,
            u"a.mkv:0 video copied #0"_s);
        row("a picture for AVI", videoTrack(), OutputKind::Avi, u"a.mkv:0 video > h264 #0"_s);
        row("aac", chosen(sound(u"0"_s, u"dts"_s, {}), u"aac"_s), OutputKind::Mkv,
            u"a.mkv:0 audio > aac #0"_s);
        row("mp3, which the list does not name, in MP4", chosen(sound(u"0"_s, u"dts"_s, {}), u"mp3"_s),
            OutputKind::Mp4, u"a.mkv:0 audio > aac #0"_s);
        row("the same in MKV", chosen(sound(u"0"_s, u"dts"_s, {}), u"mp3"_s), OutputKind::Mkv,
            u"a.mkv:0 audio > vorbis #0"_s);
        row("the list takes the first stream", chosen(sound(u"2"_s, u"dts"_s, {}), u"ac3"_s), OutputKind::Mkv,
            u"a.mkv:0 audio > ac3 #0"_s);
    }

    void aSingleTrack()
    {
        QFETCH(TrackPointer, track);
        QFETCH(int, kind);
        const QUrl output = QUrl::fromLocalFile(u"/v/out.m4v"_s);
        const auto meant = singleTrackOutput(*track, static_cast<OutputKind>(kind), output);
        QTEST(told(meant.tracks).join(u'|'), "expected");
        QCOMPARE(meant.sources, QList<QUrl>{source});
        QCOMPARE(meant.output, output);
    }
};

TESSARAY_TEST(FfmpegFatesTest)
#include "FfmpegFatesTest.moc"

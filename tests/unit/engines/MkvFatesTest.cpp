// What becomes of tracks in the hands of mkvmerge, and in a join by any tool.
#include "engines/mkvtoolnix/MkvFates.h"
#include "engines/join/JoinFates.h"
#include "support/TestMain.h"
#include "support/media/Fates.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;
using media::Extent;

namespace {

const QUrl source = QUrl::fromLocalFile(u"/v/a.mkv"_s);
const QUrl second = QUrl::fromLocalFile(u"/v/b.mkv"_s);
const QUrl output = QUrl::fromLocalFile(u"/v/out.mkv"_s);

const QStringList allOfAFile{u"subtitle mov_text left: mkvmerge can't read it."_s,
                             u"subtitle eia_608 left: mkvmerge can't read it."_s,
                             u"audio nellymoser left: mkvmerge can't read it."_s,
                             u"data left: mkvmerge can't read it."_s,
                             u"video copied"_s,
                             u"audio copied"_s,
                             u"subtitle copied"_s,
                             u"cover copied"_s,
                             u"attachment copied"_s,
                             u"chapters copied"_s};

TrackPointer sound(const QString &stream, const QString &chosen = u"passthru"_s)
{
    const TrackPointer track = audioTrack(stream, u"dts"_s, u"6"_s, {});
    track->setUserCodec(chosen);
    return track;
}

TrackPointer coverTrack(const QString &stream)
{
    const TrackPointer track = videoTrack(u"passthru"_s);
    track->setTrackFfmpegID(stream);
    track->setIsCover(true);
    return track;
}

/// As it is right before the mux; from a file of its own where it is named.
TrackPointer ready(const TrackPointer &track, const QString &convertedTo = {})
{
    track->initializeForMuxing();
    if (!convertedTo.isEmpty())
        track->setMuxingTrackFileURL(QUrl::fromLocalFile(convertedTo));
    return track;
}

media::MeantOutput muxed(const TrackList &tracks, const TrackList &notTicked = {})
{
    const auto selection = handMadeSelection(u"MKV"_s, tracks);
    selection->setJobType(u"MKV Conversion"_s);
    selection->setKeepTracksList(notTicked);
    return muxOutput(*selection, tracks, output);
}

SelectionPointer splitting(const QString &type)
{
    const auto selection = handMadeSelection(u"General"_s, {});
    selection->setSplitType(type);
    selection->initializeSplitForStartTimeAndEndTime(u"00:10:00"_s, u"00:20:30"_s);
    return selection;
}

} // namespace

class MkvFatesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMuxOfCopiesAndConvertedTracks()
    {
        const TrackPointer added = external(subtitleTrack(u"0"_s, u"srt"_s), u"/v/s.srt"_s);
        const auto meant = muxed({ready(videoTrack(u"passthru"_s)), ready(sound(u"1"_s)),
                                  ready(sound(u"0"_s, u"aac"_s), u"/v/out.added.mkv"_s), ready(added)},
                                 {subtitleTrack(u"4"_s, u"ass"_s)});
        QCOMPARE(told(meant.tracks),
                 QStringList({u"a.mkv:0 video copied"_s, u"a.mkv:1 audio copied"_s, u"a.mkv:0 audio > aac"_s,
                              u"s.srt:0 subtitle copied"_s, u"a.mkv:4 subtitle left: It was not chosen."_s}));
        QCOMPARE(meant.sources, QList<QUrl>({source, added->trackFileURL()}));
        QCOMPARE(meant.output, output);
        QVERIFY(meant.extent == Extent::Whole);
        QCOMPARE(toldPatterns(meant.rest),
                 QStringList({u"data left: mkvmerge can't read it."_s, u"cover copied"_s,
                              u"attachment copied"_s, u"chapters copied"_s}));
    }

    void aConvertedTrackIsNamedByWhatItBecame()
    {
        QCOMPARE(told(muxed({ready(videoTrack(u"h264"_s), u"/v/out.mkv"_s)}).tracks),
                 QStringList{u"a.mkv:0 video > h264"_s});
        QCOMPARE(told(muxed({ready(sound(u"0"_s, u"mp3"_s), u"/v/out.mkv"_s)}).tracks),
                 QStringList{u"a.mkv:0 audio > vorbis"_s}); // the list names no encoder for it
    }

    void attachmentsOfAFileThatIsNotReadAreLost()
    {
        QCOMPARE(toldPatterns(muxed({ready(videoTrack(u"h264"_s), u"/v/own.mkv"_s)}).rest),
                 QStringList({u"a.mkv: cover left: Only re-encoded tracks of its file are taken."_s,
                              u"a.mkv: attachment left: Only re-encoded tracks of its file are taken."_s,
                              u"data left: mkvmerge can't read it."_s, u"cover copied"_s,
                              u"attachment copied"_s, u"chapters copied"_s}));
    }

    void aTrackThatMkvmergeDoesNotTake()
    {
        const TrackPointer unknown = ready(sound(u"1"_s));
        unknown->setTrackMkvmergeID({});
        const TrackPointer text = subtitleTrack(u"2"_s, u"ttxt"_s);
        text->setProbedCodecName(u"mov_text"_s);
        QCOMPARE(told(muxed({unknown, ready(text)}).tracks),
                 QStringList({u"a.mkv:1 audio left: Nobody knows which track of its file it is."_s,
                              u"a.mkv:2 subtitle mov_text left: mkvmerge can't read it."_s}));
    }

    void aRemoval()
    {
        const TrackList stay{ready(videoTrack()), ready(sound(u"1"_s)), ready(coverTrack(u"5"_s))};
        const auto selection =
            handMadeSelection(u"General"_s, {sound(u"2"_s), subtitleTrack(u"3"_s, u"srt"_s)});
        selection->setJobType(u"MKV Track Removal"_s);
        selection->setKeepTracksList(stay);
        QCOMPARE(told(muxOutput(*selection, stay, output).tracks),
                 QStringList({u"a.mkv:0 video copied"_s, u"a.mkv:1 audio copied"_s, u"a.mkv:5 cover copied"_s,
                              u"a.mkv:2 audio left: It was removed."_s,
                              u"a.mkv:3 subtitle left: It was removed."_s}));
    }

    /// An attachment comes with its file, ticked or not.
    void aCoverThatWasNotTickedComesAlong()
    {
        QCOMPARE(told(muxed({ready(videoTrack(u"passthru"_s))}, {coverTrack(u"5"_s)}).tracks),
                 QStringList({u"a.mkv:0 video copied"_s, u"a.mkv:5 cover copied"_s}));
        QCOMPARE(told(muxed({ready(videoTrack(), u"/v/own.mkv"_s)}, {coverTrack(u"5"_s)}).tracks),
                 QStringList({u"a.mkv:0 video > h264"_s, u"a.mkv:5 cover left: It was not chosen."_s}));
    }

    void aRemux()
    {
        const auto meant = remuxOutput(source, output);
        QCOMPARE(toldPatterns(meant.rest), allOfAFile);
        QCOMPARE(meant.sources, QList<QUrl>{source});
        QCOMPARE(meant.output, output);
        for (const media::TrackFate &pattern : meant.rest) {
            const bool isSilentLoss = !pattern.codec.isNull();
            QVERIFY((pattern.told == media::Told::AsAWarning) == isSilentLoss);
        }
        QVERIFY(meant.tracks.isEmpty());
        QVERIFY(meant.extent == Extent::Whole);
    }

    void theSubtitlesOfADvdsStreamAreLost()
    {
        const QString lost = u"film.vob: subtitle dvd_subtitle left: mkvmerge can't read it."_s;
        const QUrl stream = QUrl::fromLocalFile(u"/v/film.vob"_s);
        QVERIFY(toldPatterns(remuxOutput(stream, output).rest).contains(lost));
        QVERIFY(toldPatterns(mkvJoinOutput({source, stream}, output).rest).contains(lost));
        const TrackPointer track = subtitleTrack(u"2"_s, u"vobsub"_s);
        track->setProbedCodecName(u"dvd_subtitle"_s);
        QCOMPARE(told(muxed({ready(track)}).tracks),
                 QStringList{u"a.mkv:2 subtitle dvd_subtitle copied"_s}); // a Matroska file's it reads
        track->setTrackFileURL(stream);
        QCOMPARE(told(muxed({ready(track)}).tracks),
                 QStringList{u"film.vob:2 subtitle dvd_subtitle left: mkvmerge can't read it."_s});
    }

    void aSplitByTimeIsOneStretch()
    {
        const auto meant = splitOutputs(*splitting(u"time"_s), source, {output});
        QCOMPARE(meant.size(), 1);
        QVERIFY(meant.constFirst().extent == Extent::Stretch);
        QCOMPARE(meant.constFirst().from, 600.0);
        QCOMPARE(meant.constFirst().to, 1230.0);
        QCOMPARE(toldPatterns(meant.constFirst().rest), allOfAFile);
    }

    void anyOtherSplitHasParts()
    {
        for (const QString &type : {u"size"_s, u"duration"_s}) {
            const auto meant = splitOutputs(*splitting(type), source, {output, second});
            QCOMPARE(meant.size(), 2);
            QVERIFY(meant.at(0).extent == Extent::Part && meant.at(1).extent == Extent::Part);
            QCOMPARE(meant.at(1).output, second);
            QVERIFY(!meant.at(1).to);
            QCOMPARE(meant.at(1).sources, QList<QUrl>{source});
            QCOMPARE(toldPatterns(meant.at(1).rest), allOfAFile);
            QVERIFY(splitOutputs(*splitting(type), source, {}).isEmpty());
        }
    }

    void aJoinByMkvmerge()
    {
        const auto meant = joinOutput(u"mkvmerge"_s, {source, second}, output);
        QVERIFY(meant.extent == Extent::Sum);
        QCOMPARE(meant.sources, QList<QUrl>({source, second}));
        QCOMPARE(meant.output, output);
        QCOMPARE(toldPatterns(meant.rest), allOfAFile);
    }

    void aJoinByFfmpegLosesChapters()
    {
        const auto meant = joinOutput(u"ffmpeg"_s, {source, second, source}, output);
        QVERIFY(meant.extent == Extent::Sum);
        QCOMPARE(meant.sources, QList<QUrl>({source, second, source}));
        QCOMPARE(toldPatterns(meant.rest),
                 QStringList({u"b.mkv: attachment left: Only those of the first file are taken."_s,
                              u"video copied"_s, u"audio copied"_s, u"subtitle copied"_s, u"cover copied"_s,
                              u"attachment copied"_s, u"data copied"_s,
                              u"chapters left: ffmpeg joins no chapters."_s}));
    }

    void aJoinByMp4box()
    {
        const auto meant = joinOutput(u"mp4box"_s, {source, second}, output);
        QVERIFY(meant.extent == Extent::Sum);
        QVERIFY(toldPatterns(meant.rest).contains(u"subtitle copied"_s));
        QVERIFY(toldPatterns(meant.rest).contains(u"chapters left: MP4Box is not told to join chapters."_s));
    }
};

TESSARAY_TEST(MkvFatesTest)
#include "MkvFatesTest.moc"

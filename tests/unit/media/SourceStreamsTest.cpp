#include "media/SourceStreams.h"

#include "support/TestMain.h"
#include "support/media/Fates.h"

#include <QTest>

using namespace Qt::StringLiterals;
using media::Became;
using media::MeantOutput;
using media::SourceStreams;
using media::TrackFate;
using support::told;

namespace {

const QUrl film = QUrl::fromLocalFile(u"/v/a.mkv"_s);
const QUrl other = QUrl::fromLocalFile(u"/v/b.mkv"_s);
const QUrl output = QUrl::fromLocalFile(u"/v/out.mkv"_s);

TrackFate pattern(const QString &kind, Became became, const QString &reason = {}, const QString &codec = {})
{
    TrackFate fate;
    fate.kind = kind;
    fate.codec = codec;
    fate.became = became;
    fate.reason = reason;
    return fate;
}

MeantOutput meantOf(const QList<TrackFate> &tracks, const QList<TrackFate> &rest)
{
    MeantOutput meant;
    meant.output = output;
    meant.sources = {film, other};
    meant.tracks = tracks;
    meant.rest = rest;
    return meant;
}

TrackFate fateOf(int index, const QString &kind, const QString &codec)
{
    TrackFate fate = pattern(kind, Became::Copied, {}, codec);
    fate.source = film;
    fate.index = index;
    return fate;
}

QByteArray stream(int index, const QByteArray &type, const QByteArray &codec, const QByteArray &more = {})
{
    return "{\"index\": " + QByteArray::number(index) + ", \"codec_type\": \"" + type + "\"" +
           (codec.isEmpty() ? QByteArray() : ", \"codec_name\": \"" + codec + "\"") + more + "}";
}

QByteArray document(const QByteArrayList &streams, const QByteArray &chapters = {})
{
    return "{\"streams\": [" + streams.join(",") + "], \"chapters\": [" + chapters + "]}";
}

const QByteArray aChapter = "{\"id\": 1, \"start\": 0}";

} // namespace

class SourceStreamsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindHasItsWord()
    {
        const QByteArray cover = ", \"disposition\": {\"attached_pic\": 1}";
        const QByteArray picture = ", \"disposition\": {\"attached_pic\": 0}";
        const SourceStreams expected{{0, u"video"_s, u"h264"_s},   {1, u"audio"_s, u"aac"_s},
                                     {2, u"subtitle"_s, u"ass"_s}, {3, u"attachment"_s, u"ttf"_s},
                                     {4, u"cover"_s, u"png"_s},    {5, u"data"_s, QString()},
                                     {6, u"data"_s, u"bin_data"_s}};
        QCOMPARE(
            media::sourceStreamsIn(document({stream(0, "video", "h264", picture), stream(1, "audio", "aac"),
                                             stream(2, "subtitle", "ass"), stream(3, "attachment", "ttf"),
                                             stream(4, "video", "png", cover), stream(5, "data", ""),
                                             stream(6, "data", "bin_data")})),
            expected);
    }

    void chaptersAreToldOnce()
    {
        const SourceStreams besides{{0, u"video"_s, u"h264"_s}, {-1, u"chapters"_s, QString()}};
        QCOMPARE(media::sourceStreamsIn(document({stream(0, "video", "h264")}, aChapter)), besides);
        const SourceStreams asStream{
            {0, u"video"_s, u"h264"_s}, {1, u"chapters"_s, u"bin_data"_s}, {2, u"data"_s, u"bin_data"_s}};
        QCOMPARE(media::sourceStreamsIn(document({stream(0, "video", "h264"), stream(1, "data", "bin_data"),
                                                  stream(2, "data", "bin_data")},
                                                 aChapter)),
                 asStream);
    }

    void whatIsNoListHasNoStreams()
    {
        for (const QByteArray &text : {QByteArray(), QByteArray("[]"), QByteArray("moov atom not found"),
                                       QByteArray("{\"streams\": 3, \"chapters\": {}}")})
            QCOMPARE(media::sourceStreamsIn(text), SourceStreams());
    }

    void whatIsNamedStaysAndTheRestFollowsItsPattern()
    {
        const MeantOutput meant =
            meantOf({fateOf(1, u"audio"_s, u"aac"_s)},
                    {pattern(u"subtitle"_s, Became::LeftOut, u"No."_s, u"mov_text"_s),
                     pattern(u"subtitle"_s, Became::Copied), pattern(u"chapters"_s, Became::Copied)});
        const MeantOutput complete = media::completed(meant, {{film,
                                                               {{0, u"video"_s, u"h264"_s},
                                                                {1, u"audio"_s, u"aac"_s},
                                                                {2, u"subtitle"_s, u"ass"_s},
                                                                {3, u"subtitle"_s, u"mov_text"_s},
                                                                {-1, u"chapters"_s, {}}}}});
        QCOMPARE(told(complete.tracks),
                 QStringList({u"a.mkv:1 audio aac copied"_s, u"a.mkv:0 video h264 left: It was not chosen."_s,
                              u"a.mkv:2 subtitle ass copied"_s, u"a.mkv:3 subtitle mov_text left: No."_s,
                              u"a.mkv:- chapters copied"_s}));
        QCOMPARE(complete.tracks.at(2).output, output);
        QCOMPARE(complete.tracks.at(3).output, QUrl());
    }

    void aPatternMayHoldForOneSource()
    {
        TrackFate ofOther = pattern(u"attachment"_s, Became::LeftOut, u"Not of this."_s);
        ofOther.source = other;
        const MeantOutput meant = meantOf({}, {ofOther, pattern(u"attachment"_s, Became::Copied)});
        const SourceStreams font{{3, u"attachment"_s, u"ttf"_s}};
        QCOMPARE(told(media::completed(meant, {{film, font}, {other, font}}).tracks),
                 QStringList(
                     {u"a.mkv:3 attachment ttf copied"_s, u"b.mkv:3 attachment ttf left: Not of this."_s}));
    }

    void aSourceThatStandsTwiceIsInItTwice()
    {
        MeantOutput meant = meantOf({}, {pattern(u"video"_s, Became::Copied)});
        meant.sources = {film, film};
        QCOMPARE(told(media::completed(meant, {{film, {{0, u"video"_s, u"h264"_s}}}}).tracks),
                 QStringList({u"a.mkv:0 video h264 copied"_s, u"a.mkv:0 video h264 copied"_s}));
    }

    void ofSeveralSetsOfChaptersTheFirstIsTaken()
    {
        MeantOutput meant = meantOf({}, {pattern(u"chapters"_s, Became::Copied)});
        const SourceStreams chapters{{-1, u"chapters"_s, {}}};
        QCOMPARE(told(media::completed(meant, {{film, chapters}, {other, chapters}}).tracks),
                 QStringList({u"a.mkv:- chapters copied"_s, u"b.mkv:- chapters copied"_s}));
        meant.hasOneSetOfChapters = true;
        QCOMPARE(told(media::completed(meant, {{film, chapters}, {other, chapters}}).tracks),
                 QStringList({u"a.mkv:- chapters copied"_s,
                              u"b.mkv:- chapters left: The chapters of a.mkv are taken."_s}));
        QCOMPARE(told(media::completed(meant, {{film, {}}, {other, chapters}}).tracks),
                 QStringList({u"b.mkv:- chapters copied"_s}));
    }

    void theCodecOfAPlannedTrackIsFilledIn()
    {
        const MeantOutput meant = meantOf({fateOf(1, u"audio"_s, QString())}, {});
        QCOMPARE(told(media::completed(meant, {{film, {{1, u"audio"_s, u"dts"_s}}}}).tracks),
                 QStringList({u"a.mkv:1 audio dts copied"_s}));
    }

    void aSourceThatNobodyReadAddsNothing()
    {
        const MeantOutput meant = meantOf({fateOf(1, u"audio"_s, u"aac"_s)}, {});
        QCOMPARE(told(media::completed(meant, {}).tracks), told(meant.tracks));
    }
};

TESSARAY_TEST(SourceStreamsTest)
#include "SourceStreamsTest.moc"

#include "media/TrackBuilder.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using media::TrackBuilder;
using media::TrackKind;
using Outcome = media::TrackBuilder::Outcome;

namespace {

QVariantMap stream(const QString &type, const QString &codec, const QString &index = u"0"_s)
{
    return {{u"codec_type"_s, type}, {u"codec_name"_s, codec}, {u"index"_s, index}};
}

QVariantMap with(QVariantMap stream, const QString &key, const QVariant &value)
{
    stream.insert(key, value);
    return stream;
}

QVariantMap tagged(const QVariantMap &tags)
{
    return with(stream(u"video"_s, u"h264"_s), u"tags"_s, tags);
}

/// The one track that such a stream becomes.
TrackPointer trackOf(const QVariantMap &stream, const QString &path = u"/v/film.mkv"_s)
{
    TrackBuilder builder(QUrl::fromLocalFile(path), 1);
    return builder.add(stream, {}) == Outcome::Added ? builder.tracks().constFirst() : TrackPointer();
}

/// The mkvmerge numbers of a video, two audio tracks and a subtitle.
QStringList mkvmergeIDs(const QString &path, qsizetype streamCount)
{
    TrackBuilder builder(QUrl::fromLocalFile(path), streamCount);
    builder.add(stream(u"video"_s, u"mpeg4"_s, u"2"_s), {});
    builder.add(stream(u"audio"_s, u"mp3"_s, u"3"_s), {});
    builder.add(stream(u"audio"_s, u"mp3"_s, u"4"_s), {});
    builder.add(stream(u"subtitle"_s, u"subrip"_s, u"5"_s), {});
    QStringList numbers;
    for (const TrackPointer &track : builder.tracks())
        numbers.append(track->trackMkvmergeID());
    return numbers;
}

} // namespace

class TrackBuilderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPictureThatIsAttachedIsACover()
    {
        const auto disposed = [](const QString &type, const QString &codec, const QString &attached) {
            return trackOf(
                with(stream(type, codec), u"disposition"_s, QVariantMap{{u"attached_pic"_s, attached}}));
        };
        QVERIFY(disposed(u"video"_s, u"mjpeg"_s, u"1"_s)->isCover());
        QVERIFY(!disposed(u"video"_s, u"mjpeg"_s, u"0"_s)->isCover());
        QVERIFY(!disposed(u"audio"_s, u"aac"_s, u"1"_s)->isCover());
        QVERIFY(!trackOf(stream(u"video"_s, u"mjpeg"_s))->isCover());
    }

    void fillsTheFileFields()
    {
        const TrackPointer track = trackOf(stream(u"video"_s, u"h264"_s), u"/films/My Film.MKV"_s);
        QCOMPARE(track->trackFilePath(), u"/films/My Film.MKV"_s);
        QCOMPARE(track->trackFileName(), u"My Film.MKV"_s);
        QCOMPARE(track->trackFileExtension(), u"MKV"_s);
        QCOMPARE(track->trackPathToFileFolder(), u"/films/"_s);
        QCOMPARE(track->trackFileURL(), QUrl::fromLocalFile(u"/films/My Film.MKV"_s));
        QCOMPARE(track->trackURLToFileFolder(), QUrl::fromLocalFile(u"/films/"_s));
    }

    void makesAVideoTrack()
    {
        const TrackPointer track = trackOf(stream(u"video"_s, u"h264"_s, u"3"_s));
        QCOMPARE(track->trackType(), u"Video"_s);
        QCOMPARE(track->trackCodec(), u"h264"_s);
        QCOMPARE(track->trackExtension(), u"h264"_s);
        QCOMPARE(track->trackInfo(), u"Video: (h264)"_s);
        QCOMPARE(track->userCodec(), u"passthru"_s);
        QCOMPARE(track->trackFfmpegID(), u"3"_s);
        QCOMPARE(track->trackMkvmergeID(), u"3"_s);
        QCOMPARE(track->trackMp4boxID(), u"4"_s);
        QCOMPARE(track->probedCodecName(), u"h264"_s);
        QCOMPARE(track->userAudioSettingsDictionaryArray(), AudioSettingsList());
    }

    void makesAnAudioTrack()
    {
        const TrackPointer track =
            trackOf(with(stream(u"audio"_s, u"eac3"_s, u"1"_s), u"channels"_s, u"6"_s));
        QCOMPARE(track->trackType(), u"Audio"_s);
        QCOMPARE(track->trackCodec(), u"ac3"_s);
        QCOMPARE(track->trackInfo(), u"Audio: (ac3 6ch.)"_s);
        QCOMPARE(track->userCodec(), u"passthru"_s);
        QCOMPARE(track->trackNumberOfChannels(), u"6"_s);
        QCOMPARE(track->probedCodecName(), u"eac3"_s);
        const QVariantMap settings{
            {u"userCodec"_s, u"passthru"_s}, {u"userBitRate"_s, u"0"_s}, {u"userNumberOfChannels"_s, u"6"_s}};
        QCOMPARE(track->userAudioSettingsDictionaryArray(), AudioSettingsList({settings}));
    }

    void makesASubtitleTrack()
    {
        const TrackPointer track = trackOf(stream(u"subtitle"_s, u"hdmv_pgs_subtitle"_s));
        QCOMPARE(track->trackType(), u"Subtitle"_s);
        QCOMPARE(track->trackCodec(), u"teletext"_s);
        QCOMPARE(track->trackExtension(), u"xxx"_s);
        QCOMPARE(track->trackInfo(), u"Subtitle: (teletext)"_s);
        QCOMPARE(track->userCodec(), u"mux"_s);
        QCOMPARE(track->probedCodecName(), u"hdmv_pgs_subtitle"_s);
    }

    void keepsDefaultsWhereTheStreamTellsNothing()
    {
        const TrackPointer track = trackOf({{u"codec_type"_s, u"audio"_s}, {u"codec_name"_s, u"aac"_s}});
        QCOMPARE(track->trackNumberOfChannels(), u"0"_s);
        QCOMPARE(track->trackFfmpegID(), u"0"_s);
        QCOMPARE(track->trackMp4boxID(), u"1"_s);
        QCOMPARE(track->trackTitle(), u"none"_s);
        QCOMPARE(track->trackLanguage(), u"undetermined"_s);
        QCOMPARE(track->trackBitRate(), u"0"_s);
    }

    void countsEachKindFromZero()
    {
        TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 5);
        for (const char *type : {"audio", "subtitle", "audio", "video", "audio"}) {
            const QString word = QString::fromLatin1(type);
            const QString codec = word == u"video"_s ? u"h264"_s : word == u"audio"_s ? u"aac"_s : u"ass"_s;
            QCOMPARE(builder.add(stream(word, codec), {}), Outcome::Added);
        }
        QStringList numbers;
        for (const TrackPointer &track : builder.tracks())
            numbers.append(track->trackMencoderID());
        QCOMPARE(numbers, QStringList({u"0"_s, u"0"_s, u"1"_s, u"0"_s, u"2"_s}));
        QCOMPARE(builder.count(TrackKind::Audio), 3);
        QCOMPARE(builder.count(TrackKind::Video), 1);
        QCOMPARE(builder.count(TrackKind::Subtitle), 1);
    }

    void passesOverOtherTypes()
    {
        TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 4);
        QCOMPARE(builder.add(stream(u"data"_s, u"bin_data"_s), {}), Outcome::Skipped);
        QCOMPARE(builder.add(stream(u"attachment"_s, u"ttf"_s), {}), Outcome::Skipped);
        QCOMPARE(builder.add({{u"rotation"_s, u"-90"_s}}, {}), Outcome::Skipped);
        QCOMPARE(builder.add(stream(u"VIDEO"_s, u"h264"_s), {}), Outcome::Skipped);
        QVERIFY(builder.tracks().isEmpty());
    }

    void passesOverCoverPictures()
    {
        for (const QString &picture : {u"png"_s, u"PNG"_s, u"jpg"_s, u"gif"_s, u"tiff"_s}) {
            TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 1);
            QCOMPARE(builder.add(stream(u"video"_s, picture), {}), Outcome::Skipped);
            QCOMPARE(builder.count(TrackKind::Video), 0);
        }
    }

    void takesMjpegPicturesForVideo()
    {
        QCOMPARE(trackOf(stream(u"video"_s, u"mjpeg"_s))->trackCodec(), u"mjpeg"_s);
    }

    void picturesAreOnlySkippedAsVideo()
    {
        TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 1);
        QCOMPARE(builder.add(stream(u"subtitle"_s, u"png"_s), {}), Outcome::NotIdentified);
    }

    void namesTheProblemCodec()
    {
        for (const QString &name : {u"hevc"_s, u"vp8"_s, u"vp9"_s, u"av1"_s}) {
            TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 1);
            QCOMPARE(builder.add(stream(u"video"_s, name), {}), Outcome::NotIdentified);
            QCOMPARE(builder.problemCodec(), name);
            QVERIFY(builder.tracks().isEmpty());
        }
        TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 1);
        QCOMPARE(builder.add(stream(u"audio"_s, u"opus"_s), {}), Outcome::NotIdentified);
        QCOMPARE(builder.problemCodec(), u"opus"_s);
    }

    void newerCodecsAreTakenWhereTheyAreWanted()
    {
        TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 4, media::Codecs::NewerToo);
        QCOMPARE(builder.add(stream(u"video"_s, u"HEVC"_s), {}), Outcome::Added);
        QCOMPARE(builder.add(stream(u"audio"_s, u"opus"_s), {}), Outcome::Added);
        QCOMPARE(builder.add(stream(u"audio"_s, u"dts"_s), {}), Outcome::Added);
        QCOMPARE(builder.add(stream(u"video"_s, u"png"_s), {}), Outcome::Skipped);
        QCOMPARE(builder.add(stream(u"video"_s, u""_s), {}), Outcome::NotIdentified);
        QCOMPARE(builder.tracks().at(0)->trackInfo(), u"Video: (hevc)"_s);
        QCOMPARE(builder.tracks().at(1)->trackCodec(), u"opus"_s);
        QCOMPARE(builder.tracks().at(2)->trackCodec(), u"dtshd"_s); // as without
    }

    void fallsBackWhereNoCodecIsTold()
    {
        const QVariantMap silent{{u"codec_type"_s, u"audio"_s}, {u"index"_s, u"0"_s}};
        TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 1);
        QCOMPARE(builder.add(silent, u"ac3,"_s), Outcome::Added);
        QCOMPARE(builder.tracks().constFirst()->trackCodec(), u"ac3"_s);
        QCOMPARE(builder.add(with(silent, u"codec_name"_s, u""_s), u"aac"_s), Outcome::Added);
        QCOMPARE(builder.tracks().constLast()->trackCodec(), u"aac"_s);
        QCOMPARE(builder.add(silent, {}), Outcome::NotIdentified);
        QVERIFY(builder.problemCodec().isEmpty());
    }

    void prefersTheToldCodec()
    {
        TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 1);
        builder.add(stream(u"audio"_s, u"flac"_s), u"aac"_s);
        QCOMPARE(builder.tracks().constFirst()->trackCodec(), u"flac"_s);
    }

    void numbersTracksAsMkvmergeDoes()
    {
        const QStringList asProbed{u"2"_s, u"3"_s, u"4"_s, u"5"_s};
        QCOMPARE(mkvmergeIDs(u"/v/a.mkv"_s, 9), asProbed);
        QCOMPARE(mkvmergeIDs(u"/v/a.MKV"_s, 9), asProbed);
        QCOMPARE(mkvmergeIDs(u"/v/a.mp4"_s, 9), asProbed);
        QCOMPARE(mkvmergeIDs(u"/v/a.avi"_s, 9), QStringList({u"0"_s, u"1"_s, u"2"_s, u"0"_s}));
        QCOMPARE(mkvmergeIDs(u"/v/a.AVI"_s, 1), QStringList({u"0"_s, u"1"_s, u"2"_s, u"0"_s}));
        QCOMPARE(mkvmergeIDs(u"/v/a.mkv"_s, 1), asProbed);
    }

    void aLoneStreamElsewhereIsNumberZero()
    {
        const QVariantMap subtitle = stream(u"subtitle"_s, u"subrip"_s, u"3"_s);
        QCOMPARE(trackOf(subtitle, u"/v/a.mp4"_s)->trackMkvmergeID(), u"0"_s);
        QCOMPARE(trackOf(subtitle, u"/v/a"_s)->trackMkvmergeID(), u"0"_s);
        QCOMPARE(trackOf(subtitle, u"/v/a.mkv"_s)->trackMkvmergeID(), u"3"_s);
    }

    void readsTitles()
    {
        QCOMPARE(trackOf(tagged({{u"title"_s, u"Film"_s}}))->trackTitle(), u"Film"_s);
        QCOMPARE(trackOf(tagged({{u"TITLE"_s, u"FILM"_s}}))->trackTitle(), u"FILM"_s);
        QCOMPARE(trackOf(tagged({{u"title"_s, QVariantMap()}}))->trackTitle(), u"none"_s);
    }

    void readsLanguages_data()
    {
        QTest::addColumn<QVariantMap>("tags");
        QTest::addColumn<QString>("language");
        QTest::newRow("a code") << QVariantMap{{u"language"_s, u"eng"_s}} << u"English"_s;
        QTest::newRow("a bibliographic code") << QVariantMap{{u"language"_s, u"ger"_s}} << u"German"_s;
        QTest::newRow("a two-letter code") << QVariantMap{{u"language"_s, u"fr"_s}} << u"French"_s;
        QTest::newRow("capitals in the key") << QVariantMap{{u"LANGUAGE"_s, u"spa"_s}} << u"Spanish"_s;
        QTest::newRow("unknown") << QVariantMap{{u"language"_s, u"qqq"_s}} << u"undetermined"_s;
        QTest::newRow("none") << QVariantMap() << u"undetermined"_s;
    }

    void readsLanguages()
    {
        QFETCH(QVariantMap, tags);
        QFETCH(QString, language);
        QCOMPARE(trackOf(tagged(tags))->trackLanguage(), language);
    }

    void cutsBitRatesToKilobits_data()
    {
        QTest::addColumn<QString>("told");
        QTest::addColumn<QString>("rate");
        QTest::newRow("whole") << u"192000"_s << u"192"_s;
        QTest::newRow("truncated") << u"1411999"_s << u"1411"_s;
        QTest::newRow("the least") << u"1001"_s << u"1"_s;
        QTest::newRow("too little") << u"1000"_s << u"0"_s;
        QTest::newRow("not available") << u"N/A"_s << u"0"_s;
        QTest::newRow("empty") << u""_s << u"0"_s;
        QTest::newRow("negative") << u"-192000"_s << u"0"_s;
    }

    void cutsBitRatesToKilobits()
    {
        QFETCH(QString, told);
        QFETCH(QString, rate);
        QCOMPARE(trackOf(with(stream(u"audio"_s, u"aac"_s), u"bit_rate"_s, told))->trackBitRate(), rate);
    }

    void namesUntitledTracks()
    {
        TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 4);
        builder.add(stream(u"video"_s, u"h264"_s), {});
        builder.add(stream(u"audio"_s, u"aac"_s), {});
        builder.add(stream(u"subtitle"_s, u"ass"_s), {});
        builder.add(tagged({{u"title"_s, u"nonesuch"_s}}), {}); // begins with "none"
        builder.add(tagged({{u"title"_s, u"None"_s}}), {});
        media::nameUntitledTracks(builder.tracks());
        QStringList titles;
        for (const TrackPointer &track : builder.tracks())
            titles.append(track->trackTitle());
        QCOMPARE(titles, QStringList({u"Video Track"_s, u"Audio Track"_s, u"Subtitle Track"_s,
                                      u"Video Track"_s, u"None"_s}));
    }
};

TESSARAY_TEST(TrackBuilderTest)
#include "TrackBuilderTest.moc"

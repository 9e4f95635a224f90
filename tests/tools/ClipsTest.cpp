#include "support/Clips.h"
#include "support/ClipFactory.h"
#include "support/TestMain.h"
#include "support/TestPlaces.h"
#include "support/TrackClips.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// "codec:type" of every stream, as ffprobe tells it through the launcher that tests use.
QStringList streamsOf(const QString &path)
{
    const support::TestPlaces places;
    QProcess probe;
    probe.start(places.toolsLocation().toLocalFile() + u"/ffmpeg/ffprobe"_s,
                {u"-v"_s, u"error"_s, u"-show_streams"_s, u"-of"_s, u"json"_s, path});
    probe.waitForFinished(60000);
    QStringList streams;
    const QJsonObject answer = QJsonDocument::fromJson(probe.readAllStandardOutput()).object();
    for (const auto &value : answer.value(u"streams"_s).toArray()) {
        const QJsonObject stream = value.toObject();
        streams.append(stream.value(u"codec_name"_s).toString() + u'/' +
                       stream.value(u"codec_type"_s).toString());
    }
    return streams;
}

} // namespace

/// Other tests rely on what the clips hold; a tool that quietly makes something else is found here.
class ClipsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsWhatItSays_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("streams");
        const auto row = [](const char *name, const QString &path, const QString &streams) {
            QTest::newRow(name) << path << streams;
        };
        using namespace support;
        row("full", fullMkv(), u"h264/video ac3/audio aac/audio subrip/subtitle ass/subtitle dts/audio"_s);
        row("wide", wideMkv(), u"h264/video aac/audio ac3/audio subrip/subtitle"_s);
        row("film", film1920(), u"h264/video aac/audio subrip/subtitle"_s);
        row("many tracks", manyTracksMkv(),
            u"h264/video ac3/audio aac/audio aac/audio ac3/audio flac/audio subrip/subtitle ass/subtitle "
            "subrip/subtitle"_s);
        row("long", longMkv(10), u"h264/video aac/audio"_s);
        row("black", blackMkv(), u"h264/video aac/audio subrip/subtitle ass/subtitle"_s);
        row("pgs", pgsMkv(), u"h264/video aac/audio hdmv_pgs_subtitle/subtitle"_s);
        row("vobsub", vobsubMkv(),
            u"h264/video ac3/audio aac/audio subrip/subtitle ass/subtitle dts/audio dvd_subtitle/subtitle"_s);
        row("header removal", headerRemovalMkv(), u"mpeg4/video"_s);
        row("two videos", twoVideosMkv(), u"h264/video h264/video"_s);
        row("png cover", pngCoverMkv(), u"h264/video png/video"_s);
        row("jpeg cover", jpegCoverMkv(), u"h264/video mjpeg/video"_s);
        row("text", textMp4(), u"h264/video aac/audio mov_text/subtitle"_s);
        row("packed", packedAvi(), u"mpeg4/video"_s);
        row("odd", oddAvi(), u"mpeg4/video"_s);
        row("latin1", latin1Avi(), u"mpeg4/video mp3/audio"_s);
        row("program stream", programStream(), u"mpeg2video/video mp2/audio"_s);
        row("transport stream", transportStream(), u"mpeg2video/video mp2/audio"_s);
        row("audio only", audioOnly(), u"aac/audio"_s);
        row("surround", surroundAc3(), u"ac3/audio"_s);
        row("raw", rawH264(), u"h264/video"_s);
        row("srt", srtFile(), u"subrip/subtitle"_s);
        row("ass", assFile(), u"ass/subtitle"_s);
        row("sup", supFile(), u"hdmv_pgs_subtitle/subtitle"_s);
        row("vp9", vp9Mkv(), u"vp9/video"_s);
        row("opus", opusMkv(), u"h264/video opus/audio"_s);
        row("surround in Matroska", surroundMka(), u"ac3/audio"_s);
        row("mp3", mp3File(), u"mp3/audio"_s);
        row("ssa", ssaFile(), u"ass/subtitle"_s);
        row("French", frenchSrt(), u"subrip/subtitle"_s);
        row("text only", textOnlyMp4(), u"mov_text/subtitle"_s);
        row("sound and text", soundAndTextMka(), u"aac/audio subrip/subtitle"_s);
        row("two sounds", twoSoundsMka(), u"aac/audio ac3/audio"_s);
        row("two texts", twoTextsMks(), u"subrip/subtitle ass/subtitle"_s);
        row("attachment", attachmentMks(), u"subrip/subtitle /attachment"_s);
        row("chapters", chaptersM4a(), u"aac/audio bin_data/data"_s);
        row("mp3 with a cover", coverMp3(), u"mp3/audio mjpeg/video"_s);
        row("m4a with a cover", coverM4a(), u"aac/audio png/video"_s);
        row("opus alone", opusFile(), u"opus/audio"_s);
        row("webvtt", webvttFile(), u"webvtt/subtitle"_s);
        row("data only", dataOnlyMov(), u"/data"_s);
    }

    void holdsWhatItSays()
    {
        QFETCH(QString, path);
        QFETCH(QString, streams);
        QCOMPARE(streamsOf(path), streams.split(u' '));
    }

    void breaksWhatShouldBeBroken()
    {
        const QByteArray whole = support::contentOf(support::fullMkv());
        const QByteArray damaged = support::contentOf(support::damagedMkv());
        QCOMPARE(damaged.size(), whole.size());
        QVERIFY(damaged != whole);
        QVERIFY(support::contentOf(support::truncatedMkv()).size() < whole.size());
        QCOMPARE(support::contentOf(support::emptyMkv()).size(), 0);
        QVERIFY(support::contentOf(support::latin1Avi()).contains("Caf\xe9"));
    }

    void drawsAWhiteBoxFromTheHandMadeSubtitle()
    {
        QCOMPARE(brightestPixelAt(2), 235);
        QCOMPARE(brightestPixelAt(7), 16);
    }

private:
    static int brightestPixelAt(int second)
    {
        QProcess ffmpeg;
        ffmpeg.start(u"ffmpeg"_s, {u"-i"_s, support::pgsMkv(), u"-filter_complex"_s,
                                   u"[0:0][0:2]overlay=eof_action=pass,signalstats,"
                                   "metadata=print:key=lavfi.signalstats.YMAX:file=-"_s,
                                   u"-f"_s, u"null"_s, u"-"_s});
        ffmpeg.waitForFinished(60000);
        const QStringList lines = QString::fromUtf8(ffmpeg.readAllStandardOutput()).split(u'\n');
        for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
            if (lines.at(i).endsWith(u"pts_time:%1"_s.arg(second)))
                return lines.at(i + 1).section(u'=', 1).toInt();
        }
        return -1;
    }
};

TESSARAY_TEST(ClipsTest)
#include "ClipsTest.moc"

#include "engines/ffmpeg/ExtractionArguments.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;

namespace {

const QUrl extracted = QUrl::fromLocalFile(u"/o/out"_s);
const QUrl extractionLog = QUrl::fromLocalFile(u"/o/out.log"_s);

TrackPointer video(const QString &codec)
{
    const auto track = videoTrack();
    track->setTrackCodec(codec);
    return track;
}

/// No track has this type.
TrackPointer misspelt(const QString &codec)
{
    const auto track = subtitleTrack(u"2"_s, codec);
    track->setTrackType(u"Subittle"_s);
    return track;
}

} // namespace

class ExtractionArgumentsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNameTellsStreamAndKind()
    {
        QCOMPARE(extractionOutput(u"/v/a.mkv"_s, *videoTrack()).toLocalFile(), u"/v/a.mkv.stream0.h264"_s);
        QCOMPARE(extractionOutput(u"/v/a.mkv"_s, *surroundSound()).toLocalFile(), u"/v/a.mkv.stream1.ac3"_s);
    }

    /// A text subtitle of an MP4 file becomes an ASS file, whatever its extension word is.
    void aTtxtSubtitleIsWrittenAsAss()
    {
        const auto track = subtitleTrack(u"2"_s, u"ttxt"_s);
        QCOMPARE(track->trackExtension(), u"ttxt"_s);
        QCOMPARE(extractionOutput(u"/v/a.mp4"_s, *track).toLocalFile(), u"/v/a.mp4.stream2.ass"_s);
    }

    /// Texts of the file are no patterns to fill.
    void aPercentSignInTheNameStays()
    {
        QCOMPARE(extractionOutput(u"/v/%1 %2.mkv"_s, *surroundSound()).toLocalFile(),
                 u"/v/%1 %2.mkv.stream1.ac3"_s);
    }

    void theTool_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<bool>("mkvextract");
        QTest::addColumn<bool>("mp4box");
        const auto row = [](const char *codec, const char *extension, bool mkvextract, bool mp4box) {
            QTest::addRow("%s in %s", codec, extension)
                << QString::fromLatin1(codec) << QString::fromLatin1(extension) << mkvextract << mp4box;
        };
        row("pgs", "mkv", true, false);
        row("vobsub", "mkv", true, false);
        row("pgs", "MKV", true, false);
        row("PGS", "mkv", false, false);
        row("srt", "mkv", false, false);
        row("teletext", "mkv", false, false);
        row("pgs", "ts", false, false);
        row("vobsub", "mp4", false, true);
        row("pgs", "m4v", false, true);
        row("vobsub", "MOV", false, true);
        row("ttxt", "mp4", false, false);
        row("h264", "mkv", false, false);
    }

    void theTool()
    {
        QFETCH(QString, codec);
        QFETCH(QString, extension);
        QFETCH(bool, mkvextract);
        QFETCH(bool, mp4box);
        const auto track = subtitleTrack(u"2"_s, codec);
        track->setTrackFileExtension(extension);
        QCOMPARE(isForMkvextract(*track), mkvextract);
        QCOMPARE(isForMp4box(*track), mp4box);
    }

    void aVobSubHasASecondFile()
    {
        const QUrl index = QUrl::fromLocalFile(u"/o/a.idx"_s);
        QCOMPARE(extractionCompanion(index, *subtitleTrack(u"2"_s, u"vobsub"_s)),
                 QUrl::fromLocalFile(u"/o/a.sub"_s));
        QVERIFY(extractionCompanion(index, *subtitleTrack(u"2"_s, u"pgs"_s)).isEmpty());
        QVERIFY(extractionCompanion(extracted, *subtitleTrack(u"2"_s, u"vobsub"_s)).isEmpty());
        QVERIFY(extractionCompanion(index, *external(subtitleTrack(u"2"_s, u"vobsub"_s), u"/v/a.mp4"_s))
                    .isEmpty());
    }

    void aPgsSubtitleByItsMkvmergeNumber()
    {
        const auto track = subtitleTrack(u"5"_s, u"pgs"_s);
        track->setTrackMkvmergeID(u"3"_s);
        const auto list = mkvextractArguments(*track, extracted);
        QCOMPARE(tools::textsOf(list), QStringList({u"tracks"_s, u"/v/a.mkv"_s, u"3:/o/out"_s}));
        QVERIFY(list.at(1).isFile());
    }

    /// In the line the output's name is quoted behind the number.
    void theLineForMkvextract()
    {
        const auto track = subtitleTrack(u"5"_s, u"pgs"_s);
        track->setTrackMkvmergeID(u"3"_s);
        const QUrl named = QUrl::fromLocalFile(u"/o/a \"b\" $c"_s);
        const auto list = mkvextractShellItems(*track, named, extractionLog);
        QCOMPARE(tools::textsOf(list),
                 QStringList({u"tracks"_s, u"/v/a.mkv"_s, u"3:\"/o/a \\\"b\\\" \\$c\""_s, u"&>"_s,
                              u"/o/out.log"_s, u"& echo $!"_s}));
    }

    void ffmpegArguments_data()
    {
        QTest::addColumn<TrackPointer>("track");
        QTest::addColumn<QString>("stream");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("items");
        const auto row = [](const char *name, const TrackPointer &track, const QString &codec,
                            const QString &items) {
            QTest::newRow(name) << track << track->trackFfmpegID() << codec << items;
        };
        row("h264", video(u"h264"_s), u"-vcodec copy -bsf:v h264_mp4toannexb -an -sn "_s,
            u"-vcodec copy|-bsf:v h264_mp4toannexb|-an -sn|"_s);
        row("mpeg4", video(u"mpeg4"_s), u"-vcodec copy -an -sn "_s, u"-vcodec copy|-an -sn|"_s);
        row("audio", surroundSound(), u"-acodec copy -vn -sn "_s, u"-acodec copy -vn -sn|"_s);
        row("srt", subtitleTrack(u"2"_s, u"srt"_s), {}, {});
        row("ttxt", subtitleTrack(u"2"_s, u"ttxt"_s), {}, {});
        row("misspelt", misspelt(u"srt"_s), u"-scodec copy -vn -an "_s, u"-scodec copy -vn -an|"_s);
        row("misspelt ttxt", misspelt(u"ttxt"_s), u"-vn -an "_s, u"-vn -an|"_s);
    }

    /// The type "Subittle" is spelled so on purpose: real subtitles get no codec words, and no "-scodec".
    void ffmpegArguments()
    {
        QFETCH(TrackPointer, track);
        QFETCH(QString, stream);
        QFETCH(QString, codec);
        QFETCH(QString, items);
        const auto list = ffmpegExtractionArguments(*track, extracted);
        QCOMPARE(tools::textsOf(list).join(u' '), u"-i /v/a.mkv -map 0:%1 %2-y /o/out"_s.arg(stream, codec));
        QVERIFY(list.at(1).isFile() && list.last().isFile());
        QCOMPARE(tools::textsOf(ffmpegExtractionShellItems(*track, extracted, extractionLog)).join(u'|'),
                 u"-i|/v/a.mkv|-map 0:%1|%2-y|/o/out|&>|/o/out.log|& echo $!"_s.arg(stream, items));
    }

    void aSubtitleHasNoScodec()
    {
        const auto texts =
            tools::textsOf(ffmpegExtractionArguments(*subtitleTrack(u"2"_s, u"ass"_s), extracted));
        QVERIFY(!texts.contains(u"-scodec"_s));
    }

    void onlyDtshdNeedsItsFormatNamed()
    {
        const auto track = surroundSound(u"dtshd"_s);
        const QUrl dtshd = QUrl::fromLocalFile(u"/o/a.mkv.stream1.dtshd"_s);
        const auto meant = ffmpegExtractionArguments(*track, dtshd);
        QCOMPARE(tools::textsOf(extractionLaunchForm(meant, dtshd)).join(u' '),
                 u"-i /v/a.mkv -map 0:1 -acodec copy -vn -sn -f dts -y /o/a.mkv.stream1.dtshd"_s);
        const auto items = ffmpegExtractionShellItems(*track, dtshd, extractionLog);
        QCOMPARE(tools::textsOf(extractionLaunchForm(items, dtshd)).join(u'|'),
                 u"-i|/v/a.mkv|-map 0:1|-acodec copy -vn -sn|-f|dts|-y|/o/a.mkv.stream1.dtshd|&>|/o/out.log|"
                 "& echo $!"_s);
        const QUrl dts = QUrl::fromLocalFile(u"/o/a.dtshd.stream1.dts"_s);
        const auto other = ffmpegExtractionArguments(*surroundSound(u"dts"_s), dts);
        QCOMPARE(extractionLaunchForm(other, dts), other);
    }
};

TESSARAY_TEST(ExtractionArgumentsTest)
#include "ExtractionArgumentsTest.moc"

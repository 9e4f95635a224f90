// Which reads a film needs, and what is made of what ffprobe prints: recorded output of ffprobe 5.1,
// shortened.
#include "media/FilmReader.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using media::FilmFacts;
using media::FilmReader;
using media::FilmWish;
using media::StreamFacts;

namespace {

const QUrl film = QUrl::fromLocalFile(u"/nowhere/a b.mkv"_s);

QByteArray header(const QByteArray &format, const QByteArray &seconds, const QByteArray &start = "0.000000")
{
    return R"({"format": {"format_name": ")" + format + R"(", "start_time": ")" + start + R"(", )" +
           (seconds.isEmpty() ? QByteArray() : R"("duration": ")" + seconds + R"(", )") +
           R"("size": "3130727"}})";
}

/// What mkvmerge wrote: picture, sound and a text of two cues.
const QByteArray streams = R"("streams": [
    {"index": 0, "codec_name": "h264", "codec_type": "video", "r_frame_rate": "25/1", "avg_frame_rate": "25/1",
     "start_pts": 21, "start_time": "0.021000", "extradata_hash": "MD5:0139371ac84e795003e42376c99c0c6f",
     "disposition": {"default": 1, "attached_pic": 0},
     "tags": {"BPS": "286182", "DURATION": "00:01:00.000000000", "NUMBER_OF_FRAMES": "1500",
              "NUMBER_OF_BYTES": "2146365", "_STATISTICS_WRITING_APP": "mkvmerge v74.0.0",
              "_STATISTICS_WRITING_DATE_UTC": "2026-11-22 15:16:39"}},
    {"index": 1, "codec_name": "aac", "codec_type": "audio", "sample_rate": "48000", "r_frame_rate": "0/0",
     "avg_frame_rate": "0/0", "start_time": "0.000000", "tags": {"language": "ger", "NUMBER_OF_FRAMES": "7",
              "_STATISTICS_WRITING_APP": "mkvmerge v74.0.0", "_STATISTICS_WRITING_DATE_UTC": "2020-01-01 00:00:00",
              "DURATION": "00:00:09.000000000"}},
    {"index": 2, "codec_name": "subrip", "codec_type": "subtitle", "start_time": "1.000000",
     "duration": "60.031000", "tags": {"DURATION": "00:00:22.000000000", "NUMBER_OF_FRAMES": "2",
              "_STATISTICS_WRITING_APP": "mkvmerge v74.0.0", "_STATISTICS_WRITING_DATE_UTC": "2026-11-22 15:16:39"}},
    {"index": 3, "codec_name": "png", "codec_type": "video", "disposition": {"attached_pic": 1}},
    {"index": 4, "codec_type": "attachment", "tags": {"filename": "x"}}])";

QByteArray packet(int stream, double time, double seconds = 0.04, const char *flags = "__")
{
    const QByteArray text = QByteArray::number(time, 'f', 6);
    return R"({"stream_index": )" + QByteArray::number(stream) + R"(, "pts_time": ")" + text +
           R"(", "dts_time": ")" + text + R"(", "duration_time": ")" + QByteArray::number(seconds, 'f', 6) +
           R"(", "size": "100", "flags": ")" + flags + R"("})";
}

QByteArray survey(const QByteArrayList &packets, const QByteArray &format = "matroska,webm",
                  const QByteArray &listed = streams)
{
    return R"({"packets": [)" + packets.join(',') + "], " + listed +
           R"(, "chapters": [{"id": 1}, {"id": 2}], )" + R"("format": {"format_name": ")" + format +
           R"(", "start_time": "0.000000", "duration": "60.031000",)" +
           R"( "size": "3130727", "tags": {"creation_time": "2026-11-22T15:16:39.000000Z", "title": "}"}}})";
}

/// The head, a window and the tail of such a film.
const QByteArrayList surveyed{packet(0, 0.021, 0.04, "K_"),
                              packet(1, 0, 0.021),
                              packet(2, 1, 2),
                              packet(0, 15.021),
                              packet(2, 20, 3),
                              packet(1, 45.9, 0.021),
                              packet(0, 59.9),
                              packet(1, 60.01, 0.021),
                              packet(0, 59.94)};

void answer(FilmReader &reader, const QByteArray &printed, const QByteArray &errors = {})
{
    for (qsizetype i = 0; i < printed.size(); i += 100) // chunks come in any size
        reader.feed(printed.mid(i, 100));
    reader.finish(errors);
}

QString intervals(const QStringList &arguments)
{
    const qsizetype at = arguments.indexOf(u"-read_intervals"_s);
    return at < 0 ? QString() : arguments.at(at + 1);
}

} // namespace

class FilmReaderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFilmIsReadInTwoRuns()
    {
        FilmReader reader(FilmWish{film, {}, {}, {}});
        QCOMPARE(reader.next(), (QStringList{u"-v"_s, u"error"_s, u"-show_entries"_s,
                                             u"format=format_name,start_time,duration,size"_s, u"-of"_s,
                                             u"json"_s, u"-i"_s, u"/nowhere/a b.mkv"_s}));
        answer(reader, header("matroska,webm", "60.031000"));
        const QStringList second = reader.next();
        QCOMPARE(intervals(second), u"%+#60,15.008%16.508,30.016%31.516,45.023%46.523,55.031%+#20000"_s);
        QVERIFY(second.contains(u"-show_streams"_s) && second.contains(u"-show_chapters"_s));
        QCOMPARE(second.constLast(), u"/nowhere/a b.mkv"_s);
        answer(reader, survey(surveyed));
        QCOMPARE(intervals(reader.next()), u"13.000%25.000"_s); // around the end that a tag tells of the text
        answer(reader, "2,20.000000,20.000000,3.000000,11,K_\n");
        QVERIFY(reader.next().isEmpty());
    }

    /// 64 MB; what is listed beyond that is not taken in, and the header is read alone.
    void ofAFilmThatListsTooMuchTheHeaderIsRead()
    {
        FilmReader reader(FilmWish{film, {}, {}, {}});
        reader.next();
        answer(reader, header("matroska,webm", "60.031000"));
        reader.next();
        const QByteArray chunk(1024 * 1024, ' ');
        for (int i = 0; i < 64; ++i)
            reader.feed(chunk);
        QVERIFY(!reader.isCut());
        reader.feed("x");
        QVERIFY(reader.isCut() && reader.facts().isTooLong);
        reader.finish("[x @ 0] one\n");
        const QStringList again = reader.next();
        QVERIFY(again.contains(u"-show_streams"_s) && again.contains(u"-show_format"_s));
        QVERIFY(!again.join(u' ').contains(u"packet"_s));
        QVERIFY(!reader.isCut());
        answer(reader, survey({}));
        QVERIFY(reader.next().isEmpty());
        QVERIFY(reader.facts().isTooLong && reader.facts().isOpen);
        QCOMPARE(reader.facts().streams.size(), 5);
        QCOMPARE(reader.facts().seconds, std::optional(60.031));
        QCOMPARE(reader.facts().errors, QStringList{u"[x @ 0] one"_s});
    }

    void aSurveyIsTakenIn()
    {
        FilmReader reader(FilmWish{film, {}, {}, {}});
        reader.next();
        answer(reader, header("matroska,webm", "60.031000"));
        reader.next();
        answer(reader, survey(surveyed), "[x @ 0] one\n[x @ 0] two\n");
        reader.next();
        answer(reader, "2,20.000000,20.000000,3.000000,11,K_\n");
        const FilmFacts &facts = reader.facts();
        QVERIFY(facts.isOpen && facts.wasAsked && facts.hasTail && !facts.wasReadWhole && !facts.listsAll);
        QCOMPARE(facts.format, u"matroska,webm"_s);
        QCOMPARE(facts.bytes, 3130727);
        QCOMPARE(facts.chapters, 2);
        QCOMPARE(facts.errors, (QStringList{u"[x @ 0] one"_s, u"[x @ 0] two"_s}));
        QCOMPARE(facts.packets.size(), 9);
        QCOMPARE(facts.lastEnd(), std::optional(60.031));
        QCOMPARE(facts.earliestStart(), std::optional(0.0));
        QVERIFY(!facts.isShort());
        const StreamFacts video = facts.streams.at(0);
        QCOMPARE(video.kind, u"video"_s);
        QCOMPARE(video.frameSeconds, 0.04);
        QCOMPARE(video.packets, std::optional<qint64>(1500));
        QCOMPARE(video.bytes, std::optional<qint64>(2146365));
        QCOMPARE(video.firstTime, std::optional(0.021));
        QCOMPARE(video.lastEnd, std::optional(59.98));
        QCOMPARE(video.extradataHash, u"MD5:0139371ac84e795003e42376c99c0c6f"_s);
        const StreamFacts audio = facts.streams.at(1);
        QVERIFY(!audio.packets); // figures of another file
        QVERIFY(!audio.toldEnd);
        QCOMPARE(audio.language, u"ger"_s);
        QCOMPARE(audio.sampleRate, 48000);
        QCOMPARE(facts.streams.at(2).lastEnd, std::optional(23.0));
        QCOMPARE(facts.streams.at(3).kind, u"cover"_s);
        QCOMPARE(facts.streams.at(4).kind, u"attachment"_s);
        QVERIFY(facts.keyFrames.isEmpty()); // between windows there may be others
    }

    void promisesDifferByContainer_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<double>("promise");
        QTest::newRow("mkv") << QByteArray("matroska,webm") << QByteArray("5.000000") << 60.0;
        QTest::newRow("mp4") << QByteArray("mov,mp4,m4a,3gp,3g2,mj2") << QByteArray("5.000000") << 60.0;
        QTest::newRow("flv") << QByteArray("flv") << QByteArray("5.000000") << 60.0;
        QTest::newRow("asf") << QByteArray("asf") << QByteArray("5.000000") << 60.0;
        QTest::newRow("ts") << QByteArray("mpegts") << QByteArray("1.400000") << 61.4;
        QTest::newRow("ps") << QByteArray("mpeg") << QByteArray("0.500000") << 60.5;
    }

    void promisesDifferByContainer()
    {
        QFETCH(QByteArray, format);
        QFETCH(QByteArray, start);
        QFETCH(double, promise);
        FilmReader reader(FilmWish{film, {}, {}, {}});
        reader.next();
        answer(reader, header(format, "60.000000", start));
        QCOMPARE(reader.facts().promise(), std::optional(promise));
        const QString tail = QString::number(promise - 5, 'f', 3) + u"%+#20000"_s;
        QVERIFY2(intervals(reader.next()).endsWith(tail), qPrintable(tail));
    }

    void aShortFilmIsListedWhole()
    {
        FilmReader reader(FilmWish{film, {}, {}, {}});
        reader.next();
        answer(reader, header("matroska,webm", "40.0"));
        QCOMPARE(intervals(reader.next()), u"%+#20000"_s);
        answer(reader,
               survey({packet(0, 0, 0.04, "K_"), packet(1, 0), packet(2, 1, 2), packet(0, 1, 0.04, "K_")}));
        QVERIFY(reader.facts().wasReadWhole && reader.facts().listsAll && reader.facts().hasTail);
        QCOMPARE(reader.facts().streams.at(2).lastEnd, std::optional(3.0));
        QCOMPARE(reader.facts().keyFrames, (QList<double>{0, 1}));
    }

    /// 187 packets of sound a second, and the last key frame minutes before the end.
    void aTailThatIsListedInPartTellsOfNoEnd()
    {
        FilmReader reader(FilmWish{film, {}, {}, {}});
        reader.next();
        answer(reader, header("matroska,webm", "670.0"));
        reader.next();
        QList<QByteArray> packets;
        for (int i = 0; i < 20'000; ++i)
            packets.append(packet(1, 500 + i / 187.0));
        answer(reader, survey(packets));
        QVERIFY(reader.facts().isTooLong);
        const QStringList again = reader.next();
        QVERIFY(again.contains(u"-show_streams"_s) && !again.join(u' ').contains(u"packet"_s));
    }

    void theWindowsOfAnOutputAreThoseOfItsSource()
    {
        FilmReader reader(FilmWish{film, {75, 50, 6}, {}, {}});
        reader.next();
        answer(reader, header("matroska,webm", "100.0"));
        QCOMPARE(intervals(reader.next()), u"%+#60,25.000%26.500,50.000%51.500,95.000%+#20000"_s);
    }

    /// A film that has no tail where it should be is read whole, and its windows lie in what there is.
    void aFilmWithoutATailIsReadWhole()
    {
        FilmReader reader(FilmWish{film, {}, {}, {}});
        reader.next();
        answer(reader, header("matroska,webm", "600.0"));
        QVERIFY(intervals(reader.next()).contains(u"595.000%"_s));
        answer(reader, survey({packet(0, 0.021), packet(1, 0)}).replace("60.031000", "600.000"));
        QVERIFY(!reader.facts().hasTail);
        const QStringList whole = reader.next();
        QVERIFY(intervals(whole).isEmpty() && whole.contains(u"csv=p=0"_s));
        answer(reader, "0,0.021000,N/A,0.040000,100,K_\n1,0.000000,0.000000,0.021000,10,K_\n"
                       "0,99.960000,99.960000,0.040000,100,__\n2,1.000000,1.000000,2.000000,9,K_\nrubbish\n");
        QVERIFY(reader.facts().isShort());
        QCOMPARE(reader.facts().lastEnd(), std::optional(100.0));
        QCOMPARE(reader.facts().streams.at(0).packets, std::optional<qint64>(2)); // not those of the tag
        QVERIFY(intervals(reader.next()).contains(u"50.000%51.500"_s));
        answer(reader, survey({packet(0, 50), packet(0, 99.96)}));
        QVERIFY(reader.next().isEmpty());
        QCOMPARE(reader.facts().windows, (QList<double>{25, 50, 75}));
    }

    void anOutputIsReadWholeOnlyWhenItIsSmall()
    {
        for (const qint64 most : {3130727, 3130726}) {
            FilmReader reader(FilmWish{film, {}, {}, most});
            reader.next();
            answer(reader, header("h264", ""));
            QCOMPARE(intervals(reader.next()), u"%+#60"_s);
            answer(reader, survey({packet(0, 0)}, "h264").replace("\"duration\": \"60.031000\",", ""));
            const QStringList next = reader.next();
            QCOMPARE(next.contains(u"csv=p=0"_s) && intervals(next).isEmpty(), most == 3130727);
        }
    }

    /// Of an MP4 the index tells where a track ends; of others windows are tried, further and further back.
    void anEndThatIsNotInTheTailIsLookedFor()
    {
        const QByteArray listed = R"("streams": [{"index": 0, "codec_name": "h264", "codec_type": "video"},
            {"index": 1, "codec_name": "aac", "codec_type": "audio", "start_time": "2.000000",
             "duration": "31.000000", "nb_frames": "1453"}])";
        for (const QByteArray format : {"mov,mp4,m4a,3gp,3g2,mj2", "flv"}) {
            FilmReader reader(FilmWish{film, {}, {}, {}});
            reader.next();
            answer(reader, header(format, "60.031000"));
            reader.next();
            answer(reader, survey({packet(0, 0), packet(1, 2), packet(0, 60)}, format, listed));
            if (format != "flv") {
                QVERIFY(reader.next().isEmpty());
                QCOMPARE(reader.facts().streams.at(1).lastEnd, std::optional(33.0));
                QCOMPARE(reader.facts().streams.at(1).packets, std::optional<qint64>(1453));
                continue;
            }
            QVERIFY(!reader.facts().streams.at(1).packets);
            QCOMPARE(intervals(reader.next()), u"30.031%60.031"_s);
            answer(reader, "1,32.900000,32.900000,0.021000,100,K_\n");
            QVERIFY(reader.next().isEmpty());
            QCOMPARE(reader.facts().streams.at(1).lastEnd, std::optional(32.921));
        }
    }

    void keyFramesOfAStretchAreLookedFor()
    {
        FilmReader reader(FilmWish{film, {}, {3, 8}, {}});
        reader.next();
        answer(reader, header("matroska,webm", "60.031000"));
        reader.next();
        answer(reader, survey(surveyed + QByteArrayList{packet(2, 59, 1)}));
        QCOMPARE(intervals(reader.next()), u"3.000%18.000"_s);
        answer(reader, "0,0.021000,0.021000,0.040000,1,K_\n0,10.021000,10.021000,0.040000,1,K_\n");
        QCOMPARE(intervals(reader.next()), u"8.000%23.000"_s);
        answer(reader,
               "0,10.021000,10.021000,0.040000,1,K_\n"); // the part begins there, so it does not end there
        QCOMPARE(intervals(reader.next()), u"8.000%128.000"_s);
        answer(reader, "0,30.021000,30.021000,0.040000,1,K_\n");
        QVERIFY(reader.next().isEmpty());
    }

    void whatIsNoFilmIsNotAskedAgain()
    {
        FilmReader reader(FilmWish{film, {}, {}, {}});
        reader.next();
        answer(reader, "{\n\n}\n", "a.mkv: Invalid data found when processing input\n");
        QVERIFY(!reader.next().isEmpty()); // a header may lack what a survey tells
        answer(reader, "{}", "a.mkv: Invalid data found when processing input\n");
        QVERIFY(reader.next().isEmpty());
        QVERIFY(!reader.facts().isOpen && reader.facts().wasAsked);
        QCOMPARE(reader.facts().errors, QStringList{u"a.mkv: Invalid data found when processing input"_s});
    }

    void aTitleThatIsNoUtf8CostsNothing()
    {
        const FilmFacts facts =
            media::headerFactsFrom(survey({}).replace("\"title\": \"}\"", "\"title\": \"Caf\xe9\""));
        QVERIFY(facts.isOpen);
        QCOMPARE(facts.streams.size(), 5);
    }

    /// A header that was left as it was tells more pictures than ffmpeg's guess by bytes.
    void anAviTellsItsPictures()
    {
        const QByteArray listed = R"("streams": [{"index": 0, "codec_name": "mpeg4", "codec_type": "video",
            "avg_frame_rate": "25/1", "r_frame_rate": "25/1", "time_base": "1/25", "nb_frames": "15000", "duration": "60.0"}])";
        const FilmFacts facts = media::headerFactsFrom(survey({}, "avi", listed));
        QCOMPARE(facts.promise(), std::optional(600.0));
        QVERIFY(!facts.streams.constFirst().packets);
    }
};

TESSARAY_TEST(FilmReaderTest)
#include "FilmReaderTest.moc"

// The rule of the check, with facts that are written by hand: a source of a minute with picture, sound and
// text, and what an output may and may not differ from it.
#include "media/FilmCheck.h"

#include "support/TestMain.h"

#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;
using media::Became;
using media::CheckedOutput;
using media::Extent;
using media::FilmFacts;
using media::FilmPacket;
using media::MeantOutput;
using media::Proof;
using media::StreamFacts;
using media::TrackFate;

namespace {

const QUrl sourceUrl = QUrl::fromLocalFile(u"/films/a.mkv"_s);
const QUrl outputUrl = QUrl::fromLocalFile(u"/films/out.mkv"_s);

StreamFacts stream(int index, const QString &kind, const QString &codec, double start, double end)
{
    StreamFacts facts;
    facts.index = index;
    facts.kind = kind;
    facts.codec = codec;
    facts.headerStart = start;
    facts.firstTime = start;
    facts.lastEnd = end;
    if (kind == u"video"_s)
        facts.frameSeconds = facts.lastSeconds = 0.04;
    if (kind == u"audio"_s)
        facts.sampleRate = 48000;
    return facts;
}

/// Packets of the windows at 15, 30 and 45 s: pictures of 25 a second, sound of 50.
QList<FilmPacket> sampledPackets(double shift, double soundShift)
{
    QList<FilmPacket> packets;
    for (const double window : {15.0, 30.0, 45.0}) {
        for (int i = 0; i < 38; ++i)
            packets.append({0, window + i * 0.04 + shift, window + i * 0.04 + shift, 0.04, 1000 + i, false});
        for (int i = 0; i < 75; ++i) {
            const double time = window + i * 0.02 + shift + soundShift;
            packets.append({1, time, time, 0.02, 300 + i, true});
        }
    }
    return packets;
}

FilmFacts minute(double shift = 0)
{
    FilmFacts film;
    film.wasAsked = film.isOpen = film.hasTail = true;
    film.format = u"matroska,webm"_s;
    film.seconds = 60 + shift;
    film.bytes = 1000000;
    film.streams = {stream(0, u"video"_s, u"h264"_s, shift, 60 + shift),
                    stream(1, u"audio"_s, u"aac"_s, shift, 60 + shift),
                    stream(2, u"subtitle"_s, u"subrip"_s, shift, 50 + shift)};
    film.windows = {15 + shift, 30 + shift, 45 + shift};
    film.packets = sampledPackets(shift, 0);
    return film;
}

MeantOutput meantOf(const FilmFacts &source)
{
    MeantOutput meant;
    meant.output = meant.file = outputUrl;
    meant.sources = {sourceUrl};
    for (const StreamFacts &one : source.streams) {
        TrackFate fate;
        fate.source = sourceUrl;
        fate.index = one.index;
        fate.kind = one.kind;
        fate.codec = one.codec;
        meant.tracks.append(fate);
    }
    return meant;
}

/// One check of one source and one output, which rows change.
struct Case
{
    FilmFacts source = minute();
    FilmFacts output = minute();
    MeantOutput meant = meantOf(source);
    media::RunFigures figures;

    CheckedOutput result() const
    {
        return media::checkedOutputs({meant}, {{sourceUrl, source}, {outputUrl, output}}, figures)
            .constFirst();
    }
};

QString told(const CheckedOutput &result)
{
    const QString word = result.result == CheckedOutput::Result::Ok         ? u"ok"_s
                         : result.result == CheckedOutput::Result::Warnings ? u"warnings: "_s
                                                                            : u"failed: "_s;
    return word + result.sentence();
}

using Change = std::function<void(Case &)>;

void reencodeAll(Case &one)
{
    for (TrackFate &fate : one.meant.tracks)
        fate.became = fate.kind == u"subtitle"_s ? Became::Copied : Became::Reencoded;
}

} // namespace

Q_DECLARE_METATYPE(Change)

class FilmCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOutputIsHeldAgainstItsSource_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("said");
        const auto row = [](const char *name, const Change &change, const QString &said) {
            QTest::newRow(name) << change << said;
        };
        row(
            "the same", [](Case &) {}, u"ok"_s);
        row(
            "moved to 0", [](Case &c) { c.source = minute(5); }, u"ok"_s);
        row(
            "a packet of sound less", [](Case &c) { c.output.streams[1].lastEnd = 59.915; }, u"ok"_s);
        row(
            "sound that is 0.09 s longer", [](Case &c) { c.output.streams[1].lastEnd = 60.09; }, u"ok"_s);
        row(
            "sound that is 0.11 s shorter", [](Case &c) { c.output.streams[1].lastEnd = 59.89; },
            u"failed: The audio track of out.mkv lasts 59.89 s instead of 60.00 s."_s);
        row(
            "sound that is 0.11 s longer", [](Case &c) { c.output.streams[1].lastEnd = 60.11; },
            u"failed: The audio track of out.mkv lasts 60.11 s instead of 60.00 s."_s);
        row(
            "half the picture", [](Case &c) { c.output.streams[0].lastEnd = c.output.seconds = 30; },
            u"failed: The video of out.mkv lasts 0:30 instead of 1:00."_s);
        row(
            "two pictures of 4 a second less",
            [](Case &c) {
                c.source.streams[0].frameSeconds = 0.25;
                c.output.streams[0].lastEnd = 59.52;
            },
            u"ok"_s);
        row(
            "sound that begins late",
            [](Case &c) { c.output.streams[1].headerStart = c.output.streams[1].firstTime = 0.2; },
            u"failed: The audio track of out.mkv begins 0.20 s too late. "
            "The audio track of out.mkv lasts 59.80 s instead of 60.00 s."_s);
        row(
            "sound that begins late in both",
            [](Case &c) {
                for (FilmFacts *film : {&c.source, &c.output})
                    film->streams[1].headerStart = film->streams[1].firstTime = 2;
            },
            u"ok"_s);
        row(
            "sound that an edit list begins late",
            [](Case &c) {
                c.source.streams[1].headerStart = 0.021;
                c.source.streams[1].firstTime = 0;
            },
            u"ok"_s);
        row(
            "sound moved by 0.05 s inside", [](Case &c) { c.output.packets = sampledPackets(0, 0.05); },
            u"failed: The audio track of out.mkv does not lie where it lay in the source."_s);
        row(
            "sound moved by 0.01 s inside", [](Case &c) { c.output.packets = sampledPackets(0, 0.01); },
            u"ok"_s);
        row(
            "other packets at the same times",
            [](Case &c) {
                for (FilmPacket &packet : c.output.packets)
                    packet.bytes += 7;
            },
            u"failed: The video of out.mkv does not lie where it lay in the source. "
            "The audio track of out.mkv does not lie where it lay in the source."_s);
        row(
            "other sizes out of a transport stream",
            [](Case &c) {
                c.source.format = u"mpegts"_s;
                c.source.bytes = 1880;
                for (FilmPacket &packet : c.output.packets)
                    packet.bytes += 7;
            },
            u"ok"_s);
        row(
            "pictures that don't say when they are shown",
            [](Case &c) {
                c.output.packets = sampledPackets(0.05, -0.05); // the pictures moved
                for (FilmPacket &packet : c.source.packets) {
                    if (packet.stream == 0 && packet.bytes % 3 == 0)
                        packet.shown.reset();
                }
            },
            u"ok"_s);
        row(
            "every second packet of a window",
            [](Case &c) {
                c.output.packets.removeIf(
                    [&](const FilmPacket &one) { return one.stream == 1 && one.bytes % 2; });
            },
            u"failed: The audio track of out.mkv does not lie where it lay in the source."_s);
        row(
            "a track missing", [](Case &c) { c.output.streams.removeAt(1); },
            u"failed: out.mkv holds 0 audio tracks instead of 1."_s);
        row(
            "a track twice", [](Case &c) { c.output.streams << stream(3, u"audio"_s, u"aac"_s, 0, 60); },
            u"failed: out.mkv holds 2 audio tracks instead of 1."_s);
        row(
            "a track that was left out", [](Case &c) { c.meant.tracks[2].became = Became::LeftOut; },
            u"failed: out.mkv holds 1 subtitle track instead of 0."_s);
        row(
            "a subtitle that was burned in",
            [](Case &c) {
                c.meant.tracks[2].became = Became::Burned;
                c.output.streams.removeAt(2);
            },
            u"ok"_s);
        row(
            "another codec", [](Case &c) { c.output.streams[1].codec = u"ac3"_s; },
            u"failed: The audio track of out.mkv is ac3 instead of aac."_s);
        row(
            "a cover missing",
            [](Case &c) {
                c.source.streams << stream(3, u"cover"_s, u"png"_s, 0, 0);
                c.meant = meantOf(c.source);
            },
            u"warnings: out.mkv holds 0 covers instead of 1."_s);
        row(
            "chapters missing",
            [](Case &c) {
                TrackFate fate;
                fate.source = sourceUrl;
                fate.kind = u"chapters"_s;
                c.meant.tracks.append(fate);
            },
            u"warnings: out.mkv has lost its chapters."_s);
        row(
            "not to be read",
            [](Case &c) {
                c.output = {};
                c.output.errors = {u"out.mkv: Invalid data found when processing input"_s};
            },
            u"failed: out.mkv can't be read: out.mkv: Invalid data found when processing input."_s);
        row(
            "a header that tells more than there is", [](Case &c) { c.output.seconds = 100; },
            u"failed: out.mkv is not whole: it ends before its own header says that it does."_s);
        row(
            "a container that tells more bytes", [](Case &c) { c.output.declaredBytes = 1000001; },
            u"failed: out.mkv is not whole: it ends before its own header says that it does."_s);
        row(
            "the last text earlier", [](Case &c) { c.output.streams[2].lastEnd = 48; },
            u"failed: The subtitle track of out.mkv ends at 0:48 instead of 0:50."_s);
        row(
            "the last text a little earlier", [](Case &c) { c.output.streams[2].lastEnd = 49.1; }, u"ok"_s);
        row(
            "an end that is not known", [](Case &c) { c.source.streams[2].lastEnd.reset(); }, u"ok"_s);
    }

    void anOutputIsHeldAgainstItsSource()
    {
        QFETCH(Change, change);
        QFETCH(QString, said);
        Case one;
        change(one);
        QCOMPARE(told(one.result()), said);
    }

    void reencodedTracksMayBeLonger()
    {
        Case one;
        one.output.streams[1].lastEnd = 60.14;
        QVERIFY(told(one.result()).startsWith(u"failed"_s));
        reencodeAll(one);
        one.meant.tracks[1].to = u"aac"_s;
        QCOMPARE(told(one.result()), u"ok"_s);
        one.meant.tracks[1].to = u"ac3"_s;
        QCOMPARE(told(one.result()), u"failed: The audio track of out.mkv is aac instead of ac3."_s);
    }

    void countsAreCompared_data()
    {
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::addColumn<QString>("said");
        QTest::newRow("equal") << 2813 << 2813 << u"ok"_s;
        QTest::newRow("three off") << 2813 << 2810 << u"ok"_s;
        QTest::newRow("four off")
            << 2813 << 2809 << u"failed: The audio track of out.mkv holds 2809 packets instead of 2813."_s;
        QTest::newRow("holes in both") << 2700 << 2700 << u"ok"_s;
    }

    /// 1,024 samples each: 2,812.5 of them are a minute.
    void countsAreCompared()
    {
        QFETCH(int, before);
        QFETCH(int, after);
        QFETCH(QString, said);
        Case one;
        one.source.streams[1].packets = before;
        one.output.streams[1].packets = after;
        QCOMPARE(told(one.result()), said);
    }

    void picturesOfTextAreCountedAlikeInOneContainer_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("format"); // of the source
        QTest::addColumn<QString>("said");
        const QString fewer = u"failed: The subtitle track of out.mkv holds 2 packets instead of 8."_s;
        for (const QString &codec : {u"hdmv_pgs_subtitle"_s, u"dvd_subtitle"_s, u"dvb_subtitle"_s}) {
            QTest::addRow("%s out of its own file", qPrintable(codec)) << codec << u"sup"_s << u"ok"_s;
            QTest::addRow("%s, transport", qPrintable(codec)) << codec << u"mpegts"_s << u"ok"_s;
            QTest::addRow("%s, Matroska", qPrintable(codec)) << codec << u"matroska,webm"_s << fewer;
        }
        QTest::newRow("text") << u"subrip"_s << u"srt"_s << fewer;
    }

    /// Segments are packets in one container, and whole pictures in another.
    void picturesOfTextAreCountedAlikeInOneContainer()
    {
        QFETCH(QString, codec);
        QFETCH(QString, format);
        QFETCH(QString, said);
        Case one;
        one.source.format = format;
        one.source.bytes = 1880; // whole packets of a transport stream
        one.source.streams[2].codec = one.output.streams[2].codec = codec;
        one.source.streams[2].packets = 8;
        one.output.streams[2].packets = 2;
        one.meant = meantOf(one.source);
        QCOMPARE(told(one.result()), said);
    }

    /// With nothing to compare them with it can't be told whose they are.
    void holesAreTold()
    {
        Case one;
        one.output.streams[1].packets = 2700;
        QCOMPARE(told(one.result()),
                 u"warnings: The audio track of out.mkv has holes: 2.40 s of 60.00 s are missing."_s);
    }

    /// 16 packets of 1,024 samples in front of the sound are hidden by an edit list.
    void whatAnEditListHidesMayComeAlong_data()
    {
        QTest::addColumn<double>("start"); // of the output's sound, beside the picture
        QTest::addColumn<int>("packets");
        QTest::addColumn<QString>("said");
        QTest::newRow("left out") << 0.0 << 2813 << u"ok"_s;
        QTest::newRow("taken along") << -0.34 << 2829 << u"ok"_s;
        QTest::newRow("neither")
            << -0.17 << 2821
            << u"failed: The audio track of out.mkv begins 0.17 s too early. The audio track of out.mkv "
               "lasts 60.17 s instead of 60.00 s. The audio track of out.mkv holds 2821 packets instead of "
               "2829."_s;
    }

    void whatAnEditListHidesMayComeAlong()
    {
        QFETCH(double, start);
        QFETCH(int, packets);
        QFETCH(QString, said);
        Case one;
        one.source.format = u"mov,mp4,m4a,3gp,3g2,mj2"_s;
        for (FilmFacts *film : {&one.source, &one.output}) // a picture that begins before both
            film->streams[0].headerStart = film->streams[0].firstTime = -1;
        one.source.streams[1].packets = 2829;
        one.output.streams[1].headerStart = one.output.streams[1].firstTime = start;
        one.output.streams[1].packets = packets;
        QCOMPARE(told(one.result()), said);
    }

    void figuresOfTheRunCount()
    {
        Case one;
        one.figures.read.insert({0, 1}, {2813, 900000});
        one.figures.muxed.insert({0, 1}, {2813, 900000});
        const CheckedOutput result = one.result();
        QCOMPARE(told(result), u"ok"_s);
        QCOMPARE(result.output.tracks.at(1).proof, Proof::Packets);
        QCOMPARE(result.output.tracks.at(1).sourceBytes, std::optional<qint64>(900000));
        QCOMPARE(result.output.tracks.at(1).outputBytes, std::optional<qint64>(900000));
        QCOMPARE(result.output.tracks.at(0).proof, Proof::Lengths);
        one.figures.muxed.insert({0, 1}, {2600, 800000});
        QVERIFY(told(one.result()).contains(u"holds 2600 packets instead of 2813."_s));
    }

    void damageIsTold()
    {
        Case one;
        one.figures.damage = u"[matroska,webm @ 0x5] invalid as first byte of an EBML number"_s;
        QCOMPARE(told(one.result()),
                 u"warnings: The source is damaged: [matroska,webm @ 0x5] invalid as first byte of an EBML "
                 "number."_s);
    }

    /// The result of a damaged film can't be whole, but it has to be what it was meant to be.
    void whatADamagedSourceHasLostIsNoFailure()
    {
        Case one;
        one.figures.read.insert({0, 1}, {2813, 900000});
        one.figures.muxed.insert({0, 1}, {2600, 800000});
        const QString lost =
            u"The audio track of out.mkv holds 2600 packets instead of 2813. The audio track of "
            "out.mkv has holes: 4.53 s of 60.00 s are missing."_s;
        QCOMPARE(told(one.result()), u"failed: "_s + lost);
        one.figures.damage = u"invalid as first byte of an EBML number"_s;
        one.figures.damageIsTold = true;
        QCOMPARE(told(one.result()), u"warnings: "_s + lost);
        one.output.streams[1].codec = u"mp3"_s;
        QVERIFY(told(one.result()).startsWith(u"failed: "_s));
    }

    void fatesAreFilledIn()
    {
        Case one;
        std::swap(one.output.streams[0], one.output.streams[1]);
        one.output.streams[0].index = 0;
        one.output.streams[1].index = 1;
        one.output.packets.clear();
        one.source.packets.clear();
        one.source.streams[0].bytes = 5000;
        const CheckedOutput result = one.result();
        QCOMPARE(told(result), u"ok"_s);
        const TrackFate &video = result.output.tracks.at(0);
        QCOMPARE(video.outputIndex, 1);
        QCOMPARE(video.sourceSeconds, std::optional(60.0));
        QCOMPARE(video.outputSeconds, std::optional(60.0));
        QCOMPARE(video.sourceBytes, std::optional<qint64>(5000));
        QVERIFY(!video.outputBytes);
        QCOMPARE(result.output.tracks.at(1).outputIndex, 0);
        QCOMPARE(result.output.tracks.at(2).proof, Proof::Lengths);
        QCOMPARE(result.seconds, std::optional(60.0));
    }

    /// A step that takes a film as it is names no track.
    void whatIsMeantIsCompletedByTheSource()
    {
        Case one;
        one.meant.tracks.clear();
        for (const QString &kind : {u"video"_s, u"audio"_s, u"subtitle"_s}) {
            TrackFate pattern;
            pattern.kind = kind;
            pattern.became = kind == u"subtitle"_s ? Became::LeftOut : Became::Copied;
            one.meant.rest.append(pattern);
        }
        QCOMPARE(told(one.result()), u"failed: out.mkv holds 1 subtitle track instead of 0."_s);
        one.output.streams.removeAt(2);
        const CheckedOutput result = one.result();
        QCOMPARE(told(result), u"ok"_s);
        QCOMPARE(result.output.tracks.size(), 3);
        QCOMPARE(result.output.tracks.at(1).proof, Proof::Lengths);
    }

    /// One sound becomes the codec of the other, and lasts a little longer: packets tell which is which.
    void tracksOfOneLengthAreInTheirOrder()
    {
        Case one;
        one.source.streams[2] = stream(2, u"audio"_s, u"ac3"_s, 0, 60);
        std::swap(one.source.streams[1].codec, one.source.streams[2].codec);
        one.output.streams[2] = stream(2, u"audio"_s, u"aac"_s, 0, 60);
        one.output.streams[1].lastEnd = 60.02;
        one.output.streams[1].firstTime = -0.021333; // hidden
        for (FilmFacts *film : {&one.source, &one.output}) {
            for (FilmPacket &packet : film->packets)
                packet.stream = packet.stream == 1 ? 2 : packet.stream;
        }
        for (FilmPacket packet : QList<FilmPacket>(one.output.packets)) {
            packet.stream = packet.stream == 2 ? 1 : packet.stream;
            packet.bytes += 50;
            if (packet.stream == 1)
                one.output.packets.append(packet);
        }
        one.meant = meantOf(one.source);
        one.meant.tracks[0].became = one.meant.tracks[1].became = Became::Reencoded;
        one.meant.tracks[0].to = u"h264"_s;
        one.meant.tracks[1].to = u"aac"_s;
        const CheckedOutput result = one.result();
        QCOMPARE(told(result), u"ok"_s);
        QCOMPARE(result.output.tracks.at(1).outputIndex, 1);
        QCOMPARE(result.output.tracks.at(2).outputIndex, 2);
    }

    /// The container may have its own order; codecs tell the tracks apart.
    void tracksMayBeInAnotherOrder()
    {
        Case one;
        one.source.streams << stream(3, u"audio"_s, u"ac3"_s, 0, 60);
        one.output.streams[1].codec = u"ac3"_s;
        one.output.streams << stream(3, u"audio"_s, u"aac"_s, 0, 60);
        one.source.packets.clear();
        one.output.packets.clear();
        one.meant = meantOf(one.source);
        const CheckedOutput result = one.result();
        QCOMPARE(told(result), u"ok"_s);
        QCOMPARE(result.output.tracks.at(1).outputIndex, 3);
        QCOMPARE(result.output.tracks.at(3).outputIndex, 1);
    }

    /// Readers stop at different packets of what was cut.
    void theEndOfAShortSourceIsRagged()
    {
        Case one;
        one.source.seconds = 600;
        one.output.seconds = one.output.streams[0].lastEnd = one.output.streams[1].lastEnd = 59.1;
        QCOMPARE(told(one.result()), u"warnings: The source ends at 1:00 of 10:00."_s);
        one.output.seconds = one.output.streams[0].lastEnd = one.output.streams[1].lastEnd = 58.5;
        QVERIFY(told(one.result()).startsWith(u"failed: The video of out.mkv lasts 0:59 instead of 1:00."_s));
    }

    void shortSourcesAreTold_data()
    {
        QTest::addColumn<double>("promise");
        QTest::addColumn<QString>("said");
        QTest::newRow("whole") << 60.9 << u"ok"_s;
        QTest::newRow("a second") << 61.5 << u"warnings: The source ends at 1:00 of 1:02."_s;
        QTest::newRow("six of ten minutes") << 600.0 << u"warnings: The source ends at 1:00 of 10:00."_s;
        QTest::newRow("hours") << 5400.0 << u"warnings: The source ends at 1:00 of 1:30:00."_s;
    }

    void shortSourcesAreTold()
    {
        QFETCH(double, promise);
        QFETCH(QString, said);
        Case one;
        one.source.seconds = promise;
        QCOMPARE(told(one.result()), said);
    }

    void otherSignsOfACutAreTold()
    {
        Case one;
        one.source.declaredBytes = 2000000;
        QCOMPARE(told(one.result()), u"warnings: The source is cut off: it ends at 1:00."_s);
        one.source.declaredBytes.reset();
        one.source.seconds = 60.4;
        one.source.errors = {u"[matroska,webm @ 0x5] File ended prematurely at pos. 5 (0x5)"_s};
        QCOMPARE(told(one.result()), u"warnings: The source ends at 60.00 of 60.40 s."_s);
        one.source.errors.clear();
        one.source.format = u"mpegts"_s;
        one.source.bytes = 1000;
        QCOMPARE(told(one.result()), u"warnings: The source is cut off: it ends at 1:00."_s);
        one.source.bytes = 188 * 10;
        QCOMPARE(told(one.result()), u"ok"_s);
    }

    /// What a header tells of a film that was cut is not believed.
    void countsOfAShortSourceDoNotCount()
    {
        Case one;
        one.source.seconds = 600;
        one.source.streams[0].packets = 15000;
        one.output.streams[0].packets = 1500;
        QCOMPARE(told(one.result()), u"warnings: The source ends at 1:00 of 10:00."_s);
        one.source.wasReadWhole = true; // then they were counted
        QVERIFY(told(one.result()).contains(u"holds 1500 packets instead of 15000."_s));
    }

    void aSourceThatCanNotBeReadIsTold()
    {
        Case one;
        one.source = {};
        QCOMPARE(told(one.result()),
                 u"warnings: The source can't be read, so out.mkv could not be compared with it."_s);
    }

    void ofFilmsThatListTooMuchTheHeadersAreCompared_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("said");
        QTest::newRow("alike") << Change([](Case &) {}) << u"ok"_s;
        QTest::newRow("packets don't count")
            << Change([](Case &c) { c.output.streams[1].lastEnd = 30; }) << u"ok"_s;
        QTest::newRow("a second") << Change([](Case &c) { c.output.seconds = 59; }) << u"ok"_s;
        QTest::newRow("shorter") << Change([](Case &c) { c.output.seconds = 58.9; })
                                 << u"failed: out.mkv lasts 0:59 instead of 1:00."_s;
        QTest::newRow("shorter, but a track is left out") << Change([](Case &c) {
            c.output.seconds = 50;
            c.output.streams.removeLast();
            c.meant.tracks[2].became = Became::LeftOut;
        }) << u"ok"_s;
        QTest::newRow("a stream less") << Change([](Case &c) { c.output.streams.removeAt(1); })
                                       << u"failed: out.mkv holds 0 audio tracks instead of 1."_s;
        QTest::newRow("another codec") << Change([](Case &c) { c.output.streams[1].codec = u"mp3"_s; })
                                       << u"failed: The audio track of out.mkv is mp3 instead of aac."_s;
        QTest::newRow("a shorter stream") << Change([](Case &c) {
            c.source.streams[1].headerSeconds = 60;
            c.output.streams[1].headerSeconds = 40;
        }) << u"failed: The audio track of out.mkv lasts 0:40 instead of 1:00."_s;
    }

    void ofFilmsThatListTooMuchTheHeadersAreCompared()
    {
        QFETCH(Change, change);
        QFETCH(QString, said);
        for (const bool isSource : {true, false}) {
            Case one;
            (isSource ? one.source : one.output).isTooLong = true;
            one.source.seconds = 60;
            one.output.seconds = 60;
            change(one);
            QCOMPARE(told(one.result()), said);
        }
    }

    void anErrorThatIsNotKnownIsAWarning()
    {
        Case one;
        one.figures.complaint = u"cannot do that"_s;
        QCOMPARE(told(one.result()), u"warnings: ffmpeg told of an error: cannot do that."_s);
        one.figures.damage = u"partial file"_s; // which says it better
        QCOMPARE(told(one.result()), u"warnings: The source is damaged: partial file."_s);
        one.figures = {};
        one.figures.complaint = u"cannot do that"_s;
        one.output.streams[1].lastEnd = 50; // and more than a warning
        QVERIFY(told(one.result()).startsWith(u"failed: The audio track of out.mkv lasts 0:50"_s));
    }

    /// Ends tell nothing where pictures are older than those before them: then the count is believed, where
    /// it is known, and only there.
    void timesThatRunBackwardsAreBelievedByTheirCount_data()
    {
        QTest::addColumn<bool>("runsBackwards");
        QTest::addColumn<int>("muxed"); // of 1500; 0: not known
        QTest::addColumn<QString>("said");
        const QString off = u"The video of out.mkv lasts 0:55 instead of 1:00."_s;
        QTest::newRow("all packets") << true << 1500
                                     << u"warnings: The video of out.mkv has times that run backwards, as in "
                                        u"the source; all its packets are "
                                        "there."_s;
        QTest::newRow("not all") << true << 1400
                                 << u"failed: "_s + off +
                                        u" The video of out.mkv holds 1400 packets instead of 1500."_s;
        QTest::newRow("not counted") << true << 0 << u"failed: "_s + off;
        QTest::newRow("forwards") << false << 1500 << u"failed: "_s + off;
    }

    void timesThatRunBackwardsAreBelievedByTheirCount()
    {
        QFETCH(bool, runsBackwards);
        QFETCH(int, muxed);
        Case one;
        one.output.streams[0].lastEnd = 55;
        if (runsBackwards)
            one.source.errors = {
                u"[matroska @ 0x1] Application provided invalid, non monotonically increasing dts"_s};
        one.figures.read.insert({0, 0}, {1500, 900000});
        if (muxed > 0)
            one.figures.muxed.insert({0, 0}, {muxed, 900000});
        QTEST(told(one.result()), "said");
    }

    void sumsAreCompared_data()
    {
        QTest::addColumn<double>("soundEnd"); // of the first film
        QTest::addColumn<double>("textEnd");  // the same
        QTest::addColumn<double>("end");      // of the output
        QTest::addColumn<QString>("said");
        const auto wrong = [](const QString &length) {
            return u"failed: The video of out.mkv lasts %1 instead of 2:00. The audio track of out.mkv lasts "
                   "%1 instead of 2:00."_s.arg(length);
        };
        QTest::newRow("both") << 60.0 << 50.0 << 120.0 << u"ok"_s;
        QTest::newRow("both, nearly") << 60.0 << 50.0 << 119.85 << u"ok"_s;
        QTest::newRow("the first film's sound ends early") << 40.0 << 50.0 << 120.0 << u"ok"_s;
        QTest::newRow("one of them") << 60.0 << 50.0 << 60.0 << wrong(u"1:00"_s);
        QTest::newRow("behind the first film's text") << 60.0 << 66.0 << 126.0 << u"ok"_s;
        QTest::newRow("beside the first film's text") << 60.0 << 66.0 << 120.0 << u"ok"_s;
        QTest::newRow("far behind the first film's text") << 60.0 << 66.0 << 127.0 << wrong(u"2:07"_s);
        QTest::newRow("the one with the text") << 60.0 << 66.0 << 66.0 << wrong(u"1:06"_s);
        QTest::newRow("behind a text in the middle of the picture")
            << 60.0 << 50.0 << 121.0 << wrong(u"2:01"_s);
    }

    /// The next film is put behind all of the one before, or behind all of it that is kept.
    void sumsAreCompared()
    {
        QFETCH(double, soundEnd);
        QFETCH(double, textEnd);
        QFETCH(double, end);
        QFETCH(QString, said);
        const QUrl second = QUrl::fromLocalFile(u"/films/b.mkv"_s);
        FilmFacts one = minute();
        FilmFacts other = one;
        one.streams[1].lastEnd = soundEnd;
        one.streams[2].lastEnd = textEnd;
        FilmFacts output = one;
        output.seconds = end;
        for (StreamFacts &found : output.streams)
            found.lastEnd = end;
        MeantOutput meant = meantOf(one);
        meant.extent = Extent::Sum;
        meant.sources = {sourceUrl, second};
        for (TrackFate fate : meantOf(other).tracks) {
            fate.source = second;
            meant.tracks.append(fate);
        }
        const CheckedOutput result =
            media::checkedOutputs({meant}, {{sourceUrl, one}, {second, other}, {outputUrl, output}}, {})
                .constFirst();
        QCOMPARE(told(result), said);
        QCOMPARE(result.output.tracks.at(4).outputIndex, 1);
    }

    /// What only the second film has begins behind all of the first one, or behind its picture.
    void aTrackOfTheSecondFilmBeginsBehindTheFirst_data()
    {
        QTest::addColumn<double>("start"); // of the output's second sound
        QTest::addColumn<QString>("said");
        QTest::newRow("behind the text") << 66.0 << u"ok"_s;
        QTest::newRow("behind the picture") << 60.0 << u"ok"_s;
        QTest::newRow("at the head")
            << 0.0
            << u"failed: The audio track 2 of out.mkv begins 60.00 s too early. The audio track 2 of out.mkv "
               "lasts 2:06 instead of 1:00."_s;
    }

    void aTrackOfTheSecondFilmBeginsBehindTheFirst()
    {
        QFETCH(double, start);
        QFETCH(QString, said);
        const QUrl second = QUrl::fromLocalFile(u"/films/b.mkv"_s);
        Case one;
        one.source.streams[2].lastEnd = 66;
        FilmFacts other = minute();
        other.streams << stream(3, u"audio"_s, u"ac3"_s, 0, 60);
        const double end = start == 60 ? 120 : 126;
        one.output.seconds = end;
        one.output.streams << stream(3, u"audio"_s, u"ac3"_s, start, end);
        for (StreamFacts &found : one.output.streams)
            found.lastEnd = end;
        one.meant.extent = Extent::Sum;
        one.meant.sources = {sourceUrl, second};
        for (TrackFate fate : meantOf(other).tracks) {
            fate.source = second;
            one.meant.tracks.append(fate);
        }
        QCOMPARE(
            told(media::checkedOutputs(
                     {one.meant}, {{sourceUrl, one.source}, {second, other}, {outputUrl, one.output}}, {})
                     .constFirst()),
            said);
    }

    void stretchesBeginAtKeyFrames_data()
    {
        QTest::addColumn<double>("from");
        QTest::addColumn<double>("to");
        QTest::addColumn<double>("length"); // of the output
        QTest::addColumn<QString>("said");
        QTest::newRow("on key frames") << 10.0 << 30.0 << 20.0 << u"ok"_s;
        QTest::newRow("the key frames behind") << 9.0 << 29.5 << 20.0 << u"ok"_s;
        QTest::newRow("to the end") << 50.0 << 100.0 << 10.0 << u"ok"_s;
        QTest::newRow("far from what was asked for")
            << 3.0 << 8.0 << 10.0
            << u"warnings: out.mkv holds 0:10 to 0:20 of the source; 0:03 to 0:08 was asked for."_s;
        QTest::newRow("short")
            << 10.0 << 30.0 << 15.0
            << u"failed: The video of out.mkv lasts 0:15 instead of 0:20. The audio track of out.mkv lasts "
               "0:15 instead of 0:20."_s;
    }

    void stretchesBeginAtKeyFrames()
    {
        QFETCH(double, from);
        QFETCH(double, to);
        QFETCH(double, length);
        QFETCH(QString, said);
        Case one;
        one.source.keyFrames = {0, 10, 20, 30, 40, 50};
        one.meant.extent = Extent::Stretch;
        one.meant.from = from;
        one.meant.to = to;
        one.output.seconds = length;
        for (StreamFacts &found : one.output.streams)
            found.lastEnd = length;
        QCOMPARE(told(one.result()), said);
    }

    void partsAreTheWholeTogether_data()
    {
        QTest::addColumn<double>("second");
        QTest::addColumn<QString>("said");
        QTest::newRow("all") << 40.0 << u"ok"_s;
        QTest::newRow("nearly") << 39.9 << u"ok"_s;
        QTest::newRow("less") << 30.0
                              << u"failed: The audio track 1 of the 2 parts lasts 0:50 instead of 1:00. The "
                                 "video of the 2 parts lasts 0:50 instead of 1:00."_s;
    }

    void partsAreTheWholeTogether()
    {
        QFETCH(double, second);
        QFETCH(QString, said);
        const QUrl secondUrl = QUrl::fromLocalFile(u"/films/out-002.mkv"_s);
        QList<MeantOutput> meant{meantOf(minute()), meantOf(minute())};
        meant[1].output = meant[1].file = secondUrl;
        QList<FilmFacts> films{minute(), minute()};
        for (int i = 0; i < 2; ++i) {
            meant[i].extent = Extent::Part;
            films[i].seconds = i == 0 ? 20 : second;
            for (StreamFacts &found : films[i].streams)
                found.lastEnd = films[i].seconds;
        }
        const auto results = media::checkedOutputs(
            meant, {{sourceUrl, minute()}, {outputUrl, films.at(0)}, {secondUrl, films.at(1)}}, {});
        QCOMPARE(told(results.at(0)), said);
        QCOMPARE(told(results.at(1)), said);
        QCOMPARE(results.at(1).output.tracks.at(0).proof,
                 said == u"ok"_s ? Proof::Lengths : Proof::NotProven);
    }

    void rawStreamsAreAsLongAsTheirPackets_data()
    {
        QTest::addColumn<int>("packets"); // in the output; 0: not known
        QTest::addColumn<int>("before");
        QTest::addColumn<QString>("said");
        QTest::addColumn<Proof>("proof");
        QTest::newRow("counted in both") << 2813 << 2813 << u"ok"_s << Proof::Packets;
        QTest::newRow("counted in one") << 2813 << 0 << u"ok"_s << Proof::Lengths;
        QTest::newRow("not counted") << 0 << 2813 << u"ok"_s << Proof::NotProven;
        QTest::newRow("fewer") << 2000 << 2813 << u"failed: out.mkv holds 2000 packets instead of 2813."_s
                               << Proof::NotProven;
        QTest::newRow("shorter") << 2000 << 0 << u"warnings: out.mkv lasts 0:43 instead of 1:00."_s
                                 << Proof::NotProven;
    }

    void rawStreamsAreAsLongAsTheirPackets()
    {
        QFETCH(int, packets);
        QFETCH(int, before);
        QFETCH(QString, said);
        QFETCH(Proof, proof);
        Case one;
        one.meant.isRaw = true;
        one.meant.tracks = {one.meant.tracks.at(1)};
        one.output.format = u"aac"_s;
        one.output.streams = {stream(0, u"audio"_s, u"aac"_s, 0, 0)};
        if (packets > 0)
            one.output.streams[0].packets = packets;
        if (before > 0)
            one.source.streams[1].packets = before;
        const CheckedOutput result = one.result();
        QCOMPARE(told(result), said);
        QCOMPARE(result.output.tracks.constFirst().proof, proof);
        QCOMPARE(result.output.tracks.constFirst().outputBytes, std::optional<qint64>(1000000));
    }

    void timesAreTold_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("0") << 0.0 << u"0:00"_s;
        QTest::newRow("rounded") << 359.98 << u"6:00"_s;
        QTest::newRow("ten minutes") << 600.0 << u"10:00"_s;
        QTest::newRow("an hour") << 3960.0 << u"1:06:00"_s;
        QTest::newRow("ten hours") << 36000.0 << u"10:00:00"_s;
        QTest::newRow("negative") << -0.02 << u"0:00"_s;
    }

    void timesAreTold()
    {
        QFETCH(double, seconds);
        QTEST(media::clockTime(seconds), "text");
    }
};

TESSARAY_TEST(FilmCheckTest)
#include "FilmCheckTest.moc"

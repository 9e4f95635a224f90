// Good work of every kind is told "ok" by the check of its output: films of each container, copied and
// re-encoded, that start late, with tracks that begin late or end early, with covers, chapters, fonts, few or
// odd frames, parts, joins and single tracks. The short form draws some of them.
#include "media/DeclaredBytes.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/jobs/CheckClips.h"
#include "support/jobs/CheckRun.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace support;
using media::Extent;

namespace {

struct Conversion
{
    QString name;
    QString from; ///< container of the source
    int start = 0;
    QString to;
    QString words;
    QString video; ///< what it is re-encoded into; absent: copied
    QString audio;
};

const QStringList allContainers{u"mkv"_s, u"mp4"_s, u"mov"_s, u"ts"_s,
                                u"mpg"_s, u"avi"_s, u"wmv"_s, u"flv"_s};

const QString copies = u"-map 0:v -vcodec copy -map 0:a -codec:a:0 copy"_s;
const QString encodes =
    u"-map 0:v -vcodec libx264 -preset ultrafast -b:v 300k -map 0:a -codec:a:0 aac -strict "
    "experimental -ab:a:0 128k -ac:a:0 2 -ar:a:0 48000"_s;

QList<Conversion> conversions()
{
    QList<Conversion> all;
    for (const QString &from : allContainers) {
        for (const int start : {0, 5}) {
            if (start > 0 && (from == u"avi"_s || from == u"wmv"_s || from == u"flv"_s))
                continue;
            for (const QString &to : {u"mkv"_s, u"mp4"_s}) {
                const QString name = u"%1 %2 to %3 "_s.arg(from).arg(start).arg(to);
                const bool canCopy = to == u"mkv"_s || from != u"wmv"_s;
                const QString fix = from == u"avi"_s || from == u"mpg"_s ? u"-fflags +genpts "_s : QString();
                if (canCopy)
                    all.append({name + u"copy"_s, from, start, to, fix + u"-i $0 "_s + copies, {}, {}});
                all.append(
                    {name + u"encode"_s, from, start, to, fix + u"-i $0 "_s + encodes, u"h264"_s, u"aac"_s});
            }
            all.append(
                {u"%1 %2 to avi encode"_s.arg(from).arg(start), from, start, u"avi"_s,
                 u"-i $0 -map 0:v -vcodec mpeg4 -b:v 300k -map 0:a -codec:a:0 libmp3lame -ab:a:0 128k"_s,
                 u"mpeg4"_s, u"mp3"_s});
        }
    }
    return all;
}

/// Something that is done with a film that is made for it. "$m" in the first line is the minute in Matroska,
/// "$t" the one with a text; "$0" is the film, "$1" the output.
struct Work
{
    QString name;
    QString film; ///< its name
    QString making;
    QString line;
    QString output;
    QString video; ///< what it is re-encoded into; absent: copied
    QString audio;
    QString text;
    QList<int> kept; ///< streams; empty: all
    bool isRaw = false;
};

const QString toMkv = u"ffmpeg -v verbose -i $0 -map 0 -c copy -f matroska $1"_s;
const QString toMp4 = u"ffmpeg -v verbose -i $0 -map 0 -c copy -movflags faststart -f mp4 $1"_s;
const QString toEncoded = u"ffmpeg -v verbose -i $0 "_s + encodes + u" -f mp4 $1"_s;
const QString toRemuxed = u"mkvmerge -o $1 --compression -1:none $0"_s;

/// Each film through every way that takes it.
QList<Work> waysOf(const QString &name, const QString &film, const QString &making, const QString &ways)
{
    QList<Work> all;
    if (ways.contains(u'k'))
        all.append({name + u" to mkv"_s, film, making, toMkv, u"out.mkv"_s, {}, {}, {}, {}});
    if (ways.contains(u'4'))
        all.append({name + u" to mp4"_s, film, making, toMp4, u"out.mp4"_s, {}, {}, {}, {}});
    if (ways.contains(u'e'))
        all.append(
            {name + u" encoded"_s, film, making, toEncoded, u"out.mp4"_s, u"h264"_s, u"aac"_s, {}, {0, 1}});
    if (ways.contains(u'r'))
        all.append({name + u" remuxed"_s, film, making, toRemuxed, u"out.mkv"_s, {}, {}, {}, {}});
    return all;
}

const QString late = u"ffmpeg -i $m -itsoffset %1 -i $m -map 0:v -map 1:a -c copy $0"_s;
const QString early = u"ffmpeg -i $m -t 20 -i $m -map 0:v -map 1:a -c copy $0"_s;

QList<Work> oddFilms()
{
    QList<Work> all;
    for (const QString &film : {u"a.mkv"_s, u"a.mp4"_s}) {
        all += waysOf(u"sound 3 s late in "_s + film, film, late.arg(3), u"k4er"_s);
        all += waysOf(u"sound ends early in "_s + film, film, early, u"k4er"_s);
        all += waysOf(u"picture ends early in "_s + film, film,
                      u"ffmpeg -t 20 -i $m -i $m -map 0:v -map 1:a -c copy $0"_s, u"k4er"_s);
        all += waysOf(u"one frame in "_s + film, film, u"ffmpeg -i $m -map 0:v -frames:v 1 -c copy $0"_s,
                      u"k4r"_s);
        all += waysOf(u"picture alone in "_s + film, film, u"ffmpeg -i $m -map 0:v -c copy $0"_s, u"k4r"_s);
        all += waysOf(u"sound alone in "_s + film, film, u"ffmpeg -i $m -map 0:a -c copy $0"_s, u"k4r"_s);
        all += waysOf(
            u"odd rates in "_s + film, film,
            u"ffmpeg -i $m -map 0 -vf select='not(mod(n\\,7))+lt(mod(n\\,90)\\,20)' -vsync vfr -c:v libx264 "
            "-preset ultrafast -c:a copy $0"_s,
            u"k4er"_s);
        all += waysOf(u"ten hours in "_s + film, film,
                      u"ffmpeg -f lavfi -i color=s=16x16:r=1:d=36000 -c:v libx264 -preset ultrafast $0"_s,
                      u"k4r"_s);
        all +=
            waysOf(u"a title in "_s + film, film,
                   u"ffmpeg -i $m -map 0 -c copy -metadata title=}\"File'ended,prematurely: $0"_s, u"k4r"_s);
        all += waysOf(u"ac3, two sounds in "_s + film, film,
                      u"ffmpeg -i $m -map 0 -map 0:a -c copy -c:a:1 ac3 -metadata:s:a:1 language=fre $0"_s,
                      u"k4r"_s);
    }
    all += waysOf(u"text"_s, u"a.mkv"_s, u"mkvmerge -o $0 $t"_s, u"kr"_s);
    all += waysOf(u"text by ffmpeg"_s, u"a.mkv"_s, u"ffmpeg -i $t -map 0 -c copy $0"_s, u"kr"_s);
    all += waysOf(u"mov_text"_s, u"a.mp4"_s, u"ffmpeg -i $t -map 0 -c copy -c:s mov_text $0"_s, u"4"_s);
    all += waysOf(u"wave"_s, u"a.mkv"_s, u"ffmpeg -i $m -map 0 -c:v copy -c:a pcm_s16le $0"_s, u"kr"_s);
    all += waysOf(u"flac"_s, u"a.mkv"_s, u"ffmpeg -i $m -map 0 -c:v copy -c:a flac $0"_s, u"kr"_s);
    all += waysOf(u"opus"_s, u"a.mkv"_s, u"ffmpeg -i $m -map 0 -c:v copy -c:a libopus $0"_s, u"kr"_s);
    all += waysOf(u"vorbis"_s, u"a.mkv"_s, u"ffmpeg -i $m -map 0 -c:v copy -c:a libvorbis $0"_s, u"kr"_s);
    all += waysOf(u"hevc"_s, u"a.mkv"_s, u"ffmpeg -i $m -map 0 -c:v libx265 -preset ultrafast -c:a copy $0"_s,
                  u"k4r"_s);
    all += waysOf(u"a cut out of the middle"_s, u"a.mp4"_s, u"ffmpeg -ss 11.3 -i $m -t 45 -c copy $0"_s,
                  u"k4er"_s);
    all += waysOf(u"no length"_s, u"a.mkv"_s, u"ffmpeg -i $m -c copy -live 1 -f matroska $0"_s, u"k4er"_s);
    all += waysOf(u"fragments"_s, u"a.mp4"_s, u"ffmpeg -i $m -c copy -movflags frag_keyframe+empty_moov $0"_s,
                  u"k4er"_s);
    const QString packed = u"ffmpeg -i $m -map 0 -c:v mpeg4 -bf 2 -vtag xvid -c:a libmp3lame $0"_s;
    const QString generated = u"ffmpeg -fflags +genpts -i $0 -map 0 -c copy $1"_s;
    all.append({u"B-frames in avi to mkv"_s, u"a.avi"_s, packed, generated, u"out.mkv"_s, {}, {}, {}, {}});
    all.append({u"B-frames in avi to mp4"_s, u"a.avi"_s, packed, generated, u"out.mp4"_s, {}, {}, {}, {}});
    all += waysOf(u"B-frames in avi"_s, u"a.avi"_s, packed, u"er"_s);
    return all;
}

QList<Work> singleTracks()
{
    const QString plain = u"ffmpeg -i $t -map 0 -c copy $0"_s;
    const QString merged = u"mkvmerge -o $0 $t"_s;
    const QString mp4 = u"ffmpeg -i $m -map 0 -c copy $0"_s;
    const QString ac3 = u"ffmpeg -i $m -map 0:a -c:a ac3 $0"_s;
    const QString mp3 = u"ffmpeg -i $m -map 0:a -c:a libmp3lame $0"_s;
    const QString take = u"ffmpeg -v verbose -i $0 -map 0:"_s;
    return {
        {u"h264 of mkv"_s,
         u"a.mkv"_s,
         plain,
         take + u"0 -vcodec copy -bsf:v h264_mp4toannexb -an -sn $1"_s,
         u"out.h264"_s,
         {},
         {},
         {},
         {0},
         true},
        {u"h264 of mkvmerge's"_s,
         u"a.mkv"_s,
         merged,
         u"mkvextract tracks $0 0:$1"_s,
         u"out.h264"_s,
         {},
         {},
         {},
         {0},
         true},
        {u"aac of mkv"_s,
         u"a.mkv"_s,
         plain,
         take + u"1 -acodec copy -vn -sn $1"_s,
         u"out.aac"_s,
         {},
         {},
         {},
         {1},
         true},
        {u"aac of mkvmerge's"_s,
         u"a.mkv"_s,
         merged,
         u"mkvextract tracks $0 1:$1"_s,
         u"out.aac"_s,
         {},
         {},
         {},
         {1},
         true},
        {u"aac of mp4"_s,
         u"a.mp4"_s,
         mp4,
         u"ffmpeg -i $0 -map 0:1 -acodec copy -vn -sn $1"_s,
         u"out.aac"_s,
         {},
         {},
         {},
         {1},
         true},
        {u"ac3"_s,
         u"a.mka"_s,
         ac3,
         take + u"0 -acodec copy -vn -sn $1"_s,
         u"out.ac3"_s,
         {},
         {},
         {},
         {0},
         true},
        {u"ac3, not counted"_s,
         u"a.mka"_s,
         ac3,
         u"ffmpeg -i $0 -map 0:0 -acodec copy $1"_s,
         u"out.ac3"_s,
         {},
         {},
         {},
         {0},
         true},
        {u"mp3"_s,
         u"a.mka"_s,
         mp3,
         take + u"0 -acodec copy -vn -sn $1"_s,
         u"out.mp3"_s,
         {},
         {},
         {},
         {0},
         true},
        {u"text"_s, u"a.mkv"_s, plain, take + u"2 $1"_s, u"out.srt"_s, {}, {}, {}, {2}},
        {u"text as ass"_s, u"a.mkv"_s, plain, take + u"2 $1"_s, u"out.ass"_s, {}, {}, u"ass"_s, {2}},
        {u"wave"_s,
         u"a.mka"_s,
         u"ffmpeg -i $m -map 0:a -c:a pcm_s16le $0"_s,
         take + u"0 -acodec copy $1"_s,
         u"out.wav"_s,
         {},
         {},
         {},
         {0}},
        {u"vorbis"_s,
         u"a.mka"_s,
         u"ffmpeg -i $m -map 0:a -c:a libvorbis $0"_s,
         take + u"0 -acodec copy $1"_s,
         u"out.ogg"_s,
         {},
         {},
         {},
         {0}},
        {u"flac"_s,
         u"a.mka"_s,
         u"ffmpeg -i $m -map 0:a -c:a flac $0"_s,
         take + u"0 -acodec copy $1"_s,
         u"out.flac"_s,
         {},
         {},
         {},
         {0},
         true},
    };
}

} // namespace

Q_DECLARE_METATYPE(Work)

class SoundWorkCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void conversionsAreOk_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<int>("start");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("video");
        QTest::addColumn<QString>("audio");
        for (const Conversion &one : drawn(conversions(), 6))
            QTest::addRow("%s", qPrintable(one.name))
                << one.from << one.start << one.to << one.words << one.video << one.audio;
    }

    void conversionsAreOk()
    {
        QFETCH(QString, from);
        QFETCH(int, start);
        QFETCH(QString, to);
        QFETCH(QString, words);
        QFETCH(QString, video);
        QFETCH(QString, audio);
        CheckRun run;
        const QString source = minuteOf(from, start);
        const QString output = run.path(u"out."_s + to);
        const QString log = run.run(u"ffmpeg "_s + words + u" $1"_s, {source, output});
        media::MeantOutput meant = CheckRun::meant({source}, output);
        reencode(meant, u"video"_s, video);
        reencode(meant, u"audio"_s, audio);
        QCOMPARE(told(run.check(meant, log)), u"ok"_s);
    }

    void oddFilmsAreOk_data() { rowsFor(oddFilms(), 5); }
    void oddFilmsAreOk() { workIsOk(); }
    void singleTracksAreOk_data() { rowsFor(singleTracks(), 3); }
    void singleTracksAreOk() { workIsOk(); }

    void partsAreOk_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("said");
        QTest::newRow("by size") << u"200k"_s << u"ok"_s;
        QTest::newRow("by duration") << u"17s"_s << u"ok"_s;
    }

    void partsAreOk()
    {
        QFETCH(QString, word);
        QFETCH(QString, said);
        CheckRun run;
        const QString source = minuteWithText();
        const QString output = run.path(u"out.mkv"_s);
        run.run(u"mkvmerge -o $1 --split %1 --compression -1:none $0"_s.arg(word), {source, output});
        QList<media::MeantOutput> parts;
        for (const QString &name : QDir(run.path()).entryList({u"out-*.mkv"_s}, QDir::Files, QDir::Name))
            parts.append(CheckRun::meant({source}, run.path(name), Extent::Part));
        QVERIFY(parts.size() > 2);
        for (const auto &result : run.check(parts))
            QCOMPARE(told(result), said);
        parts.removeLast();
        for (const auto &result : run.check(parts))
            QVERIFY2(told(result).startsWith(u"failed: "_s), qPrintable(told(result)));
    }

    /// There is a key frame every two seconds.
    void stretchesAreOk_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("said");
        QTest::newRow("from the start") << 0 << 10 << u"ok"_s;
        QTest::newRow("inside") << 11 << 31 << u"ok"_s;
        QTest::newRow("to the end") << 50 << 90 << u"ok"_s;
        QTest::newRow("short") << 20 << 21 << u"ok"_s;
    }

    void stretchesAreOk()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QString, said);
        CheckRun run;
        const QString source = minuteWithText();
        const QString output = run.path(u"out.mkv"_s);
        const auto clock = [](int seconds) {
            return u"00:%1:%2"_s.arg(seconds / 60, 2, 10, QChar(u'0')).arg(seconds % 60, 2, 10, QChar(u'0'));
        };
        run.run(u"mkvmerge -o $1 --split parts:%1-%2 --compression -1:none $0"_s.arg(clock(from), clock(to)),
                {source, output});
        media::MeantOutput meant = CheckRun::meant({source}, output, Extent::Stretch);
        meant.from = from;
        meant.to = to;
        QCOMPARE(told(run.check(meant)), said);
    }

    void joinsAreOk_data()
    {
        QTest::addColumn<QString>("container");
        QTest::addColumn<int>("count");
        QTest::newRow("mkv") << u"mkv"_s << 2;
        QTest::newRow("three mkv") << u"mkv"_s << 3;
        QTest::newRow("mp4") << u"mp4"_s << 2;
        QTest::newRow("mov") << u"mov"_s << 2;
        QTest::newRow("ts") << u"ts"_s << 2;
        QTest::newRow("avi") << u"avi"_s << 2;
    }

    void joinsAreOk()
    {
        QFETCH(QString, container);
        QFETCH(int, count);
        CheckRun run;
        QStringList sources;
        QByteArray list;
        for (int i = 0; i < count; ++i) {
            sources.append(run.path(u"%1.%2"_s.arg(i).arg(container)));
            QVERIFY(QFile::copy(minuteOf(container), sources.constLast()));
            list += "file '" + sources.constLast().toUtf8() + "'\n";
        }
        const QString output = run.path(u"out."_s + container);
        writeContent(run.path(u"list"_s), list);
        const QString log = container == u"mkv"_s
                                ? run.run(u"mkvmerge -o $0 "_s + sources.join(u" + "_s), {output})
                                : run.run(u"ffmpeg -f concat -safe 0 -i $0 -map 0 -c copy $1"_s,
                                          {run.path(u"list"_s), output});
        const auto result = run.check(CheckRun::meant(sources, output, Extent::Sum), log);
        QCOMPARE(told(result), u"ok"_s);
        QVERIFY(std::abs(*result.seconds - 60.0 * count) < 1);
    }

    /// What is read of a header without a tool is what ffprobe says.
    void lengthsAreTold_data()
    {
        QTest::addColumn<QString>("film");
        QTest::newRow("ffmpeg's mkv") << minuteOf(u"mkv"_s);
        QTest::newRow("mkvmerge's mkv") << minuteWithText();
        QTest::newRow("mkv from 5") << minuteOf(u"mkv"_s, 5);
        QTest::newRow("mp4, the index in front") << minuteOf(u"mp4"_s);
        QTest::newRow("mp4, the index behind") << textMp4();
        QTest::newRow("mov") << minuteOf(u"mov"_s);
    }

    void lengthsAreTold()
    {
        QFETCH(QString, film);
        QProcess ffprobe;
        ffprobe.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s, u"format=duration"_s, u"-of"_s,
                                     u"csv=p=0"_s, film});
        QVERIFY(ffprobe.waitForFinished(60000));
        const auto told = media::toldSecondsOf(QUrl::fromLocalFile(film));
        QVERIFY(told);
        QVERIFY(std::abs(*told - ffprobe.readAllStandardOutput().trimmed().toDouble()) < 0.01);
    }

    void remuxesAreOk_data()
    {
        QTest::addColumn<QString>("source");
        for (const QString &from : allContainers) {
            if (from == u"wmv"_s)
                continue;
            QTest::addRow("%s", qPrintable(from)) << minuteOf(from);
            if (from != u"avi"_s && from != u"flv"_s)
                QTest::addRow("%s from 5", qPrintable(from)) << minuteOf(from, 5);
        }
        QTest::newRow("text") << minuteWithText();
        QTest::newRow("full") << fullMkv();
        QTest::newRow("pictures") << pgsMkv();
        QTest::newRow("vobsub") << vobsubMkv();
        QTest::newRow("cover") << pngCoverMkv();
        QTest::newRow("two videos") << twoVideosMkv();
        QTest::newRow("many") << manyTracksMkv();
        QTest::newRow("odd avi") << oddAvi();
        QTest::newRow("header removal") << headerRemovalMkv();
    }

    void remuxesAreOk()
    {
        QFETCH(QString, source);
        CheckRun run;
        const QString output = run.path(u"out.mkv"_s);
        const QString log = run.run(u"mkvmerge -o $1 --compression -1:none $0"_s, {source, output});
        QCOMPARE(told(run.check(CheckRun::meant({source}, output), log)), u"ok"_s);
    }

private:
    static void rowsFor(const QList<Work> &all, qsizetype count)
    {
        QTest::addColumn<Work>("work");
        for (const Work &one : drawn(all, count))
            QTest::addRow("%s", qPrintable(one.name)) << one;
    }

    static void workIsOk()
    {
        QFETCH(Work, work);
        CheckRun run;
        const QString film = run.path(work.film);
        QString making = work.making;
        making.replace(u"$m"_s, minuteOf(u"mkv"_s)).replace(u"$t"_s, minuteWithText());
        run.run(making, {film});
        const QString output = run.path(work.output);
        const QString log = run.run(work.line, {film, output});
        media::MeantOutput meant = CheckRun::meant({film}, output);
        meant.isRaw = work.isRaw;
        if (!work.kept.isEmpty())
            keepOnly(meant, work.kept);
        reencode(meant, u"video"_s, work.video);
        reencode(meant, u"audio"_s, work.audio);
        reencode(meant, u"subtitle"_s, work.text);
        QCOMPARE(told(run.check(meant, log)), u"ok"_s);
    }
};

TESSARAY_TEST(SoundWorkCheckTest)
#include "SoundWorkCheckTest.moc"

// Names of files and titles in them come from strangers. Sixty bad names, each with bad titles, go through
// probing, converting and extracting with the real tools. Every program that is started is recorded and
// compared with what should have been; nothing else is written, and the titles arrive to the letter. The
// short form draws some of the names.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/HostileFilms.h"
#include "support/Seeds.h"
#include "support/StartedPrograms.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;
using namespace support::started;
using support::asRead;
using support::CliFixture;
using support::Film;
using support::Started;

namespace {

/// The longest name, and those of every kind that a converter or a filter could trip over.
bool isConvertedInTwoPasses(const Film &film)
{
    return film.stem.size() > 200 || film.stem == u"-rf"_s || film.stem == u"--help"_s ||
           film.stem == u"Füße & 映画 🎬"_s || film.stem == u"$HOME $$ $! $? $0"_s || film.stem == u"~"_s;
}

/// Those are never left out.
QList<Film> drawnFilms()
{
    QList<Film> films = support::hostileFilms();
    QList<Film> always;
    std::copy_if(films.begin(), films.end(), std::back_inserter(always), isConvertedInTwoPasses);
    films.removeIf(isConvertedInTwoPasses);
    return always + support::drawn(films, 8);
}

} // namespace

class HostileNamesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void namesAreManyAndBad();
    void aNameReadAsSyntaxWouldBeSeen();
    void aCheckOfAnotherFormWouldBeSeen_data();
    void aCheckOfAnotherFormWouldBeSeen();
    void probing();
    void converting();
    void extracting();
    void burning();
    void convertingInTwoPasses();
    void cleanupTestCase();

private:
    /// A part of the films in a home of their own, so that the parts can be worked on at the same time.
    struct Lane
    {
        CliFixture cli;
        QList<Film> films;
        QStringList names; ///< what should be in the folder
        CliFixture::Run run;
    };

    void makeFilm(Lane &lane, const Film &film);
    void runEverywhere(const QStringList &words, const std::function<bool(const Film &)> &takes = {});
    Started startedIn(const Lane &lane, int &polls) const;
    void compareStarted(const Lane &lane, const Started &expected, const QStringList &checked) const;
    void compareNames(const Lane &lane) const;
    static QString path(const Lane &lane, const Film &film) { return lane.cli.media(film.stem + u".mkv"_s); }
    static QList<Film> chosen(const Lane &lane, const std::function<bool(const Film &)> &takes);

    std::vector<std::unique_ptr<Lane>> m_lanes;
};

void HostileNamesTest::initTestCase()
{
    m_lanes = support::lanesWith<Lane>(drawnFilms(),
                                       [this](Lane &lane, const Film &film) { makeFilm(lane, film); });
}

void HostileNamesTest::makeFilm(Lane &lane, const Film &film)
{
    const QString clip = support::clip(u"hostile.mkv"_s, [](const QString &made) {
        const QString words = made + u".srt"_s;
        support::writeContent(words, "1\n00:00:00,000 --> 00:00:00,900\nHello\n\n");
        support::runProgram(
            u"ffmpeg"_s,
            u"-nostdin -y -loglevel error -f lavfi -i color=black:s=320x240:r=25:d=1 -f lavfi -i "
            "sine=d=1:r=48000 -i WORDS -map 0 -map 1 -map 2 -c:v libx264 -preset ultrafast -ac 2 "
            "-c:a aac -c:s srt OUT"_s.split(u' ')
                .replaceInStrings(u"WORDS"_s, words)
                .replaceInStrings(u"OUT"_s, made));
        QFile::remove(words);
    });
    const QString made = lane.cli.scratch().path(u"made.mkv"_s);
    QStringList words{u"-q"_s, u"-o"_s, made};
    for (const auto &track : {u"0:"_s, u"1:"_s, u"2:"_s})
        words << u"--language"_s << track + u"eng"_s << u"--track-name"_s << track + film.title;
    support::runProgram(u"mkvmerge"_s, words << clip);
    QVERIFY(QFile::rename(made, path(lane, film)));
    lane.films.append(film);
    lane.names.append(film.stem + u".mkv"_s);
}

/// The same command in every lane at the same time, with the films named by their bare names.
void HostileNamesTest::runEverywhere(const QStringList &words, const std::function<bool(const Film &)> &takes)
{
    std::vector<std::pair<Lane *, std::unique_ptr<QProcess>>> running;
    for (const auto &lane : m_lanes) {
        lane->cli.forgetRecorded();
        lane->run = {};
        QStringList line = words + QStringList{u"--json"_s, u"--"_s};
        for (const Film &film : chosen(*lane, takes))
            line.append(film.stem + u".mkv"_s);
        if (!chosen(*lane, takes).isEmpty())
            running.emplace_back(lane.get(), lane->cli.start(line));
    }
    for (auto &[lane, process] : running)
        lane->run = CliFixture::outcomeOf(*process);
}

QList<Film> HostileNamesTest::chosen(const Lane &lane, const std::function<bool(const Film &)> &takes)
{
    QList<Film> taken;
    std::copy_if(lane.films.begin(), lane.films.end(), std::back_inserter(taken),
                 [&](const Film &film) { return !takes || takes(film); });
    return taken;
}

/// What was started, sorted; folders for temporary files get one name, and looks at a process are counted.
Started HostileNamesTest::startedIn(const Lane &lane, int &polls) const
{
    static const QRegularExpression temporary(u"tessaray-\\w{6}/job\\d+"_s);
    static const QRegularExpression poll(u"^(ps\\|-p\\|\\d+|grep\\|\\d+|awk\\|\\{print \\$1;\\})$"_s);
    Started runs;
    for (const QByteArrayList &run : lane.cli.recorded()) {
        if (poll.match(QString::fromUtf8(run.join('|'))).hasMatch()) {
            ++polls;
            continue;
        }
        QByteArrayList words;
        for (const QByteArray &word : run)
            words.append(QString::fromUtf8(word).replace(temporary, u"TEMPORARY"_s).toUtf8());
        runs.append(words);
    }
    std::sort(runs.begin(), runs.end());
    return runs;
}

/// Beside the expected runs the films of that list are checked, and no others.
void HostileNamesTest::compareStarted(const Lane &lane, const Started &expected,
                                      const QStringList &checked) const
{
    int polls = 0;
    const QString found = difference(startedIn(lane, polls), expected, checked);
    QVERIFY2(found.isNull(), qPrintable(found));
    QCOMPARE(polls % 3, 0);
}

/// The working folder holds what it should, and no other folder has changed.
void HostileNamesTest::compareNames(const Lane &lane) const
{
    QStringList names = lane.names;
    QStringList found = lane.cli.mediaNames();
    names.sort();
    found.sort();
    QCOMPARE(found, names);
    const auto everything = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;
    const auto entries = [&](const QString &folder) {
        return QDir(lane.cli.scratch().path(folder)).entryList(everything, QDir::Name);
    };
    QCOMPARE(entries(u"app"_s), QStringList({u"Resources"_s, u"bin"_s})); // where tools run
    QCOMPARE(entries(u"app/bin"_s), QStringList({u"tessaray-cli"_s}));
    QStringList atHome = entries(u"home"_s);
    atHome.removeOne(u".fontconfig"_s); // the cache of the fonts that text is drawn with
    QVERIFY2(atHome.isEmpty(), qPrintable(atHome.join(u' ')));
    QVERIFY2(lane.cli.temporaryNames().isEmpty(), qPrintable(lane.cli.temporaryNames().join(u' ')));
}

void HostileNamesTest::namesAreManyAndBad()
{
    QSet<QString> stems;
    QString letters;
    for (const Film &film : support::hostileFilms()) {
        stems.insert(film.stem);
        letters += film.stem;
        QVERIFY(QString(film.stem + u".mkv"_s).toUtf8().size() <= 255);
    }
    QCOMPARE(stems.size(), 60);
    for (const QChar c : u"'\"`$\\&|<>*?~!#;()[]{}%@:,=-\n\r\t .ü映"_s)
        QVERIFY2(letters.contains(c), qPrintable(QString(c)));
}

void HostileNamesTest::aNameReadAsSyntaxWouldBeSeen()
{
    const Lane &lane = *m_lanes.front();
    lane.cli.forgetRecorded();
    QProcess shell;
    shell.setProcessEnvironment(lane.cli.environment());
    shell.setWorkingDirectory(lane.cli.media());
    shell.start(u"/bin/sh"_s, {u"-c"_s, u": \"`touch X`.mkv\""_s});
    QVERIFY(shell.waitForFinished());
    int polls = 0;
    QCOMPARE(startedIn(lane, polls), Started({{"touch", "X"}}));
    QVERIFY(QFile::remove(lane.cli.media(u"X"_s)));
}

/// What is different from a conversion whose two films are checked, by words.
void HostileNamesTest::aCheckOfAnotherFormWouldBeSeen_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<bool>("isMeant");
    const auto row = [](const char *name, const QString &before, const QString &after, bool isMeant = false) {
        QTest::newRow(name) << before << after << isMeant;
    };
    const QString none;
    row("as meant", u"SOURCE"_s, u"SOURCE"_s, true);
    row("packets alone", u"OUTPUT"_s, u"OUTPUT\nSTRETCH /f/a.mkv"_s, true);
    row("a look twice", u"SOURCE"_s, u"SOURCE\nSOURCE"_s);
    row("no look at the source", u"SOURCE"_s, none);
    row("no look at the output", u"OUTPUT"_s, none);
    row("another film", u"OUTPUT"_s, u"OUTPUT\nSTRETCH /f/b.mkv"_s);
    row("a file that no tool wrote", u"OUTPUT"_s, u"OUTPUT\nSTRETCH /f/.tessaray-k3x9ab/2.mkv"_s);
    row("a part that is none", u"OUTPUT"_s, u"OUTPUT\nSTRETCH /f/.tessaray-k3x9ab/1-001.mkv"_s);
    row("an option more", u" -of json"_s, u" -report -of json"_s);
    row("an option less", u" -show_chapters"_s, none);
    row("another place", u"35.000%+#20000"_s, u"0%+9"_s);
    row("a word behind the film", u"SOURCE"_s, u"SOURCE /f/a.mkv"_s);
    row("another program", u"ffprobe"_s, u"ffplay"_s);
    row("a work folder elsewhere", u"/f/.tess"_s, u"/g/.tess"_s);
    row("no name of a work folder", u"-k3x9ab"_s, u"-K3"_s);
    row("no plain name", u"/1.mkv"_s, u"/a.mkv"_s);
    row("another extension", u"/1.mkv"_s, u"/1.m4v"_s);
}

void HostileNamesTest::aCheckOfAnotherFormWouldBeSeen()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(bool, isMeant);
    const QString packets = u"-show_entries packet=stream_index,pts_time,dts_time,duration_time,size,flags"_s;
    const QString survey = u"ffprobe -v error -show_format -show_streams -show_chapters -show_data_hash md5 "
                           "-read_intervals PARTS PACKETS -of json -i "_s;
    QString recorded = u"ffmpeg -i /f/a.mkv -y /f/.tessaray-k3x9ab/1.mkv\nSOURCE\nOUTPUT"_s;
    recorded.replace(before, after); // of the words that stand for a run
    recorded.replace(u"SOURCE"_s, QString(survey).replace(u"PARTS"_s, u"%+#60,4.000%5.500,35.000%+#20000"_s) +
                                      u"/f/a.mkv"_s);
    recorded.replace(u"OUTPUT"_s,
                     QString(survey).replace(u"PARTS"_s, u"%+#20000"_s) + u"/f/.tessaray-k3x9ab/1.mkv"_s);
    recorded.replace(u"STRETCH"_s, u"ffprobe -v error -read_intervals 0.000%15.000 PACKETS -of csv=p=0 -i"_s);
    recorded.replace(u"PACKETS"_s, packets);
    recorded.replace(before, after); // of their own words
    Started runs;
    for (const QString &line : recorded.split(u'\n', Qt::SkipEmptyParts))
        runs.append(line.toUtf8().split(' '));
    const QString found = difference(runs, ffmpeg({u"-i"_s, u"/f/a.mkv"_s, u"-y"_s, u"/f/out.mkv"_s}),
                                     {u"/f/a.mkv"_s, u"/f/out.mkv"_s});
    QVERIFY2(found.isNull() == isMeant, qPrintable(found));
}

void HostileNamesTest::probing()
{
    runEverywhere({u"probe"_s});
    for (const auto &lane : m_lanes) {
        QVERIFY2(lane->run.status == 0, lane->run.error.constData());
        const auto objects = lane->run.objects();
        QCOMPARE(objects.size(), lane->films.size());
        Started expected;
        for (qsizetype i = 0; i < objects.size(); ++i) {
            const Film &film = lane->films.at(i);
            const QJsonObject file = objects.at(i).value(u"file"_s).toObject();
            QCOMPARE(file.value(u"theFilePath"_s).toString(), path(*lane, film));
            QCOMPARE(file.value(u"theFileName"_s).toString(), film.stem + u".mkv"_s);
            const QJsonArray tracks = objects.at(i).value(u"tracks"_s).toArray();
            QCOMPARE(tracks.size(), 3);
            for (const QJsonValue &track : tracks)
                QCOMPARE(track.toObject().value(u"trackTitle"_s).toString(), asRead(film.title));
            expected += probeOf(path(*lane, film));
        }
        compareStarted(*lane, expected, {});
        compareNames(*lane);
    }
}

void HostileNamesTest::converting()
{
    // An MKV beside an MKV gets a number, for which the longest name has no room.
    const auto fits = [](const Film &film) { return film.stem.size() < 200; };
    runEverywhere({u"convert"_s, u"--kind"_s, u"mkv"_s, u"--no-keep-logs"_s}, fits);
    for (const auto &lane : m_lanes) {
        QVERIFY2(lane->run.status == 0, lane->run.error.constData());
        Started expected;
        QStringList checked;
        for (const Film &film : chosen(*lane, fits)) {
            const QString source = path(*lane, film);
            const QString output = lane->cli.media(film.stem + u" (2).mkv"_s);
            const QString title = asRead(film.title);
            const QStringList list =
                QStringList{u"-i"_s, source, u"-map"_s, u"0:0"_s, u"-vcodec"_s, u"copy"_s} +
                tags(u"v"_s, title) + QStringList{u"-map"_s, u"0:1"_s, u"-codec:a:0"_s, u"copy"_s} +
                tags(u"a:0"_s, title) + QStringList{u"-map"_s, u"0:2"_s, u"-codec:s:0"_s, u"copy"_s} +
                tags(u"s:0"_s, title) + QStringList{u"-f"_s, u"matroska"_s, u"-y"_s, output};
            expected += probeOf(source) + ffmpeg(list) + durationOf(source);
            checked << source << output;
            lane->names.append(film.stem + u" (2).mkv"_s);
            const auto streams = support::streamsOf(output);
            QCOMPARE(streams.size(), 3);
            for (const QJsonObject &stream : streams)
                QCOMPARE(stream.value(u"tags"_s).toObject().value(u"title"_s).toString(), title);
        }
        compareStarted(*lane, expected, checked);
        compareNames(*lane);
    }
}

void HostileNamesTest::extracting()
{
    runEverywhere({u"extract"_s, u"--no-keep-logs"_s});
    for (const auto &lane : m_lanes) {
        Started expected;
        QStringList checked;
        bool holdsLongest = false;
        for (const Film &film : std::as_const(lane->films)) {
            const QString source = path(*lane, film);
            const QStringList outputs{source + u".stream0.h264"_s, source + u".stream1.aac"_s,
                                      source + u".stream2.srt"_s};
            const QList<QStringList> words{
                {u"-vcodec"_s, u"copy"_s, u"-bsf:v"_s, u"h264_mp4toannexb"_s, u"-an"_s, u"-sn"_s},
                {u"-acodec"_s, u"copy"_s, u"-vn"_s, u"-sn"_s},
                {}};
            expected += probeOf(source);
            const bool isLongest = film.stem.size() > 200;
            holdsLongest = holdsLongest || isLongest;
            // There is no room for longer names, so nothing is started.
            expected += isLongest ? Started() : durationOf(source);
            for (qsizetype track = 0; track < 3 && !isLongest; ++track) {
                expected += ffmpeg(QStringList{u"-i"_s, source, u"-map"_s, u"0:%1"_s.arg(track)} +
                                   words.at(track) + QStringList{u"-y"_s, outputs.at(track)});
                lane->names.append(QFileInfo(outputs.at(track)).fileName());
            }
            if (!isLongest) {
                checked << source << outputs;
                QCOMPARE(support::codecsOf(outputs.at(0)), u"h264"_s);
                QCOMPARE(support::codecsOf(outputs.at(1)), u"aac"_s);
                QCOMPARE(support::codecsOf(outputs.at(2)), u"subrip"_s);
            }
        }
        QVERIFY2(lane->run.status == (holdsLongest ? 2 : 0), lane->run.error.constData());
        compareStarted(*lane, expected, checked);
        compareNames(*lane);
    }
}

void HostileNamesTest::burning()
{
    const QString filterSyntax = u"':,;\\=[]"_s;
    const auto takes = [&](const Film &film) {
        const bool isSyntax = std::any_of(filterSyntax.begin(), filterSyntax.end(),
                                          [&](QChar c) { return film.stem.contains(c); });
        return film.stem.size() < 200 && (isSyntax || film.stem.contains(u'%') || film.stem.contains(u'\n'));
    };
    runEverywhere({u"convert"_s, u"--video"_s, u"1pass"_s, u"--video-bitrate"_s, u"100"_s, u"--subtitles"_s,
                   u"burn"_s, u"--no-keep-logs"_s},
                  takes);
    for (const auto &lane : m_lanes) {
        QVERIFY2(lane->run.status == 0 || chosen(*lane, takes).isEmpty(), lane->run.error.constData());
        Started expected;
        QStringList checked;
        for (const Film &film : chosen(*lane, takes)) {
            const QString source = path(*lane, film);
            const QString title = asRead(film.title);
            // The name of the extracted one is taken, so it gets the next free one.
            const QString words = source + u".stream2 (2).srt"_s;
            const bool isPlain = std::none_of(filterSyntax.begin(), filterSyntax.end(),
                                              [&](QChar c) { return words.contains(c); });
            const QString drawn = isPlain ? words : lane->cli.scratch().path(u"tmp/TEMPORARY/temp.ass"_s);
            const QString output = lane->cli.media(film.stem + u".m4v"_s);
            expected += probeOf(source) + ffmpeg({u"-i"_s, source, u"-map"_s, u"0:2"_s, u"-y"_s, words});
            expected +=
                ffmpeg(QStringList{u"-i"_s, source, u"-map"_s, u"0:0"_s, u"-vcodec"_s, u"libx264"_s,
                                   u"-b:v"_s, u"100k"_s} +
                       tags(u"v"_s, title) + QStringList{u"-map"_s, u"0:1"_s, u"-codec:a:0"_s, u"copy"_s} +
                       tags(u"a:0"_s, title) +
                       QStringList{u"-vf"_s, u"subtitles="_s + drawn, u"-movflags"_s, u"faststart"_s, u"-f"_s,
                                   u"mp4"_s, u"-y"_s, output});
            expected += durationOf(source);
            checked << source << output;
            lane->names.append(film.stem + u".m4v"_s);
            QCOMPARE(support::codecsOf(output), u"h264 aac"_s);
        }
        compareStarted(*lane, expected, checked);
        compareNames(*lane);
    }
}

void HostileNamesTest::convertingInTwoPasses()
{
    runEverywhere({u"convert"_s, u"--device"_s, u"PS3"_s, u"--video"_s, u"2pass"_s, u"--video-bitrate"_s,
                   u"100"_s, u"--no-keep-logs"_s},
                  isConvertedInTwoPasses);
    int done = 0;
    for (const auto &lane : m_lanes) {
        QVERIFY2(lane->run.status == 0 || chosen(*lane, isConvertedInTwoPasses).isEmpty(),
                 lane->run.error.constData());
        Started expected;
        QStringList checked;
        for (const Film &film : chosen(*lane, isConvertedInTwoPasses)) {
            ++done;
            const QString source = path(*lane, film);
            const QString title = asRead(film.title);
            const QString statistics = lane->cli.scratch().path(u"tmp/TEMPORARY/passLog"_s);
            const QString output = lane->cli.media(film.stem + u".m4v"_s);
            const auto passList = [&](const QString &pass) {
                return QStringList{u"-i"_s,      source,       u"-pass"_s,  pass,    u"-map"_s, u"0:0"_s,
                                   u"-vcodec"_s, u"libx264"_s, u"-level"_s, u"41"_s, u"-b:v"_s, u"100k"_s} +
                       tags(u"v"_s, title) + QStringList{u"-map"_s, u"0:1"_s, u"-codec:a:0"_s, u"copy"_s} +
                       tags(u"a:0"_s, title);
            };
            expected += probeOf(source) + durationOf(source);
            expected += ffmpeg(passList(u"1"_s) + QStringList{u"-sn"_s, u"-f"_s, u"mp4"_s, u"-passlogfile"_s,
                                                              statistics, u"-y"_s, u"/dev/null"_s});
            expected += ffmpeg(
                passList(u"2"_s) + QStringList{u"-map"_s, u"0:2"_s, u"-codec:s:0"_s, u"mov_text"_s} +
                tags(u"s:0"_s, title) +
                QStringList{u"-movflags"_s, u"faststart"_s, u"-passlogfile"_s, statistics, u"-y"_s, output});
            checked << source << output;
            lane->names.append(film.stem + u".m4v"_s);
            QCOMPARE(support::codecsOf(output), u"h264 aac mov_text"_s);
        }
        compareStarted(*lane, expected, checked);
        compareNames(*lane);
    }
    QCOMPARE(done, 6);
}

void HostileNamesTest::cleanupTestCase()
{
    m_lanes.clear();
}

TESSARAY_TEST(HostileNamesTest)
#include "HostileNamesTest.moc"

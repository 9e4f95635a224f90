// Bad names of files and bad titles in them, through every operation on Matroska files with the real
// tools. Every program that is started is recorded and compared with what should have been; nothing else
// is written, and the titles arrive to the letter. The short form draws some of the names.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/HostileFilms.h"
#include "support/Seeds.h"
#include "support/StartedPrograms.h"
#include "support/TestMain.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace support::started;
using support::asRead;
using support::CliFixture;
using support::Film;
using support::Started;

namespace {

Started mkvmerge(const QStringList &words)
{
    QByteArrayList run{"mkvmerge"};
    for (const QString &word : words)
        run.append(word.toUtf8());
    return {run};
}

/// The run that asks what a film is like that is to be joined with others.
Started lookAt(const QString &path)
{
    return {
        {"ffprobe", "-i", path.toUtf8(), "-show_streams", "-show_data_hash", "md5", "-print_format", "json"}};
}

/// The tracks of a file as mkvmerge has them.
QList<QJsonObject> tracksOf(const QString &path)
{
    QProcess process;
    process.start(u"mkvmerge"_s, {u"-J"_s, path});
    process.waitForFinished(60000);
    QList<QJsonObject> tracks;
    const QJsonDocument identified = QJsonDocument::fromJson(process.readAllStandardOutput());
    for (const QJsonValue &track : identified[u"tracks"_s].toArray())
        tracks.append(track[u"properties"_s].toObject());
    return tracks;
}

QStringList titlesOf(const QString &path)
{
    QStringList titles;
    for (const QJsonObject &track : tracksOf(path))
        titles.append(track.value(u"track_name"_s).toString());
    return titles;
}

QString flagOf(const QJsonObject &track, const QString &name)
{
    return track.value(name).toBool() ? u"1"_s : u"0"_s;
}

QStringList trackWords(const QString &language, const QString &title, const QString &byDefault,
                       const QString &forced, const QString &number = u"0"_s)
{
    const QString id = number + u':';
    return {u"--language"_s, id + language,       u"--track-name"_s, id + title,         u"--default-track"_s,
            id + byDefault,  u"--forced-track"_s, id + forced,       u"--compression"_s, id + u"none"_s};
}

} // namespace

class CliMkvNamesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void remuxing();
    void splitting();
    void joining();
    void removing();
    void muxing();
    void cleanupTestCase();

private:
    /// A part of the films in a home of their own, so that the parts can be worked on at the same time.
    struct Lane
    {
        CliFixture cli;
        QList<Film> films;
        QStringList names; ///< what should be in the folder
    };
    struct Running
    {
        Lane *lane;
        QList<Film> films;
        std::unique_ptr<QProcess> process;
    };

    /// What one run of a command is to do.
    struct Meant
    {
        Started runs;
        QStringList checked; ///< sources and results that are read once more
    };

    void makeFilm(Lane &lane, const Film &film);
    /// What the same command, made for so many films at a time, does in every lane.
    void runEach(qsizetype atOnce, const std::function<QStringList(const QList<Film> &)> &words,
                 const std::function<Meant(Lane &, const QList<Film> &)> &meant);
    static void compareTitles(const QString &path, const QStringList &titles)
    {
        QCOMPARE(titlesOf(path), titles);
    }
    static void compareStarted(const Lane &lane, const Meant &meant);
    void compareNames(const Lane &lane) const;
    static QString path(const Lane &lane, const Film &film, const QString &extension = u".mkv"_s)
    {
        return lane.cli.media(film.stem + extension);
    }
    static QStringList namesOf(const QList<Film> &films)
    {
        QStringList names;
        for (const Film &film : films)
            names.append(film.stem + u".mkv"_s);
        return names;
    }

    std::vector<std::unique_ptr<Lane>> m_lanes;
};

void CliMkvNamesTest::initTestCase()
{
    QList<Film> all = support::hostileFilms();
    all.removeIf([](const Film &film) { return film.stem.size() > 200; }); // no room for a longer name
    QVERIFY(all.size() > 50);
    all = support::drawn(all, 2 * support::filmLanes);
    m_lanes = support::lanesWith<Lane>(all, [this](Lane &lane, const Film &film) { makeFilm(lane, film); });
}

void CliMkvNamesTest::makeFilm(Lane &lane, const Film &film)
{
    const QString made = lane.cli.scratch().path(u"made.mkv"_s);
    const auto titled = [&](const QString &track) {
        return QStringList{u"--language"_s, track + u"eng"_s, u"--track-name"_s, track + film.title};
    };
    support::runProgram(u"mkvmerge"_s, QStringList{u"-q"_s, u"-o"_s, made} + titled(u"0:"_s) +
                                           titled(u"1:"_s) + QStringList{support::longMkv(2)} +
                                           titled(u"0:"_s) + QStringList{support::srtFile()});
    QVERIFY(QFile::rename(made, path(lane, film)));
    lane.films.append(film);
    lane.names.append(film.stem + u".mkv"_s);
}

void CliMkvNamesTest::runEach(qsizetype atOnce, const std::function<QStringList(const QList<Film> &)> &words,
                              const std::function<Meant(Lane &, const QList<Film> &)> &meant)
{
    const qsizetype mostFilms = m_lanes.front()->films.size();
    for (qsizetype first = 0; first < mostFilms; first += atOnce) {
        std::vector<Running> running;
        for (const auto &lane : m_lanes) {
            const QList<Film> films = lane->films.mid(first, atOnce);
            if (films.size() < std::min(atOnce, qsizetype(2))) // a join needs two
                continue;
            lane->cli.forgetRecorded();
            running.push_back({lane.get(), films, lane->cli.start(words(films))});
        }
        for (Running &each : running) {
            const auto run = CliFixture::outcomeOf(*each.process);
            QVERIFY2(run.status == 0, run.error.constData());
            compareStarted(*each.lane, meant(*each.lane, each.films));
        }
    }
    for (const auto &lane : m_lanes)
        compareNames(*lane);
}

/// Looks at processes and at the ends of logs come as often as there is time; the rest is compared run by
/// run, with its number. Beside it the films of that list are checked, and no others.
void CliMkvNamesTest::compareStarted(const Lane &lane, const Meant &meant)
{
    static const QRegularExpression look(
        u"^(ps\\|-p\\|\\d+|grep\\|\\d+|awk\\|\\{print \\$1;\\}|tr\\|\\\\r\\|\\\\n|tail\\|-1)$"_s);
    Started runs = lane.cli.recorded();
    runs.removeIf(
        [](const QByteArrayList &run) { return look.match(QString::fromUtf8(run.join('|'))).hasMatch(); });
    const QString found = difference(runs, meant.runs, meant.checked);
    QVERIFY2(found.isNull(), qPrintable(found));
}

void CliMkvNamesTest::compareNames(const Lane &lane) const
{
    QStringList names = lane.names;
    QStringList found = lane.cli.mediaNames();
    names.sort();
    found.sort();
    QCOMPARE(found, names);
    QVERIFY2(lane.cli.temporaryNames().isEmpty(), qPrintable(lane.cli.temporaryNames().join(u' ')));
}

void CliMkvNamesTest::remuxing()
{
    const auto words = [](const QList<Film> &films) {
        return QStringList{u"remux"_s, u"--no-keep-logs"_s, u"--"_s} + namesOf(films);
    };
    runEach(100, words, [](Lane &lane, const QList<Film> &films) {
        Meant meant;
        for (const Film &film : films) {
            const QString source = path(lane, film);
            const QString output = source + u".remux.mkv"_s;
            meant.runs += mkvmerge({u"-o"_s, output, u"--compression"_s, u"-1:none"_s, source});
            meant.checked << source << output;
            lane.names.append(film.stem + u".mkv.remux.mkv"_s);
            compareTitles(output, QStringList(3, film.title));
        }
        return meant;
    });
}

void CliMkvNamesTest::splitting()
{
    const auto words = [](const QList<Film> &films) {
        return QStringList{u"split"_s, u"--no-keep-logs"_s, u"--duration"_s, u"00:00:20"_s, u"--"_s} +
               namesOf(films);
    };
    runEach(100, words, [](Lane &lane, const QList<Film> &films) {
        Meant meant;
        for (const Film &film : films) {
            const QString source = path(lane, film);
            // A number that stands for a part's in mkvmerge's eyes is no part of a name.
            const QString base = QString(film.stem).replace(u"%03d"_s, u"_"_s) + u".mkv.split"_s;
            meant.runs += mkvmerge({u"-o"_s, lane.cli.media(base + u".mkv"_s), u"--split"_s, u"20s"_s,
                                    u"--compression"_s, u"-1:none"_s, source});
            meant.checked << source << lane.cli.media(base + u"-001.mkv"_s);
            lane.names.append(base + u"-001.mkv"_s);
            compareTitles(lane.cli.media(base + u"-001.mkv"_s), QStringList(3, film.title));
        }
        return meant;
    });
}

void CliMkvNamesTest::joining()
{
    const auto words = [](const QList<Film> &films) {
        return QStringList{u"join"_s, u"--no-keep-logs"_s, u"--"_s} + namesOf(films);
    };
    runEach(3, words, [](Lane &lane, const QList<Film> &films) {
        const QString first = path(lane, films.constFirst());
        QStringList list{u"-o"_s, first + u".joined.mkv"_s, first};
        Meant meant{lookAt(first), {first, first + u".joined.mkv"_s}};
        for (const Film &film : films.mid(1)) {
            list << u"+"_s << path(lane, film);
            meant.runs += lookAt(path(lane, film));
            meant.checked << path(lane, film);
        }
        lane.names.append(films.constFirst().stem + u".mkv.joined.mkv"_s);
        compareTitles(first + u".joined.mkv"_s, QStringList(3, films.constFirst().title));
        meant.runs += mkvmerge(list);
        return meant;
    });
}

void CliMkvNamesTest::removing()
{
    const auto words = [](const QList<Film> &films) {
        return QStringList{u"remove"_s, u"--tracks"_s, u"1"_s, u"--no-keep-logs"_s, u"--"_s} + namesOf(films);
    };
    runEach(1, words, [](Lane &lane, const QList<Film> &films) {
        const Film &film = films.constFirst();
        const QString source = path(lane, film);
        const QString output = path(lane, film, u".removed.mkv"_s);
        const QList<QJsonObject> tracks = tracksOf(source);
        QStringList list{u"-o"_s, output};
        for (const int number : {0, 2}) {
            list += trackWords(u"eng"_s, asRead(film.title), flagOf(tracks.value(number), u"default_track"_s),
                               flagOf(tracks.value(number), u"forced_track"_s), QString::number(number));
        }
        list << u"-d"_s << u"0"_s << u"-A"_s << u"-s"_s << u"2"_s << source;
        lane.names.append(film.stem + u".removed.mkv"_s);
        compareTitles(output, QStringList(2, asRead(film.title)));
        return Meant{probeOf(source) + mkvmerge(list), {source, output}};
    });
}

/// A raw stream under each name, with sound that bears the title and a subtitle.
void CliMkvNamesTest::muxing()
{
    for (const auto &lane : m_lanes) {
        for (const Film &film : std::as_const(lane->films)) {
            lane->cli.clip(support::rawH264(), film.stem + u".h264"_s);
            lane->cli.clip(support::srtFile(), film.stem + u".srt"_s);
            support::runProgram(u"mkvmerge"_s,
                                {u"-q"_s, u"-o"_s, lane->cli.media(u"made"_s), u"--track-name"_s,
                                 u"0:"_s + film.title, support::surroundAc3()});
            QVERIFY(QFile::rename(lane->cli.media(u"made"_s), path(*lane, film, u".mka"_s)));
            lane->names << film.stem + u".h264"_s << film.stem + u".srt"_s << film.stem + u".mka"_s;
        }
    }
    const auto words = [](const QList<Film> &films) {
        const QString stem = films.constFirst().stem;
        return QStringList{u"convert"_s,
                           u"--add="_s + stem + u".mka"_s,
                           u"--add="_s + stem + u".srt"_s,
                           u"--no-keep-logs"_s,
                           u"--"_s,
                           stem + u".h264"_s};
    };
    runEach(1, words, [](Lane &lane, const QList<Film> &films) {
        const Film &film = films.constFirst();
        const QString source = path(lane, film, u".h264"_s);
        const QString sound = path(lane, film, u".mka"_s);
        const QString text = path(lane, film, u".srt"_s);
        const QString output = path(lane, film, u".muxed.mkv"_s);
        const QString title = asRead(film.title);
        const QStringList list = QStringList{u"-o"_s, output} +
                                 trackWords(u"und"_s, u"Video Track"_s, u"0"_s, u"0"_s) +
                                 QStringList{u"-d"_s, u"0"_s, u"-A"_s, u"-S"_s, source} +
                                 trackWords(u"und"_s, title, u"0"_s, u"0"_s) +
                                 QStringList{u"-D"_s, u"-a"_s, u"0"_s, u"-S"_s, sound} +
                                 trackWords(u"und"_s, u"Subtitle Track"_s, u"0"_s, u"0"_s) +
                                 QStringList{u"-D"_s, u"-A"_s, u"-s"_s, u"0"_s, text};
        Started expected = probeOf(source) + mkvmerge(list);
        for (const QString &file : {source, sound, text})
            expected += mkvmerge({u"-J"_s, file});
        for (const QString &file : {sound, text})
            expected.append(
                QByteArrayList{"ffprobe", "-i", file.toUtf8(), "-show_streams", "-print_format", "json"});
        lane.names.append(film.stem + u".muxed.mkv"_s);
        compareTitles(output, {u"Video Track"_s, title, u"Subtitle Track"_s});
        return Meant{expected, {source, sound, text, output}};
    });
}

void CliMkvNamesTest::cleanupTestCase()
{
    m_lanes.clear();
}

TESSARAY_TEST(CliMkvNamesTest)
#include "CliMkvNamesTest.moc"

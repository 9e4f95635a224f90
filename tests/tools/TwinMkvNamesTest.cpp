// Bad names of files and bad titles in them, through every operation on Matroska files with the real
// tools. Every program that is started is recorded and compared with what should have been; nothing else
// is written, and the titles arrive to the letter.
#include "support/ClipKitchen.h"
#include "support/Clips.h"
#include "support/HostileFilms.h"
#include "support/StartedPrograms.h"
#include "support/Twin.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace support::started;
using support::asRead;
using support::Film;
using support::Started;
using support::Twin;

namespace {

constexpr int houseCount = 8;

Started mkvmerge(const QStringList &words)
{
    QByteArrayList run{"mkvmerge"};
    for (const QString &word : words)
        run.append(word.toUtf8());
    return {run};
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

class TwinMkvNamesTest final : public QObject
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
    struct House
    {
        Twin twin;
        QList<Film> films;
        QStringList names; ///< what should be in the folder
    };
    struct Running
    {
        House *house;
        QList<Film> films;
        std::unique_ptr<QProcess> process;
    };

    void makeFilm(House &house, const Film &film);
    /// What the same command, made for so many films at a time, does in every house.
    void runEach(qsizetype atOnce, const std::function<QStringList(const QList<Film> &)> &words,
                 const std::function<Started(House &, const QList<Film> &)> &expected);
    static void compareTitles(const QString &path, const QStringList &titles)
    {
        QCOMPARE(titlesOf(path), titles);
    }
    static void compareStarted(const House &house, Started expected);
    void compareNames(const House &house) const;
    static QString path(const House &house, const Film &film, const QString &extension = u".mkv"_s)
    {
        return house.twin.media(film.stem + extension);
    }
    static QStringList namesOf(const QList<Film> &films)
    {
        QStringList names;
        for (const Film &film : films)
            names.append(film.stem + u".mkv"_s);
        return names;
    }

    std::vector<std::unique_ptr<House>> m_houses;
};

void TwinMkvNamesTest::initTestCase()
{
    QList<Film> all = support::hostileFilms();
    all.removeIf([](const Film &film) { return film.stem.size() > 200; }); // no room for a longer name
    QVERIFY(all.size() > 50);
    for (int number = 0; number < houseCount; ++number)
        m_houses.push_back(std::make_unique<House>());
    for (qsizetype i = 0; i < all.size(); ++i)
        makeFilm(*m_houses.at(static_cast<size_t>(i % houseCount)), all.at(i));
    for (const auto &house : m_houses) {
        house->twin.useOwnTools();
        house->twin.recordEverything();
    }
}

void TwinMkvNamesTest::makeFilm(House &house, const Film &film)
{
    const QString made = house.twin.scratch().path(u"made.mkv"_s);
    const auto titled = [&](const QString &track) {
        return QStringList{u"--language"_s, track + u"eng"_s, u"--track-name"_s, track + film.title};
    };
    support::runProgram(u"mkvmerge"_s, QStringList{u"-q"_s, u"-o"_s, made} + titled(u"0:"_s) +
                                           titled(u"1:"_s) + QStringList{support::longMkv(2)} +
                                           titled(u"0:"_s) + QStringList{support::srtFile()});
    QVERIFY(QFile::rename(made, path(house, film)));
    house.films.append(film);
    house.names.append(film.stem + u".mkv"_s);
}

void TwinMkvNamesTest::runEach(qsizetype atOnce, const std::function<QStringList(const QList<Film> &)> &words,
                               const std::function<Started(House &, const QList<Film> &)> &expected)
{
    const qsizetype mostFilms = m_houses.front()->films.size();
    for (qsizetype first = 0; first < mostFilms; first += atOnce) {
        std::vector<Running> running;
        for (const auto &house : m_houses) {
            const QList<Film> films = house->films.mid(first, atOnce);
            if (films.size() < std::min(atOnce, qsizetype(2))) // a join needs two
                continue;
            house->twin.forgetRecorded();
            running.push_back({house.get(), films, house->twin.start(words(films))});
        }
        for (Running &each : running) {
            const auto run = Twin::outcomeOf(*each.process);
            QVERIFY2(run.status == 0, run.error.constData());
            compareStarted(*each.house, expected(*each.house, each.films));
        }
    }
    for (const auto &house : m_houses)
        compareNames(*house);
}

/// Looks at processes and at the ends of logs come as often as there is time; the rest is compared run by
/// run, with its number.
void TwinMkvNamesTest::compareStarted(const House &house, Started expected)
{
    static const QRegularExpression look(
        u"^(ps\\|-p\\|\\d+|grep\\|\\d+|awk\\|\\{print \\$1;\\}|tr\\|\\\\r\\|\\\\n|tail\\|-1)$"_s);
    Started unexpected;
    for (const QByteArrayList &run : house.twin.recorded()) {
        if (!look.match(QString::fromUtf8(run.join('|'))).hasMatch() && !expected.removeOne(run))
            unexpected.append(run);
    }
    QVERIFY2(unexpected.isEmpty() && expected.isEmpty(),
             qPrintable(
                 u"started, but should not be:\n%1\nmissing:\n%2"_s.arg(shown(unexpected), shown(expected))));
}

void TwinMkvNamesTest::compareNames(const House &house) const
{
    QStringList names = house.names;
    QStringList found = house.twin.mediaNames();
    names.sort();
    found.sort();
    QCOMPARE(found, names);
    QVERIFY2(house.twin.temporaryNames().isEmpty(), qPrintable(house.twin.temporaryNames().join(u' ')));
}

void TwinMkvNamesTest::remuxing()
{
    const auto words = [](const QList<Film> &films) {
        return QStringList{u"remux"_s, u"--no-keep-logs"_s, u"--"_s} + namesOf(films);
    };
    runEach(100, words, [](House &house, const QList<Film> &films) {
        Started expected;
        for (const Film &film : films) {
            const QString source = path(house, film);
            const QString output = source + u".remux.mkv"_s;
            expected += mkvmerge({u"-o"_s, output, u"--compression"_s, u"-1:none"_s, source});
            house.names.append(film.stem + u".mkv.remux.mkv"_s);
            compareTitles(output, QStringList(3, film.title));
        }
        return expected;
    });
}

void TwinMkvNamesTest::splitting()
{
    const auto words = [](const QList<Film> &films) {
        return QStringList{u"split"_s, u"--no-keep-logs"_s, u"--duration"_s, u"00:00:20"_s, u"--"_s} +
               namesOf(films);
    };
    runEach(100, words, [](House &house, const QList<Film> &films) {
        Started expected;
        for (const Film &film : films) {
            const QString source = path(house, film);
            // A number that stands for a part's in mkvmerge's eyes is no part of a name.
            const QString base = QString(film.stem).replace(u"%03d"_s, u"_"_s) + u".mkv.split"_s;
            expected += mkvmerge({u"-o"_s, house.twin.media(base + u".mkv"_s), u"--split"_s, u"20s"_s,
                                  u"--compression"_s, u"-1:none"_s, source});
            house.names.append(base + u"-001.mkv"_s);
            compareTitles(house.twin.media(base + u"-001.mkv"_s), QStringList(3, film.title));
        }
        return expected;
    });
}

void TwinMkvNamesTest::joining()
{
    const auto words = [](const QList<Film> &films) {
        return QStringList{u"join"_s, u"--no-keep-logs"_s, u"--"_s} + namesOf(films);
    };
    runEach(3, words, [](House &house, const QList<Film> &films) {
        const QString first = path(house, films.constFirst());
        QStringList list{u"-o"_s, first + u".joined.mkv"_s, first};
        Started expected = probeOf(first);
        for (const Film &film : films.mid(1)) {
            list << u"+"_s << path(house, film);
            expected += probeOf(path(house, film));
        }
        house.names.append(films.constFirst().stem + u".mkv.joined.mkv"_s);
        compareTitles(first + u".joined.mkv"_s, QStringList(3, films.constFirst().title));
        return expected + mkvmerge(list);
    });
}

void TwinMkvNamesTest::removing()
{
    const auto words = [](const QList<Film> &films) {
        return QStringList{u"remove"_s, u"--tracks"_s, u"1"_s, u"--no-keep-logs"_s, u"--"_s} + namesOf(films);
    };
    runEach(1, words, [](House &house, const QList<Film> &films) {
        const Film &film = films.constFirst();
        const QString source = path(house, film);
        const QString output = path(house, film, u".removed.mkv"_s);
        const QList<QJsonObject> tracks = tracksOf(source);
        QStringList list{u"-o"_s, output};
        for (const int number : {0, 2}) {
            list += trackWords(u"eng"_s, asRead(film.title), flagOf(tracks.value(number), u"default_track"_s),
                               flagOf(tracks.value(number), u"forced_track"_s), QString::number(number));
        }
        list << u"-d"_s << u"0"_s << u"-A"_s << u"-s"_s << u"2"_s << source;
        house.names.append(film.stem + u".removed.mkv"_s);
        compareTitles(output, QStringList(2, asRead(film.title)));
        return probeOf(source) + mkvmerge(list);
    });
}

/// A raw stream under each name, with sound that bears the title and a subtitle.
void TwinMkvNamesTest::muxing()
{
    for (const auto &house : m_houses) {
        for (const Film &film : std::as_const(house->films)) {
            house->twin.clip(support::rawH264(), film.stem + u".h264"_s);
            house->twin.clip(support::srtFile(), film.stem + u".srt"_s);
            support::runProgram(u"mkvmerge"_s,
                                {u"-q"_s, u"-o"_s, house->twin.media(u"made"_s), u"--track-name"_s,
                                 u"0:"_s + film.title, support::surroundAc3()});
            QVERIFY(QFile::rename(house->twin.media(u"made"_s), path(*house, film, u".mka"_s)));
            house->names << film.stem + u".h264"_s << film.stem + u".srt"_s << film.stem + u".mka"_s;
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
    runEach(1, words, [](House &house, const QList<Film> &films) {
        const Film &film = films.constFirst();
        const QString source = path(house, film, u".h264"_s);
        const QString sound = path(house, film, u".mka"_s);
        const QString text = path(house, film, u".srt"_s);
        const QString output = path(house, film, u".muxed.mkv"_s);
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
        house.names.append(film.stem + u".muxed.mkv"_s);
        compareTitles(output, {u"Video Track"_s, title, u"Subtitle Track"_s});
        return expected;
    });
}

void TwinMkvNamesTest::cleanupTestCase()
{
    m_houses.clear();
}

QTEST_GUILESS_MAIN(TwinMkvNamesTest)
#include "TwinMkvNamesTest.moc"

#include "Bench.h"
#include "CliRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr double aimSeconds = 0.15; ///< of one job beside the bare runs

struct Films
{
    Films(const QString &film, int count)
    {
        QDir(folder.path()).mkdir(u"out"_s);
        for (int i = 0; i < count; ++i) {
            paths.append(folder.filePath(u"film%1.mkv"_s.arg(i)));
            QFile::copy(film, paths.constLast());
        }
    }
    QStringList words(const QString &operation) const
    {
        return QStringList{
                   u"--json"_s, u"--save-dir"_s, out(), u"--defaults"_s, folder.filePath(u"defaults.json"_s),
                   operation,   u"--force"_s} +
               paths;
    }
    QString out() const { return folder.filePath(u"out"_s); }
    void clear() const
    {
        QDir(out()).removeRecursively();
        QDir(folder.path()).mkdir(u"out"_s);
    }

    QTemporaryDir folder;
    QStringList paths;
};

/// What a probe runs for each film: three looks of ffprobe, of which two go through a pipe.
bool probe(const QString &ffprobe, const QString &film)
{
    const QString start = u"\"%1\" -i \"%2\" "_s.arg(ffprobe, film);
    bool isFine = true;
    for (const QString &line : {start + u"-show_streams -print_format json"_s,
                                start + u"2>&1 | grep 'Stream #'"_s, start + u"2>&1 | grep Duration"_s})
        isFine = runQuietly(u"/bin/sh"_s, {u"-c"_s, line}) && isFine;
    return isFine;
}

/// One operation on all films in one run, and its tools by hand, alternating.
bool measure(const QString &operation, const QString &cli, const Films &films, int rounds)
{
    const QStringList words = films.words(operation);
    const QList<Command> bare = bareCommands(cli, words);
    if (bare.size() != films.paths.size())
        return false;
    const QString ffprobe = QFileInfo(bare.constFirst().program).absolutePath() + u"/ffprobe"_s;
    QList<double> ours;
    QList<double> theirs;
    for (int round = 0; round < rounds; ++round) {
        films.clear();
        bool isFine = true;
        ours.append(seconds([&] { isFine = runQuietly(cli, words); }));
        films.clear();
        theirs.append(seconds([&] {
            for (qsizetype i = 0; i < bare.size(); ++i) {
                if (operation == u"convert"_s)
                    isFine = probe(ffprobe, films.paths.at(i)) && isFine;
                isFine = runQuietly(bare.at(i).program, bare.at(i).arguments) && isFine;
            }
        }));
        if (!isFine)
            return false;
        say(u"round %1: %2 of %3 films %4 s, their tools alone %5 s"_s.arg(round + 1)
                .arg(operation)
                .arg(bare.size())
                .arg(ours.constLast(), 0, 'f', 2)
                .arg(theirs.constLast(), 0, 'f', 2));
    }
    const double a = median(ours);
    const double b = median(theirs);
    say(u"%1 of %2 films: median %3 s; their tools alone: median %4 s; difference %5 s a job; aim: at most %6 s"_s
            .arg(operation)
            .arg(bare.size())
            .arg(a, 0, 'f', 2)
            .arg(b, 0, 'f', 2)
            .arg((a - b) / static_cast<double>(bare.size()), 0, 'f', 3)
            .arg(aimSeconds, 0, 'f', 2));
    return true;
}

} // namespace

int many(const QString &cli, const QString &film, int count, int rounds)
{
    const Films films(film, count);
    const bool isFine = measure(u"convert"_s, cli, films, rounds) && measure(u"remux"_s, cli, films, rounds);
    if (!isFine)
        say(u"a run failed"_s);
    return isFine ? 0 : 1;
}

} // namespace bench

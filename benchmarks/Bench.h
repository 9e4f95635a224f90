#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace bench {

/// Seconds that the work takes.
double seconds(const std::function<void()> &work);
double median(QList<double> values);
/// Runs a program to its end; false when it did not exit with 0. Its output is thrown away.
bool runQuietly(const QString &program, const QStringList &arguments);
void say(const QString &line);

/// `convert` beside the bare ffmpeg command that it launched, alternating.
int convert(const QString &cli, const QString &clip, int rounds);
/// `remux` of a film and `join` of a half with itself beside the mkvmerge commands that they launched,
/// alternating; and what the program's memory does meanwhile.
int mkv(const QString &cli, const QString &film, const QString &half, int rounds);
/// What a `join` of many copies of a film takes before its tool starts, beside bare probes of them on all
/// cores.
int joins(const QString &cli, const QString &film, int count, int rounds);
/// Many short films in one run of `convert` and of `remux`, beside the tools that each job runs, alternating.
int many(const QString &cli, const QString &film, int count, int rounds);
/// A probe beside the same ffprobe lines run by hand, alternating.
int probe(const QString &resources, const QString &clip, int rounds);
/// What the check and the publishing of finished files cost: a `remux` beside the bare tool with a flush
/// behind it, alternating; the same with --verify.
int publish(const QString &cli, const QString &film, int rounds);
/// The time from the end of the tool to that of the job, for a `remux` of a large film.
int publishEnd(const QString &cli, const QString &film, int rounds);
/// Progress reading in MB/s on recorded output of several sizes.
int reading();
/// A tick, toggling and applying presets on files of many tracks.
int selection();
/// Start-up time and peak memory of the command-line program.
int start(const QString &cli, const QString &clip, int rounds);
/// Seconds from an interrupt to the end of the program and its tools: while files are opened, a film is
/// converted, files are joined.
int stop(const QString &cli, const QString &film, const QString &half, int rounds);
/// Presets that are stored by one save, and one after the other, 100 and 400 of them.
int store();
/// How often a watch and the window wake while nothing happens. The window needs a display.
int idle(const QString &cli, const QString &window);
/// How the memory of a watch grows with the films that land in its folder.
int watched(const QString &cli, const QString &film, int count);
/// Looks at real watched folders of several sizes, with new films in them and without.
int watch();

} // namespace bench

#include "Bench.h"

#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "prefs/KXWatchModeController.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int fresh = 200;
constexpr int perFolder = 1000;
constexpr int rounds = 9;
constexpr int looksOfAMinute = 12;
constexpr int manyLooks = 500;

/// A film of one byte; a thousand lie in each sub-folder.
void put(const QDir &folder, int number)
{
    const QString sub = QString::number(number / perFolder);
    folder.mkpath(sub);
    QFile file(folder.filePath(u"%1/Some film with a name of usual length %2.mkv"_s.arg(sub).arg(number)));
    if (!file.open(QIODevice::WriteOnly) || file.write("x") != 1)
        qFatal("Can't write %s.", qPrintable(file.fileName()));
}

/// The polls that see new films, take them, and see no change, in milliseconds.
struct Polls
{
    QList<double> seen;
    QList<double> taken;
    QList<double> idle;
    QList<double> bare;
};

/// The least that tells what is there: every folder read, and a look at every file.
qint64 bareLook(const std::filesystem::path &folder)
{
    qint64 bytes = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        struct stat status = {};
        if (entry.is_directory())
            bytes += bareLook(entry.path());
        else if (::stat(entry.path().c_str(), &status) == 0)
            bytes += status.st_size;
    }
    return bytes;
}

/// Memory of this program that is its own, in kilobytes.
qint64 ownMemory()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("RssAnon:"))
            return line.simplified().split(' ').value(1).toLongLong();
    }
    return 0;
}

double poll(KXWatchModeController &watch)
{
    return seconds([&watch] { watch.watchLoop(); }) * 1000;
}

void measure(int count)
{
    const QTemporaryDir folder;
    for (int number = 0; number < count - fresh * rounds; ++number)
        put(folder.path(), number);
    platform::JsonDefaultsStore store(folder.filePath(u"none.json"_s)); // never written
    KXPreferences preferences(store, {});
    preferences.setWatchFolderURL(QUrl::fromLocalFile(folder.path()));
    KXWatchModeController watch(&preferences);
    qsizetype ready = 0;
    QObject::connect(&watch, &KXWatchModeController::filesReady,
                     [&ready](const QList<QUrl> &files) { ready += files.size(); });
    if (!watch.startWatchMode())
        qFatal("The folder can't be watched.");
    Polls polls;
    for (int round = rounds; round > 0; --round) {
        for (int i = 0; i < fresh; ++i)
            put(folder.path(), count - round * fresh + i);
        polls.seen.append(poll(watch));
        polls.taken.append(poll(watch));
        for (int i = 0; i < looksOfAMinute; ++i) { // which look at all the known files, in turn
            polls.idle.append(poll(watch));
            polls.bare.append(seconds([&] { bareLook(folder.path().toStdString()); }) * 1000);
        }
    }
    const qint64 before = ownMemory();
    for (int i = 0; i < manyLooks; ++i)
        watch.watchLoop();
    const qint64 after = ownMemory();
    if (ready != qsizetype(fresh) * rounds)
        qFatal("%lld films were taken.", static_cast<long long>(ready));
    say(u"watching, %1 files: %2 new seen %3 ms, taken %4 ms, nothing new %5 ms (at most %6), bare readdir "
        u"and stat "
        "%7 ms, %8 times as long; memory %9 kB more after %10 looks"_s.arg(count)
            .arg(fresh)
            .arg(median(polls.seen), 0, 'f', 1)
            .arg(median(polls.taken), 0, 'f', 1)
            .arg(median(polls.idle), 0, 'f', 1)
            .arg(*std::max_element(polls.idle.begin(), polls.idle.end()), 0, 'f', 1)
            .arg(median(polls.bare), 0, 'f', 1)
            .arg(median(polls.idle) / median(polls.bare), 0, 'f', 2)
            .arg(after - before)
            .arg(manyLooks));
}

} // namespace

int watch()
{
    for (const int count : {25000, 50000, 100000})
        measure(count);
    return 0;
}

} // namespace bench

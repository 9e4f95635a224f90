#include "Bench.h"

#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "prefs/KXWatchModeController.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int fresh = 200;
constexpr int perFolder = 1000;
constexpr int rounds = 9;

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
};

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
        polls.idle.append(poll(watch));
    }
    if (ready != qsizetype(fresh) * rounds)
        qFatal("%lld films were taken.", static_cast<long long>(ready));
    say(u"watching, %1 files: %2 new seen %3 ms, taken %4 ms, nothing new %5 ms"_s.arg(count)
            .arg(fresh)
            .arg(median(polls.seen), 0, 'f', 1)
            .arg(median(polls.taken), 0, 'f', 1)
            .arg(median(polls.idle), 0, 'f', 1));
}

} // namespace

int watch()
{
    for (const int count : {25000, 50000, 100000})
        measure(count);
    return 0;
}

} // namespace bench

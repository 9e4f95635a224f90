#include "prefs/KXWatchModeController.h"

#include "platform/Chooser.h"
#include "prefs/KXPreferences.h"

#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QList<QUrl> urlsOf(const QStringList &paths)
{
    QList<QUrl> urls;
    urls.reserve(paths.size());
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    return urls;
}

QString sizeText(qint64 size)
{
    return QString::number(std::max<qint64>(size, 0));
}

} // namespace

QStringList KXWatchModeController::movieExtensions()
{
    return {u"mkv"_s, u"ogg"_s, u"mts"_s, u"ts"_s,  u"flv"_s,
            u"wmv"_s, u"mov"_s, u"mp4"_s, u"m4v"_s, u"avi"_s};
}

KXWatchModeController::KXWatchModeController(KXPreferences *preferences,
                                             const prefs::WatchIntervals &intervals)
    : m_preferences(preferences)
    , m_listing(std::make_unique<prefs::WatchListing>())
{
    m_watchTimer.setInterval(intervals.poll);
    connect(&m_watchTimer, &QTimer::timeout, this, &KXWatchModeController::watchLoop);
    for (QTimer *timer : {&m_toggleTimer, &m_drawerTimer}) {
        timer->setSingleShot(true);
        timer->setInterval(intervals.toggle);
    }
    connect(&m_toggleTimer, &QTimer::timeout, this, &KXWatchModeController::delayedToggleWindows);
    connect(&m_drawerTimer, &QTimer::timeout, this, &KXWatchModeController::delayedOpenDrawer);
}

KXWatchModeController::~KXWatchModeController() = default;

void KXWatchModeController::chooseWatchFolderURL(platform::Chooser &chooser)
{
    if (m_preferences == nullptr)
        return;
    using platform::ChooserRequest;
    chooser.choose(
        {u"Select the folder to watch."_s, ChooserRequest::What::Folder, m_preferences->watchFolderPath()},
        [self = QPointer(this)](const QList<QUrl> &chosen) {
            if (!self || chosen.isEmpty())
                return;
            self->m_preferences->setWatchFolderURL(chosen.constFirst());
            Q_EMIT self->folderChanged();
        });
}

bool KXWatchModeController::startWatchMode()
{
    setWatchFolderURL(m_preferences == nullptr ? QUrl() : m_preferences->watchFolderURL());
    setWatchFolderPath(watchFolderURL().toLocalFile());
    m_folder = m_listing->canonicalFolder(watchFolderPath());
    if (m_folder.isNull()) {
        setWatchFolderPath(u"must select a valid directory to start watch mode"_s);
        Q_EMIT folderChanged();
        return false;
    }
    m_files.growing().clear();
    m_files.setBase(m_listing->movies(m_folder, movieExtensionsList()));
    m_drawerTimer.stop();
    m_watchTimer.start();
    setAppIsInWatchMode(true);
    Q_EMIT drawerWanted(false);
    Q_EMIT folderChanged();
    m_toggleTimer.start();
    return true;
}

void KXWatchModeController::delayedToggleWindows()
{
    Q_EMIT windowsSwapped(true);
}

void KXWatchModeController::endWatchMode()
{
    m_watchTimer.stop();
    m_toggleTimer.stop();
    Q_EMIT windowsSwapped(false);
    m_drawerTimer.start();
}

void KXWatchModeController::delayedOpenDrawer()
{
    setAppIsInWatchMode(false);
    Q_EMIT watchModeEnded();
}

QList<QUrl> KXWatchModeController::makeMovieListForWatchFolderURL(const QUrl &folder) const
{
    return urlsOf(m_listing->movies(folder.toLocalFile(), movieExtensionsList()));
}

QList<QUrl> KXWatchModeController::baseWatchFolderMovieList() const
{
    return urlsOf(m_files.base());
}

void KXWatchModeController::setBaseWatchFolderMovieList(const QList<QUrl> &files)
{
    QStringList paths;
    for (const QUrl &file : files)
        paths.append(file.toLocalFile());
    m_files.setBase(paths);
}

QVariantList KXWatchModeController::monitorWatchFolderMovieList() const
{
    QVariantList list;
    for (const prefs::WatchedFiles::Growing &file : m_files.growing())
        list.append(
            QVariantMap{{u"fileURL"_s, QUrl::fromLocalFile(file.path)}, {u"oldSize"_s, file.oldSize}});
    return list;
}

void KXWatchModeController::outputAnnounced(const QUrl &output)
{
    m_files.announce(output.toLocalFile());
}

void KXWatchModeController::fileRefused(const QUrl &file)
{
    const QString path = file.toLocalFile();
    if (m_files.refused(path, m_listing->stateOf(path)) == prefs::WatchedFiles::mostAttempts)
        Q_EMIT fileGivenUp(path);
}

void KXWatchModeController::watchLoop()
{
    const QStringList current = m_listing->movies(m_folder, movieExtensionsList());
    if (m_listing->canonicalFolder(m_folder).isNull()) { // asked afterwards: it may vanish while it is read
        Q_EMIT folderMissing(); // what is known stays: when the folder is back, its files are no new ones
        return;
    }
    if (current.isEmpty()) {
        m_files.setBase({});
        forgetVanished(current);
    } else {
        lookAt(current);
    }
    Q_EMIT drawerWanted(false);
}

void KXWatchModeController::lookAt(const QStringList &current)
{
    watchChangedAgain();
    const QSet<QString> growing = m_files.growingPaths();
    QStringList known;
    QStringList fresh;
    bool stillGrowing = false;
    for (const QString &path : current) {
        if (m_files.isInBase(path))
            known.append(path);
        else if (growing.contains(path))
            stillGrowing = true;
        else if (!m_files.isAnnounced(path))
            fresh.append(path);
    }
    if (fresh.isEmpty() && !stillGrowing && growing.isEmpty() && known.size() == m_files.base().size())
        return;
    if (known.size() < m_files.base().size())
        m_files.setBase(known); // files that vanished may come back as new ones
    forgetVanished(current);
    takeFinished();
    watchNew(fresh);
    if (!m_toProcess.isEmpty())
        Q_EMIT filesReady(urlsOf(std::exchange(m_toProcess, {})));
}

/// Refused files that have changed are no longer among the known ones, and so are new again.
void KXWatchModeController::watchChangedAgain()
{
    const QStringList changed = m_files.changedSinceRefused(*m_listing);
    for (const QString &path : changed)
        m_files.watchAgain(path);
}

void KXWatchModeController::forgetVanished(const QStringList &current)
{
    if (m_files.growing().isEmpty())
        return;
    const QSet<QString> there(current.begin(), current.end());
    m_files.growing().removeIf([&](const prefs::WatchedFiles::Growing &file) {
        if (there.contains(file.path))
            return false;
        Q_EMIT fileForgotten(file.path);
        return true;
    });
}

/// Two looks with the same size, and not an empty file: it has stopped growing.
void KXWatchModeController::takeFinished()
{
    QList<prefs::WatchedFiles::Growing> still;
    for (const prefs::WatchedFiles::Growing &file : std::as_const(m_files.growing())) {
        const QString size = sizeText(m_listing->stateOf(file.path).size);
        if (size == u"0"_s || size != file.oldSize) {
            still.append({file.path, size});
            continue;
        }
        m_toProcess.append(file.path);
        m_files.appendToBase(file.path);
    }
    m_files.growing() = still;
}

void KXWatchModeController::watchNew(const QStringList &files)
{
    for (const QString &path : files)
        m_files.growing().append({path, sizeText(m_listing->stateOf(path).size)});
    if (!files.isEmpty())
        Q_EMIT filesFound(files);
}

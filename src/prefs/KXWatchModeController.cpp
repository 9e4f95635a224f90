#include "prefs/KXWatchModeController.h"

#include "platform/Chooser.h"
#include "prefs/KXPreferences.h"

#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>

#include <algorithm>
#include <chrono>

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

constexpr quint32 looksUntilAllAreSeen = 12; ///< a minute, at the pace of the looks
constexpr quint32 looksUntilTidied = 17'280; ///< a day
constexpr qint64 patienceMs = 3'600'000;     ///< with a film that is not whole and does not change
constexpr qint64 minuteMs = 60'000;

/// A minute, and each time four times as long, up to an hour and some.
qint64 waitBefore(int attempt)
{
    return minuteMs << (2 * std::min(attempt, 3));
}

/// What is left of a job that failed.
bool isIncompleteByName(const QString &path)
{
    if (!path.contains(u"(incomplete)"_s))
        return false;
    static const QRegularExpression mark(u"\\(incomplete\\)(?: \\(\\d+\\))?$"_s);
    return mark.match(QFileInfo(path).completeBaseName()).hasMatch();
}

qint64 steadyMilliseconds()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
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
    , m_clock(steadyMilliseconds)
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
    if (const QString problem = startProblem(); !problem.isNull()) {
        setWatchFolderPath(problem);
        Q_EMIT folderChanged();
        return false;
    }
    setAppIsInWatchMode(true); // so that what waits is told
    takeWhatIsThere();
    m_drawerTimer.stop();
    m_watchTimer.start();
    Q_EMIT drawerWanted(false);
    Q_EMIT folderChanged();
    m_toggleTimer.start();
    return true;
}

QString KXWatchModeController::startProblem()
{
    m_folder = m_listing->canonicalFolder(watchFolderPath());
    if (m_folder.isNull())
        return u"must select a valid directory to start watch mode"_s;
    m_folderInode = m_listing->stateOf(m_folder).inode;
    m_isOurs = true;
    return m_watcher.take(m_folder);
}

/// Another folder at the place is watched by nobody yet, or by somebody else.
bool KXWatchModeController::isStillOurs()
{
    const quint64 inode = m_listing->stateOf(m_folder).inode;
    if (inode == m_folderInode && m_isOurs)
        return true;
    m_folderInode = inode;
    const QString problem = m_watcher.take(m_folder);
    if (const bool wasOurs = std::exchange(m_isOurs, problem.isNull()); wasOurs && !m_isOurs)
        Q_EMIT folderTaken(problem);
    return m_isOurs;
}

/// What waited at the end of the last watch waits on, what is new is known from now on.
void KXWatchModeController::takeWhatIsThere()
{
    m_journal.open(m_folder, m_dataFolder);
    m_files.growing().clear();
    m_seen.clear();
    m_look = 0;
    const bool takesExisting = m_takesExisting || m_preferences->panelFlag(u"watchExistingFlag"_s);
    QStringList known;
    QStringList waiting;
    QList<Film> unknown;
    const QList<Entry> entries = m_listing->entries(m_folder, movieExtensionsList());
    for (const Entry &entry : entries) {
        if (isKnown(entry)) {
            known.append(entry.path);
        } else if (const Film film = filmAt(entry.path); takesExisting || m_journal.waits(film)) {
            waiting.append(entry.path);
        } else {
            unknown.append(film);
            known.append(entry.path);
        }
    }
    m_journal.note(prefs::WatchJournal::Why::Known, unknown);
    m_journal.tidy(QSet<QString>(known.begin(), known.end()));
    m_files.setBase(known);
    watchNew(waiting);
}

void KXWatchModeController::delayedToggleWindows()
{
    Q_EMIT windowsSwapped(true);
}

void KXWatchModeController::endWatchMode()
{
    m_watchTimer.stop();
    m_toggleTimer.stop();
    m_watcher.release();
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

KXWatchModeController::Film KXWatchModeController::filmAt(const QString &path) const
{
    const prefs::WatchListing::State state = m_listing->stateOf(path);
    return {path, state.size, state.changed, state.inode};
}

void KXWatchModeController::fileRefused(const QUrl &file)
{
    const QString path = file.toLocalFile();
    m_handedOver.remove(path);
    m_later.remove(path);
    m_journal.note(prefs::WatchJournal::Why::Refused, {filmAt(path)});
    if (m_files.refused(path, m_listing->stateOf(path)) == prefs::WatchedFiles::mostAttempts)
        Q_EMIT fileGivenUp(path);
}

/// It is known as it was handed over: what was put in its place meanwhile is another film.
void KXWatchModeController::fileDone(const QUrl &file)
{
    const QString path = file.toLocalFile();
    m_later.remove(path);
    if (m_handedOver.contains(path))
        m_journal.note(prefs::WatchJournal::Why::Known, {m_handedOver.take(path)});
    else if (!appIsInWatchMode())
        prefs::WatchJournal::noteDone(file);
}

void KXWatchModeController::fileIsQueued(const QUrl &file)
{
    const QString path = QFileInfo(file.toLocalFile()).canonicalFilePath();
    if (!path.startsWith(m_folder + u'/'))
        return;
    m_files.growing().removeIf(
        [&](const prefs::WatchedFiles::Growing &growing) { return growing.path == path; });
    m_handedOver.insert(path, filmAt(path));
}

bool KXWatchModeController::fileWanted(const QUrl &file)
{
    const QString path = QFileInfo(file.toLocalFile()).canonicalFilePath();
    const QList<Entry> entries = m_listing->entries(m_folder, movieExtensionsList());
    const bool isThere =
        std::any_of(entries.begin(), entries.end(), [&](const Entry &entry) { return entry.path == path; });
    if (isThere && !m_handedOver.contains(path) && !m_files.growingPaths().contains(path))
        m_wanted.insert(path);
    return isThere;
}

int KXWatchModeController::fileLater(const QUrl &file)
{
    const QString path = file.toLocalFile();
    Later &later = m_later[path];
    later.notBefore = m_clock() + waitBefore(later.attempts++);
    m_handedOver.remove(path);
    return later.attempts;
}

void KXWatchModeController::watchLoop()
{
    const QList<Entry> current = m_listing->entries(m_folder, movieExtensionsList());
    if (m_listing->canonicalFolder(m_folder).isNull()) { // asked afterwards: it may vanish while it is read
        Q_EMIT looked(false);
        Q_EMIT folderMissing();
        return;
    }
    if (!isStillOurs()) {
        Q_EMIT looked(false);
        return;
    }
    m_journal.refresh();
    ++m_look;
    lookAt(current);
    if (m_look % looksUntilTidied == 0)
        m_journal.tidy(QSet<QString>(m_files.base().begin(), m_files.base().end()));
    Q_EMIT looked(true);
    Q_EMIT drawerWanted(false);
}

void KXWatchModeController::lookAt(const QList<Entry> &current)
{
    const QSet<QString> growing = m_files.growingPaths();
    QSet<QString> growingThere;
    QStringList known;
    known.reserve(current.size());
    QStringList fresh;
    for (const Entry &entry : current) {
        if (growing.contains(entry.path))
            growingThere.insert(entry.path);
        else
            (isKnown(entry) ? known : fresh).append(entry.path);
    }
    m_files.setBase(known);
    forgetVanished(growingThere);
    takeFinished();
    watchNew(fresh);
    if (!m_toProcess.isEmpty())
        Q_EMIT filesReady(urlsOf(std::exchange(m_toProcess, {})));
}

/// Known files are looked at themselves in turn, since there may be tens of thousands; another file under the
/// name shows in the listing at once.
bool KXWatchModeController::isKnown(const Entry &entry)
{
    const auto seen = m_seen.find(entry.path);
    if (seen != m_seen.end() && seen->number == entry.number && !isLookedAtNow(entry.path)) {
        seen->look = m_look;
        return true;
    }
    const bool known = isKnownByItself(entry);
    if (known)
        m_seen.insert(entry.path, {entry.number, m_look});
    else
        m_seen.remove(entry.path);
    return known;
}

bool KXWatchModeController::isLookedAtNow(const QString &path) const
{
    return m_handedOver.contains(path) || m_wanted.contains(path) || m_later.contains(path) ||
           m_files.wasRefused(path) || qHash(path) % looksUntilAllAreSeen == m_look % looksUntilAllAreSeen;
}

bool KXWatchModeController::isKnownByItself(const Entry &entry)
{
    using Why = prefs::WatchJournal::Why;
    if (!entry.isNameUtf8) {
        if (!m_toldNames.contains(entry.path))
            Q_EMIT nameNotReadable(entry.path);
        m_toldNames.insert(entry.path);
        return true;
    }
    if (m_wanted.remove(entry.path))
        return false;
    if (isIncompleteByName(entry.path) || m_files.isAnnounced(entry.path))
        return true;
    const Film film = filmAt(entry.path);
    if (const auto handed = m_handedOver.find(entry.path); handed != m_handedOver.end())
        return handed->isSameContent(film);
    if (m_files.isGivenUp(entry.path, {film.size, film.changed, film.inode}))
        return true;
    const auto why = m_journal.find(film);
    if (why == Why::Waiting)
        return m_later.contains(entry.path) && m_clock() < m_later.value(entry.path).notBefore;
    return why == Why::Refused ? m_look > 0 : why.has_value();
}

void KXWatchModeController::forgetVanished(const QSet<QString> &growingThere)
{
    if (m_seen.size() > m_files.base().size())
        m_seen.removeIf([this](QHash<QString, Seen>::iterator seen) { return seen->look != m_look; });
    m_files.growing().removeIf([&](const prefs::WatchedFiles::Growing &file) {
        if (growingThere.contains(file.path))
            return false;
        Q_EMIT fileForgotten(file.path);
        return true;
    });
}

/// Two looks with the same size and time, and not an empty file: it has stopped growing.
void KXWatchModeController::takeFinished()
{
    QList<prefs::WatchedFiles::Growing> still;
    for (prefs::WatchedFiles::Growing &file : m_files.growing()) {
        const prefs::WatchListing::State state = m_listing->stateOf(file.path);
        const QString size = sizeText(state.size);
        if (size != file.oldSize || state.changed != file.oldTime) {
            still.append({file.path, size, state.changed, m_clock()});
        } else if (size == u"0"_s) {
            if (!std::exchange(file.isTold, true))
                Q_EMIT fileEmpty(file.path);
            still.append(file);
        } else if (!isTakenAsWhole(file)) {
            still.append(file);
        } else {
            handOver(file.path);
        }
    }
    m_files.growing() = still;
}

/// A copy that stalls stops growing too. What never becomes whole is taken after an hour; the job then says
/// where it ends.
bool KXWatchModeController::isTakenAsWhole(prefs::WatchedFiles::Growing &file)
{
    if (m_listing->wholenessOf(file.path) == prefs::WatchListing::Wholeness::Whole ||
        m_clock() - file.changedAt >= patienceMs)
        return true;
    if (!std::exchange(file.isTold, true))
        Q_EMIT fileNotWhole(file.path);
    return false;
}

void KXWatchModeController::handOver(const QString &path)
{
    const Film film = filmAt(path);
    m_journal.note(prefs::WatchJournal::Why::Waiting, {film});
    m_handedOver.insert(path, film);
    m_files.appendToBase(path);
    m_toProcess.append(path);
}

/// Written down at once: were the program to end, it would be an old film at the next start.
void KXWatchModeController::watchNew(const QStringList &files)
{
    QList<Film> films;
    for (const QString &path : files) {
        films.append(filmAt(path));
        const Film &film = films.constLast();
        m_files.growing().append({path, sizeText(film.size), film.changed, m_clock()});
    }
    if (files.isEmpty())
        return;
    m_journal.note(prefs::WatchJournal::Why::Waiting, films);
    Q_EMIT filesFound(files);
}

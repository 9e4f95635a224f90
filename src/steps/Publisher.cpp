#include "steps/Publisher.h"

#include "prefs/WatchJournal.h"

#include <QFileInfo>
#include <QMutex>
#include <QWaitCondition>

#include <algorithm>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

namespace steps {

namespace {

using MayMove = std::function<bool()>;
using Flushes = QHash<QUrl, std::shared_future<bool>>;

/// The disk tells of a failure once, so a flush that was begun earlier is not made again.
bool isOnDisk(const QUrl &file, const Flushes &begun)
{
    const auto flush = begun.constFind(file);
    return flush == begun.constEnd() ? platform::flushToDisk(file) : flush->get();
}

/// Those that moved return, so that none of a set stands alone. What was replaced can't return: it is the
/// last thing to be tried.
void takeBack(const QList<Publication> &moved)
{
    for (const Publication &publication : moved)
        platform::renameToFreeName(publication.name, publication.file);
}

QUrl folderAround(const QUrl &workFolder)
{
    return QUrl::fromLocalFile(QFileInfo(workFolder.toLocalFile()).absolutePath());
}

PublishResult moveAll(const QList<Publication> &publications)
{
    QList<Publication> moved;
    for (const Publication &publication : publications) {
        if (!publishFile(publication)) {
            const bool isTaken = platform::fileAt(publication.name).has_value();
            takeBack(moved);
            return {isTaken ? PublishResult::End::NameTaken : PublishResult::End::Failed, publication.name};
        }
        if (!publication.replaced)
            moved.append(publication);
    }
    return {};
}

bool writeRecord(const QUrl &workFolder, const QList<Publication> &publications)
{
    const QUrl record = recordIn(workFolder);
    const QByteArray bytes = toRecord(publications);
    platform::removeName(record);
    const bool isWhole = platform::createFile(record, bytes).has_value() &&
                         QFileInfo(record.toLocalFile()).size() == bytes.size();
    return isWhole && platform::flushToDisk(record);
}

/// New files before old ones are replaced, as only those can be taken back.
QList<Publication> inSafeOrder(QList<Publication> publications)
{
    std::stable_partition(publications.begin(), publications.end(),
                          [](const Publication &publication) { return !publication.replaced; });
    return publications;
}

/// A folder that is watched must not take them for films that have arrived.
void noteAsOutputs(const QList<Publication> &publications)
{
    QList<prefs::WatchJournal::Output> outputs;
    for (const Publication &publication : publications)
        outputs.append({publication.file, publication.name});
    prefs::WatchJournal::noteOutputs(outputs);
}

PublishResult attemptOf(const QUrl &workFolder, const QList<Publication> &publications, const Flushes &begun,
                        const MayMove &mayMove)
{
    for (const Publication &publication : publications) {
        if (!isOnDisk(publication.file, begun))
            return {PublishResult::End::NotFlushed, publication.name};
    }
    if (!writeRecord(workFolder, publications))
        return {PublishResult::End::NotFlushed, publications.constFirst().name};
    platform::flushFolder(workFolder);
    noteAsOutputs(publications);
    if (!mayMove())
        return {PublishResult::End::Failed, {}};
    const PublishResult result = moveAll(inSafeOrder(publications));
    platform::flushFolder(folderAround(workFolder));
    platform::removeName(recordIn(workFolder));
    return result;
}

} // namespace

/// What a thread and the one who waits for it share; it outlives both.
struct Publisher::Attempt
{
    enum class State { Flushing, Cancelled, Moving, Over };
    QMutex mutex;
    QWaitCondition over;
    State state = State::Flushing;
    PublishResult result;
    Publisher *receiver = nullptr; ///< null once it is gone, or wants to hear no more

    bool beginMoving()
    {
        const QMutexLocker locker(&mutex);
        if (state == State::Flushing)
            state = State::Moving;
        return state == State::Moving;
    }
    bool isOver()
    {
        const QMutexLocker locker(&mutex);
        return state == State::Over;
    }
    void finish(const PublishResult &answer)
    {
        const QMutexLocker locker(&mutex);
        state = State::Over;
        result = answer;
        over.wakeAll();
        if (receiver != nullptr)
            QMetaObject::invokeMethod(receiver, &Publisher::tell, Qt::QueuedConnection);
    }
};

PublishResult publishNow(const QUrl &workFolder, const QList<Publication> &publications)
{
    return attemptOf(workFolder, publications, {}, [] { return true; });
}

Publisher::Publisher() = default;

Publisher::~Publisher()
{
    cancel();
}

/// As in start(), the thread is left to itself.
void Publisher::flushAhead(const QList<QUrl> &files)
{
    std::vector<std::pair<QUrl, std::promise<bool>>> toFlush;
    for (const QUrl &file : files) {
        std::promise<bool> promise;
        m_flushes.insert(file, promise.get_future().share());
        toFlush.emplace_back(file, std::move(promise));
    }
    std::thread([flushed = std::move(toFlush)]() mutable {
        for (auto &[file, promise] : flushed)
            promise.set_value(platform::flushToDisk(file));
    }).detach();
}

/// The thread is left to itself: a disk that does not answer must hold up no stop.
void Publisher::start(const QUrl &workFolder, const QList<Publication> &publications)
{
    m_attempt = std::make_shared<Attempt>();
    m_attempt->receiver = this;
    std::thread([attempt = m_attempt, workFolder, publications, begun = m_flushes] {
        attempt->finish(attemptOf(workFolder, publications, begun, [&] { return attempt->beginMoving(); }));
    }).detach();
}

/// Nothing is told of an attempt that was cancelled meanwhile.
void Publisher::tell()
{
    if (m_attempt && m_attempt->isOver())
        Q_EMIT ended(std::exchange(m_attempt, nullptr)->result);
}

bool Publisher::cancel()
{
    if (!m_attempt)
        return true;
    const auto attempt = std::exchange(m_attempt, nullptr);
    const QMutexLocker locker(&attempt->mutex);
    attempt->receiver = nullptr;
    if (attempt->state == Attempt::State::Flushing)
        attempt->state = Attempt::State::Cancelled;
    while (attempt->state == Attempt::State::Moving)
        attempt->over.wait(&attempt->mutex);
    return attempt->state == Attempt::State::Cancelled || attempt->result.end != PublishResult::End::Done;
}

} // namespace steps

#include "jobs/StoredQueue.h"

#include "jobs/KXQueueController.h"
#include "platform/HolderFile.h"
#include "platform/OrdinaryFile.h"
#include "platform/PlainFiles.h"
#include "platform/SafeReplace.h"
#include "steps/LeftOvers.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using platform::HolderFile;

namespace jobs {

namespace {

const QString ending = u".json"_s;
const QString interruptedSentence = u"The program ended while this job ran."_s;

QUrl urlOf(const QString &path)
{
    return QUrl::fromLocalFile(path);
}

/// Answers its new path; empty where it stays.
QString setAside(const QString &path)
{
    const QString plain = path + u" damaged "_s + QDate::currentDate().toString(Qt::ISODate);
    for (int number = 1; number < 1000; ++number) {
        const QString aside = number == 1 ? plain : plain + u" (%1)"_s.arg(number);
        if (platform::renameToFreeName(urlOf(path), urlOf(aside)))
            return aside;
        if (!platform::fileAt(urlOf(aside)))
            break;
    }
    return {};
}

/// What programs that were killed left of a change that was not done.
void clearHalfWritten(const QString &folder)
{
    const QString pattern = QFileInfo(platform::besideOf(folder + u"/*"_s + ending)).fileName();
    for (const QString &name :
         QDir(folder).entryList({pattern}, QDir::Files | QDir::Hidden | QDir::NoSymLinks))
        platform::removeName(urlOf(folder + u'/' + name));
}

QString damagedSentence(const QString &path)
{
    const QString aside = setAside(path);
    return aside.isEmpty() ? u"The stored job %1 can't be read."_s.arg(path)
                           : u"A stored job can't be read; its file is kept as %1."_s.arg(aside);
}

/// Whether every one of them has its name: the rename was the last that happened to it.
bool arePublished(const QList<OutputState> &outputs)
{
    QList<QUrl> names;
    for (const OutputState &output : outputs)
        names.append(urlOf(output.path));
    return !outputs.isEmpty() && statesOf(names) == outputs;
}

/// The folders in which a job that did not end may have left something.
QStringList foldersOf(const JobRecord &record)
{
    QStringList folders;
    for (const QUrl &name : record.claimed)
        folders.append(QFileInfo(name.toLocalFile()).absolutePath());
    for (const OutputState &output : record.outputs)
        folders.append(QFileInfo(output.path).absolutePath());
    folders.removeDuplicates();
    return folders;
}

JobRecord::State stateOf(const KXJob &job, JobRecord::State known)
{
    if (job.jobStatus() == u"Queued"_s)
        return JobRecord::State::Waiting;
    if (job.jobStatus() == u"Completed"_s)
        return JobRecord::State::Interrupted;
    return known == JobRecord::State::Publishing ? known : JobRecord::State::Running;
}

/// Whether a process of another machine still runs can't be seen, so a person has to say that it does not.
QString takenSentence(const QString &folder)
{
    const QUrl holder = urlOf(folder + u"/holder"_s);
    const QString sentence =
        u"Another window keeps the queue in %1, so jobs of this one are not stored."_s.arg(folder);
    if (HolderFile::isHolderRunning(holder))
        return sentence;
    return sentence + u" It is %1. If that has ended, remove %2 and start again."_s.arg(
                          HolderFile::holderAt(holder), holder.toLocalFile());
}

bool isOver(const KXJob &job)
{
    return job.jobStatus() == u"Completed"_s && job.outcome().verdict != steps::Verdict::Interrupted;
}

} // namespace

StoredQueue::StoredQueue(const QString &folder, KXQueueController &queue)
    : m_folder(folder)
    , m_queue(queue)
{
}

StoredQueue::~StoredQueue() = default;

QString StoredQueue::open()
{
    QStringList problems;
    m_queue.rememberChoices();
    takeFolder(problems);
    if (!m_isOpen)
        return problems.join(u' ');
    connect(&m_queue, &KXQueueController::jobAdded, this, &StoredQueue::added);
    connect(&m_queue, &KXQueueController::jobChanged, this, &StoredQueue::changed);
    connect(&m_queue, &KXQueueController::jobRemoved, this, &StoredQueue::removed);
    connect(&m_queue, &KXQueueController::jobMoved, this, &StoredQueue::moved);
    connect(&m_queue, &KXQueueController::jobRunsAgain, this, &StoredQueue::runsAgain);
    connect(&m_queue, &KXQueueController::jobPublishing, this, &StoredQueue::publishing);
    connect(&m_queue, &KXQueueController::jobClaimed, this, &StoredQueue::claimed);
    m_restoring = readAll(problems);
    QList<QueuedJob> stored;
    for (const Row &row : std::as_const(m_restoring))
        stored.append(row.record.job);
    m_queue.restore(stored);
    m_restoring.clear();
    return problems.isEmpty() ? QString() : problems.join(u' ');
}

void StoredQueue::takeFolder(QStringList &problems)
{
    if (!QDir().mkpath(m_folder))
        return problems.append(u"The queue can't be stored: the folder %1 can't be made."_s.arg(m_folder));
    m_holder = std::make_unique<HolderFile>(urlOf(m_folder + u"/holder"_s));
    const HolderFile::Answer answer = m_holder->take();
    m_isOpen = answer == HolderFile::Answer::Held;
    if (m_isOpen) {
        clearHalfWritten(m_folder);
        HolderFile::clearBeside(urlOf(m_folder + u"/holder"_s));
    }
    if (answer == HolderFile::Answer::Taken)
        problems.append(takenSentence(m_folder));
    else if (!m_isOpen)
        problems.append(u"The queue can't be stored: %1 can't be written to."_s.arg(m_folder));
}

QList<StoredQueue::Row> StoredQueue::readAll(QStringList &problems) const
{
    QList<Row> rows;
    for (const QString &name : QDir(m_folder).entryList({u'*' + ending}, QDir::Files, QDir::Name)) {
        const QString path = m_folder + u'/' + name;
        const platform::WholeFile file = platform::readWhole(path);
        const ReadRecord read = recordFrom(file.bytes);
        if (!file.problem.isNull()) {
            problems.append(u"The stored job %1 can't be read: %2."_s.arg(path, file.problem));
        } else if (read.kind == ReadRecord::Kind::Newer) {
            problems.append(
                u"The stored job %1 is of a newer version of this program, so it is kept and not shown."_s
                    .arg(path));
        } else if (read.kind == ReadRecord::Kind::Damaged) {
            problems.append(damagedSentence(path));
        } else {
            rows.append({nullptr, path, read.record, true});
            settle(rows.last());
        }
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row &a, const Row &b) { return a.record.place < b.record.place; });
    return rows;
}

/// What became of a job that a program left: finished renames make it a completed one.
void StoredQueue::settle(Row &row) const
{
    if (row.record.state == JobRecord::State::Waiting)
        return;
    for (const QString &folder : foldersOf(row.record))
        steps::clearLeftOvers(urlOf(folder));
    if (row.record.state == JobRecord::State::Publishing && arePublished(row.record.outputs)) {
        row.record.job.outcome = steps::Outcome::ok();
        for (const OutputState &output : std::as_const(row.record.outputs))
            row.record.job.outputs.append(urlOf(output.path));
    } else {
        row.record.job.outcome = steps::Outcome::interrupted(interruptedSentence);
    }
}

QString StoredQueue::store()
{
    m_lastProblem.clear();
    for (Row &row : m_rows) {
        if (!row.isStored)
            store(row);
    }
    return m_lastProblem.isEmpty() ? QString() : m_lastProblem;
}

void StoredQueue::close()
{
    m_isOpen = false;
    disconnect(&m_queue, nullptr, this, nullptr);
}

StoredQueue::Row StoredQueue::restoredRow(const KXJob &job)
{
    const auto queued = m_queue.queuedJob(job);
    while (!m_restoring.isEmpty()) {
        Row row = m_restoring.takeFirst();
        row.job = &job;
        if (queued && queued->selection == row.record.job.selection)
            return row;
    }
    return {&job, {}, {}, false};
}

StoredQueue::Row StoredQueue::newRow(const KXJob &job)
{
    Row row{&job, {}, {}, false};
    const auto queued = m_queue.queuedJob(job);
    row.record.place = lastPlace() + 1;
    if (!queued)
        return row;
    row.record.job = *queued;
    row.file = &job == m_again ? m_fileOfAgain
                               : m_folder + u'/' + QUuid::createUuid().toString(QUuid::Id128) + ending;
    m_again = nullptr;
    m_fileOfAgain.clear();
    return row;
}

double StoredQueue::lastPlace() const
{
    double last = 0;
    for (const Row &row : m_rows)
        last = std::max(last, row.record.place);
    return last;
}

void StoredQueue::added(int row)
{
    const KXJob &job = *m_queue.qJobList().at(row);
    m_rows.insert(row, m_restoring.isEmpty() ? newRow(job) : restoredRow(job));
    changed(row);
}

/// What is written already is not written again.
void StoredQueue::changed(int row)
{
    if (row < 0 || row >= m_rows.size())
        return;
    Row &known = m_rows[row];
    if (isOver(*known.job))
        return forget(known);
    const JobRecord::State state = stateOf(*known.job, known.record.state);
    if (known.isStored && state == known.record.state)
        return;
    known.record.state = state;
    store(known);
}

void StoredQueue::removed(int row)
{
    Row gone = m_rows.takeAt(row);
    if (gone.file != m_fileOfAgain || m_again == nullptr)
        forget(gone);
}

void StoredQueue::runsAgain(const KXJob &ended, const KXJob &job)
{
    for (const Row &row : std::as_const(m_rows)) {
        if (row.job != &ended || row.file.isEmpty())
            continue;
        m_again = &job;
        m_fileOfAgain = row.file;
    }
}

/// Between its neighbours; where there is no number left between them all are numbered anew.
void StoredQueue::placeBetween(int row)
{
    const double before = row > 0 ? m_rows.at(row - 1).record.place : m_rows.at(row + 1).record.place - 2;
    const double after = row + 1 < m_rows.size() ? m_rows.at(row + 1).record.place : before + 2;
    const double place = before + (after - before) / 2;
    m_rows[row].record.place = place;
    if (before < place && place < after)
        return store(m_rows[row]);
    double next = 0;
    for (Row &each : m_rows) {
        each.record.place = ++next;
        store(each);
    }
}

void StoredQueue::moved(int from, int to)
{
    m_rows.move(from, to);
    placeBetween(to);
}

StoredQueue::Row *StoredQueue::runningRow()
{
    const auto running = std::find_if(m_rows.begin(), m_rows.end(), [this](const Row &row) {
        return m_queue.qJobIsRunning() && row.job == m_queue.currentJob().get();
    });
    return running == m_rows.end() ? nullptr : &*running;
}

void StoredQueue::claimed(const QUrl &output)
{
    Row *row = runningRow();
    if (row == nullptr || row->record.claimed.contains(output))
        return;
    row->record.claimed.append(output);
    store(*row);
}

void StoredQueue::publishing(const QList<steps::Publication> &publications)
{
    Row *row = runningRow();
    if (row == nullptr)
        return;
    row->record.state = JobRecord::State::Publishing;
    row->record.outputs.clear();
    for (const steps::Publication &publication : publications) {
        OutputState state = statesOf({publication.file}).constFirst();
        state.path = publication.name.toLocalFile();
        row->record.outputs.append(state);
    }
    store(*row);
}

void StoredQueue::store(Row &row)
{
    if (row.file.isEmpty())
        return;
    const QString problem = platform::replaceSafely(row.file, toBytes(row.record));
    row.isStored = problem.isNull();
    if (row.isStored)
        return;
    const QString sentence = u"The queue can't be stored in %1: %2."_s.arg(m_folder, problem);
    if (std::exchange(m_lastProblem, sentence) != sentence)
        Q_EMIT failed(sentence);
}

void StoredQueue::forget(Row &row)
{
    if (!row.file.isEmpty() && platform::fileAt(urlOf(row.file)))
        platform::removeName(urlOf(row.file));
    row.file.clear();
    row.isStored = false;
}

} // namespace jobs

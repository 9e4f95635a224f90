#include "window/JobModel.h"

#include "jobs/KXQueueController.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using summary::JobState;

namespace window {

namespace {

constexpr qint64 oneSecond = 1000; // milliseconds

} // namespace

JobModel::JobModel(KXQueueController &queue, QObject *parent)
    : QAbstractItemModel(parent)
    , m_queue(queue)
    , m_jobs(queue.qJobList())
{
    connect(&queue, &KXQueueController::jobAdded, this, &JobModel::add);
    connect(&queue, &KXQueueController::jobChanged, this, &JobModel::change);
    connect(&queue, &KXQueueController::jobRemoved, this, &JobModel::remove);
    connect(&queue, &KXQueueController::jobMoved, this, &JobModel::move);
    connect(&queue, &KXQueueController::jobProgressListChanged, this, &JobModel::takeSteps);
    connect(&queue, &KXQueueController::pauseButtonTitleChanged, this, &JobModel::tick);
}

/// Steps carry their job, whose row may change.
QModelIndex JobModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return parent.isValid() ? createIndex(row, column, m_jobs.at(parent.row()).get())
                            : createIndex(row, column, nullptr);
}

QModelIndex JobModel::parent(const QModelIndex &child) const
{
    const auto *owner = static_cast<const KXJob *>(child.constInternalPointer());
    if (owner == nullptr)
        return {};
    const auto found = std::find_if(m_jobs.begin(), m_jobs.end(),
                                    [owner](const JobPointer &job) { return job.get() == owner; });
    return found == m_jobs.end() ? QModelIndex()
                                 : createIndex(static_cast<int>(found - m_jobs.begin()), 0, nullptr);
}

int JobModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return static_cast<int>(m_jobs.size());
    const bool hasSteps = parent.column() == 0 && parent.constInternalPointer() == nullptr &&
                          m_jobs.value(parent.row()).get() == m_stepsOf && m_stepsOf != nullptr;
    return hasSteps ? static_cast<int>(m_steps.size()) : 0;
}

int JobModel::columnCount(const QModelIndex & /*parent*/) const
{
    return ColumnCount;
}

void JobModel::add(int row)
{
    beginInsertRows({}, row, row);
    m_jobs.insert(row, m_queue.qJobList().at(row));
    endInsertRows();
}

void JobModel::change(int row)
{
    if (row >= m_jobs.size())
        return;
    const KXJob *job = m_jobs.at(row).get();
    Times &times = m_times[job];
    times.job = m_jobs.at(row);
    if (job->jobStatus() == u"Running"_s && !times.running.isValid())
        times.running.start();
    if (job->jobStatus() == u"Completed"_s && times.running.isValid() && times.taken < 0)
        times.taken = times.running.elapsed() / oneSecond;
    if (job == m_stepsOf && job->jobStatus() != u"Running"_s)
        dropSteps();
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

void JobModel::remove(int row)
{
    if (m_jobs.at(row).get() == m_stepsOf)
        dropSteps();
    beginRemoveRows({}, row, row);
    m_jobs.removeAt(row);
    endRemoveRows();
    m_times.removeIf([](auto each) { return each.value().job.expired(); }); // a cleared one may come back
}

void JobModel::move(int from, int to)
{
    beginMoveRows({}, from, from, {}, to > from ? to + 1 : to);
    m_jobs.move(from, to);
    endMoveRows();
}

void JobModel::dropSteps()
{
    const auto found = std::find_if(m_jobs.begin(), m_jobs.end(),
                                    [this](const JobPointer &job) { return job.get() == m_stepsOf; });
    if (m_steps.isEmpty() || found == m_jobs.end()) {
        m_steps.clear();
        m_stepsOf = nullptr;
        return;
    }
    const auto owner = static_cast<int>(found - m_jobs.begin());
    beginRemoveRows(index(owner, 0), 0, static_cast<int>(m_steps.size()) - 1);
    m_steps.clear();
    m_stepsOf = nullptr;
    endRemoveRows();
}

/// A new list changes only the rows that differ.
void JobModel::takeSteps()
{
    const int row = runningRow();
    if (row < 0)
        return dropSteps();
    if (m_stepsOf != m_jobs.at(row).get())
        dropSteps();
    m_stepsOf = m_jobs.at(row).get();
    const jobs::ProgressList steps = m_queue.jobProgressList();
    const QModelIndex owner = index(row, 0);
    if (steps.size() < m_steps.size()) {
        beginRemoveRows(owner, static_cast<int>(steps.size()), static_cast<int>(m_steps.size()) - 1);
        m_steps.resize(steps.size());
        endRemoveRows();
    } else if (steps.size() > m_steps.size()) {
        beginInsertRows(owner, static_cast<int>(m_steps.size()), static_cast<int>(steps.size()) - 1);
        m_steps += steps.mid(m_steps.size());
        endInsertRows();
    }
    for (int i = 0; i < m_steps.size(); ++i) {
        if (m_steps.at(i) == steps.at(i))
            continue;
        m_steps[i] = steps.at(i);
        Q_EMIT dataChanged(index(i, 0, owner), index(i, ColumnCount - 1, owner));
    }
    Q_EMIT dataChanged(owner, index(row, ColumnCount - 1), {PercentRole});
}

int JobModel::runningRow() const
{
    if (!m_queue.qJobIsRunning() || !m_queue.currentJob())
        return -1;
    return static_cast<int>(m_jobs.indexOf(m_queue.currentJob()));
}

int JobModel::percentOfRunning() const
{
    return summary::percentOf(m_steps);
}

void JobModel::tick()
{
    const int row = runningRow();
    if (row >= 0)
        Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1), {ElapsedRole});
}

JobState JobModel::stateOf(const KXJob &job) const
{
    const bool isPaused = m_queue.currentJob().get() == &job && m_queue.pauseButtonTitle() == u"Resume"_s;
    return summary::jobState(job.jobStatus(), job.outcome(), isPaused);
}

QList<JobState> JobModel::states() const
{
    QList<JobState> states;
    for (const JobPointer &job : m_jobs)
        states.append(stateOf(*job));
    return states;
}

qint64 JobModel::elapsed(const KXJob &job) const
{
    const Times times = m_times.value(&job);
    if (times.taken >= 0)
        return times.taken;
    return times.running.isValid() ? times.running.elapsed() / oneSecond : 0;
}

QString JobModel::textOf(const KXJob &job, int column) const
{
    switch (column) {
    case File:
        return job.jobFileName();
    case Type:
        return job.jobType();
    case Status:
        return summary::stateText(stateOf(job));
    default:
        return {};
    }
}

QVariant JobModel::stepData(const QModelIndex &index, int role) const
{
    const jobs::ProgressItem item = m_steps.value(index.row());
    if (role == Qt::DisplayRole)
        return index.column() == 0 ? QVariant(item.step) : index.column() == 1 ? item.progress : QVariant();
    if (role == Qt::AccessibleTextRole)
        return u"%1, %2"_s.arg(item.step, item.progress);
    return {};
}

QVariant JobModel::jobData(const KXJob &job, int column, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return textOf(job, column);
    case Qt::AccessibleTextRole:
        return column == Delete ? tr("Delete %1").arg(job.jobFileName())
                                : u"%1, %2, %3"_s.arg(job.jobFileName(), job.jobType(), textOf(job, Status));
    case Qt::ToolTipRole:
        return job.outcome().sentence.isEmpty() ? QVariant()
                                                : QVariant(job.outcome().sentence.toHtmlEscaped());
    case StateRole:
        return static_cast<int>(stateOf(job));
    case PercentRole:
        return &job == m_stepsOf ? percentOfRunning() : 0;
    case ElapsedRole:
        return elapsed(job);
    case SentenceRole:
        return job.outcome().sentence;
    case OutputsRole:
        return QVariant::fromValue(job.outputs());
    case LogRole:
        return logOf(job);
    default:
        return {};
    }
}

QVariant JobModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    return index.constInternalPointer() != nullptr ? stepData(index, role)
                                                   : jobData(*m_jobs.at(index.row()), index.column(), role);
}

QVariant JobModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList titles{{}, tr("File"), tr("Job"), tr("Status")};
    return titles.value(section);
}

QUrl logOf(const KXJob &job)
{
    QUrl found;
    for (const ConverterPointer &converter : job.stepConverterList()) {
        if (converter && QFileInfo(converter->logFileURL().toLocalFile()).isFile())
            found = converter->logFileURL();
    }
    return found;
}

} // namespace window

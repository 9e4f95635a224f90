#include "window/JobModel.h"

#include "jobs/KXQueueController.h"

#include <QApplication>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace window {

JobModel::JobModel(KXQueueController &queue, QObject *parent)
    : QAbstractTableModel(parent)
    , m_queue(queue)
    , m_jobs(queue.qJobList())
{
    connect(&queue, &KXQueueController::jobAdded, this, &JobModel::add);
    connect(&queue, &KXQueueController::jobChanged, this, &JobModel::change);
    connect(&queue, &KXQueueController::jobRemoved, this, &JobModel::remove);
    connect(&queue, &KXQueueController::jobMoved, this, &JobModel::move);
}

int JobModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_jobs.size());
}

int JobModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int{ColumnCount};
}

void JobModel::add(int row)
{
    beginInsertRows({}, row, row);
    m_jobs.insert(row, m_queue.qJobList().at(row));
    endInsertRows();
}

void JobModel::change(int row)
{
    if (row < m_jobs.size())
        Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

void JobModel::remove(int row)
{
    beginRemoveRows({}, row, row);
    m_jobs.removeAt(row);
    endRemoveRows();
}

void JobModel::move(int from, int to)
{
    beginMoveRows({}, from, from, {}, to > from ? to + 1 : to);
    m_jobs.move(from, to);
    endMoveRows();
}

QString statusTextOf(const KXJob &job)
{
    const QString status = job.jobStatus();
    if (status != u"Completed"_s)
        return status;
    switch (job.outcome().verdict) {
    case steps::Verdict::Warnings:
        return JobModel::tr("%1, with warnings").arg(status);
    case steps::Verdict::Failed:
        return JobModel::tr("%1, failed").arg(status);
    case steps::Verdict::Stopped:
        return JobModel::tr("%1, stopped").arg(status);
    case steps::Verdict::Interrupted:
        return JobModel::tr("%1, interrupted").arg(status);
    default:
        return status;
    }
}

QString JobModel::textOf(const KXJob &job, int column)
{
    switch (column) {
    case File:
        return job.jobFileName();
    case Type:
        return job.jobType();
    case Status:
        return statusTextOf(job);
    default:
        return {};
    }
}

QVariant JobModel::iconOf(const KXJob &job, int column) const
{
    const QStyle *style = QApplication::style();
    if (column == Delete)
        return style->standardIcon(QStyle::SP_TitleBarCloseButton);
    if (column != Status)
        return {};
    switch (job.outcome().verdict) {
    case steps::Verdict::Ok:
        return style->standardIcon(QStyle::SP_DialogApplyButton);
    case steps::Verdict::Warnings:
    case steps::Verdict::Interrupted:
        return style->standardIcon(QStyle::SP_MessageBoxWarning);
    case steps::Verdict::Failed:
        return style->standardIcon(QStyle::SP_MessageBoxCritical);
    default:
        return {};
    }
}

QVariant JobModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const KXJob &job = *m_jobs.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return textOf(job, index.column());
    case Qt::DecorationRole:
        return iconOf(job, index.column());
    case Qt::AccessibleTextRole:
        return index.column() == Delete ? tr("Delete %1").arg(job.jobFileName())
                                        : textOf(job, index.column());
    case Qt::ToolTipRole:
        return job.outcome().sentence.isEmpty() ? QVariant()
                                                : QVariant(job.outcome().sentence.toHtmlEscaped());
    default:
        return {};
    }
}

QVariant JobModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList titles{{}, tr("File"), tr("Job"), tr("Status")};
    return titles.value(section);
}

} // namespace window

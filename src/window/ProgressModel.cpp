#include "window/ProgressModel.h"

#include "jobs/KXQueueController.h"

#include <algorithm>

namespace window {

ProgressModel::ProgressModel(KXQueueController &queue, QObject *parent)
    : QAbstractTableModel(parent)
    , m_queue(queue)
    , m_items(queue.jobProgressList())
{
    connect(&queue, &KXQueueController::jobProgressListChanged, this, &ProgressModel::refresh);
}

int ProgressModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

int ProgressModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int{ColumnCount};
}

void ProgressModel::refresh()
{
    const jobs::ProgressList items = m_queue.jobProgressList();
    if (items.size() < m_items.size()) {
        beginRemoveRows({}, static_cast<int>(items.size()), rowCount() - 1);
        m_items.resize(items.size());
        endRemoveRows();
    } else if (items.size() > m_items.size()) {
        beginInsertRows({}, rowCount(), static_cast<int>(items.size()) - 1);
        m_items += items.mid(m_items.size());
        endInsertRows();
    }
    for (int row = 0; row < rowCount(); ++row) {
        if (m_items.at(row) == items.at(row))
            continue;
        m_items[row] = items.at(row);
        Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
    }
}

QVariant ProgressModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const jobs::ProgressItem &item = m_items.at(index.row());
    return index.column() == Step ? item.step : item.progress;
}

QVariant ProgressModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Step ? tr("Step") : tr("Progress");
}

} // namespace window

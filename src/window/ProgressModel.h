#pragma once

#include "jobs/ProgressItem.h"

#include <QAbstractTableModel>

class KXQueueController;

namespace window {

/// The running job's steps with their progress. A new list changes only the rows that differ. Owned by the
/// drawer.
class ProgressModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Step, Progress, ColumnCount };

    /// The queue must outlive the model.
    ProgressModel(KXQueueController &queue, QObject *parent);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void refresh();

    KXQueueController &m_queue;
    jobs::ProgressList m_items;
};

} // namespace window

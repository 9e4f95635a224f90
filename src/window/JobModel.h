#pragma once

#include "jobs/KXJob.h"

#include <QAbstractTableModel>

class KXQueueController;

namespace window {

/// The queue's jobs as a table: a cell to delete the row, file, type, status with the outcome. It follows
/// the queue's signals row by row. Owned by the drawer.
class JobModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Delete, File, Type, Status, ColumnCount };

    /// The queue must outlive the model.
    JobModel(KXQueueController &queue, QObject *parent);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void add(int row);
    void change(int row);
    void remove(int row);
    void move(int from, int to);
    static QString textOf(const KXJob &job, int column);
    QVariant iconOf(const KXJob &job, int column) const;

    KXQueueController &m_queue;
    QList<JobPointer> m_jobs;
};

/// "Completed, with warnings": the queue's status and how the job ended, for the eye.
QString statusTextOf(const KXJob &job);

} // namespace window

#pragma once

#include "jobs/KXJob.h"
#include "summary/JobLook.h"

#include <QAbstractItemModel>
#include <QElapsedTimer>

class KXQueueController;

namespace window {

/// The queue's jobs, and below the running one its steps with their progress. A job has a cell to delete its
/// row, file, type and status. It follows the queue's signals row by row. Owned by the drawer.
class JobModel final : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { Delete, File, Type, Status, ColumnCount };
    /// Of a job, in whichever column.
    enum DataRole { StateRole = Qt::UserRole, PercentRole, ElapsedRole, SentenceRole, OutputsRole, LogRole };

    /// The queue must outlive the model.
    JobModel(KXQueueController &queue, QObject *parent);

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    static bool isStep(const QModelIndex &index) { return index.parent().isValid(); }
    JobPointer job(int row) const { return m_jobs.value(row); }
    summary::JobState stateOf(const KXJob &job) const;
    QList<summary::JobState> states() const;
    /// Seconds since the job began; of one that has ended, how long it took.
    qint64 elapsed(const KXJob &job) const;
    /// Row of the job that runs; -1 when none does.
    int runningRow() const;
    int percentOfRunning() const;
    /// Time has passed.
    void tick();

private:
    struct Times
    {
        std::weak_ptr<const KXJob> job;
        QElapsedTimer running;
        qint64 taken = -1; ///< seconds, once it has ended
    };

    void add(int row);
    void change(int row);
    void remove(int row);
    void move(int from, int to);
    void takeSteps();
    void dropSteps();
    QVariant stepData(const QModelIndex &index, int role) const;
    QVariant jobData(const KXJob &job, int column, int role) const;
    QString textOf(const KXJob &job, int column) const;

    KXQueueController &m_queue;
    QList<JobPointer> m_jobs;
    QHash<const KXJob *, Times> m_times;
    const KXJob *m_stepsOf = nullptr;
    jobs::ProgressList m_steps;
};

/// The log of a job that can be read now; empty where there is none.
QUrl logOf(const KXJob &job);

} // namespace window

#pragma once

#include "jobs/JobRecord.h"
#include "steps/PublishList.h"

#include <QObject>

#include <memory>

class KXJob;
class KXQueueController;

namespace platform {
class HolderFile;
}

namespace jobs {

/// Keeps what waits and what runs in a folder of the program, one file a job, written at every change of its
/// state: however the program ends, the next one shows those jobs again and starts none of them. Owned by the
/// window program; only one at a time keeps a folder. Main thread only. A job that has ended is not kept.
class StoredQueue final : public QObject
{
    Q_OBJECT

public:
    /// Nothing is read or made yet. The queue must outlive it.
    StoredQueue(const QString &folder, KXQueueController &queue);
    ~StoredQueue() override;

    /// Takes the folder, gives the queue the jobs that are stored, and stores what it holds from now on.
    /// Once. A null text, or sentences for the user: the folder is another program's, a record is damaged or
    /// of a newer version.
    QString open();
    /// Tries again to store what could not be. A null text, or why something of it still can't.
    QString store();
    /// The program is about to end: what is stored stays, whatever becomes of the rows.
    void close();
    bool isOpen() const { return m_isOpen; }
    QString folder() const { return m_folder; }

Q_SIGNALS:
    /// A job could not be stored: it would be lost with the program. Said once for each reason.
    void failed(const QString &sentence);

private:
    struct Row
    {
        const KXJob *job = nullptr;
        QString file; ///< empty for a row that is not kept
        JobRecord record;
        bool isStored = false;
    };

    void takeFolder(QStringList &problems);
    QList<Row> readAll(QStringList &problems) const;
    void settle(Row &row) const;
    void added(int row);
    void changed(int row);
    void removed(int row);
    void moved(int from, int to);
    void runsAgain(const KXJob &ended, const KXJob &job);
    void publishing(const QList<steps::Publication> &publications);
    void claimed(const QUrl &output);
    Row restoredRow(const KXJob &job);
    Row newRow(const KXJob &job);
    Row *runningRow();
    void store(Row &row);
    void forget(Row &row);
    void placeBetween(int row);
    double lastPlace() const;

    QString m_folder;
    KXQueueController &m_queue;
    std::unique_ptr<platform::HolderFile> m_holder;
    QList<Row> m_rows;      ///< those of the queue
    QList<Row> m_restoring; ///< read, and not rows yet
    const KXJob *m_again = nullptr;
    QString m_fileOfAgain; ///< it goes on in the file of the job in whose place it is
    QString m_lastProblem;
    bool m_isOpen = false;
};

} // namespace jobs

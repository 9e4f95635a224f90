#pragma once

#include <QString>
#include <QStringList>

namespace app {

/// Remembers on disk which outputs a job has started, so that after a crash the half-made ones are known.
/// Each process has a journal of its own, beside the settings. Owned by the watch session.
class OutputJournal final
{
public:
    /// The folder in which journals lie; it is made when something is written.
    explicit OutputJournal(const QString &folder);
    ~OutputJournal();
    Q_DISABLE_COPY_MOVE(OutputJournal)

    /// The outputs that processes which are gone had started and not finished; their journals are removed.
    QStringList takeLeftOver() const;
    void started(const QString &output);
    /// The job ended, however: none of its outputs is half-made without being known as such.
    void finished();

private:
    QString ownPath() const;

    QString m_folder;
};

} // namespace app

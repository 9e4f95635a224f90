#pragma once

#include "steps/KXConverter.h"
#include "steps/Publisher.h"

#include <QObject>

namespace jobs {

/// What the steps of a job leave: which files get their names, which one stays as an incomplete one, which
/// logs stay. Files that stand alone are published although others failed; those of one step all or none.
/// Owned by its job; main thread only.
class JobResults final : public QObject
{
    Q_OBJECT

public:
    explicit JobResults(steps::OutputGuard &guard);

    /// A step that has ended. Files that nobody wanted are never published.
    void add(const KXConverter &converter, steps::Verdict verdict);
    /// They are wanted after all, though their step was to keep them for the job alone.
    void want(const QList<QUrl> &names);

    /// Gives every finished file its name; settled() follows, at once where there is none.
    void publish();
    /// No file gets its name any more. False when they have theirs already.
    bool cancel() { return m_publisher.cancel(); }
    /// Published files, in the order of their steps.
    const QList<QUrl> &outputs() const { return m_outputs; }
    /// Those that got another name than they were meant to have, as their own was taken meanwhile.
    const QList<std::pair<QUrl, QUrl>> &renamed() const { return m_renamed; }
    /// What went wrong with that; Unknown when nothing did.
    const steps::Outcome &problem() const { return m_problem; }

    /// Of what was not published, the largest file stays under a name that says that it is not whole. Answers
    /// that name; empty when there is none.
    QUrl keepIncomplete();
    /// A log with the commands of its runs in front and how the job ended behind. Answers its name; empty
    /// when it was never written.
    QUrl keepLog(const QUrl &log, const QString &lastLine);

Q_SIGNALS:
    void settled();

private:
    struct Step
    {
        QList<QUrl> files;
        bool isWhole = false;
        bool isWanted = false;
    };
    void settle(const steps::PublishResult &result);
    void takeNames();
    QByteArray commandsFor(const QUrl &log) const;

    steps::OutputGuard &m_guard;
    QList<Step> m_steps;
    QList<steps::Launch> m_runs;
    QList<steps::Publication> m_publications;
    QList<QUrl> m_outputs;
    QList<std::pair<QUrl, QUrl>> m_renamed;
    steps::Outcome m_problem;
    steps::Publisher m_publisher;
};

} // namespace jobs

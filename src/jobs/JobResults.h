#pragma once

#include "jobs/JobContext.h"
#include "steps/KXConverter.h"
#include "steps/OutputCheck.h"
#include "steps/OutputProof.h"
#include "steps/Publisher.h"

#include <QObject>
#include <QPointer>

#include <vector>

namespace jobs {

/// What the steps of a job leave: which files get their names, which one stays as an incomplete one, which
/// logs stay. Only what was checked is published. Files that stand alone are published although others
/// failed; those of one step all or none. Owned by its job; main thread only.
class JobResults final : public QObject
{
    Q_OBJECT

public:
    JobResults(const JobContext &context, steps::OutputGuard &guard);

    /// A step that has just been started: its sources are read while its tool works.
    void stepStarted(const KXConverter &converter);
    /// A step that has ended. Files that nobody wanted are never published.
    void add(const KXConverter &converter, steps::Verdict verdict);
    /// They are wanted after all, though their step was to keep them for the job alone.
    void want(const QList<QUrl> &names);

    /// Checks every finished file, verifies it where that is wanted, and gives it its name; settled()
    /// follows, at once where there is none.
    void publish();
    /// Whether the checks are over.
    bool isPublishing() const { return m_isPublishing; }
    /// Whether copies are compared with their sources bit for bit.
    bool isVerifying() const { return m_proof.isRunning(); }
    /// Suspends the tools that run for it, and starts no other until it is resumed.
    void pause();
    void resume();
    /// No file gets its name any more. False when they have theirs already: then settled() was emitted.
    bool cancel();
    /// Published files, in the order of their steps.
    const QList<QUrl> &outputs() const { return m_outputs; }
    /// Those that got another name than they were meant to have, as their own was taken meanwhile.
    const QList<std::pair<QUrl, QUrl>> &renamed() const { return m_renamed; }
    /// What the checks found, and what went wrong with publishing; Unknown when there was neither.
    const steps::Outcome &found() const { return m_found; }
    /// Whether that says where a source ends that was cut.
    bool tellsOfEnd() const { return m_tellsOfEnd; }
    /// The outputs with what was measured of their tracks.
    const QList<media::MeantOutput> &measured() const { return m_measured; }
    /// What the check read of the sources.
    const media::Films &films() const { return m_check.films(); }
    /// The logs of steps whose outputs the check did not pass.
    const QList<QUrl> &logsOfFailed() const { return m_logsOfFailed; }

    /// Of what was not published, the largest file stays under a name that says that it is not whole. Answers
    /// that name; empty when there is none.
    QUrl keepIncomplete();
    /// A log with the commands of its runs in front and how the job ended behind. Answers its name; empty
    /// when it was never written.
    QUrl keepLog(const QUrl &log, const QString &lastLine);

Q_SIGNALS:
    /// Right before the attempt to give these files their names.
    void publishing(const QList<steps::Publication> &publications);
    void settled();

private:
    struct Step
    {
        QList<QUrl> files;
        QList<media::MeantOutput> meant;
        QUrl log;
        QString told; ///< by its tool
        steps::OutputCheck::Damage damage = steps::OutputCheck::Damage::ToBeTold;
        bool isWhole = false;
        bool isWanted = false;
    };
    int runningTools() const;
    void checkNext();
    void checked();
    void verified();
    void take(const QList<media::MeantOutput> &measured, const steps::Outcome &outcome);
    QList<QUrl> publishable() const;
    void publishChecked();
    void settle(const steps::PublishResult &result);
    void takeNames();
    QByteArray commandsFor(const QUrl &log) const;

    const KXPreferences &m_preferences;
    steps::OutputGuard &m_guard;
    QList<Step> m_steps;
    bool m_isChecking;
    bool m_isPublishing = false;
    steps::OutputCheck m_check;
    steps::OutputProof m_proof;
    qsizetype m_toCheck = 0; ///< the step whose outputs are checked
    QList<media::MeantOutput> m_measured;
    QList<QUrl> m_logsOfFailed;
    QList<steps::Launch> m_runs;
    QList<steps::Publication> m_publications;
    QList<QUrl> m_outputs;
    QList<std::pair<QUrl, QUrl>> m_renamed;
    steps::Outcome m_found;
    bool m_tellsOfEnd = false;
    std::vector<QPointer<const KXConverter>> m_working; ///< steps that were started
    steps::Publisher m_publisher;
};

} // namespace jobs

#pragma once

#include "jobs/ProgressItem.h"

#include <QElapsedTimer>

#include <memory>
#include <optional>

class KXJob;

namespace jobs {

/// How far a job is and how fast. A plain value; what is not known is absent.
struct Pace
{
    double percent = 0; ///< of the whole job, all its steps and passes
    double elapsedSeconds = 0;
    std::optional<double> leftSeconds; ///< only once it has run for a while
    std::optional<double> speed;       ///< seconds of film a second
    std::optional<double> fps;         ///< pictures a second
};

/// What part of a step its progress text says is done, from 0 to 1; nothing for a text that does not tell.
std::optional<double> shareIn(const QString &progress);
/// How long what is left will take, at the pace so far. Nothing in the first seconds, and where nothing is
/// done yet.
std::optional<double> secondsLeft(double elapsedSeconds, double share);

/// Keeps the pace of one job: the time that it has run, without its pauses, and how much of it is done. Owned
/// by the job.
class PaceKeeper final
{
public:
    /// The steps as they are shown now; the first call is the job's start. A step that shows something else
    /// meanwhile ("moving moov atom") is as far as it was.
    void take(const ProgressList &steps);
    void pause();
    void resume();
    /// The speed of a tool is not known here.
    Pace pace() const;

private:
    double elapsed() const;
    double share() const;

    QElapsedTimer m_running;
    double m_before = 0; ///< seconds until the last pause
    QList<double> m_shares;
};

/// How long the jobs that run and wait will take together, if those that wait go like the one that runs.
/// Nothing where that one tells nothing yet, or the size of a source is not known.
std::optional<double> secondsLeftFor(const QList<std::shared_ptr<KXJob>> &queue);

/// "1:05:09", "2:31", "0:07".
QString clockText(double seconds);

} // namespace jobs

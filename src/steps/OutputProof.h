#pragma once

#include "media/FilmCheck.h"
#include "media/StreamProof.h"
#include "steps/Outcome.h"
#include "tools/ToolProcess.h"

#include <QObject>

#include <memory>
#include <vector>

class KXPreferences;

namespace steps {

/// Verifies outputs that were checked, by reading them and their sources whole: copied tracks by the hashes
/// of their bits, encoded video by its key frames. Never waits, and never runs more tools than it may. Owned
/// by its job; lives on the main thread.
class OutputProof final : public QObject
{
    Q_OBJECT

public:
    OutputProof(const KXPreferences &preferences, int toolsAtOnce);
    ~OutputProof() override;

    /// The outputs as their check answered them, and what was read of them and of their sources. finished()
    /// follows from the event loop, unless it is ended first.
    void begin(const QList<media::MeantOutput> &outputs, const media::Films &films);
    bool isRunning() const { return m_isRunning; }
    /// Suspends its tools, and starts no other until it is resumed.
    void pause();
    void resume();
    /// Stops at once; finished() does not follow any more.
    void end();

    /// With what was found out of their tracks; none before finished().
    const QList<media::MeantOutput> &outputs() const { return m_outputs; }
    /// Failed when anything differs; Ok says nothing, as the tracks do.
    const Outcome &outcome() const { return m_outcome; }

Q_SIGNALS:
    void finished();

private:
    struct Run;
    /// What shows one thing: two runs whose hashes are compared, or one of key frames.
    struct Work;

    Run *add(const media::FilmRun &what);
    void startWaiting();
    void start(Run &run);
    void finish(Run &run);
    void conclude();

    const KXPreferences &m_preferences;
    const int m_toolsAtOnce;
    QList<media::MeantOutput> m_outputs;
    std::vector<std::unique_ptr<Work>> m_works;
    std::vector<std::unique_ptr<Run>> m_runs; ///< in their order, those that have ended among them
    Outcome m_outcome = Outcome::ok();
    bool m_isRunning = false;
    bool m_isPaused = false;
};

} // namespace steps

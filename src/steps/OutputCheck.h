#pragma once

#include "media/FilmCheck.h"
#include "steps/FilmReads.h"
#include "steps/Outcome.h"

namespace steps {

/// The check of what a step wrote: reads the sources while the tool works and the outputs once it has ended,
/// and holds them against what was meant. Never waits. Owned by its job, one for each; lives on the main
/// thread.
class OutputCheck final : public QObject
{
    Q_OBJECT

public:
    /// Whether a damaged source was told of already, by what the tool's exit status and words came to.
    enum class Damage { ToBeTold, IsTold };

    OutputCheck(const KXPreferences &preferences, int toolsAtOnce);

    /// To be called when the tool starts: these are the outputs as they are meant, as far as they are known
    /// by then. Only their sources, and of stretches their times, count here. May be called again.
    void readSources(const QList<media::MeantOutput> &outputs);
    /// To be called when the tool has ended well, with the outputs as they lie there and what the tool
    /// printed. Whatever was found out about an output before is forgotten. finished() follows from the event
    /// loop, unless it is ended first.
    void begin(const QList<media::MeantOutput> &outputs, const QString &toolLog,
               Damage damage = Damage::ToBeTold);
    bool isRunning() const { return m_isRunning; }
    /// Stops at once; finished() does not follow any more.
    void end();

    /// One for each of the outputs, in their order; none before finished().
    const QList<media::CheckedOutput> &results() const { return m_results; }
    /// What was read of the sources and of the outputs' files.
    const media::Films &films() const { return m_reads.facts(); }
    /// All results as one: the worst verdict and the sentences, each once.
    Outcome outcome() const;
    /// Whether it says where a source ends that was cut.
    bool tellsOfEnd() const;
    /// Other tools of the job that run, which take the place of reads; to be asked at any time.
    void setOtherTools(const std::function<int()> &count) { m_reads.setOtherTools(count); }
    /// One of them has ended.
    void otherToolEnded() { m_reads.startWaiting(); }
    /// Suspends its tools, and starts no other until it is resumed.
    void pause() { m_reads.pause(); }
    void resume() { m_reads.resume(); }

Q_SIGNALS:
    void finished();

private:
    void proceed();

    FilmReads m_reads;
    QList<media::MeantOutput> m_outputs;
    media::RunFigures m_figures;
    QList<media::CheckedOutput> m_results;
    bool m_isRunning = false;
    bool m_readsOutputs = false;
};

/// What a result is called among the outcomes of steps.
Outcome outcomeOf(const media::CheckedOutput &result);

} // namespace steps

#pragma once

#include "media/Receipt.h"
#include "media/SourceStreams.h"
#include "steps/Outcome.h"

#include <QHash>

class KXConverter;

namespace jobs {

/// Collects what becomes of the tracks of a job's sources, step by step, into one receipt. What steps write
/// for the job alone is no part of it: their tracks are told as what they became in the end. Owned by its
/// job.
class JobReceipt final
{
public:
    /// A step that has ended. What a failed one was to write is told as left out.
    void add(const KXConverter &converter, steps::Verdict verdict);
    /// Files that are wanted after all, though their step was to keep them for the job alone.
    void addWanted(const KXConverter &converter);
    /// What a source holds, however its tracks were chosen.
    void takeStreams(const QUrl &source, const media::SourceStreams &streams);
    /// Outputs that were looked at, with what was measured, in the place of those of the same names.
    void takeMeasured(const QList<media::MeantOutput> &outputs);
    /// An output got another name than it was meant to have.
    void rename(const QUrl &from, const QUrl &to);
    /// The outputs that got their names; what the others were to hold is told as left out.
    void keepOnly(const QList<QUrl> &published);
    /// Nothing became of anything: the job was stopped.
    void clear();

    media::Receipt receipt() const;
    /// The lines of a receipt for the log of a step: what is in its own outputs, and what is in none.
    QStringList linesFor(const QUrl &log, const media::Receipt &receipt) const;

private:
    void take(const KXConverter &converter, const QList<media::MeantOutput> &outputs);

    QList<media::MeantOutput> m_outputs;
    QHash<QUrl, QList<QUrl>> m_outputsOfLogs;
    QHash<QUrl, media::SourceStreams> m_streams;
};

} // namespace jobs

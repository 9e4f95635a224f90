#pragma once

#include "jobs/JobRequest.h"
#include "steps/Outcome.h"

#include <QList>
#include <QUrl>

#include <optional>

namespace jobs {

/// A source as it was when its job was added.
struct SourceState
{
    QString path;
    qint64 size = 0;
    qint64 changed = 0; ///< milliseconds since 1970

    bool operator==(const SourceState &) const = default;
};

/// What a job is made from, apart from the job: it can be made again from it, in this run of the program or
/// in another one.
struct QueuedJob
{
    JobKind kind = JobKind::Conversion;
    QString fileName;           ///< as the row shows it
    SelectionPointer selection; ///< of its own, and as it was when the job was added: a job changes its own
    QList<SourceState> sources;
    steps::Outcome outcome; ///< how it ended; Unknown while it waits
    QList<QUrl> outputs;    ///< of an ended one, those that were published
};

/// A selection with tracks of its own: one copy per track, the same one in every list.
SelectionPointer independentCopy(const KXSelection &selection);
/// Every file that a job of that selection reads.
QList<QUrl> sourcesOf(const KXSelection &selection);
/// How large the results of such a job are likely to be; absent where that is not known. Of a selection as it
/// was chosen.
std::optional<qint64> expectedBytes(JobKind kind, const KXSelection &selection);
/// How they are now; one that is not there has no size and no time.
QList<SourceState> statesOf(const QList<QUrl> &sources);
/// Why such a job can't run as it was chosen: one of its sources is gone or has changed. A null text when it
/// can.
QString changeOf(const QList<SourceState> &sources);

} // namespace jobs

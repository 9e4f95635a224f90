#pragma once

#include "selection/KXSelection.h"

#include <optional>

namespace jobs {

/// What a job does; each kind has a job class of its own, which the factory knows.
enum class JobKind {
    Conversion,
    Muxing,     ///< into an MKV, track by track
    MkvEditing, ///< of tracks or files, by the selection's "jobType"
    TrackExtraction,
    Joining,
    Splitting,
    Remux,
    SubtitleSending,
};

/// What a queue is asked for: the kind, and the selection that the jobs take copies of.
struct JobRequest
{
    JobKind kind = JobKind::Conversion;
    SelectionPointer selection;
};

/// The word for a kind that the selection carries as "jobType"; of an editing, that of a track removal.
QString jobTypeOf(JobKind kind);
/// The kind that a "jobType" stands for by itself; none for a track removal and for words of no meaning.
std::optional<JobKind> kindOfJobType(const QString &jobType);
/// A request whose selection carries the kind's word.
JobRequest requestFor(JobKind kind, const SelectionPointer &selection);

} // namespace jobs

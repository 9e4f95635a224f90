#pragma once

#include "jobs/KXJob.h"

#include <QString>

namespace cli {

/// "film.mkv: converting 45%, 1:20 left, 5:31 for all, then 3 more": a running job's steps, the time that is
/// left as far as it is known, and what follows it in the queue.
QString liveLine(const KXJob &job, const jobs::ProgressList &steps, const QList<JobPointer> &queue);

/// A line that begins with a subject, such as a film's name, made to fit into so many columns: the subject
/// gives up its middle, so that the numbers behind it are seen.
QString fittedLine(const QString &line, const QString &subject, qsizetype columns);

} // namespace cli

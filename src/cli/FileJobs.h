#pragma once

#include "selection/KXSelection.h"

class KXQueueController;

namespace cli {

/// A selection for a job that works on whole files.
SelectionPointer selectionOfFiles(const QStringList &paths, const QString &jobType);

/// Why a path can't be worked on; a null text when it can.
QString problemWithFile(const QString &path);

/// Puts a selection into a queue; a track removal has a job that the queue does not choose by itself.
void enqueue(KXQueueController &queue, const SelectionPointer &selection);

} // namespace cli

#pragma once

#include "selection/KXSelection.h"

#include <QJsonObject>

namespace jobs {

/// A selection with its tracks, word by word, as it is stored with a job. A track that stands in several
/// lists is written once. Fields that are absent stay absent.
QJsonObject toRecord(const KXSelection &selection);
/// Null where a value is not of its field's kind. Words that are not known are passed over, words that are
/// missing leave a field as a new selection has it: they are a newer and an older version's.
SelectionPointer selectionFrom(const QJsonObject &record);

} // namespace jobs

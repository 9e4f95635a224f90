#pragma once

#include <QtGlobal>

namespace bench {

/// The most memory that this program has had resident so far, in bytes.
qint64 peakResidentBytes();

} // namespace bench

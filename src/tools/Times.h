#pragma once

#include <QString>

namespace tools {

/// Whole seconds of an H:M:S text, as tools print times: the fraction is dropped. 0 for anything but three
/// pieces.
qint64 secondsIn(const QString &time);

} // namespace tools

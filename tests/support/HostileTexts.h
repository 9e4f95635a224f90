#pragma once

#include <QStringList>

namespace support {

/// Texts that a shell would love to read as syntax: first the classics, each written for one trap,
/// then random ones over an alphabet heavy in special characters. The same on every run. None holds
/// a NUL; none is longer than 200 bytes but the one that is 255 bytes long.
QStringList hostileTexts(qsizetype count);
/// The same as names of files: without a slash, not empty, neither "." nor "..".
QStringList hostileNames(qsizetype count);
/// The programs that the texts would start if they were read as syntax.
QStringList temptingPrograms();

} // namespace support

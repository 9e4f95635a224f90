#pragma once

#include <QByteArrayList>

namespace support {

/// ffprobe's answer for streams that are given as lists of "key=value". A key "tags.title" stands in the
/// stream's tags; these come last. An index that is a number becomes the stream's place, as ffprobe has it.
QByteArray probeJson(const QList<QByteArrayList> &streams);

} // namespace support

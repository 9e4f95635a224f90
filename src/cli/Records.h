#pragma once

#include <QJsonObject>

class KXVideoFile;
class KXVideoTrack;

namespace cli {

/// Every field word of the file that is copied between files; texts as texts, flags as booleans,
/// locations as paths, an absent value as null.
QJsonObject fileRecord(const KXVideoFile &file);
/// Every field word of the track, in the same forms.
QJsonObject trackRecord(const KXVideoTrack &track);

} // namespace cli

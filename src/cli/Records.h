#pragma once

#include <QJsonArray>
#include <QJsonObject>

class KXVideoFile;
class KXVideoTrack;

namespace media {
struct Receipt;
}

namespace cli {

/// Every field word of the file that is copied between files; texts as texts, flags as booleans,
/// locations as paths, an absent value as null.
QJsonObject fileRecord(const KXVideoFile &file);
/// Every field word of the track, in the same forms.
QJsonObject trackRecord(const KXVideoTrack &track);
/// What became of every track of a job's sources, one object each; what is not known is null.
QJsonArray receiptRecord(const media::Receipt &receipt);

} // namespace cli

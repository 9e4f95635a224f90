#pragma once

#include <QString>
#include <QVariantMap>

namespace media {

/// What a probed stream tells of its form, beyond what a track's fields say: by it one knows whether a device
/// plays the stream. A plain value; 0 and absent stand for what was not told.
struct StreamForm
{
    QString profile; ///< "High", "LC"
    int level = 0;   ///< of H.264: 41
    QString pixelFormat;
    QString fieldOrder; ///< "progressive", "tt", ...
    QString transfer;   ///< how brightness is coded: "bt709", "smpte2084"
    int width = 0;
    int height = 0;
    double frameRate = 0; ///< pictures a second, on average
    int sampleRate = 0;
    double seconds = 0; ///< how long it lasts

    bool isInterlaced() const;
    /// Whether its brightness is coded for screens with a high range.
    bool isHighRange() const;
    bool operator==(const StreamForm &) const = default;
};

StreamForm streamFormOf(const QVariantMap &stream);

} // namespace media

#pragma once

#include "media/KXVideoFile.h"
#include "media/ProbeReader.h"

#include <QList>
#include <QUrl>

namespace engines {

/// What of a stream decides whether another one can follow it, in ffprobe's words. Values that a stream does
/// not have are empty.
struct JoinStream
{
    QString type; ///< "video", "audio", "subtitle", "data", "attachment"
    QString codec;
    QString size; ///< "320x240"
    QString pixelFormat;
    QString frameRate; ///< "30000/1001"
    QString sampleRate;
    QString channels;
    QString extradata; ///< a hash of what the codec needs to begin
    QString timeBase;  ///< "1/12800"
    bool isCover = false;

    /// A cover, a font, a time code: not a track that a film lacks when it is not there.
    bool isExtra() const;
};

/// One file of a join as it was found.
struct JoinFile
{
    QUrl url;
    QString format; ///< "matroska,webm"
    QList<JoinStream> streams;
    QString words;         ///< what ffprobe said beside the streams
    QString problem;       ///< why it can't be joined at all, a sentence; null when it was read
    VideoFilePointer film; ///< as every probe shows it; null where it holds no film
};

/// The file from what ffprobe printed of it.
JoinFile joinFileOf(const QUrl &url, const media::Printout &printed,
                    const tools::ToolPlaces *places = nullptr);

} // namespace engines

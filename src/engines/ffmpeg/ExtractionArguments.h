#pragma once

#include "tools/OptionItem.h"

#include <QUrl>

class KXVideoTrack;

namespace engines {

/// How the step is called in the queue.
QString extractionLabel(const KXVideoTrack &track);
/// The output's path: "BASE.streamN.EXTENSION", with ".ass" for MP4's text subtitles.
QUrl extractionOutput(const QString &base, const KXVideoTrack &track);
/// A second file that the tool writes beside the output, a VobSub's ".sub"; without a path: none.
QUrl extractionCompanion(const QUrl &output, const KXVideoTrack &track);
/// True for a picture subtitle in an MKV file, which mkvextract writes; ffmpeg writes all else.
bool isForMkvextract(const KXVideoTrack &track);
/// True for a picture subtitle in a file of the MP4 family, for which a background run starts no tool.
bool isForMp4box(const KXVideoTrack &track);

/// The lists of a process object, one argument an item.
tools::OptionList mkvextractArguments(const KXVideoTrack &track, const QUrl &output);
tools::OptionList ffmpegExtractionArguments(const KXVideoTrack &track, const QUrl &output);
/// The lists of a line in the shell's background.
tools::OptionList mkvextractShellItems(const KXVideoTrack &track, const QUrl &output, const QUrl &log);
tools::OptionList ffmpegExtractionShellItems(const KXVideoTrack &track, const QUrl &output, const QUrl &log);

/// The launch form of an ffmpeg extraction: ffmpeg knows no format by the extension "dtshd".
tools::OptionList extractionLaunchForm(const tools::OptionList &meant, const QUrl &output);

} // namespace engines

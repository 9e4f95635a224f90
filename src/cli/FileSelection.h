#pragma once

#include "selection/KXSelection.h"

#include <QString>

#include <optional>

class KXVideoFile;

namespace cli {

class Session;

/// A probed file with a selection of its tracks, or why there is none.
struct FileSelection
{
    QString path;
    QString status; ///< the probe's answer: "OK", "not a video", "track not identified"
    SelectionPointer selection;
};

/// What is taken when no tracks are named.
enum class DefaultTracks { FirstOfEachKind, All };

/// Probes a file; an interrupt ends it.
std::shared_ptr<KXVideoFile> probed(Session &session, const QString &path, QString &status);

/// Probes a file and selects its tracks: those of the list, or the default ones.
FileSelection selectFile(Session &session, const QString &path, const std::optional<QStringList> &tracks,
                         DefaultTracks otherwise);

/// The stream indexes of the list that the file does not have.
QStringList missingTracks(const KXSelection &selection, const std::optional<QStringList> &tracks);

/// Takes the selected subtitles out again.
void leaveOutSubtitles(KXSelection &selection);

} // namespace cli

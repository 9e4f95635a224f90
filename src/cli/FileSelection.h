#pragma once

#include "cli/Command.h"
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
    QString refusal; ///< a null text when there is a selection
    QString wayOut;  ///< of the refusal, in a line of its own; a null text where there is none
    SelectionPointer selection;
};

/// Which tracks are taken: all, what the current track preset chooses, or a list of stream indexes.
struct TrackChoice
{
    enum class Way { All, Preset, ByHand } way = Way::All;
    QStringList indexes;    ///< for ByHand
    QStringList addedPaths; ///< files that are taken in as further tracks
};

/// Probes a file by itself; an interrupt ends it.
std::shared_ptr<KXVideoFile> probed(Session &session, const QString &path, QString &status);

/// Makes a file the program's current one, takes added files in and selects tracks.
FileSelection selectFile(Session &session, const QString &path, const TrackChoice &choice);

/// Says why there is no selection, unless an interrupt is the reason; answers Failed.
ExitStatus refused(Session &session, const FileSelection &file);

/// The stream indexes of the choice that the file does not have.
QStringList missingTracks(const KXSelection &selection, const TrackChoice &choice);

/// Takes the selected subtitles of the file itself out again.
void leaveOutSubtitles(KXSelection &selection);

} // namespace cli

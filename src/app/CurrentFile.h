#pragma once

#include "media/KXVideoFile.h"

class KXPresetsController;
class KXSelectionController;

namespace app {

/// The one file that is worked on: loads a video into it, adds tracks to it, and lets the presets choose.
/// Owned by the program. It asks no questions and shows nothing.
class CurrentFile final
{
public:
    /// All are the program's and outlive it.
    CurrentFile(const VideoFilePointer &file, KXSelectionController &selectionController,
                KXPresetsController &presets);

    const VideoFilePointer &file() const { return m_file; }
    /// Probes the video into the current file: "OK", "not a video" or "track not identified". Only after
    /// "OK" are selection and controls the new file's.
    QString load(const QUrl &url);
    /// Adds a separate file to it; answers like KXVideoFile::addTrack().
    QString addTrack(const QUrl &url);
    /// Lets the presets that are chosen choose tracks and settings.
    void applyPresets();

private:
    VideoFilePointer m_file;
    KXSelectionController &m_selectionController;
    KXPresetsController &m_presets;
};

/// What a conversion is started as: the preset "Extract Tracks" makes it an extraction.
QString jobTypeFor(const KXPresetsController &presets);

} // namespace app

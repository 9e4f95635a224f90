#pragma once

#include "media/KXVideoFile.h"
#include "selection/KXSelection.h"

/// One of the files that wait to be worked on. It owns copies; the tracks in them are shared.
struct OpenedFile
{
    VideoFilePointer videoFile;
    SelectionPointer videoSelection;
    QString fileName;
    QString asShown = {}; ///< its choices when it was current first, see OpenQueue; null before
};

/// The list of opened files, as far as the rules of the main window need it. Implemented by the owner of
/// the list.
class OpenFiles
{
public:
    virtual ~OpenFiles() = default;
    virtual int openFileCount() const = 0;
    virtual void setCanOpenQueuePopover(bool can) = 0;
    virtual void closeOpenQ() = 0;
    /// Keeps the state of the file that is current in its entry, if it has one.
    virtual void storeCurrent(const VideoFilePointer &file, const SelectionPointer &selection) = 0;
};

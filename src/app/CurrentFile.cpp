#include "app/CurrentFile.h"

#include "presets/KXPresetsController.h"
#include "selection/KXSelectionController.h"

using namespace Qt::StringLiterals;

namespace app {

CurrentFile::CurrentFile(const VideoFilePointer &file, KXSelectionController &selectionController,
                         KXPresetsController &presets)
    : m_file(file)
    , m_selectionController(selectionController)
    , m_presets(presets)
{
}

QString CurrentFile::load(const QUrl &url)
{
    const QString status = m_file->initializeForURL(url);
    if (status == u"OK"_s)
        m_selectionController.takeLoadedFile();
    return status;
}

QString CurrentFile::addTrack(const QUrl &url)
{
    const QString status = m_file->addTrack(url);
    if (status == u"OK"_s)
        m_selectionController.updateTabs();
    return status;
}

void CurrentFile::applyPresets()
{
    m_presets.applyCurrentPresetSelections();
}

QString jobTypeFor(const KXPresetsController &presets)
{
    return presets.currentPresetSettingName() == u"Extract Tracks"_s ? u"MKV Track Extraction"_s
                                                                     : u"MKV Conversion"_s;
}

} // namespace app

#include "app/FilmTrial.h"

#include "app/OpenQueue.h"
#include "app/Program.h"

using namespace Qt::StringLiterals;

namespace app {

namespace {

VideoFilePointer copyWithOwnTracks(const KXVideoFile &film)
{
    const VideoFilePointer copy = film.copy();
    TrackList tracks;
    for (const TrackPointer &track : film.trackList())
        tracks.append(track->copy());
    copy->setTrackList(tracks);
    return copy;
}

/// The rules of the controls and of the presets, on a film that is nobody else's.
class Trial final
{
public:
    explicit Trial(const KXVideoFile &film)
        : m_file(copyWithOwnTracks(film))
        , m_selection(std::make_shared<KXSelection>())
        , m_controller(m_center, m_file, m_selection)
    {
        m_selection->initialize();
        m_controller.initialize();
        m_controller.setCurrentTab(u"MKV"_s);
    }

    TriedFilm run(Program &program)
    {
        const KXSelectionController &chosen = program.selectionController();
        KXPresetsController &presets = program.presets();
        if (presets.selectionMethodIndex() > 0)
            presets.presetSelectionsList().at(presets.selectionMethodIndex())->tick(m_file->trackList());
        m_controller.takeLoadedFile();
        m_controller.setMp4Device(chosen.mp4Device());
        m_controller.setVideoMatrixIndex(chosen.videoMatrixIndex());
        m_controller.setSubtitleMatrixIndex(chosen.subtitleMatrixIndex());
        m_controller.updateTabs();
        if (presets.settingMethodIndex() > 0)
            apply(*presets.currentPresetSettings());
        return {m_file, m_selection};
    }

private:
    void apply(const KXPresetSettings &preset)
    {
        KXPresetSettings own(m_file, m_controller);
        own.initFromRecord(preset.makeRecord());
        own.makeSettings();
        m_controller.updateTabs();
        if (!own.aim() || m_selection->trackList().isEmpty())
            return;
        if (const auto guess =
                selection::bestGuess(*m_selection, own.pDevice(), *own.aim(), own.heldByGuess()))
            m_controller.takeGuess(*guess);
    }

    KXNotificationCenter m_center; // of its own, so that nobody hears of it
    VideoFilePointer m_file;
    SelectionPointer m_selection;
    KXSelectionController m_controller;
};

} // namespace

TriedFilm triedFilm(Program &program, const OpenQueue &openQueue, int row)
{
    const KXSelectionController &controller = program.selectionController();
    if (row == openQueue.selectedRow())
        return {controller.currentVideoFile(), controller.currentSelection()};
    const OpenedFile &entry = openQueue.entries().at(row);
    if (controller.openQueueMatrixIndex() != 0)
        return {entry.videoFile, entry.videoSelection};
    return Trial(*entry.videoFile).run(program);
}

} // namespace app

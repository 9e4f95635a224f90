#include "window/PresetSelectionsSheet.h"

#include "media/KXVideoFile.h"
#include "presets/KXPresetsController.h"
#include "summary/RuleSentences.h"
#include "window/Controls.h"
#include "window/FilterBox.h"
#include "window/FilterPanel.h"
#include "window/ToolTipBinder.h"

#include <QApplication>
#include <QEvent>
#include <QFormLayout>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using presets::FilterKind;

namespace window {

namespace {

// What the video rule stores.
const QString firstTrack = u"First Track"_s;
const QString noTrack = u"0"_s;

} // namespace

PresetSelectionsSheet::PresetSelectionsSheet(KXPresetsController &presets, ToolTipBinder &tips,
                                             QWidget *parent)
    : PresetSheet(tips, tr("Track Presets"), parent)
    , m_presets(presets)
    , m_video(named(new QComboBox, "VideoTrackSelectionPopUp", tr("Video track")))
    , m_audioPanel(new FilterPanel(presets.filterEditor(), FilterKind::Audio, this))
    , m_subtitlePanel(new FilterPanel(presets.filterEditor(), FilterKind::Subtitle, this))
    , m_audio(new FilterBox(presets.filterEditor(), *m_audioPanel, tips))
    , m_subtitles(new FilterBox(presets.filterEditor(), *m_subtitlePanel, tips))
{
    setObjectName(u"PresetSelectionsSheet"_s);
    resize(628, 688);
    m_video->addItem(tr("First track, if it is video"), firstTrack);
    m_video->addItem(tr("None"), noTrack);
    tips.bind(m_video, "ttVideoTrackSelectionPopUp");
    form()->addRow(tr("&Video"), m_video);
    addBelowForm(makeFilters());
    m_presets.openPresetSelectionPanel();
    connectFields();
    refresh();
}

PresetSelectionsSheet::~PresetSelectionsSheet()
{
    m_presets.filterEditor().disconnect(this); // its buttons still lose the focus
}

QWidget *PresetSelectionsSheet::makeFilters()
{
    auto *filters = new QWidget;
    auto *layout = new QVBoxLayout(filters);
    layout->setContentsMargins(0, space::small, 0, space::small);
    layout->setSpacing(space::large);
    layout->addWidget(m_audio);
    layout->addWidget(m_subtitles);
    layout->addStretch(1);
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(filters);
    return area;
}

void PresetSelectionsSheet::connectFields()
{
    connect(&m_presets, &KXPresetsController::listsChanged, this, &PresetSelectionsSheet::refresh);
    connect(&m_presets, &KXPresetsController::panelRowsChanged, this, &PresetSelectionsSheet::refresh);
    connect(&m_presets.filterEditor(), &FilterEditor::changed, this, &PresetSelectionsSheet::showWhatItTakes);
    connect(m_video, &QComboBox::activated, this,
            [this] { preset()->setPSelectedVideoTrack(m_video->currentData().toString()); });
    connect(m_audio, &FilterBox::modeChosen, this,
            [this](const QString &mode) { preset()->setPAudioFilterMode(mode); });
    connect(m_subtitles, &FilterBox::modeChosen, this,
            [this](const QString &mode) { preset()->setPSubtitleFilterMode(mode); });
}

/// On a copy of the film that is open, whose ticks stay.
void PresetSelectionsSheet::showWhatItTakes()
{
    const VideoFilePointer film = m_presets.currentVideoFile();
    const KXPresetSelections *shown = preset();
    if (shown == nullptr || film->trackList().isEmpty())
        return showFoot(tr("No film is open to try it on."), {});
    TrackList copies;
    for (const TrackPointer &track : film->trackList())
        copies.append(track->copy());
    shown->tick(copies);
    showFoot(tr("On %1 this takes").arg(film->theFileName()), summary::ticksText(copies));
}

/// A filter that is being edited is finished when the person goes elsewhere.
void PresetSelectionsSheet::changeEvent(QEvent *event)
{
    PresetSheet::changeEvent(event);
    const bool left = event->type() == QEvent::ActivationChange && !isActiveWindow();
    if (left && QApplication::activePopupWidget() == nullptr)
        m_presets.filterEditor().windowDidResignKey();
}

KXPresetSelections *PresetSelectionsSheet::preset() const
{
    return row() < 0 ? nullptr : m_presets.presetSelectionsList().value(row() + hiddenPresets).get();
}

QList<PresetTable::Row> PresetSelectionsSheet::rows() const
{
    QList<PresetTable::Row> rows;
    for (const PresetSelectionsPointer &preset : m_presets.presetSelectionsList())
        rows.append({preset->pName(), preset->isEditable()});
    return rows.mid(hiddenPresets);
}

int PresetSelectionsSheet::row() const
{
    return m_presets.selectionPanelRow();
}

void PresetSelectionsSheet::choose(int row)
{
    m_presets.selectionListTableClicked(row);
}

void PresetSelectionsSheet::add()
{
    m_presets.addPresetSelection();
}

void PresetSelectionsSheet::remove()
{
    m_presets.removePresetSelection();
}

QString PresetSelectionsSheet::rename(int row, const QString &name)
{
    return m_presets.renamePresetSelection(row, name);
}

void PresetSelectionsSheet::undo()
{
    m_presets.cancelPresetSelectionPanel();
}

QString PresetSelectionsSheet::store()
{
    return m_presets.okPresetSelectionPanel();
}

void PresetSelectionsSheet::showPreset(bool isEditable)
{
    const KXPresetSelections *shown = preset();
    m_video->setEnabled(isEditable);
    m_video->setCurrentIndex(shown == nullptr ? -1 : shown->pSelectedVideoTrack() == firstTrack ? 0 : 1);
    m_audio->showMode(shown == nullptr ? QString() : shown->pAudioFilterMode(), isEditable);
    m_subtitles->showMode(shown == nullptr ? QString() : shown->pSubtitleFilterMode(), isEditable);
    showWhatItTakes();
}

} // namespace window

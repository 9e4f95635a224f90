#include "window/TracksPane.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "summary/TrackLook.h"
#include "window/EditTracksPane.h"
#include "window/Icons.h"
#include "window/KXDropScrollView.h"
#include "window/LanguageDelegate.h"
#include "window/Segments.h"
#include "window/ToolTipBinder.h"
#include "window/TrackModel.h"

#include <QHeaderView>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int barRow = 40;

const QString longWord = u"undetermined"_s; ///< the language that films bear most often of all that are long

int countOf(const TrackList &tracks, int kind, bool tickedOnly)
{
    int count = 0;
    for (const TrackPointer &track : tracks) {
        if (static_cast<int>(summary::kindOf(*track)) == kind && (!tickedOnly || track->trackSelected()))
            ++count;
    }
    return count;
}

} // namespace

TracksPane::TracksPane(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_delegate(delegate)
    , m_tips(tips)
    , m_switch(new Segments("TracksOrSettings", {tr("Tracks"), tr("Settings")}))
    , m_presets(named(new QComboBox, "PresetSelectionsPopUp", tr("Preset for tracks")))
    , m_editPresets(
          named(new QPushButton(tr("Edit…")), "EditPresetSelectionsButton", tr("Edit presets for tracks")))
    , m_pages(new QStackedWidget)
    , m_table(named(new KXDropScrollView, "ConvertTrackTable", tr("Tracks")))
    , m_model(new TrackModel(delegate.program().selectionController(), this))
    , m_edit(new EditTracksPane(delegate, tips))
{
    setObjectName(u"TracksPane"_s);
    auto *tracks = new QWidget;
    auto *column = new QVBoxLayout(tracks);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_table, 1);
    column->addWidget(m_edit);
    m_pages->addWidget(tracks);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar());
    layout->addWidget(m_pages, 1);
    setUpTable();
    m_switch->setIndex(0);
    m_switch->hide();
    connect(m_switch, &Segments::chosen, m_pages, &QStackedWidget::setCurrentIndex);
    KXPresetsController &presets = delegate.program().presets();
    connect(m_presets, &QComboBox::activated, this,
            [this](int index) { m_delegate.program().presets().setSelectionMethodIndex(index); });
    connect(m_editPresets, &QPushButton::clicked, this, &TracksPane::presetsSheetWanted);
    connect(&presets, &KXPresetsController::listsChanged, this, &TracksPane::refreshPresets);
    connect(&presets, &KXPresetsController::methodsChanged, this, &TracksPane::refreshPresets);
    connect(m_edit, &EditTracksPane::inUse, m_model, &TrackModel::tellEdit);
    tips.bind(m_presets, "ttPresetSelectionsPopUp");
    refreshPresets();
}

QPushButton *TracksPane::toggle(const QString &word, const QString &iconName, const char *name,
                                const char *tip, const QString &accessibleName, int kind,
                                void (KXSelectionController::*action)())
{
    static const QList<Role> inks{Role::Video, Role::Audio, Role::Subtitle};
    QPushButton *button = named(smallButton(word), name, accessibleName);
    button->setIcon(icon(iconName, inks.at(kind)));
    m_tips.bind(button, tip);
    connect(button, &QPushButton::clicked, &m_delegate.program().selectionController(), action);
    m_toggles.append({button, word, accessibleName, kind});
    return button;
}

QWidget *TracksPane::bar()
{
    m_head = headLabel(tr("Tracks"));
    m_presetLabel = labelFor(m_presets, tr("Trac&k preset"));
    m_presetLabel->setTextFormat(Qt::AutoText);
    m_presets->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_presets->setMinimumContentsLength(10);
    QWidget *row =
        rowOf({m_head, m_switch,
               toggle(tr("Video"), u"video-x-generic"_s, "ToggleVideoButton", "ttToggleVideoButton",
                      tr("Tick all video tracks"), 0, &KXSelectionController::toggleAllVideo),
               toggle(tr("Audio"), u"audio-x-generic"_s, "ToggleAudioButton", "ttToggleAudioButton",
                      tr("Tick all audio tracks"), 1, &KXSelectionController::toggleAllAudio),
               toggle(tr("Subtitles"), u"media-view-subtitles-symbolic"_s, "ToggleSubtitleButton",
                      "ttToggleSubtitleButton", tr("Tick all subtitle tracks"), 2,
                      &KXSelectionController::toggleAllSubtitle),
               nullptr, m_presetLabel, m_presets, m_editPresets});
    row->setFixedHeight(barRow);
    return row;
}

void TracksPane::setUpTable()
{
    m_table->setModel(m_model);
    m_table->setItemDelegate(new TrackDelegate(m_table));
    m_table->setItemDelegateForColumn(
        TrackModel::Language,
        new LanguageDelegate(m_delegate.program().selectionController().languageList(), m_table));
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    m_table->setTabKeyNavigation(false);
    m_table->setAllColumnsShowFocus(false); // keys go from cell to cell
    QHeaderView *header = m_table->header();
    header->setStretchLastSection(false);
    header->setMinimumSectionSize(40);
    header->setSectionResizeMode(TrackModel::Title, QHeaderView::Stretch);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setShape(true, false, false);
    m_tips.bind(m_table, "ttConvertTrackTable");
    connect(m_table, &KXDropScrollView::filesDropped, &m_delegate, &KXAppDelegate::filesDropped);
    KXSelectionController &controller = m_delegate.program().selectionController();
    connect(&controller, &KXSelectionController::trackTicksChanged, this, &TracksPane::refreshTracks);
    connect(&controller, &KXSelectionController::trackRowsDeselected, m_table, &QTreeView::clearSelection);
    connect(&m_delegate.intake(), &app::FileIntake::tracksChanged, this, &TracksPane::refreshTracks);
}

void TracksPane::setShape(bool allColumns, bool shortWords, bool compact)
{
    QHeaderView *header = m_table->header();
    m_table->setColumnHidden(TrackModel::Becomes, !allColumns);
    header->resizeSection(TrackModel::Kind, TrackDelegate::tickWidth + (allColumns ? 206 : 182));
    header->resizeSection(TrackModel::Language, std::max(96, fontMetrics().horizontalAdvance(longWord) + 20));
    header->resizeSection(TrackModel::Default, 62);
    header->resizeSection(TrackModel::Forced, 62);
    header->resizeSection(TrackModel::Becomes, 150);
    m_shortWords = shortWords;
    m_presetLabel->setVisible(!shortWords || width() > 520);
    m_edit->setFolded(compact);
    refreshToggles();
}

void TracksPane::setPage(QWidget *settings)
{
    m_switch->setVisible(settings != nullptr);
    m_head->setVisible(settings == nullptr);
    if (settings != nullptr && m_pages->count() == 1)
        m_pages->addWidget(settings);
    else if (settings == nullptr && m_pages->count() == 2)
        m_pages->removeWidget(m_pages->widget(1));
    m_pages->setCurrentIndex(settings == nullptr ? 0 : m_switch->index());
}

void TracksPane::refreshPresets()
{
    const KXPresetsController &presets = m_delegate.program().presets();
    const QSignalBlocker quiet(m_presets);
    m_presets->clear();
    m_presets->addItems(presets.presetSelectionsNamesList());
    m_presets->setCurrentIndex(presets.selectionMethodIndex());
}

void TracksPane::refreshToggles()
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    const TrackList tracks = controller.currentVideoFile()->trackList();
    for (const Toggle &toggle : std::as_const(m_toggles)) {
        const int all = countOf(tracks, toggle.kind, false);
        const int ticked = countOf(tracks, toggle.kind, true);
        const QString count = u"%1/%2"_s.arg(ticked).arg(all);
        toggle.button->setText(m_shortWords ? count : u"%1  %2"_s.arg(toggle.word, count));
        toggle.button->setAccessibleName(
            tr("%1, %2 of %3 ticked").arg(toggle.accessibleName).arg(ticked).arg(all));
        toggle.button->setEnabled(controller.canAddTrack());
    }
}

void TracksPane::refreshTracks()
{
    if (m_isHeld)
        return;
    m_model->refresh();
    refreshToggles();
}

void TracksPane::focusTable()
{
    m_table->setFocus(Qt::OtherFocusReason);
    if (!m_table->currentIndex().isValid() && m_model->rowCount() > 0)
        m_table->setCurrentIndex(m_model->index(0, 0));
}

void TracksPane::refresh()
{
    app::Program &program = m_delegate.program();
    m_table->setEnabled(program.selectionController().trackTableEnabled());
    const int films = m_delegate.openQueue().openFileCount();
    const bool countsForAll = films > 1 && program.selectionController().openQueueMatrixIndex() == 0 &&
                              program.presets().selectionMethodIndex() != 0;
    m_presetLabel->setText(countsForAll ? tr("Trac&k preset, all %1 films").arg(films) : tr("Trac&k preset"));
    refreshTracks();
    m_edit->refresh();
}

} // namespace window

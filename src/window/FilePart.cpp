#include "window/FilePart.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "window/Controls.h"
#include "window/FilesModel.h"
#include "window/KXDropScrollView.h"
#include "window/LanguageDelegate.h"
#include "window/OpenFilesPopover.h"
#include "window/ToolTipBinder.h"
#include "window/TrackModel.h"

#include <QHeaderView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

FilePart::FilePart(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_delegate(delegate)
    , m_tips(tips)
    , m_file(named(new QLabel, "ConvertFileField", tr("Current file")))
    , m_open(named(new QPushButton(tr("Open…")), "OpenButton", tr("Open video files")))
    , m_add(named(new QPushButton(tr("Add…")), "AddButton", tr("Add a track file")))
    , m_openFiles(named(new QPushButton(tr("Open Files")), "OpenFilesQueueButton", tr("List of open files")))
    , m_play(named(new QPushButton(tr("Play")), "PlayButton", tr("Play the ticked tracks")))
    , m_toggles(toggleRow())
    , m_tables(new QStackedWidget)
    , m_trackTable(named(new KXDropScrollView, "ConvertTrackTable", tr("Tracks")))
    , m_fileTable(named(new KXDropScrollView, "EditFilesTable", tr("Files to edit")))
    , m_trackModel(new TrackModel(delegate.program().selectionController(), this))
    , m_filesModel(new FilesModel(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(fileRow());
    layout->addWidget(m_tables, 1);
    layout->addWidget(rowOf({m_toggles, nullptr, m_add, m_play}));
    setUpTrackTable();
    setUpFileTable();
    setTabOrder(m_openFiles, m_trackTable); // as they stand below each other
    setTabOrder(m_trackTable, m_fileTable);
    tips.bind(m_file, "ttConvertFileField");
    tips.bind(m_add, "ttAddButton");
    tips.bind(m_play, "ttPlayButton");
    tips.bind(m_openFiles, "ttOpenFilesQueueButton");
    connect(m_open, &QPushButton::clicked, &delegate, [this] { m_delegate.openFilePanel(u"Open"_s); });
    connect(m_add, &QPushButton::clicked, &delegate, [this] { m_delegate.openFilePanel(u"Add"_s); });
    connect(m_play, &QPushButton::clicked, &delegate, &KXAppDelegate::playButton);
    connect(m_openFiles, &QPushButton::clicked, &delegate.openQueue(), &app::OpenQueue::showOpenQ);
    connect(&delegate.openQueue(), &app::OpenQueue::popoverWanted, this, &FilePart::showPopover);
    connect(&delegate.openQueue(), &app::OpenQueue::canOpenQueuePopoverChanged, this, &FilePart::refresh);
    refresh();
}

void FilePart::showPopover(bool open)
{
    if (m_popover == nullptr && open)
        m_popover = new OpenFilesPopover(m_delegate.openQueue(), m_delegate.program().selectionController(),
                                         m_tips, this);
    if (open)
        m_popover->showBelow(m_openFiles);
    else if (m_popover != nullptr)
        m_popover->hide();
}

QWidget *FilePart::fileRow()
{
    m_file->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_file->setTextFormat(Qt::PlainText);
    m_file->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // long paths don't widen the window
    QWidget *row = rowOf({m_open, m_openFiles});
    auto *whole = new QWidget;
    auto *layout = new QHBoxLayout(whole);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_file, 1);
    layout->addWidget(row);
    return whole;
}

QPushButton *FilePart::toggle(const QString &title, const char *word, const char *tip,
                              const QString &accessibleName, void (KXSelectionController::*action)())
{
    auto *button = named(new QPushButton(title), word, accessibleName);
    m_tips.bind(button, tip);
    connect(button, &QPushButton::clicked, &m_delegate.program().selectionController(), action);
    return button;
}

QWidget *FilePart::toggleRow()
{
    return rowOf({toggle(tr("Video"), "ToggleVideoButton", "ttToggleVideoButton", tr("Tick all video tracks"),
                         &KXSelectionController::toggleAllVideo),
                  toggle(tr("Audio"), "ToggleAudioButton", "ttToggleAudioButton", tr("Tick all audio tracks"),
                         &KXSelectionController::toggleAllAudio),
                  toggle(tr("Subtitles"), "ToggleSubtitleButton", "ttToggleSubtitleButton",
                         tr("Tick all subtitle tracks"), &KXSelectionController::toggleAllSubtitle)});
}

void FilePart::setUpTrackTable()
{
    m_trackTable->setModel(m_trackModel);
    m_trackTable->setEmptyText(tr("Drop video files here, or open them."));
    m_trackTable->setItemDelegateForColumn(
        TrackModel::Language,
        new LanguageDelegate(m_delegate.program().selectionController().languageList(), m_trackTable));
    m_trackTable->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                  QAbstractItemView::SelectedClicked);
    m_trackTable->setTabKeyNavigation(false);
    QHeaderView *header = m_trackTable->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(TrackModel::Title, QHeaderView::Stretch);
    const int letter = fontMetrics().averageCharWidth();
    header->resizeSection(TrackModel::Kind, letter * 34);
    header->resizeSection(TrackModel::Language, letter * 20);
    header->resizeSection(TrackModel::Default, letter * 11);
    header->resizeSection(TrackModel::Forced, letter * 11);
    m_tips.bind(m_trackTable, "ttConvertTrackTable");
    m_tables->addWidget(m_trackTable);
    connect(m_trackTable, &KXDropScrollView::filesDropped, &m_delegate, &KXAppDelegate::filesDropped);
    KXSelectionController &controller = m_delegate.program().selectionController();
    connect(&controller, &KXSelectionController::trackTicksChanged, this, &FilePart::refreshTracks);
    connect(&controller, &KXSelectionController::trackRowsDeselected, m_trackTable,
            &QTreeView::clearSelection);
    connect(&m_delegate.intake(), &app::FileIntake::tracksChanged, this, &FilePart::refreshTracks);
}

void FilePart::setUpFileTable()
{
    m_fileTable->setModel(m_filesModel);
    m_fileTable->setEmptyText(tr("Drop MKV files here, or open them."));
    m_fileTable->header()->resizeSection(0, fontMetrics().averageCharWidth() * 50);
    m_tables->addWidget(m_fileTable);
    connect(m_fileTable, &KXDropScrollView::filesDropped, &m_delegate, &KXAppDelegate::filesDropped);
}

void FilePart::refreshTracks()
{
    m_trackModel->refresh();
    m_filesModel->setFiles(
        m_delegate.program().selectionController().currentSelection()->editFilesURLsList());
}

void FilePart::focusTable()
{
    m_tables->currentWidget()->setFocus(Qt::OtherFocusReason);
}

void FilePart::refresh()
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    m_file->setText(controller.currentFileText());
    setReddened(m_file, controller.currentFileTextColor() == u"red"_s);
    m_tables->setCurrentWidget(controller.hideTrackTable() ? m_fileTable : m_trackTable);
    m_trackTable->setEnabled(controller.trackTableEnabled());
    m_toggles->setVisible(!controller.hideTrackTogglesFlag());
    m_toggles->setEnabled(controller.canAddTrack());
    m_add->setVisible(!controller.hideTrackTogglesFlag());
    m_add->setEnabled(controller.canAddTrack());
    m_play->setVisible(!controller.hideTrackTogglesFlag());
    const QString refusal = m_delegate.playingRefusal();
    m_play->setEnabled(controller.canAddTrack() && refusal.isNull());
    m_tips.setReason(m_play, refusal);
    m_openFiles->setEnabled(m_delegate.openQueue().canOpenQueuePopover());
}

} // namespace window

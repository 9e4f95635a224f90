#include "window/ToolRow.h"

#include "window/Icons.h"
#include "window/ToolTipBinder.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int toolRowHeight = 44;

} // namespace

ToolRow::ToolRow(const QStringList &tabs, ToolTipBinder &tips, QWidget *parent)
    : QToolBar(parent)
    , m_open(
          named(new QPushButton(icon(u"folder-open"_s), tr("Open…")), "OpenButton", tr("Open video files")))
    , m_openFiles(named(new QPushButton(icon(u"open-files"_s), tr("Open Files")), "OpenFilesQueueButton",
                        tr("List of open files")))
    , m_tabs(named(new QTabBar, "Tabs", tr("What to do")))
    , m_watch(named(new QPushButton(icon(u"view-visible"_s), tr("Watch Folder…")), "WatchFolderButton",
                    tr("Watch a folder")))
    , m_preferences(flatButton(u"configure"_s, tr("Preferences")))
{
    setObjectName(u"ToolRow"_s);
    setWindowTitle(tr("Tools"));
    setMovable(false);
    setFloatable(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    m_openFiles->setCheckable(true);
    m_preferences->setObjectName(u"PreferencesButton"_s);
    m_tabs->setDrawBase(false);
    m_tabs->setExpanding(false);
    const QStringList pictures{u"video-x-generic"_s, u"join-files"_s};
    const QStringList explanations{tr("Convert a film or change its tracks"),
                                   tr("Join, split or re-mux whole MKV files")};
    for (int i = 0; i < tabs.size(); ++i) {
        m_tabs->addTab(icon(pictures.at(i)), tabs.at(i));
        m_tabs->setTabToolTip(i, explanations.at(i));
    }
    auto *content = new QWidget;
    content->setFixedHeight(toolRowHeight);
    auto *layout = new QGridLayout(content);
    layout->setContentsMargins(space::middle, 0, space::middle, 0);
    layout->addWidget(rowOf({m_open, m_openFiles}), 0, 0, Qt::AlignLeading | Qt::AlignVCenter);
    layout->addWidget(m_tabs, 0, 1, Qt::AlignHCenter | Qt::AlignBottom);
    layout->addWidget(rowOf({m_watch, m_preferences}), 0, 2, Qt::AlignTrailing | Qt::AlignVCenter);
    layout->setColumnStretch(0, 1);
    layout->setColumnStretch(2, 1);
    content->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    addWidget(content);
    tips.bind(m_openFiles, "ttOpenFilesQueueButton");
    connect(m_open, &QPushButton::clicked, this, &ToolRow::openWanted);
    connect(m_openFiles, &QPushButton::clicked, this, &ToolRow::openFilesWanted);
    connect(m_tabs, &QTabBar::currentChanged, this, &ToolRow::tabChosen);
    connect(m_watch, &QPushButton::clicked, this, &ToolRow::watchWanted);
    connect(m_preferences, &QPushButton::clicked, this, &ToolRow::preferencesWanted);
}

void ToolRow::showTab(int index)
{
    const QSignalBlocker quiet(m_tabs);
    m_tabs->setCurrentIndex(index);
}

void ToolRow::setOpenFiles(bool can, bool shown, int count)
{
    m_openFiles->setEnabled(can);
    m_openFiles->setChecked(can && shown);
    m_openFiles->setText(count >= 2 ? tr("Open Files  %1").arg(count) : tr("Open Files"));
}

void ToolRow::setIdle(bool idle)
{
    for (QWidget *control : {static_cast<QWidget *>(m_open), static_cast<QWidget *>(m_tabs),
                             static_cast<QWidget *>(m_watch), static_cast<QWidget *>(m_preferences)})
        control->setEnabled(idle);
    if (!idle)
        m_openFiles->setEnabled(false);
}

void ToolRow::setShortWords(bool shortWords)
{
    m_watch->setText(shortWords ? QString() : tr("Watch Folder…"));
    m_watch->setToolTip(shortWords ? tr("Watch Folder…") : QString());
}

} // namespace window

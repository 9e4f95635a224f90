#include "window/WatchRow.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "window/Controls.h"
#include "window/ToolTipBinder.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

WatchRow::WatchRow(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_delegate(delegate)
    , m_tips(tips)
    , m_folder(named(new QLabel, "WatchFolderPath", tr("Folder to watch")))
    , m_choose(
          named(new QPushButton(tr("Choose…")), "ChooseWatchFolderButton", tr("Choose the folder to watch")))
    , m_start(
          named(new QPushButton(tr("Watch")), "StartWatchingFolderButton", tr("Start watching the folder")))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(tr("Watch folder:")));
    layout->addWidget(m_folder, 1);
    layout->addWidget(m_choose);
    layout->addWidget(m_start);
    m_folder->setTextFormat(Qt::PlainText);
    m_folder->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_folder->setForegroundRole(QPalette::PlaceholderText);
    tips.bind(m_start, "ttStartWatchingFolderButton");
    connect(m_choose, &QPushButton::clicked, &delegate, &KXAppDelegate::chooseWatchFolder);
    connect(m_start, &QPushButton::clicked, &delegate.watchSession(), &app::WatchSession::start);
    connect(&delegate.program().watchMode(), &KXWatchModeController::folderChanged, this, &WatchRow::refresh);
    refresh();
}

/// While nothing is watched, the controller's text is the reason why not.
void WatchRow::refresh()
{
    const QString folder = m_delegate.program().preferences().watchFolderPath();
    const QString shown = m_delegate.program().watchMode().watchFolderPath();
    const bool refused =
        !shown.isEmpty() && shown != folder && !m_delegate.program().watchMode().appIsInWatchMode();
    m_folder->setText(refused ? shown : folder.isEmpty() ? tr("none chosen") : folder);
    const QString refusal = m_delegate.watchSession().startRefusal();
    m_start->setEnabled(refusal.isNull());
    m_tips.setReason(m_start, refusal);
}

} // namespace window

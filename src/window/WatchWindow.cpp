#include "window/WatchWindow.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "platform/VisibleText.h"
#include "window/Controls.h"
#include "window/StatusLine.h"

#include <QCloseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

WatchWindow::WatchWindow(KXAppDelegate &delegate, QWidget &mainWindow)
    : m_delegate(delegate)
    , m_mainWindow(mainWindow)
    , m_folder(named(new QLabel, "WatchFolderField", tr("Watched folder")))
    , m_log(named(new QListWidget, "WatchLog", tr("What happened")))
{
    setObjectName(u"WatchWindow"_s);
    setWindowTitle(tr("Tessaray – Watching"));
    auto *stop =
        named(new QPushButton(tr("Stop Watching")), "EndWatchingButton", tr("Stop watching the folder"));
    m_folder->setTextFormat(Qt::PlainText);
    m_folder->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QFont bold = m_folder->font();
    bold.setBold(true);
    m_folder->setFont(bold);
    m_log->setWordWrap(true);
    m_log->setAlternatingRowColors(true);
    m_log->setSelectionMode(QAbstractItemView::NoSelection);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_folder);
    layout->addWidget(m_log, 1);
    layout->addWidget(new StatusLine(delegate.program().queue()));
    layout->addWidget(rowOf({nullptr, stop}));
    resize(620, 420);
    for (QPropertyAnimation *animation : {&m_fadeOut, &m_fadeIn}) {
        animation->setPropertyName("windowOpacity");
        animation->setDuration(KXWatchModeController::fadeMilliseconds);
    }
    connect(stop, &QPushButton::clicked, &delegate.watchSession(), &app::WatchSession::end);
    const app::WatchLog &log = delegate.watchSession().log();
    for (const auto &line : log.lines())
        addLine(line);
    connect(&log, &app::WatchLog::added, this, [this, &log] { addLine(log.lines().constLast()); });
    connect(&log, &app::WatchLog::shortened, this, [this](int count) {
        for (int i = 0; i < count; ++i)
            delete m_log->takeItem(0);
    });
    connect(&delegate.program().watchMode(), &KXWatchModeController::folderChanged, this,
            &WatchWindow::refresh);
    connect(&m_fadeOut, &QPropertyAnimation::finished, this, [this] {
        auto *gone = qobject_cast<QWidget *>(m_fadeOut.targetObject());
        gone->hide();
        gone->setWindowOpacity(1);
    });
}

WatchWindow::~WatchWindow() = default;

void WatchWindow::swap(bool watching)
{
    if (watching)
        fade(&m_mainWindow, this);
    else if (isVisible())
        fade(this, &m_mainWindow);
}

void WatchWindow::fade(QWidget *from, QWidget *to)
{
    refresh();
    m_fadeOut.stop();
    m_fadeIn.stop();
    to->move(from->pos());
    to->setWindowOpacity(0);
    to->show();
    m_fadeOut.setTargetObject(from);
    m_fadeOut.setStartValue(1.0);
    m_fadeOut.setEndValue(0.0);
    m_fadeIn.setTargetObject(to);
    m_fadeIn.setStartValue(0.0);
    m_fadeIn.setEndValue(1.0);
    m_fadeOut.start();
    m_fadeIn.start();
    to->activateWindow();
}

void WatchWindow::refresh()
{
    m_folder->setText(m_delegate.program().watchMode().watchFolderPath());
}

/// Follows the newest line, unless the user has scrolled up to read.
void WatchWindow::addLine(const app::WatchLog::Line &line)
{
    const QScrollBar *bar = m_log->verticalScrollBar();
    const bool atEnd = bar->value() == bar->maximum();
    m_log->addItem(platform::visible(app::WatchLog::formatted(line)));
    if (atEnd)
        m_log->scrollToBottom();
}

void WatchWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // it closes when the program may end
    Q_EMIT quitWanted();
}

} // namespace window

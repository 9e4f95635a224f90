#include "window/WatchWindow.h"

#include "app/ConvertForecast.h"
#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "platform/VisibleText.h"
#include "summary/JobLook.h"
#include "window/Icons.h"
#include "window/StatusLine.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using summary::JobState;

namespace window {

namespace {

constexpr QSize watchWindowSize{640, 600};
constexpr int stateHeight = 70;
constexpr int lineRowHeight = 44;
constexpr int msOfSecond = 1000;

enum LineRole { KindOfLine = Qt::UserRole, TimeOfLine, TextOfLine };

struct LineLook
{
    QString icon;
    Role ink;
};

LineLook lookOfLine(int kind)
{
    static const std::array<LineLook, 5> looks{{{u"dialog-information"_s, Role::Second},
                                                {u"clock"_s, Role::Second},
                                                {u"media-playback-start"_s, Role::Link},
                                                {u"emblem-ok"_s, Role::Ok},
                                                {u"dialog-error"_s, Role::Bad}}};
    return looks.at(static_cast<size_t>(kind));
}

/// A mark, the film in front of the colon, what is told of it, and the time.
class LineDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const override
    {
        return {0, lineRowHeight};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const LineLook look = lookOfLine(index.data(KindOfLine).toInt());
        const QRect row = option.rect;
        painter->save();
        painter->setPen(color(Role::Line));
        painter->drawLine(row.bottomLeft(), row.bottomRight());
        paintIcon(*painter, {row.x() + space::middle, row.center().y() - 8, 16, 16}, look.icon,
                  color(look.ink));
        QRect words = row.adjusted(40, 0, -space::large, 0);
        painter->setFont(fontOf(Type::Second));
        painter->setPen(color(Role::Second));
        const QString time = index.data(TimeOfLine).toString();
        painter->drawText(words, Qt::AlignRight | Qt::AlignVCenter, time);
        words.setRight(words.right() - painter->fontMetrics().horizontalAdvance(time) - space::middle);
        const QString text = index.data(TextOfLine).toString();
        const qsizetype colon = text.indexOf(u": "_s);
        if (colon > 0) {
            painter->drawText(
                words.adjusted(0, words.height() / 2, 0, 0), Qt::AlignTop,
                painter->fontMetrics().elidedText(text.mid(colon + 2), Qt::ElideMiddle, words.width()));
            words.setBottom(words.center().y());
            painter->setFont(fontOf(Type::Head));
            painter->setPen(color(Role::Text));
        }
        const QString name = colon > 0 ? text.left(colon).section(u'/', -1) : text;
        painter->drawText(words, colon > 0 ? Qt::AlignBottom : Qt::AlignVCenter,
                          painter->fontMetrics().elidedText(name, Qt::ElideMiddle, words.width()));
        painter->restore();
    }
};

QList<Badge> countsOf(const KXQueueController &queue)
{
    QMap<JobState, int> counts;
    for (const JobPointer &job : queue.qJobList())
        ++counts[summary::jobState(job->jobStatus(), job->outcome(), false)];
    QList<Badge> badges;
    const auto add = [&](JobState state, const QString &word, Role ink, Role ground) {
        if (counts.value(state) > 0)
            badges.append({u"%1 %2"_s.arg(counts.value(state)).arg(word), ink, ground});
    };
    add(JobState::Running, WatchWindow::tr("running"), Role::Link, Role::Soft);
    add(JobState::Queued, WatchWindow::tr("waiting"), Role::Second, Role::Groove);
    add(JobState::Completed, WatchWindow::tr("done"), Role::Ok, Role::OkSoft);
    add(JobState::Warnings, WatchWindow::tr("with warnings"), Role::Warn, Role::WarnSoft);
    add(JobState::Failed, WatchWindow::tr("failed"), Role::Bad, Role::BadSoft);
    return badges;
}

} // namespace

WatchWindow::WatchWindow(KXAppDelegate &delegate, QWidget &mainWindow)
    : m_delegate(delegate)
    , m_mainWindow(mainWindow)
    , m_state(new Ground(Role::OkSoft))
    , m_eye(iconLabel(u"view-visible"_s, Role::Ok))
    , m_stateText(named(new InkLabel({}, Role::Text, Type::Pane), "WatchState", {}))
    , m_folder(named(new ElidedLabel(Qt::ElideMiddle, Role::Text, Type::Second), "WatchFolderField",
                     tr("Watched folder")))
    , m_counts(named(new BadgeRow, "WatchCounts", tr("What came of the films")))
    , m_presets(new ElidedLabel(Qt::ElideRight, Role::Second, Type::Second))
    , m_log(named(new QListWidget, "WatchLog", tr("What happened")))
    , m_place(new ElidedLabel(Qt::ElideMiddle, Role::Second, Type::Second))
    , m_pause(named(new QPushButton(tr("Pause")), "WatchPauseButton", tr("Pause or resume")))
{
    setObjectName(u"WatchWindow"_s);
    setWindowTitle(tr("Watching"));
    m_log->setFrameShape(QFrame::NoFrame);
    m_log->setItemDelegate(new LineDelegate(m_log));
    m_log->setUniformItemSizes(true);
    m_log->setSelectionMode(QAbstractItemView::NoSelection);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    addMenus(layout);
    layout->addWidget(stateBar());
    layout->addWidget(countRow());
    layout->addWidget(separatorLine());
    layout->addWidget(m_log, 1);
    layout->addWidget(separatorLine());
    layout->addWidget(foot());
    resize(watchWindowSize);
    for (QPropertyAnimation *animation : {&m_fadeOut, &m_fadeIn}) {
        animation->setPropertyName("windowOpacity");
        animation->setDuration(KXWatchModeController::fadeMilliseconds);
    }
    const app::WatchLog &log = delegate.watchSession().log();
    for (const auto &line : log.lines())
        addLine(line);
    connect(&log, &app::WatchLog::added, this, [this, &log] { addLine(log.lines().constLast()); });
    connect(&log, &app::WatchLog::shortened, this, [this](int count) {
        for (int i = 0; i < count; ++i)
            delete m_log->takeItem(m_log->count() - 1);
    });
    const KXWatchModeController &watch = delegate.program().watchMode();
    connect(&watch, &KXWatchModeController::folderChanged, this, &WatchWindow::refresh);
    connect(&watch, &KXWatchModeController::looked, this, &WatchWindow::looked);
    const KXQueueController &queue = delegate.program().queue();
    for (auto change :
         {&KXQueueController::jobAdded, &KXQueueController::jobChanged, &KXQueueController::jobRemoved})
        connect(&queue, change, this, &WatchWindow::refreshState);
    connect(&queue, &KXQueueController::pauseButtonTitleChanged, this, &WatchWindow::refreshState);
    m_second.setInterval(msOfSecond);
    connect(&m_second, &QTimer::timeout, this, &WatchWindow::refreshState);
    connect(&m_fadeOut, &QPropertyAnimation::finished, this, [this] {
        auto *gone = qobject_cast<QWidget *>(m_fadeOut.targetObject());
        gone->hide();
        gone->setWindowOpacity(1);
    });
}

WatchWindow::~WatchWindow() = default;

/// The keys are those of the main window.
void WatchWindow::addMenus(QVBoxLayout *layout)
{
    auto *bar = new QMenuBar(this);
    bar->setObjectName(u"WatchMenu"_s);
    layout->setMenuBar(bar);
    const auto add = [this](QMenu *menu, const QString &text, const QKeySequence &keys, auto run) {
        QAction *action = menu->addAction(text);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, run);
        return action;
    };
    QMenu *watch = bar->addMenu(tr("&Watch"));
    m_pauseAction = add(watch, tr("&Pause or Resume"), QKeySequence(Qt::CTRL | Qt::Key_Period),
                        [this] { m_pause->click(); });
    add(watch, tr("&Stop Watching"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W),
        [this] { m_delegate.watchSession().end(); });
    watch->addSeparator();
    add(watch, tr("&Close Window"), QKeySequence::Close, [this] { close(); });
    QAction *quit =
        add(watch, tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { Q_EMIT quitWanted(); });
    quit->setMenuRole(QAction::QuitRole);
    add(bar->addMenu(tr("&Help")), tr("Online Guide"), QKeySequence::HelpContents,
        [this] { m_delegate.helpMenuItemSelected(u"Online Guide"_s); });
}

void WatchWindow::comeForward()
{
    raise();
    activateWindow();
}

QWidget *WatchWindow::stateBar()
{
    auto *stop =
        named(new QPushButton(tr("Stop Watching")), "EndWatchingButton", tr("Stop watching the folder"));
    stop->setMinimumHeight(primaryHeight);
    connect(stop, &QPushButton::clicked, &m_delegate.watchSession(), &app::WatchSession::end);
    auto *words = new QVBoxLayout;
    words->setSpacing(0);
    words->addStretch(1);
    words->addWidget(m_stateText);
    words->addWidget(m_folder);
    words->addStretch(1);
    m_eye->setFixedSize(32, 32);
    m_state->setEdge(Qt::BottomEdge);
    m_state->setMinimumHeight(stateHeight);
    auto *layout = new QHBoxLayout(m_state);
    layout->setContentsMargins(space::large, 0, space::large, 0);
    layout->setSpacing(space::middle);
    layout->addWidget(m_eye);
    layout->addLayout(words, 1);
    layout->addWidget(stop);
    return m_state;
}

QWidget *WatchWindow::countRow()
{
    m_presets->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QWidget *row = rowOf({m_counts, m_presets});
    static_cast<QHBoxLayout *>(row->layout())->setStretch(1, 1); // NOLINT: rowOf() makes one
    row->layout()->setContentsMargins(space::large, space::small, space::large, space::small);
    return row;
}

QWidget *WatchWindow::foot()
{
    connect(m_pause, &QPushButton::clicked, this, [this] {
        KXQueueController &queue = m_delegate.program().queue();
        queue.pauseQueueButton(queue.pauseButtonTitle());
    });
    auto *status = new StatusLine(m_delegate.program().queue());
    QWidget *row = rowOf({m_place, status, m_pause});
    static_cast<QHBoxLayout *>(row->layout())->setStretch(1, 1); // NOLINT: rowOf() makes one
    row->layout()->setContentsMargins(space::large, space::small, space::large, space::small);
    return row;
}

void WatchWindow::swap(bool watching)
{
    if (watching)
        fade(&m_mainWindow, this);
    else if (isVisible())
        fade(this, &m_mainWindow);
}

void WatchWindow::fade(QWidget *from, QWidget *to)
{
    m_isThere = true;
    m_lastLook.start();
    refresh();
    to == this ? m_second.start() : m_second.stop();
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

void WatchWindow::looked(bool isThere)
{
    m_isThere = isThere;
    m_lastLook.start();
    refreshState();
}

void WatchWindow::refresh()
{
    app::Program &program = m_delegate.program();
    m_folder->setText(program.watchMode().watchFolderPath());
    const KXPresetsController &presets = program.presets();
    m_presets->setText(tr("by %1 · %2")
                           .arg(presets.presetSelectionsNamesList().value(presets.selectionMethodIndex()),
                                presets.presetSettingsNamesList().value(presets.settingMethodIndex())));
    m_place->setText(app::resultFolderIsChosen(program) ? tr("Into %1").arg(app::resultFolder(program, {}))
                                                        : tr("Into the folder of each film"));
    refreshState();
}

void WatchWindow::refreshState()
{
    const KXQueueController &queue = m_delegate.program().queue();
    const bool isPaused = queue.pauseButtonTitle() == u"Resume"_s;
    const qint64 ago = m_lastLook.isValid() ? m_lastLook.elapsed() / msOfSecond : 0;
    m_stateText->setText(!m_isThere ? tr("The folder is not there. Waiting until it is back.")
                         : isPaused ? tr("Paused")
                                    : tr("Watching · looked %1 s ago").arg(ago));
    m_state->setGround(!m_isThere ? Role::BadSoft : isPaused ? Role::WarnSoft : Role::OkSoft);
    setIconOf(m_eye, u"view-visible"_s, !m_isThere ? Role::Bad : isPaused ? Role::Warn : Role::Ok);
    m_counts->setBadges(countsOf(queue));
    m_pause->setText(queue.pauseButtonTitle());
    m_pause->setEnabled(queue.canPauseOrResume());
    m_pauseAction->setEnabled(queue.canPauseOrResume());
}

/// The newest stands first.
void WatchWindow::addLine(const app::WatchLog::Line &line)
{
    auto *item = new QListWidgetItem(platform::visible(app::WatchLog::formatted(line)));
    item->setData(KindOfLine, static_cast<int>(line.kind));
    item->setData(TimeOfLine, line.time.time().toString(u"HH:mm:ss"_s));
    item->setData(TextOfLine, platform::visible(line.text));
    item->setToolTip(platform::visible(line.text).toHtmlEscaped());
    m_log->insertItem(0, item);
}

void WatchWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // it closes when the program may end
    Q_EMIT quitWanted();
}

} // namespace window

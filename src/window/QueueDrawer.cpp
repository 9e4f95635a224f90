#include "window/QueueDrawer.h"

#include "jobs/KXQueueController.h"
#include "window/Icons.h"
#include "window/JobModel.h"
#include "window/LayoutRules.h"
#include "window/ToolTipBinder.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QShortcut>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;
using summary::JobState;

namespace window {

namespace {

constexpr int crossWidth = 32;
constexpr int aSecond = 1000;
constexpr int restAfterScrolling = 10000;

} // namespace

QueueDrawer::QueueDrawer(KXQueueController &queue, ToolTipBinder &tips, QWidget *parent)
    : QDockWidget(tr("Queue"), parent)
    , m_queue(queue)
    , m_model(new JobModel(queue, this))
    , m_jobs(named(new QTreeView, "QueueTable", tr("Jobs")))
    , m_pause(named(smallButton(queue.pauseButtonTitle()), "QueuePauseButton", tr("Pause or resume")))
    , m_clear(named(smallButton(tr("Clear")), "QueueClearButton", tr("Clear completed jobs")))
    , m_all(named(new QProgressBar, "QueueProgress", tr("Progress of all jobs")))
    , m_state(named(new ElidedLabel(Qt::ElideRight, Role::Second, Type::Second), "QueueState", {}))
{
    setObjectName(u"QueueDrawer"_s);
    setFeatures(QDockWidget::NoDockWidgetFeatures); // the queue decides when it is open
    setTitleBarWidget(new QWidget);
    auto *content = new Ground(Role::Side);
    content->setEdge(Qt::LeftEdge);
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(1, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(head());
    layout->addWidget(m_jobs, 1);
    content->setFixedWidth(drawerWidth);
    setWidget(content);
    setUpTable();
    tips.bind(m_jobs, "ttQueueTable");
    tips.bind(m_pause, "ttQueuePauseButton");
    tips.bind(m_clear, "ttQueueClearButton");
    connect(m_pause, &QPushButton::clicked, this, &QueueDrawer::togglePause);
    connect(m_clear, &QPushButton::clicked, this, &QueueDrawer::clear);
    for (auto change :
         {&KXQueueController::jobAdded, &KXQueueController::jobChanged, &KXQueueController::jobRemoved})
        connect(&queue, change, this, &QueueDrawer::refreshHead);
    connect(&queue, &KXQueueController::jobProgressListChanged, this, &QueueDrawer::refreshHead);
    connect(&queue, &KXQueueController::pauseButtonTitleChanged, this, &QueueDrawer::refreshHead);
    connect(&queue, &KXQueueController::heldChanged, this, &QueueDrawer::refreshHead);
    connect(&queue, &KXQueueController::pauseReasonChanged, this, &QueueDrawer::refreshHead);
    connect(&queue, &KXQueueController::jobChanged, this, &QueueDrawer::scrollToRunning);
    m_second.setInterval(aSecond);
    connect(&m_second, &QTimer::timeout, this, [this] {
        m_model->tick();
        refreshHead();
    });
    hide();
    refreshHead();
}

QWidget *QueueDrawer::head()
{
    auto *area = new QWidget;
    m_all->setTextVisible(false);
    m_all->setFixedHeight(8);
    auto *layout = new QVBoxLayout(area);
    layout->setContentsMargins(space::middle, space::small, space::middle, space::small);
    layout->setSpacing(6);
    layout->addWidget(rowOf({headLabel(tr("Queue")), nullptr, m_pause, m_clear}));
    layout->addWidget(m_all);
    layout->addWidget(m_state);
    return area;
}

void QueueDrawer::setUpTable()
{
    auto *delegate = new JobDelegate(m_jobs);
    m_jobs->setModel(m_model);
    m_jobs->setItemDelegate(delegate);
    m_jobs->setFrameShape(QFrame::NoFrame);
    m_jobs->viewport()->setAutoFillBackground(false); // below the rows is the drawer's own ground
    m_jobs->setRootIsDecorated(false);
    m_jobs->setIndentation(0);
    m_jobs->setExpandsOnDoubleClick(false);
    m_jobs->setItemsExpandable(false);
    m_jobs->setHeaderHidden(true);
    m_jobs->setUniformRowHeights(false);
    m_jobs->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_jobs->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_jobs->setContextMenuPolicy(Qt::CustomContextMenu);
    QHeaderView *header = m_jobs->header();
    header->setStretchLastSection(false);
    header->setMinimumSectionSize(crossWidth);
    header->setSectionResizeMode(JobModel::Delete, QHeaderView::Fixed);
    header->resizeSection(JobModel::Delete, crossWidth);
    header->setSectionResizeMode(JobModel::File, QHeaderView::Stretch);
    m_jobs->setColumnHidden(JobModel::Type, true); // its row tells them
    m_jobs->setColumnHidden(JobModel::Status, true);
    connect(delegate, &JobDelegate::pressed, this, &QueueDrawer::act);
    connect(m_model, &JobModel::rowsInserted, m_jobs, [this](const QModelIndex &parent) {
        if (parent.isValid())
            m_jobs->expand(parent);
    });
    // Rows change their height with the state of their job.
    connect(&m_queue, &KXQueueController::jobChanged, m_jobs, [this] { m_jobs->doItemsLayout(); });
    connect(m_jobs, &QTreeView::clicked, this, [this](const QModelIndex &index) {
        if (!JobModel::isStep(index))
            m_queue.deleteJobRow(index.column(), index.row());
    });
    connect(m_jobs, &QTreeView::customContextMenuRequested, this, &QueueDrawer::showMenu);
    connect(m_jobs->verticalScrollBar(), &QScrollBar::actionTriggered, this,
            [this] { m_scrolledByHand.start(); });
    for (const auto &[keys, by] :
         {std::pair(Qt::ALT | Qt::Key_Up, -1), std::pair(Qt::ALT | Qt::Key_Down, 1)}) {
        auto *moved = new QShortcut(QKeySequence(keys), m_jobs, nullptr, nullptr, Qt::WidgetShortcut);
        connect(moved, &QShortcut::activated, this, [this, step = by] { moveSelected(step); });
    }
    auto *keyed = new QShortcut(QKeySequence::Delete, m_jobs, nullptr, nullptr, Qt::WidgetShortcut);
    connect(keyed, &QShortcut::activated, this, &QueueDrawer::deleteSelected);
}

void QueueDrawer::scrollToRunning()
{
    const int row = m_model->runningRow();
    if (row >= 0 && (!m_scrolledByHand.isValid() || m_scrolledByHand.elapsed() > restAfterScrolling))
        m_jobs->scrollTo(m_model->index(row, JobModel::File));
}

void QueueDrawer::act(int row, JobDelegate::Verb verb)
{
    const JobPointer job = m_model->job(row);
    if (!job)
        return;
    const QUrl output = job->outputs().value(0);
    switch (verb) {
    case JobDelegate::Verb::Retry:
        if (const QString refusal = m_queue.runAgainRefusal(row); refusal.isNull())
            m_queue.runJobAgain(row);
        else
            Q_EMIT refused(refusal);
        break;
    case JobDelegate::Verb::Reveal:
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(output.toLocalFile()).absolutePath()));
        break;
    case JobDelegate::Verb::Log:
        QDesktopServices::openUrl(logOf(*job));
        break;
    case JobDelegate::Verb::Details:
        Q_EMIT detailsWanted(job->jobFileName(), media::linesOf(job->receipt())
                                                     << QString()
                                                     << summary::receiptSentence(job->receipt()));
        break;
    }
}

/// Everything that the row offers, for those who don't use the small buttons.
void QueueDrawer::showMenu(const QPoint &place)
{
    const QModelIndex index = m_jobs->indexAt(place);
    if (!index.isValid() || JobModel::isStep(index))
        return;
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // Rows may go or come while the menu is open.
    const auto row = [this, job = std::weak_ptr(m_model->job(index.row()))] {
        return static_cast<int>(m_queue.qJobList().indexOf(job.lock()));
    };
    for (const JobDelegate::Verb verb : JobDelegate::verbsOf(index)) {
        QAction *action = menu->addAction(icon(JobDelegate::iconOf(verb)), JobDelegate::titleOf(verb));
        connect(action, &QAction::triggered, this, [this, row, verb] { act(row(), verb); });
    }
    if (m_queue.canMoveJob(index.row())) {
        QAction *first = menu->addAction(tr("Move to Top"));
        connect(first, &QAction::triggered, this, [this, row] { m_queue.moveJob(row(), 0); });
    }
    if (index.row() == m_model->runningRow()) {
        QAction *stops = menu->addAction(tr("Stop After This One"));
        stops->setCheckable(true);
        stops->setChecked(m_queue.stopsAfterThisJob());
        connect(stops, &QAction::toggled, this, [this](bool on) { m_queue.setStopsAfterThisJob(on); });
    }
    QAction *gone = menu->addAction(icon(u"window-close"_s), tr("Delete"));
    connect(gone, &QAction::triggered, this, [this, row] { m_queue.deleteJobRow(JobModel::Delete, row()); });
    menu->popup(m_jobs->viewport()->mapToGlobal(place));
}

void QueueDrawer::deleteSelected()
{
    const QModelIndex index = m_jobs->currentIndex();
    if (index.isValid() && !JobModel::isStep(index))
        m_queue.deleteJobRow(JobModel::Delete, index.row());
}

void QueueDrawer::moveSelected(int by)
{
    const QModelIndex index = m_jobs->currentIndex();
    if (index.isValid() && !JobModel::isStep(index) && m_queue.moveJob(index.row(), index.row() + by))
        m_jobs->setCurrentIndex(m_model->index(index.row() + by, JobModel::File));
}

void QueueDrawer::togglePause()
{
    m_queue.pauseQueueButton(m_queue.pauseButtonTitle());
}

void QueueDrawer::clear()
{
    const QList<JobState> states = m_model->states();
    const auto ended = std::count_if(states.begin(), states.end(), summary::hasEnded);
    const auto failed = std::count(states.begin(), states.end(), JobState::Failed);
    m_queue.clearQueueButton();
    Q_EMIT cleared(static_cast<int>(ended), static_cast<int>(failed));
}

void QueueDrawer::refreshHead()
{
    const bool isPaused = m_queue.pauseButtonTitle() == u"Resume"_s;
    m_pause->setText(m_queue.pauseButtonTitle());
    m_pause->setIcon(icon(isPaused ? u"media-playback-start"_s : u"media-playback-pause"_s));
    m_pause->setEnabled(m_queue.canPauseOrResume());
    const QList<JobState> states = m_model->states();
    m_clear->setEnabled(std::any_of(states.begin(), states.end(), summary::hasEnded));
    const int percent = m_model->percentOfRunning();
    const JobPointer running = m_queue.qJobIsRunning() ? m_queue.currentJob() : nullptr;
    const qint64 left = running ? summary::secondsLeft(m_model->elapsed(*running), percent) : -1;
    m_all->setValue(summary::queuePercent(states, percent));
    m_all->setProperty("paused", isPaused);
    m_all->update();
    m_state->setText(m_queue.isHeld()                 ? tr("Paused · nothing starts until Resume")
                     : m_queue.pauseReason().isNull() ? summary::queueText(states, left)
                                                      : tr("Paused · %1").arg(m_queue.pauseReason()));
    if (m_queue.qJobIsRunning() != m_second.isActive())
        m_queue.qJobIsRunning() ? m_second.start() : m_second.stop();
    Q_EMIT changed();
}

} // namespace window

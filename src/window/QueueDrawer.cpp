#include "window/QueueDrawer.h"

#include "jobs/KXQueueController.h"
#include "window/Controls.h"
#include "window/JobModel.h"
#include "window/ProgressDelegate.h"
#include "window/ProgressModel.h"
#include "window/RoomyDelegate.h"
#include "window/ToolTipBinder.h"

#include <QHeaderView>
#include <QMenu>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int narrowest = 420;

QTreeView *plainTable(const char *word, const QString &accessibleName)
{
    auto *table = named(new QTreeView, word, accessibleName);
    table->setRootIsDecorated(false);
    table->setUniformRowHeights(true);
    table->setAlternatingRowColors(true);
    table->setAllColumnsShowFocus(true);
    table->setTextElideMode(Qt::ElideMiddle);
    table->setItemDelegate(new RoomyDelegate(table));
    return table;
}

} // namespace

QueueDrawer::QueueDrawer(KXQueueController &queue, ToolTipBinder &tips, QWidget *parent)
    : QDockWidget(tr("Queue"), parent)
    , m_queue(queue)
    , m_model(new JobModel(queue, this))
    , m_jobs(plainTable("QueueTable", tr("Jobs")))
    , m_pause(named(new QPushButton(queue.pauseButtonTitle()), "QueuePauseButton", tr("Pause or resume")))
    , m_clear(named(new QPushButton(tr("Clear")), "QueueClearButton", tr("Clear completed jobs")))
{
    setObjectName(u"QueueDrawer"_s);
    setFeatures(QDockWidget::NoDockWidgetFeatures); // the queue decides when it is open
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    auto *tables = new QSplitter(Qt::Vertical);
    tables->setChildrenCollapsible(false);
    tables->addWidget(jobTable());
    tables->addWidget(progressTable(tips));
    tables->setStretchFactor(0, 3);
    tables->setStretchFactor(1, 1);
    layout->addWidget(tables);
    layout->addWidget(rowOf({m_pause, m_clear, nullptr}));
    content->setMinimumWidth(narrowest);
    setWidget(content);
    tips.bind(m_jobs, "ttQueueTable");
    tips.bind(m_pause, "ttQueuePauseButton");
    tips.bind(m_clear, "ttQueueClearButton");
    connect(m_pause, &QPushButton::clicked, this, &QueueDrawer::togglePause);
    connect(m_clear, &QPushButton::clicked, &m_queue, &KXQueueController::clearQueueButton);
    connect(&queue, &KXQueueController::drawerWanted, this, &QWidget::setVisible);
    for (auto change :
         {&KXQueueController::jobAdded, &KXQueueController::jobChanged, &KXQueueController::jobRemoved})
        connect(&queue, change, this, &QueueDrawer::refreshButtons);
    connect(&queue, &KXQueueController::pauseButtonTitleChanged, this, &QueueDrawer::refreshButtons);
    connect(&queue, &KXQueueController::heldChanged, this, &QueueDrawer::refreshButtons);
    hide();
    refreshButtons();
}

QWidget *QueueDrawer::jobTable()
{
    m_jobs->setModel(m_model);
    QHeaderView *header = m_jobs->header();
    header->setStretchLastSection(false);
    header->setMinimumSectionSize(24);
    header->setSectionResizeMode(JobModel::Delete, QHeaderView::Fixed);
    header->resizeSection(JobModel::Delete, 28);
    header->setSectionResizeMode(JobModel::File, QHeaderView::Stretch);
    header->setSectionResizeMode(JobModel::Type, QHeaderView::Interactive);
    header->setSectionResizeMode(JobModel::Status, QHeaderView::Interactive);
    const int letter = fontMetrics().averageCharWidth();
    header->resizeSection(JobModel::Type, letter * 19);
    header->resizeSection(JobModel::Status, letter * 18);
    connect(m_jobs, &QTreeView::clicked, this,
            [this](const QModelIndex &index) { m_queue.deleteJobRow(index.column(), index.row()); });
    auto *keyed = new QShortcut(QKeySequence::Delete, m_jobs, nullptr, nullptr, Qt::WidgetShortcut);
    connect(keyed, &QShortcut::activated, this, &QueueDrawer::deleteSelected);
    m_jobs->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_jobs, &QWidget::customContextMenuRequested, this, &QueueDrawer::showRowMenu);
    return m_jobs;
}

void QueueDrawer::showRowMenu(const QPoint &place)
{
    auto *menu = new QMenu(m_jobs);
    menu->setObjectName(u"QueueRowMenu"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setToolTipsVisible(true);
    fillRowMenu(*menu, m_jobs->indexAt(place).row());
    menu->popup(m_jobs->viewport()->mapToGlobal(place));
}

void QueueDrawer::fillRowMenu(QMenu &menu, int row)
{
    const auto add = [&](const QString &text, bool isPossible, const std::function<void()> &work) {
        QAction *action = menu.addAction(text, this, work);
        action->setEnabled(isPossible);
        return action;
    };
    const bool waits = m_queue.canMoveJob(row);
    const int last = static_cast<int>(m_queue.qJobList().size()) - 1;
    add(tr("Move &Up"), waits && row > 0, [this, row] { m_queue.moveJob(row, row - 1); });
    add(tr("Move &Down"), waits && row < last, [this, row] { m_queue.moveJob(row, row + 1); });
    const QString refusal = m_queue.runAgainRefusal(row);
    add(tr("&Run Again"), refusal.isNull(), [this, row] { m_queue.runJobAgain(row); })->setToolTip(refusal);
    menu.addSeparator();
    QAction *stop = add(tr("&Stop After the Running Job"), m_queue.qJobIsRunning(),
                        [this] { m_queue.setStopsAfterThisJob(!m_queue.stopsAfterThisJob()); });
    stop->setCheckable(true);
    stop->setChecked(m_queue.stopsAfterThisJob());
}

QWidget *QueueDrawer::progressTable(ToolTipBinder &tips)
{
    QTreeView *table = plainTable("QueueJobTable", tr("Steps of the running job"));
    table->setModel(new ProgressModel(m_queue, this));
    table->setItemDelegateForColumn(ProgressModel::Progress, new ProgressDelegate(table));
    table->setSelectionMode(QAbstractItemView::NoSelection);
    table->header()->setSectionResizeMode(ProgressModel::Step, QHeaderView::Stretch);
    table->header()->setStretchLastSection(false);
    table->header()->resizeSection(ProgressModel::Progress, fontMetrics().averageCharWidth() * 22);
    tips.bind(table, "ttQueueJobTable");
    return table;
}

void QueueDrawer::deleteSelected()
{
    const QModelIndex index = m_jobs->currentIndex();
    if (index.isValid())
        m_queue.deleteJobRow(JobModel::Delete, index.row());
}

void QueueDrawer::togglePause()
{
    m_queue.pauseQueueButton(m_queue.pauseButtonTitle());
}

void QueueDrawer::refreshButtons()
{
    m_pause->setText(m_queue.pauseButtonTitle());
    m_pause->setEnabled(m_queue.canPauseOrResume());
    const QList<JobPointer> &jobs = m_queue.qJobList();
    m_clear->setEnabled(std::any_of(
        jobs.begin(), jobs.end(), [](const JobPointer &job) { return job->jobStatus() == u"Completed"_s; }));
}

} // namespace window

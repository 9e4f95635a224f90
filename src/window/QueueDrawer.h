#pragma once

#include <QDockWidget>
#include <QPushButton>
#include <QTreeView>

class KXQueueController;
class QMenu;

namespace window {

class JobModel;
class ToolTipBinder;

/// The drawer at the window's side: the jobs, the running job's steps, and what can be done with them. It
/// opens and closes as the queue asks.
class QueueDrawer final : public QDockWidget
{
    Q_OBJECT

public:
    QueueDrawer(KXQueueController &queue, ToolTipBinder &tips, QWidget *parent = nullptr);

    /// Deletes the job of the selected row, as a click into its first cell does.
    void deleteSelected();
    void togglePause();

private:
    void showRowMenu(const QPoint &place);
    void fillRowMenu(QMenu &menu, int row);
    QWidget *jobTable();
    QWidget *progressTable(ToolTipBinder &tips);
    void refreshButtons();
    void keyDelete();

    KXQueueController &m_queue;
    JobModel *m_model;
    QTreeView *m_jobs;
    QPushButton *m_pause;
    QPushButton *m_clear;
};

} // namespace window

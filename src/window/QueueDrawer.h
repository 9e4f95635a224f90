#pragma once

#include "window/Controls.h"
#include "window/JobDelegate.h"

#include <QDockWidget>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QTimer>
#include <QTreeView>

class KXQueueController;
class QMenu;

namespace window {

class JobModel;
class ToolTipBinder;

/// The drawer at the window's side: the jobs with their progress, where results lie, and what can be done
/// with them. It opens and closes as the queue asks.
class QueueDrawer final : public QDockWidget
{
    Q_OBJECT

public:
    QueueDrawer(KXQueueController &queue, ToolTipBinder &tips, QWidget *parent = nullptr);

    /// Deletes the job of the selected row, as a click into its first cell does.
    void deleteSelected();
    void togglePause();
    /// Takes the rows of all that has ended away.
    void clear();
    const JobModel &model() const { return *m_model; }

Q_SIGNALS:
    /// Completed rows are cleared; so many of them had failed.
    void cleared(int count, int failed);
    void detailsWanted(const QString &title, const QStringList &lines);
    void changed();
    /// Why a job can't run again.
    void refused(const QString &reason);

private:
    void moveSelected(int by);
    QWidget *head();
    void setUpTable();
    void refreshHead();
    void act(int row, JobDelegate::Verb verb);
    void showMenu(const QPoint &place);
    void scrollToRunning();

    KXQueueController &m_queue;
    JobModel *m_model;
    QTreeView *m_jobs;
    QPushButton *m_pause;
    QPushButton *m_clear;
    QProgressBar *m_all;
    ElidedLabel *m_state;
    QTimer m_second;
    QElapsedTimer m_scrolledByHand;
};

} // namespace window

#pragma once

#include "window/Controls.h"

#include <QProgressBar>

class KXQueueController;

namespace window {

class JobModel;
class StatusLine;

/// The queue in one line at the bottom of a narrow window.
class QueueStrip final : public Ground
{
    Q_OBJECT

public:
    QueueStrip(KXQueueController &queue, const JobModel &model, QWidget *parent = nullptr);

    void refresh();
    StatusLine *line() const { return m_line; }

Q_SIGNALS:
    void pauseWanted();
    void listWanted();

private:
    KXQueueController &m_queue;
    const JobModel &m_model;
    StatusLine *m_line;
    QProgressBar *m_bar;
    QPushButton *m_pause;
};

} // namespace window

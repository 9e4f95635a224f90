#include "window/QueueStrip.h"

#include "jobs/KXQueueController.h"
#include "window/Icons.h"
#include "window/JobModel.h"
#include "window/StatusLine.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

QueueStrip::QueueStrip(KXQueueController &queue, const JobModel &model, QWidget *parent)
    : Ground(Role::Side, parent)
    , m_queue(queue)
    , m_model(model)
    , m_line(new StatusLine(queue))
    , m_bar(named(new QProgressBar, "StripProgress", tr("Progress of the running job")))
    , m_pause(named(smallButton(queue.pauseButtonTitle()), "StripPauseButton", tr("Pause or resume")))
{
    setObjectName(u"QueueStrip"_s);
    setEdge(Qt::TopEdge);
    setFixedHeight(36);
    QPushButton *list = named(smallButton(tr("Queue")), "StripQueueButton", tr("Show the queue"));
    m_bar->setTextVisible(false);
    m_bar->setFixedWidth(140);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(space::large, 0, space::large, 0);
    layout->setSpacing(space::small);
    layout->addWidget(iconLabel(u"media-playback-start"_s, Role::Link));
    layout->addWidget(m_line, 1);
    layout->addWidget(m_bar);
    layout->addWidget(m_pause);
    layout->addWidget(list);
    connect(m_pause, &QPushButton::clicked, this, &QueueStrip::pauseWanted);
    connect(list, &QPushButton::clicked, this, &QueueStrip::listWanted);
    refresh();
}

void QueueStrip::refresh()
{
    const bool isPaused = m_queue.pauseButtonTitle() == u"Resume"_s;
    m_pause->setText(m_queue.pauseButtonTitle());
    m_pause->setIcon(icon(isPaused ? u"media-playback-start"_s : u"media-playback-pause"_s));
    m_pause->setEnabled(m_queue.canPauseOrResume());
    m_bar->setValue(m_model.percentOfRunning());
    m_bar->setProperty("paused", isPaused);
    m_bar->update();
}

} // namespace window

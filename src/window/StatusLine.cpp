#include "window/StatusLine.h"

#include "jobs/KXQueueController.h"
#include "window/Controls.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace window {

StatusLine::StatusLine(KXQueueController &queue, QWidget *parent)
    : QLabel(parent)
    , m_queue(queue)
{
    named(this, "StatusLine", tr("What is running"));
    setTextFormat(Qt::PlainText);
    setFont(fontOf(Type::Second));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    connect(&queue, &KXQueueController::jobProgressListChanged, this, &StatusLine::refresh);
    for (auto change :
         {&KXQueueController::jobAdded, &KXQueueController::jobChanged, &KXQueueController::jobRemoved})
        connect(&queue, change, this, &StatusLine::refresh);
    connect(&queue, &KXQueueController::pauseButtonTitleChanged, this, &StatusLine::refresh);
    refresh();
}

void StatusLine::say(const QString &sentence)
{
    m_sentence = sentence;
    refresh();
}

QString StatusLine::runningText() const
{
    const JobPointer job = m_queue.currentJob();
    if (!job)
        return {};
    QString text = job->jobFileName();
    const jobs::ProgressList steps = m_queue.jobProgressList();
    const auto running = std::find_if(steps.begin(), steps.end(),
                                      [](const jobs::ProgressItem &item) { return !item.isComplete(); });
    if (running != steps.end())
        text += u" – %1 %2"_s.arg(running->step, running->progress);
    const auto waiting =
        std::count_if(m_queue.qJobList().begin(), m_queue.qJobList().end(),
                      [](const JobPointer &other) { return other->jobStatus() == u"Queued"_s; });
    if (waiting > 0)
        text += u" – "_s + tr("%n more waiting", nullptr, static_cast<int>(waiting));
    return m_queue.pauseButtonTitle() == u"Resume"_s ? tr("Paused: %1").arg(text) : text;
}

void StatusLine::refresh()
{
    setText(m_queue.qJobIsRunning() ? runningText() : m_sentence);
}

} // namespace window

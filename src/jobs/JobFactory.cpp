#include "jobs/JobFactory.h"

#include "jobs/KXJob.h"

#include <QThread>

namespace jobs {

void JobFactory::add(JobKind kind, Maker maker)
{
    m_makers.insert_or_assign(kind, std::move(maker));
}

std::shared_ptr<KXJob> JobFactory::make(JobKind kind, const JobContext &context) const
{
    const auto maker = m_makers.find(kind);
    return maker == m_makers.end() ? nullptr : maker->second(context);
}

void disposeOfJob(KXJob *job)
{
    if (QThread::currentThread() == job->thread())
        delete job;
    else
        job->deleteLater();
}

} // namespace jobs

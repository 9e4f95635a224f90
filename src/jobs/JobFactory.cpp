#include "jobs/JobFactory.h"

#include "jobs/KXJob.h"

#include <QThread>

namespace jobs {

void JobFactory::add(const QString &className, Maker maker)
{
    m_makers.insert(className, std::move(maker));
}

std::shared_ptr<KXJob> JobFactory::make(const QString &className, const JobContext &context) const
{
    const auto maker = m_makers.constFind(className);
    return maker == m_makers.cend() ? nullptr : (*maker)(context);
}

void disposeOfJob(KXJob *job)
{
    if (QThread::currentThread() == job->thread())
        delete job;
    else
        job->deleteLater();
}

} // namespace jobs

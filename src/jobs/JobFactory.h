#pragma once

#include "jobs/JobRequest.h"

#include <functional>
#include <map>
#include <memory>

class KXJob;

namespace jobs {

struct JobContext;

/// Makes jobs by their kind. The engines register their classes; the queue asks.
class JobFactory final
{
public:
    using Maker = std::function<std::shared_ptr<KXJob>(const JobContext &)>;

    void add(JobKind kind, Maker maker);
    bool knows(JobKind kind) const { return m_makers.contains(kind); }
    /// Null when no class is registered for that kind.
    std::shared_ptr<KXJob> make(JobKind kind, const JobContext &context) const;

    /// Registers T as the class of that kind.
    template <typename T>
    void add(JobKind kind);

private:
    std::map<JobKind, Maker> m_makers;
};

/// Ends a job in its own thread, also when the last who held it was the job's monitor loop.
void disposeOfJob(KXJob *job);

template <typename T>
void JobFactory::add(JobKind kind)
{
    add(kind, [](const JobContext &context) { return std::shared_ptr<KXJob>(new T(context), disposeOfJob); });
}

} // namespace jobs

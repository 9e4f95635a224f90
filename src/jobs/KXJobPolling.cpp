// How a job follows tools that run in the shell's background.
#include "jobs/KXJob.h"

#include <QThread>

using namespace Qt::StringLiterals;

namespace {

constexpr int sliceMs = 20;

} // namespace

/// A stop is not waited for, as it may be waiting for us.
void KXJob::runOnMain(const std::function<void()> &work, Qt::ConnectionType how)
{
    if (jobIsCancelled())
        return;
    // Work that waits to be done does not keep the job: it might be dropped when nothing else is left.
    const auto guarded = [weak = weak_from_this(), work] {
        const auto self = weak.lock();
        if (self && !self->jobIsCancelled())
            work();
    };
    if (how == Qt::QueuedConnection || QThread::currentThread() == thread()) {
        QMetaObject::invokeMethod(this, guarded, how == Qt::QueuedConnection ? how : Qt::DirectConnection);
        return;
    }
    const auto done = std::make_shared<QSemaphore>();
    QMetaObject::invokeMethod(
        this,
        [guarded, done] {
            guarded();
            done->release();
        },
        Qt::QueuedConnection);
    while (!done->tryAcquire(1, sliceMs) && !jobIsCancelled()) {
    }
}

jobs::ProgressList KXJob::firstProgress() const
{
    jobs::ProgressList first;
    for (const ConverterPointer &converter : m_stepConverterList) {
        if (converter)
            first.append({converter->stepName(), u"0%"_s});
    }
    return first;
}

void KXJob::poll(const jobs::ProgressList &first, const Cycle &cycle, const std::function<void()> &finished)
{
    monitorQueue()->start([this, self = shared_from_this(), cycle, finished, previous = first]() mutable {
        bool isFinished = false;
        while (!isFinished && !jobIsCancelled()) {
            jobs::ProgressList current;
            isFinished = cycle(previous, current);
            runOnMain([this, current] { setProgressList(current); }, Qt::BlockingQueuedConnection);
            runOnMain([this, current] { updateProgressWithProgressList(current); }, Qt::QueuedConnection);
            previous = current;
            if (!isFinished && m_news.tryAcquire(1, m_context.intervals.poll))
                m_news.tryAcquire(m_news.available()); // one look sees all of it
        }
        // The hold goes to the main thread: where the loop runs, its end can't be waited for.
        QMetaObject::invokeMethod(
            this,
            [self = std::move(self), finished] {
                if (!self->jobIsCancelled())
                    finished();
            },
            Qt::QueuedConnection);
    });
}

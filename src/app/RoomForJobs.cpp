#include "app/RoomForJobs.h"

#include "platform/Volumes.h"
#include "selection/SizeEstimate.h"

#include <QMap>

using namespace Qt::StringLiterals;
using selection::sizeText;

namespace app {

QString shortageBefore(const QList<JobPointer> &jobs, const platform::Volumes &volumes)
{
    QMap<QUrl, qint64> needs;
    for (const JobPointer &job : jobs) {
        if (!job->hasEnded())
            needs[job->resultFolder()] += job->bytesToCome().value_or(0);
    }
    for (auto need = needs.cbegin(); need != needs.cend(); ++need) {
        const auto free = volumes.freeSize(need.key());
        if (free && *free < need.value())
            return u"The results need about %1, and %2 are free in %3."_s.arg(
                sizeText(need.value()), sizeText(*free), need.key().toLocalFile());
    }
    return {};
}

QString shortageOf(const KXJob &running, const platform::Volumes &volumes)
{
    const auto free = volumes.freeSize(running.resultFolder());
    const qint64 need = running.bytesToCome().value_or(0);
    if (!free || *free >= littleRoom || *free >= need)
        return {};
    return u"Only %1 are free in %2, and the job needs about %3 more."_s.arg(
        sizeText(*free), running.resultFolder().toLocalFile(), sizeText(need));
}

} // namespace app

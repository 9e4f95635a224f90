#include "cli/LiveLine.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

constexpr qsizetype leastSubject = 9; // enough to know a film by

/// The text without its middle. No character of two halves is divided.
QString withoutMiddle(const QString &text, qsizetype size)
{
    if (text.size() <= size)
        return text;
    QString head = text.first((size - 1) / 2);
    QString tail = text.last(size - 1 - head.size());
    if (!head.isEmpty() && head.back().isHighSurrogate())
        head.chop(1);
    if (!tail.isEmpty() && tail.front().isLowSurrogate())
        tail.remove(0, 1);
    return head + u'…' + tail;
}

QString followText(const KXJob &job, const QList<JobPointer> &queue)
{
    QStringList names;
    for (const JobPointer &other : queue) {
        if (!other->hasEnded() && other.get() != &job)
            names.append(other->jobFileName());
    }
    if (names.isEmpty())
        return {};
    return names.size() == 1 ? u", then "_s + names.constFirst() : u", then %1 more"_s.arg(names.size());
}

} // namespace

QString liveLine(const KXJob &job, const jobs::ProgressList &steps, const QList<JobPointer> &queue)
{
    QStringList parts;
    for (const jobs::ProgressItem &item : steps)
        parts.append(item.step + u' ' + item.progress);
    const auto left = job.pace().leftSeconds;
    const auto queueLeft = jobs::secondsLeftFor(queue);
    if (left)
        parts.append(jobs::clockText(*left) + u" left"_s);
    if (left && queueLeft && *queueLeft > *left)
        parts.append(jobs::clockText(*queueLeft) + u" for all"_s);
    return job.jobFileName() + u": "_s + parts.join(u", "_s) + followText(job, queue);
}

QString fittedLine(const QString &line, const QString &subject, qsizetype columns)
{
    if (line.size() <= columns || !line.startsWith(subject))
        return line.left(columns);
    const QString rest = line.sliced(subject.size());
    const qsizetype room = std::max(leastSubject, columns - rest.size());
    return (withoutMiddle(subject, room) + rest).left(columns);
}

} // namespace cli

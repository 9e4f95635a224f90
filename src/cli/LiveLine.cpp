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

} // namespace

QString fittedLine(const QString &line, const QString &subject, qsizetype columns)
{
    if (line.size() <= columns || !line.startsWith(subject))
        return line.left(columns);
    const QString rest = line.sliced(subject.size());
    const qsizetype room = std::max(leastSubject, columns - rest.size());
    return (withoutMiddle(subject, room) + rest).left(columns);
}

} // namespace cli

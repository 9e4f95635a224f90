#include "tools/Times.h"

#include "tools/Numbers.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace tools {

namespace {

/// One piece of a time text; far below what could overflow in seconds.
qint64 timePiece(const QString &text)
{
    constexpr qint64 largest = 1'000'000'000'000;
    return std::clamp(leadingInteger(text), -largest, largest);
}

} // namespace

qint64 secondsIn(const QString &time)
{
    const QStringList pieces = time.split(u':');
    if (pieces.size() != 3)
        return 0;
    const QString wholeSeconds = pieces.at(2).section(u'.', 0, 0);
    return timePiece(pieces.at(0)) * 3600 + timePiece(pieces.at(1)) * 60 + timePiece(wholeSeconds);
}

} // namespace tools

#include "prefs/TypedChange.h"

#include <algorithm>

namespace prefs {

namespace {

/// How many characters both texts have in common at their heads, at most so many.
qsizetype commonHead(QStringView one, QStringView other, qsizetype most)
{
    qsizetype length = 0;
    while (length < most && one.at(length) == other.at(length))
        ++length;
    return length;
}

qsizetype commonEnd(QStringView one, QStringView other, qsizetype most)
{
    qsizetype length = 0;
    while (length < most && one.at(one.size() - 1 - length) == other.at(other.size() - 1 - length))
        ++length;
    return length;
}

} // namespace

TypedChange typedChange(const QString &oldText, const QString &newText, qsizetype caret)
{
    caret = std::clamp<qsizetype>(caret, 0, newText.size());
    const qsizetype untouched = commonEnd(oldText, newText, std::min(oldText.size(), newText.size() - caret));
    const qsizetype oldEnd = oldText.size() - untouched;
    const qsizetype newEnd = newText.size() - untouched;
    const qsizetype start = commonHead(oldText, newText, std::min(caret, oldEnd));
    return {start, oldEnd - start, newText.mid(start, newEnd - start)};
}

bool holdsOnly(QStringView text, QStringView allowed)
{
    return std::all_of(text.begin(), text.end(), [&](QChar c) { return allowed.contains(c); });
}

FieldEdit refusal(const QString &oldText, const QString &newText, qsizetype caret)
{
    return {oldText, typedChange(oldText, newText, caret).start, true};
}

} // namespace prefs

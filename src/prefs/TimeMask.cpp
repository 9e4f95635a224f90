#include "prefs/TimeMask.h"

#include "prefs/TypedChange.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

TimeMask::TimeMask(Precision precision)
    : m_zero(precision == Precision::Seconds ? u"00:00:00"_s : u"00:00:00,000"_s)
{
}

bool TimeMask::fits(const QString &text) const
{
    return std::equal(text.begin(), text.end(), m_zero.begin(), m_zero.end(),
                      [](QChar c, QChar zero) { return zero == u'0' ? isDigit(c) : c == zero; });
}

FieldEdit TimeMask::edited(const QString &oldText, const QString &newText, qsizetype caret) const
{
    const QString before = fitted(oldText);
    const TypedChange change = typedChange(before, newText, caret);
    // A comma is refused as well: the colon leads behind every separator.
    if (!holdsOnly(change.inserted, u"0123456789:"))
        return refusal(before, newText, caret);
    FieldEdit edit{cleared(before, change), change.start};
    for (const QChar c : change.inserted)
        edit.caret = c == u':' ? behindNextSeparator(edit.caret) : put(edit.text, edit.caret, c);
    return edit;
}

bool TimeMask::isSeparator(qsizetype position) const
{
    return position < m_zero.size() && m_zero.at(position) != u'0';
}

QString TimeMask::cleared(QString text, const TypedChange &change) const
{
    return text.replace(change.start, change.removed, m_zero.mid(change.start, change.removed));
}

/// Right behind a separator a colon was typed out of habit, and at the start for no reason: it does nothing.
qsizetype TimeMask::behindNextSeparator(qsizetype position) const
{
    if (position == 0 || isSeparator(position - 1))
        return position;
    for (qsizetype next = position; next < m_zero.size(); ++next) {
        if (isSeparator(next))
            return next + 1;
    }
    return position;
}

/// Answers where the next one goes. Behind the end of the mask digits are lost.
qsizetype TimeMask::put(QString &text, qsizetype position, QChar digit) const
{
    if (isSeparator(position))
        ++position;
    if (position == text.size())
        return position;
    text[position] = digit;
    return position + 1;
}

} // namespace prefs

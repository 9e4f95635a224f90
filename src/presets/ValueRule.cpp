#include "presets/ValueRule.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace presets {

namespace {

constexpr qsizetype longestValue = 10000; // far more than a user types

bool matches(const QString &text, const QString &pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

QString quotedList(const QStringList &texts)
{
    QStringList quoted;
    for (const QString &text : texts)
        quoted.append(u'"' + text + u'"');
    const QString last = quoted.takeLast();
    return quoted.isEmpty() ? last : quoted.join(u", "_s) + u" or "_s + last;
}

} // namespace

ValueRule ValueRule::indexIn(const QStringList &shown, qsizetype limit)
{
    ValueRule rule(Kind::Index);
    rule.m_shown = shown;
    rule.m_limit = std::max(limit, shown.size());
    return rule;
}

ValueRule ValueRule::oneOf(const QStringList &shown)
{
    return oneOf(shown, shown);
}

ValueRule ValueRule::oneOf(const QStringList &shown, const QStringList &stored)
{
    ValueRule rule(Kind::Choice);
    rule.m_shown = shown;
    rule.m_stored = stored;
    return rule;
}

ValueRule ValueRule::flag()
{
    ValueRule rule(Kind::Flag);
    rule.m_shown = {u"true"_s, u"false"_s};
    return rule;
}

ValueRule ValueRule::wholeNumber()
{
    return ValueRule(Kind::WholeNumber);
}

ValueRule ValueRule::decimal()
{
    return ValueRule(Kind::Decimal);
}

ValueRule ValueRule::anyWordLike(const QStringList &shown)
{
    ValueRule rule(Kind::Word);
    rule.m_shown = shown;
    rule.m_stored = shown;
    return rule;
}

ValueRule ValueRule::anyText()
{
    return ValueRule(Kind::Text);
}

ValueRule ValueRule::alsoStored(const QStringList &texts) const
{
    ValueRule rule = *this;
    rule.m_alsoStored = texts;
    return rule;
}

QVariant ValueRule::read(const QString &text) const
{
    switch (m_kind) {
    case Kind::Index:
        return readIndex(text);
    case Kind::Flag:
        return readFlag(text);
    case Kind::Choice:
        if (const qsizetype place = m_shown.indexOf(text); place >= 0)
            return m_stored.at(place);
        return m_stored.contains(text) ? QVariant(text) : QVariant();
    default:
        return holdsText(text) ? QVariant(text) : QVariant();
    }
}

QVariant ValueRule::readIndex(const QString &text) const
{
    if (const qsizetype place = m_shown.indexOf(text); place >= 0)
        return static_cast<int>(place);
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    const bool fits = isNumber && text == QString::number(number) && number >= 0 && number < m_limit;
    return fits ? QVariant(number) : QVariant();
}

QVariant ValueRule::readFlag(const QString &text) const
{
    if (text == u"true"_s || text == u"on"_s || text == u"yes"_s)
        return true;
    const bool isOff = text == u"false"_s || text == u"off"_s || text == u"no"_s;
    return isOff ? QVariant(false) : QVariant();
}

bool ValueRule::holds(const QVariant &stored) const
{
    switch (m_kind) {
    case Kind::Index:
        return stored.typeId() == QMetaType::Int && stored.toInt() >= 0 && stored.toInt() < m_limit;
    case Kind::Flag:
        return stored.typeId() == QMetaType::Bool;
    default:
        return stored.typeId() == QMetaType::QString && holdsText(stored.toString());
    }
}

bool ValueRule::holdsText(const QString &text) const
{
    switch (m_kind) {
    case Kind::WholeNumber:
        return matches(text, u"[0-9]{0,9}"_s);
    case Kind::Decimal:
        return matches(text, u"([0-9]{1,6}([.][0-9]{1,6})?)?"_s);
    case Kind::Word:
        return m_stored.contains(text) || matches(text, u"[A-Za-z0-9_.-]{1,64}"_s);
    case Kind::Text:
        return text.size() <= longestValue;
    default:
        return m_stored.contains(text) || m_alsoStored.contains(text);
    }
}

QString ValueRule::shown(const QVariant &stored) const
{
    if (m_kind == Kind::Index)
        return m_shown.value(stored.toInt(), stored.toString());
    const qsizetype place = m_kind == Kind::Choice ? m_stored.indexOf(stored.toString()) : -1;
    return place < 0 ? stored.toString() : m_shown.at(place);
}

QString ValueRule::storedValues() const
{
    if (m_kind == Kind::Index)
        return u"a whole number from 0 to %1"_s.arg(m_limit - 1);
    if (m_kind == Kind::Flag)
        return u"true or false"_s;
    return m_kind == Kind::Choice ? quotedList(m_stored) : rightValues();
}

QString ValueRule::rightValues() const
{
    switch (m_kind) {
    case Kind::Index:
        return quotedList(m_shown) + u", or a number from 0 to %1"_s.arg(m_limit - 1);
    case Kind::WholeNumber:
        return u"a whole number of up to nine digits, or nothing"_s;
    case Kind::Decimal:
        return u"a number such as 23.976, or nothing"_s;
    case Kind::Word:
        return quotedList(m_shown) + u", or another codec's word"_s;
    case Kind::Text:
        return u"a text of up to %1 characters"_s.arg(longestValue);
    default:
        return quotedList(m_shown);
    }
}

} // namespace presets

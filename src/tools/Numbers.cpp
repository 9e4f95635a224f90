#include "tools/Numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace tools {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

qint64 leadingInteger(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    const bool negative = i < text.size() && text.at(i) == u'-';
    if (negative || (i < text.size() && text.at(i) == u'+'))
        ++i;
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    qint64 value = 0;
    for (; i < text.size() && isDigit(text.at(i)); ++i) {
        const int digit = text.at(i).unicode() - u'0';
        value = value > (largest - digit) / 10 ? largest : value * 10 + digit;
    }
    return negative ? -value : value;
}

bool isAllDigits(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isDigit);
}

qint64 percentOf(qint64 part, qint64 whole)
{
    if (whole <= 0)
        return 0;
    constexpr qint64 largest = std::numeric_limits<qint64>::max() / 100;
    if (part >= -largest && part <= largest)
        return part * 100 / whole;
    // Too large to be multiplied: the last digits don't count any more.
    return std::clamp(part / std::max<qint64>(whole / 100, 1), -largest, largest);
}

QString printedFloat(double value)
{
    return std::isnan(value) ? u"nan"_s : QString::asprintf("%f", value);
}

} // namespace tools

#include "selection/EnteredNumber.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace selection {

namespace {

/// Adds 1 to digits that begin with a 0: "0199" is "0200".
QString incremented(QString digits)
{
    qsizetype i = digits.size() - 1;
    for (; digits.at(i) == u'9'; --i)
        digits[i] = u'0';
    digits[i] = QChar(digits.at(i).unicode() + 1);
    return digits;
}

QString withoutLeadingZeros(const QString &digits)
{
    qsizetype start = 0;
    while (start < digits.size() - 1 && digits.at(start) == u'0')
        ++start;
    return digits.mid(start);
}

bool areDigits(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

} // namespace

/// By hand: a regular expression here would bring its whole engine into every start.
QString normalizedNumber(const QString &text, qsizetype fractionDigits)
{
    QStringView number = QStringView(text).trimmed();
    const bool isNegative = number.startsWith(u'-');
    if (isNegative || number.startsWith(u'+'))
        number = number.mid(1);
    const qsizetype point = number.indexOf(u'.');
    const QString whole = number.left(point < 0 ? number.size() : point).toString();
    const QString fraction = point < 0 ? QString() : number.mid(point + 1).toString();
    if (!areDigits(whole) || !areDigits(fraction) || (whole.isEmpty() && fraction.isEmpty()))
        return {};
    // In digits, since binary fractions can't tell a half from what is nearly one.
    QString digits = u'0' + whole + fraction.left(fractionDigits).leftJustified(fractionDigits, u'0');
    if (fraction.size() > fractionDigits && fraction.at(fractionDigits) >= u'5')
        digits = incremented(digits);
    QString result = withoutLeadingZeros(digits.chopped(fractionDigits));
    QString rest = digits.right(fractionDigits);
    while (rest.endsWith(u'0'))
        rest.chop(1);
    if (!rest.isEmpty())
        result += u'.' + rest;
    return isNegative && result != u"0"_s ? u'-' + result : result;
}

} // namespace selection

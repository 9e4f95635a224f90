#include "selection/EnteredNumber.h"

#include <QRegularExpression>

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

} // namespace

QString normalizedNumber(const QString &text, qsizetype fractionDigits)
{
    static const QRegularExpression number(u"^\\s*([+-]?)([0-9]*)(?:\\.([0-9]*))?\\s*$"_s);
    const auto match = number.match(text);
    const QString whole = match.captured(2);
    const QString fraction = match.captured(3);
    if (!match.hasMatch() || (whole.isEmpty() && fraction.isEmpty()))
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
    return match.captured(1) == u"-"_s && result != u"0"_s ? u'-' + result : result;
}

} // namespace selection

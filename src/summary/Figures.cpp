#include "summary/Figures.h"

#include "tools/Numbers.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace summary {

namespace {

constexpr double thousand = 1000;
constexpr double fewest = 9.95; // rounds to a number of two digits from here on
constexpr qint64 minute = 60;
constexpr qint64 hour = 60 * minute;

/// Two digits: "1.9", "12", "812".
QString twoDigits(double value)
{
    return QString::number(value, 'f', value < fewest ? 1 : 0);
}

QString padded(qint64 number)
{
    return QString::number(number).rightJustified(2, u'0');
}

} // namespace

QString sizeText(qint64 bytes)
{
    if (bytes <= 0)
        return {};
    static const std::array units{u" kB"_s, u" MB"_s, u" GB"_s, u" TB"_s};
    double value = static_cast<double>(bytes) / thousand;
    size_t unit = 0;
    while (value >= thousand - 0.5 && unit + 1 < units.size()) {
        value /= thousand;
        ++unit;
    }
    // From 900 MB on it is nearly one of the next.
    if (value >= 900 && unit + 1 < units.size()) {
        value /= thousand;
        ++unit;
    }
    return twoDigits(std::max(value, 0.1)) + units.at(unit);
}

QString lengthText(double seconds)
{
    if (!std::isfinite(seconds) || seconds <= 0)
        return {};
    const auto whole = static_cast<qint64>(std::llround(seconds));
    return QString::number(whole / hour) + u':' + padded(whole / minute % minute) + u':' +
           padded(whole % minute);
}

QString rateText(qint64 kilobits)
{
    if (kilobits <= 0)
        return {};
    if (kilobits < 1000)
        return QString::number(kilobits) + u" kb/s"_s;
    return twoDigits(static_cast<double>(kilobits) / thousand) + u" Mb/s"_s;
}

QString frameRateText(const QString &rate)
{
    bool isNumber = false;
    const double value = rate.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value) || value <= 0)
        return {};
    return QString::number(std::round(value * thousand) / thousand, 'g', 6) + u" fps"_s;
}

QString pictureText(const QString &width, const QString &height)
{
    if (tools::leadingInteger(width) <= 0 || tools::leadingInteger(height) <= 0)
        return {};
    return width + u" × "_s + height;
}

QString elapsedText(qint64 seconds)
{
    const QString rest = padded(seconds % minute);
    if (seconds < hour)
        return QString::number(seconds / minute) + u':' + rest;
    return QString::number(seconds / hour) + u':' + padded(seconds / minute % minute) + u':' + rest;
}

QString leftText(qint64 seconds)
{
    if (seconds < minute)
        return u"less than a minute left"_s;
    const qint64 minutes = (seconds + minute / 2) / minute;
    if (minutes < minute)
        return u"about %1 min left"_s.arg(minutes);
    return u"about %1 h %2 min left"_s.arg(minutes / minute).arg(minutes % minute);
}

} // namespace summary

#include "window/ProgressDelegate.h"

#include <QApplication>
#include <QRegularExpression>
#include <QStyleOptionProgressBar>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace window {

int ProgressDelegate::percentageOf(const QString &text)
{
    if (text == u"Complete"_s)
        return 100;
    static const QRegularExpression number(u"(\\d{1,3})%$"_s); // "Pass #1 45%" too
    const QRegularExpressionMatch match = number.match(text);
    return match.hasMatch() ? std::min(match.captured(1).toInt(), 100) : -1;
}

void ProgressDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                             const QModelIndex &index) const
{
    const QString text = index.data().toString();
    const int percentage = percentageOf(text);
    if (percentage < 0)
        return RoomyDelegate::paint(painter, option, index);
    QStyleOptionProgressBar bar;
    bar.rect = option.rect.adjusted(4, 3, -4, -3);
    bar.state = option.state | QStyle::State_Horizontal;
    bar.direction = option.direction;
    bar.fontMetrics = option.fontMetrics;
    bar.palette = option.palette;
    bar.minimum = 0;
    bar.maximum = 100;
    bar.progress = percentage;
    bar.text = text;
    bar.textVisible = true;
    bar.textAlignment = Qt::AlignCenter;
    QApplication::style()->drawControl(QStyle::CE_ProgressBar, &bar, painter);
}

} // namespace window

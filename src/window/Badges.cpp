#include "window/Badges.h"

#include <QFontMetrics>
#include <QPainter>

namespace window {

namespace {

constexpr int badgeAir = 6;
constexpr int between = 6;

} // namespace

int badgeWidth(const QString &text)
{
    return QFontMetrics(fontOf(Type::Badge)).horizontalAdvance(text) + 2 * badgeAir;
}

int paintBadge(QPainter &painter, const QPoint &leftCentre, const Badge &badge)
{
    const QRect place(leftCentre.x(), leftCentre.y() - badgeHeight / 2, badgeWidth(badge.text), badgeHeight);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(badge.ground));
    painter.drawRoundedRect(place, 3, 3);
    painter.setPen(color(badge.ink));
    painter.setFont(fontOf(Type::Badge));
    painter.drawText(place, Qt::AlignCenter, badge.text);
    painter.restore();
    return place.width();
}

BadgeRow::BadgeRow(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setFixedHeight(badgeHeight);
}

void BadgeRow::setBadges(const QList<Badge> &badges)
{
    m_badges = badges;
    QStringList words;
    for (const Badge &badge : badges)
        words.append(badge.text);
    setAccessibleDescription(words.join(QStringLiteral(", ")));
    updateGeometry();
    update();
}

QSize BadgeRow::sizeHint() const
{
    int width = 0;
    for (const Badge &badge : m_badges)
        width += badgeWidth(badge.text) + between;
    return {width, badgeHeight};
}

void BadgeRow::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    int x = 0;
    for (const Badge &badge : m_badges) {
        const int wide = badgeWidth(badge.text);
        if (x + wide > width())
            break;
        const int left = isRightToLeft() ? width() - x - wide : x;
        paintBadge(painter, {left, height() / 2}, badge);
        x += wide + between;
    }
}

} // namespace window

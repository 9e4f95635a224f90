#pragma once

#include "window/Theme.h"

#include <QWidget>

namespace window {

/// A few letters on a ground of their own.
struct Badge
{
    QString text;
    Role ink = Role::Second;
    Role ground = Role::Groove;
};

int badgeWidth(const QString &text);
constexpr int badgeHeight = 18;
/// At a left edge, centred on a height; answers its width.
int paintBadge(QPainter &painter, const QPoint &leftCentre, const Badge &badge);

/// Badges in a row; those that don't fit are dropped from the right.
class BadgeRow final : public QWidget
{
    Q_OBJECT

public:
    explicit BadgeRow(QWidget *parent = nullptr);
    void setBadges(const QList<Badge> &badges);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, badgeHeight}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<Badge> m_badges;
};

} // namespace window

#pragma once

#include "window/RoomyDelegate.h"

namespace window {

/// Draws a percentage as a bar, and any other text ("Initializing") as it is. Owned by the table.
class ProgressDelegate final : public RoomyDelegate
{
    Q_OBJECT

public:
    using RoomyDelegate::RoomyDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

    /// 0 to 100; -1 where the text is no percentage.
    static int percentageOf(const QString &text);
};

} // namespace window

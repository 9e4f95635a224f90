#include "window/RoomyDelegate.h"

#include <algorithm>

namespace window {

namespace {

constexpr int air = 8;

} // namespace

QSize RoomyDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QSize base = QStyledItemDelegate::sizeHint(option, index);
    return {base.width(), std::max(base.height(), option.fontMetrics.height() + air)};
}

} // namespace window

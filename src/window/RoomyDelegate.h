#pragma once

#include <QStyledItemDelegate>

namespace window {

/// Rows with a little air, so that tables are easy to read and to hit. Owned by the table.
class RoomyDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace window

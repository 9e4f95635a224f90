#pragma once

#include <QStyledItemDelegate>

namespace window {

/// Paints a file of the tab "Edit Files": its number and picture, name and facts, and how it goes with the
/// first.
class FileDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};

} // namespace window

#pragma once

#include <QStyledItemDelegate>

namespace window {

/// Draws the table of tracks: the kind with its codec, marks in the place of boxes, what can be edited, and
/// what comes out. Owned by the table.
class TrackDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

    static constexpr int tickWidth = 36;
    static constexpr int rowHeight = 36;
};

} // namespace window

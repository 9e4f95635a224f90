#pragma once

#include <QStyledItemDelegate>

namespace window {

/// Draws a job as far as its state has something to tell, and the small buttons of its row. Owned by the
/// table.
class JobDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    enum class Verb { Retry, Reveal, Log, Details };
    Q_ENUM(Verb)

    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

    /// What can be done with the job of a row, in the order in which it is offered.
    static QList<Verb> verbsOf(const QModelIndex &index);
    static QString titleOf(Verb verb);
    static QString iconOf(Verb verb);

Q_SIGNALS:
    void pressed(int row, window::JobDelegate::Verb verb);
};

} // namespace window

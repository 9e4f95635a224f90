#include "window/FileDelegate.h"

#include "window/FilesModel.h"
#include "window/Icons.h"
#include "window/Thumbnails.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int rowHeight = 52;
constexpr QSize pictureSize{64, 36};
constexpr int gripLeft = 8;
constexpr int numberLeft = 24;
constexpr int pictureLeft = 52;
constexpr int wordsLeft = 128;
constexpr int markSide = 14;

QRect middleOf(const QRect &row, int left, const QSize &size)
{
    return {row.x() + left, row.y() + (row.height() - size.height()) / 2, size.width(), size.height()};
}

void paintName(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const auto placed = [&](const QRect &place) {
        return QStyle::visualRect(option.direction, option.rect, place);
    };
    const QRect &row = option.rect;
    paintIcon(painter, placed(middleOf(row, gripLeft, {12, 12})), u"handle"_s, color(Role::Edge));
    painter.setFont(fontOf(Type::Body));
    painter.setPen(color(Role::Second));
    painter.drawText(placed({row.x() + numberLeft, row.y(), pictureLeft - numberLeft, row.height()}),
                     Qt::AlignVCenter | Qt::AlignLeading, QString::number(index.row() + 1));
    paintThumbnail(painter, placed(middleOf(row, pictureLeft, pictureSize)),
                   index.data(FilesModel::PictureRole).value<QImage>());
    const QRect words = placed(row.adjusted(wordsLeft, space::small, -space::small, -space::small));
    painter.setPen(color(Role::Text));
    painter.drawText(
        words, Qt::AlignTop | Qt::AlignLeading,
        painter.fontMetrics().elidedText(index.data().toString(), Qt::ElideMiddle, words.width()));
    painter.setFont(fontOf(Type::Second));
    painter.setPen(color(Role::Second));
    painter.drawText(words, Qt::AlignBottom | Qt::AlignLeading,
                     painter.fontMetrics().elidedText(index.data(FilesModel::FactsRole).toString(),
                                                      Qt::ElideMiddle, words.width()));
}

void paintJoining(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const QString text = index.data().toString();
    if (text.isEmpty())
        return;
    const bool differs = index.data(FilesModel::DiffersRole).toBool();
    paintIcon(painter,
              QStyle::visualRect(option.direction, option.rect,
                                 middleOf(option.rect, space::small, {markSide, markSide})),
              differs ? u"dialog-warning"_s : u"emblem-ok"_s, color(differs ? Role::Warn : Role::Ok));
    const QRect words = QStyle::visualRect(option.direction, option.rect,
                                           option.rect.adjusted(space::large + markSide, 0, -space::tiny, 0));
    painter.setFont(fontOf(Type::Second));
    painter.setPen(color(differs ? Role::Warn : Role::Text));
    painter.drawText(words, Qt::AlignVCenter | Qt::AlignLeading,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, words.width()));
}

} // namespace

QSize FileDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex & /*index*/) const
{
    return {0, std::max(rowHeight, 2 * option.fontMetrics.height() + 2 * space::small)};
}

void FileDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    painter->save();
    painter->setClipRect(option.rect);
    if (option.state.testFlag(QStyle::State_Selected))
        painter->fillRect(option.rect, color(Role::Soft));
    painter->setPen(color(Role::Line));
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    if (index.column() == FilesModel::Name) {
        paintName(*painter, option, index);
    } else if (index.column() == FilesModel::Joining) {
        paintJoining(*painter, option, index);
    } else {
        painter->setFont(fontOf(Type::Body));
        painter->setPen(color(Role::Text));
        painter->drawText(option.rect.adjusted(space::small, 0, -space::small, 0),
                          Qt::AlignVCenter | Qt::AlignTrailing, index.data().toString());
    }
    painter->restore();
}

} // namespace window

#include "window/TrackDelegate.h"

#include "window/Badges.h"
#include "window/Icons.h"
#include "window/TrackModel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

#include <array>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int pictureSide = 16;
constexpr int editMark = 14;

struct KindLook
{
    QString icon;
    QString word;
    Role ink;
    Role ground;
};

const KindLook &lookOf(const QModelIndex &index)
{
    static const std::array<KindLook, 3> looks{{
        {u"video-x-generic"_s, TrackDelegate::tr("Video"), Role::Video, Role::VideoSoft},
        {u"audio-x-generic"_s, TrackDelegate::tr("Audio"), Role::Audio, Role::AudioSoft},
        {u"media-view-subtitles-symbolic"_s, TrackDelegate::tr("Subtitle"), Role::Subtitle,
         Role::SubtitleSoft},
    }};
    return looks.at(static_cast<size_t>(index.data(TrackModel::KindRole).toInt()));
}

bool isLively(const QStyleOptionViewItem &option)
{
    return option.state.testFlag(QStyle::State_Selected) || option.state.testFlag(QStyle::State_MouseOver);
}

QColor inkOf(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (!option.state.testFlag(QStyle::State_Enabled))
        return color(Role::Off);
    return color(index.data(TrackModel::TickedRole).toBool() ? Role::Text : Role::Second);
}

void paintGround(QPainter *painter, const QStyleOptionViewItem &option)
{
    if (option.state.testFlag(QStyle::State_Selected))
        painter->fillRect(option.rect, color(Role::Soft));
    else if (option.state.testFlag(QStyle::State_MouseOver))
        painter->fillRect(option.rect, color(Role::Window));
    painter->setPen(color(Role::Line));
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    if (option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_Active)) {
        painter->setPen(QPen(color(Role::Accent), 2));
        painter->drawRect(option.rect.adjusted(1, 1, -1, -2));
    }
}

void paintTick(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    QStyleOptionViewItem box = option;
    box.rect =
        QRect(option.rect.x() + 10, option.rect.center().y() - pictureSide / 2, pictureSide, pictureSide);
    box.state.setFlag(QStyle::State_On, index.data(Qt::CheckStateRole).toInt() == Qt::Checked);
    box.state.setFlag(QStyle::State_Off, index.data(Qt::CheckStateRole).toInt() != Qt::Checked);
    box.state.setFlag(QStyle::State_HasFocus, false);
    QApplication::style()->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &box, painter, option.widget);
}

/// Icon, word, badge, fact and "added", as far as there is room.
void paintKind(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const KindLook &look = lookOf(index);
    const int middle = option.rect.center().y();
    const int right = option.rect.right() - space::tiny;
    int x = option.rect.x() + TrackDelegate::tickWidth + space::small;
    paintIcon(*painter, {x, middle - pictureSide / 2 + 1, pictureSide, pictureSide}, look.icon,
              color(look.ink));
    x += pictureSide + 6;
    painter->setPen(inkOf(option, index));
    painter->setFont(fontOf(Type::Body));
    painter->drawText(QRect(x, option.rect.y(), right - x, option.rect.height()), Qt::AlignVCenter,
                      look.word);
    x += painter->fontMetrics().horizontalAdvance(look.word) + 6;
    const auto badge = [&](const QString &text, Role ink, Role ground) {
        if (!text.isEmpty() && x + badgeWidth(text) <= right)
            x += paintBadge(*painter, {x, middle + 1}, {text, ink, ground}) + 6;
    };
    badge(index.data(TrackModel::CodecRole).toString(), look.ink, look.ground);
    if (index.data(TrackModel::AddedRole).toBool())
        badge(TrackDelegate::tr("added"), Role::Link, Role::Soft);
    painter->setFont(fontOf(Type::Second));
    painter->setPen(color(Role::Second));
    const QString fact = index.data(TrackModel::FactRole).toString();
    if (x + painter->fontMetrics().horizontalAdvance(fact) <= right)
        painter->drawText(QRect(x, option.rect.y(), right - x, option.rect.height()), Qt::AlignVCenter, fact);
}

void paintText(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index,
               const QString &mark)
{
    QRect words = option.rect.adjusted(space::small, 0, -space::tiny, 0);
    if (isLively(option)) {
        const QRect place(words.right() - editMark - 2, words.center().y() - editMark / 2, editMark,
                          editMark);
        paintIcon(*painter, place, mark, color(Role::Second));
        words.setRight(place.left() - space::tiny);
    }
    painter->setFont(fontOf(Type::Body));
    painter->setPen(inkOf(option, index));
    painter->drawText(
        words, Qt::AlignVCenter,
        painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideRight, words.width()));
}

void paintMark(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const QPoint middle = option.rect.center();
    if (index.data(Qt::CheckStateRole).toInt() == Qt::Checked) {
        paintIcon(*painter, {middle.x() - 7, middle.y() - 7, 14, 14}, u"dialog-ok"_s, color(Role::Link));
        return;
    }
    painter->setPen(color(Role::Edge));
    painter->drawLine(middle.x() - 3, middle.y(), middle.x() + 3, middle.y());
}

void paintBecomes(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    static const std::array<Role, 3> tones{Role::Text, Role::Warn, Role::Bad};
    QRect words = option.rect.adjusted(space::small, 0, -space::tiny, 0);
    const auto tone = static_cast<size_t>(index.data(TrackModel::ToneRole).toInt());
    if (tone == 1) {
        paintIcon(*painter, {words.x(), words.center().y() - 6, 14, 14}, u"dialog-warning"_s,
                  color(Role::Warn));
        words.setLeft(words.x() + 18);
    }
    painter->setFont(fontOf(Type::Second));
    painter->setPen(color(tones.at(tone)));
    painter->drawText(
        words, Qt::AlignVCenter,
        painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideRight, words.width()));
}

} // namespace

QSize TrackDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QSize base = QStyledItemDelegate::sizeHint(option, index);
    return {base.width(), std::max(rowHeight, option.fontMetrics.height() + space::large)};
}

void TrackDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const
{
    painter->save();
    painter->setClipRect(option.rect);
    paintGround(painter, option);
    switch (index.column()) {
    case TrackModel::Kind:
        paintTick(painter, option, index);
        paintKind(painter, option, index);
        break;
    case TrackModel::Language:
        paintText(painter, option, index, u"go-down"_s);
        break;
    case TrackModel::Title:
        paintText(painter, option, index, u"document-edit"_s);
        break;
    case TrackModel::Becomes:
        paintBecomes(painter, option, index);
        break;
    default:
        paintMark(painter, option, index);
    }
    painter->restore();
}

/// A click ticks where the mark is; keys tick as in any list.
bool TrackDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    const bool isMouse = event->type() == QEvent::MouseButtonPress ||
                         event->type() == QEvent::MouseButtonRelease ||
                         event->type() == QEvent::MouseButtonDblClick;
    if (!isMouse)
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    const auto *mouse = static_cast<QMouseEvent *>(event); // NOLINT
    if (event->type() != QEvent::MouseButtonRelease || mouse->button() != Qt::LeftButton)
        return false;
    const QPoint place = mouse->position().toPoint() - option.rect.topLeft();
    if (index.flags().testFlag(Qt::ItemIsUserCheckable)) {
        if (index.column() == TrackModel::Kind && place.x() > tickWidth)
            return false;
        const bool on = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        return model->setData(index, on ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    }
    const bool onMark = place.x() > option.rect.width() - editMark - 2 * space::small;
    if (onMark && index.flags().testFlag(Qt::ItemIsEditable)) {
        if (auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(option.widget))) // NOLINT
            view->edit(index);
        return true;
    }
    return false;
}

/// The popup of languages may be wider than its column.
void TrackDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                         const QModelIndex & /*index*/) const
{
    QRect place = option.rect.adjusted(0, 4, 0, -4);
    place.setWidth(std::max(place.width(), editor->sizeHint().width()));
    editor->setGeometry(place);
}

} // namespace window

#include "window/KXDropScrollView.h"

#include "window/Theme.h"

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>

#include <algorithm>

namespace {

/// The files of a drag; none when anything else, or a folder, is among what is dragged.
QList<QUrl> filesOf(const QMimeData *data)
{
    const QList<QUrl> urls = data->urls();
    const bool all = std::all_of(urls.begin(), urls.end(), [](const QUrl &url) {
        return url.isLocalFile() && !QFileInfo(url.toLocalFile()).isDir();
    });
    return all ? urls : QList<QUrl>();
}

void takeAsCopy(QDropEvent *event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

} // namespace

KXDropScrollView::KXDropScrollView(QWidget *parent)
    : QTreeView(parent)
{
    setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setMouseTracking(true);
    header()->setHighlightSections(false);
}

void KXDropScrollView::setEmptyText(const QString &text)
{
    m_emptyText = text;
    viewport()->update();
}

bool KXDropScrollView::takes(const QMimeData *data)
{
    return !filesOf(data).isEmpty();
}

QList<QUrl> KXDropScrollView::filesIn(const QMimeData *data)
{
    return filesOf(data);
}

void KXDropScrollView::showDrag(const QString &words)
{
    m_dragWords = words;
    viewport()->update();
}

void KXDropScrollView::letRowsBeDragged()
{
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
}

/// Between the rows that are nearest to the place.
int KXDropScrollView::gapAt(const QPoint &place) const
{
    const QModelIndex index = indexAt(place);
    if (!index.isValid())
        return model()->rowCount();
    return index.row() + (place.y() > visualRect(index).center().y() ? 1 : 0);
}

/// To the next column that is shown; a tree by itself knows no columns.
bool KXDropScrollView::moveAcross(int by)
{
    const QModelIndex current = currentIndex();
    if (!current.isValid() || state() == EditingState)
        return false;
    for (int column = current.column() + by; column >= 0 && column < model()->columnCount(); column += by) {
        if (!isColumnHidden(column)) {
            setCurrentIndex(current.siblingAtColumn(column));
            return true;
        }
    }
    return false;
}

void KXDropScrollView::keyPressEvent(QKeyEvent *event)
{
    const bool isAcross = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    const int by = (event->key() == Qt::Key_Right) == (layoutDirection() == Qt::LeftToRight) ? 1 : -1;
    if (!isAcross || event->modifiers() != Qt::NoModifier || !moveAcross(by))
        QTreeView::keyPressEvent(event);
}

void KXDropScrollView::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->source() == this)
        return event->accept();
    Q_EMIT dragged(filesOf(event->mimeData()));
    if (filesOf(event->mimeData()).isEmpty())
        event->ignore();
    else
        takeAsCopy(event);
}

void KXDropScrollView::dragMoveEvent(QDragMoveEvent *event)
{
    if (event->source() == this) {
        m_gap = gapAt(event->position().toPoint());
        viewport()->update();
        return event->accept();
    }
    if (filesOf(event->mimeData()).isEmpty())
        event->ignore();
    else
        takeAsCopy(event);
}

void KXDropScrollView::dropEvent(QDropEvent *event)
{
    if (event->source() == this) {
        const int from = currentIndex().row();
        const int gap = std::exchange(m_gap, -1);
        event->setDropAction(Qt::CopyAction); // the list is changed by who hears of it
        event->accept();
        Q_EMIT rowDropped(from, gap > from ? gap - 1 : gap);
        return;
    }
    const QList<QUrl> files = filesOf(event->mimeData());
    if (files.isEmpty())
        return event->ignore();
    takeAsCopy(event);
    Q_EMIT dragLeft();
    Q_EMIT filesDropped(files);
}

void KXDropScrollView::dragLeaveEvent(QDragLeaveEvent *event)
{
    QTreeView::dragLeaveEvent(event);
    m_gap = -1;
    Q_EMIT dragLeft();
}

void KXDropScrollView::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    using namespace window;
    QPainter painter(viewport());
    if (m_gap >= 0) {
        const bool isLast = m_gap >= model()->rowCount();
        const QRect row = visualRect(model()->index(isLast ? model()->rowCount() - 1 : m_gap, 0));
        const int y = isLast ? row.bottom() : row.top();
        painter.fillRect(QRect(0, y - 1, viewport()->width(), 2), color(Role::Accent));
    }
    if (!m_dragWords.isEmpty()) {
        painter.fillRect(viewport()->rect(), color(Role::Soft));
        painter.setPen(QPen(color(Role::Accent), 2));
        painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
        painter.setFont(fontOf(Type::Head));
        painter.setPen(color(Role::Text));
        painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_dragWords);
        return;
    }
    if (m_emptyText.isEmpty() || model() == nullptr)
        return;
    QRect free = viewport()->rect().adjusted(24, 24, -24, -24);
    if (model()->rowCount() > 0)
        free.setTop(visualRect(model()->index(model()->rowCount() - 1, 0)).bottom());
    if (free.height() < 2 * fontMetrics().height())
        return;
    painter.setPen(color(Role::Second));
    painter.drawText(free, Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}

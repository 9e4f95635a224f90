#include "window/KXDropScrollView.h"

#include "window/RoomyDelegate.h"

#include <QDragEnterEvent>
#include <QFileInfo>
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
    setAlternatingRowColors(true);
    setItemDelegate(new window::RoomyDelegate(this));
}

void KXDropScrollView::setEmptyText(const QString &text)
{
    m_emptyText = text;
    viewport()->update();
}

void KXDropScrollView::dragEnterEvent(QDragEnterEvent *event)
{
    if (filesOf(event->mimeData()).isEmpty())
        event->ignore();
    else
        takeAsCopy(event);
}

void KXDropScrollView::dragMoveEvent(QDragMoveEvent *event)
{
    if (filesOf(event->mimeData()).isEmpty())
        event->ignore();
    else
        takeAsCopy(event);
}

void KXDropScrollView::dropEvent(QDropEvent *event)
{
    const QList<QUrl> files = filesOf(event->mimeData());
    if (files.isEmpty())
        return event->ignore();
    takeAsCopy(event);
    Q_EMIT filesDropped(files);
}

void KXDropScrollView::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    if (m_emptyText.isEmpty() || model() == nullptr || model()->rowCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap,
                     m_emptyText);
}

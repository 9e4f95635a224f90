#pragma once

#include <QList>
#include <QTreeView>
#include <QUrl>

/// A table that files can be dropped on. It takes drags of files, none of which may be a folder, and only
/// says what was dropped.
class KXDropScrollView final : public QTreeView
{
    Q_OBJECT

public:
    explicit KXDropScrollView(QWidget *parent = nullptr);

    /// What is written in its free space.
    void setEmptyText(const QString &text);
    /// Its own rows can be dragged to another place.
    void letRowsBeDragged();
    /// Words over the whole table while something is dragged; none takes them away.
    void showDrag(const QString &words);
    /// Whether a drag is of files alone.
    static bool takes(const QMimeData *data);
    static QList<QUrl> filesIn(const QMimeData *data);

Q_SIGNALS:
    void filesDropped(const QList<QUrl> &files);
    /// These are over it now; none of them where the drag can't be taken.
    void dragged(const QList<QUrl> &files);
    void dragLeft();
    /// One of its own rows, to the place that it has when it is there.
    void rowDropped(int from, int to);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int gapAt(const QPoint &place) const;
    bool moveAcross(int by);

    QString m_emptyText;
    QString m_dragWords;
    int m_gap = -1; ///< before that row one of its own would be dropped
};

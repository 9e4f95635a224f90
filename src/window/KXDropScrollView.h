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

    /// What is written in it while it is empty.
    void setEmptyText(const QString &text);

Q_SIGNALS:
    void filesDropped(const QList<QUrl> &files);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_emptyText;
};

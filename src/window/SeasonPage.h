#pragma once

#include "window/Controls.h"

class KXAppDelegate;
class QStandardItemModel;
class QTreeView;

namespace window {

/// All open films beside each other, one row a film: what becomes of picture, sound and subtitles. It is made
/// when it opens and stays as it is until it closes.
class SeasonPage final : public QWidget
{
    Q_OBJECT

public:
    /// The delegate must outlive it.
    explicit SeasonPage(KXAppDelegate &delegate, QWidget *parent = nullptr);

    /// Looks at the films anew, and takes the keyboard.
    void open();

Q_SIGNALS:
    /// That row of the open files is to be shown, and the page closed.
    void filmChosen(int row);
    void closeWanted();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void choose(const QModelIndex &index);

    KXAppDelegate &m_delegate;
    InkLabel *m_head;
    QTreeView *m_table;
    QStandardItemModel *m_model;
};

} // namespace window

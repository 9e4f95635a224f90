#pragma once

#include "window/Controls.h"

#include <QListWidget>

class KXAppDelegate;

namespace window {

class RadioMatrix;
class Thumbnails;
class ToolTipBinder;

/// The open films at the side: picture, name and whether each is ready. As a rail only the pictures are left.
class OpenFilesList final : public Ground
{
    Q_OBJECT

public:
    OpenFilesList(KXAppDelegate &delegate, Thumbnails &thumbnails, ToolTipBinder &tips,
                  QWidget *parent = nullptr);

    void setRail(bool rail);
    /// Its films are ready or not by what is chosen now.
    void refreshStates();

Q_SIGNALS:
    /// All films are to be shown beside each other.
    void seasonWanted();

private:
    void refresh();

    KXAppDelegate &m_delegate;
    Thumbnails &m_thumbnails;
    QListWidget *m_list;
    RadioMatrix *m_matrix;
    QPushButton *m_season;
    QPushButton *m_remove;
    QWidget *m_head;
    QWidget *m_foot;
    bool m_isRail = false;
};

} // namespace window

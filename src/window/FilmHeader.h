#pragma once

#include "window/Badges.h"
#include "window/Controls.h"

class KXAppDelegate;

namespace window {

class Thumbnails;
class ToolTipBinder;

/// The face of the film that is open: its picture, its name, where it lies and what is known of it.
class FilmHeader final : public QWidget
{
    Q_OBJECT

public:
    FilmHeader(KXAppDelegate &delegate, Thumbnails &thumbnails, ToolTipBinder &tips,
               QWidget *parent = nullptr);

    void refresh();
    void setCompact(bool compact);

private:
    class Picture;

    KXAppDelegate &m_delegate;
    Thumbnails &m_thumbnails;
    ToolTipBinder &m_tips;
    Picture *m_picture;
    ElidedLabel *m_name;
    ElidedLabel *m_path;
    BadgeRow *m_badges;
    QPushButton *m_play;
};

} // namespace window

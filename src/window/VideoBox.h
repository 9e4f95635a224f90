#pragma once

#include "window/Section.h"

class KXSelectionController;

namespace window {

class IntegerField;
class RadioMatrix;
class ToolTipBinder;

/// What becomes of the picture, and its numbers.
class VideoBox final : public Section
{
    Q_OBJECT

public:
    VideoBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();

private:
    QWidget *numbers();
    void commitNumbers();
    void showNumber(IntegerField *field, const QString &text, bool counts);

    KXSelectionController &m_controller;
    ToolTipBinder &m_tips;
    RadioMatrix *m_video;
    QList<OptionCaption *> m_captions;
    IntegerField *m_bitRate;
    IntegerField *m_width;
    QLabel *m_noNumber;
};

} // namespace window

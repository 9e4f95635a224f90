#pragma once

#include <QComboBox>
#include <QGroupBox>

class KXSelectionController;

namespace window {

class IntegerField;
class RadioMatrix;
class ToolTipBinder;

/// The target, what becomes of the video, and its numbers.
class VideoBox final : public QGroupBox
{
    Q_OBJECT

public:
    VideoBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();

private:
    void commitNumbers();

    KXSelectionController &m_controller;
    ToolTipBinder &m_tips;
    QComboBox *m_device;
    RadioMatrix *m_video;
    IntegerField *m_bitRate;
    IntegerField *m_width;
};

} // namespace window

#pragma once

#include "selection/BestGuess.h"
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
    void addGuess();
    void guess(selection::Aim aim);
    void commitNumbers();
    void showNumber(IntegerField *field, const QString &text, bool counts);

    KXSelectionController &m_controller;
    ToolTipBinder &m_tips;
    RadioMatrix *m_video;
    QList<OptionCaption *> m_captions;
    IntegerField *m_bitRate;
    IntegerField *m_width;
    QLabel *m_noNumber;
    QPushButton *m_guess;
    QLabel *m_why; ///< the reason of a guess
};

} // namespace window

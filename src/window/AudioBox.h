#pragma once

#include "window/Section.h"

#include <QCheckBox>
#include <QComboBox>

class KXSelectionController;

namespace window {

class ToolTipBinder;

/// What becomes of the selected audio tracks, one of which is shown.
class AudioBox final : public Section
{
    Q_OBJECT

public:
    AudioBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();

private:
    using RateSetter = void (KXSelectionController::*)(const QString &);

    QComboBox *rateButton(const char *word, const QString &accessibleName, RateSetter setter);
    void addActions();
    void refreshTracks();
    void refreshRates();

    KXSelectionController &m_controller;
    ToolTipBinder &m_tips;
    QComboBox *m_tracks;
    QList<QCheckBox *> m_actions;
    QList<QComboBox *> m_rates; ///< for the actions behind the first
    QCheckBox *m_stereo;
    ElidedLabel *m_only; ///< the one track, where there is nothing to choose
    OptionCaption *m_passThru = nullptr;
    QLabel *m_leftOut;
    QLabel *m_why; ///< the reasons of a guess
};

} // namespace window

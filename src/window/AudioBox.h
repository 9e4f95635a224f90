#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>

class KXSelectionController;
class QGridLayout;

namespace window {

class ToolTipBinder;

/// What becomes of the selected audio tracks, one of which is shown.
class AudioBox final : public QGroupBox
{
    Q_OBJECT

public:
    AudioBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();

private:
    using RateSetter = void (KXSelectionController::*)(const QString &);

    QComboBox *rateButton(const char *word, const QString &accessibleName, RateSetter setter);
    void addActions(QGridLayout *layout);
    void refreshTracks();
    void refreshRates();

    KXSelectionController &m_controller;
    ToolTipBinder &m_tips;
    QComboBox *m_tracks;
    QList<QCheckBox *> m_actions;
    QList<QComboBox *> m_rates; ///< for the actions behind the first
    QCheckBox *m_stereo;
};

} // namespace window

#pragma once

#include <QComboBox>
#include <QWidget>

class KXPresetsController;
class QPushButton;

namespace window {

class ToolTipBinder;

/// The two popups that choose presets, with the buttons that open their sheets.
class PresetsRow final : public QWidget
{
    Q_OBJECT

public:
    PresetsRow(KXPresetsController &presets, ToolTipBinder &tips, QWidget *parent = nullptr);

Q_SIGNALS:
    void selectionsSheetWanted();
    void settingsSheetWanted();

private:
    void refresh();

    KXPresetsController &m_presets;
    QComboBox *m_selections;
    QComboBox *m_settings;
    QPushButton *m_editSelections;
    QPushButton *m_editSettings;
};

} // namespace window

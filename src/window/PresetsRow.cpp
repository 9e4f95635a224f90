#include "window/PresetsRow.h"

#include "presets/KXPresetsController.h"
#include "window/Controls.h"
#include "window/ToolTipBinder.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

namespace window {

namespace {

void showIn(QComboBox *popup, const QStringList &names, int index)
{
    const QSignalBlocker quiet(popup);
    popup->clear();
    popup->addItems(names);
    popup->setCurrentIndex(index);
}

} // namespace

PresetsRow::PresetsRow(KXPresetsController &presets, ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_presets(presets)
    , m_selections(named(new QComboBox, "PresetSelectionsPopUp", tr("Preset for tracks")))
    , m_settings(named(new QComboBox, "PresetSettingsPopUp", tr("Preset for settings")))
    , m_editSelections(
          named(new QPushButton(tr("Edit…")), "EditPresetSelectionsButton", tr("Edit presets for tracks")))
    , m_editSettings(
          named(new QPushButton(tr("Edit…")), "EditPresetSettingsButton", tr("Edit presets for settings")))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(labelFor(m_selections, tr("&Track preset:")));
    layout->addWidget(m_selections, 1);
    layout->addWidget(m_editSelections);
    layout->addSpacing(16);
    layout->addWidget(labelFor(m_settings, tr("S&ettings preset:")));
    layout->addWidget(m_settings, 1);
    layout->addWidget(m_editSettings);
    for (QComboBox *popup : {m_selections, m_settings})
        popup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    tips.bind(m_selections, "ttPresetSelectionsPopUp");
    tips.bind(m_settings, "ttPresetSettingsPopUp");
    connect(m_selections, &QComboBox::activated, this,
            [this](int index) { m_presets.setSelectionMethodIndex(index); });
    connect(m_settings, &QComboBox::activated, this,
            [this](int index) { m_presets.setSettingMethodIndex(index); });
    connect(m_editSelections, &QPushButton::clicked, this, &PresetsRow::selectionsSheetWanted);
    connect(m_editSettings, &QPushButton::clicked, this, &PresetsRow::settingsSheetWanted);
    connect(&presets, &KXPresetsController::listsChanged, this, &PresetsRow::refresh);
    connect(&presets, &KXPresetsController::methodsChanged, this, &PresetsRow::refresh);
    refresh();
}

void PresetsRow::refresh()
{
    showIn(m_selections, m_presets.presetSelectionsNamesList(), m_presets.selectionMethodIndex());
    showIn(m_settings, m_presets.presetSettingsNamesList(), m_presets.settingMethodIndex());
}

} // namespace window

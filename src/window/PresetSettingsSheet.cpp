#include "window/PresetSettingsSheet.h"

#include "presets/ChoiceLists.h"
#include "presets/KXPresetsController.h"
#include "summary/RuleSentences.h"
#include "window/Controls.h"
#include "window/IntegerField.h"
#include "window/ToolTipBinder.h"

#include <QFormLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int custom = 1;

/// A text that is not offered, as stored presets may hold, is shown all the same.
void showText(QComboBox *popup, const QString &text)
{
    popup->setPlaceholderText(text);
    popup->setCurrentIndex(popup->findText(text));
}

/// Actions that guess are stored but no longer offered.
void showIndex(QComboBox *popup, int index)
{
    popup->setPlaceholderText(index < popup->count() ? QString() : PresetSettingsSheet::tr("Best Guess"));
    popup->setCurrentIndex(index < popup->count() ? index : -1);
}

void showDevice(QComboBox *popup, const QString &device)
{
    popup->clear();
    popup->addItems(presets::deviceListWith(device));
    popup->setCurrentIndex(popup->findText(device));
}

} // namespace

PresetSettingsSheet::PresetSettingsSheet(KXPresetsController &presets, ToolTipBinder &tips, QWidget *parent)
    : PresetSheet(tips, tr("Settings Presets"), parent)
    , m_presets(presets)
    , m_tips(tips)
{
    setObjectName(u"PresetSettingsSheet"_s);
    resize(588, 688);
    addRows();
    m_presets.openPresetSettingsPanel();
    connect(&m_presets, &KXPresetsController::listsChanged, this, &PresetSettingsSheet::refresh);
    connect(&m_presets, &KXPresetsController::panelRowsChanged, this, &PresetSettingsSheet::refresh);
    refresh();
}

void PresetSettingsSheet::addRows()
{
    m_device = named(new QComboBox, "PDeviceList", tr("Target"));
    m_device->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_tips.bind(m_device, "ttPDeviceList");
    connect(m_device, &QComboBox::activated, this, [this] { setValue("pDevice", m_device->currentText()); });
    form()->addRow(tr("&Target"), m_device);
    addHead(u"video-x-generic"_s, Role::Video, tr("Picture"));
    addVideoRows();
    addHead(u"audio-x-generic"_s, Role::Audio, tr("Sound"));
    addAudioRows();
    addHead(u"media-view-subtitles-symbolic"_s, Role::Subtitle, tr("Subtitles"));
    QComboBox *subtitles =
        textPopup("pSubAction", "PSubActionList", tr("Subtitles"), presets::pSubActionList());
    m_tips.bind(subtitles, "ttPSubActionList");
    form()->addRow(tr("D&o"), subtitles);
}

void PresetSettingsSheet::addHead(const QString &iconName, Role ink, const QString &title)
{
    QWidget *row = rowOf({iconLabel(iconName, ink), headLabel(title), nullptr});
    row->layout()->setContentsMargins(0, space::small, 0, 0);
    form()->addRow(row);
}

void PresetSettingsSheet::addVideoRows()
{
    QComboBox *action =
        indexPopup("pVideoActionIndex", "PVideoActionList", tr("Video"), presets::pVideoActionList());
    m_tips.bind(action, "ttPVideoActionList");
    form()->addRow(tr("&Video"), action);
    QComboBox *bitRate = indexPopup("pVideoBitRateIndex", "PVideoBitRateList", tr("Video bit rate"),
                                    presets::pVideoGenericList());
    IntegerField *rate = numberField("pVideoBitRate", "PVideoBitRate", tr("Video bit rate in kb/s"));
    form()->addRow(tr("&Bit rate"), rowOf({bitRate, rate, new QLabel(tr("kb/s")), nullptr}));
    QComboBox *width = indexPopup("pWidthIndex", "PWidthList", tr("Width"), presets::pVideoGenericList());
    IntegerField *pixels = numberField("pWidth", "PWidth", tr("Width in pixels"));
    form()->addRow(tr("&Width"), rowOf({width, pixels, new QLabel(tr("pixels")), nullptr}));
    for (QComboBox *popup : {bitRate, width}) {
        m_tips.bind(popup, "ttPVideoGenericList");
        connect(popup, &QComboBox::activated, this, &PresetSettingsSheet::showNumbers);
    }
}

void PresetSettingsSheet::addAudioRows()
{
    QComboBox *stereo = indexPopup("pStereoActionIndex", "PStereoActionList", tr("Stereo audio"),
                                   presets::pStereoActionList());
    QComboBox *stereoRate = textPopup("pStereoBitRate", "PStereoBitRateList",
                                      tr("Bit rate of stereo audio in kb/s"), presets::pStereoBitRateList());
    QComboBox *surround = indexPopup("pSurroundActionIndex", "PSurroundActionList", tr("Surround audio"),
                                     presets::pSurroundActionList());
    QComboBox *surroundRate =
        textPopup("pSurroundBitRate", "PSurroundBitRateList", tr("Bit rate of surround audio in kb/s"),
                  presets::pSurroundBitRateList());
    form()->addRow(tr("&Stereo"), rowOf({stereo, stereoRate, new QLabel(tr("kb/s")), nullptr}));
    form()->addRow({}, checkBox("pKeepStereoTrack", "PKeepStereoTrack", tr("Keep the original stereo")));
    form()->addRow(tr("Surro&und"), rowOf({surround, surroundRate, new QLabel(tr("kb/s")), nullptr}));
    form()->addRow({}, checkBox("pAudioAddStereo", "PAudioAddStereo", tr("Add a stereo version")));
    form()->addRow({},
                   checkBox("pKeepSurroundTrack", "PKeepSurroundTrack", tr("Keep the original surround")));
    for (QComboBox *popup : {stereo, stereoRate})
        m_tips.bind(popup, "ttPStereoAudio");
    for (QComboBox *popup : {surround, surroundRate})
        m_tips.bind(popup, "ttPSurroundAudio");
}

QComboBox *PresetSettingsSheet::indexPopup(const char *property, const char *word, const QString &name,
                                           const QStringList &list)
{
    auto *popup = named(new QComboBox, word, name);
    popup->addItems(list);
    connect(popup, &QComboBox::activated, this, [this, property](int index) { setValue(property, index); });
    m_indexPopups.append({popup, property});
    return popup;
}

QComboBox *PresetSettingsSheet::textPopup(const char *property, const char *word, const QString &name,
                                          const QStringList &list)
{
    auto *popup = named(new QComboBox, word, name);
    popup->addItems(list);
    connect(popup, &QComboBox::activated, this,
            [this, property, popup] { setValue(property, popup->currentText()); });
    m_textPopups.append({popup, property});
    return popup;
}

QCheckBox *PresetSettingsSheet::checkBox(const char *property, const char *word, const QString &title)
{
    auto *box = named(new QCheckBox(title), word, title);
    connect(box, &QCheckBox::clicked, this, [this, property](bool on) { setValue(property, on); });
    m_checkBoxes.append({box, property});
    return box;
}

IntegerField *PresetSettingsSheet::numberField(const char *property, const char *word, const QString &name)
{
    auto *field = named(new IntegerField, word, name);
    field->setFixedWidth(field->fontMetrics().averageCharWidth() * 12);
    connect(field, &IntegerField::typed, this,
            [this, property](const QString &text) { setValue(property, text); });
    m_numbers.append({field, property});
    return field;
}

KXPresetSettings *PresetSettingsSheet::preset() const
{
    return row() < 0 ? nullptr : m_presets.presetSettingsList().value(row() + hiddenPresets).get();
}

QVariant PresetSettingsSheet::value(const char *property) const
{
    const KXPresetSettings *shown = preset();
    return shown == nullptr || !shown->isEditable() ? QVariant() : shown->property(property);
}

void PresetSettingsSheet::setValue(const char *property, const QVariant &value)
{
    if (KXPresetSettings *changed = preset())
        changed->setProperty(property, value);
    showSentence();
}

QList<PresetTable::Row> PresetSettingsSheet::rows() const
{
    QList<PresetTable::Row> rows;
    for (const PresetSettingsPointer &preset : m_presets.presetSettingsList())
        rows.append({preset->pName(), preset->isEditable()});
    return rows.mid(hiddenPresets);
}

int PresetSettingsSheet::row() const
{
    return m_presets.settingsPanelRow();
}

void PresetSettingsSheet::choose(int row)
{
    m_presets.settingsListTableClicked(row);
}

void PresetSettingsSheet::add()
{
    m_presets.addPresetSettings();
}

void PresetSettingsSheet::remove()
{
    m_presets.removePresetSettings();
}

QString PresetSettingsSheet::rename(int row, const QString &name)
{
    return m_presets.renamePresetSettings(row, name);
}

void PresetSettingsSheet::undo()
{
    m_presets.cancelPresetSettingsPanel();
}

QString PresetSettingsSheet::store()
{
    return m_presets.okPresetSettingsPanel();
}

/// A built-in preset has no settings: its fields are empty.
void PresetSettingsSheet::showPreset(bool isEditable)
{
    m_device->setEnabled(isEditable);
    showDevice(m_device, value("pDevice").toString());
    for (const auto &bound : m_indexPopups) {
        showIndex(bound.control, isEditable ? value(bound.property).toInt() : -1);
        bound.control->setEnabled(isEditable);
    }
    for (const auto &bound : m_textPopups) {
        showText(bound.control, value(bound.property).toString());
        bound.control->setEnabled(isEditable);
    }
    for (const auto &bound : m_checkBoxes) {
        bound.control->setChecked(value(bound.property).toBool());
        bound.control->setEnabled(isEditable);
    }
    showNumbers();
    showSentence();
}

void PresetSettingsSheet::showSentence()
{
    const KXPresetSettings *shown = preset();
    const bool isOwn = shown != nullptr && shown->isEditable();
    showFoot(isOwn ? summary::settingsSentence(*shown)
                   : tr("This preset writes each ticked track into a file of its own."),
             {});
}

/// A number counts only where it is a custom one.
void PresetSettingsSheet::showNumbers()
{
    for (const auto &bound : m_numbers) {
        const QByteArray index = QByteArray(bound.property) + "Index";
        bound.control->setEnabled(value(index.constData()).toInt() == custom);
        bound.control->setText(value(bound.property).toString());
    }
}

} // namespace window

#include "window/Inspector.h"

#include "app/ConvertForecast.h"
#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "selection/Targets.h"
#include "window/AudioBox.h"
#include "window/SubtitleBox.h"
#include "window/ToolTipBinder.h"
#include "window/VideoBox.h"

#include <QGridLayout>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int labelColumn = 84;

} // namespace

Inspector::Inspector(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent)
    : QScrollArea(parent)
    , m_delegate(delegate)
    , m_presets(named(new QComboBox, "PresetSettingsPopUp", tr("Preset for settings")))
    , m_editPresets(
          named(new QPushButton(tr("Edit…")), "EditPresetSettingsButton", tr("Edit presets for settings")))
    , m_device(named(new QComboBox, "DevicePopUp", tr("Target")))
    , m_note(new Ground(Role::Soft))
    , m_noteText(new InkLabel({}, Role::Text, Type::Second))
    , m_reach(named(hint(), "SettingsReach", {}))
    , m_video(new VideoBox(delegate.program().selectionController(), tips))
    , m_audio(new AudioBox(delegate.program().selectionController(), tips))
    , m_subtitles(new SubtitleBox(delegate.program().selectionController(), tips))
{
    setObjectName(u"Inspector"_s);
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // what stands in it takes the keyboard
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_device->addItems(selection::targetNames());
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(head());
    auto *note = new QHBoxLayout(m_note);
    note->setContentsMargins(space::large, space::small, space::large, space::small);
    note->addWidget(iconLabel(u"dialog-information"_s, Role::Link));
    note->addWidget(m_noteText, 1);
    m_noteText->setWordWrap(true);
    m_noteText->setObjectName(u"InspectorNote"_s);
    layout->addWidget(m_note);
    for (QWidget *section : {static_cast<QWidget *>(m_video), static_cast<QWidget *>(m_audio),
                             static_cast<QWidget *>(m_subtitles)}) {
        layout->addWidget(separatorLine());
        layout->addWidget(section);
    }
    layout->addStretch(1);
    setWidget(content);
    tips.bind(m_presets, "ttPresetSettingsPopUp");
    tips.bind(m_device, "ttDevicePopUp");
    KXPresetsController &presets = delegate.program().presets();
    connect(m_presets, &QComboBox::activated, this,
            [this](int index) { m_delegate.program().presets().setSettingMethodIndex(index); });
    connect(m_device, &QComboBox::activated, this, [this] {
        m_delegate.program().selectionController().byHand(&KXSelectionController::setMp4Device,
                                                          m_device->currentText());
    });
    connect(m_editPresets, &QPushButton::clicked, this, &Inspector::presetsSheetWanted);
    connect(m_subtitles, &SubtitleBox::startWanted, this, &Inspector::startWanted);
    connect(&presets, &KXPresetsController::listsChanged, this, &Inspector::refreshPresets);
    connect(&presets, &KXPresetsController::methodsChanged, this, &Inspector::refreshPresets);
    refreshPresets();
}

QWidget *Inspector::head()
{
    auto *area = new QWidget;
    auto *grid = new QGridLayout(area);
    grid->setContentsMargins(space::large, space::small, space::large, space::small);
    grid->setSpacing(space::small);
    QLabel *preset = labelFor(m_presets, tr("&Settings preset"));
    QLabel *target = labelFor(m_device, tr("Tar&get"));
    for (QLabel *label : {preset, target}) {
        label->setTextFormat(Qt::AutoText);
        label->setFont(fontOf(Type::Second));
        label->setMinimumWidth(labelColumn);
    }
    for (QComboBox *popup : {m_presets, m_device}) {
        popup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        popup->setMinimumContentsLength(6);
    }
    grid->addWidget(preset, 0, 0);
    grid->addWidget(m_presets, 0, 1);
    grid->addWidget(m_editPresets, 0, 2);
    grid->addWidget(target, 1, 0);
    grid->addWidget(m_device, 1, 1, 1, 2);
    grid->addWidget(m_reach, 2, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    return area;
}

void Inspector::refreshPresets()
{
    const KXPresetsController &presets = m_delegate.program().presets();
    const QSignalBlocker quiet(m_presets);
    m_presets->clear();
    m_presets->addItems(presets.presetSettingsNamesList());
    m_presets->setCurrentIndex(presets.settingMethodIndex());
}

QString Inspector::sendingRefusal() const
{
    const QString path = m_delegate.program().preferences().panelValue(u"lintwickPath"_s).toString();
    return path.isEmpty() ? tr("The preferences don't say where Lintwick is.") : QString();
}

void Inspector::refresh()
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    const bool extracts = app::jobTypeFor(m_delegate.program().presets()) == u"MKV Track Extraction"_s;
    m_device->setEnabled(controller.canConvert());
    m_device->setCurrentText(controller.mp4Device());
    m_noteText->setText(extracts ? tr("This preset writes each ticked track into a file of its own.")
                                 : tr("To convert, tick exactly one video track."));
    m_note->setVisible(extracts || !controller.canConvert());
    const QString reach = app::reachOfPresets(m_delegate.program(), m_delegate.openQueue());
    m_reach->setText(reach);
    m_reach->setVisible(!reach.isEmpty());
    m_video->refresh();
    m_audio->refresh();
    m_subtitles->setSendingRefusal(sendingRefusal());
}

} // namespace window

#include "window/WatchPopover.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "summary/RuleSentences.h"
#include "window/Icons.h"
#include "window/ToolTipBinder.h"

#include <QGridLayout>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int popoverWidth = 544;

} // namespace

WatchPopover::WatchPopover(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent)
    : QFrame(parent, Qt::Popup)
    , m_delegate(delegate)
    , m_tips(tips)
    , m_folder(named(new ElidedLabel(Qt::ElideMiddle), "WatchFolderPath", tr("Folder to watch")))
    , m_choose(
          named(new QPushButton(tr("Choose…")), "ChooseWatchFolderButton", tr("Choose the folder to watch")))
    , m_tracks(named(new QComboBox, "WatchTrackPreset", tr("Preset for tracks")))
    , m_settings(named(new QComboBox, "WatchSettingsPreset", tr("Preset for settings")))
    , m_existing(named(new QCheckBox(tr("Films too that are there already and were never converted")),
                       "WatchExistingTick", {}))
    , m_mark(iconLabel(u"dialog-warning"_s, Role::Warn))
    , m_reason(named(new InkLabel({}, Role::Second, Type::Second), "WatchReason", {}))
    , m_start(named(primaryButton(tr("Watch")), "StartWatchingFolderButton", tr("Start watching the folder")))
{
    setObjectName(u"WatchPopover"_s);
    setFrameStyle(QFrame::StyledPanel);
    setFixedWidth(popoverWidth);
    m_reason->setWordWrap(true);
    m_start->setAutoDefault(false);
    m_choose->setAutoDefault(false);
    buildRows();
    tips.bind(m_start, "ttStartWatchingFolderButton");
    app::Program &program = delegate.program();
    connect(m_choose, &QPushButton::clicked, this, [this] {
        hide();
        m_delegate.chooseWatchFolder();
    });
    connect(m_start, &QPushButton::clicked, this, [this] {
        if (m_delegate.watchSession().start())
            hide();
        refresh();
    });
    connect(m_tracks, &QComboBox::activated, this,
            [this](int index) { m_delegate.program().presets().setSelectionMethodIndex(index); });
    connect(m_settings, &QComboBox::activated, this,
            [this](int index) { m_delegate.program().presets().setSettingMethodIndex(index); });
    connect(m_existing, &QCheckBox::clicked, this, &WatchPopover::takeExisting);
    connect(&program.watchMode(), &KXWatchModeController::folderChanged, this, &WatchPopover::refresh);
    connect(&program.presets(), &KXPresetsController::methodsChanged, this, &WatchPopover::refresh);
    connect(&program.presets(), &KXPresetsController::listsChanged, this, &WatchPopover::refresh);
    refresh();
}

void WatchPopover::buildRows()
{
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(space::large, space::large, space::large, space::large);
    grid->setSpacing(space::small);
    grid->addWidget(
        rowOf({iconLabel(u"view-visible"_s, Role::Link), headLabel(tr("Watch a folder")), nullptr}), 0, 0, 1,
        3);
    grid->addWidget(
        hint(tr("Every film that arrives in it, or in a folder inside it, is converted by the two "
                "presets as soon as it has stopped growing.")),
        1, 0, 1, 3);
    const auto label = [](const QString &text) {
        auto *made = new InkLabel(text, Role::Second);
        made->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        return made;
    };
    grid->addWidget(label(tr("Folder")), 2, 0);
    grid->addWidget(m_folder, 2, 1);
    grid->addWidget(m_choose, 2, 2);
    grid->addWidget(label(tr("Track preset")), 3, 0);
    grid->addWidget(m_tracks, 3, 1, 1, 2);
    grid->addWidget(label(tr("Settings preset")), 4, 0);
    grid->addWidget(m_settings, 4, 1, 1, 2);
    grid->addWidget(m_existing, 5, 1, 1, 2);
    QWidget *foot = rowOf({m_mark, m_reason, m_start});
    static_cast<QHBoxLayout *>(foot->layout())->setStretch(1, 1); // NOLINT: rowOf() makes one
    grid->addWidget(foot, 6, 0, 1, 3);
    grid->setColumnStretch(1, 1);
}

/// Saved with the other settings, when the program ends.
void WatchPopover::takeExisting(bool taken)
{
    KXPreferences &preferences = m_delegate.program().preferences();
    QVariantMap panel = preferences.preferencePanelDictionary();
    panel.insert(u"watchExistingFlag"_s, taken);
    preferences.setPreferencePanelDictionary(panel);
}

void WatchPopover::showNames(QComboBox *popup, const QStringList &names, int index)
{
    const QSignalBlocker quiet(popup);
    popup->clear();
    popup->addItems(names);
    popup->setCurrentIndex(index);
}

/// While nothing is watched, the controller's text is the reason why not.
void WatchPopover::refresh()
{
    app::Program &program = m_delegate.program();
    const QString folder = program.preferences().watchFolderPath();
    const QString shown = program.watchMode().watchFolderPath();
    const bool refused = !shown.isEmpty() && shown != folder && !program.watchMode().appIsInWatchMode();
    m_folder->setText(refused ? shown : folder.isEmpty() ? tr("none chosen") : folder);
    m_folder->setInk(refused ? Role::Bad : Role::Text);
    m_folder->updateGeometry();
    const KXPresetsController &presets = program.presets();
    showNames(m_tracks, presets.presetSelectionsNamesList(), presets.selectionMethodIndex());
    showNames(m_settings, presets.presetSettingsNamesList(), presets.settingMethodIndex());
    m_existing->setChecked(program.preferences().panelFlag(u"watchExistingFlag"_s));
    const QString refusal = m_delegate.watchSession().startRefusal();
    m_start->setEnabled(refusal.isNull());
    m_tips.setReason(m_start, refusal);
    const bool extracts = app::jobTypeFor(presets) == u"MKV Track Extraction"_s;
    m_reason->setText(
        !refusal.isNull() ? refusal
        : extracts        ? tr("Each chosen track becomes a file of its own.")
                   : tr("Becomes %1").arg(summary::targetText(program.selectionController().mp4Device())));
    m_reason->setInk(refusal.isNull() ? Role::Second : Role::Warn);
    m_mark->setVisible(!refusal.isNull());
}

void WatchPopover::showBelow(QWidget *button)
{
    refresh();
    adjustSize();
    const QPoint corner = button->mapToGlobal(button->rect().bottomRight());
    move(corner.x() - width() + 1, corner.y() + 4);
    show();
    m_choose->setFocus(Qt::PopupFocusReason);
}

} // namespace window

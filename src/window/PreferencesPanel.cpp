#include "window/PreferencesPanel.h"

#include "prefs/KXPreferences.h"
#include "prefs/KXPreferencesController.h"
#include "window/Controls.h"
#include "window/Icons.h"
#include "window/ToolList.h"
#include "window/ToolTipBinder.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QListWidget>
#include <QPainter>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int pathCharacters = 28;
constexpr int panesWidth = 152;
constexpr int paneRow = 32;
constexpr int toolsPane = 4;
constexpr QSize panelSize{600, 376};
constexpr int roomForConversion = 64; // the longest pane needs that much more

constexpr int PaneIcon = Qt::UserRole;

/// A drawing and a name.
class PaneDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex & /*index*/) const override
    {
        return {panesWidth, std::max(paneRow, option.fontMetrics.height() + space::middle)};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        constexpr int side = 16;
        if (option.state.testFlag(QStyle::State_Selected))
            paintChosenRow(*painter, option.rect);
        const auto placed = [&](const QRect &place) {
            return QStyle::visualRect(option.direction, option.rect, place);
        };
        const QRect drawing(option.rect.x() + space::middle,
                            option.rect.y() + (option.rect.height() - side) / 2, side, side);
        paintIcon(*painter, placed(drawing), index.data(PaneIcon).toString(), color(Role::Text));
        painter->setPen(color(Role::Text));
        painter->setFont(fontOf(Type::Body));
        painter->drawText(placed(option.rect.adjusted(2 * space::middle + side - 4, 0, 0, 0)),
                          Qt::AlignVCenter | Qt::AlignLeading, index.data().toString());
    }
};

/// Shows a path and lets it be copied; it is changed by the button beside it.
QLineEdit *pathLine(const char *word, const QString &name, const QString &whenEmpty)
{
    QLineEdit *line = named(new QLineEdit, word, name);
    line->setReadOnly(true);
    line->setPlaceholderText(whenEmpty);
    line->setMinimumWidth(line->fontMetrics().averageCharWidth() * pathCharacters);
    return line;
}

void showPath(QLineEdit *line, const QString &path)
{
    line->setText(QDir::toNativeSeparators(path));
    line->setToolTip(line->text()); // all of it
}

} // namespace

PreferencesPanel::PreferencesPanel(KXPreferencesController &controller, KXPreferences &preferences,
                                   ToolTipBinder &tips, QWidget *parent)
    : QDialog(parent)
    , m_controller(controller)
    , m_preferences(preferences)
    , m_tips(tips)
    , m_panes(named(new QListWidget, "PreferencesPanes", tr("Subjects")))
    , m_pages(new QStackedWidget)
    , m_saveFolder(pathLine("SaveDirectoryPath", tr("Save folder"), tr("Next to the source movie")))
    , m_lintwick(pathLine("LintwickPath", tr("Lintwick"), tr("Not chosen")))
    , m_problem(named(new InkLabel({}, Role::Bad, Type::Second), "PreferencesProblem", {}))
{
    setObjectName(u"PreferencesPanel"_s);
    setWindowTitle(tr("Preferences"));
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    m_problem->setWordWrap(true);
    m_panes->setFixedWidth(panesWidth);
    m_panes->setFrameShape(QFrame::NoFrame);
    m_panes->setItemDelegate(new PaneDelegate(m_panes));
    m_panes->viewport()->setAutoFillBackground(false);
    auto *side = new Ground(Role::Side);
    auto *sideLayout = new QVBoxLayout(side);
    sideLayout->setContentsMargins(0, space::small, 0, 0);
    sideLayout->addWidget(m_panes);
    auto *upper = new QHBoxLayout;
    upper->setSpacing(0);
    upper->addWidget(side);
    upper->addWidget(separatorLine(Qt::Vertical));
    upper->addWidget(m_pages, 1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(upper, 1);
    addFiles();
    addConversion();
    addQueue();
    addWindow();
    addTools();
    addLintwick();
    layout->addWidget(separatorLine());
    layout->addWidget(endRow()); // last, as the keyboard comes to it
    connect(m_panes, &QListWidget::currentRowChanged, this, [this](int row) {
        m_pages->setCurrentIndex(row);
        if (row == toolsPane)
            m_tools->look();
    });
    m_panes->setCurrentRow(0);
    connect(&controller, &KXPreferencesController::stateChanged, this, &PreferencesPanel::refresh);
    connect(&controller, &KXPreferencesController::panelWanted, this, [this](bool open) {
        if (!open)
            done(QDialog::Accepted);
    });
    setMinimumSize(panelSize);
    resize(panelSize + QSize(0, roomForConversion));
    refresh();
}

QVBoxLayout *PreferencesPanel::addPane(const QString &iconName, const QString &title)
{
    auto *item = new QListWidgetItem(title, m_panes);
    item->setData(PaneIcon, iconName);
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(space::huge, space::large, space::huge, space::large);
    layout->setSpacing(space::small);
    layout->addWidget(new InkLabel(title, Role::Text, Type::Pane));
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus); // what stands in it takes the keyboard
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(page);
    m_pages->addWidget(area);
    return layout;
}

void PreferencesPanel::showTools()
{
    m_panes->setCurrentRow(toolsPane);
}

void PreferencesPanel::addFiles()
{
    QVBoxLayout *pane = addPane(u"folder-open"_s, tr("Files"));
    QPushButton *change = button(tr("&Change…"), "ChangeSaveButton", tr("Change the save folder"));
    m_clear = button(tr("C&lear"), "ClearSaveDirectoryButton", tr("Save next to the source movie"));
    connect(change, &QPushButton::clicked, &m_controller, &KXPreferencesController::changeSaveButton);
    connect(m_clear, &QPushButton::clicked, &m_controller, &KXPreferencesController::clearSaveDirectory);
    pane->addWidget(headLabel(tr("Save folder")));
    pane->addWidget(rowOf({m_saveFolder, change, m_clear}));
    pane->addWidget(hint(tr("Finished files go here. Clear: next to the source movie. A file that is there "
                            "already gets a number, as in film (2).m4v.")));
    pane->addSpacing(space::small);
    pane->addWidget(headLabel(tr("After a job")));
    addSwitch(pane, checkBox(tr("&Keep logs and temporary files"), "PrefLogsButton", "keepLogsFlag"),
              hint(tr("The log of a step that failed always stays.")));
    pane->addStretch(1);
}

void PreferencesPanel::addConversion()
{
    QVBoxLayout *pane = addPane(u"video-x-generic"_s, tr("Conversion"));
    QCheckBox *padding =
        checkBox(tr("Add &padding to MP4 files"), "PrefAddPaddingButton", "metadataPaddingFlag");
    QLabel *noPadding = hint();
    pane->addWidget(headLabel(tr("Films")));
    addSwitch(pane, checkBox(tr("Open films with &newer codecs"), "PrefNewerCodecsButton", "newerCodecsFlag"),
              hint(tr("HEVC, AV1, VP9, Opus and their like, which older players do not know.")));
    pane->addSpacing(space::small);
    pane->addWidget(headLabel(tr("MP4 files")));
    addSwitch(
        pane,
        checkBox(tr("&Optimize MP4 files for streaming"), "PrefOptimizeStreamingButton", "moovInFrontFlag"),
        hint(tr("They can be played before they are loaded completely.")));
    addSwitch(pane, padding, hint(tr("Leaves room for tags.")));
    pane->addWidget(noPadding);
    pane->addSpacing(space::small);
    pane->addWidget(headLabel(tr("Sound")));
    addSwitch(pane, checkBox(tr("Use &Dolby Pro Logic II for stereo"), "PrefUseDpliiButton", "useDpliiFlag"),
              hint(tr("Surround that is mixed down keeps its directions.")));
    pane->addSpacing(space::small);
    pane->addWidget(headLabel(tr("Check")));
    addSwitch(pane, checkBox(tr("&Verify finished files bit for bit"), "PrefVerifyButton", "verifyFlag"),
              hint(tr("What was copied is compared with its source, which takes time.")));
    pane->addStretch(1);
    offerPadding(padding, noPadding);
}

void PreferencesPanel::addQueue()
{
    QVBoxLayout *pane = addPane(u"media-playback-pause"_s, tr("Queue"));
    pane->addWidget(headLabel(tr("While jobs run")));
    addSwitch(pane, checkBox(tr("Run tools at low &priority"), "PrefLowPriorityButton", "lowPriorityFlag"),
              hint(tr("Other programs come first.")));
    addSwitch(pane, checkBox(tr("Pause on &battery"), "PrefPauseOnBatteryButton", "pauseOnBatteryFlag"),
              hint(tr("The job goes on when the machine has mains again, or with Resume.")));
    pane->addSpacing(space::small);
    pane->addWidget(headLabel(tr("When the queue is done")));
    pane->addWidget(rowOf({whenDone(), nullptr}));
    pane->addStretch(1);
}

QComboBox *PreferencesPanel::whenDone()
{
    m_whenDone = named(new QComboBox, "PrefWhenDoneBox", tr("When the queue is done"));
    m_whenDone->addItem(tr("Do Nothing"), u"nothing"_s);
    m_whenDone->addItem(tr("Sleep"), u"sleep"_s);
    m_whenDone->addItem(tr("Quit Tessaray"), u"quit"_s);
    connect(m_whenDone, &QComboBox::activated, this,
            [this] { m_controller.setWhenQueueIsDone(m_whenDone->currentData().toString()); });
    return m_whenDone;
}

void PreferencesPanel::addWindow()
{
    QVBoxLayout *pane = addPane(u"preferences-desktop"_s, tr("Window"));
    QCheckBox *tips = checkBox(tr("Show &tool tips"), "PrefToolTipsButton", "showToolTipsFlag");
    connect(tips, &QCheckBox::clicked, &m_controller, &KXPreferencesController::tooltipsCheckboxClicked);
    addSwitch(pane, tips, hint(tr("They explain a control while the pointer rests on it.")));
    pane->addStretch(1);
}

void PreferencesPanel::addTools()
{
    QVBoxLayout *pane = addPane(u"tools"_s, tr("Tools"));
    m_tools = new ToolList(m_preferences);
    pane->addWidget(m_tools, 1);
}

void PreferencesPanel::addLintwick()
{
    QVBoxLayout *pane = addPane(u"document-send"_s, tr("Lintwick"));
    QPushButton *change = button(tr("C&hange…"), "ChangeLintwickPathButton", tr("Find Lintwick"));
    connect(change, &QPushButton::clicked, &m_controller, &KXPreferencesController::changeLintwickPathButton);
    pane->addWidget(headLabel(tr("Application")));
    pane->addWidget(rowOf({m_lintwick, change}));
    pane->addWidget(hint(tr("Send hands the ticked subtitle to it.")));
    pane->addStretch(1);
}

void PreferencesPanel::addSwitch(QVBoxLayout *pane, QCheckBox *box, QLabel *meaning)
{
    meaning->setContentsMargins(space::huge, 0, 0, space::tiny);
    box->setAccessibleDescription(meaning->text());
    pane->addWidget(box);
    pane->addWidget(meaning);
}

/// Without its tool nothing can be padded; what is stored stays as it is.
void PreferencesPanel::offerPadding(QCheckBox *padding, QLabel *reason)
{
    const QFileInfo tool(m_preferences.urlOfApp(u"atomicparsley"_s).toLocalFile());
    const bool has = tool.isFile() && tool.isExecutable();
    const QString text = tr("Padding needs the tool atomicparsley, which is missing.");
    padding->setEnabled(has);
    reason->setObjectName(u"PaddingReason"_s);
    reason->setText(text);
    reason->setVisible(!has);
    m_tips.setReason(padding, has ? QString() : text);
}

QWidget *PreferencesPanel::endRow()
{
    auto *ok = named(primaryButton(tr("OK")), "OkPreferencesButton", tr("Save the preferences and close"));
    QPushButton *cancel = button(tr("Cancel"), "CancelPreferencesButton", tr("Close without saving"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &PreferencesPanel::accept);
    connect(cancel, &QPushButton::clicked, this, &PreferencesPanel::reject);
    QWidget *row = rowOf({m_problem, cancel, ok});
    static_cast<QHBoxLayout *>(row->layout())->setStretch(0, 1); // NOLINT: rowOf() makes one
    row->layout()->setContentsMargins(space::large, space::middle, space::large, space::middle);
    return row;
}

QPushButton *PreferencesPanel::button(const QString &title, const char *word, const QString &name)
{
    auto *made = named(new QPushButton(title), word, name);
    made->setAutoDefault(false);
    return made;
}

/// Bound to the tip that is named after it.
QCheckBox *PreferencesPanel::checkBox(const QString &title, const char *word, const char *property)
{
    QString name = title;
    auto *box = named(new QCheckBox(title), word, name.remove(u'&'));
    m_tips.bind(box, QByteArray("tt").append(word).constData());
    connect(box, &QCheckBox::clicked, &m_controller,
            [this, property](bool on) { m_controller.setProperty(property, on); });
    m_switches.append({box, property});
    return box;
}

void PreferencesPanel::refresh()
{
    showPath(m_saveFolder, m_controller.saveDirectoryPath());
    m_clear->setEnabled(!m_controller.saveDirectoryPath().isEmpty());
    showPath(m_lintwick, m_controller.lintwickPath());
    m_whenDone->setCurrentIndex(std::max(m_whenDone->findData(m_controller.whenQueueIsDone()), 0));
    for (const Switch &shown : m_switches)
        shown.box->setChecked(m_controller.property(shown.property).toBool());
}

void PreferencesPanel::accept()
{
    m_problem->setText(m_controller.okPreferencesButton());
}

void PreferencesPanel::reject()
{
    m_controller.cancelPreferencesButton();
}

} // namespace window

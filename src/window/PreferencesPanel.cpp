#include "window/PreferencesPanel.h"

#include "prefs/KXPreferences.h"
#include "prefs/KXPreferencesController.h"
#include "window/Controls.h"
#include "window/ToolTipBinder.h"

#include <QDir>
#include <QFileInfo>
#include <QFormLayout>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int pathCharacters = 48;

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
    , m_saveFolder(pathLine("SaveDirectoryPath", tr("Save folder"), tr("Next to the source movie")))
    , m_lintwick(pathLine("LintwickPath", tr("Lintwick"), tr("Not chosen")))
    , m_problem(named(new QLabel, "PreferencesProblem", {}))
{
    setObjectName(u"PreferencesPanel"_s);
    setWindowTitle(tr("Preferences"));
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    m_problem->setWordWrap(true);
    setReddened(m_problem, true);
    auto *layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addFolders(layout);
    addSwitches(layout);
    layout->addRow(m_problem);
    layout->addRow(endRow());
    connect(&controller, &KXPreferencesController::stateChanged, this, &PreferencesPanel::refresh);
    connect(&controller, &KXPreferencesController::panelWanted, this, [this](bool open) {
        if (!open)
            done(QDialog::Accepted);
    });
    refresh();
}

void PreferencesPanel::addFolders(QFormLayout *layout)
{
    QPushButton *changeFolder = button(tr("&Change…"), "ChangeSaveButton", tr("Change the save folder"));
    m_clear = button(tr("C&lear"), "ClearSaveDirectoryButton", tr("Save next to the source movie"));
    layout->addRow(tr("Save folder:"), rowOf({m_saveFolder, changeFolder, m_clear}));
    connect(changeFolder, &QPushButton::clicked, &m_controller, &KXPreferencesController::changeSaveButton);
    connect(m_clear, &QPushButton::clicked, &m_controller, &KXPreferencesController::clearSaveDirectory);
    QPushButton *changeLintwick = button(tr("C&hange…"), "ChangeLintwickPathButton", tr("Find Lintwick"));
    layout->addRow(tr("Lintwick:"), rowOf({m_lintwick, changeLintwick}));
    connect(changeLintwick, &QPushButton::clicked, &m_controller,
            &KXPreferencesController::changeLintwickPathButton);
}

void PreferencesPanel::addSwitches(QFormLayout *layout)
{
    QCheckBox *tips = checkBox(tr("Show &tool tips"), "PrefToolTipsButton", "showToolTipsFlag");
    connect(tips, &QCheckBox::clicked, &m_controller, &KXPreferencesController::tooltipsCheckboxClicked);
    QCheckBox *padding =
        checkBox(tr("Add &padding to MP4 files"), "PrefAddPaddingButton", "metadataPaddingFlag");
    QLabel *noPadding = hint();
    layout->addRow(tr("Window:"), tips);
    layout->addRow(tr("Conversion:"),
                   checkBox(tr("&Keep logs and temporary files"), "PrefLogsButton", "keepLogsFlag"));
    layout->addRow({}, checkBox(tr("&Optimize MP4 files for streaming"), "PrefOptimizeStreamingButton",
                                "moovInFrontFlag"));
    layout->addRow({}, padding);
    layout->addRow({}, noPadding);
    layout->addRow({},
                   checkBox(tr("Use &Dolby Pro Logic II for stereo"), "PrefUseDpliiButton", "useDpliiFlag"));
    layout->addRow({}, checkBox(tr("&Verify finished files bit for bit"), "PrefVerifyButton", "verifyFlag"));
    offerPadding(padding, noPadding);
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
    QPushButton *ok = button(tr("OK"), "OkPreferencesButton", tr("Save the preferences and close"));
    QPushButton *cancel = button(tr("Cancel"), "CancelPreferencesButton", tr("Close without saving"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &PreferencesPanel::accept);
    connect(cancel, &QPushButton::clicked, this, &PreferencesPanel::reject);
    return rowOf({nullptr, cancel, ok});
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

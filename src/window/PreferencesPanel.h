#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

class KXPreferences;
class KXPreferencesController;
class QComboBox;
class QListWidget;
class QStackedWidget;
class QVBoxLayout;

namespace window {

class ToolList;
class ToolTipBinder;

/// The preferences panel: a pane for each of its subjects. What is entered waits in its controller for OK;
/// only the tool tips switch at once. It is deleted when it closes.
class PreferencesPanel final : public QDialog
{
    Q_OBJECT

public:
    /// All must outlive it.
    PreferencesPanel(KXPreferencesController &controller, KXPreferences &preferences, ToolTipBinder &tips,
                     QWidget *parent);

    /// Opens at the tools.
    void showTools();
    void accept() override;
    void reject() override;

private:
    /// A check box and the controller's property that it shows.
    struct Switch
    {
        QCheckBox *box;
        const char *property;
    };

    QVBoxLayout *addPane(const QString &iconName, const QString &title);
    void addFiles();
    void addConversion();
    void addQueue();
    QComboBox *whenDone();
    void addWindow();
    void addTools();
    void addLintwick();
    /// A check box with what it means below.
    void addSwitch(QVBoxLayout *pane, QCheckBox *box, QLabel *meaning);
    QWidget *endRow();
    QPushButton *button(const QString &title, const char *word, const QString &name);
    QCheckBox *checkBox(const QString &title, const char *word, const char *property);
    void offerPadding(QCheckBox *padding, QLabel *reason);
    void refresh();

    KXPreferencesController &m_controller;
    KXPreferences &m_preferences;
    ToolTipBinder &m_tips;
    QListWidget *m_panes;
    QStackedWidget *m_pages;
    ToolList *m_tools = nullptr;
    QLineEdit *m_saveFolder;
    QPushButton *m_clear = nullptr;
    QLineEdit *m_lintwick;
    QComboBox *m_whenDone = nullptr;
    QList<Switch> m_switches;
    QLabel *m_problem;
};

} // namespace window

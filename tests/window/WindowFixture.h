#pragma once

#include "support/Scratch.h"
#include "window/WindowProgram.h"

#include <QAbstractButton>
#include <QTreeView>

#include <memory>

/// The window program of a fresh user, driven as a person does: by mouse and keys. What it keeps lies in a
/// scratch folder, and can be started again. A control that is not found fails the test.
class WindowFixture final
{
public:
    enum class Pictures { None, Taken };

    /// Pictures of films are taken only where a test is about them.
    explicit WindowFixture(Pictures pictures = Pictures::None);
    ~WindowFixture();
    Q_DISABLE_COPY_MOVE(WindowFixture)

    /// Starts the program and waits until its window is there.
    void start(const QStringList &paths = {});
    /// As if the program had ended and is started again.
    void restart();

    window::WindowProgram &program() { return *m_program; }
    window::MainWindow &window() { return m_program->mainWindow(); }
    KXAppDelegate &delegate() { return m_program->delegate(); }
    KXQueueController &queue() { return delegate().program().queue(); }
    KXSelectionController &controller() { return delegate().program().selectionController(); }
    QString path(const QString &name = {}) const { return m_scratch.path(name); }
    /// A copy of a clip in the scratch folder; answers its path.
    QString film(const QString &clip, const QString &name = QStringLiteral("a.mkv")) const;

    template <typename Control>
    Control *find(const char *word)
    {
        auto *found = window().findChild<Control *>(QString::fromLatin1(word));
        if (found == nullptr)
            qFatal("There is no %s.", word);
        return found;
    }
    void click(const char *button);
    bool isEnabled(const char *control) { return find<QWidget>(control)->isEnabled(); }
    /// Picks an entry of a popup with the keyboard.
    void pick(const char *popup, const QString &entry);
    /// Types into a field in the place of what is there.
    void type(const char *field, const QString &text);
    void chooseTab(int index);
    /// Clicks the tick box of a row in the track table.
    void tick(int row);
    void clickCell(QTreeView *table, int row, int column);
    /// Answers whether the drop was taken.
    bool drop(const char *table, const QStringList &paths);
    /// A command of the menu bar, reached through its menu with the keyboard.
    void command(const QString &menu, const QString &text);
    /// Answers the file dialog that is open.
    void answerDialog(const QStringList &paths);

    /// Waits until nothing is probed any more.
    bool waitForFiles();
    /// Drops files on the table of the tab that is shown, and waits for them.
    bool open(const QStringList &paths);
    bool waitForAlert(const QString &message);
    QString alertText() const;
    void pressAlertButton(int index);
    bool hasAlert() const;
    /// What was said of missing tools at the start; the message is closed by then.
    const QString &missingTools() const { return m_missingTools; }
    /// What every message and question says that is shown.
    QStringList alertHeads() const;
    /// Waits until every job has ended.
    bool waitForJobs(int milliseconds = 60000);
    QStringList rows(const char *table, int column);
    /// Of the steps below the running job.
    QStringList steps(int column);

private:
    QWidget *alert() const;

    void closeMissingTools();

    support::Scratch m_scratch;
    QString m_missingTools;
    std::unique_ptr<window::WindowProgram> m_program;
};

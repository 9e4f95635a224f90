#include "window/WindowFixture.h"

#include "support/Clips.h"
#include "support/Waiting.h"
#include "window/Thumbnails.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QSet>
#include <QTabBar>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using support::waitFor;

WindowFixture::WindowFixture(Pictures pictures)
{
    window::Thumbnails::setSwitchedOff(pictures == Pictures::None);
    qputenv("HOME", m_scratch.path().toUtf8());
}

WindowFixture::~WindowFixture()
{
    if (m_program)
        m_program->delegate().program().queue().removeAllJobs();
}

void WindowFixture::start(const QStringList &paths)
{
    app::Program::Options options;
    options.defaultsPath = m_scratch.path(u"settings/defaults.json"_s);
    m_program = std::make_unique<window::WindowProgram>(options);
    m_program->start(paths);
    if (!QTest::qWaitForWindowExposed(&window()))
        qFatal("The window did not come.");
    if (!waitFor([this] { return m_program->isReady(); }, 60000))
        qFatal("The tools were not unpacked.");
    closeMissingTools();
    window().activateWindow();
    (void)QTest::qWaitForWindowActive(&window(), 500);
}

/// As a person does who has read it.
void WindowFixture::closeMissingTools()
{
    m_missingTools.clear();
    QTest::qWait(0);
    auto *told = window().findChild<QWidget *>(u"MissingTools"_s);
    if (told == nullptr || !told->isVisible())
        return;
    m_missingTools = told->findChild<QLabel *>(u"AlertText"_s)->text();
    QTest::mouseClick(told->findChild<QAbstractButton *>(u"AlertButton0"_s), Qt::LeftButton);
    QTest::qWait(0);
}

void WindowFixture::restart()
{
    m_program.reset();
    start();
}

QString WindowFixture::film(const QString &clip, const QString &name) const
{
    return support::copyOf(clip, m_scratch, name);
}

void WindowFixture::click(const char *button)
{
    QTest::mouseClick(find<QAbstractButton>(button), Qt::LeftButton);
    QTest::qWait(0);
}

void WindowFixture::pick(const char *popup, const QString &entry)
{
    auto *box = find<QComboBox>(popup);
    const int wanted = box->findText(entry);
    if (wanted < 0)
        qFatal("%s does not offer %s.", popup, qPrintable(entry));
    box->setFocus();
    for (int steps = 0; box->currentIndex() != wanted && steps < 100; ++steps)
        QTest::keyClick(box, box->currentIndex() < wanted ? Qt::Key_Down : Qt::Key_Up);
    QTest::qWait(0);
}

void WindowFixture::type(const char *field, const QString &text)
{
    auto *line = find<QLineEdit>(field);
    QTest::mouseClick(line, Qt::LeftButton);
    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(line, text);
    QTest::keyClick(line, Qt::Key_Tab);
    QTest::qWait(0);
}

void WindowFixture::chooseTab(int index)
{
    auto *tabs = find<QTabBar>("Tabs");
    QTest::mouseClick(tabs, Qt::LeftButton, Qt::NoModifier, tabs->tabRect(index).center());
    QTest::qWait(0);
}

void WindowFixture::clickCell(QTreeView *table, int row, int column)
{
    const QModelIndex index = table->model()->index(row, column);
    if (!index.isValid())
        qFatal("There is no row %d.", row);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, table->visualRect(index).center());
    QTest::qWait(0);
}

void WindowFixture::tick(int row)
{
    auto *table = find<QTreeView>("ConvertTrackTable");
    const QRect cell = table->visualRect(table->model()->index(row, 0));
    const QPoint box(cell.left() + 10, cell.center().y()); // where a style draws the box
    QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, box);
    QTest::qWait(0);
}

bool WindowFixture::drop(const char *table, const QStringList &paths)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    QWidget *target = find<QTreeView>(table)->viewport();
    const QPoint place = target->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    if (!enter.isAccepted() || enter.dropAction() != Qt::CopyAction)
        return false;
    QDropEvent dropped(QPointF(place), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &dropped);
    return dropped.isAccepted();
}

void WindowFixture::command(const QString &menu, const QString &text)
{
    for (QAction *top : window().menuBar()->actions()) {
        if (top->text().remove(u'&') != menu)
            continue;
        for (QAction *action : top->menu()->actions()) {
            if (action->text().remove(u'&') != text)
                continue;
            top->menu()->popup(window().mapToGlobal(QPoint(0, 0)));
            const QRect place = top->menu()->actionGeometry(action);
            QTest::mouseClick(top->menu(), Qt::LeftButton, Qt::NoModifier, place.center());
            QTest::qWait(0);
            return;
        }
    }
    qFatal("There is no command %s in %s.", qPrintable(text), qPrintable(menu));
}

void WindowFixture::answerDialog(const QStringList &paths)
{
    QFileDialog *dialog = nullptr;
    if (!waitFor([&] {
            dialog = window().findChild<QFileDialog *>(u"FileChooser"_s);
            return dialog != nullptr && dialog->isVisible();
        }))
        qFatal("No file dialog came.");
    auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
    QStringList quoted;
    for (const QString &path : paths)
        quoted.append(paths.size() == 1 ? path : u"\"%1\""_s.arg(path));
    const auto takeTheFocus = [&] {
        dialog->activateWindow();
        QTest::mouseClick(name, Qt::LeftButton);
    };
    // Pasted: the dialog selects whatever the letters on the way happen to name.
    const auto enter = [&] {
        QApplication::clipboard()->setText(quoted.join(u' '));
        QTest::keyClick(name, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(name, Qt::Key_V, Qt::ControlModifier);
    };
    const auto isEntered = [&] {
        const QStringList selected = dialog->selectedFiles();
        return QSet<QString>(selected.begin(), selected.end()) == QSet<QString>(paths.begin(), paths.end());
    };
    // By the button: Return may belong to the list of completions. It is off until the folder is read.
    auto *open = dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open);
    const QPointer<QFileDialog> shown(dialog);
    const bool closed = waitFor(
        [&] {
            if (!shown || !shown->isVisible())
                return true;
            if (!name->hasFocus())
                takeTheFocus();
            else if (!isEntered())
                enter();
            else if (open->isEnabled())
                QTest::mouseClick(open, Qt::LeftButton);
            return !shown || !shown->isVisible();
        },
        20000);
    if (!closed)
        qFatal("The file dialog stayed open: \"%s\" is typed, %s is selected, Open is %s.",
               qPrintable(name->text()), qPrintable(shown->selectedFiles().join(u", "_s)),
               open->isEnabled() ? "on" : "off");
    QTest::qWait(0);
}

bool WindowFixture::waitForFiles()
{
    QTest::qWait(KXAppDelegate::hubMilliseconds + 50);
    const bool done = waitFor([this] { return !delegate().intake().isBusy(); });
    QTest::qWait(0);
    return done;
}

bool WindowFixture::open(const QStringList &paths)
{
    const bool edits = controller().currentTab() == u"Edit Files"_s;
    return drop(edits ? "EditFilesTable" : "ConvertTrackTable", paths) && waitForFiles();
}

/// A question, or the newest message.
QWidget *WindowFixture::alert() const
{
    for (QWidget *shown : m_program->mainWindow().findChildren<QWidget *>(u"Alert"_s)) {
        if (shown->isVisible())
            return shown;
    }
    return nullptr;
}

bool WindowFixture::hasAlert() const
{
    return alert() != nullptr;
}

QStringList WindowFixture::alertHeads() const
{
    QStringList heads;
    for (QWidget *shown : m_program->mainWindow().findChildren<QWidget *>(u"Alert"_s)) {
        const auto *box = qobject_cast<QMessageBox *>(shown);
        if (shown->isVisible())
            heads.append(box != nullptr ? box->text() : shown->findChild<QLabel *>(u"AlertHead"_s)->text());
    }
    return heads;
}

bool WindowFixture::waitForAlert(const QString &message)
{
    return waitFor([&] { return alertHeads().contains(message); });
}

QString WindowFixture::alertText() const
{
    const QWidget *shown = alert();
    if (const auto *box = qobject_cast<const QMessageBox *>(shown))
        return box->informativeText();
    return shown == nullptr ? QString() : shown->findChild<QLabel *>(u"AlertText"_s)->text();
}

void WindowFixture::pressAlertButton(int index)
{
    QWidget *box = alert();
    if (box == nullptr)
        qFatal("There is no alert.");
    QTest::mouseClick(box->findChild<QAbstractButton *>(u"AlertButton%1"_s.arg(index)), Qt::LeftButton);
    QTest::qWait(0);
}

bool WindowFixture::waitForJobs(int milliseconds)
{
    return waitFor(
        [this] {
            const QList<JobPointer> &jobs = queue().qJobList();
            return std::all_of(jobs.begin(), jobs.end(),
                               [](const JobPointer &job) { return job->jobStatus() == u"Completed"_s; });
        },
        milliseconds);
}

QStringList WindowFixture::rows(const char *table, int column)
{
    const QAbstractItemModel *model = find<QTreeView>(table)->model();
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row)
        texts.append(model->index(row, column).data().toString());
    return texts;
}

QStringList WindowFixture::steps(int column)
{
    const QAbstractItemModel *model = find<QTreeView>("QueueTable")->model();
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex job = model->index(row, 0);
        for (int step = 0; step < model->rowCount(job); ++step)
            texts.append(model->index(step, column, job).data().toString());
    }
    return texts;
}

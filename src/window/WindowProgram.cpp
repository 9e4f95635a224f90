#include "window/WindowProgram.h"

#include "window/AppStyle.h"
#include "window/FocusRing.h"

#include <QApplication>
#include <QFileOpenEvent>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int longestWaitForPaint = 500; // milliseconds; a hidden window is not painted

} // namespace

/// Before any widget is made.
struct WindowProgram::Look
{
    Look() { AppStyle::install(); }
};

WindowProgram::WindowProgram(const app::Program::Options &options)
    : m_look(std::make_unique<Look>())
    , m_program(options, m_alerts)
    , m_delegate({m_program, m_alerts, m_chooser, m_desktop})
    , m_preferencesController(m_program.preferences(), m_chooser)
    , m_window(m_delegate, m_preferencesController)
    , m_wayOut([this] { m_delegate.applicationWillTerminate(); })
{
    m_alerts.setParentWindow(&m_window);
    m_chooser.setParentWindow(&m_window);
    m_alerts.setBar([this](const platform::AlertPointer &alert) { return showBar(*alert); });
    new FocusRing(&m_window);
    QApplication::setQuitOnLastWindowClosed(false); // the delegate says when it ends
    qApp->installEventFilter(this);
    connect(&m_window, &MainWindow::quitWanted, this, &WindowProgram::quit);
    connect(&m_program.watchMode(), &KXWatchModeController::windowsSwapped, this,
            &WindowProgram::swapWindows);
    connect(&m_delegate, &KXAppDelegate::windowWanted, this, [this] {
        if (m_watchWindow && m_watchWindow->isVisible())
            m_watchWindow->comeForward();
    });
    m_untilReady.setSingleShot(true);
    connect(&m_untilReady, &QTimer::timeout, this, &WindowProgram::getReady);
    connect(&m_delegate, &KXAppDelegate::terminationAllowed, this, &WindowProgram::leave,
            Qt::QueuedConnection);
    // No question can be answered then: the running job is stopped and its unfinished output removed.
    connect(&m_interrupts, &app::Interrupts::interrupted, this, &WindowProgram::leave, Qt::QueuedConnection);
}

WindowProgram::~WindowProgram()
{
    m_wayOut.leave();
    m_delegate.intake().stopProbing();
    if (m_unpacking)
        m_unpacking->wait();
}

void WindowProgram::start(const QStringList &paths)
{
    const QString problem = m_program.initialize(KXPreferences::Unpack::Later);
    m_delegate.applicationDidFinishLaunching();
    m_delegate.intake().setHeld(true);
    m_window.show();
    m_untilReady.start(longestWaitForPaint);
    sayProblem(problem);
    sayProblem(m_delegate.restoreQueue());
    if (!paths.isEmpty())
        m_delegate.filesRequested(paths);
}

/// Beside the main thread: the first unpacking takes its time, and another program may be at it.
void WindowProgram::getReady()
{
    m_unpacking.reset(
        QThread::create([this] { m_program.preferences().initializeApplicationSupportFolder(); }));
    connect(m_unpacking.get(), &QThread::finished, this, &WindowProgram::beReady);
    m_unpacking->start();
}

void WindowProgram::beReady()
{
    m_unpacking->wait();
    m_unpacking.reset();
    m_isReady = true;
    sayProblem(m_program.preferences().toolsProblem());
    m_delegate.intake().setHeld(false);
}

WatchWindow &WindowProgram::watchWindow()
{
    if (!m_watchWindow) {
        m_watchWindow = std::make_unique<WatchWindow>(m_delegate, m_window);
        connect(m_watchWindow.get(), &WatchWindow::quitWanted, this, &WindowProgram::quit);
    }
    return *m_watchWindow;
}

void WindowProgram::swapWindows(bool watching)
{
    watchWindow().swap(watching);
    // A hidden window shows no sheets.
    m_alerts.setParentWindow(watching ? static_cast<QWidget *>(m_watchWindow.get()) : &m_window);
}

/// In watch mode the log tells it.
std::function<void()> WindowProgram::showBar(const platform::Alert &alert)
{
    if (m_program.watchMode().appIsInWatchMode())
        return [] {};
    const MessageBar::Kind kind =
        alert.style == platform::AlertStyle::Warning ? MessageBar::Kind::Warning : MessageBar::Kind::Bad;
    const QPointer<MessageBar> bar = m_window.bars().show(
        {kind, alert.message, alert.informativeText, alert.closesAfter, alert.action, alert.act});
    return [bar] {
        if (bar)
            Q_EMIT bar->closed();
    };
}

void WindowProgram::sayProblem(const QString &problem)
{
    if (problem.isEmpty())
        return;
    platform::Alert alert;
    alert.message = tr("Something is not as it should be");
    alert.informativeText = problem;
    alert.style = platform::AlertStyle::Warning;
    m_alerts.show(std::make_shared<const platform::Alert>(alert), {});
}

void WindowProgram::quit()
{
    if (m_delegate.applicationShouldTerminate())
        QMetaObject::invokeMethod(this, &WindowProgram::leave, Qt::QueuedConnection);
}

/// Not by quit(): that closes the windows first, which ask whether the program may end.
void WindowProgram::leave()
{
    QCoreApplication::exit(0);
}

bool WindowProgram::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint && m_untilReady.isActive())
        m_untilReady.start(0);
    if (event->type() != QEvent::FileOpen)
        return QObject::eventFilter(watched, event);
    m_delegate.filesRequested({static_cast<QFileOpenEvent *>(event)->file()}); // NOLINT
    return true;
}

} // namespace window

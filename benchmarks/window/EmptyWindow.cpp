// What a start is compared with: the empty main window that every application begins with, or, with the word
// "bare", a widget without a menu bar or a status bar.
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>

#include <memory>

namespace {

std::unique_ptr<QWidget> mainWindow()
{
    auto window = std::make_unique<QMainWindow>();
    window->menuBar();
    window->statusBar();
    window->setCentralWidget(new QWidget);
    return window;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const bool isBare = QApplication::arguments().value(1) == QStringLiteral("bare");
    const std::unique_ptr<QWidget> window = isBare ? std::make_unique<QWidget>() : mainWindow();
    window->resize(980, 720);
    window->show();
    return QApplication::exec();
}

// The least that a Qt program with a window of that size can be.
#include <QApplication>
#include <QWidget>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(1000, 700);
    window.show();
    return QApplication::exec();
}

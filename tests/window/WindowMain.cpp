#include "support/TestMain.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    return support::TestClass::runNamed(QCoreApplication::arguments());
}

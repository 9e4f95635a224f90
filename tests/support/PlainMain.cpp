#include "support/TestMain.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    return support::TestClass::runNamed(QCoreApplication::arguments());
}

#include "platform/KeeperProcess.h"
#include "support/TestMain.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    if (platform::keeper::isWanted(argc, argv))
        return platform::keeper::run();
    const QApplication application(argc, argv);
    return support::TestClass::runNamed(QCoreApplication::arguments());
}

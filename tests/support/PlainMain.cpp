#include "platform/KeeperProcess.h"
#include "support/TestMain.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    if (platform::keeper::isWanted(argc, argv))
        return platform::keeper::run();
    const QCoreApplication application(argc, argv);
    return support::TestClass::runNamed(QCoreApplication::arguments());
}

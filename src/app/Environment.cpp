#include "app/Environment.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>

using namespace Qt::StringLiterals;

namespace app {

void ensureUtf8Locale()
{
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0)
        return;
    ::setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_CTYPE, "");
}

QString resourcesFolder()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../Resources"_s);
}

QString workingFolder()
{
    const QString folder = QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/.."_s);
    return QFileInfo(folder).isDir() ? folder : QDir::rootPath();
}

} // namespace app

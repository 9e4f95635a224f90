#include "app/Environment.h"

#include "platform/VisibleText.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <langinfo.h>
#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace app {

namespace {

/// A pipe or a file of ours would get the number of a closed one, and what is printed would go there.
void openClosedStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", O_RDWR); // gets the lowest number that is free: this one
    }
}

bool isWholePath(const char *path)
{
    return path != nullptr && path[0] == '/';
}

/// Settings must not land in whatever folder we were started from, and tools inherit what is set here.
void ignoreRelativeFolders()
{
    for (const char *name :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
        if (!isWholePath(std::getenv(name)))
            ::unsetenv(name);
    }
    if (isWholePath(std::getenv("HOME")))
        return;
    const passwd *user = ::getpwuid(::getuid());
    if (user != nullptr && isWholePath(user->pw_dir))
        ::setenv("HOME", user->pw_dir, 1);
    else
        ::unsetenv("HOME");
}

void printMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QString text = platform::visibleInLines(qFormatLogMessage(type, context, message));
    std::fputs((text + u'\n').toUtf8().constData(), stderr);
}

} // namespace

void prepareProcess()
{
    openClosedStreams();
    ignoreRelativeFolders();
    ensureUtf8Locale();
    qInstallMessageHandler(printMessage);
}

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

#include "platform/Workspace.h"

#include <QFileInfo>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// Detached, with no streams of ours: it outlives us and prints nothing between our lines.
bool startDetached(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

bool start(const QUrl &application, const QStringList &documents)
{
    const QString path = application.toLocalFile();
    if (path.isEmpty() || !QFileInfo::exists(path))
        return false;
#ifdef Q_OS_MACOS
    QStringList arguments{u"-a"_s, path};
    return startDetached(u"/usr/bin/open"_s, arguments + documents);
#else
    return QFileInfo(path).isFile() && startDetached(path, documents);
#endif
}

} // namespace

bool Workspace::launch(const QUrl &application)
{
    return start(application, {});
}

bool Workspace::open(const QUrl &document, const QUrl &application)
{
    return start(application, {document.toLocalFile()});
}

} // namespace platform

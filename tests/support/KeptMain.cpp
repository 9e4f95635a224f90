// A program that starts tools in every way that there is, holds a folder, and waits to be ended:
// KIND FOLDER. It prints the ids of its tools, and those of its keepers, a line each.
#include "platform/HolderFile.h"
#include "platform/Keeper.h"
#include "platform/KeeperProcess.h"
#include "platform/PlainFiles.h"
#include "tools/ShellRunner.h"
#include "tools/ToolProcess.h"

#include <QCoreApplication>
#include <QDir>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// Written by the tool itself, so that it is known to run.
const QString tellOwn = u"echo $$ > tool; exec sleep 1000"_s;

tools::ToolProcessPointer process(const QString &script)
{
    tools::ToolProcess::Request request;
    request.program = u"/bin/sh"_s;
    request.arguments = QStringList{u"-c"_s, script};
    request.environment = QProcessEnvironment::systemEnvironment();
    return tools::ToolProcess::start(request);
}

tools::ShellReply shell(const QString &line)
{
    tools::ShellRequest request;
    request.line = line;
    return tools::runShell(request);
}

void runKind(const QString &kind, QList<tools::ToolProcessPointer> &kept)
{
    if (kind == u"process"_s)
        kept.append(process(tellOwn));
    else if (kind == u"paused"_s)
        kept.append(process(u"echo $$ > tool; kill -STOP $$; exec sleep 1000"_s));
    else if (kind == u"deaf"_s)
        kept.append(process(u"trap '' TERM INT HUP; echo $$ > tool; while :; do sleep 1; done"_s));
    else if (kind == u"grandchild"_s)
        kept.append(process(u"sh -c 'echo $$ > tool; exec sleep 1000' & wait"_s));
    else if (kind == u"shell"_s)
        QThread::create([] { shell(tellOwn); })->start();
    else if (kind == u"background"_s || kind == u"released"_s)
        shell(u"sh -c 'echo $$ > tool; exec sleep 1000' >/dev/null 2>&1 & echo $!"_s);
    else if (kind == u"ended"_s)
        shell(u"echo $$ > tool"_s);
    if (kind == u"released"_s)
        platform::keeper::letGroupsRunOn();
}

} // namespace

int main(int argc, char *argv[])
{
    if (platform::keeper::isWanted(argc, argv))
        return platform::keeper::run();
    const QCoreApplication application(argc, argv);
    QDir::setCurrent(QString::fromLocal8Bit(argv[2]));
    platform::makePrivateFolder(QUrl::fromLocalFile(QDir::current().filePath(u"held"_s)));
    const QUrl list = QUrl::fromLocalFile(QDir::current().filePath(u"held/list"_s));
    platform::HolderFile folder(QUrl::fromLocalFile(QDir::current().filePath(u"held/lock"_s)),
                                {true, list.toLocalFile()});
    platform::HolderFile claim(QUrl::fromLocalFile(QDir::current().filePath(u"claim"_s)));
    folder.take();
    platform::createFile(QUrl::fromLocalFile(QDir::current().filePath(u"held/half.mkv"_s)), "half");
    QList<tools::ToolProcessPointer> kept;
    runKind(QString::fromLocal8Bit(argv[1]), kept);
    claim.take();
    qint64 told = 0;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &application, [&told] {
        const qint64 now = platform::keeper::processId();
        if (now != told)
            std::printf("%lld\n", static_cast<long long>(now));
        std::fflush(stdout);
        told = now;
    });
    look.start(20);
    return QCoreApplication::exec();
}

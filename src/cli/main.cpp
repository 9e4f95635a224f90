#include "app/Environment.h"
#include "cli/Commands.h"
#include "platform/KeeperProcess.h"

#include <QCoreApplication>
#include <QStringDecoder>

#include <cstdio>

namespace {

/// Names that are not UTF-8 would reach the tools as other names, so they are refused.
bool areUtf8(int count, char **words)
{
    for (int i = 1; i < count; ++i) {
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString text = decoder.decode(QByteArrayView(words[i]));
        if (decoder.hasError())
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    if (platform::keeper::isWanted(argc, argv))
        return platform::keeper::run();
    app::prepareProcess();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tessaray"));
    if (!areUtf8(argc, argv)) {
        std::fputs(
            "A word of the command line is not UTF-8; a file with such a name must be renamed first.\n",
            stderr);
        return static_cast<int>(cli::ExitStatus::WrongUsage);
    }
    return static_cast<int>(cli::run(QCoreApplication::arguments().mid(1)));
}

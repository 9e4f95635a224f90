#include "app/Environment.h"
#include "platform/KeeperProcess.h"
#include "platform/VisibleText.h"
#include "window/SingleInstance.h"
#include "window/WindowProgram.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

struct Wishes
{
    QString defaultsPath;
    QStringList paths;
};

/// --help and --version need no display.
bool onlyAsks(int argc, char *argv[])
{
    static const QStringList questions{u"-h"_s, u"--help"_s, u"--help-all"_s, u"-v"_s, u"--version"_s};
    return std::any_of(argv + 1, argv + argc,
                       [](const char *word) { return questions.contains(QString::fromLocal8Bit(word)); });
}

void introduce()
{
    QCoreApplication::setApplicationName(u"tessaray"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(TESSARAY_VERSION));
}

Wishes wishesOf(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QObject::tr("Prepares video files for other devices and reshapes Matroska files."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption defaults(u"defaults"_s, QObject::tr("Keep the settings in FILE."), u"FILE"_s);
    parser.addOption(defaults);
    parser.addPositionalArgument(u"files"_s, QObject::tr("Files to open."), u"[FILE...]"_s);
    if (!parser.parse(QCoreApplication::arguments())) {
        const QString problem =
            QCoreApplication::applicationName() + u": "_s + platform::visible(parser.errorText());
        std::fputs((problem + u'\n').toUtf8().constData(), stderr);
        std::exit(EXIT_FAILURE);
    }
    parser.process(application); // answers what was asked
    Wishes wishes{parser.value(defaults), {}};
    for (const QString &argument : parser.positionalArguments())
        wishes.paths.append(QFileInfo(argument).absoluteFilePath());
    return wishes;
}

} // namespace

int main(int argc, char *argv[])
{
    if (platform::keeper::isWanted(argc, argv))
        return platform::keeper::run();
    app::prepareProcess();
    introduce();
    if (onlyAsks(argc, argv)) {
        const QCoreApplication application(argc, argv);
        (void)wishesOf(application); // answers and ends
    }
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(u"Tessaray"_s);
    QApplication::setDesktopFileName(u"org.tessaray.Tessaray"_s);
    const Wishes wishes = wishesOf(application);
    window::SingleInstance instance(wishes.defaultsPath);
    if (instance.handOver(wishes.paths))
        return 0;
    instance.listen();
    app::Program::Options options;
    options.defaultsPath = wishes.defaultsPath;
    window::WindowProgram program(options);
    QObject::connect(&instance, &window::SingleInstance::filesHandedOver, &program.delegate(),
                     &KXAppDelegate::filesRequested);
    program.start(wishes.paths);
    return QApplication::exec();
}

#include "app/Environment.h"
#include "window/SingleInstance.h"
#include "window/WindowProgram.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

struct Wishes
{
    QString defaultsPath;
    QStringList paths;
};

Wishes wishesOf(const QApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QObject::tr("Prepares video files for other devices and reshapes Matroska files."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption defaults(u"defaults"_s, QObject::tr("Keep the settings in FILE."), u"FILE"_s);
    parser.addOption(defaults);
    parser.addPositionalArgument(u"files"_s, QObject::tr("Files to open."), u"[FILE...]"_s);
    parser.process(application);
    Wishes wishes{parser.value(defaults), {}};
    for (const QString &argument : parser.positionalArguments())
        wishes.paths.append(QFileInfo(argument).absoluteFilePath());
    return wishes;
}

} // namespace

int main(int argc, char *argv[])
{
    app::ensureUtf8Locale();
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"tessaray"_s);
    QApplication::setApplicationDisplayName(u"Tessaray"_s);
    QApplication::setApplicationVersion(QStringLiteral(TESSARAY_VERSION));
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

#include "engines/mkvtoolnix/SubtitleHandOver.h"

#include "platform/Workspace.h"

using namespace Qt::StringLiterals;

namespace engines {

namespace {

platform::AlertPointer warning(const QString &message, const QString &text)
{
    platform::Alert alert;
    alert.message = message;
    alert.informativeText = text;
    alert.style = platform::AlertStyle::Warning;
    return std::make_shared<const platform::Alert>(alert);
}

platform::AlertPointer notLaunched()
{
    return warning(u"Lintwick Could Not Be Launched"_s,
                   u"Verify that a valid path to Lintwick has been entered in the preferences."_s);
}

} // namespace

platform::AlertPointer handOver(platform::Workspace &workspace, const QString &applicationPath,
                                const QUrl &subtitle, const QUrl &film)
{
    if (applicationPath.isEmpty())
        return notLaunched();
    const QUrl application = QUrl::fromLocalFile(applicationPath);
    // The path has to name the application, even where something was launched.
    if (!workspace.launch(application) || !applicationPath.contains(u"Lintwick"_s))
        return notLaunched();
    const bool opened = workspace.open(subtitle, application);
    workspace.open(film, application); // in any case
    if (opened)
        return nullptr;
    return warning(
        u"Error Sending the Subtitle to Lintwick"_s,
        u"Make sure that you have the most recent version of Lintwick installed.  Check the Orvane "
        "website for the current version."_s);
}

} // namespace engines

// The half of KXHelpers that starts, watches and ends programs.
#include "tools/KXHelpers.h"

#include "tools/Processes.h"
#include "tools/ToolEnvironment.h"

#include <QStringDecoder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

enum class Trim { OneLineFeed, None };

QString withoutLastLineFeed(QString text)
{
    if (text.endsWith(u'\n'))
        text.chop(1);
    return text;
}

QString decodedUtf8(const QByteArray &bytes, bool &valid)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    valid = !decoder.hasError();
    return text;
}

/// ASCII is a part of UTF-8, so what is not UTF-8 is never ASCII either: an absent text.
QString decoded(const QByteArray &bytes)
{
    bool valid = false;
    const QString text = decodedUtf8(bytes, valid);
    if (!valid)
        return {};
    return text.isEmpty() ? u""_s : withoutLastLineFeed(text);
}

bool isQuietCommand(const QString &command)
{
    const QStringList quiet{u"ps"_s, u"tr '\\r' '\\n' < "_s, u"dscacheutil"_s, u"ls"_s};
    return quiet.contains(command);
}

} // namespace

QString KXHelpers::doShellScriptForWithOptions(const QUrl &tool, const tools::OptionList &options) const
{
    const auto line = tools::toolLine(tool, options, *m_places, tools::shellKind());
    const QString name = tool.fileName().toLower();
    if (!name.contains(u"mediainfo"_s) && !name.contains(u"mkvinfo"_s))
        logObjectWithString(line.meant, u"doShellScript String: "_s);
    tools::ShellRequest request;
    request.line = line.launched;
    request.workingFolder = m_places->workingFolder();
    request.environment = tools::shellEnvironment(tool);
    request.waiting = m_waiting;
    request.stop = m_stop;
    return decoded(tools::runShell(request).selected());
}

QString KXHelpers::doUnixCommandWithOptions(tools::Literal command, const tools::OptionList &options) const
{
    const auto line = tools::commandLine(command, options, tools::shellKind());
    if (!isQuietCommand(command.text()))
        logObjectWithString(line.meant, u"doUnixCommand string: "_s);
    tools::ShellRequest request;
    request.line = line.launched;
    request.environment.insert(u"LC_ALL"_s, u"C"_s); // grep takes foreign bytes in a log for a binary file
    return decoded(tools::runShell(request).selected());
}

QUrl KXHelpers::urlOfApp(const QString &name) const
{
    const QString lower = name.toLower();
    const auto inResources = [&](const QString &path) {
        return QUrl::fromLocalFile(m_places->resourcesLocation().toLocalFile() + u'/' + path);
    };
    const auto inTools = [&](const QString &folder, const QString &file) {
        return QUrl::fromLocalFile(m_places->toolsLocation().toLocalFile() + u'/' + folder + u'/' + file);
    };
    if (lower.endsWith(u"zip"_s))
        return inResources(lower);
    if (lower.startsWith(u"mkv"_s))
        return inTools(u"mkvtoolnix"_s, lower);
    if (name == u"mp4box"_s || name == u"mplayer"_s || name == u"tesseract"_s)
        return inTools(name, name);
    if (name == u"ffmpeg"_s || name == u"ffprobe"_s)
        return inTools(u"ffmpeg"_s, name);
    return inResources(lower);
}

bool KXHelpers::processIsRunningWithPID(const QString &pid) const
{
    return tools::processRuns(pid);
}

bool KXHelpers::terminatePIDWaitUntilTerminated(const QString &pid, Wait wait) const
{
    if (!tools::signalProcess(pid, tools::ProcessSignal::Kill))
        return false;
    if (wait == Wait::UntilTerminated) {
        do {
            logString(u"Waiting to terminate"_s);
        } while (processIsRunningWithPID(pid));
    }
    return true;
}

void KXHelpers::suspendPID(const QString &pid) const
{
    tools::signalProcess(pid, tools::ProcessSignal::Stop);
}

void KXHelpers::resumePID(const QString &pid) const
{
    tools::signalProcess(pid, tools::ProcessSignal::Continue);
}

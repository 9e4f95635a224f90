#include "cli/BugReport.h"

#include "cli/Help.h"
#include "platform/OrdinaryFile.h"

#include <QDir>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

constexpr qint64 mostLogBytes = 16 * 1024 * 1024;
constexpr qsizetype firstLines = 20;
constexpr qsizetype lastLines = 100;

/// Logs of other programs are none of our business.
bool isOurs(const QString &path)
{
    return platform::readPart(path, 0, 9) == "Tessaray:";
}

QStringList shortened(const QStringList &lines)
{
    if (lines.size() <= firstLines + lastLines)
        return lines;
    const QString gap = u"... %1 lines left out ..."_s.arg(lines.size() - firstLines - lastLines);
    return lines.first(firstLines) + QStringList{gap} + lines.last(lastLines);
}

QString toolLine(const prefs::ToolReport &tool)
{
    const QString state =
        tool.works() ? (tool.version.isNull() ? u"works"_s : tool.version) : prefs::describe(tool.state);
    return u"%1 %2"_s.arg(tool.name.leftJustified(14), state);
}

} // namespace

KeptLog newestLog(const QStringList &folders)
{
    QFileInfo newest;
    for (const QString &folder : folders) {
        if (folder.isEmpty())
            continue;
        // Newest first; the first of ours is enough.
        for (const QFileInfo &file : QDir(folder).entryInfoList({u"*.log"_s}, QDir::Files, QDir::Time)) {
            if (!isOurs(file.filePath()))
                continue;
            if (!newest.exists() || file.lastModified() > newest.lastModified())
                newest = file;
            break;
        }
    }
    if (!newest.exists())
        return {};
    const QByteArray bytes = platform::readWhole(newest.filePath(), mostLogBytes).bytes;
    const QString text = QString::fromUtf8(bytes).replace(u'\r', u'\n');
    return {newest.absoluteFilePath(), shortened(text.split(u'\n', Qt::SkipEmptyParts))};
}

QString withoutHome(const QString &text)
{
    const QString home = QDir::homePath();
    if (home.size() < 2)
        return text;
    QString shown = text;
    for (qsizetype at = shown.indexOf(home); at >= 0; at = shown.indexOf(home, at + 1)) {
        const QChar next = at + home.size() < shown.size() ? shown.at(at + home.size()) : QChar(u'/');
        if (!next.isLetterOrNumber() && next != u'-' && next != u'_' && next != u'.')
            shown.replace(at, home.size(), u"~"_s);
    }
    return shown;
}

QStringList bugReport(const QList<prefs::ToolReport> &tools, const KeptLog &log)
{
    QStringList lines{versionText(), u"%1, %2, Qt %3"_s.arg(QSysInfo::prettyProductName(),
                                                            QSysInfo::currentCpuArchitecture(),
                                                            QString::fromLatin1(qVersion()))};
    for (const prefs::ToolReport &tool : tools)
        lines.append(toolLine(tool));
    lines.append(log.path.isNull() ? u"No log was found. Run this in the folder of the film."_s
                                   : u"The last log, %1:"_s.arg(log.path));
    lines.append(log.lines);
    for (QString &line : lines)
        line = withoutHome(line);
    return lines;
}

} // namespace cli

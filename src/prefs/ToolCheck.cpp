#include "prefs/ToolCheck.h"

#include "platform/TemporaryFolder.h"
#include "tools/ShellRunner.h"
#include "tools/ToolPlaces.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

constexpr int patienceMs = 5000;

struct KnownTool
{
    QString name;
    tools::Literal versionFlag; ///< its words
    QString answerPattern; ///< of what it says then; its group is the version, which some builds don't have
    QString switchesOff;
};

const QList<KnownTool> &knownTools()
{
    static const QList<KnownTool> tools{
        {u"ffmpeg"_s, u"-version", u"version (\\S+)"_s,
         u"Without it nothing can be converted, and tracks can't be extracted."_s},
        {u"ffprobe"_s, u"-version", u"version (\\S+)"_s, u"Without it no file can be opened."_s},
        {u"mkvmerge"_s, u"--version", u"mkvmerge v(\\S+)"_s,
         u"Without it MKV files can't be written, split or joined, and no tracks can be removed."_s},
        {u"mkvextract"_s, u"--version", u"mkvextract v(\\S+)"_s,
         u"Without it picture subtitles can't be extracted."_s},
        {u"mkvinfo"_s, u"--version", u"mkvinfo v(\\S+)"_s,
         u"Without it MKV files with header-removal compression are not recognised."_s},
        {u"mp4box"_s, u"-version", u"version (\\S+)"_s, u"Without it ffmpeg joins MP4 files."_s},
        {u"mplayer"_s, u"-noconfig all", u"^MPlayer (?:UNKNOWN|(\\S+))"_s,
         u"Without it there is no preview playback."_s},
        {u"atomicparsley"_s, u"--version", u"version:?\\s*(?:(\\d\\S*)|\\()"_s,
         u"Padding can't be added to MP4 files."_s},
        {u"mediainfo"_s, u"--Version", u"v(\\d\\S*)"_s, u"Nothing needs it so far."_s},
        {u"tesseract"_s, u"--version", u"tesseract v?(\\S+)"_s, u"Nothing needs it so far."_s},
    };
    return tools;
}

QString unescaped(const QString &quoted)
{
    static const QRegularExpression escape(u"\\\\([\\\\\"$`])"_s);
    return QString(quoted).replace(escape, u"\\1"_s);
}

bool canRun(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

ToolReport::State stateOfFiles(const QString &path, const QString &program)
{
    if (!QFileInfo(path).isFile())
        return ToolReport::State::Missing;
    if (!canRun(path))
        return ToolReport::State::NotExecutable;
    return canRun(program) ? ToolReport::State::Silent : ToolReport::State::Hollow;
}

} // namespace

QString launchedProgram(const QString &launcherPath)
{
    QFile file(launcherPath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    static const QRegularExpression launcher(
        u"\\A#!/bin/sh\\nexec \"((?:[^\"\\\\]|\\\\.)*)\" \"\\$@\"\\n\\z"_s);
    const auto match = launcher.match(QString::fromUtf8(file.read(8192)));
    return match.hasMatch() ? unescaped(match.captured(1)) : QString();
}

QString describe(ToolReport::State state)
{
    switch (state) {
    case ToolReport::State::Works:
        return u"works"_s;
    case ToolReport::State::Missing:
        return u"is missing"_s;
    case ToolReport::State::NotExecutable:
        return u"is not executable"_s;
    case ToolReport::State::Hollow:
        return u"starts a program that is gone"_s;
    case ToolReport::State::Silent:
        return u"does not answer"_s;
    }
    return {};
}

ToolCheck::ToolCheck(const tools::ToolPlaces &places)
    : m_places(places)
{
}

QStringList ToolCheck::toolNames()
{
    QStringList names;
    for (const KnownTool &tool : knownTools())
        names.append(tool.name);
    return names;
}

QList<ToolReport> ToolCheck::checkAll() const
{
    QList<ToolReport> reports;
    for (const QString &name : toolNames())
        reports.append(check(name));
    return reports;
}

/// Without running it: one that could be started counts as silent.
ToolReport ToolCheck::looked(const QString &name) const
{
    ToolReport report;
    report.name = name;
    const auto known = std::find_if(knownTools().cbegin(), knownTools().cend(),
                                    [&](const KnownTool &tool) { return tool.name == name; });
    if (known == knownTools().cend())
        return report;
    report.switchesOff = known->switchesOff;
    report.location = tools::locationOf(name, m_places);
    const QString path = report.location.toLocalFile();
    const QString launched = launchedProgram(path);
    const QString program = launched.isNull() ? path : launched;
    report.state = stateOfFiles(path, program);
    if (report.state != ToolReport::State::Missing)
        report.program = program;
    return report;
}

ToolReport ToolCheck::check(const QString &name) const
{
    ToolReport report = looked(name);
    if (report.state != ToolReport::State::Silent)
        return report;
    const auto known = std::find_if(knownTools().cbegin(), knownTools().cend(),
                                    [&](const KnownTool &tool) { return tool.name == name; });
    if (const auto version = askedVersion(report.location, known->versionFlag, known->answerPattern)) {
        report.version = *version;
        report.state = ToolReport::State::Works;
    }
    return report;
}

QList<ToolReport> ToolCheck::absent() const
{
    QList<ToolReport> reports;
    for (const KnownTool &tool : knownTools()) {
        const ToolReport report = looked(tool.name);
        if (report.state != ToolReport::State::Silent && !tool.switchesOff.startsWith(u"Nothing"_s))
            reports.append(report);
    }
    return reports;
}

/// Absent when the tool does not answer as it should, null when its answer has no version.
std::optional<QString> ToolCheck::askedVersion(const QUrl &location, tools::Literal flag,
                                               const QString &pattern) const
{
    const platform::TemporaryFolder home(
        QDir::tempPath()); // mplayer writes a configuration into its home whenever it runs
    const auto line =
        tools::toolLine(location, {tools::OptionItem(flag), u"2>&1"}, m_places, tools::shellKind());
    tools::ShellRequest request = tools::toolRequest(line.launched, location, m_places);
    request.environment.insert(u"MPLAYER_HOME"_s, home.path());
    request.timeoutMs = patienceMs;
    const tools::ShellReply reply = tools::runShell(request);
    if (reply.status != 0)
        return std::nullopt;
    const QRegularExpression version(pattern, QRegularExpression::MultilineOption);
    const auto match = version.match(QString::fromUtf8(reply.output));
    return match.hasMatch() ? std::optional(match.captured(1)) : std::nullopt;
}

} // namespace prefs

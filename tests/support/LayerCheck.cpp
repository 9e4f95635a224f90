#include "support/LayerCheck.h"

#include <QDirIterator>
#include <QFile>
#include <QLibraryInfo>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace support {

namespace {

/// From the ground up. The window and the command line stand side by side and don't know each other.
QStringList modules()
{
    return {u"platform"_s, u"tools"_s,   u"media"_s,   u"prefs"_s, u"selection"_s, u"presets"_s, u"steps"_s,
            u"jobs"_s,     u"engines"_s, u"summary"_s, u"app"_s,   u"window"_s,    u"cli"_s};
}

QString moduleOf(const QString &file)
{
    return file.section(u'/', 0, 0);
}

bool mayKnow(const QString &module, const QString &other)
{
    if (module == other)
        return true;
    if (other == u"window"_s || other == u"cli"_s)
        return false;
    return modules().contains(other) && modules().indexOf(other) < modules().indexOf(module);
}

QString textOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

LayerCheck::LayerCheck(const QString &sourceFolder)
    : m_folder(sourceFolder + u'/')
    , m_qtHeaders(QLibraryInfo::path(QLibraryInfo::HeadersPath) + u'/')
{
    const QStringList patterns{u"*.h"_s, u"*.cpp"_s, u"*.mm"_s, u"CMakeLists.txt"_s};
    QStringList files;
    for (QDirIterator walk(sourceFolder, patterns, QDir::Files, QDirIterator::Subdirectories);
         walk.hasNext();)
        files.append(walk.next().mid(m_folder.size()));
    files.sort();
    for (const QString &file : files) {
        if (!file.contains(u'/'))
            continue; // the list of modules itself
        if (file.endsWith(u"CMakeLists.txt"_s))
            judgeLinks(file);
        else
            readFile(file);
    }
    for (const QString &file : files) {
        QStringList road;
        findCircles(file, road);
    }
}

void LayerCheck::readFile(const QString &file)
{
    static const QRegularExpression line(
        u"^[ \\t]*#[ \\t]*(?:include|import)[ \\t]*([<\"])([^>\"\\n]+)[>\"]"_s,
        QRegularExpression::MultilineOption);
    m_includes.insert(file, {});
    if (!modules().contains(moduleOf(file)))
        m_offences.append(file + u": stands in no module"_s);
    const QString content = textOf(m_folder + file);
    for (auto found = line.globalMatch(content); found.hasNext();) {
        const auto match = found.next();
        judge(file, match.captured(2), match.captured(1) == u"\""_s);
    }
}

void LayerCheck::judge(const QString &file, const QString &include, bool quoted)
{
    if (include.startsWith(u'Q') || include.startsWith(u'q'))
        return judgeQt(file, include);
    if (!quoted || include.endsWith(u".moc"_s))
        return;
    if (!QFile::exists(m_folder + include)) {
        m_offences.append(file +
                          u": includes \"%1\", which is not the path of a file of ours"_s.arg(include));
        return;
    }
    m_includes[file].append(include);
    if (!mayKnow(moduleOf(file), moduleOf(include)))
        m_offences.append(file + u": knows %1 above it"_s.arg(include));
}

void LayerCheck::judgeQt(const QString &file, const QString &include)
{
    const QString core = include.startsWith(u"QtCore/"_s) ? include : u"QtCore/"_s + include;
    if (moduleOf(file) != u"window"_s && !QFile::exists(m_qtHeaders + core))
        m_offences.append(file + u": takes <%1>, which is not of Qt Core"_s.arg(include));
}

void LayerCheck::judgeLinks(const QString &file)
{
    static const QRegularExpression word(u"\\b(?:Qt6?::(\\w+)|tessaray_(\\w+))"_s);
    static const QRegularExpression moduleList(
        u"tessaray_module\\(\\s*\\w+\\s+MODULES\\s+([\\w\\s]*?)\\s*(?:SOURCES|\\))"_s);
    const QString module = moduleOf(file.section(u'/', 0, -2) + u'/');
    const QString content = textOf(m_folder + file);
    QStringList linked =
        moduleList.match(content).captured(1).split(QRegularExpression(u"\\s+"_s), Qt::SkipEmptyParts);
    for (auto found = word.globalMatch(content); found.hasNext();) {
        const auto match = found.next();
        if (module != u"window"_s && !match.captured(1).isEmpty() && match.captured(1) != u"Core"_s)
            m_offences.append(file + u": links Qt %1"_s.arg(match.captured(1)));
        if (modules().contains(match.captured(2)))
            linked.append(match.captured(2));
    }
    for (const QString &other : linked) {
        if (!mayKnow(module, other))
            m_offences.append(file + u": links %1 above it"_s.arg(other));
    }
}

void LayerCheck::findCircles(const QString &file, QStringList &road)
{
    if (m_cleared.contains(file))
        return;
    if (road.contains(file)) {
        m_offences.append(file +
                          u": is in a circle with %1"_s.arg(road.mid(road.indexOf(file)).join(u", "_s)));
        return;
    }
    road.append(file);
    for (const QString &include : m_includes.value(file))
        findCircles(include, road);
    road.removeLast();
    m_cleared.append(file);
}

} // namespace support

#include "prefs/ToolsUnpacker.h"

#include "platform/FileLock.h"
#include "prefs/ToolArchives.h"
#include "tools/KXHelpers.h"
#include "tools/OptionItem.h"
#include "tools/ToolPlaces.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

bool isWhole(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable() && file.size() > 0;
}

} // namespace

ToolsUnpacker::ToolsUnpacker(const KXHelpers &runner, const tools::ToolPlaces &places)
    : m_runner(runner)
    , m_places(places)
{
}

QString ToolsUnpacker::unpack(int lockPatienceMs) const
{
    const QList<ToolArchive> archives = presentArchives();
    if (archives.isEmpty())
        return {};
    const QString folder = m_places.toolsLocation().toLocalFile();
    platform::FileLock lock(folder + u"/.unpacking.lock"_s);
    if (lock.tryLock(lockPatienceMs))
        return unpackLocked(archives);
    const bool complete = std::all_of(archives.cbegin(), archives.cend(), [this](const ToolArchive &archive) {
        return brokenTools(archive).isEmpty();
    });
    return complete ? QString() : u"The tools can't be unpacked: %1 can't be written."_s.arg(folder);
}

QString ToolsUnpacker::unpackLocked(const QList<ToolArchive> &archives) const
{
    QStringList problems;
    for (const ToolArchive &archive : archives) {
        const QString problem = unpackArchive(archive);
        if (!problem.isNull())
            problems.append(problem);
    }
    return problems.isEmpty() ? QString() : problems.join(u'\n');
}

/// "-u" takes a half-written file or one that lost its run bits for the newer one, so such an archive is
/// unpacked once more without it.
QString ToolsUnpacker::unpackArchive(const ToolArchive &archive) const
{
    QString answer = unzip(archive, u"-uoq");
    if (!brokenTools(archive).isEmpty())
        answer = unzip(archive, u"-oq");
    const QStringList broken = brokenTools(archive);
    if (broken.isEmpty())
        return {};
    const QString sentence = u"%1.zip did not give %2."_s.arg(archive.folder, broken.join(u", "_s));
    return answer.isEmpty() ? sentence : sentence + u' ' + answer;
}

QString ToolsUnpacker::unzip(const ToolArchive &archive, tools::Literal flags) const
{
    // The pattern is for unzip: bare, the shell would expand it where the working folder holds a folder
    // of that name.
    const auto pattern = tools::OptionItem::ofData(archive.folder + u"/*"_s, tools::Quoting::Single);
    return m_runner.doUnixCommandWithOptions(u"unzip",
                                             {u"-d", m_places.toolsLocation(), tools::OptionItem(flags),
                                              m_runner.urlOfApp(archive.folder + u".zip"_s), pattern});
}

QList<ToolArchive> ToolsUnpacker::presentArchives() const
{
    QList<ToolArchive> present;
    for (const ToolArchive &archive : toolArchives()) {
        if (KXHelpers::fileExistsAtURL(m_runner.urlOfApp(archive.folder + u".zip"_s)))
            present.append(archive);
    }
    return present;
}

QStringList ToolsUnpacker::brokenTools(const ToolArchive &archive) const
{
    QStringList broken;
    for (const QString &tool : archive.tools) {
        if (!isWhole(m_runner.urlOfApp(tool).toLocalFile()))
            broken.append(tool);
    }
    return broken;
}

} // namespace prefs

#include "steps/ScratchFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

/// Paths in the folder go into ffmpeg's filters as they stand, so none of these may be in them.
bool isPlain(const QString &path)
{
    return std::none_of(path.begin(), path.end(), [](QChar c) { return u"':,;\\=[]"_s.contains(c); });
}

/// The user's own choice first; else a place on disk, as the statistics of a long film take gigabytes
/// and /tmp is often kept in memory.
QStringList candidateFolders()
{
    QStringList candidates{u"/var/tmp"_s, QDir::tempPath(), u"/tmp"_s};
    if (qEnvironmentVariableIsSet("TMPDIR"))
        candidates.prepend(QDir::tempPath());
    candidates.removeDuplicates();
    return candidates;
}

QString parentFolder()
{
    for (const QString &candidate : candidateFolders()) {
        if (isPlain(candidate) && QFileInfo(candidate).isDir() && QFileInfo(candidate).isWritable())
            return candidate;
    }
    return QDir::tempPath();
}

} // namespace

QString ScratchFolder::makeJobFolder()
{
    if (!m_folder)
        m_folder = std::make_unique<platform::TemporaryFolder>(parentFolder());
    if (!m_folder->isValid())
        return {};
    const QString folder = m_folder->path() + u"/job%1/"_s.arg(++m_jobs);
    return QDir().mkpath(folder) ? folder : QString();
}

void ScratchFolder::removeJobFolder(const QString &folder)
{
    if (m_folder && !folder.isEmpty() && folder.startsWith(m_folder->path() + u"/job"_s))
        QDir(folder).removeRecursively();
}

void ScratchFolder::clearLeftOvers()
{
    for (const QString &folder : candidateFolders())
        platform::TemporaryFolder::clearLeft(folder);
}

} // namespace steps

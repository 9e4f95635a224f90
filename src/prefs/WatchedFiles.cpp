#include "prefs/WatchedFiles.h"

#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

/// The name that a split was announced under, for one of its numbered parts; else a null text.
QString splitOutputOf(const QString &path)
{
    if (!path.contains(u".split"_s))
        return {};
    static const QRegularExpression part(u"^(.*\\.split.*)-\\d+(\\.[^./]*)$"_s,
                                         QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = part.match(path);
    return match.hasMatch() ? match.captured(1) + match.captured(2) : QString();
}

/// Without links in its folder; the file itself may not be there yet.
QString canonical(const QString &path)
{
    const QFileInfo info(path);
    const QString folder = QFileInfo(info.path()).canonicalFilePath();
    return folder.isEmpty() ? info.absoluteFilePath()
                            : folder + (folder.endsWith(u'/') ? u""_s : u"/"_s) + info.fileName();
}

} // namespace

void WatchedFiles::setBase(const QStringList &paths)
{
    m_base = paths;
}

void WatchedFiles::appendToBase(const QString &path)
{
    m_base.append(path);
}

void WatchedFiles::announce(const QString &path)
{
    m_announced.insert(canonical(path));
}

bool WatchedFiles::isAnnounced(const QString &path) const
{
    if (m_announced.contains(path))
        return true;
    const QString split = splitOutputOf(path);
    return !split.isNull() && m_announced.contains(split);
}

QSet<QString> WatchedFiles::growingPaths() const
{
    QSet<QString> paths;
    for (const Growing &file : m_growing)
        paths.insert(file.path);
    return paths;
}

int WatchedFiles::refused(const QString &path, const WatchListing::State &state)
{
    Refusal &refusal = m_refusals[path];
    if (refusal.inode != state.inode)
        refusal = {0, state.inode};
    return ++refusal.count;
}

bool WatchedFiles::isGivenUp(const QString &path, const WatchListing::State &state) const
{
    const auto refusal = m_refusals.find(path);
    return refusal != m_refusals.end() && refusal->inode == state.inode && refusal->count >= mostAttempts;
}

} // namespace prefs

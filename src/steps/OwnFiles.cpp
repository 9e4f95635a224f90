#include "steps/OwnFiles.h"

#include "platform/FileIdentity.h"

using namespace Qt::StringLiterals;
using platform::placeKey;

namespace steps {

OwnFiles::OwnFiles(const ClaimOf &claimOf)
    : m_claimOf(claimOf)
{
}

void OwnFiles::setPrivateFolder(const QString &path)
{
    m_privateFolder = path.isEmpty() ? QString() : platform::canonicalKey(QUrl::fromLocalFile(path)) + u'/';
}

bool OwnFiles::isPrivate(const QUrl &name) const
{
    return !m_privateFolder.isEmpty() && placeKey(name).startsWith(m_privateFolder);
}

bool OwnFiles::isOwn(const QUrl &name) const
{
    const auto found = platform::fileAt(name);
    const QString claim = m_claimOf(name);
    const QString key = placeKey(name);
    if (!found || m_returned.contains(key) || (claim.isEmpty() && !isPrivate(name)))
        return false;
    const auto made = m_made.constFind(key);
    if (made != m_made.constEnd())
        return found->isSameAs(*made);
    return found->isPlain && (isPrivate(name) || m_begun.contains(claim));
}

QString OwnFiles::begin(const QUrl &name)
{
    if (platform::fileAt(name) && !isOwn(name))
        return u"%1 exists already, so nothing was started."_s.arg(name.toLocalFile());
    const QString claim = m_claimOf(name);
    if (!claim.isEmpty())
        m_begun.insert(claim);
    return {};
}

void OwnFiles::keep(const QUrl &name, const platform::FileId &file)
{
    m_made.insert(placeKey(name), file);
    m_returned.remove(placeKey(name));
}

bool OwnFiles::create(const QUrl &name, const QByteArray &content)
{
    if (m_claimOf(name).isEmpty() && !isPrivate(name))
        return false;
    const auto file = platform::createFile(name, content);
    if (file)
        keep(name, *file);
    return file.has_value();
}

/// The old try of the job goes; true when the name is free then.
bool OwnFiles::makeRoomAt(const QUrl &name)
{
    return !platform::fileAt(name) || remove(name);
}

bool OwnFiles::write(const QUrl &name, const QByteArray &content)
{
    return makeRoomAt(name) && create(name, content);
}

bool OwnFiles::copy(const QUrl &from, const QUrl &name)
{
    if ((m_claimOf(name).isEmpty() && !isPrivate(name)) || !makeRoomAt(name))
        return false;
    const auto file = platform::copyPlainFile(from, name);
    if (file)
        keep(name, *file);
    return file.has_value();
}

bool OwnFiles::link(const QUrl &to, const QUrl &name) const
{
    return isPrivate(name) && platform::makeLink(to, name);
}

bool OwnFiles::append(const QUrl &name, const QByteArray &bytes) const
{
    const auto made = m_made.constFind(placeKey(name));
    return made != m_made.constEnd() && isOwn(name) && platform::appendToFile(name, *made, bytes);
}

bool OwnFiles::remove(const QUrl &name)
{
    if (!isOwn(name) || !platform::removeName(name))
        return false;
    m_made.remove(placeKey(name));
    return true;
}

void OwnFiles::moveRecord(const QUrl &from, const QUrl &to)
{
    m_made.remove(placeKey(from));
    if (const auto file = platform::fileAt(to))
        keep(to, *file);
}

bool OwnFiles::rename(const QUrl &from, const QUrl &to)
{
    if (!isOwn(from) || m_claimOf(to).isEmpty() || !platform::renameToFreeName(from, to))
        return false;
    moveRecord(from, to);
    return true;
}

bool OwnFiles::renameOver(const QUrl &from, const QUrl &to)
{
    if (!isOwn(from) || !isOwn(to) || !platform::renameOver(from, to))
        return false;
    moveRecord(from, to);
    return true;
}

bool OwnFiles::setAside(const QUrl &place, const QUrl &aside)
{
    if (m_claimOf(place).isEmpty() || m_claimOf(aside).isEmpty() || !platform::renameToFreeName(place, aside))
        return false;
    moveRecord(place, aside);
    return true;
}

bool OwnFiles::giveBack(const QUrl &aside, const QUrl &place)
{
    if (!isOwn(aside) || !platform::renameToFreeName(aside, place))
        return false;
    m_made.remove(placeKey(aside));
    m_made.remove(placeKey(place));
    m_returned.insert(placeKey(place));
    return true;
}

void OwnFiles::clear()
{
    m_made.clear();
    m_begun.clear();
    m_returned.clear();
}

} // namespace steps

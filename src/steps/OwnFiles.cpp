#include "steps/OwnFiles.h"

#include "platform/FileIdentity.h"
#include "platform/PlainFiles.h"

namespace steps {

namespace {

bool isPlainFileAt(const QUrl &place)
{
    const auto found = platform::fileAt(place);
    return found && found->isPlain;
}

} // namespace

OwnFiles::OwnFiles(const PlaceOf &placeOf, const PlaceOf &madePlaceOf)
    : m_placeOf(placeOf)
    , m_madePlaceOf(madePlaceOf)
{
}

void OwnFiles::setPrivateFolder(const QString &path)
{
    m_privateFolder =
        path.isEmpty() ? QString() : platform::canonicalKey(QUrl::fromLocalFile(path)) + QChar(u'/');
}

bool OwnFiles::isPrivate(const QUrl &name) const
{
    return !m_privateFolder.isEmpty() && platform::placeKey(name).startsWith(m_privateFolder);
}

QUrl OwnFiles::placeOf(const QUrl &name) const
{
    return isPrivate(name) ? name : m_placeOf(name);
}

QUrl OwnFiles::madePlaceOf(const QUrl &name)
{
    return isPrivate(name) ? name : m_madePlaceOf(name);
}

bool OwnFiles::isOwn(const QUrl &name) const
{
    const QUrl place = placeOf(name);
    return !place.isEmpty() && isPlainFileAt(place);
}

bool OwnFiles::create(const QUrl &name, const QByteArray &content)
{
    const QUrl place = madePlaceOf(name);
    return !place.isEmpty() && platform::createFile(place, content);
}

bool OwnFiles::write(const QUrl &name, const QByteArray &content)
{
    const QUrl place = madePlaceOf(name);
    return !place.isEmpty() && platform::replacePlainFile(place, content);
}

bool OwnFiles::copy(const QUrl &from, const QUrl &name)
{
    const QUrl own = placeOf(from);
    remove(name);
    const QUrl place = madePlaceOf(name);
    return !place.isEmpty() && platform::copyPlainFile(own.isEmpty() ? from : own, place);
}

bool OwnFiles::link(const QUrl &to, const QUrl &name)
{
    const QUrl place = madePlaceOf(name);
    return !place.isEmpty() && platform::makeLink(to, place);
}

bool OwnFiles::append(const QUrl &name, const QByteArray &bytes) const
{
    const QUrl place = placeOf(name);
    const auto found = place.isEmpty() ? std::nullopt : platform::fileAt(place);
    return found && platform::appendToFile(place, *found, bytes);
}

bool OwnFiles::remove(const QUrl &name)
{
    return isOwn(name) && platform::removeName(placeOf(name));
}

bool OwnFiles::renameOver(const QUrl &from, const QUrl &to)
{
    const QUrl place = madePlaceOf(to);
    return isOwn(from) && !place.isEmpty() && platform::renameOver(placeOf(from), place);
}

} // namespace steps

#include "steps/OutputRegistry.h"

#include "platform/FileIdentity.h"

namespace steps {

void OutputRegistry::add(const void *owner, const QUrl &location)
{
    m_names[owner].insert(platform::canonicalKey(location));
}

void OutputRegistry::release(const void *owner)
{
    m_names.remove(owner);
}

bool OutputRegistry::isTaken(const QUrl &location, const void *exceptOwner) const
{
    const QString key = platform::canonicalKey(location);
    for (auto names = m_names.cbegin(); names != m_names.cend(); ++names) {
        if (names.key() != exceptOwner && names->contains(key))
            return true;
    }
    return false;
}

} // namespace steps

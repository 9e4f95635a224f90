#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QUrl>

namespace steps {

/// Every file name that is spoken for: the outputs and inputs of the jobs in the queue and the open
/// files. One per program. Owners are told apart by address and release their names when they end.
class OutputRegistry final
{
public:
    void add(const void *owner, const QUrl &location);
    void release(const void *owner);
    /// True when somebody else has spoken for that name.
    bool isTaken(const QUrl &location, const void *exceptOwner) const;

private:
    QHash<const void *, QSet<QString>> m_names;
};

} // namespace steps

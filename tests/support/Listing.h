#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace support {

/// Every path under a folder with its size and a sum of its content; links are told by their targets.
/// Folders in it can be left out by their names.
class Listing final
{
public:
    explicit Listing(const QString &folder, const QStringList &without = {});
    /// "new X", "changed X" and "gone X" of the later listing against this one, sorted.
    QStringList changesTo(const Listing &later) const;

private:
    QHash<QString, QString> m_entries;
};

} // namespace support

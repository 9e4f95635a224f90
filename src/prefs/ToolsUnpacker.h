#pragma once

#include "tools/Literal.h"

#include <QString>
#include <QStringList>

class KXHelpers;

namespace tools {
class ToolPlaces;
}

namespace prefs {

struct ToolArchive;

/// Unpacks the tool archives into the tools folder, at every start: an archive is only read again when
/// it is newer than what was unpacked, or when one of its tools is not whole. Programs and tests may
/// start together, so it works under a lock in that folder. It never says what a missing tool means.
class ToolsUnpacker final
{
public:
    /// Both must outlive it.
    ToolsUnpacker(const KXHelpers &runner, const tools::ToolPlaces &places);

    /// Answers a null text, or a sentence for the user when a tool is still not there. Without
    /// archives, and in a complete folder that can't be written, nothing is run. Another program that unpacks
    /// at the same time is waited for.
    QString unpack(int lockPatienceMs = 30000) const;

private:
    QString unpackLocked(const QList<ToolArchive> &archives) const;
    QString unpackArchive(const ToolArchive &archive) const;
    QString unzip(const ToolArchive &archive, tools::Literal flags) const;
    QList<ToolArchive> presentArchives() const;
    QStringList brokenTools(const ToolArchive &archive) const;

    const KXHelpers &m_runner;
    const tools::ToolPlaces &m_places;
};

} // namespace prefs

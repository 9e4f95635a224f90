#pragma once

#include "support/Scratch.h"
#include "support/TestPlaces.h"

namespace support {

/// The installed tools, working in the test's own folder: a name that the shell took for a command would
/// leave its traces there.
class WatchedPlaces final : public tools::ToolPlaces
{
public:
    explicit WatchedPlaces(const Scratch &scratch)
        : m_folder(scratch.path())
    {
    }
    QUrl toolsLocation() const override { return m_tools.toolsLocation(); }
    QUrl resourcesLocation() const override { return m_tools.resourcesLocation(); }
    QString workingFolder() const override { return m_folder; }

private:
    TestPlaces m_tools;
    QString m_folder;
};

} // namespace support

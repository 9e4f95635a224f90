#pragma once

#include "tools/ToolPlaces.h"

namespace support {

/// The tools of this machine in the layout of a tools folder: two-line launchers that exec the installed
/// programs. Made once per build tree and shared by tests that run at the same time; the resources
/// (fonts) lie in the same folder. Fails the test at once when a tool is not installed.
class TestPlaces final : public tools::ToolPlaces
{
public:
    TestPlaces();
    QUrl toolsLocation() const override;
    QUrl resourcesLocation() const override { return toolsLocation(); }
    QString workingFolder() const override;
};

} // namespace support

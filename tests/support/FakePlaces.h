#pragma once

#include "tools/ToolPlaces.h"

namespace support {

/// A tools folder, a resource folder and a working folder of a test's own, all made below one folder.
class FakePlaces final : public tools::ToolPlaces
{
public:
    explicit FakePlaces(const QString &folder);
    QUrl toolsLocation() const override;
    QUrl resourcesLocation() const override;
    QString workingFolder() const override { return m_folder; }

private:
    QString m_folder;
};

} // namespace support

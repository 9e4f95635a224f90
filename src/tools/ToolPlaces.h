#pragma once

#include <QUrl>

namespace tools {

/// Where the programs we run and our own resources are. Implemented by the preferences, handed to
/// everything that runs a tool.
class ToolPlaces
{
public:
    virtual ~ToolPlaces() = default;
    /// The folder that holds "ffmpeg", "mkvtoolnix", ... as unpacked from the tool archives.
    virtual QUrl toolsLocation() const = 0;
    /// The application's resource folder: fonts, tool archives, single tools.
    virtual QUrl resourcesLocation() const = 0;
    /// The folder that contains the application; tools run in it.
    virtual QString workingFolder() const = 0;
    /// Whether films are opened whatever their codecs are called.
    virtual bool takesNewerCodecs() const { return false; }
};

/// Where a tool or an archive of tools is, by its name; no check that it is there.
QUrl locationOf(const QString &name, const ToolPlaces &places);

} // namespace tools

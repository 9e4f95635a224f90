#include "tools/ToolPlaces.h"

using namespace Qt::StringLiterals;

namespace tools {

namespace {

QUrl below(const QUrl &folder, const QString &path)
{
    return QUrl::fromLocalFile(folder.toLocalFile() + u'/' + path);
}

} // namespace

QUrl locationOf(const QString &name, const ToolPlaces &places)
{
    const QString lower = name.toLower();
    if (lower.endsWith(u"zip"_s))
        return below(places.resourcesLocation(), lower);
    if (lower.startsWith(u"mkv"_s))
        return below(places.toolsLocation(), u"mkvtoolnix/"_s + lower);
    if (name == u"mp4box"_s || name == u"mplayer"_s || name == u"tesseract"_s)
        return below(places.toolsLocation(), name + u'/' + name);
    if (name == u"ffmpeg"_s || name == u"ffprobe"_s)
        return below(places.toolsLocation(), u"ffmpeg/"_s + name);
    return below(places.resourcesLocation(), lower);
}

} // namespace tools

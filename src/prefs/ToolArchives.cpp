#include "prefs/ToolArchives.h"

using namespace Qt::StringLiterals;

namespace prefs {

const QList<ToolArchive> &toolArchives()
{
    static const QList<ToolArchive> archives{
        {u"ffmpeg"_s, {u"ffmpeg"_s, u"ffprobe"_s}},
        {u"mkvtoolnix"_s, {u"mkvmerge"_s, u"mkvextract"_s, u"mkvinfo"_s}},
        {u"mp4box"_s, {u"mp4box"_s}},
        {u"mplayer"_s, {u"mplayer"_s}},
    };
    return archives;
}

} // namespace prefs

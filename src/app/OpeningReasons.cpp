#include "app/OpeningReasons.h"

#include "media/FileNames.h"
#include "media/Playlists.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace app {

QString reasonNotToOpen(const QUrl &file, const QString &problemCodec)
{
    const QFileInfo info(file.toLocalFile());
    if (!info.exists())
        return u"it is not there"_s;
    if (info.isDir())
        return u"it is a folder"_s;
    if (!media::isRegularFile(file))
        return u"it is no ordinary file"_s;
    if (!info.isReadable())
        return u"no permission to read it"_s;
    if (media::namesOtherFiles(file))
        return u"it only lists other files"_s;
    return problemCodec.isEmpty() ? u"it is not a film"_s
                                  : u"its codec %1 is one of the newer ones"_s.arg(problemCodec);
}

} // namespace app

#include "app/FileInfoWriter.h"

#include "media/FileNames.h"
#include "media/Playlists.h"
#include "platform/PlainFiles.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"
#include "tools/OptionItem.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace app {

FileInfoWriter::FileInfoWriter(const KXPreferences &preferences)
    : KXHelpers(&preferences)
    , m_preferences(preferences)
{
}

QUrl FileInfoWriter::infoFileFor(const QUrl &file) const
{
    const QFileInfo info(file.toLocalFile());
    const QDir folder(prefs::SaveFolder(m_preferences).forSource(file).toLocalFile());
    return QUrl::fromLocalFile(folder.filePath(info.fileName()) + u".info.txt"_s);
}

QString FileInfoWriter::write(const QList<QUrl> &files) const
{
    QStringList failed;
    for (const QUrl &file : files) {
        const bool mayBeRead = media::isRegularFile(file) && !media::namesOtherFiles(file);
        const QString output =
            mayBeRead ? doShellScriptForWithOptions(urlOfApp(u"ffprobe"_s),
                                                    {u"-i", file, u"-show_streams -print_format json"})
                      : QString();
        if (!mayBeRead || !platform::replacePlainFile(infoFileFor(file), output.toUtf8()))
            failed.append(infoFileFor(file).toLocalFile());
    }
    return failed.isEmpty() ? QString() : tr("Not written: %1").arg(failed.join(u", "_s));
}

} // namespace app

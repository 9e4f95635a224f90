#include "prefs/SaveFolder.h"

#include "prefs/KXPreferences.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

bool isWritableFolder(const QUrl &folder)
{
    const QFileInfo info(folder.toLocalFile());
    return info.isDir() && info.isWritable();
}

} // namespace

SaveFolder::SaveFolder(const KXPreferences &preferences)
    : SaveFolder(preferences.saveDirectoryURL())
{
}

SaveFolder::SaveFolder(const QUrl &chosen)
    : m_chosen(chosen)
{
}

QUrl SaveFolder::forSource(const QUrl &source) const
{
    return m_chosen.toLocalFile().isEmpty()
               ? QUrl::fromLocalFile(QFileInfo(source.toLocalFile()).absolutePath())
               : m_chosen;
}

QString SaveFolder::refusal() const
{
    const QString path = m_chosen.toLocalFile();
    if (path.isEmpty() || isWritableFolder(m_chosen))
        return {};
    return QFileInfo(path).isDir() ? u"The save folder %1 can't be written to."_s.arg(path)
                                   : u"The save folder %1 does not exist."_s.arg(path);
}

bool SaveFolder::takesResultsOf(const QUrl &source) const
{
    return isWritableFolder(forSource(source));
}

QString SaveFolder::notWritable()
{
    // "permision" is meant.
    return u"The application does not have permision to write to the save folder for this job."_s;
}

QString SaveFolder::notWritableAdvice()
{
    return u"Either move the file, change the save location, or edit the permissions for the output folder."_s;
}

} // namespace prefs

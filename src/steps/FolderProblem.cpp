#include "steps/FolderProblem.h"

#include "platform/FolderTrial.h"

#include <QFileInfo>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

int errorBeside(const QUrl &output)
{
    return platform::errorOfWritingIn(QUrl::fromLocalFile(QFileInfo(output.toLocalFile()).absolutePath()));
}

} // namespace

QString problemWithFolderOf(const QUrl &output)
{
    switch (errorBeside(output)) {
    case 0:
        return {};
    case ENOENT:
    case ENOTDIR:
        return u"its folder is not there"_s;
    case EACCES:
    case EPERM:
        return u"its folder can't be written to"_s;
    case EROFS:
        return u"its volume is read-only"_s;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return u"there is no room left"_s;
    default:
        return u"no file can be made in its folder"_s;
    }
}

QString sentenceThatItCantBeMade(const QUrl &output, const QString &reason)
{
    return u"The output %1 can't be made: %2."_s.arg(output.toLocalFile(), reason);
}

} // namespace steps

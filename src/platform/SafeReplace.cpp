#include "platform/SafeReplace.h"

#include "platform/PlainFiles.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

QString lastError(const QString &otherwise)
{
    return errno != 0 ? qt_error_string(errno) : otherwise;
}

QString problemOfTarget(const QUrl &target)
{
    const auto standing = fileAt(target);
    if (!standing)
        return {};
    if (!standing->isPlain)
        return u"it is no ordinary file"_s;
    return QFileInfo(target.toLocalFile()).isWritable() ? QString() : u"it may not be written to"_s;
}

QString writeWhole(const QUrl &beside, const QByteArray &content)
{
    if (const auto left = fileAt(beside); left && left->isPlain)
        removeName(beside);
    errno = 0;
    if (!createFile(beside, content))
        return lastError(u"the file could not be made"_s);
    if (QFileInfo(beside.toLocalFile()).size() != content.size())
        return lastError(u"there is no room left"_s);
    return flushToDisk(beside) ? QString() : lastError(u"it could not be brought to the disk"_s);
}

QString giveName(const QUrl &beside, const QUrl &target)
{
    const bool stands = fileAt(target).has_value();
    if (stands)
        QFile::setPermissions(beside.toLocalFile(), QFile::permissions(target.toLocalFile()));
    errno = 0;
    const bool done = stands ? renameOver(beside, target) : renameToFreeName(beside, target);
    return done ? QString() : lastError(u"it could not be renamed"_s);
}

} // namespace

QString besideOf(const QString &path)
{
    const QFileInfo info(path);
    return info.absolutePath() + u"/."_s + info.fileName() + u".tessaray-new"_s;
}

QString replaceSafely(const QString &path, const QByteArray &content)
{
    const QUrl target = QUrl::fromLocalFile(path);
    const QUrl beside = QUrl::fromLocalFile(besideOf(path));
    QString problem = problemOfTarget(target);
    if (!problem.isNull())
        return problem;
    problem = writeWhole(beside, content);
    if (problem.isNull())
        problem = giveName(beside, target);
    if (problem.isNull())
        flushFolder(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
    else if (const auto left = fileAt(beside); left && left->isPlain)
        removeName(beside);
    return problem;
}

} // namespace platform

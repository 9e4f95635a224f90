#include "platform/FolderTrial.h"

#include <QByteArray>
#include <QFile>
#include <QUuid>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr qsizetype bytesOfTrial = 4096; // a whole block: less may fit into one that is there
constexpr mode_t modeOfTrial = 0600;

int errorOfWriting(int file)
{
    const QByteArray bytes(bytesOfTrial, 'x');
    const ssize_t count = ::write(file, bytes.constData(), static_cast<size_t>(bytes.size()));
    if (count < 0)
        return errno;
    return count < bytes.size() ? ENOSPC : 0;
}

} // namespace

int errorOfWritingIn(const QUrl &folder)
{
    const QString name = u"/.tessaray-"_s + QUuid::createUuid().toString(QUuid::Id128);
    const QByteArray path = QFile::encodeName(folder.toLocalFile() + name);
    const int file =
        ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, modeOfTrial);
    if (file < 0)
        return errno;
    const int error = errorOfWriting(file);
    ::close(file);
    ::unlink(path.constData());
    return error;
}

} // namespace platform

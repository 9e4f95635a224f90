#include "platform/PlainFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr mode_t usualMode = 0666;
constexpr qsizetype copiedAtOnce = 1 << 16;

QByteArray pathOf(const QUrl &location)
{
    return QFile::encodeName(location.toLocalFile());
}

FileId idOf(const struct stat &status)
{
    return {static_cast<quint64>(status.st_dev), static_cast<quint64>(status.st_ino),
            S_ISREG(status.st_mode)};
}

/// An open file, closed with the object.
class OpenPlainFile final
{
public:
    OpenPlainFile(const QByteArray &path, int flags)
        : m_number(::open(path.constData(), flags | O_CLOEXEC | O_NONBLOCK, usualMode))
    {
    }
    ~OpenPlainFile()
    {
        if (isOpen())
            ::close(m_number);
    }
    Q_DISABLE_COPY_MOVE(OpenPlainFile)

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }
    std::optional<FileId> file() const
    {
        struct stat status = {};
        return isOpen() && ::fstat(m_number, &status) == 0 ? std::optional(idOf(status)) : std::nullopt;
    }
    bool write(const QByteArray &bytes) const
    {
        for (qsizetype done = 0; done < bytes.size();) {
            const ssize_t count =
                ::write(m_number, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
            if (count < 0 && errno != EINTR)
                return false;
            done += count > 0 ? count : 0;
        }
        return true;
    }
    /// The next bytes; empty at the end, nothing when they can't be read.
    std::optional<QByteArray> read() const
    {
        QByteArray bytes(copiedAtOnce, Qt::Uninitialized);
        const ssize_t count = ::read(m_number, bytes.data(), static_cast<size_t>(bytes.size()));
        return count < 0 ? std::nullopt : std::optional(bytes.first(count));
    }

private:
    int m_number;
};

constexpr int anew = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;

bool copyAll(const OpenPlainFile &from, const OpenPlainFile &to)
{
    for (;;) {
        const auto bytes = from.read();
        if (!bytes || bytes->isEmpty())
            return bytes.has_value();
        if (!to.write(*bytes))
            return false;
    }
}

QUrl hiddenNeighbourOf(const QUrl &location)
{
    const QString folder = QFileInfo(location.toLocalFile()).absolutePath();
    return QUrl::fromLocalFile(folder + u"/.tessaray-"_s + QUuid::createUuid().toString(QUuid::Id128));
}

enum class Renamed { Yes, No, NotKnownHere };

/// In one step, where the volume can do that.
Renamed renamedAtOnce(const QByteArray &from, const QByteArray &to)
{
#if defined(Q_OS_MACOS)
    const bool done = ::renamex_np(from.constData(), to.constData(), RENAME_EXCL) == 0;
#elif defined(RENAME_NOREPLACE)
    const bool done =
        ::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0;
#else
    const bool done = false;
    errno = ENOSYS;
#endif
    if (done)
        return Renamed::Yes;
    const bool isUnknown = errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
    return isUnknown ? Renamed::NotKnownHere : Renamed::No;
}

/// A volume without hard links: an empty file holds the name meanwhile.
bool renamedOverPlaceholder(const QUrl &from, const QUrl &to)
{
    if (!createFile(to, {}))
        return false;
    return renameOver(from, to) || (removeName(to) && false);
}

} // namespace

std::optional<FileId> fileAt(const QUrl &location)
{
    struct stat status = {};
    if (location.toLocalFile().isEmpty() || ::lstat(pathOf(location).constData(), &status) != 0)
        return std::nullopt;
    return idOf(status);
}

std::optional<FileId> createFile(const QUrl &location, const QByteArray &content)
{
    const OpenPlainFile file(pathOf(location), anew);
    if (!file.isOpen() || file.write(content))
        return file.file();
    removeName(location); // half of it says something else
    return std::nullopt;
}

bool appendToFile(const QUrl &location, const FileId &file, const QByteArray &bytes)
{
    const OpenPlainFile open(pathOf(location), O_WRONLY | O_APPEND | O_NOFOLLOW);
    const auto found = open.file();
    return found && found->isPlain && found->isSameAs(file) && open.write(bytes);
}

bool replacePlainFile(const QUrl &location, const QByteArray &content)
{
    struct stat old = {};
    const bool stands = ::lstat(pathOf(location).constData(), &old) == 0;
    if (stands && !S_ISREG(old.st_mode))
        return false;
    const QUrl beside = hiddenNeighbourOf(location);
    const OpenPlainFile file(pathOf(beside), anew);
    if (!file.isOpen())
        return false;
    const bool isWhole = file.write(content) && (!stands || ::fchmod(file.number(), old.st_mode) == 0);
    if (isWhole && (stands ? renameOver(beside, location) : renameToFreeName(beside, location)))
        return true;
    removeName(beside);
    return false;
}

std::optional<FileId> copyPlainFile(const QUrl &from, const QUrl &to)
{
    const OpenPlainFile source(pathOf(from), O_RDONLY);
    const auto found = source.file();
    if (!found || !found->isPlain)
        return std::nullopt;
    const OpenPlainFile target(pathOf(to), anew);
    if (!target.isOpen())
        return std::nullopt;
    if (copyAll(source, target))
        return target.file();
    removeName(to);
    return std::nullopt;
}

bool makeLink(const QUrl &to, const QUrl &name)
{
    return ::symlink(pathOf(to).constData(), pathOf(name).constData()) == 0;
}

bool renameToFreeName(const QUrl &from, const QUrl &to)
{
    const QByteArray source = pathOf(from);
    const QByteArray target = pathOf(to);
    const Renamed atOnce = renamedAtOnce(source, target);
    if (atOnce != Renamed::NotKnownHere)
        return atOnce == Renamed::Yes;
    if (::link(source.constData(), target.constData()) == 0)
        return ::unlink(source.constData()) == 0;
    return errno != EEXIST && renamedOverPlaceholder(from, to);
}

bool renameOver(const QUrl &from, const QUrl &to)
{
    return std::rename(pathOf(from).constData(), pathOf(to).constData()) == 0;
}

bool removeName(const QUrl &location)
{
    return ::unlink(pathOf(location).constData()) == 0;
}

bool makePrivateFolder(const QUrl &location)
{
    return ::mkdir(pathOf(location).constData(), S_IRWXU) == 0;
}

void removeFolder(const QUrl &location, const QString &last)
{
    const auto found = fileAt(location);
    const QFileInfo info(location.toLocalFile());
    if (!found || !info.isDir() || info.isSymLink())
        return;
    QDir folder(location.toLocalFile());
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const QFileInfo &entry : folder.entryInfoList(all)) {
        if (entry.fileName() == last)
            continue;
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            removeName(QUrl::fromLocalFile(entry.filePath()));
    }
    folder.removeRecursively();
}

bool removeEmptyFolder(const QUrl &location)
{
    return ::rmdir(pathOf(location).constData()) == 0;
}

bool flushToDisk(const QUrl &location)
{
    const OpenPlainFile file(pathOf(location), O_RDONLY | O_NOFOLLOW);
    if (!file.isOpen())
        return false;
#if defined(Q_OS_MACOS)
    if (::fcntl(file.number(), F_FULLFSYNC) == 0)
        return true;
#endif
    return ::fsync(file.number()) == 0;
}

void flushFolder(const QUrl &location)
{
    const OpenPlainFile folder(pathOf(location), O_RDONLY | O_DIRECTORY);
    if (folder.isOpen())
        ::fsync(folder.number());
}

qsizetype longestNameIn(const QString &folder)
{
    constexpr qsizetype usual = 255;
    const long most = ::pathconf(QFile::encodeName(folder).constData(), _PC_NAME_MAX);
    return most > 0 ? static_cast<qsizetype>(most) : usual;
}

bool isTooLongName(const QUrl &location)
{
    const QFileInfo info(location.toLocalFile());
    return QFile::encodeName(info.fileName()).size() > longestNameIn(info.absolutePath());
}

} // namespace platform

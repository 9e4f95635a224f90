#include "platform/OrdinaryFile.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

#ifdef Q_OS_MACOS
#include <sys/mount.h>
#include <sys/param.h>
#else
#include <sys/vfs.h>
#endif

using namespace Qt::StringLiterals;

namespace platform {

namespace {

#ifdef Q_OS_MACOS
bool keepsFiles(const struct statfs &volume)
{
    const QByteArrayView name(volume.f_fstypename);
    return name != "devfs" && name != "fdesc" && name != "procfs";
}
#else
/// File systems in which the kernel shows itself, by the numbers of linux/magic.h; some of them are younger
/// than that header here.
constexpr quint32 selfPortraits[] = {
    0x9fa0,     // proc
    0x62656572, // sysfs
    0x27e0eb,   // cgroup
    0x63677270, // cgroup2
    0x64626720, // debugfs
    0x74726163, // tracefs
    0x73636673, // securityfs
    0x6165676c, // pstore
    0x62656570, // configfs
    0xcafe4a11, // bpf
    0xde5e81e4, // efivarfs
    0x42494e4d, // binfmt_misc
    0x65735543, // fusectl
    0x7655821,  // resctrl
    0x1cd1,     // devpts
    0x19800202, // mqueue
    0x6e736673, // nsfs
    0x9fa2,     // usbdevfs
    0xf97cff8c, // selinuxfs
    0x43415d53, // smackfs
    0x5a3c69f0, // apparmorfs
    0xabba1974, // xenfs
};

bool keepsFiles(const struct statfs &volume)
{
    const auto kind = static_cast<quint32>(volume.f_type);
    return std::find(std::begin(selfPortraits), std::end(selfPortraits), kind) == std::end(selfPortraits);
}
#endif

bool isOrdinary(const struct stat &status, const struct statfs &volume)
{
    return S_ISREG(status.st_mode) && keepsFiles(volume);
}

QString tooLarge(qint64 mostBytes)
{
    return u"it is too large, with more than %1 MB"_s.arg(mostBytes / (1024 * 1024));
}

const QString notOrdinary = u"it is no ordinary file"_s;

/// Closes itself.
class Descriptor final
{
public:
    /// Without blocking: a plain open of a pipe waits for a writer.
    explicit Descriptor(const QString &path)
        : m_number(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC))
    {
    }
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)
    int get() const { return m_number; }

private:
    int m_number;
};

/// Also of a file that grows meanwhile no more than that is read.
QString readAll(int descriptor, qint64 mostBytes, QByteArray &bytes)
{
    char chunk[65536];
    for (;;) {
        const auto count = ::read(descriptor, chunk, sizeof(chunk));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return qt_error_string(errno);
        if (count == 0)
            return {};
        if (bytes.size() + count > mostBytes)
            return tooLarge(mostBytes);
        bytes.append(chunk, count);
    }
}

} // namespace

bool isOrdinaryFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    struct statfs volume = {};
    return !name.isEmpty() && ::stat(name.constData(), &status) == 0 &&
           ::statfs(name.constData(), &volume) == 0 && isOrdinary(status, volume);
}

WholeFile readWhole(const QString &path, qint64 mostBytes)
{
    // A look before the file is opened: to open a device can already do something.
    WholeFile whole{{}, problemOfWholeFile(path, mostBytes)};
    if (!whole.problem.isNull())
        return whole;
    const Descriptor file(path);
    struct stat status = {};
    struct statfs volume = {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || ::fstatfs(file.get(), &volume) != 0)
        whole.problem = qt_error_string(errno);
    else if (!isOrdinary(status, volume))
        whole.problem = notOrdinary;
    else
        whole.problem = readAll(file.get(), mostBytes, whole.bytes);
    if (!whole.problem.isNull())
        whole.bytes.clear();
    return whole;
}

QString problemOfWholeFile(const QString &path, qint64 mostBytes)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    if (!isOrdinaryFile(path))
        return notOrdinary;
    return status.st_size > mostBytes ? tooLarge(mostBytes) : QString();
}

QByteArray readPart(const QString &path, qint64 from, qint64 mostBytes)
{
    if (!isOrdinaryFile(path))
        return {};
    const Descriptor file(path);
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || from >= status.st_size)
        return {};
    QByteArray bytes(std::min<qint64>(mostBytes, status.st_size - from), '\0');
    const auto count = ::pread(file.get(), bytes.data(), static_cast<std::size_t>(bytes.size()), from);
    return count > 0 ? bytes.first(count) : QByteArray();
}

} // namespace platform

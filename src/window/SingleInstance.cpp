#include "window/SingleInstance.h"

#include <QCryptographicHash>
#include <QFile>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int patience = 2000; // milliseconds
constexpr char taken = '1';
constexpr int callersAtOnce = 8;
constexpr int longestCall = 5000; // milliseconds; the caller gives up before
#ifdef MSG_NOSIGNAL
constexpr int quietly = MSG_NOSIGNAL;
#else
constexpr int quietly = 0;
#endif

/// Never waits for long, and closes its socket.
class Socket final
{
public:
    Socket()
        : m_descriptor(::socket(AF_UNIX, SOCK_STREAM, 0))
    {
        ::fcntl(m_descriptor, F_SETFD, FD_CLOEXEC); // a tool must not keep it open
        const timeval limit{patience / 1000, 0};
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
#ifdef SO_NOSIGPIPE
        const int yes = 1;
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof(yes));
#endif
    }
    ~Socket()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Q_DISABLE_COPY_MOVE(Socket)
    int get() const
    {
        return m_descriptor;
    }
    int release()
    {
        return std::exchange(m_descriptor, -1);
    }

private:
    int m_descriptor;
};

/// False when the path is longer than a socket's may be.
bool addressOf(const QByteArray &path, sockaddr_un &address)
{
    address = {};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || static_cast<std::size_t>(path.size()) >= sizeof(address.sun_path))
        return false;
    std::copy(path.cbegin(), path.cend(), address.sun_path);
    return true;
}

bool at(const QByteArray &path, const Socket &socket, int (*act)(int, const sockaddr *, socklen_t))
{
    sockaddr_un address{};
    return addressOf(path, address) &&
           act(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0; // NOLINT
}

/// 0 when nothing is there.
quint64 inodeOf(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 ? quint64(status.st_ino) : 0;
}

bool sendAll(int descriptor, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const auto sent = ::send(descriptor, bytes.constData() + done,
                                 static_cast<std::size_t>(bytes.size() - done), quietly);
        if (sent <= 0)
            return false;
        done += sent;
    }
    return true;
}

bool answered(int descriptor)
{
    pollfd waiting{descriptor, POLLIN, 0};
    char answer = 0;
    return ::poll(&waiting, 1, patience) == 1 && ::recv(descriptor, &answer, 1, 0) == 1 && answer == taken;
}

} // namespace

SingleInstance::SingleInstance(const QString &key)
{
    const QByteArray hash =
        QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (!folder.isEmpty()) // no other user may write there
        m_path = QFile::encodeName(folder) + "/tessaray-" + hash;
}

SingleInstance::~SingleInstance()
{
    const QList<int> callers = m_callers.keys();
    for (const int caller : callers)
        dismiss(caller);
    if (m_socket < 0)
        return;
    m_notifier.reset();
    if (inodeOf(m_path) == m_inode)
        ::unlink(m_path.constData());
    ::close(m_socket);
}

bool SingleInstance::handOver(const QStringList &paths) const
{
    const Socket socket;
    if (!at(m_path, socket, ::connect))
        return false;
    // The other one answers with a byte when it has read them.
    return sendAll(socket.get(), handOverMessage(paths)) && answered(socket.get());
}

bool SingleInstance::listen()
{
    Socket socket;
    if (!at(m_path, socket, ::bind)) {
        ::unlink(m_path.constData()); // left by a program that crashed: it did not answer
        if (!at(m_path, socket, ::bind))
            return false;
    }
    if (::listen(socket.get(), callersAtOnce) != 0)
        return false;
    m_socket = socket.release();
    ::fcntl(m_socket, F_SETFL, O_NONBLOCK); // who called may be gone before it is let in
    m_inode = inodeOf(m_path);
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { take(); });
    return true;
}

void SingleInstance::take()
{
    const int descriptor = ::accept(m_socket, nullptr, nullptr);
    if (descriptor < 0)
        return;
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    if (m_callers.size() >= callersAtOnce)
        dismiss(quietest());
    const auto caller = std::make_shared<Caller>();
    caller->sinceWord.start();
    caller->timeLeft.setSingleShot(true);
    connect(&caller->timeLeft, &QTimer::timeout, this, [this, descriptor] { dismiss(descriptor); });
    caller->timeLeft.start(longestCall);
    caller->notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(caller->notifier.get(), &QSocketNotifier::activated, this,
            [this, descriptor] { read(descriptor); });
    m_callers.insert(descriptor, caller);
}

void SingleInstance::read(int caller)
{
    char chunk[65536];
    const auto count = ::recv(caller, chunk, sizeof(chunk), MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return dismiss(caller); // gone before it had said all
    const auto known = m_callers.value(caller);
    known->sinceWord.start();
    known->message.take(QByteArrayView(chunk, count));
    if (known->message.isRefused())
        return dismiss(caller);
    if (!known->message.isComplete())
        return; // more is to come
    sendAll(caller, QByteArray(1, taken));
    dismiss(caller);
    Q_EMIT filesHandedOver(known->message.paths());
}

/// The caller that has been silent for the longest time is dropped: a program that starts sends all at once.
int SingleInstance::quietest() const
{
    auto found = m_callers.cbegin();
    for (auto caller = found; caller != m_callers.cend(); ++caller) {
        if (caller.value()->sinceWord.elapsed() > found.value()->sinceWord.elapsed())
            found = caller;
    }
    return found.key();
}

void SingleInstance::dismiss(int caller)
{
    const auto known = m_callers.take(caller);
    known->timeLeft.stop();
    known->notifier->setEnabled(false);
    known->notifier.release()->deleteLater(); // it may be the one that called us
    ::close(caller);
}

} // namespace window

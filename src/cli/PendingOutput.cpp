#include "cli/PendingOutput.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace cli {

namespace {

// A pipe that has room takes so much at once (POSIX calls it PIPE_BUF), so that a write never waits.
constexpr qsizetype atOnce = 4096;
constexpr qsizetype mostWritten = 1024 * 1024; // is cut off once it is that much
constexpr int lookAgainMs = 50;

} // namespace

PendingOutput::PendingOutput(int descriptor)
    : m_descriptor(descriptor)
{
}

PendingOutput::~PendingOutput() = default;

void PendingOutput::add(const QByteArray &bytes, WhenBehind whenBehind)
{
    if (m_error != 0)
        return;
    writeWhatFits();
    if (whenBehind == WhenBehind::Lose && (!isEmpty() || !hasRoom(0)))
        return;
    m_bytes.append(bytes);
    writeWhatFits();
}

void PendingOutput::flush(const std::function<bool()> &goesOn)
{
    while (!isEmpty() && m_error == 0 && goesOn()) {
        if (hasRoom(lookAgainMs))
            writeSome();
    }
}

/// A stream that is closed or broken has room too: writing tells what is wrong with it.
bool PendingOutput::hasRoom(int milliseconds) const
{
    pollfd room{m_descriptor, POLLOUT, 0};
    return ::poll(&room, 1, milliseconds) > 0;
}

void PendingOutput::writeWhatFits()
{
    while (!isEmpty() && m_error == 0 && hasRoom(0))
        writeSome();
    if (isEmpty()) {
        m_bytes.clear();
        m_done = 0;
        m_room.reset();
    } else if (!m_room && m_error == 0) {
        m_room = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Write);
        connect(
            m_room.get(), &QSocketNotifier::activated, this, [this] { writeWhatFits(); },
            Qt::QueuedConnection); // which may remove the notifier
    }
}

void PendingOutput::writeSome()
{
    const qsizetype size = std::min(m_bytes.size() - m_done, atOnce);
    const auto count = ::write(m_descriptor, m_bytes.constData() + m_done, static_cast<std::size_t>(size));
    if (count > 0)
        m_done += count;
    else if (count < 0 && errno == EAGAIN) // another program has made it so, and there is less room than that
        ::poll(nullptr, 0, 1);
    else if (count < 0 && errno != EINTR)
        fail(errno);
    if (m_done >= mostWritten) {
        m_bytes.remove(0, m_done);
        m_done = 0;
    }
}

void PendingOutput::fail(int error)
{
    m_error = error;
    m_bytes.clear();
    m_done = 0;
    m_room.reset();
    Q_EMIT failed(error);
}

} // namespace cli

#include "tools/ShellStreams.h"

#include "platform/Pipe.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace tools {

namespace {

void closeEnd(int &descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

/// Away from 0, 1 and 2, which the child replaces; a program started without them has them free.
int clearOfStandard(int descriptor)
{
    if (descriptor > STDERR_FILENO)
        return descriptor;
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    closeEnd(descriptor);
    return moved;
}

bool makeStream(int &reader, int &writer)
{
    int ends[2] = {-1, -1};
    if (!platform::makePipe(ends))
        return false;
    reader = clearOfStandard(ends[0]);
    writer = clearOfStandard(ends[1]);
    return reader >= 0 && writer >= 0 && ::fcntl(reader, F_SETFL, O_NONBLOCK) == 0;
}

} // namespace

ShellStreams::ShellStreams()
{
    m_open =
        makeStream(m_readers[Output], m_writers[Output]) && makeStream(m_readers[Error], m_writers[Error]);
    m_ended.fill(!m_open);
}

ShellStreams::~ShellStreams()
{
    closeWriters();
    for (int &descriptor : m_readers)
        closeEnd(descriptor);
}

void ShellStreams::claimInChild() const
{
    ::dup2(m_writers[Output], STDOUT_FILENO);
    ::dup2(m_writers[Error], STDERR_FILENO);
}

void ShellStreams::closeWriters()
{
    for (int &descriptor : m_writers)
        closeEnd(descriptor);
}

void ShellStreams::read(Stream stream)
{
    char chunk[65536];
    while (!m_ended.at(stream)) {
        const ssize_t count = ::read(m_readers.at(stream), chunk, sizeof chunk);
        if (count > 0)
            m_bytes.at(stream).append(chunk, count);
        else if (count < 0 && errno == EINTR)
            continue;
        else if (count < 0 && errno == EAGAIN)
            return;
        else
            m_ended.at(stream) = true;
    }
}

void ShellStreams::waitAndRead(int milliseconds)
{
    pollfd waited[2] = {{m_ended[Output] ? -1 : m_readers[Output], POLLIN, 0},
                        {m_ended[Error] ? -1 : m_readers[Error], POLLIN, 0}};
    if (::poll(waited, 2, milliseconds) <= 0)
        return;
    for (const Stream stream : {Output, Error}) {
        if (waited[stream].revents != 0)
            read(stream);
    }
}

} // namespace tools

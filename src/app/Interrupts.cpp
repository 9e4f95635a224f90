#include "app/Interrupts.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace app {

namespace {

// A signal handler can reach nothing but this.
int pipeEnds[2] = {-1, -1};

void handle(int number)
{
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);
}

void catchOnce(int number)
{
    struct sigaction action = {};
    action.sa_handler = handle;
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART; // the second one ends the program
    sigemptyset(&action.sa_mask);
    ::sigaction(number, &action, nullptr);
}

/// A signal that is ignored stays so: that is how "nohup" works.
void catchUnlessIgnored(int number)
{
    struct sigaction current = {};
    if (::sigaction(number, nullptr, &current) == 0 && current.sa_handler != SIG_IGN)
        catchOnce(number);
}

} // namespace

Interrupts::Interrupts()
{
    if (::pipe(pipeEnds) != 0)
        return;
    for (const int end : pipeEnds)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { wake(); });
    catchOnce(SIGINT);
    catchOnce(SIGTERM);
    catchUnlessIgnored(SIGHUP); // a closed terminal would leave the tools behind in their groups
    ::signal(SIGPIPE, SIG_IGN); // a reader that goes away must not end a conversion half-way
}

Interrupts::~Interrupts()
{
    m_notifier.reset();
    for (int &end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

void Interrupts::wake()
{
    char byte = 0;
    if (::read(pipeEnds[0], &byte, 1) != 1)
        return;
    m_signal = byte;
    *m_flag = true;
    // Whichever comes second, of either kind, ends at once.
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGTERM, SIG_DFL);
    Q_EMIT interrupted();
}

} // namespace app

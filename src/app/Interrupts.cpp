#include "app/Interrupts.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

namespace app {

namespace {

// A signal handler can reach nothing but these.
int pipeEnds[2] = {-1, -1};
std::atomic_bool stopWanted = false;
std::atomic_int firstSignal = 0;
static_assert(std::atomic_bool::is_always_lock_free && std::atomic_int::is_always_lock_free);

constexpr int unheardMs = 900;     // until the event loop must have heard of it
constexpr int slowestEndMs = 8000; // until everything must have been stopped, once it has

void endAfter(int milliseconds)
{
    const itimerval once{{0, 0}, {milliseconds / 1000, milliseconds % 1000 * 1000}};
    ::setitimer(ITIMER_REAL, &once, nullptr);
}

/// Whatever holds us: what we started and made, our keeper ends and clears away.
void endNow(int /*number*/)
{
    ::_exit(128 + firstSignal);
}

/// A wait on the main thread looks at the flag; everything else is told by the event loop. Where neither
/// comes to it, a timer ends us. A second signal, of either kind, ends us at once.
void handle(int number)
{
    const int error = errno;
    int none = 0;
    if (!firstSignal.compare_exchange_strong(none, number)) {
        ::signal(number, SIG_DFL);
        ::raise(number);
        return;
    }
    stopWanted = true;
    endAfter(unheardMs);
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);
    errno = error;
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
    : m_flag(tools::StopFlag(), &stopWanted) // lives as long as the process, as the handler may
{
    stopWanted = false;
    firstSignal = 0;
    if (::pipe(pipeEnds) != 0)
        return;
    for (const int end : pipeEnds)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { wake(); });
    ::signal(SIGALRM, endNow);
    catchOnce(SIGINT);
    catchOnce(SIGTERM);
    catchUnlessIgnored(SIGHUP); // a closed terminal would leave the tools behind in their groups
    ::signal(SIGPIPE, SIG_IGN); // a reader that goes away must not end a conversion half-way
}

Interrupts::~Interrupts()
{
    m_notifier.reset();
    endAfter(0); // none
    for (int &end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

int Interrupts::signalNumber() const
{
    return firstSignal;
}

void Interrupts::interruptAs(int number)
{
    handle(number);
}

void Interrupts::wake()
{
    char byte = 0;
    if (::read(pipeEnds[0], &byte, 1) != 1)
        return;
    endAfter(slowestEndMs);
    // Whichever comes second, of either kind, ends at once.
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGTERM, SIG_DFL);
    Q_EMIT interrupted();
}

} // namespace app

#include "platform/Keeper.h"

#include "platform/KeeperWords.h"
#include "platform/Pipe.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMap>
#include <QSet>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace platform::keeper {

namespace {

constexpr qint64 shortLifeMs = 1000;
constexpr int mostShortLives = 5;

struct Held
{
    QByteArray content;
    Leaving leaving;
};

/// Never destroyed: the thread that waits for the keeper's end may look at it until the process ends.
struct State
{
    std::mutex mutex;
    int pipe = -1;
    pid_t process = 0;
    int shortLives = 0;
    QElapsedTimer age;
    QSet<qint64> groups;
    QSet<qint64> leaderless;
    QMap<QString, Held> held;
};

State &state()
{
    static auto *const only = new State;
    return *only;
}

bool isEmptyGroup(qint64 leader)
{
    return ::kill(static_cast<pid_t>(-leader), 0) != 0 && errno == ESRCH;
}

/// Safe between fork and exec.
void writeWhole(int pipe, const char *record, std::size_t count)
{
    while (::write(pipe, record, count) < 0 && errno == EINTR) {
    }
}

void writeRecord(int pipe, char word, const char *bytes, std::size_t count)
{
    char record[bytesOfHead + mostBytesOfRecord];
    record[0] = word;
    record[1] = static_cast<char>(count);
    std::memcpy(record + bytesOfHead, bytes, count);
    writeWhole(pipe, record, bytesOfHead + count);
}

/// Safe between fork and exec, and on a stack of a few kilobytes.
void writeGroup(int pipe, char word, qint64 leader)
{
    char record[bytesOfHead + 24];
    const auto end = std::to_chars(record + bytesOfHead, record + sizeof record, leader);
    record[0] = word;
    record[1] = static_cast<char>(end.ptr - record) - static_cast<char>(bytesOfHead);
    writeWhole(pipe, record, static_cast<std::size_t>(end.ptr - record));
}

void writeText(int pipe, char word, const QByteArray &text)
{
    for (qsizetype from = 0; from < text.size(); from += mostBytesOfRecord) {
        const QByteArray part = text.mid(from, mostBytesOfRecord);
        writeRecord(pipe, textWord, part.constData(), static_cast<std::size_t>(part.size()));
    }
    writeRecord(pipe, word, "", 0);
}

void writeHeld(int pipe, const QString &path, const Held &held)
{
    writeText(pipe, held.leaving.withFolder ? holdFolderWord : holdFileWord,
              QFile::encodeName(path) + '\0' + QFile::encodeName(held.leaving.unless) + '\0' + held.content);
}

void ignoreInChild(int signal)
{
    struct sigaction action = {};
    action.sa_handler = SIG_IGN;
    ::sigaction(signal, &action, nullptr);
}

/// In the child, between fork and exec: nothing of ours stays with it but the reading end.
[[noreturn]] void becomeKeeper(int reader, int writer, const char *program)
{
    ::setsid();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        ignoreInChild(signal);
    ::close(writer);
    ::dup2(reader, STDIN_FILENO);
    const int null = ::open("/dev/null", O_RDWR);
    ::dup2(null, STDOUT_FILENO);
    ::dup2(null, STDERR_FILENO);
    [[maybe_unused]] const int moved = ::chdir("/"); // else it would keep a volume busy
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::execl(program, program, argument, nullptr);
    ::_exit(127);
}

/// Signals wait meanwhile: our handlers must not run in the child.
pid_t forkKeeper(int reader, int writer)
{
    const QByteArray program = QFile::encodeName(QCoreApplication::applicationFilePath());
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t process = ::fork();
    if (process == 0)
        becomeKeeper(reader, writer, program.constData());
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return process;
}

void closePipe(State &now)
{
    if (now.pipe >= 0)
        ::close(now.pipe);
    now.pipe = -1;
    now.process = 0;
}

void tellAll(State &now)
{
    now.leaderless.removeIf([](qint64 leader) { return isEmptyGroup(leader); });
    for (const qint64 leader : std::as_const(now.groups))
        writeGroup(now.pipe, groupStartedWord, leader);
    for (const qint64 leader : std::as_const(now.leaderless)) {
        writeGroup(now.pipe, groupStartedWord, leader);
        writeGroup(now.pipe, groupEndedWord, leader);
    }
    for (auto held = now.held.cbegin(); held != now.held.cend(); ++held)
        writeHeld(now.pipe, held.key(), held.value());
}

bool startKeeper(State &now)
{
    int ends[2] = {-1, -1};
    if (QCoreApplication::applicationFilePath().isEmpty() || !makePipe(ends))
        return false;
    const pid_t process = forkKeeper(ends[0], ends[1]);
    ::close(ends[0]);
    if (process <= 0) {
        ::close(ends[1]);
        return false;
    }
    now.pipe = ends[1];
    now.process = process;
    now.age.start();
    tellAll(now);
    return true;
}

/// False when nothing takes its place, until a tool is started.
bool replaceKeeper()
{
    State &now = state();
    const std::lock_guard lock(now.mutex);
    closePipe(now);
    now.shortLives = now.age.elapsed() < shortLifeMs ? now.shortLives + 1 : 0;
    return now.shortLives < mostShortLives && startKeeper(now);
}

void waitForEndOf(pid_t process)
{
    while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void watchKeeper(pid_t process)
{
    do {
        waitForEndOf(process);
        if (!replaceKeeper())
            return;
        process = static_cast<pid_t>(processId());
    } while (process > 0);
}

/// A keeper that is gone must not end us; Qt ignores this signal too.
void surviveBrokenPipes()
{
    struct sigaction current = {};
    if (::sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        ignoreInChild(SIGPIPE);
}

/// What is called between fork and exec is looked up here: Qt gives the child a few kilobytes of our own
/// stack, which the first call of a function by a dynamic loader may need alone.
void lookUpCalls()
{
    struct sigaction current = {};
    ::sigaction(SIGPIPE, nullptr, &current);
    ::setpgid(-1, -1);
    ::dup2(-1, -1);
    ::close(-1);
    [[maybe_unused]] const auto id = ::getpid();
    [[maybe_unused]] const auto written = ::write(-1, "", 0);
}

void ensureKeeper(State &now)
{
    static const bool areLookedUp = (lookUpCalls(), true);
    Q_UNUSED(areLookedUp)
    if (now.process > 0)
        return;
    surviveBrokenPipes();
    now.shortLives = 0;
    if (startKeeper(now))
        std::thread(watchKeeper, now.process).detach();
}

} // namespace

Start::Start()
{
    state().mutex.lock();
    ensureKeeper(state());
    m_pipe = state().pipe;
}

Start::~Start()
{
    state().mutex.unlock();
}

/// The pipe is let go at once: a process that hangs before it runs its program must not hold it open.
void Start::tellInChild() const
{
    if (m_pipe < 0)
        return;
    struct sigaction action = {};
    action.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &action, nullptr);
    writeGroup(m_pipe, groupStartedWord, ::getpid());
    action.sa_handler = SIG_DFL; // as the process object has it for every program
    ::sigaction(SIGPIPE, &action, nullptr);
    ::close(m_pipe);
}

/// Told once more: the keeper may have ended while the process was made.
void Start::started(qint64 leader)
{
    if (leader <= 1)
        return;
    state().groups.insert(leader);
    if (m_pipe >= 0)
        writeGroup(m_pipe, groupStartedWord, leader);
}

void groupEnded(qint64 leader)
{
    State &now = state();
    const std::lock_guard lock(now.mutex);
    if (!now.groups.remove(leader))
        return;
    if (!isEmptyGroup(leader))
        now.leaderless.insert(leader);
    if (now.pipe >= 0)
        writeGroup(now.pipe, groupEndedWord, leader);
}

void letGroupsRunOn()
{
    State &now = state();
    const std::lock_guard lock(now.mutex);
    now.groups.clear();
    now.leaderless.clear();
    if (now.pipe >= 0)
        writeRecord(now.pipe, groupsRunOnWord, "", 0);
}

void hold(const QString &path, const QByteArray &content, const Leaving &leaving)
{
    State &now = state();
    const std::lock_guard lock(now.mutex);
    const Held held{content, leaving};
    now.held.insert(path, held);
    if (now.pipe >= 0)
        writeHeld(now.pipe, path, held);
}

void letGo(const QString &path)
{
    State &now = state();
    const std::lock_guard lock(now.mutex);
    if (now.held.remove(path) > 0 && now.pipe >= 0)
        writeText(now.pipe, letGoWord, QFile::encodeName(path));
}

qint64 processId()
{
    State &now = state();
    const std::lock_guard lock(now.mutex);
    return now.process;
}

} // namespace platform::keeper

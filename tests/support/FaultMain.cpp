// Loaded in front of the C library: the Nth time that the program opens a file to write, writes to one,
// flushes one, renames or links one, that fails, or the program is killed there. TESSARAY_FAULT holds "N
// NUMBER", where the number is an error's (28 for a full disk) or 0 for the end of the program. A file of the
// name in TESSARAY_FAULT_MET is made when it came to that. It is the program in whose command line stands the
// text in TESSARAY_FAULT_IN; others, and its keeper, are left alone. The file that TESSARAY_FAULT_COUNT names
// grows by a byte with each such call. Where TESSARAY_FAULT_FOLDER names a folder, only calls below it count.
//
// The file that TESSARAY_CLOCK_AHEAD names, once it is there, tells how many seconds the time of the day is
// ahead, for every program: as after a sleep, the time since the start of the machine is not.
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>

namespace {

template <typename Function>
Function following(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool isMeant()
{
    static const bool meant = [] {
        char words[1024] = {};
        const long file = ::syscall(SYS_openat, AT_FDCWD, "/proc/self/cmdline", O_RDONLY);
        const long count = ::syscall(SYS_read, file, words, sizeof words - 1);
        ::syscall(SYS_close, file);
        for (long i = 0; i + 1 < count; ++i)
            words[i] = words[i] == 0 ? ' ' : words[i];
        const char *program = std::getenv("TESSARAY_FAULT_IN");
        return program != nullptr && std::getenv("TESSARAY_FAULT") != nullptr &&
               std::strstr(words, program) != nullptr && std::strstr(words, "--keeper") == nullptr;
    }();
    return meant;
}

/// Past the functions below.
void grow(const char *variable)
{
    const char *name = std::getenv(variable);
    if (name == nullptr)
        return;
    const long file = ::syscall(SYS_openat, AT_FDCWD, name, O_WRONLY | O_CREAT | O_APPEND, 0600);
    ::syscall(SYS_write, file, ".", 1);
    ::syscall(SYS_close, file);
}

bool isInFolder(const char *path)
{
    const char *folder = std::getenv("TESSARAY_FAULT_FOLDER");
    return folder == nullptr || std::strncmp(path, folder, std::strlen(folder)) == 0;
}

/// Whether this call is the one; errno is set then.
bool fails(const char *path)
{
    if (!isMeant() || !isInFolder(path))
        return false;
    static std::atomic_int calls = 0;
    grow("TESSARAY_FAULT_COUNT");
    int number = 0;
    int error = 0;
    if (std::sscanf(std::getenv("TESSARAY_FAULT"), "%d %d", &number, &error) != 2 || ++calls != number)
        return false;
    grow("TESSARAY_FAULT_MET");
    if (error == 0)
        ::kill(::getpid(), SIGKILL);
    errno = error;
    return true;
}

bool isFile(int file)
{
    struct stat facts = {};
    return ::fstat(file, &facts) == 0 && S_ISREG(facts.st_mode);
}

bool fails(int file)
{
    if (!isMeant() || !isFile(file))
        return false;
    char link[64] = {};
    char path[4096] = {};
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    return ::readlink(link, path, sizeof path - 1) > 0 && fails(path);
}

bool writes(const char *path, int flags)
{
    return (flags & O_ACCMODE) != O_RDONLY && std::strncmp(path, "/dev/", 5) != 0;
}

int modeIn(int flags, va_list &rest)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, int) : 0;
}

time_t secondsAhead()
{
    static const char *name = std::getenv("TESSARAY_CLOCK_AHEAD");
    char text[32] = {};
    if (name == nullptr)
        return 0;
    const long file = ::syscall(SYS_openat, AT_FDCWD, name, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return 0;
    ::syscall(SYS_read, file, text, sizeof text - 1);
    ::syscall(SYS_close, file);
    return std::atol(text);
}

} // namespace

#define OPEN_LIKE(name)                                                                                      \
    int name(const char *path, int flags, ...)                                                               \
    {                                                                                                        \
        va_list rest;                                                                                        \
        va_start(rest, flags);                                                                               \
        const int mode = modeIn(flags, rest);                                                                \
        va_end(rest);                                                                                        \
        if (writes(path, flags) && fails(path))                                                              \
            return -1;                                                                                       \
        return following<int (*)(const char *, int, ...)>(#name)(path, flags, mode);                         \
    }

#define CALL_OF_FILE(name)                                                                                   \
    int name(int file)                                                                                       \
    {                                                                                                        \
        if (fails(file))                                                                                     \
            return -1;                                                                                       \
        return following<int (*)(int)>(#name)(file);                                                         \
    }

#define CALL_OF_NAMES(name)                                                                                  \
    int name(const char *from, const char *to)                                                               \
    {                                                                                                        \
        return fails(to) ? -1 : following<int (*)(const char *, const char *)>(#name)(from, to);             \
    }

extern "C" {

OPEN_LIKE(open)
OPEN_LIKE(open64)
CALL_OF_FILE(fsync)
CALL_OF_FILE(fdatasync)
CALL_OF_NAMES(rename)
CALL_OF_NAMES(link)

int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned int flags)
{
    if (fails(to))
        return -1;
    return following<int (*)(int, const char *, int, const char *, unsigned int)>("renameat2")(
        fromFolder, from, toFolder, to, flags);
}

int clock_gettime(clockid_t clock, timespec *now)
{
    const long answer = ::syscall(SYS_clock_gettime, clock, now);
    if (answer == 0 && clock == CLOCK_REALTIME)
        now->tv_sec += secondsAhead();
    return static_cast<int>(answer);
}

int gettimeofday(timeval *now, void *)
{
    timespec exact = {};
    const int answer = clock_gettime(CLOCK_REALTIME, &exact);
    *now = {exact.tv_sec, exact.tv_nsec / 1000};
    return answer;
}

time_t time(time_t *now)
{
    timespec exact = {};
    clock_gettime(CLOCK_REALTIME, &exact);
    if (now != nullptr)
        *now = exact.tv_sec;
    return exact.tv_sec;
}

ssize_t write(int file, const void *bytes, size_t count)
{
    static const auto real = following<ssize_t (*)(int, const void *, size_t)>("write");
    if (fails(file))
        return -1;
    return real(file, bytes, count);
}
}

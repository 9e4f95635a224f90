// Loaded in front of the C library: volumes as there are some, on a machine that has none.
// TESSARAY_ODD_VOLUME holds one or more words: "locks-lie" (every lock is granted), "no-locks",
// "plain-renames" (no way to rename a file to a name only where that is free, and no hard links).
//
// TESSARAY_FAULT, "PROGRAM CALL NUMBER WHAT", makes the volume fail below the folder TESSARAY_FAULT_FOLDER
// from the call of that number on that the program makes there. CALL is "mkdir", "create", "write", "flush"
// or "rename"; WHAT is "full", "read-only", or "kill", at which the program dies. From then on all programs
// meet the fault: they know it by the file TESSARAY_FAULT_MARK, which stands outside the folder.
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool isOdd(const char *word)
{
    const char *words = std::getenv("TESSARAY_ODD_VOLUME");
    return words != nullptr && std::strstr(words, word) != nullptr;
}

template <typename Function>
Function following(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

int answered(int error)
{
    errno = error;
    return -1;
}

std::string textOf(const char *variable)
{
    const char *value = std::getenv(variable);
    return value == nullptr ? std::string() : std::string(value);
}

using OpenCall = int (*)(const char *, int, ...);

/// What TESSARAY_FAULT says.
class Fault final
{
public:
    Fault()
        : m_folder(textOf("TESSARAY_FAULT_FOLDER") + '/')
        , m_mark(textOf("TESSARAY_FAULT_MARK"))
    {
        char program[64] = {};
        char call[64] = {};
        char what[64] = {};
        const std::string words = textOf("TESSARAY_FAULT");
        if (std::sscanf(words.c_str(), "%63s %63s %i %63s", program, call, &m_number, what) != 4)
            return;
        m_call = call;
        m_what = what;
        m_isWatched = std::strstr(::program_invocation_short_name, program) != nullptr;
    }

    /// The error that the call meets, or 0.
    int errorOf(std::string_view call, const char *path)
    {
        if (m_what.empty() || path == nullptr || std::strncmp(path, m_folder.c_str(), m_folder.size()) != 0)
            return 0;
        const int before = errno;
        if (call == m_call && m_isWatched && ++m_calls == m_number)
            begin();
        const bool isMet = ::access(m_mark.c_str(), F_OK) == 0 && meets(call);
        errno = before;
        return isMet ? error() : 0;
    }
    int errorOf(std::string_view call, int file)
    {
        if (m_what.empty())
            return 0;
        char path[4096] = {};
        const int before = errno;
        const std::string link = "/proc/self/fd/" + std::to_string(file);
        const ssize_t size = ::readlink(link.c_str(), path, sizeof path - 1);
        errno = before;
        return size > 0 ? errorOf(call, path) : 0;
    }

private:
    void begin() const
    {
        ::close(following<OpenCall>("open")(m_mark.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
        if (m_what == "kill")
            ::raise(SIGKILL);
    }
    int error() const { return m_what == "full" ? ENOSPC : EROFS; }
    /// A full volume still takes files away and gives them other names, but where a folder would have to
    /// grow.
    bool meets(std::string_view call) const
    {
        if (call == "rename" && m_what == "full")
            return m_isWatched && m_calls == m_number;
        if (call == m_call)
            return true;
        return m_what == "full" ? call == "mkdir" || call == "create" || call == "write" : call != "flush";
    }

    std::string m_folder;
    std::string m_mark;
    std::string m_call;
    std::string m_what;
    int m_number = 0;
    bool m_isWatched = false;
    std::atomic_int m_calls = 0;
};

Fault &fault()
{
    static Fault only;
    return only;
}

int errorOfOpening(const char *path, int flags)
{
    const bool makes = (flags & O_CREAT) != 0 && ::access(path, F_OK) != 0;
    if (makes)
        return fault().errorOf("create", path);
    return (flags & O_ACCMODE) == O_RDONLY ? 0 : fault().errorOf("change", path);
}

int opened(const char *name, const char *path, int flags, mode_t mode)
{
    const int error = errorOfOpening(path, flags);
    return error != 0 ? answered(error) : following<OpenCall>(name)(path, flags, mode);
}

std::FILE *streamOf(const char *name, const char *path, const char *mode)
{
    const int flags = std::strchr(mode, 'w') != nullptr   ? O_WRONLY | O_CREAT
                      : std::strchr(mode, 'a') != nullptr ? O_WRONLY | O_CREAT
                      : std::strchr(mode, '+') != nullptr ? O_RDWR
                                                          : O_RDONLY;
    const int error = errorOfOpening(path, flags);
    if (error == 0)
        return following<std::FILE *(*)(const char *, const char *)>(name)(path, mode);
    errno = error;
    return nullptr;
}

mode_t modeIn(va_list arguments, int flags)
{
    return (flags & O_CREAT) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

} // namespace

extern "C" {

int flock(int file, int operation)
{
    if (isOdd("locks-lie"))
        return 0;
    if (isOdd("no-locks"))
        return answered(ENOLCK);
    return following<int (*)(int, int)>("flock")(file, operation);
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned int flags)
{
    if (flags != 0 && isOdd("plain-renames"))
        return answered(EINVAL);
    if (const int error = fault().errorOf("rename", to); error != 0)
        return answered(error);
    return following<int (*)(int, const char *, int, const char *, unsigned int)>("renameat2")(
        fromFolder, from, toFolder, to, flags);
}

int rename(const char *from, const char *to)
{
    if (const int error = fault().errorOf("rename", to); error != 0)
        return answered(error);
    return following<int (*)(const char *, const char *)>("rename")(from, to);
}

int link(const char *from, const char *to)
{
    if (isOdd("plain-renames"))
        return answered(EPERM);
    if (const int error = fault().errorOf("create", to); error != 0)
        return answered(error);
    return following<int (*)(const char *, const char *)>("link")(from, to);
}

int symlink(const char *from, const char *to)
{
    if (const int error = fault().errorOf("create", to); error != 0)
        return answered(error);
    return following<int (*)(const char *, const char *)>("symlink")(from, to);
}

int unlink(const char *path)
{
    if (const int error = fault().errorOf("remove", path); error != 0 && error != ENOSPC)
        return answered(error);
    return following<int (*)(const char *)>("unlink")(path);
}

int rmdir(const char *path)
{
    if (const int error = fault().errorOf("remove", path); error != 0 && error != ENOSPC)
        return answered(error);
    return following<int (*)(const char *)>("rmdir")(path);
}

int mkdir(const char *path, mode_t mode)
{
    if (const int error = fault().errorOf("mkdir", path); error != 0)
        return answered(error);
    return following<int (*)(const char *, mode_t)>("mkdir")(path, mode);
}

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(arguments, flags);
    va_end(arguments);
    return opened("open", path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(arguments, flags);
    va_end(arguments);
    return opened("open64", path, flags, mode);
}

std::FILE *fopen(const char *path, const char *mode)
{
    return streamOf("fopen", path, mode);
}

std::FILE *fopen64(const char *path, const char *mode)
{
    return streamOf("fopen64", path, mode);
}

ssize_t write(int file, const void *bytes, size_t size)
{
    static const pid_t loadedBy = ::getpid();
    if (::getpid() != loadedBy) // a child before its exec, which has little of its parent's stack
        return ::syscall(SYS_write, file, bytes, size);
    if (const int error = fault().errorOf("write", file); error != 0)
        return answered(error);
    return following<ssize_t (*)(int, const void *, size_t)>("write")(file, bytes, size);
}

size_t fwrite(const void *bytes, size_t size, size_t count, std::FILE *stream)
{
    if (const int error = fault().errorOf("write", ::fileno(stream)); error != 0) {
        errno = error;
        return 0;
    }
    return following<size_t (*)(const void *, size_t, size_t, std::FILE *)>("fwrite")(bytes, size, count,
                                                                                      stream);
}

int fsync(int file)
{
    if (const int error = fault().errorOf("flush", file); error != 0)
        return answered(error == EROFS ? EIO : error);
    return following<int (*)(int)>("fsync")(file);
}
}

// Loaded in front of the C library: volumes as there are some, on a machine that has none.
// TESSARAY_ODD_VOLUME holds one or more words: "locks-lie" (every lock is granted), "no-locks",
// "plain-renames" (no way to rename a file to a name only where that is free, and no hard links).
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>

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
    return following<int (*)(int, const char *, int, const char *, unsigned int)>("renameat2")(
        fromFolder, from, toFolder, to, flags);
}

int link(const char *from, const char *to)
{
    if (isOdd("plain-renames"))
        return answered(EPERM);
    return following<int (*)(const char *, const char *)>("link")(from, to);
}
}

// Stands in front of a program: writes down how it was called and then becomes it. CliFixture.h says where it
// is put. It takes the path it was started by, so that one file serves under a thousand names.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/auxv.h>
#include <unistd.h>

namespace {

[[noreturn]] void giveUp(const std::string &why)
{
    std::fprintf(stderr, "recorder: %s\n", why.c_str());
    std::_Exit(99);
}

/// Count and words of this run, each ended by NUL, in one write, so that runs at the same time don't mix.
void record(const std::string &name, char **words)
{
    const char *path = std::getenv("RECORDER_FILE");
    if (path == nullptr)
        giveUp("RECORDER_FILE is not set");
    std::string run = name + '\0';
    int count = 1;
    for (char **word = words + 1; *word != nullptr; ++word, ++count)
        run += std::string(*word) + '\0';
    run = std::to_string(count) + '\0' + run;
    const int file = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (file < 0 || ::write(file, run.data(), run.size()) != static_cast<ssize_t>(run.size()))
        giveUp(std::string("can't write ") + path);
    ::close(file);
}

} // namespace

int main(int, char **words)
{
    const std::string path = reinterpret_cast<const char *>(::getauxval(AT_EXECFN));
    const std::string name = path.substr(path.rfind('/') + 1);
    record(name, words);
    // Programs that a user's own folder may shadow come last.
    for (const char *folder : {"/usr/bin/", "/bin/", "/usr/sbin/", "/sbin/", "/usr/local/bin/"}) {
        const std::string real = folder + name;
        ::execv(real.c_str(), words);
    }
    giveUp("can't run " + name + ": " + std::strerror(errno));
}

#include "platform/KeeperProcess.h"

#include "platform/KeeperWords.h"
#include "platform/OrdinaryFile.h"
#include "platform/PlainFiles.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <map>
#include <poll.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace platform::keeper {

namespace {

constexpr int lookAtLeaderlessMs = 5000;
constexpr int graceMs = 500; // for tools that have something to clear up themselves
constexpr int endMs = 500;   // of what was killed
constexpr int sliceMs = 10;

bool isEmpty(pid_t group)
{
    return ::kill(-group, 0) != 0 && errno == ESRCH;
}

struct Left
{
    bool withFolder = false;
    std::string unless;
    std::string content;
};

class Keeping final
{
public:
    void readAll();
    void endGroups();
    void removeLeft() const;

private:
    bool waitForBytes();
    void take(const std::string &bytes);
    void obey(char word, const std::string &text);
    void hold(bool withFolder);
    void forgetEmptyOnes();
    void signalAll(int signal) const;
    bool areGoneAfter(int milliseconds);

    std::string m_unread;
    std::string m_text;
    std::set<pid_t> m_groups;
    std::set<pid_t> m_leaderless; ///< of those
    std::map<std::string, Left> m_left;
};

/// False when it is time to look at groups again.
bool Keeping::waitForBytes()
{
    pollfd waited{STDIN_FILENO, POLLIN, 0};
    const int answer = ::poll(&waited, 1, m_leaderless.empty() ? -1 : lookAtLeaderlessMs);
    return answer != 0;
}

void Keeping::readAll()
{
    char chunk[4096];
    for (;;) {
        if (!waitForBytes()) {
            forgetEmptyOnes();
            continue;
        }
        const ssize_t count = ::read(STDIN_FILENO, chunk, sizeof chunk);
        if (count == 0 || (count < 0 && errno != EINTR))
            return;
        if (count > 0)
            take(std::string(chunk, static_cast<std::size_t>(count)));
    }
}

void Keeping::take(const std::string &bytes)
{
    m_unread += bytes;
    while (m_unread.size() >= bytesOfHead) {
        const std::size_t length = static_cast<unsigned char>(m_unread[1]);
        if (m_unread.size() < bytesOfHead + length)
            return;
        const char word = m_unread[0];
        const std::string text = m_unread.substr(bytesOfHead, length);
        m_unread.erase(0, bytesOfHead + length);
        obey(word, text);
    }
}

void Keeping::obey(char word, const std::string &text)
{
    const pid_t group = static_cast<pid_t>(std::atol(text.c_str()));
    if (word == groupStartedWord && group > 1) {
        m_groups.insert(group);
        m_leaderless.erase(group);
    } else if (word == groupEndedWord && m_groups.count(group) > 0) {
        m_leaderless.insert(group);
        forgetEmptyOnes();
    } else if (word == groupsRunOnWord) {
        m_groups.clear();
        m_leaderless.clear();
    } else if (word == textWord) {
        m_text += text;
    } else if (word == holdFileWord || word == holdFolderWord) {
        hold(word == holdFolderWord);
    } else if (word == letGoWord) {
        m_left.erase(std::exchange(m_text, {}));
    }
}

void Keeping::hold(bool withFolder)
{
    const std::string text = std::exchange(m_text, {});
    const std::string path = text.c_str(); // up to the zero behind it
    const std::size_t second = path.size() + 1;
    if (second > text.size())
        return;
    const std::string unless = text.c_str() + second;
    const std::size_t content = second + unless.size() + 1;
    if (content <= text.size())
        m_left[path] = {withFolder, unless, text.substr(content)};
}

/// Their numbers may be another's soon.
void Keeping::forgetEmptyOnes()
{
    for (auto group = m_leaderless.begin(); group != m_leaderless.end();) {
        if (!isEmpty(*group)) {
            ++group;
            continue;
        }
        m_groups.erase(*group);
        group = m_leaderless.erase(group);
    }
}

void Keeping::signalAll(int signal) const
{
    for (const pid_t group : m_groups)
        ::kill(-group, signal);
}

bool Keeping::areGoneAfter(int milliseconds)
{
    for (int waited = 0;; waited += sliceMs) {
        for (auto group = m_groups.begin(); group != m_groups.end();)
            group = isEmpty(*group) ? m_groups.erase(group) : std::next(group);
        if (m_groups.empty() || waited >= milliseconds)
            return m_groups.empty();
        ::usleep(sliceMs * 1000);
    }
}

/// One that is paused hears nothing before it goes on.
void Keeping::endGroups()
{
    signalAll(SIGCONT);
    signalAll(SIGTERM);
    if (areGoneAfter(graceMs))
        return;
    signalAll(SIGKILL);
    areGoneAfter(endMs);
}

/// Only what is still ours, to the byte: somebody may have taken it over.
void Keeping::removeLeft() const
{
    for (const auto &[path, left] : m_left) {
        const QString name = QFile::decodeName(path.c_str());
        const QByteArray content = QByteArray::fromStdString(left.content);
        const bool isKept = !left.unless.empty() && QFile::exists(QFile::decodeName(left.unless.c_str()));
        if (isKept || readPart(name, 0, content.size() + 1) != content)
            continue;
        const QFileInfo lock(name);
        if (left.withFolder)
            removeFolder(QUrl::fromLocalFile(lock.path()), lock.fileName());
        else
            removeName(QUrl::fromLocalFile(name));
    }
}

/// Such as the lock of whoever called our program, or the pipe that a caller reads to its end.
void closeWhatWasInherited()
{
    std::set<int> inherited;
    DIR *folder = ::opendir("/dev/fd");
    if (folder == nullptr)
        return;
    while (const dirent *entry = ::readdir(folder))
        inherited.insert(std::atoi(entry->d_name));
    inherited.erase(::dirfd(folder));
    ::closedir(folder);
    for (const int descriptor : inherited) {
        if (descriptor > STDERR_FILENO)
            ::close(descriptor);
    }
}

bool isPipe(int descriptor)
{
    struct stat facts = {};
    return ::fstat(descriptor, &facts) == 0 && S_ISFIFO(facts.st_mode);
}

} // namespace

bool isWanted(int argc, char *argv[])
{
    return argc == 2 && std::strcmp(argv[1], argument) == 0 && isPipe(STDIN_FILENO);
}

int run()
{
    closeWhatWasInherited();
    Keeping keeping;
    keeping.readAll();
    keeping.endGroups();
    keeping.removeLeft();
    return EXIT_SUCCESS;
}

} // namespace platform::keeper

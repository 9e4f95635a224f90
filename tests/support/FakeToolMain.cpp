// A tool that plays what it is told, for tests that must not depend on a real one. FakeTool.h says
// how it is put in place and what it understands. Plain C++, so that a thousand runs cost little.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Words = std::vector<std::string>;

[[noreturn]] void giveUp(const std::string &why)
{
    std::cerr << "faketool: " << why << '\n';
    std::_Exit(99);
}

void writeAll(int descriptor, const std::string &bytes)
{
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count < 0)
            std::_Exit(98);
        written += static_cast<size_t>(count);
    }
}

std::string contentOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        giveUp("can't read " + path);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

/// In one write, so that runs at the same time don't mix.
void append(const std::string &path, const std::string &bytes)
{
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (descriptor < 0)
        giveUp("can't write " + path);
    writeAll(descriptor, bytes);
    ::close(descriptor);
}

char unescapedLetter(char letter)
{
    switch (letter) {
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return letter;
    }
}

/// "\n", "\r", "\t", "\\" and "\xHH" as in C; any other letter stands for itself.
std::string unescaped(const std::string &text)
{
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            plain += text[i];
        } else if (text[i + 1] == 'x' && i + 3 < text.size()) {
            plain += static_cast<char>(std::stoi(text.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else {
            plain += unescapedLetter(text[++i]);
        }
    }
    return plain;
}

/// The first word of a line; the rest of the line is left in it.
std::string takeWord(std::string &line)
{
    const size_t end = line.find(' ');
    std::string word = line.substr(0, end);
    line = end == std::string::npos ? "" : line.substr(end + 1);
    return word;
}

int descriptorNamed(const std::string &name)
{
    if (name != "out" && name != "err")
        giveUp("no stream " + name);
    return name == "out" ? STDOUT_FILENO : STDERR_FILENO;
}

int signalNamed(const std::string &name)
{
    static const std::pair<const char *, int> signals[] = {{"TERM", SIGTERM}, {"INT", SIGINT},
                                                           {"HUP", SIGHUP},   {"KILL", SIGKILL},
                                                           {"SEGV", SIGSEGV}, {"XFSZ", SIGXFSZ}};
    for (const auto &[known, number] : signals) {
        if (name == known)
            return number;
    }
    giveUp("no signal " + name);
}

[[noreturn]] void hang()
{
    for (;;)
        ::pause();
}

void await(const std::string &path)
{
    while (::access(path.c_str(), F_OK) != 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

void flood(int descriptor, size_t bytes)
{
    const std::string line = std::string(79, 'x') + '\n';
    for (size_t done = 0; done < bytes; done += line.size())
        writeAll(descriptor, line.substr(0, std::min(line.size(), bytes - done)));
}

class Player
{
public:
    explicit Player(Words arguments)
        : m_arguments(std::move(arguments))
    {
    }

    void play(const Words &lines)
    {
        for (const std::string &line : lines) {
            if (line == "end")
                m_silent = false;
            else if (!m_silent && !line.empty() && line.front() != '#')
                obey(line);
        }
    }

    /// Count and words of this run, each ended by NUL.
    void record(const std::string &path) const
    {
        std::string run = std::to_string(m_arguments.size()) + '\0';
        for (const std::string &word : m_arguments)
            run += word + '\0';
        append(path, run);
    }

private:
    void obey(std::string line)
    {
        const std::string command = takeWord(line);
        if (!speak(command, line) && !leaveTraces(command, line) && !behave(command, line))
            giveUp("no command " + command);
    }

    static bool speak(const std::string &command, std::string rest)
    {
        if (command == "out" || command == "err") {
            writeAll(descriptorNamed(command), unescaped(rest) + '\n');
        } else if (command == "part") {
            const int descriptor = descriptorNamed(takeWord(rest));
            writeAll(descriptor, unescaped(rest));
        } else if (command == "play") {
            const int descriptor = descriptorNamed(takeWord(rest));
            writeAll(descriptor, contentOf(rest));
        } else if (command == "flood") {
            const int descriptor = descriptorNamed(takeWord(rest));
            flood(descriptor, std::stoul(rest));
        } else {
            return false;
        }
        return true;
    }

    bool leaveTraces(const std::string &command, std::string rest)
    {
        if (command == "record") {
            record(rest);
        } else if (command == "pid") {
            append(rest, std::to_string(::getpid()) + '\n');
        } else if (command == "environment") {
            const std::string name = takeWord(rest);
            const char *value = std::getenv(name.c_str());
            append(rest, value != nullptr ? name + '=' + value + '\n' : name + " unset\n");
        } else if (command == "write") {
            const size_t bytes = std::stoul(takeWord(rest));
            std::ofstream(target(rest), std::ios::binary) << std::string(bytes, 'w');
        } else {
            return false;
        }
        return true;
    }

    bool behave(const std::string &command, std::string rest)
    {
        if (command == "sleep")
            std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(rest)));
        else if (command == "exit")
            std::_Exit(std::stoi(rest));
        else if (command == "hang")
            hang();
        else if (command == "await")
            await(rest);
        else if (command == "ignore")
            std::signal(signalNamed(rest), SIG_IGN);
        else if (command == "die")
            die(signalNamed(rest));
        else if (command == "child")
            startChild(rest);
        else if (command == "cat")
            std::cout << std::cin.rdbuf() << std::flush;
        else if (command == "when")
            m_silent = !isAsked(rest);
        else
            return false;
        return true;
    }

    static void die(int number)
    {
        std::signal(number, SIG_DFL);
        std::raise(number);
    }

    static void startChild(const std::string &path)
    {
        const pid_t child = ::fork();
        if (child == 0)
            hang();
        append(path, std::to_string(child) + '\n');
    }

    bool isAsked(const std::string &text) const
    {
        return std::any_of(m_arguments.begin() + 1, m_arguments.end(), [&](const std::string &argument) {
            return argument.find(text) != std::string::npos;
        });
    }

    /// "last" is the last argument, "after:OPTION" the one behind OPTION, anything else a path.
    std::string target(const std::string &word) const
    {
        if (word == "last")
            return m_arguments.back();
        if (word.rfind("after:", 0) != 0)
            return word;
        const auto option = std::find(m_arguments.begin(), m_arguments.end(), word.substr(6));
        if (option == m_arguments.end() || option + 1 == m_arguments.end())
            giveUp("nothing behind " + word.substr(6));
        return *(option + 1);
    }

    Words m_arguments;
    bool m_silent = false;
};

Words linesOf(const std::string &path)
{
    std::ifstream file(path);
    if (!file)
        giveUp("no script " + path);
    Words lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

Words commandsFor(const Words &arguments)
{
    if (arguments.size() > 1 && arguments[1] == "--do")
        return {arguments.begin() + 2, arguments.end()};
    if (const char *script = std::getenv("FAKETOOL_SCRIPT"))
        return linesOf(script);
    const std::string beside = arguments.front() + ".script";
    return ::access(beside.c_str(), R_OK) == 0 ? linesOf(beside) : Words();
}

} // namespace

int main(int count, char **words)
{
    const Words arguments(words, words + count);
    Player player(arguments);
    if (const char *path = std::getenv("FAKETOOL_RECORD"))
        player.record(path);
    player.play(commandsFor(arguments));
    return 0;
}

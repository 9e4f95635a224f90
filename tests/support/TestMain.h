#pragma once

#include <QStringList>
#include <QTest>

namespace support {

/// A class of tests under its name, in a program that holds many: each is a test of its own to CTest and runs
/// in a process of its own. The same list holds what a test starts its own program for.
class TestClass final
{
public:
    /// Answers the exit status; the words are the command line's, the class's name left out.
    using Run = int (*)(const QStringList &words);

    TestClass(const char *name, Run run);
    /// Runs what the command line names first; with no such name it lists them all and answers 64.
    static int runNamed(const QStringList &words);
};

template <typename Class>
int runTests(const QStringList &words)
{
    Class test;
    return QTest::qExec(&test, words);
}

} // namespace support

// What is tried is tried for longer than Qt's five seconds, which are too few while others keep the machine
// busy: see support::patience.
#undef QTRY_VERIFY
#undef QTRY_VERIFY2
#undef QTRY_COMPARE
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)
#define QTRY_VERIFY2(condition, message) QTRY_VERIFY2_WITH_TIMEOUT(condition, message, 60000)
#define QTRY_COMPARE(found, expected) QTRY_COMPARE_WITH_TIMEOUT(found, expected, 60000)

/// At the end of a file of tests, in place of a main(): its class, to be run by name.
#define TESSARAY_TEST(Class) static const support::TestClass test##Class(#Class, &support::runTests<Class>);
#define TESSARAY_JOINED(a, b) a##b
#define TESSARAY_ROLE_NAME(line) TESSARAY_JOINED(role, line)
/// What a test has its own program do in a second process: `program NAME WORD...` answers the expression, in
/// which words are the program's path and what follows the name.
#define TESSARAY_ROLE(name, expression)                                                                      \
    static const support::TestClass TESSARAY_ROLE_NAME(__LINE__)(                                            \
        name, [](const QStringList &words) -> int { return expression; });

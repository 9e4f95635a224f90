#include "support/TestMain.h"

#include <QMap>

#include <cstdio>

namespace support {

namespace {

QMap<QString, TestClass::Run> &testClasses()
{
    static QMap<QString, TestClass::Run> classes;
    return classes;
}

} // namespace

TestClass::TestClass(const char *name, Run run)
{
    testClasses().insert(QString::fromLatin1(name), run);
}

int TestClass::runNamed(const QStringList &words)
{
    if (const Run run = testClasses().value(words.value(1)))
        return run(words.first(1) + words.sliced(2));
    std::fputs("Name a class of tests first; options of Qt Test may follow:\n", stderr);
    for (const QString &name : testClasses().keys())
        std::fprintf(stderr, "  %s\n", qPrintable(name));
    return 64;
}

} // namespace support

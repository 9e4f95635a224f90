#include "../Bench.h"
#include "WindowBench.h"

#include "app/Environment.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace {

int usage()
{
    bench::say(u"usage: tessaray-window-bench drop FILM COUNT | queue COUNT | wheel COUNT | "
               "start TESSARAY EMPTY PLUGINS ROUNDS"_s);
    return 64;
}

/// Without a window of its own: its memory would count as its children's when they start.
int start(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(2);
    return words.size() != 4 ? usage()
                             : bench::startWindow(words.at(0), words.at(1), words.at(2), words.at(3).toInt());
}

} // namespace

int main(int argc, char *argv[])
{
    app::ensureUtf8Locale();
    if (argc > 1 && QByteArray(argv[1]) == "start")
        return start(argc, argv);
    const QApplication application(argc, argv);
    const QStringList words = QApplication::arguments().mid(1);
    if (words.value(0) == u"drop"_s && words.size() == 3)
        return bench::drop(words.at(1), words.at(2).toInt());
    if (words.value(0) == u"queue"_s && words.size() == 2)
        return bench::queue(words.at(1).toInt());
    if (words.value(0) == u"wheel"_s && words.size() == 2)
        return bench::wheel(words.at(1).toInt());
    return usage();
}

#include "Bench.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    const QString what = words.value(0);
    if (what == u"convert"_s && words.size() == 4)
        return bench::convert(words.at(1), words.at(2), words.at(3).toInt());
    if (what == u"idle"_s && words.size() == 3)
        return bench::idle(words.at(1), words.at(2));
    if (what == u"watched"_s && words.size() == 4)
        return bench::watched(words.at(1), words.at(2), words.at(3).toInt());
    if (what == u"joins"_s && words.size() == 5)
        return bench::joins(words.at(1), words.at(2), words.at(3).toInt(), words.at(4).toInt());
    if (what == u"mkv"_s && words.size() == 5)
        return bench::mkv(words.at(1), words.at(2), words.at(3), words.at(4).toInt());
    if (what == u"many"_s && words.size() == 5)
        return bench::many(words.at(1), words.at(2), words.at(3).toInt(), words.at(4).toInt());
    if (what == u"probe"_s && words.size() == 4)
        return bench::probe(words.at(1), words.at(2), words.at(3).toInt());
    if (what == u"publish"_s && words.size() == 4)
        return bench::publish(words.at(1), words.at(2), words.at(3).toInt());
    if (what == u"end"_s && words.size() == 4)
        return bench::publishEnd(words.at(1), words.at(2), words.at(3).toInt());
    if (what == u"reading"_s && words.size() == 1)
        return bench::reading();
    if (what == u"selection"_s && words.size() == 1)
        return bench::selection();
    if (what == u"start"_s && words.size() == 4)
        return bench::start(words.at(1), words.at(2), words.at(3).toInt());
    if (what == u"stop"_s && words.size() == 5)
        return bench::stop(words.at(1), words.at(2), words.at(3), words.at(4).toInt());
    if (what == u"store"_s && words.size() == 1)
        return bench::store();
    if (what == u"watch"_s && words.size() == 1)
        return bench::watch();
    bench::say(u"usage: tessaray-bench convert CLI CLIP ROUNDS | idle CLI WINDOW | joins CLI FILM COUNT "
               u"ROUNDS | mkv CLI FILM "
               u"HALF ROUNDS | many CLI "
               u"FILM COUNT ROUNDS | probe "
               u"RESOURCES CLIP ROUNDS | publish CLI FILM ROUNDS | end CLI FILM ROUNDS | reading | "
               "selection | start CLI CLIP ROUNDS | stop CLI FILM HALF ROUNDS | store | watch | "
               "watched CLI FILM COUNT"_s);
    return 64;
}

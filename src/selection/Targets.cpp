#include "selection/Targets.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace selection {

namespace {

Target device(const QString &name, const QList<int> &levels, int bitRateCap, int widthCap,
              const QString &extension = u"m4v"_s)
{
    return {name, OutputKind::Mp4, levels, bitRateCap, widthCap, extension};
}

Target kindOfFile(const QString &name, OutputKind kind, const QString &extension)
{
    return {name, kind, {}, 0, 0, extension};
}

QList<Target> makeTargets()
{
    return {
        kindOfFile(u"General"_s, OutputKind::Mp4, u"m4v"_s),
        device(u"iPod (All non-Touch)"_s, {30}, 1500, 720),
        device(u"iPhone (3 and Earlier)"_s, {30}, 1500, 720),
        device(u"iPod Touch (3 and Earlier)"_s, {30}, 1500, 720),
        device(u"iPad (2 and Earlier)"_s, {31}, 0, 1280),
        device(u"Apple TV 2"_s, {31}, 0, 1280),
        device(u"iPhone 4"_s, {31}, 0, 1280),
        device(u"iPod Touch (4 and Later)"_s, {31}, 0, 1280),
        device(u"Apple TV (3 and Later)"_s, {41, 40}, 20000, 1920), // both, the later one wins: meant
        device(u"iPad (3 and Later)"_s, {41}, 20000, 1920),
        device(u"iPad Mini (All)"_s, {41}, 20000, 1920),
        device(u"iPhone (4S and Later)"_s, {41}, 20000, 1920),
        device(u"PS3"_s, {41}, 15000, 0),
        device(u"Xbox"_s, {41}, 15000, 0, u"mp4"_s),
        kindOfFile(u"MKV"_s, OutputKind::Mkv, u"mkv"_s),
        kindOfFile(u"AVI"_s, OutputKind::Avi, u"avi"_s),
    };
}

template <typename Wanted>
QStringList namesOf(Wanted wanted)
{
    QStringList names;
    for (const Target &target : targets()) {
        if (wanted(target))
            names.append(target.name);
    }
    return names;
}

} // namespace

const QList<Target> &targets()
{
    static const QList<Target> list = makeTargets();
    return list;
}

const Target *targetNamed(const QString &name)
{
    const auto found = std::find_if(targets().begin(), targets().end(),
                                    [&](const Target &target) { return target.name == name; });
    return found == targets().end() ? nullptr : &*found;
}

OutputKind outputKindFor(const QString &targetName)
{
    const Target *target = targetNamed(targetName);
    return target == nullptr ? OutputKind::Mp4 : target->kind;
}

const QStringList &targetNames()
{
    static const QStringList names = namesOf([](const Target &) { return true; });
    return names;
}

const QStringList &deviceNames()
{
    static const QStringList names = namesOf([](const Target &target) { return !target.levels.isEmpty(); });
    return names;
}

} // namespace selection

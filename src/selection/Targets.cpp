#include "selection/Targets.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace selection {

namespace {

/// The three sizes of devices.
enum class Class { Small, Half, Full };

Plays playsOf(Class size, int level, const QStringList &sounds)
{
    switch (size) {
    case Class::Small:
        return {u"baseline"_s, level, 720, 480, 30, 160, sounds};
    case Class::Half:
        return {u"main"_s, level, 1280, 720, 30, 160, sounds};
    case Class::Full:
        break;
    }
    return {u"high"_s, level, 1920, 1080, 30, 0, sounds};
}

const QStringList aacOnly{u"aac"_s};
const QStringList aacAndAc3{u"aac"_s, u"ac3"_s};

Target device(const QString &name, Class size, const QList<int> &levels, int bitRateCap, int widthCap,
              const QStringList &sounds = aacOnly, const QString &extension = u"m4v"_s)
{
    return {name,
            OutputKind::Mp4,
            levels,
            bitRateCap,
            widthCap,
            extension,
            playsOf(size, levels.constLast(), sounds)};
}

Target kindOfFile(const QString &name, OutputKind kind, const QString &extension)
{
    return {name, kind, {}, 0, 0, extension};
}

QList<Target> makeTargets()
{
    return {
        kindOfFile(u"General"_s, OutputKind::Mp4, u"m4v"_s),
        device(u"iPod (All non-Touch)"_s, Class::Small, {30}, 1500, 720),
        device(u"iPhone (3 and Earlier)"_s, Class::Small, {30}, 1500, 720),
        device(u"iPod Touch (3 and Earlier)"_s, Class::Small, {30}, 1500, 720),
        device(u"iPad (2 and Earlier)"_s, Class::Half, {31}, 0, 1280),
        device(u"Apple TV 2"_s, Class::Half, {31}, 0, 1280, aacAndAc3),
        device(u"iPhone 4"_s, Class::Half, {31}, 0, 1280),
        device(u"iPod Touch (4 and Later)"_s, Class::Half, {31}, 0, 1280),
        device(u"Apple TV (3 and Later)"_s, Class::Full, {41, 40}, 20000, 1920,
               aacAndAc3), // both, the later one wins: meant
        device(u"iPad (3 and Later)"_s, Class::Full, {41}, 20000, 1920),
        device(u"iPad Mini (All)"_s, Class::Full, {41}, 20000, 1920),
        device(u"iPhone (4S and Later)"_s, Class::Full, {41}, 20000, 1920),
        device(u"PS3"_s, Class::Full, {41}, 15000, 0, aacAndAc3),
        device(u"Xbox"_s, Class::Full, {41}, 15000, 0, aacOnly, u"mp4"_s),
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

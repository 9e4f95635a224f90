#include "engines/FfmpegDevices.h"

#include "selection/KXSelection.h"
#include "tools/Numbers.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace engines {

namespace {

/// A cap of 0 is none.
struct Device
{
    const char16_t *name;
    const char16_t *level;
    const char16_t *laterLevel;
    int bitRateCap;
    int widthCap;
};

constexpr std::array devices = {
    Device{u"iPod (All non-Touch)", u"30", nullptr, 1500, 720},
    Device{u"iPhone (3 and Earlier)", u"30", nullptr, 1500, 720},
    Device{u"iPod Touch (3 and Earlier)", u"30", nullptr, 1500, 720},
    Device{u"iPad (2 and Earlier)", u"31", nullptr, 0, 1280},
    Device{u"Apple TV 2", u"31", nullptr, 0, 1280},
    Device{u"iPhone 4", u"31", nullptr, 0, 1280},
    Device{u"iPod Touch (4 and Later)", u"31", nullptr, 0, 1280},
    Device{u"Apple TV (3 and Later)", u"41", u"40", 20000, 1920}, // both levels, the later one wins: meant
    Device{u"iPad (3 and Later)", u"41", nullptr, 20000, 1920},
    Device{u"iPad Mini (All)", u"41", nullptr, 20000, 1920},
    Device{u"iPhone (4S and Later)", u"41", nullptr, 20000, 1920},
    Device{u"PS3", u"41", nullptr, 15000, 0},
    Device{u"Xbox", u"41", nullptr, 15000, 0},
};

bool isAbove(const QString &number, int cap)
{
    return cap > 0 && tools::leadingInteger(number) > cap;
}

} // namespace

OutputKind outputKindNamed(const QString &appName)
{
    if (appName == u"Pollenta"_s)
        return OutputKind::Pollenta;
    if (appName == u"Tessaray"_s)
        return OutputKind::Tessaray;
    if (appName == u"Marbleon"_s)
        return OutputKind::Marbleon;
    return OutputKind::Unknown;
}

QString appNameForDevice(const QString &device)
{
    if (device == u"MKV"_s)
        return u"Tessaray"_s;
    if (device == u"AVI"_s)
        return u"Marbleon"_s;
    return u"Pollenta"_s;
}

QStringList applyDeviceRule(KXSelection &selection)
{
    const auto device = std::find_if(devices.begin(), devices.end(), [&](const Device &row) {
        return selection.theDevice() == QStringView(row.name);
    });
    if (device == devices.end())
        return {};
    if (isAbove(selection.userVideoBitRate(), device->bitRateCap))
        selection.setUserVideoBitRate(QString::number(device->bitRateCap));
    if (isAbove(selection.userWidth(), device->widthCap))
        selection.setUserWidth(QString::number(device->widthCap));
    QStringList arguments{u"-level"_s, QString::fromUtf16(device->level)};
    if (device->laterLevel != nullptr)
        arguments << u"-level"_s << QString::fromUtf16(device->laterLevel);
    return arguments;
}

} // namespace engines

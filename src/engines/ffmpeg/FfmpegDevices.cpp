#include "engines/ffmpeg/FfmpegDevices.h"

#include "selection/KXSelection.h"
#include "tools/Numbers.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

using tools::OptionItem;

namespace engines {

namespace {

/// A cap of 0 is none.
struct Device
{
    const char16_t *name;
    int level;
    int laterLevel; ///< 0: none
    int bitRateCap;
    int widthCap;
};

constexpr std::array devices = {
    Device{u"iPod (All non-Touch)", 30, 0, 1500, 720},
    Device{u"iPhone (3 and Earlier)", 30, 0, 1500, 720},
    Device{u"iPod Touch (3 and Earlier)", 30, 0, 1500, 720},
    Device{u"iPad (2 and Earlier)", 31, 0, 0, 1280},
    Device{u"Apple TV 2", 31, 0, 0, 1280},
    Device{u"iPhone 4", 31, 0, 0, 1280},
    Device{u"iPod Touch (4 and Later)", 31, 0, 0, 1280},
    Device{u"Apple TV (3 and Later)", 41, 40, 20000, 1920}, // both levels, the later one wins: meant
    Device{u"iPad (3 and Later)", 41, 0, 20000, 1920},
    Device{u"iPad Mini (All)", 41, 0, 20000, 1920},
    Device{u"iPhone (4S and Later)", 41, 0, 20000, 1920},
    Device{u"PS3", 41, 0, 15000, 0},
    Device{u"Xbox", 41, 0, 15000, 0},
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

tools::OptionList applyDeviceRule(KXSelection &selection)
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
    tools::OptionList arguments{u"-level", OptionItem::ofNumber(device->level)};
    if (device->laterLevel != 0)
        arguments << u"-level" << OptionItem::ofNumber(device->laterLevel);
    return arguments;
}

} // namespace engines

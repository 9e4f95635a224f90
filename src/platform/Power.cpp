#include "platform/Power.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

QByteArray factOf(const QFileInfo &supply, const QString &name)
{
    QFile file(supply.filePath() + u'/' + name);
    return file.open(QIODevice::ReadOnly) ? file.read(64).trimmed() : QByteArray();
}

/// Batteries of mice and pens say so, and feed no machine.
bool feedsTheMachine(const QFileInfo &supply)
{
    return factOf(supply, u"scope"_s) != "Device";
}

} // namespace

PowerSource powerSourceIn(const QString &folder)
{
    const QDir all(folder);
    if (!all.exists())
        return PowerSource::Unreadable;
    bool hasBattery = false;
    bool isDischarging = false;
    for (const QFileInfo &supply : all.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const bool isBattery = factOf(supply, u"type"_s) == "Battery" && feedsTheMachine(supply);
        if (!isBattery && factOf(supply, u"online"_s) == "1")
            return PowerSource::Mains;
        hasBattery = hasBattery || isBattery;
        isDischarging = isDischarging || (isBattery && factOf(supply, u"status"_s) == "Discharging");
    }
    if (!hasBattery)
        return PowerSource::None;
    return isDischarging ? PowerSource::Battery : PowerSource::Mains;
}

PowerSource Power::source() const
{
    return powerSourceIn(u"/sys/class/power_supply"_s);
}

} // namespace platform

#include "support/Seeds.h"

#include <QHash>
#include <QRandomGenerator>
#include <QStringList>

namespace support {

namespace {

constexpr quint32 usual = 20240229;

quint32 chosenSeed()
{
    bool isGiven = false;
    const uint given = qEnvironmentVariable("TESSARAY_SEED").toUInt(&isGiven);
    if (isGiven)
        return given;
    return isSoak() ? QRandomGenerator::global()->generate() : usual;
}

} // namespace

bool isSoak()
{
    return qEnvironmentVariableIntValue("TESSARAY_SOAK") == 1;
}

quint32 seed()
{
    static const quint32 chosen = [] {
        const quint32 made = chosenSeed();
        qInfo("TESSARAY_SEED=%u", made);
        return made;
    }();
    return chosen;
}

Part part()
{
    const QStringList words = qEnvironmentVariable("TESSARAY_PART", QStringLiteral("1/1")).split(u'/');
    const qsizetype number = words.value(0).toLongLong();
    const qsizetype count = words.value(1).toLongLong();
    if (number < 1 || number > count)
        qFatal("TESSARAY_PART is NUMBER/COUNT, from 1/COUNT to COUNT/COUNT.");
    return {number - 1, count};
}

Chances chancesAt(int line)
{
    static QHash<int, quint32> timesBefore;
    return Chances(seed() + static_cast<quint32>(line) * 7919 + timesBefore[line]++ * 104729);
}

} // namespace support

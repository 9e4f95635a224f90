#include "selection/Targets.h"

using namespace Qt::StringLiterals;

namespace selection {

const QStringList &deviceNames()
{
    static const QStringList names{u"iPod (All non-Touch)"_s,
                                   u"iPhone (3 and Earlier)"_s,
                                   u"iPod Touch (3 and Earlier)"_s,
                                   u"iPad (2 and Earlier)"_s,
                                   u"Apple TV 2"_s,
                                   u"iPhone 4"_s,
                                   u"iPod Touch (4 and Later)"_s,
                                   u"Apple TV (3 and Later)"_s,
                                   u"iPad (3 and Later)"_s,
                                   u"iPad Mini (All)"_s,
                                   u"iPhone (4S and Later)"_s,
                                   u"PS3"_s,
                                   u"Xbox"_s};
    return names;
}

const QStringList &targetNames()
{
    static const QStringList names =
        QStringList{u"General"_s} + deviceNames() + QStringList{u"MKV"_s, u"AVI"_s};
    return names;
}

} // namespace selection

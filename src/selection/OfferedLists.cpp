#include "selection/OfferedLists.h"

using namespace Qt::StringLiterals;

namespace selection {

const QStringList &offeredAudioBitRates()
{
    static const QStringList rates{u"128 kbps"_s, u"160 kbps"_s, u"192 kbps"_s, u"224 kbps"_s, u"256 kbps"_s,
                                   u"320 kbps"_s, u"384 kbps"_s, u"448 kbps"_s, u"512 kbps"_s, u"640 kbps"_s};
    return rates;
}

const QStringList &offeredFrameRates()
{
    static const QStringList rates{u"23.976"_s, u"25"_s, u"29.97"_s};
    return rates;
}

const QStringList &devicesInTexts()
{
    static const QStringList devices{u"General"_s,
                                     u"Apple TV 2"_s,
                                     u"Apple TV 3"_s,
                                     u"iPad (2 and Earlier)"_s,
                                     u"iPad 3/iPhone 4S"_s,
                                     u"iPhone 4/iPod Touch (4G and Later)"_s,
                                     u"iPhone/iPod Touch (3G and Earlier)"_s,
                                     u"iPod"_s,
                                     u"PS3"_s,
                                     u"Xbox"_s};
    return devices;
}

/// Two blanks after each full stop: meant.
QString textOfTrackEdit(int index)
{
    switch (index) {
    case 0:
        return u"Tessaray will extract the tracks selected above into separate files.  You can not extract "
               "tracks that are added to the above table using the Add Tracks button."_s;
    case 1:
        return u"Tessaray will create a copy of the video file with the selected tracks removed.  You can "
               u"not "
               "remove the video track so the Go button will be disabled if you select a video track."_s;
    case 2:
        return u"Tessaray will create a copy of the video file with the selected external audio tracks "
               u"added.  "
               "You can only add external tracks, that is, tracks that are added to the above table using "
               "the "
               "Add Tracks button."_s;
    default:
        return {};
    }
}

} // namespace selection

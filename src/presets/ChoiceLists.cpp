#include "presets/ChoiceLists.h"

#include "selection/Targets.h"
#include "tools/Languages.h"

using namespace Qt::StringLiterals;

namespace presets {

const QStringList &afTrackChoiceList()
{
    static const QStringList list{u"All"_s, u"None"_s, u"Audio Track Number"_s,
                                  u"Tracks w/ Properties ..."_s};
    return list;
}

const QStringList &sfTrackChoiceList()
{
    static const QStringList list{u"All"_s, u"None"_s, u"Subtitle Track Number"_s,
                                  u"Tracks w/ Properties ..."_s};
    return list;
}

const QStringList &trackNumberList()
{
    static const QStringList list{u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"6"_s, u"7"_s, u"8"_s, u"9"_s};
    return list;
}

const QStringList &languageList()
{
    static const QStringList list = QStringList{u"Any Language"_s} + tools::languageMenu();
    return list;
}

const QStringList &afCodecList()
{
    static const QStringList list{u"Any Codec"_s, u"ogg"_s, u"mp3"_s, u"mp2"_s,  u"aac"_s, u"ac3"_s,
                                  u"wav"_s,       u"dts"_s, u"wma"_s, u"flac"_s, u"wv"_s};
    return list;
}

const QStringList &sfCodecList()
{
    static const QStringList list{u"Any Codec"_s, u"ssa"_s, u"ass"_s,  u"srt"_s, u"vobsub"_s,
                                  u"sub"_s,       u"pgs"_s, u"ttxt"_s, u"txt"_s};
    return list;
}

const QStringList &afChannelsList()
{
    static const QStringList list{u"Any Type"_s, u"Stereo Only"_s, u"Surround Only"_s};
    return list;
}

const QStringList &pVideoActionList()
{
    static const QStringList list{u"Pass Thru"_s, u"H264 (1-pass)"_s, u"H264 (2-pass)"_s};
    return list;
}

const QStringList &pVideoGenericList()
{
    static const QStringList list{u"Original"_s, u"Custom"_s};
    return list;
}

const QStringList &pStereoActionList()
{
    static const QStringList list{u"Pass Thru"_s, u"AAC (2-Ch.)"_s};
    return list;
}

const QStringList &pStereoBitRateList()
{
    static const QStringList list{u"128"_s, u"160"_s, u"192"_s, u"224"_s, u"256"_s, u"320"_s};
    return list;
}

const QStringList &pSurroundActionList()
{
    static const QStringList list{u"Pass Thru"_s, u"AAC (2-Ch.)"_s, u"AAC (5.1)"_s, u"AC3 (5.1)"_s};
    return list;
}

const QStringList &pSurroundBitRateList()
{
    static const QStringList list{u"320"_s, u"384"_s, u"448"_s, u"512"_s, u"640"_s};
    return list;
}

const QStringList &pSubActionList()
{
    static const QStringList list{u"Burn (hard)"_s, u"Mux (soft)"_s};
    return list;
}

QStringList deviceListWith(const QString &storedDevice)
{
    QStringList list = selection::targetNames();
    if (!storedDevice.isEmpty() && !list.contains(storedDevice))
        list.append(storedDevice);
    return list;
}

} // namespace presets

#include "presets/ReadyPresets.h"

#include "presets/KXPresetSettings.h"
#include "presets/PresetFields.h"
#include "selection/Targets.h"

using namespace Qt::StringLiterals;

namespace presets {

namespace {

/// By what the makers say about films in MP4.
bool playsAc3(const QString &device)
{
    static const QStringList players{u"Apple TV 2"_s, u"Apple TV (3 and Later)"_s, u"PS3"_s};
    return players.contains(device);
}

} // namespace

QString makeReadyFor(const QString &device, KXPresetSettings &preset)
{
    const QStringList &devices = selection::deviceNames();
    if (!devices.contains(device))
        return u"There is no device \"%1\". There are: %2."_s.arg(device, devices.join(u", "_s));
    const QString surround = playsAc3(device) ? u"Pass Thru"_s : u"AAC (2-Ch.)"_s;
    const QList<std::pair<QString, QString>> values{
        {u"pDevice"_s, device},
        {u"pVideoActionIndex"_s, u"H264 (1-pass)"_s},
        {u"pVideoBitRate"_s, u""_s},
        {u"pVideoBitRateIndex"_s, u"Original"_s},
        {u"pWidthIndex"_s, u"Original"_s},
        {u"pFPSIndex"_s, u"Original"_s},
        {u"pStereoActionIndex"_s, u"AAC (2-Ch.)"_s},
        {u"pStereoBitRate"_s, u"160"_s},
        {u"pSurroundActionIndex"_s, surround},
        {u"pAudioAddStereo"_s, playsAc3(device) ? u"true"_s : u"false"_s},
        {u"pSubAction"_s, u"Mux (soft)"_s},
    };
    QString problem;
    for (const auto &[field, value] : values) {
        if (problem.isNull())
            problem = setField(preset, field, value);
    }
    return problem;
}

} // namespace presets

// A bundle as a record and as a built-in; how it is applied is in KXPresetSettingsRules.cpp.
#include "presets/KXPresetSettings.h"

#include "presets/PresetRecord.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

KXPresetSettings::KXPresetSettings(const VideoFilePointer &currentVideoFile,
                                   KXSelectionController &selectionController)
    : m_currentVideoFile(currentVideoFile)
    , m_selectionController(selectionController)
{
}

const QStringList &KXPresetSettings::recordWords()
{
    static const QStringList words{u"pName"_s,
                                   u"pDevice"_s,
                                   u"pVideoActionIndex"_s,
                                   u"pVideoBitRate"_s,
                                   u"pVideoBitRateIndex"_s,
                                   u"pWidth"_s,
                                   u"pWidthIndex"_s,
                                   u"pFPS"_s,
                                   u"pFPSIndex"_s,
                                   u"pStereoActionIndex"_s,
                                   u"pStereoBitRate"_s,
                                   u"pSurroundActionIndex"_s,
                                   u"pSurroundBitRate"_s,
                                   u"pAudioAddStereo"_s,
                                   u"pKeepStereoTrack"_s,
                                   u"pKeepSurroundTrack"_s,
                                   u"pSubAction"_s,
                                   u"isEditable"_s};
    return words;
}

QVariantMap KXPresetSettings::makeRecord() const
{
    return presets::recordOf(*this, recordWords());
}

void KXPresetSettings::initFromRecord(const QVariantMap &record)
{
    presets::takeRecord(*this, record, recordWords());
}

void KXPresetSettings::initializeAsByID()
{
    setPName(u"Manual"_s);
    setIsEditable(false);
}

void KXPresetSettings::initializeAsExtract()
{
    setPName(u"Extract Tracks"_s);
    setIsEditable(false);
}

void KXPresetSettings::initializeAsRemove()
{
    setPName(u"Remove Tracks"_s);
    setIsEditable(false);
}

void KXPresetSettings::initializeAsNewUserPreset()
{
    setPName(u"User Preset"_s);
    setPDevice(u"Apple TV"_s); // no target's name, on purpose: somebody has to pick one
    setPVideoActionIndex(0);
    setPVideoBitRate(u"1000"_s);
    setPVideoBitRateIndex(1);
    setPWidth(u""_s);
    setPWidthIndex(0);
    setPFPS(u""_s);
    setPFPSIndex(0);
    setPStereoActionIndex(0);
    setPStereoBitRate(u"160"_s);
    setPSurroundActionIndex(0);
    setPSurroundBitRate(u"448"_s);
    setPAudioAddStereo(false);
    setPKeepStereoTrack(false);
    setPKeepSurroundTrack(false);
    setPSubAction(u"Mux (soft)"_s);
    setIsEditable(true);
}

void KXPresetSettings::setPVideoActionIndex(const int &index)
{
    m_pVideoActionIndex = index;
    m_pVideoActionIsBestGuess = index == 3 || index == 4;
}

QString KXPresetSettings::quickBitRateCalcForForNewWidthFromOldWidth(const QString &bitRate,
                                                                     const QString &newWidth,
                                                                     const QString &oldWidth)
{
    const qint64 narrow = tools::leadingInteger(newWidth);
    const qint64 wide = tools::leadingInteger(oldWidth);
    if (narrow >= wide || wide <= 0)
        return bitRate;
    const float share = static_cast<float>(narrow) / static_cast<float>(wide);
    return QString::number(static_cast<qint64>(static_cast<float>(tools::leadingInteger(bitRate)) * share));
}

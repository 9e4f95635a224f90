#pragma once

#include <QStringList>

namespace presets {

// What the two preset sheets and the filter editor offer, in their order. The positions in the action
// lists are what presets store.

const QStringList &afTrackChoiceList();
const QStringList &sfTrackChoiceList();
/// "1" to "9", for both kinds.
const QStringList &trackNumberList();
/// "Any Language", then the program's languages as tracks carry them, for both kinds.
const QStringList &languageList();
/// Some codecs never stand in a track ("dts", "wv", "pgs", "vobsub", "txt"): they are offered all the same.
const QStringList &afCodecList();
const QStringList &sfCodecList();
const QStringList &afChannelsList();

const QStringList &pVideoActionList();
/// "Original" or "Custom", for bit rate, width and frame rate.
const QStringList &pVideoGenericList();
const QStringList &pStereoActionList();
const QStringList &pStereoBitRateList();
const QStringList &pSurroundActionList();
const QStringList &pSurroundBitRateList();
const QStringList &pSubActionList();
/// The targets, and a stored device that is none of them, as it is.
QStringList deviceListWith(const QString &storedDevice);

} // namespace presets

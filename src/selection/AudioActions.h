#pragma once

#include "media/KXVideoTrack.h"

#include <QStringList>

namespace selection {

/// The four things that can be done with an audio track, in the order in which they are offered:
/// "Pass Thru", "AAC (2-Ch.)", "AAC (5.1)", "AC3 (5.1)".
const QStringList &audioActions();

/// The bit rates that are entered for the actions that encode: "128 kbps".
struct AudioBitRates
{
    QString aac2;
    QString aac51;
    QString ac351;
};

/// The actions that a track's outputs amount to, in their order, each once.
QStringList actionsOf(const AudioSettingsList &settings);
/// The bit rates of those outputs; where an action has none, the text that was there stays.
AudioBitRates bitRatesOf(const AudioSettingsList &settings, AudioBitRates rates);
/// One output for each action, in order. Pass-through keeps the track's channels; its bit rate is that
/// of the selection.
AudioSettingsList settingsFor(const QStringList &actions, const AudioBitRates &rates,
                              const KXVideoTrack &track, const QString &passThruBitRate);

} // namespace selection

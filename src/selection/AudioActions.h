#pragma once

#include "selection/ConversionSettings.h"

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
QStringList actionsOf(const AudioOutputs &outputs);
/// The bit rates of those outputs; where an action has none, the text that was there stays.
AudioBitRates bitRatesOf(const AudioOutputs &outputs, AudioBitRates rates);
/// One output for each action, in order. Pass-through keeps the track's channels; its bit rate is that
/// of the selection.
AudioOutputs outputsFor(const QStringList &actions, const AudioBitRates &rates,
                        const QString &passThruBitRate);

} // namespace selection

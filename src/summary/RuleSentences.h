#pragma once

#include "presets/TrackFilters.h"

class KXPresetSettings;

namespace summary {

/// A piece of a sentence; values are what can be chosen in it.
struct SentencePart
{
    QString text;
    bool isValue = false;
};
using Sentence = QList<SentencePart>;

QString plainText(const Sentence &sentence);

/// "Take audio tracks where language is German, any codec, channels are Surround Only."
Sentence filterSentence(presets::FilterKind kind, const QVariantMap &filter);
/// What a mode of filters means.
QString modeText(const QString &mode);
/// A preset of settings as one sentence: "M4V for Apple TV 2: H.264 in 2 passes at 1500 kb/s; ...".
QString settingsSentence(const KXPresetSettings &preset);
/// What is ticked among tracks: "Video 1 · Audio 1 (English AC3 5.1) · no subtitle".
QString ticksText(const TrackList &tracks);
/// "M4V for Apple TV 2", "MKV"
QString targetText(const QString &target);

} // namespace summary

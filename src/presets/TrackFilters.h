#pragma once

#include "media/KXVideoTrack.h"

#include <QVariantList>

namespace presets {

/// The two kinds of tracks that are chosen by filters.
enum class FilterKind { Audio, Subtitle };

/// A filter: texts under "currentTrackChoice", "currentTrackNumber", "currentLanguage", "currentCodec" and,
/// for audio, "currentChannels".
QVariantMap makeFilter(FilterKind kind, const QString &choice, const QString &language);
/// What a new filter is: the first track of its kind.
QVariantMap defaultFilter(FilterKind kind);
/// "Audio Track Number" or "Subtitle Track Number".
QString numberedChoice(FilterKind kind);
/// The words under which a filter of that kind keeps its texts.
const QStringList &filterWords(FilterKind kind);

/// Ticks what the filters choose among tracks of their kind; it never unticks. In the mode "Prioritized"
/// the first filter that chooses something by number or by properties is the last; "All" never is. Every
/// other mode applies them all.
void applyFilters(FilterKind kind, const QVariantList &filters, const QString &mode, const TrackList &tracks);

} // namespace presets

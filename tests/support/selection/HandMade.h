#pragma once

#include "selection/KXSelection.h"
#include "support/Words.h"
#include "tools/OptionItem.h"

namespace support {

// Tracks and selections made by hand, for tests that need no file behind them. The source is
// "/v/a.mkv", 1920x1080; every track is English, and its title is its type and stream: "Audio1".

/// Stream 0, h264.
TrackPointer videoTrack(const QString &userCodec = QStringLiteral("h264"));
/// An audio stream of the source with one output.
TrackPointer audioTrack(const QString &stream, const QString &codec, const QString &channels,
                        const QVariantMap &settings);
/// Stream 1 with six channels and no output.
TrackPointer surroundSound(const QString &codec = QStringLiteral("ac3"));
/// A subtitle stream of the source.
TrackPointer subtitleTrack(const QString &stream, const QString &codec,
                           const QString &userCodec = QStringLiteral("mux"));
/// Turns a track into one that is alone in a file of its own.
TrackPointer external(const TrackPointer &track, const QString &path);

QVariantMap audioSettings(const QString &codec, const QString &channels = {}, const QString &rate = {});

SelectionPointer handMadeSelection(const QString &device, const TrackList &tracks,
                                   const QString &passes = QStringLiteral("1"));

/// What the lists say of the title and the language of a hand-made video track.
inline const QString videoMetadata = QStringLiteral("-metadata:s:v language=eng -metadata:s:v title=Video0");
/// The items of a list between bars.
QString itemsOf(const tools::OptionList &list);
} // namespace support

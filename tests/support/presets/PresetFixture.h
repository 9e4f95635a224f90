#pragma once

#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "presets/KXPresetsController.h"
#include "selection/KXSelectionController.h"

#include <QVariantList>

namespace support {

class Scratch;

/// What a program has around its presets: settings stored in "defaults.json" of a scratch folder, a
/// current file, the selection controller on the tab "MKV", and the presets, built from what is stored.
struct PresetFixture
{
    explicit PresetFixture(const Scratch &scratch);

    /// "/v/a.mkv" with these tracks takes the place of the current file.
    void open(const TrackList &tracks);

    platform::JsonDefaultsStore store;
    KXPreferences preferences;
    KXNotificationCenter center;
    VideoFilePointer file;
    SelectionPointer selection;
    KXSelectionController controller;
    KXPresetsController presets;
};

extern const QString secondSound;
extern const QString firstSubtitle;

/// A filter written "Audio Track Number|1|Any Language|Any Codec|Any Type"; without the channels it is one
/// of subtitles.
QVariantMap filterOf(const QString &text);
/// Filters as such texts, joined by "; ". A missing value is written "-", a word that no filter has "+word".
QString textOf(const QVariantList &filters);

/// The places of the ticked tracks, counted from 1: "1 3".
QString ticksOf(const TrackList &tracks);
/// Video, English aac stereo, German ac3 5.1, a subtitle.
TrackList probedFilm();
TrackPointer probedSubtitleOf(const QString &codec, const QString &language);

/// A user's preset as it is stored: it takes the video and what its one filter of each kind chooses.
QVariantMap selectionsRecord(
    const QString &name,
    const QString &audio = QStringLiteral("Audio Track Number|1|Any Language|Any Codec|Any Type"),
    const QString &subtitle = QStringLiteral("None|1|Any Language|Any Codec"));
/// A user's preset as it is stored: everything passes through, subtitles are muxed.
QVariantMap settingsRecord(const QString &name, const QString &device = QStringLiteral("PS3"));

/// Makes the file of the settings, as another program left it.
void storePresets(const Scratch &scratch, const QVariantList &selections, const QVariantList &settings);
/// Two of each kind: "Second", which takes the second sound and the first subtitle, and "Own"; "For PS3" and
/// "For Xbox".
void storeTwoOfEach(const Scratch &scratch);
/// What the file of the settings holds.
QVariantMap storedSettings(const Scratch &scratch);
/// The names in a list of records: "one, two".
QString namesIn(const QVariant &records);

} // namespace support

#pragma once

#include "support/Scratch.h"
#include "support/presets/PresetFixture.h"

namespace support {

/// A program with a film open and two stored presets of each kind, which stand in rows 2 and 3 of the sheet
/// for tracks, and in rows 1 and 2 of the one for settings: "Manual" has no row.
struct SheetFixture
{
    SheetFixture();

    /// What the popups show.
    QString names() const { return presets.presetSelectionsNamesList().join(QStringLiteral(", ")); }
    QString settingsNames() const { return presets.presetSettingsNamesList().join(QStringLiteral(", ")); }
    /// What the lists hold, which the popups show after OK.
    QString listed() const;
    QString settingsListed() const;
    QString storedNames(const QString &key) const { return namesIn(storedSettings(scratch).value(key)); }
    QString ticked() const { return ticksOf(program.file->trackList()); }
    /// From here on nothing can be stored.
    bool block() const;

    Scratch scratch;
    PresetFixture program;
    KXPresetsController &presets;
};

} // namespace support

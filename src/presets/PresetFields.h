#pragma once

#include "presets/TrackFilters.h"
#include "presets/ValueRule.h"

class KXPresetSelections;
class KXPresetSettings;

namespace presets {

/// What a settings preset may hold under a word of its record. The name has a rule of its own, isFreeName().
ValueRule settingsRule(const QString &word);
/// The same for a track preset; its lists of filters have rules a word, filterRule().
ValueRule tracksRule(const QString &word);
/// What a filter may hold under one of filterWords().
ValueRule filterRule(FilterKind kind, const QString &word);

/// A field that a person can set, by the word that the command line knows it by.
struct FieldWord
{
    QString word; ///< "pDevice", "audio1.choice"
    ValueRule rule;
};

/// Everything that the sheet of settings shows, and the frame rate that is stored beside it.
QList<FieldWord> settingsFields();
/// Everything that the sheet of track presets shows: up to three filters of each kind.
QList<FieldWord> tracksFields();

/// Sets a field from what a person wrote. A null text, or a sentence that says what would be right; then
/// nothing is changed. A number makes the choice beside it "Custom".
QString setField(KXPresetSettings &preset, const QString &word, const QString &value);
/// The same. A filter that is not there yet is added, behind those that are; "audio2=" with no value takes
/// it away. A number or a property makes the filter choose by it.
QString setField(KXPresetSelections &preset, const QString &word, const QString &value);

} // namespace presets

#pragma once

#include <QJsonObject>
#include <QStringList>

class KXPresetsController;

namespace presets {

/// The user's presets as a file.
struct Export
{
    /// {"version": 1, "presetSelectionsArray": [records], "presetSettingsArray": [records]}
    QJsonObject file;
    /// A sentence for each preset that no import would take, because it was stored with a value that none
    /// holds.
    QStringList leftOut;
};

Export exported(const KXPresetsController &presets);

/// What an import came to: a null problem, and how many presets were added of each kind.
struct Import
{
    QString problem;
    qsizetype selections = 0;
    qsizetype settings = 0;
};

/// Adds the presets of such a file's contents to what is there and stores them; a name that is taken gets
/// a number. What does not fit is refused whole, and nothing is changed.
Import importInto(KXPresetsController &presets, const QByteArray &contents);

} // namespace presets

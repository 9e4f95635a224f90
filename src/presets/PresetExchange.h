#pragma once

#include <QJsonObject>
#include <QString>

class KXPresetsController;

namespace presets {

/// The user's presets as one object: {"version": 1, "presetSelectionsArray": [records],
/// "presetSettingsArray": [records]}.
QJsonObject exported(const KXPresetsController &presets);

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

#pragma once

#include "cli/Command.h"

class KXPresetsController;

namespace cli {

/// One preset that was named on the command line.
struct NamedPreset
{
    bool isTracks = false;
    int index = -1;  ///< in the list of its kind
    QString problem; ///< a null text when there is one
};

/// The preset of that name; the kind ("tracks", "settings") may be null where only one of both has the name.
NamedPreset presetNamed(const KXPresetsController &presets, const QString &kind, const QString &name);

/// "tracks" or "settings".
QString kindWordOf(const NamedPreset &preset);

/// Prints the preset: its sentence and its record.
void showPreset(Session &session, const NamedPreset &preset);

// Changes of the user's presets, each stored at once. The words are those behind the verb; whatever is wrong
// with them changes nothing.

/// KIND NAME [FIELD=VALUE...]
ExitStatus addPreset(Session &session, const QStringList &words);
/// [KIND] NAME FIELD=VALUE...
ExitStatus setPreset(Session &session, const QStringList &words);
/// [KIND] NAME NEW
ExitStatus renamePreset(Session &session, const QStringList &words);
/// [KIND] NAME
ExitStatus removePreset(Session &session, const QStringList &words);

} // namespace cli

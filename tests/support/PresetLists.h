#pragma once

#include <QJsonArray>
#include <QStringList>

namespace support {

class CliFixture;

/// Three presets that choose tracks, of every kind of rule.
QJsonArray someRules();
/// Three presets that choose settings. Exported with the others they take more than 4 KB.
QJsonArray someSettings();
QStringList namesOf(const QJsonArray &records);
/// Makes them, and nothing else, the program's settings.
void storePresets(const CliFixture &cli, const QJsonArray &rules, const QJsonArray &settings);
/// What "presets list" tells: "tracks: Manual".
QStringList listedPresets(const CliFixture &cli);
/// The same for a user who has presets of these names.
QStringList listOfPresets(const QStringList &rules, const QStringList &settings);

} // namespace support

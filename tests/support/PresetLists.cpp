#include "support/PresetLists.h"

#include "support/CliFixture.h"
#include "support/PresetRecords.h"

using namespace Qt::StringLiterals;

namespace support {

QJsonArray someRules()
{
    return {trackPreset(u"English first"_s, u"first of: English/*/surround; English/*/*; #1"_s, u"*/srt"_s),
            trackPreset(u"Everything"_s, u"all"_s, u"all"_s),
            trackPreset(u"French AC3"_s, u"French/ac3/stereo; #2"_s, u"first of: French/*; German/ass"_s)};
}

QJsonArray someSettings()
{
    return {settingsPreset(u"Phone"_s, u"iPhone 4"_s, u"video=1 rate=400 width=320 stereo=1 surround=1"_s),
            settingsPreset(u"Archive"_s, u"MKV"_s, u"surround=3 surroundRate=Original keepSurround"_s),
            settingsPreset(u"Player"_s, u"AVI"_s, u"video=2 rate=300 fps=25 burn"_s)};
}

QStringList namesOf(const QJsonArray &records)
{
    QStringList names;
    for (const QJsonValue &record : records)
        names.append(record.toObject().value(u"pName"_s).toString());
    return names;
}

void storePresets(const CliFixture &cli, const QJsonArray &rules, const QJsonArray &settings)
{
    cli.scratch().write(u"defaults.json"_s, storedPresets(rules, settings));
}

QStringList listedPresets(const CliFixture &cli)
{
    QStringList lines;
    for (const QJsonObject &preset : cli.run({u"presets"_s, u"list"_s, u"--json"_s}).objects())
        lines.append(preset.value(u"kind"_s).toString() + u": "_s + preset.value(u"name"_s).toString());
    return lines;
}

QStringList listOfPresets(const QStringList &rules, const QStringList &settings)
{
    QStringList lines;
    for (const QString &name : QStringList{u"Manual"_s, u"First Track"_s, u"All Tracks"_s} + rules)
        lines.append(u"tracks: "_s + name);
    for (const QString &name : QStringList{u"Manual"_s, u"Extract Tracks"_s} + settings)
        lines.append(u"settings: "_s + name);
    return lines;
}

} // namespace support

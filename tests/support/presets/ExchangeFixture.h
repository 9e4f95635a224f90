#pragma once

#include "support/Scratch.h"
#include "support/presets/PresetFixture.h"

namespace support {

/// A preset file with these records.
QByteArray presetFile(const QVariantList &selections, const QVariantList &settings);
QVariantMap with(QVariantMap record, const QString &word, const QVariant &value);
QVariantMap without(QVariantMap record, const QString &word);

/// A program whose user has one preset of each kind, "Own" and "For PS3".
struct ExchangeFixture
{
    ExchangeFixture();

    QString names() const { return presets.presetSelectionsNamesList().join(QStringLiteral(", ")); }
    QString settingsNames() const { return presets.presetSettingsNamesList().join(QStringLiteral(", ")); }
    QByteArray storedBytes() const { return scratch.read(QStringLiteral("defaults.json")); }
    /// The names of both kinds as a program has them that starts now, with " / " in between.
    QString namesAtNextStart() const;

    Scratch scratch;
    PresetFixture program;
    KXPresetsController &presets;
};

} // namespace support

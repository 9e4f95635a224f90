#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace support {

// Users' presets as they are stored, from a short form.

/// A preset that chooses tracks. Filters stand in order, separated by "; ": "none", "all", "#2" for the
/// second track, or "English/ac3/stereo" by properties, for subtitles "English/srt"; "*" is any, "surround"
/// the other kind of channels. "first of: " in front makes the list "Prioritized".
QJsonObject trackPreset(const QString &name, const QString &audio,
                        const QString &subtitles = QStringLiteral("none"));
/// A preset that chooses settings: everything passes through and subtitles are muxed, but for the words:
/// "video=1 rate=1500 width=720 fps=25 stereo=1 stereoRate=160 surround=3 surroundRate=448 addStereo
/// keepStereo keepSurround burn". A number given is a custom one.
QJsonObject settingsPreset(const QString &name, const QString &device, const QString &words = {});
/// What a file of settings holds that has these presets and nothing else.
QByteArray storedPresets(const QJsonArray &selections, const QJsonArray &settings);
/// What a file of exported presets holds.
QByteArray presetFile(const QJsonArray &selections, const QJsonArray &settings);
/// What such a file holds.
QJsonObject objectIn(const QByteArray &text);

} // namespace support

#pragma once

#include <QList>
#include <QStringList>

namespace selection {

/// The kind of file that a conversion writes.
enum class OutputKind { Mp4, Mkv, Avi, Unknown };

/// What a device plays of what its levels and caps leave open. Every device wants 8 bit 4:2:0, whole frames
/// instead of fields, and AAC of two channels. A target that promises nothing has no profile.
struct Plays
{
    QString profile; ///< of H.264, as libx264 is told it; those before it are played too
    int level = 0;   ///< the highest
    int width = 0;   ///< pixels
    int height = 0;
    int frameRate = 30;   ///< frames a second
    int soundBitRate = 0; ///< of AAC that is made for it, kb/s; 0: any
    QStringList sounds;   ///< the probe's words

    bool promises() const { return !profile.isEmpty(); }
};

/// What a film is converted for: its name as it is offered and stored, and its limits. A cap of 0 is none.
struct Target
{
    QString name;
    OutputKind kind = OutputKind::Mp4;
    QList<int> levels;  ///< of H.264, each an option of its own; the last one counts
    int bitRateCap = 0; ///< kb/s
    int widthCap = 0;   ///< pixels
    QString extension;
    Plays plays = {};
};

/// All targets, in the order in which they are offered: "General", the devices, "MKV", "AVI".
const QList<Target> &targets();
/// The target of exactly that name; null for any other text, which is converted like "General".
const Target *targetNamed(const QString &name);
OutputKind outputKindFor(const QString &targetName);

/// What a target popup offers.
const QStringList &targetNames();
/// Those of them that are devices.
const QStringList &deviceNames();

} // namespace selection

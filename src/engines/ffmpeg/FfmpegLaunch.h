#pragma once

#include "selection/Targets.h"
#include "tools/OptionItem.h"

#include <QHash>
#include <QStringList>

#include <optional>

class KXSelection;
class KXVideoTrack;

namespace engines {

using selection::OutputKind;

/// What a stream is that a list maps, by the text behind its "-map".
struct MappedStream
{
    QString codec;             ///< short codec word of the vocabulary
    QString probedCodec;       ///< the probe's own word; absent when it was not probed
    QString label;             ///< for a sentence: "subtitle track 3"
    std::optional<int> picked; ///< its index in an added file that holds other streams too
};

/// What the launch rules must know beside the list.
struct LaunchFacts
{
    OutputKind kind;
    int sourceWidth = 0; ///< pixels; 0: not known
    int sourceHeight = 0;
    bool isSecondPass = false;
    bool isShellLine = false;         ///< the list is joined into a shell line and left to the shell
    bool generatesTimestamps = false; ///< a retry found out that they are missing
    QString passlogfile;
    std::optional<int> singleStream; ///< what a list for one track alone is to take of its file
    QHash<QString, MappedStream> streams;
};

/// The launch form of an ffmpeg list, and what the user should know about it.
struct LaunchForm
{
    tools::OptionList list;
    QStringList warnings;
};

/// Where no rule applies, the list comes back item by item.
LaunchForm ffmpegLaunchForm(const tools::OptionList &meant, const LaunchFacts &facts);
/// The names of the rules, in the order in which they are applied.
QStringList ffmpegLaunchRuleNames();
/// The list without one of the rules, to show what the rule is for.
LaunchForm ffmpegLaunchFormWithout(const QString &ruleName, const tools::OptionList &meant,
                                   const LaunchFacts &facts);

/// What the rules must know of one of its tracks.
MappedStream mappedStream(const KXVideoTrack &track);
/// The facts of a selection's conversion; pass and retry are the caller's to add.
LaunchFacts launchFactsOf(const KXSelection &selection, OutputKind kind);

} // namespace engines

#pragma once

#include "cli/Choices.h"
#include "cli/CommandLine.h"
#include "selection/Refusals.h"
#include "support/selection/HandMade.h"

// What the tests of choices share.

using namespace Qt::StringLiterals;

/// A film of a video track (0), two audio tracks (1, 2) and a subtitle (3).
inline SelectionPointer film()
{
    using namespace support;
    return handMadeSelection({}, {videoTrack(u"none"_s), audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {}),
                                  audioTrack(u"2"_s, u"aac"_s, u"2"_s, audioSettings(u"passthru"_s, u"2"_s)),
                                  subtitleTrack(u"3"_s, u"srt"_s, u"none"_s)});
}

inline cli::Choices choicesOf(const QStringList &options)
{
    const cli::CommandLine line(QStringList{u"convert"_s, u"a.mkv"_s} + options);
    return cli::Choices(line);
}

inline cli::Choices choicesOf(const QString &options)
{
    return choicesOf(options.split(u' ', Qt::SkipEmptyParts));
}

inline void apply(const cli::Choices &choices, KXSelection &selection)
{
    choices.settingsFor(selection).writeTo(selection);
}

/// Why the selection, with the choices in it, can't be converted; a null text when it can.
inline QString refusal(const cli::Choices &choices, const SelectionPointer &selection)
{
    apply(choices, *selection);
    return selection::refusalToConvert(*selection, choices.settingsFor(*selection));
}

// The table of launch rules and the facts they work on; the rules are in FfmpegLaunchRules.cpp.
#include "engines/ffmpeg/FfmpegLaunch.h"

#include "engines/ffmpeg/FfmpegLaunchRules.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "media/KXVideoTrack.h"
#include "selection/KXSelection.h"
#include "tools/Numbers.h"

#include <array>

using namespace Qt::StringLiterals;

namespace engines {

namespace {

struct Rule
{
    const char16_t *name;
    void (*apply)(LaunchForm &form, const LaunchFacts &facts);
};

/// Each cures one thing that makes the installed ffmpeg fail or do harm.
constexpr std::array rules = {
    Rule{u"shell words of a process list are split", launchrules::splitShellWords},
    Rule{u"statistics of a single track have a place of their own", launchrules::placeStatistics},
    Rule{u"pass stands behind the last input", launchrules::movePassBehindInputs},
    Rule{u"an overlay ends with its subtitle", launchrules::endOverlay},
    Rule{u"an audio filter beside copied audio is one stream's", launchrules::narrowAudioFilter},
    Rule{u"libx264 gets an even size", launchrules::makeSizeEven},
    Rule{u"a subtitle that the container can't hold is left out", launchrules::leaveOutSubtitles},
    Rule{u"MP4 text copied into Matroska becomes SRT", launchrules::textForMatroska},
    Rule{u"pass 2 into MP4 says so", launchrules::nameMp4Format},
    Rule{u"a retried pass 2 makes timestamps too", launchrules::generateTimestamps},
    Rule{u"HEVC that is copied into MP4 is tagged as devices expect it", launchrules::tagHevc},
    // The last: the others know streams by what the list maps.
    Rule{u"of an added file only the track is taken", launchrules::pickAddedTracks},
    Rule{u"a single track is taken by its number", launchrules::pickSingleTrack},
};

/// Every added file has a stream 0, so these are told by the file's name.
QString labelOf(const KXVideoTrack &track)
{
    const QString codec = track.probedCodecName().isNull() ? track.trackCodec() : track.probedCodecName();
    const QString number = u"track "_s + track.trackFfmpegID();
    return u"%1 %2 (%3)"_s.arg(track.trackType().toLower(),
                               track.externalTrackFlag() ? track.trackFileURL().fileName() : number, codec);
}

LaunchForm appliedExcept(const QString &left, const tools::OptionList &meant, const LaunchFacts &facts)
{
    LaunchForm form{meant, {}};
    for (const Rule &rule : rules) {
        if (QStringView(rule.name) != left)
            rule.apply(form, facts);
    }
    return form;
}

} // namespace

MappedStream mappedStream(const KXVideoTrack &track)
{
    MappedStream stream{track.trackCodec(), track.probedCodecName(), labelOf(track), {}};
    if (track.externalTrackFlag() && track.hasCompany())
        stream.picked = track.streamIndex();
    return stream;
}

LaunchForm ffmpegLaunchForm(const tools::OptionList &meant, const LaunchFacts &facts)
{
    return appliedExcept({}, meant, facts);
}

LaunchForm ffmpegLaunchFormWithout(const QString &ruleName, const tools::OptionList &meant,
                                   const LaunchFacts &facts)
{
    return appliedExcept(ruleName, meant, facts);
}

QStringList ffmpegLaunchRuleNames()
{
    QStringList names;
    for (const Rule &rule : rules)
        names.append(QString::fromUtf16(rule.name));
    return names;
}

LaunchFacts launchFactsOf(const KXSelection &selection, OutputKind kind)
{
    LaunchFacts facts;
    facts.kind = kind;
    facts.sourceWidth = static_cast<int>(tools::leadingInteger(selection.videoTrackWidth()));
    facts.sourceHeight = static_cast<int>(tools::leadingInteger(selection.videoTrackHeight()));
    const TrackList tracks = selection.trackList();
    for (const TrackPointer &track : tracks)
        facts.streams.insert(mapArgument(*track, tracks, 0).text(), mappedStream(*track));
    return facts;
}

} // namespace engines

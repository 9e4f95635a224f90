#include "selection/Possibilities.h"

#include "media/KXVideoFile.h"
#include "selection/Refusals.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;
using tools::leadingInteger;

namespace selection {

namespace {

constexpr qint64 surroundFrom = 3; // channels

} // namespace

TrackPossibilities possibilitiesOf(const KXVideoFile &file, const KXSelection &selection)
{
    const qint64 subtitles = leadingInteger(selection.subCount());
    TrackPossibilities possible;
    possible.convert = refusalOfVideos(leadingInteger(selection.vidCount())).isNull();
    possible.editTracks = canEditTracks(file.theFileExtension(), selection);
    possible.hasSubtitle = subtitles >= 1;
    possible.hasOneSubtitle = subtitles == 1;
    return possible;
}

bool isSplitComplete(const KXSelection &selection, const QString &splitSize, const QString &splitDuration)
{
    if (selection.splitType() == u"time"_s)
        return endsBehindStart(selection);
    if (selection.splitType() == u"size"_s)
        return leadingInteger(splitSize) != 0;
    return splitDuration != u"00:00:00"_s;
}

bool canPassThrough(const KXVideoTrack &audio)
{
    return audio.trackCodec() == u"aac"_s || audio.trackCodec() == u"ac3"_s;
}

bool isSurround(const KXVideoTrack &audio)
{
    return leadingInteger(audio.trackNumberOfChannels()) >= surroundFrom;
}

QStringList stepsOfConversion(bool reencodesVideo)
{
    if (reencodesVideo)
        return {u"MKV Track Conversion"_s, u"Mux MKV"_s};
    return {u"MKV Track Conversion"_s, u"Edit Track Profile Level"_s, u"Mux MKV"_s,
            u"Edit MKV Profile Level"_s};
}

} // namespace selection

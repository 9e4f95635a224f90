#include "engines/ffmpeg/ExtractionFates.h"

#include "engines/Fates.h"
#include "engines/OutputBase.h"
#include "engines/ffmpeg/ExtractionArguments.h"
#include "selection/ConversionSettings.h"

using namespace Qt::StringLiterals;
using media::MeantOutput;
using media::TrackFate;

namespace engines {

namespace {

/// Elementary streams one packet behind the other: no box or page tells when one is due.
bool isRawForm(const QString &extension)
{
    static const QStringList forms{u"h264"_s, u"h263"_s, u"mjpeg"_s, u"dv"_s,  u"mp3"_s,  u"mp2"_s, u"aac"_s,
                                   u"ac3"_s,  u"dts"_s,  u"dtshd"_s, u"thd"_s, u"flac"_s, u"wv"_s};
    return forms.contains(extension);
}

/// ffmpeg copies chapters by itself where the form has a place for them, and only these have.
bool carriesChapters(const QString &extension)
{
    return QStringList{u"mp3"_s, u"wma"_s, u"wmv"_s}.contains(extension);
}

/// ffmpeg is told nothing of the codec of a text, so it decodes it and writes it anew as the extension says.
QString textCodecFor(const QString &extension)
{
    if (extension == u"ass"_s || extension == u"ssa"_s)
        return u"ass"_s;
    return extension == u"srt"_s ? u"subrip"_s : QString();
}

TrackFate extracted(const KXVideoTrack &track, const QUrl &output)
{
    const bool isCopied = !selection::isSubtitle(track) || isForMkvextract(track);
    TrackFate fate = isCopied ? copiedTrack(track, output)
                              : reencodedTrack(track, textCodecFor(extensionOf(output)), output);
    fate.outputIndex = 0;
    return fate;
}

MeantOutput emptyMeant(const KXVideoTrack &track, const TrackList &notWanted)
{
    MeantOutput meant;
    meant.sources = {track.trackFileURL()};
    for (const TrackFate &fate : notChosen(notWanted)) {
        meant.tracks.append(fate);
        if (!meant.sources.contains(fate.source))
            meant.sources.append(fate.source);
    }
    return meant;
}

} // namespace

MeantOutput extractionMeant(const KXVideoTrack &track, const TrackList &notWanted, const QUrl &output)
{
    MeantOutput meant = emptyMeant(track, notWanted);
    const QString extension = extensionOf(output);
    meant.output = output;
    meant.file = output;
    meant.isRaw = isRawForm(extension);
    meant.tracks.prepend(extracted(track, output));
    const bool hasChapters = !isForMkvextract(track) && carriesChapters(extension);
    meant.rest = {hasChapters ? restCopied(u"chapters"_s)
                              : restLeftOut(u"chapters"_s, u"A track by itself carries no chapters."_s)};
    return meant;
}

MeantOutput impossibleExtraction(const KXVideoTrack &track, const TrackList &notWanted)
{
    MeantOutput meant = emptyMeant(track, notWanted);
    meant.tracks.prepend(
        leftOutTrack(track, u"No tool here writes that kind of subtitle out of this container."_s));
    return meant;
}

} // namespace engines

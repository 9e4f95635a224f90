#include "engines/Fates.h"

#include "selection/ConversionSettings.h"

using namespace Qt::StringLiterals;
using media::Became;
using media::TrackFate;

namespace engines {

namespace {

TrackFate fateOf(const KXVideoTrack &track, Became became)
{
    TrackFate fate;
    fate.source = track.trackFileURL();
    fate.index = track.streamIndex();
    fate.kind = kindOf(track);
    fate.codec = track.probedCodecName();
    fate.became = became;
    return fate;
}

TrackFate inOutput(const KXVideoTrack &track, Became became, const QUrl &output)
{
    TrackFate fate = fateOf(track, became);
    fate.output = output;
    fate.reason = track.choiceReason();
    return fate;
}

} // namespace

QString kindOf(const KXVideoTrack &track)
{
    if (track.isCover())
        return u"cover"_s;
    if (selection::isSubtitle(track))
        return u"subtitle"_s;
    return selection::isAudio(track) ? u"audio"_s : u"video"_s;
}

TrackFate copiedTrack(const KXVideoTrack &track, const QUrl &output)
{
    return inOutput(track, Became::Copied, output);
}

TrackFate reencodedTrack(const KXVideoTrack &track, const QString &to, const QUrl &output)
{
    TrackFate fate = inOutput(track, Became::Reencoded, output);
    fate.to = to;
    return fate;
}

TrackFate burnedTrack(const KXVideoTrack &track, const QUrl &output)
{
    return inOutput(track, Became::Burned, output);
}

TrackFate leftOutTrack(const KXVideoTrack &track, const QString &reason)
{
    TrackFate fate = fateOf(track, Became::LeftOut);
    fate.reason = reason;
    return fate;
}

QList<TrackFate> notChosen(const TrackList &tracks)
{
    QList<TrackFate> fates;
    for (const TrackPointer &track : tracks)
        fates.append(leftOutTrack(*track, u"It was not chosen."_s));
    return fates;
}

TrackFate restCopied(const QString &kind)
{
    TrackFate pattern;
    pattern.kind = kind;
    return pattern;
}

TrackFate restLeftOut(const QString &kind, const QString &reason, const QString &codec)
{
    TrackFate pattern;
    pattern.kind = kind;
    pattern.codec = codec;
    pattern.became = Became::LeftOut;
    pattern.reason = reason;
    return pattern;
}

const QStringList &kindsOfStreams()
{
    static const QStringList kinds{u"video"_s, u"audio"_s,      u"subtitle"_s,
                                   u"cover"_s, u"attachment"_s, u"data"_s};
    return kinds;
}

QList<QUrl> sourcesOf(const QUrl &film, const TrackList &tracks)
{
    QList<QUrl> sources{film};
    for (const TrackPointer &track : tracks) {
        if (track->externalTrackFlag() && !sources.contains(track->trackFileURL()))
            sources.append(track->trackFileURL());
    }
    return sources;
}

} // namespace engines

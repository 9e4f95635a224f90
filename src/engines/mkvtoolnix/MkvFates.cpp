#include "engines/mkvtoolnix/MkvFates.h"

#include "engines/Fates.h"
#include "engines/OutputBase.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "engines/ffmpeg/FfmpegFates.h"
#include "engines/mkvtoolnix/KXVideoSplitter.h"
#include "selection/KXSelection.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using media::MeantOutput;
using media::TrackFate;

namespace engines {

namespace {

const QString notReadable = u"mkvmerge can't read it."_s;

struct Unreadable
{
    QString kind;
    QString codec;         ///< the probe's own word
    bool isInDvds = false; ///< only out of a program stream
};

/// What mkvmerge does not even list.
const QList<Unreadable> &unreadable()
{
    static const QList<Unreadable> all{{u"subtitle"_s, u"mov_text"_s},
                                       {u"subtitle"_s, u"eia_608"_s},
                                       {u"audio"_s, u"nellymoser"_s},
                                       {u"subtitle"_s, u"dvd_subtitle"_s, true}};
    return all;
}

bool isProgramStream(const QUrl &file)
{
    static const QStringList extensions{u"vob"_s, u"mpg"_s, u"mpeg"_s};
    return extensions.contains(extensionOf(file).toLower());
}

bool isReadable(const KXVideoTrack &track)
{
    return std::none_of(unreadable().begin(), unreadable().end(), [&](const Unreadable &one) {
        return one.kind == kindOf(track) && one.codec == track.probedCodecName() &&
               (!one.isInDvds || isProgramStream(track.trackFileURL()));
    });
}

/// All of the files was asked for, and mkvmerge says nothing of what it does not list.
QList<TrackFate> silentLosses(const QList<QUrl> &files)
{
    QList<TrackFate> losses;
    for (const Unreadable &one : unreadable()) {
        TrackFate loss = restLeftOut(one.kind, notReadable, one.codec);
        loss.told = media::Told::AsAWarning;
        if (!one.isInDvds)
            losses.append(loss);
        for (const QUrl &file : files) {
            loss.source = file;
            if (one.isInDvds && isProgramStream(file))
                losses.append(loss);
        }
    }
    return losses;
}

QList<TrackFate> allThatIsReadableOf(const QList<QUrl> &files)
{
    QList<TrackFate> rest = silentLosses(files);
    rest.append(restLeftOut(u"data"_s, notReadable));
    for (const QString &kind :
         {u"video"_s, u"audio"_s, u"subtitle"_s, u"cover"_s, u"attachment"_s, u"chapters"_s})
        rest.append(restCopied(kind));
    return rest;
}

bool isRedirected(const KXVideoTrack &track)
{
    return track.muxingTrackFileURL() != track.trackFileURL();
}

/// From its own converted file, which was made of the first stream of its source.
TrackFate redirected(const KXVideoTrack &track, const KXSelection &selection, const QUrl &output)
{
    const auto kind = outputKindNamed(appNameForDevice(selection.theDevice()));
    TrackFate fate = reencodedTrack(track, singleTrackCodec(track, kind), output);
    fate.index = 0;
    return fate;
}

TrackFate muxedTrack(const KXVideoTrack &track, const KXSelection &selection, const QUrl &output)
{
    if (isRedirected(track))
        return redirected(track, selection, output);
    if (!isReadable(track))
        return leftOutTrack(track, notReadable);
    // A cover is an attachment, which comes whatever is asked for.
    return track.mkvmergeNumber() || track.isCover()
               ? copiedTrack(track, output)
               : leftOutTrack(track, u"Nobody knows which track of its file it is."_s);
}

bool isAmong(const TrackList &tracks, const KXVideoTrack &track)
{
    return std::any_of(tracks.begin(), tracks.end(), [&](const TrackPointer &other) {
        return other->trackFileURL() == track.trackFileURL() && other->streamIndex() == track.streamIndex();
    });
}

QList<QUrl> filesRead(const TrackList &tracks)
{
    QList<QUrl> files;
    for (const TrackPointer &track : tracks)
        files.append(track->muxingTrackFileURL());
    return files;
}

/// What is not taken, of a file that is read or of one that is not.
QList<TrackFate> otherTracks(const KXSelection &selection, const TrackList &tracks, const QUrl &output)
{
    const bool isRemoval = selection.jobType() == u"MKV Track Removal"_s;
    const QList<QUrl> files = filesRead(tracks);
    QList<TrackFate> fates;
    for (const TrackPointer &track : isRemoval ? selection.trackList() : selection.keepTracksList()) {
        if (isAmong(tracks, *track))
            continue;
        if (track->isCover() && files.contains(track->trackFileURL()))
            fates.append(copiedTrack(*track, output));
        else
            fates.append(leftOutTrack(*track, isRemoval ? u"It was removed."_s : u"It was not chosen."_s));
    }
    return fates;
}

/// Of what a converted file was made only its track and the chapters come.
QList<TrackFate> restOfMux(const QList<QUrl> &sources, const QList<QUrl> &files)
{
    QList<TrackFate> rest;
    for (const QUrl &source : sources) {
        for (const QString &kind : {u"cover"_s, u"attachment"_s}) {
            TrackFate pattern = restLeftOut(kind, u"Only re-encoded tracks of its file are taken."_s);
            pattern.source = source;
            if (!files.contains(source))
                rest.append(pattern);
        }
    }
    rest.append(restLeftOut(u"data"_s, notReadable));
    for (const QString &kind : {u"cover"_s, u"attachment"_s, u"chapters"_s})
        rest.append(restCopied(kind));
    return rest;
}

} // namespace

MeantOutput muxOutput(const KXSelection &selection, const TrackList &tracks, const QUrl &output)
{
    MeantOutput meant;
    meant.output = output;
    meant.file = output;
    meant.sources = sourcesOf(selection.videoTrackFileURL(), tracks);
    for (const TrackPointer &track : tracks)
        meant.tracks.append(muxedTrack(*track, selection, output));
    meant.tracks += otherTracks(selection, tracks, output);
    meant.rest = restOfMux(meant.sources, filesRead(tracks));
    return meant;
}

MeantOutput remuxOutput(const QUrl &source, const QUrl &output)
{
    MeantOutput meant;
    meant.output = output;
    meant.file = output;
    meant.sources = {source};
    meant.rest = allThatIsReadableOf({source});
    return meant;
}

MeantOutput mkvJoinOutput(const QList<QUrl> &files, const QUrl &output)
{
    MeantOutput meant;
    meant.output = output;
    meant.file = output;
    meant.extent = media::Extent::Sum;
    meant.sources = files;
    meant.rest = allThatIsReadableOf(files);
    return meant;
}

QList<MeantOutput> splitOutputs(const KXSelection &selection, const QUrl &source, const QList<QUrl> &outputs)
{
    QList<MeantOutput> parts;
    for (const QUrl &output : outputs) {
        MeantOutput meant = remuxOutput(source, output);
        meant.extent = media::Extent::Part;
        if (splitForm(selection) == steps::OutputForm::OneFile) {
            meant.extent = media::Extent::Stretch;
            meant.from = selection.splitStartTimeSeconds().toDouble();
            meant.to = selection.splitEndTimeSeconds().toDouble();
        }
        parts.append(meant);
    }
    return parts;
}

} // namespace engines

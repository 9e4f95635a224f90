#include "media/KXVideoFile.h"

#include "media/CodecVocabulary.h"
#include "media/FileNames.h"
#include "media/Playlists.h"
#include "media/ProbeReader.h"
#include "media/TrackBuilder.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;
using media::TrackKind;

namespace {

const QString ok = u"OK"_s;
const QString notIdentified = u"track not identified"_s;

/// The quotient of "24000/1001" as "%f" prints it; absent when it is no such pair.
QString frameRate(const QString &ratio)
{
    const QStringList pieces = ratio.split(u'/');
    if (pieces.size() < 2)
        return {};
    return tools::printedFloat(pieces.at(0).toDouble() / pieces.at(1).toDouble());
}

} // namespace

KXVideoFile::KXVideoFile(const tools::ToolPlaces *places)
    : KXHelpers(places)
{
}

QUrl KXVideoFile::resource(const QString &name) const
{
    if (places() == nullptr)
        return {};
    return QUrl::fromLocalFile(places()->resourcesLocation().toLocalFile() + u'/' + name);
}

QString KXVideoFile::initializeForURL(const QUrl &url)
{
    setFileDefaultPropertyValues();
    setTheFileURL(url);
    const QVariantList results = createFfprobeResultsDictionaryArrayForURL(url);
    if (results == QVariantList{notAVideo})
        return notAVideo;
    setFfprobeResultsDictionaryArray(results);
    const QString status = createTrackListForSelf();
    return status == ok ? createFilePropertiesForSelf() : status;
}

/// The one place that runs the tool. An absent text when there was nothing to run it on.
QString KXVideoFile::ffprobe(const QUrl &url, const tools::OptionList &options) const
{
    if (places() == nullptr || isStopped() || !media::isRegularFile(url) || media::namesOtherFiles(url))
        return {};
    return doShellScriptForWithOptions(urlOfApp(u"ffprobe"_s), tools::OptionList{u"-i", url} + options);
}

QString KXVideoFile::probeOf(const QUrl &url) const
{
    return ffprobe(url, {u"-show_streams -print_format json"});
}

QVariantList KXVideoFile::createFfprobeResultsDictionaryArrayForURL(const QUrl &url) const
{
    const QString output = probeOf(url);
    if (isStopped())
        return {notAVideo};
    const bool isList = media::holdsStreamList(output);
    const QList<QVariantMap> found = isList ? media::streamsIn(output) : QList<QVariantMap>();
    if (!isList || !media::standInTheirPlaces(found)) {
        media::writeErrorFile(url, output);
        return {notAVideo};
    }
    return QVariantList(found.begin(), found.end());
}

QStringList KXVideoFile::createFfprobeStreamCodecsArrayForURL(const QUrl &url) const
{
    return media::streamLineCodecs(ffprobe(url, {u"2>&1", u"| grep 'Stream #'"}));
}

QString KXVideoFile::createTrackListForSelf()
{
    const QVariantList streams = ffprobeResultsDictionaryArray();
    media::TrackBuilder builder(theFileURL(), streams.size());
    const QStringList fallback = createFfprobeStreamCodecsArrayForURL(theFileURL());
    for (qsizetype position = 0; position < streams.size(); ++position) {
        const auto outcome = builder.add(streams.at(position).toMap(), fallback.value(position));
        if (outcome == media::TrackBuilder::Outcome::NotIdentified)
            return refuse(notIdentified, u"\n\nProblem Codec: "_s + builder.problemCodec());
    }
    if (builder.tracks().isEmpty())
        return refuse(notAVideo, {});
    deriveVideoBitRates(builder.tracks());
    if (isStopped())
        return notAVideo;
    media::nameUntitledTracks(builder.tracks());
    takeTracksFrom(builder);
    return ok;
}

/// Leaves a fresh probe beside the file for whoever wants to know why.
QString KXVideoFile::refuse(const QString &status, const QString &reason) const
{
    const QString output = probeOf(theFileURL());
    if (isStopped())
        return notAVideo;
    media::writeErrorFile(theFileURL(), output + reason);
    return status;
}

/// A video track that doesn't tell its bit rate gets what the container's leaves after all tracks known
/// so far. The grep passes nothing on purpose: the line that is read comes from standard error, which
/// the pipe doesn't filter.
void KXVideoFile::deriveVideoBitRates(const TrackList &tracks) const
{
    for (const TrackPointer &video : tracks) {
        if (video->trackType() != media::wordOf(TrackKind::Video) || video->trackBitRate() != u"0"_s)
            continue;
        const auto whole =
            media::containerBitRate(ffprobe(theFileURL(), {u"-print_format json | grep 'Durations'"}));
        if (!whole)
            continue;
        qint64 rest = *whole;
        for (const TrackPointer &track : tracks)
            rest -= tools::leadingInteger(track->trackBitRate());
        video->setTrackBitRate(QString::number(rest));
    }
}

void KXVideoFile::takeTracksFrom(const media::TrackBuilder &builder)
{
    if (builder.tracks().size() > 1) {
        setTrackList(trackList() + builder.tracksOf(TrackKind::Video) + builder.tracksOf(TrackKind::Audio) +
                     builder.tracksOf(TrackKind::Subtitle));
    } else {
        setTrackList(builder.tracks());
    }
    setTheNumberOfVideoTracks(QString::number(builder.count(TrackKind::Video)));
    setTheNumberOfAudioTracks(QString::number(builder.count(TrackKind::Audio)));
    setTheNumberOfSubTracks(QString::number(builder.count(TrackKind::Subtitle)));
}

QString KXVideoFile::createFilePropertiesForSelf()
{
    const media::FileNames names = media::fileNamesOf(theFileURL());
    setTheFilePath(names.path);
    setTheFileName(names.name);
    setTheFileExtension(names.extension.toLower());
    setPathToFileFolder(names.folder);
    setTheFileShortName(names.name.left(names.name.indexOf(u'.' + theFileExtension())));
    for (const QVariant &value : ffprobeResultsDictionaryArray()) {
        const QVariantMap stream = value.toMap();
        if (media::textIn(stream, u"codec_type"_s) == u"video"_s) {
            takeVideoStream(stream);
            break;
        }
    }
    for (const TrackPointer &track : trackList()) {
        if (track->trackType() == media::wordOf(TrackKind::Video)) {
            setTheVideoBitRate(track->trackBitRate());
            setTheVideoCodec(track->trackCodec());
        }
    }
    setHeaderRemovalFlag(false);
    return ok;
}

void KXVideoFile::takeVideoStream(const QVariantMap &stream)
{
    const auto text = [&](const QString &key) { return media::textIn(stream, key); };
    if (const QString height = text(u"height"_s); !height.isEmpty())
        setTheHeight(height);
    if (const QString width = text(u"width"_s); !width.isEmpty())
        setTheWidth(width);
    const QString profile = text(u"profile"_s);
    const QString level = text(u"level"_s);
    if (!profile.isEmpty() && !level.isEmpty()) // a level of one digit gives it twice: "L5.5" is meant
        setCodecProfile(profile + u"@L"_s + level.front() + u'.' + level.back());
    if (const QString rate = frameRate(text(u"avg_frame_rate"_s)); !rate.isEmpty())
        setTheFPS(rate);
}

#include "media/KXVideoFile.h"

#include "media/CodecVocabulary.h"
#include "media/FileNames.h"
#include "media/Playlists.h"
#include "media/ProbeReader.h"
#include "media/TrackBuilder.h"
#include "tools/Numbers.h"
#include "tools/OptionItem.h"
#include "tools/ToolPlaces.h"

#include <QMetaProperty>

#include <algorithm>

using namespace Qt::StringLiterals;
using media::AddedTracks;
using media::CodecVocabulary;
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

const QString heading =
    u"################################   Video File Porperties  ######################################"_s;

/// What a reset sets: every writable property but the probe's results.
QStringList resetNames()
{
    QStringList names;
    const QMetaObject &meta = KXVideoFile::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (meta.property(i).isWritable())
            names.append(QString::fromLatin1(meta.property(i).name()));
    }
    names.removeOne(u"ffprobeResultsDictionaryArray"_s);
    return names;
}

/// In an order of their own, which is not that of the fields.
const QStringList &printedFileNames()
{
    static const QStringList names{u"theFilePath"_s,
                                   u"theFileName"_s,
                                   u"theFileShortName"_s,
                                   u"theFileExtension"_s,
                                   u"pathToFileFolder"_s,
                                   u"theFPS"_s,
                                   u"videoPAR"_s,
                                   u"theWidth"_s,
                                   u"theHeight"_s,
                                   u"codecProfile"_s,
                                   u"theVideoBitRate"_s,
                                   u"theVideoCodec"_s,
                                   u"headerRemovalFlag"_s,
                                   u"theNumberOfVideoTracks"_s,
                                   u"theNumberOfAudioTracks"_s,
                                   u"theNumberOfSubTracks"_s};
    return names;
}

void copyProperties(const QStringList &names, const KXVideoFile &from, KXVideoFile &to)
{
    for (const QString &name : names)
        to.setProperty(qPrintable(name), from.property(qPrintable(name)));
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

media::Codecs KXVideoFile::codecs() const
{
    const bool takesNewer = m_takesNewerCodecs || (places() != nullptr && places()->takesNewerCodecs());
    return takesNewer ? media::Codecs::NewerToo : media::Codecs::OfVocabulary;
}

QString KXVideoFile::wayOut() const
{
    if (m_problemCodec.isEmpty())
        return {};
    return u"Its codec %1 is one of the newer ones: --newer-codecs, or the preference \"Open films with "
           u"newer "
           "codecs\", opens it."_s.arg(m_problemCodec);
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

QString KXVideoFile::initializeFromPrintout(const QUrl &url, const media::Printout &printed)
{
    m_printed = printed;
    const QString status = initializeForURL(url);
    m_printed.reset();
    return status;
}

void KXVideoFile::writeErrorFile(const QUrl &url, const QString &text) const
{
    if (!m_printed && m_leavesErrorFiles)
        media::writeErrorFile(url, text);
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
    return m_printed ? m_printed->json : ffprobe(url, {u"-show_streams -print_format json"});
}

QVariantList KXVideoFile::createFfprobeResultsDictionaryArrayForURL(const QUrl &url) const
{
    const QString output = probeOf(url);
    if (isStopped())
        return {notAVideo};
    const bool isList = media::holdsStreamList(output);
    const QList<QVariantMap> found = isList ? media::streamsIn(output) : QList<QVariantMap>();
    if (!isList || !media::standInTheirPlaces(found)) {
        writeErrorFile(url, output);
        return {notAVideo};
    }
    return QVariantList(found.begin(), found.end());
}

QStringList KXVideoFile::createFfprobeStreamCodecsArrayForURL(const QUrl &url) const
{
    if (m_printed)
        return media::streamLineCodecs(m_printed->words.split(u'\n').filter(u"Stream #"_s).join(u'\n'));
    return media::streamLineCodecs(ffprobe(url, {u"2>&1", u"| grep 'Stream #'"}));
}

QString KXVideoFile::createTrackListForSelf()
{
    const QVariantList streams = ffprobeResultsDictionaryArray();
    media::TrackBuilder builder(theFileURL(), streams.size(), codecs());
    const QStringList fallback = createFfprobeStreamCodecsArrayForURL(theFileURL());
    for (qsizetype position = 0; position < streams.size(); ++position) {
        const auto outcome = builder.add(streams.at(position).toMap(), fallback.value(position));
        if (outcome == media::TrackBuilder::Outcome::NotIdentified) {
            m_problemCodec = builder.problemCodec();
            return refuse(theFileURL(), notIdentified, u"\n\nProblem Codec: "_s + builder.problemCodec());
        }
    }
    if (builder.tracks().isEmpty())
        return refuse(theFileURL(), notAVideo, {});
    deriveVideoBitRates(builder.tracks());
    if (isStopped())
        return notAVideo;
    media::nameUntitledTracks(builder.tracks());
    takeTracksFrom(builder);
    return ok;
}

/// Leaves a fresh probe beside the file, and the reason behind it. Answers the status.
QString KXVideoFile::refuse(const QUrl &url, const QString &status, const QString &reason) const
{
    const QString output = probeOf(url);
    if (isStopped())
        return notAVideo;
    writeErrorFile(url, output + reason);
    return status;
}

/// A video track that doesn't tell its bit rate gets what the container's leaves after all tracks known
/// so far. The grep passes nothing on purpose: the line that is read comes from standard error, which
/// the pipe doesn't filter.
void KXVideoFile::deriveVideoBitRates(const TrackList &tracks)
{
    for (const TrackPointer &video : tracks) {
        if (video->trackType() != media::wordOf(TrackKind::Video) || video->trackBitRate() != u"0"_s)
            continue;
        const QString words =
            m_printed ? m_printed->words : ffprobe(theFileURL(), {u"-print_format json | grep 'Durations'"});
        m_toldSeconds = media::containerSeconds(words);
        const auto whole = media::containerBitRate(words);
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

// Separate files that are added.

QString KXVideoFile::whatToDoWithFile(const QUrl &url) const
{
    if (trackList().isEmpty())
        return u"replace file"_s;
    const QVariantList streams = createFfprobeResultsDictionaryArrayForURL(url);
    if (streams == QVariantList{notAVideo})
        return u"replace file"_s; // loading it then says what is wrong
    return media::useOf(streams, url);
}

AddedTracks KXVideoFile::createAddedTrackForURL(const QUrl &url) const
{
    m_problemCodec = QString();
    const QVariantList streams = createFfprobeResultsDictionaryArrayForURL(url);
    if (streams == QVariantList{notAVideo})
        return {{}, notAVideo};
    AddedTracks added = media::addedTracksIn(streams, url, codecs());
    m_problemCodec = added.problemCodec;
    if (!added.complaint.isNull())
        added.refusal = refuse(url, added.refusal, added.complaint);
    return added;
}

QString KXVideoFile::addTrack(const QUrl &url)
{
    const AddedTracks added = createAddedTrackForURL(url);
    if (added.refusal == u"video track"_s)
        return u"adding video track"_s;
    if (!added.refusal.isNull())
        return added.refusal;
    if (added.tracks.size() > 1)
        return u"too many tracks"_s;
    const TrackPointer &track = added.tracks.constFirst();
    track->setExternalTrackFlag(true);
    setTrackList(trackList() << track);
    countTracksAnew();
    return u"OK"_s;
}

void KXVideoFile::takeFlagsOfSource() const
{
    for (const QVariant &value : ffprobeResultsDictionaryArray()) {
        const QVariantMap stream = value.toMap();
        const QVariantMap flags = stream.value(u"disposition"_s).toMap();
        for (const TrackPointer &track : trackList()) {
            if (track->externalTrackFlag() || track->trackFfmpegID() != media::textIn(stream, u"index"_s))
                continue;
            track->setTrackDefaultFlag(media::textIn(flags, u"default"_s) == u"1"_s);
            track->setTrackForcedFlag(media::textIn(flags, u"forced"_s) == u"1"_s);
        }
    }
}

bool KXVideoFile::checkForHeaderRemovalFor(const QUrl &url) const
{
    if (places() == nullptr || !media::isRegularFile(url))
        return false;
    return doShellScriptForWithOptions(urlOfApp(u"mkvinfo"_s), {url}).contains(u"header removal"_s);
}

void KXVideoFile::countTracksAnew()
{
    int videos = 0;
    int audios = 0;
    int subtitles = 0;
    for (const TrackPointer &track : trackList()) {
        const QString type = track->trackType();
        if (type == u"Video"_s)
            track->setTrackIndex(QString::number(++videos));
        else if (type == u"Audio"_s)
            track->setTrackIndex(QString::number(++audios));
        else if (type == u"Subtitle"_s || type == u"External Subtitle"_s)
            track->setTrackIndex(QString::number(++subtitles));
    }
    setTheNumberOfVideoTracks(QString::number(videos));
    setTheNumberOfAudioTracks(QString::number(audios));
    setTheNumberOfSubTracks(QString::number(subtitles));
}

// The record: defaults, copies, text forms and the vocabulary.

const QStringList &KXVideoFile::propertiesKeysList()
{
    static const QStringList words = platform::fieldsFor(staticMetaObject, u"copied"_s);
    return words;
}

void KXVideoFile::setFileDefaultPropertyValues()
{
    const KXVideoFile fresh(nullptr);
    copyProperties(resetNames(), fresh, *this);
    m_toldSeconds = 0;
    m_problemCodec = QString();
}

std::optional<double> KXVideoFile::seconds() const
{
    double longest = m_toldSeconds;
    for (const TrackPointer &track : trackList()) {
        if (!track->externalTrackFlag())
            longest = std::max(longest, track->form().seconds);
    }
    return longest > 0 ? std::optional(longest) : std::nullopt;
}

VideoFilePointer KXVideoFile::copy() const
{
    auto file = std::make_shared<KXVideoFile>(places());
    file->makeSelfCopyOfVideoFile(*this);
    return file;
}

void KXVideoFile::makeSelfCopyOfVideoFile(const KXVideoFile &other)
{
    copyProperties(propertiesKeysList(), other, *this);
    setTrackList(other.trackList());
    m_toldSeconds = other.m_toldSeconds;
}

QString KXVideoFile::stringFromFileProperties() const
{
    QString text = u"\n\n\n"_s + heading + u'\n';
    for (const QString &name : printedFileNames())
        text += name + u" = "_s + platform::printedField(property(qPrintable(name))) + u'\n';
    int number = 0;
    for (const TrackPointer &track : trackList()) {
        text +=
            u"\n################################   Track #%1  ######################################\n"_s.arg(
                ++number);
        text += track->stringFromTrackProperties();
    }
    return text;
}

void KXVideoFile::logFileProperties() const
{
    logString(heading);
    for (const QString &name : printedFileNames())
        logObjectWithString(property(qPrintable(name)), name);
    int number = 0;
    for (const TrackPointer &track : trackList()) {
        logIntegerWithString(++number, u"############################# TRACK"_s);
        track->logTrackProperties();
    }
}

CodecGroups KXVideoFile::videoCodecList() const
{
    return CodecVocabulary::of(TrackKind::Video).codecList();
}

QStringList KXVideoFile::videoInfoList() const
{
    return CodecVocabulary::of(TrackKind::Video).infoList();
}

QStringList KXVideoFile::videoExtList() const
{
    return CodecVocabulary::of(TrackKind::Video).extensionList();
}

CodecGroups KXVideoFile::audioCodecList() const
{
    return CodecVocabulary::of(TrackKind::Audio).codecList();
}

QStringList KXVideoFile::audioInfoList() const
{
    return CodecVocabulary::of(TrackKind::Audio).infoList();
}

QStringList KXVideoFile::audioExtList() const
{
    return CodecVocabulary::of(TrackKind::Audio).extensionList();
}

CodecGroups KXVideoFile::subtitleCodecList() const
{
    return CodecVocabulary::of(TrackKind::Subtitle).codecList();
}

QStringList KXVideoFile::subtitleInfoList() const
{
    return CodecVocabulary::of(TrackKind::Subtitle).infoList();
}

QStringList KXVideoFile::subtitleExtList() const
{
    return CodecVocabulary::of(TrackKind::Subtitle).extensionList();
}

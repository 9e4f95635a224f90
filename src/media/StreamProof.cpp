#include "media/StreamProof.h"

#include "media/RunFigures.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace media {

namespace {

/// What a stream's packets go through before they are hashed; empty: as they are, absent: there is no known
/// way.
using HashFilter = std::optional<QString>;

enum class Home { Matroska, Mov, Flv, Transport, Program, Avi, Asf, Raw, Other };

Home homeOf(const FilmFacts &film)
{
    static const QStringList raw{u"h264"_s, u"hevc"_s, u"aac"_s,  u"ac3"_s,      u"eac3"_s,
                                 u"dts"_s,  u"mp3"_s,  u"flac"_s, u"m4v"_s,      u"wav"_s,
                                 u"ogg"_s,  u"srt"_s,  u"ass"_s,  u"mpegvideo"_s};
    if (film.isMatroska())
        return Home::Matroska;
    if (film.isMov())
        return Home::Mov;
    if (film.isTransport())
        return Home::Transport;
    if (film.isProgram())
        return Home::Program;
    if (film.format == u"flv"_s)
        return Home::Flv;
    if (film.format == u"avi"_s)
        return Home::Avi;
    if (film.format == u"asf"_s)
        return Home::Asf;
    return raw.contains(film.format) ? Home::Raw : Home::Other;
}

/// Parameter sets and delimiters stand in headers here and among the pictures there. Messages are dropped by
/// some tools, so they are not proven.
const QString h264Pictures = u"h264_mp4toannexb,filter_units=remove_types=6-9"_s;
const QString hevcPictures = u"hevc_mp4toannexb,filter_units=remove_types=32-35|39-40"_s;

HashFilter filterOfAac(Home home)
{
    return home == Home::Transport || home == Home::Raw ? u"aac_adtstoasc"_s : QString();
}

HashFilter filterOfMpeg4(Home home)
{
    const bool isKnown = home != Home::Flv && home != Home::Transport && home != Home::Program;
    return isKnown ? HashFilter(u"remove_extra=freq=all"_s) : std::nullopt;
}

/// Of codecs whose packets no container changes.
HashFilter filterOfOthers(const QString &codec, Home home)
{
    static const QStringList unchanged{
        u"mpeg2video"_s, u"ac3"_s,    u"eac3"_s,  u"dts"_s,   u"mp3"_s, u"mp2"_s,    u"opus"_s,
        u"flac"_s,       u"vorbis"_s, u"vp8"_s,   u"vp9"_s,   u"av1"_s, u"mjpeg"_s,  u"wmv1"_s,
        u"wmv2"_s,       u"wmv3"_s,   u"wmav1"_s, u"wmav2"_s, u"vc1"_s, u"subrip"_s, u"ass"_s};
    static const QStringList lostInTransport{u"vorbis"_s, u"flac"_s};
    if (home == Home::Transport && lostInTransport.contains(codec))
        return std::nullopt;
    return unchanged.contains(codec) || codec.startsWith(u"pcm_"_s) ? HashFilter(QString()) : std::nullopt;
}

HashFilter filterFor(const QString &codec, Home home)
{
    if (home == Home::Other)
        return std::nullopt;
    if (codec == u"h264"_s)
        return h264Pictures;
    if (codec == u"hevc"_s)
        return hevcPictures;
    if (codec == u"aac"_s)
        return filterOfAac(home);
    return codec == u"mpeg4"_s ? filterOfMpeg4(home) : filterOfOthers(codec, home);
}

QUrl fileOf(const MeantOutput &output)
{
    return output.file.isEmpty() ? output.output : output.file;
}

/// A list for ffmpeg's reader of films that follow each other, as an address that holds it. Its films need
/// the name of their protocol, else they are taken to lie where the list does.
QString listOf(const QList<QUrl> &films)
{
    QString list = u"ffconcat version 1.0\n"_s;
    for (const QUrl &film : films)
        list += u"file 'file:"_s + film.toLocalFile().replace(u'\'', u"'\\''"_s) + u"'\n"_s;
    return u"data:text/plain;base64,"_s + QString::fromLatin1(list.toUtf8().toBase64());
}

QStringList hashBeginning(const QList<QUrl> &films)
{
    QStringList words{u"-nostdin"_s, u"-v"_s, u"error"_s};
    if (films.size() == 1)
        return words << u"-i"_s << films.constFirst().toLocalFile();
    return words << u"-f"_s << u"concat"_s << u"-safe"_s << u"0"_s << u"-protocol_whitelist"_s
                 << u"file,data"_s << u"-i"_s << listOf(films);
}

void addStream(QStringList &arguments, int stream, qsizetype number, const QString &filter)
{
    arguments << u"-map"_s << u"0:%1"_s.arg(stream);
    if (!filter.isEmpty())
        arguments << u"-bsf:%1"_s.arg(number) << filter;
}

QStringList hashEnd()
{
    return {u"-c"_s, u"copy"_s, u"-f"_s, u"streamhash"_s, u"-hash"_s, u"md5"_s, u"-"_s};
}

/// One side of a proof: films of one container that are read one behind the other, if those can be.
std::optional<Home> commonHome(const QList<QUrl> &films, const QHash<QUrl, FilmFacts> &facts)
{
    std::optional<Home> common;
    for (const QUrl &film : films) {
        const auto known = facts.constFind(film);
        const bool isLine = films.size() == 1 || !film.toLocalFile().contains(u'\n');
        if (known == facts.constEnd() || !isLine || (common && *common != homeOf(*known)))
            return std::nullopt;
        common = homeOf(*known);
    }
    return common;
}

/// The tracks of a stream of the sources, all in one stream of the outputs.
using Group = QList<TrackPlace>;

/// Copied tracks, by where they were and where they are: what lies at one place in all films of each side is
/// one stream.
QList<Group> groupsOf(const QList<MeantOutput> &outputs, const QList<QUrl> &sources)
{
    QList<Group> groups;
    QHash<std::pair<int, int>, qsizetype> places;
    for (int output = 0; output < outputs.size(); ++output) {
        const QList<TrackFate> &tracks = outputs.at(output).tracks;
        for (int track = 0; track < tracks.size(); ++track) {
            const TrackFate &fate = tracks.at(track);
            if (fate.became != Became::Copied || fate.index < 0 || fate.outputIndex < 0 ||
                !sources.contains(fate.source))
                continue;
            const std::pair key{fate.index, fate.outputIndex};
            if (!places.contains(key)) {
                places.insert(key, groups.size());
                groups.append(Group());
            }
            groups[places.value(key)].append({output, track});
        }
    }
    return groups;
}

/// Sources and outputs are read as one film each. A stream that is not in all of them is not compared.
std::optional<ProofRuns> runsFor(const QList<MeantOutput> &outputs, const QList<QUrl> &sources,
                                 const QHash<QUrl, FilmFacts> &films)
{
    QList<QUrl> files;
    for (const MeantOutput &output : outputs)
        files.append(fileOf(output));
    const auto from = commonHome(sources, films);
    const auto to = commonHome(files, films);
    if (!from || !to)
        return std::nullopt;
    ProofRuns runs{
        {sources.constFirst(), hashBeginning(sources)}, {files.constFirst(), hashBeginning(files)}, {}};
    for (const Group &group : groupsOf(outputs, sources)) {
        const TrackPlace first = group.constFirst();
        const TrackFate &fate = outputs.at(first.output).tracks.at(first.track);
        const auto before = filterFor(fate.codec, *from);
        const auto after = filterFor(fate.codec, *to);
        if (!before || !after || group.size() != std::max(sources.size(), outputs.size()))
            continue;
        addStream(runs.source.arguments, fate.index, runs.tracks.size(), *before);
        addStream(runs.output.arguments, fate.outputIndex, runs.tracks.size(), *after);
        runs.tracks.append(group);
    }
    runs.source.arguments += hashEnd();
    runs.output.arguments += hashEnd();
    return runs.tracks.isEmpty() ? std::nullopt : std::optional(runs);
}

/// The runs of one output, by whose number its tracks are named.
void addRunsOf(QList<ProofRuns> &all, const QList<MeantOutput> &outputs, int number,
               const QHash<QUrl, FilmFacts> &films)
{
    const MeantOutput &output = outputs.at(number);
    const bool isSum = output.extent == Extent::Sum;
    for (const QUrl &source : isSum ? QList<QUrl>{output.sources.value(0)} : output.sources) {
        auto runs = runsFor({output}, isSum ? output.sources : QList<QUrl>{source}, films);
        if (!runs)
            continue;
        for (QList<TrackPlace> &places : runs->tracks) {
            for (TrackPlace &place : places)
                place.output = number;
        }
        all.append(*runs);
    }
}

/// By the number of the stream in the run: "1,a,MD5=d41d8cd98f00b204e9800998ecf8427e".
QHash<int, QByteArray> hashesIn(const QByteArray &printed)
{
    static const QRegularExpression form(u"^(\\d+),\\w,(MD5=[0-9a-f]{32})$"_s);
    QHash<int, QByteArray> hashes;
    for (const QByteArray &line : printed.split('\n')) {
        const auto match = form.match(QString::fromLatin1(line.trimmed()));
        if (match.hasMatch())
            hashes.insert(match.captured(1).toInt(), match.captured(2).toLatin1());
    }
    return hashes;
}

QString sentenceOfDifference(const QList<MeantOutput> &outputs, const QList<TrackPlace> &places)
{
    const TrackPlace first = places.constFirst();
    const TrackFate &fate = outputs.at(first.output).tracks.at(first.track);
    const bool isOneSource = std::all_of(places.begin(), places.end(), [&](const TrackPlace &place) {
        return outputs.at(place.output).tracks.at(place.track).source == fate.source;
    });
    const bool isOneOutput = places.constLast().output == first.output;
    return u"Track %1 of %2 (%3) is not the same in %4, bit for bit."_s.arg(
        QString::number(fate.index), isOneSource ? fate.source.fileName() : u"the films"_s, fate.kind,
        isOneOutput ? outputs.at(first.output).output.fileName() : u"the parts"_s);
}

void takeAsProven(TrackFate &fate)
{
    fate.proof = Proof::Bits;
    fate.verified = Verified::SameBits;
}

bool isEncodedVideo(const TrackFate &fate)
{
    return fate.became == Became::Reencoded && fate.kind == u"video"_s && fate.outputIndex >= 0;
}

/// The first line that speaks of the film; a muxer that keeps nothing may complain of the times of frames.
QString firstErrorIn(const QByteArray &errors)
{
    static const QRegularExpression address(u"^(?:\\[[^\\]]* @ 0x[0-9a-f]+\\] *)+"_s);
    for (const QByteArray &line : errors.split('\n')) {
        QString words = QString::fromUtf8(line).trimmed();
        if (!words.isEmpty() && !words.startsWith(u"[null @"_s) && !isHarmlessLine(words))
            return words.remove(address);
    }
    return {};
}

} // namespace

QList<ProofRuns> proofRuns(const QList<MeantOutput> &outputs, const QHash<QUrl, FilmFacts> &films)
{
    QList<ProofRuns> all;
    const bool areParts = !outputs.isEmpty() && outputs.constFirst().extent == Extent::Part;
    if (areParts) {
        const auto runs = runsFor(outputs, outputs.constFirst().sources, films);
        return runs ? QList<ProofRuns>{*runs} : all;
    }
    for (int number = 0; number < outputs.size(); ++number) {
        if (outputs.at(number).extent != Extent::Stretch)
            addRunsOf(all, outputs, number, films);
    }
    return all;
}

QStringList proveBits(QList<MeantOutput> &outputs, const ProofRuns &runs, const QByteArray &ofSource,
                      const QByteArray &ofOutput)
{
    const QHash<int, QByteArray> before = hashesIn(ofSource);
    const QHash<int, QByteArray> after = hashesIn(ofOutput);
    QStringList sentences;
    for (int i = 0; i < runs.tracks.size(); ++i) {
        if (!before.contains(i) || !after.contains(i))
            continue;
        const bool isSame = before.value(i) == after.value(i);
        for (const TrackPlace &place : isSame ? runs.tracks.at(i) : QList<TrackPlace>())
            takeAsProven(outputs[place.output].tracks[place.track]);
        if (!isSame)
            sentences << sentenceOfDifference(outputs, runs.tracks.at(i));
    }
    return sentences;
}

void markUnproven(MeantOutput &output)
{
    static const QStringList kinds{u"video"_s, u"audio"_s, u"subtitle"_s};
    for (TrackFate &fate : output.tracks) {
        if (fate.became == Became::Copied && kinds.contains(fate.kind) && fate.proof != Proof::Bits)
            fate.verified = Verified::NotProven;
    }
}

std::optional<FilmRun> keyFrameRun(const MeantOutput &output)
{
    const QUrl file = fileOf(output);
    FilmRun run{
        file,
        {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-skip_frame"_s, u"nokey"_s, u"-i"_s, file.toLocalFile()}};
    const qsizetype before = run.arguments.size();
    for (const TrackFate &fate : output.tracks) {
        if (isEncodedVideo(fate))
            run.arguments << u"-map"_s << u"0:%1"_s.arg(fate.outputIndex);
    }
    if (run.arguments.size() == before)
        return std::nullopt;
    run.arguments << u"-fps_mode"_s << u"passthrough"_s << u"-f"_s << u"null"_s << u"-"_s;
    return run;
}

QString takeKeyFrames(MeantOutput &output, const QByteArray &errors, bool endedWell)
{
    const QString line = firstErrorIn(errors);
    if (!endedWell || !line.isEmpty()) {
        const QString sentence = u"Not every key frame of %1 can be decoded"_s.arg(output.output.fileName());
        return line.isEmpty() ? sentence + u'.' : sentence + u": "_s + line + u'.';
    }
    for (TrackFate &fate : output.tracks) {
        if (isEncodedVideo(fate))
            fate.verified = Verified::Decodes;
    }
    return {};
}

} // namespace media

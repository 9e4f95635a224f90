#include "media/StreamProof.h"

#include <QRegularExpression>

#include <optional>

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

QStringList hashBeginning(const QUrl &film)
{
    return {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-i"_s, film.toLocalFile()};
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

std::optional<ProofRuns> runsFor(const MeantOutput &output, const QUrl &source, const FilmFacts &from,
                                 const FilmFacts &to)
{
    const QUrl file = output.file.isEmpty() ? output.output : output.file;
    ProofRuns runs{{source, hashBeginning(source)}, {file, hashBeginning(file)}, {}};
    for (int i = 0; i < output.tracks.size(); ++i) {
        const TrackFate &fate = output.tracks.at(i);
        const auto before = filterFor(fate.codec, homeOf(from));
        const auto after = filterFor(fate.codec, homeOf(to));
        const bool isHere = fate.source == source && fate.became == Became::Copied && fate.index >= 0;
        if (!isHere || fate.outputIndex < 0 || !before || !after)
            continue;
        addStream(runs.source.arguments, fate.index, runs.tracks.size(), *before);
        addStream(runs.output.arguments, fate.outputIndex, runs.tracks.size(), *after);
        runs.tracks.append(i);
    }
    runs.source.arguments += hashEnd();
    runs.output.arguments += hashEnd();
    return runs.tracks.isEmpty() ? std::nullopt : std::optional(runs);
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

} // namespace

QList<ProofRuns> proofRuns(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films)
{
    QList<ProofRuns> all;
    const auto to = films.constFind(output.file.isEmpty() ? output.output : output.file);
    if (output.extent != Extent::Whole || to == films.constEnd())
        return all;
    for (const QUrl &source : output.sources) {
        const auto from = films.constFind(source);
        const auto runs = from == films.constEnd() ? std::nullopt : runsFor(output, source, *from, *to);
        if (runs)
            all.append(*runs);
    }
    return all;
}

QStringList proveBits(MeantOutput &output, const ProofRuns &runs, const QByteArray &ofSource,
                      const QByteArray &ofOutput)
{
    const QHash<int, QByteArray> before = hashesIn(ofSource);
    const QHash<int, QByteArray> after = hashesIn(ofOutput);
    QStringList sentences;
    for (int i = 0; i < runs.tracks.size(); ++i) {
        TrackFate &fate = output.tracks[runs.tracks.at(i)];
        if (!before.contains(i) || !after.contains(i))
            continue;
        if (before.value(i) == after.value(i))
            fate.proof = Proof::Bits;
        else
            sentences << u"Track %1 of %2 (%3) is not the same in %4, bit for bit."_s.arg(
                QString::number(fate.index), fate.source.fileName(), fate.kind, output.output.fileName());
    }
    return sentences;
}

} // namespace media

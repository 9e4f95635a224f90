#include "media/FilmReader.h"

#include "media/DeclaredBytes.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
using What = media::FilmRead::What;

namespace media {

namespace {

/// What is listed beyond that is no film's.
constexpr qsizetype mostListing = 64 * 1024 * 1024;
constexpr double longestPictureSeconds = 12;
constexpr int mostErrors = 100;

std::optional<double> numberOf(const QString &text)
{
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

/// ffprobe writes most numbers as text.
std::optional<double> jsonNumber(const QJsonObject &object, const QString &key)
{
    const QJsonValue value = object.value(key);
    return value.isDouble() ? std::optional(value.toDouble()) : numberOf(value.toString());
}

std::optional<qint64> jsonWhole(const QJsonObject &object, const QString &key)
{
    const auto number = jsonNumber(object, key);
    return number ? std::optional(static_cast<qint64>(*number)) : std::nullopt;
}

/// Seconds of "00:01:00.031000000".
std::optional<double> secondsOfTag(const QString &text)
{
    const QStringList pieces = text.split(u':');
    if (pieces.size() != 3)
        return std::nullopt;
    const auto hours = numberOf(pieces.at(0));
    const auto minutes = numberOf(pieces.at(1));
    const auto seconds = numberOf(pieces.at(2));
    return hours && minutes && seconds ? std::optional(*hours * 3600 + *minutes * 60 + *seconds)
                                       : std::nullopt;
}

/// Seconds of one picture at a rate like "30000/1001".
double pictureSeconds(const QString &rate)
{
    const auto over = numberOf(rate.section(u'/', 0, 0));
    const auto under = numberOf(rate.section(u'/', 1, 1));
    return over && under && *over > 0 && *under > 0 ? std::min(*under / *over, longestPictureSeconds) : 0;
}

QString kindOf(const QJsonObject &stream)
{
    const QString type = stream.value(u"codec_type"_s).toString();
    const bool isPicture = stream.value(u"disposition"_s).toObject().value(u"attached_pic"_s).toInt() == 1;
    return type == u"video"_s && isPicture ? u"cover"_s : type;
}

/// mkvmerge's figures of a track are this file's where they were written with it: ffmpeg carries those of its
/// source along.
bool areValidFigures(const QJsonObject &tags, const QString &writtenAt)
{
    QString date = tags.value(u"_STATISTICS_WRITING_DATE_UTC"_s).toString();
    return !date.isEmpty() && writtenAt.startsWith(date.replace(u' ', u'T'));
}

/// ffmpeg writes the end as the duration of a track, mkvmerge the length.
void takeTags(StreamFacts &facts, const QJsonObject &tags, const QString &writtenAt)
{
    const auto told = secondsOfTag(tags.value(u"DURATION"_s).toString());
    const bool isByMkvmerge = tags.contains(u"_STATISTICS_WRITING_APP"_s);
    if (areValidFigures(tags, writtenAt)) {
        facts.packets = jsonWhole(tags, u"NUMBER_OF_FRAMES"_s);
        facts.bytes = jsonWhole(tags, u"NUMBER_OF_BYTES"_s);
        if (told)
            facts.toldEnd = *told + facts.headerStart.value_or(0);
    } else if (!isByMkvmerge) {
        facts.toldEnd = told;
    }
}

/// Uncompressed sound counts samples, and AVI is off by one.
bool countsPackets(const FilmFacts &film, const StreamFacts &stream)
{
    return film.isMov() && stream.isTimed() && !stream.codec.startsWith(u"pcm_"_s);
}

StreamFacts streamFrom(const QJsonObject &stream, const FilmFacts &film)
{
    const QJsonObject tags = stream.value(u"tags"_s).toObject();
    StreamFacts facts;
    facts.index = stream.value(u"index"_s).toInt(-1);
    facts.kind = kindOf(stream);
    facts.codec = stream.value(u"codec_name"_s).toString();
    facts.language = tags.value(u"language"_s).toString();
    facts.extradataHash = stream.value(u"extradata_hash"_s).toString();
    facts.sampleRate = static_cast<int>(jsonNumber(stream, u"sample_rate"_s).value_or(0));
    facts.frameSeconds = std::max(pictureSeconds(stream.value(u"avg_frame_rate"_s).toString()),
                                  pictureSeconds(stream.value(u"r_frame_rate"_s).toString()));
    facts.headerStart = jsonNumber(stream, u"start_time"_s);
    facts.headerSeconds = jsonNumber(stream, u"duration"_s);
    if (countsPackets(film, facts))
        facts.packets = jsonWhole(stream, u"nb_frames"_s);
    if (film.isMatroska())
        takeTags(facts, tags, film.writtenAt);
    return facts;
}

FilmPacket packetFrom(const QJsonObject &object)
{
    FilmPacket packet;
    packet.stream = object.value(u"stream_index"_s).toInt(-1);
    packet.shown = jsonNumber(object, u"pts_time"_s);
    packet.decoded = jsonNumber(object, u"dts_time"_s);
    packet.seconds = jsonNumber(object, u"duration_time"_s).value_or(0);
    packet.bytes = jsonWhole(object, u"size"_s).value_or(0);
    packet.isKey = object.value(u"flags"_s).toString().startsWith(u'K');
    return packet;
}

/// "1,0.021000,N/A,0.040000,335,K_": the order is ffprobe's own.
FilmPacket packetFromLine(const QByteArray &line)
{
    const QList<QByteArray> fields = line.split(',');
    FilmPacket packet;
    if (fields.size() < 6)
        return packet;
    const auto number = [&](qsizetype at) { return numberOf(QString::fromLatin1(fields.at(at))); };
    packet.stream = static_cast<int>(number(0).value_or(-1));
    packet.shown = number(1);
    packet.decoded = number(2);
    packet.seconds = number(3).value_or(0);
    packet.bytes = static_cast<qint64>(number(4).value_or(0));
    packet.isKey = fields.at(5).startsWith('K');
    return packet;
}

/// What is no UTF-8 (a title of an old AVI) is replaced first, else nothing would be read at all.
QJsonObject objectFrom(const QByteArray &json)
{
    return QJsonDocument::fromJson(QString::fromUtf8(json).toUtf8()).object();
}

StreamFacts *streamIn(FilmFacts &facts, int index)
{
    const auto found = std::find_if(facts.streams.begin(), facts.streams.end(),
                                    [&](const StreamFacts &one) { return one.index == index; });
    return found == facts.streams.end() ? nullptr : &*found;
}

/// The index of an MP4 lies behind or in front of its films' data, so it does not end with them.
void takeEndFromIndex(StreamFacts &stream)
{
    if (!stream.lastEnd && stream.headerStart && stream.headerSeconds)
        stream.lastEnd = *stream.headerStart + *stream.headerSeconds;
}

/// Of an AVI that was cut ffmpeg makes up a length by its bytes; its header still tells how many pictures it
/// had.
void takeLengthOfAvi(FilmFacts &facts, const QJsonArray &streams)
{
    for (qsizetype i = 0; facts.format == u"avi"_s && i < streams.size(); ++i) {
        const QJsonObject stream = streams.at(i).toObject();
        const auto pictures =
            jsonNumber(stream, u"nb_frames"_s); // empty ones too, one in each unit of its time
        const QStringList unit = stream.value(u"time_base"_s).toString().split(u'/');
        const double units = unit.value(1).toDouble();
        if (facts.streams.at(i).kind == u"video"_s && pictures && facts.seconds && units > 0)
            facts.seconds = std::max(*facts.seconds, *pictures * unit.constFirst().toDouble() / units);
    }
}

} // namespace

FilmFacts headerFactsFrom(const QByteArray &json)
{
    const QJsonObject object = objectFrom(json);
    const QJsonObject format = object.value(u"format"_s).toObject();
    FilmFacts facts;
    facts.wasAsked = true;
    facts.format = format.value(u"format_name"_s).toString();
    facts.isOpen = !facts.format.isEmpty();
    facts.writtenAt = format.value(u"tags"_s).toObject().value(u"creation_time"_s).toString();
    facts.start = jsonNumber(format, u"start_time"_s);
    facts.seconds = jsonNumber(format, u"duration"_s);
    facts.bytes = jsonWhole(format, u"size"_s).value_or(0);
    facts.chapters = static_cast<int>(object.value(u"chapters"_s).toArray().size());
    const QJsonArray streams = object.value(u"streams"_s).toArray();
    for (const QJsonValue stream : streams)
        facts.streams.append(streamFrom(stream.toObject(), facts));
    takeLengthOfAvi(facts, streams);
    return facts;
}

FilmReader::FilmReader(const FilmWish &wish)
    : m_wish(wish)
{
}

QStringList FilmReader::next()
{
    if (m_made.isEmpty())
        m_facts.seconds = toldSecondsOf(m_wish.film);
    const auto read = nextRead(m_facts, m_wish, m_made);
    if (!read)
        return {};
    m_read = *read;
    m_made.append(*read);
    m_printed.clear();
    m_isCut = false;
    if (read->what == What::Whole)
        m_counts = QList<qint64>(m_facts.streams.size(), 0);
    return argumentsOf(*read, m_wish.film);
}

void FilmReader::feed(const QByteArray &chunk)
{
    m_isCut = m_isCut || m_printed.size() + chunk.size() > mostListing;
    m_facts.isTooLong = m_facts.isTooLong || m_isCut;
    if (m_isCut)
        return;
    m_printed += chunk;
    if (m_read.what == What::Stretch || m_read.what == What::Whole)
        takeLines();
}

void FilmReader::finish(const QByteArray &errors)
{
    static const QRegularExpression lineEnds(u"[\r\n]+"_s);
    for (const QString &line : QString::fromUtf8(errors).split(lineEnds, Qt::SkipEmptyParts)) {
        if (m_facts.errors.size() < mostErrors && !m_facts.errors.contains(line))
            m_facts.errors.append(line);
    }
    m_facts.wasAsked = true;
    if (m_isCut)
        return m_printed.clear();
    if (m_read.what == What::Header || m_read.what == What::Survey || m_read.what == What::Streams)
        takeListing();
    else if (m_read.what == What::Whole)
        countWhole();
    m_printed.clear();
}

/// The head of a header alone tells less than a survey's, but a survey of a file that lies in two pieces of
/// its windows adds to what is known.
void FilmReader::takeListing()
{
    const FilmFacts header = headerFactsFrom(m_printed);
    const bool isFirst = m_facts.streams.isEmpty();
    if (isFirst) {
        const FilmFacts before = m_facts;
        m_facts = header;
        m_facts.errors = before.errors;
        m_facts.isTooLong = before.isTooLong;
        m_facts.declaredBytes = declaredBytesOf(m_wish.film);
    }
    if (m_read.what != What::Survey)
        return;
    m_facts.aimed = m_read.promise;
    m_facts.windows = m_read.windows;
    const QJsonArray packets = objectFrom(m_printed).value(u"packets"_s).toArray();
    for (const QJsonValue packet : packets)
        take(packetFrom(packet.toObject()));
    takeSurveyed(packets.size());
}

void FilmReader::takeSurveyed(qsizetype count)
{
    const bool isAll = m_read.promise && *m_read.promise <= shortFilmSeconds && count < mostListed;
    // A tail begins at the key frame before it; where that lies far away the listing ends before the film.
    if (m_read.promise && *m_read.promise > shortFilmSeconds && count >= mostListed)
        m_facts.isTooLong = true;
    m_facts.listsAll = isAll;
    m_facts.wasReadWhole = m_facts.wasReadWhole || isAll;
    m_facts.hasTail = m_facts.hasTail || (isAll && count > 0);
    for (StreamFacts &stream : m_facts.streams) {
        if (m_facts.isMov() && m_facts.hasTail && !m_facts.isShort() && stream.kind != u"cover"_s)
            takeEndFromIndex(stream);
    }
}

void FilmReader::takeLines()
{
    qsizetype from = 0;
    for (qsizetype end = m_printed.indexOf('\n'); end >= 0; end = m_printed.indexOf('\n', from)) {
        takeLine(m_printed.mid(from, end - from));
        from = end + 1;
    }
    m_printed.remove(0, from);
}

void FilmReader::takeLine(const QByteArray &line)
{
    const FilmPacket packet = packetFromLine(line);
    take(packet);
    if (m_read.what == What::Whole && packet.stream >= 0 && packet.stream < m_counts.size())
        ++m_counts[packet.stream];
}

/// A survey shows a stream's end in its tail only: a packet of a window may have others behind it.
bool FilmReader::isOfTail(const FilmPacket &packet) const
{
    if (m_read.what != What::Survey)
        return true;
    if (!m_read.promise || *m_read.promise <= shortFilmSeconds)
        return m_read.promise.has_value();
    const double behind = m_read.windows.isEmpty() ? 2 : m_read.windows.constLast() + windowSeconds + 1.5;
    return packet.time().value_or(-1) > behind;
}

void FilmReader::take(const FilmPacket &packet)
{
    StreamFacts *stream = streamIn(m_facts, packet.stream);
    if (stream == nullptr || !packet.time())
        return;
    if (!stream->firstTime || *packet.time() < *stream->firstTime)
        stream->firstTime = *packet.time();
    if (m_read.what == What::Survey)
        m_facts.packets.append(packet);
    const bool isPart = m_read.what == What::Survey && !m_read.windows.isEmpty();
    if (packet.isKey && stream->kind == u"video"_s && !isPart) // else there may be others between them
        m_facts.keyFrames.append(*packet.time());
    if (!isOfTail(packet))
        return;
    takeEndOf(packet);
    if (stream->kind == u"video"_s && packet.shown)
        takePicture(packet);
}

/// Of pictures that come at odd times the last ones tell how long one may last: files give it the usual
/// length, encoders the time since the one before.
void FilmReader::takePicture(const FilmPacket &packet)
{
    constexpr qsizetype kept = 5;
    QList<double> &last = m_lastPictures[packet.stream];
    last.insert(std::lower_bound(last.begin(), last.end(), *packet.shown), *packet.shown);
    if (last.size() > kept)
        last.removeFirst();
    StreamFacts &stream = *streamIn(m_facts, packet.stream);
    stream.lastGap = 0;
    for (qsizetype i = 1; i < last.size(); ++i)
        stream.lastGap =
            std::max(stream.lastGap, std::min(last.at(i) - last.at(i - 1), longestPictureSeconds));
}

void FilmReader::takeEndOf(const FilmPacket &packet)
{
    StreamFacts &stream = *streamIn(m_facts, packet.stream);
    const double end = *packet.end();
    if (m_read.what != What::Stretch)
        m_facts.hasTail = true;
    if (stream.lastEnd && end <= *stream.lastEnd)
        return;
    stream.lastSeconds = std::min(packet.seconds, longestPictureSeconds);
    stream.lastEnd = end;
}

void FilmReader::countWhole()
{
    m_facts.wasReadWhole = true;
    m_facts.hasTail = true;
    for (StreamFacts &stream : m_facts.streams) {
        const bool isCounted = stream.packets && !m_facts.isShort();
        if (stream.index >= 0 && stream.index < m_counts.size() && !isCounted)
            stream.packets = m_counts.at(stream.index);
    }
}

} // namespace media

#pragma once

#include <QList>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace media {

/// What one run of ffprobe printed of a file: the streams as JSON, and its words beside them.
struct Printout
{
    QString json;
    QString words;
};

// What ffprobe prints, read as text. None of these runs anything; all take any text whatever.

/// Whether the JSON output holds a stream list. A file that carries the words "Invalid data found" in a
/// title counts as damaged: losses of this kind are accepted.
bool holdsStreamList(const QString &output);

/// One dictionary a stream, of texts and, under "tags" and "disposition", of nested dictionaries. The
/// reader looks at one line at a time and loses something on purpose: commas and double quotes go from
/// every value, a value ends at its first ": ", a "{" or "}" in it opens or closes a dictionary. So tags
/// can stray into the stream itself, where they never replace anything: of a stream's own fields the first
/// value holds, as ffprobe prints them before any tag, and only one of a form that the field can have.
QList<QVariantMap> streamsIn(const QString &output);

/// Whether each stream that tells an index tells its own place. Tools are told by it which stream is meant.
/// What ffprobe says beside a stream (its side data) is a dictionary too, but no stream.
bool standInTheirPlaces(const QList<QVariantMap> &streams);

/// The codec words of ffprobe's "Stream #" lines, in order; lines with fewer pieces are passed over. A
/// comma at a word's end stays.
QStringList streamLineCodecs(const QString &output);

/// The container's bit rate in kb/s from ffprobe's "Duration:" line, 0 where it says "N/A". Nothing when
/// there isn't exactly one such line or it tells no bit rate.
std::optional<qint64> containerBitRate(const QString &output);

/// The seconds of a "01:02:03.45"; 0 for anything else.
double clockSeconds(const QString &text);

/// The film's length in seconds from the same line; 0 where it says "N/A", or where there isn't exactly one.
double containerSeconds(const QString &output);

/// The text under that key; absent when there is none or it is no text.
QString textIn(const QVariantMap &dictionary, const QString &key);

/// The first text of the stream's "tags" under the key in lower or upper case that is not empty.
QString tagIn(const QVariantMap &stream, const QString &key);

} // namespace media

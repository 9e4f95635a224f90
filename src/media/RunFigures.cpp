#include "media/RunFigures.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace media {

namespace {

/// Parts of what ffmpeg's readers and decoders, and mkvmerge, say of damaged data. Only what is listed
/// counts: a tool says much of good films, and some of it differently in each version.
constexpr std::array damageWords = {
    "ended prematurely",
    "partial file",
    "Packet corrupt",
    "corrupt decoded frame",
    "corrupt input packet",
    "Error while decoding",
    "error while decoding",
    "Error submitting packet to decoder",
    "exceeds containing master element",
    "invalid as first byte of an EBML number",
    "concealing ",
    "Packet mismatch",
    "ff asf bad header",
    "Invalid NAL unit size",
    "missing picture in access unit",
    "Error splitting the input into NAL units",
    "Could not read chunk number",
    "Error in the Matroska file structure",
    "This file contains errors",
    "The last timestamp processed before the error",
};

constexpr std::array harmlessWords = {"non monoton",
                                      "Timestamps are unset in a packet",
                                      "Application provided invalid",
                                      "Estimating duration",
                                      "parser not found for codec",
                                      "Could not find codec parameters for stream",
                                      "unable to decode APP fields",
                                      "2pass curve failed to converge"}; // the bit rate of a very short film

/// By which a line of ffmpeg's that is not known is taken for one that tells of an error.
bool speaksOfError(const QString &line)
{
    static const QRegularExpression words(
        u"\\b(error|failed|failure|invalid|unable to|cannot|can't|could not|couldn't|corrupt|missing|truncated)\\b"_s,
        QRegularExpression::CaseInsensitiveOption);
    return words.match(line).hasMatch();
}

/// Only parts of ffmpeg have an address, and what they say is their own but for names, which stand in quotes.
bool isPartsLine(const QString &line)
{
    static const QRegularExpression form(u"^\\[[^\\]]+ @ 0x[0-9a-f]+\\]"_s);
    return form.match(line).hasMatch();
}

/// Only what a tool tells by itself counts: its command line, and lines about a file or a film, repeat names
/// and titles, which may hold whatever they like.
bool isOwnLine(const QString &line)
{
    static const QRegularExpression form(
        u"^(?:\\[[^\\]]+ @ 0x[0-9a-f]+\\]|Error|Warning:|The last timestamp |This file contains "
        "|[^ ].*: corrupt (?:decoded frame|input packet) in stream \\d)"_s);
    return form.match(line).hasMatch();
}

/// A name stands in quotes, and may hold some.
QString withoutNames(QString line)
{
    static const QRegularExpression quoted(u"['\"].*['\"]"_s);
    return line.remove(quoted);
}

/// "  Input stream #0:1 (audio): 5626 packets read (960334 bytes); 5626 frames decoded; "
void takeFigures(RunFigures &figures, const QString &line)
{
    static const QRegularExpression form(
        u"^  (Input|Output) stream #(\\d+):(\\d+) \\(\\w+\\): (?:.*; )?(\\d+) packets (?:read|muxed) \\((\\d+) bytes\\); "_s);
    const auto match = form.match(line);
    if (!match.hasMatch())
        return;
    const RunFigures::Stream stream{match.captured(2).toInt(), match.captured(3).toInt()};
    auto &streams = match.captured(1) == u"Input"_s ? figures.read : figures.muxed;
    streams.insert(stream, {match.captured(4).toLongLong(), match.captured(5).toLongLong()});
}

/// "[flv @ 0x5559] Packet corrupt" without what stands in brackets, which is another one each time.
QString withoutAddress(const QString &line)
{
    static const QRegularExpression address(u"^(?:\\[[^\\]]* @ 0x[0-9a-f]+\\] *)+"_s);
    QString words = line.trimmed();
    return words.remove(address);
}

} // namespace

bool tellsOfDamage(const QString &line)
{
    return std::any_of(damageWords.begin(), damageWords.end(),
                       [&](const char *words) { return line.contains(QLatin1StringView(words)); });
}

bool isHarmlessLine(const QString &line)
{
    return std::any_of(harmlessWords.begin(), harmlessWords.end(),
                       [&](const char *words) { return line.contains(QLatin1StringView(words)); });
}

RunFigures runFiguresFrom(const QString &log)
{
    static const QRegularExpression lineEnds(u"[\r\n]+"_s);
    RunFigures figures;
    bool isBehindFilms = false; // the figures stand at the end, behind everything that repeats a text
    for (const QString &line : log.split(lineEnds, Qt::SkipEmptyParts)) {
        isBehindFilms = isBehindFilms || line.startsWith(u"Input file #"_s);
        if (isBehindFilms)
            takeFigures(figures, line);
        if (figures.damage.isNull() && isOwnLine(line) && tellsOfDamage(withoutNames(line)))
            figures.damage = withoutAddress(line);
        else if (figures.complaint.isNull() && isPartsLine(line) && !isHarmlessLine(line) &&
                 speaksOfError(withoutNames(line)))
            figures.complaint = withoutAddress(line);
    }
    return figures;
}

std::pair<QString, QString> figuresVariable(const QString &plainName)
{
    return {u"FFREPORT"_s, u"file=%1:level=40"_s.arg(plainName)};
}

} // namespace media

#include "media/FilmFacts.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace media {

namespace {

std::optional<double> lesser(std::optional<double> one, std::optional<double> other)
{
    if (!one || !other)
        return one ? one : other;
    return std::min(*one, *other);
}

std::optional<double> greater(std::optional<double> one, std::optional<double> other)
{
    if (!one || !other)
        return one ? one : other;
    return std::max(*one, *other);
}

/// Whole packets and packs, of which a film that nobody cut is made.
bool hasOddSize(const FilmFacts &film)
{
    if (film.isTransport())
        return film.bytes % 188 != 0 && film.bytes % 192 != 0 && film.bytes % 204 != 0;
    return film.isProgram() && film.bytes % 2048 != 0;
}

bool tellsOfTheEnd(const QString &line)
{
    return line.contains(u"ended prematurely"_s) || line.contains(u"partial file"_s) ||
           line.contains(u"Packet corrupt"_s);
}

} // namespace

std::optional<double> FilmPacket::end() const
{
    const auto last = greater(shown, decoded);
    return last ? std::optional(*last + seconds) : std::nullopt;
}

std::optional<double> StreamFacts::startOfCopy() const
{
    return lesser(headerStart, firstTime);
}

const StreamFacts *FilmFacts::stream(int index) const
{
    const auto found =
        std::find_if(streams.begin(), streams.end(), [&](const auto &one) { return one.index == index; });
    return found == streams.end() ? nullptr : &*found;
}

QList<const StreamFacts *> FilmFacts::ofKind(const QString &kind) const
{
    QList<const StreamFacts *> found;
    for (const StreamFacts &one : streams) {
        if (one.kind == kind)
            found.append(&one);
    }
    return found;
}

std::optional<double> FilmFacts::promise() const
{
    if (!seconds || !(isTransport() || isProgram() || format == u"ogg"_s))
        return seconds;
    return *seconds + start.value_or(0); // their times begin anywhere, and the length is counted from there
}

std::optional<double> FilmFacts::earliestStart() const
{
    std::optional<double> earliest;
    for (const StreamFacts &one : streams) {
        if (one.isTimed())
            earliest = lesser(earliest, one.startOfCopy());
    }
    return earliest;
}

std::optional<double> FilmFacts::lastEnd() const
{
    std::optional<double> last;
    for (const StreamFacts &one : streams) {
        if (one.isTimed())
            last = greater(last, one.lastEnd);
    }
    return last;
}

bool FilmFacts::isShort() const
{
    if (!isOpen)
        return false;
    if (hasOddSize(*this) || std::any_of(errors.begin(), errors.end(), tellsOfTheEnd))
        return true;
    if (declaredBytes && *declaredBytes > bytes)
        return true;
    if (isTransport() || isProgram()) // whose length was made from their last packets
        return false;
    const auto told = promise();
    std::optional<double> last = lastEnd();
    for (const StreamFacts &one : streams) { // a subtitle, or the names of chapters, may last longest
        if (one.kind == u"subtitle"_s)
            last = greater(last, one.lastEnd);
        else if (one.kind == u"data"_s && one.headerSeconds)
            last = greater(last, one.headerStart.value_or(0) + *one.headerSeconds);
    }
    return told && last && *last < *told - std::max(1.0, *told * 0.0005);
}

} // namespace media

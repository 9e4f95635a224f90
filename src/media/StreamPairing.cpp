#include "media/StreamPairing.h"

#include <algorithm>
#include <cmath>

namespace media {

namespace {

struct Match
{
    double cost = 0;
    int expected = -1;
    int found = -1;
};

/// What a length may be off tells no tracks apart: those of one length come in their order.
double lengthCost(const ExpectedStream &expected, const StreamFacts &found)
{
    const auto start = found.startOfCopy();
    if (!expected.seconds || !start || !found.lastEnd)
        return 0;
    const double off = std::abs(*found.lastEnd - *start - *expected.seconds);
    return off <= expected.tolerance(found) ? 0 : std::min(100.0, off);
}

double costOf(const ExpectedStream &expected, const MeantOutput &output, const StreamFacts &found)
{
    const int place = output.tracks.at(expected.fates.constFirst()).outputIndex;
    double cost = place >= 0 && place != found.index ? 10000 : 0;
    if (!expected.codec.isEmpty() && expected.codec != found.codec)
        cost += 1000;
    if (!expected.language.isEmpty() && expected.language != found.language)
        cost += 0.4;
    return cost + lengthCost(expected, found);
}

} // namespace

QList<int> pairedStreams(const QList<ExpectedStream> &expected, const MeantOutput &output,
                         const FilmFacts &film)
{
    QList<Match> matches;
    for (int i = 0; i < expected.size(); ++i) {
        for (int j = 0; j < film.streams.size(); ++j) {
            if (film.streams.at(j).kind == expected.at(i).kind)
                matches.append({costOf(expected.at(i), output, film.streams.at(j)), i, j});
        }
    }
    std::stable_sort(matches.begin(), matches.end(),
                     [](const Match &one, const Match &other) { return one.cost < other.cost; });
    QList<int> pairs(expected.size(), -1);
    for (const Match &match : std::as_const(matches)) {
        if (pairs.at(match.expected) < 0 && !pairs.contains(match.found))
            pairs[match.expected] = match.found;
    }
    return pairs;
}

} // namespace media

#include "media/PartsCheck.h"

#include "media/ExpectedStreams.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace media {

namespace {

using Parts = QList<CheckedOutput *>;

TrackFate *fateIn(CheckedOutput &part, const TrackFate &wanted)
{
    auto &tracks = part.output.tracks;
    const auto found = std::find_if(tracks.begin(), tracks.end(), [&](const TrackFate &one) {
        return one.source == wanted.source && one.index == wanted.index && one.kind == wanted.kind;
    });
    return found == tracks.end() ? nullptr : &*found;
}

/// Of text there is nothing to add up: a cue has no length beside the others.
double togetherLast(const Parts &parts, const TrackFate &wanted)
{
    double seconds = 0;
    for (CheckedOutput *part : parts) {
        const TrackFate *fate = fateIn(*part, wanted);
        seconds += fate == nullptr ? 0 : fate->outputSeconds.value_or(0);
    }
    return seconds;
}

double toleranceOf(const ExpectedStream &stream, qsizetype parts)
{
    return stream.tolerance(*stream.sources.constFirst()) * double(parts);
}

void fail(const Parts &parts, const QString &sentence)
{
    for (CheckedOutput *part : parts) {
        part->result = CheckedOutput::Result::Failed;
        part->sentences.prepend(sentence);
    }
}

void prove(const Parts &parts, const TrackFate &wanted)
{
    for (CheckedOutput *part : parts) {
        if (TrackFate *fate = fateIn(*part, wanted))
            fate->proof = Proof::Lengths;
    }
}

void checkStream(const Parts &parts, const ExpectedStream &stream, const QString &label)
{
    const TrackFate wanted = parts.constFirst()->output.tracks.at(stream.fates.constFirst());
    const double seconds = togetherLast(parts, wanted);
    if (std::abs(seconds - *stream.seconds) <= toleranceOf(stream, parts.size()))
        prove(parts, wanted);
    else
        fail(parts, u"The %1 of the %2 parts lasts %3 instead of %4."_s.arg(label)
                        .arg(parts.size())
                        .arg(clockTime(seconds), clockTime(*stream.seconds)));
}

void checkGroup(const Parts &parts, const Films &films)
{
    MeantOutput whole = parts.constFirst()->output;
    whole.extent = Extent::Whole;
    for (const ExpectedStream &stream : expectedStreams(whole, films)) {
        if (!stream.isTimed() || !stream.seconds)
            continue;
        const int index = whole.tracks.at(stream.fates.constFirst()).index;
        checkStream(parts, stream, stream.kind == u"video"_s ? stream.kind : u"audio track %1"_s.arg(index));
    }
}

} // namespace

void checkPartsTogether(QList<CheckedOutput> &parts, const Films &films)
{
    QList<QUrl> done;
    for (const CheckedOutput &first : std::as_const(parts)) {
        const QUrl source = first.output.sources.value(0);
        if (first.output.extent != Extent::Part || done.contains(source))
            continue;
        done.append(source);
        Parts group;
        for (CheckedOutput &one : parts) {
            if (one.output.extent == Extent::Part && one.output.sources.value(0) == source)
                group.append(&one);
        }
        checkGroup(group, films);
    }
}

} // namespace media

#include "summary/ConversionSummary.h"

#include "media/KXVideoFile.h"
#include "selection/KXSelection.h"
#include "selection/Refusals.h"
#include "selection/SizeEstimate.h"
#include "selection/Targets.h"
#include "summary/Figures.h"
#include "summary/TrackLook.h"
#include "tools/Numbers.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using media::TrackKind;
using tools::leadingInteger;

namespace summary {

namespace {

constexpr int stereoCopyRate = 160; // kb/s

const QString separator = u" · "_s;

TrackList tracksOfKind(const KXSelection &selection, TrackKind kind)
{
    TrackList tracks;
    for (const TrackPointer &track : selection.trackList()) {
        if (kindOf(*track) == kind)
            tracks.append(track);
    }
    return tracks;
}

/// A number that the target does not allow is set to its limit.
qint64 limited(const QString &number, int limit)
{
    const qint64 value = leadingInteger(number);
    return limit > 0 ? std::min<qint64>(value, limit) : value;
}

qint64 pictureRate(const KXSelection &selection)
{
    const selection::Target *target = selection::targetNamed(selection.theDevice());
    return limited(selection.userVideoBitRate(), target == nullptr ? 0 : target->bitRateCap);
}

qint64 pictureWidth(const KXSelection &selection)
{
    const selection::Target *target = selection::targetNamed(selection.theDevice());
    const qint64 width = limited(selection.userWidth(), target == nullptr ? 0 : target->widthCap);
    return std::min(width, leadingInteger(selection.videoTrackWidth()));
}

bool isCopiedPicture(const KXVideoTrack &video)
{
    return video.userCodec() == u"passthru"_s;
}

QString pictureSentence(const KXSelection &selection, const KXVideoTrack &video)
{
    if (isCopiedPicture(video))
        return u"Picture copied as it is"_s;
    QString text = u"Picture re-encoded "_s + becomesBy(selection, video).text;
    if (const qint64 rate = pictureRate(selection); rate > 0)
        text += u", %1 kb/s"_s.arg(rate);
    if (const qint64 width = pictureWidth(selection); width > 0)
        text += u", %1 wide"_s.arg(width);
    return text;
}

/// "AC3 5.1 copied"
QStringList soundsOf(const KXVideoTrack &track)
{
    QStringList texts;
    for (const selection::AudioOutput &output : selection::outputsOf(track)) {
        const QString shape =
            channelsText(output.passesThrough() ? track.trackNumberOfChannels() : output.channels).toLower();
        texts.append(output.passesThrough()
                         ? u"%1 %2 copied"_s.arg(codecText(track), shape)
                         : u"%1 %2 %3 kb/s"_s.arg(output.codec.toUpper(), shape, output.bitRate));
    }
    if (!texts.isEmpty() && track.createStereoCopyFlag())
        texts.append(u"AAC stereo %1 kb/s"_s.arg(stereoCopyRate));
    return texts;
}

QString soundSentence(const KXSelection &selection)
{
    QStringList texts;
    for (const TrackPointer &track : tracksOfKind(selection, TrackKind::Audio))
        texts += soundsOf(*track);
    if (texts.isEmpty())
        return u"no sound"_s;
    const QString last = texts.takeLast();
    return u"sound "_s + (texts.isEmpty() ? last : texts.join(u", "_s) + u" and "_s + last);
}

QStringList subtitleSentences(const KXSelection &selection)
{
    QStringList texts;
    int kept = 0;
    for (const TrackPointer &track : tracksOfKind(selection, TrackKind::Subtitle)) {
        const QString becomes = becomesBy(selection, *track).text;
        if (becomes == u"Burned in"_s)
            texts.append(track->trackLanguage() == u"undetermined"_s
                             ? u"subtitle burned in"_s
                             : u"%1 subtitle burned in"_s.arg(track->trackLanguage()));
        else if (becomes == u"Kept as a track"_s)
            ++kept;
    }
    if (kept > 0)
        texts.append(kept == 1 ? u"1 subtitle as a track"_s : u"%1 subtitles as tracks"_s.arg(kept));
    return texts;
}

QString profileText(const QString &profile)
{
    const QString readable = profile.section(u'@', 0, 0);
    const QString level = profile.section(u"@L"_s, 1);
    if (profile == u"none"_s)
        return {};
    return level.startsWith(u'-') ? u' ' + readable : u" %1 %2"_s.arg(readable, level);
}

} // namespace

QList<FilmFact> factsOf(const KXVideoFile &film)
{
    QList<FilmFact> facts;
    const auto add = [&](const QString &text, FilmFact::Kind kind = FilmFact::Kind::Plain) {
        if (!text.isEmpty())
            facts.append({text, kind});
    };
    const TrackList tracks = film.trackList();
    const auto video = std::find_if(tracks.begin(), tracks.end(),
                                    [](const TrackPointer &track) { return selection::isVideo(*track); });
    add(lengthText(film.seconds().value_or(0)));
    add(pictureText(film.theWidth(), film.theHeight()));
    if (video != tracks.end()) {
        const bool isH264 = (*video)->trackCodec() == u"h264"_s;
        add(codecText(**video) + (isH264 ? profileText(film.codecProfile()) : QString()),
            FilmFact::Kind::Codec);
        add(frameRateText(film.theFPS()));
        add(rateText(leadingInteger(film.theVideoBitRate())));
    }
    add(sizeText(QFileInfo(film.theFilePath()).size()));
    return facts;
}

QString conversionText(const KXSelection &selection)
{
    QStringList parts;
    const TrackList videos = tracksOfKind(selection, TrackKind::Video);
    if (!videos.isEmpty())
        parts.append(pictureSentence(selection, *videos.constFirst()));
    parts.append(soundSentence(selection));
    parts += subtitleSentences(selection);
    return parts.join(separator);
}

QString extractionText(const KXSelection &selection)
{
    const qsizetype count = selection.trackList().size();
    return count == 1 ? u"1 file, of the ticked track"_s
                      : u"%1 files, one for each ticked track"_s.arg(count);
}

QString conversionSizeText(const KXVideoFile &film, const KXSelection &selection)
{
    const auto estimate = selection::estimateOf(selection, film.seconds());
    return estimate ? u"about "_s + sizeText(estimate->bytes) : u"size not known"_s;
}

Problem conversionProblem(const KXVideoFile &film, const KXSelection &selection)
{
    const TrackList videos = tracksOfKind(selection, TrackKind::Video);
    if (film.theNumberOfVideoTracks() == u"0"_s)
        return {u"This file has no video track to convert."_s, Problem::Mend::None, true};
    if (videos.size() != 1)
        return {u"Tick exactly one video track."_s, Problem::Mend::TakeFirstTracks, true};
    const TrackList subtitles = tracksOfKind(selection, TrackKind::Subtitle);
    const bool burns = std::any_of(subtitles.begin(), subtitles.end(),
                                   [](const TrackPointer &track) { return selection::isBurned(*track); });
    if (burns && isCopiedPicture(*videos.constFirst()))
        return {
            u"The subtitle can’t be burned while the picture is copied: choose H.264, 1 pass or 2 passes."_s,
            Problem::Mend::None, false};
    for (const TrackPointer &track : subtitles) {
        if (const QString reason = becomesBy(selection, *track).reason; !reason.isEmpty())
            return {reason, Problem::Mend::None, false};
    }
    return {selection::refusalToEncode(selection), Problem::Mend::None, false};
}

QString reasonToStay(const KXVideoFile &film)
{
    const TrackList tracks = film.trackList();
    const auto videos = std::count_if(tracks.begin(), tracks.end(), [](const TrackPointer &track) {
        return selection::isVideo(*track) && track->trackSelected();
    });
    if (film.theNumberOfVideoTracks() == u"0"_s)
        return u"no video track"_s;
    if (videos == 1)
        return {};
    return videos == 0 ? u"no video ticked"_s : u"%1 videos ticked"_s.arg(videos);
}

} // namespace summary

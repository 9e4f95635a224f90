#include "summary/TrackLook.h"

#include "media/KXVideoFile.h"
#include "selection/KXSelection.h"
#include "selection/Targets.h"
#include "summary/Figures.h"
#include "tools/Numbers.h"

#include <QHash>

using namespace Qt::StringLiterals;
using media::TrackKind;
using selection::OutputKind;
using Tone = summary::Becoming::Tone;

namespace summary {

namespace {

/// By the codec's own name, else by the short word that tracks carry.
const QHash<QString, QString> &codecTexts()
{
    static const QHash<QString, QString> texts{
        {u"h264"_s, u"H.264"_s},       {u"hevc"_s, u"HEVC"_s},
        {u"mpeg4"_s, u"MPEG-4"_s},     {u"mpeg2"_s, u"MPEG-2"_s},
        {u"eac3"_s, u"E-AC3"_s},       {u"dtshd"_s, u"DTS"_s},
        {u"dts"_s, u"DTS"_s},          {u"truehd"_s, u"TrueHD"_s},
        {u"wav"_s, u"PCM"_s},          {u"ogg"_s, u"Vorbis"_s},
        {u"ttxt"_s, u"Text"_s},        {u"vobsub"_s, u"VobSub"_s},
        {u"dvbsub"_s, u"DVB"_s},       {u"hdmv_pgs_subtitle"_s, u"PGS"_s},
        {u"teletext"_s, u"TXT"_s},     {u"dvd_subtitle"_s, u"VobSub"_s},
        {u"dvb_subtitle"_s, u"DVB"_s},
    };
    return texts;
}

QString outputText(const selection::AudioOutput &output)
{
    if (output.passesThrough())
        return u"Copied"_s;
    const qint64 channels = tools::leadingInteger(output.channels);
    const QString shape = channels == 2 ? u"stereo"_s : channelsText(output.channels);
    return u"%1 %2 %3"_s.arg(output.codec.toUpper(), shape, output.bitRate);
}

Becoming soundBecomes(const KXVideoTrack &track)
{
    QStringList parts;
    for (const selection::AudioOutput &output : selection::outputsOf(track))
        parts.append(outputText(output));
    if (parts.isEmpty())
        return {u"Left out"_s, Tone::Warning, u"Nothing is chosen for this track under Sound."_s};
    if (track.createStereoCopyFlag())
        parts.append(u"AAC stereo 160"_s);
    return {parts.join(u" + "_s), Tone::Plain, {}};
}

Becoming pictureBecomes(const KXSelection &selection, const KXVideoTrack &track)
{
    if (track.userCodec() == u"passthru"_s)
        return {u"Copied"_s, Tone::Plain, {}};
    const bool twice = selection.userPassNumber() == u"2"_s;
    const bool isAvi = selection::outputKindFor(selection.theDevice()) == OutputKind::Avi;
    return {(isAvi ? u"MPEG-4, "_s : u"H.264, "_s) + (twice ? u"2 passes"_s : u"1 pass"_s), Tone::Plain, {}};
}

Becoming subtitleBecomes(const KXSelection &selection, const KXVideoTrack &track)
{
    if (selection::isBurned(track))
        return {u"Burned in"_s, Tone::Plain, {}};
    const OutputKind kind = selection::outputKindFor(selection.theDevice());
    if (kind == OutputKind::Avi)
        return {u"Left out"_s, Tone::Warning, u"An AVI carries no subtitles."_s};
    if (kind == OutputKind::Mp4 && isPictureSubtitle(track))
        return {u"Left out"_s, Tone::Warning,
                u"A picture subtitle cannot be kept in M4V: burn it, or choose the target MKV."_s};
    return {u"Kept as a track"_s, Tone::Plain, {}};
}

} // namespace

TrackKind kindOf(const KXVideoTrack &track)
{
    if (selection::isVideo(track))
        return TrackKind::Video;
    return selection::isAudio(track) ? TrackKind::Audio : TrackKind::Subtitle;
}

QString kindText(TrackKind kind)
{
    return kind == TrackKind::Video ? u"Video"_s : kind == TrackKind::Audio ? u"Audio"_s : u"Subtitle"_s;
}

QString codecText(const KXVideoTrack &track)
{
    const QString own = codecTexts().value(track.probedCodecName());
    if (!own.isEmpty())
        return own;
    const QString word = track.trackCodec();
    return word == u"none"_s ? QString() : codecTexts().value(word, word.toUpper());
}

QString channelsText(const QString &channels)
{
    static const QStringList shapes{{}, u"Mono"_s, u"Stereo"_s, {}, {}, {}, u"5.1"_s, {}, u"7.1"_s};
    const qint64 count = tools::leadingInteger(channels);
    if (count <= 0)
        return {};
    const QString shape = count < shapes.size() ? shapes.at(count) : QString();
    return shape.isEmpty() ? u"%1 ch."_s.arg(count) : shape;
}

QString factText(const KXVideoTrack &track, const KXVideoFile &file)
{
    switch (kindOf(track)) {
    case TrackKind::Video:
        return track.externalTrackFlag() ? QString() : pictureText(file.theWidth(), file.theHeight());
    case TrackKind::Audio:
        return channelsText(track.trackNumberOfChannels());
    case TrackKind::Subtitle:
        break;
    }
    return {};
}

bool isPictureSubtitle(const KXVideoTrack &track)
{
    static const QStringList pictures{u"pgs"_s, u"vobsub"_s, u"dvbsub"_s, u"teletext"_s};
    return selection::isSubtitle(track) && pictures.contains(track.trackCodec());
}

Becoming becomesBy(const KXSelection &selection, const KXVideoTrack &track)
{
    if (!track.trackSelected())
        return {};
    switch (kindOf(track)) {
    case TrackKind::Video:
        return pictureBecomes(selection, track);
    case TrackKind::Audio:
        return soundBecomes(track);
    case TrackKind::Subtitle:
        break;
    }
    return subtitleBecomes(selection, track);
}

Becoming becomesBy(selection::TrackEdit edit, const KXVideoTrack &track)
{
    using selection::TrackEdit;
    const bool ticked = track.trackSelected();
    if (track.externalTrackFlag())
        return {edit == TrackEdit::Add && ticked ? u"Added"_s : u"Not in the file"_s, Tone::Plain, {}};
    if (edit == TrackEdit::Extract && ticked)
        return {u"Own file"_s, Tone::Plain, {}};
    if (edit == TrackEdit::Remove && ticked)
        return {u"Removed"_s, Tone::Bad, {}};
    return {u"Stays"_s, Tone::Plain, {}};
}

} // namespace summary

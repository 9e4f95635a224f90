#include "cli/Choices.h"

#include "cli/CommandLine.h"
#include "selection/KXSelection.h"
#include "selection/Targets.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using selection::Picture;
using selection::SubtitleUse;

namespace cli {

namespace {

constexpr qint64 mostChannels = 8;

bool isPositiveNumber(const QString &text)
{
    return tools::isAllDigits(text) && text.size() <= 9 && tools::leadingInteger(text) > 0;
}

bool isMp4(const QString &device)
{
    return selection::outputKindFor(device) == selection::OutputKind::Mp4;
}

const QHash<QString, Picture> &pictures()
{
    static const QHash<QString, Picture> words{{u"passthru"_s, Picture::PassThrough},
                                               {u"1pass"_s, Picture::OnePass},
                                               {u"2pass"_s, Picture::TwoPasses}};
    return words;
}

const QHash<QString, SubtitleUse> &subtitleUses()
{
    static const QHash<QString, SubtitleUse> words{{u"mux"_s, SubtitleUse::Mux},
                                                   {u"burn"_s, SubtitleUse::Burn}};
    return words;
}

/// Without zeros in front.
QString plainNumber(const QString &text)
{
    return QString::number(tools::leadingInteger(text));
}

/// The track that a word of --audio means: a stream of the file, or "+1", the first added file.
TrackPointer trackNamed(const QString &word, const TrackList &tracks)
{
    const bool isAdded = word.startsWith(u'+');
    qsizetype added = 0;
    for (const TrackPointer &track : tracks) {
        added += track->externalTrackFlag() ? 1 : 0;
        const QString name = isAdded ? u'+' + QString::number(added) : track->trackFfmpegID();
        if (track->externalTrackFlag() == isAdded && name == word)
            return track;
    }
    return nullptr;
}

} // namespace

std::optional<QStringList> trackIndexes(const QString &list, QString &error)
{
    QStringList indexes;
    for (const QString &piece : list.split(u',')) {
        const QString index = piece.trimmed();
        if (!tools::isAllDigits(index)) {
            error = u"\"%1\" in --tracks is no stream index."_s.arg(piece);
            return std::nullopt;
        }
        if (!indexes.contains(index))
            indexes.append(index);
    }
    return indexes;
}

bool leavesOutSubtitles(const KXSelection &selection)
{
    const TrackList tracks = selection.trackList();
    return selection::outputKindFor(selection.theDevice()) == selection::OutputKind::Avi &&
           std::none_of(tracks.begin(), tracks.end(),
                        [](const TrackPointer &track) { return selection::isBurned(*track); });
}

Choices::Choices(const CommandLine &line)
{
    for (const QString &option : {u"device"_s, u"kind"_s, u"video"_s, u"video-bitrate"_s, u"width"_s,
                                  u"audio"_s, u"subtitles"_s, u"add"_s, u"auto"_s, u"output"_s}) {
        if (line.has(option))
            m_given.append(u"--"_s + option);
    }
    readAim(line);
    if (!line.has(u"settings-preset"_s) && !line.has(u"auto"_s)) {
        m_settings.target = u"General"_s;
        m_settings.picture = Picture::PassThrough;
        m_settings.subtitles = SubtitleUse::Mux;
    }
    readTarget(line);
    readVideo(line);
    readAudio(line.values(u"audio"_s));
    readSubtitles(line);
    if (line.values(u"add"_s).contains(QString()))
        fail(u"--add takes the name of a file, not an empty one."_s);
    if (line.has(u"tracks"_s)) {
        QString error;
        m_tracks = trackIndexes(line.value(u"tracks"_s), error);
        if (!error.isNull())
            fail(error);
    }
}

void Choices::fail(const QString &sentence)
{
    if (m_error.isNull())
        m_error = sentence;
}

/// A preset may name the device; otherwise it has to be given.
void Choices::readAim(const CommandLine &line)
{
    if (!line.has(u"auto"_s))
        return;
    m_aim = selection::aimNamed(line.value(u"auto"_s));
    if (!m_aim)
        return fail(u"--auto takes quality or speed, not \"%1\"."_s.arg(line.value(u"auto"_s)));
    if (!line.has(u"device"_s) && !line.has(u"settings-preset"_s))
        return fail(u"--auto needs --device: what is copied depends on what the device plays."_s);
    const QString refusal =
        line.has(u"device"_s) ? selection::refusalToGuess(line.value(u"device"_s)) : QString();
    if (selection::targetNamed(line.value(u"device"_s)) != nullptr && !refusal.isNull())
        fail(u"--auto: "_s + refusal);
}

void Choices::readTarget(const CommandLine &line)
{
    const QString kind = line.value(u"kind"_s);
    if (line.has(u"kind"_s) && !QStringList{u"mp4"_s, u"mkv"_s, u"avi"_s}.contains(kind))
        return fail(u"There is no kind \"%1\"; there are mp4, mkv and avi."_s.arg(kind));
    const QString device = line.value(u"device"_s);
    if (line.has(u"device"_s)) {
        m_settings.target = device;
        if (selection::targetNamed(device) == nullptr)
            return fail(u"There is no device \"%1\". The devices are: %2."_s.arg(
                device, selection::targetNames().join(u", "_s)));
    }
    if (line.has(u"device"_s) && line.has(u"kind"_s) && (kind != u"mp4"_s || !isMp4(device)))
        return fail(u"--device \"%1\" and --kind %2 exclude each other."_s.arg(device, kind));
    if (kind == u"mkv"_s || kind == u"avi"_s)
        m_settings.target = kind.toUpper();
    m_wantsMp4 = kind == u"mp4"_s;
}

void Choices::readVideo(const CommandLine &line)
{
    const QString video = line.value(u"video"_s);
    if (pictures().contains(video))
        m_settings.picture = pictures().value(video);
    else if (line.has(u"video"_s))
        fail(u"--video takes passthru, 1pass or 2pass, not \"%1\"."_s.arg(video));
    m_settings.width = readNumber(line, u"width"_s);
    m_settings.videoBitRate = readNumber(line, u"video-bitrate"_s);
}

std::optional<QString> Choices::readNumber(const CommandLine &line, const QString &option)
{
    if (!line.has(option))
        return std::nullopt;
    if (!isPositiveNumber(line.value(option)))
        fail(u"--%1 takes a whole number above 0, not \"%2\"."_s.arg(option, line.value(option)));
    else if (passesThru())
        m_note = u"--%1 changes nothing: the video passes through as it is."_s.arg(option);
    return plainNumber(line.value(option));
}

QString Choices::readAudioOutput(const QString &word, selection::AudioOutput &output) const
{
    if (word == u"passthru"_s) {
        output = {word, {}, u"0"_s}; // it keeps its channels; the order of the outputs depends on them
        return {};
    }
    const QStringList pieces = word.split(u':');
    if (pieces.size() != 3 || !QStringList{u"aac"_s, u"ac3"_s, u"mp3"_s}.contains(pieces.at(0)))
        return u"\"%1\" in --audio is neither passthru nor CODEC:CHANNELS:KBPS with aac, ac3 or mp3."_s.arg(
            word);
    if (!isPositiveNumber(pieces.at(1)) || tools::leadingInteger(pieces.at(1)) > mostChannels)
        return u"\"%1\" in --audio is no number of channels."_s.arg(pieces.at(1));
    if (!isPositiveNumber(pieces.at(2)))
        return u"\"%1\" in --audio is no bit rate in kb/s."_s.arg(pieces.at(2));
    output = {pieces.at(0), plainNumber(pieces.at(1)), plainNumber(pieces.at(2))};
    return {};
}

void Choices::readAudio(const QStringList &values)
{
    for (const QString &value : values) {
        const QString track = value.section(u'=', 0, 0);
        const bool isAdded = track.startsWith(u'+') && tools::isAllDigits(track.mid(1));
        if (!value.contains(u'=') || (!isAdded && !tools::isAllDigits(track)))
            return fail(u"--audio takes TRACK=SETTINGS with a stream index, or +1 for the first added file, "
                        "not \"%1\"."_s.arg(value));
        for (const QString &word : value.section(u'=', 1).split(u',')) {
            selection::AudioOutput output;
            const QString error = readAudioOutput(word, output);
            if (!error.isNull())
                return fail(error);
            audioOf(track).append(output);
        }
    }
}

selection::AudioOutputs &Choices::audioOf(const QString &track)
{
    const auto found =
        std::find_if(m_audio.begin(), m_audio.end(), [&](const auto &audio) { return audio.first == track; });
    if (found != m_audio.end())
        return found->second;
    m_audio.append({track, {}});
    return m_audio.last().second;
}

void Choices::readSubtitles(const CommandLine &line)
{
    const QString subtitles = line.value(u"subtitles"_s);
    if (subtitleUses().contains(subtitles))
        m_settings.subtitles = subtitleUses().value(subtitles);
    else if (line.has(u"subtitles"_s))
        fail(u"--subtitles takes mux or burn, not \"%1\"."_s.arg(subtitles));
    if (m_settings.subtitles == SubtitleUse::Burn && passesThru())
        fail(u"--subtitles burn needs --video 1pass or 2pass: a subtitle is drawn into the picture."_s);
}

QString Choices::errorFor(const KXSelection &selection) const
{
    for (const auto &[name, outputs] : m_audio) {
        const TrackPointer track = trackNamed(name, selection.trackList());
        if (!track || !selection::isAudio(*track))
            return u"%1: --audio names track %2, which is no chosen audio track."_s.arg(
                selection.videoTrackFilePath(), name);
    }
    return {};
}

selection::ConversionSettings Choices::settingsFor(const KXSelection &selection) const
{
    selection::ConversionSettings settings = m_settings;
    if (!settings.target && m_wantsMp4 && !isMp4(selection.theDevice()))
        settings.target = u"General"_s; // else the preset's device agrees, and its limits stay
    for (const auto &[name, outputs] : m_audio) {
        if (const TrackPointer track = trackNamed(name, selection.trackList()))
            settings.audio.insert(track, outputs);
    }
    return settings;
}

} // namespace cli

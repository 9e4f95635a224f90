#include "cli/Choices.h"

#include "cli/CommandLine.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "selection/KXSelection.h"
#include "selection/Targets.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

constexpr qint64 mostChannels = 8;

bool isPositiveNumber(const QString &text)
{
    return tools::isAllDigits(text) && text.size() <= 9 && tools::leadingInteger(text) > 0;
}

qsizetype countOf(const KXSelection &selection, bool (*isIt)(const KXVideoTrack &))
{
    const TrackList tracks = selection.trackList();
    return std::count_if(tracks.begin(), tracks.end(),
                         [&](const TrackPointer &track) { return isIt(*track); });
}

bool isMp4(const QString &device)
{
    return selection::outputKindFor(device) == selection::OutputKind::Mp4;
}

bool isVideo(const KXVideoTrack &track)
{
    return track.trackType() == u"Video"_s;
}

bool isBurned(const KXVideoTrack &track)
{
    return engines::isSubtitle(track) && track.userCodec() == u"burn"_s;
}

bool isReencoded(const KXVideoTrack &track)
{
    return isVideo(track) && track.userCodec() != u"passthru"_s;
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
    return selection.theDevice() == u"AVI"_s && countOf(selection, isBurned) == 0;
}

Choices::Choices(const CommandLine &line)
{
    for (const QString &option : {u"device"_s, u"kind"_s, u"video"_s, u"video-bitrate"_s, u"width"_s,
                                  u"audio"_s, u"subtitles"_s, u"add"_s}) {
        if (line.has(option))
            m_given.append(u"--"_s + option);
    }
    if (!line.has(u"settings-preset"_s)) {
        m_device = u"General"_s;
        m_video = u"passthru"_s;
        m_subtitles = u"mux"_s;
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

void Choices::readTarget(const CommandLine &line)
{
    const QString kind = line.value(u"kind"_s);
    if (line.has(u"kind"_s) && !QStringList{u"mp4"_s, u"mkv"_s, u"avi"_s}.contains(kind))
        return fail(u"There is no kind \"%1\"; there are mp4, mkv and avi."_s.arg(kind));
    if (line.has(u"device"_s)) {
        m_device = line.value(u"device"_s);
        if (!selection::targetNames().contains(m_device))
            return fail(u"There is no device \"%1\". The devices are: %2."_s.arg(
                m_device, selection::targetNames().join(u", "_s)));
    }
    if (line.has(u"device"_s) && line.has(u"kind"_s) && (kind != u"mp4"_s || !isMp4(m_device)))
        return fail(u"--device \"%1\" and --kind %2 exclude each other."_s.arg(m_device, kind));
    if (kind == u"mkv"_s || kind == u"avi"_s)
        m_device = kind.toUpper();
    m_wantsMp4 = kind == u"mp4"_s;
}

void Choices::readVideo(const CommandLine &line)
{
    if (line.has(u"video"_s))
        m_video = line.value(u"video"_s);
    if (!m_video.isNull() && !QStringList{u"passthru"_s, u"1pass"_s, u"2pass"_s}.contains(m_video))
        fail(u"--video takes passthru, 1pass or 2pass, not \"%1\"."_s.arg(m_video));
    for (const QString &option : {u"width"_s, u"video-bitrate"_s}) {
        if (!line.has(option))
            continue;
        if (!isPositiveNumber(line.value(option)))
            fail(u"--%1 takes a whole number above 0, not \"%2\"."_s.arg(option, line.value(option)));
        else if (passesThru())
            m_note = u"--%1 changes nothing: the video passes through as it is."_s.arg(option);
    }
    m_videoBitRate = line.value(u"video-bitrate"_s);
    m_width = line.value(u"width"_s);
}

QString Choices::readAudioSetting(const QString &word, QVariantMap &setting) const
{
    if (word == u"passthru"_s) {
        setting = {{u"userCodec"_s, word}, {u"userBitRate"_s, u"0"_s}};
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
    setting = {{u"userCodec"_s, pieces.at(0)},
               {u"userNumberOfChannels"_s, QString::number(tools::leadingInteger(pieces.at(1)))},
               {u"userBitRate"_s, QString::number(tools::leadingInteger(pieces.at(2)))}};
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
            QVariantMap setting;
            const QString error = readAudioSetting(word, setting);
            if (!error.isNull())
                return fail(error);
            m_audio[track].append(setting);
        }
    }
}

void Choices::readSubtitles(const CommandLine &line)
{
    if (line.has(u"subtitles"_s))
        m_subtitles = line.value(u"subtitles"_s);
    if (!m_subtitles.isNull() && m_subtitles != u"mux"_s && m_subtitles != u"burn"_s)
        fail(u"--subtitles takes mux or burn, not \"%1\"."_s.arg(m_subtitles));
    if (m_subtitles == u"burn"_s && passesThru())
        fail(u"--subtitles burn needs --video 1pass or 2pass: a subtitle is drawn into the picture."_s);
}

QString Choices::errorFor(const KXSelection &selection) const
{
    for (auto audio = m_audio.cbegin(); audio != m_audio.cend(); ++audio) {
        const TrackPointer track = trackNamed(audio.key(), selection.trackList());
        if (!track || track->trackType() != u"Audio"_s)
            return u"%1: --audio names track %2, which is no chosen audio track."_s.arg(
                selection.videoTrackFilePath(), audio.key());
    }
    return {};
}

QString Choices::refusalFor(const KXSelection &selection) const
{
    const qsizetype videos = countOf(selection, isVideo);
    if (videos != 1)
        return u"A conversion needs exactly one video track; %1 are chosen."_s.arg(videos);
    const qsizetype subtitles = countOf(selection, engines::isSubtitle);
    const bool burns = m_subtitles == u"burn"_s || countOf(selection, isBurned) > 0;
    if (burns && subtitles != 1)
        return u"Burning needs exactly one chosen subtitle track; %1 are chosen."_s.arg(subtitles);
    if (burns && countOf(selection, isReencoded) == 0)
        return u"A subtitle can only be burned into a video that is re-encoded."_s;
    return {};
}

void Choices::applyTarget(KXSelection &selection) const
{
    if (!m_device.isNull())
        selection.setTheDevice(m_device);
    else if (m_wantsMp4 && !isMp4(selection.theDevice()))
        selection.setTheDevice(u"General"_s); // else the preset's device agrees, and its limits stay
}

void Choices::applyTo(KXSelection &selection) const
{
    applyTarget(selection);
    if (!m_video.isNull())
        selection.setUserPassNumber(m_video == u"2pass"_s ? u"2"_s : u"1"_s);
    if (!m_videoBitRate.isNull())
        selection.setUserVideoBitRate(QString::number(tools::leadingInteger(m_videoBitRate)));
    if (!m_width.isNull())
        selection.setUserWidth(QString::number(tools::leadingInteger(m_width)));
    for (const TrackPointer &track : selection.trackList()) {
        if (isVideo(*track) && !m_video.isNull())
            track->setUserCodec(passesThru() ? u"passthru"_s : u"h264"_s);
        else if (engines::isSubtitle(*track) && !m_subtitles.isNull())
            track->setUserCodec(m_subtitles);
    }
    for (auto audio = m_audio.cbegin(); audio != m_audio.cend(); ++audio) {
        if (const TrackPointer track = trackNamed(audio.key(), selection.trackList()))
            track->setUserAudioSettingsDictionaryArray(settingsFor(*track, *audio));
    }
}

/// A stream that passes through keeps its channels; the order of the outputs depends on them.
AudioSettingsList Choices::settingsFor(const KXVideoTrack &track, AudioSettingsList settings)
{
    for (QVariantMap &setting : settings) {
        if (setting.value(u"userCodec"_s) == u"passthru"_s)
            setting.insert(u"userNumberOfChannels"_s, track.trackNumberOfChannels());
    }
    return settings;
}

} // namespace cli

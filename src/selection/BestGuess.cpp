#include "selection/BestGuess.h"

#include "selection/EnteredNumber.h"
#include "selection/Playback.h"
#include "selection/Possibilities.h"
#include "selection/Targets.h"
#include "tools/Numbers.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using tools::leadingInteger;

namespace selection {

namespace {

constexpr double bitsAPixel = 0.1;
constexpr double bitsInKilobit = 1000;
constexpr double usualFrameRate = 25; // where the film tells none
constexpr int leastBitRate = 300;     // kb/s
constexpr int rateStep = 10;          // kb/s
constexpr double rateTolerance = 0.1; // an average frame rate is measured
constexpr qsizetype frameRateDigits = 3;

const AudioOutput copiedSound{u"passthru"_s, {}, u"0"_s};
const AudioOutput stereoSound{u"aac"_s, u"2"_s, u"160"_s};
const AudioOutput surroundSound{u"ac3"_s, u"6"_s, u"448"_s};

/// Codecs that say the same in half the bits of what they become.
bool isNewer(const QString &codec)
{
    return QStringList{u"hevc"_s, u"av1"_s, u"vp9"_s}.contains(codec);
}

bool isText(const KXVideoTrack &subtitle)
{
    return QStringList{u"srt"_s, u"ass"_s, u"ssa"_s, u"sub"_s, u"ttxt"_s}.contains(subtitle.trackCodec());
}

/// Makes the guess, one track after the other.
class Guesser final
{
public:
    Guesser(const KXSelection &film, const QString &target, Aim aim, const ConversionSettings &byHand)
        : m_film(film)
        , m_target(target)
        , m_device(*playbackOf(target))
        , m_aim(aim)
        , m_byHand(byHand)
    {
    }

    BestGuess guess();

private:
    void tell(const TrackPointer &track, const QString &sentence)
    {
        m_guess.decisions.append({track, sentence});
    }
    void guessPicture(const TrackPointer &video);
    Picture passes() const { return m_aim == Aim::Quality ? Picture::TwoPasses : Picture::OnePass; }
    QString passesText(Picture picture) const;
    bool burns() const;
    void keepNumbers();
    void guessNumbers(const TrackPointer &video);
    void guessWidth(const TrackPointer &video, int width, int height);
    double guessFrameRate(const TrackPointer &video, double rate);
    void guessBitRate(const TrackPointer &video, int width, int height, double rate);
    qint64 mostBitRate(const KXVideoTrack &video) const;
    void guessSound(const TrackPointer &track);
    void decideSound(const TrackPointer &track, const AudioOutputs &outputs, const QString &sentence);
    void guessSubtitle(const TrackPointer &track);

    const KXSelection &m_film;
    QString m_target;
    Playback m_device;
    Aim m_aim;
    const ConversionSettings &m_byHand;
    BestGuess m_guess;
};

BestGuess Guesser::guess()
{
    m_guess.settings.target = m_target;
    m_guess.settings.subtitles = m_byHand.subtitles.value_or(SubtitleUse::Mux);
    bool hasPicture = false;
    for (const TrackPointer &track : m_film.trackList()) {
        if (isVideo(*track) && !std::exchange(hasPicture, true))
            guessPicture(track);
        else if (isAudio(*track))
            guessSound(track);
        else if (isSubtitle(*track))
            guessSubtitle(track);
    }
    return m_guess;
}

QString Guesser::passesText(Picture picture) const
{
    return picture == Picture::TwoPasses ? u"in two passes"_s : u"in one pass"_s;
}

bool Guesser::burns() const
{
    const TrackList tracks = m_film.trackList();
    return m_byHand.subtitles == SubtitleUse::Burn &&
           std::any_of(tracks.begin(), tracks.end(),
                       [](const TrackPointer &track) { return isSubtitle(*track); });
}

void Guesser::guessPicture(const TrackPointer &video)
{
    const QString why = whyUnplayedPicture(m_device, *video);
    const bool mustEncode = !why.isNull() || burns();
    const Picture picture = m_byHand.picture.value_or(mustEncode ? passes() : Picture::PassThrough);
    m_guess.settings.picture = picture;
    const bool copies = picture == Picture::PassThrough;
    const QString word = copies ? u"copied"_s : u"re-encoded "_s + passesText(picture);
    if (m_byHand.picture)
        tell(video, copies && !why.isNull()
                        ? u"The picture is copied, as was asked for, although %1 %2."_s.arg(m_target, why)
                        : u"The picture is %1, as was asked for."_s.arg(word));
    else if (!why.isNull())
        tell(video, u"The picture is %1: %2 %3."_s.arg(word, m_target, why));
    else if (mustEncode)
        tell(video, u"The picture is %1: a subtitle is drawn into it."_s.arg(word));
    else
        tell(video, u"The picture is copied: %1 plays it as it is."_s.arg(m_target));
    if (copies)
        keepNumbers();
    else
        guessNumbers(video);
}

/// Those of the source, which nothing uses.
void Guesser::keepNumbers()
{
    m_guess.settings.videoBitRate = m_film.videoTrackBitRate();
    m_guess.settings.width = m_film.videoTrackWidth();
    m_guess.settings.frameRate = m_film.videoTrackFPS();
}

/// Of the picture that is taken; the file's own numbers are those of its first one.
void Guesser::guessNumbers(const TrackPointer &video)
{
    const media::StreamForm &form = video->form();
    const int width =
        form.width > 0 ? form.width : static_cast<int>(leadingInteger(m_film.videoTrackWidth()));
    const int height =
        form.height > 0 ? form.height : static_cast<int>(leadingInteger(m_film.videoTrackHeight()));
    guessWidth(video, width, height);
    const double told = form.frameRate > 0 ? form.frameRate : m_film.videoTrackFPS().toDouble();
    const double rate = guessFrameRate(video, told > 0 && std::isfinite(told) ? told : usualFrameRate);
    const int narrow = std::min(width, static_cast<int>(leadingInteger(*m_guess.settings.width)));
    const int low =
        narrow < width ? static_cast<int>(static_cast<qint64>(height) * narrow / width) / 2 * 2 : height;
    guessBitRate(video, narrow, low, rate);
}

/// Within both sides of what the device shows, and even.
void Guesser::guessWidth(const TrackPointer &video, int width, int height)
{
    const PlayedPicture &played = m_device.picture;
    double share = 1;
    if (played.width > 0 && width > played.width)
        share = std::min(share, static_cast<double>(played.width) / width);
    if (played.height > 0 && height > played.height)
        share = std::min(share, static_cast<double>(played.height) / height);
    const int fitting = share < 1 ? static_cast<int>(std::floor(width * share + 1e-6)) / 2 * 2 : width;
    m_guess.settings.width = m_byHand.width.value_or(QString::number(fitting));
    if (m_byHand.width)
        tell(video, u"Its width is %1, as was asked for."_s.arg(*m_byHand.width));
    else if (share < 1)
        tell(video, u"Its width is %1: %2 shows at most %3x%4."_s.arg(*m_guess.settings.width, m_target)
                        .arg(played.width)
                        .arg(played.height));
}

/// Halved until it fits.
double Guesser::guessFrameRate(const TrackPointer &video, double rate)
{
    const int most = m_device.picture.frameRate;
    double fitting = rate;
    while (most > 0 && fitting > most + rateTolerance)
        fitting /= 2;
    const QString told = fitting < rate ? normalizedNumber(QString::number(fitting, 'f', 6), frameRateDigits)
                                        : m_film.videoTrackFPS();
    m_guess.settings.frameRate = m_byHand.frameRate.value_or(told);
    if (fitting < rate)
        tell(video,
             u"It has every second picture, or fewer: %1 shows at most %2 a second."_s.arg(m_target).arg(
                 most));
    return fitting;
}

/// What the source spends on it bounds what is of use. 0 where it tells no bit rate.
qint64 Guesser::mostBitRate(const KXVideoTrack &video) const
{
    const qint64 source = std::max<qint64>(leadingInteger(video.trackBitRate()), 0);
    return isNewer(video.probedCodecName()) ? source * 2 : source;
}

void Guesser::guessBitRate(const TrackPointer &video, int width, int height, double rate)
{
    if (m_byHand.videoBitRate) {
        m_guess.settings.videoBitRate = m_byHand.videoBitRate;
        return tell(video, u"Its bit rate is %1 kb/s, as was asked for."_s.arg(*m_byHand.videoBitRate));
    }
    const double wanted = static_cast<double>(width) * height * rate * bitsAPixel / bitsInKilobit;
    qint64 chosen = std::max<qint64>(static_cast<qint64>(wanted), leastBitRate);
    QString why = u"what its size and its frame rate need"_s;
    if (const qint64 most = mostBitRate(*video); most > 0 && chosen > most) {
        chosen = most;
        why = isNewer(video->probedCodecName()) ? u"twice the source's, whose codec is newer"_s
                                                : u"no more than the source's"_s;
    }
    if (const int cap = m_device.picture.bitRate; cap > 0 && chosen > cap) {
        chosen = cap;
        why = u"the most that %1 plays"_s.arg(m_target);
    }
    if (chosen > rateStep)
        chosen = chosen / rateStep * rateStep;
    m_guess.settings.videoBitRate = QString::number(chosen);
    tell(video, u"Its bit rate is %1 kb/s, %2."_s.arg(chosen).arg(why));
}

void Guesser::decideSound(const TrackPointer &track, const AudioOutputs &outputs, const QString &sentence)
{
    m_guess.settings.audio.insert(track, outputs);
    tell(track, sentence);
}

void Guesser::guessSound(const TrackPointer &track)
{
    const QString why = whyUnplayedSound(m_device, *track);
    if (m_byHand.audio.contains(track)) {
        const AudioOutputs outputs = m_byHand.audio.value(track);
        const bool isCopied = std::any_of(outputs.begin(), outputs.end(),
                                          [](const AudioOutput &output) { return output.passesThrough(); });
        return decideSound(
            track, outputs,
            isCopied && !why.isNull()
                ? u"The sound is copied, as was asked for, although %1 %2."_s.arg(m_target, why)
                : u"The sound becomes what was asked for."_s);
    }
    const bool isAc3 = track->probedCodecName() == u"ac3"_s;
    if (why.isNull() && isAc3)
        return decideSound(
            track, {copiedSound, stereoSound},
            u"The sound is copied, with AAC stereo beside it: %1 passes AC3 on, and what can't take it plays AAC."_s
                .arg(m_target));
    if (why.isNull())
        return decideSound(track, {copiedSound},
                           u"The sound is copied: %1 plays it as it is."_s.arg(m_target));
    if (m_device.sound.takesAc3 && isSurround(*track))
        return decideSound(track, {surroundSound, stereoSound},
                           u"The sound becomes AC3 5.1 and AAC stereo: %1 %2."_s.arg(m_target, why));
    decideSound(track, {stereoSound}, u"The sound becomes AAC stereo: %1 %2."_s.arg(m_target, why));
}

void Guesser::guessSubtitle(const TrackPointer &track)
{
    if (burns())
        return tell(track, u"The subtitle is drawn into the picture, as was asked for."_s);
    tell(track,
         isText(*track)
             ? u"The subtitle is kept as text."_s
             : u"The subtitle is left out: it is made of pictures, which %1 does not show."_s.arg(m_target));
}

} // namespace

QString BestGuess::reasonFor(const TrackPointer &track) const
{
    QStringList sentences;
    for (const Decision &decision : decisions) {
        if (decision.track == track)
            sentences.append(decision.sentence);
    }
    return sentences.isEmpty() ? QString() : sentences.join(u' ');
}

std::optional<BestGuess> bestGuess(const KXSelection &film, const QString &target, Aim aim,
                                   const ConversionSettings &byHand)
{
    if (!playbackOf(target))
        return std::nullopt;
    return Guesser(film, target, aim, byHand).guess();
}

void writeGuess(const BestGuess &guess, KXSelection &selection)
{
    guess.settings.writeTo(selection);
    for (const TrackPointer &track : selection.trackList())
        track->setChoiceReason(guess.reasonFor(track));
}

void forgetReasons(const TrackList &tracks)
{
    for (const TrackPointer &track : tracks)
        track->setChoiceReason({});
}

std::optional<Aim> aimNamed(const QString &word)
{
    if (word == u"quality"_s)
        return Aim::Quality;
    return word == u"speed"_s ? std::optional(Aim::Speed) : std::nullopt;
}

QString refusalToGuess(const QString &target)
{
    return playbackOf(target)
               ? QString()
               : u"A best guess needs a device, as \"%1\" promises to play nothing. The devices are: %2."_s
                     .arg(target, deviceNames().join(u", "_s));
}

} // namespace selection

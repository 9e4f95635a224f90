// Forty films for every device: what the guess says of each against a second statement of what the devices
// play.
#include "selection/BestGuess.h"

#include "selection/Targets.h"
#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using selection::Aim;
using selection::bestGuess;
using selection::ConversionSettings;
using selection::Picture;
using support::outputsOf;

namespace {

/// A device in the words of its maker: "Baseline Main", its level, the largest picture, the highest bit rate,
/// AAC channels and bit rate, and whether AC3 is passed on. 0 is no limit.
struct Maker
{
    const char *device;
    QStringList profiles;
    int level;
    int width;
    int height;
    int rate;
    int aacChannels;
    int aacRate;
    bool ac3;
};

const QList<Maker> &makers()
{
    const QStringList baseline{u"Baseline"_s, u"Constrained Baseline"_s};
    const QStringList upToMain{u"Baseline"_s, u"Constrained Baseline"_s, u"Main"_s};
    const QStringList upToHigh{u"Baseline"_s, u"Constrained Baseline"_s, u"Main"_s, u"High"_s};
    static const QList<Maker> list{
        {"iPod (All non-Touch)", baseline, 30, 720, 480, 1500, 2, 160, false},
        {"iPhone (3 and Earlier)", baseline, 30, 720, 480, 1500, 2, 160, false},
        {"iPod Touch (3 and Earlier)", baseline, 30, 720, 480, 1500, 2, 160, false},
        {"iPad (2 and Earlier)", upToMain, 31, 1280, 720, 0, 2, 160, false},
        {"Apple TV 2", upToMain, 31, 1280, 720, 0, 2, 160, true},
        {"iPhone 4", upToMain, 31, 1280, 720, 0, 2, 160, false},
        {"iPod Touch (4 and Later)", upToMain, 31, 1280, 720, 0, 2, 160, false},
        {"Apple TV (3 and Later)", upToHigh, 40, 1920, 1080, 20000, 2, 0, true},
        {"iPad (3 and Later)", upToHigh, 41, 1920, 1080, 20000, 2, 0, false},
        {"iPad Mini (All)", upToHigh, 41, 1920, 1080, 20000, 2, 0, false},
        {"iPhone (4S and Later)", upToHigh, 41, 1920, 1080, 20000, 2, 0, false},
        {"PS3", upToHigh, 41, 1920, 1080, 15000, 2, 0, true},
        {"Xbox", upToHigh, 41, 1920, 1080, 15000, 2, 0, false},
    };
    return list;
}

/// "codec profile level WxH fps kbps pixels fields"; a blank in a profile is written "_".
struct Film
{
    const char *picture;
    const char *sounds; ///< "codec channels kbps profile Hz", joined by ", "
    const char *subtitles;
};

const QList<Film> &films()
{
    static const QList<Film> list{
        {"h264 High 41 1920x1080 23.976 8000 yuv420p progressive", "ac3 6 448 - 48000", "srt"},
        {"h264 High 40 1920x1080 25 6000 yuv420p progressive", "aac 2 128 LC 48000", ""},
        {"h264 High 40 1920x800 24 12000 yuv420p progressive", "dts 6 1509 DTS 48000", "teletext"},
        {"h264 High 42 1920x1080 60 15000 yuv420p progressive", "aac 6 384 LC 48000", "ass"},
        {"h264 High 42 1920x1080 50 15000 yuv420p progressive", "aac 2 256 LC 48000", ""},
        {"h264 Main 31 1280x720 29.97 2500 yuv420p progressive", "aac 2 160 LC 44100", "srt"},
        {"h264 Main 31 1280x720 25 0 yuv420p progressive", "aac 2 0 LC 48000", ""},
        {"h264 Main 32 1280x720 60 4000 yuv420p progressive", "ac3 2 192 - 48000", "srt, teletext"},
        {"h264 Baseline 30 640x480 30 1200 yuv420p progressive", "aac 2 96 LC 44100", ""},
        {"h264 Constrained_Baseline 13 320x240 25 300 yuv420p progressive", "aac 1 64 LC 22050", ""},
        {"h264 Constrained_Baseline 30 720x480 29.97 1800 yuv420p progressive", "mp3 2 192 - 44100", ""},
        {"h264 Constrained_Baseline 30 720x576 25 1400 yuv420p progressive", "aac 2 128 LC 48000", "ttxt"},
        {"h264 High_10 41 1920x1080 24 9000 yuv420p10le progressive", "flac 6 0 - 48000", "ass, ass"},
        {"h264 High_4:4:4_Predictive 41 1280x720 25 5000 yuv444p progressive", "aac 2 128 LC 48000", ""},
        {"h264 High 30 720x576 25 3000 yuv420p tt", "mp2 2 256 - 48000", "teletext"},
        {"h264 High 40 1920x1080 25 14000 yuv420p bb", "ac3 6 640 - 48000", ""},
        {"h264 High 51 3840x2160 30 40000 yuv420p progressive", "aac 2 192 LC 48000", "srt"},
        {"h264 High 41 1440x1080 25 22000 yuv420p progressive", "eac3 6 640 - 48000", ""},
        {"h264 High 41 1920x1080 25 17000 yuv420p progressive", "truehd 8 0 - 48000", ""},
        {"h264 High 41 1080x1920 30 9000 yuv420p progressive", "aac 2 128 LC 48000", ""},
        {"h264 High 31 1280x720 24 3000 yuvj420p progressive", "aac 2 128 HE-AAC 48000", ""},
        {"h264 - 0 1280x720 25 3000 yuv420p progressive", "pcm_s16le 2 1536 - 48000", ""},
        {"h264 Main 41 1920x1080 24 5000 yuv420p unknown", "aac 8 512 LC 48000", ""},
        {"h264 Main 30 720x404 23.976 900 yuv420p -", "vorbis 2 128 - 44100", "vobsub"},
        {"hevc Main_10 120 3840x2160 23.976 15000 yuv420p10le progressive", "eac3 6 768 - 48000", "srt"},
        {"hevc Main 120 1920x1080 60 4000 yuv420p progressive", "aac 2 128 LC 48000", ""},
        {"vp9 Profile_0 0 1920x1080 25 2000 yuv420p progressive", "opus 2 0 - 48000", ""},
        {"av1 Main 8 1280x720 30 800 yuv420p progressive", "opus 6 0 - 48000", ""},
        {"mpeg2video Main 8 720x576 25 5000 yuv420p tt", "ac3 6 384 - 48000, mp2 2 192 - 48000", "teletext"},
        {"mpeg2video Main 4 1920x1080 25 12000 yuv420p tt", "ac3 2 192 - 48000", ""},
        {"mpeg4 Advanced_Simple_Profile 5 640x272 23.976 1100 yuv420p -", "mp3 2 128 - 48000", ""},
        {"mpeg4 Simple_Profile 1 320x240 25 200 yuv420p -", "ac3 2 96 - 48000", "srt"},
        {"msmpeg4v3 - 0 512x384 25 700 yuv420p -", "wmav2 2 64 - 44100", ""},
        {"wmv3 Main 0 1280x720 29.97 4000 yuv420p -", "wmav2 2 192 - 48000", ""},
        {"mjpeg Baseline 0 640x480 30 20000 yuvj422p progressive", "pcm_s16le 1 768 - 48000", ""},
        {"dvvideo - 0 720x576 25 28800 yuv420p bt", "pcm_s16le 2 1536 - 48000", ""},
        {"prores HQ 0 1920x1080 24 180000 yuv422p10le progressive", "pcm_s24le 6 6912 - 96000", ""},
        {"h264 High 40 1920x1080 0 6000 yuv420p progressive", "aac 2 320 LC 96000", ""},
        {"h264 High 41 1921x1081 25 6000 yuv420p progressive", "dts 2 768 DTS 48000", ""},
        {"flv1 - 0 320x180 15 150 yuv420p -", "mp3 1 56 - 22050", ""},
    };
    return list;
}

QString unwritten(const QString &word)
{
    return word == u"-"_s ? QString() : QString(word).replace(u'_', u' ');
}

TrackPointer pictureOf(const Film &film)
{
    const QStringList words = QString::fromLatin1(film.picture).split(u' ');
    const TrackPointer track = support::probedVideo();
    track->setProbedCodecName(words.at(0));
    track->setTrackBitRate(words.at(5));
    media::StreamForm form;
    form.profile = unwritten(words.at(1));
    form.level = words.at(2).toInt();
    form.width = words.at(3).section(u'x', 0, 0).toInt();
    form.height = words.at(3).section(u'x', 1, 1).toInt();
    form.frameRate = words.at(4).toDouble();
    form.pixelFormat = words.at(6);
    form.fieldOrder = unwritten(words.at(7));
    track->setForm(form);
    return track;
}

TrackPointer soundOf(const QString &text)
{
    const QStringList words = text.split(u' ');
    const TrackPointer track = support::probedAudio(words.at(0), words.at(1));
    track->setProbedCodecName(words.at(0));
    track->setTrackBitRate(words.at(2));
    media::StreamForm form;
    form.profile = unwritten(words.at(3));
    form.sampleRate = words.at(4).toInt();
    track->setForm(form);
    return track;
}

TrackList tracksOf(const Film &film)
{
    TrackList tracks{pictureOf(film)};
    for (const QString &sound : QString::fromLatin1(film.sounds).split(u", "_s))
        tracks.append(soundOf(sound));
    for (const QString &codec : QString::fromLatin1(film.subtitles).split(u", "_s, Qt::SkipEmptyParts)) {
        tracks.append(support::probedSubtitle());
        tracks.constLast()->setTrackCodec(codec);
    }
    return tracks;
}

SelectionPointer selectionOf(const TrackList &tracks)
{
    const auto selection = std::make_shared<KXSelection>();
    selection->initialize();
    const media::StreamForm form = tracks.constFirst()->form();
    selection->setVideoTrackWidth(QString::number(form.width));
    selection->setVideoTrackHeight(QString::number(form.height));
    selection->setVideoTrackFPS(QString::number(form.frameRate, 'f', 6));
    selection->setVideoTrackBitRate(tracks.constFirst()->trackBitRate());
    selection->setTrackList(tracks);
    return selection;
}

bool plays(const Maker &maker, const KXVideoTrack &picture)
{
    const media::StreamForm form = picture.form();
    const bool isGoodForm = QStringList{u"yuv420p"_s, u"yuvj420p"_s}.contains(form.pixelFormat) &&
                            form.fieldOrder != u"tt"_s && form.fieldOrder != u"bb"_s;
    return picture.probedCodecName() == u"h264"_s && isGoodForm && maker.profiles.contains(form.profile) &&
           form.level <= maker.level && form.width <= maker.width && form.height <= maker.height &&
           form.frameRate <= 30 && (maker.rate == 0 || picture.trackBitRate().toInt() <= maker.rate);
}

/// The largest that fits, found by trying: "1280x720 at 24".
struct Size
{
    int width;
    int height;
    double rate;
};

Size fitted(const Maker &maker, const media::StreamForm &form)
{
    Size size{form.width, form.height, form.frameRate > 0 ? form.frameRate : 25};
    while (size.width > maker.width || size.width * form.height > maker.height * form.width)
        --size.width;
    if (size.width < form.width) {
        size.width -= size.width % 2;
        size.height = size.width * form.height / form.width;
        size.height -= size.height % 2;
    }
    while (size.rate > 30)
        size.rate /= 2;
    return size;
}

int bitRateOf(const Maker &maker, const KXVideoTrack &picture)
{
    const Size size = fitted(maker, picture.form());
    int rate = static_cast<int>(size.width * size.height * size.rate / 10000);
    rate = std::max(rate, 300);
    const bool isNewer = QStringList{u"hevc"_s, u"av1"_s, u"vp9"_s}.contains(picture.probedCodecName());
    if (const int source = picture.trackBitRate().toInt(); source > 0)
        rate = std::min(rate, isNewer ? 2 * source : source);
    if (maker.rate > 0)
        rate = std::min(rate, maker.rate);
    return rate - rate % 10;
}

QString expectedPicture(const Maker &maker, const KXVideoTrack &picture, Aim aim)
{
    if (plays(maker, picture))
        return u"copied"_s;
    return u"%1 %2 %3"_s.arg(aim == Aim::Quality ? u"2"_s : u"1"_s)
        .arg(fitted(maker, picture.form()).width)
        .arg(bitRateOf(maker, picture));
}

QString guessedPicture(const ConversionSettings &settings)
{
    if (settings.picture == Picture::PassThrough)
        return u"copied"_s;
    return u"%1 %2 %3"_s.arg(settings.picture == Picture::TwoPasses ? u"2"_s : u"1"_s, *settings.width,
                             *settings.videoBitRate);
}

/// In words of the outputs: "passthru", "aac 2 160", "ac3 6 448".
QString expectedSound(const Maker &maker, const KXVideoTrack &sound)
{
    const QString codec = sound.probedCodecName();
    const int channels = sound.trackNumberOfChannels().toInt();
    if (codec == u"ac3"_s && maker.ac3)
        return u"passthru, aac 2 160"_s;
    const int rate = sound.trackBitRate().toInt();
    const bool isGoodAac = codec == u"aac"_s && sound.form().profile == u"LC"_s &&
                           sound.form().sampleRate <= 48000 && channels <= maker.aacChannels &&
                           (maker.aacRate == 0 || rate <= maker.aacRate);
    if (isGoodAac)
        return u"passthru"_s;
    return maker.ac3 && channels > 2 ? u"ac3 6 448, aac 2 160"_s : u"aac 2 160"_s;
}

QString guessedSound(const selection::AudioOutputs &outputs)
{
    QStringList texts;
    for (const selection::AudioOutput &output : outputs)
        texts.append(output.passesThrough() ? output.codec
                                            : output.codec + u' ' + output.channels + u' ' + output.bitRate);
    return texts.join(u", "_s);
}

/// The sentences about a track of the film.
QString toldOf(const Film &film, const QString &device, qsizetype place,
               const ConversionSettings &byHand = {})
{
    const TrackList tracks = tracksOf(film);
    const auto guess = bestGuess(*selectionOf(tracks), device, Aim::Quality, byHand);
    return guess ? guess->reasonFor(tracks.at(place)) : u"no guess"_s;
}

} // namespace

class BestGuessTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyDeviceHasItsMaker()
    {
        QStringList names;
        for (const Maker &maker : makers())
            names.append(QString::fromLatin1(maker.device));
        QCOMPARE(names, selection::deviceNames());
        QCOMPARE(films().size(), 40);
    }

    void everyFilmForEveryDevice_data()
    {
        QTest::addColumn<int>("device");
        for (int i = 0; i < makers().size(); ++i)
            QTest::newRow(makers().at(i).device) << i;
    }

    void everyFilmForEveryDevice()
    {
        QFETCH(int, device);
        const Maker &maker = makers().at(device);
        for (const Film &film : films()) {
            for (const Aim aim : {Aim::Quality, Aim::Speed}) {
                const TrackList tracks = tracksOf(film);
                const auto guess = bestGuess(*selectionOf(tracks), QString::fromLatin1(maker.device), aim);
                QVERIFY(guess.has_value());
                const QString picture = guessedPicture(guess->settings);
                QVERIFY2(picture == expectedPicture(maker, *tracks.first(), aim),
                         qPrintable(picture + u" instead of "_s +
                                    expectedPicture(maker, *tracks.first(), aim) + u": "_s +
                                    QString::fromLatin1(film.picture)));
                for (const TrackPointer &track : tracks) {
                    const QString reason = guess->reasonFor(track);
                    QVERIFY(reason.endsWith(u'.') && !reason.contains(u".."_s));
                    if (!selection::isAudio(*track))
                        continue;
                    const QString sound = guessedSound(guess->settings.audio.value(track));
                    QVERIFY2(sound == expectedSound(maker, *track),
                             qPrintable(sound + u" of "_s + QString::fromLatin1(film.sounds)));
                }
            }
        }
    }

    void targetsThatPromiseNothingHaveNoGuess()
    {
        const SelectionPointer film = selectionOf(tracksOf(films().first()));
        for (const QString &target : {u"General"_s, u"MKV"_s, u"AVI"_s, u"Apple TV"_s, u""_s}) {
            QVERIFY(!bestGuess(*film, target, Aim::Speed).has_value());
            QVERIFY(selection::refusalToGuess(target).contains(u'"' + target + u'"'));
        }
        QVERIFY(selection::refusalToGuess(u"PS3"_s).isNull());
    }

    /// Counted by hand: 1280 x 720 x 23.976 x 0.1 / 1000 = 2209.6.
    void numbersOfAFilm()
    {
        const auto guess = bestGuess(*selectionOf(tracksOf(films().first())), u"iPhone 4"_s, Aim::Quality);
        QCOMPARE(guess->settings.videoBitRate, u"2200"_s);
        QCOMPARE(guess->settings.width, u"1280"_s);
        QCOMPARE(guess->settings.frameRate, u"23.976000"_s);
        const auto halved = bestGuess(*selectionOf(tracksOf(films().at(4))), u"PS3"_s, Aim::Quality);
        QCOMPARE(halved->settings.frameRate, u"25"_s); // of 50
        QCOMPARE(halved->settings.videoBitRate, u"5180"_s);
    }

    void everyDecisionHasItsReason()
    {
        QCOMPARE(toldOf(films().first(), u"PS3"_s, 0), u"The picture is copied: PS3 plays it as it is."_s);
        QCOMPARE(toldOf(films().first(), u"iPhone 4"_s, 0),
                 u"The picture is re-encoded in two passes: iPhone 4 plays H.264 up to the profile Main, not "
                 u"High. "
                 "Its width is 1280: iPhone 4 shows at most 1280x720. "
                 "Its bit rate is 2200 kb/s, what its size and its frame rate need."_s);
        QCOMPARE(toldOf(films().at(30), u"PS3"_s, 0).section(u'.', 0, 1),
                 u"The picture is re-encoded in two passes: PS3 plays H.264, not MPEG4"_s);
        QCOMPARE(toldOf(films().first(), u"iPhone 4"_s, 1),
                 u"The sound becomes AAC stereo: iPhone 4 plays AAC, not AC3."_s);
        QCOMPARE(toldOf(films().first(), u"iPhone 4"_s, 2), u"The subtitle is kept as text."_s);
        QCOMPARE(toldOf(films().at(2), u"PS3"_s, 2),
                 u"The subtitle is left out: it is made of pictures, which PS3 does not show."_s);
    }

    void whatWasChosenByHandHolds()
    {
        const TrackList tracks = tracksOf(films().first());
        const SelectionPointer film = selectionOf(tracks);
        ConversionSettings byHand;
        byHand.picture = Picture::OnePass;
        byHand.videoBitRate = u"777"_s;
        byHand.width = u"640"_s;
        byHand.audio.insert(tracks.at(1), {{u"mp3"_s, u"2"_s, u"96"_s}});
        const auto guess = bestGuess(*film, u"PS3"_s, Aim::Quality, byHand);
        QCOMPARE(guessedPicture(guess->settings), u"1 640 777"_s);
        QCOMPARE(guessedSound(guess->settings.audio.value(tracks.at(1))), u"mp3 2 96"_s);
        QVERIFY(guess->reasonFor(tracks.first())
                    .startsWith(u"The picture is re-encoded in one pass, as was asked"_s));
    }

    void numbersByHandReencodeNothing()
    {
        ConversionSettings byHand;
        byHand.videoBitRate = u"777"_s;
        byHand.width = u"640"_s;
        const auto guess = bestGuess(*selectionOf(tracksOf(films().first())), u"PS3"_s, Aim::Quality, byHand);
        QCOMPARE(guessedPicture(guess->settings), u"copied"_s);
        QCOMPARE(guess->settings.width, u"1920"_s);
        QCOMPARE(guess->settings.videoBitRate, u"8000"_s);
    }

    void aSubtitleToBurnNeedsAnEncoder()
    {
        ConversionSettings byHand;
        byHand.subtitles = selection::SubtitleUse::Burn;
        const auto film = selectionOf(tracksOf(films().first()));
        const auto guess = bestGuess(*film, u"PS3"_s, Aim::Speed, byHand);
        QCOMPARE(guess->settings.picture, Picture::OnePass);
        QCOMPARE(guess->settings.subtitles, selection::SubtitleUse::Burn);
        const auto none = bestGuess(*selectionOf(tracksOf(films().at(1))), u"PS3"_s, Aim::Speed, byHand);
        QCOMPARE(none->settings.picture, Picture::PassThrough); // there is none to draw
    }

    void aCopyAgainstTheDeviceIsTold()
    {
        ConversionSettings byHand;
        byHand.picture = Picture::PassThrough;
        QCOMPARE(toldOf(films().at(30), u"PS3"_s, 0, byHand),
                 u"The picture is copied, as was asked for, although PS3 plays H.264, not MPEG4."_s);
    }

    /// It sets the controls, and the film carries the reasons until somebody decides otherwise.
    void theControllerTakesIt()
    {
        support::ControllerFixture window(tracksOf(films().first()));
        window.selectAll();
        const TrackList tracks = window.file->trackList();
        window.controller.takeGuess(*bestGuess(*window.selection, u"iPhone 4"_s, Aim::Quality));
        QCOMPARE(window.controller.videoMatrixIndex(), 2);
        QCOMPARE(window.controller.mp4Device(), u"iPhone 4"_s);
        QCOMPARE(window.controller.enteredUserWidth(), u"1280"_s);
        QCOMPARE(window.controller.enteredUserVideoBitRate(), u"2200"_s);
        QCOMPARE(window.selection->userPassNumber(), u"2"_s);
        QCOMPARE(outputsOf(*tracks.at(1)), u"aac 2 160"_s);
        QVERIFY(window.controller.aac2State());
        QVERIFY(tracks.at(0)->choiceReason().startsWith(u"The picture is re-encoded"_s));
        window.controller.byHand(&KXSelectionController::setVideoMatrixIndex, 1);
        QVERIFY(tracks.at(0)->choiceReason().isNull());
    }
};

TESSARAY_TEST(BestGuessTest)
#include "BestGuessTest.moc"

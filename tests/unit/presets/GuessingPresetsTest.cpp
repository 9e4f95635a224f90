// Settings presets whose video action is 3 or 4: what they leave to the guess, and what of them holds against
// it.
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::outputsOf;

namespace {

/// 1280x720 of MPEG-2 at 25 and 6000 kb/s, a FLAC, an AC3 5.1, a subtitle; all are ticked.
TrackList film()
{
    const TrackPointer video = support::probedVideo();
    video->setProbedCodecName(u"mpeg2video"_s);
    video->setTrackBitRate(u"6000"_s);
    media::StreamForm form;
    form.width = 1280;
    form.height = 720;
    form.frameRate = 25;
    form.pixelFormat = u"yuv420p"_s;
    video->setForm(form);
    TrackList tracks{video, support::probedAudio(u"flac"_s, u"2"_s), support::probedAudio(u"ac3"_s, u"6"_s),
                     support::probedSubtitle()};
    for (const TrackPointer &track : tracks) {
        if (track->probedCodecName().isNull())
            track->setProbedCodecName(track->trackCodec());
    }
    return tracks;
}

QVariantMap record(const QVariantMap &changes, const QString &device = u"PS3"_s)
{
    QVariantMap fields = support::settingsRecord(u"Guess"_s, device);
    fields.insert({{u"pVideoActionIndex"_s, 3}, {u"pVideoBitRateIndex"_s, 0}});
    fields.insert(changes);
    return fields;
}

/// The window's presets with one that guesses, chosen for the film.
struct Guessing
{
    explicit Guessing(const QVariantMap &preset)
    {
        support::storePresets(scratch, {}, {preset});
        window = std::make_unique<support::PresetFixture>(scratch);
        window->presets.setSelectionMethodIndex(2); // "All Tracks"
        window->open(film());
        window->presets.applyCurrentPresetSelections();
        window->presets.setSettingMethodIndex(2);
    }

    TrackPointer track(qsizetype place) const { return window->file->trackList().at(place); }

    support::Scratch scratch;
    std::unique_ptr<support::PresetFixture> window;
};

} // namespace

class GuessingPresetsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void threeIsQualityAndFourIsSpeed()
    {
        for (const auto &[action, passes] : {std::pair(3, 2), std::pair(4, 1)}) {
            const Guessing guessing(record({{u"pVideoActionIndex"_s, action}}));
            QCOMPARE(guessing.window->controller.videoMatrixIndex(), passes);
            QCOMPARE(guessing.window->selection->userPassNumber(), QString::number(passes));
            QCOMPARE(guessing.window->controller.enteredUserVideoBitRate(), u"2300"_s); // of 2304
            QCOMPARE(guessing.window->selection->theDevice(), u"PS3"_s);
            QVERIFY(guessing.track(0)->choiceReason().contains(u"PS3 plays H.264, not MPEG2VIDEO"_s));
        }
    }

    /// It passes all sound through; only what plays does so.
    void soundThatDoesNotPlayIsGuessed()
    {
        const Guessing guessing(record({}));
        QCOMPARE(outputsOf(*guessing.track(1)), u"aac 2 160"_s);
        QCOMPARE(outputsOf(*guessing.track(2)), u"passthru 6 0"_s);
    }

    void soundThatItEncodesHolds()
    {
        const Guessing guessing(record({{u"pStereoActionIndex"_s, 1},
                                        {u"pStereoBitRate"_s, u"192"_s},
                                        {u"pSurroundActionIndex"_s, 2},
                                        {u"pSurroundBitRate"_s, u"384"_s}}));
        QCOMPARE(outputsOf(*guessing.track(1)), u"aac 2 192"_s);
        QCOMPARE(outputsOf(*guessing.track(2)), u"aac 6 384"_s);
    }

    void customNumbersHold()
    {
        const Guessing guessing(record({{u"pVideoBitRateIndex"_s, 1},
                                        {u"pVideoBitRate"_s, u"1234"_s},
                                        {u"pWidthIndex"_s, 1},
                                        {u"pWidth"_s, u"640"_s}}));
        QCOMPARE(guessing.window->controller.enteredUserVideoBitRate(), u"1234"_s);
        QCOMPARE(guessing.window->controller.enteredUserWidth(), u"640"_s);
    }

    void burningHolds()
    {
        const Guessing guessing(record({{u"pSubAction"_s, u"Burn (hard)"_s}}));
        QCOMPARE(guessing.window->controller.subtitleMatrixIndex(), 0);
        QCOMPARE(guessing.track(3)->userCodec(), u"burn"_s);
    }

    void aPresetThatSaysWhatItWantsGuessesNothing()
    {
        const Guessing guessing(record({{u"pVideoActionIndex"_s, 0}}));
        QCOMPARE(guessing.window->controller.videoMatrixIndex(), 0);
        QCOMPARE(outputsOf(*guessing.track(1)), u"passthru 2 0"_s);
        for (const TrackPointer &track : guessing.window->file->trackList())
            QVERIFY(track->choiceReason().isNull());
    }

    void withoutADeviceTheControlsStay()
    {
        const Guessing guessing(record({}, u"MKV"_s));
        QCOMPARE(guessing.window->controller.videoMatrixIndex(), 0);
        QCOMPARE(guessing.window->selection->theDevice(), u"MKV"_s);
    }
};

TESSARAY_TEST(GuessingPresetsTest)
#include "GuessingPresetsTest.moc"

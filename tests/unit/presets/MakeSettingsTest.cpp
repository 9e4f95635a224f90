#include "presets/KXPresetSettings.h"

#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::outputsOf;
using support::probedAudio;
using support::probedVideo;

namespace {

TrackPointer soundOf(const QString &channels)
{
    const TrackPointer track = probedAudio(u"ac3"_s, channels);
    track->setTrackBitRate(u"640"_s);
    support::setOutputs(*track, u"mp3 2 99"_s); // what was there before
    return track;
}

/// Video, two sounds that are alike, a subtitle; the first sound is the one that the popup shows.
TrackList filmOf(const QString &channels)
{
    return {probedVideo(), soundOf(channels), soundOf(channels), support::probedSubtitle()};
}

struct Fixture
{
    explicit Fixture(const TrackList &tracks = filmOf(u"6"_s))
        : window(tracks)
        , controller(window.controller)
        , preset(window.file, window.controller)
        , deselected(&window.controller, &KXSelectionController::trackRowsDeselected)
    {
        window.file->setTheWidth(u"1280"_s);
        window.selectAll();
        preset.initializeAsNewUserPreset();
    }

    TrackPointer track(int place) const { return window.file->trackList().at(place - 1); }

    support::ControllerFixture window;
    KXSelectionController &controller;
    KXPresetSettings preset;
    QSignalSpy deselected;
};

/// Every value of an object that is a text, a number or a list of texts, by its word.
QVariantMap stateOf(const QObject &object)
{
    QVariantMap state;
    const QMetaObject &meta = *object.metaObject();
    for (int i = 0; i < meta.propertyCount(); ++i) {
        const QVariant value = meta.property(i).read(&object);
        if (value.canConvert<QString>() || value.typeId() == QMetaType::QStringList)
            state.insert(QString::fromLatin1(meta.property(i).name()), value);
    }
    return state;
}

/// The window's controls, the selection and each track with its outputs.
QVariantMap stateOf(const Fixture &fixture)
{
    QVariantMap state{{u"controller"_s, stateOf(fixture.controller)},
                      {u"selection"_s, stateOf(*fixture.window.selection)}};
    const TrackList tracks = fixture.window.file->trackList();
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        state.insert(u"track %1"_s.arg(i), stateOf(*tracks.at(i)));
        state.insert(u"outputs %1"_s.arg(i), outputsOf(*tracks.at(i)));
    }
    return state;
}

QVariantMap withJobType(QVariantMap state, const QString &jobType)
{
    QVariantMap selection = state.value(u"selection"_s).toMap();
    selection.insert(u"jobType"_s, jobType);
    state.insert(u"selection"_s, selection);
    return state;
}

} // namespace

/// What a bundle of settings does with the window's controls and the selected tracks.
class MakeSettingsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void manualChangesNothingNotEvenTheTablesRows()
    {
        Fixture fixture;
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        fixture.preset.setPName(u"Manual"_s);
        fixture.preset.setPVideoActionIndex(1);
        fixture.window.forgetCalls();
        const QVariantMap before = stateOf(fixture);
        fixture.preset.makeSettings();
        QCOMPARE(stateOf(fixture), before);
        QCOMPARE(fixture.deselected.count(), 0);
        QVERIFY(fixture.window.presets.calls.isEmpty());
    }

    void jobKindsSetTheJobTypeAndTheTablesRowsOnly_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("jobType");
        QTest::newRow("extract") << u"Extract Tracks"_s << u"MKV Track Extraction"_s;
        QTest::newRow("remove") << u"Remove Tracks"_s << u"MKV Track Removal"_s;
    }

    void jobKindsSetTheJobTypeAndTheTablesRowsOnly()
    {
        QFETCH(const QString, name);
        QFETCH(const QString, jobType);
        Fixture fixture;
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        fixture.preset.setPName(name);
        fixture.preset.setPVideoActionIndex(1);
        fixture.window.forgetCalls();
        const QVariantMap before = stateOf(fixture);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.controller.currentTab(), u"Edit Files"_s);
        QCOMPARE(stateOf(fixture), withJobType(before, jobType));
        QCOMPARE(fixture.deselected.count(), 1);
        QVERIFY(fixture.window.presets.calls.isEmpty());
    }

    void jobKindsNeedNoTracks()
    {
        Fixture fixture(TrackList{});
        fixture.preset.setPName(u"Extract Tracks"_s);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.window.selection->jobType(), u"MKV Track Extraction"_s);
        QCOMPARE(fixture.deselected.count(), 1);
    }

    void withoutTracksOnlyTheTabIsSet()
    {
        Fixture fixture(TrackList{});
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        fixture.preset.setPVideoActionIndex(1);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.controller.currentTab(), u"MKV"_s);
        QCOMPARE(fixture.window.selection->jobType(), u"none"_s);
        QCOMPARE(fixture.controller.mp4Device(), u"General"_s);
        QCOMPARE(fixture.controller.videoMatrixIndex(), 0);
        QCOMPARE(fixture.deselected.count(), 0);
    }

    void conversionHasItsTabJobTypeAndDevice()
    {
        Fixture fixture;
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        fixture.preset.setPDevice(u"PS3"_s);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.controller.currentTab(), u"MKV"_s);
        QCOMPARE(fixture.window.selection->jobType(), u"MKV Conversion"_s);
        QCOMPARE(fixture.controller.mp4Device(), u"PS3"_s);
        QCOMPARE(fixture.window.selection->theDevice(), u"PS3"_s);
        QCOMPARE(fixture.deselected.count(), 1);
    }

    void namesInOtherCapitalsAreNoBuiltIns()
    {
        Fixture fixture;
        for (const QString &name : {u"manual"_s, u"extract tracks"_s, u"remove tracks"_s}) {
            fixture.window.selection->setJobType(u"none"_s);
            fixture.preset.setPName(name);
            fixture.preset.makeSettings();
            QCOMPARE(fixture.window.selection->jobType(), u"MKV Conversion"_s);
        }
    }

    /// Everything is set before the announcement.
    void tablesRowsAreDeselectedLast()
    {
        Fixture fixture;
        fixture.preset.setPSubAction(u"Mux (soft)"_s);
        fixture.preset.setPSurroundActionIndex(3);
        QString outputs;
        int subtitleIndex = -1;
        connect(&fixture.controller, &KXSelectionController::trackRowsDeselected, this, [&] {
            outputs = outputsOf(*fixture.track(3));
            subtitleIndex = fixture.controller.subtitleMatrixIndex();
        });
        fixture.preset.makeSettings();
        QCOMPARE(outputs, u"ac3 6 448"_s);
        QCOMPARE(subtitleIndex, 1);
    }

    void videoControls_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("bitRate"); // "1 1500" is the index 1 with the value 1500
        QTest::addColumn<QString>("width");
        QTest::addColumn<QString>("fps");
        QTest::addColumn<QString>("controls");
        const auto row = [](const char *name, int action, const QString &bitRate, const QString &width,
                            const QString &fps, const QString &controls) {
            QTest::newRow(name) << action << bitRate << width << fps << controls;
        };
        const QString untouched = u"111 222 12"_s;
        row("pass through", 0, u"1 1500"_s, u"1 720"_s, u"1 23.976"_s, u"0 "_s + untouched);
        row("one pass, the file's", 1, u"0 1500"_s, u"0 720"_s, u"0 23.976"_s, u"1 3000 1280 25"_s);
        row("two passes, the file's", 2, u"0 1500"_s, u"0 720"_s, u"0 23.976"_s, u"2 3000 1280 25"_s);
        row("one pass, custom", 1, u"1 1500"_s, u"1 720"_s, u"1 23.976"_s, u"1 1500 720 23.976"_s);
        row("two passes, custom", 2, u"1 1500"_s, u"1 720"_s, u"1 23.976"_s, u"2 1500 720 23.976"_s);
        row("custom bit rate", 1, u"1 1500"_s, u"0 720"_s, u"0 23.976"_s, u"1 1500 1280 25"_s);
        row("custom width", 1, u"0 1500"_s, u"1 720"_s, u"0 23.976"_s, u"1 3000 720 25"_s);
        row("custom frame rate", 1, u"0 1500"_s, u"0 720"_s, u"1 23.976"_s, u"1 3000 1280 23.976"_s);
        row("custom bit rate above the file's", 1, u"1 9000"_s, u"0 "_s, u"0 "_s, u"1 9000 1280 25"_s);
        row("width above the file's", 1, u"0 "_s, u"1 1920"_s, u"0 "_s, u"1 3000 1280 25"_s);
        row("the file's width", 1, u"0 "_s, u"1 1280"_s, u"0 "_s, u"1 3000 1280 25"_s);
        row("a pixel narrower", 1, u"0 "_s, u"1 1279"_s, u"0 "_s, u"1 3000 1279 25"_s);
        row("widths are numbers, not texts", 1, u"0 "_s, u"1 720"_s, u"0 "_s, u"1 3000 720 25"_s);
        row("width that is no number", 1, u"0 "_s, u"1 wide"_s, u"0 "_s, u"1 3000 0 25"_s);
        row("custom without values", 1, u"1 "_s, u"1 "_s, u"1 "_s, u"1 0 0 0"_s);
        row("unknown indices are the file's", 1, u"2 1500"_s, u"2 720"_s, u"2 23.976"_s, u"1 3000 1280 25"_s);
        row("best guess", 3, u"1 1500"_s, u"1 720"_s, u"1 23.976"_s, u"9 "_s + untouched);
        row("the other best guess", 4, u"1 1500"_s, u"1 720"_s, u"1 23.976"_s, u"9 "_s + untouched);
        row("unknown action", 5, u"1 1500"_s, u"1 720"_s, u"1 23.976"_s, u"9 "_s + untouched);
        row("negative action", -1, u"1 1500"_s, u"1 720"_s, u"1 23.976"_s, u"-1 "_s + untouched);
    }

    void videoControls()
    {
        QFETCH(const int, action);
        QFETCH(const QString, bitRate);
        QFETCH(const QString, width);
        QFETCH(const QString, fps);
        Fixture fixture;
        fixture.controller.setVideoMatrixIndex(9);
        fixture.controller.setEnteredUserVideoBitRate(u"111"_s);
        fixture.controller.setEnteredUserWidth(u"222"_s);
        fixture.controller.setEnteredUserFPS(u"12"_s);
        fixture.preset.setPVideoActionIndex(action);
        fixture.preset.setPVideoBitRateIndex(bitRate.section(u' ', 0, 0).toInt());
        fixture.preset.setPVideoBitRate(bitRate.section(u' ', 1));
        fixture.preset.setPWidthIndex(width.section(u' ', 0, 0).toInt());
        fixture.preset.setPWidth(width.section(u' ', 1));
        fixture.preset.setPFPSIndex(fps.section(u' ', 0, 0).toInt());
        fixture.preset.setPFPS(fps.section(u' ', 1));
        fixture.preset.makeSettings();
        const KXSelectionController &controls = fixture.controller;
        QTEST((QStringList{QString::number(controls.videoMatrixIndex()), controls.enteredUserVideoBitRate(),
                           controls.enteredUserWidth(), controls.enteredUserFPS()}
                   .join(u' ')),
              "controls");
        QCOMPARE(fixture.deselected.count(), 1);
    }

    void customWidthNeverEnlarges()
    {
        Fixture fixture;
        fixture.preset.setPVideoActionIndex(1);
        fixture.preset.setPWidthIndex(1);
        fixture.preset.setPWidth(u"1920"_s);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.controller.enteredUserWidth(), u"1280"_s);
        fixture.preset.setPWidth(u"720"_s);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.controller.enteredUserWidth(), u"720"_s);
    }

    void bestGuessLeavesTheVideoAndDoesTheRest_data()
    {
        QTest::addColumn<int>("action");
        QTest::newRow("3") << 3;
        QTest::newRow("4") << 4;
    }

    void bestGuessLeavesTheVideoAndDoesTheRest()
    {
        QFETCH(const int, action);
        Fixture fixture;
        fixture.controller.setVideoMatrixIndex(2);
        fixture.controller.setEnteredUserVideoBitRate(u"111"_s);
        fixture.preset.setPVideoActionIndex(action);
        fixture.preset.setPSurroundActionIndex(3);
        fixture.preset.setPSubAction(u"Mux (soft)"_s);
        fixture.preset.setPDevice(u"PS3"_s);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.controller.videoMatrixIndex(), 2);
        QCOMPARE(fixture.controller.enteredUserVideoBitRate(), u"111"_s);
        QCOMPARE(outputsOf(*fixture.track(2)), u"ac3 6 448"_s);
        QCOMPARE(outputsOf(*fixture.track(3)), u"ac3 6 448"_s);
        QCOMPARE(fixture.controller.subtitleMatrixIndex(), 1);
        QCOMPARE(fixture.controller.mp4Device(), u"PS3"_s);
    }

    void surroundMadeStereoGetsNoSecondStereo()
    {
        Fixture fixture;
        fixture.preset.setPSurroundActionIndex(1);
        fixture.preset.setPAudioAddStereo(true);
        fixture.preset.makeSettings();
        QCOMPARE(outputsOf(*fixture.track(3)), u"aac 2 160"_s);
    }

    void surroundKeptWithStereoHasThreeStreamsInOrder()
    {
        Fixture fixture;
        fixture.preset.setPSurroundActionIndex(3);
        fixture.preset.setPSurroundBitRate(u"Original"_s);
        fixture.preset.setPAudioAddStereo(true);
        fixture.preset.setPKeepSurroundTrack(true);
        fixture.preset.makeSettings();
        QCOMPARE(outputsOf(*fixture.track(3)), u"ac3 6 640, aac 2 160, passthru 6 0"_s);
    }

    void stereoPassedThroughIsKeptOnce()
    {
        Fixture fixture(filmOf(u"2"_s));
        fixture.preset.setPKeepStereoTrack(true);
        fixture.preset.makeSettings();
        QCOMPARE(outputsOf(*fixture.track(3)), u"passthru 2 0"_s);
    }

    void stereoIsKeptByTheSurroundFlagToo()
    {
        Fixture fixture(filmOf(u"2"_s));
        fixture.preset.setPStereoActionIndex(1);
        fixture.preset.setPKeepSurroundTrack(true);
        fixture.preset.makeSettings();
        QCOMPARE(outputsOf(*fixture.track(3)), u"aac 2 160, passthru 2 0"_s);
    }

    void eachTrackGetsItsOwnOutputs()
    {
        TrackList tracks{probedVideo(), soundOf(u"2"_s), soundOf(u"6"_s), soundOf(u"1"_s), soundOf(u"8"_s)};
        tracks.at(4)->setTrackBitRate(u"1536"_s);
        Fixture fixture(tracks);
        fixture.preset.setPStereoActionIndex(1);
        fixture.preset.setPSurroundActionIndex(2);
        fixture.preset.setPSurroundBitRate(u"Original"_s);
        fixture.preset.makeSettings();
        QCOMPARE(outputsOf(*tracks.at(1)), u"aac 2 160"_s);
        QCOMPARE(outputsOf(*tracks.at(2)), u"aac 6 640"_s);
        QCOMPARE(outputsOf(*tracks.at(3)), u"aac 2 160"_s);
        QCOMPARE(outputsOf(*tracks.at(4)), u"aac 6 1536"_s);
    }

    void onlySelectedAudioTracksAreTouched()
    {
        Fixture fixture;
        fixture.window.tick(1, false);
        support::setOutputs(*fixture.track(1), u"mp3 2 99"_s);
        support::setOutputs(*fixture.track(2), u"mp3 2 99"_s);
        support::setOutputs(*fixture.track(4), u"mp3 2 99"_s);
        fixture.preset.setPSurroundActionIndex(3);
        fixture.preset.makeSettings();
        QCOMPARE(outputsOf(*fixture.track(1)), u"mp3 2 99"_s);
        QCOMPARE(outputsOf(*fixture.track(2)), u"mp3 2 99"_s);
        QCOMPARE(outputsOf(*fixture.track(3)), u"ac3 6 448"_s);
        QCOMPARE(outputsOf(*fixture.track(4)), u"mp3 2 99"_s);
    }

    void againIsTheSameAgain()
    {
        Fixture fixture;
        fixture.preset.setPSurroundActionIndex(2);
        fixture.preset.setPAudioAddStereo(true);
        fixture.preset.setPKeepSurroundTrack(true);
        fixture.preset.makeSettings();
        fixture.controller.updateTabs();
        const QVariantMap once = stateOf(fixture);
        fixture.preset.makeSettings();
        fixture.controller.updateTabs();
        QCOMPARE(stateOf(fixture), once);
        QCOMPARE(outputsOf(*fixture.track(2)), u"aac 6 448, aac 2 160, passthru 6 0"_s);
    }

    void audioControlsShowWhatWasWritten()
    {
        Fixture fixture({probedVideo(), soundOf(u"2"_s), soundOf(u"6"_s)});
        fixture.controller.setAudioTrackPopupIndex(1);
        fixture.preset.setPSurroundActionIndex(3);
        fixture.preset.setPSurroundBitRate(u"640"_s);
        fixture.preset.setPAudioAddStereo(true);
        fixture.preset.setPStereoBitRate(u"224"_s);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 1);
        QCOMPARE(fixture.controller.audioMatrixSelections(), QStringList({u"AC3 (5.1)"_s, u"AAC (2-Ch.)"_s}));
        QCOMPARE(fixture.controller.enteredAC351BitRate(), u"640 kbps"_s);
        QCOMPARE(fixture.controller.enteredAAC2BitRate(), u"224 kbps"_s);
    }

    void subtitleAction_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::newRow("burn") << u"Burn (hard)"_s << 1 << 0;
        QTest::newRow("mux") << u"Mux (soft)"_s << 0 << 1;
        QTest::newRow("burn again") << u"Burn (hard)"_s << 0 << 0;
        QTest::newRow("mux again") << u"Mux (soft)"_s << 1 << 1;
        QTest::newRow("other, burning") << u"Drop"_s << 0 << 0;
        QTest::newRow("other, muxing") << u"Drop"_s << 1 << 1;
        QTest::newRow("empty") << u""_s << 1 << 1;
        QTest::newRow("other capitals") << u"burn (hard)"_s << 1 << 1;
    }

    void subtitleAction()
    {
        QFETCH(const QString, action);
        QFETCH(const int, before);
        Fixture fixture;
        fixture.controller.setSubtitleMatrixIndex(before);
        fixture.preset.setPSubAction(action);
        fixture.preset.makeSettings();
        QTEST(fixture.controller.subtitleMatrixIndex(), "after");
    }

    void laterFileIsTheCurrentOne()
    {
        Fixture fixture;
        fixture.window.setFile(u"/v/b.mkv"_s, filmOf(u"2"_s));
        fixture.window.file->setTheVideoBitRate(u"777"_s);
        fixture.window.selectAll();
        fixture.preset.setPVideoActionIndex(1);
        fixture.preset.setPVideoBitRateIndex(0);
        fixture.preset.makeSettings();
        QCOMPARE(fixture.controller.enteredUserVideoBitRate(), u"777"_s);
        QCOMPARE(outputsOf(*fixture.track(3)), u"passthru 2 0"_s);
    }
};

TESSARAY_TEST(MakeSettingsTest)
#include "MakeSettingsTest.moc"

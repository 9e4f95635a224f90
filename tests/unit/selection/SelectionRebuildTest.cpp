// What is ticked becomes the selection, and a loaded file takes the place of the one before.
#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::ControllerFixture;
using support::outputsOf;
using support::probedAudio;
using support::probedSubtitle;
using support::probedVideo;
using support::setOutputs;
using Sender = KXSelectionController::Sender;

namespace {

TrackPointer ofType(const QString &type)
{
    auto track = std::make_shared<KXVideoTrack>();
    track->setTrackType(type);
    return track;
}

QString counts(const KXSelection &selection)
{
    return selection.vidCount() + u' ' + selection.audCount() + u' ' + selection.subCount();
}

QStringList audioNumbers(const TrackList &tracks)
{
    QStringList numbers;
    for (const TrackPointer &track : tracks)
        numbers.append(track->selectedAudioTrackIndex());
    return numbers;
}

TrackList film()
{
    return {probedVideo(), probedAudio(u"dts"_s, u"6"_s), probedAudio(u"aac"_s, u"2"_s, u"French"_s),
            probedSubtitle()};
}

} // namespace

class SelectionRebuildTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tickedTracksAreTakenAndTheOthersKeptInTheirOrder()
    {
        const TrackList tracks = film();
        ControllerFixture fixture(tracks);
        tracks.at(0)->setTrackSelected(true);
        tracks.at(2)->setTrackSelected(true);
        fixture.controller.trackTableSelectionChanged(Sender::TrackTable);
        QCOMPARE(fixture.selection->trackList(), TrackList({tracks.at(0), tracks.at(2)}));
        QCOMPARE(fixture.selection->keepTracksList(), TrackList({tracks.at(1), tracks.at(3)}));
        fixture.tick(0, false);
        QCOMPARE(fixture.selection->trackList(), TrackList{tracks.at(2)});
        QCOMPARE(fixture.selection->keepTracksList(), TrackList({tracks.at(0), tracks.at(1), tracks.at(3)}));
    }

    void tickedTracksAreCountedByKind_data()
    {
        QTest::addColumn<QStringList>("types");
        QTest::addColumn<QString>("expected");
        const QString video = u"Video"_s;
        const QString audio = u"Audio"_s;
        const QString subtitle = u"Subtitle"_s;
        const QString external = u"External Subtitle"_s;
        QTest::newRow("none") << QStringList() << u"0 0 0"_s;
        QTest::newRow("one of each") << QStringList{video, audio, subtitle} << u"1 1 1"_s;
        QTest::newRow("external subtitles count") << QStringList{external, subtitle, external} << u"0 0 3"_s;
        QTest::newRow("two videos") << QStringList{video, video, audio} << u"2 1 0"_s;
        QTest::newRow("unknown kinds don't") << QStringList{u"none"_s, u"Attachment"_s, video} << u"1 0 0"_s;
        QTest::newRow("kinds in another case don't")
            << QStringList{u"video"_s, u"AUDIO"_s, u"subtitle"_s} << u"0 0 0"_s;
        QTest::newRow("twelve") << QStringList(12, audio) << u"0 12 0"_s;
    }

    void tickedTracksAreCountedByKind()
    {
        QFETCH(QStringList, types);
        QFETCH(QString, expected);
        TrackList tracks;
        for (const QString &type : types)
            tracks.append(ofType(type));
        ControllerFixture fixture(tracks);
        fixture.selectAll();
        QCOMPARE(counts(*fixture.selection), expected);
    }

    void tracksThatAreNotTickedDoNotCount()
    {
        ControllerFixture fixture(film());
        fixture.selectAll();
        QCOMPARE(counts(*fixture.selection), u"1 2 1"_s);
        fixture.tick(2, false);
        QCOMPARE(counts(*fixture.selection), u"1 1 1"_s);
    }

    void selectedAudioTracksAreNumberedFromZero()
    {
        const TrackList tracks = film();
        ControllerFixture fixture(tracks);
        tracks.at(0)->setSelectedAudioTrackIndex(u"9"_s);
        fixture.selectAll();
        QCOMPARE(audioNumbers(tracks), QStringList({u"9"_s, u"0"_s, u"1"_s, u"0"_s}));
        fixture.tick(1, false);
        QCOMPARE(tracks.at(2)->selectedAudioTrackIndex(), u"0"_s);
        fixture.tick(1);
        QCOMPARE(audioNumbers(tracks), QStringList({u"9"_s, u"0"_s, u"1"_s, u"0"_s}));
    }

    void stereoCopiesFollowTheTicks()
    {
        const TrackList tracks = film();
        tracks.at(1)->setCreateStereoCopyFlag(true);
        ControllerFixture fixture(tracks);
        fixture.selectAll();
        QCOMPARE(fixture.selection->addedAudioTrackList().size(), 1);
        fixture.tick(1, false);
        QVERIFY(fixture.selection->addedAudioTrackList().isEmpty());
    }

    /// Meant: a copy has the number that its source had when the ticks changed.
    void stereoCopiesAreMadeBeforeTheTracksAreNumbered()
    {
        const TrackList tracks = film();
        tracks.at(2)->setCreateStereoCopyFlag(true);
        ControllerFixture fixture(tracks);
        fixture.selectAll();
        fixture.tick(1, false);
        QCOMPARE(tracks.at(2)->selectedAudioTrackIndex(), u"0"_s);
        QCOMPARE(fixture.selection->addedAudioTrackList().at(0)->selectedAudioTrackIndex(), u"1"_s);
    }

    void tickingByHandLeavesTheTrackPreset()
    {
        ControllerFixture fixture(film());
        fixture.tick(0);
        QCOMPARE(fixture.presets.calls, QStringList({u"selectionMethodIndex 0"_s, u"applySettings"_s}));
        fixture.forgetCalls();
        fixture.controller.toggleAllAudio();
        QCOMPARE(fixture.presets.calls, QStringList({u"selectionMethodIndex 0"_s, u"applySettings"_s}));
    }

    void ticksThatWereNotMadeByHandKeepTheTrackPreset()
    {
        ControllerFixture fixture(film());
        fixture.controller.trackTableSelectionChanged(Sender::MakeSelections);
        fixture.controller.trackTableSelectionChanged(Sender::Other);
        QCOMPARE(fixture.presets.calls, QStringList({u"applySettings"_s, u"applySettings"_s}));
    }

    void settingsAreAppliedToTheFinishedSelection()
    {
        ControllerFixture fixture(film());
        QStringList seen;
        fixture.presets.onApply = [&] {
            seen = {counts(*fixture.selection), fixture.controller.audioTrackLabels().join(u", "_s),
                    fixture.file->trackList().at(2)->selectedAudioTrackIndex(),
                    fixture.openFiles.calls.join(u',')};
        };
        fixture.selectAll();
        QCOMPARE(seen, QStringList({u"1 2 1"_s, u"6 Ch. DTS - English, 2 Ch. AAC - French"_s, u"1"_s,
                                    u"canOpenQueuePopover false"_s}));
    }

    void trackPresetIsLeftBeforeThePopupIsFilled()
    {
        ControllerFixture fixture(film());
        bool left = false;
        fixture.controller.upddateAudioTrackPopupFor();
        connect(
            &fixture.controller, &KXSelectionController::stateChanged, this,
            [&] { left = fixture.presets.calls.contains(u"selectionMethodIndex 0"_s); },
            Qt::SingleShotConnection);
        fixture.tick(1);
        QVERIFY(left);
    }

    void tableIsToldOfTicksThatItDidNotMake()
    {
        ControllerFixture fixture(film());
        QSignalSpy ticks(&fixture.controller, &KXSelectionController::trackTicksChanged);
        fixture.controller.trackTableSelectionChanged(Sender::TrackTable);
        QCOMPARE(ticks.count(), 0);
        fixture.controller.trackTableSelectionChanged(Sender::MakeSelections);
        QCOMPARE(ticks.count(), 1);
        fixture.controller.trackTableSelectionChanged(Sender::Other);
        QCOMPARE(ticks.count(), 2);
    }

    void rebuildingUpdatesTheTabsWithoutPresetsToo()
    {
        ControllerFixture fixture(film());
        fixture.controller.setPresetsController(nullptr);
        fixture.selectAll();
        QVERIFY(fixture.controller.canConvert());
        QVERIFY(fixture.controller.userMadeAudioSelection());
    }

    void loadedFileGivesItsNamesAndNumbers()
    {
        ControllerFixture fixture;
        fixture.setFile(u"/v/new.mkv"_s, film());
        fixture.controller.takeLoadedFile();
        QCOMPARE(fixture.selection->videoTrackFilePath(), u"/v/new.mkv"_s);
        QCOMPARE(fixture.controller.currentFileText(), u"/v/new.mkv"_s);
        QCOMPARE(fixture.controller.enteredUserVideoBitRate(), u"3000"_s);
        QCOMPARE(fixture.controller.enteredUserFPS(), u"25"_s);
        QCOMPARE(fixture.controller.enteredUserWidth(), u"1920"_s);
        QCOMPARE(fixture.selection->userFPS(), u"25"_s);
        QVERIFY(fixture.controller.canAddTrack());
        QCOMPARE(fixture.presets.calls, QStringList{u"applySettings"_s});
    }

    void loadedFileWithoutAFrameRateShowsNone()
    {
        ControllerFixture fixture;
        fixture.file->setTheFPS(u"nan"_s);
        fixture.controller.takeLoadedFile();
        QCOMPARE(fixture.controller.enteredUserFPS(), u"0"_s);
        QVERIFY(!fixture.controller.userFPSOK());
        QVERIFY(fixture.controller.userWidthOK() && fixture.controller.userBitRateOK());
    }

    void loadedFileIsSelectedAsItIsTicked()
    {
        ControllerFixture fixture;
        const TrackList tracks = film();
        tracks.at(0)->setTrackSelected(true);
        tracks.at(1)->setTrackSelected(true);
        fixture.setFile(u"/v/new.mkv"_s, tracks);
        fixture.controller.takeLoadedFile();
        QCOMPARE(counts(*fixture.selection), u"1 1 0"_s);
        QVERIFY(fixture.controller.canConvert());
        QCOMPARE(fixture.controller.audioMatrixSelections(), QStringList{u"Pass Thru"_s});
        QCOMPARE(outputsOf(*tracks.at(1)), u"passthru 6 0"_s);
    }

    /// Under "Manual" nothing else rebuilds the selection.
    void secondFileLeavesNothingOfTheFirst()
    {
        const TrackList first = film();
        ControllerFixture fixture(first);
        fixture.controller.takeLoadedFile();
        fixture.selectAll();
        fixture.controller.setAudioTrackPopupIndex(0);
        fixture.controller.tickAudioAction(u"AC3 (5.1)"_s, true);
        fixture.controller.setAddStereoTrackButton(1);
        fixture.controller.setVideoMatrixIndex(2);
        fixture.controller.updateTabs();
        const TrackList second = film();
        fixture.setFile(u"/v/second.mp4"_s, second);
        fixture.controller.takeLoadedFile();
        QVERIFY(fixture.selection->trackList().isEmpty());
        QCOMPARE(fixture.selection->keepTracksList(), second);
        QVERIFY(fixture.selection->addedAudioTrackList().isEmpty());
        QCOMPARE(counts(*fixture.selection), u"0 0 0"_s);
        QVERIFY(!fixture.controller.canConvert() && !fixture.controller.canEditTracks());
        QVERIFY(fixture.controller.audioTrackLabels().isEmpty());
        QVERIFY(fixture.controller.hideAudioTrackPopupFlag());
    }

    void tracksOfTheFirstFileKeepTheirChoicesAndTheSecondsTheirs()
    {
        const TrackList first = film();
        ControllerFixture fixture(first);
        fixture.controller.takeLoadedFile();
        fixture.selectAll();
        fixture.controller.tickAudioAction(u"AC3 (5.1)"_s, true);
        const TrackList second = film();
        for (const TrackPointer &track : second)
            track->setTrackSelected(true);
        setOutputs(*second.at(1), u"aac 2 160"_s);
        fixture.setFile(u"/v/second.mkv"_s, second);
        fixture.controller.setVideoMatrixIndex(1);
        fixture.controller.takeLoadedFile();
        QCOMPARE(outputsOf(*first.at(1)), u"passthru 6 0, ac3 6 448"_s);
        QCOMPARE(first.at(0)->userCodec(), u"passthru"_s);
        QCOMPARE(outputsOf(*second.at(1)), u"aac 2 160"_s);
        QCOMPARE(outputsOf(*second.at(2)), u"passthru 2 0"_s);
        QCOMPARE(second.at(0)->userCodec(), u"h264"_s);
    }
};

TESSARAY_TEST(SelectionRebuildTest)
#include "SelectionRebuildTest.moc"

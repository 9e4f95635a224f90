// What is ticked becomes the selection, and a loaded file takes the place of the one before.
#include "support/ControllerBench.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::ControllerBench;
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
        ControllerBench bench(tracks);
        tracks.at(0)->setTrackSelected(true);
        tracks.at(2)->setTrackSelected(true);
        bench.controller.trackTableSelectionChanged(Sender::TrackTable);
        QCOMPARE(bench.selection->trackList(), TrackList({tracks.at(0), tracks.at(2)}));
        QCOMPARE(bench.selection->keepTracksList(), TrackList({tracks.at(1), tracks.at(3)}));
        bench.tick(0, false);
        QCOMPARE(bench.selection->trackList(), TrackList{tracks.at(2)});
        QCOMPARE(bench.selection->keepTracksList(), TrackList({tracks.at(0), tracks.at(1), tracks.at(3)}));
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
        ControllerBench bench(tracks);
        bench.selectAll();
        QCOMPARE(counts(*bench.selection), expected);
    }

    void tracksThatAreNotTickedDoNotCount()
    {
        ControllerBench bench(film());
        bench.selectAll();
        QCOMPARE(counts(*bench.selection), u"1 2 1"_s);
        bench.tick(2, false);
        QCOMPARE(counts(*bench.selection), u"1 1 1"_s);
    }

    void selectedAudioTracksAreNumberedFromZero()
    {
        const TrackList tracks = film();
        ControllerBench bench(tracks);
        tracks.at(0)->setSelectedAudioTrackIndex(u"9"_s);
        bench.selectAll();
        QCOMPARE(audioNumbers(tracks), QStringList({u"9"_s, u"0"_s, u"1"_s, u"0"_s}));
        bench.tick(1, false);
        QCOMPARE(tracks.at(2)->selectedAudioTrackIndex(), u"0"_s);
        bench.tick(1);
        QCOMPARE(audioNumbers(tracks), QStringList({u"9"_s, u"0"_s, u"1"_s, u"0"_s}));
    }

    void stereoCopiesFollowTheTicks()
    {
        const TrackList tracks = film();
        tracks.at(1)->setCreateStereoCopyFlag(true);
        ControllerBench bench(tracks);
        bench.selectAll();
        QCOMPARE(bench.selection->addedAudioTrackList().size(), 1);
        bench.tick(1, false);
        QVERIFY(bench.selection->addedAudioTrackList().isEmpty());
    }

    /// Meant: a copy has the number that its source had when the ticks changed.
    void stereoCopiesAreMadeBeforeTheTracksAreNumbered()
    {
        const TrackList tracks = film();
        tracks.at(2)->setCreateStereoCopyFlag(true);
        ControllerBench bench(tracks);
        bench.selectAll();
        bench.tick(1, false);
        QCOMPARE(tracks.at(2)->selectedAudioTrackIndex(), u"0"_s);
        QCOMPARE(bench.selection->addedAudioTrackList().at(0)->selectedAudioTrackIndex(), u"1"_s);
    }

    void tickingByHandLeavesTheTrackPreset()
    {
        ControllerBench bench(film());
        bench.tick(0);
        QCOMPARE(bench.presets.calls, QStringList({u"selectionMethodIndex 0"_s, u"applySettings"_s}));
        bench.forgetCalls();
        bench.controller.toggleAllAudio();
        QCOMPARE(bench.presets.calls, QStringList({u"selectionMethodIndex 0"_s, u"applySettings"_s}));
    }

    void ticksThatWereNotMadeByHandKeepTheTrackPreset()
    {
        ControllerBench bench(film());
        bench.controller.trackTableSelectionChanged(Sender::MakeSelections);
        bench.controller.trackTableSelectionChanged(Sender::Other);
        QCOMPARE(bench.presets.calls, QStringList({u"applySettings"_s, u"applySettings"_s}));
    }

    void settingsAreAppliedToTheFinishedSelection()
    {
        ControllerBench bench(film());
        QStringList seen;
        bench.presets.onApply = [&] {
            seen = {counts(*bench.selection), bench.controller.audioTrackLabels().join(u", "_s),
                    bench.file->trackList().at(2)->selectedAudioTrackIndex(),
                    bench.openFiles.calls.join(u',')};
        };
        bench.selectAll();
        QCOMPARE(seen, QStringList({u"1 2 1"_s, u"6 Ch. DTS - English, 2 Ch. AAC - French"_s, u"1"_s,
                                    u"canOpenQueuePopover false"_s}));
    }

    void trackPresetIsLeftBeforeThePopupIsFilled()
    {
        ControllerBench bench(film());
        bool left = false;
        bench.controller.upddateAudioTrackPopupFor();
        connect(
            &bench.controller, &KXSelectionController::stateChanged, this,
            [&] { left = bench.presets.calls.contains(u"selectionMethodIndex 0"_s); },
            Qt::SingleShotConnection);
        bench.tick(1);
        QVERIFY(left);
    }

    void tableIsToldOfTicksThatItDidNotMake()
    {
        ControllerBench bench(film());
        QSignalSpy ticks(&bench.controller, &KXSelectionController::trackTicksChanged);
        bench.controller.trackTableSelectionChanged(Sender::TrackTable);
        QCOMPARE(ticks.count(), 0);
        bench.controller.trackTableSelectionChanged(Sender::MakeSelections);
        QCOMPARE(ticks.count(), 1);
        bench.controller.trackTableSelectionChanged(Sender::Other);
        QCOMPARE(ticks.count(), 2);
    }

    void rebuildingUpdatesTheTabsWithoutPresetsToo()
    {
        ControllerBench bench(film());
        bench.controller.setPresetsController(nullptr);
        bench.selectAll();
        QVERIFY(bench.controller.canConvert());
        QVERIFY(bench.controller.userMadeAudioSelection());
    }

    void loadedFileGivesItsNamesAndNumbers()
    {
        ControllerBench bench;
        bench.setFile(u"/v/new.mkv"_s, film());
        bench.controller.takeLoadedFile();
        QCOMPARE(bench.selection->videoTrackFilePath(), u"/v/new.mkv"_s);
        QCOMPARE(bench.controller.currentFileText(), u"/v/new.mkv"_s);
        QCOMPARE(bench.controller.enteredUserVideoBitRate(), u"3000"_s);
        QCOMPARE(bench.controller.enteredUserFPS(), u"25"_s);
        QCOMPARE(bench.controller.enteredUserWidth(), u"1920"_s);
        QCOMPARE(bench.selection->userFPS(), u"25"_s);
        QVERIFY(bench.controller.canAddTrack());
        QCOMPARE(bench.presets.calls, QStringList{u"applySettings"_s});
    }

    void loadedFileWithoutAFrameRateShowsNone()
    {
        ControllerBench bench;
        bench.file->setTheFPS(u"nan"_s);
        bench.controller.takeLoadedFile();
        QCOMPARE(bench.controller.enteredUserFPS(), u"0"_s);
        QVERIFY(!bench.controller.userFPSOK());
        QVERIFY(bench.controller.userWidthOK() && bench.controller.userBitRateOK());
    }

    void loadedFileIsSelectedAsItIsTicked()
    {
        ControllerBench bench;
        const TrackList tracks = film();
        tracks.at(0)->setTrackSelected(true);
        tracks.at(1)->setTrackSelected(true);
        bench.setFile(u"/v/new.mkv"_s, tracks);
        bench.controller.takeLoadedFile();
        QCOMPARE(counts(*bench.selection), u"1 1 0"_s);
        QVERIFY(bench.controller.canConvert());
        QCOMPARE(bench.controller.audioMatrixSelections(), QStringList{u"Pass Thru"_s});
        QCOMPARE(outputsOf(*tracks.at(1)), u"passthru 6 0"_s);
    }

    /// Under "Manual" nobody else rebuilds the selection.
    void secondFileLeavesNothingOfTheFirst()
    {
        const TrackList first = film();
        ControllerBench bench(first);
        bench.controller.takeLoadedFile();
        bench.selectAll();
        bench.controller.setAudioTrackPopupIndex(0);
        bench.controller.tickAudioAction(u"AC3 (5.1)"_s, true);
        bench.controller.setAddStereoTrackButton(1);
        bench.controller.setVideoMatrixIndex(2);
        bench.controller.updateTabs();
        const TrackList second = film();
        bench.setFile(u"/v/second.mp4"_s, second);
        bench.controller.takeLoadedFile();
        QVERIFY(bench.selection->trackList().isEmpty());
        QCOMPARE(bench.selection->keepTracksList(), second);
        QVERIFY(bench.selection->addedAudioTrackList().isEmpty());
        QCOMPARE(counts(*bench.selection), u"0 0 0"_s);
        QVERIFY(!bench.controller.canConvert() && !bench.controller.canEditTracks());
        QVERIFY(bench.controller.audioTrackLabels().isEmpty());
        QVERIFY(bench.controller.hideAudioTrackPopupFlag());
    }

    void tracksOfTheFirstFileKeepTheirChoicesAndTheSecondsTheirs()
    {
        const TrackList first = film();
        ControllerBench bench(first);
        bench.controller.takeLoadedFile();
        bench.selectAll();
        bench.controller.tickAudioAction(u"AC3 (5.1)"_s, true);
        const TrackList second = film();
        for (const TrackPointer &track : second)
            track->setTrackSelected(true);
        setOutputs(*second.at(1), u"aac 2 160"_s);
        bench.setFile(u"/v/second.mkv"_s, second);
        bench.controller.setVideoMatrixIndex(1);
        bench.controller.takeLoadedFile();
        QCOMPARE(outputsOf(*first.at(1)), u"passthru 6 0, ac3 6 448"_s);
        QCOMPARE(first.at(0)->userCodec(), u"passthru"_s);
        QCOMPARE(outputsOf(*second.at(1)), u"aac 2 160"_s);
        QCOMPARE(outputsOf(*second.at(2)), u"passthru 2 0"_s);
        QCOMPARE(second.at(0)->userCodec(), u"h264"_s);
    }
};

QTEST_GUILESS_MAIN(SelectionRebuildTest)
#include "SelectionRebuildTest.moc"

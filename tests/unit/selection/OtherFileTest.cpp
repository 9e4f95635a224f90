// One opened file gives way to another, each with its own selection.
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

namespace {

/// An opened file with a video, a surround track and a subtitle, all selected, and choices of its own.
OpenedFile otherFile()
{
    ControllerFixture other({probedVideo(), probedAudio(u"dts"_s, u"6"_s), probedSubtitle()});
    other.setFile(u"/v/other.mkv"_s, other.file->trackList());
    other.controller.setSubtitleMatrixIndex(1);
    other.selectAll();
    other.selection->setTheDevice(u"Xbox"_s);
    other.selection->setUserVideoBitRate(u"800"_s);
    other.selection->setUserFPS(u"23.976"_s);
    other.selection->setUserWidth(u"640"_s);
    return {other.file->copy(), other.selection->copy(), u"other.mkv"_s};
}

TrackPointer trackOf(const OpenedFile &entry, qsizetype row)
{
    return entry.videoFile->trackList().at(row);
}

/// A fixture whose own file is "/v/a.mkv" with a video and a stereo track, both selected.
struct TwoFiles : ControllerFixture
{
    TwoFiles()
        : ControllerFixture({probedVideo(), probedAudio()})
    {
        selection->initializeFrom(*file);
        selectAll();
    }
    void take(const OpenedFile &entry)
    {
        controller.updateCurrentSelectionToNewSelectionAndCurrentVideoFileToNewVideoFile(
            *entry.videoSelection, *entry.videoFile);
    }
    QString numbers() const
    {
        return controller.enteredUserVideoBitRate() + u' ' + controller.enteredUserFPS() + u' ' +
               controller.enteredUserWidth();
    }
};

} // namespace

class OtherFileTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void currentObjectsStayAndTakeTheOthersContents()
    {
        TwoFiles fixture;
        const OpenedFile entry = otherFile();
        fixture.take(entry);
        QCOMPARE(fixture.controller.currentVideoFile(), fixture.file);
        QCOMPARE(fixture.controller.currentSelection(), fixture.selection);
        QCOMPARE(fixture.file->theFilePath(), u"/v/other.mkv"_s);
        QCOMPARE(fixture.file->trackList(), entry.videoFile->trackList());
        QCOMPARE(fixture.selection->trackList(), entry.videoSelection->trackList());
        QCOMPARE(fixture.selection->theDevice(), u"Xbox"_s);
        QCOMPARE(fixture.selection->subCount(), u"1"_s);
    }

    void wherePresetsAreAppliedTheControlsStay()
    {
        TwoFiles fixture;
        fixture.controller.setMp4Device(u"PS3"_s);
        fixture.controller.setEnteredUserWidth(u"100"_s);
        fixture.forgetCalls();
        fixture.take(otherFile());
        QCOMPARE(fixture.controller.mp4Device(), u"PS3"_s);
        QCOMPARE(fixture.controller.enteredUserWidth(), u"100"_s);
        QCOMPARE(fixture.selection->userWidth(), u"640"_s);
        QVERIFY(fixture.openFiles.calls.isEmpty());
    }

    void whereChoicesAreMadeByHandTheControlsFollow()
    {
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(1);
        fixture.controller.setVideoMatrixIndex(0);
        const OpenedFile entry = otherFile();
        trackOf(entry, 0)->setUserCodec(u"h264"_s);
        entry.videoSelection->setUserPassNumber(u"2"_s);
        trackOf(entry, 2)->setUserCodec(u"mux"_s);
        setOutputs(*trackOf(entry, 1), u"ac3 6 640, aac 2 192"_s);
        entry.videoSelection->setSplitType(u"size"_s);
        entry.videoSelection->setSplitSize(u"700"_s);
        entry.videoSelection->initializeSplitForStartTimeAndEndTime(u"00:00:01"_s, u"00:00:02"_s);
        entry.videoSelection->setUserParWidth(u"16"_s);
        entry.videoSelection->setUserParHeight(u"15"_s);
        fixture.forgetCalls();
        fixture.take(entry);
        const KXSelectionController &controller = fixture.controller;
        QCOMPARE(controller.mp4Device(), u"Xbox"_s);
        QCOMPARE(fixture.numbers(), u"800 23.976 640"_s);
        QCOMPARE(controller.videoMatrixIndex(), 2);
        QCOMPARE(controller.subtitleMatrixIndex(), 1);
        QCOMPARE(controller.splitTypeMatrixIndex(), 1);
        QCOMPARE(controller.enteredSplitSize(), u"700"_s);
        QCOMPARE(controller.enteredSplitStartTime(), u"00:00:01"_s);
        QCOMPARE(controller.enteredSplitEndTime(), u"00:00:02"_s);
        QCOMPARE(controller.enteredParWidth(), u"16"_s);
        QCOMPARE(controller.enteredParHeight(), u"15"_s);
        QCOMPARE(controller.audioTrackLabels(), QStringList{u"6 Ch. DTS - English"_s});
        QCOMPARE(controller.audioMatrixSelections(), QStringList({u"AC3 (5.1)"_s, u"AAC (2-Ch.)"_s}));
        QCOMPARE(controller.enteredAAC2BitRate(), u"192 kbps"_s);
        QCOMPARE(controller.enteredAC351BitRate(), u"640 kbps"_s);
        QVERIFY(fixture.openFiles.calls.isEmpty()); // none of it updated the tabs
        QVERIFY(!controller.appIsUpdatingTabs());
    }

    void tabsCountAsUpdatedWhileTheControlsFollow()
    {
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(1);
        QList<bool> said;
        connect(&fixture.controller, &KXSelectionController::stateChanged, this,
                [&] { said.append(fixture.controller.appIsUpdatingTabs()); });
        fixture.take(otherFile());
        QVERIFY(!said.isEmpty() && !said.contains(false));
    }

    /// A split duration belongs to the receiver, so its field stays too.
    void durationOfTheSplitStays()
    {
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(1);
        fixture.controller.setEnteredSplitDuration(u"00:00:09"_s);
        const OpenedFile entry = otherFile();
        entry.videoSelection->initializeSplitDurationForTimeText(u"00:00:01"_s);
        fixture.take(entry);
        QCOMPARE(fixture.controller.enteredSplitDuration(), u"00:00:09"_s);
        QCOMPARE(fixture.selection->splitDurationText(), u"00:00:00"_s);
    }

    void selectionWithoutADeviceLeavesTheChosenOne()
    {
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(1);
        fixture.controller.setMp4Device(u"PS3"_s);
        const OpenedFile entry = otherFile();
        entry.videoSelection->setTheDevice(u"none"_s);
        fixture.take(entry);
        QCOMPARE(fixture.controller.mp4Device(), u"PS3"_s);
    }

    void videoChoiceIsReadFromTheTrack_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("passes");
        QTest::addColumn<int>("index");
        QTest::newRow("passes through") << u"passthru"_s << u"1"_s << 0;
        QTest::newRow("passes through, whatever the passes") << u"passthru"_s << u"2"_s << 0;
        QTest::newRow("one pass") << u"h264"_s << u"1"_s << 1;
        QTest::newRow("two passes") << u"h264"_s << u"2"_s << 2;
        QTest::newRow("never updated") << u"h264"_s << u"0"_s << 1;
        QTest::newRow("tells none") << u"none"_s << u"2"_s << 7;
    }

    void videoChoiceIsReadFromTheTrack()
    {
        QFETCH(QString, codec);
        QFETCH(QString, passes);
        QFETCH(int, index);
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(1);
        fixture.controller.setVideoMatrixIndex(7);
        const OpenedFile entry = otherFile();
        trackOf(entry, 0)->setUserCodec(codec);
        entry.videoSelection->setUserPassNumber(passes);
        fixture.take(entry);
        QCOMPARE(fixture.controller.videoMatrixIndex(), index);
    }

    void subtitleChoiceIsReadFromTheTrack_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<int>("index");
        QTest::newRow("burned") << u"Subtitle"_s << u"burn"_s << 0;
        QTest::newRow("muxed") << u"Subtitle"_s << u"mux"_s << 1;
        QTest::newRow("external, burned") << u"External Subtitle"_s << u"burn"_s << 0;
        QTest::newRow("external, muxed") << u"External Subtitle"_s << u"mux"_s << 1;
        QTest::newRow("no subtitle") << u"Attachment"_s << u"burn"_s << 7;
    }

    void subtitleChoiceIsReadFromTheTrack()
    {
        QFETCH(QString, type);
        QFETCH(QString, codec);
        QFETCH(int, index);
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(1);
        fixture.controller.setSubtitleMatrixIndex(7);
        const OpenedFile entry = otherFile();
        trackOf(entry, 2)->setTrackType(type);
        trackOf(entry, 2)->setUserCodec(codec);
        fixture.take(entry);
        QCOMPARE(fixture.controller.subtitleMatrixIndex(), index);
    }

    void splitKindIsReadFromTheSelection_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("index");
        QTest::newRow("time") << u"time"_s << 0;
        QTest::newRow("size") << u"size"_s << 1;
        QTest::newRow("duration") << u"duration"_s << 2;
        QTest::newRow("none") << u"none"_s << 7;
    }

    void splitKindIsReadFromTheSelection()
    {
        QFETCH(QString, type);
        QFETCH(int, index);
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(1);
        fixture.controller.setSplitTypeMatrixIndex(7);
        const OpenedFile entry = otherFile();
        entry.videoSelection->setSplitType(type);
        fixture.take(entry);
        QCOMPARE(fixture.controller.splitTypeMatrixIndex(), index);
    }

    void presentFileIsStoredAsACopyBeforeTheOtherComes()
    {
        TwoFiles fixture;
        const TrackList tracks = fixture.file->trackList();
        fixture.controller.makeCurrent(otherFile());
        QCOMPARE(fixture.openFiles.calls.value(0), u"store"_s);
        QCOMPARE(fixture.openFiles.calls.count(u"store"_s), 1);
        const OpenedFile &stored = fixture.openFiles.stored;
        QCOMPARE(stored.fileName, u"a.mkv"_s);
        QVERIFY(stored.videoFile != fixture.file && stored.videoSelection != fixture.selection);
        QCOMPARE(stored.videoFile->theFilePath(), u"/v/a.mkv"_s);
        QCOMPARE(stored.videoFile->trackList(), tracks);
        QCOMPARE(stored.videoSelection->trackList(), tracks);
    }

    void numbersFollowWhateverTheMode_data()
    {
        QTest::addColumn<int>("mode");
        QTest::newRow("presets are applied") << 0;
        QTest::newRow("choices by hand") << 1;
    }

    void numbersFollowWhateverTheMode()
    {
        QFETCH(int, mode);
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(mode);
        fixture.controller.makeCurrent(otherFile());
        QCOMPARE(fixture.numbers(), u"800 23.976 640"_s);
        QCOMPARE(fixture.selection->userVideoBitRate(), u"800"_s);
        QCOMPARE(fixture.selection->userFPS(), u"23.976"_s);
        QCOMPARE(fixture.selection->userWidth(), u"640"_s);
    }

    void otherFileUpdatesTheTabsOnceAndTellsTheTable()
    {
        TwoFiles fixture;
        fixture.openFiles.count = 2;
        QSignalSpy ticks(&fixture.controller, &KXSelectionController::trackTicksChanged);
        fixture.controller.makeCurrent(otherFile());
        QCOMPARE(fixture.openFiles.calls, QStringList({u"store"_s, u"canOpenQueuePopover true"_s}));
        QCOMPARE(ticks.count(), 1);
        QCOMPARE(fixture.controller.currentFileText(), u"/v/other.mkv"_s);
        QVERIFY(fixture.controller.canConvert() && fixture.controller.oneSubSelected());
        QVERIFY(fixture.controller.popupAudioIsSurround());
        QVERIFY(fixture.presets.calls.isEmpty());
        QVERIFY(!fixture.controller.appIsUpdatingTabs());
    }

    void ticksOfTheFileBeforeDoNotReachTheOthersTracks_data() { numbersFollowWhateverTheMode_data(); }

    void ticksOfTheFileBeforeDoNotReachTheOthersTracks()
    {
        QFETCH(int, mode);
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(mode);
        fixture.controller.tickAudioAction(u"AAC (2-Ch.)"_s, true);
        const OpenedFile entry = otherFile();
        setOutputs(*trackOf(entry, 1), u"ac3 6 640"_s);
        fixture.controller.makeCurrent(entry);
        QCOMPARE(outputsOf(*trackOf(entry, 1)), u"ac3 6 640"_s);
        QCOMPARE(fixture.controller.audioMatrixSelections(), QStringList{u"AC3 (5.1)"_s});
        const TrackPointer before = fixture.openFiles.stored.videoFile->trackList().at(1);
        QCOMPARE(outputsOf(*before), u"passthru 2 0, aac 2 128"_s);
    }

    void wherePresetsAreAppliedTheWindowsVideoChoiceHoldsForTheOtherFile()
    {
        TwoFiles fixture;
        fixture.controller.setVideoMatrixIndex(2);
        const OpenedFile entry = otherFile();
        fixture.controller.makeCurrent(entry);
        QCOMPARE(fixture.controller.videoMatrixIndex(), 2);
        QCOMPARE(trackOf(entry, 0)->userCodec(), u"h264"_s);
        QCOMPARE(fixture.selection->theDevice(), u"General"_s);
    }

    void whereChoicesAreMadeByHandEachFileKeepsItsOwn()
    {
        TwoFiles fixture;
        fixture.controller.setOpenQueueMatrixIndex(1);
        fixture.controller.setVideoMatrixIndex(2);
        fixture.controller.setSubtitleMatrixIndex(0);
        fixture.controller.setMp4Device(u"PS3"_s);
        fixture.controller.setEnteredUserWidth(u"320"_s);
        fixture.controller.updateTabs();
        const OpenedFile entry = otherFile();
        fixture.controller.makeCurrent(entry);
        QCOMPARE(fixture.controller.videoMatrixIndex(), 0);
        QCOMPARE(fixture.controller.subtitleMatrixIndex(), 1);
        QCOMPARE(trackOf(entry, 0)->userCodec(), u"passthru"_s);
        QCOMPARE(trackOf(entry, 2)->userCodec(), u"mux"_s);
        QCOMPARE(fixture.selection->theDevice(), u"Xbox"_s);
        fixture.controller.makeCurrent(OpenedFile(fixture.openFiles.stored));
        QCOMPARE(fixture.controller.videoMatrixIndex(), 2);
        QCOMPARE(fixture.file->trackList().at(0)->userCodec(), u"h264"_s);
        QCOMPARE(fixture.selection->userPassNumber(), u"2"_s);
        QCOMPARE(fixture.selection->theDevice(), u"PS3"_s);
        QCOMPARE(fixture.controller.enteredUserWidth(), u"320"_s);
    }
};

TESSARAY_TEST(OtherFileTest)
#include "OtherFileTest.moc"

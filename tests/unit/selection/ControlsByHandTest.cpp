// What somebody does at the window: tabs, toggles, a click beside the controls, a control set by hand,
// the add-stereo check box.
#include "support/ControllerBench.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::ControllerBench;
using support::outputsOf;
using support::probedAudio;
using support::probedSubtitle;
using support::probedVideo;

namespace {

using Toggle = void (KXSelectionController::*)();

/// Two of each kind, the last subtitle in the spelling that nothing here assigns but filters accept.
TrackList sixTracks()
{
    TrackList tracks{probedVideo(), probedVideo(),    probedAudio(),
                     probedAudio(), probedSubtitle(), probedSubtitle()};
    tracks.last()->setTrackType(u"External Subtitle"_s);
    return tracks;
}

/// The ticks of all tracks: "110000".
QString ticked(const ControllerBench &bench)
{
    QString text;
    for (const TrackPointer &track : bench.file->trackList())
        text += track->trackSelected() ? u'1' : u'0';
    return text;
}

void setTicked(ControllerBench &bench, const QString &ticks)
{
    for (int row = 0; row < ticks.size(); ++row)
        bench.file->trackList().at(row)->setTrackSelected(ticks.at(row) == u'1');
    bench.controller.trackTableSelectionChanged(KXSelectionController::Sender::Other);
    bench.forgetCalls();
}

/// The numbers shown and those of the selection: "3000 25 1920 / 3000 25 1920".
QString numbers(const ControllerBench &bench)
{
    return QStringList{bench.controller.enteredUserVideoBitRate(),
                       bench.controller.enteredUserFPS(),
                       bench.controller.enteredUserWidth(),
                       u"/"_s,
                       bench.selection->userVideoBitRate(),
                       bench.selection->userFPS(),
                       bench.selection->userWidth()}
        .join(u' ');
}

QList<bool> hidden(const KXSelectionController &controller)
{
    return {controller.hideTrackTable(), controller.hideTrackTogglesFlag(), controller.hideFileTable()};
}

} // namespace

class ControlsByHandTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void togglesTickAKindWholeOrUntickIt_data()
    {
        QTest::addColumn<Toggle>("toggle");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        const Toggle video = &KXSelectionController::toggleAllVideo;
        const Toggle audio = &KXSelectionController::toggleAllAudio;
        const Toggle subtitle = &KXSelectionController::toggleAllSubtitle;
        QTest::newRow("no video") << video << u"000000"_s << u"110000"_s;
        QTest::newRow("one video") << video << u"011010"_s << u"111010"_s;
        QTest::newRow("every video") << video << u"111111"_s << u"001111"_s;
        QTest::newRow("no audio") << audio << u"100000"_s << u"101100"_s;
        QTest::newRow("one audio") << audio << u"000100"_s << u"001100"_s;
        QTest::newRow("every audio") << audio << u"001101"_s << u"000001"_s;
        QTest::newRow("no subtitle") << subtitle << u"001000"_s << u"001011"_s;
        QTest::newRow("one external subtitle") << subtitle << u"000001"_s << u"000011"_s;
        QTest::newRow("every subtitle") << subtitle << u"110011"_s << u"110000"_s;
    }

    void togglesTickAKindWholeOrUntickIt()
    {
        QFETCH(Toggle, toggle);
        QFETCH(QString, before);
        QFETCH(QString, after);
        ControllerBench bench(sixTracks());
        setTicked(bench, before);
        (bench.controller.*toggle)();
        QCOMPARE(ticked(bench), after);
        QCOMPARE(bench.selection->trackList().size(), after.count(u'1'));
        QCOMPARE(bench.selection->keepTracksList().size(), after.count(u'0'));
    }

    void togglesCompareKindsWithoutCase()
    {
        TrackList tracks = sixTracks();
        tracks.at(0)->setTrackType(u"VIDEO"_s);
        tracks.at(3)->setTrackType(u"audio"_s);
        tracks.at(5)->setTrackType(u"external subtitle"_s);
        ControllerBench bench(tracks);
        bench.file->setTheNumberOfVideoTracks(u"2"_s);
        bench.file->setTheNumberOfAudioTracks(u"2"_s);
        bench.file->setTheNumberOfSubTracks(u"2"_s);
        bench.controller.toggleAllVideo();
        bench.controller.toggleAllAudio();
        bench.controller.toggleAllSubtitle();
        QCOMPARE(ticked(bench), u"111111"_s);
    }

    void togglesCompareNumbersAndNotTexts()
    {
        ControllerBench bench(sixTracks());
        bench.file->setTheNumberOfAudioTracks(u"10"_s); // as a text "10" stands before "2"
        setTicked(bench, u"001100"_s);
        bench.controller.toggleAllAudio();
        QCOMPARE(ticked(bench), u"001100"_s);
    }

    void togglesCompareWithTheNumberOfTheirOwnKind()
    {
        ControllerBench bench({probedVideo(), probedVideo(), probedAudio(), probedAudio(), probedAudio(),
                               probedSubtitle(), probedSubtitle(), probedSubtitle(), probedSubtitle()});
        setTicked(bench, u"100110111"_s); // one of each is missing
        bench.controller.toggleAllVideo();
        bench.controller.toggleAllAudio();
        bench.controller.toggleAllSubtitle();
        QCOMPARE(ticked(bench), u"111111111"_s);
        bench.controller.toggleAllVideo();
        bench.controller.toggleAllAudio();
        bench.controller.toggleAllSubtitle();
        QCOMPARE(ticked(bench), u"000000000"_s);
    }

    void togglingLeavesTheTrackPreset_data()
    {
        QTest::addColumn<Toggle>("toggle");
        QTest::newRow("video") << Toggle(&KXSelectionController::toggleAllVideo);
        QTest::newRow("audio") << Toggle(&KXSelectionController::toggleAllAudio);
        QTest::newRow("subtitle") << Toggle(&KXSelectionController::toggleAllSubtitle);
    }

    void togglingLeavesTheTrackPreset()
    {
        QFETCH(Toggle, toggle);
        ControllerBench bench(sixTracks());
        QSignalSpy ticks(&bench.controller, &KXSelectionController::trackTicksChanged);
        (bench.controller.*toggle)();
        QCOMPARE(bench.presets.calls, QStringList({u"selectionMethodIndex 0"_s, u"applySettings"_s}));
        QCOMPARE(ticks.count(), 1);
    }

    void clickOnTheBackgroundEndsEditingAndLeavesTheSettingsPreset()
    {
        ControllerBench bench({probedVideo()});
        bench.presets.settingIndex = 3;
        QStringList calls;
        connect(&bench.controller, &KXSelectionController::editingEndWanted, this,
                [&] { calls.append(u"end editing"_s); });
        connect(&bench.controller, &KXSelectionController::trackRowsDeselected, this,
                [&] { calls.append(u"deselect rows"_s); });
        bench.controller.guiClickedTrap();
        QCOMPARE(calls, QStringList({u"end editing"_s, u"deselect rows"_s}));
        QCOMPARE(bench.presets.calls, QStringList{u"settingMethodIndex 0"_s});
        QCOMPARE(bench.openFiles.calls.size(), 1); // the tabs were updated, once
    }

    void clickOnTheBackgroundLeavesManualAlone()
    {
        ControllerBench bench({probedVideo()});
        bench.controller.guiClickedTrap();
        QVERIFY(bench.presets.calls.isEmpty());
        QCOMPARE(bench.openFiles.calls.size(), 1);
    }

    void sameTabChangesNothing()
    {
        ControllerBench bench({probedVideo()});
        bench.controller.setEnteredUserWidth(u"720"_s);
        bench.controller.setCurrentTab(u"MKV"_s);
        QVERIFY(bench.presets.calls.isEmpty());
        QVERIFY(bench.openFiles.calls.isEmpty());
        QCOMPARE(bench.controller.enteredUserWidth(), u"720"_s);
    }

    void otherTabLeavesTheSettingsPreset()
    {
        ControllerBench bench;
        bench.controller.setCurrentTab(u"Edit Files"_s);
        QCOMPARE(bench.controller.currentTab(), u"Edit Files"_s);
        QCOMPARE(bench.presets.calls, QStringList{u"settingMethodIndex 0"_s});
        QCOMPARE(bench.openFiles.calls, QStringList({u"close"_s, u"canOpenQueuePopover false"_s}));
    }

    void presetThatChangesTheTabIsNotLeft()
    {
        ControllerBench bench;
        bench.controller.setCurrentTab(u"Edit Files"_s);
        bench.forgetCalls();
        bench.presets.settingIndex = 2;
        bench.presets.changing = true;
        bench.controller.setCurrentTab(u"MKV"_s);
        QVERIFY(bench.presets.calls.isEmpty());
        QCOMPARE(bench.presets.settingIndex, 2);
        QCOMPARE(bench.controller.currentTab(), u"MKV"_s);
    }

    void otherTabPutsTheSourcesNumbersBack()
    {
        ControllerBench bench;
        bench.selection->initializeFrom(*bench.file);
        bench.controller.setEnteredUserVideoBitRate(u"900"_s);
        bench.controller.setEnteredUserFPS(u"12.5"_s);
        bench.controller.setEnteredUserWidth(u"320"_s);
        QCOMPARE(numbers(bench), u"900 12.5 320 / 900 12.5 320"_s);
        bench.controller.setCurrentTab(u"Edit Files"_s);
        QCOMPARE(numbers(bench), u"3000 25 1920 / 3000 25 1920"_s);
    }

    void editFilesShowsTheFileTableInstead()
    {
        ControllerBench bench;
        bench.controller.setCurrentTab(u"Edit Files"_s);
        QCOMPARE(hidden(bench.controller), QList<bool>({true, true, false}));
        bench.controller.setCurrentTab(u"MKV"_s);
        QCOMPARE(hidden(bench.controller), QList<bool>({false, false, true}));
    }

    void changeBetweenOtherTabsLeavesTheTablesAlone()
    {
        ControllerBench bench;
        bench.controller.setHideTrackTable(true);
        bench.controller.setHideTrackTogglesFlag(false);
        bench.controller.setHideFileTable(false); // neither tab leaves them like that
        for (const QString &tab : {u"Queue"_s, u"edit files"_s, u"MKV"_s}) {
            bench.controller.setCurrentTab(tab);
            QCOMPARE(hidden(bench.controller), QList<bool>({true, false, false}));
        }
    }

    void tabThatIsSetDuringAnUpdateDoesNotUpdateAgain()
    {
        ControllerBench bench;
        connect(&bench.controller, &KXSelectionController::stateChanged, this, [&] {
            if (bench.controller.appIsUpdatingTabs())
                bench.controller.setCurrentTab(u"Edit Files"_s);
        });
        bench.controller.setCanAddTrack(true); // so that the update has something to say
        bench.forgetCalls();
        bench.controller.updateTabs();
        QCOMPARE(bench.controller.currentTab(), u"Edit Files"_s);
        QCOMPARE(bench.openFiles.calls, QStringList({u"close"_s, u"canOpenQueuePopover false"_s}));
        QVERIFY(!bench.controller.appIsUpdatingTabs());
    }

    void controlSetByHandLeavesTheSettingsPresetAndUpdatesTheTabs()
    {
        ControllerBench bench({probedVideo()});
        bench.selectAll();
        bench.presets.settingIndex = 2;
        bench.controller.byHand(&KXSelectionController::setVideoMatrixIndex, 2);
        QCOMPARE(bench.presets.calls, QStringList{u"settingMethodIndex 0"_s});
        QCOMPARE(bench.controller.videoMatrixIndex(), 2);
        QCOMPARE(bench.selection->userPassNumber(), u"2"_s);
    }

    void actionTickedByHandLeavesTheSettingsPreset()
    {
        ControllerBench bench({probedVideo(), probedAudio()});
        bench.selectAll();
        bench.presets.settingIndex = 2;
        bench.controller.tickAudioAction(u"AAC (2-Ch.)"_s, true);
        QCOMPARE(bench.presets.calls, QStringList{u"settingMethodIndex 0"_s});
    }

    void byHandUnderManualTellsThePresetsNothing()
    {
        ControllerBench bench({probedVideo()});
        bench.controller.byHand(&KXSelectionController::setEnteredUserWidth, u"720"_s);
        QVERIFY(bench.presets.calls.isEmpty());
        QCOMPARE(bench.selection->userWidth(), u"720"_s);
    }

    /// A preset uses the plain setters itself and must not be left by that.
    void plainSettersKeepTheSettingsPreset()
    {
        ControllerBench bench(sixTracks());
        setTicked(bench, u"101000"_s);
        bench.presets.settingIndex = 2;
        bench.controller.setVideoMatrixIndex(1);
        bench.controller.setSubtitleMatrixIndex(1);
        bench.controller.setMp4Device(u"PS3"_s);
        bench.controller.setEnteredUserVideoBitRate(u"900"_s);
        bench.controller.setEnteredUserFPS(u"25"_s);
        bench.controller.setEnteredUserWidth(u"720"_s);
        bench.controller.setAudioTrackPopupIndex(0);
        bench.controller.setAudioMatrixSelections({u"Pass Thru"_s});
        bench.controller.setEnteredAAC2BitRate(u"160 kbps"_s);
        bench.controller.setAddStereoTrackButton(1);
        bench.controller.updateTabs();
        QVERIFY(bench.presets.calls.isEmpty());
    }

    void rowsAreDeselectedOnRequest()
    {
        ControllerBench bench;
        QSignalSpy deselected(&bench.controller, &KXSelectionController::trackRowsDeselected);
        bench.controller.deselectAllTrackRows();
        QCOMPARE(deselected.count(), 1);
    }

    void stereoIsAddedToTheShownSurroundTrack()
    {
        const TrackPointer english = probedAudio(u"dts"_s, u"6"_s, u"English"_s);
        const TrackPointer french = probedAudio(u"dts"_s, u"6"_s, u"French"_s);
        ControllerBench bench({probedVideo(), english, french});
        bench.selectAll();
        bench.controller.setAudioTrackPopupIndex(1);
        QVERIFY(bench.controller.canAddStereoTrack());
        bench.controller.setAddStereoTrackButton(1);
        QCOMPARE(bench.controller.addStereoTrackButton(), 1);
        QVERIFY(french->createStereoCopyFlag() && !english->createStereoCopyFlag());
        const TrackList added = bench.selection->addedAudioTrackList();
        QCOMPARE(added.size(), 1);
        QCOMPARE(added.first()->trackLanguage(), u"French"_s);
        QCOMPARE(outputsOf(*added.first()), u"aac 2 160"_s);
    }

    void checkBoxShowsWhatTheShownTrackAsksFor()
    {
        ControllerBench bench({probedVideo(), probedAudio(u"dts"_s, u"6"_s, u"English"_s),
                               probedAudio(u"dts"_s, u"6"_s, u"French"_s)});
        bench.selectAll();
        bench.controller.setAddStereoTrackButton(1);
        bench.controller.setAudioTrackPopupIndex(1);
        QCOMPARE(bench.controller.addStereoTrackButton(), 0);
        bench.controller.setAudioTrackPopupIndex(0);
        QCOMPARE(bench.controller.addStereoTrackButton(), 1);
    }

    void stereoIsTakenAwayAgain()
    {
        const TrackPointer audio = probedAudio(u"dts"_s, u"6"_s);
        ControllerBench bench({probedVideo(), audio});
        bench.selectAll();
        bench.controller.setAddStereoTrackButton(1);
        bench.controller.setAddStereoTrackButton(0);
        QCOMPARE(bench.controller.addStereoTrackButton(), 0);
        QVERIFY(!audio->createStereoCopyFlag());
        QVERIFY(bench.selection->addedAudioTrackList().isEmpty());
    }

    void stereoIsNotAddedWhereItMayNot_data()
    {
        QTest::addColumn<TrackList>("tracks");
        QTest::newRow("stereo") << TrackList{probedVideo(), probedAudio()};
        QTest::newRow("two videos") << TrackList{probedVideo(), probedVideo(), probedAudio(u"dts"_s, u"6"_s)};
        QTest::newRow("no audio") << TrackList{probedVideo()};
    }

    void stereoIsNotAddedWhereItMayNot()
    {
        QFETCH(TrackList, tracks);
        ControllerBench bench(tracks);
        bench.controller.setPopupAudioIsSurround(true); // as the track that was shown before left it
        bench.selectAll();
        bench.controller.setAddStereoTrackButton(1);
        QVERIFY(!bench.controller.canAddStereoTrack());
        QCOMPARE(bench.controller.addStereoTrackButton(), 0);
        QVERIFY(!tracks.last()->createStereoCopyFlag());
        QVERIFY(bench.selection->addedAudioTrackList().isEmpty());
    }

    void withoutPresetsAndOpenFilesEverythingElseWorks()
    {
        ControllerBench bench(sixTracks());
        bench.controller.setPresetsController(nullptr);
        bench.controller.setOpenFiles(nullptr);
        bench.controller.toggleAllAudio();
        bench.controller.setCurrentTab(u"Edit Files"_s);
        bench.controller.guiClickedTrap();
        bench.controller.setCurrentTab(u"MKV"_s);
        bench.controller.byHand(&KXSelectionController::setVideoMatrixIndex, 1);
        bench.controller.takeLoadedFile();
        bench.controller.makeCurrent({bench.file->copy(), bench.selection->copy(), u"a.mkv"_s});
        QCOMPARE(ticked(bench), u"001100"_s);
        QCOMPARE(bench.controller.videoMatrixIndex(), 1);
    }
};

QTEST_GUILESS_MAIN(ControlsByHandTest)
#include "ControlsByHandTest.moc"

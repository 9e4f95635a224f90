// What the user does at the window: tabs, toggles, a click beside the controls, a control set by hand,
// the add-stereo check box.
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
QString ticked(const ControllerFixture &fixture)
{
    QString text;
    for (const TrackPointer &track : fixture.file->trackList())
        text += track->trackSelected() ? u'1' : u'0';
    return text;
}

void setTicked(ControllerFixture &fixture, const QString &ticks)
{
    for (int row = 0; row < ticks.size(); ++row)
        fixture.file->trackList().at(row)->setTrackSelected(ticks.at(row) == u'1');
    fixture.controller.trackTableSelectionChanged(KXSelectionController::Sender::Other);
    fixture.forgetCalls();
}

/// The numbers shown and those of the selection: "3000 25 1920 / 3000 25 1920".
QString numbers(const ControllerFixture &fixture)
{
    return QStringList{fixture.controller.enteredUserVideoBitRate(),
                       fixture.controller.enteredUserFPS(),
                       fixture.controller.enteredUserWidth(),
                       u"/"_s,
                       fixture.selection->userVideoBitRate(),
                       fixture.selection->userFPS(),
                       fixture.selection->userWidth()}
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
        ControllerFixture fixture(sixTracks());
        setTicked(fixture, before);
        (fixture.controller.*toggle)();
        QCOMPARE(ticked(fixture), after);
        QCOMPARE(fixture.selection->trackList().size(), after.count(u'1'));
        QCOMPARE(fixture.selection->keepTracksList().size(), after.count(u'0'));
    }

    void togglesCompareKindsWithoutCase()
    {
        TrackList tracks = sixTracks();
        tracks.at(0)->setTrackType(u"VIDEO"_s);
        tracks.at(3)->setTrackType(u"audio"_s);
        tracks.at(5)->setTrackType(u"external subtitle"_s);
        ControllerFixture fixture(tracks);
        fixture.file->setTheNumberOfVideoTracks(u"2"_s);
        fixture.file->setTheNumberOfAudioTracks(u"2"_s);
        fixture.file->setTheNumberOfSubTracks(u"2"_s);
        fixture.controller.toggleAllVideo();
        fixture.controller.toggleAllAudio();
        fixture.controller.toggleAllSubtitle();
        QCOMPARE(ticked(fixture), u"111111"_s);
    }

    void togglesCompareNumbersAndNotTexts()
    {
        ControllerFixture fixture(sixTracks());
        fixture.file->setTheNumberOfAudioTracks(u"10"_s); // as a text "10" stands before "2"
        setTicked(fixture, u"001100"_s);
        fixture.controller.toggleAllAudio();
        QCOMPARE(ticked(fixture), u"001100"_s);
    }

    void togglesCompareWithTheNumberOfTheirOwnKind()
    {
        ControllerFixture fixture({probedVideo(), probedVideo(), probedAudio(), probedAudio(), probedAudio(),
                                   probedSubtitle(), probedSubtitle(), probedSubtitle(), probedSubtitle()});
        setTicked(fixture, u"100110111"_s); // one of each is missing
        fixture.controller.toggleAllVideo();
        fixture.controller.toggleAllAudio();
        fixture.controller.toggleAllSubtitle();
        QCOMPARE(ticked(fixture), u"111111111"_s);
        fixture.controller.toggleAllVideo();
        fixture.controller.toggleAllAudio();
        fixture.controller.toggleAllSubtitle();
        QCOMPARE(ticked(fixture), u"000000000"_s);
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
        ControllerFixture fixture(sixTracks());
        QSignalSpy ticks(&fixture.controller, &KXSelectionController::trackTicksChanged);
        (fixture.controller.*toggle)();
        QCOMPARE(fixture.presets.calls, QStringList({u"selectionMethodIndex 0"_s, u"applySettings"_s}));
        QCOMPARE(ticks.count(), 1);
    }

    void clickOnTheBackgroundEndsEditingAndLeavesTheSettingsPreset()
    {
        ControllerFixture fixture({probedVideo()});
        fixture.presets.settingIndex = 3;
        QStringList calls;
        connect(&fixture.controller, &KXSelectionController::editingEndWanted, this,
                [&] { calls.append(u"end editing"_s); });
        connect(&fixture.controller, &KXSelectionController::trackRowsDeselected, this,
                [&] { calls.append(u"deselect rows"_s); });
        fixture.controller.guiClickedTrap();
        QCOMPARE(calls, QStringList({u"end editing"_s, u"deselect rows"_s}));
        QCOMPARE(fixture.presets.calls, QStringList{u"settingMethodIndex 0"_s});
        QCOMPARE(fixture.openFiles.calls.size(), 1); // the tabs were updated, once
    }

    void clickOnTheBackgroundLeavesManualAlone()
    {
        ControllerFixture fixture({probedVideo()});
        fixture.controller.guiClickedTrap();
        QVERIFY(fixture.presets.calls.isEmpty());
        QCOMPARE(fixture.openFiles.calls.size(), 1);
    }

    void sameTabChangesNothing()
    {
        ControllerFixture fixture({probedVideo()});
        fixture.controller.setEnteredUserWidth(u"720"_s);
        fixture.controller.setCurrentTab(u"MKV"_s);
        QVERIFY(fixture.presets.calls.isEmpty());
        QVERIFY(fixture.openFiles.calls.isEmpty());
        QCOMPARE(fixture.controller.enteredUserWidth(), u"720"_s);
    }

    void otherTabLeavesTheSettingsPreset()
    {
        ControllerFixture fixture;
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        QCOMPARE(fixture.controller.currentTab(), u"Edit Files"_s);
        QCOMPARE(fixture.presets.calls, QStringList{u"settingMethodIndex 0"_s});
        QCOMPARE(fixture.openFiles.calls, QStringList({u"close"_s, u"canOpenQueuePopover false"_s}));
    }

    void presetThatChangesTheTabIsNotLeft()
    {
        ControllerFixture fixture;
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        fixture.forgetCalls();
        fixture.presets.settingIndex = 2;
        fixture.presets.changing = true;
        fixture.controller.setCurrentTab(u"MKV"_s);
        QVERIFY(fixture.presets.calls.isEmpty());
        QCOMPARE(fixture.presets.settingIndex, 2);
        QCOMPARE(fixture.controller.currentTab(), u"MKV"_s);
    }

    void otherTabPutsTheSourcesNumbersBack()
    {
        ControllerFixture fixture;
        fixture.selection->initializeFrom(*fixture.file);
        fixture.controller.setEnteredUserVideoBitRate(u"900"_s);
        fixture.controller.setEnteredUserFPS(u"12.5"_s);
        fixture.controller.setEnteredUserWidth(u"320"_s);
        QCOMPARE(numbers(fixture), u"900 12.5 320 / 900 12.5 320"_s);
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        QCOMPARE(numbers(fixture), u"3000 25 1920 / 3000 25 1920"_s);
    }

    void editFilesShowsTheFileTableInstead()
    {
        ControllerFixture fixture;
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        QCOMPARE(hidden(fixture.controller), QList<bool>({true, true, false}));
        fixture.controller.setCurrentTab(u"MKV"_s);
        QCOMPARE(hidden(fixture.controller), QList<bool>({false, false, true}));
    }

    void changeBetweenOtherTabsLeavesTheTablesAlone()
    {
        ControllerFixture fixture;
        fixture.controller.setHideTrackTable(true);
        fixture.controller.setHideTrackTogglesFlag(false);
        fixture.controller.setHideFileTable(false); // neither tab leaves them like that
        for (const QString &tab : {u"Queue"_s, u"edit files"_s, u"MKV"_s}) {
            fixture.controller.setCurrentTab(tab);
            QCOMPARE(hidden(fixture.controller), QList<bool>({true, false, false}));
        }
    }

    void tabThatIsSetDuringAnUpdateDoesNotUpdateAgain()
    {
        ControllerFixture fixture;
        connect(&fixture.controller, &KXSelectionController::stateChanged, this, [&] {
            if (fixture.controller.appIsUpdatingTabs())
                fixture.controller.setCurrentTab(u"Edit Files"_s);
        });
        fixture.controller.setCanAddTrack(true); // so that the update has something to say
        fixture.forgetCalls();
        fixture.controller.updateTabs();
        QCOMPARE(fixture.controller.currentTab(), u"Edit Files"_s);
        QCOMPARE(fixture.openFiles.calls, QStringList({u"close"_s, u"canOpenQueuePopover false"_s}));
        QVERIFY(!fixture.controller.appIsUpdatingTabs());
    }

    void controlSetByHandLeavesTheSettingsPresetAndUpdatesTheTabs()
    {
        ControllerFixture fixture({probedVideo()});
        fixture.selectAll();
        fixture.presets.settingIndex = 2;
        fixture.controller.byHand(&KXSelectionController::setVideoMatrixIndex, 2);
        QCOMPARE(fixture.presets.calls, QStringList{u"settingMethodIndex 0"_s});
        QCOMPARE(fixture.controller.videoMatrixIndex(), 2);
        QCOMPARE(fixture.selection->userPassNumber(), u"2"_s);
    }

    void actionTickedByHandLeavesTheSettingsPreset()
    {
        ControllerFixture fixture({probedVideo(), probedAudio()});
        fixture.selectAll();
        fixture.presets.settingIndex = 2;
        fixture.controller.tickAudioAction(u"AAC (2-Ch.)"_s, true);
        QCOMPARE(fixture.presets.calls, QStringList{u"settingMethodIndex 0"_s});
    }

    void byHandUnderManualTellsThePresetsNothing()
    {
        ControllerFixture fixture({probedVideo()});
        fixture.controller.byHand(&KXSelectionController::setEnteredUserWidth, u"720"_s);
        QVERIFY(fixture.presets.calls.isEmpty());
        QCOMPARE(fixture.selection->userWidth(), u"720"_s);
    }

    /// A preset uses the plain setters itself and must not be left by that.
    void plainSettersKeepTheSettingsPreset()
    {
        ControllerFixture fixture(sixTracks());
        setTicked(fixture, u"101000"_s);
        fixture.presets.settingIndex = 2;
        fixture.controller.setVideoMatrixIndex(1);
        fixture.controller.setSubtitleMatrixIndex(1);
        fixture.controller.setMp4Device(u"PS3"_s);
        fixture.controller.setEnteredUserVideoBitRate(u"900"_s);
        fixture.controller.setEnteredUserFPS(u"25"_s);
        fixture.controller.setEnteredUserWidth(u"720"_s);
        fixture.controller.setAudioTrackPopupIndex(0);
        fixture.controller.setAudioMatrixSelections({u"Pass Thru"_s});
        fixture.controller.setEnteredAAC2BitRate(u"160 kbps"_s);
        fixture.controller.setAddStereoTrackButton(1);
        fixture.controller.updateTabs();
        QVERIFY(fixture.presets.calls.isEmpty());
    }

    void rowsAreDeselectedOnRequest()
    {
        ControllerFixture fixture;
        QSignalSpy deselected(&fixture.controller, &KXSelectionController::trackRowsDeselected);
        fixture.controller.deselectAllTrackRows();
        QCOMPARE(deselected.count(), 1);
    }

    void stereoIsAddedToTheShownSurroundTrack()
    {
        const TrackPointer english = probedAudio(u"dts"_s, u"6"_s, u"English"_s);
        const TrackPointer french = probedAudio(u"dts"_s, u"6"_s, u"French"_s);
        ControllerFixture fixture({probedVideo(), english, french});
        fixture.selectAll();
        fixture.controller.setAudioTrackPopupIndex(1);
        QVERIFY(fixture.controller.canAddStereoTrack());
        fixture.controller.setAddStereoTrackButton(1);
        QCOMPARE(fixture.controller.addStereoTrackButton(), 1);
        QVERIFY(french->createStereoCopyFlag() && !english->createStereoCopyFlag());
        const TrackList added = fixture.selection->addedAudioTrackList();
        QCOMPARE(added.size(), 1);
        QCOMPARE(added.first()->trackLanguage(), u"French"_s);
        QCOMPARE(outputsOf(*added.first()), u"aac 2 160"_s);
    }

    void checkBoxShowsWhatTheShownTrackAsksFor()
    {
        ControllerFixture fixture({probedVideo(), probedAudio(u"dts"_s, u"6"_s, u"English"_s),
                                   probedAudio(u"dts"_s, u"6"_s, u"French"_s)});
        fixture.selectAll();
        fixture.controller.setAddStereoTrackButton(1);
        fixture.controller.setAudioTrackPopupIndex(1);
        QCOMPARE(fixture.controller.addStereoTrackButton(), 0);
        fixture.controller.setAudioTrackPopupIndex(0);
        QCOMPARE(fixture.controller.addStereoTrackButton(), 1);
    }

    void stereoIsTakenAwayAgain()
    {
        const TrackPointer audio = probedAudio(u"dts"_s, u"6"_s);
        ControllerFixture fixture({probedVideo(), audio});
        fixture.selectAll();
        fixture.controller.setAddStereoTrackButton(1);
        fixture.controller.setAddStereoTrackButton(0);
        QCOMPARE(fixture.controller.addStereoTrackButton(), 0);
        QVERIFY(!audio->createStereoCopyFlag());
        QVERIFY(fixture.selection->addedAudioTrackList().isEmpty());
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
        ControllerFixture fixture(tracks);
        fixture.controller.setPopupAudioIsSurround(true); // as the track that was shown before left it
        fixture.selectAll();
        fixture.controller.setAddStereoTrackButton(1);
        QVERIFY(!fixture.controller.canAddStereoTrack());
        QCOMPARE(fixture.controller.addStereoTrackButton(), 0);
        QVERIFY(!tracks.last()->createStereoCopyFlag());
        QVERIFY(fixture.selection->addedAudioTrackList().isEmpty());
    }

    void withoutPresetsAndOpenFilesEverythingElseWorks()
    {
        ControllerFixture fixture(sixTracks());
        fixture.controller.setPresetsController(nullptr);
        fixture.controller.setOpenFiles(nullptr);
        fixture.controller.toggleAllAudio();
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        fixture.controller.guiClickedTrap();
        fixture.controller.setCurrentTab(u"MKV"_s);
        fixture.controller.byHand(&KXSelectionController::setVideoMatrixIndex, 1);
        fixture.controller.takeLoadedFile();
        fixture.controller.makeCurrent({fixture.file->copy(), fixture.selection->copy(), u"a.mkv"_s});
        QCOMPARE(ticked(fixture), u"001100"_s);
        QCOMPARE(fixture.controller.videoMatrixIndex(), 1);
    }
};

TESSARAY_TEST(ControlsByHandTest)
#include "ControlsByHandTest.moc"

// What an update of the tabs says and writes, case by case; UpdateTabsCombinationsTest.cpp has them all.
#include "support/TestMain.h"
#include "support/selection/TabFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::ControllerFixture;
using support::outputsOf;
using support::probedAudio;
using support::probedSubtitle;
using support::probedVideo;
using support::TabCase;
using support::TabFixture;

Q_DECLARE_METATYPE(support::TabCase)

namespace {

const QStringList reencodeSteps{u"MKV Track Conversion"_s, u"Mux MKV"_s};
const QStringList passThruSteps{u"MKV Track Conversion"_s, u"Edit Track Profile Level"_s, u"Mux MKV"_s,
                                u"Edit MKV Profile Level"_s};
const QStringList untouchedSteps{u"before"_s};

void row(const char *name, const TabCase &tabCase, const QVariantMap &expected)
{
    QTest::newRow(name) << tabCase << expected;
}

void columns()
{
    QTest::addColumn<TabCase>("tabCase");
    QTest::addColumn<QVariantMap>("expected");
}

/// Runs the row; only the fields that it names are looked at.
void checkRow()
{
    QFETCH(TabCase, tabCase);
    QFETCH(QVariantMap, expected);
    TabFixture base(tabCase);
    base.controller.updateTabs();
    const QVariantMap state = base.state();
    for (auto field = expected.begin(); field != expected.end(); ++field) {
        QString text;
        QDebug(&text) << field.key() << state.value(field.key()) << "instead of" << field.value();
        QVERIFY2(state.value(field.key()) == field.value(), qPrintable(text));
    }
}

} // namespace

class UpdateTabsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileLine_data()
    {
        columns();
        row("no file", {.tracks = {}, .fileIsEmpty = true},
            {{u"currentFileText"_s, u"Drop Video File(s) in the Table Below"_s},
             {u"currentFileTextColor"_s, u"black"_s},
             {u"canAddTrack"_s, false},
             {u"trackTableEnabled"_s, true}});
        row("a file", {.path = u"/v/holiday.mp4"_s},
            {{u"currentFileText"_s, u"/v/holiday.mp4"_s},
             {u"currentFileTextColor"_s, u"black"_s},
             {u"canAddTrack"_s, true},
             {u"trackTableEnabled"_s, true}});
        row("files to edit", {.tab = u"Edit Files"_s},
            {{u"currentFileText"_s,
              u"Drop MKV video file(s) in the table below to edit them at the file level."_s},
             {u"currentFileTextColor"_s, u"black"_s},
             {u"canAddTrack"_s, true},
             {u"trackTableEnabled"_s, false}});
        row("another tab", {.tab = u"Queue"_s},
            {{u"currentFileText"_s, u"before"_s},
             {u"currentFileTextColor"_s, u"before"_s},
             {u"canAddTrack"_s, true},
             {u"trackTableEnabled"_s, false}});
        row("another tab without a file", {.tab = u"Queue"_s, .fileIsEmpty = true, .before = true},
            {{u"canAddTrack"_s, false}});
    }
    void fileLine() { checkRow(); }

    void withoutAFileNothingElseIsDecided_data()
    {
        columns();
        for (const bool before : {false, true}) {
            row(before ? "flags that were set" : "flags that were clear",
                {.tracks = u"video video aac:6 srt"_s, .fileIsEmpty = true, .video = 1, .before = before},
                {{u"canConvert"_s, before},
                 {u"canEditTracks"_s, before},
                 {u"oneSubSelected"_s, before},
                 {u"subtitleSelected"_s, before},
                 {u"mkvVideoPassThruColor"_s, u"before"_s},
                 {u"userWidth"_s, u"before"_s},
                 {u"theDevice"_s, u"before"_s},
                 {u"jobStepList"_s, untouchedSteps}});
        }
    }
    void withoutAFileNothingElseIsDecided() { checkRow(); }

    void popover_data()
    {
        columns();
        const QStringList cannot{u"canOpenQueuePopover false"_s};
        row("no open file", {.openFiles = 0}, {{u"calls"_s, cannot}});
        row("one", {.openFiles = 1}, {{u"calls"_s, cannot}});
        row("two", {.openFiles = 2}, {{u"calls"_s, QStringList{u"canOpenQueuePopover true"_s}}});
        row("two, and the current one has no tracks", {.fileIsEmpty = true, .openFiles = 2},
            {{u"calls"_s, QStringList{u"canOpenQueuePopover true"_s}}});
        row("editing files closes it", {.tab = u"Edit Files"_s, .openFiles = 3},
            {{u"calls"_s, QStringList{u"close"_s, u"canOpenQueuePopover false"_s}}});
        row("another tab", {.tab = u"Queue"_s, .openFiles = 3}, {{u"calls"_s, QStringList()}});
    }
    void popover() { checkRow(); }

    void whatMayBeDone_data()
    {
        columns();
        row("one video", {}, {{u"canConvert"_s, true}, {u"canEditTracks"_s, true}});
        row("no video", {.tracks = u"aac:2"_s, .before = true},
            {{u"canConvert"_s, false}, {u"canEditTracks"_s, true}});
        row("two videos", {.tracks = u"video video"_s, .before = true},
            {{u"canConvert"_s, false}, {u"canEditTracks"_s, true}});
        row("nothing", {.tracks = {}, .before = true},
            {{u"canConvert"_s, false}, {u"canEditTracks"_s, false}, {u"subtitleSelected"_s, false}});
        row("an mp4", {.path = u"/v/a.mp4"_s, .before = true}, {{u"canEditTracks"_s, false}});
        row("capital letters", {.path = u"/v/a.MKV"_s}, {{u"canEditTracks"_s, true}});
        row("a name that merely ends like that", {.path = u"/v/mkv"_s, .before = true},
            {{u"canEditTracks"_s, false}});
        row("one subtitle", {.tracks = u"video srt"_s}, {{u"oneSubSelected"_s, true}});
        row("one external subtitle", {.tracks = u"external"_s}, {{u"oneSubSelected"_s, true}});
        row("two subtitles", {.tracks = u"video srt external"_s, .before = true},
            {{u"oneSubSelected"_s, false}});
    }
    void whatMayBeDone() { checkRow(); }

    void subtitles_data()
    {
        columns();
        row("one is muxed", {.tracks = u"video srt"_s, .subtitle = 1},
            {{u"subtitleSelected"_s, true},
             {u"canMuxSubtitles"_s, true},
             {u"canBurnSubtitles"_s, true},
             {u"mkvVideoPassThruColor"_s, u"black"_s},
             {u"codecs"_s, QStringList{u"passthru"_s, u"mux"_s}}});
        row("one is burned", {.tracks = u"video srt"_s, .subtitle = 0},
            {{u"mkvVideoPassThruColor"_s, u"red"_s}, {u"codecs"_s, QStringList{u"passthru"_s, u"burn"_s}}});
        row("an external one is burned", {.tracks = u"video external"_s, .video = 1, .subtitle = 0},
            {{u"mkvVideoPassThruColor"_s, u"red"_s}, {u"codecs"_s, QStringList{u"h264"_s, u"burn"_s}}});
        // Meant: every one follows the choice, although only one can be burned.
        row("two and the choice to burn", {.tracks = u"video srt external"_s, .subtitle = 0, .before = true},
            {{u"canMuxSubtitles"_s, true},
             {u"canBurnSubtitles"_s, false},
             {u"mkvVideoPassThruColor"_s, u"red"_s},
             {u"codecs"_s, QStringList{u"passthru"_s, u"burn"_s, u"burn"_s}}});
        row("no choice", {.tracks = u"video srt"_s, .subtitle = 2},
            {{u"mkvVideoPassThruColor"_s, u"black"_s},
             {u"codecs"_s, QStringList{u"passthru"_s, u"before"_s}}});
        row("none: red would be untrue", {.tracks = u"video aac:2"_s, .subtitle = 0},
            {{u"mkvVideoPassThruColor"_s, u"black"_s}});
        row("two videos and the choice to burn", {.tracks = u"video video srt"_s, .subtitle = 0},
            {{u"mkvVideoPassThruColor"_s, u"black"_s},
             {u"codecs"_s, QStringList{u"before"_s, u"before"_s, u"before"_s}}});
        // Meant: without a subtitle both keep what they said.
        row("none after some", {.tracks = u"video"_s, .before = true},
            {{u"subtitleSelected"_s, false}, {u"canMuxSubtitles"_s, true}, {u"canBurnSubtitles"_s, true}});
        row("none after none", {.tracks = u"video"_s},
            {{u"subtitleSelected"_s, false}, {u"canMuxSubtitles"_s, false}, {u"canBurnSubtitles"_s, false}});
    }
    void subtitles() { checkRow(); }

    void video_data()
    {
        columns();
        row("passes through", {.video = 0, .before = true},
            {{u"codecs"_s, QStringList{u"passthru"_s}},
             {u"userPassNumber"_s, u"1"_s},
             {u"mustConvertVideoTrack"_s, false},
             {u"jobStepList"_s, passThruSteps}});
        row("one pass", {.video = 1},
            {{u"codecs"_s, QStringList{u"h264"_s}},
             {u"userPassNumber"_s, u"1"_s},
             {u"mustConvertVideoTrack"_s, true},
             {u"jobStepList"_s, reencodeSteps}});
        row("two passes", {.video = 2},
            {{u"codecs"_s, QStringList{u"h264"_s}},
             {u"userPassNumber"_s, u"2"_s},
             {u"mustConvertVideoTrack"_s, true},
             {u"jobStepList"_s, reencodeSteps}});
        // Meant: an index that stands for no choice leaves everything, the steps follow.
        row("no choice after a re-encode", {.video = 7, .before = true},
            {{u"codecs"_s, QStringList{u"before"_s}},
             {u"userPassNumber"_s, u"before"_s},
             {u"mustConvertVideoTrack"_s, true},
             {u"jobStepList"_s, reencodeSteps}});
        row("no choice after passing through", {.video = -1},
            {{u"codecs"_s, QStringList{u"before"_s}},
             {u"mustConvertVideoTrack"_s, false},
             {u"jobStepList"_s, passThruSteps}});
    }
    void video() { checkRow(); }

    void audio_data()
    {
        columns();
        row("aac stereo", {.tracks = u"video aac:2"_s},
            {{u"mkvAudioPassThruColor"_s, u"black"_s},
             {u"popupAudioIsSurround"_s, false},
             {u"canAddStereoTrack"_s, false},
             {u"userMadeAudioSelection"_s, true},
             {u"codecs"_s, QStringList{u"passthru"_s, u"before"_s}},
             {u"outputs"_s, QStringList{u""_s, u"passthru 2 55"_s}}});
        row("ac3 surround", {.tracks = u"video ac3:6"_s},
            {{u"mkvAudioPassThruColor"_s, u"black"_s},
             {u"popupAudioIsSurround"_s, true},
             {u"canAddStereoTrack"_s, true}});
        row("three channels are surround", {.tracks = u"video mp3:3"_s},
            {{u"mkvAudioPassThruColor"_s, u"red"_s}, {u"popupAudioIsSurround"_s, true}});
        row("every action of eight channels",
            {.tracks = u"video dtshd:8"_s,
             .ticks = {u"Pass Thru"_s, u"AAC (2-Ch.)"_s, u"AAC (5.1)"_s, u"AC3 (5.1)"_s}},
            {{u"mkvAudioPassThruColor"_s, u"red"_s},
             {u"outputs"_s, QStringList{u""_s, u"passthru 8 55, aac 2 160, aac 6 320, ac3 6 640"_s}}});
        row("the second is shown", {.tracks = u"video aac:2 dts:6"_s, .popup = 1},
            {{u"mkvAudioPassThruColor"_s, u"red"_s},
             {u"popupAudioIsSurround"_s, true},
             {u"outputs"_s, QStringList{u""_s, u""_s, u"passthru 6 55"_s}}});
        row("the first is shown", {.tracks = u"video aac:2 dts:6"_s},
            {{u"mkvAudioPassThruColor"_s, u"black"_s},
             {u"outputs"_s, QStringList{u""_s, u"passthru 2 55"_s, u""_s}}});
        row("nothing ticked", {.tracks = u"video aac:2"_s, .ticks = {}, .before = true},
            {{u"userMadeAudioSelection"_s, false}, {u"outputs"_s, QStringList{u""_s, u""_s}}});
        row("no audio", {.tracks = u"video srt"_s, .before = true},
            {{u"userMadeAudioSelection"_s, false},
             {u"canAddStereoTrack"_s, false},
             {u"mkvAudioPassThruColor"_s, u"black"_s}});
        row("no video", {.tracks = u"dts:6"_s, .before = true},
            {{u"userMadeAudioSelection"_s, true},
             {u"canAddStereoTrack"_s, false},
             {u"mkvAudioPassThruColor"_s, u"black"_s},
             {u"outputs"_s, QStringList{u""_s}}});
    }
    void audio() { checkRow(); }

    void onlyOutputsOfAudioTracksCount()
    {
        TabFixture base({.tracks = u"video srt"_s});
        for (const TrackPointer &track : base.selection->trackList())
            support::setOutputs(*track, u"passthru 2 0"_s);
        base.controller.updateTabs();
        QVERIFY(!base.controller.userMadeAudioSelection());
    }

    void enteredNumbersReachTheSelection_data()
    {
        columns();
        const QVariantMap taken{{u"userFPS"_s, u"29.97"_s},
                                {u"userWidth"_s, u"720"_s},
                                {u"userVideoBitRate"_s, u"1500"_s},
                                {u"theDevice"_s, u"PS3"_s}};
        row("conversion", {}, taken);
        row("no conversion", {.tracks = u"srt"_s}, taken);
        row("editing files", {.tab = u"Edit Files"_s, .editFiles = 1},
            {{u"userFPS"_s, u"before"_s},
             {u"userWidth"_s, u"before"_s},
             {u"userVideoBitRate"_s, u"before"_s},
             {u"theDevice"_s, u"before"_s}});
    }
    void enteredNumbersReachTheSelection() { checkRow(); }

    void filesAreEdited_data()
    {
        columns();
        const QString edit = u"Edit Files"_s;
        const QString type = u"splitType"_s;
        row("none", {.tab = edit, .editFiles = 0, .before = true},
            {{u"canJoin"_s, false}, {u"canEditPAR"_s, false}, {u"canSplit"_s, false}, {type, u"before"_s}});
        row("one", {.tab = edit, .editFiles = 1, .end = u"1"_s, .before = true},
            {{u"canJoin"_s, false}, {u"canEditPAR"_s, true}, {u"canSplit"_s, true}, {type, u"time"_s}});
        row("two", {.tab = edit, .editFiles = 2, .end = u"1"_s},
            {{u"canJoin"_s, true}, {u"canEditPAR"_s, true}, {u"canSplit"_s, true}, {type, u"time"_s}});
        row("no time", {.tab = edit, .editFiles = 1, .start = u"5"_s, .end = u"5"_s, .before = true},
            {{u"canSplit"_s, false}, {type, u"time"_s}});
        row("times are numbers", {.tab = edit, .editFiles = 1, .start = u"9"_s, .end = u"10"_s},
            {{u"canSplit"_s, true}});
        row("size", {.tab = edit, .editFiles = 1, .split = 1, .size = u"700"_s},
            {{u"canSplit"_s, true}, {type, u"size"_s}});
        row("no size",
            {.tab = edit,
             .editFiles = 1,
             .split = 1,
             .end = u"9"_s,
             .size = u"0"_s,
             .duration = u"00:00:09"_s,
             .before = true},
            {{u"canSplit"_s, false}, {type, u"size"_s}});
        row("zeros are no size", {.tab = edit, .editFiles = 1, .split = 1, .size = u"00"_s, .before = true},
            {{u"canSplit"_s, false}});
        row("nothing is no size", {.tab = edit, .editFiles = 1, .split = 1, .size = u""_s, .before = true},
            {{u"canSplit"_s, false}});
        row("duration", {.tab = edit, .editFiles = 1, .split = 2, .duration = u"00:00:01"_s},
            {{u"canSplit"_s, true}, {type, u"duration"_s}});
        row("no duration",
            {.tab = edit, .editFiles = 1, .split = 2, .end = u"9"_s, .size = u"700"_s, .before = true},
            {{u"canSplit"_s, false}, {type, u"duration"_s}});
        // Meant: a split of no known kind is as complete as one file makes it.
        row("no kind", {.tab = edit, .editFiles = 1, .split = 5},
            {{u"canSplit"_s, true}, {type, u"before"_s}});
    }
    void filesAreEdited() { checkRow(); }

    void twoVideosDeriveNoOutputsAndTheStepsFollowTheLastFlag_data()
    {
        columns();
        const QString tracks = u"video video dts:6 srt"_s;
        const QStringList outputs{u""_s, u""_s, u""_s, u""_s};
        row("re-encoded before", {.tracks = tracks, .before = true},
            {{u"canConvert"_s, false}, {u"outputs"_s, outputs}, {u"jobStepList"_s, reencodeSteps}});
        row("passed through before", {.tracks = tracks, .video = 1},
            {{u"canConvert"_s, false}, {u"outputs"_s, outputs}, {u"jobStepList"_s, passThruSteps}});
    }
    void twoVideosDeriveNoOutputsAndTheStepsFollowTheLastFlag() { checkRow(); }

    void twoSubtitlesCanBeMuxedAndNotBurned()
    {
        ControllerFixture fixture({probedVideo(), probedSubtitle(), probedSubtitle()});
        fixture.tick(1);
        QVERIFY(fixture.controller.canMuxSubtitles() && fixture.controller.canBurnSubtitles());
        fixture.tick(2);
        QVERIFY(fixture.controller.canMuxSubtitles() && !fixture.controller.canBurnSubtitles());
    }

    void dtsInThePopupPaintsTheAudioPassThroughOptionRed()
    {
        ControllerFixture fixture({probedVideo(), probedAudio(u"dts"_s, u"6"_s), probedAudio()});
        fixture.selectAll();
        QCOMPARE(fixture.controller.mkvAudioPassThruColor(), u"red"_s);
        fixture.controller.setAudioTrackPopupIndex(1);
        QCOMPARE(fixture.controller.mkvAudioPassThruColor(), u"black"_s);
    }

    void splitByTimeThatEndsBeforeItStartsCanNotBeMade()
    {
        ControllerFixture fixture;
        fixture.selection->setEditFilesURLsList({QUrl::fromLocalFile(u"/v/a.mkv"_s)});
        fixture.controller.setCurrentTab(u"Edit Files"_s);
        const auto type = [&](const QString &text, const QString &field) {
            fixture.center.post(u"timeTextFieldChangedNotification"_s, text, {{u"textFieldID"_s, field}});
        };
        type(u"00:15:00"_s, u"1002"_s);
        type(u"00:10:00"_s, u"1001"_s);
        QVERIFY(fixture.controller.canSplit());
        type(u"00:05:00"_s, u"1002"_s);
        QVERIFY(!fixture.controller.canSplit());
    }

    void updatingIsSaidWhileItLastsAndNotAfterwards()
    {
        for (const TabCase &tabCase :
             {TabCase{.tab = u"MKV"_s}, TabCase{.tab = u"MKV"_s, .fileIsEmpty = true, .before = true},
              TabCase{.tab = u"Edit Files"_s}, TabCase{.tab = u"Edit Files"_s, .editFiles = 1},
              TabCase{.tab = u"Queue"_s}}) {
            TabFixture base(tabCase);
            QList<bool> said;
            connect(&base.controller, &KXSelectionController::stateChanged, this,
                    [&] { said.append(base.controller.appIsUpdatingTabs()); });
            base.controller.updateTabs();
            QVERIFY2(!said.isEmpty() && !said.contains(false), qPrintable(tabCase.text()));
            QVERIFY2(!base.controller.appIsUpdatingTabs(), qPrintable(tabCase.text()));
        }
    }
};

TESSARAY_TEST(UpdateTabsTest)
#include "UpdateTabsTest.moc"

#include "presets/KXPresetSelections.h"

#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::filterOf;
using support::probedAudio;
using support::probedSubtitleOf;
using support::probedVideo;
using support::ticksOf;

namespace {

const QString noAudio = u"None|1|Any Language|Any Codec|Any Type"_s;
const QString noSubtitle = u"None|1|Any Language|Any Codec"_s;

TrackPointer externalSubtitle(const QString &language)
{
    const TrackPointer track = probedSubtitleOf(u"srt"_s, language);
    track->setTrackType(u"External Subtitle"_s);
    track->setExternalTrackFlag(true);
    return track;
}

/// Video; English stereo, German 5.1; English, German subtitles; an added French one.
TrackList film()
{
    return {probedVideo(),
            probedAudio(u"aac"_s, u"2"_s, u"English"_s),
            probedAudio(u"ac3"_s, u"6"_s, u"German"_s),
            probedSubtitleOf(u"srt"_s, u"English"_s),
            probedSubtitleOf(u"srt"_s, u"German"_s),
            externalSubtitle(u"French"_s)};
}

struct Fixture
{
    explicit Fixture(const TrackList &tracks = film())
        : window(tracks)
        , preset(window.file, window.controller)
    {
        preset.initializeAsNewUserPreset();
    }

    /// One or more filters of each kind, as support::filterOf() reads them.
    void setFilters(const QStringList &audio, const QStringList &subtitle)
    {
        QVariantList filters;
        for (const QString &text : audio)
            filters.append(filterOf(text));
        preset.setPAudioFilterArray(filters);
        filters.clear();
        for (const QString &text : subtitle)
            filters.append(filterOf(text));
        preset.setPSubtitleFilterArray(filters);
    }

    void tick(const QList<int> &places)
    {
        for (const int place : places)
            window.file->trackList().at(place - 1)->setTrackSelected(true);
    }

    QString ticked() const { return ticksOf(window.file->trackList()); }

    QString applied()
    {
        preset.makeSelections();
        return ticked();
    }

    support::ControllerFixture window;
    KXPresetSelections preset;
};

} // namespace

/// What a rule does with the current file; places of tracks count from 1.
class MakeSelectionsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void manualTouchesNothingAndAnnouncesNothing()
    {
        Fixture fixture;
        fixture.tick({2, 5});
        fixture.preset.initializeAsByID();
        const QSignalSpy ticks(&fixture.window.controller, &KXSelectionController::trackTicksChanged);
        QCOMPARE(fixture.applied(), u"2 5"_s);
        QVERIFY(fixture.window.presets.calls.isEmpty());
        QCOMPARE(ticks.count(), 0);
        QVERIFY(fixture.window.selection->trackList().isEmpty());
    }

    void theNameAloneMakesItManual()
    {
        Fixture fixture;
        fixture.preset.initializeAsAll();
        fixture.preset.setPName(u"Manual"_s);
        QCOMPARE(fixture.applied(), u""_s);
        fixture.preset.setPName(u"manual"_s);
        QCOMPARE(fixture.applied(), u"1 2 3 4 5 6"_s);
    }

    void withoutAFileNothingHappens()
    {
        Fixture fixture;
        fixture.tick({2, 5});
        fixture.window.file->setTheFileName(u"none"_s);
        const QSignalSpy ticks(&fixture.window.controller, &KXSelectionController::trackTicksChanged);
        QCOMPARE(fixture.applied(), u"2 5"_s);
        QVERIFY(fixture.window.presets.calls.isEmpty());
        QCOMPARE(ticks.count(), 0);
    }

    void everythingIsUntickedFirst()
    {
        Fixture fixture;
        fixture.tick({1, 2, 3, 4, 5, 6});
        fixture.preset.setPSelectedVideoTrack(u"0"_s);
        fixture.setFilters({noAudio}, {noSubtitle});
        QCOMPARE(fixture.applied(), u""_s);
    }

    void everyRunStartsAnew()
    {
        Fixture fixture;
        KXPresetSelections all(fixture.window.file, fixture.window.controller);
        all.initializeAsAll();
        all.makeSelections();
        QCOMPARE(fixture.ticked(), u"1 2 3 4 5 6"_s);
        QCOMPARE(fixture.applied(), u"1 2"_s);
        QCOMPARE(fixture.applied(), u"1 2"_s);
    }

    void builtInsChoose_data()
    {
        QTest::addColumn<int>("builtIn");
        QTest::addColumn<QString>("ticked");
        QTest::newRow("first") << 1 << u"1 2 4"_s;
        QTest::newRow("all") << 2 << u"1 2 3 4 5 6"_s;
        QTest::newRow("new user preset") << 3 << u"1 2"_s;
    }

    void builtInsChoose()
    {
        QFETCH(const int, builtIn);
        Fixture fixture;
        KXPresetSelections preset(fixture.window.file, fixture.window.controller);
        if (builtIn == 1)
            preset.initializeAsFirst();
        else if (builtIn == 2)
            preset.initializeAsAll();
        else
            preset.initializeAsNewUserPreset();
        preset.makeSelections();
        QTEST(fixture.ticked(), "ticked");
    }

    void onlyTheFirstTrackCanBeTheVideo_data()
    {
        QTest::addColumn<QString>("choice");
        QTest::addColumn<QStringList>("types");
        QTest::addColumn<QString>("ticked");
        const QString first = u"First Track"_s;
        QTest::newRow("video first") << first << QStringList{u"Video"_s, u"Audio"_s} << u"1"_s;
        QTest::newRow("audio first") << first << QStringList{u"Audio"_s, u"Video"_s} << u""_s;
        QTest::newRow("subtitle first") << first << QStringList{u"Subtitle"_s, u"Video"_s} << u""_s;
        QTest::newRow("two videos") << first << QStringList{u"Video"_s, u"Video"_s} << u"1"_s;
        QTest::newRow("other capitals of the type") << first << QStringList{u"video"_s} << u""_s;
        QTest::newRow("0") << u"0"_s << QStringList{u"Video"_s} << u""_s;
        QTest::newRow("1") << u"1"_s << QStringList{u"Video"_s} << u""_s;
        QTest::newRow("all") << u"All Tracks"_s << QStringList{u"Video"_s, u"Video"_s} << u""_s;
        QTest::newRow("other capitals") << u"first track"_s << QStringList{u"Video"_s} << u""_s;
        QTest::newRow("empty") << u""_s << QStringList{u"Video"_s} << u""_s;
    }

    void onlyTheFirstTrackCanBeTheVideo()
    {
        QFETCH(const QString, choice);
        QFETCH(const QStringList, types);
        TrackList tracks;
        for (const QString &type : types) {
            tracks.append(probedVideo());
            tracks.constLast()->setTrackType(type);
        }
        Fixture fixture(tracks);
        fixture.preset.setPSelectedVideoTrack(choice);
        fixture.setFilters({noAudio}, {noSubtitle});
        QTEST(fixture.applied(), "ticked");
    }

    void audioAsFirstTrackLeavesNoVideo()
    {
        Fixture fixture({probedAudio(), probedVideo()});
        QCOMPARE(fixture.applied(), u"1"_s); // the sound that the rule takes, and no video
    }

    void thirdOfTwoSoundsIsNone()
    {
        Fixture fixture;
        fixture.setFilters({u"Audio Track Number|3|Any Language|Any Codec|Any Type"_s}, {noSubtitle});
        QCOMPARE(fixture.applied(), u"1"_s);
    }

    void prioritizedLanguageEndsTheList()
    {
        Fixture fixture({probedVideo(), probedAudio(u"aac"_s, u"2"_s, u"German"_s),
                         probedAudio(u"aac"_s, u"2"_s, u"English"_s)});
        fixture.setFilters({u"Tracks w/ Properties ...|1|English|Any Codec|Any Type"_s,
                            u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s},
                           {noSubtitle});
        fixture.preset.setPAudioFilterMode(u"Prioritized"_s);
        QCOMPARE(fixture.applied(), u"1 3"_s);
        fixture.preset.setPAudioFilterMode(u"Apply All"_s);
        QCOMPARE(fixture.applied(), u"1 2 3"_s);
    }

    void stereoOnlyTakesTwoChannelsAndNotSix()
    {
        Fixture fixture;
        fixture.setFilters({u"Tracks w/ Properties ...|1|Any Language|Any Codec|Stereo Only"_s},
                           {noSubtitle});
        QCOMPARE(fixture.applied(), u"1 2"_s);
    }

    void modesArePerKind()
    {
        Fixture fixture;
        fixture.setFilters({u"Audio Track Number|1|||"_s, u"Audio Track Number|2|||"_s},
                           {u"Subtitle Track Number|1||"_s, u"Subtitle Track Number|2||"_s});
        fixture.preset.setPAudioFilterMode(u"Prioritized"_s);
        fixture.preset.setPSubtitleFilterMode(u"Apply All"_s);
        QCOMPARE(fixture.applied(), u"1 2 4 5"_s);
        fixture.preset.setPAudioFilterMode(u"Apply All"_s);
        fixture.preset.setPSubtitleFilterMode(u"Prioritized"_s);
        QCOMPARE(fixture.applied(), u"1 2 3 4"_s);
    }

    void addedSubtitlesCountAsSubtitles()
    {
        Fixture fixture({probedVideo(), externalSubtitle(u"French"_s),
                         probedSubtitleOf(u"srt"_s, u"English"_s), externalSubtitle(u"English"_s)});
        fixture.setFilters({noAudio}, {u"Subtitle Track Number|1||"_s});
        QCOMPARE(fixture.applied(), u"1 2"_s); // in the file's order, whatever their types
        fixture.setFilters({noAudio}, {u"Subtitle Track Number|3||"_s});
        QCOMPARE(fixture.applied(), u"1 4"_s);
        fixture.setFilters({noAudio}, {u"Tracks w/ Properties ...|1|English|Any Codec"_s});
        QCOMPARE(fixture.applied(), u"1 3 4"_s);
        fixture.setFilters({noAudio}, {u"All|1||"_s});
        QCOMPARE(fixture.applied(), u"1 2 3 4"_s);
    }

    void filtersOfOneKindLeaveTheOtherAlone()
    {
        Fixture fixture;
        fixture.setFilters({u"Tracks w/ Properties ...|1|German|Any Codec|Any Type"_s}, {noSubtitle});
        QCOMPARE(fixture.applied(), u"1 3"_s);
        fixture.setFilters({noAudio}, {u"Tracks w/ Properties ...|1|German|Any Codec"_s});
        QCOMPARE(fixture.applied(), u"1 5"_s);
        fixture.setFilters({u"All|1|||"_s}, {noSubtitle});
        QCOMPARE(fixture.applied(), u"1 2 3"_s);
    }

    void tracksOfOtherTypesAreNeverTicked()
    {
        const TrackList tracks = film();
        tracks.at(2)->setTrackType(u"audio"_s);
        tracks.at(4)->setTrackType(u"Attachment"_s);
        Fixture fixture(tracks);
        fixture.preset.initializeAsAll();
        QCOMPARE(fixture.applied(), u"1 2 4 6"_s);
    }

    /// They are kept in records and mean nothing any more.
    void oldChoicesAndFlagsAreNotConsulted()
    {
        Fixture fixture;
        fixture.setFilters({u"Tracks w/ Properties ...|1|Latin|Any Codec|Any Type"_s},
                           {u"Tracks w/ Properties ...|1|Latin|Any Codec"_s});
        fixture.preset.setPSelectedAudioTrack(u"All Tracks"_s);
        fixture.preset.setPSelectedSubtitleTrack(u"By Language"_s);
        QVERIFY(fixture.preset.useFirstIfNoAudioLanguageMatch());
        QVERIFY(fixture.preset.useFirstIfNoSubtitleLanguageMatch());
        QCOMPARE(fixture.applied(), u"1"_s);
    }

    void theSelectionIsMadeAnewOnceAndLast()
    {
        Fixture fixture;
        QString tickedThen;
        fixture.window.presets.onApply = [&] { tickedThen = fixture.ticked(); };
        const QSignalSpy ticks(&fixture.window.controller, &KXSelectionController::trackTicksChanged);
        fixture.setFilters({u"All|1|||"_s}, {u"Subtitle Track Number|2||"_s});
        fixture.preset.makeSelections();
        QCOMPARE(tickedThen, u"1 2 3 5"_s);
        // No "selectionMethodIndex 0": a rule that ticks is no hand that ticks.
        QCOMPARE(fixture.window.presets.calls, QStringList{u"applySettings"_s});
        QCOMPARE(ticks.count(), 1);
        const KXSelection &selection = *fixture.window.selection;
        QCOMPARE(selection.trackList().size(), 4);
        QCOMPARE(selection.keepTracksList().size(), 2);
        QCOMPARE(selection.vidCount(), u"1"_s);
        QCOMPARE(selection.audCount(), u"2"_s);
        QCOMPARE(selection.subCount(), u"1"_s);
    }

    void fileWithoutTracksIsToldToo()
    {
        Fixture fixture(TrackList{});
        QCOMPARE(fixture.applied(), u""_s);
        QCOMPARE(fixture.window.presets.calls, QStringList{u"applySettings"_s});
    }

    void laterFileIsTheCurrentOne()
    {
        Fixture fixture;
        const TrackList before = fixture.window.file->trackList();
        fixture.preset.initializeAsAll();
        fixture.window.setFile(u"/v/b.mkv"_s, {probedVideo(), probedAudio()});
        QCOMPARE(fixture.applied(), u"1 2"_s);
        QCOMPARE(ticksOf(before), u""_s);
    }
};

TESSARAY_TEST(MakeSelectionsTest)
#include "MakeSelectionsTest.moc"

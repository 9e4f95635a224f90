#include "window/PresetSelectionsSheet.h"

#include "support/TestMain.h"
#include "support/presets/SheetFixture.h"
#include "window/SheetDriver.h"
#include "window/ToolTipBinder.h"

#include <QLabel>
#include <QPointer>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using support::SheetFixture;

namespace {

constexpr int second = 2; // the row of the preset "Second"

/// The open sheet of a program that chose "Second" for its tracks.
struct Fixture
{
    explicit Fixture(int chosen = 3)
        : tips(base.program.preferences, nullptr)
    {
        base.program.preferences.modifyToolTips();
        base.presets.setSelectionMethodIndex(chosen);
        sheet = new window::PresetSelectionsSheet(base.presets, tips, nullptr);
        sheet->open();
        if (!QTest::qWaitForWindowActive(sheet))
            qFatal("The sheet is not active.");
    }
    ~Fixture() { delete sheet; }

    SheetDriver driver() const { return SheetDriver(*sheet); }
    bool isOpen() const { return sheet != nullptr && sheet->isVisible(); }
    QString refusal() const { return driver().find<QLabel>("PresetRefusal")->text(); }
    /// A value of the first stored preset, "Second".
    QVariant stored(const QString &word) const
    {
        const QVariantList records =
            support::storedSettings(base.scratch).value(u"presetSelectionsArray"_s).toList();
        return records.constFirst().toMap().value(word);
    }
    QString storedFilters(const QString &word) const { return support::textOf(stored(word).toList()); }

    SheetFixture base;
    window::ToolTipBinder tips;
    QPointer<window::PresetSelectionsSheet> sheet;
};

} // namespace

class PresetSelectionsSheetTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTableShowsAllButManual()
    {
        Fixture fixture;
        QCOMPARE(fixture.driver().rows(), u"First Track, All Tracks, Second, Own"_s);
        QCOMPARE(fixture.driver().selectedRow(), second);
        QCOMPARE(fixture.driver().entered("PresetName"), u"Second"_s);
        QVERIFY(fixture.sheet->isModal());
    }

    void withManualChosenTheFirstRowIsSelected()
    {
        Fixture fixture(0);
        QCOMPARE(fixture.driver().selectedRow(), 0);
    }

    void aNameTypedInTheFieldIsStored()
    {
        Fixture fixture;
        fixture.driver().type("PresetName", u"Zweite Spur"_s);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.base.storedNames(u"presetSelectionsArray"_s), u"Zweite Spur, Own"_s);
        QCOMPARE(fixture.base.names(), u"Manual, First Track, All Tracks, Zweite Spur, Own"_s);
    }

    void aNameTypedInTheTableIsTaken()
    {
        Fixture fixture;
        auto *table = fixture.driver().find<QListWidget>("PresetTable");
        fixture.driver().chooseRow(second);
        QTest::keyClick(table, Qt::Key_F2);
        auto *editor = table->findChild<QLineEdit *>();
        QVERIFY(editor != nullptr);
        QTest::keyClicks(editor, u"In the table"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(fixture.driver().rows(), u"First Track, All Tracks, In the table, Own"_s);
        QCOMPARE(fixture.driver().entered("PresetName"), u"In the table"_s);
        QVERIFY(fixture.isOpen());
    }

    void whatIsBeingTypedInTheTableCountsAtTheEnd()
    {
        Fixture fixture;
        auto *table = fixture.driver().find<QListWidget>("PresetTable");
        fixture.driver().chooseRow(second);
        QTest::keyClick(table, Qt::Key_F2);
        QTest::keyClicks(table->findChild<QLineEdit *>(), u"Half typed"_s);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.base.storedNames(u"presetSelectionsArray"_s), u"Half typed, Own"_s);
    }

    void aBuiltInsNameIsRefusedInTheTable()
    {
        Fixture fixture;
        auto *table = fixture.driver().find<QListWidget>("PresetTable");
        fixture.driver().chooseRow(second);
        QTest::keyClick(table, Qt::Key_F2);
        QTest::keyClicks(table->findChild<QLineEdit *>(), u"Manual"_s);
        QTest::keyClick(table->findChild<QLineEdit *>(), Qt::Key_Return);
        QTRY_COMPARE(fixture.refusal(), u"The name \"Manual\" belongs to a built-in preset."_s);
        QCOMPARE(fixture.driver().rows(), u"First Track, All Tracks, Second, Own"_s);
    }

    void aRefusedNameKeepsTheSheetOpenOnce()
    {
        Fixture fixture;
        fixture.driver().type("PresetName", u"All Tracks"_s);
        fixture.driver().click("OkPresetButton");
        QVERIFY(fixture.isOpen());
        QCOMPARE(fixture.refusal(), u"The name \"All Tracks\" belongs to a built-in preset."_s);
        QCOMPARE(fixture.driver().entered("PresetName"), u"Second"_s);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.base.storedNames(u"presetSelectionsArray"_s), u"Second, Own"_s);
    }

    void aRefusalGoesWhenOneTypesAgain()
    {
        Fixture fixture;
        fixture.driver().type("PresetName", u""_s);
        fixture.driver().key(Qt::Key_Tab);
        QCOMPARE(fixture.refusal(), u"A preset needs a name."_s);
        fixture.driver().type("PresetName", u"X"_s);
        QCOMPARE(fixture.refusal(), QString());
    }

    void aNameCountsWhenAnotherRowIsChosen()
    {
        Fixture fixture;
        fixture.driver().type("PresetName", u"Renamed"_s);
        fixture.driver().chooseRow(3);
        QCOMPARE(fixture.driver().rows(), u"First Track, All Tracks, Renamed, Own"_s);
        QCOMPARE(fixture.driver().entered("PresetName"), u"Own"_s);
    }

    void anAddedPresetWaitsForItsName()
    {
        Fixture fixture;
        fixture.driver().click("AddPresetButton");
        QCOMPARE(fixture.driver().selectedRow(), 4);
        QCOMPARE(fixture.driver().focus(), u"PresetName"_s);
        QTest::keyClicks(fixture.driver().find("PresetName"), u"Third"_s);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.base.storedNames(u"presetSelectionsArray"_s), u"Second, Own, Third"_s);
        QCOMPARE(fixture.base.presets.selectionMethodIndex(), 5);
    }

    void aNameCountsWhenOneIsAddedByItsKey()
    {
        Fixture fixture;
        fixture.driver().type("PresetName", u"Renamed"_s);
        QTest::keyClick(fixture.driver().find("PresetName"), Qt::Key_A, Qt::AltModifier);
        QTRY_COMPARE(fixture.driver().rows(), u"First Track, All Tracks, Renamed, Own, User Preset"_s);
    }

    void aRemovedPresetIsGone()
    {
        Fixture fixture;
        fixture.driver().chooseRow(3);
        fixture.driver().click("RemovePresetButton");
        QCOMPARE(fixture.driver().rows(), u"First Track, All Tracks, Second"_s);
        QCOMPARE(fixture.driver().selectedRow(), second);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.base.storedNames(u"presetSelectionsArray"_s), u"Second"_s);
    }

    void withoutASelectedRowNothingCanBeDone()
    {
        Fixture fixture(1);
        fixture.driver().click("RemovePresetButton"); // the first row: none is before it
        QCOMPARE(fixture.driver().selectedRow(), -1);
        for (const char *word : {"RemovePresetButton", "PresetName", "VideoTrackSelectionPopUp",
                                 "AudioFilterModePopUp", "af1EditButton", "af2AddButton"})
            QVERIFY2(!fixture.driver().isEnabled(word), word);
        QCOMPARE(fixture.driver().entered("PresetName"), QString());
    }

    void builtInPresetsAreOnlyShown()
    {
        Fixture fixture;
        fixture.driver().chooseRow(0);
        for (const char *word : {"PresetName", "VideoTrackSelectionPopUp", "AudioFilterModePopUp",
                                 "SubtitleFilterModePopUp", "af1EditButton", "sf2AddButton"})
            QVERIFY2(!fixture.driver().isEnabled(word), word);
        QTest::keyClick(fixture.driver().find("PresetTable"), Qt::Key_F2);
        QVERIFY(fixture.driver().find("PresetTable")->findChild<QLineEdit *>() == nullptr);
    }

    void theRulesArePicked()
    {
        Fixture fixture;
        QCOMPARE(fixture.driver().shown("VideoTrackSelectionPopUp"), u"First track, if it is video"_s);
        fixture.driver().pick("VideoTrackSelectionPopUp", u"None"_s);
        fixture.driver().pick("AudioFilterModePopUp", u"Prioritized"_s);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.stored(u"pSelectedVideoTrack"_s).toString(), u"0"_s);
        QCOMPARE(fixture.stored(u"pAudioFilterMode"_s).toString(), u"Prioritized"_s);
        QCOMPARE(fixture.stored(u"pSubtitleFilterMode"_s).toString(), u"Apply All"_s);
        QCOMPARE(fixture.base.ticked(), u"3 4"_s); // applied at once
    }

    void theSubtitleModeIsItsOwn()
    {
        Fixture fixture;
        fixture.driver().pick("SubtitleFilterModePopUp", u"Prioritized"_s);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.stored(u"pAudioFilterMode"_s).toString(), u"Apply All"_s);
        QCOMPARE(fixture.stored(u"pSubtitleFilterMode"_s).toString(), u"Prioritized"_s);
    }

    void pointingAtAFilterShowsIt()
    {
        Fixture fixture;
        fixture.driver().pointAt("af1EditButton");
        QTRY_COMPARE(fixture.driver().title("af1EditButton"), u"Edit"_s);
        QCOMPARE(fixture.driver().shown("afUserTrackChoice"), u"Audio Track Number"_s);
        QCOMPARE(fixture.driver().shown("afUserTrackNumber"), u"2"_s);
        QVERIFY(!fixture.driver().isEnabled("afUserTrackChoice"));
        fixture.driver().pointAtNothing();
        QTRY_COMPARE(fixture.driver().title("af1EditButton"), u"Filter #1"_s);
        QVERIFY(!fixture.driver().isVisible("AudioFilterPanel"));
    }

    void aFilterIsEditedWithTheMouse()
    {
        Fixture fixture;
        fixture.driver().click("sf1EditButton");
        QCOMPARE(fixture.driver().title("sf1EditButton"), u"Done"_s);
        fixture.driver().pick("sfUserTrackChoice", u"Tracks w/ Properties ..."_s);
        fixture.driver().pick("sfUserLanguage", u"English"_s);
        fixture.driver().pick("sfUserCodec", u"srt"_s);
        fixture.driver().click("sf1EditButton");
        QCOMPARE(fixture.driver().title("sf1EditButton"), u"Filter #1"_s);
        QVERIFY(!fixture.driver().isVisible("SubtitleFilterPanel"));
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.storedFilters(u"pSubtitleFilterArray"_s),
                 u"Tracks w/ Properties ...|1|English|srt"_s);
    }

    void aFilterIsEditedAgainAtOnce()
    {
        Fixture fixture;
        for (int i = 0; i < 2; ++i) {
            fixture.driver().click("af1EditButton");
            QCOMPARE(fixture.driver().title("af1EditButton"), u"Done"_s);
            fixture.driver().click("af1EditButton");
            QCOMPARE(fixture.driver().title("af1EditButton"), u"Filter #1"_s);
        }
    }

    void aFilterIsEditedWithTheKeyboardAlone()
    {
        Fixture fixture;
        QVERIFY(fixture.driver().tabTo("af1EditButton"));
        QCOMPARE(fixture.driver().title("af1EditButton"), u"Edit"_s);
        QVERIFY(!fixture.driver().isVisible("AudioFilterPanel")); // the sentence tells what it is
        fixture.driver().key(Qt::Key_Space);
        QCOMPARE(fixture.driver().title("af1EditButton"), u"Done"_s);
        QCOMPARE(fixture.driver().focus(), u"afUserTrackChoice"_s);
        fixture.driver().key(Qt::Key_End);
        fixture.driver().key(Qt::Key_Tab);
        QCOMPARE(fixture.driver().focus(), u"afUserLanguage"_s);
        fixture.driver().key(Qt::Key_Backtab);
        fixture.driver().key(Qt::Key_Backtab);
        QCOMPARE(fixture.driver().focus(), u"af1EditButton"_s);
        fixture.driver().key(Qt::Key_Space);
        QCOMPARE(fixture.driver().title("af1EditButton"), u"Filter #1"_s);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.storedFilters(u"pAudioFilterArray"_s),
                 u"Tracks w/ Properties ...|2|Any Language|Any Codec|Any Type"_s);
    }

    void leavingAFilterWithTabHidesIt()
    {
        Fixture fixture;
        QVERIFY(fixture.driver().tabTo("af1EditButton"));
        fixture.driver().key(Qt::Key_Tab);
        QCOMPARE(fixture.driver().title("af1EditButton"), u"Filter #1"_s);
        QVERIFY(!fixture.driver().isVisible("AudioFilterPanel"));
    }

    void escapeLeavesThePanelAndKeepsTheFilter()
    {
        Fixture fixture;
        QVERIFY(fixture.driver().tabTo("af1EditButton"));
        fixture.driver().key(Qt::Key_Space);
        fixture.driver().key(Qt::Key_Home);
        fixture.driver().key(Qt::Key_Escape);
        QVERIFY(fixture.isOpen());
        QCOMPARE(fixture.driver().focus(), u"af1EditButton"_s);
        QCOMPARE(fixture.driver().title("af1EditButton"), u"Filter #1"_s);
        QCOMPARE(support::textOf(fixture.base.presets.filterEditor().currentAudioFilterArray()),
                 u"All|2|Any Language|Any Codec|Any Type"_s);
        fixture.driver().key(Qt::Key_Space);
        QCOMPARE(fixture.driver().title("af1EditButton"), u"Done"_s);
    }

    void thePanelShowsWhatTheChoiceNeeds_data()
    {
        QTest::addColumn<QString>("choice");
        QTest::addColumn<bool>("number");
        QTest::addColumn<bool>("properties");
        QTest::newRow("all") << u"All"_s << false << false;
        QTest::newRow("none") << u"None"_s << false << false;
        QTest::newRow("by number") << u"Audio Track Number"_s << true << false;
        QTest::newRow("by properties") << u"Tracks w/ Properties ..."_s << false << true;
    }

    void thePanelShowsWhatTheChoiceNeeds()
    {
        QFETCH(const QString, choice);
        QFETCH(const bool, number);
        QFETCH(const bool, properties);
        Fixture fixture;
        fixture.driver().click("af1EditButton");
        fixture.driver().pick("afUserTrackChoice", choice);
        QCOMPARE(fixture.driver().isVisible("afUserTrackNumber"), number);
        for (const char *word : {"afUserLanguage", "afUserCodec", "afUserChannels"})
            QCOMPARE(fixture.driver().isVisible(word), properties);
        const QWidget *panel = fixture.driver().find("AudioFilterPanel");
        QVERIFY(panel->height() >= (properties ? 100 : 20));
        QVERIFY(panel->parentWidget()->rect().contains(panel->geometry()));
    }

    void theLowestFiltersPanelIsWhole()
    {
        Fixture fixture;
        fixture.driver().click("sf2AddButton");
        fixture.driver().click("sf3AddButton");
        fixture.driver().click("sf3EditButton");
        fixture.driver().pick("sfUserTrackChoice", u"Tracks w/ Properties ..."_s);
        const QWidget *panel = fixture.driver().find("SubtitleFilterPanel");
        QVERIFY(panel->isVisible());
        QVERIFY(panel->parentWidget()->rect().contains(panel->geometry()));
    }

    void filtersComeAndGo()
    {
        Fixture fixture;
        QVERIFY(!fixture.driver().isVisible("af2EditButton"));
        QVERIFY(!fixture.driver().isVisible("af3AddButton"));
        QCOMPARE(fixture.driver().title("af2AddButton"), u"+"_s);
        fixture.driver().click("af2AddButton");
        QVERIFY(fixture.driver().isVisible("af2EditButton"));
        QCOMPARE(fixture.driver().title("af2AddButton"), u"-"_s);
        QCOMPARE(fixture.driver().title("af3AddButton"), u"+"_s);
        fixture.driver().click("af3AddButton");
        QVERIFY(fixture.driver().isVisible("af3EditButton"));
        QCOMPARE(fixture.driver().title("af3AddButton"), u"-"_s);
        QVERIFY(!fixture.driver().isVisible("sf2EditButton"));
    }

    /// Row 3 takes the second filter away: meant.
    void removingInRow3TakesTheSecondFilter()
    {
        Fixture fixture;
        fixture.driver().click("af2AddButton");
        fixture.driver().click("af3AddButton");
        fixture.driver().click("af3EditButton");
        fixture.driver().pick("afUserTrackNumber", u"9"_s);
        fixture.driver().click("af3EditButton");
        fixture.driver().click("af3AddButton");
        QVERIFY(!fixture.driver().isVisible("af3EditButton"));
        QCOMPARE(support::textOf(fixture.base.presets.filterEditor().currentAudioFilterArray()),
                 u"Audio Track Number|2|Any Language|Any Codec|Any Type; "
                 "Audio Track Number|9|Any Language|Any Codec|Any Type"_s);
    }

    void editingSwitchesOffTheOthersOfItsKind()
    {
        Fixture fixture;
        fixture.driver().click("af2AddButton");
        fixture.driver().click("af2EditButton");
        for (const char *word : {"af1EditButton", "af2AddButton", "af3AddButton"})
            QVERIFY2(!fixture.driver().isEnabled(word), word);
        for (const char *word : {"af2EditButton", "sf1EditButton", "sf2AddButton"})
            QVERIFY2(fixture.driver().isEnabled(word), word);
    }

    void goingToAnotherWindowFinishesTheFilter()
    {
        Fixture fixture;
        fixture.driver().click("af1EditButton");
        fixture.driver().pick("afUserTrackNumber", u"7"_s);
        QWidget other;
        other.show();
        other.activateWindow();
        QTRY_COMPARE(fixture.driver().title("af1EditButton"), u"Filter #1"_s);
        QCOMPARE(support::textOf(fixture.base.presets.filterEditor().currentAudioFilterArray()),
                 u"Audio Track Number|7|Any Language|Any Codec|Any Type"_s);
    }

    void anOpenPopupDoesNotFinishTheFilter()
    {
        Fixture fixture;
        fixture.driver().click("af1EditButton");
        fixture.driver().click("afUserTrackNumber");
        QTest::qWait(50);
        QCOMPARE(fixture.driver().title("af1EditButton"), u"Done"_s);
        fixture.driver().find<QComboBox>("afUserTrackNumber")->hidePopup();
    }

    void escapeChangesNothing()
    {
        Fixture fixture;
        const QString names = fixture.base.storedNames(u"presetSelectionsArray"_s);
        const QString filters = fixture.storedFilters(u"pAudioFilterArray"_s);
        QSignalSpy methods(&fixture.base.presets, &KXPresetsController::methodsChanged);
        fixture.driver().click("af1EditButton");
        fixture.driver().pick("afUserTrackNumber", u"1"_s);
        fixture.driver().type("PresetName", u"Not kept"_s);
        fixture.driver().key(Qt::Key_Escape);
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.base.storedNames(u"presetSelectionsArray"_s), names);
        QCOMPARE(fixture.storedFilters(u"pAudioFilterArray"_s), filters);
        QCOMPARE(fixture.base.listed(), u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(methods.count(), 0);
    }

    void okStoresAndAppliesOnce()
    {
        Fixture fixture;
        QSignalSpy methods(&fixture.base.presets, &KXPresetsController::methodsChanged);
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(methods.count(), 1);
    }

    void theWindowsButtonChangesNothing()
    {
        Fixture fixture;
        fixture.driver().type("PresetName", u"Not kept"_s);
        QSignalSpy methods(&fixture.base.presets, &KXPresetsController::methodsChanged);
        fixture.sheet->close();
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(methods.count(), 0);
        QCOMPARE(fixture.base.listed(), u"Manual, First Track, All Tracks, Second, Own"_s);
    }

    void aFailedSavingIsToldOnce()
    {
        Fixture fixture;
        QVERIFY(fixture.base.block());
        fixture.driver().type("PresetName", u"Unsaved"_s);
        fixture.driver().click("OkPresetButton");
        QVERIFY(fixture.isOpen());
        QVERIFY(!fixture.refusal().isEmpty());
        QCOMPARE(fixture.driver().title("OkPresetButton"), u"Close Unsaved"_s);
        QVERIFY(fixture.driver().isEnabled("af1EditButton")); // its filters are still there
        fixture.driver().click("OkPresetButton");
        QTRY_VERIFY(fixture.sheet.isNull());
        QCOMPARE(fixture.base.names(), u"Manual, First Track, All Tracks, Unsaved, Own"_s);
    }

    void aSheetCanGoWhileSomethingIsEdited()
    {
        Fixture fixture;
        fixture.driver().find("sf1EditButton")->setFocus();
        QCOMPARE(fixture.driver().title("sf1EditButton"), u"Edit"_s);
        delete fixture.sheet;
        Fixture other;
        other.driver().chooseRow(second);
        QTest::keyClick(other.driver().find("PresetTable"), Qt::Key_F2);
        auto *editor = other.driver().find("PresetTable")->findChild<QLineEdit *>();
        QTest::keyClicks(editor, u"Half typed"_s);
        QTest::keyClick(editor, Qt::Key_Return); // is taken later
        delete other.sheet;
        QVERIFY(other.sheet.isNull());
    }

    void controlsHaveTheirTips()
    {
        Fixture fixture;
        QVERIFY(fixture.driver()
                    .find("PresetName")
                    ->toolTip()
                    .contains(u"Edit the name of the current preset."_s));
        QVERIFY(
            fixture.driver().find("AddPresetButton")->toolTip().contains(u"Press to create a new preset."_s));
        QVERIFY(
            fixture.driver().find("af2AddButton")->toolTip().contains(u"Click to add/remove a filter."_s));
    }

    void everyControlHasANameForTheReader()
    {
        Fixture fixture;
        for (const QWidget *control : fixture.sheet->findChildren<QWidget *>()) {
            if (control->focusPolicy() != Qt::NoFocus && control->window() == fixture.sheet)
                QVERIFY2(!control->accessibleName().isEmpty(), control->metaObject()->className());
        }
    }
};

TESSARAY_TEST(PresetSelectionsSheetTest)
#include "PresetSelectionsSheetTest.moc"

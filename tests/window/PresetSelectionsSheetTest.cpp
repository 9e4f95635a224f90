#include "window/PresetSelectionsSheet.h"

#include "support/SheetBench.h"
#include "window/SheetHand.h"
#include "window/ToolTipBinder.h"

#include <QLabel>
#include <QPointer>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using support::SheetBench;

namespace {

constexpr int second = 2; // the row of the preset "Second"

/// The open sheet of a program that chose "Second" for its tracks.
struct Desk
{
    explicit Desk(int chosen = 3)
        : tips(bench.program.preferences, nullptr)
    {
        bench.program.preferences.modifyToolTips();
        bench.presets.setSelectionMethodIndex(chosen);
        sheet = new window::PresetSelectionsSheet(bench.presets, tips, nullptr);
        sheet->open();
        if (!QTest::qWaitForWindowActive(sheet))
            qFatal("The sheet is not active.");
    }
    ~Desk() { delete sheet; }

    SheetHand hand() const { return SheetHand(*sheet); }
    bool isOpen() const { return sheet != nullptr && sheet->isVisible(); }
    QString refusal() const { return hand().find<QLabel>("PresetRefusal")->text(); }
    /// A value of the first stored preset, "Second".
    QVariant stored(const QString &word) const
    {
        const QVariantList records =
            support::storedSettings(bench.scratch).value(u"presetSelectionsArray"_s).toList();
        return records.constFirst().toMap().value(word);
    }
    QString storedFilters(const QString &word) const { return support::textOf(stored(word).toList()); }

    SheetBench bench;
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
        Desk desk;
        QCOMPARE(desk.hand().rows(), u"First Track, All Tracks, Second, Own"_s);
        QCOMPARE(desk.hand().selectedRow(), second);
        QCOMPARE(desk.hand().entered("PresetName"), u"Second"_s);
        QVERIFY(desk.sheet->isModal());
    }

    void withManualChosenTheFirstRowIsSelected()
    {
        Desk desk(0);
        QCOMPARE(desk.hand().selectedRow(), 0);
    }

    void aNameTypedInTheFieldIsStored()
    {
        Desk desk;
        desk.hand().type("PresetName", u"Zweite Spur"_s);
        desk.hand().click("OkPresetButton");
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.bench.storedNames(u"presetSelectionsArray"_s), u"Zweite Spur, Own"_s);
        QCOMPARE(desk.bench.names(), u"Manual, First Track, All Tracks, Zweite Spur, Own"_s);
    }

    void aNameTypedInTheTableIsTaken()
    {
        Desk desk;
        auto *table = desk.hand().find<QListWidget>("PresetTable");
        desk.hand().chooseRow(second);
        QTest::keyClick(table, Qt::Key_F2);
        auto *editor = table->findChild<QLineEdit *>();
        QVERIFY(editor != nullptr);
        QTest::keyClicks(editor, u"In the table"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(desk.hand().rows(), u"First Track, All Tracks, In the table, Own"_s);
        QCOMPARE(desk.hand().entered("PresetName"), u"In the table"_s);
        QVERIFY(desk.isOpen());
    }

    void whatIsBeingTypedInTheTableCountsAtTheEnd()
    {
        Desk desk;
        auto *table = desk.hand().find<QListWidget>("PresetTable");
        desk.hand().chooseRow(second);
        QTest::keyClick(table, Qt::Key_F2);
        QTest::keyClicks(table->findChild<QLineEdit *>(), u"Half typed"_s);
        desk.sheet->close();
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.bench.storedNames(u"presetSelectionsArray"_s), u"Half typed, Own"_s);
    }

    void aBuiltInsNameIsRefusedInTheTable()
    {
        Desk desk;
        auto *table = desk.hand().find<QListWidget>("PresetTable");
        desk.hand().chooseRow(second);
        QTest::keyClick(table, Qt::Key_F2);
        QTest::keyClicks(table->findChild<QLineEdit *>(), u"Manual"_s);
        QTest::keyClick(table->findChild<QLineEdit *>(), Qt::Key_Return);
        QTRY_COMPARE(desk.refusal(), u"The name \"Manual\" belongs to a built-in preset."_s);
        QCOMPARE(desk.hand().rows(), u"First Track, All Tracks, Second, Own"_s);
    }

    void aRefusedNameKeepsTheSheetOpenOnce()
    {
        Desk desk;
        desk.hand().type("PresetName", u"All Tracks"_s);
        desk.hand().click("OkPresetButton");
        QVERIFY(desk.isOpen());
        QCOMPARE(desk.refusal(), u"The name \"All Tracks\" belongs to a built-in preset."_s);
        QCOMPARE(desk.hand().entered("PresetName"), u"Second"_s);
        desk.hand().click("OkPresetButton");
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.bench.storedNames(u"presetSelectionsArray"_s), u"Second, Own"_s);
    }

    void aRefusalGoesWhenOneTypesAgain()
    {
        Desk desk;
        desk.hand().type("PresetName", u""_s);
        desk.hand().key(Qt::Key_Tab);
        QCOMPARE(desk.refusal(), u"A preset needs a name."_s);
        desk.hand().type("PresetName", u"X"_s);
        QCOMPARE(desk.refusal(), QString());
    }

    void aNameCountsWhenAnotherRowIsChosen()
    {
        Desk desk;
        desk.hand().type("PresetName", u"Renamed"_s);
        desk.hand().chooseRow(3);
        QCOMPARE(desk.hand().rows(), u"First Track, All Tracks, Renamed, Own"_s);
        QCOMPARE(desk.hand().entered("PresetName"), u"Own"_s);
    }

    void anAddedPresetWaitsForItsName()
    {
        Desk desk;
        desk.hand().click("AddPresetButton");
        QCOMPARE(desk.hand().selectedRow(), 4);
        QCOMPARE(desk.hand().focus(), u"PresetName"_s);
        QTest::keyClicks(desk.hand().find("PresetName"), u"Third"_s);
        desk.hand().click("OkPresetButton");
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.bench.storedNames(u"presetSelectionsArray"_s), u"Second, Own, Third"_s);
        QCOMPARE(desk.bench.presets.selectionMethodIndex(), 5);
    }

    void aNameCountsWhenOneIsAddedByItsKey()
    {
        Desk desk;
        desk.hand().type("PresetName", u"Renamed"_s);
        QTest::keyClick(desk.hand().find("PresetName"), Qt::Key_A, Qt::AltModifier);
        QTRY_COMPARE(desk.hand().rows(), u"First Track, All Tracks, Renamed, Own, User Preset"_s);
    }

    void aRemovedPresetIsGone()
    {
        Desk desk;
        desk.hand().chooseRow(3);
        desk.hand().click("RemovePresetButton");
        QCOMPARE(desk.hand().rows(), u"First Track, All Tracks, Second"_s);
        QCOMPARE(desk.hand().selectedRow(), second);
        desk.hand().click("OkPresetButton");
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.bench.storedNames(u"presetSelectionsArray"_s), u"Second"_s);
    }

    void withoutASelectedRowNothingCanBeDone()
    {
        Desk desk(1);
        desk.hand().click("RemovePresetButton"); // the first row: none is before it
        QCOMPARE(desk.hand().selectedRow(), -1);
        for (const char *word : {"RemovePresetButton", "PresetName", "VideoTrackSelectionPopUp",
                                 "AudioFilterModePopUp", "af1EditButton", "af2AddButton"})
            QVERIFY2(!desk.hand().isEnabled(word), word);
        QCOMPARE(desk.hand().entered("PresetName"), QString());
    }

    void builtInPresetsAreOnlyShown()
    {
        Desk desk;
        desk.hand().chooseRow(0);
        for (const char *word : {"PresetName", "VideoTrackSelectionPopUp", "AudioFilterModePopUp",
                                 "SubtitleFilterModePopUp", "af1EditButton", "sf2AddButton"})
            QVERIFY2(!desk.hand().isEnabled(word), word);
        QTest::keyClick(desk.hand().find("PresetTable"), Qt::Key_F2);
        QVERIFY(desk.hand().find("PresetTable")->findChild<QLineEdit *>() == nullptr);
    }

    void theRulesArePicked()
    {
        Desk desk;
        QCOMPARE(desk.hand().shown("VideoTrackSelectionPopUp"), u"First track, if it is video"_s);
        desk.hand().pick("VideoTrackSelectionPopUp", u"None"_s);
        desk.hand().pick("AudioFilterModePopUp", u"Prioritized"_s);
        desk.hand().click("OkPresetButton");
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.stored(u"pSelectedVideoTrack"_s).toString(), u"0"_s);
        QCOMPARE(desk.stored(u"pAudioFilterMode"_s).toString(), u"Prioritized"_s);
        QCOMPARE(desk.stored(u"pSubtitleFilterMode"_s).toString(), u"Apply All"_s);
        QCOMPARE(desk.bench.ticked(), u"3 4"_s); // applied at once
    }

    void theSubtitleModeIsItsOwn()
    {
        Desk desk;
        desk.hand().pick("SubtitleFilterModePopUp", u"Prioritized"_s);
        desk.hand().click("OkPresetButton");
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.stored(u"pAudioFilterMode"_s).toString(), u"Apply All"_s);
        QCOMPARE(desk.stored(u"pSubtitleFilterMode"_s).toString(), u"Prioritized"_s);
    }

    void pointingAtAFilterShowsIt()
    {
        Desk desk;
        desk.hand().pointAt("af1EditButton");
        QTRY_COMPARE(desk.hand().title("af1EditButton"), u"Edit"_s);
        QVERIFY(desk.hand().isVisible("AudioFilterPanel"));
        QVERIFY(!desk.hand().isVisible("SubtitleFilterPanel"));
        QCOMPARE(desk.hand().shown("afUserTrackChoice"), u"Audio Track Number"_s);
        QCOMPARE(desk.hand().shown("afUserTrackNumber"), u"2"_s);
        QVERIFY(!desk.hand().isEnabled("afUserTrackChoice"));
        desk.hand().pointAtNothing();
        QTRY_COMPARE(desk.hand().title("af1EditButton"), u"Filter #1"_s);
        QVERIFY(!desk.hand().isVisible("AudioFilterPanel"));
    }

    void aFilterIsEditedWithTheMouse()
    {
        Desk desk;
        desk.hand().click("sf1EditButton");
        QCOMPARE(desk.hand().title("sf1EditButton"), u"Done"_s);
        desk.hand().pick("sfUserTrackChoice", u"Tracks w/ Properties ..."_s);
        desk.hand().pick("sfUserLanguage", u"English"_s);
        desk.hand().pick("sfUserCodec", u"srt"_s);
        desk.hand().click("sf1EditButton");
        QCOMPARE(desk.hand().title("sf1EditButton"), u"Filter #1"_s);
        QVERIFY(!desk.hand().isVisible("SubtitleFilterPanel"));
        desk.hand().click("OkPresetButton");
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.storedFilters(u"pSubtitleFilterArray"_s), u"Tracks w/ Properties ...|1|English|srt"_s);
    }

    void aFilterIsEditedAgainAtOnce()
    {
        Desk desk;
        for (int i = 0; i < 2; ++i) {
            desk.hand().click("af1EditButton");
            QCOMPARE(desk.hand().title("af1EditButton"), u"Done"_s);
            desk.hand().click("af1EditButton");
            QCOMPARE(desk.hand().title("af1EditButton"), u"Filter #1"_s);
        }
    }

    void aFilterIsEditedWithTheKeyboardAlone()
    {
        Desk desk;
        QVERIFY(desk.hand().tabTo("af1EditButton"));
        QCOMPARE(desk.hand().title("af1EditButton"), u"Edit"_s);
        QVERIFY(desk.hand().isVisible("AudioFilterPanel"));
        desk.hand().key(Qt::Key_Space);
        QCOMPARE(desk.hand().title("af1EditButton"), u"Done"_s);
        QCOMPARE(desk.hand().focus(), u"afUserTrackChoice"_s);
        desk.hand().key(Qt::Key_End);
        desk.hand().key(Qt::Key_Tab);
        QCOMPARE(desk.hand().focus(), u"afUserLanguage"_s);
        desk.hand().key(Qt::Key_Backtab);
        desk.hand().key(Qt::Key_Backtab);
        QCOMPARE(desk.hand().focus(), u"af1EditButton"_s);
        desk.hand().key(Qt::Key_Space);
        QCOMPARE(desk.hand().title("af1EditButton"), u"Filter #1"_s);
        desk.sheet->close();
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.storedFilters(u"pAudioFilterArray"_s),
                 u"Tracks w/ Properties ...|2|Any Language|Any Codec|Any Type"_s);
    }

    void leavingAFilterWithTabHidesIt()
    {
        Desk desk;
        QVERIFY(desk.hand().tabTo("af1EditButton"));
        desk.hand().key(Qt::Key_Tab);
        QCOMPARE(desk.hand().title("af1EditButton"), u"Filter #1"_s);
        QVERIFY(!desk.hand().isVisible("AudioFilterPanel"));
    }

    void escapeLeavesThePanelAndKeepsTheFilter()
    {
        Desk desk;
        QVERIFY(desk.hand().tabTo("af1EditButton"));
        desk.hand().key(Qt::Key_Space);
        desk.hand().key(Qt::Key_Home);
        desk.hand().key(Qt::Key_Escape);
        QVERIFY(desk.isOpen());
        QCOMPARE(desk.hand().focus(), u"af1EditButton"_s);
        QCOMPARE(desk.hand().title("af1EditButton"), u"Filter #1"_s);
        QCOMPARE(support::textOf(desk.bench.presets.filterEditor().currentAudioFilterArray()),
                 u"All|2|Any Language|Any Codec|Any Type"_s);
        desk.hand().key(Qt::Key_Space);
        QCOMPARE(desk.hand().title("af1EditButton"), u"Done"_s);
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
        Desk desk;
        desk.hand().click("af1EditButton");
        desk.hand().pick("afUserTrackChoice", choice);
        QCOMPARE(desk.hand().isVisible("afUserTrackNumber"), number);
        for (const char *word : {"afUserLanguage", "afUserCodec", "afUserChannels"})
            QCOMPARE(desk.hand().isVisible(word), properties);
        const QWidget *panel = desk.hand().find("AudioFilterPanel");
        QVERIFY(panel->height() >= (properties ? 260 : 100));
        QVERIFY(panel->parentWidget()->rect().contains(panel->geometry()));
    }

    void theLowestFiltersPanelIsWhole()
    {
        Desk desk;
        desk.hand().click("sf2AddButton");
        desk.hand().click("sf3AddButton");
        desk.hand().click("sf3EditButton");
        desk.hand().pick("sfUserTrackChoice", u"Tracks w/ Properties ..."_s);
        const QWidget *panel = desk.hand().find("SubtitleFilterPanel");
        QVERIFY(panel->isVisible());
        QVERIFY(panel->parentWidget()->rect().contains(panel->geometry()));
    }

    void filtersComeAndGo()
    {
        Desk desk;
        QVERIFY(!desk.hand().isVisible("af2EditButton"));
        QVERIFY(!desk.hand().isVisible("af3AddButton"));
        QCOMPARE(desk.hand().title("af2AddButton"), u"+"_s);
        desk.hand().click("af2AddButton");
        QVERIFY(desk.hand().isVisible("af2EditButton"));
        QCOMPARE(desk.hand().title("af2AddButton"), u"-"_s);
        QCOMPARE(desk.hand().title("af3AddButton"), u"+"_s);
        desk.hand().click("af3AddButton");
        QVERIFY(desk.hand().isVisible("af3EditButton"));
        QCOMPARE(desk.hand().title("af3AddButton"), u"-"_s);
        QVERIFY(!desk.hand().isVisible("sf2EditButton"));
    }

    /// Row 3 takes the second filter away: meant.
    void removingInRow3TakesTheSecondFilter()
    {
        Desk desk;
        desk.hand().click("af2AddButton");
        desk.hand().click("af3AddButton");
        desk.hand().click("af3EditButton");
        desk.hand().pick("afUserTrackNumber", u"9"_s);
        desk.hand().click("af3EditButton");
        desk.hand().click("af3AddButton");
        QVERIFY(!desk.hand().isVisible("af3EditButton"));
        QCOMPARE(support::textOf(desk.bench.presets.filterEditor().currentAudioFilterArray()),
                 u"Audio Track Number|2|Any Language|Any Codec|Any Type; "
                 "Audio Track Number|9|Any Language|Any Codec|Any Type"_s);
    }

    void editingSwitchesOffTheOthersOfItsKind()
    {
        Desk desk;
        desk.hand().click("af2AddButton");
        desk.hand().click("af2EditButton");
        for (const char *word : {"af1EditButton", "af2AddButton", "af3AddButton"})
            QVERIFY2(!desk.hand().isEnabled(word), word);
        for (const char *word : {"af2EditButton", "sf1EditButton", "sf2AddButton"})
            QVERIFY2(desk.hand().isEnabled(word), word);
    }

    void goingToAnotherWindowFinishesTheFilter()
    {
        Desk desk;
        desk.hand().click("af1EditButton");
        desk.hand().pick("afUserTrackNumber", u"7"_s);
        QWidget other;
        other.show();
        other.activateWindow();
        QTRY_COMPARE(desk.hand().title("af1EditButton"), u"Filter #1"_s);
        QCOMPARE(support::textOf(desk.bench.presets.filterEditor().currentAudioFilterArray()),
                 u"Audio Track Number|7|Any Language|Any Codec|Any Type"_s);
    }

    void anOpenPopupDoesNotFinishTheFilter()
    {
        Desk desk;
        desk.hand().click("af1EditButton");
        desk.hand().click("afUserTrackNumber");
        QTest::qWait(50);
        QCOMPARE(desk.hand().title("af1EditButton"), u"Done"_s);
        desk.hand().find<QComboBox>("afUserTrackNumber")->hidePopup();
    }

    void escapeLosesNothing()
    {
        Desk desk;
        desk.hand().click("af1EditButton");
        desk.hand().pick("afUserTrackNumber", u"1"_s);
        desk.hand().type("PresetName", u"Kept"_s);
        desk.hand().key(Qt::Key_Escape);
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.bench.storedNames(u"presetSelectionsArray"_s), u"Kept, Own"_s);
        QCOMPARE(desk.storedFilters(u"pAudioFilterArray"_s),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
    }

    void closingStoresAndAppliesOnce_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("ok") << u"ok"_s;
        QTest::newRow("escape") << u"escape"_s;
        QTest::newRow("the window's button") << u"close"_s;
    }

    void closingStoresAndAppliesOnce()
    {
        QFETCH(const QString, how);
        Desk desk;
        QSignalSpy methods(&desk.bench.presets, &KXPresetsController::methodsChanged);
        if (how == u"ok"_s)
            desk.hand().click("OkPresetButton");
        else if (how == u"escape"_s)
            QTest::keyClick(desk.sheet, Qt::Key_Escape);
        else
            desk.sheet->close();
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(methods.count(), 1);
    }

    void aFailedSavingIsToldOnce()
    {
        Desk desk;
        QVERIFY(desk.bench.block());
        desk.hand().type("PresetName", u"Unsaved"_s);
        desk.hand().click("OkPresetButton");
        QVERIFY(desk.isOpen());
        QVERIFY(!desk.refusal().isEmpty());
        QCOMPARE(desk.hand().title("OkPresetButton"), u"Close Unsaved"_s);
        QVERIFY(desk.hand().isEnabled("af1EditButton")); // its filters are still there
        QTest::keyClick(desk.sheet, Qt::Key_Escape);
        QTRY_VERIFY(desk.sheet.isNull());
        QCOMPARE(desk.bench.names(), u"Manual, First Track, All Tracks, Unsaved, Own"_s);
    }

    void aSheetCanGoWhileSomethingIsEdited()
    {
        Desk desk;
        desk.hand().find("sf1EditButton")->setFocus();
        QCOMPARE(desk.hand().title("sf1EditButton"), u"Edit"_s);
        delete desk.sheet;
        Desk other;
        other.hand().chooseRow(second);
        QTest::keyClick(other.hand().find("PresetTable"), Qt::Key_F2);
        auto *editor = other.hand().find("PresetTable")->findChild<QLineEdit *>();
        QTest::keyClicks(editor, u"Half typed"_s);
        QTest::keyClick(editor, Qt::Key_Return); // is taken later
        delete other.sheet;
        QVERIFY(other.sheet.isNull());
    }

    void controlsHaveTheirTips()
    {
        Desk desk;
        QVERIFY(
            desk.hand().find("PresetName")->toolTip().contains(u"Edit the name of the current preset."_s));
        QVERIFY(desk.hand().find("AddPresetButton")->toolTip().contains(u"Press to create a new preset."_s));
        QVERIFY(desk.hand().find("af2AddButton")->toolTip().contains(u"Click to add/remove a filter."_s));
    }

    void everyControlHasANameForTheReader()
    {
        Desk desk;
        for (const QWidget *control : desk.sheet->findChildren<QWidget *>()) {
            if (control->focusPolicy() != Qt::NoFocus && control->window() == desk.sheet)
                QVERIFY2(!control->accessibleName().isEmpty(), control->metaObject()->className());
        }
    }
};

QTEST_MAIN(PresetSelectionsSheetTest)
#include "PresetSelectionsSheetTest.moc"

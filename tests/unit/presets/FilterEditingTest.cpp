#include "presets/FilterEditor.h"

#include "support/FilterBench.h"
#include "support/PresetBench.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using support::FilterBench;
using support::sounds;
using support::subtitles;
using support::textOf;

/// Editing one filter in the panel: from "Edit" to "Done", and what ends it otherwise.
class FilterEditingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clickStartsEditing_data() { filterButtons(); }

    void clickStartsEditing()
    {
        QFETCH(const int, tag);
        FilterBench bench;
        bench.edit(tag);
        QCOMPARE(bench.title(tag), u"Done"_s);
        QVERIFY(bench.button(tag).isInEditMode);
        QCOMPARE(bench.editor.panelTag(), tag);
        const bool isAudio = tag < 200;
        QCOMPARE(bench.editor.isEditingAudioFilter(), isAudio);
        QCOMPARE(bench.editor.isEditingSubtitleFilter(), !isAudio);
        // All others of the kind are off, the other kind stays usable.
        QCOMPARE(bench.enabled(FilterKind::Audio), isAudio ? QString::number(tag) : support::allAudioButtons);
        QCOMPARE(bench.enabled(FilterKind::Subtitle),
                 isAudio ? support::allSubtitleButtons : QString::number(tag));
        const int add = tag < 200 ? 192 : 292;
        bench.editor.addFilterButtonClicked(add); // a button that is off does nothing
        QCOMPARE(bench.audio(), sounds.join(u"; "_s));
        QCOMPARE(bench.subtitle(), subtitles.join(u"; "_s));
    }

    void doneWritesTheFieldsBack_data() { filterButtons(); }

    void doneWritesTheFieldsBack()
    {
        QFETCH(const int, tag);
        FilterBench bench;
        const bool isAudio = tag < 200;
        const FilterKind kind = isAudio ? FilterKind::Audio : FilterKind::Subtitle;
        bench.edit(tag);
        bench.editor.setField(kind, u"currentTrackChoice"_s, u"All"_s);
        bench.editor.setField(kind, u"currentTrackNumber"_s, u"9"_s);
        bench.editor.setField(kind, u"currentLanguage"_s, u"Latin"_s);
        bench.editor.setField(kind, u"currentCodec"_s, u"sub"_s);
        if (isAudio)
            bench.editor.setField(kind, u"currentChannels"_s, u"Surround Only"_s);
        QCOMPARE(bench.audio(), sounds.join(u"; "_s)); // not before it is done
        bench.editor.editFilterPanel(tag);
        QStringList expected = isAudio ? sounds : subtitles;
        expected[tag % 10 - 1] = isAudio ? u"All|9|Latin|sub|Surround Only"_s : u"All|9|Latin|sub"_s;
        QCOMPARE(bench.audio(), (isAudio ? expected : sounds).join(u"; "_s));
        QCOMPARE(bench.subtitle(), (isAudio ? subtitles : expected).join(u"; "_s));
        QCOMPARE(bench.title(tag), u"Filter #%1"_s.arg(tag % 10));
        QVERIFY(!bench.button(tag).isInEditMode);
        QVERIFY(!bench.editor.isEditingAudioFilter());
        QVERIFY(!bench.editor.isEditingSubtitleFilter());
        QCOMPARE(bench.editor.panelTag(), 0);
        QCOMPARE(bench.enabled(FilterKind::Audio), support::allAudioButtons);
        QCOMPARE(bench.enabled(FilterKind::Subtitle), support::allSubtitleButtons);
    }

    void clickOnARestingButtonDoesNothing()
    {
        FilterBench bench;
        bench.editor.editFilterPanel(101); // it reads "Filter #1"
        QVERIFY(!bench.editor.isEditingAudioFilter());
        QCOMPARE(bench.title(101), u"Filter #1"_s);
    }

    void pointerLeavesAnEditAlone()
    {
        FilterBench bench;
        bench.edit(102);
        bench.setNumber(102, u"8"_s);
        bench.editor.pointerLeft(102);
        QCOMPARE(bench.title(102), u"Done"_s);
        QCOMPARE(bench.editor.panelTag(), 102);
        bench.editor.pointerEntered(102); // coming back does not load the filter again
        QCOMPARE(bench.title(102), u"Done"_s);
        QCOMPARE(bench.editor.fields(FilterKind::Audio).userTrackNumber(), u"8"_s);
        bench.editor.pointerEntered(101); // nor does one that is off
        QCOMPARE(bench.title(101), u"Filter #1"_s);
        QCOMPARE(bench.editor.panelTag(), 102);
        QCOMPARE(bench.editor.fields(FilterKind::Audio).userTrackNumber(), u"8"_s);
        bench.editor.pointerLeft(101);
        QCOMPARE(bench.editor.panelTag(), 102);
        bench.editor.editFilterPanel(102);
        QCOMPARE(bench.audio(),
                 sounds.at(0) + u"; Tracks w/ Properties ...|8|English|aac|Stereo Only; "_s + sounds.at(2));
    }

    /// There is one panel: it goes to the other kind's button and comes back to the edit.
    void panelVisitsTheOtherKind()
    {
        FilterBench bench;
        bench.edit(102);
        bench.setNumber(102, u"8"_s);
        bench.editor.pointerEntered(203);
        QCOMPARE(bench.editor.panelTag(), 203);
        QCOMPARE(bench.title(203), u"Edit"_s);
        bench.editor.pointerLeft(203);
        QCOMPARE(bench.editor.panelTag(), 102);
        bench.edit(203);
        QCOMPARE(bench.editor.panelTag(), 203);
        bench.editor.pointerLeft(203);
        QCOMPARE(bench.editor.panelTag(), 203); // the last edit has it, and the pointer goes there
        QVERIFY(bench.editor.isEditingAudioFilter());
        QVERIFY(bench.editor.isEditingSubtitleFilter());
        bench.setNumber(203, u"7"_s);
        bench.editor.editFilterPanel(203);
        QCOMPARE(bench.editor.panelTag(), 102);
        bench.editor.editFilterPanel(102);
        QCOMPARE(bench.editor.panelTag(), 0);
        QCOMPARE(bench.subtitle(), subtitles.mid(0, 2).join(u"; "_s) + u"; None|7|German|ass"_s);
        QCOMPARE(bench.audio(),
                 sounds.at(0) + u"; Tracks w/ Properties ...|8|English|aac|Stereo Only; "_s + sounds.at(2));
    }

    void panelStaysWithTheSubtitleThatIsStillEdited()
    {
        FilterBench bench;
        bench.edit(101);
        bench.edit(202);
        bench.editor.editFilterPanel(101);
        QCOMPARE(bench.editor.panelTag(), 202);
        QVERIFY(bench.editor.isEditingSubtitleFilter());
        QVERIFY(!bench.editor.isEditingAudioFilter());
    }

    void sheetThatLosesTheFocusFinishesBothEdits()
    {
        FilterBench bench;
        bench.edit(103);
        bench.setNumber(103, u"8"_s);
        bench.edit(201);
        bench.setNumber(201, u"7"_s);
        bench.editor.windowDidResignKey();
        QCOMPARE(bench.audio(), sounds.mid(0, 2).join(u"; "_s) + u"; All|8|German|ac3|Surround Only"_s);
        QCOMPARE(bench.subtitle(),
                 u"Subtitle Track Number|7|Any Language|Any Codec; "_s + subtitles.mid(1).join(u"; "_s));
        QVERIFY(!bench.editor.isEditingAudioFilter());
        QVERIFY(!bench.editor.isEditingSubtitleFilter());
        QCOMPARE(bench.title(103), u"Filter #3"_s);
        QCOMPARE(bench.title(201), u"Filter #1"_s);
        QCOMPARE(bench.editor.panelTag(), 0);
    }

    void sheetThatLosesTheFocusWithoutAnEditChangesNothing()
    {
        FilterBench bench;
        bench.editor.pointerEntered(102);
        bench.setNumber(102, u"8"_s);
        bench.editor.windowDidResignKey();
        QCOMPARE(bench.audio(), sounds.join(u"; "_s));
        QCOMPARE(bench.title(102), u"Edit"_s);
        QVERIFY(!bench.editor.isEditingAudioFilter());
    }

    void anotherPresetFinishesTheEditOfTheOneBefore()
    {
        FilterBench bench;
        bench.edit(101);
        bench.setNumber(101, u"8"_s);
        auto other = std::make_shared<KXPresetSelections>(bench.window.file, bench.window.controller);
        other->initializeAsNewUserPreset();
        bench.editor.setPreset(other);
        QCOMPARE(bench.audio(),
                 u"Audio Track Number|8|Any Language|Any Codec|Any Type; "_s + sounds.mid(1).join(u"; "_s));
        QCOMPARE(textOf(other->pAudioFilterArray()), sounds.at(0));
        QVERIFY(!bench.editor.isEditingAudioFilter());
        QCOMPARE(bench.enabled(FilterKind::Audio), support::allAudioButtons);
        QCOMPARE(bench.editor.panelTag(), 0);
    }

    void builtInsFiltersCantBeEdited()
    {
        FilterBench bench;
        bench.preset->setIsEditable(false);
        bench.editor.setPreset(bench.preset);
        QCOMPARE(bench.enabled(FilterKind::Audio), u""_s);
        QCOMPARE(bench.enabled(FilterKind::Subtitle), u""_s);
        QVERIFY(bench.editor.af3Visibility()); // but seen
        for (const int tag : {101, 203}) {
            bench.edit(tag);
            QCOMPARE(bench.title(tag), u"Filter #%1"_s.arg(tag % 10));
        }
        for (const int tag : {192, 193, 292, 293})
            bench.editor.addFilterButtonClicked(tag);
        QVERIFY(!bench.editor.isEditingAudioFilter());
        QCOMPARE(bench.editor.panelTag(), 0);
        QCOMPARE(bench.audio(), sounds.join(u"; "_s));
        QCOMPARE(bench.subtitle(), subtitles.join(u"; "_s));
    }

    void withoutAPresetNothingCanBeDone()
    {
        FilterEditor editor;
        QVERIFY(!editor.af2Visibility());
        QVERIFY(!editor.sf3Visibility());
        for (const int tag : {192, 193, 292, 293})
            editor.addFilterButtonClicked(tag);
        for (const int tag : {101, 201}) {
            editor.pointerEntered(tag);
            editor.editFilterPanel(tag);
        }
        QVERIFY(!editor.isEditingAudioFilter());
        QVERIFY(!editor.isEditingSubtitleFilter());
        QVERIFY(editor.currentAudioFilterArray().isEmpty());
        QVERIFY(editor.currentSubtitleFilterArray().isEmpty());
    }

    void buttonWithoutAFilterWritesNoneBack()
    {
        FilterBench bench(0, 1);
        bench.edit(101);
        bench.setNumber(101, u"2"_s);
        bench.editor.editFilterPanel(101);
        bench.edit(202);
        bench.editor.editFilterPanel(202);
        QCOMPARE(bench.audio(), u""_s);
        QCOMPARE(bench.subtitle(), subtitles.at(0));
    }

    /// The pointer rests on a button while the keyboard goes to another row of the sheet.
    void editIsOfThePresetThatIsShownNow()
    {
        FilterBench bench;
        auto other = std::make_shared<KXPresetSelections>(bench.window.file, bench.window.controller);
        other->initializeAsNewUserPreset();
        other->setPAudioFilterArray(support::filtersOf({u"All|5|Latin|mp3|Any Type"_s}));
        bench.editor.pointerEntered(101);
        bench.editor.setPreset(other);
        QCOMPARE(bench.title(101), u"Filter #1"_s);
        QCOMPARE(bench.editor.panelTag(), 0); // the panel is hidden
        bench.edit(101);
        bench.editor.editFilterPanel(101);
        QCOMPARE(textOf(other->pAudioFilterArray()), u"All|5|Latin|mp3|Any Type"_s);
        bench.editor.pointerEntered(101);
        other->setIsEditable(false);
        bench.editor.setPreset(other);
        bench.editor.editFilterPanel(101);
        QVERIFY(!bench.editor.isEditingAudioFilter());
    }

    /// The pointer rests on one button, and another one is reached by the keyboard.
    void editIsOfTheButtonThatIsPressed()
    {
        FilterBench bench;
        bench.editor.pointerEntered(102);
        bench.editor.pointerEntered(101);
        bench.editor.editFilterPanel(102);
        QCOMPARE(bench.editor.panelTag(), 102);
        bench.editor.editFilterPanel(102);
        QCOMPARE(bench.audio(), sounds.join(u"; "_s));
    }

    /// The filter under a resting pointer is removed by the keyboard: the button stands for another one now.
    void editIsOfTheFilterThatIsThereNow()
    {
        FilterBench bench;
        bench.editor.pointerEntered(102);
        bench.editor.addFilterButtonClicked(193);
        bench.editor.editFilterPanel(102);
        bench.editor.editFilterPanel(102);
        QCOMPARE(bench.audio(), sounds.at(0) + u"; "_s + sounds.at(2));
    }

    void changesAreAnnounced()
    {
        FilterBench bench(1, 1);
        QSignalSpy changed(&bench.editor, &FilterEditor::changed);
        const auto announced = [&changed] {
            const bool any = changed.count() > 0;
            changed.clear();
            return any;
        };
        bench.editor.pointerEntered(101);
        QVERIFY(announced());
        bench.editor.editFilterPanel(101);
        QVERIFY(announced());
        bench.setNumber(101, u"2"_s);
        QVERIFY(announced());
        bench.editor.editFilterPanel(101);
        QVERIFY(announced());
        bench.editor.pointerEntered(101);
        QVERIFY(announced());
        bench.editor.pointerLeft(101);
        QVERIFY(announced());
        bench.editor.addFilterButtonClicked(192);
        QVERIFY(announced());
        bench.editor.addFilterButtonClicked(192);
        QVERIFY(announced());
        bench.editor.setPreset(nullptr);
        QVERIFY(announced());
    }

private:
    static void filterButtons()
    {
        QTest::addColumn<int>("tag");
        for (const int tag : {101, 102, 103, 201, 202, 203})
            QTest::newRow(qPrintable(QString::number(tag))) << tag;
    }
};

QTEST_GUILESS_MAIN(FilterEditingTest)
#include "FilterEditingTest.moc"

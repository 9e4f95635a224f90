#include "presets/FilterEditor.h"

#include "support/TestMain.h"
#include "support/presets/FilterFixture.h"
#include "support/presets/PresetFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using support::FilterFixture;
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
        FilterFixture fixture;
        fixture.edit(tag);
        QCOMPARE(fixture.title(tag), u"Done"_s);
        QVERIFY(fixture.button(tag).isInEditMode);
        QCOMPARE(fixture.editor.panelTag(), tag);
        const bool isAudio = tag < 200;
        QCOMPARE(fixture.editor.isEditingAudioFilter(), isAudio);
        QCOMPARE(fixture.editor.isEditingSubtitleFilter(), !isAudio);
        // All others of the kind are off, the other kind stays usable.
        QCOMPARE(fixture.enabled(FilterKind::Audio),
                 isAudio ? QString::number(tag) : support::allAudioButtons);
        QCOMPARE(fixture.enabled(FilterKind::Subtitle),
                 isAudio ? support::allSubtitleButtons : QString::number(tag));
        const int add = tag < 200 ? 192 : 292;
        fixture.editor.addFilterButtonClicked(add); // a button that is off does nothing
        QCOMPARE(fixture.audio(), sounds.join(u"; "_s));
        QCOMPARE(fixture.subtitle(), subtitles.join(u"; "_s));
    }

    void doneWritesTheFieldsBack_data() { filterButtons(); }

    void doneWritesTheFieldsBack()
    {
        QFETCH(const int, tag);
        FilterFixture fixture;
        const bool isAudio = tag < 200;
        const FilterKind kind = isAudio ? FilterKind::Audio : FilterKind::Subtitle;
        fixture.edit(tag);
        fixture.editor.setField(kind, u"currentTrackChoice"_s, u"All"_s);
        fixture.editor.setField(kind, u"currentTrackNumber"_s, u"9"_s);
        fixture.editor.setField(kind, u"currentLanguage"_s, u"Latin"_s);
        fixture.editor.setField(kind, u"currentCodec"_s, u"sub"_s);
        if (isAudio)
            fixture.editor.setField(kind, u"currentChannels"_s, u"Surround Only"_s);
        QCOMPARE(fixture.audio(), sounds.join(u"; "_s)); // not before it is done
        fixture.editor.editFilterPanel(tag);
        QStringList expected = isAudio ? sounds : subtitles;
        expected[tag % 10 - 1] = isAudio ? u"All|9|Latin|sub|Surround Only"_s : u"All|9|Latin|sub"_s;
        QCOMPARE(fixture.audio(), (isAudio ? expected : sounds).join(u"; "_s));
        QCOMPARE(fixture.subtitle(), (isAudio ? subtitles : expected).join(u"; "_s));
        QCOMPARE(fixture.title(tag), u"Filter #%1"_s.arg(tag % 10));
        QVERIFY(!fixture.button(tag).isInEditMode);
        QVERIFY(!fixture.editor.isEditingAudioFilter());
        QVERIFY(!fixture.editor.isEditingSubtitleFilter());
        QCOMPARE(fixture.editor.panelTag(), 0);
        QCOMPARE(fixture.enabled(FilterKind::Audio), support::allAudioButtons);
        QCOMPARE(fixture.enabled(FilterKind::Subtitle), support::allSubtitleButtons);
    }

    void clickOnARestingButtonDoesNothing()
    {
        FilterFixture fixture;
        fixture.editor.editFilterPanel(101); // it reads "Filter #1"
        QVERIFY(!fixture.editor.isEditingAudioFilter());
        QCOMPARE(fixture.title(101), u"Filter #1"_s);
    }

    void pointerLeavesAnEditAlone()
    {
        FilterFixture fixture;
        fixture.edit(102);
        fixture.setNumber(102, u"8"_s);
        fixture.editor.pointerLeft(102);
        QCOMPARE(fixture.title(102), u"Done"_s);
        QCOMPARE(fixture.editor.panelTag(), 102);
        fixture.editor.pointerEntered(102); // coming back does not load the filter again
        QCOMPARE(fixture.title(102), u"Done"_s);
        QCOMPARE(fixture.editor.fields(FilterKind::Audio).userTrackNumber(), u"8"_s);
        fixture.editor.pointerEntered(101); // nor does one that is off
        QCOMPARE(fixture.title(101), u"Filter #1"_s);
        QCOMPARE(fixture.editor.panelTag(), 102);
        QCOMPARE(fixture.editor.fields(FilterKind::Audio).userTrackNumber(), u"8"_s);
        fixture.editor.pointerLeft(101);
        QCOMPARE(fixture.editor.panelTag(), 102);
        fixture.editor.editFilterPanel(102);
        QCOMPARE(fixture.audio(),
                 sounds.at(0) + u"; Tracks w/ Properties ...|8|English|aac|Stereo Only; "_s + sounds.at(2));
    }

    /// There is one panel: it goes to the other kind's button and comes back to the edit.
    void panelVisitsTheOtherKind()
    {
        FilterFixture fixture;
        fixture.edit(102);
        fixture.setNumber(102, u"8"_s);
        fixture.editor.pointerEntered(203);
        QCOMPARE(fixture.editor.panelTag(), 203);
        QCOMPARE(fixture.title(203), u"Edit"_s);
        fixture.editor.pointerLeft(203);
        QCOMPARE(fixture.editor.panelTag(), 102);
        fixture.edit(203);
        QCOMPARE(fixture.editor.panelTag(), 203);
        fixture.editor.pointerLeft(203);
        QCOMPARE(fixture.editor.panelTag(), 203); // the last edit has it, and the pointer goes there
        QVERIFY(fixture.editor.isEditingAudioFilter());
        QVERIFY(fixture.editor.isEditingSubtitleFilter());
        fixture.setNumber(203, u"7"_s);
        fixture.editor.editFilterPanel(203);
        QCOMPARE(fixture.editor.panelTag(), 102);
        fixture.editor.editFilterPanel(102);
        QCOMPARE(fixture.editor.panelTag(), 0);
        QCOMPARE(fixture.subtitle(), subtitles.mid(0, 2).join(u"; "_s) + u"; None|7|German|ass"_s);
        QCOMPARE(fixture.audio(),
                 sounds.at(0) + u"; Tracks w/ Properties ...|8|English|aac|Stereo Only; "_s + sounds.at(2));
    }

    void panelStaysWithTheSubtitleThatIsStillEdited()
    {
        FilterFixture fixture;
        fixture.edit(101);
        fixture.edit(202);
        fixture.editor.editFilterPanel(101);
        QCOMPARE(fixture.editor.panelTag(), 202);
        QVERIFY(fixture.editor.isEditingSubtitleFilter());
        QVERIFY(!fixture.editor.isEditingAudioFilter());
    }

    void sheetThatLosesTheFocusFinishesBothEdits()
    {
        FilterFixture fixture;
        fixture.edit(103);
        fixture.setNumber(103, u"8"_s);
        fixture.edit(201);
        fixture.setNumber(201, u"7"_s);
        fixture.editor.windowDidResignKey();
        QCOMPARE(fixture.audio(), sounds.mid(0, 2).join(u"; "_s) + u"; All|8|German|ac3|Surround Only"_s);
        QCOMPARE(fixture.subtitle(),
                 u"Subtitle Track Number|7|Any Language|Any Codec; "_s + subtitles.mid(1).join(u"; "_s));
        QVERIFY(!fixture.editor.isEditingAudioFilter());
        QVERIFY(!fixture.editor.isEditingSubtitleFilter());
        QCOMPARE(fixture.title(103), u"Filter #3"_s);
        QCOMPARE(fixture.title(201), u"Filter #1"_s);
        QCOMPARE(fixture.editor.panelTag(), 0);
    }

    void sheetThatLosesTheFocusWithoutAnEditChangesNothing()
    {
        FilterFixture fixture;
        fixture.editor.pointerEntered(102);
        fixture.setNumber(102, u"8"_s);
        fixture.editor.windowDidResignKey();
        QCOMPARE(fixture.audio(), sounds.join(u"; "_s));
        QCOMPARE(fixture.title(102), u"Edit"_s);
        QVERIFY(!fixture.editor.isEditingAudioFilter());
    }

    void anotherPresetFinishesTheEditOfTheOneBefore()
    {
        FilterFixture fixture;
        fixture.edit(101);
        fixture.setNumber(101, u"8"_s);
        auto other = std::make_shared<KXPresetSelections>(fixture.window.file, fixture.window.controller);
        other->initializeAsNewUserPreset();
        fixture.editor.setPreset(other);
        QCOMPARE(fixture.audio(),
                 u"Audio Track Number|8|Any Language|Any Codec|Any Type; "_s + sounds.mid(1).join(u"; "_s));
        QCOMPARE(textOf(other->pAudioFilterArray()), sounds.at(0));
        QVERIFY(!fixture.editor.isEditingAudioFilter());
        QCOMPARE(fixture.enabled(FilterKind::Audio), support::allAudioButtons);
        QCOMPARE(fixture.editor.panelTag(), 0);
    }

    void builtInsFiltersCantBeEdited()
    {
        FilterFixture fixture;
        fixture.preset->setIsEditable(false);
        fixture.editor.setPreset(fixture.preset);
        QCOMPARE(fixture.enabled(FilterKind::Audio), u""_s);
        QCOMPARE(fixture.enabled(FilterKind::Subtitle), u""_s);
        QVERIFY(fixture.editor.af3Visibility()); // but seen
        for (const int tag : {101, 203}) {
            fixture.edit(tag);
            QCOMPARE(fixture.title(tag), u"Filter #%1"_s.arg(tag % 10));
        }
        for (const int tag : {192, 193, 292, 293})
            fixture.editor.addFilterButtonClicked(tag);
        QVERIFY(!fixture.editor.isEditingAudioFilter());
        QCOMPARE(fixture.editor.panelTag(), 0);
        QCOMPARE(fixture.audio(), sounds.join(u"; "_s));
        QCOMPARE(fixture.subtitle(), subtitles.join(u"; "_s));
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
        FilterFixture fixture(0, 1);
        fixture.edit(101);
        fixture.setNumber(101, u"2"_s);
        fixture.editor.editFilterPanel(101);
        fixture.edit(202);
        fixture.editor.editFilterPanel(202);
        QCOMPARE(fixture.audio(), u""_s);
        QCOMPARE(fixture.subtitle(), subtitles.at(0));
    }

    /// The pointer rests on a button while the keyboard goes to another row of the sheet.
    void editIsOfThePresetThatIsShownNow()
    {
        FilterFixture fixture;
        auto other = std::make_shared<KXPresetSelections>(fixture.window.file, fixture.window.controller);
        other->initializeAsNewUserPreset();
        other->setPAudioFilterArray(support::filtersOf({u"All|5|Latin|mp3|Any Type"_s}));
        fixture.editor.pointerEntered(101);
        fixture.editor.setPreset(other);
        QCOMPARE(fixture.title(101), u"Filter #1"_s);
        QCOMPARE(fixture.editor.panelTag(), 0); // the panel is hidden
        fixture.edit(101);
        fixture.editor.editFilterPanel(101);
        QCOMPARE(textOf(other->pAudioFilterArray()), u"All|5|Latin|mp3|Any Type"_s);
        fixture.editor.pointerEntered(101);
        other->setIsEditable(false);
        fixture.editor.setPreset(other);
        fixture.editor.editFilterPanel(101);
        QVERIFY(!fixture.editor.isEditingAudioFilter());
    }

    /// The pointer rests on one button, and another one is reached by the keyboard.
    void editIsOfTheButtonThatIsPressed()
    {
        FilterFixture fixture;
        fixture.editor.pointerEntered(102);
        fixture.editor.pointerEntered(101);
        fixture.editor.editFilterPanel(102);
        QCOMPARE(fixture.editor.panelTag(), 102);
        fixture.editor.editFilterPanel(102);
        QCOMPARE(fixture.audio(), sounds.join(u"; "_s));
    }

    /// The filter under a resting pointer is removed by the keyboard: the button stands for another one now.
    void editIsOfTheFilterThatIsThereNow()
    {
        FilterFixture fixture;
        fixture.editor.pointerEntered(102);
        fixture.editor.addFilterButtonClicked(193);
        fixture.editor.editFilterPanel(102);
        fixture.editor.editFilterPanel(102);
        QCOMPARE(fixture.audio(), sounds.at(0) + u"; "_s + sounds.at(2));
    }

    void changesAreAnnounced()
    {
        FilterFixture fixture(1, 1);
        QSignalSpy changed(&fixture.editor, &FilterEditor::changed);
        const auto announced = [&changed] {
            const bool any = changed.count() > 0;
            changed.clear();
            return any;
        };
        fixture.editor.pointerEntered(101);
        QVERIFY(announced());
        fixture.editor.editFilterPanel(101);
        QVERIFY(announced());
        fixture.setNumber(101, u"2"_s);
        QVERIFY(announced());
        fixture.editor.editFilterPanel(101);
        QVERIFY(announced());
        fixture.editor.pointerEntered(101);
        QVERIFY(announced());
        fixture.editor.pointerLeft(101);
        QVERIFY(announced());
        fixture.editor.addFilterButtonClicked(192);
        QVERIFY(announced());
        fixture.editor.addFilterButtonClicked(192);
        QVERIFY(announced());
        fixture.editor.setPreset(nullptr);
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

TESSARAY_TEST(FilterEditingTest)
#include "FilterEditingTest.moc"

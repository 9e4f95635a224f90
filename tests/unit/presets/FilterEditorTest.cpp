#include "presets/FilterEditor.h"

#include "support/TestMain.h"
#include "support/presets/FilterFixture.h"
#include "support/presets/PresetFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using support::FilterFixture;
using support::filterOf;
using support::sounds;
using support::subtitles;
using support::textOf;

/// The filter buttons of the sheet, and the panel in which one filter is edited.
class FilterEditorTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsFollowTheNumberOfFilters_data()
    {
        QTest::addColumn<int>("filters");
        QTest::addColumn<bool>("second");
        QTest::addColumn<bool>("third");
        QTest::addColumn<QString>("secondButton");
        QTest::addColumn<QString>("thirdButton");
        QTest::addColumn<bool>("thirdButtonShown");
        QTest::newRow("none") << 0 << false << false << u"+"_s << u"+"_s << false;
        QTest::newRow("one") << 1 << false << false << u"+"_s << u"+"_s << false;
        QTest::newRow("two") << 2 << true << false << u"-"_s << u"+"_s << true;
        QTest::newRow("three") << 3 << true << true << u"-"_s << u"-"_s << true;
        QTest::newRow("more than fit") << 5 << true << true << u"-"_s << u"-"_s << true;
    }

    void rowsFollowTheNumberOfFilters()
    {
        QFETCH(const int, filters);
        QFETCH(const bool, second);
        QFETCH(const bool, third);
        QFETCH(const QString, secondButton);
        QFETCH(const QString, thirdButton);
        QFETCH(const bool, thirdButtonShown);
        for (const int base : {100, 200}) {
            FilterFixture fixture(1, 1);
            const QVariant filter = filterOf(base == 100 ? sounds.at(0) : subtitles.at(0));
            if (base == 100)
                fixture.preset->setPAudioFilterArray(QVariantList(filters, filter));
            else
                fixture.preset->setPSubtitleFilterArray(QVariantList(filters, filter));
            fixture.editor.adjustFilterButtonsCount();
            QVERIFY(fixture.button(base + 1).visible);
            QCOMPARE(fixture.button(base + 2).visible, second);
            QCOMPARE(fixture.button(base + 3).visible, third);
            QVERIFY(fixture.button(base + 92).visible);
            QCOMPARE(fixture.button(base + 93).visible, thirdButtonShown);
            QCOMPARE(fixture.title(base + 92), secondButton);
            QCOMPARE(fixture.title(base + 93), thirdButton);
            const FilterEditor &editor = fixture.editor;
            QCOMPARE(base == 100 ? editor.af2Visibility() : editor.sf2Visibility(), second);
            QCOMPARE(base == 100 ? editor.af3Visibility() : editor.sf3Visibility(), third);
            QVERIFY(!(base == 100 ? editor.sf2Visibility() : editor.af2Visibility())); // it has one
        }
    }

    void buttonsCarryTheirTagsAndTitles()
    {
        const FilterFixture fixture;
        for (const int tag : {101, 102, 103, 201, 202, 203, 192, 193, 292, 293})
            QCOMPARE(fixture.button(tag).tag, tag);
        for (const int base : {100, 200}) {
            QCOMPARE(fixture.title(base + 1), u"Filter #1"_s);
            QCOMPARE(fixture.title(base + 2), u"Filter #2"_s);
            QCOMPARE(fixture.title(base + 3), u"Filter #3"_s);
        }
        QCOMPARE(fixture.enabled(FilterKind::Audio), support::allAudioButtons);
        QCOMPARE(fixture.enabled(FilterKind::Subtitle), support::allSubtitleButtons);
        QCOMPARE(fixture.editor.panelTag(), 0);
    }

    void editorShowsThePresetsFilters()
    {
        FilterFixture fixture(2, 3);
        QCOMPARE(textOf(fixture.editor.currentAudioFilterArray()), sounds.mid(0, 2).join(u"; "_s));
        QCOMPARE(textOf(fixture.editor.currentSubtitleFilterArray()), subtitles.join(u"; "_s));
        fixture.editor.setPreset(nullptr);
        QVERIFY(fixture.editor.currentAudioFilterArray().isEmpty());
        QVERIFY(fixture.editor.currentSubtitleFilterArray().isEmpty());
        QVERIFY(!fixture.editor.af2Visibility());
        QVERIFY(!fixture.editor.sf2Visibility());
        QCOMPARE(fixture.enabled(FilterKind::Audio), u""_s);
        QCOMPARE(fixture.enabled(FilterKind::Subtitle), u""_s);
    }

    void plusAppendsADefaultFilter()
    {
        FilterFixture fixture(1, 1);
        const QSignalSpy changed(&fixture.editor, &FilterEditor::changed);
        fixture.editor.addFilterButtonClicked(192);
        QCOMPARE(fixture.audio(), sounds.at(0) + u"; "_s + sounds.at(0));
        QCOMPARE(fixture.subtitle(), subtitles.at(0));
        QCOMPARE(fixture.title(192), u"-"_s);
        QVERIFY(fixture.editor.af2Visibility());
        QVERIFY(changed.count() > 0);
        fixture.editor.addFilterButtonClicked(193);
        QCOMPARE(fixture.preset->pAudioFilterArray().size(), 3);
        QVERIFY(fixture.editor.af3Visibility());
        QCOMPARE(fixture.title(193), u"-"_s);
        fixture.editor.addFilterButtonClicked(292);
        QCOMPARE(fixture.subtitle(), subtitles.at(0) + u"; "_s + subtitles.at(0));
        fixture.editor.addFilterButtonClicked(293);
        QCOMPARE(fixture.preset->pSubtitleFilterArray().size(), 3);
        QCOMPARE(fixture.preset->pAudioFilterArray().size(), 3);
        QVERIFY(fixture.editor.sf3Visibility());
    }

    void minusInRowTwoRemovesTheSecondFilter_data() { kinds(); }

    void minusInRowTwoRemovesTheSecondFilter()
    {
        QFETCH(const int, base);
        FilterFixture fixture(base == 100 ? 2 : 3, base == 100 ? 3 : 2);
        fixture.editor.addFilterButtonClicked(base + 92);
        QCOMPARE(fixture.audio(), base == 100 ? sounds.at(0) : sounds.join(u"; "_s));
        QCOMPARE(fixture.subtitle(), base == 100 ? subtitles.join(u"; "_s) : subtitles.at(0));
        QCOMPARE(fixture.title(base + 92), u"+"_s);
        QVERIFY(!fixture.button(base + 2).visible);
    }

    /// Meant: from row 3 too it is the second one that goes.
    void minusInRowThreeRemovesTheSecondFilter_data() { kinds(); }

    void minusInRowThreeRemovesTheSecondFilter()
    {
        QFETCH(const int, base);
        FilterFixture fixture;
        QVERIFY(fixture.button(base + 2).visible);
        QVERIFY(fixture.button(base + 3).visible);
        QCOMPARE(fixture.title(base + 92), u"-"_s);
        QCOMPARE(fixture.title(base + 93), u"-"_s);
        fixture.editor.addFilterButtonClicked(base + 93);
        QCOMPARE(fixture.audio(), base == 100 ? sounds.at(0) + u"; "_s + sounds.at(2) : sounds.join(u"; "_s));
        QCOMPARE(fixture.subtitle(),
                 base == 100 ? subtitles.join(u"; "_s) : subtitles.at(0) + u"; "_s + subtitles.at(2));
        QVERIFY(fixture.button(base + 2).visible);
        QVERIFY(!fixture.button(base + 3).visible);
        QCOMPARE(fixture.title(base + 93), u"+"_s);
    }

    void minusEndsWhatItsRowsButtonShows_data()
    {
        QTest::addColumn<int>("hovered");
        QTest::addColumn<int>("pressed");
        QTest::newRow("audio, row 2") << 102 << 192;
        QTest::newRow("audio, row 3") << 103 << 193;
        QTest::newRow("subtitle, row 2") << 202 << 292;
        QTest::newRow("subtitle, row 3") << 203 << 293;
    }

    void minusEndsWhatItsRowsButtonShows()
    {
        QFETCH(const int, hovered);
        QFETCH(const int, pressed);
        FilterFixture fixture;
        fixture.editor.pointerEntered(hovered);
        QCOMPARE(fixture.title(hovered), u"Edit"_s);
        fixture.editor.addFilterButtonClicked(pressed);
        QCOMPARE(fixture.title(hovered), u"Filter #%1"_s.arg(hovered % 10));
        QCOMPARE(fixture.editor.panelTag(), 0);
    }

    void tagsOfNoButtonDoNothing_data()
    {
        QTest::addColumn<int>("tag");
        for (const int tag : {-101, 0, 1, 92, 99, 100, 104, 190, 191, 194, 199, 200, 204, 291, 294, 301, 392})
            QTest::newRow(qPrintable(QString::number(tag))) << tag;
    }

    void tagsOfNoButtonDoNothing()
    {
        QFETCH(const int, tag);
        FilterFixture fixture;
        const QSignalSpy changed(&fixture.editor, &FilterEditor::changed);
        fixture.editor.addFilterButtonClicked(tag);
        fixture.editor.openFilterPanelForButton(tag);
        fixture.editor.pointerEntered(tag);
        fixture.editor.editFilterPanel(tag);
        fixture.editor.pointerLeft(tag);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(fixture.audio(), sounds.join(u"; "_s));
        QCOMPARE(fixture.subtitle(), subtitles.join(u"; "_s));
    }

    void filterAndAddButtonsAreNotMistaken()
    {
        FilterFixture fixture;
        const QSignalSpy changed(&fixture.editor, &FilterEditor::changed);
        for (const int tag : {101, 102, 103, 201, 202, 203})
            fixture.editor.addFilterButtonClicked(tag);
        for (const int tag : {192, 193, 292, 293}) {
            fixture.editor.openFilterPanelForButton(tag);
            fixture.editor.pointerEntered(tag);
            fixture.editor.editFilterPanel(tag);
            fixture.editor.pointerLeft(tag);
        }
        QCOMPARE(changed.count(), 0);
        QCOMPARE(fixture.audio(), sounds.join(u"; "_s));
    }

    void pointerShowsTheFilterOfItsButton_data()
    {
        QTest::addColumn<int>("tag");
        for (const int tag : {101, 102, 103, 201, 202, 203})
            QTest::newRow(qPrintable(QString::number(tag))) << tag;
    }

    void pointerShowsTheFilterOfItsButton()
    {
        QFETCH(const int, tag);
        FilterFixture fixture;
        const FilterKind kind = tag < 200 ? FilterKind::Audio : FilterKind::Subtitle;
        fixture.editor.pointerEntered(tag);
        QCOMPARE(textOf({fixture.editor.fields(kind).filter()}),
                 (tag < 200 ? sounds : subtitles).at(tag % 10 - 1));
        QCOMPARE(fixture.title(tag), u"Edit"_s);
        QCOMPARE(fixture.editor.panelTag(), tag);
        QVERIFY(!fixture.button(tag).isInEditMode);
        fixture.editor.pointerLeft(tag);
        QCOMPARE(fixture.title(tag), u"Filter #%1"_s.arg(tag % 10));
        QCOMPARE(fixture.editor.panelTag(), 0);
        QCOMPARE(fixture.audio(), sounds.join(u"; "_s));
    }

    void pointerOverTheSecondSubtitleButtonShowsTheSecondSubtitleFilter()
    {
        FilterFixture fixture;
        fixture.editor.pointerEntered(202);
        const presets::FilterFields &fields = fixture.editor.fields(FilterKind::Subtitle);
        QCOMPARE(fields.userTrackChoice(), u"Tracks w/ Properties ..."_s);
        QCOMPARE(fields.userTrackNumber(), u"2"_s);
        QCOMPARE(fields.userLanguage(), u"English"_s);
        QCOMPARE(fields.userCodec(), u"srt"_s);
        QVERIFY(fields.userChannels().isEmpty());
        fixture.editor.pointerLeft(202);
        QCOMPARE(fixture.title(202), u"Filter #2"_s);
    }

    void openedPanelIsLoadedWithoutBeingShown()
    {
        FilterFixture fixture;
        const QSignalSpy changed(&fixture.editor, &FilterEditor::changed);
        fixture.editor.openFilterPanelForButton(103);
        const presets::FilterFields &fields = fixture.editor.fields(FilterKind::Audio);
        QCOMPARE(fields.userTrackChoice(), u"All"_s);
        QCOMPARE(fields.userTrackNumber(), u"3"_s);
        QCOMPARE(fields.userLanguage(), u"German"_s);
        QCOMPARE(fields.userCodec(), u"ac3"_s);
        QCOMPARE(fields.userChannels(), u"Surround Only"_s);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(fixture.editor.panelTag(), 0);
    }

    void shownPartFollowsTheChoice_data()
    {
        QTest::addColumn<int>("base");
        QTest::addColumn<QString>("choice");
        QTest::addColumn<bool>("byNumber");
        QTest::addColumn<bool>("byProperties");
        QTest::addColumn<int>("height");
        const QString properties = u"Tracks w/ Properties ..."_s;
        QTest::newRow("audio number") << 100 << u"Audio Track Number"_s << true << false << 100;
        QTest::newRow("audio properties") << 100 << properties << false << true << 260;
        QTest::newRow("all sounds") << 100 << u"All"_s << false << false << 100;
        QTest::newRow("no sound") << 100 << u"None"_s << false << false << 100;
        QTest::newRow("the other kind's number")
            << 100 << u"Subtitle Track Number"_s << false << false << 100;
        QTest::newRow("subtitle number") << 200 << u"Subtitle Track Number"_s << true << false << 100;
        QTest::newRow("subtitle properties") << 200 << properties << false << true << 202;
        QTest::newRow("all subtitles") << 200 << u"All"_s << false << false << 100;
        QTest::newRow("no subtitle") << 200 << u"None"_s << false << false << 100;
        QTest::newRow("audio's number") << 200 << u"Audio Track Number"_s << false << false << 100;
    }

    void shownPartFollowsTheChoice()
    {
        QFETCH(const int, base);
        QFETCH(const QString, choice);
        QFETCH(const int, height);
        FilterFixture fixture;
        const FilterKind kind = base == 100 ? FilterKind::Audio : FilterKind::Subtitle;
        fixture.editor.setField(kind, u"currentTrackChoice"_s, choice);
        QCOMPARE(fixture.editor.fields(kind).userTrackChoice(), choice);
        QTEST(fixture.editor.fields(kind).isByTrackNumber(), "byNumber");
        QTEST(fixture.editor.fields(kind).isByProperties(), "byProperties");
        QCOMPARE(fixture.editor.property(base == 100 ? "afPanelHeight" : "sfPanelHeight").toInt(), height);
        QCOMPARE(fixture.editor.property(base == 100 ? "sfPanelHeight" : "afPanelHeight").toInt(), 100);
    }

    void fieldsThatNoFilterHasAreNotTaken()
    {
        FilterFixture fixture;
        fixture.edit(201);
        fixture.editor.setField(FilterKind::Subtitle, u"currentChannels"_s, u"Stereo Only"_s);
        fixture.editor.setField(FilterKind::Subtitle, u"colour"_s, u"blue"_s);
        fixture.editor.editFilterPanel(201);
        QCOMPARE(fixture.subtitle(), subtitles.join(u"; "_s));
    }

private:
    static void kinds()
    {
        QTest::addColumn<int>("base");
        QTest::newRow("audio") << 100;
        QTest::newRow("subtitle") << 200;
    }
};

TESSARAY_TEST(FilterEditorTest)
#include "FilterEditorTest.moc"

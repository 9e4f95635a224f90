#include "presets/FilterEditor.h"

#include "support/FilterBench.h"
#include "support/PresetBench.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using support::FilterBench;
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
            FilterBench bench(1, 1);
            const QVariant filter = filterOf(base == 100 ? sounds.at(0) : subtitles.at(0));
            if (base == 100)
                bench.preset->setPAudioFilterArray(QVariantList(filters, filter));
            else
                bench.preset->setPSubtitleFilterArray(QVariantList(filters, filter));
            bench.editor.adjustFilterButtonsCount();
            QVERIFY(bench.button(base + 1).visible);
            QCOMPARE(bench.button(base + 2).visible, second);
            QCOMPARE(bench.button(base + 3).visible, third);
            QVERIFY(bench.button(base + 92).visible);
            QCOMPARE(bench.button(base + 93).visible, thirdButtonShown);
            QCOMPARE(bench.title(base + 92), secondButton);
            QCOMPARE(bench.title(base + 93), thirdButton);
            const FilterEditor &editor = bench.editor;
            QCOMPARE(base == 100 ? editor.af2Visibility() : editor.sf2Visibility(), second);
            QCOMPARE(base == 100 ? editor.af3Visibility() : editor.sf3Visibility(), third);
            QVERIFY(!(base == 100 ? editor.sf2Visibility() : editor.af2Visibility())); // it has one
        }
    }

    void buttonsCarryTheirTagsAndTitles()
    {
        const FilterBench bench;
        for (const int tag : {101, 102, 103, 201, 202, 203, 192, 193, 292, 293})
            QCOMPARE(bench.button(tag).tag, tag);
        for (const int base : {100, 200}) {
            QCOMPARE(bench.title(base + 1), u"Filter #1"_s);
            QCOMPARE(bench.title(base + 2), u"Filter #2"_s);
            QCOMPARE(bench.title(base + 3), u"Filter #3"_s);
        }
        QCOMPARE(bench.enabled(FilterKind::Audio), support::allAudioButtons);
        QCOMPARE(bench.enabled(FilterKind::Subtitle), support::allSubtitleButtons);
        QCOMPARE(bench.editor.panelTag(), 0);
    }

    void editorShowsThePresetsFilters()
    {
        FilterBench bench(2, 3);
        QCOMPARE(textOf(bench.editor.currentAudioFilterArray()), sounds.mid(0, 2).join(u"; "_s));
        QCOMPARE(textOf(bench.editor.currentSubtitleFilterArray()), subtitles.join(u"; "_s));
        bench.editor.setPreset(nullptr);
        QVERIFY(bench.editor.currentAudioFilterArray().isEmpty());
        QVERIFY(bench.editor.currentSubtitleFilterArray().isEmpty());
        QVERIFY(!bench.editor.af2Visibility());
        QVERIFY(!bench.editor.sf2Visibility());
        QCOMPARE(bench.enabled(FilterKind::Audio), u""_s);
        QCOMPARE(bench.enabled(FilterKind::Subtitle), u""_s);
    }

    void plusAppendsADefaultFilter()
    {
        FilterBench bench(1, 1);
        const QSignalSpy changed(&bench.editor, &FilterEditor::changed);
        bench.editor.addFilterButtonClicked(192);
        QCOMPARE(bench.audio(), sounds.at(0) + u"; "_s + sounds.at(0));
        QCOMPARE(bench.subtitle(), subtitles.at(0));
        QCOMPARE(bench.title(192), u"-"_s);
        QVERIFY(bench.editor.af2Visibility());
        QVERIFY(changed.count() > 0);
        bench.editor.addFilterButtonClicked(193);
        QCOMPARE(bench.preset->pAudioFilterArray().size(), 3);
        QVERIFY(bench.editor.af3Visibility());
        QCOMPARE(bench.title(193), u"-"_s);
        bench.editor.addFilterButtonClicked(292);
        QCOMPARE(bench.subtitle(), subtitles.at(0) + u"; "_s + subtitles.at(0));
        bench.editor.addFilterButtonClicked(293);
        QCOMPARE(bench.preset->pSubtitleFilterArray().size(), 3);
        QCOMPARE(bench.preset->pAudioFilterArray().size(), 3);
        QVERIFY(bench.editor.sf3Visibility());
    }

    void minusInRowTwoRemovesTheSecondFilter_data() { kinds(); }

    void minusInRowTwoRemovesTheSecondFilter()
    {
        QFETCH(const int, base);
        FilterBench bench(base == 100 ? 2 : 3, base == 100 ? 3 : 2);
        bench.editor.addFilterButtonClicked(base + 92);
        QCOMPARE(bench.audio(), base == 100 ? sounds.at(0) : sounds.join(u"; "_s));
        QCOMPARE(bench.subtitle(), base == 100 ? subtitles.join(u"; "_s) : subtitles.at(0));
        QCOMPARE(bench.title(base + 92), u"+"_s);
        QVERIFY(!bench.button(base + 2).visible);
    }

    /// Meant: from row 3 too it is the second one that goes.
    void minusInRowThreeRemovesTheSecondFilter_data() { kinds(); }

    void minusInRowThreeRemovesTheSecondFilter()
    {
        QFETCH(const int, base);
        FilterBench bench;
        QVERIFY(bench.button(base + 2).visible);
        QVERIFY(bench.button(base + 3).visible);
        QCOMPARE(bench.title(base + 92), u"-"_s);
        QCOMPARE(bench.title(base + 93), u"-"_s);
        bench.editor.addFilterButtonClicked(base + 93);
        QCOMPARE(bench.audio(), base == 100 ? sounds.at(0) + u"; "_s + sounds.at(2) : sounds.join(u"; "_s));
        QCOMPARE(bench.subtitle(),
                 base == 100 ? subtitles.join(u"; "_s) : subtitles.at(0) + u"; "_s + subtitles.at(2));
        QVERIFY(bench.button(base + 2).visible);
        QVERIFY(!bench.button(base + 3).visible);
        QCOMPARE(bench.title(base + 93), u"+"_s);
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
        FilterBench bench;
        bench.editor.pointerEntered(hovered);
        QCOMPARE(bench.title(hovered), u"Edit"_s);
        bench.editor.addFilterButtonClicked(pressed);
        QCOMPARE(bench.title(hovered), u"Filter #%1"_s.arg(hovered % 10));
        QCOMPARE(bench.editor.panelTag(), 0);
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
        FilterBench bench;
        const QSignalSpy changed(&bench.editor, &FilterEditor::changed);
        bench.editor.addFilterButtonClicked(tag);
        bench.editor.openFilterPanelForButton(tag);
        bench.editor.pointerEntered(tag);
        bench.editor.editFilterPanel(tag);
        bench.editor.pointerLeft(tag);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(bench.audio(), sounds.join(u"; "_s));
        QCOMPARE(bench.subtitle(), subtitles.join(u"; "_s));
    }

    void filterAndAddButtonsAreNotMistaken()
    {
        FilterBench bench;
        const QSignalSpy changed(&bench.editor, &FilterEditor::changed);
        for (const int tag : {101, 102, 103, 201, 202, 203})
            bench.editor.addFilterButtonClicked(tag);
        for (const int tag : {192, 193, 292, 293}) {
            bench.editor.openFilterPanelForButton(tag);
            bench.editor.pointerEntered(tag);
            bench.editor.editFilterPanel(tag);
            bench.editor.pointerLeft(tag);
        }
        QCOMPARE(changed.count(), 0);
        QCOMPARE(bench.audio(), sounds.join(u"; "_s));
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
        FilterBench bench;
        const FilterKind kind = tag < 200 ? FilterKind::Audio : FilterKind::Subtitle;
        bench.editor.pointerEntered(tag);
        QCOMPARE(textOf({bench.editor.fields(kind).filter()}),
                 (tag < 200 ? sounds : subtitles).at(tag % 10 - 1));
        QCOMPARE(bench.title(tag), u"Edit"_s);
        QCOMPARE(bench.editor.panelTag(), tag);
        QVERIFY(!bench.button(tag).isInEditMode);
        bench.editor.pointerLeft(tag);
        QCOMPARE(bench.title(tag), u"Filter #%1"_s.arg(tag % 10));
        QCOMPARE(bench.editor.panelTag(), 0);
        QCOMPARE(bench.audio(), sounds.join(u"; "_s));
    }

    void pointerOverTheSecondSubtitleButtonShowsTheSecondSubtitleFilter()
    {
        FilterBench bench;
        bench.editor.pointerEntered(202);
        const presets::FilterFields &fields = bench.editor.fields(FilterKind::Subtitle);
        QCOMPARE(fields.userTrackChoice(), u"Tracks w/ Properties ..."_s);
        QCOMPARE(fields.userTrackNumber(), u"2"_s);
        QCOMPARE(fields.userLanguage(), u"English"_s);
        QCOMPARE(fields.userCodec(), u"srt"_s);
        QVERIFY(fields.userChannels().isEmpty());
        bench.editor.pointerLeft(202);
        QCOMPARE(bench.title(202), u"Filter #2"_s);
    }

    void openedPanelIsLoadedWithoutBeingShown()
    {
        FilterBench bench;
        const QSignalSpy changed(&bench.editor, &FilterEditor::changed);
        bench.editor.openFilterPanelForButton(103);
        const presets::FilterFields &fields = bench.editor.fields(FilterKind::Audio);
        QCOMPARE(fields.userTrackChoice(), u"All"_s);
        QCOMPARE(fields.userTrackNumber(), u"3"_s);
        QCOMPARE(fields.userLanguage(), u"German"_s);
        QCOMPARE(fields.userCodec(), u"ac3"_s);
        QCOMPARE(fields.userChannels(), u"Surround Only"_s);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(bench.editor.panelTag(), 0);
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
        FilterBench bench;
        const FilterKind kind = base == 100 ? FilterKind::Audio : FilterKind::Subtitle;
        bench.editor.setField(kind, u"currentTrackChoice"_s, choice);
        QCOMPARE(bench.editor.fields(kind).userTrackChoice(), choice);
        QTEST(bench.editor.fields(kind).isByTrackNumber(), "byNumber");
        QTEST(bench.editor.fields(kind).isByProperties(), "byProperties");
        QCOMPARE(bench.editor.property(base == 100 ? "afPanelHeight" : "sfPanelHeight").toInt(), height);
        QCOMPARE(bench.editor.property(base == 100 ? "sfPanelHeight" : "afPanelHeight").toInt(), 100);
    }

    void fieldsThatNoFilterHasAreNotTaken()
    {
        FilterBench bench;
        bench.edit(201);
        bench.editor.setField(FilterKind::Subtitle, u"currentChannels"_s, u"Stereo Only"_s);
        bench.editor.setField(FilterKind::Subtitle, u"colour"_s, u"blue"_s);
        bench.editor.editFilterPanel(201);
        QCOMPARE(bench.subtitle(), subtitles.join(u"; "_s));
    }

private:
    static void kinds()
    {
        QTest::addColumn<int>("base");
        QTest::newRow("audio") << 100;
        QTest::newRow("subtitle") << 200;
    }
};

QTEST_GUILESS_MAIN(FilterEditorTest)
#include "FilterEditorTest.moc"

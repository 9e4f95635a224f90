#include "presets/TrackFilters.h"

#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;

namespace {

const QString numbered = u"Audio Track Number|"_s;
const QString byProperties = u"Tracks w/ Properties ...|1|"_s;

/// English aac stereo, German ac3 5.1, English ac3 5.1, French mp3 mono, undetermined flac 7.1.
TrackList fiveSounds()
{
    return {support::probedAudio(u"aac"_s, u"2"_s, u"English"_s),
            support::probedAudio(u"ac3"_s, u"6"_s, u"German"_s),
            support::probedAudio(u"ac3"_s, u"6"_s, u"English"_s),
            support::probedAudio(u"mp3"_s, u"1"_s, u"French"_s),
            support::probedAudio(u"flac"_s, u"8"_s, u"undetermined"_s)};
}

/// English srt, German srt, English sub, German ass.
TrackList fourSubtitles()
{
    return {
        support::probedSubtitleOf(u"srt"_s, u"English"_s), support::probedSubtitleOf(u"srt"_s, u"German"_s),
        support::probedSubtitleOf(u"sub"_s, u"English"_s), support::probedSubtitleOf(u"ass"_s, u"German"_s)};
}

/// Filters that are written one behind the other, as support::filterOf() reads them.
QVariantList filtersOf(const QString &texts)
{
    QVariantList filters;
    for (const QString &text : texts.split(u"; "_s, Qt::SkipEmptyParts))
        filters.append(support::filterOf(text));
    return filters;
}

QString tickedBy(FilterKind kind, const QString &filters, const QString &mode, const TrackList &tracks)
{
    presets::applyFilters(kind, filtersOf(filters), mode, tracks);
    return support::ticksOf(tracks);
}

void columns()
{
    QTest::addColumn<QString>("filters");
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("ticked");
}

/// Rows of one filter, which every mode applies alike.
void row(const char *name, const QString &filter, const QString &ticked)
{
    QTest::newRow(name) << filter << u"Apply All"_s << ticked;
}

void row(const char *name, const QString &filters, const QString &mode, const QString &ticked)
{
    QTest::newRow(name) << filters << mode << ticked;
}

} // namespace

/// Which tracks filters tick. Each table has its tracks above: they are told by their places.
class TrackFiltersTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choicesAndNumbers_data()
    {
        columns();
        const QString rest = u"|Any Language|Any Codec|Any Type"_s;
        row("no filter", u""_s, u""_s);
        row("none", u"None|1"_s + rest, u""_s);
        row("all", u"All|1"_s + rest, u"1 2 3 4 5"_s);
        row("all, whatever the rest says", u"All|3|German|wv|Stereo Only"_s, u"1 2 3 4 5"_s);
        row("all, as the built-in has it", u"All||||"_s, u"1 2 3 4 5"_s);
        row("none, whatever the rest says", u"None|2|English|aac|Stereo Only"_s, u""_s);
        row("first", numbered + u"1"_s + rest, u"1"_s);
        row("first, as the built-in has it", numbered + u"1|||"_s, u"1"_s);
        row("fourth", numbered + u"4"_s + rest, u"4"_s);
        row("last", numbered + u"5"_s + rest, u"5"_s);
        row("number, whatever the rest says", numbered + u"2|English|aac|Stereo Only"_s, u"2"_s);
        row("one too many", numbered + u"6"_s + rest, u""_s);
        row("nine", numbered + u"9"_s + rest, u""_s);
        row("ten", numbered + u"10"_s + rest, u""_s);
        row("0", numbered + u"0"_s + rest, u""_s);
        row("negative", numbered + u"-1"_s + rest, u""_s);
        row("x", numbered + u"x"_s + rest, u""_s);
        row("no number", numbered + rest, u""_s);
        row("number with a tail", numbered + u"3rd"_s + rest, u"3"_s);
        row("huge number", numbered + u"99999999999999999999"_s + rest, u""_s);
        row("the other kind's number", u"Subtitle Track Number|1"_s + rest, u""_s);
        row("unknown choice", u"Every|1"_s + rest, u""_s);
        row("other capitals", u"all|1"_s + rest, u""_s);
        row("no choice", u"|1"_s + rest, u""_s);
        row("properties without the dots", u"Tracks w/ Properties|1"_s + rest, u""_s);
    }

    void choicesAndNumbers() { checkAudio(); }

    void audioProperties_data()
    {
        columns();
        row("any of all", byProperties + u"Any Language|Any Codec|Any Type"_s, u"1 2 3 4 5"_s);
        row("language", byProperties + u"English|Any Codec|Any Type"_s, u"1 3"_s);
        row("another language", byProperties + u"undetermined|Any Codec|Any Type"_s, u"5"_s);
        row("language of none", byProperties + u"Latin|Any Codec|Any Type"_s, u""_s);
        row("language in other capitals", byProperties + u"english|Any Codec|Any Type"_s, u""_s);
        row("half a language", byProperties + u"Engl|Any Codec|Any Type"_s, u""_s);
        row("code of a language", byProperties + u"eng|Any Codec|Any Type"_s, u""_s);
        row("empty language", byProperties + u"|Any Codec|Any Type"_s, u""_s);
        row("empty language and a codec", byProperties + u"|ac3|Any Type"_s, u""_s);
        row("language with an apostrophe", byProperties + u"English' OR 'a' = 'a|Any Codec|Any Type"_s,
            u""_s);
        row("codec", byProperties + u"Any Language|ac3|Any Type"_s, u"2 3"_s);
        row("codec in capitals", byProperties + u"Any Language|AC3|Any Type"_s, u""_s);
        row("empty codec", byProperties + u"Any Language||Any Type"_s, u""_s);
        row("empty codec and a language", byProperties + u"English||Any Type"_s, u""_s);
        row("stereo", byProperties + u"Any Language|Any Codec|Stereo Only"_s, u"1 4"_s);
        row("surround", byProperties + u"Any Language|Any Codec|Surround Only"_s, u"2 3 5"_s);
        row("language and codec", byProperties + u"English|ac3|Any Type"_s, u"3"_s);
        row("language and codec of different tracks", byProperties + u"French|ac3|Any Type"_s, u""_s);
        row("language and stereo", byProperties + u"English|Any Codec|Stereo Only"_s, u"1"_s);
        row("language and surround", byProperties + u"English|Any Codec|Surround Only"_s, u"3"_s);
        row("codec and stereo", byProperties + u"Any Language|mp3|Stereo Only"_s, u"4"_s);
        row("codec and surround", byProperties + u"Any Language|ac3|Surround Only"_s, u"2 3"_s);
        row("codec and stereo of different tracks", byProperties + u"Any Language|ac3|Stereo Only"_s, u""_s);
        row("all three", byProperties + u"German|ac3|Surround Only"_s, u"2"_s);
        row("all three of different tracks", byProperties + u"German|ac3|Stereo Only"_s, u""_s);
        // Nothing to compare with is nothing that fits: meant.
        row("unknown channels alone", byProperties + u"Any Language|Any Codec|Mono Only"_s, u""_s);
        row("no channels alone", byProperties + u"Any Language|Any Codec"_s, u""_s);
        row("unknown channels and a language", byProperties + u"English|Any Codec|Mono Only"_s, u"1 3"_s);
        row("no channels and a codec", byProperties + u"Any Language|ac3"_s, u"2 3"_s);
    }

    void audioProperties() { checkAudio(); }

    void severalFilters_data()
    {
        columns();
        const QString rest = u"|Any Language|Any Codec|Any Type; "_s;
        const QString english = byProperties + u"English|Any Codec|Any Type; "_s;
        const QString latin = byProperties + u"Latin|Any Codec|Any Type; "_s;
        const QString everything = byProperties + u"Any Language|Any Codec|Any Type; "_s;
        const QString second = numbered + u"2"_s + rest;
        const QString ninth = numbered + u"9"_s + rest;
        const QString all = u"All|1"_s + rest;
        const QString none = u"None|1"_s + rest;
        const QString applyAll = u"Apply All"_s;
        const QString prioritized = u"Prioritized"_s;
        row("two add up", english + second, applyAll, u"1 2 3"_s);
        row("the first that ticks is the last", english + second, prioritized, u"1 3"_s);
        row("a number is the last too", second + english, prioritized, u"2"_s);
        row("in any order they add up", second + english, applyAll, u"1 2 3"_s);
        row("one that ticks nothing goes on", latin + second, prioritized, u"2"_s);
        row("a number of no track goes on", ninth + english, prioritized, u"1 3"_s);
        row("none goes on", none + second, prioritized, u"2"_s);
        row("none unticks nothing", second + none, applyAll, u"2"_s);
        row("unknown choice goes on", u"Every|1"_s + rest + second, prioritized, u"2"_s);
        row("unknown channels go on", byProperties + u"Any Language|Any Codec|Mono Only; "_s + second,
            prioritized, u"2"_s);
        row("two that overlap", english + numbered + u"1"_s + rest, applyAll, u"1 3"_s);
        row("the third has its turn", latin + ninth + second, prioritized, u"2"_s);
        row("the third has none", latin + second + english, prioritized, u"2"_s);
        row("three add up", second + numbered + u"4"_s + rest + numbered + u"5"_s + rest, applyAll,
            u"2 4 5"_s);
        row("empty mode applies all", english + second, u""_s, u"1 2 3"_s);
        row("unknown mode applies all", english + second, u"prioritized"_s, u"1 2 3"_s);
        row("all of them", all + everything + second, prioritized, u"1 2 3 4 5"_s);
    }

    void severalFilters() { checkAudio(); }

    void channelsAreComparedAsTexts_data()
    {
        QTest::addColumn<QString>("channels");
        QTest::addColumn<bool>("isStereo");
        QTest::newRow("1") << u"1"_s << true;
        QTest::newRow("2") << u"2"_s << true;
        QTest::newRow("3") << u"3"_s << false;
        QTest::newRow("6") << u"6"_s << false;
        QTest::newRow("8") << u"8"_s << false;
        QTest::newRow("0") << u"0"_s << true;
        QTest::newRow("empty") << u""_s << true;
        // Meant, since they are texts.
        QTest::newRow("10") << u"10"_s << true;
        QTest::newRow("16") << u"16"_s << true;
        QTest::newRow("20") << u"20"_s << false;
        QTest::newRow("2.1") << u"2.1"_s << false;
        QTest::newRow("none") << u"none"_s << false;
    }

    void channelsAreComparedAsTexts()
    {
        QFETCH(const QString, channels);
        QFETCH(const bool, isStereo);
        const QString filter = byProperties + u"Any Language|Any Codec|"_s;
        QCOMPARE(tickedBy(FilterKind::Audio, filter + u"Stereo Only"_s, {},
                          {support::probedAudio(u"aac"_s, channels)}),
                 isStereo ? u"1"_s : u""_s);
        QCOMPARE(tickedBy(FilterKind::Audio, filter + u"Surround Only"_s, {},
                          {support::probedAudio(u"aac"_s, channels)}),
                 isStereo ? u""_s : u"1"_s);
    }

    void subtitles_data()
    {
        columns();
        const QString rest = u"|Any Language|Any Codec"_s;
        const QString fourth = u"Subtitle Track Number|4"_s + rest;
        const QString german = byProperties + u"German|Any Codec"_s;
        row("none", u"None|1"_s + rest, u""_s);
        row("all", u"All|1"_s + rest, u"1 2 3 4"_s);
        row("second", u"Subtitle Track Number|2"_s + rest, u"2"_s);
        row("one too many", u"Subtitle Track Number|5"_s + rest, u""_s);
        row("0", u"Subtitle Track Number|0"_s + rest, u""_s);
        row("x", u"Subtitle Track Number|x"_s + rest, u""_s);
        row("the other kind's number", u"Audio Track Number|1"_s + rest, u""_s);
        row("any of both", byProperties + u"Any Language|Any Codec"_s, u"1 2 3 4"_s);
        row("language", german, u"2 4"_s);
        row("codec", byProperties + u"Any Language|srt"_s, u"1 2"_s);
        row("both", byProperties + u"English|sub"_s, u"3"_s);
        row("both of different tracks", byProperties + u"English|ass"_s, u""_s);
        row("language of none", byProperties + u"Latin|Any Codec"_s, u""_s);
        // Channels say nothing of a subtitle: meant.
        row("channels that say nothing", german + u"|Any Type"_s, u"2 4"_s);
        row("surround", german + u"|Surround Only"_s, u"2 4"_s);
        row("surround alone", byProperties + u"Any Language|Any Codec|Surround Only"_s, u"1 2 3 4"_s);
        row("two add up", german + u"; Subtitle Track Number|1"_s + rest, u"Apply All"_s, u"1 2 4"_s);
        row("the first that ticks is the last", german + u"; Subtitle Track Number|1"_s + rest,
            u"Prioritized"_s, u"2 4"_s);
        row("a number is the last", fourth + u"; "_s + german, u"Prioritized"_s, u"4"_s);
        row("one that ticks nothing goes on", byProperties + u"Latin|Any Codec; "_s + fourth,
            u"Prioritized"_s, u"4"_s);
    }

    void subtitles()
    {
        QFETCH(const QString, filters);
        QFETCH(const QString, mode);
        QTEST(tickedBy(FilterKind::Subtitle, filters, mode, fourSubtitles()), "ticked");
    }

    /// Meant: these words stand in the lists although no track carries them.
    void codecsThatNoTrackCarriesMatchByTheirWordAllTheSame_data()
    {
        QTest::addColumn<bool>("isAudio");
        QTest::addColumn<QString>("codec");
        for (const char *codec : {"dts", "wv"})
            QTest::newRow(codec) << true << QString::fromLatin1(codec);
        for (const char *codec : {"pgs", "vobsub", "txt"})
            QTest::newRow(codec) << false << QString::fromLatin1(codec);
    }

    void codecsThatNoTrackCarriesMatchByTheirWordAllTheSame()
    {
        QFETCH(const bool, isAudio);
        QFETCH(const QString, codec);
        const QString filter =
            byProperties + u"Any Language|"_s + codec + (isAudio ? u"|Any Type"_s : QString());
        const FilterKind kind = isAudio ? FilterKind::Audio : FilterKind::Subtitle;
        QCOMPARE(tickedBy(kind, filter, {}, isAudio ? fiveSounds() : fourSubtitles()), u""_s);
        const TrackPointer track = support::probedAudio(codec);
        QCOMPARE(tickedBy(kind, filter, {}, {track}), u"1"_s);
    }

    void whatIsTickedStays()
    {
        const TrackList tracks = fiveSounds();
        tracks.at(3)->setTrackSelected(true);
        QCOMPARE(tickedBy(FilterKind::Audio,
                          u"None|1|||; "_s + byProperties + u"English|Any Codec|Any Type"_s, u"Prioritized"_s,
                          tracks),
                 u"1 3 4"_s);
    }

    void noTracksAreNoTrouble()
    {
        QCOMPARE(tickedBy(FilterKind::Audio,
                          u"All|1|||; Audio Track Number|1|||; "_s + byProperties + u"English"_s,
                          u"Apply All"_s, {}),
                 u""_s);
    }

    void whatIsNoFilterIsPassedOver()
    {
        const TrackList tracks = fiveSounds();
        const QVariantList filters{u"All"_s, 7, QVariant(), support::filterOf(u"Audio Track Number|2|||"_s)};
        presets::applyFilters(FilterKind::Audio, filters, u"Prioritized"_s, tracks);
        QCOMPARE(support::ticksOf(tracks), u"2"_s);
    }

    void filtersAreMadeFromTheirKind()
    {
        QCOMPARE(support::textOf({presets::makeFilter(FilterKind::Audio, u"All"_s, u"Latin"_s)}),
                 u"All|1|Latin|Any Codec|Any Type"_s);
        QCOMPARE(support::textOf({presets::makeFilter(FilterKind::Subtitle, u"None"_s, u"Latin"_s)}),
                 u"None|1|Latin|Any Codec"_s);
        QCOMPARE(support::textOf({presets::defaultFilter(FilterKind::Audio)}),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(support::textOf({presets::defaultFilter(FilterKind::Subtitle)}),
                 u"Subtitle Track Number|1|Any Language|Any Codec"_s);
        QCOMPARE(presets::filterWords(FilterKind::Audio),
                 QStringList({u"currentTrackChoice"_s, u"currentTrackNumber"_s, u"currentLanguage"_s,
                              u"currentCodec"_s, u"currentChannels"_s}));
        QCOMPARE(presets::filterWords(FilterKind::Subtitle),
                 QStringList({u"currentTrackChoice"_s, u"currentTrackNumber"_s, u"currentLanguage"_s,
                              u"currentCodec"_s}));
    }

private:
    static void checkAudio()
    {
        QFETCH(const QString, filters);
        QFETCH(const QString, mode);
        QTEST(tickedBy(FilterKind::Audio, filters, mode, fiveSounds()), "ticked");
    }
};

TESSARAY_TEST(TrackFiltersTest)
#include "TrackFiltersTest.moc"

// Every combination of what may be selected, picked and open, against the rules said a second time: as
// tables of decisions, the last that applies wins.
#include "support/TestMain.h"
#include "support/selection/TabFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::TabCase;
using support::TabFixture;

namespace {

struct Decision
{
    bool applies;
    const char *field;
    QVariant value;
};

/// The counts that the rules speak of.
struct Facts
{
    explicit Facts(const TabCase &tabCase)
        : words(tabCase.words())
        , videos(words.count(u"video"_s))
        , subtitles(words.count(u"srt"_s) + words.count(u"external"_s))
    {
        for (qsizetype i = 0; i < words.size(); ++i) {
            if (words.at(i).contains(u':'))
                audioRows.append(i);
        }
        if (tabCase.popup < audioRows.size())
            shown = audioRows.at(tabCase.popup);
    }
    QString channels() const { return words.value(shown).section(u':', 1); }
    bool passesThru() const
    {
        const QString codec = words.value(shown).section(u':', 0, 0);
        return codec == u"aac"_s || codec == u"ac3"_s;
    }

    QStringList words;
    qsizetype videos;
    qsizetype subtitles;
    QList<qsizetype> audioRows;
    qsizetype shown = -1; // the row of the track in the popup
};

QStringList codecsAfter(const TabCase &tabCase, const Facts &facts, const QStringList &before)
{
    static const QMap<int, QString> video{{0, u"passthru"_s}, {1, u"h264"_s}, {2, u"h264"_s}};
    static const QMap<int, QString> subtitle{{0, u"burn"_s}, {1, u"mux"_s}};
    QStringList codecs;
    for (qsizetype row = 0; row < facts.words.size(); ++row) {
        const QString kind = facts.words.at(row);
        if (facts.videos != 1 || kind.contains(u':'))
            codecs.append(before.at(row));
        else if (kind == u"video"_s)
            codecs.append(video.value(tabCase.video, before.at(row)));
        else
            codecs.append(subtitle.value(tabCase.subtitle, before.at(row)));
    }
    return codecs;
}

QString outputFor(const QString &action, const QString &channels)
{
    static const QMap<QString, QString> outputs{{u"Pass Thru"_s, u"passthru %1 55"_s},
                                                {u"AAC (2-Ch.)"_s, u"aac 2 160"_s},
                                                {u"AAC (5.1)"_s, u"aac 6 320"_s},
                                                {u"AC3 (5.1)"_s, u"ac3 6 640"_s}};
    return outputs.value(action).replace(u"%1"_s, channels);
}

QStringList outputsAfter(const TabCase &tabCase, const Facts &facts, QStringList outputs)
{
    if (facts.videos != 1 || facts.shown < 0)
        return outputs;
    QStringList made;
    for (const QString &action : tabCase.ticks)
        made.append(outputFor(action, facts.channels()));
    outputs[facts.shown] = made.join(u", "_s);
    return outputs;
}

QList<Decision> alwaysDecisions(const TabCase &tabCase)
{
    return {{true, "canAddTrack", !tabCase.fileIsEmpty}};
}

QList<Decision> mkvDecisions(const TabCase &tabCase)
{
    const QString popover = u"canOpenQueuePopover "_s;
    return {{true, "trackTableEnabled", true},
            {true, "calls", QStringList{popover + (tabCase.openFiles > 1 ? u"true"_s : u"false"_s)}},
            {true, "currentFileTextColor", u"black"_s},
            {true, "currentFileText", u"Drop Video File(s) in the Table Below"_s}};
}

QList<Decision> filledMkvDecisions(const TabCase &tabCase, const Facts &facts)
{
    const bool burns = tabCase.subtitle == 0 && facts.subtitles > 0 && facts.videos == 1;
    return {{true, "currentFileText", tabCase.path},
            {true, "theDevice", u"PS3"_s},
            {true, "canConvert", facts.videos == 1},
            {true, "canEditTracks", tabCase.path.endsWith(u".mkv"_s, Qt::CaseInsensitive)},
            {facts.words.isEmpty(), "canEditTracks", false},
            {true, "oneSubSelected", facts.subtitles == 1},
            {true, "subtitleSelected", facts.subtitles > 0},
            {facts.subtitles > 0, "canMuxSubtitles", true},
            {facts.subtitles > 0, "canBurnSubtitles", true},
            {facts.subtitles > 1, "canBurnSubtitles", false},
            {true, "mkvVideoPassThruColor", u"black"_s},
            {burns, "mkvVideoPassThruColor", u"red"_s},
            {true, "mkvAudioPassThruColor", u"black"_s},
            {true, "userFPS", u"29.97"_s},
            {true, "userWidth", u"720"_s},
            {true, "userVideoBitRate", u"1500"_s},
            {true, "canAddStereoTrack", false}};
}

QList<Decision> conversionDecisions(const TabCase &tabCase, const Facts &facts)
{
    const bool shown = facts.shown >= 0;
    const bool surround = facts.channels().toInt() > 2;
    const bool hasOutputs = shown && !tabCase.ticks.isEmpty();
    return {{tabCase.video == 0, "mustConvertVideoTrack", false},
            {tabCase.video == 1, "mustConvertVideoTrack", true},
            {tabCase.video == 2, "mustConvertVideoTrack", true},
            {tabCase.video == 0, "userPassNumber", u"1"_s},
            {tabCase.video == 1, "userPassNumber", u"1"_s},
            {tabCase.video == 2, "userPassNumber", u"2"_s},
            {shown, "popupAudioIsSurround", surround},
            {shown, "canAddStereoTrack", surround},
            {shown && !facts.passesThru(), "mkvAudioPassThruColor", u"red"_s},
            {true, "userMadeAudioSelection", hasOutputs}};
}

QList<Decision> stepDecisions(bool mustConvert)
{
    return {{mustConvert, "jobStepList", QStringList{u"MKV Track Conversion"_s, u"Mux MKV"_s}},
            {!mustConvert, "jobStepList",
             QStringList{u"MKV Track Conversion"_s, u"Edit Track Profile Level"_s, u"Mux MKV"_s,
                         u"Edit MKV Profile Level"_s}}};
}

QList<Decision> editDecisions(const TabCase &tabCase)
{
    const bool any = tabCase.editFiles > 0;
    return {{true, "calls", QStringList{u"close"_s, u"canOpenQueuePopover false"_s}},
            {true, "currentFileText",
             u"Drop MKV video file(s) in the table below to edit them at the file level."_s},
            {true, "currentFileTextColor", u"black"_s},
            {true, "canJoin", tabCase.editFiles > 1},
            {true, "canEditPAR", any},
            {true, "canSplit", any},
            {any && tabCase.split == 0, "splitType", u"time"_s},
            {any && tabCase.split == 1, "splitType", u"size"_s},
            {any && tabCase.split == 2, "splitType", u"duration"_s},
            {tabCase.split == 0 && tabCase.start.toInt() >= tabCase.end.toInt(), "canSplit", false},
            {tabCase.split == 1 && tabCase.size.toInt() == 0, "canSplit", false},
            {tabCase.split == 2 && tabCase.duration == u"00:00:00"_s, "canSplit", false}};
}

void decide(QVariantMap &state, const QList<Decision> &decisions)
{
    for (const Decision &decision : decisions) {
        if (decision.applies)
            state[QString::fromLatin1(decision.field)] = decision.value;
    }
}

QVariantMap expectedAfter(const TabCase &tabCase, QVariantMap state)
{
    const Facts facts(tabCase);
    decide(state, alwaysDecisions(tabCase));
    if (tabCase.tab == u"Edit Files"_s)
        decide(state, editDecisions(tabCase));
    if (tabCase.tab != u"MKV"_s)
        return state;
    decide(state, mkvDecisions(tabCase));
    if (tabCase.fileIsEmpty)
        return state;
    decide(state, filledMkvDecisions(tabCase, facts));
    state[u"codecs"_s] = codecsAfter(tabCase, facts, state.value(u"codecs"_s).toStringList());
    state[u"outputs"_s] = outputsAfter(tabCase, facts, state.value(u"outputs"_s).toStringList());
    if (facts.videos == 1)
        decide(state, conversionDecisions(tabCase, facts));
    decide(state, stepDecisions(state.value(u"mustConvertVideoTrack"_s).toBool()));
    return state;
}

/// Empty where all is as expected.
QString differences(const TabCase &tabCase)
{
    TabFixture fixture(tabCase);
    const QVariantMap expected = expectedAfter(tabCase, fixture.state());
    fixture.controller.updateTabs();
    const QVariantMap state = fixture.state();
    QString text;
    for (auto field = expected.begin(); field != expected.end(); ++field) {
        if (state.value(field.key()) != field.value())
            QDebug(&text) << field.key() << state.value(field.key()) << "instead of" << field.value();
    }
    return text.isEmpty() ? text : tabCase.text() + u": "_s + text;
}

QStringList trackCombinations()
{
    QStringList combinations;
    for (const QString &videos : {u""_s, u"video "_s, u"video video "_s}) {
        for (const QString &audio : {u""_s, u"aac:2 "_s, u"aac:6 "_s, u"dtshd:2 "_s, u"dtshd:8 "_s,
                                     u"aac:2 dtshd:6 "_s, u"dtshd:3 ac3:2 "_s, u"ac3:6 aac:1 "_s}) {
            for (const QString &subtitles : {u""_s, u"srt"_s, u"external"_s, u"srt external"_s})
                combinations.append(videos + audio + subtitles);
        }
    }
    return combinations;
}

QList<TabCase> mkvCases(const QString &tracks)
{
    QList<TabCase> cases;
    for (const int popup : {0, 1}) {
        for (const int video : {0, 1, 2, 7}) {
            for (const int subtitle : {0, 1, 2}) {
                for (const bool before : {false, true}) {
                    TabCase tabCase;
                    tabCase.tracks = tracks;
                    tabCase.popup = popup;
                    tabCase.video = video;
                    tabCase.subtitle = subtitle;
                    tabCase.before = before;
                    cases.append(tabCase);
                }
            }
        }
    }
    return cases;
}

/// The same case with every kind of file, none of whose rules looks at the others' values.
QList<TabCase> withFiles(const TabCase &tabCase)
{
    QList<TabCase> cases;
    for (const QString &path : {u"/v/a.mkv"_s, u"/v/a.MKV"_s, u"/v/a.mp4"_s}) {
        cases.append(tabCase);
        cases.last().path = path;
    }
    cases.append(tabCase);
    cases.last().fileIsEmpty = true;
    return cases;
}

QList<TabCase> editCases(int files, int split)
{
    QList<TabCase> cases;
    for (const QString &end : {u"0"_s, u"59"_s, u"60"_s, u"61"_s, u"600"_s}) {
        for (const QString &size : {u"0"_s, u"700"_s}) {
            for (const QString &duration : {u"00:00:00"_s, u"00:00:01"_s}) {
                for (const bool before : {false, true}) {
                    TabCase tabCase;
                    tabCase.tab = u"Edit Files"_s;
                    tabCase.editFiles = files;
                    tabCase.split = split;
                    tabCase.start = u"60"_s;
                    tabCase.end = end;
                    tabCase.size = size;
                    tabCase.duration = duration;
                    tabCase.before = before;
                    cases.append(tabCase);
                }
            }
        }
    }
    return cases;
}

} // namespace

class UpdateTabsCombinationsTest final : public QObject
{
    Q_OBJECT

private:
    int m_count = 0;

    void check(const TabCase &tabCase)
    {
        if (QTest::currentTestFailed())
            return; // one failure tells enough
        const QString text = differences(tabCase);
        QVERIFY2(text.isEmpty(), qPrintable(text));
        ++m_count;
    }

private Q_SLOTS:
    void init() { m_count = 0; }

    void tracksAndChoices_data()
    {
        QTest::addColumn<QString>("tracks");
        for (const QString &tracks : trackCombinations())
            QTest::newRow(qPrintable(u'[' + tracks + u']')) << tracks;
    }

    void tracksAndChoices()
    {
        QFETCH(QString, tracks);
        for (const TabCase &tabCase : mkvCases(tracks)) {
            for (const TabCase &withFile : withFiles(tabCase))
                check(withFile);
        }
        QCOMPARE(m_count, 2 * 4 * 3 * 2 * 4);
    }

    void ticksAndOpenFiles()
    {
        const QStringList actions{u"Pass Thru"_s, u"AAC (2-Ch.)"_s, u"AAC (5.1)"_s, u"AC3 (5.1)"_s};
        for (int bits = 0; bits < 16; ++bits) {
            for (int open = 0; open < 4; ++open) {
                TabCase tabCase;
                tabCase.tracks = u"video dtshd:8 aac:2"_s;
                tabCase.openFiles = open;
                tabCase.ticks.clear();
                for (int i = 3; i >= 0; --i) // backwards, since the order of the list counts
                    tabCase.ticks += bits & (1 << i) ? actions.mid(i, 1) : QStringList();
                check(tabCase);
            }
        }
        QCOMPARE(m_count, 16 * 4);
    }

    void editFiles()
    {
        for (const int files : {0, 1, 2, 3}) {
            for (const int split : {-1, 0, 1, 2, 5}) {
                for (const TabCase &tabCase : editCases(files, split))
                    check(tabCase);
            }
        }
        QCOMPARE(m_count, 4 * 5 * 5 * 2 * 2 * 2);
    }

    void otherTabsLookAtNoTrack_data()
    {
        QTest::addColumn<QString>("tab");
        QTest::newRow("editing files") << u"Edit Files"_s;
        QTest::newRow("a tab without rules") << u"Queue"_s;
        QTest::newRow("a name in another case") << u"mkv"_s;
    }

    void otherTabsLookAtNoTrack()
    {
        QFETCH(QString, tab);
        for (const QString &tracks : trackCombinations()) {
            for (TabCase tabCase : mkvCases(tracks)) {
                tabCase.tab = tab;
                tabCase.editFiles = 2;
                if (tabCase.popup == 0 && tabCase.video < 2) // the others tell no more
                    check(tabCase);
            }
        }
        QCOMPARE(m_count, 96 * 2 * 3 * 2);
    }
};

TESSARAY_TEST(UpdateTabsCombinationsTest)
#include "UpdateTabsCombinationsTest.moc"

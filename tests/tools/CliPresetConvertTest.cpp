// Real conversions by stored presets: what is in the files that they write, and what they refuse to write.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Words.h"
#include "support/engines/RealRuns.h"

#include <QFile>
#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::settingsPreset;
using support::shownStreams;
using support::storePresets;
using support::trackPreset;
using support::words;

namespace {

/// The words of each job's commands, by the output; the statistics' place is another in every run.
QMap<QString, QStringList> commandsOf(const CliFixture::Run &run)
{
    QMap<QString, QStringList> commands;
    for (const QJsonObject &step : run.objects()) {
        QStringList &list = commands[step.value(u"output"_s).toString()];
        for (const QJsonValue &word : step.value(u"arguments"_s).toArray())
            list.append(list.endsWith(u"-passlogfile"_s) ? u"P"_s : word.toString());
    }
    return commands;
}

} // namespace

class CliPresetConvertTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void theOutputIsWhatThePresetsSay_data()
    {
        QTest::addColumn<QString>("audioRule");
        QTest::addColumn<QString>("subtitleRule");
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QStringList>("streams");
        QTest::newRow("a phone")
            << u"English/*/*"_s << u"German/*"_s << u"iPhone 4"_s
            << u"video=1 rate=400 width=320 stereo=1 surround=2 surroundRate=384 addStereo"_s << u"film.m4v"_s
            << QStringList{u"h264 320"_s, u"aac 2 eng"_s, u"aac 2 eng"_s, u"aac 6 eng"_s, u"mov_text deu"_s};
        QTest::newRow("everything in two passes")
            << u"all"_s << u"all"_s << u"MKV"_s << u"video=2 rate=300 width=320"_s << u"film (2).mkv"_s
            << QStringList{u"h264 320"_s,   u"aac 2 deu"_s,  u"aac 1 eng"_s, u"ac3 6 eng"_s, u"ac3 2 fra"_s,
                           u"flac 6 und"_s, u"subrip eng"_s, u"ass deu"_s,   u"subrip fra"_s};
        QTest::newRow("an AVI") << u"*/ac3/*"_s << u"all"_s << u"AVI"_s
                                << u"video=1 rate=400 width=320 stereo=1 surround=3 surroundRate=Original"_s
                                << u"film.avi"_s
                                << QStringList{u"mpeg4 320"_s, u"aac 2 und"_s, u"ac3 6 und"_s};
        QTest::newRow("three outputs of one track")
            << u"#1"_s << u"none"_s << u"Xbox"_s
            << u"surround=3 surroundRate=Original addStereo keepSurround"_s << u"film.mp4"_s
            << QStringList{u"h264 2048"_s, u"aac 2 eng"_s, u"ac3 6 eng"_s, u"ac3 6 eng"_s};
        // The rate of FLAC is unknown, so none is asked for, and the encoder takes its own.
        QTest::newRow("an unknown original rate, AAC")
            << u"*/flac/*"_s << u"none"_s << u"General"_s << u"surround=2 surroundRate=Original"_s
            << u"film.m4v"_s << QStringList{u"h264 2048"_s, u"aac 6 und"_s};
        QTest::newRow("an unknown original rate, AC3")
            << u"*/flac/*"_s << u"none"_s << u"MKV"_s << u"surround=3 surroundRate=Original keepStereo"_s
            << u"film (2).mkv"_s << QStringList{u"h264 2048"_s, u"ac3 6 und"_s, u"flac 6 und"_s};
        QTest::newRow("burned in two passes before scaling")
            << u"#2"_s << u"*/ass"_s << u"iPod (All non-Touch)"_s << u"video=2 rate=300 burn"_s
            << u"film.m4v"_s << QStringList{u"h264 720"_s, u"aac 2 deu"_s};
    }

    void theOutputIsWhatThePresetsSay()
    {
        QFETCH(QString, audioRule);
        QFETCH(QString, subtitleRule);
        QFETCH(QString, device);
        QFETCH(QString, settings);
        QFETCH(QString, output);
        m_cli->clip(support::manyTracksMkv(), u"film.mkv"_s);
        storePresets(*m_cli, {trackPreset(u"Rule"_s, audioRule, subtitleRule)},
                     {settingsPreset(u"Set"_s, device, settings)});
        const auto run =
            m_cli->run(words(u"convert film.mkv --track-preset Rule --settings-preset Set --no-keep-logs"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.lines(), QStringList{m_cli->media(output)});
        QTEST(shownStreams(m_cli->media(output)), "streams");
        QCOMPARE(m_cli->mediaNames().size(), 2);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void aPresetBurnsTheOneSubtitleThatIsChosen_data()
    {
        QTest::addColumn<QString>("subtitleRule");
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<bool>("isDrawn");
        const QString reencoded = u"video=1 rate=300 burn"_s;
        QTest::newRow("none") << u"none"_s << reencoded << QString() << false;
        QTest::newRow("one") << u"#1"_s << reencoded << QString() << true;
        QTest::newRow("another") << u"*/ass"_s << reencoded << QString() << true;
        QTest::newRow("two") << u"all"_s << reencoded << u"exactly one chosen subtitle track; 2 are"_s
                             << false;
        QTest::newRow("none into a copy") << u"none"_s << u"burn"_s << QString() << false;
        QTest::newRow("one into a copy") << u"#1"_s << u"burn"_s << u"re-encoded"_s << false;
        QTest::newRow("two into a copy") << u"all"_s << u"burn"_s << u"exactly one"_s << false;
    }

    void aGuessForNoDeviceIsRefused()
    {
        m_cli->clip(support::blackMkv(), u"black.mkv"_s);
        storePresets(*m_cli, {trackPreset(u"Rule"_s, u"#1"_s)},
                     {settingsPreset(u"Set"_s, u"General"_s, u"video=3"_s)});
        const auto run =
            m_cli->run(words(u"convert black.mkv --track-preset Rule --settings-preset Set --quiet"_s));
        QCOMPARE(run.status, 64);
        QVERIFY2(run.said().contains(u"A best guess needs a device, as \"General\""_s),
                 run.error.constData());
        QCOMPARE(m_cli->mediaNames(), QStringList{u"black.mkv"_s});
    }

    void aPresetBurnsTheOneSubtitleThatIsChosen()
    {
        QFETCH(QString, subtitleRule);
        QFETCH(QString, settings);
        QFETCH(QString, refusal);
        QFETCH(bool, isDrawn);
        m_cli->clip(support::blackMkv(), u"black.mkv"_s);
        storePresets(*m_cli, {trackPreset(u"Rule"_s, u"#1"_s, subtitleRule)},
                     {settingsPreset(u"Set"_s, u"General"_s, settings)});
        const auto run = m_cli->run(
            words(u"convert black.mkv --track-preset Rule --settings-preset Set --no-keep-logs --quiet"_s));
        QCOMPARE(run.status, refusal.isNull() ? 0 : 2);
        QVERIFY2(run.said().contains(refusal), run.error.constData());
        if (!refusal.isNull()) {
            QVERIFY2(run.saidOneSentence() && run.said().startsWith(m_cli->media(u"black.mkv: "_s)),
                     run.error.constData());
            QCOMPARE(m_cli->mediaNames(), QStringList{u"black.mkv"_s});
            return;
        }
        QCOMPARE(m_cli->mediaNames(), QStringList({u"black.m4v"_s, u"black.mkv"_s}));
        QCOMPARE(shownStreams(m_cli->media(u"black.m4v"_s)), QStringList({u"h264 320"_s, u"aac 2 und"_s}));
        const int brightest = support::brightestAt(m_cli->media(u"black.m4v"_s), 2);
        QVERIFY2(isDrawn ? brightest > 160 : brightest < 40, qPrintable(QString::number(brightest)));
    }

    void anAviOfAPresetLeavesSubtitlesOutSilently()
    {
        m_cli->clip(support::fullMkv(), u"full.mkv"_s);
        storePresets(*m_cli, {trackPreset(u"Rule"_s, u"#1"_s, u"all"_s)},
                     {settingsPreset(u"Set"_s, u"AVI"_s, u"video=1 rate=300"_s)});
        const QStringList line =
            words(u"convert full.mkv --settings-preset Set --no-keep-logs --quiet --force"_s);
        const auto byRule = m_cli->run(line + words(u"--track-preset Rule"_s));
        QVERIFY2(byRule.status == 0 && byRule.error.isEmpty(), byRule.error.constData());
        QCOMPARE(shownStreams(m_cli->media(u"full.avi"_s)), QStringList({u"mpeg4 320"_s, u"ac3 6 und"_s}));
        const auto byHand = m_cli->run(line + words(u"--tracks 0,1,3"_s)); // asked for by name
        QCOMPARE(byHand.status, 1);
        QVERIFY2(byHand.said().contains(u"track 3 was left out"_s), byHand.error.constData());
    }

    void aPresetThatTakesNoVideoConvertsNothing()
    {
        m_cli->clip(support::fullMkv(), u"full.mkv"_s);
        QJsonObject rule = trackPreset(u"Rule"_s, u"#1"_s);
        rule.insert(u"pSelectedVideoTrack"_s, u"0"_s);
        storePresets(*m_cli, {rule}, {});
        const auto run = m_cli->run(words(u"convert full.mkv --track-preset Rule"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.saidOneSentence() && run.said().contains(u"0 are chosen"_s), run.error.constData());
        const auto extraction = m_cli->run({u"convert"_s, u"full.mkv"_s, u"--track-preset"_s, u"Rule"_s,
                                            u"--settings-preset"_s, u"Extract Tracks"_s, u"--quiet"_s});
        QCOMPARE(extraction.lines(), QStringList{m_cli->media(u"full.mkv.stream1.ac3"_s)});
    }

    void extractTracksExtracts()
    {
        m_cli->clip(support::fullMkv(), u"full.mkv"_s);
        storePresets(*m_cli, {trackPreset(u"Rule"_s, u"#2"_s, u"all"_s)}, {});
        const auto run = m_cli->run({u"convert"_s, u"full.mkv"_s, u"--settings-preset"_s, u"Extract Tracks"_s,
                                     u"--track-preset"_s, u"Rule"_s, u"--json"_s, u"--no-keep-logs"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        for (const QJsonObject &event : run.objects())
            QCOMPARE(event.value(u"jobType"_s).toString(), u"MKV Track Extraction"_s);
        QCOMPARE(m_cli->mediaNames(),
                 QStringList({u"full.mkv"_s, u"full.mkv.stream0.h264"_s, u"full.mkv.stream2.aac"_s,
                              u"full.mkv.stream3.srt"_s, u"full.mkv.stream4.ass"_s}));
    }

    void extractTracksTakesTheTracksOfTheCommandLine_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QStringList>("outputs");
        QTest::newRow("none given: the first ones")
            << QString()
            << QStringList{u"full.mkv.stream0.h264"_s, u"full.mkv.stream1.ac3"_s, u"full.mkv.stream3.srt"_s};
        QTest::newRow("some") << u"--tracks 1,4"_s
                              << QStringList{u"full.mkv.stream1.ac3"_s, u"full.mkv.stream4.ass"_s};
        QTest::newRow("no video needed") << u"--tracks 2"_s << QStringList{u"full.mkv.stream2.aac"_s};
    }

    void extractTracksTakesTheTracksOfTheCommandLine()
    {
        QFETCH(QString, options);
        QFETCH(QStringList, outputs);
        m_cli->clip(support::fullMkv(), u"full.mkv"_s);
        const auto run = m_cli->run(QStringList{u"convert"_s, u"full.mkv"_s, u"--settings-preset"_s,
                                                u"Extract Tracks"_s, u"--dry-run"_s, u"--json"_s} +
                                    options.split(u' ', Qt::SkipEmptyParts));
        QVERIFY2(run.status == 0, run.error.constData());
        QStringList paths;
        for (const QString &name : outputs)
            paths.append(m_cli->media(name));
        QCOMPARE(commandsOf(run).keys(), paths);
    }

    void extractTracksNeedsAnMkvAndATrack()
    {
        m_cli->clip(support::fullMkv(), u"full.mkv"_s);
        m_cli->clip(support::textMp4(), u"text.mp4"_s);
        storePresets(*m_cli, {trackPreset(u"Nothing"_s, u"none"_s)}, {});
        const QStringList extraction{u"--settings-preset"_s, u"Extract Tracks"_s, u"--quiet"_s,
                                     u"--no-keep-logs"_s};
        const auto run = m_cli->run(words(u"convert text.mp4 full.mkv --tracks 1"_s) + extraction);
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().startsWith(m_cli->media(u"text.mp4: "_s)) && run.said().contains(u"MKV"_s) &&
                     run.saidOneSentence(),
                 run.error.constData());
        QCOMPARE(m_cli->mediaNames(), QStringList({u"full.mkv"_s, u"full.mkv.stream1.ac3"_s, u"text.mp4"_s}));
        const auto nothing = m_cli->run(words(u"convert full.mkv --track-preset Manual"_s) + extraction);
        QCOMPARE(nothing.status, 2);
        QVERIFY2(nothing.said().contains(u"at least one track"_s), nothing.error.constData());
    }

    void extractTracksAllowsNoConversionChoices_data()
    {
        QTest::addColumn<QString>("option");
        for (const QString &option :
             {u"--device=PS3"_s, u"--kind=mp4"_s, u"--video=1pass"_s, u"--video-bitrate=300"_s,
              u"--width=100"_s, u"--audio=1=passthru"_s, u"--subtitles=mux"_s, u"--add=lines.srt"_s})
            QTest::newRow(qPrintable(option)) << option;
    }

    void extractTracksAllowsNoConversionChoices()
    {
        QFETCH(QString, option);
        m_cli->clip(support::srtFile(), u"lines.srt"_s);
        const auto run = m_cli->run(
            {u"convert"_s, u"full.mkv"_s, u"--settings-preset"_s, u"Extract Tracks"_s, option, u"--json"_s});
        QCOMPARE(run.status, 64);
        QVERIFY2(run.output.isEmpty() && run.saidOneSentence(), run.error.constData());
        QVERIFY2(run.said().contains(option.section(u'=', 0, 0) + u" has no place"_s), run.error.constData());
        QCOMPARE(m_cli->mediaNames(), QStringList{u"lines.srt"_s});
    }

    void manualForBothLeavesEverythingToTheCommandLine()
    {
        m_cli->clip(support::fullMkv(), u"full.mkv"_s);
        const QStringList manual =
            words(u"convert full.mkv --track-preset Manual --settings-preset Manual --dry-run"_s);
        const auto nothing = m_cli->run(manual);
        QCOMPARE(nothing.status, 2);
        QVERIFY2(nothing.said().contains(u"0 are chosen"_s), nothing.error.constData());
        const QStringList choices =
            words(u"--tracks 0,2,3 --device PS3 --video 1pass --width 100 --audio 2=aac:2:96"_s);
        const auto byHand = m_cli->run(manual + choices);
        QVERIFY2(byHand.status == 0, byHand.error.constData());
        QCOMPARE(byHand.output, m_cli->run(words(u"convert full.mkv --dry-run"_s) + choices).output);
        const auto copies = m_cli->run(manual + words(u"--tracks 0,2,3"_s));
        QVERIFY(!copies.output.isEmpty());
        QCOMPARE(copies.output, m_cli->run(words(u"convert full.mkv --dry-run --tracks 0,2,3"_s)).output);
    }

    void noFileTakesAnythingFromTheOneBefore()
    {
        storePresets(*m_cli, {trackPreset(u"Rule"_s, u"first of: German/*/*; #1"_s, u"French/*; */srt"_s)},
                     {settingsPreset(u"Set"_s, u"iPhone 4"_s,
                                     u"video=2 width=300 stereo=1 surround=2 surroundRate=Original addStereo "
                                     "keepStereo"_s)});
        const QStringList films{u"film.mkv"_s, u"full.mkv"_s, u"text.mp4"_s, u"wide.mkv"_s};
        m_cli->clip(support::manyTracksMkv(), films.at(0));
        m_cli->clip(support::fullMkv(), films.at(1));
        m_cli->clip(support::textMp4(), films.at(2));
        m_cli->clip(support::wideMkv(), films.at(3));
        QMap<QString, QStringList> alone;
        for (const QString &film : films)
            alone.insert(commandsOf(converted({film})));
        QCOMPARE(alone.size(), 4);
        for (const QStringList &order : {films,
                                         {films.at(3), films.at(2), films.at(1), films.at(0)},
                                         {films.at(2), films.at(0), films.at(3), films.at(1)}}) {
            QCOMPARE(commandsOf(converted(order)), alone);
        }
    }

    void aFileThatFailsLeavesNothingToTheNext()
    {
        storePresets(*m_cli, {trackPreset(u"Rule"_s, u"English/*/*"_s, u"English/*"_s)},
                     {settingsPreset(u"Set"_s, u"General"_s, u"video=1 rate=300 width=160 surround=1"_s)});
        m_cli->clip(support::manyTracksMkv(), u"film.mkv"_s);
        m_cli->clip(support::vp9Mkv(), u"unknown.mkv"_s);
        m_cli->clip(support::audioOnly(), u"song.m4a"_s);
        m_cli->clip(support::textMp4(), u"text.mp4"_s);
        const auto run =
            m_cli->run(words(u"convert film.mkv unknown.mkv song.m4a gone.mkv text.mp4 --track-preset "
                             "Rule --settings-preset Set --no-keep-logs --quiet"_s));
        QCOMPARE(run.status, 2);
        QCOMPARE(run.lines(), QStringList({m_cli->media(u"film.m4v"_s), m_cli->media(u"text.m4v"_s)}));
        for (const auto &part : {u"unknown.mkv: track not identified"_s, u"song.m4a: A conversion needs"_s,
                                 u"gone.mkv: not a video"_s})
            QVERIFY2(run.said().contains(part), run.error.constData());
        QCOMPARE(shownStreams(m_cli->media(u"film.m4v"_s)),
                 QStringList({u"h264 160"_s, u"aac 2 eng"_s, u"aac 1 eng"_s, u"mov_text eng"_s}));
        QCOMPARE(shownStreams(m_cli->media(u"text.m4v"_s)), QStringList({u"h264 160"_s, u"mov_text eng"_s}));
    }

private:
    CliFixture::Run converted(const QStringList &films) const
    {
        return m_cli->run(QStringList{u"convert"_s} + films +
                          words(u"--track-preset Rule --settings-preset Set --dry-run --json"_s));
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliPresetConvertTest)
#include "CliPresetConvertTest.moc"

// What stored presets make of one film of many tracks: the exact commands of "convert --dry-run", row by row,
// of which the short form draws some.
#include "support/ManyTracksRun.h"
#include "support/PresetRecords.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class CliPresetTableTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_fixture.videoRate().toInt() > 0); }

    /// Every row passes video and audio through, muxes subtitles and is for no device in particular.
    void trackPresets_data()
    {
        QTest::addColumn<QString>("audioRule");
        QTest::addColumn<QString>("subtitleRule");
        QTest::addColumn<QString>("audio");
        QTest::addColumn<QString>("subtitles");
        const auto row = [](const char *name, const QString &audioRule, const QString &subtitleRule,
                            const QString &audio, const QString &subtitles) {
            if (isRun())
                QTest::newRow(name) << audioRule << subtitleRule << audio << subtitles;
        };
        const QString none = u"none"_s;
        // AAC of at most two channels comes first, whatever its place in the film.
        row("nothing", none, none, {}, {});
        row("everything", u"all"_s, u"all"_s, u"2 3 1 4 5"_s, u"6 7 8"_s);
        row("one number each", u"#2"_s, u"#2"_s, u"2"_s, u"7"_s);
        row("the last number there is", u"#5"_s, u"#3"_s, u"5"_s, u"8"_s);
        row("numbers beyond the tracks", u"#6"_s, u"#4"_s, {}, {});
        row("a language", u"English/*/*"_s, u"English/*"_s, u"3 1"_s, u"6"_s);
        row("no language", u"undetermined/*/*"_s, u"undetermined/*"_s, u"5"_s, {});
        row("a language that nothing has", u"Italian/*/*"_s, u"Italian/*"_s, {}, {});
        row("a language in small letters", u"english/*/*"_s, u"german/*"_s, {}, {});
        row("a codec", u"*/ac3/*"_s, u"*/srt"_s, u"1 4"_s, u"6 8"_s);
        row("a codec in capitals", u"*/AC3/*"_s, u"*/SRT"_s, {}, {});
        row("the beginning of a codec", u"*/ac/*"_s, u"*/s"_s, {}, {});
        row("surround", u"*/*/surround"_s, none, u"1 5"_s, {});
        row("stereo, mono too", u"*/*/stereo"_s, none, u"2 3 4"_s, {});
        row("language and codec", u"English/aac/*"_s, u"French/srt"_s, u"3"_s, u"8"_s);
        row("language and codec that don't meet", u"German/ac3/*"_s, u"German/srt"_s, {}, {});
        row("language and channels", u"English/*/surround"_s, none, u"1"_s, {});
        row("codec and channels", u"*/ac3/stereo"_s, none, u"4"_s, {});
        row("all three", u"English/aac/stereo"_s, none, u"3"_s, {});
        row("all three, one wrong", u"English/aac/surround"_s, none, {}, {});
        row("any properties", u"*/*/*"_s, u"*/*"_s, u"2 3 1 4 5"_s, u"6 7 8"_s);
        row("channels of no known kind", u"*/*/Quadro"_s, none, {}, {});
        row("channels of no known kind beside a codec", u"*/ac3/Quadro"_s, none, u"1 4"_s, {});
        row("a choice of no known kind", u"Some; #4"_s, u"Some; #1"_s, u"4"_s, u"6"_s);
        row("all apply", u"English/*/*; #2"_s, u"English/*; #2"_s, u"2 3 1"_s, u"6 7"_s);
        row("the first that chooses counts", u"first of: English/*/*; #2"_s, u"first of: English/*; #2"_s,
            u"3 1"_s, u"6"_s);
        row("those that choose nothing are passed over", u"first of: Italian/*/*; #9; none; #4; #1"_s,
            u"first of: */pgs; #7; */ass; #1"_s, u"4"_s, u"7"_s);
        row("a number ends the list", u"first of: #3; all"_s, u"first of: #3; all"_s, u"3"_s, u"8"_s);
        row("each list has a mode of its own", u"first of: #4; #1"_s, u"#2; #1"_s, u"4"_s, u"6 7"_s);
        row("and the other way round", u"#4; #1"_s, u"first of: #2; #1"_s, u"1 4"_s, u"7"_s);
        row("three filters", u"French/ac3/stereo; */flac/*; #3"_s, u"#3; French/*; German/ass"_s, u"3 4 5"_s,
            u"7 8"_s);
        row("chosen twice is written once", u"#1; English/*/*; */ac3/*"_s, u"#1; */srt"_s, u"3 1 4"_s,
            u"6 8"_s);
        row("audio numbers count audio alone", u"#1"_s, u"#1"_s, u"1"_s, u"6"_s);
    }

    void trackPresets()
    {
        QFETCH(QString, audioRule);
        QFETCH(QString, subtitleRule);
        QFETCH(QString, audio);
        QFETCH(QString, subtitles);
        QStringList copies;
        for (const QString &stream : audio.split(u' ', Qt::SkipEmptyParts))
            copies.append(stream + u":copy"_s);
        const QString difference =
            m_fixture.difference(support::trackPreset(u"Rule"_s, audioRule, subtitleRule),
                                 support::settingsPreset(u"Bundle"_s, u"General"_s),
                                 {u"General"_s, 1, u"copy"_s, copies.join(u' '), subtitles});
        QVERIFY2(difference.isNull(), qPrintable(difference));
    }

    void audioActions_data()
    {
        QTest::addColumn<QString>("tracks");
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("audio");
        const auto row = [](const char *name, const QString &tracks, const QString &settings,
                            const QString &audio) {
            if (isRun())
                QTest::newRow(name) << tracks << settings << audio;
        };
        // Streams 1 and 5 are surround, 2 and 4 stereo, 3 is mono.
        row("stereo to AAC", u"#2"_s, u"stereo=1 stereoRate=192"_s, u"2:aac:2:192"_s);
        row("mono to AAC", u"#3"_s, u"stereo=1 stereoRate=128"_s, u"3:aac:2:128"_s);
        row("stereo at the original rate is 160", u"#4"_s, u"stereo=1 stereoRate=Original"_s,
            u"4:aac:2:160"_s);
        row("stereo has no say about surround", u"#1"_s, u"stereo=1 stereoRate=192"_s, u"1:copy"_s);
        row("surround has no say about stereo", u"#2"_s, u"surround=3 addStereo"_s, u"2:copy"_s);
        row("stereo AAC and the source", u"#2"_s, u"stereo=1 keepStereo"_s, u"2:aac:2:160 2:copy"_s);
        row("the other flag keeps stereo too", u"#4"_s, u"stereo=1 keepSurround"_s, u"4:aac:2:160 4:copy"_s);
        row("a copy is kept once", u"#2"_s, u"keepStereo keepSurround"_s, u"2:copy"_s);
        row("a surround copy is kept once", u"#1"_s, u"keepSurround"_s, u"1:copy"_s);
        row("surround to stereo", u"#1"_s, u"surround=1 stereoRate=224"_s, u"1:aac:2:224"_s);
        row("surround to stereo makes no second one", u"#1"_s, u"surround=1 addStereo"_s, u"1:aac:2:160"_s);
        row("surround to stereo at the original rate", u"#1"_s, u"surround=1 stereoRate=Original"_s,
            u"1:aac:2:160"_s);
        row("surround to stereo and the source", u"#5"_s, u"surround=1 keepStereo"_s,
            u"5:aac:2:160 5:copy"_s);
        row("surround to AAC", u"#1"_s, u"surround=2 surroundRate=512"_s, u"1:aac:6:512"_s);
        row("surround to AAC at its own rate", u"#1"_s, u"surround=2 surroundRate=Original"_s,
            u"1:aac:6:384"_s);
        row("surround to AAC at an unknown rate", u"#5"_s, u"surround=2 surroundRate=Original"_s,
            u"5:aac:6:0"_s);
        row("surround to AC3", u"#5"_s, u"surround=3 surroundRate=640"_s, u"5:ac3:6:640"_s);
        row("a surround copy and stereo", u"#1"_s, u"addStereo stereoRate=256"_s, u"1:aac:2:256 1:copy"_s);
        row("surround AAC behind its stereo", u"#1"_s, u"surround=2 addStereo"_s,
            u"1:aac:2:160 1:aac:6:448"_s);
        row("three outputs of one track", u"#1"_s,
            u"surround=3 surroundRate=Original addStereo stereoRate=Original keepSurround"_s,
            u"1:aac:2:160 1:ac3:6:384 1:copy"_s);
        row("actions of no known number", u"#1; #2"_s, u"stereo=7 surround=9 addStereo"_s, u"1:aac:2:160"_s);
        row("nothing but what is kept", u"#1; #2"_s, u"stereo=2 surround=4 keepStereo"_s, u"2:copy 1:copy"_s);
        row("no output at all", u"#1; #2"_s, u"stereo=2 surround=4"_s, {});
        row("rates of their own", u"all"_s, u"stereo=1 stereoRate=224 surround=3 surroundRate=320"_s,
            u"2:aac:2:224 3:aac:2:224 4:aac:2:224 1:ac3:6:320 5:ac3:6:320"_s);
        row("everything of every track", u"all"_s, u"stereo=1 surround=2 addStereo keepStereo"_s,
            u"1:aac:2:160 2:aac:2:160 2:copy 3:aac:2:160 3:copy 4:aac:2:160 5:aac:2:160 "
            "1:aac:6:448 5:aac:6:448 1:copy 4:copy 5:copy"_s);
        row("surround of two tracks, each at its own rate", u"*/*/surround"_s,
            u"surround=3 surroundRate=Original keepSurround"_s, u"1:ac3:6:384 5:ac3:6:0 1:copy 5:copy"_s);
    }

    void audioActions()
    {
        QFETCH(QString, tracks);
        QFETCH(QString, settings);
        QFETCH(QString, audio);
        const QString difference =
            m_fixture.difference(support::trackPreset(u"Rule"_s, tracks),
                                 support::settingsPreset(u"Bundle"_s, u"General"_s, settings),
                                 {u"General"_s, 1, u"copy"_s, audio, {}});
        QVERIFY2(difference.isNull(), qPrintable(difference));
    }

    /// Every row takes the first stereo track and, where it says one, a subtitle.
    void videoAndSubtitles_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("subtitleRule");
        QTest::addColumn<QString>("video");
        QTest::addColumn<QString>("subtitles");
        const auto row = [](const char *name, const QString &device, const QString &settings,
                            const QString &video) {
            if (isRun())
                QTest::newRow(name) << device << settings << u"none"_s << video << QString();
        };
        const auto withSubtitles = [](const char *name, const QString &device, const QString &settings,
                                      const QString &rule, const QString &video, const QString &subtitles) {
            if (isRun())
                QTest::newRow(name) << device << settings << rule << video << subtitles;
        };
        const QString general = u"General"_s;
        row("copied", general, u"video=0"_s, u"copy"_s);
        row("a copy has no numbers", u"PS3"_s, u"video=0 rate=700 width=320 fps=25"_s, u"copy"_s);
        row("one pass", general, u"video=1 rate=1500"_s, u"1500k"_s);
        row("one pass at the film's rate", general, u"video=1"_s, u"SOURCEk"_s);
        row("two passes", general, u"video=2 rate=800"_s, u"twice 800k"_s);
        row("two passes at the film's rate, narrower", general, u"video=2 width=720"_s,
            u"twice w720 SOURCEk"_s);
        row("a frame rate changes nothing", general, u"video=1 rate=900 fps=25"_s, u"900k"_s);
        row("narrower", general, u"video=1 rate=900 width=640"_s, u"w640 900k"_s);
        row("never wider", general, u"video=1 rate=900 width=4000"_s, u"900k"_s);
        row("as wide as it is", general, u"video=1 rate=900 width=2048"_s, u"900k"_s);
        row("one pixel narrower", general, u"video=1 rate=900 width=2047"_s, u"w2047 900k"_s);
        row("an old player", u"iPod (All non-Touch)"_s, u"video=1 rate=3000"_s, u"L30 w720 1500k"_s);
        row("at its limits", u"iPhone (3 and Earlier)"_s, u"video=1 rate=1500 width=720"_s,
            u"L30 w720 1500k"_s);
        row("one above them", u"iPod Touch (3 and Earlier)"_s, u"video=1 rate=1501 width=721"_s,
            u"L30 w720 1500k"_s);
        row("below them", u"iPod (All non-Touch)"_s, u"video=1 rate=1499 width=719"_s, u"L30 w719 1499k"_s);
        row("a width limit alone", u"iPhone 4"_s, u"video=1 rate=30000 width=1920"_s, u"L31 w1280 30000k"_s);
        row("two levels", u"Apple TV (3 and Later)"_s, u"video=1 rate=25000"_s, u"L41 L40 w1920 20000k"_s);
        row("two levels in two passes", u"Apple TV (3 and Later)"_s, u"video=2 rate=25000 width=1280"_s,
            u"twice L41 L40 w1280 20000k"_s);
        row("a rate limit alone", u"PS3"_s, u"video=1 rate=25000"_s, u"L41 15000k"_s);
        row("an extension of its own", u"Xbox"_s, u"video=1 rate=15001 width=1000"_s, u"L41 w1000 15000k"_s);
        row("an unknown device", u"Apple TV"_s, u"video=1 rate=25000"_s, u"25000k"_s);
        row("Matroska", u"MKV"_s, u"video=1 rate=25000"_s, u"25000k"_s);
        row("AVI", u"AVI"_s, u"video=1 rate=25000 width=600"_s, u"w600 25000k"_s);
        withSubtitles("subtitles as text", u"iPhone 4"_s, u"video=0"_s, u"all"_s, u"copy"_s, u"6 7 8"_s);
        withSubtitles("subtitles as they are", u"MKV"_s, u"video=0"_s, u"all"_s, u"copy"_s, u"6 7 8"_s);
        withSubtitles("subtitles in pass two", u"MKV"_s, u"video=2 rate=500"_s, u"#1; #3"_s, u"twice 500k"_s,
                      u"6 8"_s);
        withSubtitles("an AVI takes none", u"AVI"_s, u"video=0"_s, u"all"_s, u"copy"_s, {});
        withSubtitles("an AVI takes none in two passes", u"AVI"_s, u"video=2 rate=500"_s, u"#1"_s,
                      u"twice 500k"_s, {});
        withSubtitles("an action of no known name muxes", general, u"sub=Draw"_s, u"#2"_s, u"copy"_s, u"7"_s);
        withSubtitles("burned", general, u"video=1 rate=900 burn"_s, u"#1"_s, u"900k"_s, u"burn 6"_s);
        withSubtitles("burned before scaling", general, u"video=1 rate=900 width=640 burn"_s, u"#3"_s,
                      u"w640 900k"_s, u"burn 8"_s);
        withSubtitles("burned in two passes", u"MKV"_s, u"video=2 rate=900 burn"_s, u"*/ass"_s,
                      u"twice 900k"_s, u"burn 7"_s);
        withSubtitles("burned in two passes before scaling", u"iPod (All non-Touch)"_s,
                      u"video=2 rate=900 burn"_s, u"#1"_s, u"twice L30 w720 900k"_s, u"burn 6"_s);
        withSubtitles("burned into an AVI", u"AVI"_s, u"video=1 rate=900 burn"_s, u"#1"_s, u"900k"_s,
                      u"burn 6"_s);
        withSubtitles("nothing to burn", general, u"video=1 rate=900 burn"_s, u"*/pgs"_s, u"900k"_s, {});
        withSubtitles("nothing to burn into a copy", general, u"video=0 burn"_s, u"none"_s, u"copy"_s, {});
    }

    void videoAndSubtitles()
    {
        QFETCH(QString, device);
        QFETCH(QString, settings);
        QFETCH(QString, subtitleRule);
        QFETCH(QString, video);
        QFETCH(QString, subtitles);
        const int passes = video.startsWith(u"twice "_s) ? 2 : 1;
        const QString difference = m_fixture.difference(
            support::trackPreset(u"Rule"_s, u"#2"_s, subtitleRule),
            support::settingsPreset(u"Bundle"_s, device, settings),
            {device, passes, video.remove(u"twice "_s).replace(u"SOURCE"_s, m_fixture.videoRate()),
             u"2:copy"_s, subtitles});
        QVERIFY2(difference.isNull(), qPrintable(difference));
    }

    void everyRuleTogether()
    {
        const QString difference = m_fixture.difference(
            support::trackPreset(u"Rule"_s, u"first of: Italian/*/*; English/*/*; #2"_s, u"*/srt; #2"_s),
            support::settingsPreset(u"Bundle"_s, u"iPad (3 and Later)"_s,
                                    u"video=2 rate=20001 width=2000 stereo=1 stereoRate=Original surround=2 "
                                    "surroundRate=Original addStereo keepSurround"_s),
            {u"iPad (3 and Later)"_s, 2, u"L41 w1920 20000k"_s,
             u"1:aac:2:160 3:aac:2:160 3:copy 1:aac:6:384 1:copy"_s, u"6 7 8"_s});
        QVERIFY2(difference.isNull(), qPrintable(difference));
    }

    void nothingWasWritten()
    {
        QCOMPARE(m_fixture.cli().mediaNames(), QStringList({u"film.mkv"_s}));
        QVERIFY(m_fixture.cli().temporaryNames().isEmpty());
    }

private:
    /// Each rule of the presets has its unit test; here is that the command goes by them.
    static bool isRun() { return support::isDrawn(5); }

    support::ManyTracksFixture m_fixture;
};

TESSARAY_TEST(CliPresetTableTest)
#include "CliPresetTableTest.moc"

// Choices of the command line beside presets that say otherwise: the exact commands of "convert --dry-run".
#include "support/ManyTracksRun.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class CliHandChoicesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// The presets choose the first two audio tracks and the first subtitle for a PS3.
    void choicesByHandWin_data()
    {
        QTest::addColumn<QString>("settings"); // of the preset, instead of the usual ones
        QTest::addColumn<QString>("options");  // separated by ";"
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("video");
        QTest::addColumn<QString>("audio");
        QTest::addColumn<QString>("subtitles");
        const QString ps3 = u"PS3"_s;
        const QString video = u"L41 w640 700k"_s;
        const QString audio = u"2:aac:2:160 1:ac3:6:448"_s;
        const auto row = [&](const QString &options, const QString &device, const QString &pictures,
                             const QString &sounds, const QString &subtitles) {
            QTest::newRow(options.isEmpty() ? "nothing given" : qPrintable(options))
                << QString() << options << device << pictures << sounds << subtitles;
        };
        const auto beside = [](const char *name, const QString &settings, const QString &options,
                               const QString &device, const QString &pictures, const QString &sounds,
                               const QString &subtitles) {
            QTest::newRow(name) << settings << options << device << pictures << sounds << subtitles;
        };
        row({}, ps3, video, audio, u"6"_s);
        row(u"--device=iPhone 4"_s, u"iPhone 4"_s, u"L31 w640 700k"_s, audio, u"6"_s);
        row(u"--device=General"_s, u"General"_s, u"w640 700k"_s, audio, u"6"_s);
        row(u"--device=MKV"_s, u"MKV"_s, u"w640 700k"_s, audio, u"6"_s);
        row(u"--kind=mkv"_s, u"MKV"_s, u"w640 700k"_s, audio, u"6"_s);
        row(u"--kind=avi"_s, u"AVI"_s, u"w640 700k"_s, audio, {});
        row(u"--kind=mp4"_s, ps3, video, audio, u"6"_s);
        row(u"--device=Xbox;--kind=mp4"_s, u"Xbox"_s, video, audio, u"6"_s);
        row(u"--video=passthru"_s, ps3, u"copy"_s, audio, u"6"_s);
        row(u"--video=1pass"_s, ps3, video, audio, u"6"_s);
        row(u"--video=2pass"_s, ps3, u"twice "_s + video, audio, u"6"_s);
        row(u"--width=320"_s, ps3, u"L41 w320 700k"_s, audio, u"6"_s);
        row(u"--width=4000"_s, ps3, u"L41 700k"_s, audio, u"6"_s);
        row(u"--video-bitrate=900"_s, ps3, u"L41 w640 900k"_s, audio, u"6"_s);
        row(u"--video-bitrate=20000"_s, ps3, u"L41 w640 15000k"_s, audio, u"6"_s); // the device's limit stays
        row(u"--audio=1=passthru"_s, ps3, video, u"2:aac:2:160 1:copy"_s, u"6"_s);
        row(u"--audio=2=ac3:2:192,passthru"_s, ps3, video, u"2:copy 1:ac3:6:448 2:ac3:2:192"_s, u"6"_s);
        row(u"--audio=1=aac:6:320,aac:2:96;--audio=2=passthru"_s, ps3, video,
            u"1:aac:2:96 2:copy 1:aac:6:320"_s, u"6"_s);
        row(u"--subtitles=burn"_s, ps3, video, audio, u"burn 6"_s);
        row(u"--subtitles=mux"_s, ps3, video, audio, u"6"_s);
        row(u"--tracks=0,3,5,7"_s, ps3, video, u"3:aac:2:160 5:ac3:6:448"_s, u"7"_s);
        row(u"--tracks=8,0"_s, ps3, video, {}, u"8"_s);
        row(u"--tracks=0,4;--audio=4=passthru;--kind=mkv;--video=2pass;--width=100;--video-bitrate=50"_s,
            u"MKV"_s, u"twice w100 50k"_s, u"4:copy"_s, {});
        row(u"--track-preset=All Tracks"_s, ps3, video,
            u"2:aac:2:160 3:aac:2:160 4:aac:2:160 1:ac3:6:448 5:ac3:6:448"_s, u"6 7 8"_s);
        row(u"--settings-preset=Manual"_s, u"General"_s, u"copy"_s, u"2:copy 1:copy"_s, u"6"_s);
        beside("a copy is re-encoded", u"video=0 rate=700 width=640"_s, u"--video=1pass"_s, ps3,
               u"L41 SOURCEk"_s, u"2:copy 1:copy"_s, u"6"_s);
        beside("a copy is re-encoded at a rate", u"video=0"_s, u"--video=2pass;--video-bitrate=90"_s, ps3,
               u"twice L41 90k"_s, u"2:copy 1:copy"_s, u"6"_s);
        beside("two passes are one", u"video=2 rate=700"_s, u"--video=1pass"_s, ps3, u"L41 700k"_s,
               u"2:copy 1:copy"_s, u"6"_s);
        beside("what was to be burned is muxed", u"video=1 rate=700 burn"_s, u"--subtitles=mux"_s, ps3,
               u"L41 700k"_s, u"2:copy 1:copy"_s, u"6"_s);
        beside("what was to be burned into a copy is muxed", u"burn"_s, u"--subtitles=mux"_s, ps3, u"copy"_s,
               u"2:copy 1:copy"_s, u"6"_s);
        beside("a copy that is burned into is re-encoded", u"burn"_s, u"--video=1pass"_s, ps3,
               u"L41 SOURCEk"_s, u"2:copy 1:copy"_s, u"burn 6"_s);
        beside("a width for a copy", u"video=0"_s, u"--width=320"_s, ps3, u"copy"_s, u"2:copy 1:copy"_s,
               u"6"_s);
    }

    void choicesByHandWin()
    {
        QFETCH(QString, settings);
        QFETCH(QString, options);
        QFETCH(QString, device);
        QFETCH(QString, video);
        QFETCH(QString, audio);
        QFETCH(QString, subtitles);
        const QString usual = u"video=1 rate=700 width=640 stereo=1 surround=3"_s;
        const int passes = video.startsWith(u"twice "_s) ? 2 : 1;
        const QString difference = m_fixture.difference(
            support::trackPreset(u"Rule"_s, u"#1; #2"_s, u"#1"_s),
            support::settingsPreset(u"Bundle"_s, u"PS3"_s, settings.isNull() ? usual : settings),
            {device, passes, video.remove(u"twice "_s).replace(u"SOURCE"_s, m_fixture.videoRate()), audio,
             subtitles},
            options.split(u';', Qt::SkipEmptyParts));
        QVERIFY2(difference.isNull(), qPrintable(difference));
    }

    void theKindMp4LeavesAPresetsMatroska()
    {
        const QString difference = m_fixture.difference(
            support::trackPreset(u"Rule"_s, u"#2"_s), support::settingsPreset(u"Bundle"_s, u"MKV"_s),
            {u"General"_s, 1, u"copy"_s, u"2:copy"_s, {}}, {u"--kind=mp4"_s});
        QVERIFY2(difference.isNull(), qPrintable(difference));
    }

    void nothingWasWritten()
    {
        QCOMPARE(m_fixture.cli().mediaNames(), QStringList({u"film.mkv"_s}));
        QVERIFY(m_fixture.cli().temporaryNames().isEmpty());
    }

private:
    support::ManyTracksFixture m_fixture;
};

TESSARAY_TEST(CliHandChoicesTest)
#include "CliHandChoicesTest.moc"

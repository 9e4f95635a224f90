// Separate files that "convert --add" takes in as tracks, and what becomes of them.
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

/// Of every "-map" of the first command, its stream and what is done with it: "1 copy".
QStringList mapsOf(const CliFixture::Run &run)
{
    QStringList list;
    for (const QJsonValue &word : run.objects().value(0).value(u"arguments"_s).toArray())
        list.append(word.toString());
    QStringList maps;
    for (qsizetype i = 0; i + 3 < list.size(); ++i) {
        if (list.at(i) == u"-map"_s)
            maps.append(list.at(i + 1) + u' ' + list.at(i + 3));
    }
    return maps;
}

} // namespace

class CliAddTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->clip(support::fullMkv(), u"full.mkv"_s);
        m_cli->clip(support::srtFile(), u"new.srt"_s);
        m_cli->clip(support::assFile(), u"new.ass"_s);
        m_cli->clip(support::surroundAc3(), u"new.ac3"_s);
        m_cli->clip(support::audioOnly(), u"new.m4a"_s);
    }

    void addedFilesAreTaken_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QStringList>("maps"); // the first is the film's picture
        const QString copied = u"0:0 copy"_s;
        QTest::newRow("a subtitle") << u"--tracks 0 --add new.srt"_s << QStringList{copied, u"1 mov_text"_s};
        QTest::newRow("two subtitles") << u"--tracks 0 --add new.srt --add new.ass"_s
                                       << QStringList{copied, u"1 mov_text"_s, u"2 mov_text"_s};
        QTest::newRow("audio") << u"--tracks 0 --add new.ac3"_s << QStringList{copied, u"1 copy"_s};
        QTest::newRow("two of a kind, AAC first")
            << u"--tracks 0 --add new.ac3 --add new.m4a"_s << QStringList{copied, u"2 copy"_s, u"1 copy"_s};
        QTest::newRow("of both kinds, mixed")
            << u"--tracks 0 --add new.srt --add new.m4a --add new.ass --add new.ac3"_s
            << QStringList{copied, u"2 copy"_s, u"4 copy"_s, u"1 mov_text"_s, u"3 mov_text"_s};
        QTest::newRow("behind the film's own")
            << u"--tracks 0,2,4 --add new.m4a --add new.srt"_s
            << QStringList{copied, u"0:2 copy"_s, u"1 copy"_s, u"0:4 mov_text"_s, u"2 mov_text"_s};
        QTest::newRow("beside the first tracks")
            << u"--add new.srt"_s << QStringList{copied, u"0:1 copy"_s, u"0:3 mov_text"_s, u"1 mov_text"_s};
        QTest::newRow("their outputs") << u"--tracks 0 --add new.ac3 --audio +1=passthru,aac:2:96,ac3:2:192"_s
                                       << QStringList{copied, u"1 aac"_s, u"1 ac3"_s, u"1 copy"_s};
        QTest::newRow("the second one's outputs")
            << u"--tracks 0,1 --add new.srt --add new.ac3 --audio +2=mp3:2:128 --audio 1=aac:6:320"_s
            << QStringList{copied, u"0:1 aac"_s, u"2 libmp3lame"_s, u"1 mov_text"_s};
        QTest::newRow("into Matroska") << u"--tracks 0 --kind mkv --add new.ass --add new.ac3"_s
                                       << QStringList{copied, u"2 copy"_s, u"1 copy"_s};
        QTest::newRow("the same twice") << u"--tracks 0 --add new.srt --add new.srt"_s
                                        << QStringList{copied, u"1 mov_text"_s, u"1 mov_text"_s};
    }

    void addedFilesAreTaken()
    {
        QFETCH(QString, options);
        const auto run = m_cli->run(words(u"convert full.mkv --dry-run --json "_s + options));
        QVERIFY2(run.status == 0 && run.error.isEmpty(), run.error.constData());
        QTEST(mapsOf(run), "maps");
        QStringList inputs{u"full.mkv"_s};
        const QStringList given = words(options);
        for (qsizetype i = 0; i + 1 < given.size(); ++i) {
            if (given.at(i) == u"--add"_s)
                inputs.append(given.at(i + 1));
        }
        const QJsonArray arguments = run.objects().constFirst().value(u"arguments"_s).toArray();
        for (qsizetype i = 0; i < inputs.size(); ++i) {
            QCOMPARE(arguments.at(2 * i).toString(), u"-i"_s);
            QCOMPARE(arguments.at(2 * i + 1).toString(), m_cli->media(inputs.at(i)));
        }
    }

    void presetsSeeAddedFilesToo_data()
    {
        QTest::addColumn<QString>("audioRule");
        QTest::addColumn<QString>("subtitleRule");
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QStringList>("maps");
        const QString copied = u"0:0 copy"_s;
        // Two films' tracks: ac3 6ch English, aac 2ch German, dts; srt English, ass French. Added: ac3 6ch,
        // srt.
        QTest::newRow("taken whatever the rules say")
            << u"none"_s << u"none"_s << QString() << QStringList{copied, u"1 copy"_s, u"2 mov_text"_s};
        QTest::newRow("counted behind the film's own")
            << u"first of: #4; #1"_s << u"first of: #3; #1"_s << QString()
            << QStringList{copied, u"1 copy"_s, u"2 mov_text"_s};
        QTest::newRow("chosen by no language")
            << u"first of: undetermined/ac3/*; #2"_s << u"first of: undetermined/srt; #2"_s << QString()
            << QStringList{copied, u"1 copy"_s, u"2 mov_text"_s};
        QTest::newRow("beside what the rules choose")
            << u"German/*/*"_s << u"*/ass"_s << QString()
            << QStringList{copied, u"0:2 copy"_s, u"1 copy"_s, u"0:4 mov_text"_s, u"2 mov_text"_s};
        QTest::newRow("with the settings of a preset")
            << u"#2"_s << u"none"_s << u"stereo=1 surround=3 surroundRate=Original addStereo keepStereo"_s
            << QStringList{copied,     u"0:2 aac"_s, u"0:2 copy"_s,  u"1 aac"_s,
                           u"1 ac3"_s, u"1 copy"_s,  u"2 mov_text"_s};
    }

    void presetsSeeAddedFilesToo()
    {
        QFETCH(QString, audioRule);
        QFETCH(QString, subtitleRule);
        QFETCH(QString, settings);
        storePresets(*m_cli, {trackPreset(u"Rule"_s, audioRule, subtitleRule)},
                     {settingsPreset(u"Set"_s, u"General"_s, settings)});
        const auto run = m_cli->run(words(u"convert full.mkv --track-preset Rule --settings-preset Set --add "
                                          "new.ac3 --add new.srt --dry-run --json"_s));
        QVERIFY2(run.status == 0 && run.error.isEmpty(), run.error.constData());
        QTEST(mapsOf(run), "maps");
        if (settings.isEmpty())
            return;
        const QByteArray line = run.output;
        QVERIFY2(line.contains("\"-ab:a:3\",\"384k\",\"-ac:a:3\",\"6\""), line.constData()); // its own rate
        QVERIFY(!line.contains("dplii")); // what the film's own surround gets, an added file doesn't
    }

    void whatIsAddedIsInTheOutput_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QStringList>("streams");
        QTest::newRow("one of each kind")
            << u"--tracks 0,2 --add new.srt --add new.ass --add new.ac3 --add new.m4a"_s << u"full.m4v"_s
            << QStringList{u"h264 320"_s,  u"aac 2 deu"_s,    u"aac 2 und"_s,
                           u"ac3 6 und"_s, u"mov_text und"_s, u"mov_text und"_s};
        QTest::newRow("re-encoded in two passes")
            << u"--tracks 0 --video 2pass --video-bitrate 200 --width 160 --add new.ac3 --add new.srt "
               u"--audio "
               "+1=aac:2:96,passthru"_s
            << u"full.m4v"_s << QStringList{u"h264 160"_s, u"aac 2 und"_s, u"ac3 6 und"_s, u"mov_text und"_s};
        QTest::newRow("into Matroska in two passes")
            << u"--tracks 0,4 --kind mkv --video 2pass --video-bitrate 200 --add new.ass --add new.m4a"_s
            << u"full (2).mkv"_s << QStringList{u"h264 320"_s, u"aac 2 und"_s, u"ass fra"_s, u"ass und"_s};
        QTest::newRow("by presets")
            << u"--track-preset Rule --settings-preset Set --add new.ac3 --add new.srt"_s << u"full.m4v"_s
            << QStringList{u"h264 160"_s, u"aac 2 deu"_s, u"ac3 6 und"_s, u"mov_text und"_s};
    }

    void whatIsAddedIsInTheOutput()
    {
        QFETCH(QString, options);
        QFETCH(QString, output);
        storePresets(*m_cli, {trackPreset(u"Rule"_s, u"German/*/*"_s)},
                     {settingsPreset(u"Set"_s, u"PS3"_s, u"video=1 rate=200 width=160 stereo=1"_s)});
        const auto run = m_cli->run(words(u"convert full.mkv --no-keep-logs "_s + options));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.lines(), QStringList{m_cli->media(output)});
        QTEST(shownStreams(m_cli->media(output)), "streams");
        QCOMPARE(m_cli->mediaNames().size(), 5 + 1);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void anAddedSubtitleIsBurned_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("options");
        QTest::newRow("by hand") << u"new.srt"_s << u"--tracks 0,1 --subtitles burn --video 1pass"_s;
        QTest::newRow("in two passes, scaled")
            << u"new.ass"_s << u"--tracks 0 --subtitles burn --video 2pass --video-bitrate 200 --width 160"_s;
        QTest::newRow("by a preset") << u"new.ass"_s << u"--track-preset Rule --settings-preset Set"_s;
        QTest::newRow("with a bad name")
            << u"it's; [a] $b`c`, d\\e: f=g 100%.srt"_s << u"--tracks 0 --subtitles burn --video 1pass"_s;
    }

    void anAddedSubtitleIsBurned()
    {
        QFETCH(QString, name);
        QFETCH(QString, options);
        m_cli->clip(support::blackMkv(), u"black.mkv"_s);
        if (!QFile::exists(m_cli->media(name)))
            m_cli->clip(support::srtFile(), name);
        storePresets(*m_cli, {trackPreset(u"Rule"_s, u"#1"_s)},
                     {settingsPreset(u"Set"_s, u"General"_s, u"video=1 rate=200 burn"_s)});
        const QStringList before = m_cli->mediaNames();
        const auto run = m_cli->run(words(u"convert black.mkv --no-keep-logs "_s + options) +
                                    QStringList{u"--add"_s, name});
        QVERIFY2(run.status == 0, run.error.constData());
        QVERIFY(!support::codecsOf(m_cli->media(u"black.m4v"_s)).contains(u"mov_text"_s));
        const int brightest = support::brightestAt(m_cli->media(u"black.m4v"_s), 2);
        QVERIFY2(brightest > 160, qPrintable(QString::number(brightest)));
        QCOMPARE(m_cli->mediaNames().size(), before.size() + 1);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void burningNeedsOneSubtitleOfAll()
    {
        const auto run = m_cli->run(
            words(u"convert full.mkv --tracks 0,3 --add new.srt --subtitles burn --video 1pass"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"2 are chosen"_s), run.error.constData());
        QCOMPARE(m_cli->mediaNames().size(), 5);
    }

    void anAviWarnsOfAnAddedSubtitle()
    {
        const auto run =
            m_cli->run(words(u"convert full.mkv --kind avi --video 1pass --video-bitrate 200 --add "
                             "new.srt --add new.ac3 --tracks 0 --no-keep-logs"_s));
        QCOMPARE(run.status, 1);
        QVERIFY2(run.said().contains(u"new.srt was left out"_s), run.error.constData());
        QCOMPARE(support::codecsOf(m_cli->media(u"full.avi"_s)), u"mpeg4 ac3"_s);
    }

    void everyFilmOfACallGetsThem()
    {
        m_cli->clip(support::textMp4(), u"text.mp4"_s);
        m_cli->clip(support::vp9Mkv(), u"unknown.mkv"_s);
        const auto run =
            m_cli->run(words(u"convert full.mkv unknown.mkv text.mp4 --add new.ac3 --add new.srt "
                             "--audio +1=aac:2:96 --no-keep-logs --quiet"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().startsWith(m_cli->media(u"unknown.mkv"_s) +
                                       u": track not identified\nIts codec vp9 is one of the newer ones: "_s),
                 run.error.constData());
        QCOMPARE(shownStreams(m_cli->media(u"full.m4v"_s)),
                 QStringList(
                     {u"h264 320"_s, u"aac 2 und"_s, u"ac3 6 eng"_s, u"mov_text eng"_s, u"mov_text und"_s}));
        QCOMPARE(shownStreams(m_cli->media(u"text.m4v"_s)),
                 QStringList(
                     {u"h264 320"_s, u"aac 2 und"_s, u"aac 2 und"_s, u"mov_text eng"_s, u"mov_text und"_s}));
    }

private:
    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliAddTest)
#include "CliAddTest.moc"

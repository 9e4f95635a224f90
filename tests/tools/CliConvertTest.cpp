// The command "convert" with real films and tools: what it writes, tells and answers.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::codecsOf;
using support::streamsOf;
using support::words;

namespace {

QStringList eventsOf(const CliFixture::Run &run)
{
    QStringList events;
    for (const QJsonObject &object : run.objects())
        events.append(object.value(u"event"_s).toString());
    return events;
}

QJsonObject doneOf(const CliFixture::Run &run)
{
    for (const QJsonObject &object : run.objects()) {
        if (object.value(u"event"_s) == QJsonValue(u"done"_s))
            return object;
    }
    return {};
}

QString messageOf(const CliFixture::Run &run)
{
    return doneOf(run).value(u"message"_s).toString();
}

} // namespace

class CliConvertTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void withoutChoicesTheFirstTracksPassThrough()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"convert a.mkv"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.lines(), QStringList({m_cli->media(u"a.m4v"_s)}));
        QCOMPARE(codecsOf(m_cli->media(u"a.m4v"_s)), u"h264 ac3 mov_text"_s);
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.m4v"_s, u"a.mkv"_s, u"a.mkv.log"_s}));
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void whatBecameOfEveryTrackIsInTheEventAndInTheLog()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"--json --keep-logs convert a.mkv --tracks 0,2,3"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QStringList told;
        for (const QJsonValue &value : doneOf(run).value(u"tracks"_s).toArray()) {
            const QJsonObject track = value.toObject();
            QCOMPARE(track.size(), 14);
            QCOMPARE(track.value(u"source"_s).toString(), m_cli->media(u"a.mkv"_s));
            told.append(u"%1 %2 %3 %4"_s.arg(QString::number(track.value(u"index"_s).toInt()),
                                             track.value(u"codec"_s).toString(),
                                             track.value(u"became"_s).toString(),
                                             QFileInfo(track.value(u"output"_s).toString()).fileName()));
        }
        for (const QString &line : {u"0 h264 copied a.m4v"_s, u"1 ac3 leftOut "_s, u"2 aac copied a.m4v"_s,
                                    u"3 subrip reencoded a.m4v"_s, u"4 ass leftOut "_s, u"5 dts leftOut "_s})
            QVERIFY2(told.contains(line), qPrintable(told.join(u'\n')));
        QFile log(m_cli->media(u"a.mkv.log"_s));
        QVERIFY(log.open(QFile::ReadOnly));
        const QString text = QString::fromUtf8(log.readAll());
        QVERIFY(text.contains(u"audio 1 (ac3) of a.mkv: left out. It was not chosen.\n"_s));
        QVERIFY(text.contains(u"subtitle 3 (subrip) of a.mkv: re-encoded to mov_text into a.m4v"_s));
    }

    void choicesByHandAreCarriedOut()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run =
            m_cli->run(words(u"convert a.mkv --device PS3 --tracks 0,1,2,4 --video 1pass --video-bitrate 200 "
                             "--width 160 --audio 1=passthru,aac:2:96 --audio 2=ac3:2:192"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        const auto streams = streamsOf(m_cli->media(u"a.m4v"_s));
        QCOMPARE(codecsOf(m_cli->media(u"a.m4v"_s)), u"h264 aac ac3 ac3 mov_text"_s);
        QCOMPARE(streams.at(0).value(u"width"_s).toInt(), 160);
        QCOMPARE(streams.at(0).value(u"height"_s).toInt(), 120);
        QCOMPARE(streams.at(0).value(u"level"_s).toInt(), 41);
        QCOMPARE(streams.at(1).value(u"channels"_s).toInt(), 2); // AAC comes first, what was copied last
        QCOMPARE(streams.at(2).value(u"channels"_s).toInt(), 2);
        QCOMPARE(streams.at(3).value(u"channels"_s).toInt(), 6);
    }

    void aRunIsToldInOrder()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"convert a.mkv --video 1pass --video-bitrate 300 --json"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        const QStringList events = eventsOf(run);
        QVERIFY(events.size() > 3);
        QCOMPARE(events.first(2), QStringList({u"queued"_s, u"started"_s}));
        QCOMPARE(events.constLast(), u"done"_s);
        QCOMPARE(events.count(u"progress"_s), events.size() - 3);
        for (const QJsonObject &object : run.objects()) {
            QCOMPARE(object.value(u"job"_s).toInt(), 1);
            QCOMPARE(object.value(u"fileName"_s).toString(), u"a.mkv"_s);
            QCOMPARE(object.value(u"jobType"_s).toString(), u"MKV Conversion"_s);
            const bool isProgress = object.value(u"event"_s) == QJsonValue(u"progress"_s);
            QVERIFY(object.contains(u"step"_s) && object.contains(u"progress"_s));
            QCOMPARE(object.value(u"step"_s).isNull(), !isProgress);
            if (isProgress)
                QCOMPARE(object.value(u"step"_s).toString(), u"Video Conversion"_s);
        }
        QStringList whole{u"event"_s, u"fileName"_s, u"job"_s, u"jobType"_s, u"progress"_s, u"step"_s};
        QStringList measured =
            whole + QStringList{u"percent"_s,          u"elapsedSeconds"_s, u"leftSeconds"_s,
                                u"queueLeftSeconds"_s, u"speed"_s,          u"fps"_s};
        measured.sort();
        for (const QJsonObject &object : run.objects().first(events.size() - 1)) {
            const bool isProgress = object.value(u"event"_s) == QJsonValue(u"progress"_s);
            QCOMPARE(object.keys(), isProgress ? measured : whole);
        }
        whole << u"outcome"_s << u"message"_s << u"outputs"_s << u"tracks"_s << u"log"_s;
        whole.sort();
        QCOMPARE(doneOf(run).keys(), whole);
        QCOMPARE(doneOf(run).value(u"outcome"_s).toString(), u"ok"_s);
        QCOMPARE(messageOf(run), QString());
        QCOMPARE(doneOf(run).value(u"outputs"_s), QJsonValue(QJsonArray({m_cli->media(u"a.m4v"_s)})));
        QCOMPARE(doneOf(run).value(u"log"_s).toString(), m_cli->media(u"a.mkv.log"_s));
        QVERIFY(QFile::exists(m_cli->media(u"a.mkv.log"_s)));
    }

    void bothPassesTellHowFarTheyAre()
    {
        m_cli->clip(support::longMkv(30), u"a.mkv"_s);
        const auto run =
            m_cli->run(words(u"convert a.mkv --video 2pass --video-bitrate 300 --kind mkv --json"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QStringList shown;
        for (const QJsonObject &object : run.objects())
            shown.append(object.value(u"progress"_s).toString());
        QVERIFY(!shown.filter(QRegularExpression(u"^Pass #1 [0-9]+%$"_s)).isEmpty());
        QVERIFY(!shown.filter(QRegularExpression(u"^Pass #2 [0-9]+%$"_s)).isEmpty());
        QVERIFY(shown.lastIndexOf(QRegularExpression(u"Pass #1 .*"_s)) <
                shown.indexOf(QRegularExpression(u"Pass #2 .*"_s)));
        QCOMPARE(codecsOf(m_cli->media(u"a (2).mkv"_s)), u"h264 aac"_s);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void progressGoesToStandardError()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"convert a.mkv --video 1pass"_s));
        QCOMPARE(run.status, 0);
        QVERIFY2(run.said().contains(u"a.mkv: Video Conversion "_s), qPrintable(run.said()));
        QVERIFY(!run.error.contains('\r') && !run.error.contains('\x1b'));
        QCOMPARE(run.output, m_cli->media(u"a.m4v"_s).toUtf8() + '\n');
    }

    void quietShowsNoProgress()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"convert a.mkv --video 1pass --quiet"_s));
        QCOMPARE(run.status, 0);
        QVERIFY2(run.error.isEmpty(), run.error.constData());
        const auto failing = m_cli->run(words(u"convert a.mkv --quiet"_s));
        QCOMPARE(failing.status, 2);
        QVERIFY2(failing.said().contains(u"exists already"_s), qPrintable(failing.said()));
    }

    void logsAreKeptOrRemoved_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("option");
        QTest::addColumn<bool>("isKept");
        QTest::newRow("by default") << QString() << QString() << true;
        QTest::newRow("removed for this run") << QString() << u"--no-keep-logs"_s << false;
        QTest::newRow("removed by the settings") << u"false"_s << QString() << false;
        QTest::newRow("kept for this run") << u"false"_s << u"--keep-logs"_s << true;
    }

    void logsAreKeptOrRemoved()
    {
        QFETCH(QString, stored);
        QFETCH(QString, option);
        QFETCH(bool, isKept);
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        if (!stored.isEmpty())
            QCOMPARE(m_cli->run({u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, stored}).status, 0);
        const auto run =
            m_cli->run(words(u"convert a.mkv --json"_s) + option.split(u' ', Qt::SkipEmptyParts));
        QCOMPARE(run.status, 0);
        QCOMPARE(QFile::exists(m_cli->media(u"a.mkv.log"_s)), isKept);
        QCOMPARE(doneOf(run).value(u"log"_s).isNull(), !isKept);
    }

    void theLogOfAFailureIsAlwaysKept()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s); // and MP3 knows no six channels
        const auto run = m_cli->run(
            words(u"convert a.mkv --video 1pass --audio 1=mp3:6:128 --tracks 0,1 --no-keep-logs --json"_s));
        QCOMPARE(run.status, 2);
        QCOMPARE(doneOf(run).value(u"outcome"_s).toString(), u"failed"_s);
        QCOMPARE(doneOf(run).value(u"log"_s).toString(), m_cli->media(u"a.mkv.log"_s));
        QVERIFY(QFile::exists(m_cli->media(u"a.mkv.log"_s)));
        QVERIFY2(messageOf(run).contains(m_cli->media(u"a.mkv.log"_s)), qPrintable(messageOf(run)));
    }

    void anAviCarriesNoSubtitles()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"convert a.mkv --kind avi --video 1pass --json"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(codecsOf(m_cli->media(u"a.avi"_s)), u"mpeg4 ac3"_s);
        QCOMPARE(messageOf(run), QString());
    }

    void anAviWithAChosenSubtitleWarns()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"convert a.mkv --kind avi --video 1pass --tracks 0,1,3 --json"_s));
        QCOMPARE(run.status, 1);
        QCOMPARE(codecsOf(m_cli->media(u"a.avi"_s)), u"mpeg4 ac3"_s);
        QCOMPARE(doneOf(run).value(u"outcome"_s).toString(), u"warnings"_s);
        QVERIFY2(messageOf(run).contains(u"track 3"_s), qPrintable(messageOf(run)));
    }

    void aSubtitleIsBurned_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("codecs");
        QTest::newRow("the first one") << QString() << u"a.m4v"_s << u"h264 ac3"_s;
        QTest::newRow("a chosen one") << u"--tracks 0,4 --kind mkv"_s << u"a (2).mkv"_s << u"h264"_s;
        QTest::newRow("into an AVI") << u"--kind avi"_s << u"a.avi"_s << u"mpeg4 ac3"_s;
    }

    void aSubtitleIsBurned()
    {
        QFETCH(QString, options);
        QFETCH(QString, output);
        QFETCH(QString, codecs);
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"convert a.mkv --video 1pass --subtitles burn --no-keep-logs"_s) +
                                    options.split(u' ', Qt::SkipEmptyParts));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(codecsOf(m_cli->media(output)), codecs);
        QStringList left{u"a.mkv"_s, output};
        left.sort();
        QCOMPARE(m_cli->mediaNames(), left);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void burningNeedsExactlyOneSubtitle_data()
    {
        QTest::addColumn<QString>("tracks");
        QTest::newRow("none") << u"0,1"_s;
        QTest::newRow("two") << u"0,3,4"_s;
    }

    void burningNeedsExactlyOneSubtitle()
    {
        QFETCH(QString, tracks);
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run({u"convert"_s, u"a.mkv"_s, u"--video"_s, u"1pass"_s, u"--subtitles"_s,
                                     u"burn"_s, u"--tracks"_s, tracks});
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"exactly one"_s), qPrintable(run.said()));
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.mkv"_s}));
    }

    void burningNeedsAReencode()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        QCOMPARE(m_cli->run(words(u"convert a.mkv --subtitles burn"_s)).status, 64);
        QCOMPARE(m_cli->run(words(u"convert a.mkv --subtitles burn --video passthru"_s)).status, 64);
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.mkv"_s}));
    }

    void numbersForACopiedVideoAreSaidToChangeNothing()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"convert a.mkv --width 160 --tracks 0"_s));
        QCOMPARE(run.status, 0);
        QVERIFY2(run.said().contains(u"--width changes nothing"_s), qPrintable(run.said()));
        QCOMPARE(streamsOf(m_cli->media(u"a.m4v"_s)).constFirst().value(u"width"_s).toInt(), 320);
    }

    void aFileWithoutExactlyOneVideoFailsAndTheOthersGoOn()
    {
        m_cli->clip(support::audioOnly(), u"sound.m4a"_s);
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        m_cli->clip(support::twoVideosMkv(), u"two.mkv"_s);
        m_cli->scratch().write(u"media/notes.txt"_s, "words");
        const auto run =
            m_cli->run(words(u"convert notes.txt sound.m4a two.mkv a.mkv gone.mkv --tracks 0,1 --json"_s));
        QCOMPARE(run.status, 64); // the sound file has no track 1: nothing runs
        QVERIFY(run.output.isEmpty());
        const auto second = m_cli->run(words(u"convert notes.txt sound.m4a a.mkv gone.mkv --json"_s));
        QCOMPARE(second.status, 2);
        QCOMPARE(eventsOf(second).count(u"done"_s), 1);
        QCOMPARE(doneOf(second).value(u"outcome"_s).toString(), u"ok"_s);
        QVERIFY(second.said().contains(u"notes.txt: not a video"_s));
        QVERIFY(second.said().contains(u"gone.mkv: not a video"_s));
        QVERIFY(second.said().contains(u"exactly one video"_s));
        QVERIFY(QFile::exists(m_cli->media(u"a.m4v"_s)));
        QCOMPARE(m_cli->run(words(u"convert two.mkv"_s)).status, 0); // of itself it takes the first only
        QCOMPARE(codecsOf(m_cli->media(u"two.m4v"_s)), u"h264"_s);
        const auto third = m_cli->run(words(u"convert two.mkv --tracks 0,1"_s));
        QCOMPARE(third.status, 2);
        QVERIFY2(third.said().contains(u"2 are chosen"_s), qPrintable(third.said()));
    }

    void severalFilesEachGetAJob()
    {
        for (const auto &name : {u"a.mkv"_s, u"b.mkv"_s, u"c.mkv"_s})
            m_cli->clip(support::fullMkv(), name);
        const auto run = m_cli->run(words(u"convert a.mkv b.mkv c.mkv --tracks 0 --json"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QStringList told;
        for (const QJsonObject &object : run.objects()) {
            const QString event = object.value(u"event"_s).toString();
            if (event != u"progress"_s)
                told.append(u"%1 %2 %3"_s.arg(event, object.value(u"fileName"_s).toString())
                                .arg(object.value(u"job"_s).toInt()));
        }
        QCOMPARE(told, QStringList({u"queued a.mkv 1"_s, u"queued b.mkv 2"_s, u"queued c.mkv 3"_s,
                                    u"started a.mkv 1"_s, u"done a.mkv 1"_s, u"started b.mkv 2"_s,
                                    u"done b.mkv 2"_s, u"started c.mkv 3"_s, u"done c.mkv 3"_s}));
    }

    void theWorstOfSeveralFilesCounts()
    {
        m_cli->clip(support::fullMkv(), u"good.mkv"_s);
        m_cli->clip(support::pgsMkv(), u"pictures.mkv"_s);
        const auto run = m_cli->run(words(u"convert good.mkv pictures.mkv --json"_s));
        QCOMPARE(run.status, 1); // an MP4 holds no picture subtitles
        QCOMPARE(codecsOf(m_cli->media(u"pictures.m4v"_s)), u"h264 aac"_s);
        m_cli->clip(support::fullMkv(), u"bad.mkv"_s);
        m_cli->scratch().write(u"media/bad.m4v"_s, "in the way");
        const auto again = m_cli->run(words(u"convert good.mkv pictures.mkv bad.mkv --force --kind mkv"_s));
        QCOMPARE(again.status, 0); // a Matroska file holds them
        const auto failing = m_cli->run(words(u"convert bad.mkv pictures.mkv --json"_s));
        QCOMPARE(failing.status, 2);
    }

    void aRawStreamThatPassesThroughIsMuxed()
    {
        m_cli->clip(support::rawH264(), u"a.h264"_s);
        const auto run = m_cli->run(words(u"convert a.h264"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.lines(), QStringList{m_cli->media(u"a.muxed.mkv"_s)});
        QCOMPARE(codecsOf(m_cli->media(u"a.muxed.mkv"_s)), u"h264"_s);
        QCOMPARE(m_cli->run(words(u"convert a.h264 --video 1pass --video-bitrate 300"_s)).status, 0);
        QCOMPARE(codecsOf(m_cli->media(u"a.m4v"_s)), u"h264"_s);
    }

    void resultsGoIntoTheSaveFolder()
    {
        m_cli->clip(support::fullMkv(), u"in/a.mkv"_s);
        m_cli->scratch().write(u"media/out put/keep.txt"_s, "mine");
        const auto run = m_cli->run({u"convert"_s, u"in/a.mkv"_s, u"--save-dir"_s, u"out put"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.lines(), QStringList({m_cli->media(u"out put/a.m4v"_s)}));
        QCOMPARE(QDir(m_cli->media(u"in"_s)).entryList(QDir::Files), QStringList({u"a.mkv"_s}));
        QCOMPARE(QDir(m_cli->media(u"out put"_s)).entryList(QDir::Files),
                 QStringList({u"a.m4v"_s, u"a.mkv.log"_s, u"keep.txt"_s}));
    }

private:
    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliConvertTest)
#include "CliConvertTest.moc"

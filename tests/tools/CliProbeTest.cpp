#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"

#include <QFile>
#include <QJsonArray>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

QJsonObject track(const QJsonObject &object, int number)
{
    return object.value(u"tracks"_s).toArray().at(number).toObject();
}

} // namespace

class CliProbeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_film = m_cli.clip(support::fullMkv(), u"my film.mkv"_s);
        m_run = m_cli.run({u"probe"_s, u"--json"_s, u"my film.mkv"_s});
    }

    void aFileIsOneObject()
    {
        QCOMPARE(m_run.status, 0);
        QVERIFY2(m_run.error.isEmpty(), m_run.error.constData());
        QCOMPARE(m_run.objects().size(), 1);
        QCOMPARE(object().keys(), QStringList({u"file"_s, u"status"_s, u"tracks"_s}));
        QCOMPARE(object().value(u"status"_s), QJsonValue(u"OK"_s));
    }

    void theFileHasItsEighteenWords()
    {
        const QJsonObject file = object().value(u"file"_s).toObject();
        QJsonObject known{{u"theFilePath"_s, m_film},
                          {u"theFileURL"_s, m_film},
                          {u"theFileName"_s, u"my film.mkv"_s},
                          {u"theFileExtension"_s, u"mkv"_s},
                          {u"theFileShortName"_s, u"my film"_s},
                          {u"pathToFileFolder"_s, m_cli.media() + u'/'},
                          {u"theNumberOfVideoTracks"_s, u"1"_s},
                          {u"theNumberOfAudioTracks"_s, u"3"_s},
                          {u"theNumberOfSubTracks"_s, u"2"_s},
                          {u"theDuration"_s, u"0"_s},
                          {u"theFPS"_s, u"25.000000"_s},
                          {u"videoPAR"_s, u"0"_s},
                          {u"theWidth"_s, u"320"_s},
                          {u"theHeight"_s, u"240"_s},
                          {u"codecProfile"_s, u"High@L1.3"_s},
                          {u"theVideoCodec"_s, u"h264"_s},
                          {u"headerRemovalFlag"_s, false}};
        const QString rate = file.value(u"theVideoBitRate"_s).toString();
        QVERIFY2(rate.toInt() > 0, qPrintable(rate));
        known.insert(u"theVideoBitRate"_s, rate);
        QCOMPARE(file, known);
    }

    void tracks_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QStringList>("texts"); // type, index, codec, language, title, extension, info
        const auto row = [](const char *name, int number, const QString &texts) {
            QTest::newRow(name) << number << texts.split(u'|');
        };
        row("video", 0, u"Video|0|h264|English|Video Track|h264|Video: (h264)"_s);
        row("surround", 1, u"Audio|1|ac3|English|Surround five|ac3|Audio: (ac3 6ch.)"_s);
        row("stereo", 2, u"Audio|2|aac|German|Audio Track|aac|Audio: (aac 2ch.)"_s);
        row("dts", 3, u"Audio|5|dtshd|undetermined|Audio Track|dtshd|Audio: (dtshd 6ch.)"_s);
        row("srt", 4, u"Subtitle|3|srt|English|Subtitle Track|srt|Subtitle: (srt)"_s);
        row("ass", 5, u"Subtitle|4|ass|French|Subtitle Track|ass|Subtitle: (ass)"_s);
    }

    void tracks()
    {
        QFETCH(int, number);
        QFETCH(QStringList, texts);
        QCOMPARE(object().value(u"tracks"_s).toArray().size(), 6);
        const QJsonObject record = track(object(), number);
        QStringList found;
        for (const auto &word : {u"trackType"_s, u"trackFfmpegID"_s, u"trackCodec"_s, u"trackLanguage"_s,
                                 u"trackTitle"_s, u"trackExtension"_s, u"trackInfo"_s})
            found.append(record.value(word).toString());
        QCOMPARE(found, texts);
        QCOMPARE(record.size(), 42);
        QCOMPARE(record.value(u"trackFileURL"_s), QJsonValue(m_film));
        QVERIFY(record.value(u"convertedFileURL"_s).isNull());
        QCOMPARE(record.value(u"externalTrackFlag"_s), QJsonValue(false));
        QCOMPARE(record.value(u"trackMp4boxID"_s).toString().toInt(), texts.at(1).toInt() + 1);
    }

    void aRefusedFileCountsAsFailedAndTheOthersGoOn()
    {
        const CliFixture cli;
        cli.clip(support::fullMkv(), u"a.mkv"_s);
        cli.scratch().write(u"media/notes.txt"_s, "only words");
        cli.clip(support::vp9Mkv(), u"b.mkv"_s);
        cli.clip(support::rawH264(), u"c.h264"_s);
        const auto run =
            cli.run({u"probe"_s, u"--json"_s, u"a.mkv"_s, u"notes.txt"_s, u"b.mkv"_s, u"c.h264"_s});
        QCOMPARE(run.status, 2);
        QStringList statuses;
        for (const QJsonObject &object : run.objects())
            statuses.append(object.value(u"status"_s).toString());
        QCOMPARE(statuses, QStringList({u"OK"_s, u"not a video"_s, u"track not identified"_s, u"OK"_s}));
        for (const int refused : {1, 2}) {
            const QJsonObject object = run.objects().at(refused);
            QCOMPARE(object.value(u"tracks"_s), QJsonValue(QJsonArray()));
            QCOMPARE(object.value(u"file"_s).toObject().size(), 18);
        }
        QVERIFY(run.said().contains(cli.media(u"notes.txt"_s) + u": not a video"_s));
        QVERIFY(run.said().contains(cli.media(u"b.mkv"_s) + u": track not identified"_s));
        QVERIFY(cli.mediaNames().contains(u"b.mkv.error.txt"_s));
    }

    void whatIsNoRegularFileIsNoVideo()
    {
        const CliFixture cli;
        QVERIFY(::mkfifo(QFile::encodeName(cli.media(u"pipe.mkv"_s)).constData(), 0600) == 0);
        const QStringList before = cli.mediaNames();
        for (const QString &name :
             {u"pipe.mkv"_s, u"."_s, u"not-there.mkv"_s, u"/dev/zero"_s, u"a.mkv/b"_s}) {
            const auto run = cli.run({u"probe"_s, u"--json"_s, name}, 20000);
            QCOMPARE(run.status, 2);
            QCOMPARE(run.objects().constFirst().value(u"status"_s), QJsonValue(u"not a video"_s));
        }
        QCOMPARE(cli.mediaNames(), before);
    }

    void withoutJsonItIsForPeople()
    {
        const auto run = m_cli.run({u"probe"_s, u"my film.mkv"_s});
        QCOMPARE(run.status, 0);
        QVERIFY(run.error.isEmpty());
        const QString text = QString::fromUtf8(run.output);
        QVERIFY(text.startsWith(m_film + u'\n'));
        QVERIFY(text.contains(u"320 x 240"_s) && text.contains(u"High@L1.3"_s));
        for (const auto &word :
             {u"Video: (h264)"_s, u"Audio: (ac3 6ch.)"_s, u"\"Surround five\""_s, u"German"_s})
            QVERIFY2(text.contains(word), qPrintable(word));
        QCOMPARE(run.lines().size(), 2 + 6);
    }

    void probingLeavesNoFile() { QCOMPARE(m_cli.mediaNames(), QStringList({u"my film.mkv"_s})); }

private:
    QJsonObject object() const { return m_run.objects().value(0); }

    CliFixture m_cli;
    QString m_film;
    CliFixture::Run m_run;
};

TESSARAY_TEST(CliProbeTest)
#include "CliProbeTest.moc"

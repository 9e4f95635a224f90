// The command "extract" with real films and tools.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"

#include <QFile>
#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

class CliExtractTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
    }

    void everyTrackIsWritten()
    {
        const auto run = m_cli->run({u"extract"_s, u"a.mkv"_s, u"--no-keep-logs"_s, u"--json"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        const QList<std::pair<QString, QString>> expected{
            {u"a.mkv.stream0.h264"_s, u"h264"_s}, {u"a.mkv.stream1.ac3"_s, u"ac3"_s},
            {u"a.mkv.stream2.aac"_s, u"aac"_s},   {u"a.mkv.stream3.srt"_s, u"subrip"_s},
            {u"a.mkv.stream4.ass"_s, u"ass"_s},   {u"a.mkv.stream5.dtshd"_s, u"dts"_s}};
        QStringList names{u"a.mkv"_s};
        for (const auto &[name, codec] : expected) {
            names.append(name);
            QCOMPARE(support::codecsOf(m_cli->media(name)), codec);
        }
        QCOMPARE(m_cli->mediaNames(), names);
        const QJsonObject done = run.objects().constLast();
        QCOMPARE(done.value(u"event"_s).toString(), u"done"_s);
        QCOMPARE(done.value(u"jobType"_s).toString(), u"MKV Track Extraction"_s);
        QStringList outputs;
        for (const QJsonValue &output : done.value(u"outputs"_s).toArray())
            outputs.append(output.toString().section(u'/', -1));
        outputs.sort();
        QCOMPARE(outputs, names.mid(1));
    }

    void everyTrackTellsHowFarItIs()
    {
        const auto run = m_cli->run({u"extract"_s, u"a.mkv"_s, u"--json"_s});
        QSet<QString> steps;
        for (const QJsonObject &object : run.objects()) {
            if (object.value(u"event"_s) == QJsonValue(u"progress"_s))
                steps.insert(object.value(u"step"_s).toString());
        }
        QCOMPARE(steps, QSet<QString>({u"Extracting Video Track"_s, u"Extracting Audio Track"_s,
                                       u"Extracting Subtitle Track"_s}));
    }

    void onlyTheNamedTracksAreWritten()
    {
        const auto run = m_cli->run({u"extract"_s, u"a.mkv"_s, u"--tracks"_s, u"3,1"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QStringList lines = run.lines();
        lines.sort();
        QCOMPARE(lines,
                 QStringList({m_cli->media(u"a.mkv.stream1.ac3"_s), m_cli->media(u"a.mkv.stream3.srt"_s)}));
        QCOMPARE(m_cli->mediaNames(),
                 QStringList({u"a.mkv"_s, u"a.mkv.stream1.ac3"_s, u"a.mkv.stream1.ac3.log"_s,
                              u"a.mkv.stream3.srt"_s, u"a.mkv.stream3.srt.log"_s}));
    }

    void aTrackThatNoToolCanWriteIsNamed()
    {
        m_cli->clip(support::pgsMkv(), u"pictures.mkv"_s);
        const auto run = m_cli->run({u"extract"_s, u"pictures.mkv"_s, u"--json"_s});
        QCOMPARE(run.status, 2);
        const QJsonObject done = run.objects().constLast();
        QCOMPARE(done.value(u"outcome"_s).toString(), u"failed"_s);
        const QString message = done.value(u"message"_s).toString();
        QVERIFY2(message.contains(u"Track 2"_s) && message.contains(u"was not written"_s),
                 qPrintable(message));
        QVERIFY(!message.contains(u"Track 0"_s) && !message.contains(u"Track 1"_s));
        QCOMPARE(done.value(u"outputs"_s),
                 QJsonValue(QJsonArray({m_cli->media(u"pictures.mkv.stream0.h264"_s),
                                        m_cli->media(u"pictures.mkv.stream1.aac"_s)})));
        QVERIFY(QFile::exists(done.value(u"log"_s).toString()));
        QVERIFY(QFile(m_cli->media(u"pictures.mkv.stream0.h264"_s)).size() > 0);
        QVERIFY2(run.said().contains(u"pictures.mkv: failed"_s), qPrintable(run.said()));
    }

    void severalFilesWhereOneFails()
    {
        m_cli->scratch().write(u"media/notes.txt"_s, "words");
        const auto run = m_cli->run({u"extract"_s, u"notes.txt"_s, u"a.mkv"_s, u"--no-keep-logs"_s});
        QCOMPARE(run.status, 2);
        QCOMPARE(run.lines().size(), 6);
        QVERIFY(run.said().contains(u"notes.txt: not a video"_s));
    }

    void anExistingOutputIsLeftAloneAndNamed()
    {
        m_cli->scratch().write(u"media/a.mkv.stream1.ac3"_s, "mine");
        const auto run = m_cli->run({u"extract"_s, u"a.mkv"_s, u"--tracks"_s, u"1,3"_s});
        QCOMPARE(run.status, 2);
        QCOMPARE(m_cli->scratch().read(u"media/a.mkv.stream1.ac3"_s), "mine");
        QVERIFY2(run.said().contains(u"a.mkv.stream1.ac3 exists already"_s), qPrintable(run.said()));
        const auto forced = m_cli->run({u"extract"_s, u"a.mkv"_s, u"--tracks"_s, u"1,3"_s, u"--force"_s});
        QCOMPARE(forced.status, 0);
        QCOMPARE(support::codecsOf(m_cli->media(u"a.mkv.stream1.ac3"_s)), u"ac3"_s);
        QVERIFY(m_cli->mediaNames().filter(u"replaced"_s).isEmpty());
    }

private:
    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliExtractTest)
#include "CliExtractTest.moc"

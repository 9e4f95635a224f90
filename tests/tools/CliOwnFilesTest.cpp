// What stood in the save folder before a job stays as it was: a job that is refused touches nothing, however
// it ends, and nothing is written through a link. The short form draws some of the commands.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

/// Every name below a folder with what it holds; a link with where it leads.
QMap<QString, QByteArray> contentOf(const QString &folder)
{
    QMap<QString, QByteArray> content;
    const QDir all(folder);
    for (const QString &name :
         all.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System)) {
        const QString path = folder + u'/' + name;
        QFile file(path);
        if (QFileInfo(path).isSymLink())
            content.insert(name, "link to " + QFileInfo(path).symLinkTarget().toUtf8());
        else if (file.open(QIODevice::ReadOnly))
            content.insert(name, file.readAll());
    }
    return content;
}

/// The names that the commands below give their results.
const QStringList takenNames{u"f.mkv"_s,
                             u"f (2).mkv"_s,
                             u"f.removed.mkv"_s,
                             u"f.mkv.remux.mkv"_s,
                             u"f.mkv.joined.mkv"_s,
                             u"f.mkv.split.mkv"_s,
                             u"f.mkv.split-001.mkv"_s,
                             u"f.mkv.stream0.h264"_s,
                             u"f.mkv.stream1.aac"_s,
                             u"f.mkv.stream2.srt"_s,
                             u"f.mkv.stream3.ass"_s,
                             u"f.m4v"_s};

void addCommands()
{
    QTest::addColumn<QString>("line");
    const QStringList lines{u"convert f.mkv --kind mkv"_s,
                            u"convert f.mkv"_s,
                            u"convert f.mkv --video 1pass"_s,
                            u"convert f.mkv --video 2pass --video-bitrate 300"_s,
                            u"remove f.mkv --tracks 1"_s,
                            u"remux f.mkv"_s,
                            u"join f.mkv f.mkv"_s,
                            u"split f.mkv --duration 00:00:02"_s,
                            u"split f.mkv --time 00:00:01-00:00:03"_s,
                            u"extract f.mkv"_s};
    for (const QString &line : support::drawn(lines, 4))
        QTest::newRow(qPrintable(line)) << line;
}

} // namespace

class CliOwnFilesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void aRefusedJobTouchesNothing_data() { addCommands(); }

    void aRefusedJobTouchesNothing()
    {
        QFETCH(QString, line);
        m_cli->clip(support::blackMkv(), u"f.mkv"_s);
        for (const QString &name : takenNames)
            m_cli->scratch().write(u"media/out/"_s + name, "finished film " + name.toUtf8());
        const auto before = contentOf(m_cli->media(u"out"_s));
        const auto run = m_cli->run(inOut(line));
        QVERIFY2(run.status == 2, qPrintable(run.said()));
        QVERIFY2(run.said().contains(u"exists already"_s), qPrintable(run.said()));
        QVERIFY2(!run.said().contains(u"The log is"_s), qPrintable(run.said()));
        const auto after = contentOf(m_cli->media(u"out"_s));
        QCOMPARE(after.keys(), before.keys());
        QVERIFY(after == before);
    }

    void nothingIsWrittenThroughALink_data() { addCommands(); }

    void nothingIsWrittenThroughALink()
    {
        QFETCH(QString, line);
        m_cli->clip(support::blackMkv(), u"f.mkv"_s);
        m_cli->scratch().write(u"theirs"_s, "theirs");
        QVERIFY(QDir().mkpath(m_cli->media(u"out"_s)));
        for (const QString &name : takenNames) {
            for (const QString &ending : {u""_s, u".log"_s})
                QVERIFY(
                    QFile::link(m_cli->scratch().path(u"theirs"_s), m_cli->media(u"out/"_s + name + ending)));
        }
        const auto before = contentOf(m_cli->media(u"out"_s));
        const auto run = m_cli->run(inOut(line));
        QVERIFY2(run.status == 2, qPrintable(run.said()));
        QCOMPARE(m_cli->scratch().read(u"theirs"_s), QByteArray("theirs"));
        QVERIFY(contentOf(m_cli->media(u"out"_s)) == before);
    }

    void aRefusedJobThatIsInterruptedTouchesNothing_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("afterMs");
        for (const int afterMs : support::drawn(QList<int>{0, 50, 100, 200, 400, 800, 1200}, 2)) {
            QTest::addRow("convert, %i ms", afterMs) << u"convert f.mkv --kind mkv"_s << afterMs;
            QTest::addRow("remove, %i ms", afterMs) << u"remove f.mkv --tracks 1"_s << afterMs;
        }
    }

    void aRefusedJobThatIsInterruptedTouchesNothing()
    {
        QFETCH(QString, line);
        QFETCH(int, afterMs);
        m_cli->clip(support::blackMkv(), u"f.mkv"_s);
        for (const QString &name : takenNames)
            m_cli->scratch().write(u"media/out/"_s + name, "finished film " + name.toUtf8());
        const auto before = contentOf(m_cli->media(u"out"_s));
        const auto process = m_cli->start(inOut(u"--json "_s + line));
        QByteArray told;
        support::waitFor([&] { return (told += process->readAllStandardOutput()).contains("\"started\""); });
        QTest::qWait(afterMs);
        if (process->state() == QProcess::Running)
            ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        CliFixture::outcomeOf(*process);
        QVERIFY(contentOf(m_cli->media(u"out"_s)) == before);
    }

    void aSplitOfAFileWithoutExtensionIsInParts_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("how");
        QTest::addColumn<QStringList>("parts");
        const QString duration = u"--duration 00:00:02"_s;
        QTest::newRow("no extension")
            << u"film"_s << duration << QStringList{u"film.split-001."_s, u"film.split-002."_s};
        QTest::newRow("a full stop at the end")
            << u"film."_s << duration << QStringList{u"film..split-001."_s, u"film..split-002."_s};
        QTest::newRow("a stretch") << u"film"_s << u"--time 00:00:01-00:00:03"_s
                                   << QStringList{u"film.split."_s};
    }

    void aSplitOfAFileWithoutExtensionIsInParts()
    {
        QFETCH(QString, name);
        QFETCH(QString, how);
        QFETCH(QStringList, parts);
        m_cli->clip(support::longMkv(4), name);
        const auto run = m_cli->run((u"split %1 %2 --no-keep-logs"_s.arg(name, how)).split(u' '));
        QVERIFY2(run.status == 0, qPrintable(run.said()));
        QCOMPARE(m_cli->mediaNames(), QStringList{name} + parts);
        for (const QString &part : parts)
            QCOMPARE(support::codecsOf(m_cli->media(part)), u"h264 aac"_s);
        const auto again = m_cli->run((u"split %1 %2 --no-keep-logs"_s.arg(name, how)).split(u' '));
        QCOMPARE(again.status, 2);
        QVERIFY2(again.said().contains(u"exists already"_s), qPrintable(again.said()));
    }

    void anOutputWithoutAPacketIsAFailure_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("source");
        QTest::newRow("remux of a picture subtitle") << u"remux a.sup"_s << u"a.sup"_s;
        QTest::newRow("split of one") << u"split a.sup --time 00:00:00-00:00:03"_s << u"a.sup"_s;
        QTest::newRow("remux of headers") << u"remux headers.mkv"_s << u"headers.mkv"_s;
        QTest::newRow("split of headers")
            << u"split headers.mkv --time 00:00:00-00:00:03"_s << u"headers.mkv"_s;
        QTest::newRow("removal from headers") << u"remove headers.mkv --tracks 1"_s << u"headers.mkv"_s;
        QTest::newRow("conversion of headers") << u"convert headers.mkv"_s << u"headers.mkv"_s;
        QTest::newRow("conversion of headers to MKV")
            << u"convert headers.mkv --kind mkv"_s << u"headers.mkv"_s;
        QTest::newRow("extraction from headers") << u"extract headers.mkv"_s << u"headers.mkv"_s;
    }

    void anOutputWithoutAPacketIsAFailure()
    {
        QFETCH(QString, line);
        QFETCH(QString, source);
        m_cli->scratch().write(u"media/a.sup"_s, incompletePictures());
        makeHeaders();
        const auto run = m_cli->run(line.split(u' '));
        QVERIFY2(run.status == 2, qPrintable(u"%1: %2"_s.arg(run.status).arg(run.said())));
        QVERIFY2(run.said().contains(source), qPrintable(run.said()));
    }

    void aPictureSubtitleWithPicturesIsWell()
    {
        QProcess mkvextract;
        mkvextract.start(u"mkvextract"_s,
                         {u"tracks"_s, support::pgsMkv(), u"2:"_s + m_cli->media(u"p.sup"_s)});
        QVERIFY(mkvextract.waitForFinished());
        const auto run = m_cli->run({u"remux"_s, u"p.sup"_s});
        QVERIFY2(run.status == 0, qPrintable(run.said()));
    }

private:
    static QStringList inOut(const QString &line)
    {
        return line.split(u' ') + QStringList{u"--save-dir"_s, u"out"_s};
    }

    /// Four presentations that never end, so that no picture is complete.
    static QByteArray incompletePictures()
    {
        QByteArray film;
        const auto segment = [&](char type, int second, const QByteArray &data) {
            const quint32 time = static_cast<quint32>(second) * 90000;
            film += "PG";
            for (const int shift : {24, 16, 8, 0})
                film += static_cast<char>(time >> shift);
            film += QByteArray(4, '\0') + type + static_cast<char>(data.size() >> 8) +
                    static_cast<char>(data.size());
            film += data;
        };
        for (int second = 1; second < 5; ++second) {
            segment(0x16, second,
                    QByteArray::fromHex("00a000781000") + static_cast<char>(second) +
                        QByteArray::fromHex("8000000100000000000a000a"));
            segment(0x17, second, QByteArray::fromHex("0100000a000a00140014"));
        }
        return film;
    }

    /// A film of which only the headers are there: it ends where its packets would begin.
    void makeHeaders() const
    {
        QFile film(support::longMkv(4));
        QVERIFY(film.open(QIODevice::ReadOnly));
        QByteArray headers = film.readAll();
        headers.truncate(headers.indexOf(QByteArray::fromHex("1f43b675")));
        const qsizetype segment = headers.indexOf(QByteArray::fromHex("18538067"));
        headers.replace(segment + 4, 8, QByteArray::fromHex("01ffffffffffffff")); // of unknown size
        m_cli->scratch().write(u"media/headers.mkv"_s, headers);
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliOwnFilesTest)
#include "CliOwnFilesTest.moc"

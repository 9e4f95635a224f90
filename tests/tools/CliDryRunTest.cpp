// What "--dry-run" prints, and that it does nothing else.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::words;

namespace {

QStringList textsOf(const QJsonValue &array)
{
    QStringList texts;
    for (const QJsonValue &value : array.toArray())
        texts.append(value.toString());
    return texts;
}

/// The film of the example: English, and every track has a title.
QString exampleFilm(const CliFixture &cli)
{
    const QString path = cli.media(u"film.mkv"_s);
    support::runProgram(u"mkvmerge"_s, {u"-o"_s, path, u"--language"_s, u"0:eng"_s, u"--track-name"_s,
                                        u"0:The Film"_s, u"--track-name"_s, u"1:Stereo"_s, u"--track-name"_s,
                                        u"2:Words"_s, support::film1920()});
    return path;
}

/// h264 (0), aac (1).
QString plainMp4()
{
    return support::clip(u"plain.mp4"_s, [](const QString &path) {
        support::runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, support::textMp4(), u"-map"_s,
                                          u"0:0"_s, u"-map"_s, u"0:1"_s, u"-c"_s, u"copy"_s, path});
    });
}

} // namespace

class CliDryRunTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void aFilmForAPhoneIsOneStep()
    {
        const QString film = exampleFilm(*m_cli);
        const auto run = m_cli->run({u"convert"_s, u"film.mkv"_s, u"--tracks"_s, u"0,1,2"_s, u"--device"_s,
                                     u"iPhone 4"_s, u"--video"_s, u"1pass"_s, u"--video-bitrate"_s, u"2500"_s,
                                     u"--width"_s, u"1280"_s, u"--audio"_s, u"1=aac:2:160"_s,
                                     u"--subtitles"_s, u"mux"_s, u"--dry-run"_s, u"--json"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.objects().size(), 1);
        const QJsonObject step = run.objects().constFirst();
        // The list itself is FfmpegArgumentsTest's; here is that it comes word by word, data and all.
        const QStringList list = textsOf(step.value(u"arguments"_s));
        QCOMPARE(list.first(2), QStringList({u"-i"_s, film}));
        QCOMPARE(list.mid(list.indexOf(u"-level"_s), 6),
                 QStringList({u"-level"_s, u"31"_s, u"-vf"_s,
                              u"scale=trunc(1280/1920*iw/2)*2:trunc(ow/a/2)*2"_s, u"-b:v"_s, u"2500k"_s}));
        QCOMPARE(list.filter(u"title="_s),
                 QStringList({u"title=The Film"_s, u"title=Stereo"_s, u"title=Words"_s}));
        QCOMPARE(list.last(2), QStringList({u"-y"_s, m_cli->media(u"film.m4v"_s)}));
        QCOMPARE(step.keys(), QStringList({u"arguments"_s, u"job"_s, u"jobType"_s, u"log"_s, u"output"_s,
                                           u"pass"_s, u"program"_s, u"step"_s}));
        QCOMPARE(step.value(u"job"_s).toInt(), 1);
        QCOMPARE(step.value(u"jobType"_s).toString(), u"MKV Conversion"_s);
        QCOMPARE(step.value(u"step"_s).toString(), u"Video Conversion"_s);
        QCOMPARE(step.value(u"program"_s).toString(), m_cli->resources() + u"/ffmpeg/ffmpeg"_s);
        QCOMPARE(step.value(u"output"_s).toString(), m_cli->media(u"film.m4v"_s));
        QCOMPARE(step.value(u"log"_s).toString(), m_cli->media(u"film.mkv.log"_s));
        const auto plain = m_cli->run({u"convert"_s, u"film.mkv"_s, u"--dry-run"_s, u"--tracks"_s, u"0"_s});
        QCOMPARE(plain.lines().size(), 1);
        QVERIFY2(plain.lines().constFirst().endsWith(u"-metadata:s:v 'title=The Film' -movflags faststart -f "
                                                     "mp4 -y %1"_s.arg(m_cli->media(u"film.m4v"_s))),
                 plain.output.constData());
    }

    void bothPassesAreShown()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(
            u"convert a.mkv --video 2pass --video-bitrate 300 --tracks 0 --kind mkv --dry-run --json"_s));
        QCOMPARE(run.objects().size(), 2);
        for (const int pass : {1, 2}) {
            const QJsonObject step = run.objects().at(pass - 1);
            QCOMPARE(step.value(u"pass"_s).toInt(), pass);
            QCOMPARE(textsOf(step.value(u"arguments"_s)).mid(2, 2),
                     QStringList({u"-pass"_s, QString::number(pass)}));
        }
        QCOMPARE(textsOf(run.objects().at(0).value(u"arguments"_s)).constLast(), u"/dev/null"_s);
        QCOMPARE(textsOf(run.objects().at(1).value(u"arguments"_s)).constLast(),
                 m_cli->media(u"a (2).mkv"_s));
    }

    void theLaunchedListIsShownWhereItDiffers()
    {
        m_cli->clip(support::oddAvi(), u"odd.avi"_s);
        const auto run = m_cli->run(words(u"convert odd.avi --video 1pass --dry-run --json"_s));
        const QJsonObject step = run.objects().constFirst();
        QVERIFY(!textsOf(step.value(u"arguments"_s)).contains(u"-vf"_s));
        QVERIFY(textsOf(step.value(u"launched"_s)).contains(u"scale=trunc(iw/2)*2:trunc(ih/2)*2"_s));
        const auto plain = m_cli->run(words(u"convert odd.avi --video 1pass --dry-run"_s));
        QVERIFY2(plain.output.contains("-vf 'scale=trunc(iw/2)*2:trunc(ih/2)*2'"), plain.output.constData());
    }

    void aShellLineIsShownAsALine()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run =
            m_cli->run(words(u"convert a.mkv --video 1pass --subtitles burn --dry-run --json"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.objects().size(), 2);
        const QJsonObject line = run.objects().at(0);
        QCOMPARE(line.value(u"step"_s).toString(), u"Extracting Subtitle"_s);
        QVERIFY(!line.contains(u"arguments"_s) && !line.contains(u"launched"_s));
        const QString subtitle = m_cli->media(u"a.mkv.stream3.srt"_s);
        QCOMPARE(line.value(u"line"_s).toString(),
                 u"\"%1/ffmpeg/ffmpeg\" -i \"%2\" -map 0:3 -y \"%3\" &> \"%3.log\" & echo $!"_s.arg(
                     m_cli->resources(), m_cli->media(u"a.mkv"_s), subtitle));
        QCOMPARE(line.value(u"launchedLine"_s).toString(),
                 u"%1/ffmpeg/ffmpeg -i %2 -map 0:3 -y %3"_s.arg(m_cli->resources(), m_cli->media(u"a.mkv"_s),
                                                                subtitle));
        QVERIFY(textsOf(run.objects().at(1).value(u"arguments"_s)).contains(u"subtitles="_s + subtitle));
    }

    void onlyToolsThatReadAreRun_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("copy") << u"convert a.mkv --dry-run"_s;
        QTest::newRow("two passes") << u"convert a.mkv --video 2pass --dry-run --json"_s;
        QTest::newRow("burning") << u"convert a.mkv --video 1pass --subtitles burn --dry-run"_s;
        QTest::newRow("replacing") << u"convert b.mkv --force --dry-run"_s;
        QTest::newRow("extracting") << u"extract a.mkv --dry-run --json"_s;
        QTest::newRow("several") << u"convert a.mkv c.mkv --video 1pass --dry-run"_s;
    }

    void onlyToolsThatReadAreRun()
    {
        QFETCH(QString, line);
        for (const auto &name : {u"a.mkv"_s, u"b.mkv"_s, u"c.mkv"_s})
            m_cli->clip(support::fullMkv(), name);
        m_cli->scratch().write(u"media/b.m4v"_s, "mine");
        const QStringList before = m_cli->mediaNames();
        m_cli->useOwnTools();
        m_cli->recordEverything();
        const auto run = m_cli->run(words(line));
        QVERIFY2(run.status == 0, run.error.constData());
        QVERIFY(!run.output.isEmpty());
        QSet<QByteArray> programs;
        for (const QByteArrayList &started : m_cli->recorded())
            programs.insert(started.constFirst());
        QVERIFY(programs.contains("ffprobe"));
        const QSet<QByteArray> readers{"ffprobe", "grep", "mkvmerge"};
        QVERIFY2((programs - readers).isEmpty(), (programs - readers).values().join(' ').constData());
        QCOMPARE(m_cli->mediaNames(), before);
        QCOMPARE(m_cli->scratch().read(u"media/b.m4v"_s), "mine");
        QVERIFY2(m_cli->temporaryNames().isEmpty(), qPrintable(m_cli->temporaryNames().join(u' ')));
        QVERIFY(!QFile::exists(m_cli->scratch().path(u"defaults.json"_s)));
        QVERIFY(QDir(m_cli->scratch().path(u"home"_s)).isEmpty());
    }

    void aPastedCommandDoesWhatTheProgramDoes_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("outputs");
        QTest::newRow("copy") << u"convert FILE"_s << QStringList{u".m4v"_s};
        QTest::newRow("scaled") << u"convert FILE --video 1pass --width 160"_s << QStringList{u".m4v"_s};
        QTest::newRow("extract") << u"extract FILE --tracks 1,3"_s
                                 << QStringList{u".mkv.stream1.ac3"_s, u".mkv.stream3.srt"_s};
    }

    void aPastedCommandDoesWhatTheProgramDoes()
    {
        QFETCH(QString, line);
        QFETCH(QStringList, outputs);
        const QString stem = u"it's \"a\" $(touch X) `touch X`; & ü\\ film"_s;
        m_cli->clip(support::fullMkv(), stem + u".mkv"_s);
        const QStringList command = words(line).replaceInStrings(u"FILE"_s, stem + u".mkv"_s);
        const auto dry = m_cli->run(command + QStringList{u"--dry-run"_s});
        QVERIFY2(dry.status == 0, dry.error.constData());
        QCOMPARE(dry.lines().size(), outputs.size());
        for (const auto &shell : {u"/bin/sh"_s, u"/bin/bash"_s}) {
            for (const QString &pasted : dry.lines())
                QVERIFY2(pastedInto(shell, pasted) == 0, qPrintable(pasted));
            for (const QString &output : outputs)
                QVERIFY2(!support::codecsOf(m_cli->media(stem + output)).isEmpty(), qPrintable(output));
        }
        QCOMPARE(m_cli->mediaNames().size(), 1 + outputs.size());
        QMap<QString, QString> byHand;
        for (const QString &output : outputs) {
            byHand[output] = support::codecsOf(m_cli->media(stem + output));
            QFile::remove(m_cli->media(stem + output));
        }
        QCOMPARE(m_cli->run(command).status, 0);
        for (const QString &output : outputs)
            QCOMPARE(support::codecsOf(m_cli->media(stem + output)), byHand.value(output));
    }

    void allLinesPastedInTurnMakeTheOutput_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("codecs");
        QTest::addColumn<int>("lines");
        QTest::newRow("two passes")
            << u"convert a.mkv --video 2pass --video-bitrate 200 --tracks 0,1 --kind mkv"_s << u"a (2).mkv"_s
            << u"h264 ac3"_s << 2;
        QTest::newRow("a list of files")
            << u"join one.mp4 two.mp4"_s << u"one.mp4.joined.mp4"_s << u"h264 aac"_s << 2;
        QTest::newRow("a list with a link")
            << u"join one.mp4 odd\nname.mp4"_s << u"one.mp4.joined.mp4"_s << u"h264 aac"_s << 3;
        QTest::newRow("a subtitle of the film is drawn")
            << u"convert a.mkv --video 1pass --subtitles burn --tracks 0,3 --kind mkv"_s << u"a (2).mkv"_s
            << u"h264"_s << 2;
        QTest::newRow("an added subtitle with an odd name is drawn")
            << u"convert a.mkv --video 1pass --subtitles burn --tracks 0 --add s[1].srt --kind mkv"_s
            << u"a (2).mkv"_s << u"h264"_s << 2;
    }

    /// Nothing in them names a private place, and the program itself has made none.
    void allLinesPastedInTurnMakeTheOutput()
    {
        QFETCH(QString, line);
        QFETCH(QString, output);
        QFETCH(QString, codecs);
        QFETCH(int, lines);
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        m_cli->clip(support::srtFile(), u"s[1].srt"_s);
        for (const auto &name : {u"one.mp4"_s, u"two.mp4"_s, u"odd\nname.mp4"_s})
            m_cli->clip(plainMp4(), name);
        const QStringList before = m_cli->mediaNames();
        QStringList command = line.split(u' ');
        const auto dry = m_cli->run(command + QStringList{u"--dry-run"_s});
        QVERIFY2(dry.status == 0, dry.error.constData());
        QCOMPARE(m_cli->mediaNames(), before);
        QVERIFY(!dry.output.contains(m_cli->scratch().path(u"tmp"_s).toUtf8()));
        QCOMPARE(dry.lines().size(), lines);
        for (const QString &pasted : dry.lines())
            QVERIFY2(pastedInto(u"/bin/sh"_s, pasted) == 0, qPrintable(pasted));
        const double seconds = support::secondsOf(m_cli->media(output));
        QCOMPARE(support::codecsOf(m_cli->media(output)), codecs);
        for (const QString &name : m_cli->mediaNames()) {
            if (!before.contains(name))
                QFile::remove(m_cli->media(name));
        }
        const auto run = m_cli->run(command);
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(support::codecsOf(m_cli->media(output)), codecs);
        QVERIFY(std::abs(support::secondsOf(m_cli->media(output)) - seconds) < 0.1);
    }

    void theWordsInFrontAreInTheJsonToo()
    {
        for (const auto &name : {u"one.mp4"_s, u"two.mp4"_s})
            m_cli->clip(plainMp4(), name);
        const auto run = m_cli->run(words(u"join one.mp4 two.mp4 --dry-run --json"_s));
        QCOMPARE(run.objects().size(), 1);
        const QStringList before = textsOf(run.objects().constFirst().value(u"before"_s));
        QCOMPARE(before.size(), 1);
        QVERIFY2(before.constFirst().startsWith(u"printf "_s) &&
                     before.constFirst().contains(m_cli->media(u"one.mp4.joined.mp4.list"_s)),
                 qPrintable(before.constFirst()));
    }

    /// A run leaves what ffprobe said beside a file that is no film; a dry run writes nothing at all.
    void aFileThatIsNoFilmIsLeftAlone()
    {
        m_cli->scratch().write(u"media/bad.mkv"_s, "no film");
        const auto dry = m_cli->run(words(u"convert bad.mkv --dry-run"_s));
        QCOMPARE(dry.status, 2);
        QCOMPARE(m_cli->mediaNames(), QStringList{u"bad.mkv"_s});
        m_cli->run(words(u"convert bad.mkv"_s));
        QCOMPARE(m_cli->mediaNames(), QStringList({u"bad.mkv"_s, u"bad.mkv.error.txt"_s}));
    }

    void aPastedLineOfTheBackgroundRunsToo()
    {
        m_cli->clip(support::fullMkv(), u"it's $a.mkv"_s);
        const auto dry =
            m_cli->run({u"convert"_s, u"it's $a.mkv"_s, u"--video"_s, u"1pass"_s, u"--subtitles"_s, u"burn"_s,
                        u"--tracks"_s, u"0,3"_s, u"--kind"_s, u"mkv"_s, u"--dry-run"_s});
        QVERIFY2(dry.status == 0, dry.error.constData());
        QCOMPARE(dry.lines().size(), 3); // between them the copy whose path a filter takes
        QCOMPARE(pastedInto(u"/bin/sh"_s, dry.lines().constFirst()), 0);
        QCOMPARE(support::codecsOf(m_cli->media(u"it's $a.mkv.stream3.srt"_s)), u"subrip"_s);
    }

    void whatWouldNotStartIsSaid()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        m_cli->scratch().write(u"media/a.m4v"_s, "mine");
        const auto run = m_cli->run(words(u"convert a.mkv --dry-run --json"_s));
        QCOMPARE(run.status, 2);
        QVERIFY(run.output.isEmpty());
        QVERIFY2(run.said().contains(u"exists already"_s), qPrintable(run.said()));
    }

private:
    int pastedInto(const QString &shell, const QString &line) const
    {
        QProcess process;
        process.setWorkingDirectory(m_cli->scratch().path(u"home"_s)); // the paths are absolute
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(shell, {u"-c"_s, line});
        process.waitForFinished(60000);
        return QDir(m_cli->scratch().path(u"home"_s)).isEmpty() ? process.exitCode() : -1;
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliDryRunTest)
#include "CliDryRunTest.moc"

// Files that "convert --add" refuses, and that it harms none: bad names, outputs in the way, interrupts.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/HostileTexts.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::words;

namespace {

QString opusFile()
{
    return support::clip(u"opus.ogg"_s, [](const QString &path) {
        support::runProgram(u"ffmpeg"_s, {u"-nostdin"_s, u"-y"_s, u"-loglevel"_s, u"error"_s, u"-i"_s,
                                          support::audioOnly(), u"-c:a"_s, u"libopus"_s, path});
    });
}

/// Streams of the film of many tracks, without its picture.
QString streams(const QString &name, const QStringList &indexes)
{
    return support::clip(name, [&](const QString &path) {
        QStringList line{u"-nostdin"_s, u"-y"_s, u"-loglevel"_s,
                         u"error"_s,    u"-i"_s, support::manyTracksMkv()};
        for (const QString &index : indexes)
            line << u"-map"_s << u"0:"_s + index;
        support::runProgram(u"ffmpeg"_s,
                            line + QStringList{u"-c"_s, u"copy"_s, u"-f"_s, u"matroska"_s, path});
    });
}

QString textFile()
{
    return support::clip(u"words.txt"_s, [](const QString &path) {
        support::writeContent(path, "Nothing of this is a film.\n");
    });
}

QString damagedAudio()
{
    return support::clip(u"damaged.m4a"_s, [](const QString &path) {
        support::writeContent(path, support::contentOf(support::audioOnly()).mid(40, 20000));
    });
}

} // namespace

class CliAddRefusalsTest final : public QObject
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

    void cleanup()
    {
        for (const qint64 pid : m_cli->processes()) // only after a failure
            ::kill(static_cast<pid_t>(pid), SIGKILL);
    }

    void wrongNamesOfAddedFilesAreWrongUsage_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("named");
        QTest::newRow("behind the last") << u"--add new.ac3 --audio +2=passthru"_s << u"track +2"_s;
        QTest::newRow("far behind") << u"--add new.ac3 --audio +9=passthru"_s << u"track +9"_s;
        QTest::newRow("in front of the first") << u"--add new.ac3 --audio +0=passthru"_s << u"track +0"_s;
        QTest::newRow("a subtitle") << u"--add new.srt --audio +1=aac:2:96"_s << u"track +1"_s;
        QTest::newRow("nothing added") << u"--audio +1=passthru"_s << u"track +1"_s;
        QTest::newRow("no number") << u"--add new.ac3 --audio +=passthru"_s << u"\"+=passthru\""_s;
        QTest::newRow("no digits") << u"--add new.ac3 --audio +a=passthru"_s << u"\"+a=passthru\""_s;
        QTest::newRow("as a track") << u"--add new.ac3 --tracks 0,+1"_s << u"\"+1\""_s;
        QTest::newRow("no value") << u"--add"_s << u"--add"_s;
        QTest::newRow("an empty name") << u"--add="_s << u"--add"_s;
    }

    void wrongNamesOfAddedFilesAreWrongUsage()
    {
        QFETCH(QString, options);
        QFETCH(QString, named);
        const auto run = m_cli->run(words(u"convert full.mkv --json "_s + options));
        QCOMPARE(run.status, 64);
        QVERIFY2(run.output.isEmpty() && run.saidOneSentence(), run.error.constData());
        QVERIFY2(run.said().contains(named), run.error.constData());
        QCOMPARE(m_cli->mediaNames().size(), 5);
    }

    void otherCommandsAddNothing()
    {
        for (const QString &command : {u"extract"_s, u"probe"_s, u"presets list"_s}) {
            const auto run = m_cli->run(words(command + u" full.mkv --add new.srt"_s));
            QCOMPARE(run.status, 64);
            QVERIFY2(run.said().contains(u"--add"_s), run.error.constData());
        }
    }

    void whatCantBeAddedIsSaid_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("leavesReport"); // the report of a failed probe stays, to be read
        const QString notAVideo = u"not a video"_s;
        QTest::newRow("two audio streams")
            << streams(u"two-audio.mka"_s, {u"1"_s, u"2"_s}) << u"bad.mka"_s << u"too many tracks"_s << false;
        QTest::newRow("audio and a subtitle") << streams(u"audio-and-text.mka"_s, {u"1"_s, u"6"_s})
                                              << u"bad.mka"_s << u"too many tracks"_s << false;
        QTest::newRow("two subtitles")
            << streams(u"two-texts.mks"_s, {u"6"_s, u"7"_s}) << u"bad.mks"_s << u"too many tracks"_s << false;
        QTest::newRow("a film") << support::fullMkv() << u"bad.mkv"_s << u"adding video track"_s << false;
        QTest::newRow("a picture's stream")
            << support::rawH264() << u"bad.h264"_s << u"adding video track"_s << false;
        QTest::newRow("a codec of the newer ones") << opusFile() << u"bad.ogg"_s
                                                   << u"track not identified\nIts codec opus is one of the "
                                                      u"newer ones: --newer-codecs, or the preference "
                                                      "\"Open films with newer codecs\", opens it."_s
                                                   << true;
        QTest::newRow("nothing in it") << support::emptyMkv() << u"bad.srt"_s << notAVideo << true;
        QTest::newRow("no tracks") << textFile() << u"bad.txt"_s << notAVideo << true;
        QTest::newRow("text that calls itself a subtitle") << textFile() << u"bad.srt"_s << notAVideo << true;
        QTest::newRow("damaged") << damagedAudio() << u"bad.m4a"_s << notAVideo << true;
        QTest::newRow("a folder") << QString() << u"folder"_s << notAVideo << false;
        QTest::newRow("not there") << QString() << u"gone.srt"_s << notAVideo << false;
    }

    void whatCantBeAddedIsSaid()
    {
        QFETCH(QString, clip);
        QFETCH(QString, name);
        QFETCH(QString, answer);
        QFETCH(bool, leavesReport);
        if (!clip.isEmpty())
            m_cli->clip(clip, name);
        QVERIFY(QDir().mkpath(m_cli->media(u"folder"_s)));
        m_cli->clip(support::textMp4(), u"text.mp4"_s);
        QStringList expected = m_cli->mediaNames();
        if (leavesReport)
            expected.append(name + u".error.txt"_s);
        expected.sort();
        const auto run = m_cli->run({u"convert"_s, u"full.mkv"_s, u"text.mp4"_s, u"--add"_s, u"new.srt"_s,
                                     u"--add"_s, name, u"--json"_s});
        QCOMPARE(run.status, 2);
        QVERIFY2(run.output.isEmpty(), run.output.constData());
        // Each film is tried by itself.
        QStringList said;
        for (const auto &film : {u"full.mkv"_s, u"text.mp4"_s})
            said.append(u"%1: %2 can't be added: %3\n"_s.arg(m_cli->media(film), m_cli->media(name), answer));
        QCOMPARE(run.said(), said.join(QString()));
        QStringList names = m_cli->mediaNames();
        names.sort();
        QCOMPARE(names, expected);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void anAddedFileIsNeverReplaced_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QStringList>("links"); // names that are made to lead to the added file
        QTest::addColumn<QString>("output");    // none: refused
        const auto row = [](const char *name, const QString &options, const QStringList &links,
                            const QString &output) {
            for (const QString &force : support::drawn(QStringList{QString(), u" --force"_s}, 1))
                QTest::addRow("%s%s", name, qPrintable(force)) << options + force << links << output;
        };
        row("it has the output's name", u"--add full.m4v"_s, {u"full.m4v"_s}, u"full (2).m4v"_s);
        row("the output's name leads to it", u"--add new.m4a"_s, {u"full.m4v"_s}, u"full (2).m4v"_s);
        row("no name is left", u"--add new.m4a"_s, {u"full.m4v"_s, u"full (2).m4v"_s}, {});
        row("Matroska", u"--kind mkv --add new.m4a"_s, {u"full (2).mkv"_s}, {});
        row("two passes", u"--video 2pass --video-bitrate 90 --add full.m4v"_s, {u"full.m4v"_s},
            u"full (2).m4v"_s);
        row("the log's name leads to it", u"--add new.m4a"_s, {u"full.mkv.log"_s}, u"full.m4v"_s);
        row("a burned subtitle's name leads to it",
            u"--tracks 0,3 --video 1pass --video-bitrate 90 --subtitles burn --add new.m4a"_s,
            {u"full.mkv.stream3.srt"_s}, u"full.m4v"_s);
    }

    void anAddedFileIsNeverReplaced()
    {
        QFETCH(QString, options);
        QFETCH(QStringList, links);
        QFETCH(QString, output);
        using Link = int (*)(const char *, const char *);
        for (const Link link : support::drawn(QList<Link>{::link, ::symlink}, 1)) {
            for (const QString &name : links)
                QVERIFY(link(QFile::encodeName(m_cli->media(u"new.m4a"_s)).constData(),
                             QFile::encodeName(m_cli->media(name)).constData()) == 0);
            const auto run = m_cli->run(words(u"convert full.mkv --tracks 0 --quiet "_s + options));
            QCOMPARE(run.status, output.isEmpty() ? 2 : 0);
            QVERIFY2(!output.isEmpty() || run.said().contains(u"one of the job's own sources"_s),
                     run.error.constData());
            QCOMPARE(run.lines(), output.isEmpty() ? QStringList() : QStringList{m_cli->media(output)});
            for (const QString &name : QStringList{u"new.m4a"_s} + links)
                QCOMPARE(m_cli->scratch().read(u"media/"_s + name), support::contentOf(support::audioOnly()));
            for (const QString &name : m_cli->mediaNames().filter(u"full."_s))
                QVERIFY(name == u"full.mkv"_s || QFile::remove(m_cli->media(name)));
        }
    }

    void namesOfAddedFilesAreData()
    {
        const QStringList names = support::drawn(support::hostileNames(40), 15);
        QStringList line = words(u"convert full.mkv --tracks 0 --kind mkv --quiet --no-keep-logs"_s);
        for (const QString &name : names) {
            m_cli->clip(support::srtFile(), u"added/"_s + name);
            line << u"--add"_s << u"added/"_s + name;
        }
        m_cli->useOwnTools();
        m_cli->recordEverything();
        const auto run = m_cli->run(line);
        QVERIFY2(run.status == 0, run.error.constData());
        QSet<QString> programs;
        for (const QByteArrayList &started : m_cli->recorded())
            programs.insert(QString::fromUtf8(started.constFirst()));
        const QSet<QString> meant{u"ffprobe"_s, u"grep"_s, u"ffmpeg"_s};
        QVERIFY2((programs - meant).isEmpty(), qPrintable((programs - meant).values().join(u' ')));
        QCOMPARE(support::codecsOf(m_cli->media(u"full (2).mkv"_s)).count(u"subrip"_s), names.size());
        QStringList left =
            QDir(m_cli->media(u"added"_s)).entryList(QDir::Files | QDir::Hidden | QDir::System);
        QCOMPARE(left.size(), names.size());
        QCOMPARE(m_cli->mediaNames().size(), 5 + 2);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void theProbeOfAnAddedFileCanBeInterrupted_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("terminate") << SIGTERM;
    }

    void theProbeOfAnAddedFileCanBeInterrupted()
    {
        QFETCH(int, signal);
        m_cli->useOwnTools();
        m_cli->setTool(u"ffmpeg/ffprobe"_s, u"case \"$*\" in *new.ac3*) sleep 119;; esac\n"
                                            "exec /usr/bin/ffprobe \"$@\""_s);
        const QStringList before = m_cli->mediaNames();
        const auto process =
            m_cli->start(words(u"convert full.mkv full.mkv --add new.srt --add new.ac3 --json"_s));
        QVERIFY(support::waitFor([&] { return m_cli->commandLines().join(u'\n').contains(u"sleep 119"_s); }));
        ::kill(static_cast<pid_t>(process->processId()), signal);
        const auto run = CliFixture::outcomeOf(*process);
        QCOMPARE(run.status, 128 + signal);
        QVERIFY2(run.output.isEmpty() && run.error.isEmpty(), run.error.constData());
        QVERIFY(support::waitFor([&] { return m_cli->processes().isEmpty(); }));
        QCOMPARE(m_cli->mediaNames(), before);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

private:
    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliAddRefusalsTest)
#include "CliAddRefusalsTest.moc"

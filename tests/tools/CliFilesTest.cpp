// No file is ever lost: outputs that exist, inputs in the way, failures, folders that can't be written.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::words;

namespace {

/// Writes a part of its output, which is the last word of its line, and then fails.
const QString failingTool = u"for last; do :; done\n"
                            "printf 'half a film' > \"$last\"\n"
                            "echo 'something went wrong' >&2\n"
                            "exit 1"_s;

} // namespace

class CliFilesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        m_source = m_cli->scratch().read(u"media/a.mkv"_s);
    }

    void cleanup() { QCOMPARE(content(u"a.mkv"_s), m_source); }

    void anExistingOutputIsRefused()
    {
        write(u"a.m4v"_s, "mine");
        const auto run = m_cli->run(words(u"convert a.mkv --json"_s));
        QCOMPARE(run.status, 2);
        QCOMPARE(content(u"a.m4v"_s), "mine");
        const QJsonObject done = run.objects().constLast();
        QCOMPARE(done.value(u"outcome"_s).toString(), u"failed"_s);
        QVERIFY2(
            done.value(u"message"_s).toString().contains(m_cli->media(u"a.m4v"_s) + u" exists already"_s),
            run.output.constData());
        QCOMPARE(done.value(u"outputs"_s), QJsonValue(QJsonArray()));
        QVERIFY(done.value(u"log"_s).isNull());
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.m4v"_s, u"a.mkv"_s}));
    }

    void forceReplacesIt()
    {
        write(u"a.m4v"_s, "mine");
        const auto run = m_cli->run(words(u"convert a.mkv --force --no-keep-logs"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(support::codecsOf(m_cli->media(u"a.m4v"_s)), u"h264 ac3 mov_text"_s);
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.m4v"_s, u"a.mkv"_s}));
    }

    void forceReplacesTheOutputOfBothPasses()
    {
        write(u"a.m4v"_s, "mine");
        const auto run = m_cli->run(
            words(u"convert a.mkv --force --no-keep-logs --video 2pass --video-bitrate 200 --tracks 0"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(support::codecsOf(m_cli->media(u"a.m4v"_s)), u"h264"_s);
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.m4v"_s, u"a.mkv"_s}));
    }

    void theOldFileReturnsWhenTheConversionFails()
    {
        write(u"a.m4v"_s, "mine");
        m_cli->useOwnTools();
        m_cli->setTool(u"ffmpeg/ffmpeg"_s, failingTool);
        const auto run = m_cli->run(words(u"convert a.mkv --force --json --tracks 0"_s));
        QCOMPARE(run.status, 2);
        QCOMPARE(content(u"a.m4v"_s), "mine");
        QCOMPARE(content(u"a (incomplete).m4v"_s), "half a film");
        const QString message = run.objects().constLast().value(u"message"_s).toString();
        QVERIFY2(message.contains(u"something went wrong"_s), qPrintable(message));
        QVERIFY2(message.contains(m_cli->media(u"a (incomplete).m4v"_s)), qPrintable(message));
        QVERIFY(m_cli->mediaNames().filter(u"replaced"_s).isEmpty());
    }

    void aFailedConversionKeepsWhatItWroteAndNamesIt()
    {
        m_cli->useOwnTools();
        m_cli->setTool(u"ffmpeg/ffmpeg"_s, failingTool);
        const auto run = m_cli->run(words(u"convert a.mkv --tracks 0"_s));
        QCOMPARE(run.status, 2);
        QCOMPARE(content(u"a (incomplete).m4v"_s), "half a film");
        QVERIFY2(run.said().contains(m_cli->media(u"a (incomplete).m4v"_s)), qPrintable(run.said()));
        QVERIFY(run.output.isEmpty());
    }

    void anOutputIsNeverAnInput_data()
    {
        QTest::addColumn<QString>("options");
        QTest::newRow("refusing") << QString();
        QTest::newRow("replacing") << u"--force"_s;
    }

    void anOutputIsNeverAnInput()
    {
        QFETCH(QString, options);
        const QStringList line =
            words(u"convert a.mkv --no-keep-logs"_s) + options.split(u' ', Qt::SkipEmptyParts);
        using Link = int (*)(const char *, const char *);
        for (const Link link : support::drawn(QList<Link>{::link, ::symlink}, 1)) {
            linkToSource(link, u"a.m4v"_s);
            const auto run = m_cli->run(line);
            QVERIFY2(run.status == 0, run.error.constData());
            QCOMPARE(run.lines(), QStringList({m_cli->media(u"a (2).m4v"_s)})); // the name that is left
            QVERIFY(QFile::remove(m_cli->media(u"a (2).m4v"_s)));
            linkToSource(link, u"a (2).m4v"_s);
            const auto second = m_cli->run(line);
            QCOMPARE(second.status, 2);
            QVERIFY2(second.said().contains(u"one of the job's own sources"_s), qPrintable(second.said()));
            QCOMPARE(m_cli->mediaNames(), QStringList({u"a (2).m4v"_s, u"a.m4v"_s, u"a.mkv"_s}));
            for (const auto &name : {u"a.m4v"_s, u"a (2).m4v"_s}) {
                QCOMPARE(content(name), m_source);
                QVERIFY(QFile::remove(m_cli->media(name)));
            }
        }
    }

    void aFilmIntoItsOwnKindGetsANameOfItsOwn()
    {
        const auto run = m_cli->run(words(u"convert a.mkv --kind mkv --force --no-keep-logs --tracks 0"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a (2).mkv"_s, u"a.mkv"_s}));
        QCOMPARE(run.lines(), QStringList({m_cli->media(u"a (2).mkv"_s)}));
    }

    void theInputOfAnotherJobIsNoOutput_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("written");
        QTest::newRow("of one to come") << u"convert a.mkv a.m4v --force"_s << u"a (2).m4v"_s;
        QTest::newRow("of one that has ended") << u"convert a.m4v a.mkv --force"_s << u"a (2).m4v"_s;
        QTest::newRow("into Matroska") << u"convert a.mkv a.m4v --kind mkv --force"_s << u"a (2).mkv"_s;
    }

    void theInputOfAnotherJobIsNoOutput()
    {
        QFETCH(QString, line);
        QFETCH(QString, written);
        m_cli->clip(support::textMp4(), u"a.m4v"_s);
        const QByteArray second = content(u"a.m4v"_s);
        const auto run = m_cli->run(words(line + u" --tracks 0 --no-keep-logs"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"belongs to another job"_s), qPrintable(run.said()));
        QCOMPARE(content(u"a.m4v"_s), second);
        QStringList names{u"a.m4v"_s, u"a.mkv"_s, written};
        names.sort();
        QCOMPARE(m_cli->mediaNames(), names);
    }

    void aFolderIsNeverReplaced()
    {
        write(u"a.m4v/film"_s, "mine");
        for (const auto &line : {u"convert a.mkv"_s, u"convert a.mkv --force"_s}) {
            const auto run = m_cli->run(words(line));
            QCOMPARE(run.status, 2);
            QVERIFY2(run.said().contains(u"a.m4v exists already"_s), qPrintable(run.said()));
            QCOMPARE(content(u"a.m4v/film"_s), "mine");
        }
    }

    void twoInputsWithOneOutputAreRefusedBeforeAnythingRuns_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("two extensions") << u"convert b.mkv b.avi"_s;
        QTest::newRow("replacing") << u"convert b.mkv b.avi --force"_s;
        QTest::newRow("only shown") << u"convert b.mkv b.avi --dry-run"_s;
        QTest::newRow("one file twice") << u"convert b.mkv b.mkv"_s;
        QTest::newRow("by two ways") << u"convert b.mkv ./sub/../b.mkv"_s;
        QTest::newRow("by a linked folder") << u"convert b.mkv here/b.mkv"_s;
        QTest::newRow("two folders, one save folder") << u"convert b.mkv sub/b.mkv --save-dir out"_s;
        QTest::newRow("extraction") << u"extract b.mkv sub/b.mkv --save-dir out --json"_s;
        QTest::newRow("among others") << u"convert a.mkv b.mkv b.avi"_s;
    }

    void twoInputsWithOneOutputAreRefusedBeforeAnythingRuns()
    {
        QFETCH(QString, line);
        m_cli->clip(support::fullMkv(), u"b.mkv"_s);
        m_cli->clip(support::packedAvi(), u"b.avi"_s);
        m_cli->clip(support::fullMkv(), u"sub/b.mkv"_s);
        QVERIFY(QDir().mkpath(m_cli->media(u"out"_s)));
        QVERIFY(QFile::link(m_cli->media(), m_cli->media(u"here"_s)));
        const QStringList before = m_cli->mediaNames();
        const auto run = m_cli->run(words(line));
        QCOMPARE(run.status, 64);
        QVERIFY2(run.output.isEmpty(), run.output.constData());
        QVERIFY2(run.said().contains(u"would both write"_s), qPrintable(run.said()));
        QCOMPARE(m_cli->mediaNames(), before);
        QVERIFY(QDir(m_cli->media(u"out"_s)).isEmpty());
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void theSameNameIntoTwoFoldersIsFine()
    {
        m_cli->clip(support::fullMkv(), u"sub/a.mkv"_s);
        QCOMPARE(m_cli->run(words(u"convert a.mkv sub/a.mkv --tracks 0"_s)).status, 0);
        QVERIFY(QFile::exists(m_cli->media(u"a.m4v"_s)) && QFile::exists(m_cli->media(u"sub/a.m4v"_s)));
    }

    void aMissingSaveFolderIsSaidBeforeAnythingRuns()
    {
        m_cli->useOwnTools();
        for (const auto &command : {u"convert"_s, u"extract"_s}) {
            const auto run = m_cli->run({command, u"a.mkv"_s, u"--save-dir"_s, u"gone"_s, u"--json"_s});
            QCOMPARE(run.status, 2);
            QVERIFY(run.output.isEmpty());
            QVERIFY2(run.said().contains(m_cli->media(u"gone"_s) + u" does not exist"_s),
                     qPrintable(run.said()));
        }
        QCOMPARE(m_cli->run(words(u"convert a.mkv --save-dir a.mkv"_s)).status, 2);
        QVERIFY(m_cli->recorded().isEmpty());
        QVERIFY(!QFile::exists(m_cli->media(u"gone"_s)));
    }

    void aSaveFolderOfTheSettingsThatIsGoneIsSaid()
    {
        QVERIFY(QDir().mkpath(m_cli->media(u"out"_s)));
        QCOMPARE(m_cli->run(words(u"prefs set saveDirectoryPath out"_s)).status, 0);
        QVERIFY(QDir(m_cli->media(u"out"_s)).removeRecursively());
        const auto run = m_cli->run(words(u"convert a.mkv"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(m_cli->media(u"out"_s)), qPrintable(run.said()));
        QCOMPARE(m_cli->run({u"convert"_s, u"a.mkv"_s, u"--save-dir"_s, u""_s, u"--tracks"_s, u"0"_s}).status,
                 0);
    }

    void foldersThatCantBeWrittenAreSaid()
    {
        m_cli->useOwnTools();
        for (const auto &tool : {u"ffmpeg"_s, u"ffprobe"_s})
            m_cli->setTool(u"ffmpeg/"_s + tool, u"exec /usr/bin/%1 \"$@\""_s.arg(tool));
        m_cli->clip(support::fullMkv(), u"locked/b.mkv"_s);
        QVERIFY(QDir().mkpath(m_cli->media(u"out"_s)));
        m_cli->runUnprivileged();
        const auto locked = QFile::ReadOwner | QFile::ExeOwner;
        QVERIFY(QFile::setPermissions(m_cli->media(u"locked"_s), locked));
        QVERIFY(QFile::setPermissions(m_cli->media(u"out"_s), locked));
        const auto saving = m_cli->run(words(u"convert a.mkv --save-dir out"_s));
        QCOMPARE(saving.status, 2);
        QVERIFY2(saving.said().contains(m_cli->media(u"out"_s) + u" can't be written"_s),
                 qPrintable(saving.said()));
        const auto beside = m_cli->run(words(u"convert a.mkv locked/b.mkv --tracks 0"_s));
        QCOMPARE(beside.status, 2);
        QVERIFY2(beside.said().contains(u"locked/b.mkv"_s), qPrintable(beside.said()));
        QVERIFY2(QFile::exists(m_cli->media(u"a.m4v"_s)), beside.error.constData());
        QVERIFY(QFile::setPermissions(m_cli->media(u"locked"_s), locked | QFile::WriteOwner));
    }

private:
    void linkToSource(int (*link)(const char *, const char *), const QString &name) const
    {
        QVERIFY(link(QFile::encodeName(m_cli->media(u"a.mkv"_s)).constData(),
                     QFile::encodeName(m_cli->media(name)).constData()) == 0);
    }
    QByteArray content(const QString &name) const { return m_cli->scratch().read(u"media/"_s + name); }
    void write(const QString &name, const QByteArray &bytes) const
    {
        m_cli->scratch().write(u"media/"_s + name, bytes);
    }

    std::unique_ptr<CliFixture> m_cli;
    QByteArray m_source;
};

TESSARAY_TEST(CliFilesTest)
#include "CliFilesTest.moc"

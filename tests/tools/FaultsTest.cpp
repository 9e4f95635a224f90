// What goes wrong in real life: sources that are broken or go away, folders and disks that can't take
// the output, tools that are killed, outputs that would be the source itself.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/RealRuns.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

QStringList completionsOf(const RealRuns &runs)
{
    QStringList texts;
    for (const auto &completion : runs.record.named(u"taskCompletion"_s))
        texts << completion.object.toString();
    return texts;
}

void compareFailed(const KXJob &job, const QString &words)
{
    QVERIFY2(job.outcome().verdict == Verdict::Failed, qPrintable(job.outcome().word()));
    QVERIFY2(job.outcome().sentence.contains(words), qPrintable(job.outcome().sentence));
    QVERIFY(job.outputs().isEmpty());
}

/// Runs one of the tests of TinyDiskTest in a place of its own: a tiny disk, or one that can't be written to.
/// Where the system gives no user namespaces, a limit on file sizes and a folder of the system take its
/// place.
void runInside(const char *test)
{
    const Scratch scratch;
    QDir().mkpath(scratch.path(u"disk"_s));
    const QString line =
        u"mount -t tmpfs -o size=400k tmpfs \"$1\" && TEST_DISK=\"$1\" exec \"$0\" TinyDiskTest \"$2\""_s;
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    if (statusOf(u"unshare"_s, {u"-rm"_s, u"true"_s}, scratch.path()) == 0)
        process.start(u"unshare"_s,
                      {u"-rm"_s, u"sh"_s, u"-c"_s, line, QCoreApplication::applicationFilePath(),
                       scratch.path(u"disk"_s), QString::fromLatin1(test)});
    else
        process.start(QCoreApplication::applicationFilePath(),
                      {u"TinyDiskTest"_s, QString::fromLatin1(test)});
    QVERIFY(process.waitForFinished(120000));
    const QByteArray said = process.readAll();
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, said.constData());
    QVERIFY2(said.contains("PASS   : TinyDiskTest::" + QByteArray(test)), said.constData());
}

} // namespace

/// Runs inside runInside().
class TinyDiskTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fullWhileCopying() { fill(u"passthru"_s, u"1"_s); }
    void fullWhileEncoding() { fill(u"h264"_s, u"1"_s); }
    void fullInPassTwo() { fill(u"h264"_s, u"2"_s); }

    void fullWhileExtracting()
    {
        RealRuns runs;
        const QString source = runs.film(longFilm());
        limit();
        runs.base.setSaveFolder(disk(runs));
        const auto job = runs.extract(runs.probed(source));
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Failed, qPrintable(job->outcome().word()));
        compareReason(*job);
        QCOMPARE(contentOf(source), contentOf(longFilm()));
    }

    void cannotBeWrittenTo()
    {
        RealRuns runs;
        const QString source = runs.film(fullMkv());
        const QString folder = isMounted() ? disk(runs) : u"/proc"_s;
        if (isMounted())
            QCOMPARE(statusOf(u"mount"_s, {u"-o"_s, u"remount,ro"_s, folder}, runs.path()), 0);
        runs.base.setSaveFolder(folder);
        const auto job = runs.convert(runs.probed(source));
        QVERIFY(runs.run(job));
        compareFailed(*job, u"can't be made: "_s);
        QVERIFY(!QFile::exists(folder + u"/a.m4v"_s));
        QCOMPARE(contentOf(source), contentOf(fullMkv()));
    }

private:
    static bool isMounted() { return qEnvironmentVariableIsSet("TEST_DISK"); }
    static QString disk(const RealRuns &runs)
    {
        return isMounted() ? qEnvironmentVariable("TEST_DISK") : runs.path(u"out"_s);
    }

    /// More than fits.
    static QString longFilm() { return longMkv(20); }

    /// Where there is no tiny disk, no file may grow larger than one.
    static void limit()
    {
        if (isMounted())
            return;
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit size{400 * 1024, 400 * 1024};
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &size), 0);
    }

    static void compareReason(const KXJob &job)
    {
        const QString words = isMounted() ? u"There is no room left in "_s : u"ffmpeg failed"_s;
        QVERIFY2(job.outcome().sentence.contains(words), qPrintable(job.outcome().sentence));
    }

    void fill(const QString &codec, const QString &passes)
    {
        RealRuns runs;
        QDir().mkpath(runs.path(u"out"_s));
        const QString source = runs.film(longFilm());
        const auto selection = runs.reencoded(source, u"General"_s, passes);
        selection->trackList().first()->setUserCodec(codec);
        limit();
        runs.base.setSaveFolder(disk(runs));
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Failed, qPrintable(job->outcome().word()));
        compareReason(*job);
        QVERIFY(job->outputs().isEmpty());
        // What was written is no whole film, and is named; an empty file is not left.
        const QFileInfo output(disk(runs) + u"/a.m4v"_s);
        QCOMPARE(
            job->outcome().sentence.contains(u"The incomplete output %1 was kept."_s.arg(output.filePath())),
            output.exists());
        QVERIFY(!output.exists() || output.size() > 0);
        QCOMPARE(contentOf(source), contentOf(longFilm()));
    }
};

class FaultsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_runs = std::make_unique<RealRuns>(); }

    void aDamagedSource()
    {
        const auto job = m_runs->convert(m_runs->probed(m_runs->film(damagedMkv())));
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Warnings, qPrintable(job->outcome().sentence));
        QVERIFY2(job->outcome().sentence.contains(u"damaged"_s), qPrintable(job->outcome().sentence));
        QVERIFY(secondsOf(m_runs->path(u"a.m4v"_s)) > 1);
    }

    void aTruncatedSource_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::newRow("copied") << u"passthru"_s;
        QTest::newRow("encoded") << u"h264"_s;
    }

    void aTruncatedSource()
    {
        QFETCH(QString, codec);
        const auto selection = m_runs->reencoded(m_runs->film(truncatedMkv()), u"General"_s, u"1"_s);
        selection->trackList().first()->setUserCodec(codec);
        const auto job = m_runs->convert(selection);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Warnings, qPrintable(job->outcome().sentence));
        QVERIFY(secondsOf(m_runs->path(u"a.m4v"_s)) < 7);
    }

    void aTruncatedSourceWhoseTracksAreExtracted()
    {
        const auto selection = m_runs->probed(m_runs->film(truncatedMkv()));
        keepStreams(*selection, {u"0"_s});
        const auto job = m_runs->extract(selection);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Warnings, qPrintable(job->outcome().sentence));
    }

    void aSourceThatWasEmptied()
    {
        const QString source = m_runs->film(fullMkv());
        const auto job = m_runs->convert(m_runs->probed(source));
        writeContent(source, contentOf(emptyMkv()));
        QVERIFY(m_runs->run(job));
        compareFailed(*job, u"ffmpeg failed"_s);
        QCOMPARE(m_runs->names(), QStringList({u"a.mkv"_s, u"a.mkv.log"_s})); // a failed step's log stays
        QVERIFY(contentOf(m_runs->path(u"a.mkv.log"_s))
                    .trimmed()
                    .split('\n')
                    .last()
                    .startsWith("Tessaray: failed: "));
    }

    void aSourceThatVanished_data()
    {
        QTest::addColumn<QString>("passes");
        QTest::newRow("one pass") << u"1"_s;
        QTest::newRow("two passes") << u"2"_s;
    }

    void aSourceThatVanished()
    {
        QFETCH(QString, passes);
        const QString source = m_runs->film(fullMkv());
        const auto job = m_runs->convert(m_runs->reencoded(source, u"PS3"_s, passes));
        QVERIFY(QFile::remove(source));
        QVERIFY(m_runs->run(job));
        compareFailed(*job, u"No such file or directory"_s);
        QCOMPARE(completionsOf(*m_runs),
                 QStringList{passes == u"2"_s ? u"Pass 1 Complete"_s : u"Complete"_s});
        QCOMPARE(m_runs->names(), QStringList{u"a.mkv.log"_s});
        QVERIFY(job->outcome().sentence.contains(m_runs->path(u"a.mkv.log"_s)));
    }

    void aSourceThatVanishedBeforeItsExtraction()
    {
        const QString source = m_runs->film(fullMkv());
        const auto job = m_runs->extract(m_runs->probed(source));
        QVERIFY(QFile::remove(source));
        QVERIFY(m_runs->run(job));
        compareFailed(*job, u"Track 0, Video: (h264), was not written."_s);
        QVERIFY(job->outcome().sentence.contains(u"Track 5, "_s));
        QVERIFY(m_runs->names().filter(QRegularExpression(u"stream.*(?<!log)$"_s)).isEmpty());
    }

    void aSaveFolderThatVanished()
    {
        const QString source = m_runs->film(fullMkv());
        m_runs->base.setSaveFolder(m_runs->path(u"gone"_s));
        const auto job = m_runs->convert(m_runs->probed(source));
        QVERIFY(m_runs->run(job));
        compareFailed(*job, u"its folder is not there"_s);
        QCOMPARE(m_runs->names(), QStringList{u"a.mkv"_s});
    }

    void aSaveFolderThatCantBeWrittenTo() { runInside("cannotBeWrittenTo"); }
    void aFullDiskWhileCopying() { runInside("fullWhileCopying"); }
    void aFullDiskWhileEncoding() { runInside("fullWhileEncoding"); }
    void aFullDiskInPassTwo() { runInside("fullInPassTwo"); }
    void aFullDiskWhileExtracting() { runInside("fullWhileExtracting"); }

    void aToolThatIsKilled()
    {
        const QString source = m_runs->film(wideMkv());
        const auto job = m_runs->convert(m_runs->reencoded(source, u"General"_s, u"1"_s));
        job->startJob();
        QVERIFY(waitFor([this] { return !filesAtWork(m_runs->path(), u"*.m4v"_s).isEmpty(); }));
        const auto process = std::get<tools::ToolProcessPointer>(job->stepTaskList().first());
        QCOMPARE(::kill(static_cast<pid_t>(process->processIdentifier()), SIGKILL), 0);
        QVERIFY(m_runs->waitForEnd());
        compareFailed(*job, u"was ended from outside or crashed"_s);
        const QFileInfo output(m_runs->path(u"a (incomplete).m4v"_s));
        QVERIFY(!QFile::exists(m_runs->path(u"a.m4v"_s)));
        QCOMPARE(job->outcome().sentence.contains(u"incomplete output"_s), output.exists());
        QVERIFY(!output.exists() || output.size() > 0);
        QCOMPARE(contentOf(source), contentOf(wideMkv()));
    }

    // Timestamps.

    void missingTimestampsAreGenerated_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("passes");
        QTest::addColumn<QString>("codecs");
        QTest::newRow("AVI") << packedAvi() << u"1"_s << u"mpeg4"_s;
        QTest::newRow("AVI, two passes asked for") << packedAvi() << u"2"_s << u"mpeg4"_s;
    }

    void missingTimestampsAreGenerated()
    {
        QFETCH(QString, clip);
        QFETCH(QString, passes);
        QFETCH(QString, codecs);
        const QString source = m_runs->film(clip, u"a."_s + QFileInfo(clip).suffix());
        const auto selection = m_runs->probed(source, u"MKV"_s);
        selection->setUserPassNumber(passes);
        const auto job = m_runs->convert(selection);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        const QStringList two{u"Pass 1 Complete"_s, u"Pass 1 Complete"_s,
                              u"Complete"_s}; // the first had failed
        QCOMPARE(completionsOf(*m_runs),
                 passes == u"2"_s ? two : QStringList({u"timestamp error"_s, u"Complete"_s}));
        const QString output = m_runs->path(u"a.mkv"_s);
        QCOMPARE(codecsOf(output), codecs);
        QVERIFY2(qAbs(secondsOf(output) - secondsOf(clip)) < 0.5,
                 qPrintable(QString::number(secondsOf(output))));
    }

    /// Nothing generates those of a raw stream.
    void aRawStreamIsGivenUp()
    {
        const QString source = m_runs->film(rawH264(), u"a.h264"_s);
        const auto job = m_runs->convert(m_runs->probed(source, u"MKV"_s));
        QVERIFY(m_runs->run(job));
        compareFailed(*job, u"generating them did not help"_s);
        QCOMPARE(completionsOf(*m_runs).count(u"timestamp error"_s), 6);
        QCOMPARE(contentOf(source), contentOf(rawH264()));
    }

    // Outputs that would be the source.

    void theSourceIsNeverTheOutput_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("output");
        QTest::newRow("beside itself") << QString() << u"a (2).mkv"_s;
        QTest::newRow("another spelling") << u"other/../"_s << u"a (2).mkv"_s;
        QTest::newRow("two slashes") << u"/"_s << u"a (2).mkv"_s;
        QTest::newRow("a linked folder") << u"linked"_s << u"a (2).mkv"_s;
        QTest::newRow("a hard link") << u"hard"_s << u"hard/a (2).mkv"_s;
        QTest::newRow("a link") << u"soft"_s << u"soft/a (2).mkv"_s;
    }

    void theSourceIsNeverTheOutput()
    {
        QFETCH(QString, folder);
        QFETCH(QString, output);
        using steps::WhenTaken;
        const QList<WhenTaken> ways{WhenTaken::NextFreeName, WhenTaken::Refuse, WhenTaken::Replace};
        for (const WhenTaken taken : drawn(ways, 1)) {
            RealRuns runs;
            const QString source = runs.film(fullMkv());
            for (const QString &name : {u"other"_s, u"hard"_s, u"soft"_s})
                QDir().mkpath(runs.path(name));
            QVERIFY(QFile::link(runs.path(), runs.path(u"linked"_s)));
            QCOMPARE(::link(qPrintable(source), qPrintable(runs.path(u"hard/a.mkv"_s))), 0);
            QVERIFY(QFile::link(source, runs.path(u"soft/a.mkv"_s)));
            if (!folder.isNull())
                runs.base.setSaveFolder(runs.path() + u'/' + folder);
            const auto job = runs.convert(runs.probed(source, u"MKV"_s), taken);
            QVERIFY(runs.run(job));
            QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
            QCOMPARE(contentOf(source), contentOf(fullMkv()));
            QVERIFY(codecsOf(runs.path(output)).startsWith(u"h264 "_s));
        }
    }

    void withoutAnyOtherNameNothingRuns()
    {
        const QString source = m_runs->film(fullMkv());
        for (const QString &name : {u"a.m4v"_s, u"a (2).m4v"_s})
            QVERIFY(QFile::link(source, m_runs->path(name)));
        const auto job = m_runs->convert(m_runs->probed(source), steps::WhenTaken::Replace);
        QVERIFY(m_runs->run(job));
        compareFailed(*job, u"one of the job's own sources"_s);
        QCOMPARE(contentOf(source), contentOf(fullMkv()));
        QVERIFY(QFileInfo(m_runs->path(u"a.m4v"_s)).isSymLink());
    }

private:
    std::unique_ptr<RealRuns> m_runs;
};

TESSARAY_TEST(FaultsTest)
TESSARAY_TEST(TinyDiskTest)
#include "FaultsTest.moc"

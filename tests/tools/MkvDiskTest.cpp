// Operations on Matroska files whose save folder is full or can't be written to, for real.
#include "support/TestMain.h"
#include "support/engines/MkvFaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

const QStringList everything{mkv::join, mkv::split,    mkv::remux,     mkv::remove,
                             mkv::mux,  mkv::editJoin, mkv::editSplit, mkv::editRemux};

/// Runs one row of MkvTinyDiskTest in a place of its own: a tiny disk, or one that can't be written to. Where
/// the system gives no user namespaces, a limit on file sizes and a folder of the system take its place.
void runInside(const QString &test, const QString &row)
{
    const Scratch scratch;
    QDir().mkpath(scratch.path(u"disk"_s));
    const QString line =
        u"mount -t tmpfs -o size=400k tmpfs \"$1\" && TEST_DISK=\"$1\" exec \"$0\" MkvTinyDiskTest \"$2\""_s;
    const QString name = test + u':' + row;
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    if (statusOf(u"unshare"_s, {u"-rm"_s, u"true"_s}, scratch.path()) == 0)
        process.start(u"unshare"_s, {u"-rm"_s, u"sh"_s, u"-c"_s, line,
                                     QCoreApplication::applicationFilePath(), scratch.path(u"disk"_s), name});
    else
        process.start(QCoreApplication::applicationFilePath(), {u"MkvTinyDiskTest"_s, name});
    QVERIFY(process.waitForFinished(120000));
    const QByteArray said = process.readAll();
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, said.constData());
    QVERIFY2(said.contains(u"PASS   : MkvTinyDiskTest::%1(%2)"_s.arg(test, row).toUtf8()), said.constData());
}

} // namespace

/// Runs inside runInside().
class MkvTinyDiskTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isFull_data() { rowsFor(everything, everything.size()); }

    void isFull()
    {
        QFETCH(QString, operation);
        MkvRuns runs;
        const QString source = prepare(runs, operation);
        limit();
        const auto job = runs.add(operation, source);
        QVERIFY(runs.run());
        compareVerdict(*job, Verdict::Failed, u"mkvmerge"_s);
        // What was written is no whole film, and is named; an empty file is not left.
        const QFileInfo output(folderOf(runs) + u'/' + MkvRuns::outputName(operation));
        QCOMPARE(
            job->outcome().sentence.contains(u"The incomplete output %1 was kept."_s.arg(output.filePath())),
            output.exists());
        QVERIFY(!output.exists() || output.size() > 0);
        QVERIFY(contentOf(source) == contentOf(MkvFaultRun::clipFor(operation)));
    }

    void cannotBeWrittenTo_data() { isFull_data(); }

    void cannotBeWrittenTo()
    {
        QFETCH(QString, operation);
        MkvRuns runs;
        const QString source = prepare(runs, operation);
        if (isMounted())
            QCOMPARE(statusOf(u"mount"_s, {u"-o"_s, u"remount,ro"_s, folderOf(runs)}, runs.path()), 0);
        else
            runs.runs.base.setSaveFolder(u"/proc"_s);
        const auto job = runs.add(operation, source);
        const QStringList before = runs.names();
        QVERIFY(runs.run());
        compareVerdict(*job, Verdict::Failed, {});
        QVERIFY2(job->outcome().sentence.size() > 20, qPrintable(job->outcome().sentence));
        QVERIFY(!job->outcome().sentence.contains(u"incomplete"_s));
        QCOMPARE(runs.names(), before);
        QVERIFY(contentOf(source) == contentOf(MkvFaultRun::clipFor(operation)));
    }

private:
    static bool isMounted() { return qEnvironmentVariableIsSet("TEST_DISK"); }
    static QString folderOf(const MkvRuns &runs)
    {
        return isMounted() ? qEnvironmentVariable("TEST_DISK") : runs.path(u"out"_s);
    }

    static QString prepare(MkvRuns &runs, const QString &operation)
    {
        const QString source =
            runs.runs.film(MkvFaultRun::clipFor(operation), MkvFaultRun::nameFor(operation));
        runs.selectionFor(operation, source); // makes what else it needs
        QDir().mkpath(folderOf(runs));
        runs.runs.base.setSaveFolder(folderOf(runs));
        return source;
    }

    /// Where there is no tiny disk, no file may grow larger than one.
    static void limit()
    {
        if (isMounted())
            return;
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit size{400 * 1024, 400 * 1024};
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &size), 0);
    }
};

class MkvDiskTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSaveFolderThatCantBeWrittenTo_data() { rowsFor(everything, 3); }

    void aSaveFolderThatCantBeWrittenTo()
    {
        QFETCH(QString, operation);
        runInside(u"cannotBeWrittenTo"_s, operation);
    }

    void aFullSaveFolder_data() { rowsFor(everything, 3); }

    void aFullSaveFolder()
    {
        QFETCH(QString, operation);
        runInside(u"isFull"_s, operation);
    }
};

TESSARAY_TEST(MkvDiskTest)
TESSARAY_TEST(MkvTinyDiskTest)
#include "MkvDiskTest.moc"

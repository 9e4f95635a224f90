// The split of one file: the step, and the job around it.
#include "engines/KXVideoSplitter.h"
#include "engines/KXSplitVideosJob.h"
#include "support/MkvBench.h"
#include "support/Waiting.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using step::Verdict;
using tools::ToolProcess;

namespace {

const QString splitting = u"MKV Splitting"_s;

class SplitBench final : public MkvBench
{
public:
    using MkvBench::MkvBench;

    SelectionPointer split(const QString &type) const
    {
        const auto made = selection(splitting, {});
        made->setSplitType(type);
        made->setSplitStartTimeText(u"00:10:00"_s);
        made->setSplitEndTimeText(u"00:20:00"_s);
        made->setSplitSize(u"700"_s);
        made->setSplitDurationSeconds(u"600"_s);
        return made;
    }
    tools::ToolProcessPointer start(const QString &type, const QUrl &folder = {})
    {
        return splitter.startConversionForSelectionWithSaveDirectoryURL(split(type), folder);
    }
    std::shared_ptr<KXSplitVideosJob> startJob(const QString &type)
    {
        return MkvBench::start<KXSplitVideosJob>(split(type));
    }
    bool waitForTool() const
    {
        return waitFor([&] { return record.count(u"taskCompletion"_s) > 0; }, 20000);
    }
    QString output() const { return shown(splitter.outputFileURL().toLocalFile()); }
    QString log() const { return shown(splitter.logFileURL().toLocalFile()); }
    void read(const QByteArray &bytes)
    {
        splitter.handleNewTaskResult({ToolProcess::Channel::Output, bytes, nullptr});
    }
    /// What mkvmerge does when it writes these files.
    QStringList writing(const QStringList &names) const
    {
        QStringList script{u"out Progress: 100%"_s, u"out Multiplexing took 0 seconds."_s};
        for (const QString &name : names)
            script << u"write 10 "_s + path(name);
        return script;
    }
    void announce(const QString &name, const QString &text)
    {
        auto *converter = job->stepConverterList().constFirst().get();
        world.notifications.post(name, text,
                                 {{u"stepName"_s, converter->stepName()},
                                  {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }

    KXVideoSplitter splitter{context()};
};

} // namespace

class KXVideoSplitterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewSplitterHasItsName()
    {
        SplitBench bench;
        QCOMPARE(bench.splitter.converterName(), u"videoSplitter"_s);
        QVERIFY(!bench.splitter.isTemporaryOutput());
    }

    // The list. Here one blank's worth of words is one argument each, also by size.

    void splitByTimeIsFollowedByItsPartsAndBySize700By700000k_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("word");
        QTest::newRow("time") << u"time"_s << u"parts:00:10:00-00:20:00"_s;
        QTest::newRow("size") << u"size"_s << u"700000k"_s;
        QTest::newRow("duration") << u"duration"_s << u"600s"_s;
    }

    void splitByTimeIsFollowedByItsPartsAndBySize700By700000k()
    {
        QFETCH(QString, type);
        QFETCH(QString, word);
        SplitBench bench;
        const auto task = bench.start(type);
        QVERIFY(task);
        QCOMPARE(bench.splitter.converterTask(), task);
        QCOMPARE(bench.meant(),
                 u"-o|/v/a.mkv.split.mkv|--split|"_s + word + u"|--compression|-1:none|/v/a.mkv"_s);
        QCOMPARE(bench.launched(), bench.meant());
        QVERIFY(bench.waitForTool());
        QCOMPARE(bench.calls(), QList<QStringList>{bench.meant().split(u'|')});
    }

    void splittingWritesTheWholeNameThenSplitAndTheExtensionAgain()
    {
        SplitBench bench;
        bench.start(u"time"_s);
        QCOMPARE(bench.splitter.inputFileURL(), bench.source);
        QCOMPARE(bench.output(), u"/v/a.mkv.split.mkv"_s);
        QCOMPARE(bench.log(), u"/v/a.mkv.split.log"_s);
        QVERIFY(bench.splitter.tempFileToDeleteURL().isEmpty());
        QCOMPARE(bench.posted(u"conversionStarted"_s), QStringList{u"/v/a.mkv.split.mkv"_s});
        QVERIFY(bench.waitForTool());
        QCOMPARE(bench.splitter.outcome().verdict, Verdict::Ok);
    }

    void theGivenFolderTakesOutputAndLog()
    {
        SplitBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.start(u"time"_s, bench.url(u"s"_s));
        QCOMPARE(bench.output(), u"/v/s/a.mkv.split.mkv"_s);
        QCOMPARE(bench.log(), u"/v/s/a.mkv.split.log"_s);
        QVERIFY(bench.waitForTool());
    }

    void anUnknownSplitTypeStartsNothing()
    {
        SplitBench bench;
        QVERIFY(!bench.start(u"chapters"_s));
        QCOMPARE(bench.splitter.outcome().sentence,
                 u"There is no way to split by \"chapters\", so nothing was started."_s);
        QVERIFY(bench.launches.of(u"mkvmerge"_s).isEmpty());
        QVERIFY(bench.posted(u"conversionStarted"_s).isEmpty());
    }

    /// mkvmerge would put a part's number there.
    void aNameThatLooksLikeThePlaceOfANumberIsChangedWherePartsAreNumbered_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("output");
        QTest::newRow("time") << u"time"_s << u"/v/100%3d %d.mkv.split.mkv"_s; // one file, no number
        QTest::newRow("size") << u"size"_s << u"/v/100_ _.mkv.split.mkv"_s;
        QTest::newRow("duration") << u"duration"_s << u"/v/100_ _.mkv.split.mkv"_s;
    }

    void aNameThatLooksLikeThePlaceOfANumberIsChangedWherePartsAreNumbered()
    {
        QFETCH(QString, type);
        SplitBench bench(MkvBench::wellMuxed(), u"100%3d %d.mkv"_s);
        bench.start(type);
        QTEST(bench.output(), "output");
        QVERIFY(bench.waitForTool());
    }

    // What it wrote.

    void aStretchIsOneFileAndPartsAreThoseThatAreThere()
    {
        SplitBench bench;
        bench.setScript(u"mkvtoolnix/mkvmerge"_s,
                        bench.writing({u"a.mkv.split-002.mkv"_s, u"a.mkv.split-001.mkv"_s}));
        bench.start(u"size"_s);
        QVERIFY(bench.waitForTool());
        QCOMPARE(bench.splitter.outputFiles(),
                 QList<QUrl>({bench.url(u"a.mkv.split-001.mkv"_s), bench.url(u"a.mkv.split-002.mkv"_s)}));
        QVERIFY(waitFor([&] { return !bench.splitter.converterTask()->isRunning(); }));
        QCOMPARE(bench.splitter.outcome().verdict, Verdict::Ok);
        SplitBench stretch;
        stretch.world.scratch.write(u"a.mkv.split-001.mkv"_s, "an earlier part");
        stretch.start(u"time"_s);
        QVERIFY(stretch.waitForTool());
        QCOMPARE(stretch.splitter.outputFiles(), QList<QUrl>{stretch.url(u"a.mkv.split.mkv"_s)});
    }

    void oldPartsOfAnEarlierSplitStayAndOnlyThoseOfThisRunAreNamed()
    {
        SplitBench bench;
        bench.world.scratch.write(u"a.mkv.split-001.mkv"_s, "an earlier part");
        bench.world.scratch.write(u"a.mkv.split-017.mkv"_s, "another one");
        bench.setScript(u"mkvtoolnix/mkvmerge"_s, bench.writing({u"a.mkv.split (2)-001.mkv"_s}));
        const auto job = bench.startJob(u"duration"_s);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(u"a.mkv.split (2)-001.mkv"_s)});
        QCOMPARE(bench.world.scratch.read(u"a.mkv.split-001.mkv"_s), QByteArray("an earlier part"));
        QCOMPARE(bench.world.scratch.read(u"a.mkv.split-017.mkv"_s), QByteArray("another one"));
    }

    void aSplitThatWroteNothingFailed_data()
    {
        QTest::addColumn<QString>("type");
        for (const char *type : {"time", "size", "duration"})
            QTest::newRow(type) << QString::fromLatin1(type);
    }

    void aSplitThatWroteNothingFailed()
    {
        QFETCH(QString, type);
        SplitBench bench;
        bench.setScript(u"mkvtoolnix/mkvmerge"_s, bench.writing({}));
        bench.start(type);
        QVERIFY(bench.waitForTool());
        QVERIFY(waitFor([&] { return !bench.splitter.converterTask()->isRunning(); }));
        QCOMPARE(bench.splitter.outcome().verdict, Verdict::Failed);
        QCOMPARE(bench.splitter.outcome().sentence, u"mkvmerge ended without writing a.mkv.split.mkv."_s);
    }

    void anEmptyPartFails()
    {
        SplitBench bench;
        bench.setScript(u"mkvtoolnix/mkvmerge"_s,
                        bench.writing({u"a.mkv.split-001.mkv"_s})
                            << u"write 0 "_s + bench.path(u"a.mkv.split-002.mkv"_s));
        bench.start(u"size"_s);
        QVERIFY(bench.waitForTool());
        QVERIFY(waitFor([&] { return !bench.splitter.converterTask()->isRunning(); }));
        QCOMPARE(bench.splitter.outcome().sentence, u"mkvmerge wrote nothing into a.mkv.split-002.mkv."_s);
    }

    // Progress.

    /// The whole number with one percent sign: never "45%%".
    void aPercentageIsAnnouncedWithOnePercentSign()
    {
        SplitBench bench;
        bench.splitter.setStepName(u"Splitting Videos"_s);
        bench.read("Progress: 0%\rProgress: 45%\r");
        bench.read("Progress: 4");
        bench.read("6%\r");
        bench.read("The file 'a: 99.mkv' has been opened for writing.\n");
        QCOMPARE(bench.posted(u"monitorSplitUpdate"_s), QStringList({u"45%"_s, u"46%"_s}));
        const auto info = bench.record.named(u"monitorSplitUpdate"_s).constFirst().userInfo;
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Splitting Videos"_s);
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &bench.splitter);
        QVERIFY(info.contains(u"theTask"_s));
    }

    void theEndOfBothStreamsIsTheCompletion()
    {
        SplitBench bench;
        bench.start(u"size"_s);
        QVERIFY(bench.waitForTool());
        QCOMPARE(bench.posted(u"taskCompletion"_s), QStringList{u"Complete"_s});
        QVERIFY(!bench.splitter.conversionError());
    }

    // The job.

    void theJobShowsOneStepThatBeginsWithZero()
    {
        SplitBench bench({u"hang"_s});
        const auto job = bench.startJob(u"size"_s);
        QCOMPARE(job->progressList(), jobs::ProgressList({{u"Splitting Videos"_s, u"0%"_s}}));
        QCOMPARE(bench.progressTexts(), QStringList{u"Splitting Videos=0%"_s});
        QCOMPARE(job->stepConverterList().size(), 1);
        QCOMPARE(job->stepTaskList().size(), 1);
        QCOMPARE(job->logFilesToDeleteList(), QList<QUrl>{bench.url(u"a.mkv.split.log"_s)});
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
    }

    void theJobFollowsItsOwnStepsPercentagesAndCompletion()
    {
        SplitBench bench({u"hang"_s});
        const auto job = bench.startJob(u"size"_s);
        const auto shows = [&] { return job->progressList().constFirst().progress; };
        bench.announce(u"monitorSplitUpdate"_s, u"45%"_s);
        QCOMPARE(shows(), u"45%"_s);
        bench.announce(u"monitorSplitUpdate"_s, u"no percentage"_s);
        bench.announce(u"monitorJoinUpdate"_s, u"46%"_s);
        bench.world.notifications.post(
            u"monitorSplitUpdate"_s, u"47%"_s,
            {{u"stepName"_s, u"Splitting Videos"_s},
             {u"theConverter"_s, QVariant::fromValue<QObject *>(&bench.splitter)}});
        QCOMPARE(shows(), u"45%"_s);
        bench.announce(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(shows(), u"Complete"_s);
        QVERIFY(bench.waitForEnd());
    }

    void theJobWritesIntoTheSaveFolder()
    {
        SplitBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.world.setSaveFolder(bench.path(u"s"_s));
        const auto job = bench.startJob(u"time"_s);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(u"s/a.mkv.split.mkv"_s)});
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void theJobOfAnUnknownSplitTypeEndsAsFailed()
    {
        SplitBench bench;
        const auto job = bench.startJob(u"chapters"_s);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QCOMPARE(job->outcome().sentence,
                 u"There is no way to split by \"chapters\", so nothing was started."_s);
        QVERIFY(bench.calls().isEmpty());
    }
};

QTEST_GUILESS_MAIN(KXVideoSplitterTest)
#include "KXVideoSplitterTest.moc"

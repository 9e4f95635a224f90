// The split of one file: the step, and the job around it.
#include "engines/mkvtoolnix/KXVideoSplitter.h"
#include "engines/mkvtoolnix/KXSplitVideosJob.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;
using tools::ToolProcess;

namespace {

class SplitFixture final : public MkvFixture
{
public:
    using MkvFixture::MkvFixture;

    SelectionPointer split(const QString &type) const
    {
        const auto made = selection(mkvSplitting, {});
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
        return MkvFixture::start<KXSplitVideosJob>(split(type));
    }
    bool waitForTool() const
    {
        return waitFor([&] { return record.count(u"taskCompletion"_s) > 0; });
    }
    QString output() const { return shown(splitter.outputFileURL().toLocalFile()); }
    QString log() const { return shown(splitter.logFileURL().toLocalFile()); }
    void read(const QByteArray &bytes)
    {
        splitter.handleNewTaskResult({ToolProcess::Channel::Output, bytes, nullptr});
    }
    /// What mkvmerge does when it writes these files, where the output is called "1.mkv".
    QStringList writing(const QStringList &names) const
    {
        QStringList script{u"out Progress: 100%"_s, u"out Multiplexing took 0 seconds."_s};
        for (const QString &name : names)
            script << u"write 10 "_s + name;
        return script;
    }
    void announce(const QString &name, const QString &text)
    {
        auto *converter = job->stepConverterList().constFirst().get();
        base.notifications.post(name, text,
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
        SplitFixture fixture;
        QCOMPARE(fixture.splitter.converterName(), u"videoSplitter"_s);
        QVERIFY(!fixture.splitter.isTemporaryOutput());
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
        SplitFixture fixture;
        const auto task = fixture.start(type);
        QVERIFY(task);
        QCOMPARE(fixture.splitter.converterTask(), task);
        QCOMPARE(fixture.meant(),
                 u"-o|/v/a.mkv.split.mkv|--split|"_s + word + u"|--compression|-1:none|/v/a.mkv"_s);
        QCOMPARE(fixture.launched(), fixture.meant());
        QVERIFY(fixture.waitForTool());
        QCOMPARE(fixture.calls(), QList<QStringList>{fixture.meant().split(u'|')});
    }

    void splittingWritesTheWholeNameThenSplitAndTheExtensionAgain()
    {
        SplitFixture fixture;
        fixture.start(u"time"_s);
        QCOMPARE(fixture.splitter.inputFileURL(), fixture.source);
        QCOMPARE(fixture.output(), u"/v/a.mkv.split.mkv"_s);
        QCOMPARE(fixture.log(), u"/v/a.mkv.split.log"_s);
        QVERIFY(fixture.splitter.tempFileToDeleteURL().isEmpty());
        QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList{u"/v/a.mkv.split.mkv"_s});
        QVERIFY(fixture.waitForTool());
        QCOMPARE(fixture.splitter.outcome().verdict, Verdict::Ok);
    }

    void theGivenFolderTakesOutputAndLog()
    {
        SplitFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.start(u"time"_s, fixture.url(u"s"_s));
        QCOMPARE(fixture.output(), u"/v/s/a.mkv.split.mkv"_s);
        QCOMPARE(fixture.log(), u"/v/s/a.mkv.split.log"_s);
        QVERIFY(fixture.waitForTool());
    }

    void anUnknownSplitTypeStartsNothing()
    {
        SplitFixture fixture;
        QVERIFY(!fixture.start(u"chapters"_s));
        QCOMPARE(fixture.splitter.outcome().sentence,
                 u"There is no way to split by \"chapters\", so nothing was started."_s);
        QVERIFY(fixture.launches.of(u"mkvmerge"_s).isEmpty());
        QVERIFY(fixture.posted(u"conversionStarted"_s).isEmpty());
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
        SplitFixture fixture(MkvFixture::wellMuxed(), u"100%3d %d.mkv"_s);
        fixture.start(type);
        QTEST(fixture.output(), "output");
        QVERIFY(fixture.waitForTool());
    }

    // What it wrote.

    void aStretchIsOneFileAndPartsAreThoseThatAreThere()
    {
        SplitFixture fixture;
        fixture.setScript(u"mkvtoolnix/mkvmerge"_s, fixture.writing({u"1-002.mkv"_s, u"1-001.mkv"_s}));
        fixture.start(u"size"_s);
        QVERIFY(fixture.waitForTool());
        QCOMPARE(fixture.splitter.outputFiles(),
                 QList<QUrl>({fixture.url(u"a.mkv.split-001.mkv"_s), fixture.url(u"a.mkv.split-002.mkv"_s)}));
        QVERIFY(waitFor([&] { return !fixture.splitter.converterTask()->isRunning(); }));
        QCOMPARE(fixture.splitter.outcome().verdict, Verdict::Ok);
        SplitFixture stretch;
        stretch.base.scratch.write(u"a.mkv.split-001.mkv"_s, "an earlier part");
        stretch.start(u"time"_s);
        QVERIFY(stretch.waitForTool());
        QCOMPARE(stretch.splitter.outputFiles(), QList<QUrl>{stretch.url(u"a.mkv.split.mkv"_s)});
    }

    void oldPartsOfAnEarlierSplitStayAndOnlyThoseOfThisRunAreNamed()
    {
        SplitFixture fixture;
        fixture.base.scratch.write(u"a.mkv.split-001.mkv"_s, "an earlier part");
        fixture.base.scratch.write(u"a.mkv.split-017.mkv"_s, "another one");
        fixture.setScript(u"mkvtoolnix/mkvmerge"_s, fixture.writing({u"1-001.mkv"_s}));
        const auto job = fixture.startJob(u"duration"_s);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"a.mkv.split (2)-001.mkv"_s)});
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.split-001.mkv"_s), QByteArray("an earlier part"));
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.split-017.mkv"_s), QByteArray("another one"));
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
        SplitFixture fixture;
        fixture.setScript(u"mkvtoolnix/mkvmerge"_s, fixture.writing({}));
        fixture.start(type);
        QVERIFY(fixture.waitForTool());
        QVERIFY(waitFor([&] { return !fixture.splitter.converterTask()->isRunning(); }));
        QCOMPARE(fixture.splitter.outcome().verdict, Verdict::Failed);
        QCOMPARE(fixture.splitter.outcome().sentence, u"mkvmerge ended without writing a.mkv.split.mkv."_s);
    }

    void anEmptyPartFails()
    {
        SplitFixture fixture;
        fixture.setScript(u"mkvtoolnix/mkvmerge"_s, fixture.writing({u"1-001.mkv"_s})
                                                        << u"write 0 1-002.mkv"_s);
        fixture.start(u"size"_s);
        QVERIFY(fixture.waitForTool());
        QVERIFY(waitFor([&] { return !fixture.splitter.converterTask()->isRunning(); }));
        QCOMPARE(fixture.splitter.outcome().sentence, u"mkvmerge wrote nothing into a.mkv.split-002.mkv."_s);
    }

    // Progress.

    /// The whole number with one percent sign: never "45%%".
    void aPercentageIsAnnouncedWithOnePercentSign()
    {
        SplitFixture fixture;
        fixture.splitter.setStepName(u"Splitting Videos"_s);
        fixture.read("Progress: 0%\rProgress: 45%\r");
        fixture.read("Progress: 4");
        fixture.read("6%\r");
        fixture.read("The file 'a: 99.mkv' has been opened for writing.\n");
        QCOMPARE(fixture.posted(u"monitorSplitUpdate"_s), QStringList({u"45%"_s, u"46%"_s}));
        const auto info = fixture.record.named(u"monitorSplitUpdate"_s).constFirst().userInfo;
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Splitting Videos"_s);
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &fixture.splitter);
        QVERIFY(info.contains(u"theTask"_s));
    }

    void theEndOfBothStreamsIsTheCompletion()
    {
        SplitFixture fixture;
        fixture.start(u"size"_s);
        QVERIFY(fixture.waitForTool());
        QCOMPARE(fixture.posted(u"taskCompletion"_s), QStringList{u"Complete"_s});
        QVERIFY(!fixture.splitter.conversionError());
    }

    // The job.

    void theJobShowsOneStepThatBeginsWithZero()
    {
        SplitFixture fixture({u"hang"_s});
        const auto job = fixture.startJob(u"size"_s);
        QCOMPARE(job->progressList(), jobs::ProgressList({{u"Splitting Videos"_s, u"0%"_s}}));
        QCOMPARE(fixture.progressTexts(), QStringList{u"Splitting Videos=0%"_s});
        QCOMPARE(job->stepConverterList().size(), 1);
        QCOMPARE(job->stepTaskList().size(), 1);
        QCOMPARE(job->logFilesToDeleteList(), QList<QUrl>{fixture.url(u"a.mkv.split.log"_s)});
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
    }

    void theJobFollowsItsOwnStepsPercentagesAndCompletion()
    {
        SplitFixture fixture({u"hang"_s});
        const auto job = fixture.startJob(u"size"_s);
        const auto shows = [&] { return job->progressList().constFirst().progress; };
        fixture.announce(u"monitorSplitUpdate"_s, u"45%"_s);
        QCOMPARE(shows(), u"45%"_s);
        fixture.announce(u"monitorSplitUpdate"_s, u"no percentage"_s);
        fixture.announce(u"monitorJoinUpdate"_s, u"46%"_s);
        fixture.base.notifications.post(
            u"monitorSplitUpdate"_s, u"47%"_s,
            {{u"stepName"_s, u"Splitting Videos"_s},
             {u"theConverter"_s, QVariant::fromValue<QObject *>(&fixture.splitter)}});
        QCOMPARE(shows(), u"45%"_s);
        fixture.announce(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(shows(), u"Complete"_s);
        QVERIFY(fixture.waitForEnd());
    }

    void theJobWritesIntoTheSaveFolder()
    {
        SplitFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        const auto job = fixture.startJob(u"time"_s);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"s/a.mkv.split.mkv"_s)});
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void theJobOfAnUnknownSplitTypeEndsAsFailed()
    {
        SplitFixture fixture;
        const auto job = fixture.startJob(u"chapters"_s);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QCOMPARE(job->outcome().sentence,
                 u"There is no way to split by \"chapters\", so nothing was started."_s);
        QVERIFY(fixture.calls().isEmpty());
    }
};

TESSARAY_TEST(KXVideoSplitterTest)
#include "KXVideoSplitterTest.moc"

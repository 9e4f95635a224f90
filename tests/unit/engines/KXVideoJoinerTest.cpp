// The join of several files: the step, and the job around it.
#include "engines/join/KXVideoJoiner.h"
#include "engines/join/KXJoinVideosJob.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;
using tools::ToolProcess;

namespace {

const QString ffmpegEnd = u"err frame=9 Lsize=9kB time=00:04:00.00 bitrate"_s;

/// A joiner alone in its fixture; each of its three tools records how it is called.
class JoinFixture final : public MkvFixture
{
public:
    explicit JoinFixture(const QString &tool, const QStringList &mkvmerge = wellMuxed())
        : MkvFixture(mkvmerge)
    {
        base.scratch.write(u"temp/x"_s, {});
        setScript(u"mp4box/mp4box"_s, {u"write 10 last"_s});
        setScript(u"ffmpeg/ffmpeg"_s, {ffmpegEnd, u"write 10 last"_s});
        joiner.setJoinerName(tool);
    }

    SelectionPointer joined(const QStringList &names) const
    {
        const auto made = selection(mkvJoining, {});
        QList<QUrl> files;
        for (const QString &name : names) {
            base.scratch.write(name, "film");
            files.append(url(name));
        }
        made->setEditFilesURLsList(files);
        return made;
    }
    tools::ToolProcessPointer start(const QStringList &names, const QUrl &folder = {})
    {
        return joiner.startConversionForSelectionWithSaveDirectoryURL(joined(names), folder);
    }
    std::shared_ptr<KXJoinVideosJob> startJob(const QStringList &names)
    {
        return MkvFixture::start<KXJoinVideosJob>(joined(names));
    }
    bool waitForTool() const
    {
        return waitFor([&] { return record.count(u"taskCompletion"_s) > 0; }) &&
               waitFor([&] { return !joiner.converterTask()->isRunning(); });
    }
    QString output() const { return shown(joiner.outputFileURL().toLocalFile()); }
    QString log() const { return shown(joiner.logFileURL().toLocalFile()); }
    void read(const QByteArray &bytes, ToolProcess::Channel channel)
    {
        joiner.handleNewTaskResult({channel, bytes, nullptr});
    }
    QStringList updates() const
    {
        QStringList texts;
        for (const KXNotification &update : joins.all())
            texts << update.object.toString();
        return texts;
    }
    void announce(const QString &name, const QString &text)
    {
        auto *converter = job->stepConverterList().constFirst().get();
        base.notifications.post(name, text,
                                {{u"stepName"_s, converter->stepName()},
                                 {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }

    KXVideoJoiner joiner{context()};
    NotificationRecord joins{base.notifications, {u"monitorJoinUpdate"_s}};
};

} // namespace

class KXVideoJoinerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewJoinerJoinsWithMkvmerge()
    {
        MkvFixture fixture;
        KXVideoJoiner joiner(fixture.context());
        QCOMPARE(joiner.converterName(), u"videoJoiner"_s);
        QCOMPARE(joiner.joinerName(), u"mkvmerge"_s);
        QVERIFY(!joiner.isTemporaryOutput());
        QCOMPARE(joiner.monitorCounter(), 0);
    }

    // The lists.

    void eachToolGetsItsList_data()
    {
        QTest::addColumn<QString>("joiner");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("meant");
        QTest::addColumn<QString>("launched");
        const QString two = u"-o|/v/a.mkv.joined.mkv|/v/a.mkv|+|/v/b.mkv"_s;
        QTest::newRow("mkvmerge, two") << u"mkvmerge"_s << QStringList{u"a.mkv"_s, u"b.mkv"_s} << two << two;
        const QString three = u"-o|/v/c.mkv.joined.mkv|/v/c.mkv|+|/v/a.mkv|+|/v/b.mkv"_s;
        QTest::newRow("mkvmerge, three in their order")
            << u"mkvmerge"_s << QStringList{u"c.mkv"_s, u"a.mkv"_s, u"b.mkv"_s} << three << three;
        const QString boxed = u"-cat|/v/a.mp4|-cat|/v/b.mp4|-tmp|/v|-new|/v/a.mp4.joined.mp4"_s;
        QTest::newRow("mp4box, two") << u"mp4box"_s << QStringList{u"a.mp4"_s, u"b.mp4"_s} << boxed << boxed;
        const QString more =
            u"-cat|/v/c.m4v|-cat|/v/it's a.mp4|-cat|/v/b.mov|-tmp|/v|-new|/v/c.m4v.joined.m4v"_s;
        QTest::newRow("mp4box, three in their order")
            << u"mp4box"_s << QStringList{u"c.m4v"_s, u"it's a.mp4"_s, u"b.mov"_s} << more << more;
        QTest::newRow("ffmpeg") << u"ffmpeg"_s << QStringList{u"a.mp4"_s, u"b.mp4"_s}
                                << u"-f|concat|-i|/v/temp/mylist.txt|-c|copy|-y|/v/a.mp4.joined.mp4"_s
                                << u"-f|concat|-safe|0|-i|/v/temp/mylist.txt|-map|0|-c|copy|-y|"
                                   "/v/a.mp4.joined.mp4"_s;
    }

    void eachToolGetsItsList()
    {
        QFETCH(QString, joiner);
        QFETCH(QStringList, names);
        QFETCH(QString, launched);
        JoinFixture fixture(joiner);
        const auto task = fixture.start(names);
        QVERIFY(task);
        QCOMPARE(fixture.joiner.converterTask(), task);
        QTEST(fixture.meant(0, joiner), "meant");
        QCOMPARE(fixture.launched(0, joiner), launched);
        QVERIFY(fixture.waitForTool());
        QCOMPARE(fixture.calls(joiner), QList<QStringList>{launched.split(u'|')});
    }

    void joiningTwoFilesWithFfmpegWritesMylistWithALineForEachAndTheJoinedOutput()
    {
        JoinFixture fixture(u"ffmpeg"_s);
        QVERIFY(fixture.start({u"a.mp4"_s, u"b.mp4"_s}));
        QCOMPARE(fixture.shown(QString::fromUtf8(fixture.base.scratch.read(u"temp/mylist.txt"_s))),
                 u"file '/v/a.mp4'\nfile '/v/b.mp4'\n"_s);
        QCOMPARE(fixture.output(), u"/v/a.mp4.joined.mp4"_s);
        QCOMPARE(fixture.log(), u"/v/a.mp4.joined.log"_s);
        QVERIFY(fixture.waitForTool());
    }

    /// An apostrophe ends the quotes, stands behind a backslash, and begins them anew.
    void apostrophesAreEscapedInTheListFile()
    {
        JoinFixture fixture(u"ffmpeg"_s);
        QVERIFY(fixture.start({u"it's 'a'.mp4"_s, u"Élise \"b\" $(x).mp4"_s}));
        QCOMPARE(fixture.shown(QString::fromUtf8(fixture.base.scratch.read(u"temp/mylist.txt"_s))),
                 u"file '/v/it'\\''s '\\''a'\\''.mp4'\nfile '/v/Élise \"b\" $(x).mp4'\n"_s);
        QVERIFY(fixture.waitForTool());
    }

    void aListFileThatCantBeWrittenIsTold()
    {
        JoinFixture fixture(u"ffmpeg"_s);
        fixture.base.scratch.write(u"temp/mylist.txt/x"_s, {}); // a folder in its place
        QVERIFY(!fixture.start({u"a.mp4"_s, u"b.mp4"_s}));
        QCOMPARE(fixture.shown(fixture.joiner.outcome().sentence),
                 u"The list of files to join can't be written to /v/temp/mylist.txt."_s);
        QVERIFY(fixture.launches.of(u"ffmpeg"_s).isEmpty());
        QVERIFY(fixture.posted(u"conversionStarted"_s).isEmpty());
    }

    void anUnknownToolStartsNothing()
    {
        JoinFixture fixture(u"cat"_s);
        QVERIFY(!fixture.start({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(!fixture.joiner.converterTask());
        QCOMPARE(fixture.joiner.outcome().verdict, Verdict::Failed);
        QCOMPARE(fixture.joiner.outcome().sentence,
                 u"There is no tool \"cat\" to join with, so nothing was started."_s);
        QVERIFY(fixture.posted(u"conversionStarted"_s).isEmpty());
    }

    void withoutFilesNothingIsJoined()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        QVERIFY(!fixture.start({}));
        QCOMPARE(fixture.joiner.outcome().sentence, u"There are no files to join."_s);
    }

    // Names.

    void theGivenFolderTakesOutputAndLog()
    {
        for (const QString &tool : {u"mkvmerge"_s, u"mp4box"_s, u"ffmpeg"_s}) {
            JoinFixture fixture(tool);
            fixture.base.scratch.write(u"s/x"_s, {});
            QVERIFY(fixture.start({u"a.mp4"_s, u"b.mp4"_s}, fixture.url(u"s"_s)));
            QCOMPARE(fixture.output(), u"/v/s/a.mp4.joined.mp4"_s);
            QCOMPARE(fixture.log(), u"/v/s/a.mp4.joined.log"_s);
            QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList{u"/v/s/a.mp4.joined.mp4"_s});
            if (tool == u"mp4box"_s)
                QVERIFY(fixture.meant(0, tool).contains(u"|-tmp|/v/s|"_s));
            QVERIFY(fixture.waitForTool());
        }
    }

    void namesThatAreTakenGetANumber()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        fixture.base.scratch.write(u"a.mkv.joined.mkv"_s, "another film");
        fixture.base.scratch.write(u"a.mkv.joined.log"_s, "another log");
        QVERIFY(fixture.start({u"a.mkv"_s, u"b.mkv"_s}));
        QCOMPARE(fixture.output(), u"/v/a.mkv.joined (2).mkv"_s);
        QCOMPARE(fixture.log(), u"/v/a.mkv.joined (2).log"_s);
        QVERIFY(fixture.waitForTool());
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.joined.mkv"_s), QByteArray("another film"));
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.joined.log"_s), QByteArray("another log"));
    }

    // Progress.

    /// The whole number with one percent sign: never "45%%".
    void aPercentageOfMkvmergeIsAnnouncedWithOnePercentSign()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        fixture.joiner.setStepName(u"Joining Videos"_s);
        fixture.read("Progress: 0%\rProgress: 45%\r", ToolProcess::Channel::Output);
        fixture.read("Progress: 4", ToolProcess::Channel::Output);
        fixture.read("6%\r", ToolProcess::Channel::Output);
        fixture.read("'/v/a: 99%.mkv': Using the demultiplexer\n", ToolProcess::Channel::Output);
        QCOMPARE(fixture.updates(), QStringList({u"45%"_s, u"46%"_s}));
        const auto info = fixture.joins.all().constFirst().userInfo;
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Joining Videos"_s);
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &fixture.joiner);
        QVERIFY(info.contains(u"theTask"_s));
    }

    void aPercentageOfMp4boxIsItsShareOfTheLast()
    {
        JoinFixture fixture(u"mp4box"_s);
        fixture.read("Appending: |=         | (10/100)\rAppending: |==    | (45/100)\r",
                     ToolProcess::Channel::Error);
        fixture.read("Adding fragment\n", ToolProcess::Channel::Error);
        fixture.read("Writing: |====| (3/4)\n", ToolProcess::Channel::Output);
        QCOMPARE(fixture.updates(), QStringList({u"45%"_s, u"75%"_s}));
    }

    /// Two files of two minutes each: one minute is a quarter.
    void aPercentageOfFfmpegCountsAllFilesTogether()
    {
        JoinFixture fixture(u"ffmpeg"_s, {});
        fixture.setScript(u"ffmpeg/ffmpeg"_s,
                          {u"err frame=1 time=00:01:00.00 bitrate"_s, ffmpegEnd, u"write 10 last"_s});
        QVERIFY(fixture.start({u"a.mp4"_s, u"b.mp4"_s}));
        QVERIFY(fixture.waitForTool());
        QVERIFY(!fixture.updates().isEmpty());
        QCOMPARE(fixture.updates().constLast(), u"100%"_s);
        JoinFixture quarter(u"ffmpeg"_s);
        quarter.setScript(u"ffmpeg/ffmpeg"_s, {u"err frame=1 time=00:01:00.00 bitrate"_s, u"hang"_s});
        QVERIFY(quarter.start({u"a.mp4"_s, u"b.mp4"_s}));
        QVERIFY(waitFor([&] { return !quarter.updates().isEmpty(); }));
        QCOMPARE(quarter.updates(), QStringList{u"25%"_s});
        QCOMPARE(quarter.joiner.inputFileURL(), quarter.url(u"a.mp4"_s)); // as it was
        quarter.joiner.converterTask()->terminate();
        QVERIFY(quarter.waitForTool());
    }

    // How it ended.

    void howAJoinEnded_data()
    {
        QTest::addColumn<QString>("joiner");
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<Verdict>("verdict");
        QTest::addColumn<QString>("says");
        QTest::newRow("mkvmerge, well") << u"mkvmerge"_s << MkvFixture::wellMuxed() << Verdict::Ok << u""_s;
        QTest::newRow("mkvmerge, with warnings")
            << u"mkvmerge"_s
            << QStringList{u"out Warning: They differ."_s, u"write 9 after:-o"_s, u"exit 1"_s}
            << Verdict::Warnings << u"They differ."_s;
        QTest::newRow("mkvmerge, not") << u"mkvmerge"_s << QStringList{u"out Error: No."_s, u"exit 2"_s}
                                       << Verdict::Failed << u"Error: No."_s;
        QTest::newRow("ffmpeg, well")
            << u"ffmpeg"_s << QStringList{ffmpegEnd, u"write 9 last"_s} << Verdict::Ok << u""_s;
        QTest::newRow("ffmpeg, a file left out")
            << u"ffmpeg"_s
            << QStringList{u"err [concat @ 0x1] Impossible to open '/v/b.mp4'"_s, ffmpegEnd,
                           u"write 9 last"_s}
            << Verdict::Failed << u"A file could not be opened, so it is not in the output"_s;
        QTest::newRow("ffmpeg, not") << u"ffmpeg"_s << QStringList{u"err No such file"_s, u"exit 1"_s}
                                     << Verdict::Failed << u"No such file"_s;
        QTest::newRow("mp4box, well")
            << u"mp4box"_s << QStringList{u"write 9 last"_s} << Verdict::Ok << u""_s;
        QTest::newRow("mp4box, not") << u"mp4box"_s << QStringList{u"err Error appending"_s, u"exit 1"_s}
                                     << Verdict::Failed << u"Error appending"_s;
        QTest::newRow("mp4box, nothing written") << u"mp4box"_s << QStringList{u"exit 0"_s} << Verdict::Failed
                                                 << u"mp4box ended without writing a.mp4.joined.mp4"_s;
    }

    void howAJoinEnded()
    {
        QFETCH(QString, joiner);
        QFETCH(QStringList, script);
        QFETCH(QString, says);
        JoinFixture fixture(joiner);
        const QHash<QString, QString> places{{u"mkvmerge"_s, u"mkvtoolnix/mkvmerge"_s},
                                             {u"ffmpeg"_s, u"ffmpeg/ffmpeg"_s},
                                             {u"mp4box"_s, u"mp4box/mp4box"_s}};
        fixture.setScript(places.value(joiner), script);
        QVERIFY(fixture.start({u"a.mp4"_s, u"b.mp4"_s}));
        QVERIFY(fixture.waitForTool());
        const steps::Outcome outcome = fixture.joiner.outcome();
        QTEST(outcome.verdict, "verdict");
        QVERIFY2(outcome.sentence.contains(says), qPrintable(outcome.sentence));
        QCOMPARE(outcome.sentence.isEmpty(), says.isEmpty());
        QCOMPARE(fixture.posted(u"taskCompletion"_s), QStringList{u"Complete"_s}); // whatever came of it
    }

    // The job.

    /// A word comes first, on purpose: a number stands there when the tool tells one.
    void theJobShowsJoiningUntilTheFirstPercentage()
    {
        JoinFixture fixture(u"mkvmerge"_s, {u"hang"_s});
        const auto job = fixture.startJob({u"a.mkv"_s, u"b.mkv"_s});
        QCOMPARE(job->progressList(), jobs::ProgressList({{u"Joining Videos"_s, u"Joining"_s}}));
        QCOMPARE(fixture.progressTexts().constLast(), u"Joining Videos=Joining"_s);
        QCOMPARE(job->stepConverterList().size(), 1);
        QVERIFY(waitFor([&] { return job->stepTaskList().size() == 1; })); // once the files were looked at
        QCOMPARE(job->logFilesToDeleteList(), QList<QUrl>{fixture.url(u"a.mkv.joined.log"_s)});
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
        fixture.announce(u"monitorJoinUpdate"_s, u"no percentage"_s);
        fixture.announce(u"monitorSplitUpdate"_s, u"44%"_s);
        QCOMPARE(job->progressList().constFirst().progress, u"Joining"_s);
        fixture.announce(u"monitorJoinUpdate"_s, u"45%"_s);
        QCOMPARE(job->progressList().constFirst(), (jobs::ProgressItem{u"Joining Videos"_s, u"45%"_s}));
        fixture.announce(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(job->progressList().constFirst().progress, u"Complete"_s);
        QVERIFY(fixture.waitForEnd());
    }

    /// At most one look a core, then the tool; a stop ends the looks.
    void theToolStartsOnceTheFilesWereLookedAt()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        const QString pids = fixture.path(u"pids"_s);
        fixture.setScript(u"ffmpeg/ffprobe"_s, {u"pid "_s + pids, u"hang"_s});
        fixture.base.toolsAtOnce = 2;
        const auto job = fixture.startJob({u"a.mkv"_s, u"b.mkv"_s, u"c.mkv"_s});
        const auto looks = [&] { return fixture.base.scratch.read(u"pids"_s).split('\n').size() - 1; };
        QVERIFY(waitFor([&] { return looks() == 2; }));
        QTest::qWait(300);
        QCOMPARE(looks(), 2);
        QCOMPARE(job->progressList(), jobs::ProgressList({{u"Joining Videos"_s, u"Joining"_s}}));
        QVERIFY(fixture.calls(u"mkvmerge"_s).isEmpty());
        job->stopJob();
        QCOMPARE(job->outcome().verdict, Verdict::Stopped);
        for (const QByteArray &pid : fixture.base.scratch.read(u"pids"_s).trimmed().split('\n'))
            QVERIFY(waitFor([&] { return !runs(pid.toLongLong()); }));
        QVERIFY(fixture.calls(u"mkvmerge"_s).isEmpty());
        QVERIFY(!QFile::exists(fixture.path(u"a.mkv.joined.mkv"_s)));
        QVERIFY(fixture.base.alerts.shown().isEmpty());
    }

    void aJobThatIsStoppedAtOnceLooksAtNothing()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        const auto job = fixture.startJob({u"a.mkv"_s, u"b.mkv"_s});
        job->stopJob();
        QTest::qWait(200);
        QVERIFY(fixture.calls(u"ffprobe"_s).isEmpty());
        QVERIFY(fixture.calls(u"mkvmerge"_s).isEmpty());
        QCOMPARE(job->outcome().verdict, Verdict::Stopped);
    }

    void aFileThatIsNoFilmRefusesTheJoin()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        fixture.setScript(u"ffmpeg/ffprobe"_s, {u"out {}"_s, u"exit 1"_s});
        const auto job = fixture.startJob({u"a.mkv"_s, u"b.mkv"_s});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QCOMPARE(job->outcome().sentence, u"a.mkv can't be read as a film, so nothing was started."_s);
        QVERIFY(fixture.calls(u"mkvmerge"_s).isEmpty());
        QCOMPARE(fixture.base.scratch.names().filter(u"joined"_s), QStringList());
    }

    /// A pause while the files are looked at holds the tool too.
    void aPausedJobHoldsTheToolThatStartsMeanwhile()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        const auto job = fixture.startJob({u"a.mkv"_s, u"b.mkv"_s});
        job->pauseJob();
        QVERIFY(waitFor([&] { return job->stepTaskList().size() == 1; }));
        QVERIFY(std::get<tools::ToolProcessPointer>(job->stepTaskList().constFirst())->isSuspended());
        job->resumeJob();
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void theJobTakesTheToolThatFitsTheFiles_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("hasMp4box");
        QTest::addColumn<QString>("tool");
        QTest::newRow("mkv") << QStringList{u"a.mkv"_s, u"b.MKV"_s} << true << u"mkvmerge"_s;
        QTest::newRow("mp4 where mp4box is") << QStringList{u"a.mp4"_s, u"b.m4v"_s} << true << u"mp4box"_s;
        QTest::newRow("mp4 where it isn't") << QStringList{u"a.mp4"_s, u"b.m4v"_s} << false << u"ffmpeg"_s;
        QTest::newRow("both") << QStringList{u"a.mkv"_s, u"b.mp4"_s} << true << u"ffmpeg"_s;
        QTest::newRow("avi") << QStringList{u"a.avi"_s, u"b.avi"_s} << true << u"ffmpeg"_s;
    }

    void theJobTakesTheToolThatFitsTheFiles()
    {
        QFETCH(QStringList, names);
        QFETCH(bool, hasMp4box);
        QFETCH(QString, tool);
        JoinFixture fixture(u"mkvmerge"_s);
        if (!hasMp4box)
            QVERIFY(
                QFile::remove(fixture.base.preferences.toolsLocation().toLocalFile() + u"/mp4box/mp4box"_s));
        const auto job = fixture.startJob(names);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        for (const QString &other : {u"mkvmerge"_s, u"ffmpeg"_s, u"mp4box"_s})
            QCOMPARE(fixture.calls(other).size(), other == tool ? 1 : 0);
    }

    /// Two joins that run after each other share no list.
    void theListFileLiesInTheJobsOwnFolderAndGoesWithIt()
    {
        JoinFixture fixture(u"ffmpeg"_s);
        QVERIFY(QFile::remove(fixture.base.preferences.toolsLocation().toLocalFile() + u"/mp4box/mp4box"_s));
        const auto job = fixture.startJob({u"a.mp4"_s, u"b.mp4"_s});
        QVERIFY(fixture.waitForEnd());
        const QStringList call = fixture.calls(u"ffmpeg"_s).constFirst();
        const QString list = call.value(call.indexOf(u"-i"_s) + 1);
        QVERIFY2(list.endsWith(u"/mylist.txt"_s), qPrintable(list));
        QVERIFY(!list.startsWith(u"/v/mylist"_s)); // not beside the films
        QVERIFY(!fixture.base.scratch.names().contains(u"mylist.txt"_s));
        JoinFixture other(u"ffmpeg"_s);
        QVERIFY(QFile::remove(other.base.preferences.toolsLocation().toLocalFile() + u"/mp4box/mp4box"_s));
        const auto next = other.startJob({u"a.mp4"_s, u"b.mp4"_s});
        QVERIFY(other.waitForEnd());
        const QStringList second = other.calls(u"ffmpeg"_s).constFirst();
        QVERIFY(second.value(second.indexOf(u"-i"_s) + 1) != list);
        QVERIFY(!QFile::exists(list));
    }

    void theJobWritesIntoTheSaveFolder()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        const auto job = fixture.startJob({u"b.mkv"_s, u"c.mkv"_s});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"s/b.mkv.joined.mkv"_s)});
    }

    void aJobWithoutFilesEndsAsFailed()
    {
        JoinFixture fixture(u"mkvmerge"_s);
        const auto job = fixture.startJob({});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(!fixture.progressTexts().contains(u"Joining Videos=Joining"_s));
    }
};

TESSARAY_TEST(KXVideoJoinerTest)
#include "KXVideoJoinerTest.moc"

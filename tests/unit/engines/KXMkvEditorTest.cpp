#include "engines/KXMkvEditor.h"
#include "support/HandMade.h"
#include "support/MkvBench.h"
#include "support/ProbeJson.h"
#include "support/Waiting.h"

#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using step::Verdict;
using tools::ToolProcess;

namespace {

const QString joining = u"MKV Joining"_s;
const QString splitting = u"MKV Splitting"_s;

/// An editor alone in its world, for "a.mkv", "b.mkv" and "c.mkv".
class EditorBench final : public MkvBench
{
public:
    explicit EditorBench(const QStringList &mkvmerge = wellMuxed(), const QString &sourceName = {})
        : MkvBench(mkvmerge, sourceName)
    {
        for (const QString &name : {u"b.mkv"_s, u"c.mkv"_s})
            world.scratch.write(name, "film");
    }
    ~EditorBench() { editor.terminatePIDWaitUntilTerminated(editor.doShell_ID(), KXHelpers::Wait::No); }
    Q_DISABLE_COPY_MOVE(EditorBench)

    SelectionPointer joined(const QStringList &names) const
    {
        const auto made = selection(joining, {});
        QList<QUrl> files;
        for (const QString &name : names)
            files.append(url(name));
        made->setEditFilesURLsList(files);
        return made;
    }
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
    bool waitForRun() const
    {
        return waitFor([&] { return !calls().isEmpty(); }, 20000);
    }
    bool waitForEnd() const
    {
        return waitFor([&] { return record.count(u"taskCompletion"_s) > 0; }, 20000);
    }
    bool waitForBackgroundEnd()
    {
        return waitFor([&] { return editor.monitorConversion() == u"Complete"_s; }, 20000);
    }
    QString output() const { return shown(editor.outputFileURL().toLocalFile()); }
    QString log() const { return shown(editor.logFileURL().toLocalFile()); }
    void read(const QByteArray &bytes, ToolProcess::Channel channel)
    {
        editor.handleNewTaskResult({channel, bytes, nullptr});
    }
    QStringList updates() const
    {
        QStringList texts;
        for (const KXNotification &update : joins.all())
            texts << update.object.toString();
        return texts;
    }
    /// Lets every file be probed as one video stream of that rate, except those of another name.
    void probeAs(const QByteArray &rate, const QString &otherName, const QByteArray &otherRate) const
    {
        const auto answer = [this](const QString &name, const QByteArray &value) {
            return world.scratch.write(
                name, probeJson({{"index=0", "codec_name=h264", "codec_type=video", "width=320", "height=240",
                                  "r_frame_rate=" + value, "avg_frame_rate=" + value}}));
        };
        setScript(u"ffmpeg/ffprobe"_s,
                  {u"when "_s + otherName, u"play out "_s + answer(u"other.json"_s, otherRate), u"exit 0"_s,
                   u"end"_s, u"play out "_s + answer(u"usual.json"_s, rate)});
    }

    KXMkvEditor editor{context()};
    NotificationRecord joins{world.notifications, {u"monitorJoinUpdate"_s}};
};

} // namespace

class KXMkvEditorTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewEditorHasItsName()
    {
        EditorBench bench;
        QCOMPARE(bench.editor.converterName(), u"mkvEditor"_s);
        QVERIFY(!bench.editor.conversionError());
        QVERIFY(!bench.editor.isTemporaryOutput());
    }

    // Joins.

    void joiningThreeFilesGivesTheOutputAndEachFurtherFileBehindAPlusInListOrder()
    {
        EditorBench bench;
        const auto task =
            bench.editor.startConversionForSelection(bench.joined({u"c.mkv"_s, u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(task);
        QCOMPARE(bench.editor.converterTask(), task);
        QCOMPARE(bench.editor.inputFileURL(), bench.url(u"c.mkv"_s));
        QCOMPARE(bench.meant(), u"-o|/v/c.mkv.joined.mkv|/v/c.mkv|+|/v/a.mkv|+|/v/b.mkv"_s);
        QCOMPARE(bench.launched(), bench.meant());
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.calls(), QList<QStringList>{bench.meant().split(u'|')});
        QCOMPARE(bench.editor.outcome().verdict, Verdict::Ok);
    }

    /// Each further file is one item there: a plus sign and the quoted path.
    void aJoinInTheBackgroundGivesTheSameFilesAsQuotedItems()
    {
        EditorBench bench;
        const QString id =
            bench.editor.startConversionFor(bench.joined({u"c.mkv"_s, u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(id.toInt() > 0);
        QCOMPARE(bench.editor.doShell_ID(), id);
        QVERIFY(!bench.editor.converterTask());
        QCOMPARE(bench.meant(), u"-o|/v/c.mkv.joined.mkv|/v/c.mkv|+'/v/a.mkv'|+'/v/b.mkv'|&>|"
                                "/v/c.mkv.joined.log|& echo $!"_s);
        QVERIFY(bench.waitForBackgroundEnd());
        QCOMPARE(bench.calls(),
                 QList<QStringList>{u"-o|/v/c.mkv.joined.mkv|/v/c.mkv|+/v/a.mkv|+/v/b.mkv"_s.split(u'|')});
        QCOMPARE(bench.editor.outcome().verdict, Verdict::Ok);
    }

    void joiningWithoutASaveFolderWritesTheWholeNameThenJoinedAndTheExtensionAgain_data()
    {
        QTest::addColumn<bool>("inBackground");
        QTest::newRow("process object") << false;
        QTest::newRow("background") << true;
    }

    void joiningWithoutASaveFolderWritesTheWholeNameThenJoinedAndTheExtensionAgain()
    {
        QFETCH(bool, inBackground);
        EditorBench bench;
        const auto selection = bench.joined({u"a.mkv"_s, u"b.mkv"_s});
        if (inBackground)
            bench.editor.startConversionFor(selection);
        else
            bench.editor.startConversionForSelection(selection);
        QCOMPARE(bench.output(), u"/v/a.mkv.joined.mkv"_s);
        QCOMPARE(bench.log(), u"/v/a.mkv.joined.log"_s);
        QCOMPARE(bench.posted(u"conversionStarted"_s), QStringList{u"/v/a.mkv.joined.mkv"_s});
        QVERIFY(bench.editor.tempFileToDeleteURL().isEmpty());
        QVERIFY(bench.waitForRun());
    }

    void theSaveFolderOfThePreferencesTakesOutputAndLog_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<QString>("word");
        QTest::newRow("join") << joining << u"joined"_s;
        QTest::newRow("split") << splitting << u"split"_s;
    }

    void theSaveFolderOfThePreferencesTakesOutputAndLog()
    {
        QFETCH(QString, jobType);
        QFETCH(QString, word);
        EditorBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.world.setSaveFolder(bench.path(u"s"_s));
        bench.editor.startConversionFor(jobType == joining ? bench.joined({u"b.mkv"_s, u"c.mkv"_s})
                                                           : bench.split(u"time"_s));
        const QString base = jobType == joining ? u"/v/s/b.mkv."_s : u"/v/s/a.mkv."_s;
        QCOMPARE(bench.output(), base + word + u".mkv"_s);
        QCOMPARE(bench.log(), base + word + u".log"_s);
        QVERIFY(bench.waitForRun());
    }

    void pathsOfAJoinArriveAsTheyAre_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("a blank") << u"a b.mkv"_s;
        QTest::newRow("apostrophe") << u"it's.mkv"_s;
        QTest::newRow("a command") << u"$(touch x)`touch x`.mkv"_s;
        QTest::newRow("quotes") << u"a\"b.mkv"_s;
        QTest::newRow("the redirection") << u"a &> x & echo $!.mkv"_s;
        QTest::newRow("not ASCII") << u"Élise – 日本.mkv"_s;
    }

    void pathsOfAJoinArriveAsTheyAre()
    {
        QFETCH(QString, name);
        EditorBench bench;
        bench.world.scratch.write(name, "film");
        bench.editor.startConversionFor(bench.joined({name, name, u"b.mkv"_s}));
        QVERIFY(bench.waitForBackgroundEnd());
        QCOMPARE(bench.calls(),
                 QList<QStringList>{QStringList({u"-o"_s, u"/v/"_s + name + u".joined.mkv"_s, u"/v/"_s + name,
                                                 u"+/v/"_s + name, u"+/v/b.mkv"_s})});
        QVERIFY(!bench.world.scratch.names().contains(u"x"_s));
    }

    /// Any other job type has the current process back, and nothing starts.
    void onlyAJoinStartsAProcessObject()
    {
        EditorBench bench;
        QVERIFY(!bench.editor.startConversionForSelection(bench.split(u"time"_s)));
        const auto first = bench.editor.startConversionForSelection(bench.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(first);
        QCOMPARE(bench.editor.startConversionForSelection(bench.selection(u"MKV Remux"_s, {})), first);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.calls().size(), 1);
    }

    void withoutFilesNothingIsJoined()
    {
        EditorBench bench;
        QVERIFY(!bench.editor.startConversionForSelection(bench.joined({})));
        QCOMPARE(bench.editor.refusal(), u"There are no files to join."_s);
        QCOMPARE(bench.editor.outcome().verdict, Verdict::Failed);
        QVERIFY(bench.calls().isEmpty());
    }

    // What differs.

    void filesThatDifferAreNamedInAWarningThatClosesItselfAfter15SecondsAndTheJoinGoesOn()
    {
        EditorBench bench;
        bench.probeAs("25/1", u"b.mkv"_s, "30/1");
        bench.editor.startConversionFor(bench.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QCOMPARE(bench.world.alerts.shown().size(), 1);
        const auto alert = bench.world.alerts.shown().constFirst();
        QCOMPARE(alert->message,
                 u"The files to be joined appear to have the following properties mismatched, which may "
                 "cause errors or unexpected results in the join process."_s);
        QCOMPARE(alert->informativeText, u"Frame Rate"_s);
        QCOMPARE(alert->style, platform::AlertStyle::Warning);
        QCOMPARE(alert->closesAfter, std::chrono::milliseconds(15000));
        QVERIFY(bench.waitForBackgroundEnd());
        QCOMPARE(bench.calls().size(), 1);
        QCOMPARE(bench.editor.outcome().verdict, Verdict::Ok);
    }

    void filesThatAgreeGiveNoWarning()
    {
        EditorBench bench;
        bench.probeAs("25/1", u"none of them"_s, "30/1");
        QCOMPARE(bench.editor.findMismatchedProperetiesFor({bench.url(u"a.mkv"_s), bench.url(u"b.mkv"_s)}),
                 QStringList());
        bench.editor.startConversionForSelection(bench.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(bench.world.alerts.shown().isEmpty());
        QVERIFY(bench.waitForEnd());
    }

    /// The files on both sides of one that can't be probed become neighbours.
    void filesThatCantBeProbedAreLeftOutOfTheCheckSilently()
    {
        EditorBench bench;
        bench.probeAs("25/1", u"b.mkv"_s, "30/1");
        const QList<QUrl> withGone{bench.url(u"a.mkv"_s), bench.url(u"gone.mkv"_s), bench.url(u"c.mkv"_s)};
        QCOMPARE(bench.editor.findMismatchedProperetiesFor(withGone), QStringList());
        QCOMPARE(bench.editor.findMismatchedProperetiesFor(
                     {bench.url(u"a.mkv"_s), bench.url(u"gone.mkv"_s), bench.url(u"b.mkv"_s)}),
                 QStringList{u"Frame Rate"_s});
        QVERIFY(bench.world.alerts.shown().isEmpty());
    }

    void oneFileHasNothingToDifferFrom()
    {
        EditorBench bench;
        bench.probeAs("25/1", u"b.mkv"_s, "30/1");
        QCOMPARE(bench.editor.findMismatchedProperetiesFor({bench.url(u"b.mkv"_s)}), QStringList());
        QCOMPARE(bench.editor.findMismatchedProperetiesFor({}), QStringList());
    }

    // Splits.

    void splittingWritesTheWholeNameThenSplitAndTheExtensionAgain()
    {
        EditorBench bench;
        const QString id = bench.editor.startConversionFor(bench.split(u"time"_s));
        QVERIFY(id.toInt() > 0);
        QCOMPARE(bench.editor.doShell_ID(), id);
        QCOMPARE(bench.output(), u"/v/a.mkv.split.mkv"_s);
        QCOMPARE(bench.log(), u"/v/a.mkv.split.log"_s);
        QCOMPARE(bench.posted(u"conversionStarted"_s), QStringList{u"/v/a.mkv.split.mkv"_s});
        QVERIFY(bench.waitForRun());
    }

    /// Between "--split" and the size stand two blanks, on purpose; one argument a word is what arrives.
    void splittingBySize700GivesSplitThenTwoBlanksThen700000k()
    {
        EditorBench bench;
        bench.editor.startConversionFor(bench.split(u"size"_s));
        QCOMPARE(bench.meant(), u"-o|/v/a.mkv.split.mkv|--split  700000k|--compression -1:none|/v/a.mkv|&>|"
                                "/v/a.mkv.split.log|& echo $!"_s);
        QVERIFY(bench.waitForRun());
        QCOMPARE(bench.calls(),
                 QList<QStringList>{
                     u"-o|/v/a.mkv.split.mkv|--split|700000k|--compression|-1:none|/v/a.mkv"_s.split(u'|')});
    }

    void splittingByTimeAndDurationHasOneBlank_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("word");
        QTest::newRow("time") << u"time"_s << u"parts:00:10:00-00:20:00"_s;
        QTest::newRow("duration") << u"duration"_s << u"600s"_s;
    }

    void splittingByTimeAndDurationHasOneBlank()
    {
        QFETCH(QString, type);
        QFETCH(QString, word);
        EditorBench bench;
        bench.editor.startConversionFor(bench.split(type));
        QCOMPARE(bench.meant(), u"-o|/v/a.mkv.split.mkv|--split "_s + word +
                                    u"|--compression -1:none|/v/a.mkv|&>|/v/a.mkv.split.log|& echo $!"_s);
        QVERIFY(bench.waitForRun());
        QCOMPARE(bench.calls().constFirst().mid(2, 2), QStringList({u"--split"_s, word}));
    }

    void anUnknownSplitTypeAnswersErrorAndNothingRuns()
    {
        for (const QString &type : {u"chapters"_s, u""_s, u"Size"_s}) {
            EditorBench bench;
            QCOMPARE(bench.editor.startConversionFor(bench.split(type)), u"error"_s);
            QVERIFY(bench.editor.doShell_ID().isEmpty());
            QCOMPARE(bench.editor.outcome().verdict, Verdict::Failed);
            QCOMPARE(bench.editor.outcome().sentence,
                     u"There is no way to split by \"%1\", so nothing was started."_s.arg(type));
            QVERIFY(bench.posted(u"conversionStarted"_s).isEmpty());
            QVERIFY(bench.launches.of(u"mkvmerge"_s).isEmpty());
        }
    }

    void anotherJobTypeAnswersErrorAndNothingRuns()
    {
        EditorBench bench;
        QCOMPARE(bench.editor.startConversionFor(bench.selection(u"MKV Remux"_s, {})), u"error"_s);
        QCOMPARE(bench.editor.outcome().verdict, Verdict::Failed);
        QVERIFY(bench.launches.of(u"mkvmerge"_s).isEmpty());
    }

    void onlyThePartsThatThisRunWroteAreNamed()
    {
        EditorBench bench;
        bench.world.scratch.write(u"a.mkv.split-001.mkv"_s, "an earlier part");
        QStringList script = EditorBench::wellMuxed();
        script.removeLast();
        script << u"write 10 "_s + bench.path(u"a.mkv.split (2)-001.mkv"_s)
               << u"write 10 "_s + bench.path(u"a.mkv.split (2)-002.mkv"_s);
        bench.setScript(u"mkvtoolnix/mkvmerge"_s, script);
        bench.editor.startConversionFor(bench.split(u"duration"_s));
        QCOMPARE(bench.output(), u"/v/a.mkv.split (2).mkv"_s);
        QVERIFY(bench.waitForBackgroundEnd());
        QCOMPARE(bench.editor.outputFiles(), QList<QUrl>({bench.url(u"a.mkv.split (2)-001.mkv"_s),
                                                          bench.url(u"a.mkv.split (2)-002.mkv"_s)}));
        QCOMPARE(bench.editor.outcome().verdict, Verdict::Ok);
        QCOMPARE(bench.world.scratch.read(u"a.mkv.split-001.mkv"_s), QByteArray("an earlier part"));
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
        EditorBench bench({u"out Progress: 100%"_s, u"out Multiplexing took 0 seconds."_s});
        bench.editor.startConversionFor(bench.split(type));
        QVERIFY(bench.waitForBackgroundEnd());
        QCOMPARE(bench.editor.outcome().verdict, Verdict::Failed);
        QCOMPARE(bench.editor.outcome().sentence, u"mkvmerge ended without writing a.mkv.split.mkv."_s);
    }

    // Progress and end.

    /// mkvmerge tells its percentages on standard output; only standard error is read, on purpose, so that
    /// this join shows no number.
    void aJoinReadsOnlyStandardError()
    {
        EditorBench bench;
        bench.read("Progress: 45%\r", ToolProcess::Channel::Output);
        QCOMPARE(bench.updates(), QStringList());
        bench.read("Progress: 45%\r", ToolProcess::Channel::Error);
        QCOMPARE(bench.updates(), QStringList{u"45%"_s}); // and no second percent sign
        bench.read("Progress: done\n", ToolProcess::Channel::Error);
        QCOMPARE(bench.updates().size(), 1);
        bench.read("one: two: 7", ToolProcess::Channel::Error);
        bench.read("8%\r", ToolProcess::Channel::Error);
        QCOMPARE(bench.updates(), QStringList({u"45%"_s, u"78%"_s}));
    }

    void aJoinAsAProcessObjectShowsNoNumber()
    {
        EditorBench bench;
        bench.editor.setStepName(u"Joining Videos"_s);
        bench.editor.startConversionForSelection(bench.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(bench.waitForEnd());
        QVERIFY(bench.editor.logString().contains(u"Progress: 100%"_s));
        QCOMPARE(bench.updates(), QStringList());
        const KXNotification end = bench.record.named(u"taskCompletion"_s).constFirst();
        QCOMPARE(end.object.toString(), u"Complete"_s);
        QCOMPARE(end.userInfo.value(u"stepName"_s).toString(), u"Joining Videos"_s);
        QCOMPARE(end.userInfo.value(u"theConverter"_s).value<QObject *>(), &bench.editor);
        QCOMPARE(end.userInfo.value(u"theTask"_s).value<QObject *>(), bench.editor.converterTask().get());
    }

    void anUpdateNamesItsStepTaskAndConverter()
    {
        EditorBench bench;
        bench.editor.setStepName(u"Joining Videos"_s);
        bench.read("Progress: 3%\r", ToolProcess::Channel::Error);
        const auto info = bench.joins.all().constFirst().userInfo;
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Joining Videos"_s);
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &bench.editor);
        QVERIFY(info.contains(u"theTask"_s));
    }

    /// The mark follows ffmpeg's rule although mkvmerge never writes "frame=", on purpose: a good join has
    /// it, and its outcome is good all the same.
    void theMarkOfAnErrorFollowsFfmpegsRule_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<bool>("isMarked");
        const QStringList good = MkvBench::wellMuxed();
        QTest::newRow("a good join") << good << true;
        QTest::newRow("frame=") << QStringList{u"out frame=1"_s} + good << false;
        QTest::newRow("frame= and an invalid argument")
            << QStringList{u"out frame=1"_s, u"out av_interleaved_write_frame(): Invalid argument"_s} + good
            << true;
    }

    void theMarkOfAnErrorFollowsFfmpegsRule()
    {
        QFETCH(QStringList, script);
        QFETCH(bool, isMarked);
        EditorBench bench(script);
        bench.editor.startConversionForSelection(bench.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.editor.conversionError(), isMarked);
        QCOMPARE(bench.editor.outcome().verdict, Verdict::Ok);
    }

    void howAJoinEnded_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<Verdict>("verdict");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("well") << MkvBench::wellMuxed() << Verdict::Ok << QString();
        QTest::newRow("with warnings")
            << QStringList{u"out Warning: The tracks differ."_s, u"write 10 after:-o"_s, u"exit 1"_s}
            << Verdict::Warnings << u"mkvmerge warned: Warning: The tracks differ."_s;
        QTest::newRow("not") << QStringList{u"out Error: The files can't be joined."_s, u"exit 2"_s}
                             << Verdict::Failed
                             << u"mkvmerge failed (exit status 2): Error: The files can't be joined."_s;
        QTest::newRow("without an output")
            << QStringList{u"out Multiplexing took 0 seconds."_s} << Verdict::Failed
            << u"mkvmerge ended without writing a.mkv.joined.mkv."_s;
        QTest::newRow("crashed") << QStringList{u"die SEGV"_s} << Verdict::Failed
                                 << u"mkvmerge was ended from outside or crashed."_s;
    }

    void howAJoinEnded()
    {
        QFETCH(QStringList, script);
        EditorBench bench(script);
        bench.editor.startConversionForSelection(bench.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(bench.waitForEnd());
        QVERIFY(waitFor([&] { return !bench.editor.converterTask()->isRunning(); }));
        QTEST(bench.editor.outcome().verdict, "verdict");
        QTEST(bench.editor.outcome().sentence, "sentence");
    }

    void thePollReadsTheLastLineWhileTheToolRuns_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("answer");
        QTest::newRow("a value") << u"part out Progress: 9%\\rProgress: 45%\\r"_s << u"45%"_s;
        QTest::newRow("no value") << u"out '/v/a: 45 %.mkv': Using the demultiplexer"_s << u"error"_s;
    }

    void thePollReadsTheLastLineWhileTheToolRuns()
    {
        QFETCH(QString, line);
        EditorBench bench({line, u"hang"_s});
        bench.editor.startConversionFor(bench.split(u"size"_s));
        QVERIFY(
            waitFor([&] { return QFileInfo(bench.editor.logFileURL().toLocalFile()).size() > 0; }, 20000));
        QTEST(bench.editor.monitorConversion(), "answer");
    }
};

QTEST_GUILESS_MAIN(KXMkvEditorTest)
#include "KXMkvEditorTest.moc"

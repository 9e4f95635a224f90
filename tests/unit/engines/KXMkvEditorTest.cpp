#include "engines/mkvtoolnix/KXMkvEditor.h"
#include "support/ProbeJson.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"
#include "support/selection/HandMade.h"

#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;
using tools::ToolProcess;

namespace {

/// An editor alone in its fixture, for "a.mkv", "b.mkv" and "c.mkv".
class EditorFixture final : public MkvFixture
{
public:
    explicit EditorFixture(const QStringList &mkvmerge = wellMuxed(), const QString &sourceName = {})
        : MkvFixture(mkvmerge, sourceName)
    {
        for (const QString &name : {u"b.mkv"_s, u"c.mkv"_s})
            base.scratch.write(name, "film");
    }
    ~EditorFixture() { editor.terminatePIDWaitUntilTerminated(editor.doShell_ID(), KXHelpers::Wait::No); }
    Q_DISABLE_COPY_MOVE(EditorFixture)

    SelectionPointer joined(const QStringList &names) const
    {
        const auto made = selection(mkvJoining, {});
        QList<QUrl> files;
        for (const QString &name : names)
            files.append(url(name));
        made->setEditFilesURLsList(files);
        return made;
    }
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
    bool waitForRun() const
    {
        return waitFor([&] { return !calls().isEmpty(); });
    }
    bool waitForEnd() const
    {
        return waitFor([&] { return record.count(u"taskCompletion"_s) > 0; });
    }
    bool waitForBackgroundEnd()
    {
        return waitFor([&] { return editor.monitorConversion() == u"Complete"_s; });
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
            return base.scratch.write(
                name, probeJson({{"index=0", "codec_name=h264", "codec_type=video", "width=320", "height=240",
                                  "r_frame_rate=" + value, "avg_frame_rate=" + value}}));
        };
        setScript(u"ffmpeg/ffprobe"_s,
                  {u"when "_s + otherName, u"play out "_s + answer(u"other.json"_s, otherRate), u"exit 0"_s,
                   u"end"_s, u"play out "_s + answer(u"usual.json"_s, rate)});
    }

    KXMkvEditor editor{context()};
    NotificationRecord joins{base.notifications, {u"monitorJoinUpdate"_s}};
};

} // namespace

class KXMkvEditorTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewEditorHasItsName()
    {
        EditorFixture fixture;
        QCOMPARE(fixture.editor.converterName(), u"mkvEditor"_s);
        QVERIFY(!fixture.editor.conversionError());
        QVERIFY(!fixture.editor.isTemporaryOutput());
    }

    // Joins.

    void joiningThreeFilesGivesTheOutputAndEachFurtherFileBehindAPlusInListOrder()
    {
        EditorFixture fixture;
        const auto task =
            fixture.editor.startConversionForSelection(fixture.joined({u"c.mkv"_s, u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(task);
        QCOMPARE(fixture.editor.converterTask(), task);
        QCOMPARE(fixture.editor.inputFileURL(), fixture.url(u"c.mkv"_s));
        QCOMPARE(fixture.meant(), u"-o|/v/c.mkv.joined.mkv|/v/c.mkv|+|/v/a.mkv|+|/v/b.mkv"_s);
        QCOMPARE(fixture.launched(), fixture.meant());
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.calls(), QList<QStringList>{fixture.meant().split(u'|')});
        QCOMPARE(fixture.editor.outcome().verdict, Verdict::Ok);
    }

    /// Each further file is one item there: a plus sign and the quoted path.
    void aJoinInTheBackgroundGivesTheSameFilesAsQuotedItems()
    {
        EditorFixture fixture;
        const QString id =
            fixture.editor.startConversionFor(fixture.joined({u"c.mkv"_s, u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(id.toInt() > 0);
        QCOMPARE(fixture.editor.doShell_ID(), id);
        QVERIFY(!fixture.editor.converterTask());
        QCOMPARE(fixture.meant(), u"-o|/v/c.mkv.joined.mkv|/v/c.mkv|+'/v/a.mkv'|+'/v/b.mkv'|&>|"
                                  "/v/c.mkv.joined.log|& echo $!"_s);
        QVERIFY(fixture.waitForBackgroundEnd());
        QCOMPARE(fixture.calls(),
                 QList<QStringList>{u"-o|/v/c.mkv.joined.mkv|/v/c.mkv|+/v/a.mkv|+/v/b.mkv"_s.split(u'|')});
        QCOMPARE(fixture.editor.outcome().verdict, Verdict::Ok);
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
        EditorFixture fixture;
        const auto selection = fixture.joined({u"a.mkv"_s, u"b.mkv"_s});
        if (inBackground)
            fixture.editor.startConversionFor(selection);
        else
            fixture.editor.startConversionForSelection(selection);
        QCOMPARE(fixture.output(), u"/v/a.mkv.joined.mkv"_s);
        QCOMPARE(fixture.log(), u"/v/a.mkv.joined.log"_s);
        QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList{u"/v/a.mkv.joined.mkv"_s});
        QVERIFY(fixture.editor.tempFileToDeleteURL().isEmpty());
        QVERIFY(fixture.waitForRun());
    }

    void theSaveFolderOfThePreferencesTakesOutputAndLog_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<QString>("word");
        QTest::newRow("join") << mkvJoining << u"joined"_s;
        QTest::newRow("split") << mkvSplitting << u"split"_s;
    }

    void theSaveFolderOfThePreferencesTakesOutputAndLog()
    {
        QFETCH(QString, jobType);
        QFETCH(QString, word);
        EditorFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        fixture.editor.startConversionFor(jobType == mkvJoining ? fixture.joined({u"b.mkv"_s, u"c.mkv"_s})
                                                                : fixture.split(u"time"_s));
        const QString base = jobType == mkvJoining ? u"/v/s/b.mkv."_s : u"/v/s/a.mkv."_s;
        QCOMPARE(fixture.output(), base + word + u".mkv"_s);
        QCOMPARE(fixture.log(), base + word + u".log"_s);
        QVERIFY(fixture.waitForRun());
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
        EditorFixture fixture;
        fixture.base.scratch.write(name, "film");
        fixture.editor.startConversionFor(fixture.joined({name, name, u"b.mkv"_s}));
        QVERIFY(fixture.waitForBackgroundEnd());
        QCOMPARE(fixture.calls(),
                 QList<QStringList>{QStringList({u"-o"_s, u"/v/"_s + name + u".joined.mkv"_s, u"/v/"_s + name,
                                                 u"+/v/"_s + name, u"+/v/b.mkv"_s})});
        QVERIFY(!fixture.base.scratch.names().contains(u"x"_s));
    }

    /// Any other job type has the current process back, and nothing starts.
    void onlyAJoinStartsAProcessObject()
    {
        EditorFixture fixture;
        QVERIFY(!fixture.editor.startConversionForSelection(fixture.split(u"time"_s)));
        const auto first =
            fixture.editor.startConversionForSelection(fixture.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(first);
        QCOMPARE(fixture.editor.startConversionForSelection(fixture.selection(u"MKV Remux"_s, {})), first);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.calls().size(), 1);
    }

    void withoutFilesNothingIsJoined()
    {
        EditorFixture fixture;
        QVERIFY(!fixture.editor.startConversionForSelection(fixture.joined({})));
        QCOMPARE(fixture.editor.refusal(), u"There are no files to join."_s);
        QCOMPARE(fixture.editor.outcome().verdict, Verdict::Failed);
        QVERIFY(fixture.calls().isEmpty());
    }

    // What differs.

    void filesThatDifferAreNamedInAWarningThatClosesItselfAfter15SecondsAndTheJoinIsRefused()
    {
        EditorFixture fixture;
        fixture.probeAs("25/1", u"b.mkv"_s, "30/1");
        fixture.editor.startConversionFor(fixture.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QCOMPARE(fixture.base.alerts.shown().size(), 1);
        const auto alert = fixture.base.alerts.shown().constFirst();
        QCOMPARE(alert->message,
                 u"The files to be joined appear to have the following properties mismatched, which may "
                 "cause errors or unexpected results in the join process."_s);
        QCOMPARE(alert->informativeText, u"Frame Rate"_s);
        QCOMPARE(alert->style, platform::AlertStyle::Warning);
        QCOMPARE(alert->closesAfter, std::chrono::milliseconds(15000));
        QVERIFY(fixture.calls().isEmpty());
        QCOMPARE(fixture.editor.outcome().verdict, Verdict::Failed);
        QCOMPARE(fixture.editor.outcome().sentence,
                 u"b.mkv can't be joined to a.mkv, so nothing was started: track 1 has the frame rate 30 and "
                 "not 25."_s);
        QVERIFY(fixture.posted(u"conversionStarted"_s).isEmpty());
    }

    void filesThatAgreeGiveNoWarning()
    {
        EditorFixture fixture;
        fixture.probeAs("25/1", u"none of them"_s, "30/1");
        QCOMPARE(
            fixture.editor.findMismatchedProperetiesFor({fixture.url(u"a.mkv"_s), fixture.url(u"b.mkv"_s)}),
            QStringList());
        fixture.editor.startConversionForSelection(fixture.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(fixture.base.alerts.shown().isEmpty());
        QVERIFY(fixture.waitForEnd());
    }

    /// The files on both sides of one that can't be probed become neighbours.
    void filesThatCantBeProbedAreLeftOutOfTheCheckSilently()
    {
        EditorFixture fixture;
        fixture.probeAs("25/1", u"b.mkv"_s, "30/1");
        const QList<QUrl> withGone{fixture.url(u"a.mkv"_s), fixture.url(u"gone.mkv"_s),
                                   fixture.url(u"c.mkv"_s)};
        QCOMPARE(fixture.editor.findMismatchedProperetiesFor(withGone), QStringList());
        QCOMPARE(fixture.editor.findMismatchedProperetiesFor(
                     {fixture.url(u"a.mkv"_s), fixture.url(u"gone.mkv"_s), fixture.url(u"b.mkv"_s)}),
                 QStringList{u"Frame Rate"_s});
        QVERIFY(fixture.base.alerts.shown().isEmpty());
    }

    void oneFileHasNothingToDifferFrom()
    {
        EditorFixture fixture;
        fixture.probeAs("25/1", u"b.mkv"_s, "30/1");
        QCOMPARE(fixture.editor.findMismatchedProperetiesFor({fixture.url(u"b.mkv"_s)}), QStringList());
        QCOMPARE(fixture.editor.findMismatchedProperetiesFor({}), QStringList());
    }

    // Splits.

    void splittingWritesTheWholeNameThenSplitAndTheExtensionAgain()
    {
        EditorFixture fixture;
        const QString id = fixture.editor.startConversionFor(fixture.split(u"time"_s));
        QVERIFY(id.toInt() > 0);
        QCOMPARE(fixture.editor.doShell_ID(), id);
        QCOMPARE(fixture.output(), u"/v/a.mkv.split.mkv"_s);
        QCOMPARE(fixture.log(), u"/v/a.mkv.split.log"_s);
        QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList{u"/v/a.mkv.split.mkv"_s});
        QVERIFY(fixture.waitForRun());
    }

    /// Between "--split" and the size stand two blanks, on purpose; one argument a word is what arrives.
    void splittingBySize700GivesSplitThenTwoBlanksThen700000k()
    {
        EditorFixture fixture;
        fixture.editor.startConversionFor(fixture.split(u"size"_s));
        QCOMPARE(fixture.meant(), u"-o|/v/a.mkv.split.mkv|--split  700000k|--compression -1:none|/v/a.mkv|&>|"
                                  "/v/a.mkv.split.log|& echo $!"_s);
        QVERIFY(fixture.waitForRun());
        QCOMPARE(fixture.calls(),
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
        EditorFixture fixture;
        fixture.editor.startConversionFor(fixture.split(type));
        QCOMPARE(fixture.meant(), u"-o|/v/a.mkv.split.mkv|--split "_s + word +
                                      u"|--compression -1:none|/v/a.mkv|&>|/v/a.mkv.split.log|& echo $!"_s);
        QVERIFY(fixture.waitForRun());
        QCOMPARE(fixture.calls().constFirst().mid(2, 2), QStringList({u"--split"_s, word}));
    }

    void anUnknownSplitTypeAnswersErrorAndNothingRuns()
    {
        for (const QString &type : {u"chapters"_s, u""_s, u"Size"_s}) {
            EditorFixture fixture;
            QCOMPARE(fixture.editor.startConversionFor(fixture.split(type)), u"error"_s);
            QVERIFY(fixture.editor.doShell_ID().isEmpty());
            QCOMPARE(fixture.editor.outcome().verdict, Verdict::Failed);
            QCOMPARE(fixture.editor.outcome().sentence,
                     u"There is no way to split by \"%1\", so nothing was started."_s.arg(type));
            QVERIFY(fixture.posted(u"conversionStarted"_s).isEmpty());
            QVERIFY(fixture.launches.of(u"mkvmerge"_s).isEmpty());
        }
    }

    void anotherJobTypeAnswersErrorAndNothingRuns()
    {
        EditorFixture fixture;
        QCOMPARE(fixture.editor.startConversionFor(fixture.selection(u"MKV Remux"_s, {})), u"error"_s);
        QCOMPARE(fixture.editor.outcome().verdict, Verdict::Failed);
        QVERIFY(fixture.launches.of(u"mkvmerge"_s).isEmpty());
    }

    void onlyThePartsThatThisRunWroteAreNamed()
    {
        EditorFixture fixture;
        fixture.base.scratch.write(u"a.mkv.split-001.mkv"_s, "an earlier part");
        QStringList script = EditorFixture::wellMuxed();
        script.removeLast();
        script << u"write 10 1-001.mkv"_s << u"write 10 1-002.mkv"_s;
        fixture.setScript(u"mkvtoolnix/mkvmerge"_s, script);
        fixture.editor.startConversionFor(fixture.split(u"duration"_s));
        QCOMPARE(fixture.output(), u"/v/a.mkv.split (2).mkv"_s);
        QVERIFY(fixture.waitForBackgroundEnd());
        QCOMPARE(fixture.editor.outputFiles(), QList<QUrl>({fixture.url(u"a.mkv.split (2)-001.mkv"_s),
                                                            fixture.url(u"a.mkv.split (2)-002.mkv"_s)}));
        QCOMPARE(fixture.editor.outcome().verdict, Verdict::Ok);
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.split-001.mkv"_s), QByteArray("an earlier part"));
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
        EditorFixture fixture({u"out Progress: 100%"_s, u"out Multiplexing took 0 seconds."_s});
        fixture.editor.startConversionFor(fixture.split(type));
        QVERIFY(fixture.waitForBackgroundEnd());
        QCOMPARE(fixture.editor.outcome().verdict, Verdict::Failed);
        QCOMPARE(fixture.editor.outcome().sentence, u"mkvmerge ended without writing a.mkv.split.mkv."_s);
    }

    // Progress and end.

    /// mkvmerge tells its percentages on standard output; only standard error is read, on purpose, so that
    /// this join shows no number.
    void aJoinReadsOnlyStandardError()
    {
        EditorFixture fixture;
        fixture.read("Progress: 45%\r", ToolProcess::Channel::Output);
        QCOMPARE(fixture.updates(), QStringList());
        fixture.read("Progress: 45%\r", ToolProcess::Channel::Error);
        QCOMPARE(fixture.updates(), QStringList{u"45%"_s}); // and no second percent sign
        fixture.read("Progress: done\n", ToolProcess::Channel::Error);
        QCOMPARE(fixture.updates().size(), 1);
        fixture.read("one: two: 7", ToolProcess::Channel::Error);
        fixture.read("8%\r", ToolProcess::Channel::Error);
        QCOMPARE(fixture.updates(), QStringList({u"45%"_s, u"78%"_s}));
    }

    void aJoinAsAProcessObjectShowsNoNumber()
    {
        EditorFixture fixture;
        fixture.editor.setStepName(u"Joining Videos"_s);
        fixture.editor.startConversionForSelection(fixture.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.editor.logString().contains(u"Progress: 100%"_s));
        QCOMPARE(fixture.updates(), QStringList());
        const KXNotification end = fixture.record.named(u"taskCompletion"_s).constFirst();
        QCOMPARE(end.object.toString(), u"Complete"_s);
        QCOMPARE(end.userInfo.value(u"stepName"_s).toString(), u"Joining Videos"_s);
        QCOMPARE(end.userInfo.value(u"theConverter"_s).value<QObject *>(), &fixture.editor);
        QCOMPARE(end.userInfo.value(u"theTask"_s).value<QObject *>(), fixture.editor.converterTask().get());
    }

    void anUpdateNamesItsStepTaskAndConverter()
    {
        EditorFixture fixture;
        fixture.editor.setStepName(u"Joining Videos"_s);
        fixture.read("Progress: 3%\r", ToolProcess::Channel::Error);
        const auto info = fixture.joins.all().constFirst().userInfo;
        QCOMPARE(info.value(u"stepName"_s).toString(), u"Joining Videos"_s);
        QCOMPARE(info.value(u"theConverter"_s).value<QObject *>(), &fixture.editor);
        QVERIFY(info.contains(u"theTask"_s));
    }

    /// The mark follows ffmpeg's rule although mkvmerge never writes "frame=", on purpose: a good join has
    /// it, and its outcome is good all the same.
    void theMarkOfAnErrorFollowsFfmpegsRule_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<bool>("isMarked");
        const QStringList good = MkvFixture::wellMuxed();
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
        EditorFixture fixture(script);
        fixture.editor.startConversionForSelection(fixture.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.editor.conversionError(), isMarked);
        QCOMPARE(fixture.editor.outcome().verdict, Verdict::Ok);
    }

    void howAJoinEnded_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<Verdict>("verdict");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("well") << MkvFixture::wellMuxed() << Verdict::Ok << QString();
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
        EditorFixture fixture(script);
        fixture.editor.startConversionForSelection(fixture.joined({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(fixture.waitForEnd());
        QVERIFY(waitFor([&] { return !fixture.editor.converterTask()->isRunning(); }));
        QTEST(fixture.editor.outcome().verdict, "verdict");
        QTEST(fixture.editor.outcome().sentence, "sentence");
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
        EditorFixture fixture({line, u"hang"_s});
        fixture.editor.startConversionFor(fixture.split(u"size"_s));
        QVERIFY(waitFor([&] { return !fixture.fileOf(fixture.editor.logFileURL()).isEmpty(); }));
        QTEST(fixture.editor.monitorConversion(), "answer");
    }
};

TESSARAY_TEST(KXMkvEditorTest)
#include "KXMkvEditorTest.moc"

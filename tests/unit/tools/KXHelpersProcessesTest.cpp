#include "support/FakePlaces.h"
#include "support/FakeTool.h"
#include "support/ListeningHelpers.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "tools/KXHelpers.h"
#include "tools/ShellRunner.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using support::FakeTool;
using support::ListeningHelpers;
using support::playing;
using tools::OptionList;

class KXHelpersProcessesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answerLosesOneLineFeedAtItsEnd_data()
    {
        QTest::addColumn<QString>("printed");
        QTest::addColumn<QString>("answer");
        QTest::newRow("one") << u"a\\n"_s << u"a"_s;
        QTest::newRow("none") << u"a"_s << u"a"_s;
        QTest::newRow("only one of two") << u"a\\n\\n"_s << u"a\n"_s;
        QTest::newRow("carriage return stays") << u"a\\r\\n"_s << u"a\r"_s;
        QTest::newRow("line feed alone") << u"\\n"_s << u""_s;
        QTest::newRow("at the beginning") << u"\\na"_s << u"\na"_s;
        QTest::newRow("blank at the end") << u"a\\n "_s << u"a\n "_s;
        QTest::newRow("nothing") << u""_s << u""_s;
        QTest::newRow("not ASCII") << u"F\\xc3\\xbc\\xc3\\x9fe\\n"_s << u"Füße"_s;
    }

    void answerLosesOneLineFeedAtItsEnd()
    {
        QFETCH(QString, printed);
        QFETCH(QString, answer);
        const QString script = answerOf({u"part out "_s + printed});
        QCOMPARE(script, answer);
        QVERIFY(!script.isNull());
        const QString command =
            m_helpers.doUnixCommandWithOptions(u"exec", OptionList{QUrl::fromLocalFile(FakeTool::program())} +
                                                            playing({u"part out "_s + printed}));
        QCOMPARE(command, answer);
        QVERIFY(!command.isNull());
    }

    void answerThatIsNotUtf8IsAbsent_data()
    {
        QTest::addColumn<QString>("printed");
        QTest::newRow("Latin-1") << u"caf\\xe9\\n"_s;
        QTest::newRow("cut in the middle of a letter") << u"a\\xc3"_s;
        QTest::newRow("surrogate") << u"\\xed\\xa0\\x80"_s;
        QTest::newRow("overlong") << u"\\xc0\\x80"_s;
    }

    void answerThatIsNotUtf8IsAbsent()
    {
        QFETCH(QString, printed);
        QVERIFY(answerOf({u"part out "_s + printed}).isNull());
        QVERIFY(m_helpers
                    .doUnixCommandWithOptions(u"exec", OptionList{QUrl::fromLocalFile(FakeTool::program())} +
                                                           playing({u"part out "_s + printed}))
                    .isNull());
    }

    void failureAnswersTheErrorStream()
    {
        QCOMPARE(answerOf({u"out fine"_s, u"err broken"_s}), u"fine"_s);
        QCOMPARE(answerOf({u"out fine"_s, u"err broken"_s, u"exit 1"_s}), u"broken"_s);
        QCOMPARE(answerOf({u"out fine"_s, u"exit 1"_s}), u""_s);
        QCOMPARE(m_helpers.doUnixCommandWithOptions(u"echo fine; echo broken >&2; exit", {u"4"}),
                 u"broken"_s);
    }

    void missingToolAnswersTheShellsMessage()
    {
        const QString answer = m_helpers.doShellScriptForWithOptions(m_scratch.url(u"no tool"_s), {});
        QVERIFY2(answer.contains(m_scratch.path(u"no tool"_s)), qPrintable(answer));
    }

    void pathWithQuotesAndDollarsReachesTheTool()
    {
        const QString record = m_scratch.path(u"reached"_s);
        const QString tool =
            FakeTool::install(m_scratch.path(u"t \"o\" $l/ffprobe"_s), {u"record "_s + record});
        const QUrl movie = m_scratch.url(u"my \"film\" $HOME.mkv"_s);
        m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(tool), {u"-i", movie, u"2>&1"});
        const auto runs = FakeTool::recordedRuns(record);
        QCOMPARE(runs.size(), 1);
        QCOMPARE(runs.first().program, tool.toUtf8());
        QCOMPARE(runs.first().arguments, QByteArrayList({"-i", movie.toLocalFile().toUtf8()}));
    }

    void toolsRunInTheFolderOfTheApplicationAndCommandsInOurs()
    {
        QCOMPARE(m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(u"/bin/pwd"_s), {}),
                 m_scratch.path());
        QCOMPARE(m_helpers.doUnixCommandWithOptions(u"/bin/pwd", {}), QDir::currentPath());
    }

    void mkvToolsGetTheirExports()
    {
        const QString seen = m_scratch.path(u"seen"_s);
        const QString tool =
            FakeTool::install(m_scratch.path(u"tools/mkvtoolnix/mkvmerge"_s),
                              {u"environment LANG "_s + seen, u"environment LD_LIBRARY_PATH "_s + seen,
                               u"environment LC_ALL "_s + seen});
        m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(tool), {});
        const QByteArrayList lines = m_scratch.read(u"seen"_s).split('\n');
        QCOMPARE(lines.at(0), "LANG=en_US.UTF-8");
        QCOMPARE(lines.at(1), "LD_LIBRARY_PATH=" + m_scratch.path(u"Resources/mkvtoolnix/lib"_s).toUtf8());
        QVERIFY(lines.at(2) == "LC_ALL=C.UTF-8" || lines.at(2) == "LC_ALL=en_US.UTF-8");
    }

    void hookHearsTheLineAsItIsMeant()
    {
        ListeningHelpers helpers(&m_places);
        helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(u"/bin/true"_s),
                                            {u"&>", m_scratch.url(u"hook.log"_s)});
        const QString meant =
            u"doShellScript String: \"/bin/true\" &> \"%1\""_s.arg(m_scratch.path(u"hook.log"_s));
        QCOMPARE(helpers.lines, QStringList({meant}));
        helpers.lines.clear();
        helpers.doUnixCommandWithOptions(u"true", {u"-p"});
        QCOMPARE(helpers.lines, QStringList({u"doUnixCommand string: true -p"_s}));
    }

    void hookIsSparedTheFrequentCalls()
    {
        ListeningHelpers helpers(&m_places);
        for (const QString &name : {u"MediaInfo"_s, u"mkvinfo"_s})
            helpers.doShellScriptForWithOptions(m_scratch.url(name), {});
        for (const tools::Literal command : {tools::Literal(u"ps"), tools::Literal(u"tr '\\r' '\\n' < "),
                                             tools::Literal(u"dscacheutil"), tools::Literal(u"ls")})
            helpers.doUnixCommandWithOptions(command, {u"/dev/null"});
        QVERIFY2(helpers.lines.isEmpty(), qPrintable(helpers.lines.join(u'|')));
        helpers.doUnixCommandWithOptions(u"ls ", {u"/dev/null"}); // the whole text counts
        QCOMPARE(helpers.lines.size(), 1);
    }

    void progressLinesAreSearchedByPipeline()
    {
        const QString log = m_scratch.write(u"a $log`.txt"_s, "Progress: 1%\rProgress: 2%\rOther\r");
        QCOMPARE(m_helpers.doUnixCommandWithOptions(
                     u"tr '\\r' '\\n' < ", {QUrl::fromLocalFile(log), u"| tail -20", u"| grep 'Progress'"}),
                 u"Progress: 1%\nProgress: 2%"_s);
    }

    void foreignBytesInALogDoNotHideItsLines()
    {
        const QString log = m_scratch.write(u"latin1.txt"_s, "title: caf\xe9\nError: it failed\n");
        QCOMPARE(m_helpers.doUnixCommandWithOptions(
                     u"tr '\\r' '\\n' < ", {QUrl::fromLocalFile(log), u"| tail -20", u"| grep 'Error'"}),
                 u"Error: it failed"_s);
    }

    void commandsSpeakNoLanguage()
    {
        const QByteArray before = qgetenv("LC_ALL");
        qputenv("LC_ALL", "de_DE.UTF-8");
        const QString language = m_helpers.doUnixCommandWithOptions(u"echo", {u"$LC_ALL"});
        before.isEmpty() ? qunsetenv("LC_ALL") : qputenv("LC_ALL", before);
        QCOMPARE(language, u"C"_s);
    }

    void stopFlagEndsAWait()
    {
        KXHelpers helpers(&m_places);
        const auto stop = std::make_shared<std::atomic_bool>(true);
        helpers.setStopFlag(stop);
        helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()), playing({u"hang"_s}));
    }

    void waitingIsWithAnEventLoopUnlessTold()
    {
        KXHelpers helpers(&m_places);
        bool served = false;
        QMetaObject::invokeMethod(
            this, [&] { served = true; }, Qt::QueuedConnection);
        helpers.setWaiting(tools::Waiting::Blocking);
        helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()),
                                            playing({u"sleep 100"_s}));
        QVERIFY(!served);
        helpers.setWaiting(tools::Waiting::WithEventLoop);
        helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()),
                                            playing({u"sleep 100"_s}));
        QVERIFY(served);
    }

private:
    QString answerOf(const QStringList &commands) const
    {
        return m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()),
                                                     playing(commands));
    }

    support::Scratch m_scratch;
    support::FakePlaces m_places{m_scratch.path()};
    KXHelpers m_helpers{&m_places};
};

TESSARAY_TEST(KXHelpersProcessesTest)
#include "KXHelpersProcessesTest.moc"

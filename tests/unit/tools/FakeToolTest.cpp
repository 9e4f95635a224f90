#include "support/FakeTool.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QProcess>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::FakeTool;

class FakeToolTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void playsTheScriptBesideIt()
    {
        const QString recorded = m_scratch.write(u"recorded"_s, "frame=1\rframe=2\r");
        const QString tool = FakeTool::install(m_scratch.path(u"tools/ffmpeg"_s),
                                               {u"# a comment"_s, u"out a\\tb"_s, u"part err half\\r"_s,
                                                u"play err "_s + recorded, u"exit 4"_s, u"out never"_s});
        const auto [status, output, error] = run(tool, {});
        QCOMPARE(status, 4);
        QCOMPARE(output, "a\tb\n");
        QCOMPARE(error, "half\rframe=1\rframe=2\r");
    }

    void playsWhatItIsAskedFor()
    {
        const QString tool =
            FakeTool::install(m_scratch.path(u"asked"_s), {u"when -pass"_s, u"out pass"_s, u"end"_s,
                                                           u"write 3 last"_s, u"write 2 after:-o"_s});
        QCOMPARE(run(tool, {u"-o"_s, m_scratch.path(u"o"_s), m_scratch.path(u"l"_s)}).output, "");
        QCOMPARE(run(tool, {u"-o"_s, m_scratch.path(u"o"_s), u"-pass"_s, m_scratch.path(u"l"_s)}).output,
                 "pass\n");
        QCOMPARE(m_scratch.read(u"o"_s), "ww");
        QCOMPARE(m_scratch.read(u"l"_s), "www");
    }

    void recordsItsRuns()
    {
        const QString record = m_scratch.path(u"record"_s);
        QVERIFY(FakeTool::recordedRuns(record).isEmpty());
        const QString tool = FakeTool::install(m_scratch.path(u"recording"_s), {u"record "_s + record});
        run(tool, {});
        run(tool, {u""_s, u"a\nb"_s, u"ü"_s});
        const auto runs = FakeTool::recordedRuns(record);
        QCOMPARE(runs.size(), 2);
        QCOMPARE(runs.at(0).program, tool.toUtf8());
        QVERIFY(runs.at(0).arguments.isEmpty());
        QCOMPARE(runs.at(1).arguments, QByteArrayList({"", "a\nb", "ü"}));
    }

    void floodsAndDies()
    {
        const auto [status, output, error] =
            run(FakeTool::program(), {u"--do"_s, u"flood out 100001"_s, u"flood err 70"_s, u"die KILL"_s});
        QCOMPARE(status, SIGKILL);
        QCOMPARE(output.size(), 100001);
        QCOMPARE(error.size(), 70);
    }

    void refusesAScriptItDoesNotUnderstand()
    {
        QCOMPARE(run(FakeTool::program(), {u"--do"_s, u"dance"_s}).status, 99);
        QCOMPARE(run(FakeTool::program(), {u"--do"_s, u"play out /no/such"_s}).status, 99);
    }

private:
    struct Result
    {
        int status;
        QByteArray output;
        QByteArray error;
    };

    static Result run(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        process.waitForFinished();
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    support::Scratch m_scratch;
};

TESSARAY_TEST(FakeToolTest)
#include "FakeToolTest.moc"

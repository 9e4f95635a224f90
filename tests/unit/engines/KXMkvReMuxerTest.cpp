#include "engines/KXMkvReMuxer.h"
#include "support/MkvBench.h"
#include "support/Waiting.h"

#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

const QString type = u"MKV Remux"_s;

class ReMuxerBench final : public MkvBench
{
public:
    using MkvBench::MkvBench;

    bool waitForEnds(int count) const
    {
        return waitFor([&] { return record.count(u"taskCompletion"_s) >= count; }, 20000);
    }
    bool waitForRuns(int count) const
    {
        return waitFor([&] { return calls().size() >= count; }, 20000);
    }
    void read(const QByteArray &chunk)
    {
        remuxer.handleNewTaskResult({tools::ToolProcess::Channel::Output, chunk, nullptr});
    }
    QString output() const { return shown(remuxer.outputFileURL().toLocalFile()); }
    QString log() const { return shown(remuxer.logFileURL().toLocalFile()); }

    KXMkvReMuxer remuxer{context()};
};

} // namespace

class KXMkvReMuxerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Both names keep the source's extension.
    void withoutASaveFolderItWritesBesideTheSource()
    {
        ReMuxerBench bench;
        const auto task =
            bench.remuxer.startConversionForSelectionWithSaveDirectoryURL(bench.selection(type, {}), {});
        QVERIFY(task);
        QCOMPARE(bench.remuxer.converterTask(), task);
        QCOMPARE(bench.output(), u"/v/a.mkv.remux.mkv"_s);
        QCOMPARE(bench.log(), u"/v/a.mkv.remuxing.log"_s);
        QVERIFY(bench.remuxer.temporaryFiles().isEmpty());
        QVERIFY(bench.waitForEnds(1));
        QCOMPARE(bench.meant(), u"-o|/v/a.mkv.remux.mkv|--compression|-1:none|/v/a.mkv"_s);
        QCOMPARE(bench.calls(),
                 QList<QStringList>{QStringList(
                     {u"-o"_s, u"/v/a.mkv.remux.mkv"_s, u"--compression"_s, u"-1:none"_s, u"/v/a.mkv"_s})});
        QVERIFY(bench.world.scratch.read(u"a.mkv.remuxing.log"_s).contains("Multiplexing took"));
    }

    void aSaveFolderTakesOutputAndLog()
    {
        ReMuxerBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.remuxer.startConversionForSelectionWithSaveDirectoryURL(bench.selection(type, {}),
                                                                      bench.url(u"s"_s));
        QCOMPARE(bench.output(), u"/v/s/a.mkv.remux.mkv"_s);
        QCOMPARE(bench.log(), u"/v/s/a.mkv.remuxing.log"_s);
        QVERIFY(bench.waitForEnds(1));
    }

    void theStartAndTheEndAreAnnounced()
    {
        ReMuxerBench bench;
        bench.remuxer.setStepName(u"Re-Muxing MKV"_s);
        bench.remuxer.startConversionForSelectionWithSaveDirectoryURL(bench.selection(type, {}), {});
        QCOMPARE(bench.posted(u"conversionStarted"_s), QStringList{u"/v/a.mkv.remux.mkv"_s});
        QVERIFY(bench.waitForEnds(1));
        QCOMPARE(bench.posted(u"taskCompletion"_s), QStringList{u"Complete"_s});
        const auto end = bench.record.named(u"taskCompletion"_s).first();
        QCOMPARE(end.userInfo.value(u"stepName"_s).toString(), u"Re-Muxing MKV"_s);
        QCOMPARE(end.userInfo.value(u"theConverter"_s).value<QObject *>(), &bench.remuxer);
        QCOMPARE(end.userInfo.value(u"theTask"_s).value<QObject *>(), bench.remuxer.converterTask().get());
    }

    // Progress under the splitter's name, which is meant: the whole number and one percent sign.

    void progress_data()
    {
        QTest::addColumn<QByteArrayList>("chunks");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("one value") << QByteArrayList{"Progress: 45%\r"} << QStringList{u"45%"_s};
        QTest::newRow("no end of line yet") << QByteArrayList{"Progress: 45%"} << QStringList{u"45%"_s};
        QTest::newRow("several in a chunk")
            << QByteArrayList{"Progress: 1%\rProgress: 2%\rProgress: 3%\r"} << QStringList{u"3%"_s};
        QTest::newRow("cut in the word")
            << QByteArrayList{"Progress: 1%\rProg", "ress: 12%\r"} << QStringList{u"1%"_s, u"12%"_s};
        QTest::newRow("cut in the number") << QByteArrayList{"Progress: 4", "5%\r"} << QStringList{u"45%"_s};
        QTest::newRow("cut before the sign")
            << QByteArrayList{"Progress: 45", "%\r"} << QStringList{u"45%"_s};
        QTest::newRow("the last value")
            << QByteArrayList{"Progress: 100%\nThe cue entries (the index) are being written...\n"}
            << QStringList{u"100%"_s};
        QTest::newRow("only words") << QByteArrayList{"mkvmerge v74.0.0 ('You Oughta Know') 64-bit\n",
                                                      "Multiplexing took 12 seconds.\n"}
                                    << QStringList{};
        QTest::newRow("a number without its sign") << QByteArrayList{"Track: 7\n"} << QStringList{};
        QTest::newRow("words before the sign") << QByteArrayList{"title: all of 45%\n"} << QStringList{};
        QTest::newRow("nothing") << QByteArrayList{""} << QStringList{};
    }

    void progress()
    {
        QFETCH(QByteArrayList, chunks);
        QFETCH(QStringList, texts);
        ReMuxerBench bench;
        bench.remuxer.setLogFileURL(bench.guard.claimFree(bench.url(u"x.log"_s)));
        for (const QByteArray &chunk : chunks)
            bench.read(chunk);
        QCOMPARE(bench.posted(u"monitorSplitUpdate"_s), texts);
        QCOMPARE(bench.world.scratch.read(u"x.log"_s), chunks.join());
    }

    void progressTellsItsConverterAndStep()
    {
        ReMuxerBench bench;
        bench.remuxer.setStepName(u"Re-Muxing MKV"_s);
        bench.read("Progress: 45%\r");
        const auto update = bench.record.named(u"monitorSplitUpdate"_s).value(0);
        QCOMPARE(update.userInfo.value(u"stepName"_s).toString(), u"Re-Muxing MKV"_s);
        QCOMPARE(update.userInfo.value(u"theConverter"_s).value<QObject *>(), &bench.remuxer);
        QVERIFY(update.userInfo.contains(u"theTask"_s));
    }

    // In the shell's background.

    void theBackgroundFormHasItsOwnList()
    {
        ReMuxerBench bench(MkvBench::wellMuxed(), u"it's $(touch x).mkv"_s);
        const QString id = bench.remuxer.startConversionFor(bench.selection(type, {}));
        QVERIFY(id.toInt() > 0);
        QCOMPARE(bench.remuxer.doShell_ID(), id);
        QCOMPARE(bench.meant(),
                 u"-o|/v/it's $(touch x).mkv.remux.mkv|--compression -1:none|/v/it's $(touch x).mkv|&>|"
                 "/v/it's $(touch x).mkv.remuxing.log|& echo $!"_s);
        QVERIFY(bench.waitForRuns(1));
        QCOMPARE(bench.calls().first(),
                 QStringList({u"-o"_s, u"/v/it's $(touch x).mkv.remux.mkv"_s, u"--compression"_s,
                              u"-1:none"_s, u"/v/it's $(touch x).mkv"_s}));
        QCOMPARE(bench.posted(u"conversionStarted"_s), QStringList{u"/v/it's $(touch x).mkv.remux.mkv"_s});
    }

    void theBackgroundFormTakesThePreferencesFolder()
    {
        ReMuxerBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.world.setSaveFolder(bench.path(u"s"_s));
        bench.remuxer.startConversionFor(bench.selection(type, {}));
        QCOMPARE(bench.output(), u"/v/s/a.mkv.remux.mkv"_s);
        QCOMPARE(bench.log(), u"/v/s/a.mkv.remuxing.log"_s);
        QVERIFY(bench.waitForRuns(1));
    }

    void theBackgroundFormIsPolled()
    {
        ReMuxerBench bench({u"hang"_s});
        const QString id = bench.remuxer.startConversionFor(bench.selection(type, {}));
        QVERIFY(bench.waitForRuns(1));
        QCOMPARE(bench.remuxer.monitorConversion(), u"error"_s);
        bench.world.scratch.write(u"a.mkv.remuxing.log"_s, "Progress: 44%\rProgress: 45%\r");
        QCOMPARE(bench.remuxer.monitorConversion(), u"45%"_s);
        ::kill(id.toInt(), SIGKILL);
        QVERIFY(waitFor([&] { return bench.remuxer.monitorConversion() == u"Complete"_s; }));
    }
};

QTEST_GUILESS_MAIN(KXMkvReMuxerTest)
#include "KXMkvReMuxerTest.moc"

#include "engines/mkvtoolnix/KXMkvReMuxer.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"

#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

class ReMuxerFixture final : public MkvFixture
{
public:
    using MkvFixture::MkvFixture;

    bool waitForEnds(int count) const
    {
        return waitFor([&] { return record.count(u"taskCompletion"_s) >= count; });
    }
    bool waitForRuns(int count) const
    {
        return waitFor([&] { return calls().size() >= count; });
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
        ReMuxerFixture fixture;
        const auto task = fixture.remuxer.startConversionForSelectionWithSaveDirectoryURL(
            fixture.selection(mkvRemux, {}), {});
        QVERIFY(task);
        QCOMPARE(fixture.remuxer.converterTask(), task);
        QCOMPARE(fixture.output(), u"/v/a.mkv.remux.mkv"_s);
        QCOMPARE(fixture.log(), u"/v/a.mkv.remuxing.log"_s);
        QVERIFY(fixture.remuxer.temporaryFiles().isEmpty());
        QVERIFY(fixture.waitForEnds(1));
        QCOMPARE(fixture.meant(), u"-o|/v/a.mkv.remux.mkv|--compression|-1:none|/v/a.mkv"_s);
        QCOMPARE(fixture.calls(),
                 QList<QStringList>{QStringList(
                     {u"-o"_s, u"/v/a.mkv.remux.mkv"_s, u"--compression"_s, u"-1:none"_s, u"/v/a.mkv"_s})});
        QVERIFY(fixture.fileOf(fixture.remuxer.logFileURL()).contains("Multiplexing took"));
    }

    void aSaveFolderTakesOutputAndLog()
    {
        ReMuxerFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.remuxer.startConversionForSelectionWithSaveDirectoryURL(fixture.selection(mkvRemux, {}),
                                                                        fixture.url(u"s"_s));
        QCOMPARE(fixture.output(), u"/v/s/a.mkv.remux.mkv"_s);
        QCOMPARE(fixture.log(), u"/v/s/a.mkv.remuxing.log"_s);
        QVERIFY(fixture.waitForEnds(1));
    }

    void theStartAndTheEndAreAnnounced()
    {
        ReMuxerFixture fixture;
        fixture.remuxer.setStepName(u"Re-Muxing MKV"_s);
        fixture.remuxer.startConversionForSelectionWithSaveDirectoryURL(fixture.selection(mkvRemux, {}), {});
        QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList{u"/v/a.mkv.remux.mkv"_s});
        QVERIFY(fixture.waitForEnds(1));
        QCOMPARE(fixture.posted(u"taskCompletion"_s), QStringList{u"Complete"_s});
        const auto end = fixture.record.named(u"taskCompletion"_s).first();
        QCOMPARE(end.userInfo.value(u"stepName"_s).toString(), u"Re-Muxing MKV"_s);
        QCOMPARE(end.userInfo.value(u"theConverter"_s).value<QObject *>(), &fixture.remuxer);
        QCOMPARE(end.userInfo.value(u"theTask"_s).value<QObject *>(), fixture.remuxer.converterTask().get());
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
        ReMuxerFixture fixture;
        fixture.remuxer.setLogFileURL(fixture.guard.claimFree(fixture.url(u"x.log"_s)));
        for (const QByteArray &chunk : chunks)
            fixture.read(chunk);
        QCOMPARE(fixture.posted(u"monitorSplitUpdate"_s), texts);
        QCOMPARE(fixture.fileOf(fixture.remuxer.logFileURL()), chunks.join());
    }

    void progressTellsItsConverterAndStep()
    {
        ReMuxerFixture fixture;
        fixture.remuxer.setStepName(u"Re-Muxing MKV"_s);
        fixture.read("Progress: 45%\r");
        const auto update = fixture.record.named(u"monitorSplitUpdate"_s).value(0);
        QCOMPARE(update.userInfo.value(u"stepName"_s).toString(), u"Re-Muxing MKV"_s);
        QCOMPARE(update.userInfo.value(u"theConverter"_s).value<QObject *>(), &fixture.remuxer);
        QVERIFY(update.userInfo.contains(u"theTask"_s));
    }

    // In the shell's background.

    void theBackgroundFormHasItsOwnList()
    {
        ReMuxerFixture fixture(MkvFixture::wellMuxed(), u"it's $(touch x).mkv"_s);
        const QString id = fixture.remuxer.startConversionFor(fixture.selection(mkvRemux, {}));
        QVERIFY(id.toInt() > 0);
        QCOMPARE(fixture.remuxer.doShell_ID(), id);
        QCOMPARE(fixture.meant(),
                 u"-o|/v/it's $(touch x).mkv.remux.mkv|--compression -1:none|/v/it's $(touch x).mkv|&>|"
                 "/v/it's $(touch x).mkv.remuxing.log|& echo $!"_s);
        QVERIFY(fixture.waitForRuns(1));
        QCOMPARE(fixture.calls().first(),
                 QStringList({u"-o"_s, u"/v/it's $(touch x).mkv.remux.mkv"_s, u"--compression"_s,
                              u"-1:none"_s, u"/v/it's $(touch x).mkv"_s}));
        QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList{u"/v/it's $(touch x).mkv.remux.mkv"_s});
    }

    void theBackgroundFormTakesThePreferencesFolder()
    {
        ReMuxerFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        fixture.remuxer.startConversionFor(fixture.selection(mkvRemux, {}));
        QCOMPARE(fixture.output(), u"/v/s/a.mkv.remux.mkv"_s);
        QCOMPARE(fixture.log(), u"/v/s/a.mkv.remuxing.log"_s);
        QVERIFY(fixture.waitForRuns(1));
    }

    void theBackgroundFormIsPolled()
    {
        ReMuxerFixture fixture({u"hang"_s});
        const QString id = fixture.remuxer.startConversionFor(fixture.selection(mkvRemux, {}));
        QVERIFY(fixture.waitForRuns(1));
        QCOMPARE(fixture.remuxer.monitorConversion(), u"error"_s);
        fixture.guard.files().write(fixture.remuxer.logFileURL(), "Progress: 44%\rProgress: 45%\r");
        QCOMPARE(fixture.remuxer.monitorConversion(), u"45%"_s);
        ::kill(id.toInt(), SIGKILL);
        QVERIFY(waitFor([&] { return fixture.remuxer.monitorConversion() == u"Complete"_s; }));
    }
};

TESSARAY_TEST(KXMkvReMuxerTest)
#include "KXMkvReMuxerTest.moc"

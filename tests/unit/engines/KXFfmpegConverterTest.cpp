#include "support/FfmpegBench.h"
#include "support/HandMade.h"
#include "support/Waiting.h"
#include "tools/Numbers.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

class KXFfmpegConverterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isMadeWithItsName()
    {
        FfmpegBench bench;
        const KXFfmpegConverter converter(bench.world.converterContext(bench.guard));
        QCOMPARE(converter.converterName(), u"ffmpegConverter"_s);
        QVERIFY(!converter.isTemporaryOutput());
        QCOMPARE(converter.durationInSeconds(), u"0"_s);
        QCOMPARE(converter.subCanBurnList(), QStringList({u"srt"_s, u"ass"_s, u"ssa"_s, u"ttxt"_s}));
        QVERIFY(converter.fontconfigDirectoryExists());
        QVERIFY(!converter.fontconfigIsRebuilding());
        QVERIFY(converter.subToBurnURL().isEmpty());
        QVERIFY(!converter.conversionError());
    }

    void namesAndStartsOnePass()
    {
        FfmpegBench bench;
        bench.converter.setTempFileToDeleteURL(bench.source);
        bench.converter.setMonitorCounter(7);
        const auto before = QDateTime::currentDateTime();
        const auto task =
            bench.converter.startConversionForSelection(bench.selection(u"General"_s, {videoTrack()}));
        QVERIFY(task);
        QCOMPARE(bench.converter.converterTask(), task);
        QCOMPARE(bench.converter.appName(), u"Pollenta"_s);
        QCOMPARE(bench.converter.outputFileURL(), bench.url(u"a.m4v"_s));
        QCOMPARE(bench.converter.logFileURL(), bench.url(u"a.mkv.log"_s));
        QCOMPARE(bench.converter.passlogfileString(), bench.path(u"temp/passLog"_s));
        QVERIFY(bench.converter.logModifiedDateOld() >= before);
        QVERIFY(bench.converter.tempFileToDeleteURL().isEmpty());
        QCOMPARE(bench.converter.monitorCounter(), 0);
        QCOMPARE(bench.converter.oldProgress(), u"00:00:00"_s);
        QCOMPARE(bench.converter.currentPass(), 0);
        QCOMPARE(bench.record.named(u"conversionStarted"_s).first().object.toUrl(),
                 bench.converter.outputFileURL());
        QVERIFY(bench.waitForEnds(1));
        QCOMPARE(bench.calls(), QList<QStringList>{tools::argumentsOf(bench.converter.optionArray1())});
        QVERIFY(bench.converter.optionArray2().isEmpty());
        QCOMPARE(bench.converter.outcome().verdict, step::Verdict::Warnings); // 1 s of 120
    }

    void outputsBesideTheSource_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("name");
        QTest::newRow("Xbox") << u"Xbox"_s << u"a.mp4"_s;
        QTest::newRow("PS3") << u"PS3"_s << u"a.m4v"_s;
        QTest::newRow("AVI") << u"AVI"_s << u"a.avi"_s;
        // Where the output would be the source, its base keeps the extension.
        QTest::newRow("MKV") << u"MKV"_s << u"a.mkv.mkv"_s;
    }

    void outputsBesideTheSource()
    {
        QFETCH(QString, device);
        QFETCH(QString, name);
        FfmpegBench bench;
        QVERIFY(bench.convert(bench.selection(device, {videoTrack(u"passthru"_s)})));
        QCOMPARE(bench.converter.outputFileURL(), bench.url(name));
        QCOMPARE(bench.world.scratch.read(u"a.mkv"_s), QByteArray("film"));
    }

    void outputsGoToTheSaveFolder()
    {
        FfmpegBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.world.setSaveFolder(bench.path(u"s"_s));
        QVERIFY(bench.convert(bench.selection(u"MKV"_s, {videoTrack(u"passthru"_s)})));
        QCOMPARE(bench.converter.outputFileURL(), bench.url(u"s/a.mkv"_s));
        QCOMPARE(bench.converter.logFileURL(), bench.url(u"s/a.mkv.log"_s));
    }

    void aTakenNameOrLogIsNotOverwritten()
    {
        FfmpegBench bench;
        bench.world.scratch.write(u"a.m4v"_s, "old");
        bench.world.scratch.write(u"a.mkv.log"_s, "old log");
        QVERIFY(bench.convert(bench.selection(u"General"_s, {videoTrack()})));
        QCOMPARE(bench.converter.outputFileURL(), bench.url(u"a (2).m4v"_s));
        QCOMPARE(bench.world.scratch.read(u"a.m4v"_s), QByteArray("old"));
        QCOMPARE(bench.world.scratch.read(u"a.mkv.log"_s), QByteArray("old log"));
    }

    void thePreferencesShapeTheList_data()
    {
        QTest::addColumn<bool>("on");
        QTest::newRow("on") << true;
        QTest::newRow("off") << false;
    }

    void thePreferencesShapeTheList()
    {
        QFETCH(bool, on);
        FfmpegBench bench;
        bench.world.preferences.overrideForThisRun(u"useDpliiFlag"_s, on);
        bench.world.preferences.overrideForThisRun(u"moovInFrontFlag"_s, on);
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"aac"_s, u"2"_s, u"160"_s));
        QVERIFY(bench.convert(bench.selection(u"General"_s, {videoTrack(), audio})));
        QCOMPARE(bench.calls().first().contains(u"aresample=matrix_encoding=dplii"_s), on);
        QCOMPARE(bench.calls().first().contains(u"faststart"_s), on);
    }

    void aCapIsWrittenIntoTheSelection()
    {
        FfmpegBench bench;
        const auto selection = bench.selection(u"PS3"_s, {videoTrack()});
        selection->setUserVideoBitRate(u"25000"_s);
        QVERIFY(bench.convert(selection));
        QCOMPARE(selection->userVideoBitRate(), u"15000"_s);
        QVERIFY(bench.calls().first().contains(u"15000k"_s));
    }

    void passTwoUsesTheSecondList()
    {
        FfmpegBench bench;
        QVERIFY(bench.convert(bench.selection(u"General"_s, {videoTrack()}, u"2"_s)));
        QCOMPARE(bench.posted(u"taskCompletion"_s), QStringList{u"Pass 1 Complete"_s});
        QCOMPARE(bench.converter.currentPass(), 1);
        bench.converter.setOldProgress(u"00:00:09"_s);
        const auto second = bench.converter.startSecondPass();
        QVERIFY(second);
        QCOMPARE(bench.converter.currentPass(), 2);
        QCOMPARE(bench.converter.oldProgress(), u"00:00:09"_s); // not reset here
        QVERIFY(bench.waitForEnds(2));
        QCOMPARE(bench.posted(u"taskCompletion"_s).last(), u"Complete"_s);
        QCOMPARE(bench.calls().size(), 2);
        QCOMPARE(bench.calls().at(0), tools::argumentsOf(bench.converter.optionArray1()));
        QCOMPARE(bench.calls().at(1), tools::argumentsOf(bench.converter.optionArray2()));
        QVERIFY(bench.calls().at(0).contains(u"/dev/null"_s));
        QCOMPARE(bench.calls().at(1).last(), bench.path(u"a.m4v"_s));
    }

    /// One more pair for each retry, in front of all else.
    void aRetryStandsInFrontOfTheFirstList()
    {
        FfmpegBench bench;
        QVERIFY(bench.convert(bench.selection(u"MKV"_s, {videoTrack(u"passthru"_s)})));
        const QStringList list = tools::textsOf(bench.converter.optionArray1());
        for (int retry = 1; retry <= 2; ++retry) {
            QVERIFY(bench.converter.startTimeStampRetry());
            QVERIFY(bench.waitForEnds(1 + retry));
            QCOMPARE(bench.converter.currentPass(), 0);
        }
        const QStringList pair{u"-fflags"_s, u"genpts"_s};
        QCOMPARE(tools::textsOf(bench.converter.optionArray1()), pair + pair + list);
        QCOMPARE(bench.calls().last(), pair + pair + list);
    }

    /// currentPass() stays 2, and yet pass 1 runs again: then pass 2 has to follow.
    void aRetriedPassTwoGoesThroughBothPasses()
    {
        FfmpegBench bench;
        QVERIFY(bench.convert(bench.selection(u"MKV"_s, {videoTrack()}, u"2"_s)));
        bench.converter.startSecondPass();
        QVERIFY(bench.waitForEnds(2));
        bench.converter.startTimeStampRetry();
        QCOMPARE(bench.converter.currentPass(), 2);
        QVERIFY(bench.waitForEnds(3));
        QVERIFY(bench.posted(u"monitorConversionUpdate"_s).last().startsWith(u"Pass #1 "_s));
        QCOMPARE(bench.posted(u"taskCompletion"_s).last(), u"Pass 1 Complete"_s);
        bench.converter.startSecondPass();
        QVERIFY(bench.waitForEnds(4));
        QCOMPARE(bench.posted(u"taskCompletion"_s).last(), u"Complete"_s);
        QVERIFY(bench.calls().at(2).contains(u"/dev/null"_s));
        QCOMPARE(bench.calls().at(3).mid(0, 2), QStringList({u"-fflags"_s, u"genpts"_s}));
        QVERIFY(!tools::textsOf(bench.converter.optionArray2()).contains(u"genpts"_s));
    }

    // One track into a file of its own.

    void aSingleTrackRunsInTheBackground()
    {
        FfmpegBench bench({u"write 10 last"_s});
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {});
        audio->setUserCodec(u"passthru"_s);
        audio->setTrackTitle(u"two words"_s);
        bench.converter.setTrackItemToProcess(1);
        const QString pid = bench.converter.startConvertingTrackItemToProcess(
            bench.selection(u"General"_s, {videoTrack(), audio}));
        QVERIFY(tools::isAllDigits(pid));
        QCOMPARE(bench.converter.doShell_ID(), pid);
        QCOMPARE(bench.converter.oldProgress(), u"00:00:00"_s);
        QCOMPARE(bench.converter.outputFileURL(), bench.url(u"a.m4v"_s));
        QCOMPARE(bench.converter.logFileURL(), bench.url(u"a.mkv.log"_s));
        QVERIFY(waitFor([&] { return !runs(pid.toLongLong()); }));
        QCOMPARE(bench.calls().first(),
                 QStringList({u"-i"_s, bench.path(u"a.mkv"_s), u"-map"_s, u"0:0"_s, u"-c:a"_s, u"copy"_s,
                              u"-metadata:s:a:0"_s, u"language=eng"_s, u"-metadata:s:a:0"_s,
                              u"title=two words"_s, u"-y"_s, bench.path(u"a.m4v"_s)}));
    }

    void singleTracksAreNamed_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<bool>("isStereoCopy");
        QTest::addColumn<QString>("name");
        QTest::newRow("MP4") << u"General"_s << false << u"a.m4v"_s;
        QTest::newRow("no device has an extension of its own") << u"Xbox"_s << false << u"a.m4v"_s;
        QTest::newRow("AVI") << u"AVI"_s << false << u"a.avi"_s;
        QTest::newRow("MKV") << u"MKV"_s << false << u"a.mkv.mkv"_s;
        QTest::newRow("stereo copy") << u"General"_s << true << u"a.added.m4v"_s;
        QTest::newRow("stereo copy in MKV") << u"MKV"_s << true << u"a.added.mkv"_s;
    }

    void singleTracksAreNamed()
    {
        QFETCH(QString, device);
        QFETCH(bool, isStereoCopy);
        QFETCH(QString, name);
        FfmpegBench bench({u"write 10 last"_s});
        const auto track = videoTrack(u"passthru"_s);
        track->setIsStereoCopyFlag(isStereoCopy);
        const QString pid =
            bench.converter.startConvertingTrackItemToProcess(bench.selection(device, {track}));
        QCOMPARE(bench.converter.outputFileURL(), bench.url(name));
        QVERIFY(waitFor([&] { return !runs(pid.toLongLong()); }));
    }

    /// The list was written for a shell line; the process gets plain arguments.
    void aSingleTracksPassTwoIsAProcess()
    {
        FfmpegBench bench;
        const QString pid = bench.converter.startConvertingTrackItemToProcess(
            bench.selection(u"MKV"_s, {videoTrack()}, u"2"_s));
        QCOMPARE(bench.converter.currentPass(), 1);
        QVERIFY(waitFor([&] { return !runs(pid.toLongLong()); }));
        QVERIFY(bench.converter.startSecondPass());
        QVERIFY(bench.waitForEnds(1));
        const QString statistics = bench.path(u"temp/passLog"_s);
        QCOMPARE(bench.calls().at(0).mid(bench.calls().at(0).size() - 4),
                 QStringList({u"-passlogfile"_s, statistics, u"-y"_s, bench.path(u"a.mkv.mkv"_s)}));
        const QStringList second = bench.calls().at(1);
        QCOMPARE(second.mid(second.size() - 4), bench.calls().at(0).mid(bench.calls().at(0).size() - 4));
        QCOMPARE(second.mid(2, 2), QStringList({u"-pass"_s, u"2"_s}));
        QVERIFY(!second.contains(u"&>"_s));
    }

    void aTrackThatIsNotThereStartsNothing()
    {
        FfmpegBench bench;
        bench.converter.setTrackItemToProcess(3);
        QVERIFY(bench.converter.startConvertingTrackItemToProcess(bench.selection(u"MKV"_s, {videoTrack()}))
                    .isEmpty());
        QCOMPARE(bench.converter.outcome().verdict, step::Verdict::Failed);
        QVERIFY(bench.calls().isEmpty());
    }

    // Burning.

    void aSubtitleForBurningKeepsItsNameWhereTheFilterTakesIt_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("burned");
        QTest::newRow("plain") << u"b.srt"_s << u"b.srt"_s;
        QTest::newRow("blank, percent, quote") << u"a b %1 \"c\".SRT"_s << u"a b %1 \"c\".SRT"_s;
        QTest::newRow("ttxt") << u"b.ttxt"_s << u"b.ttxt"_s;
        for (const QChar c : u"[]':,;\\="_s)
            QTest::addRow("%c", c.toLatin1()) << u"a%1b.srt"_s.arg(c) << u"temp/temp.ass"_s;
        QTest::newRow("a bracket in the folder") << u"d[1]/b.ssa"_s << u"temp/temp.ass"_s;
        QTest::newRow("a picture") << u"b.idx"_s << QString();
        QTest::newRow("a picture with a bracket") << u"b[1].sup"_s << QString();
        QTest::newRow("no extension") << u"srt"_s << QString();
    }

    void aSubtitleForBurningKeepsItsNameWhereTheFilterTakesIt()
    {
        QFETCH(QString, name);
        QFETCH(QString, burned);
        FfmpegBench bench;
        bench.world.scratch.write(name, "words");
        bench.world.scratch.write(u"temp/temp.ass"_s, "another's");
        bench.converter.prepSubtitleForBurning(bench.url(name));
        QCOMPARE(bench.converter.subToBurnURL(), burned.isNull() ? QUrl() : bench.url(burned));
        if (burned == u"temp/temp.ass"_s) // whatever its format
            QCOMPARE(bench.world.scratch.read(burned), QByteArray("words"));
        QCOMPARE(bench.world.scratch.read(name), QByteArray("words"));
    }

    void withoutACopyTheGivenPathIsUsed()
    {
        FfmpegBench bench;
        const QUrl missing = bench.url(u"a[1].srt"_s);
        bench.converter.prepSubtitleForBurning(missing);
        QCOMPARE(bench.converter.subToBurnURL(), missing);
    }

    void aPictureTakesAwayAnEarlierChoice()
    {
        FfmpegBench bench;
        bench.converter.prepSubtitleForBurning(bench.url(u"b.srt"_s));
        bench.converter.prepSubtitleForBurning(bench.url(u"b.sub"_s));
        QVERIFY(bench.converter.subToBurnURL().isEmpty());
    }

    void theFontCacheIsLookedAtWhenBurning()
    {
        for (const bool isThere : {false, true}) {
            FfmpegBench bench;
            if (isThere)
                bench.world.scratch.write(u".fontconfig/cache"_s, "x");
            bench.converter.setSubToBurnURL(bench.url(u"b.srt"_s));
            bench.converter.startConversionForSelection(bench.selection(u"General"_s, {videoTrack()}));
            QCOMPARE(bench.converter.fontconfigDirectoryExists(), isThere);
            QCOMPARE(bench.converter.fontconfigIsRebuilding(), !isThere);
            QVERIFY(bench.waitForEnds(1));
        }
    }
};

QTEST_GUILESS_MAIN(KXFfmpegConverterTest)
#include "KXFfmpegConverterTest.moc"

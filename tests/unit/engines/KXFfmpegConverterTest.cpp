#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/FfmpegFixture.h"
#include "support/selection/HandMade.h"
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
        FfmpegFixture fixture;
        const KXFfmpegConverter converter(fixture.base.converterContext(fixture.guard));
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
        FfmpegFixture fixture;
        fixture.converter.setTempFileToDeleteURL(fixture.source);
        fixture.converter.setMonitorCounter(7);
        const auto before = QDateTime::currentDateTime();
        const auto task =
            fixture.converter.startConversionForSelection(fixture.selection(u"General"_s, {videoTrack()}));
        QVERIFY(task);
        QCOMPARE(fixture.converter.converterTask(), task);
        QCOMPARE(fixture.converter.appName(), u"Pollenta"_s);
        QCOMPARE(fixture.converter.outputFileURL(), fixture.url(u"a.m4v"_s));
        QCOMPARE(fixture.converter.logFileURL(), fixture.url(u"a.mkv.log"_s));
        QCOMPARE(fixture.converter.passlogfileString(), fixture.path(u"temp/passLog"_s));
        QVERIFY(fixture.converter.logModifiedDateOld() >= before);
        QVERIFY(fixture.converter.tempFileToDeleteURL().isEmpty());
        QCOMPARE(fixture.converter.monitorCounter(), 0);
        QCOMPARE(fixture.converter.oldProgress(), u"00:00:00"_s);
        QCOMPARE(fixture.converter.currentPass(), 0);
        QCOMPARE(fixture.record.named(u"conversionStarted"_s).first().object.toUrl(),
                 fixture.converter.outputFileURL());
        QVERIFY(fixture.waitForEnds(1));
        QCOMPARE(fixture.calls(), QList<QStringList>{tools::argumentsOf(fixture.converter.optionArray1())});
        QVERIFY(fixture.converter.optionArray2().isEmpty());
        QCOMPARE(fixture.converter.outcome().verdict, steps::Verdict::Ok);
    }

    void outputsBesideTheSource_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("name");
        QTest::newRow("Xbox") << u"Xbox"_s << u"a.mp4"_s;
        QTest::newRow("PS3") << u"PS3"_s << u"a.m4v"_s;
        QTest::newRow("AVI") << u"AVI"_s << u"a.avi"_s;
        // Where the output would be the source.
        QTest::newRow("MKV") << u"MKV"_s << u"a (2).mkv"_s;
    }

    void outputsBesideTheSource()
    {
        QFETCH(QString, device);
        QFETCH(QString, name);
        FfmpegFixture fixture;
        QVERIFY(fixture.convert(fixture.selection(device, {videoTrack(u"passthru"_s)})));
        QCOMPARE(fixture.converter.outputFileURL(), fixture.url(name));
        QCOMPARE(fixture.base.scratch.read(u"a.mkv"_s), QByteArray("film"));
    }

    void outputsGoToTheSaveFolder()
    {
        FfmpegFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        QVERIFY(fixture.convert(fixture.selection(u"MKV"_s, {videoTrack(u"passthru"_s)})));
        QCOMPARE(fixture.converter.outputFileURL(), fixture.url(u"s/a.mkv"_s));
        QCOMPARE(fixture.converter.logFileURL(), fixture.url(u"s/a.mkv.log"_s));
    }

    void aTakenNameOrLogIsNotOverwritten()
    {
        FfmpegFixture fixture;
        fixture.base.scratch.write(u"a.m4v"_s, "old");
        fixture.base.scratch.write(u"a.mkv.log"_s, "old log");
        QVERIFY(fixture.convert(fixture.selection(u"General"_s, {videoTrack()})));
        QCOMPARE(fixture.converter.outputFileURL(), fixture.url(u"a (2).m4v"_s));
        QCOMPARE(fixture.base.scratch.read(u"a.m4v"_s), QByteArray("old"));
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.log"_s), QByteArray("old log"));
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
        FfmpegFixture fixture;
        fixture.base.preferences.overrideForThisRun(u"useDpliiFlag"_s, on);
        fixture.base.preferences.overrideForThisRun(u"moovInFrontFlag"_s, on);
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"aac"_s, u"2"_s, u"160"_s));
        QVERIFY(fixture.convert(fixture.selection(u"General"_s, {videoTrack(), audio})));
        QCOMPARE(fixture.calls().first().contains(u"aresample=matrix_encoding=dplii"_s), on);
        QCOMPARE(fixture.calls().first().contains(u"faststart"_s), on);
    }

    void aCapIsWrittenIntoTheSelection()
    {
        FfmpegFixture fixture;
        const auto selection = fixture.selection(u"PS3"_s, {videoTrack()});
        selection->setUserVideoBitRate(u"25000"_s);
        QVERIFY(fixture.convert(selection));
        QCOMPARE(selection->userVideoBitRate(), u"15000"_s);
        QVERIFY(fixture.calls().first().contains(u"15000k"_s));
    }

    void passTwoUsesTheSecondList()
    {
        FfmpegFixture fixture;
        QVERIFY(fixture.convert(fixture.selection(u"General"_s, {videoTrack()}, u"2"_s)));
        QCOMPARE(fixture.posted(u"taskCompletion"_s), QStringList{u"Pass 1 Complete"_s});
        QCOMPARE(fixture.converter.currentPass(), 1);
        fixture.converter.setOldProgress(u"00:00:09"_s);
        const auto second = fixture.converter.startSecondPass();
        QVERIFY(second);
        QCOMPARE(fixture.converter.currentPass(), 2);
        QCOMPARE(fixture.converter.oldProgress(), u"00:00:09"_s); // not reset here
        QVERIFY(fixture.waitForEnds(2));
        QCOMPARE(fixture.posted(u"taskCompletion"_s).last(), u"Complete"_s);
        QCOMPARE(fixture.calls().size(), 2);
        QCOMPARE(fixture.calls().at(0), tools::argumentsOf(fixture.converter.optionArray1()));
        QCOMPARE(fixture.calls().at(1), tools::argumentsOf(fixture.converter.optionArray2()));
        QVERIFY(fixture.calls().at(0).contains(u"/dev/null"_s));
        QCOMPARE(fixture.calls().at(1).last(), fixture.path(u"a.m4v"_s));
    }

    /// One more pair for each retry, in front of all else.
    void aRetryStandsInFrontOfTheFirstList()
    {
        FfmpegFixture fixture;
        QVERIFY(fixture.convert(fixture.selection(u"MKV"_s, {videoTrack(u"passthru"_s)})));
        const QStringList list = tools::textsOf(fixture.converter.optionArray1());
        for (int retry = 1; retry <= 2; ++retry) {
            QVERIFY(fixture.converter.startTimeStampRetry());
            QVERIFY(fixture.waitForEnds(1 + retry));
            QCOMPARE(fixture.converter.currentPass(), 0);
        }
        const QStringList pair{u"-fflags"_s, u"genpts"_s};
        QCOMPARE(tools::textsOf(fixture.converter.optionArray1()), pair + pair + list);
        QCOMPARE(fixture.calls().last(), pair + pair + list);
    }

    /// currentPass() stays 2, and yet pass 1 runs again: then pass 2 has to follow.
    void aRetriedPassTwoGoesThroughBothPasses()
    {
        FfmpegFixture fixture;
        QVERIFY(fixture.convert(fixture.selection(u"MKV"_s, {videoTrack()}, u"2"_s)));
        fixture.converter.startSecondPass();
        QVERIFY(fixture.waitForEnds(2));
        fixture.converter.startTimeStampRetry();
        QCOMPARE(fixture.converter.currentPass(), 2);
        QVERIFY(fixture.waitForEnds(3));
        QVERIFY(fixture.posted(u"monitorConversionUpdate"_s).last().startsWith(u"Pass #1 "_s));
        QCOMPARE(fixture.posted(u"taskCompletion"_s).last(), u"Pass 1 Complete"_s);
        fixture.converter.startSecondPass();
        QVERIFY(fixture.waitForEnds(4));
        QCOMPARE(fixture.posted(u"taskCompletion"_s).last(), u"Complete"_s);
        QVERIFY(fixture.calls().at(2).contains(u"/dev/null"_s));
        QCOMPARE(fixture.calls().at(3).mid(0, 2), QStringList({u"-fflags"_s, u"genpts"_s}));
        QVERIFY(!tools::textsOf(fixture.converter.optionArray2()).contains(u"genpts"_s));
    }

    // One track into a file of its own.

    void aSingleTrackRunsInTheBackground()
    {
        FfmpegFixture fixture({u"write 10 last"_s});
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {});
        audio->setUserCodec(u"passthru"_s);
        audio->setTrackTitle(u"two words"_s);
        fixture.converter.setTrackItemToProcess(1);
        const QString pid = fixture.converter.startConvertingTrackItemToProcess(
            fixture.selection(u"General"_s, {videoTrack(), audio}));
        QVERIFY(tools::isAllDigits(pid));
        QCOMPARE(fixture.converter.doShell_ID(), pid);
        QCOMPARE(fixture.converter.oldProgress(), u"00:00:00"_s);
        QCOMPARE(fixture.converter.outputFileURL(), fixture.url(u"a.m4v"_s));
        QCOMPARE(fixture.converter.logFileURL(), fixture.url(u"a.mkv.log"_s));
        QVERIFY(waitFor([&] { return !runs(pid.toLongLong()); }));
        QCOMPARE(fixture.calls().first(),
                 QStringList({u"-i"_s, fixture.path(u"a.mkv"_s), u"-map"_s, u"0:1"_s, u"-c:a"_s, u"copy"_s,
                              u"-metadata:s:a:0"_s, u"language=eng"_s, u"-metadata:s:a:0"_s,
                              u"title=two words"_s, u"-y"_s, fixture.path(u"a.m4v"_s)}));
        QCOMPARE(tools::textsOf(fixture.converter.optionArray1()).at(2), u"-map 0:0"_s); // is meant
    }

    void singleTracksAreNamed_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<bool>("isStereoCopy");
        QTest::addColumn<QString>("name");
        QTest::newRow("MP4") << u"General"_s << false << u"a.m4v"_s;
        QTest::newRow("no device has an extension of its own") << u"Xbox"_s << false << u"a.m4v"_s;
        QTest::newRow("AVI") << u"AVI"_s << false << u"a.avi"_s;
        QTest::newRow("MKV") << u"MKV"_s << false << u"a (2).mkv"_s;
        QTest::newRow("stereo copy") << u"General"_s << true << u"a.added.m4v"_s;
        QTest::newRow("stereo copy in MKV") << u"MKV"_s << true << u"a.added.mkv"_s;
    }

    void singleTracksAreNamed()
    {
        QFETCH(QString, device);
        QFETCH(bool, isStereoCopy);
        QFETCH(QString, name);
        FfmpegFixture fixture({u"write 10 last"_s});
        const auto track = videoTrack(u"passthru"_s);
        track->setIsStereoCopyFlag(isStereoCopy);
        const QString pid =
            fixture.converter.startConvertingTrackItemToProcess(fixture.selection(device, {track}));
        QCOMPARE(fixture.converter.outputFileURL(), fixture.url(name));
        QVERIFY(waitFor([&] { return !runs(pid.toLongLong()); }));
    }

    /// The list was written for a shell line; the process gets plain arguments.
    void aSingleTracksPassTwoIsAProcess()
    {
        FfmpegFixture fixture;
        const QString pid = fixture.converter.startConvertingTrackItemToProcess(
            fixture.selection(u"MKV"_s, {videoTrack()}, u"2"_s));
        QCOMPARE(fixture.converter.currentPass(), 1);
        QVERIFY(waitFor([&] { return !runs(pid.toLongLong()); }));
        QVERIFY(fixture.converter.startSecondPass());
        QVERIFY(fixture.waitForEnds(1));
        const QString statistics = fixture.path(u"temp/passLog"_s);
        QCOMPARE(fixture.calls().at(0).mid(fixture.calls().at(0).size() - 4),
                 QStringList({u"-passlogfile"_s, statistics, u"-y"_s, fixture.path(u"a (2).mkv"_s)}));
        const QStringList second = fixture.calls().at(1);
        QCOMPARE(second.mid(second.size() - 4), fixture.calls().at(0).mid(fixture.calls().at(0).size() - 4));
        QCOMPARE(second.mid(2, 2), QStringList({u"-pass"_s, u"2"_s}));
        QVERIFY(!second.contains(u"&>"_s));
    }

    void aTrackThatIsNotThereStartsNothing()
    {
        FfmpegFixture fixture;
        fixture.converter.setTrackItemToProcess(3);
        QVERIFY(
            fixture.converter.startConvertingTrackItemToProcess(fixture.selection(u"MKV"_s, {videoTrack()}))
                .isEmpty());
        QCOMPARE(fixture.converter.outcome().verdict, steps::Verdict::Failed);
        QVERIFY(fixture.calls().isEmpty());
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
        FfmpegFixture fixture;
        fixture.base.scratch.write(name, "words");
        fixture.base.scratch.write(u"temp/temp.ass"_s, "another's");
        fixture.converter.prepSubtitleForBurning(fixture.url(name));
        QCOMPARE(fixture.converter.subToBurnURL(), burned.isNull() ? QUrl() : fixture.url(burned));
        if (burned == u"temp/temp.ass"_s) // whatever its format
            QCOMPARE(fixture.base.scratch.read(burned), QByteArray("words"));
        QCOMPARE(fixture.base.scratch.read(name), QByteArray("words"));
    }

    void withoutACopyTheGivenPathIsUsed()
    {
        FfmpegFixture fixture;
        const QUrl missing = fixture.url(u"a[1].srt"_s);
        fixture.converter.prepSubtitleForBurning(missing);
        QCOMPARE(fixture.converter.subToBurnURL(), missing);
    }

    void aPictureTakesAwayAnEarlierChoice()
    {
        FfmpegFixture fixture;
        fixture.converter.prepSubtitleForBurning(fixture.url(u"b.srt"_s));
        fixture.converter.prepSubtitleForBurning(fixture.url(u"b.sub"_s));
        QVERIFY(fixture.converter.subToBurnURL().isEmpty());
    }

    void theFontCacheIsLookedAtWhenBurning()
    {
        for (const bool isThere : {false, true}) {
            FfmpegFixture fixture;
            if (isThere)
                fixture.base.scratch.write(u".fontconfig/cache"_s, "x");
            fixture.converter.setSubToBurnURL(fixture.url(u"b.srt"_s));
            fixture.converter.startConversionForSelection(fixture.selection(u"General"_s, {videoTrack()}));
            QCOMPARE(fixture.converter.fontconfigDirectoryExists(), isThere);
            QCOMPARE(fixture.converter.fontconfigIsRebuilding(), !isThere);
            QVERIFY(fixture.waitForEnds(1));
        }
    }
};

TESSARAY_TEST(KXFfmpegConverterTest)
#include "KXFfmpegConverterTest.moc"

#include "support/ConversionBench.h"
#include "support/FakeTool.h"
#include "support/HandMade.h"
#include "support/Waiting.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using step::Verdict;

namespace {

TrackPointer burned(const QString &stream, const QString &codec = u"srt"_s)
{
    return subtitleTrack(stream, codec, u"burn"_s);
}

/// What a list gives behind an option; empty when the option isn't there.
QString behind(const QStringList &list, const QString &option)
{
    const auto at = list.indexOf(option);
    return at < 0 ? QString() : list.value(at + 1);
}

} // namespace

/// What a conversion does with subtitles before it starts.
class ConversionSubtitlesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTrackGetsItsMuxingSnapshot()
    {
        ConversionBench bench;
        const auto video = videoTrack();
        const auto muxed = subtitleTrack(u"3"_s, u"srt"_s);
        QVERIFY(bench.run(bench.make(u"General"_s, {video, muxed})));
        QCOMPARE(video->muxingTrackType(), u"Video"_s);
        QCOMPARE(muxed->muxingTrackType(), u"Subtitle"_s);
        QCOMPARE(bench.calls().size(), 1);
        QVERIFY(!bench.job->subWasBurned());
    }

    void withoutSubtitlesNoTrackIsTouched()
    {
        ConversionBench bench;
        const auto video = videoTrack();
        QVERIFY(bench.run(bench.make(u"General"_s, {video})));
        QCOMPARE(video->muxingTrackType(), u"none"_s);
    }

    void aTextOfTheSourceIsExtractedAndBurned()
    {
        ConversionBench bench;
        const auto job = bench.make(u"General"_s, {videoTrack(), burned(u"3"_s)});
        QVERIFY(bench.run(job));
        const auto calls = bench.calls();
        QCOMPARE(calls.size(), 2);
        const QString text = bench.path(u"a.mkv.stream3.srt"_s);
        QCOMPARE(calls.at(0),
                 QStringList({u"-i"_s, bench.path(u"a.mkv"_s), u"-map"_s, u"0:3"_s, u"-y"_s, text}));
        QCOMPARE(behind(calls.at(1), u"-vf"_s), u"subtitles="_s + text);
        QVERIFY(job->subWasBurned());
        QCOMPARE(job->tempFilesToDeleteList(), QList<QUrl>{QUrl::fromLocalFile(text)});
        QCOMPARE(job->logFilesToDeleteList(),
                 QList<QUrl>({QUrl::fromLocalFile(text + u".log"_s), bench.url(u"a.mkv.log"_s)}));
        QVERIFY(!QFile::exists(text) && !QFile::exists(text + u".log"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(u"a.m4v"_s)});
    }

    /// Intermediate files are kept together with the logs.
    void withTheLogsTheIntermediateFileIsKept()
    {
        ConversionBench bench;
        bench.world.setKeepLogs(true);
        QVERIFY(bench.run(bench.make(u"General"_s, {videoTrack(), burned(u"3"_s)})));
        QVERIFY(QFile::exists(bench.path(u"a.mkv.stream3.srt"_s)));
        QVERIFY(QFile::exists(bench.path(u"a.mkv.stream3.srt.log"_s)));
        QVERIFY(QFile::exists(bench.path(u"a.mkv.log"_s)));
    }

    void anMp4TextIsBurnedAsAss()
    {
        ConversionBench bench;
        QVERIFY(bench.run(bench.make(u"General"_s, {videoTrack(), burned(u"3"_s, u"ttxt"_s)})));
        QCOMPARE(behind(bench.calls().at(1), u"-vf"_s), u"subtitles="_s + bench.path(u"a.mkv.stream3.ass"_s));
    }

    void wordsAreReadInSmallLetters()
    {
        ConversionBench bench;
        const auto text = burned(u"3"_s, u"srt"_s);
        text->setTrackCodec(u"SRT"_s);
        QVERIFY(bench.run(
            bench.make(u"General"_s, {videoTrack(), subtitleTrack(u"2"_s, u"srt"_s, u"MUX"_s), text})));
        QVERIFY(behind(bench.calls().last(), u"-vf"_s).endsWith(u"a.mkv.stream3.srt"_s));
    }

    /// Only the first in track order is prepared; the walk ends there.
    void ofTwoToBurnTheFirstIsTaken()
    {
        ConversionBench bench;
        const auto second = burned(u"4"_s);
        QVERIFY(bench.run(bench.make(u"General"_s, {videoTrack(), burned(u"3"_s), second,
                                                    subtitleTrack(u"5"_s, u"srt"_s, u"extract"_s)})));
        QCOMPARE(bench.calls().size(), 2);
        QVERIFY(behind(bench.calls().at(1), u"-vf"_s).endsWith(u"a.mkv.stream3.srt"_s));
        QCOMPARE(second->muxingTrackType(), u"none"_s);
    }

    /// Laid over from the source itself: no extraction.
    void aPictureOfTheSourceIsBurnedFromTheSource()
    {
        ConversionBench bench;
        const auto job = bench.make(u"General"_s, {videoTrack(), burned(u"3"_s, u"teletext"_s)});
        QVERIFY(bench.run(job));
        QCOMPARE(bench.calls().size(), 1);
        QVERIFY(job->subWasBurned());
        const auto converter = std::dynamic_pointer_cast<KXFfmpegConverter>(job->stepConverterList().first());
        QCOMPARE(converter->subToBurnURL(), bench.source);
        QVERIFY(
            behind(bench.calls().first(), u"-filter_complex"_s).startsWith(u"[0:3]scale=1920:1080[sub];"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void anExternalTextIsBurnedWhereItLies()
    {
        ConversionBench bench;
        const QString file = bench.world.scratch.write(u"s/b.srt"_s, "words");
        QVERIFY(bench.run(bench.make(u"General"_s, {videoTrack(), external(burned({}), file)})));
        QCOMPARE(bench.calls().size(), 1);
        QCOMPARE(behind(bench.calls().first(), u"-vf"_s), u"subtitles="_s + file);
        QCOMPARE(bench.world.scratch.read(u"s/b.srt"_s), QByteArray("words"));
    }

    void aBracketedPathIsBurnedFromACopy()
    {
        ConversionBench bench;
        const QString file = bench.world.scratch.write(u"s/b [1].srt"_s, "words");
        const auto job = bench.make(u"General"_s, {videoTrack(), external(burned({}), file)});
        QVERIFY(bench.run(job));
        const QString filter = behind(bench.calls().first(), u"-vf"_s);
        QVERIFY2(filter.endsWith(u"/temp.ass"_s), qPrintable(filter));
        QVERIFY(!QFileInfo::exists(filter.section(u'=', 1))); // gone with the job
        QCOMPARE(bench.world.scratch.read(u"s/b [1].srt"_s), QByteArray("words"));
    }

    /// Any extension but those of texts.
    void anExternalPictureIsNeitherBurnedNorMuxed()
    {
        ConversionBench bench;
        const QString file = bench.world.scratch.write(u"s/b.idx"_s, "pictures");
        QVERIFY(bench.run(bench.make(u"General"_s, {videoTrack(), external(burned({}, u"vobsub"_s), file)})));
        QCOMPARE(bench.calls().size(), 1);
        const QString line = bench.calls().first().join(u' ');
        QVERIFY(!line.contains(u"-vf"_s) && !line.contains(u"-filter_complex"_s) &&
                !line.contains(u"-codec:s"_s));
        QCOMPARE(bench.job->outcome().verdict, Verdict::Warnings);
        QCOMPARE(bench.job->outcome().sentence,
                 u"The subtitle b.idx can't be drawn into the picture and was left out."_s);
    }

    /// Who chose an added subtitle to be burned hears where that can't be.
    void onlyWhatIsNotDrawnIsAWarning_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<bool>("isDrawn");
        QTest::newRow("text") << u"b.srt"_s << u"srt"_s << true;
        QTest::newRow("text of a hard name") << u"b [1], 100%1.ASS"_s << u"ass"_s << true;
        QTest::newRow("text in a container") << u"b 100%1.mks"_s << u"srt"_s << false;
        QTest::newRow("pictures") << u"b.sup"_s << u"teletext"_s << false;
    }

    void onlyWhatIsNotDrawnIsAWarning()
    {
        QFETCH(QString, name);
        QFETCH(QString, codec);
        QFETCH(bool, isDrawn);
        ConversionBench bench;
        const QString file = bench.world.scratch.write(u"s/"_s + name, "words");
        const auto job = bench.make(u"General"_s, {videoTrack(), external(burned({}, codec), file)});
        QVERIFY(bench.run(job));
        QCOMPARE(job->outcome().verdict, isDrawn ? Verdict::Ok : Verdict::Warnings);
        QCOMPARE(job->outcome().sentence,
                 isDrawn
                     ? QString()
                     : u"The subtitle "_s + name + u" can't be drawn into the picture and was left out."_s);
    }

    /// The user wants to have it: it stays, only its log goes.
    void aSubtitleToExtractIsKept()
    {
        ConversionBench bench;
        const auto job =
            bench.make(u"General"_s, {videoTrack(), subtitleTrack(u"3"_s, u"srt"_s, u"Extract"_s),
                                      subtitleTrack(u"4"_s, u"ass"_s)});
        QVERIFY(bench.run(job));
        QCOMPARE(bench.calls().size(), 2);
        QCOMPARE(bench.calls().at(0).last(), bench.path(u"a.mkv.stream3.srt"_s));
        QVERIFY(QFile::exists(bench.path(u"a.mkv.stream3.srt"_s)));
        QVERIFY(!QFile::exists(bench.path(u"a.mkv.stream3.srt.log"_s)));
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
        QVERIFY(!job->subWasBurned());
        QVERIFY(bench.calls().at(1).contains(u"0:4"_s)); // the walk went on
        QVERIFY(!bench.calls().at(1).contains(u"0:3"_s));
    }

    void anExternalOneIsNotExtracted()
    {
        ConversionBench bench;
        const QString file = bench.world.scratch.write(u"s/b.srt"_s, "words");
        QVERIFY(bench.run(bench.make(
            u"General"_s, {videoTrack(), external(subtitleTrack({}, u"srt"_s, u"extract"_s), file)})));
        QCOMPARE(bench.calls().size(), 1);
    }

    /// A free name is taken instead.
    void aFileOfTheUsersIsNeitherOverwrittenNorDeleted()
    {
        ConversionBench bench;
        bench.world.scratch.write(u"a.mkv.stream3.srt"_s, "mine");
        bench.world.scratch.write(u"a.mkv.stream3.srt.log"_s, "my log");
        QVERIFY(bench.run(bench.make(u"General"_s, {videoTrack(), burned(u"3"_s)})));
        QCOMPARE(bench.calls().first().last(), bench.path(u"a.mkv.stream3 (2).srt"_s));
        QCOMPARE(bench.world.scratch.read(u"a.mkv.stream3.srt"_s), QByteArray("mine"));
        QCOMPARE(bench.world.scratch.read(u"a.mkv.stream3.srt.log"_s), QByteArray("my log"));
        QVERIFY(!QFile::exists(bench.path(u"a.mkv.stream3 (2).srt"_s)));
    }

    /// An intermediate file takes a free name also where a taken output is refused.
    void aTakenIntermediateNameIsNoRefusal()
    {
        ConversionBench bench;
        bench.world.scratch.write(u"a.mkv.stream3.srt"_s, "mine");
        const auto job =
            std::make_shared<KXConvertWithFfmpegJob>(bench.world.jobContext(step::WhenTaken::Refuse));
        job->initJobWithSelectionAndPreferences(bench.selection(u"General"_s, {videoTrack(), burned(u"3"_s)}),
                                                bench.world.preferences);
        QVERIFY(bench.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        QVERIFY(behind(bench.calls().at(1), u"-vf"_s).endsWith(u"a.mkv.stream3 (2).srt"_s));
    }

    void aFailedExtractionStillConverts()
    {
        ConversionBench bench(QStringList{u"when 0:3"_s, u"err Cannot find it"_s, u"exit 1"_s, u"end"_s} +
                              ConversionBench::wellDone());
        const auto job = bench.make(u"General"_s, {videoTrack(), burned(u"3"_s)});
        QVERIFY(bench.run(job));
        QCOMPARE(bench.calls().size(), 2);
        QVERIFY(QFile::exists(bench.path(u"a.m4v"_s)));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"Track 3"_s), qPrintable(job->outcome().sentence));
    }

    /// The wait serves timers, and the tool is one of the job's that can be paused or stopped.
    void theWaitLetsTheProgramLive()
    {
        ConversionBench bench;
        bench.world.installTool(u"ffmpeg/ffmpeg"_s,
                                QStringList{u"record "_s + bench.path(u"runs"_s), u"when 0:3"_s,
                                            u"pid "_s + bench.path(u"pid"_s), u"sleep 600"_s, u"end"_s} +
                                    ConversionBench::wellDone());
        const auto job = bench.make(u"General"_s, {videoTrack(), burned(u"3"_s)});
        QList<jobs::StepTask> seen;
        QTimer::singleShot(300, this, [&] { seen = job->stepTaskList(); });
        QVERIFY(bench.run(job));
        QCOMPARE(seen.size(), 1);
        const auto *pid = std::get_if<QString>(&seen.first());
        QVERIFY(pid != nullptr);
        QCOMPARE(*pid, QString::fromLatin1(bench.world.scratch.read(u"pid"_s)).trimmed());
    }

    void stoppedWhileItWaits()
    {
        ConversionBench bench;
        bench.world.installTool(u"ffmpeg/ffmpeg"_s,
                                QStringList{u"record "_s + bench.path(u"runs"_s),
                                            u"pid "_s + bench.path(u"pid"_s), u"write 10 last"_s, u"hang"_s});
        const auto job = bench.make(u"General"_s, {videoTrack(), burned(u"3"_s)});
        QTimer::singleShot(400, this, [&] { job->stopJob(); });
        job->startJob();
        QVERIFY(job->hasEnded());
        QCOMPARE(bench.calls().size(), 1);
        QVERIFY(!runs(bench.world.scratch.read(u"pid"_s).trimmed().toLongLong()));
        QVERIFY(!QFile::exists(bench.path(u"a.mkv.stream3.srt"_s)));
        QVERIFY(!QFile::exists(bench.path(u"a.m4v"_s)));
        QCOMPARE(job->outcome().verdict, Verdict::Stopped);
    }

    void stoppedWhileItExtractsForTheUser()
    {
        ConversionBench bench;
        bench.world.installTool(u"ffmpeg/ffmpeg"_s, QStringList{u"write 10 last"_s, u"hang"_s});
        const auto job =
            bench.make(u"General"_s, {videoTrack(), subtitleTrack(u"3"_s, u"srt"_s, u"extract"_s)});
        QTimer::singleShot(400, this, [&] { job->stopJob(); });
        job->startJob();
        QVERIFY(!QFile::exists(bench.path(u"a.mkv.stream3.srt"_s)));
    }
};

QTEST_GUILESS_MAIN(ConversionSubtitlesTest)
#include "ConversionSubtitlesTest.moc"

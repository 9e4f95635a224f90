#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/ConversionFixture.h"
#include "support/selection/HandMade.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

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
        ConversionFixture fixture;
        const auto video = videoTrack();
        const auto muxed = subtitleTrack(u"3"_s, u"srt"_s);
        QVERIFY(fixture.run(fixture.make(u"General"_s, {video, muxed})));
        QCOMPARE(video->muxingTrackType(), u"Video"_s);
        QCOMPARE(muxed->muxingTrackType(), u"Subtitle"_s);
        QCOMPARE(fixture.calls().size(), 1);
        QVERIFY(!fixture.job->subWasBurned());
    }

    void withoutSubtitlesNoTrackIsTouched()
    {
        ConversionFixture fixture;
        const auto video = videoTrack();
        QVERIFY(fixture.run(fixture.make(u"General"_s, {video})));
        QCOMPARE(video->muxingTrackType(), u"none"_s);
    }

    void aTextOfTheSourceIsExtractedAndBurned()
    {
        ConversionFixture fixture;
        const auto job = fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s)});
        QVERIFY(fixture.run(job));
        const auto calls = fixture.calls();
        QCOMPARE(calls.size(), 2);
        const QString text = fixture.path(u"a.mkv.stream3.srt"_s);
        QCOMPARE(calls.at(0),
                 QStringList({u"-i"_s, fixture.path(u"a.mkv"_s), u"-map"_s, u"0:3"_s, u"-y"_s, text}));
        QCOMPARE(behind(calls.at(1), u"-vf"_s), u"subtitles="_s + text);
        QVERIFY(job->subWasBurned());
        QCOMPARE(job->tempFilesToDeleteList(), QList<QUrl>{QUrl::fromLocalFile(text)});
        QCOMPARE(job->logFilesToDeleteList(),
                 QList<QUrl>({QUrl::fromLocalFile(text + u".log"_s), fixture.url(u"a.mkv.log"_s)}));
        QVERIFY(!QFile::exists(text) && !QFile::exists(text + u".log"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"a.m4v"_s)});
    }

    /// Intermediate files are kept together with the logs.
    void withTheLogsTheIntermediateFileIsKept()
    {
        ConversionFixture fixture;
        fixture.base.setKeepLogs(true);
        QVERIFY(fixture.run(fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s)})));
        QVERIFY(QFile::exists(fixture.path(u"a.mkv.stream3.srt"_s)));
        QVERIFY(QFile::exists(fixture.path(u"a.mkv.stream3.srt.log"_s)));
        QVERIFY(QFile::exists(fixture.path(u"a.mkv.log"_s)));
    }

    void anMp4TextIsBurnedAsAss()
    {
        ConversionFixture fixture;
        QVERIFY(fixture.run(fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s, u"ttxt"_s)})));
        QCOMPARE(behind(fixture.calls().at(1), u"-vf"_s),
                 u"subtitles="_s + fixture.path(u"a.mkv.stream3.ass"_s));
    }

    void wordsAreReadInSmallLetters()
    {
        ConversionFixture fixture;
        const auto text = burned(u"3"_s, u"srt"_s);
        text->setTrackCodec(u"SRT"_s);
        QVERIFY(fixture.run(
            fixture.make(u"General"_s, {videoTrack(), subtitleTrack(u"2"_s, u"srt"_s, u"MUX"_s), text})));
        QVERIFY(behind(fixture.calls().last(), u"-vf"_s).endsWith(u"a.mkv.stream3.srt"_s));
    }

    /// Only the first in track order is prepared; the walk ends there.
    void ofTwoToBurnTheFirstIsTaken()
    {
        ConversionFixture fixture;
        const auto second = burned(u"4"_s);
        QVERIFY(fixture.run(fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s), second,
                                                        subtitleTrack(u"5"_s, u"srt"_s, u"extract"_s)})));
        QCOMPARE(fixture.calls().size(), 2);
        QVERIFY(behind(fixture.calls().at(1), u"-vf"_s).endsWith(u"a.mkv.stream3.srt"_s));
        QCOMPARE(second->muxingTrackType(), u"none"_s);
    }

    /// Laid over from the source itself: no extraction.
    void aPictureOfTheSourceIsBurnedFromTheSource()
    {
        ConversionFixture fixture;
        const auto job = fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s, u"teletext"_s)});
        QVERIFY(fixture.run(job));
        QCOMPARE(fixture.calls().size(), 1);
        QVERIFY(job->subWasBurned());
        const auto converter = std::dynamic_pointer_cast<KXFfmpegConverter>(job->stepConverterList().first());
        QCOMPARE(converter->subToBurnURL(), fixture.source);
        QVERIFY(behind(fixture.calls().first(), u"-filter_complex"_s)
                    .startsWith(u"[0:3]scale=1920:1080[sub];"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void anExternalTextIsBurnedWhereItLies()
    {
        ConversionFixture fixture;
        const QString file = fixture.base.scratch.write(u"s/b.srt"_s, "words");
        QVERIFY(fixture.run(fixture.make(u"General"_s, {videoTrack(), external(burned({}), file)})));
        QCOMPARE(fixture.calls().size(), 1);
        QCOMPARE(behind(fixture.calls().first(), u"-vf"_s), u"subtitles="_s + file);
        QCOMPARE(fixture.base.scratch.read(u"s/b.srt"_s), QByteArray("words"));
    }

    void aBracketedPathIsBurnedFromACopy()
    {
        ConversionFixture fixture;
        const QString file = fixture.base.scratch.write(u"s/b [1].srt"_s, "words");
        const auto job = fixture.make(u"General"_s, {videoTrack(), external(burned({}), file)});
        QVERIFY(fixture.run(job));
        const QString filter = behind(fixture.calls().first(), u"-vf"_s);
        QVERIFY2(filter.endsWith(u"/temp.ass"_s), qPrintable(filter));
        QVERIFY(!QFileInfo::exists(filter.section(u'=', 1))); // gone with the job
        QCOMPARE(fixture.base.scratch.read(u"s/b [1].srt"_s), QByteArray("words"));
    }

    /// Any extension but those of texts.
    void anExternalPictureIsNeitherBurnedNorMuxed()
    {
        ConversionFixture fixture;
        const QString file = fixture.base.scratch.write(u"s/b.idx"_s, "pictures");
        QVERIFY(
            fixture.run(fixture.make(u"General"_s, {videoTrack(), external(burned({}, u"vobsub"_s), file)})));
        QCOMPARE(fixture.calls().size(), 1);
        const QString line = fixture.calls().first().join(u' ');
        QVERIFY(!line.contains(u"-vf"_s) && !line.contains(u"-filter_complex"_s) &&
                !line.contains(u"-codec:s"_s));
        QCOMPARE(fixture.job->outcome().verdict, Verdict::Warnings);
        QCOMPARE(fixture.job->outcome().sentence,
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
        ConversionFixture fixture;
        const QString file = fixture.base.scratch.write(u"s/"_s + name, "words");
        const auto job = fixture.make(u"General"_s, {videoTrack(), external(burned({}, codec), file)});
        QVERIFY(fixture.run(job));
        QCOMPARE(job->outcome().verdict, isDrawn ? Verdict::Ok : Verdict::Warnings);
        QCOMPARE(job->outcome().sentence,
                 isDrawn
                     ? QString()
                     : u"The subtitle "_s + name + u" can't be drawn into the picture and was left out."_s);
    }

    /// The user wants to have it: it stays, only its log goes.
    void aSubtitleToExtractIsKept()
    {
        ConversionFixture fixture;
        const auto job =
            fixture.make(u"General"_s, {videoTrack(), subtitleTrack(u"3"_s, u"srt"_s, u"Extract"_s),
                                        subtitleTrack(u"4"_s, u"ass"_s)});
        QVERIFY(fixture.run(job));
        QCOMPARE(fixture.calls().size(), 2);
        QCOMPARE(fixture.calls().at(0).last(), fixture.path(u"a.mkv.stream3.srt"_s));
        QVERIFY(QFile::exists(fixture.path(u"a.mkv.stream3.srt"_s)));
        QVERIFY(!QFile::exists(fixture.path(u"a.mkv.stream3.srt.log"_s)));
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
        QVERIFY(!job->subWasBurned());
        QVERIFY(fixture.calls().at(1).contains(u"0:4"_s)); // the walk went on
        QVERIFY(!fixture.calls().at(1).contains(u"0:3"_s));
    }

    void anExternalOneIsNotExtracted()
    {
        ConversionFixture fixture;
        const QString file = fixture.base.scratch.write(u"s/b.srt"_s, "words");
        QVERIFY(fixture.run(fixture.make(
            u"General"_s, {videoTrack(), external(subtitleTrack({}, u"srt"_s, u"extract"_s), file)})));
        QCOMPARE(fixture.calls().size(), 1);
    }

    /// A free name is taken instead.
    void aFileOfTheUsersIsNeitherOverwrittenNorDeleted()
    {
        ConversionFixture fixture;
        fixture.base.scratch.write(u"a.mkv.stream3.srt"_s, "mine");
        fixture.base.scratch.write(u"a.mkv.stream3.srt.log"_s, "my log");
        QVERIFY(fixture.run(fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s)})));
        QCOMPARE(fixture.calls().first().last(), fixture.path(u"a.mkv.stream3 (2).srt"_s));
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.stream3.srt"_s), QByteArray("mine"));
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.stream3.srt.log"_s), QByteArray("my log"));
        QVERIFY(!QFile::exists(fixture.path(u"a.mkv.stream3 (2).srt"_s)));
    }

    /// An intermediate file takes a free name also where a taken output is refused.
    void aTakenIntermediateNameIsNoRefusal()
    {
        ConversionFixture fixture;
        fixture.base.scratch.write(u"a.mkv.stream3.srt"_s, "mine");
        const auto job =
            std::make_shared<KXConvertWithFfmpegJob>(fixture.base.jobContext(steps::WhenTaken::Refuse));
        job->initJobWithSelectionAndPreferences(
            fixture.selection(u"General"_s, {videoTrack(), burned(u"3"_s)}), fixture.base.preferences);
        QVERIFY(fixture.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        QVERIFY(behind(fixture.calls().at(1), u"-vf"_s).endsWith(u"a.mkv.stream3 (2).srt"_s));
    }

    void aFailedExtractionStillConverts()
    {
        ConversionFixture fixture(QStringList{u"when 0:3"_s, u"err Cannot find it"_s, u"exit 1"_s, u"end"_s} +
                                  ConversionFixture::wellDone());
        const auto job = fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s)});
        QVERIFY(fixture.run(job));
        QCOMPARE(fixture.calls().size(), 2);
        QVERIFY(QFile::exists(fixture.path(u"a.m4v"_s)));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"Track 3"_s), qPrintable(job->outcome().sentence));
    }

    /// The wait serves timers, and the tool is one of the job's that can be paused or stopped.
    void theWaitLetsTheProgramLive()
    {
        ConversionFixture fixture;
        fixture.base.installTool(u"ffmpeg/ffmpeg"_s,
                                 QStringList{u"record "_s + fixture.path(u"runs"_s), u"when 0:3"_s,
                                             u"pid "_s + fixture.path(u"pid"_s), u"sleep 600"_s, u"end"_s} +
                                     ConversionFixture::wellDone());
        const auto job = fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s)});
        QList<jobs::StepTask> seen;
        QTimer::singleShot(300, this, [&] { seen = job->stepTaskList(); });
        QVERIFY(fixture.run(job));
        QCOMPARE(seen.size(), 1);
        const auto *pid = std::get_if<QString>(&seen.first());
        QVERIFY(pid != nullptr);
        QCOMPARE(*pid, QString::fromLatin1(fixture.base.scratch.read(u"pid"_s)).trimmed());
    }

    void stoppedWhileItWaits()
    {
        ConversionFixture fixture;
        fixture.base.installTool(u"ffmpeg/ffmpeg"_s, QStringList{u"record "_s + fixture.path(u"runs"_s),
                                                                 u"pid "_s + fixture.path(u"pid"_s),
                                                                 u"write 10 last"_s, u"hang"_s});
        const auto job = fixture.make(u"General"_s, {videoTrack(), burned(u"3"_s)});
        QTimer::singleShot(400, this, [&] { job->stopJob(); });
        job->startJob();
        QVERIFY(job->hasEnded());
        QCOMPARE(fixture.calls().size(), 1);
        QVERIFY(!runs(fixture.base.scratch.read(u"pid"_s).trimmed().toLongLong()));
        QVERIFY(!QFile::exists(fixture.path(u"a.mkv.stream3.srt"_s)));
        QVERIFY(!QFile::exists(fixture.path(u"a.m4v"_s)));
        QCOMPARE(job->outcome().verdict, Verdict::Stopped);
    }

    void stoppedWhileItExtractsForTheUser()
    {
        ConversionFixture fixture;
        fixture.base.installTool(u"ffmpeg/ffmpeg"_s, QStringList{u"write 10 last"_s, u"hang"_s});
        const auto job =
            fixture.make(u"General"_s, {videoTrack(), subtitleTrack(u"3"_s, u"srt"_s, u"extract"_s)});
        QTimer::singleShot(400, this, [&] { job->stopJob(); });
        job->startJob();
        QVERIFY(!QFile::exists(fixture.path(u"a.mkv.stream3.srt"_s)));
    }
};

TESSARAY_TEST(ConversionSubtitlesTest)
#include "ConversionSubtitlesTest.moc"

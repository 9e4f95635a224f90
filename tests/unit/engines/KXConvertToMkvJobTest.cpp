#include "engines/mkvtoolnix/KXConvertToMkvJob.h"
#include "jobs/MuxingTracks.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"
#include "support/selection/HandMade.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTest>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

TrackPointer pictureAs(const QString &userCodec = u"passthru"_s)
{
    return videoTrack(userCodec);
}

/// As the queue makes it: with the choices of its first output.
TrackPointer queuedSound(const QString &userCodec = u"passthru"_s, const QString &id = u"1"_s)
{
    return jobs::tracksForMuxing(
               {audioTrack(id, u"ac3"_s, u"6"_s, audioSettings(userCodec, u"2"_s, u"160"_s))})
        .first();
}

class MkvJobFixture final : public MkvFixture
{
public:
    using MkvFixture::MkvFixture;

    std::shared_ptr<KXConvertToMkvJob> begin(const TrackList &tracks, const QString &passes = u"1"_s)
    {
        return start<KXConvertToMkvJob>(selection(mkvConversion, tracks, passes));
    }
    KXConverter &converter(qsizetype place) const { return *job->stepConverterList().at(place); }
    QString outputOf(qsizetype place) const { return shown(converter(place).outputFileURL().toLocalFile()); }
    bool waitForStep(const QString &text) const
    {
        return waitFor([&] { return progressTexts().contains(text); });
    }
    /// The work folder of the job.
    QDir work() const
    {
        const QDir folder(base.scratch.path());
        return QDir(
            folder.filePath(folder.entryList({u".tessaray-??????"_s}, QDir::Dirs | QDir::Hidden).value(0)));
    }
    void writeLog(const QByteArray &text) const
    {
        QFile log(work().filePath(u"2.log"_s)); // the output is number 1
        QVERIFY(log.open(QIODevice::WriteOnly | QIODevice::Truncate) && log.write(text) == text.size());
    }
    QString taskOf(qsizetype n) const { return std::get<QString>(job->stepTaskList().at(n)); }
};

} // namespace

class KXConvertToMkvJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileOfTracksThatPassGoesStraightToTheMux()
    {
        MkvJobFixture fixture;
        const auto job = fixture.begin({pictureAs(), queuedSound(), subtitleTrack(u"2"_s, u"srt"_s)});
        QCOMPARE(job->stepConverterList(), QList<ConverterPointer>({nullptr, nullptr, nullptr}));
        QVERIFY(job->stepTaskList().isEmpty());
        QVERIFY(job->progressList().isEmpty());
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.calls(u"ffmpeg"_s).isEmpty());
        QCOMPARE(fixture.calls().size(), 1);
        const auto updates = fixture.record.named(u"progressUpdate"_s);
        const auto empty = [](const KXNotification &update) {
            return update.object.value<jobs::ProgressList>().isEmpty();
        };
        // One at the start, and one of the only cycle in which the conversions were polled.
        QCOMPARE(std::count_if(updates.begin(), updates.end(), empty), 2);
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"a.muxed.mkv"_s)});
    }

    // The steps.

    void eachTrackHasItsPlace()
    {
        MkvJobFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const TrackPointer video = pictureAs(u"h264"_s);
        const TrackPointer capitals = pictureAs(u"PassThru"_s);
        const TrackPointer converted = queuedSound(u"aac"_s);
        const TrackPointer passed = queuedSound(u"passthru"_s, u"2"_s);
        const TrackPointer subtitle = subtitleTrack(u"3"_s, u"srt"_s, u"MUX"_s);
        const TrackPointer other = subtitleTrack(u"4"_s, u"srt"_s, u"srt"_s);
        const TrackPointer foreign = subtitleTrack(u"5"_s, u"srt"_s);
        foreign->setTrackType(u"External Subtitle"_s);
        const TrackPointer button = subtitleTrack(u"6"_s, u"srt"_s);
        button->setTrackType(u"Button"_s);
        const auto job =
            fixture.begin({video, capitals, other, converted, passed, button, subtitle, foreign});
        // Neither a subtitle that is not muxed nor another type has a place.
        const auto places = job->stepConverterList();
        QCOMPARE(places.size(), 6);
        QVERIFY(places.at(0) && !places.at(1) && places.at(2) && !places.at(3));
        QVERIFY(!places.at(4) && !places.at(5));
        QCOMPARE(job->progressList(),
                 jobs::ProgressList({{u"Converting Video"_s, u"0%"_s}, {u"Converting Audio"_s, u"0%"_s}}));
        QCOMPARE(places.at(0)->trackItemToProcess(), 0);
        QCOMPARE(places.at(2)->trackItemToProcess(), 3);
        QVERIFY(places.at(0)->isTemporaryOutput() && places.at(2)->isTemporaryOutput());
        QVERIFY(video->wasReEncoded() && converted->wasReEncoded());
        QVERIFY(!capitals->wasReEncoded() && !passed->wasReEncoded() && !subtitle->wasReEncoded());
        QCOMPARE(video->muxingTrackCodec(), u"h264"_s);
        QCOMPARE(converted->muxingTrackCodec(), u"aac"_s);
        QCOMPARE(passed->muxingTrackCodec(), u"ac3"_s); // as in the source
        // What has no place was looked at, or not at all.
        QCOMPARE(other->muxingTrackType(), u"Subtitle"_s);
        QCOMPARE(foreign->muxingTrackType(), u"External Subtitle"_s);
        QCOMPARE(button->muxingTrackType(), u"none"_s);
        QCOMPARE(job->stepTaskList().size(), 2);
    }

    void theConversionsRunTogether()
    {
        MkvJobFixture fixture({u"hang"_s}, u"a.avi"_s);
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job =
            fixture.begin({pictureAs(u"h264"_s), queuedSound(u"aac"_s), queuedSound(u"ac3"_s, u"2"_s)});
        QVERIFY(waitFor([&] { return fixture.calls(u"ffmpeg"_s).size() == 3; }));
        // None shares its output or its log.
        QSet<QString> names;
        for (int i = 0; i < 3; ++i) {
            names << fixture.outputOf(i) << fixture.converter(i).logFileURL().toLocalFile();
            QCOMPARE(fixture.taskOf(i), fixture.converter(i).doShell_ID());
        }
        QCOMPARE(names.size(), 6);
        QCOMPARE(fixture.outputOf(0), u"/v/a.mkv"_s);
        QCOMPARE(fixture.outputOf(1), u"/v/a (2).mkv"_s);
        QCOMPARE(fixture.outputOf(2), u"/v/a (3).mkv"_s);
        QCOMPARE(fixture.posted(u"conversionStarted"_s),
                 QStringList({u"/v/a.mkv"_s, u"/v/a (2).mkv"_s, u"/v/a (3).mkv"_s}));
        QCOMPARE(job->tempFilesToDeleteList().size(), 3);
        QCOMPARE(job->logFilesToDeleteList().size(), 3);
        QVERIFY(fixture.calls().isEmpty());
    }

    void noMoreRunThanMay()
    {
        MkvJobFixture fixture({u"hang"_s}, u"a.avi"_s);
        fixture.base.toolsAtOnce = 2;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = fixture.begin({pictureAs(u"h264"_s), queuedSound(u"aac"_s),
                                        queuedSound(u"ac3"_s, u"2"_s), queuedSound(u"aac"_s, u"3"_s)});
        QVERIFY(waitFor([&] { return fixture.calls(u"ffmpeg"_s).size() == 2; }));
        QVERIFY(!waitFor([&] { return fixture.calls(u"ffmpeg"_s).size() > 2; }, 2000));
        QCOMPARE(job->progressList().size(), 4); // all are shown
        QCOMPARE(job->progressList().at(3).progress, u"0%"_s);
        QVERIFY(fixture.calls().isEmpty());
        job->stopJob();
        QVERIFY(!waitFor([&] { return fixture.calls(u"ffmpeg"_s).size() > 2; }, 1000));
    }

    void theNextStartsWhenOneHasEnded()
    {
        MkvJobFixture fixture(MkvFixture::wellMuxed(), u"a.avi"_s);
        fixture.base.toolsAtOnce = 1;
        const auto job =
            fixture.begin({pictureAs(u"h264"_s), queuedSound(u"aac"_s), queuedSound(u"ac3"_s, u"2"_s)});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.calls(u"ffmpeg"_s).size(), 3);
        QCOMPARE(fixture.calls().size(), 1);
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void theyAreTemporaryAndNeverTakeAnExistingFile()
    {
        MkvJobFixture fixture(MkvFixture::wellMuxed(), u"a.avi"_s);
        for (const QString &name : {u"a.mkv"_s, u"a.added.mkv"_s, u"a.avi.log"_s})
            fixture.base.scratch.write(name, "of another");
        const TrackList tracks = jobs::tracksForMuxing(
            {pictureAs(u"h264"_s),
             audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"aac"_s, u"2"_s, u"160"_s))});
        const TrackPointer copy = tracks.at(1)->copy();
        copy->setIsStereoCopyFlag(true);
        const auto job = fixture.begin(tracks + TrackList{copy});
        QCOMPARE(fixture.outputOf(0), u"/v/a (2).mkv"_s);
        QCOMPARE(fixture.outputOf(1), u"/v/a (3).mkv"_s);
        QCOMPARE(fixture.outputOf(2), u"/v/a.added (2).mkv"_s);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        for (const QString &name : {u"a.mkv"_s, u"a.added.mkv"_s, u"a.avi.log"_s})
            QCOMPARE(fixture.base.scratch.read(name), QByteArray("of another"));
        QCOMPARE(fixture.base.scratch.names().filter(u"a."_s) + fixture.base.scratch.names().filter(u"a ("_s),
                 QStringList({u"a.added.mkv"_s, u"a.avi"_s, u"a.avi.log"_s, u"a.mkv"_s, u"a.muxed.mkv"_s}));
    }

    void aSourceIsNeverTheConvertedFile()
    {
        MkvJobFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        fixture.begin({pictureAs(u"h264"_s)});
        QVERIFY(fixture.outputOf(0) != u"/v/a.mkv"_s);
        QVERIFY(fixture.outputOf(0).endsWith(u".mkv"_s));
    }

    // Redirection: a converted track is muxed from its own file, in which it is alone.

    void aConvertedTrackIsTakenFromItsFile()
    {
        MkvJobFixture fixture({u"hang"_s}, u"a.avi"_s);
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const TrackPointer video = pictureAs();
        const TrackPointer audio = queuedSound(u"aac"_s);
        fixture.begin({video, audio});
        QCOMPARE(fixture.shown(audio->muxingTrackFileURL().toLocalFile()), u"/v/a.mkv"_s);
        QCOMPARE(audio->muxingTrackMp4boxID(), u"one track"_s);
        QCOMPARE(audio->muxingTrackMencoderID(), u"one track"_s);
        QCOMPARE(audio->muxingTrackExtension(), u"mkv"_s);
        QCOMPARE(audio->muxingTrackFileExtension(), u"mkv"_s);
        QCOMPARE(audio->trackMkvmergeID(), u"0"_s);
        QCOMPARE(fixture.shown(video->muxingTrackFileURL().toLocalFile()), u"/v/a.avi"_s);
        QCOMPARE(video->trackMkvmergeID(), u"0"_s);
        QVERIFY(video->muxingTrackMp4boxID() != u"one track"_s);
    }

    /// The subtitle has no place, so that the converter stands at the first place and not at its track's.
    void redirectionGoesByTheTrackOfTheConverter()
    {
        MkvJobFixture fixture({u"hang"_s}, u"a.avi"_s);
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const TrackPointer subtitle = subtitleTrack(u"2"_s, u"srt"_s, u"srt"_s);
        const TrackPointer audio = queuedSound(u"aac"_s);
        const auto job = fixture.begin({subtitle, audio});
        QCOMPARE(job->stepConverterList().size(), 1);
        QCOMPARE(fixture.shown(audio->muxingTrackFileURL().toLocalFile()), u"/v/a.mkv"_s);
        QCOMPARE(audio->trackMkvmergeID(), u"0"_s);
        QCOMPARE(fixture.shown(subtitle->muxingTrackFileURL().toLocalFile()), u"/v/a.avi"_s);
        QCOMPARE(subtitle->trackMkvmergeID(), u"2"_s);
    }

    // The mux.

    void aStereoCopyIsOneMoreTrackOfItsOwnFile()
    {
        MkvJobFixture fixture(MkvFixture::wellMuxed(), u"a.avi"_s);
        const TrackPointer audio =
            audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"aac"_s, u"2"_s, u"160"_s));
        audio->setUserAudioSettingsDictionaryArray(
            {audioSettings(u"aac"_s, u"2"_s, u"160"_s), audioSettings(u"ac3"_s, u"6"_s, u"448"_s)});
        const auto job = fixture.begin(jobs::tracksForMuxing({pictureAs(), audio}));
        QCOMPARE(fixture.outputOf(1), u"/v/a.mkv"_s);
        QCOMPARE(fixture.outputOf(2), u"/v/a.added.mkv"_s);
        QVERIFY(fixture.waitForEnd());
        const QString end = u"-metadata:s:a:0|language=eng|-metadata:s:a:0|title=Audio1|-y|"_s;
        QCOMPARE(
            fixture.meant(0, u"ffmpeg"_s),
            u"-i|/v/a.avi|-map 0:0|-c:a aac -strict experimental|-ab:a:0 160k|-ac:a:0 2|-ar:a:0 48000|"_s +
                end + u"/v/a.mkv|&>|/v/a.avi.log|& echo $!"_s);
        QCOMPARE(fixture.meant(1, u"ffmpeg"_s),
                 u"-i|/v/a.avi|-map 0:0|-c:a ac3|-ab:a:0 448k|-ac:a:0 6|-ar:a:0 48000|"_s + end +
                     u"/v/a.added.mkv|&>|/v/a.avi (2).log|& echo $!"_s);
        QCOMPARE(fixture.meant(), u"-o|/v/a.muxed.mkv|"_s + muxOptions(u"0"_s, u"Video0"_s) +
                                      u"-d 0|-A|-S|'/v/a.avi'|"_s + muxOptions(u"0"_s, u"Audio1"_s) +
                                      u"-D|-a 0|-S|'/v/a.mkv'|"_s + muxOptions(u"0"_s, u"Audio1"_s) +
                                      u"-D|-a 0|-S|'/v/a.added.mkv'|&>|/v/a.avi.muxed.log|& echo $!"_s);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"a.muxed.mkv"_s)}); // and no converted one
    }

    void theMuxWaitsForEveryConversion()
    {
        MkvJobFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s,
                          QStringList{u"when aac"_s, u"hang"_s, u"end"_s} + MkvFixture::wellConverted());
        const auto job = fixture.begin({pictureAs(u"h264"_s), queuedSound(u"aac"_s)});
        // The hanging one has printed no time: it is at its beginning.
        QVERIFY(fixture.waitForStep(u"Converting Video=Complete,Converting Audio=0%"_s));
        QVERIFY(!waitFor([&] { return !fixture.calls().isEmpty(); }, 1200));
        ::kill(fixture.converter(1).doShell_ID().toInt(), SIGKILL);
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.progressTexts().contains(u"Converting Video=Complete,Converting Audio=Complete"_s));
    }

    void aFallingPercentageIsTheNextStepOfTheMux()
    {
        MkvJobFixture fixture({u"hang"_s});
        const auto job = fixture.begin({pictureAs()});
        QVERIFY(waitFor([&] { return fixture.calls().size() == 1; }));
        QVERIFY(waitFor([&] { return job->progressList().size() == 1; }));
        fixture.writeLog("Progress: 90%\rProgress: 100%\r");
        QVERIFY(fixture.waitForStep(u"Muxing Tracks Step #1=100%"_s));
        fixture.writeLog("The cue entries (the index) are being written...\n");
        fixture.writeLog("Progress: 100%\rProgress: 3%\r");
        QVERIFY(fixture.waitForStep(u"Muxing Tracks Step #2=3%"_s));
        QCOMPARE(job->progressStepCounter(), 2);
        fixture.writeLog("Progress: 4%\rProgress: 100%\nMultiplexing took 0 seconds.\n");
        ::kill(fixture.taskOf(0).toInt(), SIGKILL);
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.progressTexts().contains(u"Muxing Tracks Step #2=Complete"_s));
        for (const QString &text : fixture.progressTexts())
            QVERIFY2(!text.contains(u"%%"_s) && !text.contains(u'\r'), qPrintable(text));
    }

    void theMuxStepStartsItsListsAnew()
    {
        MkvJobFixture fixture({u"hang"_s});
        const auto job = fixture.begin({pictureAs(), queuedSound(u"aac"_s)});
        QVERIFY(waitFor([&] { return fixture.calls().size() == 1; }));
        QVERIFY(waitFor([&] { return job->stepTaskList().size() == 1; }));
        QCOMPARE(job->stepConverterList().size(), 1);
        QCOMPARE(fixture.converter(0).stepName(), u"Muxing Tracks"_s);
        QCOMPARE(fixture.converter(0).converterName(), u"MkvMuxer"_s);
        QCOMPARE(fixture.taskOf(0), fixture.converter(0).doShell_ID());
        QCOMPARE(job->muxStepCounter(), 1);
        QCOMPARE(job->oldMuxProgress(), 0);
        QCOMPARE(job->logFilesToDeleteList().size(), 2);  // the conversion's and the muxer's
        QCOMPARE(job->tempFilesToDeleteList().size(), 1); // what is muxed stays
    }

    void conversionStartedIsPostedForEachToolThenForTheMux()
    {
        MkvJobFixture fixture(MkvFixture::wellMuxed(), u"a.avi"_s);
        fixture.begin({pictureAs(u"h264"_s), queuedSound()});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList({u"/v/a.mkv"_s, u"/v/a.muxed.mkv"_s}));
    }

    /// Both passes, the mux and the job's end.
    void noPollIsWaitedFor()
    {
        MkvJobFixture fixture;
        constexpr int never = 10 * support::patience;
        fixture.base.intervals = {never, never, never, never};
        fixture.begin({pictureAs(u"h264"_s), queuedSound(u"aac"_s)}, u"2"_s);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.calls(u"ffmpeg"_s).size(), 3);
        QCOMPARE(fixture.job->outcome().verdict, Verdict::Ok);
    }

    void aFailedFirstPassIsNotFollowedByASecond()
    {
        MkvJobFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"err No such stream"_s, u"exit 1"_s});
        fixture.begin({pictureAs(u"h264"_s)}, u"2"_s);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.calls(u"ffmpeg"_s).size(), 1);
        QVERIFY(fixture.calls().isEmpty()); // nor muxed
        QCOMPARE(fixture.job->outcome().verdict, Verdict::Failed);
        QVERIFY2(
            fixture.job->outcome().sentence.startsWith(u"ffmpeg failed (exit status 1): No such stream."_s),
            qPrintable(fixture.job->outcome().sentence));
    }

    // Two passes of one track.

    void theSecondPassFollowsTheFirst()
    {
        MkvJobFixture fixture(MkvFixture::wellMuxed(), u"a.avi"_s);
        const auto job = fixture.begin({pictureAs(u"h264"_s), queuedSound()}, u"2"_s);
        QVERIFY(fixture.waitForEnd());
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        const auto calls = fixture.calls(u"ffmpeg"_s);
        QCOMPARE(calls.size(), 2);
        const auto behind = [](const QStringList &call, const QString &option) {
            return call.value(call.indexOf(option) + 1);
        };
        QCOMPARE(behind(calls.at(0), u"-pass"_s), u"1"_s);
        QCOMPARE(behind(calls.at(1), u"-pass"_s), u"2"_s);
        QCOMPARE(calls.at(1).last(), u"/v/a.mkv"_s); // no redirection among its arguments
        // The statistics lie in the job's own folder, and both passes mean the same.
        const QString statistics = behind(calls.at(0), u"-passlogfile"_s);
        QCOMPARE(behind(calls.at(1), u"-passlogfile"_s), statistics);
        QVERIFY2(statistics.endsWith(u"/passLog"_s) && !statistics.startsWith(u"/v/"_s),
                 qPrintable(statistics));
        QVERIFY(!QFileInfo::exists(QFileInfo(statistics).path())); // gone with the job
        // Between the passes nothing is shown of the step.
        QVERIFY(fixture.progressTexts().filter(u"Pass 1"_s).isEmpty());
        QVERIFY(fixture.progressTexts().contains(u"Converting Video=Complete"_s));
        QCOMPARE(fixture.calls().size(), 1);
    }

    void theSecondPassIsATaskOfTheJob()
    {
        MkvJobFixture fixture({u"hang"_s}, u"a.avi"_s);
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = fixture.begin({pictureAs(u"h264"_s)}, u"2"_s);
        QVERIFY(waitFor([&] { return !job->stepTaskList().isEmpty(); }));
        const auto firstPass = qScopeGuard([tool = fixture.taskOf(0).toInt()] { ::kill(tool, SIGKILL); });
        auto *converter = dynamic_cast<KXFfmpegConverter *>(job->stepConverterList().first().get());
        QVERIFY(converter != nullptr);
        job->startPass2SelectorFor(*converter);
        QCOMPARE(converter->currentPass(), 2);
        const auto tasks = job->stepTaskList();
        QVERIFY(std::any_of(tasks.begin(), tasks.end(), [](const auto &task) {
            return std::holds_alternative<tools::ToolProcessPointer>(task);
        }));
    }

    // Ends.

    void aCancelledJobNeitherMuxesNorIsDone()
    {
        MkvJobFixture fixture(MkvFixture::wellMuxed(), u"a.avi"_s);
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"write 10 last"_s, u"hang"_s});
        const auto job = fixture.begin({pictureAs(u"h264"_s), queuedSound()});
        QVERIFY(fixture.waitForStep(u"Converting Video=0%"_s));
        QVERIFY(waitFor([&] { return !fixture.work().entryList({u"*.mkv"_s}).isEmpty(); }));
        const qint64 tool = fixture.taskOf(0).toLongLong();
        job->stopJob();
        QVERIFY(waitFor([&] { return !runs(tool); }));
        QVERIFY(!waitFor([&] { return !fixture.calls().isEmpty() || fixture.record.count(u"jobDone"_s) > 0; },
                         1200));
        QCOMPARE(fixture.base.scratch.names().filter(u"a."_s), QStringList{u"a.avi"_s});
    }

    void aFailedMuxIsCompleteAndKeepsItsLog()
    {
        MkvJobFixture fixture({u"out Error: The file could not be opened for writing."_s, u"exit 2"_s});
        const auto job = fixture.begin({pictureAs()});
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.progressTexts().contains(u"Muxing Tracks Step #1=Complete"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"The file could not be opened for writing."_s),
                 qPrintable(job->outcome().sentence));
        QVERIFY(fixture.base.scratch.read(u"a.mkv.muxed.log"_s).contains("Error: The file"));
        QVERIFY(fixture.base.alerts.shown().isEmpty()); // no error text is shown by this job
    }

    void aFileOfWhichATrackIsMissingIsNotMuxed()
    {
        MkvJobFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"err Conversion failed!"_s, u"exit 1"_s});
        const auto job = fixture.begin({pictureAs(u"h264"_s), queuedSound()});
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.calls().isEmpty());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(job->outputs().isEmpty());
        QVERIFY(fixture.progressTexts().contains(u"Converting Video=Complete"_s));
    }
};

TESSARAY_TEST(KXConvertToMkvJobTest)
#include "KXConvertToMkvJobTest.moc"

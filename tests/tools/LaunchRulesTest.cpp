// What each launch rule is for: with the installed ffmpeg a list fails, or does harm, without the rule,
// and succeeds with it.
#include "engines/ffmpeg/ExtractionArguments.h"
#include "engines/ffmpeg/FfmpegArguments.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "engines/ffmpeg/FfmpegLaunch.h"
#include "engines/ffmpeg/FfmpegSingleTrack.h"
#include "engines/mkvtoolnix/MkvArguments.h"
#include "steps/RunAsProcess.h"
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/TrackClips.h"
#include "support/engines/RealRuns.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;
using tools::OptionList;

namespace {

enum class Pass { Only, First, Second };

/// One conversion of one clip as lists and facts, with a folder to run it in.
class Trial final
{
public:
    Trial(const QString &clip, const QString &device, const QStringList &added = {})
        : selection(m_runs.reencoded(clip, device, u"1"_s, added))
    {
        QDir().mkpath(m_runs.path(u"work"_s));
        selection->setUserVideoBitRate(u"300"_s);
        request.kind = outputKindNamed(appNameForDevice(device));
        request.output = outputForBase(m_runs.path(u"out"_s), request.kind, device);
        request.passlogfile = m_runs.path(u"statistics"_s);
    }

    /// The list that is meant for a pass.
    OptionList meant(Pass pass)
    {
        selection->setUserPassNumber(pass == Pass::Only ? u"1"_s : u"2"_s);
        const auto lists = conversionLists(*selection, request);
        return pass == Pass::Second ? lists.second : lists.first;
    }

    /// ffmpeg's exit status for a list, with one rule left out or (without a name) with all of them.
    int statusWithout(const QString &rule, const OptionList &list, Pass pass, int milliseconds = 60000)
    {
        LaunchFacts facts = launchFactsOf(*selection, request.kind);
        facts.passlogfile = request.passlogfile;
        facts.isSecondPass = pass == Pass::Second;
        facts.generatesTimestamps = wasRetried;
        facts.singleStream = singleStream;
        const auto form = ffmpegLaunchFormWithout(rule, list, facts);
        warnings = form.warnings;
        QFile::remove(output());
        return statusOf(u"ffmpeg"_s, tools::argumentsOf(form.list), m_runs.path(u"work"_s), milliseconds);
    }
    int statusWith(const OptionList &list, Pass pass) { return statusWithout({}, list, pass); }

    QString output() const { return request.output.toLocalFile(); }
    QString path(const QString &name) const { return m_runs.path(name); }

private:
    RealRuns m_runs;

public:
    SelectionPointer selection;
    ConversionRequest request;
    QStringList warnings;
    std::optional<int> singleStream;
    bool wasRetried = false;
};

AudioSettingsList made(const QString &codec, const QString &channels)
{
    return {{{u"userCodec"_s, codec}, {u"userNumberOfChannels"_s, channels}, {u"userBitRate"_s, u"96"_s}}};
}

/// The rule of that number; the test of the names keeps the numbers right.
QString rule(int number)
{
    return ffmpegLaunchRuleNames().at(number);
}

} // namespace

class LaunchRulesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A rule without trials would be missing here.
    void everyRuleHasItsTrials()
    {
        QCOMPARE(ffmpegLaunchRuleNames(),
                 QStringList({u"shell words of a process list are split"_s,
                              u"statistics of a single track have a place of their own"_s,
                              u"pass stands behind the last input"_s, u"an overlay ends with its subtitle"_s,
                              u"an audio filter beside copied audio is one stream's"_s,
                              u"libx264 gets an even size"_s,
                              u"a subtitle that the container can't hold is left out"_s,
                              u"MP4 text copied into Matroska becomes SRT"_s, u"pass 2 into MP4 says so"_s,
                              u"a retried pass 2 makes timestamps too"_s,
                              u"HEVC that is copied into MP4 is tagged as devices expect it"_s,
                              u"of an added file only the track is taken"_s,
                              u"a single track is taken by its number"_s}));
    }

    /// The rule for every tool: a line in a shell's background ends well whatever its tool does.
    void runAsAProcess_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<bool>("isMkv");
        QTest::addColumn<int>("failure");
        QTest::newRow("ffmpeg") << u"ffmpeg"_s << false << 1;
        QTest::newRow("mkvmerge") << u"mkvmerge"_s << true << 2;
    }

    void runAsAProcess()
    {
        QFETCH(QString, tool);
        QFETCH(bool, isMkv);
        QFETCH(int, failure);
        RealRuns runs;
        const auto lineFor = [&](const QString &source, const QString &output) -> OptionList {
            const QUrl from = QUrl::fromLocalFile(source);
            const QUrl to = QUrl::fromLocalFile(runs.path(output));
            const QUrl log = QUrl::fromLocalFile(runs.path(u"log"_s));
            if (isMkv)
                return remuxShellItems(from, to, log);
            return {u"-i", from, u"-map 0:0 -c copy", u"-y", to, u"&>", log, u"& echo $!"};
        };
        const auto asAProcess = [&](const OptionList &line) {
            return statusOf(tool, tools::argumentsOf(steps::runAsProcess(line)), runs.path(), 60000);
        };
        const OptionList bad = lineFor(runs.path(u"missing.mkv"_s), u"bad.mkv"_s);
        const QString shell = tools::commandLine(u"", bad, tools::shellKind()).launched;
        QCOMPARE(statusOf(u"/bin/sh"_s, {u"-c"_s, tool + shell}, runs.path(), 60000), 0);
        QCOMPARE(asAProcess(bad), failure);
        QCOMPARE(asAProcess(lineFor(film(), u"out.mkv"_s)), 0);
        QCOMPARE(codecsOf(runs.path(u"out.mkv"_s)).section(u' ', 0, 0), u"h264"_s);
        QVERIFY(!QFile::exists(runs.path(u"&>"_s)) && !QFile::exists(runs.path(u"bad.mkv"_s)));
    }

    void shellWords()
    {
        Trial trial(film(), u"General"_s);
        const auto lists = singleTrack(trial);
        QCOMPARE(trial.statusWith(lists.first, Pass::First), 0);
        QVERIFY(trial.statusWithout(rule(0), lists.second, Pass::Second) > 0);
        QVERIFY(!QFile::exists(trial.output()));
        QCOMPARE(trial.statusWith(lists.second, Pass::Second), 0);
        QCOMPARE(codecsOf(trial.output()), u"h264"_s);
    }

    /// Without a name they go to whatever folder ffmpeg runs in, over those of another program.
    void statisticsOfASingleTrack()
    {
        Trial trial(film(), u"General"_s);
        const auto lists = singleTrack(trial);
        const QString stray = trial.path(u"work/ffmpeg2pass-0.log"_s);
        QCOMPARE(trial.statusWithout(rule(1), lists.first, Pass::First), 0);
        QVERIFY(QFile::exists(stray));
        writeContent(stray, "somebody else's");
        QCOMPARE(trial.statusWith(lists.first, Pass::First), 0);
        QCOMPARE(contentOf(stray), QByteArray("somebody else's"));
        QVERIFY(QFile::exists(trial.path(u"statistics-0.log"_s)));
        QVERIFY(trial.statusWithout(rule(1), lists.second, Pass::Second) != 0);
        QCOMPARE(trial.statusWith(lists.second, Pass::Second), 0);
        QCOMPARE(codecsOf(trial.output()), u"h264"_s);
    }

    void passBehindTheInputs()
    {
        Trial trial(film(), u"General"_s);
        const auto sound = std::make_shared<KXVideoTrack>();
        sound->setTrackType(u"Audio"_s);
        sound->setTrackCodec(u"ac3"_s);
        sound->setExternalTrackFlag(true);
        sound->setTrackFileURL(QUrl::fromLocalFile(surroundAc3()));
        sound->setUserAudioSettingsDictionaryArray({{{u"userCodec"_s, u"passthru"_s}}});
        trial.selection->setTrackList(trial.selection->trackList() << sound);
        for (const Pass pass : {Pass::First, Pass::Second}) {
            const auto list = trial.meant(pass);
            QVERIFY(trial.statusWithout(rule(2), list, pass) > 0);
            QCOMPARE(trial.statusWith(list, pass), 0);
        }
        QCOMPARE(codecsOf(trial.output()), u"h264 aac ac3 mov_text"_s);
    }

    /// Without the rule the picture never ends: a file of days, or a run that crashes or hangs.
    void overlay()
    {
        Trial trial(pgsMkv(), u"MKV"_s);
        keepStreams(*trial.selection, {u"0"_s, u"2"_s});
        streamOf(*trial.selection, u"2"_s)->setUserCodec(u"burn"_s);
        trial.request.subToBurn = trial.selection->videoTrackFileURL();
        const auto list = trial.meant(Pass::Only);
        const int status = trial.statusWithout(rule(3), list, Pass::Only, 30000);
        const double seconds = secondsOf(trial.output());
        QVERIFY2(status != 0 || qAbs(seconds - 8) > 1, qPrintable(u"%1, %2 s"_s.arg(status).arg(seconds)));
        QCOMPARE(trial.statusWith(list, Pass::Only), 0);
        QVERIFY(qAbs(secondsOf(trial.output()) - 8) < 0.5);
    }

    void audioFilterBesideACopy()
    {
        Trial trial(fullMkv(), u"MKV"_s);
        trial.request.useDplii = true;
        keepStreams(*trial.selection, {u"1"_s, u"2"_s});
        streamOf(*trial.selection, u"1"_s)->setUserAudioSettingsDictionaryArray(made(u"aac"_s, u"2"_s));
        const auto list = trial.meant(Pass::Only);
        QVERIFY(trial.statusWithout(rule(4), list, Pass::Only) > 0);
        QCOMPARE(trial.statusWith(list, Pass::Only), 0);
        QCOMPARE(codecsOf(trial.output()), u"aac aac"_s);
    }

    void oddSize()
    {
        Trial trial(oddAvi(), u"General"_s);
        const auto list = trial.meant(Pass::Only);
        QVERIFY(trial.statusWithout(rule(5), list, Pass::Only) > 0);
        QCOMPARE(trial.statusWith(list, Pass::Only), 0);
        const auto video = streamsOf(trial.output()).first();
        QCOMPARE(video.value(u"width"_s).toInt(), 320);
        QCOMPARE(video.value(u"height"_s).toInt(), 240);
    }

    void oddSizeOfASingleTrack()
    {
        Trial trial(oddAvi(), u"General"_s);
        const auto lists = singleTrack(trial);
        QVERIFY(trial.statusWithout(rule(5), lists.first, Pass::First) > 0);
        QCOMPARE(trial.statusWith(lists.first, Pass::First), 0);
    }

    void subtitleWithoutAPlace()
    {
        Trial trial(pgsMkv(), u"General"_s);
        const auto list = trial.meant(Pass::Only);
        QVERIFY(trial.statusWithout(rule(6), list, Pass::Only) > 0);
        QVERIFY(trial.warnings.isEmpty());
        QCOMPARE(trial.statusWith(list, Pass::Only), 0);
        QCOMPARE(codecsOf(trial.output()), u"h264 aac"_s);
        QCOMPARE(trial.warnings, QStringList{u"The subtitle track 2 (hdmv_pgs_subtitle) can't be held by the "
                                             "output and was left out."_s});
    }

    void mp4TextInMatroska()
    {
        Trial trial(textMp4(), u"MKV"_s);
        const auto list = trial.meant(Pass::Only);
        QVERIFY(trial.statusWithout(rule(7), list, Pass::Only) > 0);
        QCOMPARE(trial.statusWith(list, Pass::Only), 0);
        QCOMPARE(codecsOf(trial.output()), u"h264 aac subrip"_s);
    }

    void formatOfPassTwo_data()
    {
        QTest::addColumn<QString>("stream");
        QTest::addColumn<QString>("made");
        QTest::addColumn<QString>("codec");
        QTest::newRow("made MP3") << u"2"_s << u"mp3"_s << u"mp3"_s;
        QTest::newRow("copied DTS") << u"5"_s << QString() << u"dts"_s;
    }

    void formatOfPassTwo()
    {
        QFETCH(QString, stream);
        QFETCH(QString, made);
        QFETCH(QString, codec);
        Trial trial(fullMkv(), u"General"_s);
        keepStreams(*trial.selection, {u"0"_s, stream});
        if (!made.isNull())
            streamOf(*trial.selection, stream)->setUserAudioSettingsDictionaryArray(::made(made, u"2"_s));
        QCOMPARE(trial.statusWith(trial.meant(Pass::First), Pass::First), 0);
        const auto list = trial.meant(Pass::Second);
        QVERIFY(trial.statusWithout(rule(8), list, Pass::Second) > 0);
        QCOMPARE(trial.statusWith(list, Pass::Second), 0);
        QCOMPARE(codecsOf(trial.output()), u"h264 "_s + codec);
    }

    void timestampsOfPassTwo()
    {
        Trial trial(packedAvi(), u"MKV"_s);
        trial.selection->trackList().first()->setUserCodec(u"passthru"_s);
        trial.wasRetried = true;
        const auto list = trial.meant(Pass::Second);
        QVERIFY(trial.statusWithout(rule(9), list, Pass::Second) > 0);
        QCOMPARE(trial.statusWith(list, Pass::Second), 0);
        QCOMPARE(codecsOf(trial.output()), u"mpeg4"_s);
    }

    void hevcInMp4HasTheTagOfDevices()
    {
        RealRuns runs;
        runs.base.preferences.overrideForThisRun(u"newerCodecsFlag"_s, true);
        const QString hevc = clip(u"launch-hevc.mkv"_s, [](const QString &path) {
            runProgram(u"ffmpeg"_s,
                       u"-nostdin -y -v error -f lavfi -i testsrc2=s=160x120:r=25:d=1 -c:v libx265 "
                       "-x265-params log-level=error"_s.split(u' ')
                           << path);
        });
        const auto selection = runs.probed(hevc, u"General"_s);
        ConversionRequest request;
        request.kind = OutputKind::Mp4;
        request.output = runs.base.scratch.url(u"out.m4v"_s);
        const OptionList list = conversionLists(*selection, request).first;
        const LaunchFacts facts = launchFactsOf(*selection, request.kind);
        for (const auto &[left, tag] : {std::pair(rule(10), u"hev1"_s), std::pair(QString(), u"hvc1"_s)}) {
            const auto form = ffmpegLaunchFormWithout(left, list, facts);
            QCOMPARE(statusOf(u"ffmpeg"_s, tools::argumentsOf(form.list), runs.path(), 60000), 0);
            QCOMPARE(streamsOf(request.output.toLocalFile()).first().value(u"codec_tag_string"_s).toString(),
                     tag);
        }
    }

    void addedFilesWithOtherStreams_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("codecs");
        QTest::newRow("an attachment in MP4") << attachmentMks() << u"General"_s << u"h264 mov_text"_s;
        QTest::newRow("chapter texts in MKV") << chaptersM4a() << u"MKV"_s << u"h264 aac"_s;
    }

    void addedFilesWithOtherStreams()
    {
        QFETCH(QString, clip);
        QFETCH(QString, device);
        QFETCH(QString, codecs);
        Trial trial(longMkv(8), device, {clip});
        TrackList tracks = trial.selection->trackList();
        tracks.removeAt(1);
        trial.selection->setTrackList(tracks);
        const auto list = trial.meant(Pass::Only);
        QVERIFY(trial.statusWithout(rule(11), list, Pass::Only) > 0);
        QCOMPARE(trial.statusWith(list, Pass::Only), 0);
        QCOMPARE(codecsOf(trial.output()), codecs);
    }

    void aSingleTrackOfAFilm()
    {
        Trial trial(film(), u"MKV"_s);
        const TrackPointer sound = trial.selection->trackList().at(1);
        sound->setUserCodec(u"ac3"_s);
        sound->setUserNumberOfChannels(u"2"_s);
        sound->setUserBitRate(u"128"_s);
        const auto lists = singleTrackLists(*trial.selection, *sound, trial.request.output,
                                            QUrl::fromLocalFile(trial.path(u"log"_s)));
        const OptionList list = steps::runAsProcess(lists.first);
        trial.singleStream = sound->streamIndex();
        QVERIFY(trial.statusWithout(u"a single track is taken by its number"_s, list, Pass::Only) != 0 ||
                !codecsOf(trial.output()).contains(u"ac3"_s));
        QCOMPARE(trial.statusWith(list, Pass::Only), 0);
        QCOMPARE(codecsOf(trial.output()), u"ac3"_s);
    }

    /// The one rule of extractions.
    void dtshdHasNoFormatOfItsOwn()
    {
        RealRuns runs;
        const auto selection = runs.probed(fullMkv());
        const auto track = streamOf(*selection, u"5"_s);
        const QUrl output = runs.base.scratch.url(u"a.stream5.dtshd"_s);
        const auto meant = ffmpegExtractionArguments(*track, output);
        QVERIFY(statusOf(u"ffmpeg"_s, tools::argumentsOf(meant), runs.path()) > 0);
        QFile::remove(output.toLocalFile());
        QCOMPARE(statusOf(u"ffmpeg"_s, tools::argumentsOf(extractionLaunchForm(meant, output)), runs.path()),
                 0);
        QCOMPARE(codecsOf(output.toLocalFile()), u"dts"_s);
    }

private:
    /// h264 (0), aac (1) and mov_text (2).
    static QString film() { return textMp4(); }

    static ConversionLists singleTrack(Trial &trial)
    {
        keepStreams(*trial.selection, {u"0"_s});
        trial.selection->setUserPassNumber(u"2"_s);
        return singleTrackLists(*trial.selection, *trial.selection->trackList().first(), trial.request.output,
                                QUrl::fromLocalFile(trial.path(u"log"_s)));
    }
};

TESSARAY_TEST(LaunchRulesTest)
#include "LaunchRulesTest.moc"

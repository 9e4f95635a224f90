#include "engines/ffmpeg/FfmpegLaunch.h"
#include "engines/ffmpeg/FfmpegArguments.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "engines/ffmpeg/FfmpegSingleTrack.h"
#include "selection/Targets.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;
using tools::OptionItem;
using tools::OptionList;

namespace {

const QString splitWords = u"shell words of a process list are split"_s;
const QString placeStatistics = u"statistics of a single track have a place of their own"_s;
const QString passBehindInputs = u"pass stands behind the last input"_s;
const QString overlayEnds = u"an overlay ends with its subtitle"_s;
const QString audioFilter = u"an audio filter beside copied audio is one stream's"_s;
const QString evenSize = u"libx264 gets an even size"_s;
const QString subtitleLeftOut = u"a subtitle that the container can't hold is left out"_s;
const QString textToSrt = u"MP4 text copied into Matroska becomes SRT"_s;
const QString formatNamed = u"pass 2 into MP4 says so"_s;
const QString hevcTagged = u"HEVC that is copied into MP4 is tagged as devices expect it"_s;
const QString retriedPass2 = u"a retried pass 2 makes timestamps too"_s;
const QString trackPicked = u"of an added file only the track is taken"_s;
const QString singlePicked = u"a single track is taken by its number"_s;

/// The words of a line as items; what begins with "/" is a file.
OptionList listOf(const QString &line)
{
    OptionList list;
    for (const QString &word : words(line)) {
        if (word.startsWith(u'/'))
            list << QUrl::fromLocalFile(word);
        else
            list << OptionItem::ofData(word);
    }
    return list;
}

LaunchFacts factsFor(OutputKind kind = OutputKind::Mp4)
{
    LaunchFacts facts;
    facts.kind = kind;
    facts.sourceWidth = 1920;
    facts.sourceHeight = 1080;
    facts.passlogfile = u"/t/passLog"_s;
    return facts;
}

QString launched(const QString &line, const LaunchFacts &facts)
{
    return tools::textsOf(ffmpegLaunchForm(listOf(line), facts).list).join(u' ');
}

MappedStream stream(const QString &codec, const QString &probed = {}, const QString &label = {})
{
    return {codec, probed, label, {}};
}

/// Both items of that list compare equal, item by item, and say nothing.
void compareUnchanged(const OptionList &meant, const LaunchFacts &facts)
{
    const LaunchForm form = ffmpegLaunchForm(meant, facts);
    QCOMPARE(form.list, meant);
    QVERIFY(form.warnings.isEmpty());
}

const QString soft =
    u" -map 0:%1 -codec:s:%2 mov_text -metadata:s:s:%2 language=eng -metadata:s:s:%2 title=T%1"_s;

QString softOf(int number, int index)
{
    return soft.arg(QString::number(number), QString::number(index));
}

} // namespace

class FfmpegLaunchTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRulesHaveNames()
    {
        QCOMPARE(
            ffmpegLaunchRuleNames(),
            QStringList({splitWords, placeStatistics, passBehindInputs, overlayEnds, audioFilter, evenSize,
                         subtitleLeftOut, textToSrt, formatNamed, retriedPass2, hevcTagged, trackPicked,
                         singlePicked}));
    }

    /// Every kind of ordinary list, as the rules for lists give it.
    void ordinaryListsAreLaunchedAsTheyAre_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("videoCodec");
        QTest::addColumn<QString>("passes");
        for (const QString &device : selection::targetNames()) {
            for (const QString &codec : {u"passthru"_s, u"h264"_s}) {
                for (const QString &passes : {u"1"_s, u"2"_s})
                    QTest::addRow("%s, %s, %s", qPrintable(device), qPrintable(codec), qPrintable(passes))
                        << device << codec << passes;
            }
        }
    }

    void ordinaryListsAreLaunchedAsTheyAre()
    {
        QFETCH(QString, device);
        QFETCH(QString, videoCodec);
        QFETCH(QString, passes);
        const auto selection =
            handMadeSelection(device,
                              {videoTrack(videoCodec),
                               audioTrack(u"1"_s, u"aac"_s, u"2"_s, audioSettings(u"passthru"_s, u"2"_s)),
                               audioTrack(u"2"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s, u"6"_s)),
                               subtitleTrack(u"3"_s, u"srt"_s)},
                              passes);
        ConversionRequest request;
        request.kind = outputKindNamed(appNameForDevice(device));
        request.output = outputForBase(u"/v/b"_s, request.kind, device);
        request.passlogfile = u"/t/passLog"_s;
        request.moovInFront = true;
        const auto lists = conversionLists(*selection, request);
        LaunchFacts facts = launchFactsOf(*selection, request.kind);
        facts.passlogfile = request.passlogfile;
        compareUnchanged(lists.first, facts);
        facts.isSecondPass = true;
        compareUnchanged(lists.second, facts);
    }

    void theFactsAreThoseOfTheSelection()
    {
        const auto german = external(subtitleTrack(u"0"_s, u"srt"_s), u"/s/g.srt"_s);
        const auto pgs = subtitleTrack(u"3"_s, u"teletext"_s);
        pgs->setProbedCodecName(u"hdmv_pgs_subtitle"_s);
        const auto selection = handMadeSelection(u"MKV"_s, {videoTrack(), german, pgs});
        selection->setVideoTrackWidth(u"321"_s);
        selection->setVideoTrackHeight(u"241"_s);
        const LaunchFacts facts = launchFactsOf(*selection, OutputKind::Mkv);
        QVERIFY(facts.kind == OutputKind::Mkv);
        QCOMPARE(facts.sourceWidth, 321);
        QCOMPARE(facts.sourceHeight, 241);
        QCOMPARE(facts.streams.size(), 3);
        QCOMPARE(facts.streams.value(u"1"_s).codec, u"srt"_s);
        QCOMPARE(facts.streams.value(u"0:3"_s).codec, u"teletext"_s);
        QCOMPARE(facts.streams.value(u"0:3"_s).probedCodec, u"hdmv_pgs_subtitle"_s);
        QCOMPARE(facts.streams.value(u"0:3"_s).label, u"subtitle track 3 (hdmv_pgs_subtitle)"_s);
        QCOMPARE(facts.streams.value(u"0:0"_s).label, u"video track 0 (h264)"_s);
        QCOMPARE(facts.streams.value(u"1"_s).label, u"subtitle g.srt (srt)"_s);
    }

    // A single track's pass 2 runs as a process, though its list was written for a shell line.

    void aProcessListLosesItsRedirection()
    {
        const auto track = videoTrack();
        track->setTrackTitle(u"two words"_s);
        const auto selection = handMadeSelection(u"General"_s, {track}, u"2"_s);
        selection->setUserWidth(u"640"_s);
        const auto lists = singleTrackLists(*selection, *track, QUrl::fromLocalFile(u"/v/a b.m4v"_s),
                                            QUrl::fromLocalFile(u"/v/a.log"_s));
        LaunchFacts facts = factsFor();
        facts.isSecondPass = true;
        QCOMPARE(tools::argumentsOf(ffmpegLaunchForm(lists.second, facts).list),
                 QStringList({u"-i"_s,
                              u"/v/a.mkv"_s,
                              u"-pass"_s,
                              u"2"_s,
                              u"-map"_s,
                              u"0:0"_s,
                              u"-vcodec"_s,
                              u"libx264"_s,
                              u"-vf"_s,
                              u"scale=trunc(640/1920*iw/2)*2:trunc(ow/a/2)*2"_s,
                              u"-b:v"_s,
                              u"2500k"_s,
                              u"-metadata:s:v"_s,
                              u"language=eng"_s,
                              u"-metadata:s:v"_s,
                              u"title=two words"_s,
                              u"-passlogfile"_s,
                              u"/t/passLog"_s,
                              u"-y"_s,
                              u"/v/a b.m4v"_s}));
    }

    void aShellLineKeepsItsRedirection()
    {
        const auto track = videoTrack();
        const auto selection = handMadeSelection(u"General"_s, {track});
        const auto lists = singleTrackLists(*selection, *track, QUrl::fromLocalFile(u"/v/a.m4v"_s),
                                            QUrl::fromLocalFile(u"/v/a.log"_s));
        LaunchFacts facts = factsFor();
        facts.isShellLine = true;
        compareUnchanged(lists.first, facts);
    }

    void aShellLineOfTwoPassesNamesItsStatistics()
    {
        const auto track = videoTrack();
        const auto selection = handMadeSelection(u"General"_s, {track}, u"2"_s);
        const auto lists = singleTrackLists(*selection, *track, QUrl::fromLocalFile(u"/v/a.m4v"_s),
                                            QUrl::fromLocalFile(u"/v/a.log"_s));
        LaunchFacts facts = factsFor();
        facts.isShellLine = true;
        facts.passlogfile = u"/t/pass Log"_s;
        const auto form = ffmpegLaunchForm(lists.first, facts).list;
        QCOMPARE(tools::textsOf(form).join(u'|'),
                 u"-i|/v/a.mkv|-pass 1|-map 0:0|-vcodec libx264|-b:v 2500k|-metadata:s:v language=eng|"
                 "-metadata:s:v title=Video0|-passlogfile|'/t/pass Log'|-y|/v/a.m4v|&>|/v/a.log|& echo $!"_s);
    }

    // "-pass" stands behind the last input.

    void passMovesBehindTheLastInput()
    {
        QCOMPARE(launched(u"-i /v/a -pass 1 -i /s/1 -i /s/2 -map 0:0 -passlogfile P -y /o"_s, factsFor()),
                 u"-i /v/a -i /s/1 -i /s/2 -pass 1 -map 0:0 -passlogfile P -y /o"_s);
        QCOMPARE(
            launched(u"-fflags genpts -i /v/a -pass 2 -i /s/1 -map 0:0 -passlogfile P -y /o"_s, factsFor()),
            u"-fflags genpts -i /v/a -i /s/1 -pass 2 -map 0:0 -passlogfile P -y /o"_s);
    }

    void passStaysBehindASingleInput()
    {
        compareUnchanged(listOf(u"-i /v/a -pass 1 -map 0:0 -passlogfile P -y /o"_s), factsFor());
    }

    /// Files are no options, whatever they are called.
    void filesAreNoInputsOrPasses()
    {
        OptionList list{
            u"-i", QUrl::fromLocalFile(u"-pass"_s), u"-pass", u"1", u"-map", u"0:0", u"-passlogfile", u"P",
            u"-y", QUrl::fromLocalFile(u"-i"_s)};
        compareUnchanged(list, factsFor());
    }

    // A picture subtitle's overlay.

    void anOverlayGetsAnEnd()
    {
        QCOMPARE(
            launched(
                u"-i /v/a -filter_complex [0:3]scale=9:9[sub];[0:v][sub]overlay[outv] -map [outv] -y /o"_s,
                factsFor()),
            u"-i /v/a -filter_complex [0:3]scale=9:9[sub];[0:v][sub]overlay=eof_action=pass[outv] -map "
            u"[outv] "
            "-y /o"_s);
    }

    // "-af" beside a copied stream.

    void anAudioFilterBesideACopyIsOneStreams()
    {
        QCOMPARE(launched(u"-i /v/a -map 0:1 -codec:a:0 aac -ar:a:0 48000 -af F -metadata:s:a:0 language=eng "
                          "-map 0:2 -codec:a:1 copy -map 0:3 -codec:a:2 aac -ar:a:2 48000 -af F -y /o"_s,
                          factsFor()),
                 u"-i /v/a -map 0:1 -codec:a:0 aac -ar:a:0 48000 -filter:a:0 F -metadata:s:a:0 language=eng "
                 "-map 0:2 -codec:a:1 copy -map 0:3 -codec:a:2 aac -ar:a:2 48000 -filter:a:2 F -y /o"_s);
    }

    /// Its number is that of its stream, also when that names no codec.
    void anAudioFilterOfAStreamWithoutACodec()
    {
        QCOMPARE(
            launched(
                u"-i /v/a -map 0:1 -codec:a:0 copy -map 0:2 -ab:a:1 9k -ac:a:1 2 -ar:a:1 48000 -af F -y /o"_s,
                factsFor()),
            u"-i /v/a -map 0:1 -codec:a:0 copy -map 0:2 -ab:a:1 9k -ac:a:1 2 -ar:a:1 48000 -filter:a:1 F "
            "-y /o"_s);
    }

    void anAudioFilterWithoutACopyStays()
    {
        compareUnchanged(
            listOf(
                u"-i /v/a -vcodec copy -map 0:1 -codec:a:0 aac -ar:a:0 48000 -af F -codec:s:0 copy -y /o"_s),
            factsFor(OutputKind::Mkv));
    }

    // Odd sizes.

    void oddSizes_data()
    {
        QTest::addColumn<QString>("meant");
        QTest::addColumn<QString>("form");
        const QString even = u"scale=trunc(iw/2)*2:trunc(ih/2)*2"_s;
        QTest::newRow("no filter") << u"-i /v/a -vcodec libx264 -b:v 9k -y /o"_s
                                   << u"-i /v/a -vcodec libx264 -vf '%1' -b:v 9k -y /o"_s.arg(even);
        QTest::newRow("drawn text")
            << u"-i /v/a -vcodec libx264 -b:v 9k -vf subtitles=/s/b.srt -y /o"_s
            << u"-i /v/a -vcodec libx264 -b:v 9k -vf subtitles=/s/b.srt,%1 -y /o"_s.arg(even);
        QTest::newRow("overlay")
            << u"-i /v/a -filter_complex [0:3]scale=321:241[sub];[0:v][sub]overlay[outv] -map [outv] -vcodec libx264 -y /o"_s
            << u"-i /v/a -filter_complex [0:3]scale=321:241[sub];[0:v][sub]overlay=eof_action=pass,%1[outv] "
               "-map [outv] -vcodec libx264 -y /o"_s.arg(even);
        QTest::newRow("scaled")
            << u"-i /v/a -vcodec libx264 -vf scale=trunc(9/321*iw/2)*2:trunc(ow/a/2)*2 -y /o"_s << QString();
        QTest::newRow("another codec") << u"-i /v/a -vcodec mpeg4 -b:v 9k -y /o"_s << QString();
        QTest::newRow("copied") << u"-i /v/a -vcodec copy -y /o"_s << QString();
    }

    void oddSizes()
    {
        QFETCH(QString, meant);
        QFETCH(QString, form);
        for (const auto &[width, height] : {std::pair(321, 240), std::pair(320, 241), std::pair(321, 241)}) {
            LaunchFacts facts = factsFor();
            facts.sourceWidth = width;
            facts.sourceHeight = height;
            QCOMPARE(launched(meant, facts), form.isNull() ? meant : form);
        }
    }

    void theEvenScaleIsAPlainArgument()
    {
        LaunchFacts facts = factsFor();
        facts.sourceWidth = 321;
        const auto arguments =
            tools::argumentsOf(ffmpegLaunchForm(listOf(u"-i /v/a -vcodec libx264 -y /o"_s), facts).list);
        QCOMPARE(arguments.at(5), u"scale=trunc(iw/2)*2:trunc(ih/2)*2"_s);
    }

    void anOddSingleTrackGetsItsScaleToo()
    {
        LaunchFacts facts = factsFor();
        facts.sourceWidth = 321;
        facts.isShellLine = true;
        const OptionList meant{u"-i", QUrl::fromLocalFile(u"/v/a"_s), u"-vcodec libx264", u"-b:v 9k",
                               u"-y", QUrl::fromLocalFile(u"/o"_s)};
        QCOMPARE(tools::textsOf(ffmpegLaunchForm(meant, facts).list).join(u'|'),
                 u"-i|/v/a|-vcodec libx264|-vf|'scale=trunc(iw/2)*2:trunc(ih/2)*2'|-b:v 9k|-y|/o"_s);
    }

    void evenAndUnknownSizesStay()
    {
        LaunchFacts facts = factsFor();
        facts.sourceWidth = 0;
        facts.sourceHeight = 0;
        compareUnchanged(listOf(u"-i /v/a -vcodec libx264 -y /o"_s), facts);
    }

    // Subtitles that the container has no place for.

    void mp4HoldsTextOnly_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<bool>("stays");
        for (const QString &codec : {u"srt"_s, u"ass"_s, u"ssa"_s, u"sub"_s, u"ttxt"_s})
            QTest::newRow(qPrintable(codec)) << codec << true;
        for (const QString &codec : {u"pgs"_s, u"vobsub"_s, u"teletext"_s, u"dvbsub"_s})
            QTest::newRow(qPrintable(codec)) << codec << false;
    }

    void mp4HoldsTextOnly()
    {
        QFETCH(QString, codec);
        QFETCH(bool, stays);
        LaunchFacts facts = factsFor();
        facts.streams.insert(u"0:3"_s, stream(codec, {}, u"subtitle track 3 (x)"_s));
        const auto meant = listOf(u"-i /v/a -map 0:0 -vcodec copy"_s + softOf(3, 0) + u" -f mp4 -y /o"_s);
        if (stays)
            return compareUnchanged(meant, facts);
        const auto form = ffmpegLaunchForm(meant, facts);
        QCOMPARE(tools::textsOf(form.list).join(u' '), u"-i /v/a -map 0:0 -vcodec copy -f mp4 -y /o"_s);
        QCOMPARE(form.warnings,
                 QStringList{u"The subtitle track 3 (x) can't be held by the output and was left out."_s});
    }

    void whatIsLeftIsCountedWithoutAGap()
    {
        LaunchFacts facts = factsFor();
        for (const auto &[key, codec] : {std::pair(u"0:2"_s, u"pgs"_s), std::pair(u"0:3"_s, u"srt"_s),
                                         std::pair(u"0:4"_s, u"vobsub"_s), std::pair(u"0:5"_s, u"ass"_s)})
            facts.streams.insert(key, stream(codec));
        const auto form = ffmpegLaunchForm(listOf(u"-i /v/a"_s + softOf(2, 0) + softOf(3, 1) + softOf(4, 2) +
                                                  softOf(5, 3) + u" -f mp4 -y /o"_s),
                                           facts);
        QCOMPARE(tools::textsOf(form.list).join(u' '),
                 u"-i /v/a"_s + softOf(3, 0) + softOf(5, 1) + u" -f mp4 -y /o"_s);
        QCOMPARE(form.warnings.size(), 2);
    }

    void matroskaHoldsPicturesButNoTeletext()
    {
        const QString line =
            u"-i /v/a -map 0:3 -codec:s:0 copy -metadata:s:s:0 language=eng -f matroska -y /o"_s;
        LaunchFacts facts = factsFor(OutputKind::Mkv);
        facts.streams.insert(u"0:3"_s, stream(u"teletext"_s, u"hdmv_pgs_subtitle"_s));
        compareUnchanged(listOf(line), facts);
        facts.streams.insert(u"0:3"_s, stream(u"teletext"_s, u"dvb_teletext"_s));
        QCOMPARE(launched(line, facts), u"-i /v/a -f matroska -y /o"_s);
    }

    void mp4TextBecomesSrtInMatroska()
    {
        const QString line = u"-i /v/a -map 0:2 -codec:s:0 copy -map 0:3 -codec:s:1 copy -y /o"_s;
        LaunchFacts facts = factsFor(OutputKind::Mkv);
        facts.streams.insert(u"0:2"_s, stream(u"srt"_s));
        facts.streams.insert(u"0:3"_s, stream(u"ttxt"_s, u"mov_text"_s));
        QCOMPARE(launched(line, facts), u"-i /v/a -map 0:2 -codec:s:0 copy -map 0:3 -codec:s:1 srt -y /o"_s);
        facts.kind = OutputKind::Mp4;
        compareUnchanged(listOf(line), facts);
    }

    // The format of a ".m4v" by its extension.

    void pass2NamesItsFormat_data()
    {
        QTest::addColumn<QString>("audio");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<bool>("isNamed");
        QTest::newRow("made MP3") << u"libmp3lame"_s << u"ac3"_s << true;
        QTest::newRow("made AAC") << u"aac"_s << u"dts"_s << false;
        QTest::newRow("made AC-3") << u"ac3"_s << u"dts"_s << false;
        QTest::newRow("copied AAC") << u"copy"_s << u"aac"_s << false;
        QTest::newRow("copied AC-3") << u"copy"_s << u"ac3"_s << false;
        for (const QString &codec : {u"mp3"_s, u"mp2"_s, u"dts"_s, u"ogg"_s})
            QTest::addRow("copied %s", qPrintable(codec)) << u"copy"_s << codec << true;
    }

    void pass2NamesItsFormat()
    {
        QFETCH(QString, audio);
        QFETCH(QString, codec);
        QFETCH(bool, isNamed);
        const QString line = u"-i /v/a -pass 2 -map 0:1 -codec:a:0 %1 -passlogfile P %2-y /o/a.m4v"_s;
        LaunchFacts facts = factsFor();
        facts.isSecondPass = true;
        facts.streams.insert(u"0:1"_s, stream(codec));
        QCOMPARE(launched(line.arg(audio, QString()), facts),
                 line.arg(audio, isNamed ? u"-f mp4 "_s : QString()));
        facts.isSecondPass = false;
        compareUnchanged(listOf(line.arg(audio, QString())), facts);
    }

    /// E-AC-3 shares its codec word with AC-3: the probe's word decides.
    void theProbesWordDecides()
    {
        LaunchFacts facts = factsFor();
        facts.isSecondPass = true;
        facts.streams.insert(u"0:1"_s, stream(u"ac3"_s, u"eac3"_s));
        QCOMPARE(launched(u"-i /v/a -map 0:1 -codec:a:0 copy -passlogfile P -y /o/a.m4v"_s, facts),
                 u"-i /v/a -map 0:1 -codec:a:0 copy -passlogfile P -f mp4 -y /o/a.m4v"_s);
    }

    void otherExtensionsNeedNoFormat()
    {
        LaunchFacts facts = factsFor();
        facts.isSecondPass = true;
        for (const QString &extension : {u"mp4"_s, u"mkv"_s, u"avi"_s})
            compareUnchanged(
                listOf(u"-i /v/a -map 0:1 -codec:a:0 libmp3lame -passlogfile P -y /o/a."_s + extension),
                facts);
    }

    // Timestamps.

    void aRetriedPass2MakesTimestamps_data()
    {
        QTest::addColumn<bool>("isSecondPass");
        QTest::addColumn<bool>("wasRetried");
        QTest::newRow("pass 2 after a retry") << true << true;
        QTest::newRow("pass 2") << true << false;
        QTest::newRow("the retry itself has it in its list") << false << true;
        QTest::newRow("any other run") << false << false;
    }

    void aRetriedPass2MakesTimestamps()
    {
        QFETCH(bool, isSecondPass);
        QFETCH(bool, wasRetried);
        LaunchFacts facts = factsFor();
        facts.isSecondPass = isSecondPass;
        facts.generatesTimestamps = wasRetried;
        const QString line = u"-i /v/a -pass 2 -passlogfile P -y /o/a.mkv"_s;
        QCOMPARE(launched(line, facts),
                 (isSecondPass && wasRetried ? u"-fflags genpts "_s : QString()) + line);
    }

    // Added files.

    void onlyAddedTracksWithCompanyArePicked_data()
    {
        QTest::addColumn<bool>("isAdded");
        QTest::addColumn<bool>("hasCompany");
        QTest::addColumn<QString>("mapped");
        QTest::addColumn<int>("picked"); // -1: none
        QTest::newRow("added, beside others") << true << true << u"1"_s << 2;
        QTest::newRow("added, alone") << true << false << u"1"_s << -1;
        QTest::newRow("of the source") << false << true << u"0:2"_s << -1;
    }

    void onlyAddedTracksWithCompanyArePicked()
    {
        QFETCH(bool, isAdded);
        QFETCH(bool, hasCompany);
        QFETCH(QString, mapped);
        QFETCH(int, picked);
        const auto text = subtitleTrack(u"2"_s, u"srt"_s);
        if (isAdded)
            external(text, u"/s/b.mks"_s);
        text->setTrackFfmpegID(u"2"_s);
        text->setHasCompany(hasCompany);
        const auto facts = launchFactsOf(*handMadeSelection(u"MKV"_s, {videoTrack(), text}), OutputKind::Mkv);
        QVERIFY(facts.streams.contains(mapped));
        QCOMPARE(facts.streams.value(mapped).picked.value_or(-1), picked);
    }

    void aPickedTrackIsMappedAlone()
    {
        LaunchFacts facts = factsFor();
        facts.streams.insert(u"0:1"_s, stream(u"aac"_s));
        facts.streams.insert(u"1"_s, {u"mp3"_s, u"mp3"_s, {}, 0});
        facts.streams.insert(u"2"_s, {u"srt"_s, u"subrip"_s, {}, 3});
        facts.streams.insert(u"3"_s, stream(u"srt"_s));
        const QString line = u"-i /v/a -i /s/b -map 0:1 -codec:a:0 copy -map %1 -codec:a:1 copy "
                             "-map %2 -codec:s:0 mov_text -map 3 -codec:s:1 mov_text -level 1 -y /o"_s;
        QCOMPARE(launched(line.arg(u"1"_s, u"2"_s), facts), line.arg(u"1:0"_s, u"2:3"_s));
    }

    /// The other rules find their streams all the same.
    void aPickedTrackIsLeftOutLikeAnyOther()
    {
        LaunchFacts facts = factsFor();
        facts.streams.insert(u"1"_s, {u"teletext"_s, u"hdmv_pgs_subtitle"_s, u"subtitle b.mks"_s, 0});
        facts.streams.insert(u"2"_s, {u"mp3"_s, u"mp3"_s, {}, 1});
        facts.isSecondPass = true;
        QCOMPARE(launched(u"-i /v/a -map 2 -codec:a:0 copy -map 1 -codec:s:0 mov_text -passlogfile P "
                          "-y /o/a.m4v"_s,
                          facts),
                 u"-i /v/a -map 2:1 -codec:a:0 copy -passlogfile P -f mp4 -y /o/a.m4v"_s);
        facts.kind = OutputKind::Mkv;
        facts.streams.insert(u"1"_s, {u"ttxt"_s, u"mov_text"_s, {}, 4});
        QCOMPARE(launched(u"-i /v/a -map 1 -codec:s:0 copy -y /o"_s, facts),
                 u"-i /v/a -map 1:4 -codec:s:0 srt -y /o"_s);
    }

    void aRuleCanBeLeftOut()
    {
        LaunchFacts facts = factsFor();
        facts.sourceWidth = 321;
        const auto meant = listOf(u"-i /v/a -pass 1 -i /s/b -vcodec libx264 -passlogfile P -y /o"_s);
        QCOMPARE(tools::textsOf(ffmpegLaunchFormWithout(evenSize, meant, facts).list).join(u' '),
                 u"-i /v/a -i /s/b -pass 1 -vcodec libx264 -passlogfile P -y /o"_s);
        QVERIFY(tools::textsOf(ffmpegLaunchFormWithout(passBehindInputs, meant, facts).list)
                    .join(u' ')
                    .startsWith(u"-i /v/a -pass 1 -i /s/b -vcodec libx264 -vf "_s));
    }
};

TESSARAY_TEST(FfmpegLaunchTest)
#include "FfmpegLaunchTest.moc"

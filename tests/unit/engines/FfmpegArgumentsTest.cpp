#include "engines/ffmpeg/FfmpegArguments.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "selection/Targets.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;

namespace {

ConversionRequest deviceRequest(const QString &device, const QString &output)
{
    ConversionRequest request;
    request.kind = outputKindNamed(appNameForDevice(device));
    request.output = QUrl::fromLocalFile(output);
    request.passlogfile = u"/t/passLog"_s;
    return request;
}

ConversionLists deviceLists(const SelectionPointer &selection)
{
    const ConversionRequest request = deviceRequest(selection->theDevice(), u"/v/out"_s);
    applyDeviceCaps(*selection, request.kind);
    return conversionLists(*selection, request);
}

QString firstList(const SelectionPointer &selection)
{
    return tools::textsOf(deviceLists(selection).first).join(u' ');
}

} // namespace

class FfmpegArgumentsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A film of 1920 pixels for the iPhone 4 in one pass, argument by argument.
    void aWholeFilm()
    {
        const auto selection = handMadeSelection(
            u"iPhone 4"_s,
            {videoTrack(), audioTrack(u"1"_s, u"aac"_s, u"2"_s, audioSettings(u"aac"_s, u"2"_s, u"160"_s)),
             subtitleTrack(u"2"_s, u"srt"_s)});
        selection->setUserWidth(u"1280"_s);
        auto request = deviceRequest(u"iPhone 4"_s, u"/v/a.m4v"_s);
        request.moovInFront = true;
        const auto lists = conversionLists(*selection, request);
        QCOMPARE(tools::textsOf(lists.first), QStringList({u"-i"_s,
                                                           u"/v/a.mkv"_s,
                                                           u"-map"_s,
                                                           u"0:0"_s,
                                                           u"-vcodec"_s,
                                                           u"libx264"_s,
                                                           u"-level"_s,
                                                           u"31"_s,
                                                           u"-vf"_s,
                                                           u"scale=trunc(1280/1920*iw/2)*2:trunc(ow/a/2)*2"_s,
                                                           u"-b:v"_s,
                                                           u"2500k"_s,
                                                           u"-metadata:s:v"_s,
                                                           u"language=eng"_s,
                                                           u"-metadata:s:v"_s,
                                                           u"title=Video0"_s,
                                                           u"-map"_s,
                                                           u"0:1"_s,
                                                           u"-codec:a:0"_s,
                                                           u"aac"_s,
                                                           u"-strict"_s,
                                                           u"experimental"_s,
                                                           u"-ab:a:0"_s,
                                                           u"160k"_s,
                                                           u"-ac:a:0"_s,
                                                           u"2"_s,
                                                           u"-ar:a:0"_s,
                                                           u"48000"_s,
                                                           u"-metadata:s:a:0"_s,
                                                           u"language=eng"_s,
                                                           u"-metadata:s:a:0"_s,
                                                           u"title=Audio1"_s,
                                                           u"-map"_s,
                                                           u"0:2"_s,
                                                           u"-codec:s:0"_s,
                                                           u"mov_text"_s,
                                                           u"-metadata:s:s:0"_s,
                                                           u"language=eng"_s,
                                                           u"-metadata:s:s:0"_s,
                                                           u"title=Subtitle2"_s,
                                                           u"-movflags"_s,
                                                           u"faststart"_s,
                                                           u"-f"_s,
                                                           u"mp4"_s,
                                                           u"-y"_s,
                                                           u"/v/a.m4v"_s}));
        QVERIFY(lists.second.isEmpty());
        QCOMPARE(lists.currentPass, 0);
    }

    void filesAreFilesAndNoTexts()
    {
        const auto selection = handMadeSelection(
            u"MKV"_s, {videoTrack(), external(subtitleTrack(u"0"_s, u"srt"_s), u"/v/-map"_s)});
        const auto list = deviceLists(selection).first;
        QVERIFY(list.at(1).isFile());
        QVERIFY(list.at(3).isFile());
        QVERIFY(list.last().isFile());
        QVERIFY(!list.at(4).isFile());
    }

    void outputsAreNamedByKindAndDevice_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("path");
        for (const QString &device : selection::deviceNames()) {
            if (device != u"Xbox"_s)
                QTest::newRow(qPrintable(device)) << device << u"/v/a.b.m4v"_s;
        }
        QTest::newRow("Xbox") << u"Xbox"_s << u"/v/a.b.mp4"_s;
        QTest::newRow("General") << u"General"_s << u"/v/a.b.m4v"_s;
        QTest::newRow("MKV") << u"MKV"_s << u"/v/a.b.mkv"_s;
        QTest::newRow("AVI") << u"AVI"_s << u"/v/a.b.avi"_s;
    }

    void outputsAreNamedByKindAndDevice()
    {
        QFETCH(QString, device);
        QFETCH(QString, path);
        const auto kind = outputKindNamed(appNameForDevice(device));
        QCOMPARE(outputForBase(u"/v/a.b"_s, kind, device).toLocalFile(), path);
    }

    void anUnknownKindHasAnEmptyPath()
    {
        QVERIFY(outputForBase(u"/v/a"_s, OutputKind::Unknown, u"Xbox"_s).toLocalFile().isEmpty());
    }

    /// Each external track is an input of its own, in track order, behind the source.
    void externalFilesAreInputs()
    {
        const auto selection = handMadeSelection(
            u"MKV"_s,
            {external(subtitleTrack(u"0"_s, u"srt"_s), u"/s/1.srt"_s), videoTrack(u"passthru"_s),
             external(audioTrack(u"0"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s)), u"/s/2.ac3"_s)});
        const QString line = firstList(selection);
        QVERIFY2(line.startsWith(u"-i /v/a.mkv -i /s/1.srt -i /s/2.ac3 -map 0:0 -vcodec copy "_s),
                 qPrintable(line));
        // A whole file is mapped, by its position among the external ones plus 1.
        QVERIFY(line.contains(u" -map 2 -codec:a:0 copy "_s));
        QVERIFY(line.contains(u" -map 1 -codec:s:0 copy "_s));
    }

    void theFirstVideoTrackIsTheVideo()
    {
        const auto second = videoTrack();
        second->setTrackFfmpegID(u"5"_s);
        const QString line = firstList(handMadeSelection(u"General"_s, {second, videoTrack()}));
        QVERIFY(line.startsWith(u"-i /v/a.mkv -map 0:5 -vcodec libx264 "_s));
        QCOMPARE(line.count(u"-map"_s), 1);
    }

    /// The video's file is the source in practice; by its place among the inputs otherwise.
    void theVideoIsMappedFromItsOwnInput()
    {
        const auto video = external(videoTrack(u"passthru"_s), u"/s/other.mkv"_s);
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s));
        const QString line = firstList(handMadeSelection(u"MKV"_s, {video, audio}));
        QVERIFY2(line.startsWith(u"-i /v/a.mkv -i /s/other.mkv -map 1:0 "_s), qPrintable(line));
        QVERIFY(line.contains(u" -map 1:1 -codec:a:0 copy "_s));
    }

    void passthruVideoHasNoLevelScaleOrBitRate()
    {
        const auto selection = handMadeSelection(u"iPod (All non-Touch)"_s, {videoTrack(u"passthru"_s)});
        selection->setUserWidth(u"640"_s);
        selection->setUserVideoBitRate(u"9000"_s);
        QCOMPARE(firstList(selection),
                 u"-i /v/a.mkv -map 0:0 -vcodec copy "_s + videoMetadata + u" -f mp4 -y /v/out"_s);
        QCOMPARE(selection->userVideoBitRate(), u"9000"_s);
        QCOMPARE(selection->userWidth(), u"640"_s);
    }

    void eachKindHasItsCodecAndContainer_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("container");
        QTest::newRow("MP4") << u"General"_s << u"-vcodec libx264"_s << u"-f mp4"_s;
        QTest::newRow("MKV") << u"MKV"_s << u"-vcodec libx264"_s << u"-f matroska"_s;
        QTest::newRow("AVI") << u"AVI"_s << u"-vcodec mpeg4"_s << u"-vtag xvid -f avi"_s;
    }

    void eachKindHasItsCodecAndContainer()
    {
        QFETCH(QString, device);
        QFETCH(QString, codec);
        QFETCH(QString, container);
        QCOMPARE(
            firstList(handMadeSelection(device, {videoTrack()})),
            u"-i /v/a.mkv -map 0:0 %1 -b:v 2500k %2 %3 -y /v/out"_s.arg(codec, videoMetadata, container));
    }

    void anUnknownKindHasNeither()
    {
        const auto selection = handMadeSelection(u"General"_s, {videoTrack()});
        auto request = deviceRequest(u"General"_s, u"/v/out"_s);
        request.kind = OutputKind::Unknown;
        QCOMPARE(tools::textsOf(conversionLists(*selection, request).first).join(u' '),
                 u"-i /v/a.mkv -map 0:0 -b:v 2500k "_s + videoMetadata + u" -y /v/out"_s);
    }

    /// Levels and caps belong to MP4 files: a device word can't touch another kind.
    void onlyMp4HasADeviceRule()
    {
        const auto selection = handMadeSelection(u"Xbox"_s, {videoTrack()});
        selection->setUserVideoBitRate(u"25000"_s);
        auto request = deviceRequest(u"MKV"_s, u"/v/out"_s);
        const QString line = tools::textsOf(conversionLists(*selection, request).first).join(u' ');
        QVERIFY(!line.contains(u"-level"_s));
        QVERIFY(line.contains(u"-b:v 25000k"_s));
    }

    void appleTv3HasTwoLevelsAndACappedBitRate()
    {
        const auto selection = handMadeSelection(u"Apple TV (3 and Later)"_s, {videoTrack()});
        selection->setUserVideoBitRate(u"25000"_s);
        QCOMPARE(firstList(selection),
                 u"-i /v/a.mkv -map 0:0 -vcodec libx264 -level 41 -level 40 -b:v 20000k "_s + videoMetadata +
                     u" -f mp4 -y /v/out"_s);
        QCOMPARE(selection->userVideoBitRate(), u"20000"_s);
    }

    /// The caps are in the selection before the scale is made from it.
    void theCapShapesTheScale()
    {
        const auto selection = handMadeSelection(u"iPod (All non-Touch)"_s, {videoTrack()});
        const QString line = firstList(selection);
        QVERIFY(line.contains(u"-level 30 -vf scale=trunc(720/1920*iw/2)*2:trunc(ow/a/2)*2 -b:v 1500k"_s));
        QCOMPARE(selection->userWidth(), u"720"_s);
    }

    void noScaleUnlessTheWidthGetsSmaller_data()
    {
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<bool>("scales");
        QTest::newRow("one pixel less") << u"1919"_s << true;
        QTest::newRow("equal") << u"1920"_s << false;
        QTest::newRow("one more") << u"1921"_s << false;
        QTest::newRow("much more") << u"3840"_s << false;
    }

    void noScaleUnlessTheWidthGetsSmaller()
    {
        QFETCH(QString, wanted);
        QFETCH(bool, scales);
        const auto selection = handMadeSelection(u"General"_s, {videoTrack()});
        selection->setUserWidth(wanted);
        QCOMPARE(scaleFilter(*selection).isEmpty(), !scales);
        QCOMPARE(firstList(selection).contains(u"-vf"_s), scales);
    }

    void everyKindScales()
    {
        for (const QString &device : {u"General"_s, u"MKV"_s, u"AVI"_s}) {
            const auto selection = handMadeSelection(device, {videoTrack()});
            selection->setUserWidth(u"640"_s);
            const QString line = firstList(selection);
            QVERIFY(line.contains(u" -vf scale=trunc(640/1920*iw/2)*2:trunc(ow/a/2)*2 -b:v 2500k "_s));
        }
    }

    void languageAndTitleAreOneArgumentEach()
    {
        const auto video = videoTrack();
        video->setTrackLanguage(u"German"_s);
        video->setTrackTitle(u"it's \"one\" $title -map"_s);
        const auto texts = tools::textsOf(deviceLists(handMadeSelection(u"General"_s, {video})).first);
        const auto at = texts.indexOf(u"-metadata:s:v"_s);
        QCOMPARE(texts.mid(at, 4), QStringList({u"-metadata:s:v"_s, u"language=deu"_s, u"-metadata:s:v"_s,
                                                u"title=it's \"one\" $title -map"_s}));
    }

    void withoutAVideoTrackOnlyTheRestIsThere()
    {
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s));
        QCOMPARE(firstList(handMadeSelection(u"MKV"_s, {audio})),
                 u"-i /v/a.mkv -map 0:1 -codec:a:0 copy -metadata:s:a:0 language=eng "
                 "-metadata:s:a:0 title=Audio1 -f matroska -y /v/out"_s);
    }

    void twoPasses()
    {
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s));
        const auto selection =
            handMadeSelection(u"PS3"_s, {videoTrack(), audio, subtitleTrack(u"2"_s, u"srt"_s)}, u"2"_s);
        auto request = deviceRequest(u"PS3"_s, u"/v/a.m4v"_s);
        request.moovInFront = true;
        const auto lists = conversionLists(*selection, request);
        const QString picture = u"-map 0:0 -vcodec libx264 -level 41 -b:v 2500k "_s + videoMetadata;
        const QString sound =
            u" -map 0:1 -codec:a:0 copy -metadata:s:a:0 language=eng -metadata:s:a:0 title=Audio1"_s;
        const QString text = u" -map 0:2 -codec:s:0 mov_text -metadata:s:s:0 language=eng "
                             "-metadata:s:s:0 title=Subtitle2"_s;
        QCOMPARE(tools::textsOf(lists.first).join(u' '),
                 u"-i /v/a.mkv -pass 1 "_s + picture + sound +
                     u" -sn -f mp4 -passlogfile /t/passLog -y /dev/null"_s);
        // No format here: pass 2 takes it from the output's extension.
        QCOMPARE(tools::textsOf(lists.second).join(u' '),
                 u"-i /v/a.mkv -pass 2 "_s + picture + sound + text +
                     u" -movflags faststart -passlogfile /t/passLog -y /v/a.m4v"_s);
        QCOMPARE(lists.currentPass, 1);
    }

    /// Also when more inputs follow: it is the launch that moves it.
    void passStandsRightBehindTheFirstInput()
    {
        const auto selection = handMadeSelection(
            u"MKV"_s, {videoTrack(), external(subtitleTrack(u"0"_s, u"srt"_s), u"/s/1.srt"_s)}, u"2"_s);
        const auto lists = deviceLists(selection);
        QCOMPARE(tools::textsOf(lists.first).mid(0, 6), words(u"-i /v/a.mkv -pass 1 -i /s/1.srt"_s));
        QCOMPARE(tools::textsOf(lists.second).mid(0, 6), words(u"-i /v/a.mkv -pass 2 -i /s/1.srt"_s));
    }

    void theKindsOfTwoPassRunsDifferInTheirFormatOnly()
    {
        const auto mkv = deviceLists(handMadeSelection(u"MKV"_s, {videoTrack()}, u"2"_s));
        QCOMPARE(tools::textsOf(mkv.first).mid(14).join(u' '),
                 u"-sn -f matroska -passlogfile /t/passLog -y /dev/null"_s);
        QCOMPARE(tools::textsOf(mkv.second).mid(14).join(u' '), u"-passlogfile /t/passLog -y /v/out"_s);
        // AVI takes no subtitles, so there is nothing to leave out of pass 1 either.
        const auto avi = deviceLists(handMadeSelection(u"AVI"_s, {videoTrack()}, u"2"_s));
        QCOMPARE(tools::textsOf(avi.first).mid(14).join(u' '),
                 u"-vtag xvid -f avi -passlogfile /t/passLog -y /dev/null"_s);
    }

    void onlyTheText2MeansTwoPasses_data()
    {
        QTest::addColumn<QString>("passes");
        QTest::addColumn<int>("currentPass");
        QTest::newRow("0") << u"0"_s << 0;
        QTest::newRow("1") << u"1"_s << 0;
        QTest::newRow("2") << u"2"_s << 1;
        QTest::newRow("3") << u"3"_s << 0;
        QTest::newRow("empty") << QString() << 0;
    }

    void onlyTheText2MeansTwoPasses()
    {
        QFETCH(QString, passes);
        QFETCH(int, currentPass);
        const auto lists = deviceLists(handMadeSelection(u"General"_s, {videoTrack()}, passes));
        QCOMPARE(lists.currentPass, currentPass);
        QCOMPARE(lists.second.isEmpty(), currentPass == 0);
        QCOMPARE(tools::textsOf(lists.first).contains(u"-pass"_s), currentPass == 1);
    }

    void theIndexGoesInFrontOnlyInMp4_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<bool>("flag");
        QTest::addColumn<bool>("stands");
        QTest::newRow("MP4, on") << u"General"_s << true << true;
        QTest::newRow("MP4, off") << u"General"_s << false << false;
        QTest::newRow("MKV, on") << u"MKV"_s << true << false;
        QTest::newRow("AVI, on") << u"AVI"_s << true << false;
    }

    void theIndexGoesInFrontOnlyInMp4()
    {
        QFETCH(QString, device);
        QFETCH(bool, flag);
        QFETCH(bool, stands);
        const auto selection = handMadeSelection(device, {videoTrack()});
        auto request = deviceRequest(device, u"/v/out"_s);
        request.moovInFront = flag;
        const auto texts = tools::textsOf(conversionLists(*selection, request).first);
        QCOMPARE(texts.contains(u"-movflags"_s), stands);
        QCOMPARE(texts.contains(u"faststart"_s), stands);
    }
};

TESSARAY_TEST(FfmpegArgumentsTest)
#include "FfmpegArgumentsTest.moc"

#include "engines/ffmpeg/FfmpegSingleTrack.h"
#include "support/FakePlaces.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"
#include "tools/ShellLine.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;

namespace {

const QUrl trackOutput = QUrl::fromLocalFile(u"/v/a.m4v"_s);
const QUrl trackLog = QUrl::fromLocalFile(u"/v/a.mkv.log"_s);

ConversionLists trackLists(const TrackPointer &track, const QString &passes = u"1"_s,
                           const QString &width = u"1920"_s)
{
    const auto selection = handMadeSelection(u"General"_s, {track}, passes);
    selection->setUserWidth(width);
    return singleTrackLists(*selection, *track, trackOutput, trackLog);
}

/// Items between bars, as some hold blanks.
QString barred(const tools::OptionList &list)
{
    return tools::textsOf(list).join(u'|');
}

const QString tail = u"-y|/v/a.m4v|&>|/v/a.mkv.log|& echo $!"_s;

TrackPointer audio(const QString &codec)
{
    const auto track = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {});
    track->setUserCodec(codec);
    track->setUserBitRate(u"160"_s);
    track->setUserNumberOfChannels(u"2"_s);
    return track;
}

} // namespace

/// Several items hold two words each: the list is joined into a shell line.
class FfmpegSingleTrackTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCopiedVideo()
    {
        const auto lists = trackLists(videoTrack(u"passthru"_s));
        QCOMPARE(barred(lists.first), u"-i|/v/a.mkv|-map 0:0|-vcodec copy|-metadata:s:v language=eng|"
                                      "-metadata:s:v title=Video0|"_s +
                                          tail);
        QCOMPARE(lists.currentPass, 0);
        QCOMPARE(barred(lists.second), tail); // the redirection stands in both
    }

    void anEncodedVideo()
    {
        QCOMPARE(barred(trackLists(videoTrack()).first),
                 u"-i|/v/a.mkv|-map 0:0|-vcodec libx264|-b:v 2500k|-metadata:s:v language=eng|"
                 "-metadata:s:v title=Video0|"_s +
                     tail);
    }

    void aScaledVideo()
    {
        QCOMPARE(barred(trackLists(videoTrack(), u"1"_s, u"640"_s).first),
                 u"-i|/v/a.mkv|-map 0:0|-vcodec libx264|-vf|'scale=trunc(640/1920*iw/2)*2:trunc(ow/a/2)*2'|"
                 "-b:v 2500k|-metadata:s:v language=eng|-metadata:s:v title=Video0|"_s +
                     tail);
    }

    void twoPasses()
    {
        const auto lists = trackLists(videoTrack(), u"2"_s);
        const QString rest =
            u"-map 0:0|-vcodec libx264|-b:v 2500k|-metadata:s:v language=eng|-metadata:s:v title=Video0|"_s +
            tail;
        QCOMPARE(barred(lists.first), u"-i|/v/a.mkv|-pass 1|"_s + rest);
        QCOMPARE(barred(lists.second), u"-i|/v/a.mkv|-pass 2|"_s + rest);
        QCOMPARE(lists.currentPass, 1);
    }

    void onlyAVideoHasPasses()
    {
        const auto lists = trackLists(audio(u"aac"_s), u"2"_s);
        QCOMPARE(lists.currentPass, 0);
        QVERIFY(!barred(lists.first).contains(u"-pass"_s));
        QCOMPARE(barred(lists.second), tail);
    }

    void sound_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("arguments");
        const QString numbers = u"-ab:a:0 160k|-ac:a:0 2|-ar:a:0 48000|"_s;
        QTest::newRow("passthru") << u"passthru"_s << u"-c:a copy|"_s;
        QTest::newRow("aac") << u"aac"_s << u"-c:a aac -strict experimental|"_s + numbers;
        QTest::newRow("ac3") << u"ac3"_s << u"-c:a ac3|"_s + numbers;
        QTest::newRow("mp3 has no codec of its own here") << u"mp3"_s << numbers;
    }

    void sound()
    {
        QFETCH(QString, codec);
        QFETCH(QString, arguments);
        QCOMPARE(barred(trackLists(audio(codec)).first),
                 u"-i|/v/a.mkv|-map 0:0|"_s + arguments +
                     u"-metadata:s:a:0|language=eng|-metadata:s:a:0|title=Audio1|"_s + tail);
    }

    void otherTracksHaveNoArguments()
    {
        QCOMPARE(barred(trackLists(subtitleTrack(u"3"_s, u"srt"_s)).first),
                 u"-i|/v/a.mkv|-map 0:0|"_s + tail);
    }

    /// Unquoted in the list, one word in the line.
    void aTitleWithBlanksIsOneWordOfTheLine()
    {
        const auto track = videoTrack(u"passthru"_s);
        track->setTrackTitle(u"it's; touch X"_s);
        const auto list = trackLists(track).first;
        QVERIFY(barred(list).contains(u"|-metadata:s:v title=it's; touch X|"_s));
        const Scratch scratch;
        const FakePlaces places(scratch.path());
        const auto line = tools::toolLine(QUrl::fromLocalFile(u"/t/ffmpeg"_s), list, places,
                                          tools::ShellKind::KnowsAmpersandRedirect);
        QVERIFY2(line.launched.contains(u" -metadata:s:v title='it'\\''s; touch X' "_s),
                 qPrintable(line.launched));
    }

    void aStereoCopyIsMarkedInItsName()
    {
        const auto track = audio(u"aac"_s);
        QVERIFY(singleTrackSuffix(*track).isEmpty());
        track->setIsStereoCopyFlag(true);
        QCOMPARE(singleTrackSuffix(*track), u".added"_s);
    }
};

TESSARAY_TEST(FfmpegSingleTrackTest)
#include "FfmpegSingleTrackTest.moc"

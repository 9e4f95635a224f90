#include "selection/Refusals.h"
#include "support/TestMain.h"
#include "support/engines/ConversionFixture.h"
#include "support/selection/HandMade.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

/// Numbers and choices with which ffmpeg could only fail are refused before anything runs.
class ConversionRefusalsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbers_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("rate");
        QTest::addColumn<QString>("width");
        QTest::addColumn<QString>("passes");
        QTest::addColumn<QString>("words");
        const auto row = [](const char *name, const QString &codec, const QString &rate, const QString &width,
                            const QString &passes, const QString &words) {
            QTest::newRow(name) << codec << rate << width << passes << words;
        };
        const QString encode = u"h264"_s;
        row("well", encode, u"2500"_s, u"1280"_s, u"1"_s, {});
        row("well, two passes", encode, u"2500"_s, u"1280"_s, u"2"_s, {});
        row("no rate in one pass", encode, u"0"_s, u"1280"_s, u"1"_s, {});
        row("no rate in two passes", encode, u"0"_s, u"1280"_s, u"2"_s,
            u"Two passes need a video bit rate above 0."_s);
        row("zeros in two passes", encode, u"000"_s, u"1280"_s, u"2"_s,
            u"Two passes need a video bit rate above 0."_s);
        const QString badRate = u"The video bit rate \"%1\" is not a number of kb/s"_s;
        for (const QString &rate : {u""_s, u"-5"_s, u"abc"_s, u"12k"_s, u"1.5"_s, u" 12"_s, u"none"_s})
            row(qPrintable(u"rate \"%1\""_s.arg(rate)), encode, rate, u"1280"_s, u"1"_s, badRate.arg(rate));
        row("rate absent", encode, {}, u"1280"_s, u"1"_s, badRate.arg(QString()));
        const QString badWidth = u"The width \"%1\" is not a number of pixels"_s;
        for (const QString &width : {u""_s, u"-640"_s, u"wide"_s, u"640px"_s, u"6.4"_s, u"0"_s, u"1"_s})
            row(qPrintable(u"width \"%1\""_s.arg(width)), encode, u"2500"_s, width, u"1"_s,
                badWidth.arg(width));
        row("width absent", encode, u"2500"_s, {}, u"1"_s, badWidth.arg(QString()));
        // A copied picture needs no numbers.
        row("copied, no numbers", u"passthru"_s, {}, {}, u"1"_s, {});
        row("copied, bad numbers", u"passthru"_s, u"-5"_s, u"wide"_s, u"2"_s, {});
    }

    void numbers()
    {
        QFETCH(QString, codec);
        QFETCH(QString, rate);
        QFETCH(QString, width);
        QFETCH(QString, passes);
        QFETCH(QString, words);
        ConversionFixture fixture;
        const auto selection = fixture.selection(u"General"_s, {videoTrack(codec)}, passes);
        selection->setUserVideoBitRate(rate);
        selection->setUserWidth(width);
        const auto job = fixture.make(selection);
        QCOMPARE(job->refusal().isNull(), words.isNull());
        QVERIFY2(job->refusal().startsWith(words), qPrintable(job->refusal()));
    }

    void anUnknownWidthIsNoReason()
    {
        ConversionFixture fixture;
        const auto selection = fixture.selection(u"General"_s, {videoTrack()});
        selection->setVideoTrackWidth(u"0"_s);
        selection->setUserWidth(u"0"_s);
        QVERIFY(fixture.make(selection)->refusal().isNull());
    }

    void withoutVideoThereAreNoNumbersToRefuse()
    {
        ConversionFixture fixture;
        const auto audio = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s));
        const auto selection = fixture.selection(u"MKV"_s, {audio});
        selection->setUserVideoBitRate({});
        QVERIFY(fixture.make(selection)->refusal().isNull());
    }

    void burningNeedsAReencode_data()
    {
        QTest::addColumn<QString>("video");
        QTest::addColumn<QString>("subtitle");
        QTest::addColumn<bool>("isRefused");
        QTest::newRow("copied, burned") << u"passthru"_s << u"burn"_s << true;
        QTest::newRow("copied, muxed") << u"passthru"_s << u"mux"_s << false;
        QTest::newRow("copied, muxed, in capitals") << u"passthru"_s << u"Mux"_s << false;
        QTest::newRow("copied, extracted") << u"passthru"_s << u"Extract"_s << false;
        QTest::newRow("encoded, burned") << u"h264"_s << u"burn"_s << false;
    }

    void burningNeedsAReencode()
    {
        QFETCH(QString, video);
        QFETCH(QString, subtitle);
        QFETCH(bool, isRefused);
        ConversionFixture fixture;
        const auto job =
            fixture.make(u"MKV"_s, {videoTrack(video), subtitleTrack(u"3"_s, u"srt"_s, subtitle)});
        QCOMPARE(job->refusal(),
                 isRefused ? u"A subtitle can only be burned into a video that is re-encoded."_s : QString());
    }

    /// By the probe's word, so that a codec that is written into its kin is told apart.
    void whatTheContainerCantHoldIsNotCopied_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("video");
        QTest::addColumn<QString>("picture"); ///< the probe's word for the picture
        QTest::addColumn<QString>("sound");
        QTest::addColumn<QString>("settings"); ///< of the sound's outputs
        QTest::addColumn<QString>("sentence");
        const auto row = [](const char *name, const char *device, const char *video, const char *picture,
                            const char *sound, const char *settings, const char *sentence) {
            QTest::newRow(name) << QString::fromLatin1(device) << QString::fromLatin1(video)
                                << QString::fromLatin1(picture) << QString::fromLatin1(sound)
                                << QString::fromLatin1(settings) << QString::fromLatin1(sentence);
        };
        const char *flac = "FLAC can't be in MP4: re-encode it or choose MKV.";
        row("FLAC into MP4", "General", "passthru", "h264", "flac", "passthru", flac);
        row("for a device", "iPad Mini", "h264", "h264", "flac", "passthru", flac);
        row("beside AAC", "General", "passthru", "h264", "flac", "passthru aac", "");
        row("beside AC-3", "General", "passthru", "h264", "flac", "passthru ac3", flac);
        row("re-encoded", "General", "passthru", "h264", "flac", "ac3", "");
        row("into MKV", "MKV", "passthru", "h264", "flac", "passthru", "");
        row("PCM beside AAC", "General", "passthru", "h264", "pcm_s16le", "passthru aac",
            "PCM_S16LE can't be in MP4: re-encode it or choose MKV.");
        row("PCM into AVI", "AVI", "mpeg4", "h264", "pcm_s16le", "passthru", "");
        row("PCM the other way round into AVI", "AVI", "mpeg4", "h264", "pcm_s16be", "passthru",
            "PCM_S16BE can't be in AVI: re-encode it or choose MKV.");
        row("odd PCM into MKV", "MKV", "passthru", "h264", "pcm_s8", "passthru",
            "PCM_S8 can't be in MKV: re-encode it.");
        row("a picture into AVI", "AVI", "passthru", "h264", "mp3", "passthru",
            "H264 can't be in AVI: re-encode it or choose MKV.");
        row("a picture that AVI holds", "AVI", "passthru", "mpeg4", "mp3", "passthru", "");
        row("a picture that is re-encoded", "General", "h264", "wmv2", "aac", "passthru", "");
        row("a picture into MP4", "General", "passthru", "wmv2", "aac", "passthru",
            "WMV2 can't be in MP4: re-encode it or choose MKV.");
    }

    void whatTheContainerCantHoldIsNotCopied()
    {
        QFETCH(QString, device);
        QFETCH(QString, video);
        QFETCH(QString, picture);
        QFETCH(QString, sound);
        QFETCH(QString, settings);
        QFETCH(QString, sentence);
        ConversionFixture fixture;
        const auto film = videoTrack(video);
        film->setProbedCodecName(picture);
        const auto audio = audioTrack(u"1"_s, sound, u"2"_s, audioSettings(settings.section(u' ', 0, 0)));
        audio->setProbedCodecName(sound);
        if (settings.contains(u' '))
            audio->setUserAudioSettingsDictionaryArray(
                audio->userAudioSettingsDictionaryArray()
                << audioSettings(settings.section(u' ', 1), u"2"_s, u"160"_s));
        const auto job = fixture.make(fixture.selection(device, {film, audio}));
        QCOMPARE(job->refusal(), sentence.isEmpty() ? QString() : sentence);
        const auto chosen = fixture.selection(device, {film, audio});
        QCOMPARE(selection::refusalToConvert(*chosen, {}), job->refusal());
    }

    void aRefusedJobRunsNothingAndEnds()
    {
        ConversionFixture fixture;
        const auto job =
            fixture.make(u"MKV"_s, {videoTrack(u"passthru"_s), subtitleTrack(u"3"_s, u"srt"_s, u"burn"_s)});
        QVERIFY(fixture.run(job));
        QVERIFY(fixture.calls().isEmpty());
        QCOMPARE(fixture.record.count(u"conversionStarted"_s), 0);
        QCOMPARE(job->outcome().verdict, steps::Verdict::Failed);
        QCOMPARE(job->outcome().sentence,
                 u"A subtitle can only be burned into a video that is re-encoded."_s);
        QCOMPARE(fixture.base.scratch.names().filter(u"a.mkv"_s), QStringList{u"a.mkv"_s});
    }
};

TESSARAY_TEST(ConversionRefusalsTest)
#include "ConversionRefusalsTest.moc"

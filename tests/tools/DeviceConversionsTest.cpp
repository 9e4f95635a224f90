// Real conversions of a film of 2560 pixels for every target, by pass-through, in one pass and in two.
#include "engines/ffmpeg/FfmpegDevices.h"
#include "selection/Targets.h"
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/engines/RealRuns.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// 2560x144, 1 s: video (0), ac3 6ch (1), aac 2ch (2), and srt (3) where the container takes it.
QString wideClip(const QString &name, const QString &video, const QString &audio, bool withText)
{
    return clip(name, [&](const QString &path) {
        const QString text = path + u".srt"_s;
        writeContent(text, "1\n00:00:00,100 --> 00:00:00,900\nHello\n\n");
        QStringList line =
            u"-nostdin -y -loglevel error -f lavfi -i testsrc2=s=2560x144:r=25:d=1 -f lavfi -i sine=d=1:r=48000"_s
                .split(u' ');
        if (withText)
            line += {u"-i"_s, text};
        line += u"-map 0 -map 1 -map 1 -c:a:0 ac3 -ac:a:0 6 -ac:a:1 2"_s.split(u' ');
        if (withText)
            line += {u"-map"_s, u"2"_s, u"-c:s"_s, u"srt"_s};
        line += {u"-c:a:1"_s, audio};
        runProgram(u"ffmpeg"_s, line + video.split(u' ') + QStringList{path});
        QFile::remove(text);
    });
}

QString wideMkvClip()
{
    return wideClip(u"wide-short.mkv"_s, u"-c:v libx264 -preset veryfast -pix_fmt yuv420p"_s, u"aac"_s, true);
}

/// What an AVI can hold as it is.
QString wideAviClip()
{
    return wideClip(u"wide-short.avi"_s, u"-c:v mpeg4 -b:v 2000k -vtag xvid"_s, u"libmp3lame"_s, false);
}

struct Expected
{
    int level;
    int width;
    QString rate;
};

Expected expectedFor(const QString &device)
{
    for (const auto *name :
         {u"iPod (All non-Touch)", u"iPhone (3 and Earlier)", u"iPod Touch (3 and Earlier)"}) {
        if (device == QStringView(name))
            return {30, 720, u"1500k"_s};
    }
    for (const auto *name :
         {u"iPad (2 and Earlier)", u"Apple TV 2", u"iPhone 4", u"iPod Touch (4 and Later)"}) {
        if (device == QStringView(name))
            return {31, 1280, u"25000k"_s};
    }
    if (device == u"Apple TV (3 and Later)"_s)
        return {40, 1920, u"20000k"_s}; // of two levels the later one wins
    for (const auto *name : {u"iPad (3 and Later)", u"iPad Mini (All)", u"iPhone (4S and Later)"}) {
        if (device == QStringView(name))
            return {41, 1920, u"20000k"_s};
    }
    if (device == u"PS3"_s || device == u"Xbox"_s)
        return {41, 2560, u"15000k"_s};
    return {0, 2560, u"25000k"_s}; // whatever the encoder finds right
}

QString extensionFor(const QString &device)
{
    if (device == u"MKV"_s)
        return u"mkv"_s;
    if (device == u"AVI"_s)
        return u"avi"_s;
    return device == u"Xbox"_s ? u"mp4"_s : u"m4v"_s;
}

QString behind(const QStringList &list, const QString &option)
{
    const auto at = list.indexOf(option);
    return at < 0 ? QString() : list.value(at + 1);
}

const QString outFolder = u"out"_s;

} // namespace

class DeviceConversionsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_runs = std::make_unique<RealRuns>();
        m_runs->base.scratch.write(outFolder + u"/x"_s, {});
        m_runs->base.setSaveFolder(m_runs->path(outFolder));
    }

    void everyTargetIsEncoded_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("passes");
        // What each device limits is the unit test's; here is that the encoder takes it.
        const QStringList devices = selection::targetNames().first(selection::targetNames().size() - 2);
        for (const QString &device : drawn(devices, 6) + QStringList{u"MKV"_s, u"AVI"_s}) {
            for (const QString &passes : drawn(QStringList{u"1"_s, u"2"_s}, 1))
                QTest::addRow("%s, %s", qPrintable(device), passes == u"1"_s ? "one pass" : "two passes")
                    << device << passes;
        }
    }

    void everyTargetIsEncoded()
    {
        QFETCH(QString, device);
        QFETCH(QString, passes);
        const auto selection = m_runs->reencoded(m_runs->film(wideMkvClip()), device, passes);
        selection->setUserVideoBitRate(u"25000"_s);
        const auto job = m_runs->convert(selection);
        QVERIFY(m_runs->run(job));
        const bool isAvi = device == u"AVI"_s;
        QVERIFY2(job->outcome().verdict == (isAvi ? steps::Verdict::Warnings : steps::Verdict::Ok),
                 qPrintable(job->outcome().sentence));
        const QString output = m_runs->path(outFolder + u"/a."_s + extensionFor(device));
        QCOMPARE(job->outputs(), QList<QUrl>{QUrl::fromLocalFile(output)});
        const Expected expected = expectedFor(device);
        const auto streams = streamsOf(output);
        QCOMPARE(streams.first().value(u"width"_s).toInt(), expected.width);
        QCOMPARE(streams.first().value(u"height"_s).toInt(),
                 expected.width == 2560 ? 144 : heightFor(expected.width));
        if (expected.level > 0)
            QCOMPARE(streams.first().value(u"level"_s).toInt(), expected.level);
        compareSound(streams);
        const QString text = isAvi ? QString() : device == u"MKV"_s ? u" subrip"_s : u" mov_text"_s;
        QCOMPARE(codecsOf(output), (isAvi ? u"mpeg4"_s : u"h264"_s) + u" aac ac3"_s + text);
        compareLists(*job, expected, passes);
    }

    void everyTargetTakesThePictureAsItIs_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("passes");
        // AVI is another film, MKV another kind of text; the devices differ in nothing that is copied.
        const QStringList devices = selection::targetNames().first(selection::targetNames().size() - 2);
        for (const QString &device : drawn(devices, 4) + QStringList{u"MKV"_s, u"AVI"_s})
            QTest::addRow("%s", qPrintable(device)) << device << u"1"_s;
        QTest::newRow("MKV, two passes asked for") << u"MKV"_s << u"2"_s;
        QTest::newRow("PS3, two passes asked for") << u"PS3"_s << u"2"_s;
    }

    void everyTargetTakesThePictureAsItIs()
    {
        QFETCH(QString, device);
        QFETCH(QString, passes);
        const bool isAvi = device == u"AVI"_s;
        const auto selection = m_runs->probed(
            isAvi ? m_runs->film(wideAviClip(), u"a.avi"_s) : m_runs->film(wideMkvClip()), device);
        selection->setUserVideoBitRate(u"25000"_s);
        selection->setUserPassNumber(passes);
        const auto job = m_runs->convert(selection);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        const QString output = m_runs->path(outFolder + u"/a."_s + extensionFor(device));
        const auto streams = streamsOf(output);
        QCOMPARE(streams.first().value(u"width"_s).toInt(), 2560);
        QCOMPARE(streams.first().value(u"height"_s).toInt(), 144);
        if (isAvi) {
            QCOMPARE(codecsOf(output), u"mpeg4 ac3 mp3"_s);
            QCOMPARE(streams.first().value(u"codec_tag_string"_s).toString(), u"xvid"_s);
        } else {
            compareSound(streams);
            QCOMPARE(codecsOf(output),
                     u"h264 aac ac3 "_s + (device == u"MKV"_s ? u"subrip"_s : u"mov_text"_s));
        }
        const auto converter = std::dynamic_pointer_cast<KXFfmpegConverter>(job->stepConverterList().first());
        const auto list = tools::textsOf(converter->optionArray1());
        for (const QString &option : {u"-level"_s, u"-vf"_s, u"-b:v"_s})
            QVERIFY(!list.contains(option));
        QCOMPARE(selection->userVideoBitRate(), u"25000"_s);
    }

    /// One AC-3 track gives two streams: the stereo AAC comes first, whatever was asked for first.
    void aTrackIsWrittenTwice()
    {
        const auto selection = m_runs->probed(m_runs->film(wideMkvClip()), u"PS3"_s);
        keepStreams(*selection, {u"0"_s, u"1"_s});
        streamOf(*selection, u"1"_s)
            ->setUserAudioSettingsDictionaryArray(
                {{{u"userCodec"_s, u"passthru"_s}, {u"userNumberOfChannels"_s, u"6"_s}},
                 {{u"userCodec"_s, u"aac"_s},
                  {u"userNumberOfChannels"_s, u"2"_s},
                  {u"userBitRate"_s, u"96"_s}}});
        const auto job = m_runs->convert(selection);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        const auto streams = streamsOf(m_runs->path(u"out/a.m4v"_s));
        QCOMPARE(codecsOf(m_runs->path(u"out/a.m4v"_s)), u"h264 aac ac3"_s);
        compareSound(streams);
        QCOMPARE(streams.at(1).value(u"sample_rate"_s).toString(), u"48000"_s);
    }

private:
    /// "trunc(ow/a/2)*2" of 2560x144, counted by hand.
    static int heightFor(int width) { return width == 720 ? 40 : width == 1280 ? 72 : 108; }

    static void compareSound(const QList<QJsonObject> &streams)
    {
        QCOMPARE(streams.at(1).value(u"channels"_s).toInt(), 2);
        QCOMPARE(streams.at(2).value(u"channels"_s).toInt(), 6);
    }

    static void compareLists(const KXConvertWithFfmpegJob &job, const Expected &expected,
                             const QString &passes)
    {
        const auto converter = std::dynamic_pointer_cast<KXFfmpegConverter>(job.stepConverterList().first());
        QCOMPARE(behind(tools::textsOf(converter->optionArray1()), u"-b:v"_s), expected.rate);
        QCOMPARE(converter->optionArray2().isEmpty(), passes == u"1"_s);
        if (passes == u"2"_s)
            QCOMPARE(behind(tools::textsOf(converter->optionArray2()), u"-b:v"_s), expected.rate);
    }

    std::unique_ptr<RealRuns> m_runs;
};

TESSARAY_TEST(DeviceConversionsTest)
#include "DeviceConversionsTest.moc"

// Subtitles that are drawn into the picture: the film is black, so what is bright was drawn.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/engines/RealRuns.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

constexpr double whileShown = 2;
constexpr double afterwards = 7;
constexpr int black = 16;
constexpr int bright = 160;

/// Black h264 (0), aac (1) and mov_text (2).
QString blackMp4()
{
    return clip(u"black-text.mp4"_s, [](const QString &path) {
        runProgram(u"ffmpeg"_s, {u"-nostdin"_s, u"-y"_s, u"-loglevel"_s, u"error"_s, u"-i"_s, blackMkv(),
                                 u"-map"_s, u"0:0"_s, u"-map"_s, u"0:1"_s, u"-map"_s, u"0:2"_s, u"-c:v"_s,
                                 u"copy"_s, u"-c:a"_s, u"copy"_s, u"-c:s"_s, u"mov_text"_s, path});
    });
}

TrackPointer externalText(const QString &path)
{
    const auto track = std::make_shared<KXVideoTrack>();
    track->setTrackType(u"Subtitle"_s);
    track->setTrackCodec(u"srt"_s);
    track->setUserCodec(u"burn"_s);
    track->setExternalTrackFlag(true);
    track->setTrackFileURL(QUrl::fromLocalFile(path));
    return track;
}

void compareDrawn(const QString &output)
{
    QVERIFY2(brightestAt(output, whileShown) > bright,
             qPrintable(QString::number(brightestAt(output, whileShown))));
    QCOMPARE(brightestAt(output, afterwards), black);
    QVERIFY(qAbs(secondsOf(output) - 8) < 0.5);
}

} // namespace

class BurningTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutBurningAllIsBlack()
    {
        RealRuns runs;
        QVERIFY(runs.run(runs.convert(runs.reencoded(runs.film(blackMkv()), u"General"_s, u"1"_s))));
        QCOMPARE(brightestAt(runs.path(u"a.m4v"_s), whileShown), black);
    }

    void subtitlesOfTheSource_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("stream");
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("passes");
        QTest::addColumn<QString>("width");
        const auto row = [](const char *name, const QString &clip, const QString &stream,
                            const QString &device, const QString &passes, const QString &width) {
            QTest::newRow(name) << clip << stream << device << passes << width;
        };
        row("srt", blackMkv(), u"2"_s, u"General"_s, u"1"_s, u"320"_s);
        row("srt, scaled", blackMkv(), u"2"_s, u"MKV"_s, u"1"_s, u"160"_s);
        row("srt, two passes", blackMkv(), u"2"_s, u"PS3"_s, u"2"_s, u"320"_s);
        row("srt, AVI", blackMkv(), u"2"_s, u"AVI"_s, u"1"_s, u"320"_s);
        row("ass", blackMkv(), u"3"_s, u"MKV"_s, u"1"_s, u"320"_s);
        row("MP4 text", blackMp4(), u"2"_s, u"General"_s, u"1"_s, u"320"_s);
        row("picture", pgsMkv(), u"2"_s, u"General"_s, u"1"_s, u"320"_s);
        row("picture, scaled", pgsMkv(), u"2"_s, u"General"_s, u"1"_s, u"160"_s);
        row("picture, two passes", pgsMkv(), u"2"_s, u"MKV"_s, u"2"_s, u"320"_s);
        row("picture, scaled, two passes", pgsMkv(), u"2"_s, u"PS3"_s, u"2"_s, u"160"_s);
    }

    void subtitlesOfTheSource()
    {
        QFETCH(QString, clip);
        QFETCH(QString, stream);
        QFETCH(QString, device);
        QFETCH(QString, passes);
        QFETCH(QString, width);
        RealRuns runs;
        const QString source = runs.film(clip, u"film."_s + QFileInfo(clip).suffix());
        runs.base.scratch.write(u"out/x"_s, {});
        runs.base.setSaveFolder(runs.path(u"out"_s));
        const auto selection = runs.reencoded(source, device, passes);
        keepStreams(*selection, {u"0"_s, u"1"_s, stream});
        streamOf(*selection, stream)->setUserCodec(u"burn"_s);
        selection->setUserWidth(width);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        const QString output = job->outputs().value(0).toLocalFile();
        compareDrawn(output);
        QCOMPARE(streamsOf(output).size(), 2); // drawn, and no stream of its own
        QCOMPARE(QString::number(streamsOf(output).first().value(u"width"_s).toInt()), width);
        QCOMPARE(QDir(runs.path(u"out"_s)).entryList(QDir::Files).size(), 2); // the output and "x"
        QCOMPARE(QFile(source).size(), QFile(clip).size());
    }

    /// Whatever the filter can't take in a name is burned from a copy.
    void filesWithHardNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"b.srt"_s;
        QTest::newRow("blank, percent, dollar, quote, unicode") << u"s 50% $x (1) \"q\" \u00fc@\u4e2d.srt"_s;
        QTest::newRow("brackets") << u"b [1080p].srt"_s;
        QTest::newRow("apostrophe") << u"it's.srt"_s;
        QTest::newRow("colon") << u"a: b.srt"_s;
        QTest::newRow("comma") << u"a, b.srt"_s;
        QTest::newRow("semicolon") << u"a;b.srt"_s;
        QTest::newRow("equals sign") << u"a=b.srt"_s;
        QTest::newRow("backslash") << u"a\\b.srt"_s;
        QTest::newRow("in the folder") << u"Films, [old]: it's/b.srt"_s;
    }

    void filesWithHardNames()
    {
        QFETCH(QString, name);
        RealRuns runs;
        const QByteArray text = contentOf(srtFile());
        const QString path = runs.base.scratch.write(name, text);
        const auto selection = runs.reencoded(runs.film(blackMkv()), u"General"_s, u"1"_s);
        keepStreams(*selection, {u"0"_s});
        selection->setTrackList(selection->trackList() << externalText(path));
        selection->setSubCount(u"1"_s);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        compareDrawn(runs.path(u"a.m4v"_s));
        QCOMPARE(contentOf(path), text);
    }

    /// A subtitle of a source with a hard name: its extraction lies beside the output.
    void aSourceWithAHardName()
    {
        RealRuns runs;
        const auto selection =
            runs.reencoded(runs.film(blackMkv(), u"it's [1080p], \"a\": b.mkv"_s), u"General"_s, u"2"_s);
        keepStreams(*selection, {u"0"_s, u"2"_s});
        streamOf(*selection, u"2"_s)->setUserCodec(u"burn"_s);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        compareDrawn(runs.path(u"it's [1080p], \"a\": b.m4v"_s));
        QCOMPARE(runs.names(),
                 QStringList({u"it's [1080p], \"a\": b.m4v"_s, u"it's [1080p], \"a\": b.mkv"_s}));
    }

    /// The cache fills, so that "Initializing Fontconfig" ends.
    void theFontCacheIsMade()
    {
        RealRuns runs;
        const QString home = runs.path(u"home"_s);
        QDir().mkpath(home);
        qputenv("HOME", home.toUtf8());
        const auto selection = runs.reencoded(runs.film(blackMkv()), u"General"_s, u"1"_s);
        keepStreams(*selection, {u"0"_s, u"2"_s});
        streamOf(*selection, u"2"_s)->setUserCodec(u"burn"_s);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        QVERIFY(!QDir(home + u"/.fontconfig"_s).isEmpty());
        QVERIFY(runs.record.named(u"monitorConversionUpdate"_s).last().object.toString().endsWith(u'%'));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
    }
};

TESSARAY_TEST(BurningTest)
#include "BurningTest.moc"

// A codec that is to be copied into a file that can't hold it is refused before anything runs, and nothing
// else is: ffmpeg itself says which.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QFile>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// A film of 2 s whose picture, or the sound beside it, has that codec.
struct Codec
{
    QString name;
    QString words;
    QString container = u"mkv"_s;
    bool isSound = false;
};

QList<Codec> allCodecs()
{
    QList<Codec> codecs;
    for (const QString &encoder : {u"mpeg4"_s, u"libx264"_s, u"wmv1"_s, u"wmv2"_s, u"h263"_s, u"flv1"_s,
                                   u"mpeg2video"_s, u"mjpeg"_s, u"msmpeg4"_s, u"msmpeg4v2"_s})
        codecs << Codec{encoder, u"-bf 0 -s 176x144 -c:v "_s + encoder};
    codecs << Codec{u"dvvideo"_s, u"-s 720x576 -pix_fmt yuv420p -c:v dvvideo"_s};
    for (const QString &encoder :
         {u"libvorbis"_s, u"libmp3lame"_s,    u"mp2"_s,       u"aac"_s,       u"ac3"_s,
          u"eac3"_s,      u"dca"_s,           u"wmav1"_s,     u"wmav2"_s,     u"flac"_s,
          u"wavpack"_s,   u"truehd"_s,        u"pcm_s16le"_s, u"pcm_s16be"_s, u"pcm_s24le"_s,
          u"pcm_s24be"_s, u"pcm_s32be"_s,     u"pcm_f32le"_s, u"pcm_u8"_s,    u"pcm_alaw"_s,
          u"pcm_mulaw"_s, u"adpcm_ima_wav"_s, u"adpcm_ms"_s,  u"adpcm_swf"_s})
        codecs << Codec{encoder, u"-ar 44100 -ac 2 -strict -2 -c:a "_s + encoder, u"mkv"_s, true};
    for (const QString &encoder : {u"pcm_s8"_s, u"pcm_f32be"_s, u"pcm_f64be"_s, u"adpcm_ima_qt"_s})
        codecs << Codec{encoder, u"-ar 44100 -ac 2 -c:a "_s + encoder, u"mov"_s, true};
    for (const auto &[name, encoder] :
         {std::pair(u"hevc"_s, u"libx265 -x265-params log-level=error"_s), std::pair(u"vp8"_s, u"libvpx"_s),
          std::pair(u"vp9"_s, u"libvpx-vp9"_s), std::pair(u"prores"_s, u"prores"_s),
          std::pair(u"theora"_s, u"libtheora"_s), std::pair(u"ffv1"_s, u"ffv1"_s)})
        codecs << Codec{name, u"-c:v "_s + encoder};
    for (const QString &encoder : {u"libopus"_s, u"alac"_s})
        codecs << Codec{encoder, u"-ar 48000 -ac 2 -c:a "_s + encoder, u"mkv"_s, true};
    return codecs;
}

QString film(const Codec &codec)
{
    return clip(u"held-%1.%2"_s.arg(codec.name, codec.container), [&](const QString &path) {
        QStringList words =
            u"-nostdin -y -v error -f lavfi -i testsrc2=size=176x144:rate=25:duration=2"_s.split(u' ');
        if (codec.isSound)
            words += u"-f lavfi -i sine=duration=2 -map 0 -map 1 -c:v mpeg4"_s.split(u' ');
        runProgram(u"ffmpeg"_s, words + codec.words.split(u' ') << path);
    });
}

int statusOf(const QStringList &words)
{
    QProcess process;
    process.start(u"ffmpeg"_s, QStringList{u"-nostdin"_s, u"-y"_s, u"-v"_s, u"error"_s} + words);
    process.waitForFinished(60000);
    return process.exitCode();
}

/// Whether ffmpeg copies it into such a file, and can play that.
bool isHeld(const QString &path, const QString &kind, const CliFixture &fixture)
{
    const QString copy = fixture.scratch().path(u"copy."_s + kind);
    QStringList words{u"-i"_s, path, u"-map"_s, u"0"_s, u"-c"_s, u"copy"_s};
    if (kind == u"avi"_s)
        words << u"-vtag"_s << u"xvid"_s;
    return statusOf(words << copy) == 0 &&
           statusOf({u"-xerror"_s, u"-i"_s, copy, u"-f"_s, u"null"_s, u"-"_s}) == 0;
}

} // namespace

class ContainerRefusalsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyWhatCantBeHeldIsRefused_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<bool>("isSound");
        QTest::addColumn<QString>("kind");
        const auto row = [](const Codec &codec, const QString &kind) {
            QTest::newRow(qPrintable(codec.name + u" into "_s + kind))
                << film(codec) << codec.isSound << kind;
        };
        QList<std::pair<Codec, QString>> others;
        for (const Codec &codec : allCodecs()) {
            for (const QString &kind : {u"mp4"_s, u"mkv"_s, u"avi"_s}) {
                if (codec.name == u"flac"_s && kind == u"mp4"_s)
                    row(codec, kind);
                else
                    others.append({codec, kind});
            }
        }
        for (const auto &[codec, kind] : drawn(others, 8))
            row(codec, kind);
    }

    void onlyWhatCantBeHeldIsRefused()
    {
        QFETCH(QString, clip);
        QFETCH(bool, isSound);
        QFETCH(QString, kind);
        CliFixture fixture;
        const QString source = fixture.clip(clip, u"film."_s + clip.section(u'.', -1));
        QStringList words{u"convert"_s, source,        u"--kind"_s,        kind,
                          u"--video"_s, u"passthru"_s, u"--newer-codecs"_s};
        if (isSound)
            words << u"--audio"_s << u"1=passthru"_s;
        const auto run = fixture.run(words);
        const bool isRefused = run.said().contains(u" can't be in "_s + kind.toUpper() + u": re-encode it"_s);
        QVERIFY2(isRefused == !isHeld(source, kind, fixture), run.error.constData());
        QCOMPARE(run.status == 0, !isRefused);
        if (!isRefused)
            return;
        QVERIFY2(run.saidOneSentence(), run.error.constData());
        QCOMPARE(run.said().contains(u"or choose MKV."_s), kind != u"mkv"_s);
        QCOMPARE(fixture.mediaNames().size(), 1);
    }

    /// Beside an AAC encoder ffmpeg may be experimental, so FLAC goes into MP4.
    void whatWorksBesideAnEncoderIsNotRefused()
    {
        CliFixture fixture;
        const Codec flac{u"flac"_s, u"-ar 44100 -ac 2 -strict -2 -c:a flac"_s, u"mkv"_s, true};
        const QString source = fixture.clip(film(flac), u"film.mkv"_s);
        const auto run = fixture.run(
            {u"convert"_s, source, u"--video"_s, u"passthru"_s, u"--audio"_s, u"1=passthru,aac:2:160"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(codecsOf(fixture.media(u"film.m4v"_s)), u"mpeg4 aac flac"_s);
    }
};

TESSARAY_TEST(ContainerRefusalsTest)
#include "ContainerRefusalsTest.moc"

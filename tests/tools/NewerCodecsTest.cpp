// Films with codecs that the vocabulary does not know: refused with the way out, and with it everything
// works.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QFile>
#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::codecsOf;

namespace {

const QString newer = u"--newer-codecs"_s;

/// 160x120, 2 s: hevc (0), opus 2ch (1), srt (2).
QString hevcMkv()
{
    return support::clip(u"hevc-opus.mkv"_s, [](const QString &path) {
        support::runProgram(
            u"ffmpeg"_s,
            u"-nostdin -y -v error -f lavfi -i testsrc2=s=160x120:r=25:d=2 -f lavfi -i sine=d=2 -i"_s.split(
                u' ') +
                QStringList{support::srtFile()} +
                u"-map 0 -map 1 -map 2 -c:v libx265 -x265-params log-level=error:keyint=10 -c:a libopus -ac 2 -c:s srt -t 2"_s
                    .split(u' ') +
                QStringList{path});
    });
}

/// One stream of a codec in a Matroska.
QString single(const QString &codec, const QString &words)
{
    return support::clip(u"newer-%1.mkv"_s.arg(codec), [&](const QString &path) {
        const bool isSound = words.contains(u"-c:a"_s);
        const QString source =
            isSound ? u"-f lavfi -i sine=d=1:r=48000"_s : u"-f lavfi -i testsrc2=s=160x120:r=25:d=1"_s;
        support::runProgram(u"ffmpeg"_s, (u"-nostdin -y -v error "_s + source).split(u' ') +
                                             words.split(u' ') + QStringList{path});
    });
}

} // namespace

class NewerCodecsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    /// The refusal is what it always was; codec and way out stand in a line after it.
    void theRefusalNamesCodecAndWayOut_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("command");
        QTest::newRow("probe") << support::vp9Mkv() << u"vp9"_s << u"probe"_s;
        QTest::newRow("convert") << support::opusMkv() << u"opus"_s << u"convert"_s;
        QTest::newRow("extract") << support::opusMkv() << u"opus"_s << u"extract"_s;
    }

    void theRefusalNamesCodecAndWayOut()
    {
        QFETCH(QString, clip);
        QFETCH(QString, codec);
        QFETCH(QString, command);
        const QString film = m_cli->clip(clip, u"film.mkv"_s);
        const auto run = m_cli->run({command, u"film.mkv"_s});
        QCOMPARE(run.status, 2);
        const QStringList lines = run.said().split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(0), film + u": track not identified"_s);
        QVERIFY2(lines.at(1).contains(codec) && lines.at(1).contains(newer), qPrintable(lines.at(1)));
        QVERIFY(QFile::exists(film + u".error.txt"_s));
    }

    void theOptionAndThePreferenceOpenThem()
    {
        m_cli->clip(hevcMkv(), u"film.mkv"_s);
        const auto byOption = m_cli->run({u"probe"_s, u"film.mkv"_s, newer, u"--json"_s});
        QVERIFY2(byOption.status == 0, byOption.error.constData());
        const QJsonArray tracks = byOption.objects().first().value(u"tracks"_s).toArray();
        QCOMPARE(tracks.size(), 3);
        QCOMPARE(tracks.at(0).toObject().value(u"trackCodec"_s).toString(), u"hevc"_s);
        QCOMPARE(tracks.at(1).toObject().value(u"trackInfo"_s).toString(), u"Audio: (opus 2ch.)"_s);
        QCOMPARE(m_cli->run({u"prefs"_s, u"set"_s, u"newerCodecsFlag"_s, u"true"_s}).status, 0);
        QCOMPARE(m_cli->run({u"probe"_s, u"film.mkv"_s}).status, 0);
    }

    void copiedIntoEachKind()
    {
        m_cli->clip(hevcMkv(), u"film.mkv"_s);
        const auto mkv = m_cli->run({u"convert"_s, u"film.mkv"_s, newer, u"--kind"_s, u"mkv"_s});
        QVERIFY2(mkv.status == 0, mkv.error.constData());
        QCOMPARE(codecsOf(m_cli->media(u"film (2).mkv"_s)), u"hevc opus subrip"_s);
        const auto mp4 = m_cli->run({u"convert"_s, u"film.mkv"_s, newer});
        QVERIFY2(mp4.status == 0, mp4.error.constData());
        QCOMPARE(codecsOf(m_cli->media(u"film.m4v"_s)), u"hevc opus mov_text"_s);
        QCOMPARE(
            support::streamsOf(m_cli->media(u"film.m4v"_s)).first().value(u"codec_tag_string"_s).toString(),
            u"hvc1"_s);
        const auto avi = m_cli->run({u"convert"_s, u"film.mkv"_s, newer, u"--kind"_s, u"avi"_s});
        QCOMPARE(avi.status, 2);
        QVERIFY(avi.said().contains(u"HEVC can't be in AVI: re-encode it or choose MKV."_s));
    }

    void reencodedForADevice()
    {
        m_cli->clip(hevcMkv(), u"film.mkv"_s);
        const auto run = m_cli->run(
            {u"convert"_s, u"film.mkv"_s, newer, u"--device"_s, u"PS3"_s, u"--auto"_s, u"speed"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(codecsOf(m_cli->media(u"film.m4v"_s)), u"h264 aac mov_text"_s);
    }

    void extractedInFormsOfTheirOwn_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("extension");
        struct Form
        {
            const char *codec;
            const char *words;
            const char *extension;
        };
        const QList<Form> forms{{"hevc", "-c:v libx265 -x265-params log-level=error", "hevc"},
                                {"vp8", "-c:v libvpx -b:v 200k", "ivf"},
                                {"vp9", "-c:v libvpx-vp9 -deadline realtime -cpu-used 8", "ivf"},
                                {"prores", "-c:v prores", "mov"},
                                {"theora", "-c:v libtheora", "ogv"},
                                {"ffv1", "-c:v ffv1", "mkv"},
                                {"opus", "-c:a libopus", "opus"},
                                {"alac", "-c:a alac", "m4a"}};
        for (const Form &form : support::drawn(forms, 4))
            QTest::newRow(form.codec)
                << single(QString::fromLatin1(form.codec), QString::fromLatin1(form.words))
                << QString::fromLatin1(form.codec) << QString::fromLatin1(form.extension);
    }

    void extractedInFormsOfTheirOwn()
    {
        QFETCH(QString, clip);
        QFETCH(QString, codec);
        QFETCH(QString, extension);
        m_cli->clip(clip, u"film.mkv"_s);
        const auto run = m_cli->run({u"extract"_s, u"film.mkv"_s, newer});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(codecsOf(m_cli->media(u"film.mkv.stream0."_s + extension)), codec);
    }

    void editedAsAnyOther()
    {
        m_cli->clip(hevcMkv(), u"a.mkv"_s);
        m_cli->clip(hevcMkv(), u"b.mkv"_s);
        const auto join = m_cli->run({u"join"_s, u"a.mkv"_s, u"b.mkv"_s, newer});
        QVERIFY2(join.status == 0, join.error.constData());
        const double one = support::secondsOf(m_cli->media(u"a.mkv"_s));
        QVERIFY(qAbs(support::secondsOf(m_cli->media(u"a.mkv.joined.mkv"_s)) - 2 * one) < 0.3);
        const auto removal = m_cli->run({u"remove"_s, u"a.mkv"_s, u"--tracks"_s, u"2"_s, newer});
        QVERIFY2(removal.status == 0, removal.error.constData());
        QCOMPARE(codecsOf(m_cli->media(u"a.removed.mkv"_s)), u"hevc opus"_s);
    }

    void addedAsATrack()
    {
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        m_cli->clip(single(u"opus"_s, u"-c:a libopus"_s), u"sound.mka"_s);
        const QStringList words{u"convert"_s,   u"film.mkv"_s, u"--add"_s,
                                u"sound.mka"_s, u"--kind"_s,   u"mkv"_s};
        const auto refused = m_cli->run(words);
        QCOMPARE(refused.status, 2);
        QVERIFY(refused.said().contains(u"sound.mka can't be added: track not identified"_s));
        QVERIFY(refused.said().contains(newer));
        const auto run = m_cli->run(words + QStringList{newer});
        QVERIFY2(run.status == 0, run.error.constData());
        QVERIFY(codecsOf(m_cli->media(u"film (2).mkv"_s)).contains(u"opus"_s));
    }

private:
    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(NewerCodecsTest)
#include "NewerCodecsTest.moc"

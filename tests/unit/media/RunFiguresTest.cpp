#include "media/RunFigures.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using media::runFiguresFrom;

namespace {

/// The end of a run of ffmpeg 5.1 at "-v verbose", as it was printed.
const QString verboseEnd =
    u"frame= 1501 fps=543 q=-1.0 Lsize=    6107kB time=00:01:00.03 bitrate= 833.4kbits/s dup=1 drop=0 "
    u"speed=21.7x    \n"
    "video:5114kB audio:938kB subtitle:0kB other streams:0kB global headers:0kB muxing overhead: 0.924870%\n"
    "Input file #0 (am.mkv):\n"
    "  Input stream #0:0 (video): 1500 packets read (2146365 bytes); 1500 frames decoded; \n"
    "  Input stream #0:1 (audio): 2814 packets read (960334 bytes); 2814 frames decoded (2881536 samples); \n"
    "  Input stream #0:2 (subtitle): 0 packets read (0 bytes); \n"
    "  Total: 4314 packets (3106699 bytes) demuxed\n"
    "Output file #0 (v.mp4):\n"
    "  Output stream #0:0 (video): 1501 frames encoded; 1501 packets muxed (5236277 bytes); \n"
    "  Output stream #0:1 (audio): 2814 frames encoded (2881536 samples); 2815 packets muxed (960485 bytes); "
    "\n"
    "  Total: 4316 packets (6196762 bytes) muxed\n"_s;

} // namespace

class RunFiguresTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void packetsAreRead()
    {
        const media::RunFigures figures = runFiguresFrom(verboseEnd);
        QCOMPARE(figures.read.size(), 3);
        QCOMPARE(figures.read.value({0, 0}).packets, 1500);
        QCOMPARE(figures.read.value({0, 1}).packets, 2814);
        QCOMPARE(figures.read.value({0, 1}).bytes, 960334);
        QCOMPARE(figures.read.value({0, 2}).packets, 0);
        QCOMPARE(figures.muxed.size(), 2);
        QCOMPARE(figures.muxed.value({0, 0}).packets, 1501);
        QCOMPARE(figures.muxed.value({0, 1}).packets, 2815);
        QCOMPARE(figures.muxed.value({0, 1}).bytes, 960485);
        QVERIFY(figures.damage.isNull());
    }

    /// A title stands in front of the figures, and begins wherever it likes.
    void titlesAreNoFigures()
    {
        const QString title = u"Input #0, matroska, from 'a.mkv':\n  Metadata:\n    title           : x\n"
                              "  Input stream #0:0 (video): 7 packets read (9 bytes); \n"
                              "    comment         : File ended prematurely\n"_s;
        QVERIFY(runFiguresFrom(title).read.isEmpty());
        QVERIFY(runFiguresFrom(title).damage.isNull());
        QCOMPARE(runFiguresFrom(title + verboseEnd).read.value({0, 0}).packets, 1500);
    }

    void namesAreNoDamage_data()
    {
        QTest::addColumn<QString>("line");
        const auto row = [](const char *line) { QTest::newRow(line) << QString::fromUtf8(line); };
        row("/usr/bin/ffmpeg -i \"a partial file.srt\" -c copy out.mkv");
        row("'/films/partial file.mkv': Using the demultiplexer for the format 'Matroska'.");
        row("The file '/films/it's a partial file.mkv' has been opened for writing.");
        row("Warning: '/films/it's a partial file.mkv' track 0: The track has no duration.");
        row("[AVIOContext @ 0x55] Opening 'partial file.mkv' for reading");
        row("partial file.srt':"); // of a name of several lines
    }

    void namesAreNoDamage()
    {
        QFETCH(QString, line);
        QCOMPARE(runFiguresFrom(u"first\n"_s + line + u"\nlast\n"_s).damage, QString());
    }

    /// What is not known is taken for an error where its words say so, but only from ffmpeg's parts.
    void errorsThatAreNotKnownAreTold_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("complaint");
        const auto row = [](const char *line, const char *complaint) {
            QTest::newRow(line) << QString::fromUtf8(line) << QString::fromUtf8(complaint);
        };
        row("[mp3float @ 0x55] Header missing", "Header missing");
        row("[ass @ 0x55] Could not do that.", "Could not do that.");
        row("[mux @ 0x55] [part @ 0x56] Failed to do it", "Failed to do it");
        row("[mp4 @ 0x56] Application provided invalid, non monotonically increasing dts to muxer", "");
        row("[mp3 @ 0x55] Estimating duration from bitrate, this may be inaccurate", "");
        row("[asf @ 0x55] parser not found for codec wmav2, packets or times may be invalid.", "");
        row("[libx264 @ 0x55] Error: 2pass curve failed to converge", "");
        row("[h264 @ 0x55] Reinit context to 160x128, pix_fmt: yuv420p", "");
        row("[AVIOContext @ 0x55] Opening 'an error.mkv' for reading", "");
        row("    title           : [x @ 0x5] error", "");
        row("an error.mkv: was opened", "");
        row("[avi @ 0x5581] Packet corrupt (stream = 0, dts = 1819).", ""); // is damage
    }

    void errorsThatAreNotKnownAreTold()
    {
        QFETCH(QString, line);
        QFETCH(QString, complaint);
        QCOMPARE(runFiguresFrom(u"first\r"_s + line + u"\nlast\n"_s).complaint,
                 complaint.isEmpty() ? QString() : complaint);
    }

    void damageIsTold_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("isDamage");
        const auto row = [](const char *line, bool isDamage) {
            QTest::newRow(line) << QString::fromUtf8(line) << isDamage;
        };
        row("[matroska,webm @ 0x55] File ended prematurely at pos. 1883244 (0x1cbc6c)", true);
        row("[mov,mp4,m4a,3gp,3g2,mj2 @ 0x56] stream 1, offset 0x1d0fd8: partial file", true);
        row("[avi @ 0x5581] Packet corrupt (stream = 0, dts = 1819).", true);
        row("[matroska,webm @ 0x56] Element at 0x9c4 ending at 0x3fe exceeds containing master element",
            true);
        row("[matroska,webm @ 0x56] 0x00 at pos 2500 (0x9c4) invalid as first byte of an EBML number", true);
        row("[h264 @ 0x55] concealing 213 DC, 213 AC, 213 MV errors in P frame", true);
        row("Error while decoding stream #0:1: Invalid data found when processing input", true);
        row("Warning: 'a.mkv': Error in the Matroska file structure at position 1234.", true);
        row("/films/a.ts: corrupt input packet in stream 0", true);
        row("/films/a.ts: corrupt decoded frame in stream 1", true);
        row("[mp4 @ 0x56] Application provided invalid, non monotonically increasing dts to muxer", false);
        row("[matroska @ 0x5] Timestamps are unset in a packet for stream 0.", false);
        row("[mp3 @ 0x55] Estimating duration from bitrate, this may be inaccurate", false);
        row("frame= 1501 fps=543 q=-1.0 Lsize=    6107kB time=00:01:00.03 bitrate= 833.4kbits/s", false);
    }

    void damageIsTold()
    {
        QFETCH(QString, line);
        QFETCH(bool, isDamage);
        const media::RunFigures figures = runFiguresFrom(u"first\r"_s + line + u"\nlast\n"_s);
        QCOMPARE(figures.damage, isDamage ? line.section(u"] "_s, -1) : QString());
    }

    void theFirstDamageIsTold()
    {
        QCOMPARE(runFiguresFrom(u"[a @ 0x0] Packet corrupt (1)\n[a @ 0x0] Packet corrupt (2)\n"_s).damage,
                 u"Packet corrupt (1)"_s);
    }
};

TESSARAY_TEST(RunFiguresTest)
#include "RunFiguresTest.moc"

// What is told of a tool that failed, by its own lines.
#include "steps/FailureCause.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using steps::FailureCause;

namespace {

const QUrl source = QUrl::fromLocalFile(u"/v/a.mkv"_s);
const QUrl output = QUrl::fromLocalFile(u"/v/s/a.m4v"_s);

FailureCause causeIn(const QString &log)
{
    return FailureCause(log, {source}, output);
}

} // namespace

class FailureCauseTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatLiesInTheMachineMayPass_data()
    {
        QTest::addColumn<QString>("sentence");
        QTest::addColumn<bool>("mayPass");
        QTest::newRow("full") << FailureCause::noRoomFor(output) << true;
        QTest::newRow("full, no output") << FailureCause::noRoomFor({}) << true;
        QTest::newRow("full, mkvmerge")
            << u"The output could not be written: the volume may be full."_s << true;
        QTest::newRow("read-only") << u"/v/s/a.m4v: Read-only file system"_s << true;
        QTest::newRow("no rights") << u"/v/s/a.m4v: Permission denied"_s << true;
        QTest::newRow("no tool") << u"ffmpeg could not be started."_s << true;
        QTest::newRow("no index") << u"The file has no index: it is incomplete."_s << false;
        QTest::newRow("a codec") << steps::notInContainer(u"FLAC"_s, u"MP4"_s) << false;
        QTest::newRow("nothing said") << QString() << false;
    }

    void whatLiesInTheMachineMayPass()
    {
        QFETCH(QString, sentence);
        QTEST(FailureCause::mayPass(sentence), "mayPass");
    }

    /// The lines as the installed tools print them.
    void theLineThatNamesTheCauseIsTold_data()
    {
        QTest::addColumn<QString>("log");
        QTest::addColumn<QString>("sentence");
        const auto row = [](const char *name, const char *log, const char *sentence) {
            QTest::newRow(name) << QString::fromUtf8(log) << QString::fromUtf8(sentence);
        };
        row("no index",
            "[mov,mp4,m4a,3gp,3g2,mj2 @ 0x55d6b8d7e8c0] moov atom not found\n"
            "/v/a.mkv: Invalid data found when processing input\n",
            "The file has no index: it is incomplete.");
        row("no index, mkvmerge",
            "'/v/a.mkv': Using the demultiplexer for the format 'QuickTime/MP4'.\n"
            "Error: Quicktime/MP4 reader: Have not found any header atoms.\n",
            "The file has no index: it is incomplete.");
        row("FLAC into MP4",
            "[mp4 @ 0x5617587bf0c0] track 1: codec frame size is not set\n"
            "[mp4 @ 0x5617587bf0c0] flac in MP4 support is experimental, add '-strict -2' if you want to use "
            "it.\n"
            "Could not write header for output file #0 (incorrect codec parameters ?): Experimental feature\n"
            "Error initializing output stream 0:1 -- \n",
            "FLAC can't be in MP4: re-encode it or choose MKV.");
        row("PCM into MP4",
            "[mp4 @ 0x1] Could not find tag for codec pcm_s16le in stream #1, codec not currently supported "
            "in "
            "container\n",
            "PCM_S16LE can't be in MP4: re-encode it or choose MKV.");
        row("MP4 text into MKV",
            "[matroska @ 0x5581b8b6c640] Subtitle codec 94213 is not supported.\n"
            "Could not write header for output file #0 (incorrect codec parameters ?): Function not "
            "implemented\n",
            "MOV_TEXT can't be copied into MKV.");
        row("no times",
            "[matroska @ 0x1] Timestamps are unset in a packet for stream 0. This is deprecated and will "
            "stop "
            "working in the future. Fix your code to set the timestamps properly\n"
            "[matroska @ 0x1] Can't write packet with unknown timestamp\n"
            "av_interleaved_write_frame(): Invalid argument\nConversion failed!\n",
            "The frames have no times.");
        row("AVI tag",
            "[avi @ 0x559adbc4c280] Tag xvid incompatible with output codec id '27' (H264)\n"
            "Could not write header for output file #0 (incorrect codec parameters ?): Invalid data found "
            "when "
            "processing input\n",
            "Tag xvid incompatible with output codec id '27' (H264)");
        row("encoder missing", "Unknown encoder 'libnosuch'\n", "Unknown encoder 'libnosuch'");
        row("six channels",
            "[ac3 @ 0x1] Estimating duration from bitrate, this may be inaccurate\n"
            "[libmp3lame @ 0x1] Specified channel layout '5.1' is not supported\n"
            "Error initializing output stream 0:1 -- Error while opening encoder for output stream #0:1 - "
            "maybe "
            "incorrect parameters such as bit_rate, rate, width or height\nConversion failed!\n",
            "Specified channel layout '5.1' is not supported");
        row("bit rate 0, two passes",
            "[libx264 @ 0x55b227fbd4c0] CRF/CQP is incompatible with 2pass.\n"
            "Error initializing output stream 0:0 -- Error while opening encoder\n",
            "CRF/CQP is incompatible with 2pass.");
        row("filter with copy",
            "Filtergraph 'scale=80:60' was defined for video output stream 0:0 but codec copy was selected.\n"
            "Filtering and streamcopy cannot be used together.\n",
            "Filtergraph 'scale=80:60' was defined for video output stream 0:0 but codec copy was selected.");
        row("subtitle missing",
            "[Parsed_subtitles_0 @ 0x1] libass API version: 0x1701000\n"
            "[Parsed_subtitles_0 @ 0x1] Unable to open fl/nosuch.srt\n"
            "[AVFilterGraph @ 0x1] Error initializing filter 'subtitles' with args 'fl/nosuch.srt'\n"
            "Error reinitializing filters!\nFailed to inject frame into filter network: No such file or "
            "directory\nError while processing the decoded data for stream #0:0\nConversion failed!\n",
            "Unable to open fl/nosuch.srt");
        row("no UTF-8",
            "[srt @ 0x1] Invalid UTF-8 in decoded subtitles text; maybe missing -sub_charenc option\n"
            "Error while decoding stream #1:0: Invalid data found when processing input\nConversion "
            "failed!\n",
            "Invalid UTF-8 in decoded subtitles text; maybe missing -sub_charenc option");
        row("full disk",
            "frame=  200 time=00:00:07.96 bitrate=1 speed=1x    \n"
            "Error writing trailer of /v/s/a.m4v: No space left on device\n",
            "There is no room left in /v/s.");
        row("full disk, mkvmerge",
            "The cue entries (the index) are being written...\nError: An exception occurred when writing the "
            "destination file. The drive may be full. Exception details: reading from/writing to the file "
            "error; "
            "No space left to write to\n",
            "There is no room left in /v/s.");
        row("full disk, mkvextract",
            "Extracting track 0 with the CodecID 'Error: no' to the file '/v/s/a.m4v'. Container format: x\n"
            "terminate called after throwing an instance of 'mtx::mm_io::read_write_x'\n",
            "The output could not be written: the volume may be full.");
        row("folder gone", "/v/s/a.m4v: No such file or directory\n", "a.m4v: No such file or directory");
        row("folder gone, mkvmerge",
            "Error: The file '/v/s/a.m4v' could not be opened for writing: create_directory() failed.\n",
            "Error: The file 'a.m4v' could not be opened for writing: create_directory() failed.");
        row("formats differ",
            "No append mapping was given for the file no. 1 ('/v/a.mkv'). Please keep that in mind if "
            "mkvmerge "
            "aborts with an error message regarding invalid '--append-to' options.\n"
            "Error: The track number 1 from the file '/v/a.mkv' cannot be appended to the track number 1 "
            "from "
            "the file '/v/a.mkv'. The formats do not match.\n",
            "Error: The track number 1 from the file 'a.mkv' cannot be appended to the track number 1 from "
            "the "
            "file 'a.mkv'. The formats do not match.");
        row("no film",
            "[matroska,webm @ 0x1] Format matroska,webm detected only with low score of 1, misdetection "
            "possible!\n"
            "[matroska,webm @ 0x1] EBML header parsing failed\n"
            "/v/a.mkv: Invalid data found when processing input\n",
            "a.mkv: Invalid data found when processing input");
        row("no film, mkvmerge",
            "mkvmerge v74.0.0\nError: The type of file '/v/a.mkv' could not be recognized.\n",
            "Error: The type of file 'a.mkv' could not be recognized.");
        row("MP4Box with colours",
            "\x1b[32mAppending: |==  | (10/100)\r\x1b[0m\x1b[31m[IsoMedia] Error appending /v/a.mkv: Bad "
            "Parameter\x1b[0m\n\x1b[0m\n",
            "[IsoMedia] Error appending a.mkv: Bad Parameter");
        row("an error of no known kind", "Here we go\n[x265 @ 0x1f] cannot open that\nlater: failed too\n",
            "cannot open that");
        row("a header of no known kind",
            "Could not write header for output file #0 (incorrect codec parameters ?): Operation not "
            "permitted\n"
            "Error initializing output stream 0:1 -- \nConversion failed!\n",
            "Could not write header for output file #0 (incorrect codec parameters ?): Operation not "
            "permitted");
        row("only consequences", "Conversion failed!\n", "");
        row("a last word", "What it did\nExiting normally, received signal 15.\n", "What it did");
        row("nothing", "", "");
    }

    void theLineThatNamesTheCauseIsTold()
    {
        QFETCH(QString, log);
        QTEST(causeIn(log).sentence(), "sentence");
    }

    /// What the file says of itself, and what files are called, name no cause.
    void textsAndNamesNeverCount_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("log");
        const QString error = u"\n[x @ 0x1] Unknown encoder 'z'\n"_s;
        QTest::newRow("title") << u"/v/a.mkv"_s
                               << u"  Metadata:\n    title   : moov atom not found\n"_s + error;
        QTest::newRow("name") << u"/v/moov atom not found"_s
                              << u"[mov @ 0x1] Opening '/v/moov atom not found' for reading"_s + error;
        QTest::newRow("error in a name") << u"/v/Error: no such"_s << u"about /v/Error: no such"_s + error;
        QTest::newRow("a codec's own name")
            << u"/v/a.mkv"_s
            << u"Extracting track 0 with the CodecID 'No space left' to the file 'x': cannot, error"_s +
                   error;
    }

    void textsAndNamesNeverCount()
    {
        QFETCH(QString, name);
        QFETCH(QString, log);
        const FailureCause cause(log, {QUrl::fromLocalFile(name)}, output);
        QCOMPARE(cause.sentence(), u"Unknown encoder 'z'"_s);
    }

    void warningsOfMkvmerge_data()
    {
        QTest::addColumn<QString>("log");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("cut") << u"Progress: 1%\nWarning: Quicktime/MP4 reader: Could not read chunk number "
                                "223/376 with size 175 from position 217602. Aborting.\n"_s
                             << u"The source ends early."_s;
        const QString before =
            u"Warning: /v/a.mkv: Error in the Matroska file structure at position 225247. "
            "Resyncing to the next level 1 element.\nWarning: The last timestamp processed "
            "before the error was encountered was 00:00:57.260000000.\n"_s;
        QTest::newRow("damaged")
            << before + u"Warning: The first timestamp after the resync is 00:01:02.020000000.\n"_s
            << u"The source is damaged from 0:57 to 1:02."_s;
        QTest::newRow("damaged to the end") << before << u"The source is damaged from 0:57 on."_s;
        QTest::newRow("hours") << QString(before).replace(u"00:00:57"_s, u"01:00:57"_s)
                               << u"The source is damaged from 01:00:57 on."_s;
        QTest::newRow("another") << u"Warning: '/v/a.mkv' differs.\n"_s << u"Warning: 'a.mkv' differs."_s;
    }

    void warningsOfMkvmerge()
    {
        QFETCH(QString, log);
        QTEST(causeIn(log).warning(), "sentence");
    }
};

TESSARAY_TEST(FailureCauseTest)
#include "FailureCauseTest.moc"

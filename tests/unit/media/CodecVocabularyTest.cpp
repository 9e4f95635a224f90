#include "media/CodecVocabulary.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using media::CodecVocabulary;
using media::TrackKind;

Q_DECLARE_METATYPE(media::TrackKind)

namespace {

struct Name
{
    const char *name;
    const char *codec; ///< empty: not identified
    const char *extension;
};

/// Every match word as a name, then names that ffprobe gives.
const Name videoNames[] = {
    {"xvid", "mpeg4", "avi"},
    {"dx50", "mpeg4", "avi"},
    {"div3", "mpeg4", "avi"},
    {"divx", "mpeg4", "avi"},
    {"div2", "mpeg4", "avi"},
    {"mpeg4", "mpeg4", "avi"},
    {"mpeg-4", "mpeg4", "avi"},
    {"avc", "h264", "h264"},
    {"h264", "h264", "h264"},
    {"real", "rm", "rm"},
    {"wmv", "wmv", "wmv"},
    {"sorenson", "h263", "h263"},
    {"h263", "h263", "h263"},
    {"flv", "h263", "h263"},
    {"V_MS", "vc1", "wmv"},
    {"VFW", "vc1", "wmv"},
    {"vfw", "vc1", "wmv"}, // in two groups: the later one wins
    {"VC-1", "vc1", "wmv"},
    {"WVC1", "vc1", "wmv"},
    {"MPEG2", "mpeg2", "mpg"},
    {"MPEG-2", "mpeg2", "mpg"},
    {"mjpeg", "mjpeg", "mjpeg"},
    {"dvvideo", "dv", "dv"},
    {"mpeg2video", "mpeg2", "mpg"},
    {"msmpeg4v3", "mpeg4", "avi"},
    {"vc1", "vc1", "wmv"}, // the word "WVC1" contains it
    {"wmv3", "wmv", "wmv"},
    {"flv1", "h263", "h263"},
    {"H264", "h264", "h264"},
    {"jpeg", "mjpeg", "mjpeg"}, // the word "mjpeg" contains it
    {"mpeg1video", "", ""},
    {"hevc", "", ""},
    {"vp8", "", ""},
    {"vp9", "", ""},
    {"av1", "", ""},
    {"png", "", ""},
    {"gif", "", ""},
    {"tiff", "", ""},
    {"jpg", "", ""},
};

const Name audioNames[] = {
    {"vorbis", "ogg", "ogg"},
    {"ogg", "ogg", "ogg"},
    {"mp3", "mp3", "mp3"},
    {"mpeg3", "mp3", "mp3"},
    {"mpeg/l3", "mp3", "mp3"},
    {"mpeg-1 Audio layer 3", "mp3", "mp3"},
    {"MPEG-1/2 L3", "mp3", "mp3"},
    {"mpeg-2 Audio layer 3", "mp3", "mp3"},
    {"Audio layer 3", "mp3", "mp3"},
    {"MPA2L3", "mp3", "mp3"},
    {"mp2", "mp2", "mp2"},
    {"mpeg2", "mp2", "mp2"},
    {"mpeg/l2", "mp2", "mp2"},
    {"mpeg-1 Audio layer 2", "mp2", "mp2"},
    {"MPEG-1/2 L2", "mp2", "mp2"},
    {"mpeg-2 Audio layer 2", "mp2", "mp2"},
    {"Audio layer 2", "mp2", "mp2"},
    {"MPA2L2", "mp2", "mp2"},
    {"aac", "aac", "aac"},
    {"mpeg4", "aac", "aac"},
    {"ac3", "ac3", "ac3"},
    {"ac-3", "ac3", "ac3"},
    {"pcm", "wav", "wav"},
    {"dts", "dtshd", "dtshd"}, // contained in the words of a later group
    {"dca", "dts", "dts"},
    {"wma", "wma", "wma"},
    {"flac", "flac", "flac"},
    {"Wavpack", "Wavpack", "wv"},
    {"truehd", "truehd", "thd"},
    {"true", "truehd", "thd"},
    {"dtshd", "dtshd", "dtshd"},
    {"dts-hd", "dtshd", "dtshd"},
    {"eac3", "ac3", "ac3"},
    {"pcm_s16le", "wav", "wav"},
    {"wmav2", "wma", "wma"},
    {"wavpack", "Wavpack", "wv"},
    {"aac_latm", "aac", "aac"},
    {"ac3,", "ac3", "ac3"},
    {"opus", "", ""},
    {"alac", "", ""},
    {"mlp", "", ""},
};

const Name subtitleNames[] = {
    {"ssa", "ssa", "ssa"},
    {"ass", "ass", "ass"},
    {"utf8", "srt", "srt"},
    {"utf-8", "srt", "srt"},
    {"subrip", "srt", "srt"},
    {"VobSub", "vobsub", "idx"},
    {"S_VOBSUB", "vobsub", "idx"},
    {"dvd_subtitle", "teletext", "xxx"},
    {"dvdsub", "vobsub", "idx"},
    {"MicroDVD", "sub", "sub"},
    {"S_HDMV", "pgs", "sup"},
    {"PGS", "pgs", "sup"},
    {"tx3g", "ttxt", "ttxt"},
    {"timed", "ttxt", "ttxt"},
    {"3gpp", "ttxt", "ttxt"},
    {"mov_text", "ttxt", "ttxt"},
    {"dvb_teletext", "teletext", "xxx"},
    {"subtitle", "dvbsub", "yyy"}, // the word "dvb_subtitle" contains it
    {"dvb_subtitle", "dvbsub", "yyy"},
    {"dvbsub", "dvbsub", "yyy"},
    {"hdmv_pgs_subtitle", "teletext", "xxx"},
    {"webvtt", "", ""},
    {"eia_608", "", ""},
};

template <typename Names>
void addRows(TrackKind kind, const char *kindName, const Names &names)
{
    for (const Name &row : names)
        QTest::addRow("%s %s", kindName, row.name)
            << kind << QString::fromLatin1(row.name) << QString::fromLatin1(row.codec)
            << QString::fromLatin1(row.extension);
}

/// Whether some row of the table above has the word as its name.
template <typename Names>
bool isCovered(const QString &word, const Names &names)
{
    return std::any_of(std::begin(names), std::end(names),
                       [&](const Name &row) { return QString::fromLatin1(row.name) == word; });
}

} // namespace

class CodecVocabularyTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classifies_data()
    {
        QTest::addColumn<media::TrackKind>("kind");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("extension");
        addRows(TrackKind::Video, "video", videoNames);
        addRows(TrackKind::Audio, "audio", audioNames);
        addRows(TrackKind::Subtitle, "subtitle", subtitleNames);
    }

    void classifies()
    {
        QFETCH(media::TrackKind, kind);
        QFETCH(QString, name);
        QFETCH(QString, codec);
        QFETCH(QString, extension);
        const auto match = CodecVocabulary::of(kind).classify(name);
        QCOMPARE(match.has_value(), !codec.isEmpty());
        if (match) {
            QCOMPARE(match->codec, codec);
            QCOMPARE(match->extension, extension);
        }
    }

    void theRowsAboveNameEveryWord()
    {
        for (const QStringList &group : CodecVocabulary::of(TrackKind::Video).codecList()) {
            for (const QString &word : group)
                QVERIFY2(isCovered(word, videoNames), qPrintable(word));
        }
        for (const QStringList &group : CodecVocabulary::of(TrackKind::Audio).codecList()) {
            for (const QString &word : group)
                QVERIFY2(isCovered(word, audioNames), qPrintable(word));
        }
        for (const QStringList &group : CodecVocabulary::of(TrackKind::Subtitle).codecList()) {
            for (const QString &word : group)
                QVERIFY2(isCovered(word, subtitleNames), qPrintable(word));
        }
    }

    void newerCodecsByTheirWholeNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<TrackKind>("kind");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("extension");
        const auto row = [](const char *name, TrackKind kind, const char *extension) {
            const QString text = QString::fromLatin1(name);
            QTest::newRow(name) << text << kind << text.toLower() << QString::fromLatin1(extension);
        };
        row("hevc", TrackKind::Video, "hevc");
        row("av1", TrackKind::Video, "ivf");
        row("vp8", TrackKind::Video, "ivf");
        row("VP9", TrackKind::Video, "ivf");
        row("prores", TrackKind::Video, "mov");
        row("theora", TrackKind::Video, "ogv");
        row("ffv1", TrackKind::Video, "mkv");
        row("hevcx", TrackKind::Video, "mkv"); // another name, though it holds one
        row("opus", TrackKind::Audio, "opus");
        row("alac", TrackKind::Audio, "m4a");
        row("amr_nb", TrackKind::Audio, "amr");
        row("cook", TrackKind::Audio, "mka");
        row("webvtt", TrackKind::Subtitle, "mkv");
    }

    void newerCodecsByTheirWholeNames()
    {
        QFETCH(QString, name);
        QFETCH(TrackKind, kind);
        QVERIFY(!CodecVocabulary::of(kind).classify(name)); // the first one is asked first
        const auto match = CodecVocabulary::classifyNewer(kind, name);
        QVERIFY(match.has_value());
        QTEST(match->codec, "codec");
        QTEST(match->extension, "extension");
    }

    void anEmptyNameIsNoCodec()
    {
        QVERIFY(!CodecVocabulary::of(TrackKind::Video).classify({}));
        QVERIFY(!CodecVocabulary::of(TrackKind::Video).classify(u""_s));
        QVERIFY(!CodecVocabulary::classifyNewer(TrackKind::Video, u""_s));
    }

    void keepsItsTablesInOrder()
    {
        const auto words = [](const char *text) { return QString::fromLatin1(text).split(u' '); };
        const CodecVocabulary &video = CodecVocabulary::of(TrackKind::Video);
        QCOMPARE(video.infoList(), words("mpeg4 h264 rm wmv h263 vc1 mpeg2 mjpeg dv"));
        QCOMPARE(video.extensionList(), words("avi h264 rm wmv h263 wmv mpg mjpeg dv"));
        QCOMPARE(video.codecList().at(0), words("xvid dx50 div3 divx div2 div3 vfw mpeg4 mpeg-4"));
        QCOMPARE(video.codecList().at(5), words("V_MS VFW VC-1 WVC1"));
        const CodecVocabulary &audio = CodecVocabulary::of(TrackKind::Audio);
        QCOMPARE(audio.infoList(), words("ogg mp3 mp2 aac ac3 wav dts wma flac Wavpack truehd dtshd"));
        QCOMPARE(audio.extensionList(), words("ogg mp3 mp2 aac ac3 wav dts wma flac wv thd dtshd"));
        const CodecVocabulary &subtitle = CodecVocabulary::of(TrackKind::Subtitle);
        QCOMPARE(subtitle.infoList(), words("ssa ass srt vobsub sub pgs ttxt teletext dvbsub"));
        QCOMPARE(subtitle.extensionList(), words("ssa ass srt idx sub sup ttxt xxx yyy"));
    }

    void isOneTableAKind()
    {
        QCOMPARE(&CodecVocabulary::of(TrackKind::Audio), &CodecVocabulary::of(TrackKind::Audio));
    }
};

TESSARAY_TEST(CodecVocabularyTest)
#include "CodecVocabularyTest.moc"

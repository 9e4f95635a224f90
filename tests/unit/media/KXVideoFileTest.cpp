#include "media/KXVideoFile.h"

#include "support/FakePlaces.h"
#include "support/FakeTool.h"
#include "support/ProbeJson.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMetaProperty>
#include <QTest>
#include <QTimer>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using support::FakeTool;
using support::probeJson;

namespace {

struct Field
{
    QString name;
    QVariant initial;
};

/// Every field that a reset sets, in its declared order.
QList<Field> fields()
{
    const QString none = u"none"_s;
    const QString zero = u"0"_s;
    return {{u"theFilePath"_s, none},
            {u"theFileURL"_s, QUrl()},
            {u"theFileName"_s, none},
            {u"theFileExtension"_s, none},
            {u"theFileShortName"_s, none},
            {u"pathToFileFolder"_s, none},
            {u"addedFilePath"_s, none},
            {u"addedFileName"_s, none},
            {u"addedFileExtension"_s, none},
            {u"addedPathToFileFolder"_s, none},
            {u"trackList"_s, QVariant::fromValue(TrackList())},
            {u"theNumberOfVideoTracks"_s, zero},
            {u"theNumberOfAudioTracks"_s, zero},
            {u"theNumberOfSubTracks"_s, zero},
            {u"isVideoFile"_s, false},
            {u"theDuration"_s, zero},
            {u"theFPS"_s, zero},
            {u"videoPAR"_s, zero},
            {u"theWidth"_s, zero},
            {u"theHeight"_s, zero},
            {u"codecProfile"_s, none},
            {u"theVideoBitRate"_s, zero},
            {u"theVideoCodec"_s, none},
            {u"headerRemovalFlag"_s, false}};
}

QVariant anotherValue(const Field &field)
{
    switch (field.initial.typeId()) {
    case QMetaType::Bool:
        return true;
    case QMetaType::QString:
        return u"new "_s + field.name;
    case QMetaType::QUrl:
        return QUrl::fromLocalFile(u"/new/"_s + field.name);
    default:
        return QVariant::fromValue(TrackList{std::make_shared<KXVideoTrack>()});
    }
}

/// The words that are copied between files, in their order.
QStringList copiedWords()
{
    return {u"theFilePath"_s,
            u"theFileURL"_s,
            u"theFileName"_s,
            u"theFileExtension"_s,
            u"theFileShortName"_s,
            u"pathToFileFolder"_s,
            u"theNumberOfVideoTracks"_s,
            u"theNumberOfAudioTracks"_s,
            u"theNumberOfSubTracks"_s,
            u"theDuration"_s,
            u"theFPS"_s,
            u"videoPAR"_s,
            u"theWidth"_s,
            u"theHeight"_s,
            u"codecProfile"_s,
            u"theVideoBitRate"_s,
            u"theVideoCodec"_s,
            u"headerRemovalFlag"_s};
}

void fill(KXVideoFile &file)
{
    for (const Field &field : fields())
        file.setProperty(qPrintable(field.name), anotherValue(field));
}

const QByteArrayList h264{"index=0", "codec_type=video", "codec_name=h264"};
const QByteArrayList aac{"index=1", "codec_type=audio", "codec_name=aac", "bit_rate=128000"};

/// A probe of a small file by a tool that answers what the test wants.
class Probe
{
public:
    explicit Probe(const QByteArray &streams, const QByteArray &lines = {}, const QByteArray &duration = {})
        : m_places(m_scratch.path(u"home"_s))
        , m_file(&m_places)
    {
        const QString streamsFile = m_scratch.write(u"streams"_s, streams);
        const QString linesFile = m_scratch.write(u"lines"_s, lines);
        const QString durationFile = m_scratch.write(u"duration"_s, duration);
        FakeTool::install(tool(), {u"record "_s + m_scratch.path(u"runs"_s), //
                                   u"when -show_streams"_s, u"play out "_s + streamsFile, u"exit 0"_s,
                                   u"end"_s, u"when -print_format"_s, u"play err "_s + durationFile,
                                   u"out {}"_s, u"exit 0"_s, u"end"_s, //
                                   u"play err "_s + linesFile});
        m_scratch.write(u"film.mkv"_s, "film");
    }

    QString tool() const { return m_places.toolsLocation().toLocalFile() + u"/ffmpeg/ffprobe"_s; }
    QString run(const QString &name = u"film.mkv"_s) { return m_file.initializeForURL(m_scratch.url(name)); }
    KXVideoFile &file() { return m_file; }
    const support::Scratch &scratch() const { return m_scratch; }
    bool leftAnErrorFile() const { return QFile::exists(m_scratch.path(u"film.mkv.error.txt"_s)); }
    QByteArray errorFile() const { return m_scratch.read(u"film.mkv.error.txt"_s); }

    /// The arguments of each run, the file's path left out.
    QStringList runs() const
    {
        QStringList lines;
        for (const FakeTool::Run &run : FakeTool::recordedRuns(m_scratch.path(u"runs"_s)))
            lines.append(QString::fromUtf8(run.arguments.join(' ')).remove(m_scratch.path() + u'/'));
        return lines;
    }

private:
    support::Scratch m_scratch;
    support::FakePlaces m_places;
    KXVideoFile m_file;
};

const QString jsonRun = u"-i film.mkv -show_streams -print_format json"_s;
const QString linesRun = u"-i film.mkv"_s;
const QString bitRateRun = u"-i film.mkv -print_format json"_s;

} // namespace

class KXVideoFileTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walksEveryField_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("initial");
        QTest::addColumn<QVariant>("another");
        for (const Field &field : fields())
            QTest::newRow(qPrintable(field.name)) << field.name << field.initial << anotherValue(field);
    }

    void walksEveryField()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, initial);
        QFETCH(QVariant, another);
        KXVideoFile file(nullptr);
        QCOMPARE(file.property(qPrintable(name)), initial);
        QVERIFY(file.setProperty(qPrintable(name), another));
        QCOMPARE(file.property(qPrintable(name)), another);
        const bool copied = copiedWords().contains(name) || name == u"trackList"_s;
        QCOMPARE(file.copy()->property(qPrintable(name)), copied ? another : initial);
        file.setFileDefaultPropertyValues();
        QCOMPARE(file.property(qPrintable(name)), initial);
    }

    void hasNoOtherFields()
    {
        QStringList expected;
        for (const Field &field : fields())
            expected.append(field.name);
        expected += {u"ffprobeResultsDictionaryArray"_s,
                     u"videoCodecList"_s,
                     u"videoInfoList"_s,
                     u"videoExtList"_s,
                     u"audioCodecList"_s,
                     u"audioInfoList"_s,
                     u"audioExtList"_s,
                     u"subtitleCodecList"_s,
                     u"subtitleInfoList"_s,
                     u"subtitleExtList"_s,
                     u"mediainfoURL"_s,
                     u"mkvinfoURL"_s,
                     u"propertiesKeysList"_s};
        QStringList declared;
        const QMetaObject &meta = KXVideoFile::staticMetaObject;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
            declared.append(QString::fromLatin1(meta.property(i).name()));
        QCOMPARE(declared, expected);
    }

    void aResetKeepsTheProbesResults()
    {
        KXVideoFile file(nullptr);
        file.setFfprobeResultsDictionaryArray({QVariantMap{{u"index"_s, u"0"_s}}});
        file.setFileDefaultPropertyValues();
        QCOMPARE(file.ffprobeResultsDictionaryArray().size(), 1);
    }

    void knowsItsVocabularyAndTools()
    {
        const support::Scratch scratch;
        const support::FakePlaces places(scratch.path());
        const KXVideoFile file(&places);
        QCOMPARE(file.propertiesKeysList(), copiedWords());
        QCOMPARE(file.property("videoCodecList").value<CodecGroups>().size(), 9);
        QCOMPARE(file.property("videoInfoList").toStringList().at(1), u"h264"_s);
        QCOMPARE(file.property("videoExtList").toStringList().at(0), u"avi"_s);
        QCOMPARE(file.property("audioCodecList").value<CodecGroups>().size(), 12);
        QCOMPARE(file.property("audioInfoList").toStringList().at(9), u"Wavpack"_s);
        QCOMPARE(file.property("audioExtList").toStringList().at(9), u"wv"_s);
        QCOMPARE(file.property("subtitleCodecList").value<CodecGroups>().size(), 9);
        QCOMPARE(file.property("subtitleInfoList").toStringList().at(8), u"dvbsub"_s);
        QCOMPARE(file.property("subtitleExtList").toStringList().at(8), u"yyy"_s);
        const QString resources = places.resourcesLocation().toLocalFile();
        QCOMPARE(file.mediainfoURL(), QUrl::fromLocalFile(resources + u"/mediainfo"_s));
        QCOMPARE(file.mkvinfoURL(), QUrl::fromLocalFile(resources + u"/mkvinfo"_s));
    }

    void aCopySharesTheTracks()
    {
        KXVideoFile file(nullptr);
        fill(file);
        const auto copy = file.copy();
        QCOMPARE(copy->trackList(), file.trackList());
        copy->trackList().constFirst()->setTrackTitle(u"shared"_s);
        QCOMPARE(file.trackList().constFirst()->trackTitle(), u"shared"_s);
        copy->setTheFileName(u"other"_s);
        QCOMPARE(file.theFileName(), u"new theFileName"_s);
    }

    void takesOverAnotherFile()
    {
        KXVideoFile other(nullptr);
        fill(other);
        KXVideoFile file(nullptr);
        file.setAddedFileName(u"kept"_s);
        file.setTrackList({std::make_shared<KXVideoTrack>(), std::make_shared<KXVideoTrack>()});
        file.makeSelfCopyOfVideoFile(other);
        for (const QString &word : copiedWords())
            QCOMPARE(file.property(qPrintable(word)), other.property(qPrintable(word)));
        QCOMPARE(file.trackList(), other.trackList());
        QCOMPARE(file.addedFileName(), u"kept"_s);
        file.setTrackList({});
        QCOMPARE(other.trackList().size(), 1);
    }

    void printsAFileAndItsTracks()
    {
        KXVideoFile file(nullptr);
        file.setHeaderRemovalFlag(true);
        file.setTheDuration(u"not shown"_s);
        const auto track = std::make_shared<KXVideoTrack>();
        file.setTrackList({track, track});
        const QString bar = u"################################"_s;
        const QString expected =
            u"\n\n\n"_s + bar +
            u"   Video File Porperties  ######################################\n"
            u"theFilePath = none\ntheFileName = none\ntheFileShortName = none\ntheFileExtension = none\n"
            u"pathToFileFolder = none\ntheFPS = 0\nvideoPAR = 0\ntheWidth = 0\ntheHeight = 0\n"
            u"codecProfile = none\ntheVideoBitRate = 0\ntheVideoCodec = none\nheaderRemovalFlag = 1\n"
            u"theNumberOfVideoTracks = 0\ntheNumberOfAudioTracks = 0\ntheNumberOfSubTracks = 0\n"_s +
            u'\n' + bar + u"   Track #1  ######################################\n"_s +
            track->stringFromTrackProperties() + u'\n' + bar +
            u"   Track #2  ######################################\n"_s + track->stringFromTrackProperties();
        QCOMPARE(file.stringFromFileProperties(), expected);
    }

    void runsOnlyWhatItNeeds()
    {
        Probe probe(probeJson({h264 + QByteArrayList{"bit_rate=800000"}, aac}));
        QCOMPARE(probe.run(), u"OK"_s);
        QCOMPARE(probe.runs(), QStringList({jsonRun, linesRun}));
        QVERIFY(!probe.leftAnErrorFile());
    }

    void asksForTheBitRateOfEachSilentVideoTrack()
    {
        Probe probe(probeJson({h264, h264 + QByteArrayList{"bit_rate=100000"}, h264, aac}), {},
                    "  Duration: 00:00:08.00, start: 0.0, bitrate: 1000 kb/s\n");
        QCOMPARE(probe.run(), u"OK"_s);
        QCOMPARE(probe.runs(), QStringList({jsonRun, linesRun, bitRateRun, bitRateRun}));
        QStringList rates;
        for (const TrackPointer &track : probe.file().trackList())
            rates.append(track->trackBitRate());
        // 1000 less 100 and 128; the second one finds all of it taken.
        QCOMPARE(rates, QStringList({u"772"_s, u"100"_s, u"0"_s, u"128"_s}));
    }

    void aDerivedBitRateMayBeNegative()
    {
        Probe probe(probeJson({h264, aac}), {}, "  Duration: 00:00:08.00, bitrate: 28 kb/s\n");
        QCOMPARE(probe.run(), u"OK"_s);
        QCOMPARE(probe.file().theVideoBitRate(), u"-100"_s);
    }

    void aBitRateThatIsNotToldStaysUnknown()
    {
        Probe twoLines(probeJson({h264}), {}, "Duration: 1, bitrate: 2\n title: Duration: 3\n");
        QCOMPARE(twoLines.run(), u"OK"_s);
        QCOMPARE(twoLines.file().theVideoBitRate(), u"0"_s);
        Probe notUtf8(probeJson({h264}), {}, "title : Caf\xe9\n  Duration: 1, bitrate: 500 kb/s\n");
        QCOMPARE(notUtf8.run(), u"OK"_s);
        QCOMPARE(notUtf8.file().theVideoBitRate(), u"0"_s);
    }

    void takesMissingCodecsFromTheStreamLines()
    {
        Probe probe(
            probeJson({{"index=0", "codec_type=video", "bit_rate=800000"}, {"index=1", "codec_type=audio"}}),
            "  Stream #0:0: Video: h264 (High), yuv420p\n  Stream #0:1(eng): Audio: ac3, 48000 Hz\n");
        QCOMPARE(probe.run(), u"OK"_s);
        QCOMPARE(probe.file().trackList().at(0)->trackCodec(), u"h264"_s);
        QCOMPARE(probe.file().trackList().at(1)->trackCodec(), u"ac3"_s);
    }

    void otherStreamsCountForTheFallback()
    {
        Probe probe(probeJson({{"index=0", "codec_type=data"}, {"index=1", "codec_type=audio"}}),
                    "  Stream #0:0: Data: bin_data\n  Stream #0:1: Audio: mp3\n");
        QCOMPARE(probe.run(), u"OK"_s);
        QCOMPARE(probe.file().trackList().constFirst()->trackCodec(), u"mp3"_s);
    }

    void refusesAnUnknownCodec()
    {
        const QByteArray streams = probeJson({h264, {"index=1", "codec_type=audio", "codec_name=opus"}});
        Probe probe(streams);
        QCOMPARE(probe.run(), u"track not identified"_s);
        QCOMPARE(probe.runs(), QStringList({jsonRun, linesRun, jsonRun}));
        QCOMPARE(probe.errorFile(), streams.trimmed() + "\n\nProblem Codec: opus");
        QVERIFY(probe.file().trackList().isEmpty());
        QCOMPARE(probe.file().theNumberOfVideoTracks(), u"0"_s);
        QCOMPARE(probe.file().theFileName(), u"none"_s);
    }

    void refusesAMissingCodec()
    {
        const QByteArray streams = probeJson({{"index=0", "codec_type=video"}});
        Probe probe(streams);
        QCOMPARE(probe.run(), u"track not identified"_s);
        QCOMPARE(probe.errorFile(), streams.trimmed() + "\n\nProblem Codec: ");
    }

    void refusesAFileWithoutUsableStreams()
    {
        const QByteArray streams = probeJson({{"index=0", "codec_type=data", "codec_name=bin_data"}});
        Probe probe(streams);
        QCOMPARE(probe.run(), u"not a video"_s);
        QCOMPARE(probe.runs(), QStringList({jsonRun, linesRun, jsonRun}));
        QCOMPARE(probe.errorFile(), streams.trimmed());
    }

    void refusesAFileWithoutAStreamList()
    {
        Probe probe("{\n\n}\n");
        QCOMPARE(probe.run(), u"not a video"_s);
        QCOMPARE(probe.runs(), QStringList({jsonRun}));
        QCOMPARE(probe.errorFile(), "{\n\n}");
    }

    void refusesATitleThatSpeaksOfInvalidData()
    {
        Probe probe(probeJson({h264 + QByteArrayList{"title=Invalid data found"}}));
        QCOMPARE(probe.run(), u"not a video"_s);
        QVERIFY(probe.errorFile().contains("Invalid data found"));
    }

    void refusesWithoutTheTool()
    {
        Probe probe(probeJson({h264}));
        QFile::remove(probe.tool());
        QCOMPARE(probe.run(), u"not a video"_s);
        QVERIFY(probe.errorFile().contains("ffprobe"));
        KXVideoFile homeless(nullptr);
        QCOMPARE(homeless.initializeForURL(probe.scratch().url(u"film.mkv"_s)), u"not a video"_s);
    }

    void probesOnlyPlainFiles()
    {
        Probe probe(probeJson({h264, aac}));
        const support::Scratch &scratch = probe.scratch();
        QCOMPARE(::mkfifo(qPrintable(scratch.path(u"pipe.mkv"_s)), 0600), 0);
        QDir().mkpath(scratch.path(u"folder.mkv"_s));
        const QStringList before = scratch.names();
        for (const QString &name : {u"pipe.mkv"_s, u"folder.mkv"_s, u"vanished.mkv"_s})
            QCOMPARE(probe.run(name), u"not a video"_s);
        QCOMPARE(probe.file().initializeForURL(QUrl::fromLocalFile(u"/dev/zero"_s)), u"not a video"_s);
        QCOMPARE(probe.file().initializeForURL(QUrl()), u"not a video"_s);
        QCOMPARE(probe.runs(), QStringList());
        QCOMPARE(scratch.names(), before);
        QFile::link(scratch.path(u"film.mkv"_s), scratch.path(u"link.mkv"_s));
        QCOMPARE(probe.run(u"link.mkv"_s), u"OK"_s);
    }

    void oneObjectServesFileAfterFile()
    {
        Probe probe(probeJson({h264 + QByteArrayList{"width=320", "bit_rate=800000"}, aac}));
        QCOMPARE(probe.run(), u"OK"_s);
        QCOMPARE(probe.run(), u"OK"_s);
        QCOMPARE(probe.file().trackList().size(), 2);
        QCOMPARE(probe.run(u"vanished.mkv"_s), u"not a video"_s);
        QVERIFY(probe.file().trackList().isEmpty());
        QCOMPARE(probe.file().theWidth(), u"0"_s);
        QCOMPARE(probe.file().theFileURL(), probe.scratch().url(u"vanished.mkv"_s));
    }

    void aProbeStoppedBeforehandRunsNothing()
    {
        Probe probe("no streams");
        probe.file().setStopFlag(std::make_shared<std::atomic_bool>(true));
        QCOMPARE(probe.run(), u"not a video"_s);
        QCOMPARE(probe.runs(), QStringList());
        QVERIFY(!probe.leftAnErrorFile());
    }

    void aStopEndsAProbe_data()
    {
        QTest::addColumn<QString>("hangsAt");
        QTest::addColumn<QByteArray>("streams");
        QTest::newRow("the first run") << u"-show_streams"_s << probeJson({h264});
        QTest::newRow("the stream lines") << u"lines"_s << probeJson({h264});
        QTest::newRow("the stream lines of an unknown codec")
            << u"lines"_s << probeJson({{"codec_type=video"}});
        QTest::newRow("the bit rate") << u"-print_format"_s << probeJson({h264, aac});
    }

    void aStopEndsAProbe()
    {
        QFETCH(QString, hangsAt);
        QFETCH(QByteArray, streams);
        Probe probe(streams);
        const QString played = u"play out "_s + probe.scratch().path(u"streams"_s);
        QStringList script{u"when -show_streams"_s, played, u"exit 0"_s, u"end"_s};
        if (hangsAt == u"-show_streams"_s)
            script = QStringList{u"hang"_s};
        else if (hangsAt == u"-print_format"_s)
            script += {u"when -print_format"_s, u"hang"_s, u"end"_s};
        else
            script += u"hang"_s;
        FakeTool::install(probe.tool(), script);
        const auto stop = std::make_shared<std::atomic_bool>(false);
        probe.file().setStopFlag(stop);
        QTimer::singleShot(300, this, [&] { *stop = true; });
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(probe.run(), u"not a video"_s);
        QVERIFY(clock.elapsed() >= 250);
        QVERIFY(!probe.leftAnErrorFile());
        QVERIFY(probe.file().trackList().isEmpty());
    }

    void aFileThatVanishesOnTheWayLeavesNothing()
    {
        Probe probe(probeJson({{"index=0", "codec_type=video", "codec_name=hevc"}}));
        const QString film = probe.scratch().path(u"film.mkv"_s);
        QTimer::singleShot(0, this, [&] { QFile::remove(film); });
        QCOMPARE(probe.run(), u"track not identified"_s);
        QVERIFY(!probe.leftAnErrorFile());
        QCOMPARE(probe.runs(), QStringList({jsonRun}));
    }

    void sortsTracksByKind()
    {
        Probe probe(probeJson({{"index=0", "codec_type=subtitle", "codec_name=ass"},
                               {"index=1", "codec_type=audio", "codec_name=aac"},
                               {"index=2", "codec_type=video", "codec_name=mjpeg", "bit_rate=50000"},
                               {"index=3", "codec_type=audio", "codec_name=mp3"},
                               {"index=4", "codec_type=video", "codec_name=h264", "bit_rate=90000"}}));
        QCOMPARE(probe.run(), u"OK"_s);
        QStringList indexes;
        for (const TrackPointer &track : probe.file().trackList())
            indexes.append(track->trackFfmpegID());
        QCOMPARE(indexes, QStringList({u"2"_s, u"4"_s, u"1"_s, u"3"_s, u"0"_s}));
        QCOMPARE(probe.file().theNumberOfVideoTracks(), u"2"_s);
        QCOMPARE(probe.file().theNumberOfAudioTracks(), u"2"_s);
        QCOMPARE(probe.file().theNumberOfSubTracks(), u"1"_s);
        QCOMPARE(probe.file().theVideoCodec(), u"h264"_s);
        QCOMPARE(probe.file().theVideoBitRate(), u"90"_s);
    }

    void aTrackListGrowsByManyAndIsReplacedByOne()
    {
        // A second reading of the same streams comes behind the first; a lone track stands alone.
        Probe many(probeJson({h264, aac}));
        QCOMPARE(many.run(), u"OK"_s);
        QCOMPARE(many.file().createTrackListForSelf(), u"OK"_s);
        QCOMPARE(many.file().trackList().size(), 4);
        QCOMPARE(many.file().theNumberOfAudioTracks(), u"1"_s);
        Probe one(probeJson({aac}));
        QCOMPARE(one.run(), u"OK"_s);
        QCOMPARE(one.file().createTrackListForSelf(), u"OK"_s);
        QCOMPARE(one.file().trackList().size(), 1);
    }

    void readsTheFirstVideoStream_data()
    {
        QTest::addColumn<QByteArrayList>("values");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QByteArrayList &values, const char *word,
                            const QString &expected) {
            QTest::newRow(name) << values << QString::fromLatin1(word) << expected;
        };
        row("width", {"width=320", "height=240"}, "theWidth", u"320"_s);
        row("height", {"width=320", "height=240"}, "theHeight", u"240"_s);
        row("no size", {"width=", "height="}, "theWidth", u"0"_s);
        row("level of two digits", {"profile=High", "level=41"}, "codecProfile", u"High@L4.1"_s);
        row("another level", {"profile=Main", "level=31"}, "codecProfile", u"Main@L3.1"_s);
        row("level of one digit", {"profile=High", "level=5"}, "codecProfile", u"High@L5.5"_s);
        row("no level told", {"profile=0", "level=-99"}, "codecProfile", u"0@L-.9"_s);
        row("no level", {"profile=High"}, "codecProfile", u"none"_s);
        row("no profile", {"profile=", "level=41"}, "codecProfile", u"none"_s);
        row("film rate", {"avg_frame_rate=24000/1001"}, "theFPS", u"23.976024"_s);
        row("whole rate", {"avg_frame_rate=25/1"}, "theFPS", u"25.000000"_s);
        row("rate of nothing", {"avg_frame_rate=0/0"}, "theFPS", u"nan"_s);
        row("one piece", {"avg_frame_rate=25"}, "theFPS", u"0"_s);
        row("no rate", {}, "theFPS", u"0"_s);
        row("length", {"duration=8.0"}, "theDuration", u"0"_s);
        row("pixel shape", {"sample_aspect_ratio=1:1"}, "videoPAR", u"0"_s);
    }

    void readsTheFirstVideoStream()
    {
        QFETCH(QByteArrayList, values);
        QFETCH(QString, word);
        QFETCH(QString, expected);
        const QByteArrayList second = h264 + QByteArrayList{"width=9", "height=9", "profile=X", "level=99"};
        Probe probe(probeJson({aac, h264 + values, second}));
        QCOMPARE(probe.run(), u"OK"_s);
        QCOMPARE(probe.file().property(qPrintable(word)).toString(), expected);
    }

    void readsTheFilesName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("shortName");
        QTest::newRow("plain") << u"Movie.mkv"_s << u"mkv"_s << u"Movie"_s;
        QTest::newRow("capitals keep the whole name") << u"Movie.MKV"_s << u"mkv"_s << u"Movie.MKV"_s;
        QTest::newRow("the first place counts") << u"a.mkv.old.mkv"_s << u"mkv"_s << u"a"_s;
        QTest::newRow("no extension") << u"movie"_s << u""_s << u"movie"_s;
    }

    void readsTheFilesName()
    {
        QFETCH(QString, name);
        QFETCH(QString, extension);
        QFETCH(QString, shortName);
        Probe probe(probeJson({aac}));
        probe.scratch().write(u"films/"_s + name, "film");
        QCOMPARE(probe.run(u"films/"_s + name), u"OK"_s);
        const KXVideoFile &file = probe.file();
        QCOMPARE(file.theFileName(), name);
        QCOMPARE(file.theFileExtension(), extension);
        QCOMPARE(file.theFileShortName(), shortName);
        QCOMPARE(file.theFilePath(), probe.scratch().path(u"films/"_s + name));
        QCOMPARE(file.pathToFileFolder(), probe.scratch().path(u"films"_s) + u'/');
        QCOMPARE(file.headerRemovalFlag(), false);
    }

    void answersNotAVideoAsAList()
    {
        Probe probe("nothing");
        QCOMPARE(probe.file().createFfprobeResultsDictionaryArrayForURL(probe.scratch().url(u"film.mkv"_s)),
                 QVariantList({u"not a video"_s}));
    }

    void keepsTheParsedProbe()
    {
        Probe probe(probeJson({aac}));
        QCOMPARE(probe.run(), u"OK"_s);
        const QVariantMap stream{{u"index"_s, u"0"_s},
                                 {u"codec_type"_s, u"audio"_s},
                                 {u"codec_name"_s, u"aac"_s},
                                 {u"bit_rate"_s, u"128000"_s}};
        QCOMPARE(probe.file().ffprobeResultsDictionaryArray(), QVariantList({stream}));
    }
};

TESSARAY_TEST(KXVideoFileTest)
#include "KXVideoFileTest.moc"

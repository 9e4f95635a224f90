#include "media/KXVideoFile.h"

#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Scratch.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/WatchedPlaces.h"
#include "support/Words.h"
#include "tools/OptionItem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using support::Scratch;
using support::WatchedPlaces;
using support::words;

namespace {

/// The container's bit rate in kb/s, asked for another way than the program does.
qint64 containerRateOf(const QString &path)
{
    QProcess probe;
    probe.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s, u"format=bit_rate"_s, u"-of"_s,
                               u"csv=p=0"_s, path});
    probe.waitForFinished(60000);
    return QString::fromUtf8(probe.readAllStandardOutput()).trimmed().toLongLong() / 1000;
}

QStringList valuesOf(const KXVideoFile &file, const char *word)
{
    QStringList values;
    for (const TrackPointer &track : file.trackList())
        values.append(track->property(word).toString());
    return values;
}

/// Names that a careless line would run, cut or lose; 255 bytes is the longest a folder takes.
QStringList hostileNames()
{
    return {u"a b.mkv"_s,
            u"\"quoted\".mkv"_s,
            u"it's.mkv"_s,
            u"'; touch injected; '.mkv"_s,
            u"\"; touch injected; \".mkv"_s,
            u"\\\";touch injected;#.mkv"_s,
            u"$(touch injected).mkv"_s,
            u"\\$(touch injected).mkv"_s,
            u"`touch injected`.mkv"_s,
            u"\\`touch injected\\`.mkv"_s,
            u"$HOME.mkv"_s,
            u"back\\slash.mkv"_s,
            u"two\\\\backslashes.mkv"_s,
            u"ends in one.mkv\\"_s,
            u"line\nfeed.mkv"_s,
            u"backslash\\\nline feed.mkv"_s,
            u"carriage\rreturn.mkv"_s,
            u"tab\tstop.mkv"_s,
            u"-dash.mkv"_s,
            u"--help"_s,
            u"a & b | c > d < e ; f.mkv"_s,
            u"* ? [a] {b,c} ~ ! #.mkv"_s,
            u"100% %s %03d.mkv"_s,
            u"colon: a, b; c = d.mkv"_s,
            u"Stream #0:0: Video: Duration: bitrate: 7.mkv"_s,
            u"file:a.mkv"_s,
            u"Füße 映画 🎬.mkv"_s,
            u"e\u0301 combining.mkv"_s,
            u"\u202e right to left.mkv"_s,
            u" leading and trailing "_s,
            QString(251, u'x') + u".mkv"_s,
            QString(125, u'ü') + u"x.mkv"_s};
}

} // namespace

class KXVideoFileProbeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scratch = std::make_unique<Scratch>();
        m_places = std::make_unique<WatchedPlaces>(*m_scratch);
        m_file = std::make_unique<KXVideoFile>(m_places.get());
    }

    void probesAWholeFilm()
    {
        QCOMPARE(probeCopyOf(support::fullMkv(), u"film.mkv"_s), u"OK"_s);
        QCOMPARE(valuesOf(*m_file, "trackType"), words(u"Video Audio Audio Audio Subtitle Subtitle"_s));
        QCOMPARE(valuesOf(*m_file, "trackCodec"), words(u"h264 ac3 aac dtshd srt ass"_s));
        QCOMPARE(valuesOf(*m_file, "trackExtension"), words(u"h264 ac3 aac dtshd srt ass"_s));
        QCOMPARE(valuesOf(*m_file, "trackFfmpegID"), words(u"0 1 2 5 3 4"_s));
        QCOMPARE(valuesOf(*m_file, "trackMkvmergeID"), words(u"0 1 2 5 3 4"_s));
        QCOMPARE(valuesOf(*m_file, "trackMp4boxID"), words(u"1 2 3 6 4 5"_s));
        QCOMPARE(valuesOf(*m_file, "trackMencoderID"), words(u"0 0 1 2 0 1"_s));
        QCOMPARE(valuesOf(*m_file, "trackIndex"), words(u"0 0 0 0 0 0"_s));
        QCOMPARE(valuesOf(*m_file, "trackNumberOfChannels"), words(u"0 6 2 6 0 0"_s));
        QCOMPARE(valuesOf(*m_file, "userCodec"), words(u"passthru passthru passthru passthru mux mux"_s));
        QCOMPARE(valuesOf(*m_file, "trackLanguage"),
                 words(u"English English German undetermined English French"_s));
        QCOMPARE(m_file->theNumberOfVideoTracks(), u"1"_s);
        QCOMPARE(m_file->theNumberOfAudioTracks(), u"3"_s);
        QCOMPARE(m_file->theNumberOfSubTracks(), u"2"_s);
        QVERIFY(errorFiles().isEmpty());
    }

    void cutsTheTitleAtItsComma()
    {
        QCOMPARE(probeCopyOf(support::fullMkv(), u"film.mkv"_s), u"OK"_s);
        QCOMPARE(valuesOf(*m_file, "trackTitle"),
                 QStringList({u"Video Track"_s, u"Surround five"_s, u"Audio Track"_s, u"Audio Track"_s,
                              u"Subtitle Track"_s, u"Subtitle Track"_s}));
        QCOMPARE(m_file->trackList().at(1)->trackInfo(), u"Audio: (ac3 6ch.)"_s);
    }

    void derivesTheVideosBitRateFromTheContainers()
    {
        QCOMPARE(probeCopyOf(support::fullMkv(), u"film.mkv"_s), u"OK"_s);
        // The aac track tells none, so its share counts as video.
        const qint64 expected = containerRateOf(support::fullMkv()) - 384 - 1411;
        QVERIFY(expected > 0);
        QCOMPARE(valuesOf(*m_file, "trackBitRate"),
                 QStringList({QString::number(expected), u"384"_s, u"0"_s, u"1411"_s, u"0"_s, u"0"_s}));
        QCOMPARE(m_file->theVideoBitRate(), QString::number(expected));
    }

    void readsTheFilesOwnProperties()
    {
        QCOMPARE(probeCopyOf(support::wideMkv(), u"Wide Film.mkv"_s), u"OK"_s);
        QCOMPARE(m_file->theFilePath(), m_scratch->path(u"Wide Film.mkv"_s));
        QCOMPARE(m_file->theFileName(), u"Wide Film.mkv"_s);
        QCOMPARE(m_file->theFileShortName(), u"Wide Film"_s);
        QCOMPARE(m_file->theFileExtension(), u"mkv"_s);
        QCOMPARE(m_file->pathToFileFolder(), m_scratch->path() + u'/');
        QCOMPARE(m_file->theFileURL(), m_scratch->url(u"Wide Film.mkv"_s));
        QCOMPARE(m_file->theWidth(), u"2560"_s);
        QCOMPARE(m_file->theHeight(), u"1440"_s);
        QCOMPARE(m_file->theFPS(), u"25.000000"_s);
        QCOMPARE(m_file->theVideoCodec(), u"h264"_s);
        QCOMPARE(m_file->codecProfile(), u"High@L5.0"_s);
        QCOMPARE(m_file->isVideoFile(), false);
        QCOMPARE(m_file->theDuration(), u"0"_s);
        QCOMPARE(m_file->videoPAR(), u"0"_s);
    }

    void anAudioOnlyFileIsFine()
    {
        QCOMPARE(probeCopyOf(support::audioOnly(), u"song.m4a"_s), u"OK"_s);
        QCOMPARE(m_file->theNumberOfVideoTracks(), u"0"_s);
        QCOMPARE(m_file->theNumberOfAudioTracks(), u"1"_s);
        QCOMPARE(m_file->theWidth(), u"0"_s);
        QCOMPARE(m_file->theHeight(), u"0"_s);
        QCOMPARE(m_file->codecProfile(), u"none"_s);
        QCOMPARE(m_file->theFPS(), u"0"_s);
        QCOMPARE(m_file->theVideoCodec(), u"none"_s);
        QCOMPARE(valuesOf(*m_file, "trackMkvmergeID"), words(u"0"_s));
    }

    void aPngCoverAddsNoTrack()
    {
        QCOMPARE(probeCopyOf(support::pngCoverMkv(), u"cover.mkv"_s), u"OK"_s);
        QCOMPARE(m_file->theNumberOfVideoTracks(), u"1"_s);
        QCOMPARE(valuesOf(*m_file, "trackCodec"), words(u"h264"_s));
        QCOMPARE(m_file->ffprobeResultsDictionaryArray().size(), 2);
        QVERIFY(errorFiles().isEmpty());
    }

    void aJpegCoverBecomesAVideoTrack()
    {
        QCOMPARE(probeCopyOf(support::jpegCoverMkv(), u"cover.mkv"_s), u"OK"_s);
        QCOMPARE(m_file->theNumberOfVideoTracks(), u"2"_s);
        QCOMPARE(valuesOf(*m_file, "trackCodec"), words(u"h264 mjpeg"_s));
        QCOMPARE(m_file->theVideoCodec(), u"mjpeg"_s);
        QCOMPARE(m_file->theWidth(), u"320"_s);
    }

    void theSecondOfTwoVideosNamesTheCodec()
    {
        QCOMPARE(probeCopyOf(support::twoVideosMkv(), u"two.mkv"_s), u"OK"_s);
        QCOMPARE(m_file->theNumberOfVideoTracks(), u"2"_s);
        const QString whole = QString::number(containerRateOf(support::twoVideosMkv()));
        QCOMPARE(valuesOf(*m_file, "trackBitRate"), QStringList({whole, u"0"_s}));
        QCOMPARE(m_file->theVideoBitRate(), u"0"_s);
        QCOMPARE(m_file->theWidth(), u"320"_s);
    }

    void refusesCodecsThatItDoesNotKnow_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("codec");
        QTest::newRow("vp9") << support::vp9Mkv() << u"vp9"_s;
        QTest::newRow("opus") << support::opusMkv() << u"opus"_s;
    }

    void refusesCodecsThatItDoesNotKnow()
    {
        QFETCH(QString, clip);
        QFETCH(QString, codec);
        QCOMPARE(probeCopyOf(clip, u"new.mkv"_s), u"track not identified"_s);
        const QString left = QString::fromUtf8(m_scratch->read(u"new.mkv.error.txt"_s));
        QVERIFY(left.startsWith(u"{\n    \"streams\": [\n"_s));
        QVERIFY(left.endsWith(u"}\n\nProblem Codec: "_s + codec));
        QVERIFY(m_file->trackList().isEmpty());
    }

    void altersTitles_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("language");
        QTest::newRow("a comma") << u"Hello, Fixture"_s << u"Hello Fixture"_s << u"French"_s;
        QTest::newRow("a colon and a blank") << u"Part 1: Intro"_s << u"Part 1"_s << u"French"_s;
        QTest::newRow("double quotes") << u"say \"hi\""_s << u"say \\hi\\"_s << u"French"_s;
        QTest::newRow("nothing else") << u"$(touch injected) `touch injected` 'x' Füße 🎬"_s
                                      << u"$(touch injected) `touch injected` 'x' Füße 🎬"_s << u"French"_s;
        QTest::newRow("a stream line")
            << u"Stream #0:9: Video: x: y, Duration: 1"_s << u"Stream #0:9"_s << u"French"_s;
    }

    void altersTitles()
    {
        QFETCH(QString, title);
        QFETCH(QString, shown);
        QFETCH(QString, language);
        QCOMPARE(probeTitled(title), u"OK"_s);
        QCOMPARE(m_file->trackList().constFirst()->trackTitle(), shown);
        QCOMPARE(m_file->trackList().constFirst()->trackLanguage(), language);
        QCOMPARE(m_scratch->names(), QStringList({u"titled.mkv"_s}));
    }

    void aTitleWithABraceIsLost()
    {
        for (const QString &title : {u"a } b"_s, u"a { b"_s}) {
            QFile::remove(m_scratch->path(u"titled.mkv"_s));
            QCOMPARE(probeTitled(title), u"OK"_s);
            QCOMPARE(m_file->trackList().constFirst()->trackTitle(), u"Video Track"_s);
            QCOMPARE(m_file->trackList().size(), 1);
        }
    }

    void aTitleThatSpeaksOfInvalidDataLosesTheFile()
    {
        QCOMPARE(probeTitled(u"Invalid data found"_s), u"not a video"_s);
        QCOMPARE(errorFiles(), QStringList({u"titled.mkv.error.txt"_s}));
    }

    void aTitleWithADurationLosesTheBitRate()
    {
        QCOMPARE(probeTitled(u"Duration: long"_s), u"OK"_s);
        QCOMPARE(m_file->theVideoBitRate(), u"0"_s);
    }

    void aLoneSubtitleInAnotherContainerIsNumberZero()
    {
        const QString path = m_scratch->path(u"lines.mp4"_s);
        support::runProgram(u"ffmpeg"_s, {u"-i"_s, support::srtFile(), u"-c:s"_s, u"mov_text"_s, path});
        QCOMPARE(probe(path), u"OK"_s);
        QCOMPARE(valuesOf(*m_file, "trackCodec"), words(u"ttxt"_s));
        QCOMPARE(valuesOf(*m_file, "trackMkvmergeID"), words(u"0"_s));
        QCOMPARE(m_file->theNumberOfSubTracks(), u"1"_s);
    }

    void anExtensionInCapitalsStillCountsAsMatroska()
    {
        QCOMPARE(probeCopyOf(support::fullMkv(), u"Movie.MKV"_s), u"OK"_s);
        QCOMPARE(m_file->theFileExtension(), u"mkv"_s);
        QCOMPARE(m_file->theFileShortName(), u"Movie.MKV"_s);
        QCOMPARE(m_file->trackList().constFirst()->trackFileExtension(), u"MKV"_s);
        QCOMPARE(valuesOf(*m_file, "trackMkvmergeID"), words(u"0 1 2 5 3 4"_s));
    }

    void pictureSubtitlesBecomeTeletext()
    {
        QCOMPARE(probeCopyOf(support::pgsMkv(), u"pgs.mkv"_s), u"OK"_s);
        const TrackPointer pgs = m_file->trackList().constLast();
        QCOMPARE(pgs->trackCodec(), u"teletext"_s);
        QCOMPARE(pgs->trackExtension(), u"xxx"_s);
        QCOMPARE(pgs->probedCodecName(), u"hdmv_pgs_subtitle"_s);
        QCOMPARE(probeCopyOf(support::vobsubMkv(), u"vob.mkv"_s), u"OK"_s);
        const TrackPointer vobsub = m_file->trackList().constLast();
        QCOMPARE(vobsub->trackCodec(), u"teletext"_s);
        QCOMPARE(vobsub->probedCodecName(), u"dvd_subtitle"_s);
    }

    void readsOtherContainers()
    {
        QCOMPARE(probeCopyOf(support::textMp4(), u"text.mp4"_s), u"OK"_s);
        QCOMPARE(valuesOf(*m_file, "trackCodec"), words(u"h264 aac ttxt"_s));
        QCOMPARE(valuesOf(*m_file, "trackMkvmergeID"), words(u"0 1 2"_s));
        QCOMPARE(probeCopyOf(support::latin1Avi(), u"old.avi"_s), u"OK"_s);
        QCOMPARE(valuesOf(*m_file, "trackMkvmergeID"), words(u"0 1"_s));
        QCOMPARE(probeCopyOf(support::oddAvi(), u"odd.avi"_s), u"OK"_s);
        QCOMPARE(m_file->theWidth(), u"321"_s);
        QCOMPARE(m_file->theHeight(), u"241"_s);
    }

    void sideDataAddsNoTrack()
    {
        QCOMPARE(probeCopyOf(support::transportStream(), u"tv.ts"_s), u"OK"_s);
        QCOMPARE(valuesOf(*m_file, "trackCodec"), words(u"mpeg2 mp2"_s));
        QCOMPARE(valuesOf(*m_file, "trackFfmpegID"), words(u"0 1"_s));
        QCOMPARE(m_file->ffprobeResultsDictionaryArray().size(), 3);
        QCOMPARE(probeCopyOf(support::programStream(), u"dvd.mpg"_s), u"OK"_s);
        QCOMPARE(m_file->theNumberOfVideoTracks(), u"1"_s);
        QCOMPARE(m_file->theNumberOfAudioTracks(), u"1"_s);
    }

    void aFileWithoutADurationHasNoBitRate()
    {
        QCOMPARE(probeCopyOf(support::rawH264(), u"raw.h264"_s), u"OK"_s);
        QCOMPARE(m_file->theVideoBitRate(), u"0"_s);
        QCOMPARE(m_file->theWidth(), u"320"_s);
        QCOMPARE(valuesOf(*m_file, "trackMkvmergeID"), words(u"0"_s));
    }

    void aTitleInLatin1IsNoObstacle()
    {
        QCOMPARE(probeCopyOf(support::latin1Avi(), u"old.avi"_s), u"OK"_s);
        QCOMPARE(valuesOf(*m_file, "trackCodec"), words(u"mpeg4 mp3"_s));
        const QString everything = m_file->doShellScriptForWithOptions(
            m_file->urlOfApp(u"ffprobe"_s), {u"-i", m_scratch->url(u"old.avi"_s), u"2>&1"});
        QVERIFY(everything.isNull());
    }

    void readsDamagedFilesAsFarAsTheToolDoes()
    {
        QCOMPARE(probeCopyOf(support::damagedMkv(), u"damaged.mkv"_s), u"OK"_s);
        QCOMPARE(m_file->trackList().size(), 6);
        QCOMPARE(probeCopyOf(support::truncatedMkv(), u"truncated.mkv"_s), u"OK"_s);
        QCOMPARE(m_file->trackList().size(), 6);
    }

    void aTruncatedFileMayLeaveTheVideoLessThanNothing()
    {
        QCOMPARE(probeCopyOf(support::truncatedMkv(), u"truncated.mkv"_s), u"OK"_s);
        const qint64 expected = containerRateOf(support::truncatedMkv()) - 384 - 1411;
        QVERIFY(expected < 0);
        QCOMPARE(m_file->theVideoBitRate(), QString::number(expected));
    }

    void refusesWhatIsNoVideo()
    {
        QCOMPARE(probeCopyOf(support::emptyMkv(), u"empty.mkv"_s), u"not a video"_s);
        QVERIFY(m_scratch->read(u"empty.mkv.error.txt"_s).contains("Invalid data found"));
        m_scratch->write(u"noise.mkv"_s, QByteArray("\x01\x80\xff", 3).repeated(5000));
        QCOMPARE(probe(m_scratch->path(u"noise.mkv"_s)), u"not a video"_s);
        QCOMPARE(errorFiles(), QStringList({u"empty.mkv.error.txt"_s, u"noise.mkv.error.txt"_s}));
        QCOMPARE(probe(m_scratch->path(u"vanished.mkv"_s)), u"not a video"_s);
        QCOMPARE(probe(m_scratch->path()), u"not a video"_s);
        QCOMPARE(errorFiles().size(), 2);
    }

    void replacesAnOlderErrorFile()
    {
        m_scratch->write(u"empty.mkv.error.txt"_s, QByteArray(100000, 'x'));
        QCOMPARE(probeCopyOf(support::emptyMkv(), u"empty.mkv"_s), u"not a video"_s);
        QVERIFY(!m_scratch->read(u"empty.mkv.error.txt"_s).contains("xxx"));
    }

    void neverWritesThroughALinkOfTheErrorFilesName()
    {
        const QString precious = support::copyOf(support::film1920(), *m_scratch, u"precious.mkv"_s);
        const QByteArray before = support::contentOf(precious);
        QFile::link(precious, m_scratch->path(u"empty.mkv.error.txt"_s));
        QCOMPARE(probeCopyOf(support::emptyMkv(), u"empty.mkv"_s), u"not a video"_s);
        QCOMPARE(support::contentOf(precious), before);
        QVERIFY(QFileInfo(m_scratch->path(u"empty.mkv.error.txt"_s)).isSymLink());
    }

    void probesHostileNames_data()
    {
        QTest::addColumn<QString>("name");
        int number = 0;
        for (const QString &name : support::drawn(hostileNames(), 8))
            QTest::addRow("name %d", ++number) << name;
    }

    void probesHostileNames()
    {
        QFETCH(QString, name);
        QCOMPARE(probeCopyOf(support::film1920(), name), u"OK"_s);
        QCOMPARE(m_file->theFileName(), name);
        QCOMPARE(valuesOf(*m_file, "trackCodec"), words(u"h264 aac srt"_s));
        QCOMPARE(m_scratch->names(), QStringList({name}));
        QCOMPARE(QFileInfo(m_scratch->path(name)).size(), QFileInfo(support::film1920()).size());
    }

    void refusesHostileNamesBesideThemselves_data() { probesHostileNames_data(); }

    void refusesHostileNamesBesideThemselves()
    {
        QFETCH(QString, name);
        QCOMPARE(probeCopyOf(support::emptyMkv(), name), u"not a video"_s);
        const bool tooLong = name.toUtf8().size() + QByteArray(".error.txt").size() > 255;
        const QStringList left = tooLong ? QStringList{name} : QStringList{name, name + u".error.txt"_s};
        QCOMPARE(m_scratch->names(), left);
        QCOMPARE(QFileInfo(m_scratch->path(name)).size(), 0);
    }

    void hostileFoldersAreNoObstacle()
    {
        const QString name = u"$(touch injected) `touch injected` \\\" 'x'/film.mkv"_s;
        QCOMPARE(probeCopyOf(support::film1920(), name), u"OK"_s);
        QCOMPARE(m_file->pathToFileFolder(), m_scratch->path(name).chopped(8));
        QCOMPARE(m_scratch->names().size(), 1);
    }

private:
    QString probe(const QString &path) { return m_file->initializeForURL(QUrl::fromLocalFile(path)); }
    QString probeCopyOf(const QString &clip, const QString &name)
    {
        return probe(support::copyOf(clip, *m_scratch, name));
    }

    /// Probes a film whose only track is French and has that title.
    QString probeTitled(const QString &title)
    {
        const QString path = m_scratch->path(u"titled.mkv"_s);
        support::runProgram(u"mkvmerge"_s, {u"-o"_s, path, u"--track-name"_s, u"0:"_s + title,
                                            u"--language"_s, u"0:fre"_s, support::rawH264()});
        return probe(path);
    }

    QStringList errorFiles() const { return m_scratch->names().filter(u".error.txt"_s); }

    std::unique_ptr<Scratch> m_scratch;
    std::unique_ptr<WatchedPlaces> m_places;
    std::unique_ptr<KXVideoFile> m_file;
};

TESSARAY_TEST(KXVideoFileProbeTest)
#include "KXVideoFileProbeTest.moc"

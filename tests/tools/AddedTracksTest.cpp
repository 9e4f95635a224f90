// Separate files that are added to an open film, probed with the real tool.
#include "media/KXVideoFile.h"

#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/HostileFilms.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/TrackClips.h"
#include "support/WatchedPlaces.h"
#include "support/media/AddingFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <random>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

QByteArray noise()
{
    std::mt19937 engine(7);
    QByteArray bytes;
    while (bytes.size() < 5000)
        bytes.append(static_cast<char>(engine() & 0xff));
    return bytes;
}

QString written(const QString &name, const QByteArray &content)
{
    return clip(name, [&](const QString &path) { writeContent(path, content); });
}

/// A text in the older XML form, which no probe reads.
QString ttxtFile()
{
    return written(u"lines.ttxt"_s, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<TextStream version=\"1.1\">"
                                    "<TextStreamHeader/><TextSample sampleTime=\"00:00:01.000\">Hello"
                                    "</TextSample></TextStream>\n");
}

/// What a refusal leaves: nothing, the probe's list of streams, the list and the codec, the tool's words.
enum class Left { Nothing, List, Codec, Words };

} // namespace

class AddedTracksTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scratch = std::make_unique<Scratch>();
        m_places = std::make_unique<WatchedPlaces>(*m_scratch);
        m_file = std::make_unique<KXVideoFile>(m_places.get());
        // What a film with one video, two audio tracks and one subtitle has.
        m_file->setTrackList(tracksOfTypes(u"Video,Audio,Audio,Subtitle"_s));
    }

    void answers_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("whatToDo");
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<int>("left");
        const auto row = [](const QString &name, const QString &clip, const QString &whatToDo,
                            const QString &refusal, const QString &answer, Left left = Left::Nothing) {
            QTest::addRow("%s, %s", qPrintable(name), qPrintable(QFileInfo(clip).fileName()))
                << clip << name << whatToDo << refusal << answer << int(left);
        };
        const QString add = u"add file"_s;
        const QString replace = u"replace file"_s;
        const QString video = u"video track"_s;
        const QString addsVideo = u"adding video track"_s;
        const QString many = u"too many tracks"_s;
        const QString unknown = u"track not identified"_s;
        const QString notAVideo = u"not a video"_s;

        for (const QString &clip :
             {srtFile(), assFile(), ssaFile(), frenchSrt(), supFile(), textOnlyMp4(), audioOnly(),
              surroundAc3(), surroundMka(), mp3File(), attachmentMks(), chaptersM4a()})
            row(u"new."_s + QFileInfo(clip).suffix(), clip, add, {}, u"OK"_s);
        row(u"no subtitle by its name.txt"_s, srtFile(), add, {}, u"OK"_s);
        row(u"no suffix"_s, mp3File(), add, {}, u"OK"_s);
        row(u"a song called.srt"_s, mp3File(), add, {}, u"OK"_s);

        row(u"new.mka"_s, soundAndTextMka(), replace, {}, many);
        row(u"new.mka"_s, twoSoundsMka(), replace, many, many);
        row(u"new.mks"_s, twoTextsMks(), replace, many, many);
        row(u"two of them.srt"_s, twoTextsMks(), replace, many, many);

        row(u"new.mkv"_s, film1920(), replace, video, addsVideo);
        row(u"new.h264"_s, rawH264(), replace, video, addsVideo);
        row(u"new.mkv"_s, vp9Mkv(), replace, video, addsVideo);
        row(u"new.mp3"_s, coverMp3(), replace, video, addsVideo);
        row(u"new.m4a"_s, coverM4a(), replace, video, addsVideo);
        row(u"a film called.srt"_s, film1920(), replace, video, addsVideo);

        row(u"new.opus"_s, opusFile(), add, unknown, unknown, Left::Codec);
        row(u"new.vtt"_s, webvttFile(), add, unknown, unknown, Left::Codec);

        row(u"new.mov"_s, dataOnlyMov(), u"not a video file"_s, notAVideo, notAVideo, Left::List);
        row(u"new.srt"_s, dataOnlyMov(), add, notAVideo, notAVideo, Left::List);
        row(u"new.txt"_s, streamlessFile(), u"not a video file"_s, notAVideo, notAVideo, Left::List);
        row(u"new.ttxt"_s, streamlessFile(), add, notAVideo, notAVideo, Left::List);
        row(u"new.SSA"_s, streamlessFile(), add, notAVideo, notAVideo, Left::List);

        row(u"new.srt"_s, emptyMkv(), replace, notAVideo, notAVideo, Left::Words);
        row(u"new.srt"_s, written(u"noise"_s, noise()), replace, notAVideo, notAVideo, Left::Words);
        row(u"new.srt"_s, written(u"letter.txt"_s, "Dear reader,\n\nthis is no subtitle.\n"), replace,
            notAVideo, notAVideo, Left::Words);
        row(u"new.txt"_s, written(u"letter.txt"_s, {}), replace, notAVideo, notAVideo, Left::Words);
        row(u"new.ttxt"_s, ttxtFile(), replace, notAVideo, notAVideo, Left::Words);
    }

    void answers()
    {
        QFETCH(QString, clip);
        QFETCH(QString, name);
        QFETCH(QString, whatToDo);
        QFETCH(QString, refusal);
        QFETCH(QString, answer);
        QFETCH(int, left);
        const QString path = copyOf(clip, *m_scratch, name);
        const QString error = name + u".error.txt"_s;
        const QStringList before = names();
        QCOMPARE(m_file->whatToDoWithFile(url(path)), whatToDo);
        // By the question alone only a failed probe is left.
        QCOMPARE(m_scratch->names().contains(error), left == int(Left::Words));
        QFile::remove(m_scratch->path(error));

        const auto created = m_file->createAddedTrackForURL(url(path));
        QCOMPARE(created.refusal, refusal);
        QCOMPARE(created.tracks.isEmpty(), !refusal.isEmpty());
        compareLeft(error, Left(left));
        QFile::remove(m_scratch->path(error));
        QCOMPARE(m_file->trackList().size(), 4);

        const QString probed = m_file->stringFromFileProperties();
        QCOMPARE(m_file->addTrack(url(path)), answer);
        compareLeft(error, Left(left));
        QCOMPARE(m_file->trackList().size(), answer == u"OK"_s ? 5 : 4);
        QCOMPARE(m_file->stringFromFileProperties() == probed, answer != u"OK"_s);
        QCOMPARE(names(), left == int(Left::Nothing) ? before : before + QStringList{error});
        QCOMPARE(contentOf(path), contentOf(clip));
    }

    /// A film with one video, two audio tracks and one subtitle.
    void anAddedSrtBecomesTheFifthTrack()
    {
        open(wideMkv());
        const QString path = copyOf(srtFile(), *m_scratch, u"lines.srt"_s);
        QCOMPARE(m_file->addTrack(url(path)), u"OK"_s);
        QCOMPARE(m_file->trackList().size(), 5);
        const TrackPointer added = m_file->trackList().at(4);
        QCOMPARE(added->externalTrackFlag(), true);
        QCOMPARE(added->trackType(), u"Subtitle"_s);
        QCOMPARE(added->trackIndex(), u"2"_s);
        QCOMPARE(added->trackMkvmergeID(), u"0"_s);
        QCOMPARE(added->trackMp4boxID(), u"1"_s);
        QCOMPARE(m_file->theNumberOfSubTracks(), u"2"_s);
        QCOMPARE(fieldOf(m_file->trackList(), "trackIndex"), u"1,1,2,1,2"_s);
        QCOMPARE(fieldOf(m_file->trackList(), "externalTrackFlag"), u"false,false,false,false,true"_s);
    }

    void anAudioStreamAndASubtitleAreTooManyTracks()
    {
        open(wideMkv());
        const QString path = copyOf(soundAndTextMka(), *m_scratch, u"both.mka"_s);
        const TrackList before = m_file->trackList();
        const QString properties = m_file->stringFromFileProperties();
        QCOMPARE(m_file->addTrack(url(path)), u"too many tracks"_s);
        QCOMPARE(m_file->trackList(), before);
        QCOMPARE(m_file->stringFromFileProperties(), properties);
        QCOMPARE(fieldOf(before, "trackIndex"), u"0,0,0,0"_s);
    }

    void aVideoIsNotAdded()
    {
        open(wideMkv());
        const QString path = copyOf(film1920(), *m_scratch, u"other.mkv"_s);
        QCOMPARE(m_file->addTrack(url(path)), u"adding video track"_s);
        QCOMPARE(m_file->trackList().size(), 4);
        QVERIFY(!m_scratch->names().contains(u"other.mkv.error.txt"_s));
    }

    void withNoFileOpenEverythingReplaces()
    {
        const KXVideoFile none(m_places.get());
        for (const QString &clip : {srtFile(), film1920(), opusFile(), streamlessFile(), emptyMkv()})
            QCOMPARE(none.whatToDoWithFile(url(copyOf(clip, *m_scratch, QFileInfo(clip).fileName()))),
                     u"replace file"_s);
        QVERIFY(m_scratch->names().filter(u".error.txt"_s).isEmpty());
    }

    void tracksHoldWhatTheirFilesSay_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("fields");
        const auto row = [](const QString &clip, const QString &fields) {
            QTest::newRow(qPrintable(QFileInfo(clip).fileName())) << clip << fields;
        };
        // Type, codec, extension, channels, kb/s, language, title, index, mp4box, mkvmerge, user codec.
        row(srtFile(), u"Subtitle/srt/srt/0/0/undetermined/Subtitle Track/0/1/0/mux"_s);
        row(assFile(), u"Subtitle/ass/ass/0/0/undetermined/Subtitle Track/0/1/0/mux"_s);
        row(ssaFile(), u"Subtitle/ass/ass/0/0/undetermined/Subtitle Track/0/1/0/mux"_s);
        row(supFile(), u"Subtitle/teletext/xxx/0/0/undetermined/Subtitle Track/0/1/0/mux"_s);
        row(textOnlyMp4(), u"Subtitle/ttxt/ttxt/0/0/undetermined/Subtitle Track/0/1/0/mux"_s);
        row(attachmentMks(), u"Subtitle/srt/srt/0/0/undetermined/Subtitle Track/0/1/0/mux"_s);
        row(surroundAc3(), u"Audio/ac3/ac3/6/384/undetermined/Audio Track/0/1/0/passthru"_s);
        row(surroundMka(), u"Audio/ac3/ac3/6/384/German/Raumklang/0/1/0/passthru"_s);
    }

    void tracksHoldWhatTheirFilesSay()
    {
        QFETCH(QString, clip);
        QFETCH(QString, fields);
        const QString name = u"New Track."_s + QFileInfo(clip).suffix().toUpper();
        QCOMPARE(m_file->addTrack(url(copyOf(clip, *m_scratch, name))), u"OK"_s);
        const TrackPointer track = m_file->trackList().constLast();
        QCOMPARE(QStringList({track->trackType(), track->trackCodec(), track->trackExtension(),
                              track->trackNumberOfChannels(), track->trackBitRate(), track->trackLanguage(),
                              track->trackTitle(), track->trackFfmpegID(), track->trackMp4boxID(),
                              track->trackMkvmergeID(), track->userCodec()})
                     .join(u'/'),
                 fields);
        QCOMPARE(track->trackFileName(), name);
        QCOMPARE(track->trackFileExtension(), QFileInfo(clip).suffix().toUpper());
        QCOMPARE(track->trackFilePath(), m_scratch->path(name));
        QCOMPARE(track->trackPathToFileFolder(), m_scratch->path() + u'/');
        QCOMPARE(track->trackFileURL(), m_scratch->url(name));
    }

    /// The same as for an audio stream of the film.
    void addedSoundHasTheSettingsOfProbedSound()
    {
        KXVideoFile song(m_places.get());
        const QString path = copyOf(surroundMka(), *m_scratch, u"sound.mka"_s);
        QCOMPARE(song.initializeForURL(url(path)), u"OK"_s);
        QCOMPARE(m_file->addTrack(url(path)), u"OK"_s);
        const AudioSettingsList settings =
            m_file->trackList().constLast()->userAudioSettingsDictionaryArray();
        QCOMPARE(settings, AudioSettingsList({{{u"userCodec"_s, u"passthru"_s},
                                               {u"userBitRate"_s, u"0"_s},
                                               {u"userNumberOfChannels"_s, u"6"_s}}}));
        QCOMPARE(settings, song.trackList().constFirst()->userAudioSettingsDictionaryArray());
    }

    void severalFilesAreAddedOneBehindTheOther()
    {
        open(wideMkv());
        for (const QString &clip : {surroundAc3(), srtFile(), mp3File()})
            QCOMPARE(m_file->addTrack(url(copyOf(clip, *m_scratch, QFileInfo(clip).fileName()))), u"OK"_s);
        QCOMPARE(fieldOf(m_file->trackList(), "trackType"),
                 u"Video,Audio,Audio,Subtitle,Audio,Subtitle,Audio"_s);
        QCOMPARE(fieldOf(m_file->trackList(), "trackCodec"), u"h264,aac,ac3,srt,ac3,srt,mp3"_s);
        QCOMPARE(fieldOf(m_file->trackList(), "trackIndex"), u"1,1,2,1,3,2,4"_s);
        QCOMPARE(fieldOf(m_file->trackList(), "trackFfmpegID"), u"0,1,2,3,0,0,0"_s);
        QCOMPARE(m_file->theNumberOfVideoTracks(), u"1"_s);
        QCOMPARE(m_file->theNumberOfAudioTracks(), u"4"_s);
        QCOMPARE(m_file->theNumberOfSubTracks(), u"2"_s);
    }

    /// The next film starts without them.
    void aNewFilmHasNoAddedTracks()
    {
        open(wideMkv());
        QCOMPARE(m_file->addTrack(url(copyOf(srtFile(), *m_scratch, u"lines.srt"_s))), u"OK"_s);
        open(film1920());
        QCOMPARE(fieldOf(m_file->trackList(), "externalTrackFlag"), u"false,false,false"_s);
        QCOMPARE(m_file->theNumberOfSubTracks(), u"1"_s);
    }

    void whatIsNoPlainFileIsNotProbed()
    {
        QCOMPARE(::mkfifo(qPrintable(m_scratch->path(u"pipe.srt"_s)), 0600), 0);
        QDir().mkpath(m_scratch->path(u"folder.srt"_s));
        const QStringList before = names();
        // A pipe that is not written into would be waited for without an end.
        for (const QString &name : {u"pipe.srt"_s, u"folder.srt"_s, u"missing.srt"_s}) {
            QCOMPARE(m_file->whatToDoWithFile(m_scratch->url(name)), u"replace file"_s);
            QCOMPARE(m_file->createAddedTrackForURL(m_scratch->url(name)).refusal, u"not a video"_s);
            QCOMPARE(m_file->addTrack(m_scratch->url(name)), u"not a video"_s);
        }
        QCOMPARE(names(), before);
        QCOMPARE(m_file->trackList().size(), 4);
    }

    void hostileNamesAndTitles_data()
    {
        QTest::addColumn<QString>("stem");
        QTest::addColumn<QString>("title");
        int number = 0;
        for (const Film &film : drawn(hostileFilms(), 10))
            QTest::addRow("film %d", ++number) << film.stem << film.title;
    }

    void hostileNamesAndTitles()
    {
        QFETCH(QString, stem);
        QFETCH(QString, title);
        const QString name = stem + u".mks"_s;
        const QString made = m_scratch->path(u"made.mks"_s);
        runProgram(u"mkvmerge"_s, {u"-q"_s, u"-o"_s, made, u"--track-name"_s, u"0:"_s + title,
                                   u"--language"_s, u"0:ger"_s, srtFile()});
        QVERIFY(QFile::rename(made, m_scratch->path(name)));
        const QStringList before = m_scratch->names();
        QCOMPARE(m_file->whatToDoWithFile(m_scratch->url(name)), u"add file"_s);
        QCOMPARE(m_file->addTrack(m_scratch->url(name)), u"OK"_s);
        const TrackPointer track = m_file->trackList().constLast();
        QCOMPARE(track->trackTitle(), asRead(title));
        QCOMPARE(track->trackLanguage(), u"German"_s);
        QCOMPARE(track->trackFileName(), name);
        QCOMPARE(track->trackFilePath(), m_scratch->path(name));
        QCOMPARE(m_scratch->names(), before);
    }

    void hostileNamesAreRefusedBesideThemselves_data() { hostileNamesAndTitles_data(); }

    void hostileNamesAreRefusedBesideThemselves()
    {
        QFETCH(QString, stem);
        const QString name = stem + u".mks"_s;
        copyOf(webvttFile(), *m_scratch, name);
        const QStringList before = names();
        QCOMPARE(m_file->addTrack(m_scratch->url(name)), u"track not identified"_s);
        const bool tooLong = name.toUtf8().size() + QByteArray(".error.txt").size() > 255;
        QCOMPARE(names(), tooLong ? before : before + QStringList{name + u".error.txt"_s});
        QCOMPARE(contentOf(m_scratch->path(name)), contentOf(webvttFile()));
    }

private:
    void open(const QString &clip)
    {
        QFile::remove(m_scratch->path(u"film.mkv"_s));
        QCOMPARE(m_file->initializeForURL(url(copyOf(clip, *m_scratch, u"film.mkv"_s))), u"OK"_s);
    }

    static QUrl url(const QString &path) { return QUrl::fromLocalFile(path); }

    /// What lies in the folder, error files last.
    QStringList names() const
    {
        QStringList names = m_scratch->names();
        std::stable_partition(names.begin(), names.end(),
                              [](const QString &name) { return !name.endsWith(u".error.txt"_s); });
        return names;
    }

    void compareLeft(const QString &name, Left left) const
    {
        const QByteArray text = m_scratch->read(name);
        QCOMPARE(QFile::exists(m_scratch->path(name)), left != Left::Nothing);
        QCOMPARE(text.startsWith("{\n    \"streams\": ["), left == Left::List || left == Left::Codec);
        QCOMPARE(text.contains("\n\nProblem Codec: "), left == Left::Codec);
        QCOMPARE(text.contains("Invalid data found"), left == Left::Words);
    }

    std::unique_ptr<Scratch> m_scratch;
    std::unique_ptr<WatchedPlaces> m_places;
    std::unique_ptr<KXVideoFile> m_file;
};

TESSARAY_TEST(AddedTracksTest)
#include "AddedTracksTest.moc"

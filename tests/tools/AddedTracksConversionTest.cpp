// Films to which separate files were added, converted with the real tools: the output holds exactly what it
// should.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/HostileFilms.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/TrackClips.h"
#include "support/engines/RealRuns.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

AudioSettingsList outputs(const QList<QStringList> &words)
{
    AudioSettingsList list;
    for (const QStringList &word : words)
        list.append({{u"userCodec"_s, word.at(0)},
                     {u"userNumberOfChannels"_s, word.at(1)},
                     {u"userBitRate"_s, word.value(2, u"0"_s)}});
    return list;
}

/// One value of each stream, joined by blanks; "-" where there is none.
QString valuesOf(const QString &path, const QString &key)
{
    QStringList values;
    for (const QJsonObject &stream : streamsOf(path)) {
        const QJsonObject tags = stream.value(u"tags"_s).toObject();
        const QString value = (stream.contains(key) ? stream : tags).value(key).toVariant().toString();
        values.append(value.isEmpty() ? u"-"_s : value);
    }
    return values.join(u' ');
}

/// The words of a text stream, as SRT.
QString wordsOf(const QString &path, int subtitle)
{
    QProcess ffmpeg;
    ffmpeg.start(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-i"_s, path, u"-map"_s,
                               u"0:s:%1"_s.arg(subtitle), u"-f"_s, u"srt"_s, u"-"_s});
    ffmpeg.waitForFinished(60000);
    return QString::fromUtf8(ffmpeg.readAllStandardOutput());
}

/// The names of the tracks of an MP4, which ffprobe doesn't show: user data that begins with a name.
QStringList mp4Names(const QString &path)
{
    const QByteArray content = contentOf(path);
    QStringList names;
    for (qsizetype at = content.indexOf("udta"); at >= 0; at = content.indexOf("udta", at + 4)) {
        const QByteArray box = content.mid(at + 4, 8); // its length, big end first, and its name
        if (!box.endsWith("name"))
            continue;
        const int length = quint8(box.at(2)) * 256 + quint8(box.at(3)) - 8;
        names.append(QString::fromUtf8(content.mid(at + 12, length)));
    }
    return names;
}

/// h264 (0), aac 2ch (1), srt (2); 320x240, 8 s.
QString filmClip()
{
    return clip(u"film-with-text.mkv"_s, [](const QString &path) {
        runProgram(u"mkvmerge"_s, {u"-o"_s, path, u"--language"_s, u"0:eng"_s, longMkv(8, 5), u"--language"_s,
                                   u"0:eng"_s, srtFile()});
    });
}

} // namespace

class AddedTracksConversionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_runs = std::make_unique<RealRuns>();
        m_runs->base.scratch.write(u"out/x"_s, {});
    }

    void everyAddedTrackIsInTheOutput_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("passes");
        for (const QString &device : {u"General"_s, u"MKV"_s}) {
            for (const QString &passes : drawn(QStringList{u""_s, u"1"_s, u"2"_s}, 2))
                QTest::addRow("%s, %s passes", qPrintable(device), qPrintable(passes)) << device << passes;
        }
    }

    void everyAddedTrackIsInTheOutput()
    {
        QFETCH(QString, device);
        QFETCH(QString, passes);
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        const QStringList added = addedFiles();
        const QString film = m_runs->film(filmClip());
        const auto selection = passes.isEmpty() ? m_runs->probed(film, device, added)
                                                : m_runs->reencoded(film, device, passes, added);
        const TrackPointer mp3 = selection->trackList().at(4);
        QCOMPARE(mp3->trackFileName(), u"second.mp3"_s);
        mp3->setTrackLanguage(u"French"_s);
        mp3->setTrackTitle(u"Commentaire"_s);
        const TrackPointer french = selection->trackList().at(7);
        QCOMPARE(french->trackFileName(), u"french.srt"_s);
        french->setTrackLanguage(u"French"_s);
        french->setTrackTitle(u"Sous-titres"_s);
        const QString output = converted(selection);

        const bool isMkv = device == u"MKV"_s;
        QCOMPARE(codecsOf(output), isMkv ? u"h264 aac ac3 mp3 subrip subrip ass subrip"_s
                                         : u"h264 aac ac3 mp3 mov_text mov_text mov_text mov_text"_s);
        QCOMPARE(valuesOf(output, u"channels"_s), u"- 2 6 2 - - - -"_s);
        // Of what no probe told, Matroska says nothing and MP4 that it is undetermined.
        QCOMPARE(valuesOf(output, u"language"_s).replace(u"und"_s, u"-"_s), u"eng - deu fra eng - - fra"_s);
        compareTitles(output, isMkv);
        QVERIFY(wordsOf(output, 0).contains(u"Hello, world"_s));
        QVERIFY(wordsOf(output, 1).contains(u"Hello, world"_s));
        QVERIFY(wordsOf(output, 2).contains(u"Second line"_s));
        QVERIFY(wordsOf(output, 3).contains(u"Ça, c'est l'été"_s));
        QVERIFY(qAbs(secondsOf(output) - 8) < 0.5);
        compareUntouched(added);
    }

    /// One file can give several streams; the stereo one comes first of all sounds.
    void addedSoundIsEncoded_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("passes");
        QTest::newRow("MP4") << u"General"_s << u"1"_s;
        QTest::newRow("MP4, two passes") << u"General"_s << u"2"_s;
        QTest::newRow("MKV, two passes") << u"MKV"_s << u"2"_s;
        QTest::newRow("AVI") << u"AVI"_s << u"1"_s;
    }

    void addedSoundIsEncoded()
    {
        QFETCH(QString, device);
        QFETCH(QString, passes);
        const QString sound = m_runs->film(surroundMka(), u"sound.mka"_s);
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        const auto selection = m_runs->reencoded(m_runs->film(longMkv(8, 5)), device, passes, {sound});
        selection->trackList().at(2)->setUserAudioSettingsDictionaryArray(
            outputs({{u"passthru"_s, u"6"_s}, {u"mp3"_s, u"2"_s, u"128"_s}, {u"aac"_s, u"2"_s, u"96"_s}}));
        streamOf(*selection, u"1"_s)
            ->setUserAudioSettingsDictionaryArray(outputs({{u"ac3"_s, u"2"_s, u"192"_s}}));
        const QString output = converted(selection);
        // In stereo AAC, then AC-3, then the rest.
        QCOMPARE(codecsOf(output), (device == u"AVI"_s ? u"mpeg4"_s : u"h264"_s) + u" aac ac3 ac3 mp3"_s);
        QCOMPARE(valuesOf(output, u"channels"_s), u"- 2 2 6 2"_s);
        QVERIFY(qAbs(secondsOf(output) - 8) < 0.5);
    }

    void anAddedTextIsBurned_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("passes");
        QTest::newRow("srt into MP4") << srtFile() << u"General"_s << u"1"_s;
        QTest::newRow("srt into MP4, two passes") << srtFile() << u"PS3"_s << u"2"_s;
        QTest::newRow("srt into MKV, two passes") << srtFile() << u"MKV"_s << u"2"_s;
        QTest::newRow("srt into AVI") << srtFile() << u"AVI"_s << u"1"_s;
        QTest::newRow("ass into MKV") << assFile() << u"MKV"_s << u"1"_s;
        QTest::newRow("ssa into MP4") << ssaFile() << u"General"_s << u"1"_s;
    }

    void anAddedTextIsBurned()
    {
        QFETCH(QString, clip);
        QFETCH(QString, device);
        QFETCH(QString, passes);
        const QString text = m_runs->film(clip, u"it's [new]: a, b."_s + QFileInfo(clip).suffix());
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        const auto selection = m_runs->reencoded(m_runs->film(blackMkv()), device, passes, {text});
        TrackList tracks = selection->trackList();
        tracks.remove(2, 2); // the film's own subtitles
        tracks.last()->setUserCodec(u"burn"_s);
        selection->setTrackList(tracks);
        selection->setSubCount(u"1"_s);
        const QString output = converted(selection);
        QCOMPARE(streamsOf(output).size(), 2);
        QVERIFY(brightestAt(output, 2) > 160);
        QCOMPARE(brightestAt(output, 7), 16);
        QCOMPARE(contentOf(text), contentOf(clip));
    }

    void whatTheContainerCantHoldIsLeftOut_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("codecs");
        QTest::addColumn<QString>("warning");
        QTest::newRow("pictures in MP4") << supFile() << u"General"_s << u"h264 aac"_s
                                         << u"The subtitle new.sup (hdmv_pgs_subtitle) can't be held by the "
                                            "output and was left out."_s;
        QTest::newRow("pictures in MKV")
            << supFile() << u"MKV"_s << u"h264 aac hdmv_pgs_subtitle"_s << QString();
        QTest::newRow("MP4 text in MKV") << textOnlyMp4() << u"MKV"_s << u"h264 aac subrip"_s << QString();
        QTest::newRow("MP4 text in MP4")
            << textOnlyMp4() << u"General"_s << u"h264 aac mov_text"_s << QString();
    }

    void whatTheContainerCantHoldIsLeftOut()
    {
        QFETCH(QString, clip);
        QFETCH(QString, device);
        QFETCH(QString, codecs);
        QFETCH(QString, warning);
        const QString track = m_runs->film(clip, u"new."_s + QFileInfo(clip).suffix());
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        for (const QString &passes : drawn(QStringList{QString(), u"2"_s}, 1)) {
            const QString film = m_runs->film(longMkv(8, 5), u"a%1.mkv"_s.arg(passes));
            const auto selection = passes.isEmpty() ? m_runs->probed(film, device, {track})
                                                    : m_runs->reencoded(film, device, passes, {track});
            QCOMPARE(codecsOf(converted(selection, warning)), codecs);
        }
    }

    void anAviCarriesNoAddedSubtitle()
    {
        const QString text = m_runs->film(srtFile(), u"new.srt"_s);
        const QString sound = m_runs->film(surroundAc3(), u"new.ac3"_s);
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        const auto selection =
            m_runs->reencoded(m_runs->film(longMkv(8, 5)), u"AVI"_s, u"1"_s, {text, sound});
        const QString output =
            converted(selection, u"An AVI carries no subtitles, so the subtitle new.srt was left out."_s);
        QCOMPARE(codecsOf(output), u"mpeg4 aac ac3"_s);
    }

    /// Fonts, chapter texts and their like in an added file are no tracks, and do not come along.
    void ofAnAddedFileOnlyTheTrackIsTaken_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("codecs");
        QTest::newRow("an attachment, MP4") << attachmentMks() << u"General"_s << u"h264 aac mov_text"_s;
        QTest::newRow("an attachment, MKV") << attachmentMks() << u"MKV"_s << u"h264 aac subrip"_s;
        QTest::newRow("chapters, MKV") << chaptersM4a() << u"MKV"_s << u"h264 aac aac"_s;
        // The chapters themselves are the container's: they come as those of the whole film.
        QTest::newRow("chapters, MP4") << chaptersM4a() << u"General"_s << u"h264 aac aac bin_data"_s;
    }

    void ofAnAddedFileOnlyTheTrackIsTaken()
    {
        QFETCH(QString, clip);
        QFETCH(QString, device);
        QFETCH(QString, codecs);
        const QString track = m_runs->film(clip, u"new."_s + QFileInfo(clip).suffix());
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        for (const QString &passes : drawn(QStringList{QString(), u"1"_s, u"2"_s}, 1)) {
            const QString film = m_runs->film(longMkv(8, 5), u"a%1.mkv"_s.arg(passes));
            const auto selection = passes.isEmpty() ? m_runs->probed(film, device, {track})
                                                    : m_runs->reencoded(film, device, passes, {track});
            QCOMPARE(codecsOf(converted(selection)), codecs);
        }
    }

    void aFileThatWasAddedTwiceGivesTwoTracks()
    {
        const QString text = m_runs->film(srtFile(), u"new.srt"_s);
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        const auto selection = m_runs->probed(m_runs->film(longMkv(8, 5)), u"MKV"_s, {text, text});
        QCOMPARE(codecsOf(converted(selection)), u"h264 aac subrip subrip"_s);
    }

    /// What can't be drawn is not drawn, and a user who asked for it is told.
    void whatCantBeBurnedIsLeftOut_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::newRow("pictures") << supFile();
        QTest::newRow("text in a container") << textOnlyMp4();
        QTest::newRow("text in Matroska") << attachmentMks();
    }

    void whatCantBeBurnedIsLeftOut()
    {
        QFETCH(QString, clip);
        const QString name = u"new."_s + QFileInfo(clip).suffix();
        const QString text = m_runs->film(clip, name);
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        const auto selection = m_runs->reencoded(m_runs->film(pgsMkv()), u"General"_s, u"1"_s, {text});
        TrackList tracks = selection->trackList();
        tracks.removeAt(2);
        tracks.last()->setUserCodec(u"burn"_s);
        selection->setTrackList(tracks);
        selection->setSubCount(u"1"_s);
        const QString output = converted(
            selection, u"The subtitle %1 can't be drawn into the picture and was left out."_s.arg(name));
        QCOMPARE(codecsOf(output), u"h264 aac"_s);
        QCOMPARE(brightestAt(output, 2), 16);
    }

    /// A line that can't be read as text is missing, which is said.
    void aLatin1TextIsAWarning_data()
    {
        QTest::addColumn<QString>("userCodec");
        QTest::newRow("into MP4") << u"mux"_s;
        QTest::newRow("burned") << u"burn"_s;
    }

    void aLatin1TextIsAWarning()
    {
        QFETCH(QString, userCodec);
        const QString text =
            m_runs->base.scratch.write(u"old.srt"_s, "1\n00:00:01,000 --> 00:00:03,000\n\xc9t\xe9\n\n"
                                                     "2\n00:00:04,000 --> 00:00:05,000\nplain\n\n");
        const auto selection = m_runs->reencoded(m_runs->film(longMkv(8, 5)), u"General"_s, u"1"_s, {text});
        selection->trackList().last()->setUserCodec(userCodec);
        const auto job = m_runs->convert(selection);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Warnings, qPrintable(job->outcome().sentence));
        QVERIFY2(job->outcome().sentence.contains(u"Invalid data found"_s),
                 qPrintable(job->outcome().sentence));
    }

    /// All of them at once: every title arrives as it was read, and no name counts for anything.
    void hostileNamesOfAddedFilesAreNoObstacle()
    {
        QStringList paths{m_runs->film(srtFile(), u"in/a\nNo space left on device\npartial file.srt"_s)};
        QStringList titles{u"Subtitle Track"_s};
        for (const Film &film : drawn(hostileFilms(), 20)) {
            const QString made = m_runs->path(u"in/made.mks"_s);
            runProgram(u"mkvmerge"_s,
                       {u"-q"_s, u"-o"_s, made, u"--track-name"_s, u"0:"_s + film.title, srtFile()});
            paths.append(m_runs->path(u"in/"_s + film.stem + u".mks"_s));
            QVERIFY(QFile::rename(made, paths.constLast()));
            titles.append(asRead(film.title));
        }
        m_runs->base.setSaveFolder(m_runs->path(u"out"_s));
        const QString output = converted(m_runs->probed(m_runs->film(longMkv(8, 5)), u"MKV"_s, paths));
        QStringList written;
        for (const QJsonObject &stream : streamsOf(output))
            written.append(stream.value(u"tags"_s).toObject().value(u"title"_s).toString());
        QCOMPARE(written.mid(2), titles);
        QCOMPARE(m_runs->names(), QStringList({u"a.mkv"_s, u"in"_s, u"out"_s}));
    }

private:
    /// An AC-3 that tells its language, an MP3, an SRT, an ASS and a second SRT.
    QStringList addedFiles() const
    {
        return {m_runs->film(surroundMka(), u"sound.mka"_s), m_runs->film(mp3File(), u"second.mp3"_s),
                m_runs->film(srtFile(), u"lines.srt"_s), m_runs->film(assFile(), u"lines.ass"_s),
                m_runs->film(frenchSrt(), u"french.srt"_s)};
    }

    static void compareUntouched(const QStringList &added)
    {
        const QStringList clips{surroundMka(), mp3File(), srtFile(), assFile(), frenchSrt()};
        for (qsizetype i = 0; i < clips.size(); ++i)
            QCOMPARE(contentOf(added.at(i)), contentOf(clips.at(i)));
    }

    /// The output of a conversion that goes well, or with that warning.
    QString converted(const SelectionPointer &selection, const QString &warning = {})
    {
        const auto job = m_runs->convert(selection);
        const bool ended = m_runs->run(job);
        const auto verdict = warning.isNull() ? steps::Verdict::Ok : steps::Verdict::Warnings;
        if (!ended || job->outcome().verdict != verdict || job->outputs().size() != 1)
            qWarning("%s", qPrintable(job->outcome().sentence));
        else if (warning.isNull() || job->outcome().sentence == warning)
            return job->outputs().constFirst().toLocalFile();
        return {};
    }

    /// MP4 keeps titles where the probe doesn't look.
    static void compareTitles(const QString &output, bool isMkv)
    {
        const QStringList titles{u"Video Track"_s,    u"Audio Track"_s,    u"Raumklang"_s,
                                 u"Commentaire"_s,    u"Subtitle Track"_s, u"Subtitle Track"_s,
                                 u"Subtitle Track"_s, u"Sous-titres"_s};
        if (isMkv)
            QCOMPARE(valuesOf(output, u"title"_s), titles.join(u' '));
        else
            QCOMPARE(mp4Names(output), titles);
    }

    std::unique_ptr<RealRuns> m_runs;
};

TESSARAY_TEST(AddedTracksConversionTest)
#include "AddedTracksConversionTest.moc"

// What a track that is added holds, and what it does to the list of the open file.
#include "media/KXVideoFile.h"

#include "support/HostileTexts.h"
#include "support/ProbeJson.h"
#include "support/TestMain.h"
#include "support/media/AddingFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

const QByteArrayList aac{"index=0", "codec_type=audio", "codec_name=aac", "channels=2"};
const QByteArrayList srt{"index=0", "codec_type=subtitle", "codec_name=subrip"};

/// The stream in the place that its index tells: with that many streams of data in front of it.
QList<QByteArrayList> behindOthers(const QByteArrayList &stream)
{
    QList<QByteArrayList> streams;
    const int others = stream.contains("index=3") ? 3 : 0;
    for (int index = 0; index < others; ++index)
        streams.append({"index=" + QByteArray::number(index), "codec_type=data"});
    return streams << stream;
}

} // namespace

class AddedTrackFieldsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewAudioTrackHasTheseFields()
    {
        AddingFixture fixture;
        fixture.playStreams({{"index=0", "codec_type=audio", "codec_name=ac3", "channels=6",
                              "bit_rate=384000", "tags.language=ger", "tags.title=Raumklang"}});
        fixture.newFile(u"Der Ton.AC3"_s);
        QCOMPARE(fixture.add(u"Der Ton.AC3"_s), u"OK"_s);
        compareFields(*fixture.file().trackList().constLast(),
                      {{u"trackType"_s, u"Audio"_s},
                       {u"trackMp4boxID"_s, u"1"_s},
                       {u"trackFfmpegID"_s, u"0"_s},
                       {u"trackInfo"_s, u"Audio: (ac3 6ch.)"_s},
                       {u"trackTitle"_s, u"Raumklang"_s},
                       {u"trackMencoderID"_s, u"0"_s},
                       {u"trackIndex"_s, u"2"_s},
                       {u"trackLanguage"_s, u"German"_s},
                       {u"trackCodec"_s, u"ac3"_s},
                       {u"trackExtension"_s, u"ac3"_s},
                       {u"trackBitRate"_s, u"384"_s},
                       {u"trackNumberOfChannels"_s, u"6"_s},
                       {u"trackMkvmergeID"_s, u"0"_s},
                       {u"userCodec"_s, u"passthru"_s},
                       {u"userAudioSettingsDictionaryArray"_s,
                        QVariant::fromValue(AudioSettingsList{{{u"userCodec"_s, u"passthru"_s},
                                                               {u"userBitRate"_s, u"0"_s},
                                                               {u"userNumberOfChannels"_s, u"6"_s}}})},
                       {u"trackFilePath"_s, fixture.path(u"Der Ton.AC3"_s)},
                       {u"trackPathToFileFolder"_s, fixture.scratch().path(u"media/"_s)},
                       {u"trackFileURL"_s, fixture.url(u"Der Ton.AC3"_s)},
                       {u"trackURLToFileFolder"_s, QUrl::fromLocalFile(fixture.scratch().path(u"media/"_s))},
                       {u"trackFileName"_s, u"Der Ton.AC3"_s},
                       {u"trackFileExtension"_s, u"AC3"_s},
                       {u"externalTrackFlag"_s, true}});
        QCOMPARE(fixture.file().trackList().constLast()->probedCodecName(), u"ac3"_s);
    }

    void aNewSubtitleHasTheseFields()
    {
        AddingFixture fixture;
        fixture.playStreams({srt});
        QCOMPARE(fixture.add(), u"OK"_s);
        compareFields(*fixture.file().trackList().constLast(),
                      {{u"trackType"_s, u"Subtitle"_s},
                       {u"trackMp4boxID"_s, u"1"_s},
                       {u"trackFfmpegID"_s, u"0"_s},
                       {u"trackInfo"_s, u"Subtitle: (srt)"_s},
                       {u"trackTitle"_s, u"Subtitle Track"_s},
                       {u"trackMencoderID"_s, u"0"_s},
                       {u"trackIndex"_s, u"1"_s},
                       {u"trackCodec"_s, u"srt"_s},
                       {u"trackExtension"_s, u"srt"_s},
                       {u"userCodec"_s, u"mux"_s},
                       {u"trackFilePath"_s, fixture.path()},
                       {u"trackPathToFileFolder"_s, fixture.scratch().path(u"media/"_s)},
                       {u"trackFileURL"_s, fixture.url()},
                       {u"trackURLToFileFolder"_s, QUrl::fromLocalFile(fixture.scratch().path(u"media/"_s))},
                       {u"trackFileName"_s, u"new.srt"_s},
                       {u"trackFileExtension"_s, u"srt"_s},
                       {u"externalTrackFlag"_s, true}});
        QCOMPARE(fixture.file().trackList().constLast()->probedCodecName(), u"subrip"_s);
    }

    /// It only becomes an external track by being added.
    void aCreatedTrackIsNotYetExternal()
    {
        AddingFixture fixture;
        fixture.playStreams({srt});
        QCOMPARE(fixture.created().tracks.value(0)->externalTrackFlag(), false);
        QCOMPARE(fixture.created().tracks.value(0)->trackIndex(), u"0"_s);
    }

    void readsOneValue_data()
    {
        QTest::addColumn<QByteArrayList>("stream");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QByteArrayList &stream, const char *word,
                            const QString &expected) {
            QTest::newRow(name) << stream << QString::fromLatin1(word) << expected;
        };
        const QByteArrayList audio{"codec_type=audio", "codec_name=aac"};
        const auto with = [&](const QByteArrayList &values) { return audio + values; };
        const auto audioOf = [](const char *codec) {
            return QByteArrayList{"codec_type=audio", QByteArray("codec_name=") + codec};
        };
        const auto textOf = [](const char *codec) {
            return QByteArrayList{"codec_type=subtitle", QByteArray("codec_name=") + codec};
        };

        row("index 0", with({"index=0"}), "trackFfmpegID", u"0"_s);
        row("index 3", with({"index=3"}), "trackFfmpegID", u"3"_s);
        row("no index", audio, "trackFfmpegID", u"0"_s);
        row("mp4box counts from 1", with({"index=0"}), "trackMp4boxID", u"1"_s);
        row("mp4box and index 3", with({"index=3"}), "trackMp4boxID", u"4"_s);
        row("mp4box without an index", audio, "trackMp4boxID", u"1"_s);
        row("mkvmerge counts in the added file", with({"index=3"}), "trackMkvmergeID", u"0"_s);
        row("mencoder counts by kind", with({"index=3"}), "trackMencoderID", u"0"_s);

        row("a title", with({"tags.title=Kommentar"}), "trackTitle", u"Kommentar"_s);
        row("a title in capitals", with({"tags.TITLE=Kommentar"}), "trackTitle", u"Kommentar"_s);
        row("small letters come first", with({"tags.TITLE=B", "tags.title=A"}), "trackTitle", u"A"_s);
        row("an empty title", with({"tags.title="}), "trackTitle", u"Audio Track"_s);
        row("an empty title and one in capitals", with({"tags.title=", "tags.TITLE=B"}), "trackTitle",
            u"B"_s);
        row("no title", audio, "trackTitle", u"Audio Track"_s);
        row("no title of a subtitle", textOf("ass"), "trackTitle", u"Subtitle Track"_s);
        row("a title of none", with({"tags.title=none"}), "trackTitle", u"Audio Track"_s);
        row("a title that begins with none", with({"tags.title=nonesuch film"}), "trackTitle",
            u"Audio Track"_s);
        row("None in capitals", with({"tags.title=None"}), "trackTitle", u"None"_s);
        row("none at the end", with({"tags.title=and then none"}), "trackTitle", u"and then none"_s);
        row("a title with a comma", with({"tags.title=Hello, Fixture"}), "trackTitle", u"Hello Fixture"_s);
        row("a title with a colon", with({"tags.title=Part 1: Intro"}), "trackTitle", u"Part 1"_s);
        row("a title outside the tags", with({"title=Kommentar"}), "trackTitle", u"Audio Track"_s);

        row("no language", audio, "trackLanguage", u"undetermined"_s);
        row("eng", with({"tags.language=eng"}), "trackLanguage", u"English"_s);
        row("ger", with({"tags.language=ger"}), "trackLanguage", u"German"_s);
        row("deu", with({"tags.language=deu"}), "trackLanguage", u"German"_s);
        row("fre", with({"tags.language=fre"}), "trackLanguage", u"French"_s);
        row("two letters", with({"tags.language=fr"}), "trackLanguage", u"French"_s);
        row("in capitals", with({"tags.LANGUAGE=jpn"}), "trackLanguage", u"Japanese"_s);
        row("und", with({"tags.language=und"}), "trackLanguage", u"undetermined"_s);
        row("no language of this base", with({"tags.language=xxx"}), "trackLanguage", u"undetermined"_s);

        row("a bit rate", with({"bit_rate=192000"}), "trackBitRate", u"192"_s);
        row("a bit rate that is cut", with({"bit_rate=192999"}), "trackBitRate", u"192"_s);
        row("1001", with({"bit_rate=1001"}), "trackBitRate", u"1"_s);
        row("1000", with({"bit_rate=1000"}), "trackBitRate", u"0"_s);
        row("no number", with({"bit_rate=N/A"}), "trackBitRate", u"0"_s);
        row("no bit rate", audio, "trackBitRate", u"0"_s);

        row("channels", with({"channels=8"}), "trackNumberOfChannels", u"8"_s);
        row("no channels", audio, "trackNumberOfChannels", u"0"_s);
        row("channels are shown", with({"channels=8"}), "trackInfo", u"Audio: (aac 8ch.)"_s);
        row("no channels are shown", audio, "trackInfo", u"Audio: (aac 0ch.)"_s);
        row("a subtitle has none", textOf("ass") + QByteArrayList{"channels=2"}, "trackNumberOfChannels",
            u"0"_s);

        row("eac3", audioOf("eac3"), "trackCodec", u"ac3"_s);
        row("in capitals too", audioOf("MP3"), "trackCodec", u"mp3"_s);
        row("dts is matched last as dtshd", audioOf("dts"), "trackCodec", u"dtshd"_s);
        row("pcm", audioOf("pcm_s16le"), "trackCodec", u"wav"_s);
        row("pcm as a file", audioOf("pcm_s16le"), "trackExtension", u"wav"_s);
        row("truehd", audioOf("truehd"), "trackExtension", u"thd"_s);
        row("subrip", textOf("subrip"), "trackCodec", u"srt"_s);
        row("ass", textOf("ass"), "trackInfo", u"Subtitle: (ass)"_s);
        row("ssa", textOf("ssa"), "trackCodec", u"ssa"_s);
        row("mov_text", textOf("mov_text"), "trackCodec", u"ttxt"_s);
        row("dvd_subtitle is matched last as teletext", textOf("dvd_subtitle"), "trackCodec", u"teletext"_s);
        row("teletext as a file", textOf("hdmv_pgs_subtitle"), "trackExtension", u"xxx"_s);
        row("dvb_subtitle", textOf("dvb_subtitle"), "trackExtension", u"yyy"_s);
    }

    void readsOneValue()
    {
        QFETCH(QByteArrayList, stream);
        QFETCH(QString, word);
        QFETCH(QString, expected);
        AddingFixture fixture;
        fixture.playStreams(behindOthers(stream));
        const TrackPointer track = fixture.created().tracks.value(0);
        QVERIFY(track);
        QCOMPARE(track->property(qPrintable(word)).toString(), expected);
    }

    void aTrackKnowsWhetherItIsAloneInItsFile_data()
    {
        QTest::addColumn<QList<QByteArrayList>>("streams");
        QTest::addColumn<bool>("hasCompany");
        using Streams = QList<QByteArrayList>;
        const QByteArrayList data{"index=1", "codec_type=data", "codec_name=bin_data"};
        QTest::newRow("alone") << Streams{srt} << false;
        QTest::newRow("with data") << Streams{srt, data} << true;
        QTest::newRow("behind data") << Streams{data, aac} << true;
        QTest::newRow("with a stream of no type") << Streams{aac, {"index=1"}} << true;
    }

    void aTrackKnowsWhetherItIsAloneInItsFile()
    {
        QFETCH(QList<QByteArrayList>, streams);
        QFETCH(bool, hasCompany);
        AddingFixture fixture;
        fixture.playStreams(streams);
        QCOMPARE(fixture.add(), u"OK"_s);
        QCOMPARE(fixture.file().trackList().constLast()->hasCompany(), hasCompany);
    }

    /// Each stands first among its kind in the added file.
    void oneTrackOfEachKindIsNumberedAlone()
    {
        AddingFixture fixture;
        fixture.playStreams({{"index=0", "codec_type=audio", "codec_name=aac"},
                             {"index=1", "codec_type=subtitle", "codec_name=ass"}});
        const auto added = fixture.created();
        QCOMPARE(fieldOf(added.tracks, "trackType"), u"Audio,Subtitle"_s);
        QCOMPARE(fieldOf(added.tracks, "trackMencoderID"), u"0,0"_s);
        QCOMPARE(fieldOf(added.tracks, "trackMp4boxID"), u"1,2"_s);
        QCOMPARE(fieldOf(added.tracks, "trackTitle"), u"Audio Track,Subtitle Track"_s);
    }

    void tracksAreCountedAnew_data()
    {
        QTest::addColumn<QString>("types");
        QTest::addColumn<QByteArrayList>("stream");
        QTest::addColumn<QString>("indexes");
        QTest::addColumn<QString>("counts");
        QTest::newRow("behind a film")
            << u"Video,Audio,Audio,Subtitle"_s << srt << u"1,1,2,1,2"_s << u"1,2,2"_s;
        QTest::newRow("audio behind subtitles")
            << u"Video,Audio,Subtitle,Subtitle"_s << aac << u"1,1,1,2,2"_s << u"1,2,2"_s;
        QTest::newRow("External Subtitle counts with the subtitles")
            << u"External Subtitle,Video,Subtitle,External Subtitle"_s << srt << u"1,1,2,3,4"_s << u"1,0,4"_s;
        QTest::newRow("other types keep theirs")
            << u"Data,Video,none,Audio,Attachment"_s << aac << u"77,1,77,1,77,2"_s << u"1,2,0"_s;
        QTest::newRow("types are whole words")
            << u"Videotape,Audiobook,Subtitles,video"_s << srt << u"77,77,77,77,1"_s << u"0,0,1"_s;
        QTest::newRow("two videos") << u"Video,Video"_s << aac << u"1,2,1"_s << u"2,1,0"_s;
        QTest::newRow("no tracks") << u""_s << srt << u"1"_s << u"0,0,1"_s;
        QTest::newRow("twelve") << u"Audio,Audio,Audio,Audio,Audio,Audio,Audio,Audio,Audio,Audio,Audio"_s
                                << aac << u"1,2,3,4,5,6,7,8,9,10,11,12"_s << u"0,12,0"_s;
    }

    void tracksAreCountedAnew()
    {
        QFETCH(QString, types);
        QFETCH(QByteArrayList, stream);
        QFETCH(QString, indexes);
        QFETCH(QString, counts);
        AddingFixture fixture(types);
        for (const TrackPointer &track : fixture.file().trackList())
            track->setTrackIndex(u"77"_s);
        fixture.playStreams({stream});
        QCOMPARE(fixture.add(), u"OK"_s);
        QCOMPARE(fieldOf(fixture.file().trackList(), "trackIndex"), indexes);
        QCOMPARE(QStringList({fixture.file().theNumberOfVideoTracks(),
                              fixture.file().theNumberOfAudioTracks(), fixture.file().theNumberOfSubTracks()})
                     .join(u','),
                 counts);
    }

    /// It stays behind the file's own tracks, whatever its kind.
    void whatIsAddedComesLast()
    {
        AddingFixture fixture(u"Video,Audio,Subtitle"_s);
        const TrackList own = fixture.file().trackList();
        fixture.playStreams({aac});
        QCOMPARE(fixture.add(), u"OK"_s);
        QCOMPARE(fixture.file().trackList().first(3), own);
        QCOMPARE(fixture.file().trackList().constLast()->trackType(), u"Audio"_s);
    }

    void addsThreeFiles()
    {
        AddingFixture fixture(u"Video,Audio"_s);
        for (const QString &name : {u"one.ac3"_s, u"two.srt"_s, u"three.ass"_s})
            fixture.newFile(name);
        fixture.playStreams({aac});
        QCOMPARE(fixture.add(u"one.ac3"_s), u"OK"_s);
        fixture.playStreams({srt});
        QCOMPARE(fixture.add(u"two.srt"_s), u"OK"_s);
        QCOMPARE(fixture.add(u"three.ass"_s), u"OK"_s);
        const TrackList tracks = fixture.file().trackList();
        QCOMPARE(fieldOf(tracks, "trackFileName"), u"none,none,one.ac3,two.srt,three.ass"_s);
        QCOMPARE(fieldOf(tracks, "trackIndex"), u"1,1,2,1,2"_s);
        QCOMPARE(fieldOf(tracks, "externalTrackFlag"), u"false,false,true,true,true"_s);
        QCOMPARE(fixture.file().theNumberOfVideoTracks(), u"1"_s);
        QCOMPARE(fixture.file().theNumberOfAudioTracks(), u"2"_s);
        QCOMPARE(fixture.file().theNumberOfSubTracks(), u"2"_s);
    }

    void aFileCanBeAddedTwice()
    {
        AddingFixture fixture;
        fixture.playStreams({srt});
        QCOMPARE(fixture.add(), u"OK"_s);
        QCOMPARE(fixture.add(), u"OK"_s);
        QCOMPARE(fixture.file().trackList().size(), 4);
        QVERIFY(fixture.file().trackList().at(2) != fixture.file().trackList().at(3));
        QCOMPARE(fixture.file().theNumberOfSubTracks(), u"2"_s);
    }

    /// Who holds the list, or a copy of the file, keeps what it had.
    void listsThatOthersHoldStayAsTheyAre()
    {
        AddingFixture fixture(u"Video,Audio"_s);
        const TrackList held = fixture.file().trackList();
        const VideoFilePointer copy = fixture.file().copy();
        KXVideoFile other(nullptr);
        other.makeSelfCopyOfVideoFile(fixture.file());
        fixture.playStreams({srt});
        QCOMPARE(fixture.add(), u"OK"_s);
        QCOMPARE(fixture.file().trackList().size(), 3);
        QCOMPARE(held.size(), 2);
        QCOMPARE(copy->trackList(), held);
        QCOMPARE(other.trackList(), held);
        QCOMPARE(copy->theNumberOfSubTracks(), u"0"_s);
        QCOMPARE(fixture.file().copy()->trackList(), fixture.file().trackList());
    }

    /// Only its tracks and their numbers: the probe, the names and the picture are the video's.
    void theFilesOwnPropertiesStay()
    {
        AddingFixture fixture;
        KXVideoFile &file = fixture.file();
        file.setTheFileName(u"film.mkv"_s);
        file.setTheFileURL(QUrl::fromLocalFile(u"/v/film.mkv"_s));
        file.setTheWidth(u"320"_s);
        file.setFfprobeResultsDictionaryArray({QVariantMap{{u"index"_s, u"0"_s}}});
        fixture.playStreams({srt});
        QCOMPARE(fixture.add(), u"OK"_s);
        QCOMPARE(file.theFileName(), u"film.mkv"_s);
        QCOMPARE(file.theFileURL(), QUrl::fromLocalFile(u"/v/film.mkv"_s));
        QCOMPARE(file.theWidth(), u"320"_s);
        QCOMPARE(file.ffprobeResultsDictionaryArray().size(), 1);
        for (const char *word : {"addedFilePath", "addedFileName", "addedFileExtension"})
            QCOMPARE(file.property(word).toString(), u"none"_s);
    }

    void hostileNamesReachTheToolToTheByte()
    {
        AddingFixture fixture;
        fixture.playStreams({srt});
        const QStringList names = support::hostileNames(40);
        for (const QString &name : names) {
            const QString path = fixture.scratch().write(u"bad/x"_s + name, "new");
            QCOMPARE(fixture.file().addTrack(QUrl::fromLocalFile(path)), u"OK"_s);
            QCOMPARE(fixture.file().trackList().constLast()->trackFileName(), u'x' + name);
            QCOMPARE(fixture.runs().constLast().arguments.value(1), path.toUtf8());
        }
        QCOMPARE(fixture.file().trackList().size(), 2 + names.size());
    }

private:
    /// Every field has the given value, or else that of a new track.
    static void compareFields(const KXVideoTrack &track, const QVariantMap &expected)
    {
        const KXVideoTrack fresh;
        for (const QString &name : KXVideoTrack::fieldNames()) {
            const QVariant value = expected.value(name, fresh.property(qPrintable(name)));
            QVERIFY2(track.property(qPrintable(name)) == value, qPrintable(name));
        }
        for (const QString &name : expected.keys())
            QVERIFY2(KXVideoTrack::fieldNames().contains(name), qPrintable(name));
    }
};

TESSARAY_TEST(AddedTrackFieldsTest)
#include "AddedTrackFieldsTest.moc"

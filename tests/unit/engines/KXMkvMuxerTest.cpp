#include "engines/mkvtoolnix/KXMkvMuxer.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"
#include "support/selection/HandMade.h"

#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// A muxer alone in its fixture.
class MuxerFixture final : public MkvFixture
{
public:
    using MkvFixture::MkvFixture;

    /// As the job does it before a mux: every track's snapshot is taken.
    QString mux(const TrackList &tracks, const QString &jobType = mkvConversion)
    {
        const auto chosen = selection(jobType, tracks);
        for (const TrackPointer &track : tracks)
            track->initializeForMuxing();
        return muxer.startConversionFor(chosen);
    }
    bool waitForRuns(int count) const
    {
        return waitFor([&] { return calls().size() >= count; });
    }

    KXMkvMuxer muxer{context()};
};

TrackPointer titledSound(const QString &id = u"1"_s, const QString &title = u""_s)
{
    const TrackPointer track = audioTrack(id, u"ac3"_s, u"6"_s, {});
    track->setTrackTitle(title);
    return track;
}

TrackPointer titledPicture(const QString &title = u""_s)
{
    const TrackPointer track = videoTrack(u"passthru"_s);
    track->setTrackTitle(title);
    return track;
}

/// The options of an English track without flags.
} // namespace

class KXMkvMuxerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewMuxerHasItsName()
    {
        MuxerFixture fixture;
        QCOMPARE(fixture.muxer.converterName(), u"MkvMuxer"_s);
        QVERIFY(fixture.muxer.tracksToMux().isEmpty());
    }

    // What it writes.

    void aConversionMuxWritesMuxed()
    {
        MuxerFixture fixture;
        const QString id = fixture.mux({titledPicture()});
        QCOMPARE(fixture.shown(fixture.muxer.outputFileURL().toLocalFile()), u"/v/a.muxed.mkv"_s);
        QCOMPARE(fixture.shown(fixture.muxer.logFileURL().toLocalFile()), u"/v/a.mkv.muxed.log"_s);
        QVERIFY(id.toInt() > 0);
        QCOMPARE(fixture.muxer.doShell_ID(), id);
        QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList{u"/v/a.muxed.mkv"_s});
        QVERIFY(fixture.waitForRuns(1));
    }

    void aTrackRemovalMuxWritesRemovedFromTheTracksToKeep()
    {
        MuxerFixture fixture;
        const TrackPointer kept = titledPicture(u"Film"_s);
        kept->setTrackFileURL(fixture.source);
        const auto chosen = fixture.selection(mkvRemoval, {titledSound()});
        chosen->setKeepTracksList({kept});
        fixture.muxer.startConversionFor(chosen);
        QCOMPARE(fixture.muxer.tracksToMux(), TrackList{kept});
        // No other code took this track's snapshot.
        QCOMPARE(kept->muxingTrackTitle(), u"Film"_s);
        QCOMPARE(kept->muxingTrackFileURL(), fixture.source);
        QCOMPARE(fixture.meant(), u"-o|/v/a.removed.mkv|"_s + muxOptions(u"0"_s, u"Film"_s) +
                                      u"-d 0|-A|-S|'/v/a.mkv'|&>|/v/a.mkv.removed.log|& echo $!"_s);
        QCOMPARE(fixture.posted(u"conversionStarted"_s), QStringList{u"/v/a.removed.mkv"_s});
        QVERIFY(fixture.waitForRuns(1));
    }

    /// It is an attachment, which comes without being asked for.
    void aCoverIsNotAskedFor()
    {
        const auto asksForCover = [](const TrackList &others) {
            MuxerFixture fixture;
            const TrackPointer cover = titledPicture();
            cover->setIsCover(true);
            cover->setTrackMkvmergeID(u"5"_s);
            fixture.mux(others + TrackList{cover});
            if (!fixture.waitForRuns(1))
                qFatal("nothing was started");
            return fixture.calls().constFirst().contains(u"5:eng"_s);
        };
        QVERIFY(!asksForCover({titledPicture()}));
        QVERIFY(asksForCover({})); // else its file would not be read
    }

    void otherJobTypesMuxWhatTheCallerSet()
    {
        for (const QString &type : {u"MKV Remux"_s, u"MKV Track Replacement"_s, u""_s}) {
            MuxerFixture fixture;
            const TrackPointer set = titledSound();
            const auto chosen = fixture.selection(type, {titledPicture(), set});
            chosen->setKeepTracksList({titledPicture()});
            set->initializeForMuxing();
            fixture.muxer.setTracksToMux({set});
            fixture.muxer.startConversionFor(chosen);
            QCOMPARE(fixture.muxer.tracksToMux(), TrackList{set});
            QCOMPARE(fixture.meant(), u"-o|/v/a.muxed.mkv|"_s + muxOptions(u"1"_s) +
                                          u"-D|-a 1|-S|'/v/a.mkv'|&>|/v/a.mkv.muxed.log|& echo $!"_s);
            QVERIFY(fixture.waitForRuns(1));
        }
    }

    void theSaveFolderOfThePreferencesTakesOutputAndLog()
    {
        MuxerFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.path(u"s"_s));
        fixture.mux({titledPicture()});
        QCOMPARE(fixture.shown(fixture.muxer.outputFileURL().toLocalFile()), u"/v/s/a.muxed.mkv"_s);
        QCOMPARE(fixture.shown(fixture.muxer.logFileURL().toLocalFile()), u"/v/s/a.mkv.muxed.log"_s);
        QVERIFY(fixture.waitForRuns(1));
    }

    void namesThatAreTakenGetANumber()
    {
        MuxerFixture fixture;
        fixture.base.scratch.write(u"a.muxed.mkv"_s, "another film");
        fixture.base.scratch.write(u"a.mkv.muxed.log"_s, "another log");
        fixture.mux({titledPicture()});
        QCOMPARE(fixture.shown(fixture.muxer.outputFileURL().toLocalFile()), u"/v/a.muxed (2).mkv"_s);
        QCOMPARE(fixture.shown(fixture.muxer.logFileURL().toLocalFile()), u"/v/a.mkv.muxed (2).log"_s);
        QVERIFY(fixture.waitForRuns(1));
        QCOMPARE(fixture.base.scratch.read(u"a.muxed.mkv"_s), QByteArray("another film"));
        QCOMPARE(fixture.base.scratch.read(u"a.mkv.muxed.log"_s), QByteArray("another log"));
    }

    // The list.

    void theWholeListOfThreeFiles()
    {
        MuxerFixture fixture;
        const TrackPointer video = titledPicture(u"The Film"_s);
        video->setTrackDefaultFlag(true);
        const TrackPointer german = titledSound(u"1"_s);
        german->setTrackLanguage(u"German"_s);
        german->setTrackForcedFlag(true);
        const TrackPointer subtitle = subtitleTrack(u"3"_s, u"srt"_s);
        subtitle->setTrackTitle(u"none"_s);
        const TrackPointer added = external(titledSound(u"0"_s, u"Comments"_s), fixture.path(u"b.ac3"_s));
        added->setTrackMkvmergeID(u"0"_s);
        const TrackPointer foreign = external(subtitleTrack(u"0"_s, u"srt"_s), fixture.path(u"c.mkv"_s));
        foreign->setTrackType(u"External Subtitle"_s);
        foreign->setTrackTitle(u""_s);
        fixture.mux({video, german, added, subtitle, foreign});
        QCOMPARE(fixture.meant(),
                 // flags are digits, and languages have their terminologic codes
                 u"-o|/v/a.muxed.mkv|--language 0:eng|--track-name 0:'The Film'|--default-track 0:1|"
                 "--forced-track 0:0|--compression 0:none|--language 1:deu|--track-name 1:''|"
                 "--default-track 1:0|--forced-track 1:1|--compression 1:none|"_s +
                     muxOptions(u"3"_s, u"none"_s) + u"-d 0|-a 1|-s 3|'/v/a.mkv'|"_s +
                     muxOptions(u"0"_s, u"Comments"_s) + u"-D|-a 0|-S|'/v/b.ac3'|"_s + muxOptions(u"0"_s) +
                     u"-D|-A|-s 0|'/v/c.mkv'|&>|/v/a.mkv.muxed.log|& echo $!"_s);
        QVERIFY(fixture.waitForRuns(1));
    }

    void everyWordArrives()
    {
        MuxerFixture fixture;
        fixture.mux({titledPicture(u"Film"_s), titledSound()});
        QVERIFY(fixture.waitForRuns(1));
        QCOMPARE(
            fixture.calls().first(),
            words(u"-o /v/a.muxed.mkv --language 0:eng --track-name 0:Film --default-track 0:0 "
                  "--forced-track 0:0 --compression 0:none --language 1:eng --track-name 1: "
                  "--default-track 1:0 --forced-track 1:0 --compression 1:none -d 0 -a 1 -S /v/a.mkv"_s));
    }

    void aFileWithoutAKindRefusesThatKind_data()
    {
        QTest::addColumn<QString>("types");
        QTest::addColumn<QString>("lists");
        QTest::newRow("no video: -D") << u"as"_s << u"-D|-a 1|-s 2|"_s;
        QTest::newRow("no audio: -A") << u"vs"_s << u"-d 0|-A|-s 2|"_s;
        QTest::newRow("no subtitles: -S") << u"va"_s << u"-d 0|-a 1|-S|"_s;
        QTest::newRow("everything") << u"vas"_s << u"-d 0|-a 1|-s 2|"_s;
    }

    void aFileWithoutAKindRefusesThatKind()
    {
        QFETCH(QString, types);
        QFETCH(QString, lists);
        MuxerFixture fixture;
        TrackList tracks;
        if (types.contains(u'v'))
            tracks << titledPicture();
        if (types.contains(u'a'))
            tracks << titledSound();
        if (types.contains(u's'))
            tracks << subtitleTrack(u"2"_s, u"srt"_s);
        fixture.mux(tracks);
        QVERIFY2(fixture.meant().contains(u"none|"_s + lists + u"'/v/a.mkv'|"_s),
                 qPrintable(fixture.meant()));
        QVERIFY(fixture.waitForRuns(1));
    }

    // Texts of the file: the list shows them between apostrophes, and the line makes one word of each.

    void titlesArriveAsTheyAre_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("item");
        QTest::newRow("a blank") << u"a b"_s << u"'a b'"_s;
        QTest::newRow("empty") << u""_s << u"''"_s;
        QTest::newRow("apostrophe") << u"it's; touch x"_s << u"'it\\'s; touch x'"_s; // so in the list
        QTest::newRow("quotes") << u"a \"b\""_s << u"'a \"b\"'"_s;
        QTest::newRow("a command") << u"$(touch x) `touch x`"_s << u"'$(touch x) `touch x`'"_s;
        QTest::newRow("a backslash at the end") << u"a\\"_s << u"'a\\'"_s;
        QTest::newRow("not ASCII") << u"Für Élise – 日本"_s << u"'Für Élise – 日本'"_s;
        QTest::newRow("the redirection") << u"&> x & echo $!"_s << u"'&> x & echo $!'"_s;
        QTest::newRow("looks like an option") << u"--forced-track 0:1"_s << u"'--forced-track 0:1'"_s;
    }

    void titlesArriveAsTheyAre()
    {
        QFETCH(QString, title);
        QFETCH(QString, item);
        MuxerFixture fixture;
        fixture.mux({titledPicture(title)});
        QVERIFY2(fixture.meant().contains(u"|--track-name 0:"_s + item + u"|--default"_s),
                 qPrintable(fixture.meant()));
        QVERIFY(fixture.waitForRuns(1));
        QCOMPARE(fixture.calls().first().value(5), u"0:"_s + title);
        QCOMPARE(fixture.calls().first().size(), 17);
    }

    void pathsArriveAsTheyAre_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("item");
        QTest::newRow("a blank") << u"a b.mkv"_s << u"'/v/a b.mkv'"_s;
        QTest::newRow("apostrophe") << u"it's.mkv"_s << u"'/v/it\\'s.mkv'"_s;
        QTest::newRow("a command") << u"$(touch x)`touch x`.mkv"_s << u"'/v/$(touch x)`touch x`.mkv'"_s;
        QTest::newRow("quotes") << u"a\"b.mkv"_s << u"'/v/a\"b.mkv'"_s;
        QTest::newRow("not ASCII") << u"Élise.mkv"_s << u"'/v/Élise.mkv'"_s;
    }

    void pathsArriveAsTheyAre()
    {
        QFETCH(QString, name);
        QFETCH(QString, item);
        MuxerFixture fixture(MkvFixture::wellMuxed(), name);
        fixture.mux({titledPicture()});
        QVERIFY2(fixture.meant().contains(u"|-d 0|-A|-S|"_s + item + u"|&>|"_s), qPrintable(fixture.meant()));
        QVERIFY(fixture.waitForRuns(1));
        QCOMPARE(fixture.calls().first().last(), u"/v/"_s + name);
        QCOMPARE(fixture.calls().first().value(1), u"/v/"_s + name.chopped(4) + u".muxed.mkv"_s);
    }

    // mkvmerge counts some containers' tracks in its own way: the list stays, the launched numbers change.

    void aSourceThatIsNoMkvIsAskedForItsNumbers()
    {
        MuxerFixture fixture({u"when -J"_s,
                              u"out {\"tracks\": [{\"id\": 0, \"type\": \"video\"}, {\"id\": 1, \"type\": "
                              "\"audio\"}, {\"id\": 2, \"type\": \"subtitles\"}]}"_s,
                              u"exit 0"_s, u"end"_s, u"write 10 after:-o"_s},
                             u"a.mp4"_s);
        fixture.mux({titledPicture(), titledSound(u"3"_s), subtitleTrack(u"5"_s, u"mov_text"_s)});
        QVERIFY(fixture.waitForRuns(2));
        QCOMPARE(fixture.calls().first(), QStringList({u"-J"_s, u"/v/a.mp4"_s}));
        QVERIFY2(fixture.meant().contains(muxOptions(u"3"_s)), qPrintable(fixture.meant()));
        QVERIFY2(fixture.meant().contains(u"|-d 0|-a 3|-s 5|"_s), qPrintable(fixture.meant()));
        QVERIFY2(fixture.launched().contains(muxOptions(u"1"_s)), qPrintable(fixture.launched()));
        QVERIFY2(fixture.launched().contains(u"--compression 2:none|-d 0|-a 1|-s 2|'/v/a.mp4'|"_s),
                 qPrintable(fixture.launched()));
        QVERIFY(!fixture.launched().contains(u"3:"_s) && !fixture.launched().contains(u"5:"_s));
        QCOMPARE(fixture.calls().at(1).mid(fixture.calls().at(1).size() - 7),
                 QStringList({u"-d"_s, u"0"_s, u"-a"_s, u"1"_s, u"-s"_s, u"2"_s, u"/v/a.mp4"_s}));
    }

    void mkvAndAviAreNotAsked()
    {
        for (const QString &name : {u"a.mkv"_s, u"a.avi"_s, u"a.AVI"_s}) {
            MuxerFixture fixture(MkvFixture::wellMuxed(), name);
            fixture.mux({titledPicture(), titledSound(u"3"_s)});
            QVERIFY(fixture.waitForRuns(1));
            QCOMPARE(fixture.calls().size(), 1);
            QCOMPARE(fixture.launched(), fixture.meant());
        }
    }

    void aConvertedFileIsNotAsked()
    {
        MuxerFixture fixture(MkvFixture::wellMuxed(), u"a.avi"_s);
        const TrackPointer track = titledPicture();
        const auto chosen = fixture.selection(mkvConversion, {track});
        track->initializeForMuxing();
        track->setMuxingTrackFileURL(fixture.url(u"converted.m4v"_s));
        fixture.muxer.startConversionFor(chosen);
        QVERIFY(fixture.waitForRuns(1));
        QVERIFY(!fixture.calls().first().contains(u"-J"_s));
        QCOMPARE(fixture.launched(), fixture.meant());
    }

    void numbersOfTracksThatAreNotWrittenCountToo()
    {
        // Two sounds in the file, one of them stays: it is mkvmerge's second.
        MuxerFixture fixture({u"when -J"_s,
                              u"out {\"tracks\": [{\"id\": 0, \"type\": \"audio\"}, {\"id\": 1, \"type\": "
                              "\"audio\"}]}"_s,
                              u"exit 0"_s, u"end"_s, u"write 10 after:-o"_s},
                             u"a.mp4"_s);
        const TrackPointer kept = titledSound(u"4"_s);
        kept->setTrackFileURL(fixture.source);
        const auto chosen = fixture.selection(mkvRemoval, {titledSound(u"2"_s)});
        chosen->setKeepTracksList({kept});
        fixture.muxer.startConversionFor(chosen);
        QVERIFY2(fixture.launched().contains(u"|-D|-a 1|-S|'/v/a.mp4'"_s), qPrintable(fixture.launched()));
        QVERIFY(fixture.waitForRuns(2));
    }

    // How far it is, by what mkvmerge left in the log.

    void progressOfARunningTool_data()
    {
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<QString>("answer");
        const QByteArray head = "mkvmerge v74.0.0 ('You Oughta Know') 64-bit\n"
                                "'/v/a.mkv': Using the demultiplexer for the format 'Matroska'.\n"
                                "'/v/a.mkv' track 0: Using the output module for the format 'AVC/H.264'.\n"
                                "The file '/v/a.muxed.mkv' has been opened for writing.\n";
        QTest::newRow("nothing yet") << QByteArray() << u"error"_s;
        QTest::newRow("before the first value") << head << u"error"_s;
        QTest::newRow("the first value") << head + "Progress: 0%\r" << u"0%"_s;
        QTest::newRow("several values") << head + "Progress: 0%\rProgress: 12%\rProgress: 45%\r" << u"45%"_s;
        QTest::newRow("a value without its end") << head + "Progress: 45%" << u"45%"_s;
        QTest::newRow("half a value") << head + "Progress: 45%\rProgress: 4" << u"error"_s;
        QTest::newRow("the last value") << head + "Progress: 99%\rProgress: 100%\n" << u"100%"_s;
        QTest::newRow("the index") << head +
                                          "Progress: 100%\nThe cue entries (the index) are being written...\n"
                                   << u"error"_s;
        QTest::newRow("a warning in between")
            << head + "Progress: 45%\rWarning: '/v/a.mkv' track 1: audio drift.\n"
            << u"error"_s;
    }

    void progressOfARunningTool()
    {
        QFETCH(QByteArray, log);
        QFETCH(QString, answer);
        MuxerFixture fixture({u"hang"_s});
        const QString id = fixture.mux({titledPicture()});
        QVERIFY(fixture.waitForRuns(1));
        fixture.guard.files().write(fixture.muxer.logFileURL(), log);
        QCOMPARE(fixture.muxer.monitorConversion(), answer);
        ::kill(id.toInt(), SIGKILL);
        QVERIFY(waitFor([&] { return fixture.muxer.monitorConversion() == u"Complete"_s; }));
    }

    void aToolThatHasEndedIsComplete()
    {
        MuxerFixture fixture({u"err Error: The file could not be opened."_s, u"exit 2"_s});
        fixture.mux({titledPicture()});
        QVERIFY(waitFor([&] { return fixture.muxer.monitorConversion() == u"Complete"_s; }));
        // The end of a process is all that a poll tells. How it went is the outcome's matter.
        QCOMPARE(fixture.muxer.outcome().verdict, steps::Verdict::Failed);
    }
};

TESSARAY_TEST(KXMkvMuxerTest)
#include "KXMkvMuxerTest.moc"

// What mkvmerge is told, list by list.
#include "engines/mkvtoolnix/MkvArguments.h"
#include "engines/mkvtoolnix/MkvTrackNumbers.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::words;
using tools::OptionList;

namespace {

const QUrl muxedFile = QUrl::fromLocalFile(u"/v/out.mkv"_s);
const QUrl muxLog = QUrl::fromLocalFile(u"/v/out.log"_s);

/// A track as it is right before a mux.
TrackPointer muxedTrack(const TrackPointer &track, const QString &id, const QString &title = u""_s)
{
    track->setTrackMkvmergeID(id);
    track->setTrackTitle(title);
    track->initializeForMuxing();
    track->setTrackMkvmergeID(id);
    return track;
}

SelectionPointer splitSelection(const QString &type)
{
    const auto selection = std::make_shared<KXSelection>();
    selection->initialize();
    selection->setSplitType(type);
    selection->initializeSplitForStartTimeAndEndTime(u"00:10:00"_s, u"00:20:00"_s);
    selection->initializeSplitDurationForTimeText(u"00:01:30"_s);
    selection->setSplitSize(u"700"_s);
    return selection;
}

} // namespace

class MkvArgumentsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMuxOfTwoFiles()
    {
        const TrackPointer video = muxedTrack(support::videoTrack(), u"0"_s);
        video->setTrackDefaultFlag(true);
        const TrackPointer audio =
            muxedTrack(support::audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {}), u"1"_s, u"it's"_s);
        audio->setMuxingTrackLanguage(u"German"_s);
        audio->setTrackForcedFlag(true);
        const TrackPointer added = muxedTrack(
            support::external(support::subtitleTrack(u"0"_s, u"srt"_s), u"/v/s.srt"_s), u"0"_s, u"a b"_s);
        QCOMPARE(
            support::itemsOf(engines::muxShellItems({video, audio, added}, muxedFile, muxLog)),
            u"-o|/v/out.mkv|--language 0:eng|--track-name 0:''|--default-track 0:1|--forced-track 0:0|"
            "--compression 0:none|--language 1:deu|--track-name 1:'it\\'s'|--default-track 1:0|"
            "--forced-track 1:1|--compression 1:none|-d 0|-a 1|-S|'/v/a.mkv'|--language 0:eng|"
            "--track-name 0:'a b'|--default-track 0:0|--forced-track 0:0|--compression 0:none|-D|-A|-s 0|"
            "'/v/s.srt'|&>|/v/out.log|& echo $!"_s);
    }

    void tracksAreListedFileByFileInTheirOrder()
    {
        const TrackPointer sub = muxedTrack(support::subtitleTrack(u"3"_s, u"srt"_s), u"3"_s);
        const TrackPointer added = muxedTrack(
            support::external(support::audioTrack(u"0"_s, u"ac3"_s, u"2"_s, {}), u"/v/b.ac3"_s), u"0"_s);
        const TrackPointer one = muxedTrack(support::audioTrack(u"1"_s, u"aac"_s, u"2"_s, {}), u"1"_s);
        const TrackPointer two = muxedTrack(support::audioTrack(u"2"_s, u"aac"_s, u"2"_s, {}), u"2"_s);
        const QString list =
            support::itemsOf(engines::muxShellItems({sub, added, one, two}, muxedFile, muxLog));
        QVERIFY2(list.contains(u"|-D|-a 1,2|-s 3|'/v/a.mkv'|"_s), qPrintable(list));
        QVERIFY2(list.contains(u"|-D|-a 0|-S|'/v/b.ac3'|&>"_s), qPrintable(list));
        QVERIFY(list.indexOf(u"'/v/a.mkv'"_s) < list.indexOf(u"'/v/b.ac3'"_s));
    }

    void aTrackWithoutANumberIsLeftOut_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("absent") << QString();
        QTest::newRow("empty") << u""_s;
        QTest::newRow("no number") << u"1; touch x"_s;
    }

    void aTrackWithoutANumberIsLeftOut()
    {
        QFETCH(QString, id);
        const TrackPointer video = muxedTrack(support::videoTrack(), u"0"_s);
        const TrackPointer audio = muxedTrack(support::audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {}), id);
        const QString list = support::itemsOf(engines::muxShellItems({video, audio}, muxedFile, muxLog));
        QVERIFY2(list.contains(u"|-d 0|-A|-S|'/v/a.mkv'|"_s), qPrintable(list));
        QCOMPARE(list.count(u"--language"_s), 1);
    }

    void anotherTypeHasItsOptionsAndStandsInNoList()
    {
        const TrackPointer odd = muxedTrack(support::videoTrack(), u"4"_s);
        odd->setMuxingTrackType(u"Button"_s);
        const QString list = support::itemsOf(engines::muxShellItems({odd}, muxedFile, muxLog));
        QVERIFY2(list.contains(u"--compression 4:none|-D|-A|-S|'/v/a.mkv'"_s), qPrintable(list));
    }

    void joins()
    {
        const QList<QUrl> files{QUrl::fromLocalFile(u"/v/1.mkv"_s), QUrl::fromLocalFile(u"/v/2 b.mkv"_s),
                                QUrl::fromLocalFile(u"/v/3.mkv"_s)};
        QCOMPARE(support::itemsOf(engines::joinArguments(files, muxedFile)),
                 u"-o|/v/out.mkv|/v/1.mkv|+|/v/2 b.mkv|+|/v/3.mkv"_s);
        QCOMPARE(support::itemsOf(engines::joinShellItems(files, muxedFile, muxLog)),
                 u"-o|/v/out.mkv|/v/1.mkv|+'/v/2 b.mkv'|+'/v/3.mkv'|&>|/v/out.log|& echo $!"_s);
    }

    void splits_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("item");
        QTest::newRow("time") << u"time"_s << u"parts:00:10:00-00:20:00"_s
                              << u"--split parts:00:10:00-00:20:00"_s;
        QTest::newRow("size") << u"size"_s << u"700000k"_s << u"--split  700000k"_s; // two blanks: meant
        QTest::newRow("duration") << u"duration"_s << u"90s"_s << u"--split 90s"_s;
    }

    void splits()
    {
        QFETCH(QString, type);
        QFETCH(QString, word);
        QFETCH(QString, item);
        const QUrl input = QUrl::fromLocalFile(u"/v/a.mkv"_s);
        QCOMPARE(engines::splitWord(*splitSelection(type)), word);
        QCOMPARE(support::itemsOf(engines::splitArguments(word, input, muxedFile)),
                 u"-o|/v/out.mkv|--split|"_s + word + u"|--compression|-1:none|/v/a.mkv"_s);
        QCOMPARE(support::itemsOf(engines::splitShellItems(*splitSelection(type), input, muxedFile, muxLog)),
                 u"-o|/v/out.mkv|"_s + item + u"|--compression -1:none|/v/a.mkv|&>|/v/out.log|& echo $!"_s);
    }

    void anUnknownSplitTypeHasNoWord()
    {
        for (const QString &type : {u"none"_s, u""_s, u"Time"_s})
            QVERIFY(engines::splitWord(*splitSelection(type)).isNull());
    }

    void sizesAreMegabytes()
    {
        const SelectionPointer selection = splitSelection(u"size"_s);
        selection->setSplitSize(u"0.25"_s);
        QCOMPARE(engines::splitWord(*selection), u"250k"_s);
        selection->setSplitSize(u"1"_s);
        QCOMPARE(engines::splitWord(*selection), u"1000k"_s);
    }

    void remuxes()
    {
        const QUrl input = QUrl::fromLocalFile(u"/v/a.mkv"_s);
        QCOMPARE(support::itemsOf(engines::remuxArguments(input, muxedFile)),
                 u"-o|/v/out.mkv|--compression|-1:none|/v/a.mkv"_s);
        QCOMPARE(support::itemsOf(engines::remuxShellItems(input, muxedFile, muxLog)),
                 u"-o|/v/out.mkv|--compression -1:none|/v/a.mkv|&>|/v/out.log|& echo $!"_s);
    }

    void mkvmergesOwnNumbersAreLaunched()
    {
        const TrackPointer video = muxedTrack(support::videoTrack(), u"0"_s);
        const TrackPointer audio = muxedTrack(support::audioTrack(u"2"_s, u"aac"_s, u"2"_s, {}), u"2"_s);
        const TrackPointer added = muxedTrack(
            support::external(support::audioTrack(u"0"_s, u"ac3"_s, u"2"_s, {}), u"/v/b.ac3"_s), u"2"_s);
        const TrackList tracks{video, audio, added};
        const QString json =
            u"{\"tracks\": [{\"id\": 0, \"type\": \"video\"}, {\"id\": 1, \"type\": \"audio\"}]}"_s;
        const engines::TrackNumbers numbers = engines::trackNumbersIn(json, {video, audio});
        QCOMPARE(numbers, engines::TrackNumbers({{2, 1}}));
        const QString list =
            support::itemsOf(engines::muxShellItems(tracks, muxedFile, muxLog, {{u"/v/a.mkv"_s, numbers}}));
        QVERIFY2(list.contains(u"--language 1:eng|--track-name 1:''|--default-track 1:0|--forced-track 1:0|"
                               "--compression 1:none|-d 0|-a 1|-S|'/v/a.mkv'"_s),
                 qPrintable(list));
        QVERIFY2(list.contains(u"--language 2:eng"_s) && list.contains(u"-D|-a 2|-S|'/v/b.ac3'"_s),
                 qPrintable(list));
        QVERIFY(support::itemsOf(engines::muxShellItems(tracks, muxedFile, muxLog))
                    .contains(u"-d 0|-a 2|-S|'/v/a.mkv'"_s));
    }

    void aKindThatIsCountedOtherwiseTellsNothing()
    {
        const TrackPointer one = muxedTrack(support::subtitleTrack(u"1"_s, u"srt"_s), u"1"_s);
        const TrackPointer two = muxedTrack(support::subtitleTrack(u"2"_s, u"srt"_s), u"2"_s);
        const QString json = u"{\"tracks\": [{\"id\": 7, \"type\": \"subtitles\"}]}"_s;
        QVERIFY(engines::trackNumbersIn(json, {one, two}).isEmpty());
        QVERIFY(engines::trackNumbersIn(u"no json"_s, {one}).isEmpty());
    }

    void onlyMkvAndAviNeedNoQuestion()
    {
        for (const QString &name : {u"a.mkv"_s, u"a.MKV"_s, u"a.avi"_s})
            QVERIFY(!engines::needsIdentification(QUrl::fromLocalFile(u"/v/"_s + name)));
        for (const QString &name : {u"a.mp4"_s, u"a.h264"_s, u"a.srt"_s, u"mkv"_s})
            QVERIFY(engines::needsIdentification(QUrl::fromLocalFile(u"/v/"_s + name)));
    }
};

TESSARAY_TEST(MkvArgumentsTest)
#include "MkvArgumentsTest.moc"

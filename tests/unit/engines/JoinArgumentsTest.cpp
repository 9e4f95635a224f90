// How files are joined by ffmpeg and mp4box, which tool is taken, and what files may not differ in.
#include "engines/join/JoinArguments.h"
#include "engines/join/JoinCheck.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QList<QUrl> files(const QStringList &paths)
{
    QList<QUrl> list;
    for (const QString &path : paths)
        list.append(QUrl::fromLocalFile(path));
    return list;
}

VideoFilePointer joinedFilm()
{
    const auto file = std::make_shared<KXVideoFile>(nullptr);
    file->setTheFPS(u"25.000000"_s);
    file->setTheWidth(u"320"_s);
    file->setTheHeight(u"240"_s);
    file->setTheNumberOfVideoTracks(u"1"_s);
    file->setTheNumberOfAudioTracks(u"1"_s);
    TrackList tracks;
    for (const auto &[type, codec, id] :
         {std::tuple(u"Video"_s, u"h264"_s, u"1"_s), std::tuple(u"Audio"_s, u"aac"_s, u"2"_s)}) {
        const auto track = std::make_shared<KXVideoTrack>();
        track->setTrackType(type);
        track->setTrackCodec(codec);
        track->setTrackMp4boxID(id);
        tracks.append(track);
    }
    file->setTrackList(tracks);
    return file;
}

} // namespace

class JoinArgumentsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theToolFitsTheFiles_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("hasMp4box");
        QTest::addColumn<QString>("tool");
        QTest::newRow("mkv") << QStringList{u"/a.mkv"_s, u"/b.MKV"_s} << true << u"mkvmerge"_s;
        QTest::newRow("mp4") << QStringList{u"/a.mp4"_s, u"/b.m4v"_s, u"/c.mov"_s} << true << u"mp4box"_s;
        QTest::newRow("mp4, no mp4box") << QStringList{u"/a.mp4"_s, u"/b.m4v"_s} << false << u"ffmpeg"_s;
        QTest::newRow("mixed") << QStringList{u"/a.mkv"_s, u"/b.mp4"_s} << true << u"ffmpeg"_s;
        QTest::newRow("avi") << QStringList{u"/a.avi"_s, u"/b.avi"_s} << true << u"ffmpeg"_s;
    }

    void theToolFitsTheFiles()
    {
        QFETCH(QStringList, names);
        QFETCH(bool, hasMp4box);
        QTEST(engines::joinerFor(files(names), hasMp4box), "tool");
    }

    void theConcatList()
    {
        QCOMPARE(engines::concatListMeant(files({u"/v/a.mp4"_s, u"/v/b.mp4"_s})),
                 u"file '/v/a.mp4'\nfile '/v/b.mp4'\n"_s);
        QCOMPARE(engines::concatListLaunched(files({u"/v/a.mp4"_s, u"/v/b.mp4"_s})),
                 u"file '/v/a.mp4'\nfile '/v/b.mp4'\n"_s);
        QCOMPARE(engines::concatListLaunched(files({u"/v/it's.mp4"_s})), u"file '/v/it'\\''s.mp4'\n"_s);
    }

    void theLists()
    {
        const QUrl output = QUrl::fromLocalFile(u"/v/a.mp4.joined.mp4"_s);
        const auto meant = engines::concatArguments(QUrl::fromLocalFile(u"/t/mylist.txt"_s), output);
        QCOMPARE(support::itemsOf(meant), u"-f|concat|-i|/t/mylist.txt|-c|copy|-y|/v/a.mp4.joined.mp4"_s);
        QCOMPARE(support::itemsOf(engines::concatLaunchForm(meant)),
                 u"-f|concat|-safe|0|-i|/t/mylist.txt|-map|0|-c|copy|-y|/v/a.mp4.joined.mp4"_s);
        QCOMPARE(support::itemsOf(engines::mp4boxJoinArguments(files({u"/v/a.mp4"_s, u"/v/b.mp4"_s}),
                                                               QUrl::fromLocalFile(u"/v"_s), output)),
                 u"-cat|/v/a.mp4|-cat|/v/b.mp4|-tmp|/v|-new|/v/a.mp4.joined.mp4"_s);
    }

    void whatDiffersIsNamed_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("nothing") << u""_s << QStringList();
        QTest::newRow("rate") << u"rate"_s << QStringList{u"Frame Rate"_s};
        QTest::newRow("width") << u"width"_s << QStringList{u"Video Resolution"_s};
        QTest::newRow("height") << u"height"_s << QStringList{u"Video Resolution"_s};
        QTest::newRow("count") << u"count"_s << QStringList{u"Track Count"_s};
        QTest::newRow("type") << u"type"_s << QStringList{u"Track Types"_s};
        QTest::newRow("codec") << u"codec"_s << QStringList{u"Track Codecs"_s};
        QTest::newRow("all") << u"codec type count height rate"_s
                             << QStringList{u"Frame Rate"_s, u"Video Resolution"_s, u"Track Count"_s,
                                            u"Track Types"_s, u"Track Codecs"_s};
    }

    void whatDiffersIsNamed()
    {
        QFETCH(QString, change);
        QFETCH(QStringList, names);
        const VideoFilePointer other = joinedFilm();
        if (change.contains(u"rate"_s))
            other->setTheFPS(u"29.970030"_s);
        if (change.contains(u"width"_s))
            other->setTheWidth(u"640"_s);
        if (change.contains(u"height"_s))
            other->setTheHeight(u"480"_s);
        if (change.contains(u"count"_s))
            other->setTheNumberOfSubTracks(u"1"_s);
        if (change.contains(u"type"_s))
            other->trackList().at(1)->setTrackType(u"Subtitle"_s);
        if (change.contains(u"codec"_s))
            other->trackList().at(1)->setTrackCodec(u"ac3"_s);
        QCOMPARE(engines::mismatchedProperties({joinedFilm(), other}), names);
        QCOMPARE(engines::mismatchedProperties({other, joinedFilm(), other}), names); // each once
        QCOMPARE(engines::mismatchedProperties({other}), QStringList());
    }

    void neighboursAreCompared()
    {
        const VideoFilePointer wide = joinedFilm();
        wide->setTheWidth(u"640"_s);
        QCOMPARE(engines::mismatchedProperties({joinedFilm(), joinedFilm(), wide, wide}),
                 QStringList{u"Video Resolution"_s});
    }

    void tracksAreSortedByTheirNumbersAsTexts()
    {
        // "10" comes before "2", on purpose: both files have ac3 first then.
        const VideoFilePointer one = joinedFilm();
        const VideoFilePointer other = joinedFilm();
        one->trackList().at(0)->setTrackMp4boxID(u"2"_s);
        one->trackList().at(1)->setTrackMp4boxID(u"10"_s);
        other->trackList().at(0)->setTrackMp4boxID(u"2"_s);
        other->trackList().at(1)->setTrackMp4boxID(u"1"_s);
        QCOMPARE(engines::mismatchedProperties({one, other}), QStringList());
    }

    void theWarning()
    {
        const platform::AlertPointer alert = engines::mismatchAlert({u"Frame Rate"_s, u"Video Resolution"_s});
        QCOMPARE(alert->message,
                 u"The files to be joined appear to have the following properties mismatched, "
                 "which may cause errors or unexpected results in the join process."_s);
        QCOMPARE(alert->informativeText, u"Frame Rate, Video Resolution"_s);
        QCOMPARE(alert->style, platform::AlertStyle::Warning);
        QCOMPARE(alert->closesAfter, std::chrono::milliseconds(15000));
    }
};

TESSARAY_TEST(JoinArgumentsTest)
#include "JoinArgumentsTest.moc"

#include "engines/ffmpeg/ExtractionFates.h"
#include "support/TestMain.h"
#include "support/media/Fates.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using namespace support;

class ExtractionFatesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatATrackBecomes_data()
    {
        QTest::addColumn<TrackPointer>("track");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("expected");
        const auto sound = [](const QString &codec) { return audioTrack(u"1"_s, codec, u"2"_s, {}); };
        const auto text = [](const QString &codec) { return subtitleTrack(u"1"_s, codec); };
        const QString copied = u"a.mkv:1 audio copied #0"_s;
        QTest::newRow("a picture") << videoTrack() << u"h264"_s << u"a.mkv:0 video copied #0"_s;
        QTest::newRow("sound") << sound(u"ac3"_s) << u"ac3"_s << copied;
        QTest::newRow("srt") << text(u"srt"_s) << u"srt"_s << u"a.mkv:1 subtitle > subrip #0"_s;
        QTest::newRow("ass") << text(u"ass"_s) << u"ass"_s << u"a.mkv:1 subtitle > ass #0"_s;
        QTest::newRow("ssa") << text(u"ssa"_s) << u"ssa"_s << u"a.mkv:1 subtitle > ass #0"_s;
        QTest::newRow("MP4's text") << text(u"ttxt"_s) << u"ass"_s << u"a.mkv:1 subtitle > ass #0"_s;
        QTest::newRow("a picture subtitle") << text(u"pgs"_s) << u"sup"_s << u"a.mkv:1 subtitle copied #0"_s;
        QTest::newRow("a VobSub") << text(u"vobsub"_s) << u"idx"_s << u"a.mkv:1 subtitle copied #0"_s;
    }

    void whatATrackBecomes()
    {
        QFETCH(TrackPointer, track);
        QFETCH(QString, extension);
        const QUrl output = QUrl::fromLocalFile(u"/v/a.mkv.stream1."_s + extension);
        const auto meant = extractionMeant(*track, {}, output);
        QTEST(told(meant.tracks).join(u'|'), "expected");
        QCOMPARE(meant.output, output);
        QCOMPARE(meant.sources, QList<QUrl>{track->trackFileURL()});
        QCOMPARE(meant.tracks.constFirst().output, output);
    }

    void rawForms_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<bool>("isRaw");
        for (const char *raw :
             {"h264", "h263", "mjpeg", "dv", "mp3", "mp2", "aac", "ac3", "dts", "dtshd", "thd", "flac", "wv"})
            QTest::newRow(raw) << QString::fromLatin1(raw) << true;
        for (const char *timed :
             {"avi", "rm", "wmv", "mpg", "ogg", "wav", "wma", "srt", "ass", "ssa", "sup", "idx", "sub"})
            QTest::newRow(timed) << QString::fromLatin1(timed) << false;
    }

    void rawForms()
    {
        QFETCH(QString, extension);
        const auto meant = extractionMeant(*videoTrack(), {}, QUrl::fromLocalFile(u"/v/a."_s + extension));
        QTEST(meant.isRaw, "isRaw");
    }

    void chaptersComeWhereTheFormHasAPlace()
    {
        const TrackPointer sound = audioTrack(u"1"_s, u"mp3"_s, u"2"_s, {});
        const auto restFor = [&](const QString &name) {
            return toldPatterns(extractionMeant(*sound, {}, QUrl::fromLocalFile(name)).rest);
        };
        const QStringList none{u"chapters left: A track by itself carries no chapters."_s};
        for (const QString &form : {u"mp3"_s, u"wma"_s, u"wmv"_s})
            QCOMPARE(restFor(u"/v/a."_s + form), QStringList{u"chapters copied"_s});
        for (const QString &form : {u"aac"_s, u"ogg"_s, u"flac"_s, u"wav"_s, u"avi"_s})
            QCOMPARE(restFor(u"/v/a."_s + form), none);
    }

    void theTracksThatNobodyWantsAreToldWithIt()
    {
        const TrackPointer added = external(subtitleTrack(u"0"_s, u"srt"_s), u"/v/s.srt"_s);
        const auto meant = extractionMeant(*videoTrack(), {audioTrack(u"1"_s, u"ac3"_s, u"2"_s, {}), added},
                                           QUrl::fromLocalFile(u"/v/a.h264"_s));
        QCOMPARE(told(meant.tracks),
                 QStringList({u"a.mkv:0 video copied #0"_s, u"a.mkv:1 audio left: It was not chosen."_s,
                              u"s.srt:0 subtitle left: It was not chosen."_s}));
        QCOMPARE(meant.sources, QList<QUrl>({QUrl::fromLocalFile(u"/v/a.mkv"_s), added->trackFileURL()}));
    }

    void whatNoToolWritesIsLeftOut()
    {
        const auto meant = impossibleExtraction(*subtitleTrack(u"2"_s, u"vobsub"_s), {});
        QCOMPARE(told(meant.tracks),
                 QStringList({u"a.mkv:2 subtitle left: No tool here writes that kind of subtitle out of this "
                              "container."_s}));
        QCOMPARE(meant.output, QUrl());
    }
};

TESSARAY_TEST(ExtractionFatesTest)
#include "ExtractionFatesTest.moc"

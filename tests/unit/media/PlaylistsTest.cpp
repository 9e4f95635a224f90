#include "media/Playlists.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class PlaylistsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsAreToldByTheirHead_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("isList");
        const QByteArray id3("ID3\x04\x00\x00\x00\x00\x02\x00", 10); // 256 bytes follow
        const QByteArray padding(256, '\0');
        QTest::newRow("HLS") << QByteArray("#EXTM3U\n#EXTINF:1,\n/a.ts\n") << true;
        QTest::newRow("HLS behind a mark") << QByteArray("\xef\xbb\xbf#EXTM3U\n") << true;
        QTest::newRow("HLS behind an ID3 header") << id3 + padding + "#EXTM3U\n" << true;
        QTest::newRow("HLS behind two") << id3 + padding + id3 + padding + "#EXTM3U\n" << true;
        QTest::newRow("a concat script") << QByteArray("ffconcat version 1.0\nfile a\n") << true;
        QTest::newRow("DASH") << QByteArray("<?xml version=\"1.0\"?>\n<MPD profiles=\"x\">") << true;
        QTest::newRow("DASH far behind") << QByteArray(100000, ' ') + "<mpd>" << true;
        QTest::newRow("a composition") << QByteArray("<CompositionPlaylist>") << true;
        QTest::newRow("a session") << QByteArray("v=0\r\nc=IN IP4 127.0.0.1\r\n") << true;
        QTest::newRow("a Blu-ray list") << QByteArray("MPLS0200\0\0", 10) << true;
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("a subtitle") << QByteArray("1\n00:00:01,000 --> 00:00:02,000\n#EXTM3U\n") << false;
        QTest::newRow("zeros first") << QByteArray("\0<MPD", 5) << false;
        QTest::newRow("Matroska") << QByteArray("\x1a\x45\xdf\xa3\x01\0\0\0<MPD #EXTM3U", 20) << false;
        QTest::newRow("MP3 behind an ID3 header") << id3 + padding + "\xff\xfb\x90" << false;
    }

    void listsAreToldByTheirHead()
    {
        QFETCH(QByteArray, content);
        const support::Scratch scratch;
        const QString path = scratch.write(u"film.mkv"_s, content);
        QTEST(media::namesOtherFiles(QUrl::fromLocalFile(path)), "isList");
    }

    void whatIsNoOrdinaryFileIsNotOpened()
    {
        const support::Scratch scratch;
        const QString pipe = scratch.path(u"film.mkv"_s);
        QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
        QVERIFY(!media::namesOtherFiles(QUrl::fromLocalFile(pipe))); // and comes back
    }

    void aFileThatIsNotThereIsNone()
    {
        QVERIFY(!media::namesOtherFiles(QUrl::fromLocalFile(u"/no/such/film.mkv"_s)));
    }
};

TESSARAY_TEST(PlaylistsTest)
#include "PlaylistsTest.moc"

// Which subtitles beside a film belong to it.
#include "media/TracksBeside.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TracksBesideTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void subtitlesBelongToAFilmByName_data()
    {
        QTest::addColumn<QStringList>("there");
        QTest::addColumn<QStringList>("found");
        const QStringList none;
        QTest::newRow("its name") << QStringList{u"film.srt"_s} << QStringList{u"film.srt"_s};
        QTest::newRow("a language") << QStringList{u"film.en.srt"_s, u"film.de.forced.ASS"_s}
                                    << QStringList{u"film.de.forced.ASS"_s, u"film.en.srt"_s};
        QTest::newRow("another film's")
            << QStringList{u"film 2.srt"_s, u"other.srt"_s, u"film2.srt"_s} << none;
        QTest::newRow("a film whose name goes on")
            << QStringList{u"film.2.mkv"_s, u"film.2.srt"_s, u"film.2.en.srt"_s} << none;
        QTest::newRow("no subtitle") << QStringList{u"film.txt"_s, u"film.mkv.log"_s, u"film.jpg"_s} << none;
    }

    void subtitlesBelongToAFilmByName()
    {
        QFETCH(QStringList, there);
        QFETCH(QStringList, found);
        const support::Scratch scratch;
        scratch.write(u"film.mkv"_s, "x");
        for (const QString &name : there)
            scratch.write(name, "x");
        QStringList names;
        for (const QUrl &track : media::tracksBeside(scratch.url(u"film.mkv"_s)))
            names.append(track.fileName());
        QCOMPARE(names, found);
    }
};

TESSARAY_TEST(TracksBesideTest)
#include "TracksBesideTest.moc"

// Titles that are longer than a system lets a command line be. They are cut for the tools, and that is told:
// a film must not fail for what is written in it.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

constexpr qsizetype million = 1'000'000;

/// A film whose sound and subtitles have a title of a million letters; mkvmerge takes its options from a file
/// where a command line is too short for them.
void makeFilm(const CliFixture &cli)
{
    const QString title(million, u'x');
    const QJsonArray options{u"-o"_s,           cli.media(u"film.mkv"_s), u"--track-name"_s, u"1:"_s + title,
                             u"--track-name"_s, u"2:"_s + title,          support::fullMkv()};
    support::writeContent(cli.media(u"options.json"_s), QJsonDocument(options).toJson());
    support::runProgram(u"mkvmerge"_s, {u"@"_s + cli.media(u"options.json"_s)});
}

qsizetype longestTitleIn(const QString &film)
{
    QProcess probe;
    probe.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s, u"stream_tags=title"_s, u"-of"_s,
                               u"csv=p=0"_s, film});
    probe.waitForFinished();
    qsizetype longest = 0;
    for (const QByteArray &line : probe.readAllStandardOutput().split('\n'))
        longest = std::max(longest, line.size());
    return longest;
}

} // namespace

class LongTitlesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filmsWithThemAreMadeAndTheCutIsTold_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("output");
        QTest::addColumn<bool>("holdsTitles"); // MP4 has no place for them
        QTest::newRow("converted") << QStringList{u"convert"_s, u"film.mkv"_s, u"--kind"_s, u"mkv"_s}
                                   << u"out/film.mkv"_s << true;
        QTest::newRow("converted for a device")
            << QStringList{u"convert"_s, u"film.mkv"_s, u"--tracks"_s, u"0,2,3"_s} << u"out/film.m4v"_s
            << false;
        QTest::newRow("a track removed") << QStringList{u"remove"_s, u"film.mkv"_s, u"--tracks"_s, u"3"_s}
                                         << u"out/film.removed.mkv"_s << true;
    }

    void filmsWithThemAreMadeAndTheCutIsTold()
    {
        QFETCH(QStringList, words);
        QFETCH(QString, output);
        QFETCH(bool, holdsTitles);
        CliFixture cli;
        makeFilm(cli);
        QVERIFY(QDir(cli.media()).mkpath(u"out"_s));
        const CliFixture::Run run = cli.run(QStringList{u"--save-dir"_s, u"out"_s} + words);
        QVERIFY2(run.said().contains(u"A title is too long for the tools and was cut in the output."_s),
                 qPrintable(run.said().left(2000)));
        QCOMPARE(run.status, 1);
        const qsizetype longest = longestTitleIn(cli.media(output));
        QVERIFY2(holdsTitles ? longest > 1000 && longest <= 4096 : longest == 0,
                 qPrintable(QString::number(longest)));
        QCOMPARE(longestTitleIn(cli.media(u"film.mkv"_s)), million);
    }
};

TESSARAY_TEST(LongTitlesTest)
#include "LongTitlesTest.moc"

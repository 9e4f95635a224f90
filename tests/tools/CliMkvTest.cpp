// Joining, splitting, remuxing, removing, sending and muxing with real files: what is written, told and
// answered.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::codecsOf;
using support::secondsOf;
using support::words;

namespace {

/// mkvmerge's own view of a file: "video:eng:Title:1:0" for type, language, title, default and forced.
QStringList tracksOf(const QString &path)
{
    QProcess process;
    process.start(u"mkvmerge"_s, {u"-J"_s, path});
    process.waitForFinished();
    QStringList tracks;
    const QJsonDocument identified = QJsonDocument::fromJson(process.readAllStandardOutput());
    for (const QJsonValue &track : identified[u"tracks"_s].toArray()) {
        const QJsonValue properties = track[u"properties"_s];
        tracks.append(QStringList{track[u"type"_s].toString(), properties[u"language"_s].toString(),
                                  properties[u"track_name"_s].toString(),
                                  properties[u"default_track"_s].toBool() ? u"1"_s : u"0"_s,
                                  properties[u"forced_track"_s].toBool() ? u"1"_s : u"0"_s}
                          .join(u':'));
    }
    return tracks;
}

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class CliMkvTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void twoAndThreeFilesAreJoined()
    {
        for (const QString &name : {u"a.mkv"_s, u"it's b.mkv"_s, u"c.mkv"_s})
            m_cli->clip(support::fullMkv(), name);
        const auto two = m_cli->run({u"join"_s, u"a.mkv"_s, u"it's b.mkv"_s});
        QVERIFY2(two.status == 0, two.error.constData());
        QCOMPARE(two.lines(), QStringList{m_cli->media(u"a.mkv.joined.mkv"_s)});
        QVERIFY(secondsOf(m_cli->media(u"a.mkv.joined.mkv"_s)) > 15);
        QCOMPARE(codecsOf(m_cli->media(u"a.mkv.joined.mkv"_s)), codecsOf(m_cli->media(u"a.mkv"_s)));
        QVERIFY(QFile::exists(m_cli->media(u"a.mkv.joined.log"_s)));
        const auto three = m_cli->run({u"join"_s, u"c.mkv"_s, u"a.mkv"_s, u"it's b.mkv"_s});
        QVERIFY2(three.status == 0, three.error.constData());
        QVERIFY(secondsOf(m_cli->media(u"c.mkv.joined.mkv"_s)) > 23);
    }

    void filesThatDifferAreJoinedWithAWarning()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        m_cli->clip(support::wideMkv(), u"b.mkv"_s);
        const auto run = m_cli->run(words(u"join a.mkv b.mkv"_s));
        QVERIFY2(run.said().contains(u"appear to have the following properties mismatched"_s),
                 run.error.constData());
        QVERIFY2(run.said().contains(u"Video Resolution, Track Count"_s), run.error.constData());
        QCOMPARE(run.said().count(u"mismatched"_s), 1);
        QVERIFY(run.status != 0); // what mkvmerge makes of such files is told
    }

    void mp4FilesAreJoinedWithEveryStream()
    {
        m_cli->clip(support::textMp4(), u"it's a.mp4"_s);
        m_cli->clip(support::textMp4(), u"b.mp4"_s);
        const auto run = m_cli->run({u"join"_s, u"it's a.mp4"_s, u"b.mp4"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        const QString joined = m_cli->media(u"it's a.mp4.joined.mp4"_s);
        QCOMPARE(codecsOf(joined), u"h264 aac mov_text"_s);
        QVERIFY(secondsOf(joined) > 15);
    }

    void aStretchIsCutOut()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"split a.mkv --time 00:00:02-00:00:05"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.lines(), QStringList{m_cli->media(u"a.mkv.split.mkv"_s)});
        QVERIFY(secondsOf(m_cli->media(u"a.mkv.split.mkv"_s)) < 6);
    }

    void partsAreNamedAndNeverReplaced()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto first = m_cli->run(words(u"split a.mkv --duration 00:00:03"_s));
        QVERIFY2(first.status == 0, first.error.constData());
        QVERIFY(first.lines().size() >= 2);
        QCOMPARE(first.lines().constFirst(), m_cli->media(u"a.mkv.split-001.mkv"_s));
        const QByteArray before = contentsOf(first.lines().constFirst());
        const auto again = m_cli->run(words(u"split a.mkv --size 0.1"_s));
        QCOMPARE(again.status, 2);
        QVERIFY2(again.said().contains(u"split-001.mkv exists already"_s), again.error.constData());
        QCOMPARE(contentsOf(first.lines().constFirst()), before);
        const QStringList names = m_cli->mediaNames();
        const auto forced = m_cli->run(words(u"split a.mkv --duration 00:00:06 --force"_s));
        QVERIFY2(forced.status == 0, forced.error.constData());
        QVERIFY(forced.lines().size() < first.lines().size()); // the parts of this run only
        QVERIFY(contentsOf(first.lines().constFirst()) != before);
        for (const QString &name : names) // those that this run did not write are back
            QVERIFY2(m_cli->mediaNames().contains(name), qPrintable(name));
        QVERIFY(m_cli->mediaNames().filter(u"replaced"_s).isEmpty());
    }

    void aRangeBeyondTheEndFails()
    {
        const QString clip = m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const QByteArray before = contentsOf(clip);
        const auto run = m_cli->run(words(u"split a.mkv --time 01:00:00-02:00:00"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"without writing"_s), run.error.constData());
        QCOMPARE(contentsOf(clip), before);
    }

    void wrongSplitsAreWrongUsage_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("no way") << u"split a.mkv"_s;
        QTest::newRow("two ways") << u"split a.mkv --size 1 --duration 00:00:01"_s;
        QTest::newRow("end first") << u"split a.mkv --time 00:00:05-00:00:02"_s;
        QTest::newRow("no end") << u"split a.mkv --time 00:00:05"_s;
        QTest::newRow("no time") << u"split a.mkv --duration 90"_s;
        QTest::newRow("zero") << u"split a.mkv --duration 00:00:00"_s;
        QTest::newRow("no size") << u"split a.mkv --size 0"_s;
        QTest::newRow("one file") << u"join a.mkv"_s;
        QTest::newRow("no list") << u"remove a.mkv"_s;
        QTest::newRow("video") << u"remove a.mkv --tracks 0"_s;
        QTest::newRow("no such track") << u"remove a.mkv --tracks 17"_s;
        QTest::newRow("two sent") << u"send a.mkv a.mkv"_s;
    }

    void wrongSplitsAreWrongUsage()
    {
        QFETCH(QString, line);
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(line));
        QCOMPARE(run.status, 64);
        QCOMPARE(m_cli->mediaNames(), QStringList{u"a.mkv"_s});
    }

    void headerRemovalIsGoneAfterARemux()
    {
        const QString clip = m_cli->clip(support::headerRemovalMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"remux a.mkv"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        const QString remuxed = m_cli->media(u"a.mkv.remux.mkv"_s);
        QCOMPARE(run.lines(), QStringList{remuxed});
        QVERIFY(QFile::exists(m_cli->media(u"a.mkv.remuxing.log"_s)));
        for (const auto &[path, has] : {std::pair(clip, true), std::pair(remuxed, false)}) {
            QProcess process;
            process.setProcessEnvironment(m_cli->environment());
            process.start(u"mkvinfo"_s, {path});
            QVERIFY(process.waitForFinished());
            QCOMPARE(process.readAllStandardOutput().contains("header removal"), has);
        }
    }

    void removedTracksAreGoneAndTheOthersAreAsTheyWere()
    {
        const QString film = m_cli->media(u"a.mkv"_s);
        const QString title = u"it's $(touch X) `touch X` ; ü'"_s;
        support::runProgram(u"mkvmerge"_s, {u"-o"_s, film, u"--track-name"_s, u"1:"_s + title,
                                            u"--default-track"_s, u"0:1"_s, u"--default-track"_s, u"1:1"_s,
                                            u"--forced-track"_s, u"3:1"_s, support::fullMkv()});
        QStringList expected = tracksOf(film);
        expected.removeAt(4);
        expected.removeAt(2);
        const auto run = m_cli->run(words(u"remove a.mkv --tracks 2,4"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.lines(), QStringList{m_cli->media(u"a.removed.mkv"_s)});
        const QStringList kept = tracksOf(m_cli->media(u"a.removed.mkv"_s));
        QCOMPARE(kept.size(), expected.size());
        QVERIFY2(kept.at(1).contains(title), qPrintable(kept.at(1)));
        for (qsizetype i = 0; i < kept.size(); ++i) { // an untitled track is given its type as its title
            const QStringList was = expected.at(i).split(u':');
            const QStringList is = kept.at(i).split(u':');
            QCOMPARE(is.at(0), was.at(0));
            QCOMPARE(is.at(1), was.at(1));
            QCOMPARE(is.last(2), was.last(2));
        }
        QVERIFY(QFile::exists(m_cli->media(u"a.mkv.removed.log"_s)));
        QVERIFY(!QFile::exists(m_cli->media(u"X"_s)));
    }

    void onlyMkvFilesLoseTracks()
    {
        m_cli->clip(support::textMp4(), u"a.mp4"_s);
        QCOMPARE(m_cli->run(words(u"remove a.mp4 --tracks 1"_s)).status, 64);
    }

    void aRawStreamIsMuxedWithWhatIsAdded()
    {
        m_cli->clip(support::rawH264(), u"v.h264"_s);
        m_cli->clip(support::surroundAc3(), u"a6.ac3"_s);
        m_cli->clip(support::srtFile(), u"s.srt"_s);
        const auto run = m_cli->run(words(
            u"convert v.h264 --add a6.ac3 --add s.srt --audio +1=aac:2:128,ac3:6:384 --no-keep-logs"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.lines(), QStringList{m_cli->media(u"v.muxed.mkv"_s)});
        QCOMPARE(codecsOf(m_cli->media(u"v.muxed.mkv"_s)), u"h264 aac ac3 subrip"_s);
        QCOMPARE(tracksOf(m_cli->media(u"v.muxed.mkv"_s)),
                 QStringList({u"video:und:Video Track:0:0"_s, u"audio:und:Audio Track:0:0"_s,
                              u"audio:und:Audio Track:0:0"_s, u"subtitles:und:Subtitle Track:0:0"_s}));
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a6.ac3"_s, u"s.srt"_s, u"v.h264"_s, u"v.muxed.mkv"_s}));
    }

    void nothingOfTheFolderIsTakenForAnIntermediateFile()
    {
        m_cli->clip(support::rawH264(), u"v.h264"_s);
        m_cli->clip(support::surroundAc3(), u"a6.ac3"_s);
        m_cli->scratch().write(u"media/a6.m4v"_s, "mine");
        const auto run =
            m_cli->run(words(u"convert v.h264 --add a6.ac3 --audio +1=aac:2:128 --no-keep-logs"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(m_cli->scratch().read(u"media/a6.m4v"_s), "mine");
        QCOMPARE(codecsOf(m_cli->media(u"v.muxed.mkv"_s)), u"h264 aac"_s);
    }

    void aSubtitleIsHandedOverWithItsFilm()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const QString application = m_cli->scratch().path(u"Lintwick.sh"_s);
        const QString record = m_cli->scratch().path(u"started.txt"_s);
        m_cli->scratch().write(u"Lintwick.sh"_s,
                               u"#!/bin/sh\necho \"started $*\" >> '%1'\n"_s.arg(record).toUtf8());
        QFile::setPermissions(application,
                              QFile::permissions(application) | QFile::ExeOwner | QFile::ExeUser);
        QCOMPARE(m_cli->run({u"prefs"_s, u"set"_s, u"lintwickPath"_s, application}).status, 0);
        const auto run = m_cli->run(words(u"send a.mkv"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        const QString subtitle = m_cli->media(u"a.mkv.stream3.srt"_s);
        QCOMPARE(run.lines(), QStringList{subtitle});
        QTRY_COMPARE(contentsOf(record).count("started"), 3);
        QVERIFY(contentsOf(record).contains("started " + subtitle.toUtf8()));
        QVERIFY(contentsOf(record).contains("started " + m_cli->media(u"a.mkv"_s).toUtf8()));
    }

    void withoutTheApplicationNothingWasSent()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"send a.mkv"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"Lintwick Could Not Be Launched"_s), run.error.constData());
    }

    void aFileWithoutASubtitleIsNotSent()
    {
        m_cli->clip(support::longMkv(2), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"send a.mkv"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"There is no subtitle to send."_s), run.error.constData());
    }

    void damagedInputIsToldAndStaysAsItWas_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("remux") << u"remux a.mkv"_s;
        QTest::newRow("split") << u"split a.mkv --duration 00:00:02"_s;
        QTest::newRow("join") << u"join a.mkv b.mkv"_s;
    }

    void damagedInputIsToldAndStaysAsItWas()
    {
        QFETCH(QString, line);
        const QString clip = m_cli->clip(support::emptyMkv(), u"a.mkv"_s);
        m_cli->clip(support::fullMkv(), u"b.mkv"_s);
        const auto run = m_cli->run(words(line));
        QCOMPARE(run.status, 2);
        const QString why =
            line.startsWith(u"join"_s) ? u"can't be read as a film"_s : u"mkvmerge failed"_s; // joins look first
        QVERIFY2(run.said().contains(why), run.error.constData());
        QVERIFY(contentsOf(clip).isEmpty());
        QVERIFY(QFile::exists(clip));
    }

    void aSourceIsNeverTheOutput()
    {
        const QString clip = m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        QVERIFY(QFile::link(clip, m_cli->media(u"a.mkv.remux.mkv"_s)));
        const QByteArray before = contentsOf(clip);
        for (const QString &more : {u""_s, u" --force"_s}) {
            const auto run = m_cli->run(words(u"remux a.mkv"_s + more));
            QCOMPARE(run.status, 2);
            QCOMPARE(contentsOf(clip), before);
        }
    }

private:
    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliMkvTest)
#include "CliMkvTest.moc"

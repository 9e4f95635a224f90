// Films that are easy to make: behind a tag "}" stand tags that bear the names of a stream's
// own fields, and in them what a shell or a filter graph would love to read as syntax; or the film is a list
// of other films. With the real tools it runs no program, writes nothing but its result and reads nothing but
// itself.
#include "support/Canaries.h"
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Listing.h"
#include "support/Seeds.h"
#include "support/StartedPrograms.h"
#include "support/TaggedFilms.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using support::Canaries;
using support::CliFixture;
using support::Listing;
using support::TagList;
using support::words;

namespace {

/// Far more than any run takes, also on a machine that others keep busy.
constexpr int boundMs = 180000;

const QString onePass = u"convert film.mkv --video 1pass --video-bitrate 300"_s;
const QString twoPasses = u"convert film.mkv --video 2pass --video-bitrate 300"_s;
const QString burned = u" --subtitles burn"_s;
const QString scaled = u" --width 32"_s;

/// Where FILTER stands in them it becomes a filter of its own between the two halves of
/// "scale=trunc(32/WIDTH*iw/2)*2:trunc(ow/a/2)*2" and of "[0:2]scale=WIDTH:HEIGHT[sub]".
const QString inScale = u"64*iw/2)*2:trunc(ow/a/2)*2[a];FILTER[b];[b]scale=trunc(1"_s;
const QString inOverlayWidth = u"64:48[a];FILTER[b];[b]scale=64"_s;
const QString inOverlayHeight = u"48[a];FILTER[b];[b]scale=64:48"_s;
const QString inOverlayIndex = u"2]scale=64:48[a];FILTER[b];[b"_s;

/// What the shell of an extraction reads behind "-map 0:".
QStringList shellTexts()
{
    return {u"2;touch X;#"_s, u"2 -y X.srt;#"_s, u"2$(touch X)"_s,   u"2`touch X`"_s,
            u"2&touch X;#"_s, u"2|touch X;#"_s,  u"2 -f srt >X;#"_s, u"2\u00a0||touch X;#"_s};
}

} // namespace

class CraftedFilmsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_cli->useOwnTools();
        m_cli->recordEverything();
    }
    void cleanup();
    void cleanupTestCase() { m_cli.reset(); }

    void aTouchIsSeen();
    void anIndexRunsNothing_data();
    void anIndexRunsNothing();
    void aSizeWritesNothing_data();
    void aSizeWritesNothing();
    void aSizeReadsNothing_data();
    void aSizeReadsNothing();
    void aPlaylistReadsNothing_data();
    void aPlaylistReadsNothing();
    void aLineFeedInANameReadsNothing();

private:
    static QList<QStringList> cases();
    static void addCases(const QList<QStringList> &cases);
    void convert(const TagList &tags, int track, const QString &film, const QString &line);
    void compareTouched(const Listing &before, const CliFixture::Run &run);
    void compareOutcome(const CliFixture::Run &run) const;

    QString path(const QString &name) const { return m_cli->scratch().path(name); }

    std::unique_ptr<CliFixture> m_cli = std::make_unique<CliFixture>();
    std::unique_ptr<Canaries> m_canaries = std::make_unique<Canaries>(path(u"canaries"_s));
};

/// The next film finds everything as the first one did.
void CraftedFilmsTest::cleanup()
{
    m_cli->forgetRecorded();
    for (const QString &name : m_cli->mediaNames())
        QFile::remove(m_cli->media(name));
    for (const auto &name : {u"app/X"_s, u"app/X.srt"_s})
        QFile::remove(path(name));
    QFile::remove(m_canaries->target());
}

/// Without this the other functions would show nothing.
void CraftedFilmsTest::aTouchIsSeen()
{
    const auto happens = [this](const QString &line) {
        m_canaries->arm();
        QProcess shell;
        shell.start(u"/bin/sh"_s, {u"-c"_s, line});
        shell.waitForFinished();
        return m_canaries->seen();
    };
    QCOMPARE(happens(u"true"_s), QStringList());
    QCOMPARE(happens(u"exec < "_s + m_canaries->text()), QStringList{u"opened canary.txt"_s});
    QVERIFY(happens(u": > "_s + m_canaries->target()).contains(u"made written"_s));
    QCOMPARE(happens(u"rm "_s + m_canaries->target()), QStringList{u"removed written"_s});
}

void CraftedFilmsTest::anIndexRunsNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    for (const QString &text : shellTexts())
        QTest::newRow(qPrintable(u"burn "_s + text)) << text << onePass + burned;
    for (const QString &line :
         {u"extract film.mkv"_s, u"send film.mkv"_s, twoPasses + burned, u"convert film.mkv --kind mkv"_s,
          u"remove film.mkv --tracks 1"_s, u"convert film.mkv --dry-run --subtitles burn --video 1pass"_s})
        QTest::newRow(qPrintable(line)) << shellTexts().constFirst() << line;
}

void CraftedFilmsTest::anIndexRunsNothing()
{
    QFETCH(QString, text);
    QFETCH(QString, line);
    convert({{u"index"_s, text}}, 2, support::tinyTextMkv(), line);
}

/// Each place in a filter where a probed field stands: what it is called, field, film, pattern, line.
QList<QStringList> CraftedFilmsTest::cases()
{
    const QString text = support::tinyTextMkv();
    const QString picture = support::tinyPictureMkv();
    return {{u"one pass"_s, u"width"_s, text, inScale, onePass + scaled},
            {u"two passes"_s, u"width"_s, text, inScale, twoPasses + scaled},
            {u"text burned"_s, u"width"_s, text, inScale, onePass + scaled + burned},
            {u"text burned in two passes"_s, u"width"_s, text, inScale, twoPasses + scaled + burned},
            {u"picture burned, width"_s, u"width"_s, picture, inOverlayWidth,
             onePass + u" --width 64"_s + burned},
            {u"picture burned, height"_s, u"height"_s, picture, inOverlayHeight, onePass + burned},
            {u"picture burned, index"_s, u"index"_s, picture, inOverlayIndex, onePass + burned},
            {u"picture burned, scaled, height"_s, u"height"_s, picture, inOverlayHeight,
             onePass + scaled + burned},
            {u"picture burned in two passes, height"_s, u"height"_s, picture, inOverlayHeight,
             twoPasses + burned}};
}

void CraftedFilmsTest::addCases(const QList<QStringList> &cases)
{
    for (const char *column : {"field", "film", "pattern", "line"})
        QTest::addColumn<QString>(column);
    for (const QStringList &row : cases)
        QTest::newRow(qPrintable(row.at(0))) << row.at(1) << row.at(2) << row.at(3) << row.at(4);
}

void CraftedFilmsTest::aSizeWritesNothing_data()
{
    addCases(cases());
}

void CraftedFilmsTest::aSizeWritesNothing()
{
    QFETCH(QString, field);
    QFETCH(QString, film);
    QFETCH(QString, pattern);
    QFETCH(QString, line);
    const QString filter = u"[a]metadata=print:file="_s + m_canaries->target();
    convert({{field, pattern.replace(u"FILTER"_s, filter)}}, field == u"index"_s ? 2 : 0, film, line);
}

/// In the places of the function above; the short form draws some.
void CraftedFilmsTest::aSizeReadsNothing_data()
{
    addCases(support::drawn(cases(), 3));
}

void CraftedFilmsTest::aSizeReadsNothing()
{
    QFETCH(QString, field);
    QFETCH(QString, film);
    QFETCH(QString, pattern);
    QFETCH(QString, line);
    const QString filter = u"movie=%1[c];[a][c]overlay"_s.arg(m_canaries->picture());
    convert({{field, pattern.replace(u"FILTER"_s, filter)}}, field == u"index"_s ? 2 : 0, film, line);
}

/// What a film's name says does not bind the tools: they go by what is in it, and these are lists of others.
void CraftedFilmsTest::aPlaylistReadsNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("line");
    const QString hls =
        u"#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:4.0,\n%1\n#EXT-X-ENDLIST\n"_s.arg(m_canaries->film());
    const QString dash = u"<?xml version=\"1.0\"?>\n<MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" "
                         "profiles=\"urn:mpeg:dash:profile:isoff-on-demand:2011\" type=\"static\" "
                         "mediaPresentationDuration=\"PT4S\">\n<Period><AdaptationSet mimeType=\"video/mp4\">"
                         "<Representation id=\"1\" bandwidth=\"1000\"><BaseURL>%1</BaseURL></Representation>"
                         "</AdaptationSet></Period></MPD>\n"_s.arg(m_canaries->film());
    const QString concat = u"ffconcat version 1.0\nfile near/canary.ts\n"_s;
    const QString copy = u"convert film.mkv --kind mkv"_s;
    QTest::newRow("hls") << u"film.mkv"_s << hls << copy;
    QTest::newRow("hls, probed") << u"film.mkv"_s << hls << u"probe film.mkv"_s;
    QTest::newRow("hls, extracted") << u"film.mkv"_s << hls << u"extract film.mkv"_s;
    QTest::newRow("hls, run dry") << u"film.mkv"_s << hls << copy + u" --dry-run"_s;
    QTest::newRow("hls, joined") << u"film.mp4"_s << hls << u"join film.mp4 film.mp4"_s;
    QTest::newRow("hls, played") << u"film.mkv"_s << hls << u"play film.mkv"_s;
    QTest::newRow("hls, added") << u"film.srt"_s << hls
                                << u"convert film.other.mkv --kind mkv --add film.srt"_s;
    QTest::newRow("dash") << u"film.mkv"_s << dash << copy;
    QTest::newRow("concat") << u"film.mkv"_s << concat << copy;
    QTest::newRow("concat, reencoded") << u"film.mkv"_s << concat << onePass;
}

void CraftedFilmsTest::aPlaylistReadsNothing()
{
    QFETCH(QString, name);
    QFETCH(QString, list);
    QFETCH(QString, line);
    m_cli->scratch().write(u"media/"_s + name, list.toUtf8());
    QVERIFY(QFile::copy(support::tinyTextMkv(), m_cli->media(u"film.other.mkv"_s)));
    QVERIFY(QFile::link(m_canaries->folder(), m_cli->media(u"near"_s)));
    const Listing before(path({}), {u"path"_s});
    m_canaries->arm();
    const CliFixture::Run run = m_cli->run(words(line), boundMs);
    compareTouched(before, run);
    if (!QTest::currentTestFailed())
        QVERIFY2(run.status == 2 && run.said().contains(name), run.error.constData());
}

/// An archive makes such folders: the second line of the film's path is the path of another one, behind a
/// word of the list that ffmpeg joins by.
void CraftedFilmsTest::aLineFeedInANameReadsNothing()
{
    const QString film = support::clip(u"tiny-film.mp4"_s, [](const QString &made) {
        support::runProgram(u"ffmpeg"_s,
                            words(u"-nostdin -y -loglevel error -i %1 -map 0:v -map 0:a -c copy"_s.arg(
                                support::tinyTextMkv()))
                                << made);
    });
    const QString decoy = m_cli->media(u"film.mp4\nfile "_s + m_canaries->film());
    QDir().mkpath(QFileInfo(decoy).path());
    for (const QString &copy :
         {m_cli->media(u"film.mp4"_s), m_cli->media(u"film.b.mp4"_s), decoy + u".mp4"_s})
        QVERIFY(QFile::copy(film, copy));
    QVERIFY(QFile::rename(m_canaries->film(), m_canaries->film() + u".mp4"_s));
    const Listing before(path({}), {u"path"_s});
    m_canaries->arm();
    const CliFixture::Run run = m_cli->run({u"join"_s, u"film.b.mp4"_s, decoy + u".mp4"_s}, boundMs);
    compareTouched(before, run);
    if (!QTest::currentTestFailed() && run.status == 0)
        QCOMPARE(support::codecsOf(m_cli->media(u"film.b.mp4.joined.mp4"_s)), u"h264 aac"_s);
    QVERIFY(QFile::rename(m_canaries->film() + u".mp4"_s, m_canaries->film()));
    QDir(m_cli->media(u"film.mp4\nfile "_s)).removeRecursively();
}

void CraftedFilmsTest::convert(const TagList &tags, int track, const QString &film, const QString &line)
{
    QList<TagList> lists(3);
    lists[track] = support::behindABrace(tags);
    support::writeTagged(film, m_cli->media(u"film.mkv"_s), lists);
    const Listing before(path({}), {u"path"_s});
    m_canaries->arm();
    const CliFixture::Run run = m_cli->run(words(line), boundMs);
    compareTouched(before, run);
    if (!QTest::currentTestFailed())
        compareOutcome(run);
}

/// No program ran but those that should, and nothing has changed but results and logs beside the film.
void CraftedFilmsTest::compareTouched(const Listing &before, const CliFixture::Run &run)
{
    const QStringList touched = m_canaries->seen();
    QVERIFY2(touched.isEmpty(), qPrintable(touched.join(u", "_s) + u'\n' + run.said()));
    static const QStringList meant{u"ffprobe"_s, u"ffmpeg"_s, u"mkvmerge"_s, u"mkvextract"_s,
                                   u"mkvinfo"_s, u"grep"_s,   u"ps"_s,       u"awk"_s,
                                   u"tr"_s,      u"tail"_s}; // the last ones look at the end of a log
    for (const QByteArrayList &started : m_cli->recorded())
        QVERIFY2(meant.contains(QString::fromUtf8(started.constFirst())), started.join('|').constData());
    static const QRegularExpression results(u"^new (media/film( \\(2\\))?\\.[^/]*|recorded|defaults.json|"
                                            "home/\\.fontconfig.*|home/\\.cache.*)$"_s);
    QStringList changes = before.changesTo(Listing(path({}), {u"path"_s}));
    changes.removeIf([](const QString &change) { return results.match(change).hasMatch(); });
    QVERIFY2(changes.isEmpty(), qPrintable(changes.join(u'\n')));
}

/// It is converted as if the tags were not there, or refused in a sentence.
void CraftedFilmsTest::compareOutcome(const CliFixture::Run &run) const
{
    QVERIFY2(run.status >= 0 && run.status <= 2, run.error.constData());
    const QString output = m_cli->media(u"film.m4v"_s);
    if (run.status == 2) {
        QVERIFY2(run.said().contains(u"film.mkv: "_s), run.error.constData());
        QVERIFY(!QFile::exists(output));
    } else if (QFile::exists(output)) {
        const auto streams = support::streamsOf(output);
        QVERIFY(streams.size() >= 2);
        QCOMPARE(streams.at(0).value(u"codec_name"_s).toString(), u"h264"_s);
        const int width = streams.at(0).value(u"width"_s).toInt();
        QVERIFY2(width == 64 || width == 32, qPrintable(QString::number(width)));
    }
}

TESSARAY_TEST(CraftedFilmsTest)
#include "CraftedFilmsTest.moc"

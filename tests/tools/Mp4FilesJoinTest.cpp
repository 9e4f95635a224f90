// Joins of MP4 files: by ffmpeg for real, and by a stand-in for mp4box, which is no package of the system.
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/TestPlaces.h"
#include "support/engines/MkvRuns.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

const QString joining = u"MKV Joining"_s;

/// 4 s: h264 (0), aac English (1), ac3 German (2), mov_text English (3) and French (4); both texts say
/// something, one line each.
QString twoAndTwoMp4(const QString &name, const QString &word)
{
    return clip(name, [&](const QString &path) {
        const auto lines = [&](const QString &language) {
            const QString file = path + u'.' + language + u".srt"_s;
            writeContent(file, u"1\n00:00:01,000 --> 00:00:02,000\n%1 %2\n"_s.arg(language, word).toUtf8());
            return file;
        };
        const QString english = lines(u"english"_s);
        const QString french = lines(u"french"_s);
        QStringList words =
            u"-nostdin -y -v error -f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i "
            u"sine=sample_rate=48000 "
            "-i ENGLISH -i FRENCH -map 0:v -map 1:a -map 1:a -map 2 -map 3 -t 4 -c:v libx264 -preset "
            "ultrafast "
            "-pix_fmt yuv420p -c:a:0 aac -c:a:1 ac3 -c:s mov_text -metadata:s:a:0 language=eng "
            "-metadata:s:a:1 language=ger -metadata:s:s:0 language=eng -metadata:s:s:1 language=fre"_s.split(
                u' ');
        words.replaceInStrings(u"ENGLISH"_s, english).replaceInStrings(u"FRENCH"_s, french);
        runProgram(u"ffmpeg"_s, words << path);
        QFile::remove(english);
        QFile::remove(french);
    });
}

QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(60000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

/// "aac,eng" for each stream.
QStringList streamsOf(const QString &path)
{
    const QString answer =
        outputOf(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s,
                                u"stream=codec_name:stream_tags=language"_s, u"-of"_s, u"csv=p=0"_s, path});
    QStringList streams;
    for (const QString &line : answer.split(u'\n'))
        streams << line.section(u',', 0, 1); // what follows are empty sections
    return streams;
}

/// Seconds at which the packets of a stream end.
double endOf(const QString &path, const QString &stream)
{
    const QString times =
        outputOf(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, stream, u"-show_entries"_s,
                                u"packet=pts_time"_s, u"-of"_s, u"csv=p=0"_s, path});
    double last = 0;
    for (const QString &time : times.split(u'\n'))
        last = std::max(last, time.section(u',', 0, 0).toDouble());
    return last;
}

QString textOf(const QString &path, const QString &stream)
{
    return outputOf(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-i"_s, path, u"-map"_s,
                                  u"0:"_s + stream, u"-f"_s, u"srt"_s, u"-"_s});
}

} // namespace

class Mp4FilesJoinTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_runs = std::make_unique<MkvRuns>(); }
    void cleanup() { m_runs.reset(); }

    // With ffmpeg.

    void everyStreamOfFilesWithApostrophesInTheirNamesIsThereAfterwards()
    {
        const QString first =
            m_runs->runs.film(twoAndTwoMp4(u"two-and-two.mp4"_s, u"first"_s), u"it's 'a'.mp4"_s);
        const QString second =
            m_runs->runs.film(twoAndTwoMp4(u"two-and-two-more.mp4"_s, u"second"_s), u"'b'.mp4"_s);
        const QByteArray before = contentOf(first);
        const auto job = m_runs->add(MkvRuns::filesSelection({first, second}, joining));
        QVERIFY(m_runs->run());
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        const QString output = m_runs->path(u"it's 'a'.mp4.joined.mp4"_s);
        QCOMPARE(job->outputs(), QList<QUrl>{QUrl::fromLocalFile(output)});
        QCOMPARE(streamsOf(output), QStringList({u"h264,und"_s, u"aac,eng"_s, u"ac3,ger"_s, u"mov_text,eng"_s,
                                                 u"mov_text,fre"_s}));
        for (const QString &stream : {u"0"_s, u"1"_s, u"2"_s})
            QVERIFY2(endOf(output, stream) > 7.5, qPrintable(stream)); // both files of 4 s
        QVERIFY2(textOf(output, u"3"_s).contains(u"english first"_s), qPrintable(textOf(output, u"3"_s)));
        QVERIFY2(textOf(output, u"3"_s).contains(u"english second"_s), qPrintable(textOf(output, u"3"_s)));
        QVERIFY2(textOf(output, u"4"_s).contains(u"french second"_s), qPrintable(textOf(output, u"4"_s)));
        QCOMPARE(contentOf(first), before);
        QCOMPARE(m_runs->names(),
                 QStringList({u"'b'.mp4"_s, u"it's 'a'.mp4"_s, u"it's 'a'.mp4.joined.mp4"_s}));
        QVERIFY(m_runs->runs.base.alerts.shown().isEmpty());
    }

    void aFileThatVanishedIsNamedAndTheJoinIsNoSuccess()
    {
        const QString first = m_runs->runs.film(textMp4(), u"a.mp4"_s);
        const auto job =
            m_runs->add(MkvRuns::filesSelection({first, m_runs->path(u"it's gone.mp4"_s)}, joining));
        QVERIFY(m_runs->run());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"it's gone.mp4"_s), qPrintable(job->outcome().sentence));
    }

    // With mp4box.

    void mp4boxGetsEveryFileInOrderAndItsProgressIsShown()
    {
        standIn(
            {u"out Appending file /v/b.mp4"_s, u"part err Appending: |====                | (23/100)\\r"_s,
             u"sleep 200"_s, u"part err Appending: |==========          | (50/100)\\r"_s, u"sleep 200"_s,
             u"err Appending: |====================| (100/100)"_s, u"sleep 200"_s,
             u"out Saving to a.mp4.joined.mp4: 0.500 secs Interleaving"_s,
             u"part err ISO File Writing: |===============     | (75/100)\\r"_s, u"write 1000 after:-new"_s});
        const auto job = m_runs->add(MkvRuns::filesSelection(films(), joining));
        QVERIFY(m_runs->run());
        static const QRegularExpression plain(
            u"^-cat\\|/\\S+/source0\\.mp4\\|-cat\\|/\\S+/source1\\.m4v\\|-cat\\|/\\S+/source2\\.mov\\|"
            "-tmp\\|(/\\S+/\\.tessaray-\\w{6})\\|-new\\|\\1/1\\.mp4$"_s);
        QCOMPARE(arguments().size(), 1);
        const QString line = arguments().constFirst().join(u'|');
        QVERIFY2(plain.match(line).hasMatch(), qPrintable(line));
        QCOMPARE(updates(), QStringList({u"23%"_s, u"50%"_s, u"100%"_s, u"75%"_s}));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{QUrl::fromLocalFile(m_runs->path(u"a.mp4.joined.mp4"_s))});
        QCOMPARE(QFile(m_runs->path(u"a.mp4.joined.mp4"_s)).size(), 1000);
        QVERIFY(!QFile::exists(m_runs->path(u"a.mp4.joined.log"_s)));
    }

    void aSaveFolderTakesTheOutputAndItsPieces()
    {
        standIn({u"write 1000 after:-new"_s});
        QDir().mkpath(m_runs->path(u"save here"_s));
        m_runs->runs.base.setSaveFolder(m_runs->path(u"save here"_s));
        m_runs->add(MkvRuns::filesSelection(films(), joining));
        QVERIFY(m_runs->run());
        const QString folder = arguments().constFirst().value(7);
        QVERIFY2(folder.startsWith(m_runs->path(u"save here/.tessaray-"_s)), qPrintable(folder));
        QCOMPARE(arguments().constFirst().mid(8), QStringList({u"-new"_s, folder + u"/1.mp4"_s}));
        QVERIFY(QFile::exists(m_runs->path(u"save here/a.mp4.joined.mp4"_s)));
    }

    void aFailureOfMp4boxIsToldAndTheRowIsCompleted()
    {
        standIn({u"err Error appending /v/c.mov: Bad Parameter"_s, u"exit 1"_s});
        const auto job = m_runs->add(MkvRuns::filesSelection(films(), joining));
        QVERIFY(m_runs->run());
        QCOMPARE(job->jobStatus(), u"Completed"_s);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.startsWith(u"mp4box failed (exit status 1)"_s) &&
                     job->outcome().sentence.contains(u"Bad Parameter"_s),
                 qPrintable(job->outcome().sentence));
        QVERIFY(QFile::exists(m_runs->path(u"a.mp4.joined.log"_s))); // that of a failed step stays
    }

private:
    /// Puts a program in the place of mp4box that records how it is called and plays a script; the other
    /// tools are the installed ones.
    void standIn(const QStringList &script)
    {
        // What it writes is no film.
        m_runs = std::make_unique<MkvRuns>(steps::WhenTaken::NextFreeName, jobs::Checking::Nothing);
        const QString own = m_runs->path(u"tools"_s);
        QDir().mkpath(own);
        QVERIFY(QFile::link(TestPlaces().toolsLocation().toLocalFile() + u"/ffmpeg"_s, own + u"/ffmpeg"_s));
        FakeTool::install(own + u"/mp4box/mp4box"_s, QStringList{u"record "_s + own + u"/runs"_s} + script);
        m_runs->runs.base.preferences.setToolsLocationURL(QUrl::fromLocalFile(own));
    }
    QStringList films() const
    {
        return {m_runs->runs.film(textMp4(), u"a.mp4"_s), m_runs->runs.film(textMp4(), u"it's b $(x).m4v"_s),
                m_runs->runs.film(textMp4(), u"c.mov"_s)};
    }
    QList<QStringList> arguments() const
    {
        QList<QStringList> lists;
        for (const auto &run : FakeTool::recordedRuns(m_runs->path(u"tools/runs"_s))) {
            QStringList words;
            for (const QByteArray &word : run.arguments)
                words << QString::fromUtf8(word);
            lists << words;
        }
        return lists;
    }
    QStringList updates() const
    {
        QStringList texts;
        for (const KXNotification &update : m_runs->record.named(u"monitorJoinUpdate"_s))
            texts << update.object.toString();
        return texts;
    }

    std::unique_ptr<MkvRuns> m_runs;
};

TESSARAY_TEST(Mp4FilesJoinTest)
#include "Mp4FilesJoinTest.moc"

// Outputs that a tool wrote with success and that are not what was meant: each is told as failed, by the
// sentence that names what is wrong.
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/jobs/CheckClips.h"
#include "support/jobs/CheckRun.h"

#include <QFile>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

struct Spoiling
{
    QString name;
    QString line;      ///< makes the output; "$0" is the source, "$1" the output
    QString extension; ///< of the output
    QString sentence;  ///< is part of what must be said
};

const QString copyAll = u" -map 0 -c copy "_s;
/// One stream comes from a second reading of the source, which is changed by options in front of it.
const QString soundFrom2 = u"ffmpeg -i $0 %1 -i $0 -map 0:v -map 1:a -c copy $1"_s;

QList<Spoiling> spoilings(const QString &to)
{
    return {
        {u"no sound"_s, u"ffmpeg -i $0 -map 0:v -c copy $1"_s, to, u"holds 0 audio tracks instead of 1."_s},
        {u"no picture"_s, u"ffmpeg -i $0 -map 0:a -c copy $1"_s, to, u"holds 0 video tracks instead of 1."_s},
        {u"sound twice"_s, u"ffmpeg -i $0 -map 0 -map 0:a -c copy $1"_s, to,
         u"holds 2 audio tracks instead of 1."_s},
        {u"sound of the first half"_s, soundFrom2.arg(u"-t 30"_s), to, u"lasts 0:30 instead of 1:00."_s},
        {u"picture of the first half"_s, u"ffmpeg -t 30 -i $0 -i $0 -map 0:v -map 1:a -c copy $1"_s, to,
         u"The video of"_s},
        {u"sound ends early"_s, soundFrom2.arg(u"-t 59.5"_s), to,
         u"The audio track of out.%1 lasts"_s.arg(to)},
        {u"sound is late"_s, soundFrom2.arg(u"-itsoffset 0.05"_s), to, u"does not lie where it lay"_s},
        {u"sound is early"_s, u"ffmpeg -itsoffset 0.05 -i $0 -i $0 -map 0:v -map 1:a -c copy $1"_s, to,
         u"does not lie where it lay"_s},
        {u"sound is later"_s, soundFrom2.arg(u"-itsoffset 0.4"_s), to, u"s too late."_s},
        {u"another codec"_s, u"ffmpeg -i $0 -map 0 -c:v copy -c:a ac3 $1"_s, to, u"is ac3 instead of aac."_s},
        {u"all of it cut"_s, u"ffmpeg -t 40 -i $0 -map 0 -c copy $1"_s, to, u"lasts 0:40 instead of 1:00."_s},
        {u"from a later place"_s, u"ffmpeg -ss 10 -i $0 -map 0 -c copy $1"_s, to, u"instead of 1:00."_s},
        {u"a hole of 3 % in the sound"_s,
         u"ffmpeg -v verbose -i $0 -map 0 -c copy -bsf:a noise=drop='between(n\\,500\\,584)' $1"_s, to,
         u"packets instead of 28"_s},
        {u"every second sound packet"_s, u"ffmpeg -i $0 -map 0 -c copy -bsf:a noise=drop='mod(n\\,2)' $1"_s,
         to, u"does not lie where it lay"_s},
    };
}

} // namespace

class SpoiledOutputsCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void spoiledOutputsFail_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("sentence");
        QList<std::pair<QString, Spoiling>> rows;
        for (const QString &from : {u"mkv"_s, u"mp4"_s}) {
            for (const QString &to : {u"mkv"_s, u"mp4"_s}) {
                for (const Spoiling &one : spoilings(to))
                    rows.append({from, one});
            }
        }
        for (const auto &[from, one] : drawn(rows, 8))
            QTest::addRow("%s to %s: %s", qPrintable(from), qPrintable(one.extension), qPrintable(one.name))
                << from << one.line << u"out."_s + one.extension << one.sentence;
    }

    void spoiledOutputsFail()
    {
        QFETCH(QString, from);
        QFETCH(QString, line);
        QFETCH(QString, output);
        QFETCH(QString, sentence);
        CheckRun run;
        const QString source = minuteOf(from);
        const QString log = run.run(line + QString(), {source, run.path(output)});
        const QString said = told(run.check(CheckRun::meant({source}, run.path(output)), log));
        QVERIFY2(said.startsWith(u"failed: "_s) && said.contains(sentence), qPrintable(said));
    }

    /// The figures come in a file of their own; what ffmpeg prints beside it is as ever.
    void figuresComeInAFile()
    {
        CheckRun run;
        const QString output = run.path(u"out.mkv"_s);
        const QStringList words{
            u"-nostdin"_s, u"-y"_s, u"-i"_s,   minuteOf(u"mkv"_s), u"-map"_s,
            u"0"_s,        u"-c"_s, u"copy"_s, u"-bsf:a"_s,        u"noise=drop='between(n\\,500\\,584)'"_s,
            output};
        const auto variable = media::figuresVariable(u"figures"_s);
        QProcess ffmpeg;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(variable.first, variable.second);
        ffmpeg.setProcessEnvironment(environment);
        ffmpeg.setWorkingDirectory(run.path());
        ffmpeg.start(u"ffmpeg"_s, words);
        QVERIFY(ffmpeg.waitForFinished(60000));
        const QString printed = QString::fromUtf8(ffmpeg.readAllStandardError());
        QVERIFY(media::runFiguresFrom(printed).read.isEmpty());
        QVERIFY(printed.contains(u"time=00:01:00.0"_s) && !printed.contains(u"AVIOContext"_s));
        const QString figures = QString::fromUtf8(contentOf(run.path(u"figures"_s)));
        const auto read = media::runFiguresFrom(figures);
        QCOMPARE(read.read.value({0, 1}).packets - read.muxed.value({0, 1}).packets, 85);
        const QString said = told(run.check(CheckRun::meant({minuteOf(u"mkv"_s)}, output), figures));
        QVERIFY2(said.startsWith(u"failed: The audio track of out.mkv holds "_s), qPrintable(said));
    }

    void aCutOutputFails_data()
    {
        QTest::addColumn<QString>("to");
        QTest::addColumn<int>("percent");
        for (const QString &to : {u"mkv"_s, u"mp4"_s, u"avi"_s}) {
            for (const int percent : {30, 99})
                QTest::addRow("%s %d", qPrintable(to), percent) << to << percent;
        }
    }

    void aCutOutputFails()
    {
        QFETCH(QString, to);
        QFETCH(int, percent);
        CheckRun run;
        const QString source = minuteOf(to == u"avi"_s ? to : u"mkv"_s);
        const QString whole = run.path(u"whole."_s + to);
        const QString output = run.path(u"out."_s + to);
        run.run(u"ffmpeg -i $0 -map 0 -c copy -movflags faststart -f %1 $1"_s.arg(
                    to == u"mkv"_s ? u"matroska"_s : to),
                {source, whole});
        cutTo(whole, output, percent);
        const QString said = told(run.check(CheckRun::meant({source}, output)));
        QVERIFY2(said.startsWith(u"failed: "_s), qPrintable(said));
    }
};

TESSARAY_TEST(SpoiledOutputsCheckTest)
#include "SpoiledOutputsCheckTest.moc"

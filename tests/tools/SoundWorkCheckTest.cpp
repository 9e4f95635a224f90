// Good work of every kind is told "ok" by the check of its output: films of each container, copied and
// re-encoded, that start late, with tracks that begin late or end early, with covers, chapters, fonts, few or
// odd frames, parts, joins and single tracks. The short form draws some of them.
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/jobs/CheckClips.h"
#include "support/jobs/CheckRun.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using media::Extent;

namespace {

struct Conversion
{
    QString name;
    QString from; ///< container of the source
    int start = 0;
    QString to;
    QString words;
    QString video; ///< what it is re-encoded into; absent: copied
    QString audio;
};

const QStringList allContainers{u"mkv"_s, u"mp4"_s, u"mov"_s, u"ts"_s,
                                u"mpg"_s, u"avi"_s, u"wmv"_s, u"flv"_s};

const QString copies = u"-map 0:v -vcodec copy -map 0:a -codec:a:0 copy"_s;
const QString encodes =
    u"-map 0:v -vcodec libx264 -preset ultrafast -b:v 300k -map 0:a -codec:a:0 aac -strict "
    "experimental -ab:a:0 128k -ac:a:0 2 -ar:a:0 48000"_s;

QList<Conversion> conversions()
{
    QList<Conversion> all;
    for (const QString &from : allContainers) {
        for (const int start : {0, 5}) {
            if (start > 0 && (from == u"avi"_s || from == u"wmv"_s || from == u"flv"_s))
                continue;
            for (const QString &to : {u"mkv"_s, u"mp4"_s}) {
                const QString name = u"%1 %2 to %3 "_s.arg(from).arg(start).arg(to);
                const bool canCopy = to == u"mkv"_s || from != u"wmv"_s;
                const QString fix = from == u"avi"_s || from == u"mpg"_s ? u"-fflags +genpts "_s : QString();
                if (canCopy)
                    all.append({name + u"copy"_s, from, start, to, fix + u"-i $0 "_s + copies, {}, {}});
                all.append(
                    {name + u"encode"_s, from, start, to, fix + u"-i $0 "_s + encodes, u"h264"_s, u"aac"_s});
            }
            all.append(
                {u"%1 %2 to avi encode"_s.arg(from).arg(start), from, start, u"avi"_s,
                 u"-i $0 -map 0:v -vcodec mpeg4 -b:v 300k -map 0:a -codec:a:0 libmp3lame -ab:a:0 128k"_s,
                 u"mpeg4"_s, u"mp3"_s});
        }
    }
    return all;
}

} // namespace

class SoundWorkCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void conversionsAreOk_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<int>("start");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("video");
        QTest::addColumn<QString>("audio");
        for (const Conversion &one : drawn(conversions(), 6))
            QTest::addRow("%s", qPrintable(one.name))
                << one.from << one.start << one.to << one.words << one.video << one.audio;
    }

    void conversionsAreOk()
    {
        QFETCH(QString, from);
        QFETCH(int, start);
        QFETCH(QString, to);
        QFETCH(QString, words);
        QFETCH(QString, video);
        QFETCH(QString, audio);
        CheckRun run;
        const QString source = minuteOf(from, start);
        const QString output = run.path(u"out."_s + to);
        const QString log = run.run(u"ffmpeg "_s + words + u" $1"_s, {source, output});
        media::MeantOutput meant = CheckRun::meant({source}, output);
        if (!video.isEmpty())
            reencode(meant, u"video"_s, video);
        if (!audio.isEmpty())
            reencode(meant, u"audio"_s, audio);
        QCOMPARE(told(run.check(meant, log)), u"ok"_s);
    }

    void remuxesAreOk_data()
    {
        QTest::addColumn<QString>("source");
        for (const QString &from : allContainers) {
            if (from == u"wmv"_s)
                continue;
            QTest::addRow("%s", qPrintable(from)) << minuteOf(from);
            if (from != u"avi"_s && from != u"flv"_s)
                QTest::addRow("%s from 5", qPrintable(from)) << minuteOf(from, 5);
        }
        QTest::newRow("text") << minuteWithText();
        QTest::newRow("full") << fullMkv();
        QTest::newRow("pictures") << pgsMkv();
        QTest::newRow("vobsub") << vobsubMkv();
        QTest::newRow("cover") << pngCoverMkv();
        QTest::newRow("two videos") << twoVideosMkv();
        QTest::newRow("many") << manyTracksMkv();
        QTest::newRow("odd avi") << oddAvi();
        QTest::newRow("header removal") << headerRemovalMkv();
    }

    void remuxesAreOk()
    {
        QFETCH(QString, source);
        CheckRun run;
        const QString output = run.path(u"out.mkv"_s);
        const QString log = run.run(u"mkvmerge -o $1 --compression -1:none $0"_s, {source, output});
        QCOMPARE(told(run.check(CheckRun::meant({source}, output), log)), u"ok"_s);
    }
};

TESSARAY_TEST(SoundWorkCheckTest)
#include "SoundWorkCheckTest.moc"

// Tracks that were copied are proven bit for bit between containers, and a single byte that was flipped in
// one of them is found, in exactly that track.
#include "media/StreamProof.h"

#include "support/ClipFactory.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/jobs/CheckClips.h"
#include "support/jobs/CheckRun.h"

#include <QFileInfo>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using media::Proof;

namespace {

struct Way
{
    QString name;
    QString source; ///< its extension
    QString making; ///< makes it of the minute; empty: the minute in that container
    QString line;
    QString output;
    QList<Proof> proofs;
};

const QString copied = u"ffmpeg -i $0 -map 0 -c copy $1"_s;
const QString merged = u"mkvmerge -o $1 --compression -1:none $0"_s;

QList<Way> ways()
{
    const QList<Proof> both{Proof::Bits, Proof::Bits};
    QList<Way> all;
    for (const QString &from : {u"mkv"_s, u"mp4"_s, u"mov"_s, u"ts"_s}) {
        for (const QString &to : {u"mkv"_s, u"mp4"_s, u"m4v"_s, u"mov"_s})
            all.append({from + u" to "_s + to, from, {}, copied, u"out."_s + to, both});
        all.append({from + u" by mkvmerge"_s, from, {}, merged, u"out.mkv"_s, both});
    }
    const auto of = [&](const QString &name, const QString &codecs, const QString &line,
                        const QString &output, const QList<Proof> &proofs) {
        all.append({name, u"mkv"_s, u"ffmpeg -t 5 -i $m "_s + codecs + u" $0"_s, line, output, proofs});
    };
    of(u"hevc, ac3"_s, u"-c:v libx265 -preset ultrafast -c:a ac3"_s, copied, u"out.mp4"_s, both);
    of(u"hevc, ac3 by mkvmerge"_s, u"-c:v libx265 -preset ultrafast -c:a ac3"_s, merged, u"out.mkv"_s, both);
    of(u"mpeg4, mp3"_s, u"-c:v mpeg4 -c:a libmp3lame"_s, copied, u"out.mp4"_s, both);
    of(u"mpeg4, mp3 into avi"_s, u"-c:v mpeg4 -c:a libmp3lame"_s, copied, u"out.avi"_s, both);
    of(u"mpeg2, flac"_s, u"-c:v mpeg2video -c:a flac"_s, merged, u"out.mkv"_s, both);
    of(u"vp9, opus"_s, u"-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -c:a libopus"_s, merged, u"out.mkv"_s,
       both);
    of(u"mjpeg, pcm"_s, u"-c:v mjpeg -c:a pcm_s16le"_s, copied, u"out.mov"_s, both);
    of(u"alac"_s, u"-c:v copy -c:a alac"_s, copied, u"out.mp4"_s, {Proof::Bits, Proof::Lengths});
    return all;
}

QByteArray printedBy(const QStringList &arguments)
{
    QProcess process;
    process.start(u"ffmpeg"_s, arguments);
    process.waitForFinished(60000);
    return process.readAllStandardOutput();
}

/// The sentences; the proofs are in the outputs then.
QStringList verify(CheckRun &run, QList<media::MeantOutput> &outputs)
{
    const auto results = run.check(outputs);
    for (qsizetype i = 0; i < outputs.size(); ++i)
        outputs[i] = results.at(i).output;
    QStringList sentences;
    for (const media::ProofRuns &runs : media::proofRuns(outputs, run.films()))
        sentences += media::proveBits(outputs, runs, printedBy(runs.source.arguments),
                                      printedBy(runs.output.arguments));
    return sentences;
}

QList<Proof> proofsOf(const media::MeantOutput &output)
{
    QList<Proof> proofs;
    for (const media::TrackFate &fate : output.tracks)
        proofs.append(fate.proof);
    return proofs;
}

} // namespace

Q_DECLARE_METATYPE(Way)

class StreamProofTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesAreProven_data()
    {
        QTest::addColumn<Way>("way");
        for (const Way &way : drawn(ways(), 4))
            QTest::addRow("%s", qPrintable(way.name)) << way;
    }

    void copiesAreProven()
    {
        QFETCH(Way, way);
        CheckRun run;
        QString source = minuteOf(way.source);
        if (!way.making.isEmpty()) {
            source = run.path(u"a."_s + way.source);
            run.run(QString(way.making).replace(u"$m"_s, minuteOf(u"mkv"_s)), {source});
        }
        const QString output = run.path(way.output);
        run.run(way.line, {source, output});
        QList<media::MeantOutput> meant{CheckRun::meant({source}, output)};
        QCOMPARE(verify(run, meant), QStringList());
        QCOMPARE(proofsOf(meant.constFirst()), way.proofs);
    }

    void joinedFilmsAreProven_data()
    {
        QTest::addColumn<QString>("container");
        QTest::addColumn<bool>("isFlipped");
        for (const QString &container : drawn(QList<QString>{u"mkv"_s, u"mp4"_s, u"mov"_s, u"avi"_s}, 1)) {
            QTest::addRow("%s", qPrintable(container)) << container << false;
            QTest::addRow("%s, flipped", qPrintable(container)) << container << true;
        }
    }

    void joinedFilmsAreProven()
    {
        QFETCH(QString, container);
        QFETCH(bool, isFlipped);
        CheckRun run;
        const QStringList films{run.path(u"it's 1."_s + container), run.path(u"2."_s + container)};
        for (int i = 0; i < 2; ++i)
            run.run(u"ffmpeg -ss %1 -t 10 -i $0 -map 0 -c copy $1"_s.arg(10 * i),
                    {minuteOf(container), films.at(i)});
        const QString output = run.path(u"out."_s + container);
        writeContent(run.path(u"list"_s),
                     "file 'it'\\''s 1." + container.toUtf8() + "'\nfile '2." + container.toUtf8() + "'\n");
        if (container == u"mkv"_s)
            run.run(u"mkvmerge -o $2 $0 + $1"_s, films + QStringList{output});
        else
            run.run(u"ffmpeg -f concat -safe 0 -i $0 -map 0 -c copy $1"_s, {run.path(u"list"_s), output});
        if (isFlipped)
            flipIn(output, 0, 15);
        QList<media::MeantOutput> meant{CheckRun::meant(films, output, media::Extent::Sum)};
        const QStringList sentences = verify(run, meant);
        const QList<Proof> proofs = proofsOf(meant.constFirst());
        QCOMPARE(proofs.count(Proof::Bits), isFlipped ? 2 : 4);
        QCOMPARE(sentences.value(0),
                 isFlipped ? u"Track 0 of the films (video) is not the same in out.%1, bit for bit."_s.arg(
                                 container)
                           : QString());
    }

    void partsOfAFilmAreProven_data()
    {
        QTest::addColumn<bool>("isFlipped");
        QTest::newRow("as they are") << false;
        QTest::newRow("flipped") << true;
    }

    void partsOfAFilmAreProven()
    {
        QFETCH(bool, isFlipped);
        CheckRun run;
        run.run(u"mkvmerge -o $1 --split 15s $0"_s, {minuteOf(u"mkv"_s), run.path(u"out.mkv"_s)});
        QList<media::MeantOutput> meant;
        for (int i = 1; QFile::exists(run.path(u"out-00%1.mkv"_s.arg(i))); ++i)
            meant.append(CheckRun::meant({minuteOf(u"mkv"_s)}, run.path(u"out-00%1.mkv"_s.arg(i)),
                                         media::Extent::Part));
        QVERIFY(meant.size() > 2);
        if (isFlipped)
            flipIn(run.path(u"out-002.mkv"_s), 1, 5);
        const QStringList sentences = verify(run, meant);
        for (const media::MeantOutput &part : std::as_const(meant))
            QCOMPARE(proofsOf(part).count(Proof::Bits), isFlipped ? 1 : 2);
        QCOMPARE(sentences.join(u' '),
                 isFlipped ? u"Track 1 of %1 (audio) is not the same in the parts, bit for bit."_s.arg(
                                 QFileInfo(minuteOf(u"mkv"_s)).fileName())
                           : QString());
    }

    /// In the middle of the data of one packet, which neither its length nor its time shows.
    void aFlippedByteIsFound_data()
    {
        QTest::addColumn<int>("stream");
        QTest::newRow("picture") << 0;
        QTest::newRow("sound") << 1;
    }

    void aFlippedByteIsFound()
    {
        QFETCH(int, stream);
        CheckRun run;
        const QString source = minuteOf(u"mkv"_s);
        const QString output = run.path(u"out.mp4"_s);
        run.run(copied, {source, output});
        flipIn(output, stream);
        QList<media::MeantOutput> meant{CheckRun::meant({source}, output)};
        const QStringList sentences = verify(run, meant);
        QCOMPARE(sentences.size(), 1);
        QVERIFY2(sentences.constFirst().startsWith(u"Track %1 of "_s.arg(stream)) &&
                     sentences.constFirst().endsWith(u"is not the same in out.mp4, bit for bit."_s),
                 qPrintable(sentences.constFirst()));
        QVERIFY(meant.constFirst().tracks.at(stream).proof != Proof::Bits);
        QCOMPARE(meant.constFirst().tracks.at(1 - stream).proof, Proof::Bits);
    }

private:
    static void flipIn(const QString &film, int stream, int second = 20)
    {
        QProcess ffprobe;
        ffprobe.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, QString::number(stream),
                                     u"-read_intervals"_s, u"%1%+#1"_s.arg(second), u"-show_entries"_s,
                                     u"packet=pos,size"_s, u"-of"_s, u"csv=p=0"_s, film});
        QVERIFY(ffprobe.waitForFinished(60000));
        const QList<QByteArray> fields = ffprobe.readAllStandardOutput().trimmed().split(','); // size, pos
        QByteArray content = contentOf(film);
        const qsizetype at = fields.at(1).toLongLong() + fields.at(0).toLongLong() / 2;
        content[at] = static_cast<char>(content.at(at) ^ 1);
        writeContent(film, content);
    }
};

TESSARAY_TEST(StreamProofTest)
#include "StreamProofTest.moc"

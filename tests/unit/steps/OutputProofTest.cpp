// How outputs are verified: which tools run for it, how many at once, and how they are suspended and ended.
// The tool prints what each row wants.
#include "steps/OutputProof.h"

#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using media::MeantOutput;
using media::Verified;
using steps::OutputProof;
using support::JobFixture;
using support::waitFor;

namespace {

const QString hash = u"out 0,v,MD5=00000000000000000000000000000000"_s;
const QString otherHash = u"out 0,v,MD5=11111111111111111111111111111111"_s;

/// One film that was copied into some others.
struct Proof
{
    Proof(const QStringList &script, int toolsAtOnce = 4)
        : proof(fixture.preferences, toolsAtOnce)
    {
        fixture.installTool(u"ffmpeg/ffmpeg"_s, QStringList{u"record "_s + path(u"runs"_s)} + script);
    }

    QString path(const QString &name) const { return fixture.scratch.path(name); }
    qsizetype runs() const { return support::FakeTool::recordedRuns(path(u"runs"_s)).size(); }

    MeantOutput meant(const QString &name, media::Became became = media::Became::Copied)
    {
        media::TrackFate fate;
        fate.source = fixture.scratch.url(u"a.mkv"_s);
        fate.kind = u"video"_s;
        fate.codec = u"h264"_s;
        fate.index = fate.outputIndex = 0;
        fate.became = became;
        MeantOutput output;
        output.sources = {fate.source};
        output.output = output.file = fixture.scratch.url(name);
        output.tracks = {fate};
        for (const QUrl &film : {fate.source, output.file})
            films[film].format = u"matroska,webm"_s;
        return output;
    }

    /// The ids of the tools that were started, each in a line.
    QList<qint64> pids(qsizetype count) const
    {
        QList<qint64> found;
        waitFor([&] { return fixture.scratch.read(u"pids"_s).count('\n') == count; });
        for (const QByteArray &line : fixture.scratch.read(u"pids"_s).split('\n'))
            found.append(line.toLongLong());
        found.removeAll(0);
        return found;
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    media::Films films;
    OutputProof proof;
    QSignalSpy finished{&proof, &OutputProof::finished};
};

bool allAre(const QList<qint64> &pids, char state)
{
    return std::all_of(pids.begin(), pids.end(), [&](qint64 pid) { return support::stateOf(pid) == state; });
}

} // namespace

class OutputProofTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hashesAreCompared_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<QString>("sentence");
        QTest::addColumn<int>("verified");
        QTest::newRow("the same") << QStringList{hash} << QString() << int(Verified::SameBits);
        QTest::newRow("others") << QStringList{u"when a.mkv"_s, hash, u"exit 0"_s, u"end"_s, otherHash}
                                << u"Track 0 of a.mkv (video) is not the same in b.mkv, bit for bit."_s
                                << int(Verified::NotProven);
        QTest::newRow("none") << QStringList{u"err what is that"_s, u"exit 1"_s} << QString()
                              << int(Verified::NotProven);
    }

    void hashesAreCompared()
    {
        QFETCH(QStringList, script);
        Proof run(script);
        run.proof.begin({run.meant(u"b.mkv"_s)}, run.films);
        QVERIFY(waitFor([&] { return !run.finished.isEmpty(); }));
        QCOMPARE(run.runs(), 2);
        QTEST(run.proof.outcome().sentence, "sentence");
        QCOMPARE(run.proof.outcome().verdict,
                 run.proof.outcome().sentence.isEmpty() ? steps::Verdict::Ok : steps::Verdict::Failed);
        QTEST(int(run.proof.outputs().constFirst().tracks.constFirst().verified), "verified");
    }

    void keyFramesAreDecoded_data()
    {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("all")
            << QStringList{u"err [null @ 0x1] Application provided invalid, non monotonically "
                           "increasing dts to muxer"_s}
            << QString();
        QTest::newRow("not all")
            << QStringList{u"err [h264 @ 0x5581] error while decoding MB 3 4"_s}
            << u"Not every key frame of b.mkv can be decoded: error while decoding MB 3 4."_s;
        QTest::newRow("none") << QStringList{u"exit 1"_s}
                              << u"Not every key frame of b.mkv can be decoded."_s;
    }

    void keyFramesAreDecoded()
    {
        QFETCH(QStringList, script);
        Proof run(script);
        run.proof.begin({run.meant(u"b.mkv"_s, media::Became::Reencoded)}, run.films);
        QVERIFY(waitFor([&] { return !run.finished.isEmpty(); }));
        QCOMPARE(run.runs(), 1);
        QTEST(run.proof.outcome().sentence, "sentence");
        const bool decodes =
            run.proof.outputs().constFirst().tracks.constFirst().verified == Verified::Decodes;
        QCOMPARE(decodes, run.proof.outcome().verdict == steps::Verdict::Ok);
    }

    void whatCanNotBeComparedEndsAtOnce()
    {
        Proof run({hash});
        MeantOutput meant = run.meant(u"b.mkv"_s);
        meant.tracks.first().codec = u"alac"_s;
        run.proof.begin({meant}, run.films);
        QVERIFY(run.finished.isEmpty());
        QVERIFY(waitFor([&] { return !run.finished.isEmpty(); }));
        QCOMPARE(run.runs(), 0);
        QCOMPARE(run.proof.outputs().constFirst().tracks.constFirst().verified, Verified::NotProven);
    }

    void fewToolsRunAtOnce()
    {
        Proof run({}, 3);
        run.fixture.installTool(u"ffmpeg/ffmpeg"_s,
                                {u"record "_s + run.path(u"runs"_s), u"await "_s + run.path(u"go"_s), hash});
        run.proof.begin({run.meant(u"1.mkv"_s), run.meant(u"2.mkv"_s), run.meant(u"3.mkv"_s)}, run.films);
        QVERIFY(waitFor([&] { return run.runs() == 3; }));
        waitFor([&] { return run.runs() > 3; }, 300);
        QCOMPARE(run.runs(), 3);
        run.fixture.scratch.write(u"go"_s, {});
        QVERIFY(waitFor([&] { return !run.finished.isEmpty(); }));
        QCOMPARE(run.runs(), 6);
    }

    void pausedItsToolsStandStill()
    {
        Proof run({}, 1);
        run.fixture.installTool(u"ffmpeg/ffmpeg"_s,
                                {u"pid "_s + run.path(u"pids"_s), u"await "_s + run.path(u"go"_s), hash});
        run.proof.begin({run.meant(u"b.mkv"_s)}, run.films);
        const QList<qint64> first = run.pids(1);
        run.proof.pause();
        QVERIFY(waitFor([&] { return allAre(first, 'T'); }));
        run.fixture.scratch.write(u"go"_s, {});
        waitFor([&] { return run.fixture.scratch.read(u"pids"_s).count('\n') > 1; }, 300);
        QVERIFY(allAre(first, 'T'));
        run.proof.resume();
        QVERIFY(waitFor([&] { return !run.finished.isEmpty(); }));
        QCOMPARE(run.pids(2).size(), 2);
    }

    void whatBeginsWhileItIsPausedWaits()
    {
        Proof run({hash});
        run.proof.pause();
        run.proof.begin({run.meant(u"b.mkv"_s)}, run.films);
        waitFor([&] { return run.runs() > 0; }, 300);
        QCOMPARE(run.runs(), 0);
        run.proof.resume();
        QVERIFY(waitFor([&] { return !run.finished.isEmpty(); }));
    }

    void endedItIsSilent()
    {
        Proof run({});
        run.fixture.installTool(u"ffmpeg/ffmpeg"_s, {u"pid "_s + run.path(u"pids"_s), u"hang"_s});
        run.proof.begin({run.meant(u"b.mkv"_s)}, run.films);
        const QList<qint64> pids = run.pids(2);
        QCOMPARE(pids.size(), 2);
        QVERIFY(run.proof.isRunning());
        run.proof.end();
        QVERIFY(!run.proof.isRunning());
        for (const qint64 pid : pids)
            QVERIFY(waitFor([&] { return !support::runs(pid); }));
        QVERIFY(run.finished.isEmpty());
    }
};

TESSARAY_TEST(OutputProofTest)
#include "OutputProofTest.moc"

// How the check of outputs asks ffprobe: each source once and while the tool works, the outputs when it has
// ended, few tools at once, never waiting, and silent once it is ended.
#include "steps/OutputCheck.h"

#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using media::CheckedOutput;
using media::MeantOutput;
using steps::OutputCheck;
using support::JobFixture;

namespace {

const QString answer =
    u"out "
    u"{\"packets\":[{\"stream_index\":0,\"pts_time\":\"0\",\"dts_time\":\"0\",\"duration_time\":\"8\","
    u"\"size\":"
    "\"5\",\"flags\":\"K_\"}],\"streams\":[{\"index\":0,\"codec_type\":\"video\",\"codec_name\":\"h264\","
    "\"avg_frame_rate\":\"25/"
    "1\",\"start_time\":\"0\"}],\"format\":{\"format_name\":\"matroska,webm\",\"duration\":"
    "\"8\",\"size\":\"4\"}}"_s;

struct Check
{
    Check() { script({}); }

    void script(const QStringList &first)
    {
        fixture.installTool(u"ffmpeg/ffprobe"_s,
                            QStringList{u"record "_s + runs()} + first + QStringList{answer});
    }

    QString runs() const { return fixture.scratch.path(u"runs"_s); }

    MeantOutput meant(const QString &source, const QString &output)
    {
        for (const QString &name : {source, output})
            fixture.scratch.write(name, "film");
        MeantOutput meant;
        meant.sources = {fixture.scratch.url(source)};
        meant.output = fixture.scratch.url(u"final-"_s + output);
        meant.file = fixture.scratch.url(output);
        media::TrackFate video;
        video.source = meant.sources.constFirst();
        video.index = 0;
        video.kind = u"video"_s;
        video.codec = u"h264"_s;
        meant.tracks = {video};
        return meant;
    }

    /// The names of the films that ffprobe was asked for, in order; each is asked for its length first.
    QStringList asked() const
    {
        QStringList names;
        for (const auto &run : support::FakeTool::recordedRuns(runs())) {
            const QString name = QString::fromUtf8(run.arguments.constLast()).section(u'/', -1);
            if (names.isEmpty() || names.constLast() != name)
                names.append(name);
        }
        return names;
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    OutputCheck check{fixture.preferences, 1};
};

} // namespace

class OutputCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sourcesAreReadBeforeOutputs()
    {
        Check run;
        QSignalSpy finished(&run.check, &OutputCheck::finished);
        const QList<MeantOutput> outputs{run.meant(u"a.mkv"_s, u"1.mkv"_s),
                                         run.meant(u"a.mkv"_s, u"2.mkv"_s)};
        run.check.readSources(outputs);
        QVERIFY(support::waitFor([&] { return run.asked() == QStringList{u"a.mkv"_s}; }));
        QVERIFY(finished.isEmpty());
        run.check.begin(outputs, {});
        QVERIFY(run.check.isRunning());
        QVERIFY(support::waitFor([&] { return !finished.isEmpty(); }));
        QVERIFY(!run.check.isRunning());
        QCOMPARE(run.asked(), (QStringList{u"a.mkv"_s, u"1.mkv"_s, u"2.mkv"_s}));
        QCOMPARE(run.check.results().size(), 2);
        QCOMPARE(run.check.outcome().verdict, steps::Verdict::Ok);
        QCOMPARE(run.check.results().at(1).output.tracks.constFirst().proof, media::Proof::Lengths);
        QCOMPARE(finished.size(), 1);
    }

    void sourcesNeedNotBeReadBefore()
    {
        Check run;
        QSignalSpy finished(&run.check, &OutputCheck::finished);
        run.check.begin({run.meant(u"a.mkv"_s, u"1.mkv"_s)}, {});
        QVERIFY(finished.isEmpty());
        QVERIFY(support::waitFor([&] { return !finished.isEmpty(); }));
        QCOMPARE(run.asked(), (QStringList{u"a.mkv"_s, u"1.mkv"_s}));
    }

    /// A folder and a file that is gone are not handed to a tool, and there may be nothing to read at all.
    void whatIsNoFileIsNotAsked()
    {
        Check run;
        QSignalSpy finished(&run.check, &OutputCheck::finished);
        MeantOutput meant = run.meant(u"a.mkv"_s, u"1.mkv"_s);
        meant.sources = {run.fixture.scratch.url(QString())};
        meant.file = run.fixture.scratch.url(u"gone.mkv"_s);
        run.check.begin({meant}, {});
        QVERIFY(finished.isEmpty()); // never from within the call
        QVERIFY(support::waitFor([&] { return !finished.isEmpty(); }));
        QCOMPARE(run.asked(), QStringList());
        QCOMPARE(run.check.outcome().verdict, steps::Verdict::Failed);
        QVERIFY2(run.check.outcome().sentence.startsWith(u"final-1.mkv can't be read."_s),
                 qPrintable(run.check.outcome().sentence));
    }

    void anOutputIsReadAnewEachTime()
    {
        Check run;
        QSignalSpy finished(&run.check, &OutputCheck::finished);
        const MeantOutput meant = run.meant(u"a.mkv"_s, u"1.mkv"_s);
        for (int i = 1; i <= 2; ++i) {
            run.check.begin({meant}, {});
            QVERIFY(support::waitFor([&] { return finished.size() == i; }));
        }
        QCOMPARE(run.asked(), (QStringList{u"a.mkv"_s, u"1.mkv"_s}));
        QCOMPARE(support::FakeTool::recordedRuns(run.runs()).size(), 6); // twice for each read of a film
    }

    void theToolsOwnWordsCount()
    {
        Check run;
        QSignalSpy finished(&run.check, &OutputCheck::finished);
        run.check.begin({run.meant(u"a.mkv"_s, u"1.mkv"_s)}, u"[avi @ 0x1] Packet corrupt (stream = 0)\n"_s);
        QVERIFY(support::waitFor([&] { return !finished.isEmpty(); }));
        QCOMPARE(run.check.outcome().verdict, steps::Verdict::Warnings);
        QCOMPARE(run.check.outcome().sentence, u"The source is damaged: Packet corrupt (stream = 0)."_s);
    }

    void endedItIsSilent()
    {
        Check run;
        run.script({u"pid "_s + run.fixture.scratch.path(u"pids"_s), u"hang"_s});
        QSignalSpy finished(&run.check, &OutputCheck::finished);
        run.check.begin({run.meant(u"a.mkv"_s, u"1.mkv"_s)}, {});
        QVERIFY(support::waitFor([&] { return QFile::exists(run.fixture.scratch.path(u"pids"_s)); }));
        QVERIFY(support::waitFor([&] { return run.fixture.scratch.read(u"pids"_s).endsWith('\n'); }));
        const qint64 pid = run.fixture.scratch.read(u"pids"_s).trimmed().toLongLong();
        QVERIFY(support::runs(pid));
        run.check.end();
        QVERIFY(!run.check.isRunning());
        QVERIFY(support::waitFor([&] { return !support::runs(pid); }));
        QVERIFY(finished.isEmpty());
        QCOMPARE(support::FakeTool::recordedRuns(run.runs()).size(), 1);
    }

    void fewToolsRunAtOnce()
    {
        JobFixture fixture{JobFixture::Tools::Fake};
        const QString runs = fixture.scratch.path(u"runs"_s);
        fixture.installTool(u"ffmpeg/ffprobe"_s,
                            {u"record "_s + runs, u"await "_s + fixture.scratch.path(u"go"_s), answer});
        steps::FilmReads reads(fixture.preferences, 3);
        QSignalSpy answered(&reads, &steps::FilmReads::answered);
        QList<media::FilmWish> wishes;
        for (int i = 0; i < 7; ++i) {
            fixture.scratch.write(QString::number(i), "film");
            wishes.append({fixture.scratch.url(QString::number(i)), {}, {}, {}});
        }
        reads.ask(wishes);
        reads.ask(wishes);
        QVERIFY(support::waitFor([&] { return support::FakeTool::recordedRuns(runs).size() == 3; }));
        support::waitFor([&] { return support::FakeTool::recordedRuns(runs).size() > 3; }, 300);
        QCOMPARE(support::FakeTool::recordedRuns(runs).size(), 3);
        fixture.scratch.write(u"go"_s, {});
        QVERIFY(support::waitFor([&] { return !answered.isEmpty(); }));
        QCOMPARE(answered.size(), 1);
        QCOMPARE(reads.facts().size(), 7);
        QCOMPARE(support::FakeTool::recordedRuns(runs).size(), 14);
    }

    /// A tool of the job that works takes the core of a read.
    void otherToolsTakeTheirCores()
    {
        Check run;
        int others = 1;
        steps::FilmReads reads(run.fixture.preferences, 2);
        reads.setOtherTools([&] { return others; });
        run.script({u"await "_s + run.fixture.scratch.path(u"go"_s)});
        QSignalSpy answered(&reads, &steps::FilmReads::answered);
        for (const char *name : {"1", "2"})
            run.fixture.scratch.write(QString::fromLatin1(name), "film");
        const auto wishFor = [&](const QString &name) {
            return media::FilmWish{run.fixture.scratch.url(name), {}, {}, {}};
        };
        reads.ask({wishFor(u"1"_s), wishFor(u"2"_s)});
        QVERIFY(support::waitFor([&] { return run.asked().size() == 1; }));
        support::waitFor([&] { return run.asked().size() > 1; }, 300);
        QCOMPARE(run.asked().size(), 1);
        others = 0;
        reads.startWaiting();
        QVERIFY(support::waitFor([&] { return run.asked().size() == 2; }));
        run.fixture.scratch.write(u"go"_s, {});
        QVERIFY(support::waitFor([&] { return !answered.isEmpty(); }));
    }

    void pausedItsToolsStandStill()
    {
        Check run;
        const QString pids = run.fixture.scratch.path(u"pids"_s);
        run.script({u"pid "_s + pids, u"await "_s + run.fixture.scratch.path(u"go"_s)});
        QSignalSpy finished(&run.check, &OutputCheck::finished);
        run.check.begin({run.meant(u"a.mkv"_s, u"1.mkv"_s)}, {});
        QVERIFY(support::waitFor([&] { return run.fixture.scratch.read(u"pids"_s).endsWith('\n'); }));
        const qint64 pid = run.fixture.scratch.read(u"pids"_s).trimmed().toLongLong();
        run.check.pause();
        QVERIFY(support::waitFor([&] { return support::stateOf(pid) == 'T'; }));
        run.fixture.scratch.write(u"go"_s, {});
        support::waitFor([&] { return run.fixture.scratch.read(u"pids"_s).count('\n') > 1; }, 300);
        QCOMPARE(support::stateOf(pid), 'T');
        run.check.resume();
        QVERIFY(support::waitFor([&] { return !finished.isEmpty(); }));
        QCOMPARE(run.check.outcome().verdict, steps::Verdict::Ok);
    }

    void whatBeginsWhileItIsPausedWaits()
    {
        Check run;
        run.check.pause();
        QSignalSpy finished(&run.check, &OutputCheck::finished);
        run.check.begin({run.meant(u"a.mkv"_s, u"1.mkv"_s)}, {});
        support::waitFor([&] { return !run.asked().isEmpty(); }, 300);
        QVERIFY(run.asked().isEmpty());
        run.check.resume();
        QVERIFY(support::waitFor([&] { return !finished.isEmpty(); }));
    }

    void aToolThatCanNotBeStartedIsTold()
    {
        JobFixture fixture{JobFixture::Tools::Fake};
        steps::FilmReads reads(fixture.preferences, 1);
        QSignalSpy answered(&reads, &steps::FilmReads::answered);
        fixture.scratch.write(u"a"_s, "film");
        reads.ask({{fixture.scratch.url(u"a"_s), {}, {}, {}}});
        QVERIFY(support::waitFor([&] { return !answered.isEmpty(); }));
        QVERIFY(!reads.facts().value(fixture.scratch.url(u"a"_s)).isOpen);
    }
};

TESSARAY_TEST(OutputCheckTest)
#include "OutputCheckTest.moc"

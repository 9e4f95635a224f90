// Tracks of a real film written into files of their own.
#include "engines/ffmpeg/KXTrackDumper.h"
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/RealRuns.h"
#include "tools/Numbers.h"

#include <QFile>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

/// A dumper outside a job.
class Dump final
{
public:
    explicit Dump(RealRuns &runs)
        : guard(runs.base.outputs, steps::WhenTaken::NextFreeName)
        , dumper(runs.base.converterContext(guard))
    {
    }

    steps::OutputGuard guard;
    KXTrackDumper dumper;
    /// Where a file lies that no job has published.
    QString fileOf(const QString &name) const
    {
        return guard.fileOf(QUrl::fromLocalFile(name)).toLocalFile();
    }
};

/// The rules call every probed picture subtitle "teletext"; with its true word mkvextract writes it.
SelectionPointer withPicture(RealRuns &runs, const QString &clip, const QString &stream, const QString &codec,
                             const QString &extension)
{
    const auto selection = runs.probed(runs.film(clip));
    keepStreams(*selection, {stream});
    const auto track = streamOf(*selection, stream);
    track->setTrackCodec(codec);
    track->setTrackExtension(extension);
    return selection;
}

} // namespace

class ExtractionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTrackOfAFilm()
    {
        RealRuns runs;
        const QString source = runs.film(fullMkv());
        const auto job = runs.extract(runs.probed(source));
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        const QList<std::pair<QString, QString>> written{
            {u"a.mkv.stream0.h264"_s, u"h264"_s}, {u"a.mkv.stream1.ac3"_s, u"ac3"_s},
            {u"a.mkv.stream2.aac"_s, u"aac"_s},   {u"a.mkv.stream3.srt"_s, u"subrip"_s},
            {u"a.mkv.stream4.ass"_s, u"ass"_s},   {u"a.mkv.stream5.dtshd"_s, u"dts"_s}};
        QStringList names{u"a.mkv"_s};
        for (const auto &[name, codec] : written) {
            names << name;
            QCOMPARE(codecsOf(runs.path(name)), codec);
        }
        QCOMPARE(runs.names(), names); // and no log
        QCOMPARE(job->outputs().size(), 6);
        QVERIFY(contentOf(runs.path(u"a.mkv.stream0.h264"_s)).startsWith(QByteArray("\0\0\0\1", 4)));
        QVERIFY(contentOf(runs.path(u"a.mkv.stream3.srt"_s)).contains("Hello, world"));
        QCOMPARE(contentOf(source), contentOf(fullMkv()));
    }

    void progressReachesItsEnd()
    {
        RealRuns runs;
        const NotificationRecord updates(runs.base.notifications, {u"monitorExtractionUpdate"_s});
        QVERIFY(runs.run(runs.extract(runs.probed(runs.film(fullMkv())))));
        qint64 most = 0;
        for (const auto &update : updates.all()) {
            const QString text = update.object.toString();
            QVERIFY2(text.endsWith(u'%'), qPrintable(text));
            most = std::max(most, tools::leadingInteger(text));
        }
        QVERIFY2(most >= 87 && most <= 100,
                 qPrintable(QString::number(most))); // the last frame is at 7.96 s of 8
    }

    void mp4TextIsWrittenAsAss()
    {
        RealRuns runs;
        const auto selection = runs.probed(runs.film(textMp4(), u"a.mp4"_s));
        keepStreams(*selection, {u"2"_s});
        const auto job = runs.extract(selection);
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(codecsOf(runs.path(u"a.mp4.stream2.ass"_s)), u"ass"_s);
    }

    void aProbedPictureIsNamedAsNotWritten_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("stream");
        QTest::newRow("PGS") << pgsMkv() << u"2"_s;
        QTest::newRow("VobSub") << vobsubMkv() << u"6"_s;
    }

    void aProbedPictureIsNamedAsNotWritten()
    {
        QFETCH(QString, clip);
        QFETCH(QString, stream);
        RealRuns runs;
        const auto selection = runs.probed(runs.film(clip));
        keepStreams(*selection, {u"1"_s, stream});
        const auto job = runs.extract(selection);
        QVERIFY(runs.run(job));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.startsWith(
                     u"Track %1, Subtitle: (teletext), was not written. "_s.arg(stream)),
                 qPrintable(job->outcome().sentence));
        QCOMPARE(job->outputs().size(), 1); // the sound was
        QVERIFY(QFile::exists(job->outputs().first().toLocalFile()));
        QCOMPARE(runs.names().size(), 3); // source, sound, and the log of what failed
        QVERIFY(runs.names().filter(u".log"_s).first().contains(u"stream"_s + stream));
    }

    void mkvextractWritesAPgs()
    {
        RealRuns runs;
        const auto job = runs.extract(withPicture(runs, pgsMkv(), u"2"_s, u"pgs"_s, u"sup"_s));
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(codecsOf(runs.path(u"a.mkv.stream2.sup"_s)), u"hdmv_pgs_subtitle"_s);
        QCOMPARE(runs.names(), QStringList({u"a.mkv"_s, u"a.mkv.stream2.sup"_s}));
    }

    void mkvextractWritesAVobSub()
    {
        RealRuns runs;
        const auto job = runs.extract(withPicture(runs, vobsubMkv(), u"6"_s, u"vobsub"_s, u"idx"_s));
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(runs.names(), QStringList({u"a.mkv"_s, u"a.mkv.stream6.idx"_s, u"a.mkv.stream6.sub"_s}));
        QVERIFY(contentOf(runs.path(u"a.mkv.stream6.idx"_s)).contains("VobSub index file"));
    }

    /// mkvextract writes two files, and asks for neither.
    void aVobSubNeverOverwritesItsSecondFile()
    {
        RealRuns runs;
        runs.base.scratch.write(u"a.mkv.stream6.sub"_s, "mine");
        const auto job = runs.extract(withPicture(runs, vobsubMkv(), u"6"_s, u"vobsub"_s, u"idx"_s));
        QVERIFY(runs.run(job));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"a.mkv.stream6.sub exists already"_s),
                 qPrintable(job->outcome().sentence));
        QCOMPARE(contentOf(runs.path(u"a.mkv.stream6.sub"_s)), QByteArray("mine"));
        QVERIFY(!QFile::exists(runs.path(u"a.mkv.stream6.idx"_s)));
    }

    void inTheBackground_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("stream");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("written");
        QTest::newRow("PGS") << pgsMkv() << u"2"_s << u"pgs"_s << u"sup"_s << u"hdmv_pgs_subtitle"_s;
        QTest::newRow("VobSub") << vobsubMkv() << u"6"_s << u"vobsub"_s << u"idx"_s << u"dvd_subtitle"_s;
        QTest::newRow("srt") << fullMkv() << u"3"_s << u"srt"_s << u"srt"_s << u"subrip"_s;
        QTest::newRow("ac3") << fullMkv() << u"1"_s << u"ac3"_s << u"ac3"_s << u"ac3"_s;
        QTest::newRow("h264") << fullMkv() << u"0"_s << u"h264"_s << u"h264"_s << u"h264"_s;
    }

    void inTheBackground()
    {
        QFETCH(QString, clip);
        QFETCH(QString, stream);
        QFETCH(QString, codec);
        QFETCH(QString, extension);
        QFETCH(QString, written);
        RealRuns runs;
        const auto selection = withPicture(runs, clip, stream, codec, extension);
        Dump dump(runs);
        const QString pid = dump.dumper.startConversionFor(selection);
        QVERIFY2(!pid.isEmpty(), qPrintable(dump.dumper.refusal()));
        QVERIFY(waitFor([&] { return dump.dumper.monitorConversion() == u"Complete"_s; }));
        QVERIFY2(dump.dumper.outcome().verdict == Verdict::Ok, qPrintable(dump.dumper.outcome().sentence));
        const QString output = runs.path(u"a.mkv.stream%1.%2"_s.arg(stream, extension));
        QCOMPARE(dump.dumper.outputFileURL(), QUrl::fromLocalFile(output));
        QCOMPARE(codecsOf(dump.fileOf(output)), written);
        QVERIFY(QFile(dump.fileOf(output + u".log"_s)).size() > 0);
    }

    void aFailureInTheBackgroundIsFound_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("extension");
        QTest::newRow("mkvextract") << u"pgs"_s << u"sup"_s;
        QTest::newRow("ffmpeg") << u"teletext"_s << u"xxx"_s;
    }

    void aFailureInTheBackgroundIsFound()
    {
        QFETCH(QString, codec);
        QFETCH(QString, extension);
        RealRuns runs;
        const auto selection = withPicture(runs, pgsMkv(), u"2"_s, codec, extension);
        streamOf(*selection, u"2"_s)->setTrackMkvmergeID(u"77"_s);
        Dump dump(runs);
        dump.dumper.startConversionFor(selection);
        QVERIFY(waitFor([&] { return dump.dumper.monitorConversion() == u"Complete"_s; }));
        QCOMPARE(dump.dumper.outcome().verdict, Verdict::Failed);
        QVERIFY2(dump.dumper.outcome().sentence.startsWith(u"Track 2, "_s),
                 qPrintable(dump.dumper.outcome().sentence));
    }

    /// "Subtitle to extract" of a conversion: it lies beside the film when that is done.
    void aConversionExtractsASubtitle()
    {
        RealRuns runs;
        const auto selection = runs.probed(runs.film(fullMkv()));
        keepStreams(*selection, {u"0"_s, u"2"_s, u"3"_s});
        streamOf(*selection, u"3"_s)->setUserCodec(u"extract"_s);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        QVERIFY2(job->outcome().verdict == Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(runs.names(), QStringList({u"a.m4v"_s, u"a.mkv"_s, u"a.mkv.stream3.srt"_s}));
        QCOMPARE(codecsOf(runs.path(u"a.m4v"_s)), u"h264 aac"_s);
    }
};

TESSARAY_TEST(ExtractionTest)
#include "ExtractionTest.moc"

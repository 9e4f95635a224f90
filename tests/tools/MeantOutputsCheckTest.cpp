// What the engines say that they mean, and what their jobs really write, agree: good conversions and
// extractions of real jobs are told "ok". The short form draws some of them.
#include "engines/ffmpeg/ExtractionFates.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "engines/ffmpeg/FfmpegFates.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/engines/RealRuns.h"
#include "support/jobs/CheckClips.h"
#include "support/jobs/CheckRun.h"

#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

struct Film
{
    QString name;
    QString path;
};

QList<Film> films()
{
    QList<Film> all{{u"full.mkv"_s, fullMkv()},
                    {u"many.mkv"_s, manyTracksMkv()},
                    {u"pgs.mkv"_s, pgsMkv()},
                    {u"vobsub.mkv"_s, vobsubMkv()},
                    {u"cover.mkv"_s, pngCoverMkv()},
                    {u"text.mp4"_s, textMp4()},
                    {u"packed.avi"_s, packedAvi()},
                    {u"latin1.avi"_s, latin1Avi()},
                    {u"program.mpg"_s, programStream()},
                    {u"transport.ts"_s, transportStream()}};
    for (const QString &extension : {u"mkv"_s, u"mp4"_s, u"mov"_s, u"ts"_s, u"avi"_s, u"flv"_s})
        all.append({u"minute."_s + extension, minuteOf(extension)});
    return all;
}

} // namespace

class MeantOutputsCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void conversions_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("device");
        QTest::addColumn<bool>("isCopied");
        QList<std::tuple<Film, QString, bool>> rows;
        for (const Film &film : films()) {
            for (const QString &device : {u"General"_s, u"MKV"_s}) {
                rows.append({film, device, true});
                rows.append({film, device, false});
            }
        }
        for (const auto &[film, device, isCopied] : drawn(rows, 4))
            QTest::addRow("%s, %s, %s", qPrintable(film.name), qPrintable(device),
                          isCopied ? "copied" : "encoded")
                << film.path << device << isCopied;
    }

    void conversions()
    {
        QFETCH(QString, path);
        QFETCH(QString, device);
        QFETCH(bool, isCopied);
        RealRuns runs;
        const QString film = runs.film(path, u"a."_s + QFileInfo(path).suffix());
        const auto selection = isCopied ? runs.probed(film, device) : runs.reencoded(film, device, u"1"_s);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        if (job->outcome().verdict == steps::Verdict::Failed)
            return; // that is told already
        engines::ConversionRequest request;
        request.kind = engines::outputKindNamed(engines::appNameForDevice(device));
        request.output = job->outputs().constFirst();
        CheckRun run;
        QCOMPARE(told(run.check(engines::conversionOutput(*selection, request))), u"ok"_s);
    }

    void extractions_data()
    {
        QTest::addColumn<QString>("path");
        for (const Film &film : drawn(films(), 2))
            QTest::addRow("%s", qPrintable(film.name)) << film.path;
    }

    void extractions()
    {
        QFETCH(QString, path);
        RealRuns runs;
        const QString film = runs.film(path, u"a."_s + QFileInfo(path).suffix());
        const auto selection = runs.probed(film);
        const auto job = runs.extract(selection);
        QVERIFY(runs.run(job));
        CheckRun run;
        for (const TrackPointer &track : selection->trackList()) {
            for (const QUrl &output : job->outputs()) {
                if (!output.fileName().contains(u".stream%1."_s.arg(track->streamIndex())) ||
                    output.fileName().endsWith(u".sub"_s))
                    continue;
                const QString said = told(run.check(engines::extractionMeant(*track, {}, output)));
                QVERIFY2(said == u"ok"_s, qPrintable(output.fileName() + u": "_s + said));
            }
        }
    }
};

TESSARAY_TEST(MeantOutputsCheckTest)
#include "MeantOutputsCheckTest.moc"

// A job that is refused touches nothing of what stands in the save folder, whether it ends or is stopped
// first.
#include "engines/ffmpeg/KXConvertWithFfmpegJob.h"
#include "engines/ffmpeg/KXExtractTracksJob.h"
#include "engines/join/KXJoinVideosJob.h"
#include "engines/mkvtoolnix/KXConvertToMkvJob.h"
#include "engines/mkvtoolnix/KXEditMkvJob.h"
#include "engines/mkvtoolnix/KXRemuxVideoJob.h"
#include "engines/mkvtoolnix/KXSendToLintwickJob.h"
#include "engines/mkvtoolnix/KXSplitVideosJob.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"
#include "support/selection/HandMade.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// What the operations would write, and the name from which theirs are made.
const QStringList taken{u"a.mkv"_s,
                        u"a (2).mkv"_s,
                        u"a.m4v"_s,
                        u"a.muxed.mkv"_s,
                        u"a.removed.mkv"_s,
                        u"a.mkv.remux.mkv"_s,
                        u"a.mkv.joined.mkv"_s,
                        u"a.mkv.split.mkv"_s,
                        u"a.mkv.split-001.mkv"_s,
                        u"a.mkv.stream2.srt"_s};

} // namespace

Q_DECLARE_METATYPE(JobMaker)

class RefusedJobsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsTouched_data()
    {
        QTest::addColumn<JobMaker>("maker");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("device");
        QTest::addColumn<bool>("isStopped");
        const auto rows = [](const char *name, JobMaker maker, const QString &type, const QString &device) {
            QTest::addRow("%s, ended", name) << maker << type << device << false;
            QTest::addRow("%s, stopped", name) << maker << type << device << true;
        };
        rows("conversion", makeJob<KXConvertWithFfmpegJob>, u"Conversion"_s, u"General"_s);
        rows("conversion to MKV", makeJob<KXConvertWithFfmpegJob>, u"Conversion"_s, u"MKV"_s);
        rows("muxing", makeJob<KXConvertToMkvJob>, u"MKV Conversion"_s, u"MKV"_s);
        rows("removal", makeJob<KXEditMkvJob>, u"MKV Track Removal"_s, u"MKV"_s);
        rows("remux in the background", makeJob<KXEditMkvJob>, u"MKV Remux"_s, u"MKV"_s);
        rows("split in the background", makeJob<KXEditMkvJob>, u"MKV Splitting"_s, u"MKV"_s);
        rows("join by the editor", makeJob<KXEditMkvJob>, u"MKV Joining"_s, u"MKV"_s);
        rows("extraction by the editor", makeJob<KXEditMkvJob>, u"MKV Track Extraction"_s, u"MKV"_s);
        rows("extraction", makeJob<KXExtractTracksJob>, u"Track Extraction"_s, u"MKV"_s);
        rows("join", makeJob<KXJoinVideosJob>, u"Joining"_s, u"MKV"_s);
        rows("remux", makeJob<KXRemuxVideoJob>, u"Remux"_s, u"MKV"_s);
        rows("split", makeJob<KXSplitVideosJob>, u"Splitting"_s, u"MKV"_s);
        rows("sending", makeJob<KXSendToLintwickJob>, u"Send To Lintwick"_s, u"MKV"_s);
    }

    void nothingIsTouched()
    {
        QFETCH(JobMaker, maker);
        QFETCH(QString, type);
        QFETCH(QString, device);
        QFETCH(bool, isStopped);
        MkvFixture fixture;
        for (const QString &name : taken)
            fixture.base.scratch.write(u"out/"_s + name, "theirs: " + name.toUtf8());
        fixture.base.setSaveFolder(fixture.path(u"out"_s));
        const auto selection = fixture.selection(type, {subtitleTrack(u"2"_s, u"srt"_s)});
        selection->setTheDevice(device);
        selection->setEditFilesURLsList({fixture.source, fixture.source});
        selection->setSplitType(u"duration"_s);
        selection->setSplitDurationSeconds(u"2"_s);
        const auto job = maker(fixture.base.jobContext(steps::WhenTaken::Refuse));
        fixture.job = job;
        job->initJobWithSelectionAndPreferences(selection, fixture.base.preferences);
        job->startJob();
        if (isStopped)
            job->stopJob();
        QVERIFY(waitFor([&] { return job->hasEnded(); }));
        QVERIFY(isStopped || job->outcome().verdict == steps::Verdict::Failed);
        QStringList names =
            QDir(fixture.path(u"out"_s))
                .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
        QStringList expected = taken;
        expected.sort();
        names.sort();
        QCOMPARE(names, expected);
        for (const QString &name : taken)
            QCOMPARE(fixture.base.scratch.read(u"out/"_s + name), "theirs: " + name.toUtf8());
        QVERIFY(!job->outcome().sentence.contains(u"The log is"_s));
    }
};

TESSARAY_TEST(RefusedJobsTest)
#include "RefusedJobsTest.moc"

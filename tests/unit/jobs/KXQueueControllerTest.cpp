// How selections become jobs; how they run is in KXQueueRunTest.
#include "jobs/KXQueueController.h"

#include "media/KXVideoTrack.h"
#include "prefs/KXWatchModeController.h"
#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::JobFixture;
using support::TestJob;

namespace {

const QString conversion = u"MKV Conversion"_s;

struct Queue
{
    explicit Queue(const QList<jobs::JobKind> &kinds = {
                       jobs::JobKind::Conversion, jobs::JobKind::Muxing, jobs::JobKind::TrackExtraction,
                       jobs::JobKind::Joining, jobs::JobKind::SubtitleSending, jobs::JobKind::Splitting,
                       jobs::JobKind::Remux, jobs::JobKind::MkvEditing})
    {
        for (const jobs::JobKind kind : kinds)
            support::registerTestJob(factory, kind);
        queue.initialize();
    }

    SelectionPointer selection(const QString &type, const QString &source = u"/v/film.mkv"_s) const
    {
        return fixture.selectionFor(source, type);
    }
    int add(const QString &type, const QString &source = u"/v/film.mkv"_s)
    {
        return queue.addToQueue(selection(type, source));
    }
    TestJob *job(qsizetype row) const { return static_cast<TestJob *>(queue.qJobList().at(row).get()); }
    QStringList names() const
    {
        QStringList list;
        for (const JobPointer &job : queue.qJobList())
            list.append(job->jobFileName());
        return list;
    }
    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXWatchModeController watchMode;
    KXQueueController queue{fixture.jobContext(), factory, &watchMode};
    QSignalSpy added{&queue, &KXQueueController::jobAdded};
};

} // namespace

class KXQueueControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshQueueIsIdle()
    {
        Queue q;
        QVERIFY(q.queue.qJobList().isEmpty());
        QVERIFY(q.queue.jobProgressList().isEmpty());
        QVERIFY(!q.queue.qJobIsRunning());
        QVERIFY(!q.queue.timerIsRunning());
        QVERIFY(!q.queue.currentJob());
        QCOMPARE(q.queue.pauseButtonTitle(), u"Pause"_s);
    }

    void selectionBecomesAJobOfItsClass_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<jobs::JobKind>("kind");
        QTest::newRow("conversion") << conversion << jobs::JobKind::Conversion;
        QTest::newRow("extraction") << u"MKV Track Extraction"_s << jobs::JobKind::TrackExtraction;
        QTest::newRow("joining") << u"MKV Joining"_s << jobs::JobKind::Joining;
        QTest::newRow("sending") << u"Send To Lintwick"_s << jobs::JobKind::SubtitleSending;
    }

    void selectionBecomesAJobOfItsClass()
    {
        QFETCH(QString, type);
        QFETCH(jobs::JobKind, kind);
        Queue q;
        QCOMPARE(q.add(type), 1);
        QCOMPARE(q.queue.qJobList().size(), 1);
        QCOMPARE(q.job(0)->kind, kind);
        QCOMPARE(q.job(0)->jobType(), type);
        QCOMPARE(q.job(0)->jobStatus(), u"Queued"_s);
        QCOMPARE(q.job(0)->jobFileName(), u"film.mkv"_s);
        QCOMPARE(q.added.size(), 1);
        QCOMPARE(q.added.first().first().toInt(), 0);
    }

    void rawStreamWhoseVideoPassesIsOnlyMuxed_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QStringList>("codecs");
        QTest::addColumn<jobs::JobKind>("kind");
        const auto muxed = jobs::JobKind::Muxing;
        const auto converted = jobs::JobKind::Conversion;
        QTest::newRow("raw, passed") << u"/v/a.h264"_s << QStringList{u"passthru"_s} << muxed;
        QTest::newRow("capitals") << u"/v/a.H264"_s << QStringList{u"passthru"_s} << muxed;
        QTest::newRow("raw, re-encoded") << u"/v/a.h264"_s << QStringList{u"h264"_s} << converted;
        QTest::newRow("not raw") << u"/v/a.mkv"_s << QStringList{u"passthru"_s} << converted;
        QTest::newRow("first video counts")
            << u"/v/a.h264"_s << QStringList{u"h264"_s, u"passthru"_s} << converted;
        QTest::newRow("no video") << u"/v/a.h264"_s << QStringList{} << converted;
    }

    void rawStreamWhoseVideoPassesIsOnlyMuxed()
    {
        QFETCH(QString, source);
        QFETCH(QStringList, codecs);
        QFETCH(jobs::JobKind, kind);
        Queue q;
        const auto selection = q.selection(conversion, source);
        TrackList tracks{JobFixture::track(u"Audio"_s, source, u"passthru"_s)};
        for (const QString &codec : codecs)
            tracks.append(JobFixture::track(u"Video"_s, source, codec));
        selection->setTrackList(tracks);
        QCOMPARE(q.queue.addToQueue(selection), 1);
        QCOMPARE(q.job(0)->kind, kind);
    }

    void filesOfASplitOrRemuxBecomeARowEach_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<jobs::JobKind>("kind");
        QTest::newRow("split") << u"MKV Splitting"_s << jobs::JobKind::Splitting;
        QTest::newRow("remux") << u"MKV Remux"_s << jobs::JobKind::Remux;
    }

    void filesOfASplitOrRemuxBecomeARowEach()
    {
        QFETCH(QString, type);
        QFETCH(jobs::JobKind, kind);
        Queue q;
        const auto selection = q.selection(type);
        const QList<QUrl> files{QUrl::fromLocalFile(u"/v/b.mkv"_s), QUrl::fromLocalFile(u"/w/a.mkv"_s),
                                QUrl::fromLocalFile(u"/v/c.mkv"_s)};
        selection->setEditFilesURLsList(files);
        QCOMPARE(q.queue.addToQueue(selection), 3);
        QCOMPARE(q.names(), (QStringList{u"b.mkv"_s, u"a.mkv"_s, u"c.mkv"_s}));
        for (qsizetype row = 0; row < 3; ++row) {
            QCOMPARE(q.job(row)->kind, kind);
            QCOMPARE(q.job(row)->jobSelection()->videoTrackFileURL(), files.at(row));
            QVERIFY(q.job(row)->guard().isInput(files.at(row)));
            QCOMPARE(q.job(row)->jobStatus(), u"Queued"_s);
        }
        QCOMPARE(selection->videoTrackFileURL(), QUrl::fromLocalFile(u"/v/film.mkv"_s));
        QCOMPARE(q.added.size(), 3);
    }

    void splitWithoutFilesAddsNothing()
    {
        Queue q;
        QCOMPARE(q.add(u"MKV Splitting"_s), 0);
        QVERIFY(q.queue.qJobList().isEmpty());
    }

    void unknownJobTypeLeavesTheQueueUnchanged_data()
    {
        QTest::addColumn<QString>("type");
        QTest::newRow("unknown") << u"Baking"_s;
        QTest::newRow("other capitals") << u"mkv conversion"_s;
        QTest::newRow("track removal") << u"MKV Track Removal"_s;
        QTest::newRow("absent") << QString();
    }

    void unknownJobTypeLeavesTheQueueUnchanged()
    {
        QFETCH(QString, type);
        Queue q;
        QCOMPARE(q.add(type), 0);
        QVERIFY(q.queue.qJobList().isEmpty());
        QVERIFY(q.added.isEmpty());
        QVERIFY(q.queue.timerIsRunning()); // it may start
    }

    void jobTypeWithoutAClassAddsNothing()
    {
        Queue q({jobs::JobKind::TrackExtraction});
        const auto selection = q.selection(u"MKV Remux"_s);
        selection->setEditFilesURLsList({QUrl::fromLocalFile(u"/v/b.mkv"_s)});
        QCOMPARE(q.queue.addToQueue(selection), 0);
        QCOMPARE(q.add(conversion), 0);
        QCOMPARE(q.add(u"MKV Joining"_s), 0);
        QCOMPARE(q.add(u"MKV Track Extraction"_s), 1);
        QCOMPARE(q.queue.qJobList().size(), 1);
    }

    void jobOwnsOneCopyOfEachTrackTheSameInEveryList()
    {
        Queue q;
        const auto selection = q.selection(u"MKV Track Extraction"_s);
        const auto shared = JobFixture::track(u"Audio"_s, u"/v/film.mkv"_s, u"aac"_s);
        const auto other = JobFixture::track(u"Video"_s, u"/v/film.mkv"_s, u"h264"_s);
        selection->setTrackList({other, shared, shared});
        selection->setKeepTracksList({shared});
        selection->setAddedAudioTrackList({shared});
        q.queue.addToQueue(selection);
        shared->setUserCodec(u"ac3"_s);
        const auto own = q.job(0)->jobSelection();
        QVERIFY(own != selection);
        QCOMPARE(own->trackList().size(), 3);
        const TrackPointer copy = own->trackList().at(1);
        QVERIFY(copy != shared && own->trackList().at(0) != other && own->trackList().at(0) != copy);
        QCOMPARE(copy->userCodec(), u"aac"_s);
        QCOMPARE(own->trackList().at(2), copy);
        QCOMPARE(own->keepTracksList().first(), copy);
        QCOMPARE(own->addedAudioTrackList().first(), copy);
        QCOMPARE(selection->trackList().at(1), shared); // the window keeps its own
    }

    void addedTracksBecomeOrdinaryOnesOfAConversion()
    {
        Queue q;
        const auto selection = q.selection(conversion);
        selection->setTrackList({JobFixture::track(u"Video"_s, u"/v/film.mkv"_s)});
        selection->setAddedAudioTrackList({JobFixture::track(u"Audio"_s, u"/v/added.ac3"_s)});
        q.queue.addToQueue(selection);
        const auto own = q.job(0)->jobSelection();
        QCOMPARE(own->trackList().size(), 2);
        QCOMPARE(own->trackList().at(1), own->addedAudioTrackList().first());
        QCOMPARE(own->trackList().at(1)->trackFileURL(), QUrl::fromLocalFile(u"/v/added.ac3"_s));
        QCOMPARE(selection->trackList().size(), 1);
        const auto extraction = q.selection(u"MKV Track Extraction"_s);
        extraction->setAddedAudioTrackList({JobFixture::track(u"Audio"_s, u"/v/added.ac3"_s)});
        q.queue.addToQueue(extraction);
        QVERIFY(q.job(1)->jobSelection()->trackList().isEmpty());
    }

    void rowsOfOneSelectionDoNotShareTracks()
    {
        Queue q;
        const auto selection = q.selection(u"MKV Splitting"_s);
        selection->setTrackList({JobFixture::track(u"Video"_s, u"/v/film.mkv"_s)});
        selection->setEditFilesURLsList(
            {QUrl::fromLocalFile(u"/v/a.mkv"_s), QUrl::fromLocalFile(u"/v/b.mkv"_s)});
        q.queue.addToQueue(selection);
        QVERIFY(q.job(0)->jobSelection()->trackList().first() !=
                q.job(1)->jobSelection()->trackList().first());
    }
};

TESSARAY_TEST(KXQueueControllerTest)
#include "KXQueueControllerTest.moc"

// What jobs of every kind write into the watched folder is never taken for a new film. Jobs, tools and the
// listing are real; only the polls come as fast as they can.
#include "engines/EngineJobs.h"
#include "prefs/KXWatchModeController.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/MkvRuns.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// An hour.
constexpr int polls = 3600 / (prefs::WatchIntervals().poll / 1000);

} // namespace

class WatchOutputsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_runs = std::make_unique<MkvRuns>();
        m_elsewhere = std::make_unique<Scratch>();
        engines::registerJobs(m_factory);
        JobFixture &fixture = m_runs->runs.base;
        m_watch = std::make_unique<KXWatchModeController>(&fixture.preferences);
        m_queue = std::make_unique<KXQueueController>(fixture.jobContext(), m_factory, m_watch.get());
        m_queue->initialize();
        m_taken.clear();
        connect(m_watch.get(), &KXWatchModeController::filesReady, this, [this](const QList<QUrl> &files) {
            for (const QUrl &file : files)
                m_taken.append(file.toLocalFile());
        });
        QVERIFY(QFile::link(m_runs->path(), m_elsewhere->path(u"link"_s)));
    }

    void cleanup()
    {
        m_queue.reset();
        m_watch.reset();
        m_runs.reset();
    }

    void noOutputIsTakenForANewFilm_data()
    {
        QTest::addColumn<QString>("watched");
        QTest::addColumn<QString>("sources");
        QTest::addColumn<QString>("saveFolder");
        QTest::addColumn<bool>("isQueuedBefore");
        // "R/" is the folder, "L/" the same through a link.
        QTest::newRow("outputs beside their sources") << u"R"_s << u"R/"_s << QString() << false;
        QTest::newRow("queued before watching began") << u"R"_s << u"R/"_s << QString() << true;
        QTest::newRow("a sub-folder to save in") << u"R"_s << u"R/"_s << u"R/out"_s << false;
        QTest::newRow("watched through a link") << u"L"_s << u"R/"_s << QString() << false;
        QTest::newRow("watched through a link and saved through it") << u"L"_s << u"R/"_s << u"L/"_s << true;
        QTest::newRow("sources through a link") << u"R/"_s << u"L/"_s << QString() << false;
        QTest::newRow("a trailing slash") << u"R/"_s << u"R/"_s << u"R/"_s << false;
    }

    void noOutputIsTakenForANewFilm()
    {
        QFETCH(QString, watched);
        QFETCH(QString, sources);
        QFETCH(QString, saveFolder);
        QFETCH(bool, isQueuedBefore);
        if (!saveFolder.isNull()) {
            QDir().mkpath(placed(saveFolder));
            m_runs->runs.base.setSaveFolder(placed(saveFolder));
        }
        const QStringList films = sourcesIn(placed(sources));
        m_runs->runs.base.preferences.setWatchFolderURL(QUrl::fromLocalFile(placed(watched)));
        if (!isQueuedBefore)
            QVERIFY(m_watch->startWatchMode());
        addJobs(films, qstrcmp(QTest::currentDataTag(), "outputs beside their sources") == 0 ? All : Some);
        if (isQueuedBefore) {
            m_queue->theQueueLoop(); // the first runs already
            QVERIFY(m_watch->startWatchMode());
        }
        QVERIFY(runWatched());
        checkOutputs();
        for (int i = 0; i < polls; ++i)
            m_watch->watchLoop();
        QVERIFY2(m_taken.isEmpty(), qPrintable(m_taken.join(u'\n')));
        m_runs->runs.film(textMp4(), u"new/arrived.mp4"_s); // but another film still is
        m_watch->watchLoop();
        m_watch->watchLoop();
        QCOMPARE(m_taken, QStringList{real(u"new/arrived.mp4"_s)});
    }

    void outputsThatChangeLaterStayOurs()
    {
        const QStringList films = sourcesIn(m_runs->path() + u'/');
        m_runs->runs.base.preferences.setWatchFolderURL(QUrl::fromLocalFile(m_runs->path()));
        addJobs(films, Some);
        QVERIFY(m_watch->startWatchMode());
        QVERIFY(runWatched());
        const QStringList outputs = movieOutputs();
        for (const QString &output : outputs) { // away, as by a move, and back
            QVERIFY(QFile::rename(output, output + u".away"_s));
        }
        m_watch->watchLoop();
        for (const QString &output : outputs)
            QVERIFY(QFile::rename(output + u".away"_s, output));
        for (int i = 0; i < polls; ++i)
            m_watch->watchLoop();
        QVERIFY2(m_taken.isEmpty(), qPrintable(m_taken.join(u'\n')));
    }

private:
    QString real(const QString &name) const
    {
        return QFileInfo(m_runs->path()).canonicalFilePath() + u'/' + name;
    }

    /// "R/x" and "L/x" as paths.
    QString placed(const QString &place) const
    {
        return (place.startsWith(u'L') ? m_elsewhere->path(u"link"_s) : m_runs->path()) + place.mid(1);
    }

    /// A film, one whose extracted video is a movie by its name, and a raw stream; made in the folder.
    QStringList sourcesIn(const QString &folder)
    {
        m_runs->runs.film(fullMkv(), u"a.mkv"_s);
        m_runs->runs.film(latin1Avi(), u"old.avi"_s);
        m_runs->runs.film(rawH264(), u"raw.h264"_s);
        m_runs->runs.film(fullMkv(), u"b.mkv"_s); // what a join appends
        return {folder + u"a.mkv"_s, folder + u"old.avi"_s, folder + u"raw.h264"_s};
    }

    void add(const SelectionPointer &selection, std::optional<jobs::JobKind> kind = {})
    {
        const int added = kind ? m_queue->add({*kind, selection}) : m_queue->addToQueue(selection);
        QCOMPARE(added, 1);
    }

    enum Jobs { Some, All };

    /// A job of each kind; some want a name that another has taken. Or some of them, drawn by the seed.
    void addJobs(const QStringList &films, Jobs jobs)
    {
        RealRuns &runs = m_runs->runs;
        const auto extraction = [&](const QString &film) {
            const SelectionPointer selection = runs.probed(film);
            selection->setJobType(u"MKV Track Extraction"_s);
            add(selection);
        };
        const auto file = [&](const QString &operation) {
            add(m_runs->selectionFor(operation, films.at(0)));
        };
        const auto edit = [&](const QString &operation) {
            add(m_runs->selectionFor(operation, films.at(0)), jobs::JobKind::MkvEditing);
        };
        const QList<std::function<void()>> all{
            [&] { add(runs.reencoded(films.at(0), u"General"_s, u"1"_s)); },
            [&] { add(runs.reencoded(films.at(0), u"General"_s, u"2"_s)); },
            [&] { add(runs.probed(films.at(0), u"MKV"_s)); },
            [&] { add(runs.probed(films.at(1), u"AVI"_s)); },
            [&] { extraction(films.at(0)); },
            [&] { extraction(films.at(1)); },
            [&] { file(mkv::join); },
            [&] { file(mkv::split); },
            [&] { file(mkv::split); },
            [&] { file(mkv::remux); },
            [&] { edit(mkv::remove); },
            [&] { edit(mkv::editSplit); },
            [&] { edit(mkv::editRemux); },
            [&] { edit(mkv::editJoin); },
            [&] { add(m_runs->selectionFor(mkv::mux, films.at(2))); }};
        for (const auto &one : jobs == All ? all : drawn(all, 4))
            one();
        QVERIFY(m_queue->qJobList().size() == all.size() || jobs == Some);
    }

    /// Lets all jobs run, with a poll every moment.
    bool runWatched()
    {
        return waitFor(
            [this] {
                m_queue->theQueueLoop();
                m_watch->watchLoop();
                const auto &jobs = m_queue->qJobList();
                return std::all_of(jobs.begin(), jobs.end(),
                                   [](const JobPointer &job) { return job->jobStatus() == u"Completed"_s; });
            },
            240000);
    }

    QStringList movieOutputs() const
    {
        const QStringList extensions = m_watch->movieExtensionsList();
        QStringList outputs;
        for (const JobPointer &job : m_queue->qJobList()) {
            for (const QUrl &output : job->outputs()) {
                if (extensions.contains(QFileInfo(output.toLocalFile()).suffix().toLower()))
                    outputs.append(output.toLocalFile());
            }
        }
        return outputs;
    }

    /// Without outputs that could be taken nothing would be shown.
    void checkOutputs() const
    {
        for (const JobPointer &job : m_queue->qJobList()) {
            QVERIFY2(job->outcome().verdict != steps::Verdict::Failed,
                     qPrintable(job->jobType() + u": "_s + job->outcome().sentence));
            QVERIFY2(!job->outputs().isEmpty(), qPrintable(job->jobType()));
        }
        const QStringList listed = prefs::WatchListing().movies(real({}), m_watch->movieExtensionsList());
        const QStringList outputs = movieOutputs();
        QVERIFY2(!outputs.isEmpty() && listed.size() >= outputs.size(), qPrintable(outputs.join(u'\n')));
        if (m_queue->qJobList().size() < 15)
            return;
        QVERIFY2(outputs.size() >= 15, qPrintable(outputs.join(u'\n')));
        QVERIFY(!listed.filter(u"old.avi.stream0.avi"_s).isEmpty());
        QVERIFY(!listed.filter(u"a.mkv.split-003.mkv"_s).isEmpty());
    }

    jobs::JobFactory m_factory;
    std::unique_ptr<MkvRuns> m_runs;
    std::unique_ptr<Scratch> m_elsewhere;
    std::unique_ptr<KXWatchModeController> m_watch;
    std::unique_ptr<KXQueueController> m_queue;
    QStringList m_taken;
};

TESSARAY_TEST(WatchOutputsTest)
#include "WatchOutputsTest.moc"

// Quitting, stopping and opening files while a folder is watched, in every phase of a film: what is asked,
// and that nothing is lost or converted twice.
#include "app/WatchSession.h"

#include "support/Clips.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/app/AppFixture.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using app::WatchLog;
using support::AppFixture;
using support::waitFor;

namespace {

constexpr int okButton = platform::firstButtonReturn;
constexpr int cancelButton = platform::secondButtonReturn;

} // namespace

class WatchPhasesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>(prefs::WatchIntervals{1 << 30, 20, 200});
        QVERIFY(QDir().mkpath(m_fixture->path(u"w"_s)));
        const QVariant preset = support::settingsPreset(u"Set"_s, u"General"_s).toVariantMap();
        QVERIFY(m_fixture->presets().addUserPresets({}, {preset}).isNull());
        prepare();
    }
    void cleanup()
    {
        m_fixture.reset();
        m_log.clear();
        m_hasAsked = false;
    }

    /// Each phase of a film, with what quitting asks then.
    void quittingLosesNothing_data()
    {
        QTest::addColumn<QString>("phase");
        QTest::addColumn<bool>("asks");
        QTest::newRow("it has just been seen") << u"seen"_s << false;
        QTest::newRow("it is being opened") << u"opening"_s << true;
        QTest::newRow("it is about to be started") << u"opened"_s << true;
        QTest::newRow("its job waits behind another") << u"queued"_s << true;
        QTest::newRow("its job runs") << u"running"_s << true;
        QTest::newRow("its job has ended") << u"done"_s << false;
    }

    void quittingLosesNothing()
    {
        QFETCH(QString, phase);
        QFETCH(bool, asks);
        QVERIFY(m_fixture->delegate().restoreQueue().isNull());
        QVERIFY(session().start());
        QVERIFY(reach(phase));
        QCOMPARE(quit(), asks);
        if (asks)
            QCOMPARE(m_fixture->alerts().shown().constFirst()->message,
                     u"Videos are still being processed.  Quit anyways?"_s);
        m_fixture->delegate().applicationWillTerminate();
        m_fixture->restart();
        prepare();
        QVERIFY(m_fixture->delegate().restoreQueue().isNull());
        QVERIFY(session().start());
        m_fixture->queue().pauseQueueButton(u"Resume"_s); // what is held
        QVERIFY2(convertsAll(), qPrintable(outputs().join(u'\n') + told()));
        m_fixture->queue().removeAllJobs();
        session().end();
        QVERIFY(session().start()); // and nothing of it waits any more
        QVERIFY(polls(4));
        QCOMPARE(outputs(), expectedOutputs());
    }

    void cancelLosesNothing_data()
    {
        QTest::addColumn<QString>("phase");
        QTest::newRow("it is being opened") << u"opening"_s;
        QTest::newRow("it is about to be started") << u"opened"_s;
        QTest::newRow("its job runs") << u"running"_s;
    }

    void cancelLosesNothing()
    {
        QFETCH(QString, phase);
        QVERIFY(session().start());
        QVERIFY(reach(phase));
        QVERIFY(m_hasAsked || !m_fixture->delegate().applicationShouldTerminate());
        QVERIFY(m_fixture->alerts().answer(cancelButton));
        m_fixture->queue().pauseQueueButton(u"Resume"_s);
        QVERIFY2(convertsAll(), qPrintable(outputs().join(u'\n') + told()));
    }

    void aJobThatAPersonRemovesDoesNotWait()
    {
        QVERIFY(session().start());
        QVERIFY(reach(u"queued"_s));
        m_fixture->alerts().willAnswer({okButton});
        while (!m_fixture->jobs().isEmpty()) // the one that waits, and the one that runs, with its question
            m_fixture->queue().deleteJobRow(0, static_cast<int>(m_fixture->jobs().size()) - 1);
        QCOMPARE(m_log.filter(u"its job was removed, so it is not converted."_s).size(), 2);
        letGo();
        session().end();
        QVERIFY(session().start());
        QVERIFY(polls(4));
        QVERIFY2(outputs().isEmpty() && m_fixture->jobs().isEmpty(), qPrintable(told()));
    }

    void filesThatAreOpenedMeanwhileAreTakenOrToldOf()
    {
        const QString known = m_fixture->film(support::textMp4(), u"w/known.mp4"_s);
        const QString other = m_fixture->film(support::textMp4(), u"other.mp4"_s);
        const QString subtitle = m_fixture->film(support::srtFile(), u"other.srt"_s);
        QVERIFY(session().start());
        QVERIFY(polls(3));
        QVERIFY(outputs().isEmpty());
        m_fixture->delegate().filesRequested({known, other, subtitle});
        QVERIFY(polls(3));
        QVERIFY(waitFor([this] { return outputs() == QStringList{u"known.m4v"_s}; }));
        QCOMPARE(m_log.filter(u"other.mp4: it is not opened while a folder is watched."_s).size(), 1);
        QCOMPARE(m_log.filter(u"other.srt: it is not opened"_s).size(), 1);
        QVERIFY(polls(4));
        QCOMPARE(m_log.filter(u"started "_s).size(), 1);
        QVERIFY(m_fixture->alerts().shown().isEmpty());
        QVERIFY(!QFile::exists(m_fixture->path(u"other.m4v"_s)));
    }

    void aSubtitleBesideItsFilmGoesAlong()
    {
        m_fixture->presets().setSelectionMethodIndex(2); // "All Tracks": the film has a subtitle of its own
        QVERIFY(session().start());
        m_fixture->text(u"w/film.de.ass"_s); // none at all
        m_fixture->film(support::srtFile(), u"w/film.en.srt"_s);
        m_fixture->film(support::srtFile(), u"w/other.srt"_s);
        m_fixture->film(support::rawH264(), u"w/none.txt"_s);
        m_fixture->film(support::fullMkv(), u"w/film.mkv"_s);
        QVERIFY(polls(2));
        QVERIFY(waitFor([this] { return !m_fixture->jobs().isEmpty(); }));
        QStringList added;
        for (const TrackPointer &track :
             m_fixture->queue().qJobList().constFirst()->jobSelection()->trackList()) {
            if (track->externalTrackFlag())
                added.append(track->trackFileURL().fileName());
        }
        QCOMPARE(added, QStringList{u"film.en.srt"_s});
        QCOMPARE(m_log.filter(u"film.de.ass can't be added to the film beside it"_s).size(), 1);
    }

private:
    app::WatchSession &session() { return m_fixture->delegate().watchSession(); }
    KXWatchModeController &watch() { return m_fixture->program().watchMode(); }

    void prepare()
    {
        m_fixture->program().preferences().setWatchFolderURL(m_fixture->scratch().url(u"w"_s));
        m_fixture->presets().setSelectionMethodIndex(1); // "First Track"
        m_fixture->presets().setSettingMethodIndex(2);
        connect(&session().log(), &WatchLog::added, this, [this](const WatchLog::Line &line) {
            m_log.append(WatchLog::wordOf(line.kind) + u' ' + line.text);
        });
    }

    QString told() const { return u'\n' + m_log.join(u'\n'); }

    /// Brings films as far as the phase.
    bool reach(const QString &phase)
    {
        if (phase == u"queued"_s || phase == u"running"_s)
            m_fixture->prepend(u"ffmpeg/ffmpeg"_s, waiting());
        m_films = {u"a"_s};
        m_fixture->film(support::textMp4(), u"w/a.mp4"_s);
        if (phase == u"queued"_s) {
            m_films.append(u"b"_s);
            m_fixture->film(support::textMp4(), u"w/b.mp4"_s);
        }
        watch().watchLoop();
        if (phase == u"seen"_s)
            return true;
        if (phase == u"opening"_s)
            return askWhileOpening();
        watch().watchLoop();
        if (phase == u"opened"_s)
            return session().isAtWork() && m_fixture->jobs().isEmpty();
        if (phase == u"done"_s)
            return waitFor([this] {
                return outputs() == expectedOutputs() && !session().isAtWork() &&
                       !m_fixture->queue().qJobIsRunning();
            });
        const qsizetype jobs = m_films.size();
        return waitFor([this, jobs] {
            return m_fixture->jobs().size() == jobs && m_fixture->queue().qJobIsRunning() &&
                   !session().isAtWork();
        });
    }

    /// The look comes back once the probe was stopped.
    bool askWhileOpening()
    {
        m_fixture->prepend(u"ffmpeg/ffprobe"_s, waiting());
        QTimer::singleShot(300, this, [this] {
            m_hasAsked = m_fixture->intake().isBusy() && !m_fixture->delegate().applicationShouldTerminate();
        });
        watch().watchLoop();
        return m_hasAsked;
    }

    QString waiting() const
    {
        return u"while [ ! -e \"%1\" ]; do sleep 0.1; done"_s.arg(m_fixture->path(u"go"_s));
    }
    void letGo() { m_fixture->scratch().write(u"go"_s, {}); }

    /// Whether it asked; then it was allowed.
    bool quit()
    {
        QSignalSpy allowed(&m_fixture->delegate(), &KXAppDelegate::terminationAllowed);
        if (!m_hasAsked && m_fixture->delegate().applicationShouldTerminate())
            return false;
        return m_fixture->alerts().answer(okButton) && allowed.size() == 1;
    }

    bool polls(int count)
    {
        for (int i = 0; i < count; ++i) {
            watch().watchLoop();
            if (!waitFor([this] { return !session().isAtWork(); }))
                return false;
        }
        return true;
    }

    bool convertsAll()
    {
        letGo();
        return waitFor([this] {
            watch().watchLoop();
            return outputs() == expectedOutputs() && !m_fixture->queue().qJobIsRunning();
        });
    }

    QStringList expectedOutputs() const
    {
        QStringList names;
        for (const QString &film : m_films)
            names.append(film + u".m4v"_s);
        return names;
    }
    QStringList outputs() const
    {
        return QDir(m_fixture->path(u"w"_s)).entryList({u"*.m4v"_s}, QDir::Files, QDir::Name);
    }

    std::unique_ptr<AppFixture> m_fixture;
    QStringList m_films;
    bool m_hasAsked = false;
    QStringList m_log;
};

TESSARAY_TEST(WatchPhasesTest)
#include "WatchPhasesTest.moc"

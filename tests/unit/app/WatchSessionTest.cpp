// Watch mode at work: what arrives is opened, started by the presets and told in the log. Probes and
// conversions are real; that a film has stopped growing is mostly said by the test.
#include "app/WatchSession.h"

#include "support/Clips.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/app/AppFixture.h"

#include <QDir>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using app::WatchLog;
using support::AppFixture;
using support::urlsOf;
using support::waitFor;

namespace {

constexpr int patienceMs = 60000;

} // namespace

class WatchSessionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>();
        QDir().mkpath(m_fixture->path(u"w"_s));
        m_fixture->program().preferences().setWatchFolderURL(m_fixture->scratch().url(u"w"_s));
        for (const QString &name : {u"One"_s, u"Other"_s}) {
            const QVariant preset = support::settingsPreset(name, u"General"_s).toVariantMap();
            QVERIFY(m_fixture->presets().addUserPresets({}, {preset}).isNull());
        }
        choosePresets(1, 2); // "First Track" and "One"
    }
    void cleanup() { m_fixture.reset(); }

    void startingNeedsBothPresetsAndAFolder_data()
    {
        QTest::addColumn<int>("tracks");
        QTest::addColumn<int>("settings");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("problem");
        QTest::addColumn<QString>("told");
        const QString noTracks = u"Choose a track preset: with \"Manual\" nothing can be watched."_s;
        const QString noSettings = u"Choose a settings preset: with \"Manual\" nothing can be watched."_s;
        QTest::newRow("tracks by hand") << 0 << 2 << u"w"_s << noTracks << noTracks;
        QTest::newRow("settings by hand") << 1 << 0 << u"w"_s << noSettings << noSettings;
        QTest::newRow("both by hand") << 0 << 0 << u"w"_s << noTracks << noTracks;
        QTest::newRow("no folder") << 1 << 2 << u"gone"_s << QString()
                                   << u"must select a valid directory to start watch mode"_s;
    }

    void startingNeedsBothPresetsAndAFolder()
    {
        QFETCH(int, tracks);
        QFETCH(int, settings);
        QFETCH(QString, folder);
        QFETCH(QString, told);
        choosePresets(tracks, settings);
        m_fixture->program().preferences().setWatchFolderURL(m_fixture->scratch().url(folder));
        QTEST(session().startRefusal(), "problem");
        QVERIFY(!session().start());
        QVERIFY(!watch().appIsInWatchMode());
        QCOMPARE(log(), QStringList{u"failed "_s + told});
    }

    void startingGoesToTheTabWhereFilmsAreConvertedAndKeepsThePresets()
    {
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
        choosePresets(2, 3);
        QVERIFY(session().start());
        QCOMPARE(m_fixture->controller().currentTab(), u"MKV"_s);
        QCOMPARE(m_fixture->presets().selectionMethodIndex(), 2);
        QCOMPARE(m_fixture->presets().settingMethodIndex(), 3);
        QVERIFY(watch().appIsInWatchMode());
        QCOMPARE(log(), QStringList{u"note Watching %1."_s.arg(m_fixture->path(u"w"_s))});
    }

    void filesAlreadyThereAreListedAsNotProcessed()
    {
        m_fixture->scratch().write(u"w/a.mkv"_s, "x");
        QVERIFY(session().start());
        QCOMPARE(log().constLast(),
                 u"note %1 is already there and is not processed."_s.arg(m_fixture->path(u"w/a.mkv"_s)));
    }

    void ofVeryManyFilesOnlyTheFirstAreNamed()
    {
        for (int i = 0; i < 103; ++i)
            m_fixture->scratch().write(u"w/%1.mkv"_s.arg(i), "x");
        QVERIFY(session().start());
        QCOMPARE(log().size(), 1 + 100 + 1);
        QCOMPARE(log().constLast(), u"note 3 more are already there."_s);
    }

    void whatADeadRunHadStartedIsNamed()
    {
        QProcess dead;
        dead.start(u"/bin/true"_s);
        dead.waitForStarted();
        const QString journal = u"settings/started-%1.journal"_s.arg(dead.processId());
        dead.waitForFinished();
        m_fixture->scratch().write(journal, QByteArray("/w/half.m4v\0", 12));
        QVERIFY(session().start());
        QCOMPARE(log().at(1), u"failed /w/half.m4v was not finished when the program ended the last time."_s);
        QVERIFY(!QFile::exists(m_fixture->path(journal)));
    }

    void aFilmIsToldFromItsArrivalToItsEnd()
    {
        QVERIFY(session().start());
        const QString film = m_fixture->film(support::textMp4(), u"w/a.mp4"_s);
        watch().watchLoop();
        QCOMPARE(log().constLast(), u"waiting %1: until it has stopped growing."_s.arg(film));
        watch().watchLoop();
        QVERIFY(tells(u"started a.mp4: MKV Conversion"_s));
        QVERIFY(waitFor([this] { return !journals().isEmpty(); }, patienceMs));
        QVERIFY(tells(u"done a.mp4: "_s + m_fixture->path(u"w/a."_s)));
        QVERIFY(journals().isEmpty());
        session().end();
        QCOMPARE(log().constLast(), u"note Watching has ended."_s);
        QCOMPARE(log().filter(u"a.mp4"_s).size(), 3);
    }

    void aFilmThatTheDesktopOpensBeforeTheStartDoesNotTakeTheWatchedOnesPlace()
    {
        QVERIFY(session().start());
        const QString watched = m_fixture->film(support::textMp4(), u"watched.mp4"_s);
        const QString other = m_fixture->film(support::textMp4(), u"other.mp4"_s);
        app::FileIntake &intake = m_fixture->delegate().intake();
        connect(
            &intake, &app::FileIntake::watchedFilesOpened, &intake,
            [&] {
                intake.setOpeningFileMode(u"open"_s);
                intake.openedFileHubForFiles({QUrl::fromLocalFile(other)});
            },
            Qt::QueuedConnection);
        arrive({watched});
        QVERIFY(tells(u"done watched.mp4: "_s));
        QVERIFY(log().filter(u"other.mp4"_s).isEmpty());
        QVERIFY(waitFor(
            [&] { return m_fixture->program().currentFile().file()->theFileName() == u"other.mp4"_s; },
            patienceMs));
    }

    void aJobThatFailsIsToldAndTheNextOneRuns()
    {
        QVERIFY(session().start());
        const QString bad = m_fixture->film(support::textMp4(), u"bad.mp4"_s);
        const QString good = m_fixture->film(support::textMp4(), u"good.mp4"_s);
        m_fixture->prepend(u"ffmpeg/ffmpeg"_s, u"case \"$*\" in *bad.mp4*) echo broken >&2; exit 1;; esac"_s);
        arrive({bad});
        arrive({good});
        QVERIFY2(tells(u"done good.mp4: "_s), qPrintable(log().join(u'\n')));
        QCOMPARE(log().filter(u"failed bad.mp4: "_s).size(), 1);
        QCOMPARE(log().filter(u"started bad.mp4"_s).size(), 1);
    }

    void aDeletedFilmIsTold()
    {
        QVERIFY(session().start());
        const QString film = m_fixture->scratch().write(u"w/a.mkv"_s, "x");
        watch().watchLoop();
        QFile::remove(film);
        watch().watchLoop();
        QCOMPARE(log().constLast(), u"note %1 is gone."_s.arg(film));
    }

    void aMissingFolderIsToldOnce()
    {
        m_fixture->scratch().write(u"w/a.mkv"_s, "x");
        QVERIFY(session().start());
        const QString moved = m_fixture->path(u"moved"_s);
        QVERIFY(QDir().rename(m_fixture->path(u"w"_s), moved));
        watch().watchLoop();
        watch().watchLoop();
        const QString missing = u"failed The folder is not there. Waiting until it is back."_s;
        QCOMPARE(log().filter(missing).size(), 1);
        QVERIFY(QDir().rename(moved, m_fixture->path(u"w"_s)));
        watch().watchLoop();
        QCOMPARE(log().constLast(), missing); // and the film is no new one
    }

    void aRefusedFilmIsToldTriedAgainAndGivenUp()
    {
        QVERIFY(session().start());
        const QString film = m_fixture->path(u"w/bad.mkv"_s);
        for (int change = 1; change <= 7; ++change) {
            m_fixture->scratch().write(u"w/bad.mkv"_s, QByteArray(change, 'x'));
            watch().watchLoop();
            watch().watchLoop();
            QTest::qWait(20);
        }
        QCOMPARE(
            log().filter(u"failed %1 can't be opened; it is tried again when it changes."_s.arg(film)).size(),
            5);
        QCOMPARE(log().filter(u"failed %1 could not be opened, and is not tried again."_s.arg(film)).size(),
                 1);
        QVERIFY(m_fixture->jobs().isEmpty());
        QVERIFY(m_fixture->alerts().shown().isEmpty());
    }

    // Batch after batch.

    void batchesThatComeWhileAnotherIsBeingStartedAreNotLost()
    {
        haltFfmpeg();
        QVERIFY(session().start());
        QStringList expected;
        for (const QString &batch : {u"a"_s, u"bc"_s, u"d"_s, u"efg"_s, u"h"_s}) {
            QStringList films;
            for (const QChar name : batch) {
                films.append(m_fixture->film(support::textMp4(), QString(name) + u".mp4"_s));
                expected.append(u"MKV Conversion %1.mp4"_s.arg(name));
            }
            arrive(films); // none waits for the one before
        }
        QVERIFY2(waitFor([&] { return m_fixture->jobs().size() >= expected.size(); }, patienceMs),
                 qPrintable(log().join(u'\n')));
        QTest::qWait(1500);
        QCOMPARE(sorted(m_fixture->jobs()), expected);
    }

    void aRefusedFilmDoesNotStartTheOneBeforeAgain_data()
    {
        QTest::addColumn<QString>("second");
        QTest::newRow("no film at all") << u"no film"_s;
        QTest::newRow("gone in the meantime") << u"gone"_s;
        QTest::newRow("sound alone") << u"sound"_s;
        QTest::newRow("a track, not a film") << u"track"_s;
    }

    void aRefusedFilmDoesNotStartTheOneBeforeAgain()
    {
        QFETCH(QString, second);
        haltFfmpeg();
        QVERIFY(session().start());
        arrive({m_fixture->film(support::textMp4(), u"a.mp4"_s)});
        QVERIFY(jobsBecome({u"MKV Conversion a.mp4"_s}));
        arrive({madeFor(second)});
        QTRY_COMPARE(log().filter(QRegularExpression(u"^failed "_s)).size(), 1);
        QTest::qWait(600); // longer than a start takes
        QCOMPARE(m_fixture->jobs(), QStringList{u"MKV Conversion a.mp4"_s});
        QCOMPARE(log().filter(QRegularExpression(u"^failed "_s)).size(), 1);
        arrive({m_fixture->film(support::textMp4(), u"c.mp4"_s)});
        QVERIFY(jobsBecome({u"MKV Conversion a.mp4"_s, u"MKV Conversion c.mp4"_s}));
        QVERIFY(m_fixture->alerts().shown().isEmpty());
    }

    void refusedFilmsAreLeftOutOfTheirBatch()
    {
        haltFfmpeg();
        QVERIFY(session().start());
        arrive({m_fixture->text(u"1.mkv"_s), m_fixture->film(support::textMp4(), u"2.mp4"_s),
                m_fixture->text(u"3.mkv"_s), m_fixture->film(support::textMp4(), u"4.mp4"_s)});
        QVERIFY(jobsBecome({u"MKV Conversion 2.mp4"_s, u"MKV Conversion 4.mp4"_s}));
        QTest::qWait(1000);
        QCOMPARE(m_fixture->jobs().size(), 2);
        QCOMPARE(log().filter(u"can't be opened"_s).size(), 2);
    }

    void aMissingSaveFolderIsToldAndDoesNotHoldUpTheNext()
    {
        haltFfmpeg();
        QVERIFY(session().start());
        m_fixture->program().preferences().setSaveDirectoryURL(m_fixture->scratch().url(u"gone"_s));
        const QString film = m_fixture->film(support::textMp4(), u"a.mp4"_s);
        arrive({film});
        QVERIFY(tells(u"failed "_s + film +
                      u": The application does not have permision to write to the save folder"_s));
        m_fixture->program().preferences().setSaveDirectoryURL({});
        arrive({m_fixture->film(support::textMp4(), u"b.mp4"_s)});
        QVERIFY(jobsBecome({u"MKV Conversion b.mp4"_s}));
    }

    void aBatchThatComesWhileOthersAreProbedWaitsForThem_data()
    {
        QTest::addColumn<bool>("isGood");
        QTest::newRow("a good film") << true;
        QTest::newRow("a film that is refused") << false;
    }

    void aBatchThatComesWhileOthersAreProbedWaitsForThem()
    {
        QFETCH(bool, isGood);
        haltFfmpeg();
        const QString first =
            isGood ? m_fixture->film(support::textMp4(), u"a.mp4"_s) : m_fixture->text(u"a.mp4"_s);
        const QString by = m_fixture->film(support::textMp4(), u"by-hand.mp4"_s);
        const QString last = m_fixture->film(support::textMp4(), u"z.mp4"_s);
        QVERIFY(session().start());
        QTimer::singleShot(0, this, [this, &first] {
            QVERIFY(m_fixture->intake().isBusy());
            arrive({first});
        });
        m_fixture->drop({by});
        QTest::qWait(2000);
        arrive({last});
        QStringList expected{u"MKV Conversion z.mp4"_s};
        if (isGood)
            expected.prepend(u"MKV Conversion a.mp4"_s);
        QVERIFY2(jobsBecome(expected), qPrintable(m_fixture->jobs().join(u'\n') + log().join(u'\n')));
    }

    void endingLeavesTheQueueRunningAndStartsNoMore()
    {
        haltFfmpeg();
        QVERIFY(session().start());
        arrive({m_fixture->film(support::textMp4(), u"a.mp4"_s)});
        QVERIFY(waitFor([this] { return m_fixture->queue().qJobIsRunning(); }, patienceMs));
        session().end();
        QVERIFY(waitFor([this] { return !watch().appIsInWatchMode(); }));
        QVERIFY(m_fixture->queue().qJobIsRunning());
        const qsizetype lines = log().size();
        m_fixture->queue().removeAllJobs();
        QCOMPARE(log().size(), lines); // nothing is told any more
    }

    void outsideWatchModeNothingIsTold()
    {
        haltFfmpeg();
        m_fixture->drop({m_fixture->film(support::textMp4(), u"a.mp4"_s)});
        m_fixture->starter().startProcess(u"Convert"_s);
        QVERIFY(jobsBecome({u"MKV Conversion a.mp4"_s}));
        QVERIFY(waitFor([this] { return m_fixture->queue().qJobIsRunning(); }, patienceMs));
        QVERIFY(log().isEmpty());
        QVERIFY(journals().isEmpty());
    }

private:
    app::WatchSession &session() { return m_fixture->delegate().watchSession(); }
    KXWatchModeController &watch() { return m_fixture->program().watchMode(); }

    void choosePresets(int tracks, int settings)
    {
        m_fixture->presets().setSelectionMethodIndex(tracks);
        m_fixture->presets().setSettingMethodIndex(settings);
    }

    /// Jobs begin, and then stay as they are.
    void haltFfmpeg() { m_fixture->prepend(u"ffmpeg/ffmpeg"_s, u"exec sleep 300"_s); }

    void arrive(const QStringList &films) { Q_EMIT watch().filesReady(urlsOf(films)); }

    QString madeFor(const QString &kind)
    {
        if (kind == u"no film"_s)
            return m_fixture->text(u"b.mkv"_s);
        if (kind == u"sound"_s)
            return m_fixture->film(support::audioOnly(), u"b.mp4"_s);
        return kind == u"track"_s ? m_fixture->film(support::srtFile(), u"b.srt"_s)
                                  : m_fixture->path(u"b.mkv"_s);
    }

    QStringList log()
    {
        QStringList lines;
        for (const WatchLog::Line &line : session().log().lines())
            lines.append(WatchLog::wordOf(line.kind) + u' ' + line.text);
        return lines;
    }

    bool tells(const QString &begin)
    {
        return waitFor(
            [&] {
                return !log().filter(QRegularExpression(u'^' + QRegularExpression::escape(begin))).isEmpty();
            },
            patienceMs);
    }

    bool jobsBecome(const QStringList &jobs)
    {
        return waitFor([&] { return sorted(m_fixture->jobs()) == jobs; }, patienceMs);
    }

    static QStringList sorted(QStringList list)
    {
        list.sort();
        return list;
    }

    QStringList journals() const { return QDir(m_fixture->path(u"settings"_s)).entryList({u"*.journal"_s}); }

    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(WatchSessionTest)
#include "WatchSessionTest.moc"

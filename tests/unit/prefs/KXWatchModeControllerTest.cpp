// Which files of a watched folder are ready, poll after poll. Folder and clock are the test's.
#include "prefs/KXWatchModeController.h"

#include "platform/Chooser.h"
#include "prefs/KXPreferences.h"
#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using State = prefs::WatchListing::State;

namespace {

const QString folder = u"/w"_s;

/// A folder "/w" that holds what a test says.
struct Shelf
{
    bool isThere = true;
    QStringList order;
    QHash<QString, State> states;
    QStringList halfOnes; ///< shorter than they say themselves
    bool vanishesWhenListed = false;
    int listed = 0;

    void put(const QString &path, qint64 size, qint64 changed = 0, quint64 inode = 0)
    {
        if (!order.contains(path))
            order.append(path);
        states[path] = {size, changed, inode};
    }
    void take(const QString &path)
    {
        order.removeAll(path);
        states.remove(path);
    }
};

class ShelfListing final : public prefs::WatchListing
{
public:
    explicit ShelfListing(Shelf &shelf)
        : m_shelf(shelf)
    {
    }
    QString canonicalFolder(const QString &path) const override
    {
        return m_shelf.isThere && path == folder ? folder : QString();
    }
    QList<Entry> entries(const QString &path, const QStringList & /*extensions*/) const override
    {
        ++m_shelf.listed;
        if (m_shelf.vanishesWhenListed)
            m_shelf.isThere = false;
        QList<Entry> entries;
        for (const QString &film : path == folder ? m_shelf.order : QStringList())
            entries.append({film, m_shelf.states.value(film).inode});
        return entries;
    }
    State stateOf(const QString &path) const override { return m_shelf.states.value(path); }
    Wholeness wholenessOf(const QString &path) const override
    {
        return m_shelf.halfOnes.contains(path) ? Wholeness::IsShorterThanItSays : Wholeness::Whole;
    }

private:
    Shelf &m_shelf;
};

/// Keeps what was asked last; the test answers.
class OpenPanel final : public platform::Chooser
{
public:
    void choose(const platform::ChooserRequest &request, Chosen chosen) override
    {
        asked = request;
        answer = std::move(chosen);
    }
    platform::ChooserRequest asked;
    Chosen answer;
};

QUrl url(const QString &path)
{
    return QUrl::fromLocalFile(path);
}

} // namespace

class KXWatchModeControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_shelf = std::make_unique<Shelf>();
        m_fixture = std::make_unique<support::JobFixture>();
        m_fixture->preferences.setWatchFolderURL(url(folder));
        m_watch = std::make_unique<KXWatchModeController>(&m_fixture->preferences);
        m_watch->setListing(std::make_unique<ShelfListing>(*m_shelf));
        m_ready.clear();
        connect(m_watch.get(), &KXWatchModeController::filesReady, this, [this](const QList<QUrl> &files) {
            for (const QUrl &file : files)
                m_ready.append(file.toLocalFile());
            ++m_handOvers;
        });
        m_handOvers = 0;
    }

    void cleanup()
    {
        m_watch.reset();
        m_fixture.reset();
    }

    void knowsMoviesByTheirExtensionsAndStartsOff()
    {
        const KXWatchModeController controller;
        QVERIFY(!controller.appIsInWatchMode());
        QVERIFY(controller.baseWatchFolderMovieList().isEmpty());
        QCOMPARE(controller.movieExtensionsList(),
                 QStringList({u"mkv"_s, u"ogg"_s, u"mts"_s, u"ts"_s, u"flv"_s, u"wmv"_s, u"mov"_s, u"mp4"_s,
                              u"m4v"_s, u"avi"_s}));
    }

    void isReadAndWrittenByName()
    {
        KXWatchModeController controller;
        const QList<QUrl> known{url(u"/w/a.mkv"_s)};
        QVERIFY(controller.setProperty("appIsInWatchMode", true));
        QVERIFY(controller.setProperty("baseWatchFolderMovieList", QVariant::fromValue(known)));
        QVERIFY(controller.appIsInWatchMode());
        QCOMPARE(controller.baseWatchFolderMovieList(), known);
    }

    void theFadeIsFixed() { QCOMPARE(KXWatchModeController::fadeMilliseconds, 100); }

    // Beginning and ending.

    void startingTakesWhatIsThereAsKnownAndSwapsTheWindowsAMomentLater()
    {
        m_shelf->put(u"/w/old.mkv"_s, 5);
        QSignalSpy swapped(m_watch.get(), &KXWatchModeController::windowsSwapped);
        QSignalSpy drawer(m_watch.get(), &KXWatchModeController::drawerWanted);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(m_watch->startWatchMode());
        QVERIFY(m_watch->appIsInWatchMode());
        QCOMPARE(m_watch->watchFolderPath(), folder);
        QCOMPARE(m_watch->watchFolderURL(), url(folder));
        QCOMPARE(m_watch->baseWatchFolderMovieList(), QList<QUrl>{url(u"/w/old.mkv"_s)});
        QCOMPARE(drawer.size(), 1);
        QVERIFY(!drawer.constFirst().constFirst().toBool());
        QVERIFY(swapped.isEmpty());
        QTRY_COMPARE(swapped.size(), 1);
        QVERIFY2(clock.elapsed() >= 380, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(swapped.constFirst().constFirst().toBool());
    }

    void startingWithNoValidFolderShowsTheMessageAndKeepsTheMainWindow_data()
    {
        QTest::addColumn<QUrl>("chosen");
        QTest::newRow("none chosen") << QUrl();
        QTest::newRow("not there") << url(u"/elsewhere"_s);
    }

    void startingWithNoValidFolderShowsTheMessageAndKeepsTheMainWindow()
    {
        QFETCH(QUrl, chosen);
        m_fixture->preferences.setWatchFolderURL(chosen);
        QSignalSpy swapped(m_watch.get(), &KXWatchModeController::windowsSwapped);
        QSignalSpy drawer(m_watch.get(), &KXWatchModeController::drawerWanted);
        QSignalSpy changed(m_watch.get(), &KXWatchModeController::folderChanged);
        QVERIFY(!m_watch->startWatchMode());
        QCOMPARE(m_watch->watchFolderPath(), u"must select a valid directory to start watch mode"_s);
        QVERIFY(!m_watch->appIsInWatchMode());
        QVERIFY(!changed.isEmpty());
        QTest::qWait(600);
        QVERIFY(swapped.isEmpty());
        QVERIFY(drawer.isEmpty());
        QCOMPARE(m_shelf->listed, 0);
    }

    void withoutPreferencesNothingIsWatched()
    {
        KXWatchModeController controller;
        QVERIFY(!controller.startWatchMode());
        QVERIFY(!controller.appIsInWatchMode());
    }

    void theTimerLooksEveryFiveSeconds()
    {
        m_shelf->put(u"/w/old.mkv"_s, 5);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(m_watch->startWatchMode());
        QCOMPARE(m_shelf->listed, 1);
        QTRY_COMPARE(m_shelf->listed, 2);
        QVERIFY2(clock.elapsed() >= 4500, qPrintable(QString::number(clock.elapsed())));
        m_watch->endWatchMode();
        QVERIFY(!QTest::qWaitFor([this] { return m_shelf->listed > 2; }, 5500));
    }

    void endingSwapsBackAtOnceAndIsOverAMomentLater()
    {
        QVERIFY(m_watch->startWatchMode());
        QSignalSpy swapped(m_watch.get(), &KXWatchModeController::windowsSwapped);
        QSignalSpy ended(m_watch.get(), &KXWatchModeController::watchModeEnded);
        m_watch->endWatchMode();
        QCOMPARE(swapped.size(), 1);
        QVERIFY(!swapped.constFirst().constFirst().toBool());
        QVERIFY(m_watch->appIsInWatchMode()); // until the windows have changed places
        QVERIFY(ended.isEmpty());
        QTRY_COMPARE(ended.size(), 1);
        QVERIFY(!m_watch->appIsInWatchMode());
        QTest::qWait(500);
        QCOMPARE(swapped.size(), 1); // and not the other way round once more
    }

    void startingAgainWhileItEndsStaysOn()
    {
        QVERIFY(m_watch->startWatchMode());
        m_watch->endWatchMode();
        QVERIFY(m_watch->startWatchMode());
        QTest::qWait(600);
        QVERIFY(m_watch->appIsInWatchMode());
    }

    void whatWasGrowingIsWaitedForAfterTheNextStart()
    {
        startAndPoll();
        m_shelf->put(u"/w/new.mkv"_s, 5);
        poll();
        QCOMPARE(m_watch->monitorWatchFolderMovieList().size(), 1);
        m_shelf->put(u"/w/new.mkv"_s, 9, 2); // it has grown meanwhile
        QVERIFY(m_watch->startWatchMode());
        QCOMPARE(m_watch->monitorWatchFolderMovieList().size(), 1);
        poll();
        QCOMPARE(m_ready, QStringList{u"/w/new.mkv"_s});
    }

    void theFolderIsChosenInAPanel()
    {
        OpenPanel panel;
        QSignalSpy changed(m_watch.get(), &KXWatchModeController::folderChanged);
        m_watch->chooseWatchFolderURL(panel);
        QCOMPARE(panel.asked.title, u"Select the folder to watch."_s);
        QVERIFY(panel.asked.what == platform::ChooserRequest::What::Folder);
        QCOMPARE(panel.asked.startPath, folder);
        panel.answer({});
        QCOMPARE(m_fixture->preferences.watchFolderPath(), folder);
        QVERIFY(changed.isEmpty());
        panel.answer({url(u"/other"_s)});
        QCOMPARE(m_fixture->preferences.watchFolderPath(), u"/other"_s);
        QCOMPARE(changed.size(), 1);
    }

    // One look after the other.

    void filesPresentAtTheStartAreNeverProcessed()
    {
        m_shelf->put(u"/w/old.mkv"_s, 5);
        startAndPoll();
        poll(40);
        QVERIFY(m_ready.isEmpty());
        QVERIFY(m_watch->monitorWatchFolderMovieList().isEmpty());
    }

    /// Known ones are looked at in turn, all of them within twelve looks.
    void aFileThatTakesThePlaceOfAKnownOneIsNew_data()
    {
        QTest::addColumn<quint64>("inode");
        QTest::addColumn<int>("looks");
        QTest::newRow("another file: seen at once") << quint64(8) << 1;
        QTest::newRow("the same file with another content: within a minute") << quint64(7) << 12;
    }

    void aFileThatTakesThePlaceOfAKnownOneIsNew()
    {
        QFETCH(quint64, inode);
        QFETCH(int, looks);
        m_shelf->put(u"/w/film.mkv"_s, 5, 1, 7);
        startAndPoll();
        m_shelf->put(u"/w/film.mkv"_s, 50, 9, inode);
        poll(looks + 1);
        QCOMPARE(m_ready, QStringList{u"/w/film.mkv"_s});
    }

    void aKnownFileThatWasRenamedIsKnown()
    {
        m_shelf->put(u"/w/old.mkv"_s, 5, 1, 7);
        startAndPoll();
        m_shelf->take(u"/w/old.mkv"_s);
        m_shelf->put(u"/w/sub/new.mkv"_s, 5, 1, 7);
        poll(20);
        QVERIFY(m_ready.isEmpty());
    }

    void existingFilesAreTakenWhereThatIsWanted()
    {
        m_shelf->put(u"/w/old.mkv"_s, 5);
        m_watch->setTakesExisting(true);
        QVERIFY(m_watch->startWatchMode());
        poll();
        QCOMPARE(m_ready, QStringList{u"/w/old.mkv"_s});
    }

    void whatWasHandedOverAndNotBegunWaitsForTheNextStart()
    {
        startAndPoll();
        m_shelf->put(u"/w/film.mkv"_s, 5);
        poll(2);
        QCOMPARE(m_ready.size(), 1);
        m_watch->fileGivenBack(url(u"/w/film.mkv"_s));
        m_watch->endWatchMode();
        QSignalSpy found(m_watch.get(), &KXWatchModeController::filesFound);
        QVERIFY(m_watch->startWatchMode());
        QCOMPARE(found.size(), 1);
        poll();
        QCOMPARE(m_ready.size(), 2);
        m_watch->endWatchMode(); // begun with: it is in the queue
        QVERIFY(m_watch->startWatchMode());
        poll(3);
        QCOMPARE(m_ready.size(), 2);
    }

    void whatAJobThatFailedLeftIsNeverTaken_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("incomplete") << u"/w/a (incomplete).mkv"_s << false;
        QTest::newRow("a second one") << u"/w/a (incomplete) (2).mkv"_s << false;
        QTest::newRow("a film about it") << u"/w/a (incomplete) story.mkv"_s << true;
    }

    void whatAJobThatFailedLeftIsNeverTaken()
    {
        QFETCH(QString, name);
        QFETCH(bool, isTaken);
        startAndPoll();
        m_shelf->put(name, 5);
        poll(3);
        QCOMPARE(m_ready.size(), isTaken ? 1 : 0);
    }

    void aFileThatIsShorterThanItSaysWaitsForItsRest()
    {
        startAndPoll();
        QSignalSpy notWhole(m_watch.get(), &KXWatchModeController::fileNotWhole);
        m_shelf->halfOnes = {u"/w/film.mkv"_s};
        m_shelf->put(u"/w/film.mkv"_s, 5);
        poll(30); // the copy has stalled
        QVERIFY(m_ready.isEmpty());
        QCOMPARE(notWhole.size(), 1);
        m_shelf->halfOnes.clear();
        m_shelf->put(u"/w/film.mkv"_s, 9, 2);
        poll(2);
        QCOMPARE(m_ready, QStringList{u"/w/film.mkv"_s});
    }

    void anHourWithoutAChangeIsEnough()
    {
        qint64 now = 0;
        m_watch->setClock([&] { return now; });
        startAndPoll();
        m_shelf->halfOnes = {u"/w/film.mkv"_s};
        m_shelf->put(u"/w/film.mkv"_s, 5);
        poll(2);
        now = 3'599'999;
        poll();
        QVERIFY(m_ready.isEmpty());
        now = 3'600'000;
        poll();
        QCOMPARE(m_ready, QStringList{u"/w/film.mkv"_s});
    }

    void whatCouldNotBeDoneNowIsDoneLater()
    {
        qint64 now = 0;
        m_watch->setClock([&] { return now; });
        startAndPoll();
        m_shelf->put(u"/w/film.mkv"_s, 5);
        poll(2);
        for (const qint64 minutes : {1, 4, 16, 64, 64}) {
            m_ready.clear();
            m_watch->fileLater(url(u"/w/film.mkv"_s));
            now += minutes * 60'000 - 1;
            poll(15);
            QVERIFY(m_ready.isEmpty());
            ++now;
            poll(2);
            QCOMPARE(m_ready, QStringList{u"/w/film.mkv"_s});
        }
        m_watch->fileDone(url(u"/w/film.mkv"_s));
        now += 1'000'000'000;
        poll(30);
        QCOMPARE(m_ready.size(), 1);
    }

    void aFileCopiedOverTwelveSecondsIsTakenAtTheFirstPollAfterItsSizeStopsChanging()
    {
        startAndPoll();
        m_shelf->put(u"/w/film.mkv"_s, 100); // seen at 0 s
        poll();
        m_shelf->put(u"/w/film.mkv"_s, 600); // 5 s
        poll();
        m_shelf->put(u"/w/film.mkv"_s, 1100); // 10 s
        poll();
        m_shelf->put(u"/w/film.mkv"_s, 1300); // 15 s; complete since 12 s
        poll();
        QVERIFY(m_ready.isEmpty());
        poll(); // 20 s
        QCOMPARE(m_ready, QStringList{u"/w/film.mkv"_s});
        QCOMPARE(m_watch->baseWatchFolderMovieList(), QList<QUrl>{url(u"/w/film.mkv"_s)});
        QVERIFY(m_watch->monitorWatchFolderMovieList().isEmpty());
        poll(10);
        QCOMPARE(m_ready.size(), 1);
        QCOMPARE(m_handOvers, 1);
    }

    void whatGrowsIsKeptWithItsLastSizeAsText()
    {
        startAndPoll();
        m_shelf->put(u"/w/film.mkv"_s, 5'000'000'000);
        poll();
        const QVariantList expected{
            QVariantMap{{u"fileURL"_s, url(u"/w/film.mkv"_s)}, {u"oldSize"_s, u"5000000000"_s}}};
        QCOMPARE(m_watch->monitorWatchFolderMovieList(), expected);
        m_shelf->put(u"/w/film.mkv"_s, 5'000'000'001);
        poll();
        QCOMPARE(m_watch->monitorWatchFolderMovieList().constFirst().toMap().value(u"oldSize"_s),
                 QVariant(u"5000000001"_s));
    }

    void anEmptyFileIsNeverTaken()
    {
        startAndPoll();
        m_shelf->put(u"/w/empty.mkv"_s, 0);
        poll(5);
        QVERIFY(m_ready.isEmpty());
        m_shelf->put(u"/w/empty.mkv"_s, 7); // and then it is none any more
        poll();
        QVERIFY(m_ready.isEmpty());
        poll();
        QCOMPARE(m_ready, QStringList{u"/w/empty.mkv"_s});
    }

    void thatAFileIsEmptyIsToldOnce()
    {
        startAndPoll();
        QSignalSpy told(m_watch.get(), &KXWatchModeController::fileEmpty);
        m_shelf->put(u"/w/empty.mkv"_s, 0);
        poll(20);
        QCOMPARE(told.size(), 1);
        QCOMPARE(told.constFirst().constFirst().toString(), u"/w/empty.mkv"_s);
    }

    void aFileThatIsFilledInPlaceIsNotTaken() // as downloads that take their room first
    {
        startAndPoll();
        for (qint64 time = 1; time < 10; ++time) {
            m_shelf->put(u"/w/a.mkv"_s, 9, time);
            poll();
        }
        QVERIFY(m_ready.isEmpty());
        poll();
        QCOMPARE(m_ready, QStringList{u"/w/a.mkv"_s});
    }

    void onlyAFilmOfTheFolderCanBeWanted()
    {
        m_shelf->put(u"/w/old.mkv"_s, 5);
        startAndPoll();
        QVERIFY(!m_watch->fileWanted(url(u"/elsewhere/old.mkv"_s)));
        QVERIFY(!m_watch->fileWanted(url(u"/w/none.mkv"_s)));
        poll(20);
        QVERIFY(m_ready.isEmpty());
    }

    void aFileThatStopsShrinkingIsTakenToo()
    {
        startAndPoll();
        m_shelf->put(u"/w/a.mkv"_s, 9);
        poll();
        m_shelf->put(u"/w/a.mkv"_s, 8);
        poll();
        QVERIFY(m_ready.isEmpty());
        poll();
        QCOMPARE(m_ready, QStringList{u"/w/a.mkv"_s});
    }

    void aFileDeletedWhileItIsWatchedIsForgottenWithoutError_data()
    {
        QTest::addColumn<bool>("isLast");
        QTest::newRow("another film stays") << false;
        QTest::newRow("the folder is empty then") << true;
    }

    void aFileDeletedWhileItIsWatchedIsForgottenWithoutError()
    {
        QFETCH(bool, isLast);
        if (!isLast)
            m_shelf->put(u"/w/old.mkv"_s, 1);
        startAndPoll();
        m_shelf->put(u"/w/gone.mkv"_s, 5);
        poll();
        QSignalSpy forgotten(m_watch.get(), &KXWatchModeController::fileForgotten);
        m_shelf->take(u"/w/gone.mkv"_s);
        poll(2);
        QVERIFY(m_watch->monitorWatchFolderMovieList().isEmpty());
        QCOMPARE(forgotten.size(), 1);
        QCOMPARE(forgotten.constFirst().constFirst().toString(), u"/w/gone.mkv"_s);
        m_shelf->put(u"/w/gone.mkv"_s, 5); // back: new, and looked at twice again
        poll();
        QVERIFY(m_ready.isEmpty());
        poll();
        QCOMPARE(m_ready, QStringList{u"/w/gone.mkv"_s});
    }

    void aFileInANewSubFolderIsFound()
    {
        startAndPoll();
        m_shelf->put(u"/w/sub/deep/film.mkv"_s, 5);
        poll(2);
        QCOMPARE(m_ready, QStringList{u"/w/sub/deep/film.mkv"_s});
    }

    void newFilesAreToldOnce()
    {
        startAndPoll();
        QSignalSpy found(m_watch.get(), &KXWatchModeController::filesFound);
        m_shelf->put(u"/w/a.mkv"_s, 5);
        m_shelf->put(u"/w/b.mkv"_s, 5);
        poll(3);
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.constFirst().constFirst().toStringList(), QStringList({u"/w/a.mkv"_s, u"/w/b.mkv"_s}));
    }

    void allThatAreFinishedAtOnceComeInOneHandOverInTheirOrder()
    {
        startAndPoll();
        for (const QString &path : {u"/w/c.mkv"_s, u"/w/a.mkv"_s, u"/w/b.mkv"_s})
            m_shelf->put(path, 5);
        poll();
        m_shelf->put(u"/w/a.mkv"_s, 6);
        poll();
        QCOMPARE(m_ready, QStringList({u"/w/c.mkv"_s, u"/w/b.mkv"_s}));
        QCOMPARE(m_handOvers, 1);
        poll();
        QCOMPARE(m_ready, QStringList({u"/w/c.mkv"_s, u"/w/b.mkv"_s, u"/w/a.mkv"_s}));
        QCOMPARE(m_handOvers, 2);
    }

    void oneThatIsReadyAndOneThatIsNewAreToldApartInTheSamePoll()
    {
        startAndPoll();
        m_shelf->put(u"/w/a.mkv"_s, 5);
        poll();
        m_shelf->put(u"/w/b.mkv"_s, 5);
        poll();
        QCOMPARE(m_ready, QStringList{u"/w/a.mkv"_s});
        QCOMPARE(m_watch->monitorWatchFolderMovieList().size(), 1);
    }

    void aKnownFileThatVanishedComesBackAsAKnownOne_data()
    {
        QTest::addColumn<bool>("isFolderEmptyMeanwhile");
        QTest::newRow("among others") << false;
        QTest::newRow("the only one") << true;
    }

    void aKnownFileThatVanishedComesBackAsAKnownOne()
    {
        QFETCH(bool, isFolderEmptyMeanwhile);
        m_shelf->put(u"/w/old.mkv"_s, 5);
        if (!isFolderEmptyMeanwhile)
            m_shelf->put(u"/w/other.mkv"_s, 5);
        startAndPoll();
        m_shelf->take(u"/w/old.mkv"_s);
        poll();
        QCOMPARE(m_watch->baseWatchFolderMovieList().size(), isFolderEmptyMeanwhile ? 0 : 1);
        m_shelf->put(u"/w/old.mkv"_s, 5);
        poll(15);
        QVERIFY(m_ready.isEmpty());
        m_shelf->take(u"/w/old.mkv"_s);
        poll();
        m_shelf->put(u"/w/old.mkv"_s, 6); // another film
        poll(2);
        QCOMPARE(m_ready, QStringList{u"/w/old.mkv"_s});
    }

    void aFolderThatVanishesWhileItIsReadKeepsWhatIsKnown()
    {
        m_shelf->put(u"/w/old.mkv"_s, 5);
        startAndPoll();
        const QStringList content = std::exchange(m_shelf->order, {});
        m_shelf->vanishesWhenListed = true;
        poll();
        m_shelf->vanishesWhenListed = false;
        m_shelf->isThere = true;
        m_shelf->order = content;
        poll(3);
        QVERIFY(m_ready.isEmpty());
    }

    void aVanishedFolderKeepsWhatIsKnown()
    {
        m_shelf->put(u"/w/old.mkv"_s, 5);
        startAndPoll();
        m_shelf->put(u"/w/new.mkv"_s, 5);
        poll();
        QSignalSpy missing(m_watch.get(), &KXWatchModeController::folderMissing);
        m_shelf->isThere = false;
        const QStringList content = std::exchange(m_shelf->order, {});
        poll(3);
        QCOMPARE(missing.size(), 3);
        m_shelf->isThere = true;
        m_shelf->order = content;
        poll(3);
        QCOMPARE(missing.size(), 3);
        QCOMPARE(m_ready, QStringList{u"/w/new.mkv"_s}); // the one that was growing, and no other
    }

    void thePollClosesTheDrawer()
    {
        startAndPoll();
        QSignalSpy drawer(m_watch.get(), &KXWatchModeController::drawerWanted);
        m_shelf->put(u"/w/a.mkv"_s, 5);
        poll();
        QCOMPARE(drawer.size(), 1);
        QVERIFY(!drawer.constFirst().constFirst().toBool());
    }

    // Outputs and refusals.

    void anAnnouncedOutputIsNeverTaken_data()
    {
        QTest::addColumn<bool>("isBeforeTheStart");
        QTest::newRow("before watch mode began") << true;
        QTest::newRow("while watching") << false;
    }

    void anAnnouncedOutputIsNeverTaken()
    {
        QFETCH(bool, isBeforeTheStart);
        if (isBeforeTheStart)
            m_watch->outputAnnounced(url(u"/w/out.m4v"_s)); // queued before, written later
        startAndPoll();
        if (!isBeforeTheStart)
            m_watch->outputAnnounced(url(u"/w/out.m4v"_s));
        poll();
        m_shelf->put(u"/w/out.m4v"_s, 5);
        poll(2);
        m_shelf->put(u"/w/out.m4v"_s, 6);
        poll(3);
        QVERIFY(m_ready.isEmpty());
        QVERIFY(m_watch->monitorWatchFolderMovieList().isEmpty());
    }

    void neitherAnEmptyFolderNorAVanishedOutputMakesItForgetAnOutput()
    {
        m_watch->outputAnnounced(url(u"/w/out.m4v"_s));
        startAndPoll(); // empty
        m_shelf->put(u"/w/out.m4v"_s, 5);
        m_shelf->put(u"/w/other.mkv"_s, 5);
        poll(2);
        m_shelf->take(u"/w/out.m4v"_s);
        poll();
        m_shelf->put(u"/w/out.m4v"_s, 5);
        poll(3);
        QCOMPARE(m_ready, QStringList{u"/w/other.mkv"_s});
    }

    void anOutputInTheKnownListIsPrunedButNotForgotten()
    {
        startAndPoll();
        m_watch->outputAnnounced(url(u"/w/out.m4v"_s));
        m_watch->setBaseWatchFolderMovieList({url(u"/w/out.m4v"_s)}); // as the queue does
        m_shelf->put(u"/w/a.mkv"_s, 5);
        poll(); // the output is not yet there
        QVERIFY(m_watch->baseWatchFolderMovieList().isEmpty());
        m_shelf->put(u"/w/out.m4v"_s, 5);
        poll(3);
        QCOMPARE(m_ready, QStringList{u"/w/a.mkv"_s});
    }

    void aRefusedFileIsLookedAtAgainOnlyAfterItChanged()
    {
        startAndPoll();
        m_shelf->put(u"/w/bad.mkv"_s, 5, 1);
        poll(2);
        QCOMPARE(m_ready.size(), 1);
        m_watch->fileRefused(url(u"/w/bad.mkv"_s));
        poll(5);
        QCOMPARE(m_ready.size(), 1);
        m_shelf->put(u"/w/bad.mkv"_s, 5, 2); // the time alone
        poll();
        QCOMPARE(m_ready.size(), 1);
        poll();
        QCOMPARE(m_ready.size(), 2);
        poll(5);
        QCOMPARE(m_ready.size(), 2); // it was good this time
    }

    void aRefusedFileIsTriedFiveTimesAndThenGivenUp()
    {
        startAndPoll();
        QSignalSpy givenUp(m_watch.get(), &KXWatchModeController::fileGivenUp);
        connect(m_watch.get(), &KXWatchModeController::filesReady, this, [this](const QList<QUrl> &files) {
            QMetaObject::invokeMethod(
                m_watch.get(), [this, files] { m_watch->fileRefused(files.constFirst()); },
                Qt::QueuedConnection);
        });
        for (int change = 1; change <= 12; ++change) {
            m_shelf->put(u"/w/bad.mkv"_s, 5 + change, change);
            poll(3);
            QCoreApplication::processEvents();
            QCOMPARE(m_ready.size(), std::min(change, 5));
            QCOMPARE(givenUp.size(), change < 5 ? 0 : 1);
        }
        QCOMPARE(givenUp.constFirst().constFirst().toString(), u"/w/bad.mkv"_s);
        m_shelf->put(u"/w/bad.mkv"_s, 90, 90, 9); // another file of that name
        poll(3);
        QCOMPARE(m_ready.size(), 6);
    }

    void aRefusedFileThatIsRefusedAtOnceIsNoDifferent()
    {
        startAndPoll();
        connect(m_watch.get(), &KXWatchModeController::filesReady, m_watch.get(),
                [this](const QList<QUrl> &files) { m_watch->fileRefused(files.constFirst()); });
        m_shelf->put(u"/w/bad.mkv"_s, 5, 1);
        poll(4);
        QCOMPARE(m_ready.size(), 1);
        m_shelf->put(u"/w/bad.mkv"_s, 6, 1);
        poll(4);
        QCOMPARE(m_ready.size(), 2);
    }

    void aRefusedFileThatWasDeletedAndReplacedIsANewOne()
    {
        m_shelf->put(u"/w/other.mkv"_s, 5);
        startAndPoll();
        m_shelf->put(u"/w/bad.mkv"_s, 5, 1);
        poll(2);
        m_watch->fileRefused(url(u"/w/bad.mkv"_s));
        m_shelf->take(u"/w/bad.mkv"_s);
        poll(2);
        m_shelf->put(u"/w/bad.mkv"_s, 5, 1, 8);
        poll(2);
        QCOMPARE(m_ready.size(), 1); // it is the same film, copied again
        m_shelf->take(u"/w/bad.mkv"_s);
        poll(2);
        m_shelf->put(u"/w/bad.mkv"_s, 5, 2, 9);
        poll(2);
        QCOMPARE(m_ready.size(), 2);
    }

private:
    void startAndPoll()
    {
        QVERIFY(m_watch->startWatchMode());
        poll();
        QVERIFY(m_ready.isEmpty());
    }

    void poll(int times = 1)
    {
        for (int i = 0; i < times; ++i)
            m_watch->watchLoop();
    }

    std::unique_ptr<Shelf> m_shelf;
    std::unique_ptr<support::JobFixture> m_fixture;
    std::unique_ptr<KXWatchModeController> m_watch;
    QStringList m_ready;
    int m_handOvers = 0;
};

TESSARAY_TEST(KXWatchModeControllerTest)
#include "KXWatchModeControllerTest.moc"

// How the program ends: at once, or after a question while a job runs.
#include "app/KXAppDelegate.h"

#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/app/AppFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;
using support::waitFor;

namespace {

constexpr int ok = 1000;
constexpr int cancel = 1001;

} // namespace

class QuitTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>();
        m_fixture->presets().setSelectionMethodIndex(2);
        m_allowed = std::make_unique<QSignalSpy>(&m_fixture->delegate(), &KXAppDelegate::terminationAllowed);
    }
    void cleanup()
    {
        m_allowed.reset();
        m_fixture.reset();
    }

    void anIdleProgramSavesAndEndsAtOnce()
    {
        QVERIFY(m_fixture->delegate().applicationShouldTerminate());
        QVERIFY(m_fixture->alerts().shown().isEmpty());
        QCOMPARE(stored().value(u"selectionMethodIndex"_s).toInt(), 2);
        QCOMPARE(stored().value(u"currentTab"_s).toString(), u"MKV"_s);
    }

    void jobsThatOnlyWaitAreNoReasonToAsk()
    {
        queueTwo();
        QVERIFY(m_fixture->delegate().applicationShouldTerminate());
        QVERIFY(m_fixture->alerts().shown().isEmpty());
    }

    void aRunningJobIsPausedAndAskedAbout()
    {
        run();
        QVERIFY(!m_fixture->delegate().applicationShouldTerminate());
        QCOMPARE(m_fixture->alerts().shown().size(), 1);
        const platform::Alert &question = *m_fixture->alerts().shown().constFirst();
        QCOMPARE(question.message,
                 u"Videos are still being processed.  Quit anyways?"_s); // two blanks: meant
        QCOMPARE(question.buttons, (QStringList{u"OK"_s, u"Cancel"_s}));
        QCOMPARE(question.closesAfter.count(), 0);
        QVERIFY(isPaused());
        QVERIFY(stored().isEmpty());
        QVERIFY(m_allowed->isEmpty());
    }

    void afterOkEveryJobIsRemovedAndTheStateSaved()
    {
        run();
        const qint64 tool = pid();
        m_fixture->delegate().applicationShouldTerminate();
        QVERIFY(m_fixture->alerts().answer(ok));
        QCOMPARE(m_allowed->size(), 1);
        QVERIFY(m_fixture->queue().qJobList().isEmpty());
        QVERIFY(!m_fixture->queue().qJobIsRunning());
        QVERIFY(waitFor([tool] { return !support::runs(tool); }));
        QCOMPARE(stored().value(u"selectionMethodIndex"_s).toInt(), 2);
    }

    void afterCancelTheJobStaysPaused()
    {
        run();
        m_fixture->delegate().applicationShouldTerminate();
        QVERIFY(m_fixture->alerts().answer(cancel));
        QVERIFY(m_allowed->isEmpty());
        QCOMPARE(m_fixture->jobs().size(), 2);
        QVERIFY(m_fixture->queue().qJobIsRunning());
        QCOMPARE(m_fixture->queue().pauseButtonTitle(), u"Resume"_s);
        QTest::qWait(300);
        QVERIFY(isPaused()); // it is not resumed by itself: meant
        QVERIFY(stored().isEmpty());
    }

    void afterCancelTheJobCanBeResumed()
    {
        run();
        m_fixture->delegate().applicationShouldTerminate();
        m_fixture->alerts().answer(cancel);
        m_fixture->queue().pauseQueueButton(m_fixture->queue().pauseButtonTitle());
        QVERIFY(waitFor([this] { return support::stateOf(pid()) == 'S'; }));
        QCOMPARE(m_fixture->queue().pauseButtonTitle(), u"Pause"_s);
    }

    void whileItAsksItDoesNotAskAgain()
    {
        run();
        m_fixture->delegate().applicationShouldTerminate();
        QVERIFY(!m_fixture->delegate().applicationShouldTerminate());
        QCOMPARE(m_fixture->alerts().shown().size(), 1);
        m_fixture->alerts().answer(cancel);
        QVERIFY(!m_fixture->delegate().applicationShouldTerminate()); // now it does
        QCOMPARE(m_fixture->alerts().shown().size(), 2);
    }

    void aJobThatWasPausedBeforeIsAskedAboutToo()
    {
        run();
        m_fixture->queue().pauseQueueButton(u"Pause"_s);
        QVERIFY(!m_fixture->delegate().applicationShouldTerminate());
        m_fixture->alerts().answer(cancel);
        QVERIFY(isPaused());
        QCOMPARE(m_fixture->queue().pauseButtonTitle(), u"Resume"_s);
    }

    void whatWaitsAndWhatRanIsThereAgain()
    {
        QCOMPARE(m_fixture->delegate().restoreQueue(), QString());
        run();
        QVERIFY(!m_fixture->delegate().applicationShouldTerminate());
        QVERIFY(m_fixture->alerts().answer(ok));
        QCOMPARE(m_allowed->size(), 1);
        QVERIFY(m_fixture->queue().qJobList().isEmpty());
        m_fixture->restart();
        QSignalSpy notes(&m_fixture->delegate(), &KXAppDelegate::noteWorthy);
        QCOMPARE(m_fixture->delegate().restoreQueue(), QString());
        QCOMPARE(m_fixture->queue().qJobList().size(), 2);
        QCOMPARE(m_fixture->queue().qJobList().at(0)->outcome().word(), u"interrupted"_s);
        QCOMPARE(m_fixture->queue().qJobList().at(1)->jobStatus(), u"Queued"_s);
        QCOMPARE(m_fixture->queue().pauseButtonTitle(), u"Resume"_s);
        QVERIFY(notes.takeFirst().constFirst().toString().contains(u"Resume"_s));
        QVERIFY(!m_fixture->desktop().awake);
    }

    void jobsThatOnlyWaitAreStoredWithoutAQuestion()
    {
        QCOMPARE(m_fixture->delegate().restoreQueue(), QString());
        queueTwo();
        QVERIFY(m_fixture->delegate().applicationShouldTerminate());
        QVERIFY(m_fixture->alerts().shown().isEmpty());
        m_fixture->restart();
        m_fixture->delegate().restoreQueue();
        QCOMPARE(m_fixture->queue().qJobList().size(), 2);
        QVERIFY(m_fixture->queue().isHeld());
    }

    void whatCannotBeSavedIsAskedAbout_data()
    {
        QTest::addColumn<int>("answer");
        QTest::newRow("Quit Anyway") << ok;
        QTest::newRow("Cancel") << cancel;
    }

    void whatCannotBeSavedIsAskedAbout()
    {
        QFETCH(int, answer);
        const QString settings = m_fixture->path(u"settings/defaults.json"_s);
        QFile::remove(settings);
        QVERIFY(QDir().mkpath(settings)); // no file can stand there
        QVERIFY(!m_fixture->delegate().applicationShouldTerminate());
        QCOMPARE(m_fixture->alerts().shown().size(), 1);
        const platform::Alert &question = *m_fixture->alerts().shown().constFirst();
        QCOMPARE(question.message, u"Not everything could be saved."_s);
        QVERIFY(question.informativeText.contains(settings));
        QCOMPARE(question.buttons, (QStringList{u"Quit Anyway"_s, u"Cancel"_s}));
        QVERIFY(m_fixture->alerts().answer(answer));
        QCOMPARE(m_allowed->size(), answer == ok ? 1 : 0);
    }

    void aRunningJobIsNotStoppedWhenNothingCanBeSaved()
    {
        run();
        const QString settings = m_fixture->path(u"settings/defaults.json"_s);
        QFile::remove(settings);
        QVERIFY(QDir().mkpath(settings));
        m_fixture->delegate().applicationShouldTerminate();
        QVERIFY(m_fixture->alerts().answer(ok)); // to the first question
        QCOMPARE(m_fixture->alerts().shown().size(), 2);
        QVERIFY(m_fixture->queue().qJobIsRunning());
        QVERIFY(m_fixture->alerts().answer(ok));
        QVERIFY(!m_fixture->queue().qJobIsRunning());
        QCOMPARE(m_allowed->size(), 1);
    }

private:
    void queueTwo()
    {
        m_fixture->fakeTool(u"ffmpeg/ffmpeg"_s, {u"pid "_s + m_fixture->path(u"pids"_s), u"hang"_s});
        m_fixture->openByHand({support::convertible(m_fixture->scratch().write(u"a.mkv"_s, "film"))});
        m_fixture->starter().startProcess(u"Convert"_s);
        m_fixture->starter().startProcess(u"Convert"_s);
    }
    /// One job whose tool hangs, and one behind it.
    void run()
    {
        queueTwo();
        m_fixture->queue().manageQueue();
        QVERIFY(waitFor([this] { return pid() > 0; }));
    }
    qint64 pid() const { return m_fixture->scratch().read(u"pids"_s).split('\n').first().toLongLong(); }
    bool isPaused() const
    {
        return waitFor([this] { return support::stateOf(pid()) == 'T'; });
    }
    QVariantMap stored() const
    {
        return QJsonDocument::fromJson(m_fixture->scratch().read(u"settings/defaults.json"_s))
            .toVariant()
            .toMap()
            .value(u"guiSettingsDictionary"_s)
            .toMap();
    }

    std::unique_ptr<AppFixture> m_fixture;
    std::unique_ptr<QSignalSpy> m_allowed;
};

TESSARAY_TEST(QuitTest)
#include "QuitTest.moc"

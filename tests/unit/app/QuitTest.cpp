// How the program ends: at once, or after a question while a job runs.
#include "app/KXAppDelegate.h"

#include "support/AppDesk.h"
#include "support/Waiting.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::AppDesk;
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
        m_desk = std::make_unique<AppDesk>();
        m_desk->presets().setSelectionMethodIndex(2);
        m_allowed = std::make_unique<QSignalSpy>(&m_desk->delegate(), &KXAppDelegate::terminationAllowed);
    }
    void cleanup()
    {
        m_allowed.reset();
        m_desk.reset();
    }

    void anIdleProgramSavesAndEndsAtOnce()
    {
        QVERIFY(m_desk->delegate().applicationShouldTerminate());
        QVERIFY(m_desk->alerts().shown().isEmpty());
        QCOMPARE(stored().value(u"selectionMethodIndex"_s).toInt(), 2);
        QCOMPARE(stored().value(u"currentTab"_s).toString(), u"MKV"_s);
    }

    void jobsThatOnlyWaitAreNoReasonToAsk()
    {
        queueTwo();
        QVERIFY(m_desk->delegate().applicationShouldTerminate());
        QVERIFY(m_desk->alerts().shown().isEmpty());
    }

    void aRunningJobIsPausedAndAskedAbout()
    {
        run();
        QVERIFY(!m_desk->delegate().applicationShouldTerminate());
        QCOMPARE(m_desk->alerts().shown().size(), 1);
        const platform::Alert &question = *m_desk->alerts().shown().constFirst();
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
        m_desk->delegate().applicationShouldTerminate();
        QVERIFY(m_desk->alerts().answer(ok));
        QCOMPARE(m_allowed->size(), 1);
        QVERIFY(m_desk->queue().qJobList().isEmpty());
        QVERIFY(!m_desk->queue().qJobIsRunning());
        QVERIFY(waitFor([tool] { return !support::runs(tool); }));
        QCOMPARE(stored().value(u"selectionMethodIndex"_s).toInt(), 2);
    }

    void afterCancelTheJobStaysPaused()
    {
        run();
        m_desk->delegate().applicationShouldTerminate();
        QVERIFY(m_desk->alerts().answer(cancel));
        QVERIFY(m_allowed->isEmpty());
        QCOMPARE(m_desk->jobs().size(), 2);
        QVERIFY(m_desk->queue().qJobIsRunning());
        QCOMPARE(m_desk->queue().pauseButtonTitle(), u"Resume"_s);
        QTest::qWait(300);
        QVERIFY(isPaused()); // it is not resumed by itself: meant
        QVERIFY(stored().isEmpty());
    }

    void afterCancelTheJobCanBeResumed()
    {
        run();
        m_desk->delegate().applicationShouldTerminate();
        m_desk->alerts().answer(cancel);
        m_desk->queue().pauseQueueButton(m_desk->queue().pauseButtonTitle());
        QVERIFY(waitFor([this] { return support::stateOf(pid()) == 'S'; }));
        QCOMPARE(m_desk->queue().pauseButtonTitle(), u"Pause"_s);
    }

    void whileItAsksItDoesNotAskAgain()
    {
        run();
        m_desk->delegate().applicationShouldTerminate();
        QVERIFY(!m_desk->delegate().applicationShouldTerminate());
        QCOMPARE(m_desk->alerts().shown().size(), 1);
        m_desk->alerts().answer(cancel);
        QVERIFY(!m_desk->delegate().applicationShouldTerminate()); // now it does
        QCOMPARE(m_desk->alerts().shown().size(), 2);
    }

    void aJobThatWasPausedBeforeIsAskedAboutToo()
    {
        run();
        m_desk->queue().pauseQueueButton(u"Pause"_s);
        QVERIFY(!m_desk->delegate().applicationShouldTerminate());
        m_desk->alerts().answer(cancel);
        QVERIFY(isPaused());
        QCOMPARE(m_desk->queue().pauseButtonTitle(), u"Resume"_s);
    }

private:
    void queueTwo()
    {
        m_desk->fakeTool(u"ffmpeg/ffmpeg"_s, {u"pid "_s + m_desk->path(u"pids"_s), u"hang"_s});
        m_desk->openByHand({support::convertible(m_desk->scratch().write(u"a.mkv"_s, "film"))});
        m_desk->starter().startProcess(u"Convert"_s);
        m_desk->starter().startProcess(u"Convert"_s);
    }
    /// One job whose tool hangs, and one behind it.
    void run()
    {
        queueTwo();
        m_desk->queue().manageQueue();
        QVERIFY(waitFor([this] { return pid() > 0; }));
    }
    qint64 pid() const { return m_desk->scratch().read(u"pids"_s).split('\n').first().toLongLong(); }
    bool isPaused() const
    {
        return waitFor([this] { return support::stateOf(pid()) == 'T'; });
    }
    QVariantMap stored() const
    {
        return QJsonDocument::fromJson(m_desk->scratch().read(u"settings/defaults.json"_s))
            .toVariant()
            .toMap()
            .value(u"guiSettingsDictionary"_s)
            .toMap();
    }

    std::unique_ptr<AppDesk> m_desk;
    std::unique_ptr<QSignalSpy> m_allowed;
};

QTEST_GUILESS_MAIN(QuitTest)
#include "QuitTest.moc"

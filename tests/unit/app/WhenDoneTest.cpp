// What happens when the queue is done: nothing, the machine sleeps, or the program ends.
#include "app/KXAppDelegate.h"

#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/app/AppFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;
using support::waitFor;

class WhenDoneTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>();
        m_fixture->presets().setSelectionMethodIndex(2); // ticks every track
        m_fixture->fakeTool(u"ffmpeg/ffmpeg"_s, {u"exit 1"_s});
        m_fixture->openByHand({support::convertible(m_fixture->scratch().write(u"a.mkv"_s, "film"))});
    }
    void cleanup() { m_fixture.reset(); }

    void theWordDecides_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("slept");
        QTest::addColumn<int>("ended");
        QTest::newRow("nothing") << u"nothing"_s << 0 << 0;
        QTest::newRow("sleep") << u"sleep"_s << 1 << 0;
        QTest::newRow("quit") << u"quit"_s << 0 << 1;
        QTest::newRow("a word of another version") << u"explode"_s << 0 << 0;
    }

    void theWordDecides()
    {
        QFETCH(QString, word);
        QFETCH(int, slept);
        QFETCH(int, ended);
        m_fixture->delegate().setWhenQueueIsDone(word);
        const QSignalSpy allowed(&m_fixture->delegate(), &KXAppDelegate::terminationAllowed);
        const QSignalSpy done(&m_fixture->delegate().queueWatch(), &app::QueueWatch::queueEnded);
        m_fixture->starter().startProcess(u"Convert"_s);
        m_fixture->starter().startProcess(u"Convert"_s);
        QVERIFY(waitFor([&] { return !m_fixture->queue().qJobList().constFirst()->jobStatus().isEmpty(); }));
        QVERIFY(done.isEmpty());
        QVERIFY(waitFor([&] { return done.size() == 1; })); // after the second
        QTest::qWait(0);
        QCOMPARE(m_fixture->desktop().slept, slept);
        QCOMPARE(allowed.size(), ended);
    }

    void itIsStoredAtOnce()
    {
        QCOMPARE(m_fixture->delegate().whenQueueIsDone(), u"nothing"_s);
        m_fixture->delegate().setWhenQueueIsDone(u"quit"_s);
        m_fixture->restart();
        QCOMPARE(m_fixture->delegate().whenQueueIsDone(), u"quit"_s);
    }

    void whatWaitsBehindAStopIsNotDone()
    {
        m_fixture->delegate().setWhenQueueIsDone(u"quit"_s);
        const QSignalSpy allowed(&m_fixture->delegate(), &KXAppDelegate::terminationAllowed);
        m_fixture->fakeTool(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        m_fixture->starter().startProcess(u"Convert"_s);
        m_fixture->starter().startProcess(u"Convert"_s);
        KXQueueController &queue = m_fixture->queue();
        QVERIFY(waitFor([&] { return queue.qJobIsRunning(); }));
        queue.setStopsAfterThisJob(true);
        queue.currentJob()->jobDone();
        QVERIFY(waitFor([&] { return queue.isHeld(); }));
        QTest::qWait(0);
        QVERIFY(allowed.isEmpty());
    }

    void whyTheJobIsPausedIsTold()
    {
        m_fixture->fakeTool(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        m_fixture->starter().startProcess(u"Convert"_s);
        QVERIFY(waitFor([this] { return m_fixture->queue().qJobIsRunning(); }));
        QSignalSpy notes(&m_fixture->delegate(), &KXAppDelegate::noteWorthy);
        m_fixture->queue().pauseFor(u"No room."_s);
        QCOMPARE(notes.takeFirst().constFirst().toString(), u"Paused: No room. Resume lets the job go on."_s);
        m_fixture->queue().pauseQueueButton(u"Resume"_s);
        QVERIFY(notes.isEmpty());
    }

private:
    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(WhenDoneTest)
#include "WhenDoneTest.moc"

// Which jobs the start buttons make of the current file and of the open files behind it.
#include "app/JobStarter.h"

#include "support/TestMain.h"
#include "support/app/AppFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;
using support::convertible;
using support::soundAlone;

namespace {

constexpr int allTracks = 2;     // the third preset of tracks
constexpr int extractTracks = 1; // the second preset of settings

} // namespace

class JobStarterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>();
        m_fixture->fakeTool(u"ffmpeg/ffmpeg"_s, {u"hang"_s}); // whatever starts stays in the queue
        m_fixture->fakeTool(u"mkvtoolnix/mkvextract"_s, {u"hang"_s});
        m_fixture->fakeTool(u"mkvtoolnix/mkvmerge"_s, {u"hang"_s});
        m_fixture->presets().setSelectionMethodIndex(allTracks);
    }
    void cleanup() { m_fixture.reset(); }

    void jobTypeByTabTitleAndPreset_data()
    {
        QTest::addColumn<QString>("tab");
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("preset");
        QTest::addColumn<QString>("jobType"); // of the job
        QTest::addColumn<QString>("left");    // what the selection has then
        const auto row = [](const char *name, const char *tab, const char *title, int preset,
                            const char *jobType, const char *left) {
            QTest::newRow(name) << QString::fromLatin1(tab) << QString::fromLatin1(title) << preset
                                << QString::fromLatin1(jobType) << QString::fromLatin1(left);
        };
        row("join", "Edit Files", "Join", 0, "MKV Joining", "MKV Joining");
        row("split", "Edit Files", "Split", 0, "MKV Splitting", "MKV Splitting");
        row("re-mux", "Edit Files", "Re-Mux", 0, "MKV Remux", "MKV Remux");
        row("another title leaves the type", "Edit Files", "Convert", 0, "MKV Joining", "MKV Joining");
        row("convert", "MKV", "Convert", 0, "MKV Conversion", "MKV Conversion");
        row("any other title converts", "MKV", "Join", 0, "MKV Conversion", "MKV Conversion");
        row("extract", "MKV", "Extract", 0, "MKV Track Extraction", "MKV Track Extraction");
        row("send", "MKV", "Send", 0, "Send To Lintwick", "Send To Lintwick");
        // The selection keeps the type it had before: meant.
        row("the preset extracts", "MKV", "Convert", extractTracks, "MKV Track Extraction", "MKV Joining");
        row("extract with that preset", "MKV", "Extract", extractTracks, "MKV Track Extraction",
            "MKV Track Extraction");
        row("send with that preset", "MKV", "Send", extractTracks, "Send To Lintwick", "Send To Lintwick");
        // Both names are compared as they stand: meant.
        row("a tab in lower case", "edit files", "Join", 0, "MKV Conversion", "MKV Conversion");
    }

    void jobTypeByTabTitleAndPreset()
    {
        QFETCH(QString, tab);
        QFETCH(QString, title);
        QFETCH(int, preset);
        QFETCH(QString, jobType);
        QFETCH(QString, left);
        open({convertible(file(u"a.mkv"_s))});
        m_fixture->controller().setCurrentTab(tab);
        m_fixture->presets().setSettingMethodIndex(preset);
        const SelectionPointer selection = m_fixture->controller().currentSelection();
        selection->setEditFilesURLsList({m_fixture->scratch().url(u"a.mkv"_s)});
        selection->setJobType(u"MKV Joining"_s);
        m_fixture->starter().startProcess(title);
        QCOMPARE(types(), QStringList{jobType});
        QCOMPARE(selection->jobType(), left);
    }

    void aFieldThatIsEditedGivesItsValueFirst()
    {
        open({convertible(file(u"a.mkv"_s))});
        connect(&m_fixture->starter(), &app::JobStarter::editingEndWanted, this,
                [this] { m_fixture->controller().currentSelection()->setUserWidth(u"640"_s); });
        m_fixture->starter().startProcess(u"Convert"_s);
        QCOMPARE(m_fixture->queue().qJobList().constFirst()->jobSelection()->userWidth(), u"640"_s);
    }

    void aRunningJobIsNoReasonNotToStartAnother()
    {
        open({convertible(file(u"a.mkv"_s))});
        m_fixture->starter().startProcess(u"Convert"_s);
        m_fixture->queue().manageQueue();
        QVERIFY(m_fixture->queue().qJobIsRunning());
        m_fixture->starter().startProcess(u"Convert"_s);
        QCOMPARE(m_fixture->jobs().size(), 2);
        QCOMPARE(m_fixture->queue().qJobList().constLast()->jobStatus(), u"Queued"_s);
    }

    void anEmptyOpenQueueStartsNothing_data()
    {
        QTest::addColumn<QString>("title");
        QTest::newRow("Convert") << u"Convert"_s;
        QTest::newRow("Extract") << u"Extract"_s;
    }

    void anEmptyOpenQueueStartsNothing()
    {
        QFETCH(QString, title);
        open({convertible(file(u"a.mkv"_s))});
        m_fixture->openQueue().takeSelected(); // the file is current all the same
        QVERIFY(m_fixture->controller().canConvert());
        m_fixture->starter().startProcess(title);
        QVERIFY(m_fixture->jobs().isEmpty());
        QVERIFY(!m_fixture->starter().isFinishing());
    }

    void oneVideoHasToPassItsCheck_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("hasVideo");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("jobs");
        const QStringList none;
        QTest::newRow("convert") << u"a.mp4"_s << true << u"Convert"_s
                                 << QStringList{u"MKV Conversion a.mp4"_s};
        QTest::newRow("convert without video") << u"a.mkv"_s << false << u"Convert"_s << none;
        QTest::newRow("extract of MKV")
            << u"a.mkv"_s << false << u"Extract"_s << QStringList{u"MKV Track Extraction a.mkv"_s};
        QTest::newRow("extract of another kind") << u"a.mp4"_s << true << u"Extract"_s << none;
    }

    void oneVideoHasToPassItsCheck()
    {
        QFETCH(QString, name);
        QFETCH(bool, hasVideo);
        QFETCH(QString, title);
        QFETCH(QStringList, jobs);
        const QString path = file(name);
        open({hasVideo ? convertible(path) : soundAlone(path)});
        m_fixture->starter().startProcess(title);
        QCOMPARE(m_fixture->jobs(), jobs);
        QCOMPARE(m_fixture->openNames(), QStringList{name}); // it stays open
        QVERIFY(m_fixture->alerts().shown().isEmpty());
        QVERIFY(!m_fixture->starter().isFinishing());
    }

    void sendQueuesExactlyOneJobWhateverTheOpenQueueHolds_data()
    {
        QTest::addColumn<int>("files");
        QTest::newRow("none") << 0;
        QTest::newRow("one") << 1;
        QTest::newRow("three") << 3;
    }

    void sendQueuesExactlyOneJobWhateverTheOpenQueueHolds()
    {
        QFETCH(int, files);
        QList<std::pair<QString, TrackList>> films;
        for (int i = 0; i < std::max(files, 1); ++i)
            films.append(convertible(file(u"%1.mkv"_s.arg(i))));
        open(films);
        if (files == 0)
            m_fixture->openQueue().takeSelected();
        m_fixture->starter().startProcess(u"Send"_s);
        QCOMPARE(m_fixture->jobs(), QStringList{u"Send To Lintwick 0.mkv"_s});
        QVERIFY(!m_fixture->starter().isFinishing());
        QCOMPARE(m_fixture->openNames().size(), files);
    }

    void allOfThreeBecomeJobsAndTheLastStaysCurrent()
    {
        open({convertible(file(u"1.mkv"_s)), convertible(file(u"2.mkv"_s)), convertible(file(u"3.mkv"_s))});
        QSignalSpy queued(&m_fixture->starter(), &app::JobStarter::jobQueued);
        QSignalSpy finishing(&m_fixture->starter(), &app::JobStarter::finishingChanged);
        m_fixture->starter().startProcess(u"Convert"_s);
        QCOMPARE(m_fixture->jobs(), QStringList{u"MKV Conversion 1.mkv"_s}); // the others follow
        QCOMPARE(m_fixture->openNames(), (QStringList{u"2.mkv"_s, u"3.mkv"_s}));
        QVERIFY(m_fixture->starter().isFinishing());
        m_fixture->starter().startProcess(u"Convert"_s); // pressed again meanwhile
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        QCOMPARE(m_fixture->jobs(), (QStringList{u"MKV Conversion 1.mkv"_s, u"MKV Conversion 2.mkv"_s,
                                                 u"MKV Conversion 3.mkv"_s}));
        QCOMPARE(m_fixture->openNames(), QStringList{u"3.mkv"_s});
        QCOMPARE(m_fixture->openQueue().selectedRow(), 0);
        QCOMPARE(m_fixture->file().theFileName(), u"3.mkv"_s);
        QVERIFY(!m_fixture->openQueue().canOpenQueuePopover());
        QCOMPARE(queued.size(), 2);
        QCOMPARE(finishing.size(), 2);
    }

    void theOthersFollowAfterTheNamedTime()
    {
        QCOMPARE(app::JobStarter::finishMilliseconds, 400);
        open({convertible(file(u"1.mkv"_s)), convertible(file(u"2.mkv"_s))});
        m_fixture->starter().startProcess(u"Convert"_s);
        QElapsedTimer clock;
        clock.start();
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        QVERIFY(clock.elapsed() >= 350); // a coarse timer may be early by a twentieth
    }

    void theSecondOfThreeThatCannotBeConvertedStaysAndBecomesCurrent()
    {
        open({convertible(file(u"1.mkv"_s)), soundAlone(file(u"2.mkv"_s)), convertible(file(u"3.mkv"_s))});
        m_fixture->starter().startProcess(u"Convert"_s);
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        QCOMPARE(m_fixture->jobs(), (QStringList{u"MKV Conversion 1.mkv"_s, u"MKV Conversion 3.mkv"_s}));
        QCOMPARE(m_fixture->openNames(), QStringList{u"2.mkv"_s});
        QCOMPARE(m_fixture->file().theFileName(), u"2.mkv"_s);
        QVERIFY(m_fixture->alerts().shown().isEmpty()); // left without a message
    }

    void theCurrentOneThatCannotBeConvertedStaysAndTheOthersFollow()
    {
        open({soundAlone(file(u"1.mkv"_s)), convertible(file(u"2.mkv"_s)), soundAlone(file(u"3.mkv"_s))});
        m_fixture->starter().startProcess(u"Convert"_s);
        QVERIFY(m_fixture->jobs().isEmpty());
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        QCOMPARE(m_fixture->jobs(), QStringList{u"MKV Conversion 2.mkv"_s});
        QCOMPARE(m_fixture->openNames(), (QStringList{u"1.mkv"_s, u"3.mkv"_s}));
        QCOMPARE(m_fixture->openQueue().selectedRow(), 0);
        QCOMPARE(m_fixture->file().theFileName(), u"1.mkv"_s);
        QVERIFY(m_fixture->openQueue().canOpenQueuePopover());
    }

    void eachVideoThatIsNotStartedIsNamedOnce_data()
    {
        QTest::addColumn<int>("files");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("one") << 1 << QStringList{u"0.mkv"_s};
        QTest::newRow("three") << 3 << QStringList{u"0.mkv"_s, u"1.mkv"_s, u"2.mkv"_s};
    }

    void eachVideoThatIsNotStartedIsNamedOnce()
    {
        QFETCH(int, files);
        QFETCH(QStringList, names);
        QList<std::pair<QString, TrackList>> films;
        for (int i = 0; i < files; ++i)
            films.append(soundAlone(file(u"%1.mkv"_s.arg(i))));
        open(films);
        QStringList named;
        connect(&m_fixture->starter(), &app::JobStarter::notStarted, this,
                [&named](const QString &name) { named.append(name); });
        m_fixture->starter().startProcess(u"Convert"_s);
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        disconnect(&m_fixture->starter(), nullptr, this, nullptr);
        QCOMPARE(named, names);
        QCOMPARE(m_fixture->openNames().size(), files);
    }

    void theSecondOneIsStartedWhereItIsCurrent()
    {
        open({convertible(file(u"1.mkv"_s)), convertible(file(u"2.mkv"_s)), soundAlone(file(u"3.mkv"_s))});
        m_fixture->openQueue().select(1);
        m_fixture->starter().startProcess(u"Convert"_s);
        QCOMPARE(m_fixture->jobs(), QStringList{u"MKV Conversion 2.mkv"_s});
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        QCOMPARE(m_fixture->jobs(), (QStringList{u"MKV Conversion 2.mkv"_s, u"MKV Conversion 1.mkv"_s}));
        QCOMPARE(m_fixture->openNames(), QStringList{u"3.mkv"_s});
    }

    void extractingSeveralAsksWhetherTracksCanBeEdited()
    {
        open({convertible(file(u"1.mkv"_s)), convertible(file(u"2.mp4"_s)), soundAlone(file(u"3.mkv"_s))});
        m_fixture->starter().startProcess(u"Extract"_s);
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        QCOMPARE(m_fixture->jobs(),
                 (QStringList{u"MKV Track Extraction 1.mkv"_s, u"MKV Track Extraction 3.mkv"_s}));
        QCOMPARE(m_fixture->openNames(), QStringList{u"2.mp4"_s});
    }

    void presetsAreAppliedToTheOthersUnlessEachWasChosenByHand_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QStringList>("jobs");
        QTest::newRow("presets") << 0 << QStringList{u"MKV Conversion 1.mkv"_s, u"MKV Conversion 2.mkv"_s};
        QTest::newRow("by hand") << 1 << QStringList{u"MKV Conversion 1.mkv"_s};
    }

    void presetsAreAppliedToTheOthersUnlessEachWasChosenByHand()
    {
        QFETCH(int, index);
        QFETCH(QStringList, jobs);
        m_fixture->presets().setSelectionMethodIndex(0);
        open({convertible(file(u"1.mkv"_s)), convertible(file(u"2.mkv"_s))});
        m_fixture->controller().setOpenQueueMatrixIndex(index);
        m_fixture->presets().setSelectionMethodIndex(allTracks); // ticks those of the current file
        m_fixture->starter().startProcess(u"Convert"_s);
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        QCOMPARE(m_fixture->jobs(), jobs);
    }

    void theRulesAreAskedAnewForEachFile()
    {
        open({soundAlone(file(u"1.mkv"_s)), soundAlone(file(u"2.mkv"_s))});
        m_fixture->controller().setOpenQueueMatrixIndex(1);
        m_fixture->controller().setCanConvert(true); // what an older state said
        m_fixture->starter().finishStartProcess(u"MKV Conversion"_s);
        QVERIFY(m_fixture->jobs().isEmpty());
    }

    void theJobHoldsItsOwnFilesTracks()
    {
        open({convertible(file(u"1.mkv"_s)), convertible(file(u"2.mkv"_s))});
        m_fixture->starter().startProcess(u"Convert"_s);
        QTRY_VERIFY(!m_fixture->starter().isFinishing());
        const KXSelection &second = *m_fixture->queue().qJobList().at(1)->jobSelection();
        QCOMPARE(second.videoTrackFilePath(), m_fixture->path(u"2.mkv"_s));
        QCOMPARE(second.jobType(), u"MKV Conversion"_s);
        QCOMPARE(second.trackList().size(), 2);
    }

private:
    /// An empty file, in a folder that is made; answers its path.
    QString file(const QString &name) const { return m_fixture->scratch().write(name, "film"); }
    void open(const QList<std::pair<QString, TrackList>> &films) { m_fixture->openByHand(films); }
    QStringList types() const
    {
        QStringList types;
        for (const JobPointer &job : m_fixture->queue().qJobList())
            types.append(job->jobType());
        return types;
    }

    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(JobStarterTest)
#include "JobStarterTest.moc"

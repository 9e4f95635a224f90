// How the program ends, starts again, and how a second start meets the first.
#include "jobs/JobRecord.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QDirIterator>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTabBar>
#include <QTimer>

#include <csignal>
#include <functional>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

namespace {

/// A program of its own, with no more than this test knows of it.
class Started final
{
public:
    Started(const QString &program, const QStringList &words, const QProcessEnvironment &environment)
    {
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(program, words);
        if (!m_process.waitForStarted())
            qFatal("%s does not start.", qPrintable(program));
    }
    ~Started()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(Started)

    bool isRunning() const { return m_process.state() == QProcess::Running; }
    bool ends()
    {
        return waitFor([this] { return m_process.state() == QProcess::NotRunning; });
    }
    bool endedWell() const
    {
        return m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    }
    void signal(int number) const { ::kill(static_cast<pid_t>(m_process.processId()), number); }

private:
    QProcess m_process;
};

/// Starts a conversion that takes some seconds; answers the process that works on it, 0 when none came.
qint64 convertSlowly(WindowFixture &fixture, const QString &film)
{
    fixture.pick("PresetSelectionsPopUp", u"All Tracks"_s);
    if (!fixture.open({film}))
        return 0;
    fixture.pick("DevicePopUp", u"iPhone 4"_s);
    choose(fixture, "TheVideoMatrix2");
    fixture.click("ConvertButton");
    QList<qint64> found;
    waitFor([&] {
        found = processesOn("ffmpeg", film);
        return !found.isEmpty();
    });
    return found.value(0);
}

/// Runs the program, lets its user do that, and answers whether it ended then.
bool endsBy(const std::function<void()> &deed)
{
    QTimer::singleShot(0, qApp, deed);
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, qApp, [] { QCoreApplication::exit(1); });
    patience.start(support::patience);
    return QApplication::exec() == 0;
}

QString readyFor(const QString &film)
{
    return QFileInfo(film).path() + u"/ready"_s;
}

/// What this test's own program does when it is started to be ended: it converts a film until then, and the
/// same waits once more. A file tells when it has begun and waits for signals.
int convertUntilTheEnd(const QString &film, bool paused)
{
    WindowFixture fixture;
    fixture.start();
    if (convertSlowly(fixture, film) == 0)
        return 1;
    fixture.click("ConvertButton");
    if (!waitFor([&] { return fixture.queue().qJobList().size() == 2; }))
        return 1;
    if (paused)
        fixture.queue().pauseQueueButton(u"Pause"_s);
    QTimer::singleShot(0, qApp, [&] { support::writeContent(readyFor(film), {}); });
    const int status = QApplication::exec();
    fixture.restart(); // the program goes as it does at the end of main()
    return status;
}

/// The same with three films and the settings of another one, until it is killed.
int convertThreeUntilKilled(const QString &settings, const QString &folder)
{
    app::Program::Options options;
    options.defaultsPath = settings;
    window::WindowProgram program(options);
    program.start({});
    if (!waitFor([&] { return program.isReady(); }))
        return 1;
    QStringList films;
    for (const char *name : {"1.mkv", "2.mkv", "3.mkv"})
        films.append(folder + u'/' + QLatin1String(name));
    KXAppDelegate &delegate = program.delegate();
    delegate.program().presets().setSelectionMethodIndex(1);
    delegate.filesRequested(films);
    if (!waitFor([&] { return delegate.openQueue().openFileCount() == 3 && !delegate.intake().isBusy(); }))
        return 2;
    delegate.program().selectionController().byHand(&KXSelectionController::setVideoMatrixIndex, 2);
    delegate.starter().startProcess(u"Convert"_s);
    if (!waitFor([&] {
            return delegate.program().queue().qJobList().size() == 3 &&
                   !processesOn("ffmpeg", films.constFirst()).isEmpty();
        }))
        return 3;
    support::writeContent(folder + u"/ready"_s, {});
    return QApplication::exec();
}

} // namespace

TESSARAY_ROLE("--convert-three", convertThreeUntilKilled(words.value(1), words.value(2)))

class LifecycleTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        storePresets();
    }
    void cleanup() { m_fixture.reset(); }

    void quittingWhileIdleKeepsTabAndPresets_data()
    {
        QTest::addColumn<bool>("byMenu");
        QTest::newRow("command Quit") << true;
        QTest::newRow("the window is closed") << false;
    }

    void quittingWhileIdleKeepsTabAndPresets()
    {
        QFETCH(bool, byMenu);
        m_fixture->start();
        m_fixture->chooseTab(1);
        m_fixture->chooseTab(0);
        m_fixture->pick("PresetSelectionsPopUp", u"French AC3"_s);
        m_fixture->pick("PresetSettingsPopUp", u"Archive"_s);
        QVERIFY(endsBy([&] {
            if (byMenu)
                m_fixture->command(u"File"_s, u"Quit"_s);
            else
                QTest::keyClick(&m_fixture->window(), Qt::Key_W, Qt::ControlModifier);
        }));
        QVERIFY(!m_fixture->hasAlert());
        m_fixture->restart();
        QCOMPARE(m_fixture->find<QComboBox>("PresetSelectionsPopUp")->currentText(), u"French AC3"_s);
        QCOMPARE(m_fixture->find<QComboBox>("PresetSettingsPopUp")->currentText(), u"Archive"_s);
        QCOMPARE(m_fixture->find<QTabBar>("Tabs")->currentIndex(), 0);
    }

    void theOtherTabComesBackToo()
    {
        m_fixture->start();
        m_fixture->pick("PresetSelectionsPopUp", u"Everything"_s);
        m_fixture->chooseTab(1);
        QVERIFY(endsBy([&] { m_fixture->command(u"File"_s, u"Quit"_s); }));
        m_fixture->restart();
        QCOMPARE(m_fixture->find<QTabBar>("Tabs")->currentIndex(), 1);
        QVERIFY(m_fixture->find<QWidget>("JoinButton")->isVisible());
        QCOMPARE(m_fixture->find<QComboBox>("PresetSelectionsPopUp")->currentText(), u"Everything"_s);
    }

    void toolTipsThatWereSwitchedOffStayOff()
    {
        m_fixture->start();
        QVERIFY(!m_fixture->find<QWidget>("ConvertTrackTable")->toolTip().isEmpty());
        m_fixture->command(u"Help"_s, u"Hide Tool Tips"_s);
        QVERIFY(m_fixture->find<QWidget>("ConvertTrackTable")->toolTip().isEmpty());
        m_fixture->restart();
        QVERIFY(m_fixture->find<QWidget>("ConvertTrackTable")->toolTip().isEmpty());
        QVERIFY(m_fixture->find<QWidget>("QueueTable")->toolTip().isEmpty());
        m_fixture->command(u"Help"_s, u"Show Tool Tips"_s);
        QVERIFY(!m_fixture->find<QWidget>("QueueTable")->toolTip().isEmpty());
    }

    void quittingWithARunningJobAsks_data()
    {
        QTest::addColumn<int>("button");
        QTest::newRow("OK ends job and program") << 0;
        QTest::newRow("Cancel leaves the job paused") << 1;
    }

    void quittingWithARunningJobAsks()
    {
        QFETCH(int, button);
        m_fixture->start();
        QSignalSpy ends(&m_fixture->delegate(), &KXAppDelegate::terminationAllowed);
        const qint64 ffmpeg = convertSlowly(*m_fixture, m_fixture->film(support::longMkv(120)));
        QVERIFY(ffmpeg > 0);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Q, Qt::ControlModifier);
        QVERIFY(m_fixture->waitForAlert(u"Videos are still being processed.  Quit anyways?"_s));
        QTRY_COMPARE(support::stateOf(ffmpeg), 'T');
        if (button == 0) {
            QVERIFY(endsBy([&] { m_fixture->pressAlertButton(0); }));
            QTRY_VERIFY(!support::runs(ffmpeg));
            QTRY_VERIFY(!QFile::exists(m_fixture->path(u"a.m4v"_s)));
            return;
        }
        m_fixture->pressAlertButton(1);
        QTest::qWait(500);
        QCOMPARE(ends.size(), 0);
        QCOMPARE(support::stateOf(ffmpeg), 'T'); // meant: who wants it to go on says so
        QCOMPARE(m_fixture->find<QAbstractButton>("QueuePauseButton")->text(), u"Resume"_s);
        m_fixture->click("QueuePauseButton");
        QTRY_VERIFY(support::stateOf(ffmpeg) != 'T');
    }

    /// Only a start unpacks, and the first one takes seconds.
    void theWindowAnswersWhileTheToolsAreUnpacked()
    {
        support::installScript(m_fixture->path(u"slow/unzip"_s), u"sleep 0.5"_s);
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(m_fixture->path(u"slow"_s)) + ':' + path);
        const auto restore = qScopeGuard([&] { qputenv("PATH", path); });
        int beats = 0;
        QTimer heart;
        connect(&heart, &QTimer::timeout, this, [&] { ++beats; });
        heart.start(10);
        m_fixture->start(); // returns when the tools are there
        QVERIFY2(beats >= 20, qPrintable(QString::number(beats)));
        QVERIFY(m_fixture->program().isReady());
    }

    void aSecondStartHandsItsFilesOver()
    {
        const QString film = m_fixture->film(support::longMkv(2), u"second, it's.mkv"_s);
        const QString program = programWithRecorders();
        const QStringList words{u"--defaults"_s, m_fixture->path(u"settings/defaults.json"_s)};
        Started first(program, words, m_environment);
        QVERIFY(waitFor([this] {
            return !QDir(m_fixture->path(u"run"_s)).entryList({u"tessaray-*"_s}, QDir::System).isEmpty();
        }));
        QVERIFY(!wasProbed(film));
        Started second(program, words + QStringList{film}, m_environment);
        QVERIFY(second.ends());
        QVERIFY(second.endedWell());
        QVERIFY(waitFor([&] { return wasProbed(film); }));
        QVERIFY(first.isRunning());
        first.signal(SIGTERM);
        QVERIFY(first.ends());
        QVERIFY(first.endedWell());
    }

    void aSignalEndsTheProgramAndItsJob_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("terminate") << SIGTERM;
        QTest::newRow("interrupt") << SIGINT;
    }

    void aSignalEndsTheProgramAndItsJob()
    {
        QFETCH(int, number);
        const QString film = m_fixture->film(support::longMkv(120));
        Started converting(QCoreApplication::applicationFilePath(), {u"--convert"_s, film},
                           QProcessEnvironment::systemEnvironment());
        QVERIFY(waitFor([&] { return QFile::exists(readyFor(film)); }));
        converting.signal(number);
        QVERIFY(converting.ends());
        QVERIFY(converting.endedWell());
        QTRY_VERIFY(processesOn("ffmpeg", film).isEmpty());
        QCOMPARE(QDir(m_fixture->path()).entryList({u"a.*"_s}, QDir::Files), QStringList{u"a.mkv"_s});
    }

    void noToolOutlivesTheProgram_data()
    {
        QTest::addColumn<int>("number"); // 0: its display goes
        QTest::addColumn<QString>("state");
        QTest::newRow("killed") << SIGKILL << u"running"_s;
        QTest::newRow("killed while paused") << SIGKILL << u"paused"_s;
        QTest::newRow("aborted") << SIGABRT << u"running"_s;
        QTest::newRow("without its display") << 0 << u"running"_s;
        QTest::newRow("without its display while paused") << 0 << u"paused"_s;
    }

    void noToolOutlivesTheProgram()
    {
        QFETCH(int, number);
        QFETCH(QString, state);
        QProcess display;
        display.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"3200x2400x24"_s});
        QVERIFY(waitFor([&] { return display.canReadLine(); }));
        const QString film = m_fixture->film(support::longMkv(120));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DISPLAY"_s, u':' + QString::fromLatin1(display.readLine().trimmed()));
        environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
        environment.insert(u"TMPDIR"_s, m_fixture->path(u"tmp"_s)); // what it leaves goes with this test
        QDir().mkpath(m_fixture->path(u"tmp"_s));
        Started converting(QCoreApplication::applicationFilePath(), {u"--convert"_s, film, state},
                           environment);
        QVERIFY(waitFor([&] { return QFile::exists(readyFor(film)); }));
        QVERIFY(!processesOn("ffmpeg", film).isEmpty());
        number == 0 ? display.kill() : converting.signal(number);
        QVERIFY(converting.ends());
        QVERIFY(waitFor([&] { return processesOn("ffmpeg", film).isEmpty(); }));
        QVERIFY(waitFor([&] { return leftIn(m_fixture->path()).isEmpty(); }));
        QVERIFY(waitFor([&] { return leftIn(m_fixture->path(u"tmp"_s)).isEmpty(); }));
        QVERIFY(number != 0 || hasStoredSettings(m_fixture->path(u"tmp"_s)));
        const QString name = QFileInfo(film).fileName();
        QCOMPARE(storedJobs(m_fixture->path(u"tmp"_s)), QStringList({name + u" runs"_s, name + u" waits"_s}));
        display.kill();
        display.waitForFinished();
    }

    void afterAKillTheJobsStandThereAndRunAgain()
    {
        for (const QString &name : {u"1.mkv"_s, u"2.mkv"_s, u"3.mkv"_s})
            m_fixture->film(support::longMkv(name == u"1.mkv"_s ? 120 : 2), name);
        Started converting(
            QCoreApplication::applicationFilePath(),
            {u"--convert-three"_s, m_fixture->path(u"settings/defaults.json"_s), m_fixture->path()},
            QProcessEnvironment::systemEnvironment());
        QVERIFY(waitFor([&] { return QFile::exists(m_fixture->path(u"ready"_s)); }));
        converting.signal(SIGKILL);
        QVERIFY(converting.ends());
        QVERIFY(waitFor([&] { return processesOn("ffmpeg", m_fixture->path(u"1.mkv"_s)).isEmpty(); }));
        m_fixture->start();
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList({u"1.mkv"_s, u"2.mkv"_s, u"3.mkv"_s}));
        QCOMPARE(m_fixture->rows("QueueTable", Status),
                 QStringList({u"Interrupted"_s, u"Queued"_s, u"Queued"_s}));
        QTest::qWait(300);
        QCOMPARE(m_fixture->rows("QueueTable", Status).at(1), u"Queued"_s); // nothing starts by itself
        QCOMPARE(m_fixture->queue().runJobAgain(0), 2);
        QCOMPARE(m_fixture->rows("QueueTable", Status), QStringList(3, u"Queued"_s));
        QVERIFY(m_fixture->queue().moveJob(2, 0));
        m_fixture->click("QueuePauseButton"); // Resume
        QVERIFY(waitForStatus(*m_fixture, 0, u"Running"_s));
        m_fixture->queue().stopCurrentJob();
        QVERIFY(m_fixture->waitForJobs());
        QVERIFY(QFile::exists(m_fixture->path(u"2.m4v"_s)) && QFile::exists(m_fixture->path(u"3.m4v"_s)));
    }

private:
    /// Work folders, claims, temporary folders.
    static QStringList leftIn(const QString &folder)
    {
        return QDir(folder).entryList({u".tessaray-*"_s, u"tessaray-??????"_s},
                                      QDir::AllEntries | QDir::Hidden);
    }

    /// What is stored on the way out: the tab and the presets.
    static bool hasStoredSettings(const QString &folder)
    {
        QDirIterator files(folder, {u"defaults.json"_s}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (file.open(QIODevice::ReadOnly) && file.readAll().contains("guiSettingsDictionary"))
                return true;
        }
        return false;
    }

    /// What the next start is told of the queue.
    static QStringList storedJobs(const QString &folder)
    {
        QStringList found;
        QDirIterator files(folder, {u"*.json"_s}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly) || !QFileInfo(file).absolutePath().endsWith(u".queue"_s))
                continue;
            const jobs::ReadRecord read = jobs::recordFrom(file.readAll());
            const bool waits = read.record.state == jobs::JobRecord::State::Waiting;
            found.append(read.record.job.fileName + (waits ? u" waits"_s : u" runs"_s));
        }
        found.sort();
        return found;
    }

    /// A copy of the finished program whose tools write down how they were started.
    QString programWithRecorders()
    {
        const QString build = QStringLiteral(TESSARAY_BUILD_DIR);
        for (const QString &folder :
             {u"app/bin"_s, u"app/Resources/ffmpeg"_s, u"app/Resources/mkvtoolnix"_s, u"run"_s})
            QDir().mkpath(m_fixture->path(folder));
        for (const QString &tool : {u"ffmpeg/ffmpeg"_s, u"ffmpeg/ffprobe"_s, u"mkvtoolnix/mkvmerge"_s,
                                    u"mkvtoolnix/mkvextract"_s, u"mkvtoolnix/mkvinfo"_s})
            QFile::link(build + u"/tests/recorder"_s, m_fixture->path(u"app/Resources/"_s + tool));
        const QString program = m_fixture->path(u"app/bin/tessaray"_s);
        if (!QFile::copy(build + u"/bin/tessaray"_s, program))
            qFatal("The program can't be copied.");
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(u"RECORDER_FILE"_s, m_fixture->path(u"recorded"_s));
        QFile::setPermissions(m_fixture->path(u"run"_s),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        m_environment.insert(u"XDG_RUNTIME_DIR"_s, m_fixture->path(u"run"_s));
        return program;
    }

    bool wasProbed(const QString &film) const
    {
        const auto runs = support::FakeTool::recordedRuns(m_fixture->path(u"recorded"_s));
        return std::any_of(runs.begin(), runs.end(), [&](const support::FakeTool::Run &run) {
            return run.program == "ffprobe" && run.arguments.contains(film.toUtf8());
        });
    }

    void storePresets()
    {
        QDir().mkpath(m_fixture->path(u"settings"_s));
        QFile file(m_fixture->path(u"settings/defaults.json"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(support::storedPresets(support::someRules(), support::someSettings()));
    }

    QProcessEnvironment m_environment;
    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(LifecycleTest)
TESSARAY_ROLE("--convert", convertUntilTheEnd(words.value(1), words.contains(u"paused"_s)))
#include "LifecycleTest.moc"

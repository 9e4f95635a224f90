// Tracks are chosen, jobs are started, and the drawer shows and ends them.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/TestPlaces.h"
#include "window/QueueDriver.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace driver;
using support::codecsOf;
using support::shownStreams;
using support::waitFor;

/// Stands in for the file manager.
class OpenedFolders final : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl &url) { urls.append(url); }
};

class ConvertingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void deviceAndTypedBitRateReachTheFile()
    {
        openWith({support::longMkv(8)});
        tickCell(*m_fixture, 0);
        tickCell(*m_fixture, 1);
        m_fixture->pick("DevicePopUp", u"iPhone 4"_s);
        choose(*m_fixture, "TheVideoMatrix1");
        m_fixture->type("VidBitRateField", u"150"_s);
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(m_fixture->rows("QueueTable", Status), QStringList{u"Completed"_s});
        const auto streams = support::streamsOf(m_fixture->path(u"1.m4v"_s));
        QCOMPARE(codecsOf(m_fixture->path(u"1.m4v"_s)), u"h264 aac"_s);
        const int rate = streams.constFirst().value(u"bit_rate"_s).toString().toInt();
        QVERIFY2(rate > 75000 && rate < 225000, qPrintable(QString::number(rate)));
    }

    void presetsChooseTracksAndSettings()
    {
        storePresets();
        m_fixture->start();
        m_fixture->pick("PresetSelectionsPopUp", u"English first"_s);
        m_fixture->pick("PresetSettingsPopUp", u"Phone"_s);
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        QCOMPARE(m_fixture->controller().currentSelection()->trackList().size(), 3); // with the only srt
        QCOMPARE(m_fixture->find<QComboBox>("DevicePopUp")->currentText(), u"iPhone 4"_s);
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(shownStreams(m_fixture->path(u"a.m4v"_s)),
                 QStringList({u"h264 320"_s, u"aac 2 eng"_s, u"mov_text eng"_s}));
    }

    void threeOpenFilesBecomeThreeJobs()
    {
        storePresets();
        m_fixture->start();
        m_fixture->pick("PresetSelectionsPopUp", u"Everything"_s);
        QVERIFY(m_fixture->open(films(3, support::textMp4(), u".mp4"_s)));
        m_fixture->pick("DevicePopUp", u"MKV"_s);
        m_fixture->click("ConvertButton");
        QVERIFY(waitFor([this] { return m_fixture->rows("QueueTable", File).size() == 3; }));
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList({u"1.mp4"_s, u"2.mp4"_s, u"3.mp4"_s}));
        QCOMPARE(m_fixture->rows("QueueTable", Type), QStringList(3, u"MKV Conversion"_s));
        QTRY_VERIFY(!m_fixture->isEnabled("OpenFilesQueueButton")); // one file is left to look at
        QVERIFY(m_fixture->waitForJobs());
        for (const QString &name : {u"1"_s, u"2"_s, u"3"_s})
            QCOMPARE(codecsOf(m_fixture->path(name + u".mkv"_s)), u"h264 aac subrip"_s);
        QVERIFY(m_fixture->find<QLabel>("StatusLine")->text().contains(u"3"_s));
    }

    void nothingIsConvertedWithoutAVideoTrack()
    {
        openWith({support::fullMkv()});
        tickCell(*m_fixture, 1);
        QVERIFY(!m_fixture->isEnabled("ConvertButton"));
        QVERIFY(m_fixture->find<QWidget>("ConvertButton")->toolTip().contains(u"exactly one video track"_s));
        tickCell(*m_fixture, 0);
        QTRY_VERIFY(m_fixture->isEnabled("ConvertButton"));
        tickCell(*m_fixture, 0);
        QTRY_VERIFY(!m_fixture->isEnabled("ConvertButton"));
    }

    void theDrawerShowsHowFarAJobIs()
    {
        m_fixture->start();
        QVERIFY(!m_fixture->find<QDockWidget>("QueueDrawer")->isVisible());
        openSlow(1, 8);
        m_fixture->click("ConvertButton");
        QTRY_VERIFY(m_fixture->find<QDockWidget>("QueueDrawer")->isVisible());
        QVERIFY(waitForStatus(*m_fixture, 0, u"Running"_s));
        QStringList steps;
        int rises = 0;
        QVERIFY(waitFor(
            [&] {
                const QString now = m_fixture->steps(1).value(0);
                if (now.startsWith(u"Pass #1"_s) && steps.value(steps.size() - 1) != now)
                    steps.append(now);
                return steps.size() >= 4;
            },
            60000));
        for (qsizetype i = 1; i < steps.size(); ++i)
            rises += percentageOf(steps.at(i)) > percentageOf(steps.at(i - 1)) ? 1 : 0;
        QVERIFY2(rises == steps.size() - 1, qPrintable(steps.join(u", "_s)));
        QCOMPARE(m_fixture->steps(0), QStringList{u"Video Conversion"_s});
        QVERIFY(m_fixture->find<QLabel>("StatusLine")->text().startsWith(u"1.mkv"_s));
        QCOMPARE(m_fixture->rows("QueueTable", Type), QStringList{u"MKV Conversion"_s});
    }

    void aPausedJobStandsStillAndGoesOn()
    {
        m_fixture->start();
        openSlow(1);
        m_fixture->click("ConvertButton");
        const qint64 ffmpeg = runningFfmpeg(u"1.mkv"_s);
        QVERIFY(ffmpeg > 0);
        m_fixture->click("QueuePauseButton");
        QCOMPARE(m_fixture->find<QAbstractButton>("QueuePauseButton")->text(), u"Resume"_s);
        QTRY_COMPARE(support::stateOf(ffmpeg), 'T');
        QVERIFY(m_fixture->find<QLabel>("StatusLine")->text().startsWith(u"Paused: 1.mkv"_s));
        const auto standsStill = [this] {
            const int before = percentage(*m_fixture);
            QTest::qWait(2500);
            return percentage(*m_fixture) == before;
        };
        QVERIFY(standsStill() || standsStill()); // what was told before the halt may be read after it
        m_fixture->click("QueuePauseButton");
        QCOMPARE(m_fixture->find<QAbstractButton>("QueuePauseButton")->text(), u"Pause"_s);
        QTRY_VERIFY(support::stateOf(ffmpeg) != 'T');
        QVERIFY(m_fixture->waitForJobs(180000));
        QCOMPARE(m_fixture->rows("QueueTable", Status), QStringList{u"Completed"_s});
        QCOMPARE(codecsOf(m_fixture->path(u"1.m4v"_s)), u"h264 aac"_s);
    }

    void aWaitingRowIsDeletedAndNeverRuns()
    {
        m_fixture->start();
        openSlow(2);
        m_fixture->click("ConvertButton");
        QVERIFY(waitFor([this] { return m_fixture->rows("QueueTable", File).size() == 2; }));
        const qint64 ffmpeg = runningFfmpeg(u"1.mkv"_s);
        QVERIFY(ffmpeg > 0);
        deleteRow(*m_fixture, 1);
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList{u"1.mkv"_s});
        QVERIFY(!m_fixture->hasAlert());
        QTRY_VERIFY(support::stateOf(ffmpeg) != 'T'); // it was held only for the moment
        QVERIFY(m_fixture->waitForJobs(180000));
        QVERIFY(QFile::exists(m_fixture->path(u"1.m4v"_s)));
        QVERIFY(!QFile::exists(m_fixture->path(u"2.m4v"_s)));
    }

    void aFinishedRowIsDeletedAndClearTakesTheRest()
    {
        m_fixture->start();
        QVERIFY(m_fixture->open(films(3, support::longMkv(2))));
        chooseForEach(u"MKV"_s);
        m_fixture->click("ConvertButton");
        QVERIFY(waitFor([this] { return m_fixture->rows("QueueTable", File).size() == 3; }));
        QVERIFY(m_fixture->waitForJobs());
        deleteRow(*m_fixture, 1);
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList({u"1.mkv"_s, u"3.mkv"_s}));
        QVERIFY(QFile::exists(m_fixture->path(u"2 (2).mkv"_s)));
        m_fixture->click("QueueClearButton");
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList());
        QTRY_VERIFY(!m_fixture->find<QDockWidget>("QueueDrawer")->isVisible());
    }

    void retryRevealAndClear()
    {
        m_fixture->start();
        QVERIFY(m_fixture->open(films(2, support::longMkv(2))));
        chooseForEach(u"MKV"_s);
        m_fixture->click("ConvertButton");
        QVERIFY(waitFor([this] { return m_fixture->rows("QueueTable", File).size() == 2; }));
        QVERIFY(m_fixture->waitForJobs());
        OpenedFolders opened;
        QDesktopServices::setUrlHandler(u"file"_s, &opened, "open");
        const auto restore = qScopeGuard([] { QDesktopServices::unsetUrlHandler(u"file"_s); });
        pressInRow(0, u"Reveal"_s);
        QCOMPARE(opened.urls, QList<QUrl>{QUrl::fromLocalFile(m_fixture->path())});
        QVERIFY(m_fixture->open({m_fixture->film(support::longMkv(120), u"slow.mkv"_s)}));
        m_fixture->pick("DevicePopUp", u"General"_s);
        choose(*m_fixture, "TheVideoMatrix2");
        m_fixture->click("ConvertButton");
        QVERIFY(waitForStatus(*m_fixture, 2, u"Running"_s));
        m_fixture->click("QueueClearButton"); // what runs stays
        QCOMPARE(m_fixture->rows("QueueTable", Status), QStringList{u"Running"_s});
        QVERIFY(m_fixture->queue().canBringBackCleared());
        m_fixture->queue().stopCurrentJob();
    }

    void aFailedJobIsTriedAgainAtTheEnd()
    {
        m_fixture->start();
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"1.mp4"_s)}));
        m_fixture->pick("PresetSelectionsPopUp", u"First Track"_s);
        QTRY_VERIFY(m_fixture->isEnabled("ConvertButton"));
        takeTools(u"[ -e \"%1\" ] && exit 1; exec \"$(command -v ffmpeg)\" \"$@\""_s.arg(
            m_fixture->path(u"broken"_s)));
        support::writeContent(m_fixture->path(u"broken"_s), {});
        m_fixture->click("ConvertButton");
        QTRY_COMPARE(m_fixture->rows("QueueTable", Status), QStringList{u"Failed"_s});
        QVERIFY(QFile::remove(m_fixture->path(u"broken"_s)));
        pressInRow(0, u"Retry"_s);
        QTRY_COMPARE(m_fixture->rows("QueueTable", Status), QStringList{u"Completed"_s});
        QVERIFY(QFile::exists(m_fixture->path(u"1.m4v"_s)));
    }

    void deletingTheRunningRowAsks_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<bool>("goesOn");
        QTest::newRow("OK stops it") << 0 << false;
        QTest::newRow("Cancel lets it go on") << 1 << true;
    }

    void deletingTheRunningRowAsks()
    {
        QFETCH(int, button);
        QFETCH(bool, goesOn);
        m_fixture->start();
        openSlow(1);
        m_fixture->click("ConvertButton");
        const qint64 ffmpeg = runningFfmpeg(u"1.mkv"_s);
        QVERIFY(ffmpeg > 0);
        deleteRow(*m_fixture, 0);
        QVERIFY(m_fixture->waitForAlert(u"Stop the currently running job?"_s));
        QTRY_COMPARE(support::stateOf(ffmpeg), 'T'); // nothing goes on behind the question
        m_fixture->pressAlertButton(button);
        if (goesOn) {
            QTRY_VERIFY(support::stateOf(ffmpeg) != 'T');
            QVERIFY(m_fixture->waitForJobs(180000));
        }
        QTRY_VERIFY(!support::runs(ffmpeg));
        QCOMPARE(m_fixture->rows("QueueTable", Status), goesOn ? QStringList{u"Completed"_s} : QStringList());
        QTRY_COMPARE(QFile::exists(m_fixture->path(u"1.m4v"_s)), goesOn);
    }

    void burningIntoAVideoThatPassesThroughIsRedAndSaysWhy()
    {
        openWith({support::fullMkv()});
        tick(*m_fixture, {u"h264"_s, u"srt"_s});
        choose(*m_fixture, "TheSubtitleMatrix0");
        auto *passThru = m_fixture->find<QAbstractButton>("TheVideoMatrix0");
        QTRY_VERIFY(isRed(passThru));
        QVERIFY(passThru->toolTip().contains(u"Burning a subtitle needs the video to be re-encoded."_s));
        choose(*m_fixture, "TheVideoMatrix1");
        m_fixture->pick("DevicePopUp", u"General"_s);
        choose(*m_fixture, "TheSubtitleMatrix1");
        QTRY_VERIFY(!isRed(passThru));
        QVERIFY(!passThru->toolTip().contains(u"Burning"_s));
        tick(*m_fixture, {u"ass"_s});
        QTRY_VERIFY(!m_fixture->isEnabled("TheSubtitleMatrix0")); // one at most can be burned
        QVERIFY(m_fixture->find<QWidget>("TheSubtitleMatrix0")->toolTip().contains(u"Only one subtitle"_s));
    }

    void soundThatFewPlayersKnowIsRedAndSaysWhy()
    {
        openWith({support::fullMkv()});
        tick(*m_fixture, {u"h264"_s, u"dts"_s});
        auto *passThru = m_fixture->find<QAbstractButton>("TheAudioMatrix0");
        QTRY_VERIFY(isRed(passThru));
        QVERIFY(passThru->toolTip().contains(u"Most devices play only AAC and AC3"_s));
    }

    void editedTitleAndLanguageReachTheMkv()
    {
        openWith({support::fullMkv()});
        tick(*m_fixture, {u"h264"_s, u"ac3"_s, u"aac"_s, u"srt"_s});
        writeTitle(*m_fixture, rowOf(*m_fixture, u"ac3"_s), u"The 'first', 100%"_s);
        pickLanguage(*m_fixture, rowOf(*m_fixture, u"aac"_s), u"Italian"_s);
        m_fixture->pick("DevicePopUp", u"MKV"_s);
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        const QStringList tracks = tracksOf(m_fixture->path(u"1 (2).mkv"_s));
        QCOMPARE(tracks.size(), 4);
        QVERIFY2(has(tracks, u"audio:eng:The 'first', 100%:.*"_s), qPrintable(tracks.join(u'\n')));
        QVERIFY2(has(tracks, u"audio:ita:.*"_s), qPrintable(tracks.join(u'\n')));
    }

private:
    /// A verb of a row of the queue, by its menu.
    void pressInRow(int row, const QString &title)
    {
        auto *table = m_fixture->find<QTreeView>("QueueTable");
        Q_EMIT table->customContextMenuRequested(
            table->visualRect(table->model()->index(row, File)).center());
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu != nullptr);
        for (QAction *action : menu->actions()) {
            if (action->text() == title)
                QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                                  menu->actionGeometry(action).center());
        }
        QTest::qWait(0);
    }

    static bool isRed(const QWidget *widget)
    {
        const QColor color = widget->palette().color(QPalette::Active, QPalette::WindowText);
        return color.red() > color.green() + 60 && color.red() > color.blue() + 60;
    }

    static bool has(const QStringList &tracks, const QString &pattern)
    {
        return tracks.filter(QRegularExpression(u'^' + pattern + u'$')).size() == 1;
    }

    QStringList films(int count, const QString &clip, const QString &suffix = u".mkv"_s)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(m_fixture->film(clip, QString::number(i) + suffix));
        return paths;
    }

    void openWith(const QStringList &clips)
    {
        m_fixture->start();
        QVERIFY(m_fixture->open(films(1, clips.constFirst())));
    }

    void storePresets()
    {
        QDir().mkpath(m_fixture->path(u"settings"_s));
        QFile file(m_fixture->path(u"settings/defaults.json"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(support::storedPresets(support::someRules(), support::someSettings()));
    }

    /// Every track of every open file, for a target.
    void chooseForEach(const QString &target)
    {
        m_fixture->pick("PresetSelectionsPopUp", u"All Tracks"_s);
        m_fixture->pick("DevicePopUp", target);
    }

    /// The installed tools, with those lines of the shell in the place of ffmpeg.
    void takeTools(const QString &ffmpeg)
    {
        const QString tools = support::TestPlaces().toolsLocation().toLocalFile();
        const QString own = m_fixture->path(u"tools"_s);
        QDir().mkpath(own + u"/ffmpeg"_s);
        QFile::link(tools + u"/mkvtoolnix"_s, own + u"/mkvtoolnix"_s);
        QFile::link(tools + u"/ffmpeg/ffprobe"_s, own + u"/ffmpeg/ffprobe"_s);
        support::installScript(own + u"/ffmpeg/ffmpeg"_s, ffmpeg);
        m_fixture->delegate().program().preferences().setToolsLocationURL(QUrl::fromLocalFile(own));
    }

    /// Films whose conversion takes some seconds, ready to be converted: ffmpeg reads at the speed of the
    /// film.
    void openSlow(int count, int seconds = 4)
    {
        takeTools(u"exec \"$(command -v ffmpeg)\" -re \"$@\""_s);
        QVERIFY(m_fixture->open(films(count, support::longMkv(seconds))));
        chooseForEach(u"iPhone 4"_s);
        choose(*m_fixture, "TheVideoMatrix2");
    }

    /// The process that converts a film; 0 when none came.
    qint64 runningFfmpeg(const QString &name)
    {
        QList<qint64> found;
        waitFor([&] {
            found = processesOn("ffmpeg", m_fixture->path(name));
            return !found.isEmpty();
        });
        return found.value(0);
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(ConvertingTest)
#include "ConvertingTest.moc"

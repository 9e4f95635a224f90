// Watch mode by mouse: the row in the main window, the window that takes its place, and back.
#include "support/Clips.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "window/WindowFixture.h"

#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::waitFor;

class WatchWindowTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
        QDir().mkpath(m_fixture->path(u"in"_s));
        const QVariant preset = support::settingsPreset(u"Set"_s, u"General"_s).toVariantMap();
        QVERIFY(m_fixture->delegate().program().presets().addUserPresets({}, {preset}).isNull());
    }
    void cleanup() { m_fixture.reset(); }

    void theButtonIsOffWithManualAndSaysWhy()
    {
        auto *start = m_fixture->find<QWidget>("StartWatchingFolderButton");
        QVERIFY(!start->isEnabled());
        QVERIFY2(start->toolTip().contains(
                     u"Choose a track preset: with \"Manual\" nothing can be watched."_s.toHtmlEscaped()),
                 qPrintable(start->toolTip()));
        m_fixture->pick("PresetSelectionsPopUp", u"First Track"_s);
        QVERIFY(!start->isEnabled());
        QVERIFY2(start->toolTip().contains(
                     u"Choose a settings preset: with \"Manual\" nothing can be watched."_s.toHtmlEscaped()),
                 qPrintable(start->toolTip()));
        m_fixture->pick("PresetSettingsPopUp", u"Set"_s);
        QTRY_VERIFY(start->isEnabled());
        QVERIFY2(!start->toolTip().contains(u"nothing can be watched"_s), qPrintable(start->toolTip()));
        m_fixture->pick("PresetSelectionsPopUp", u"Manual"_s);
        QTRY_VERIFY(!start->isEnabled());
        m_fixture->click("StartWatchingFolderButton"); // and a click on it does nothing
        QVERIFY(!watch().appIsInWatchMode());
    }

    void withoutAFolderTheMessageIsShownAndTheMainWindowStays()
    {
        choosePresets();
        m_fixture->click("StartWatchingFolderButton");
        QCOMPARE(m_fixture->find<QLabel>("WatchFolderPath")->text(),
                 u"must select a valid directory to start watch mode"_s);
        QTest::qWait(800);
        QVERIFY(m_fixture->window().isVisible());
        QVERIFY(!watchWindow().isVisible());
        QVERIFY(!watch().appIsInWatchMode());
    }

    void theFolderIsChosenWithItsButton()
    {
        m_fixture->click("ChooseWatchFolderButton");
        m_fixture->answerDialog({m_fixture->path(u"in"_s)});
        QTRY_COMPARE(m_fixture->find<QLabel>("WatchFolderPath")->text(), m_fixture->path(u"in"_s));
        QCOMPARE(m_fixture->delegate().program().preferences().watchFolderPath(), m_fixture->path(u"in"_s));
    }

    void theWindowsChangePlacesAndBack()
    {
        startWatching();
        QCOMPARE(part<QLabel>("WatchFolderField")->text(), m_fixture->path(u"in"_s));
        const QPoint place = watchWindow().pos();
        QCOMPARE(place, m_placeBefore);
        QVERIFY(shown().constFirst().endsWith(u"  note     Watching %1."_s.arg(m_fixture->path(u"in"_s))));
        press("EndWatchingButton");
        QTRY_VERIFY(m_fixture->window().isVisible() && !watchWindow().isVisible());
        QTRY_COMPARE(m_fixture->window().windowOpacity(), 1.0);
        QCOMPARE(m_fixture->window().pos(), place);
        QTRY_VERIFY(!watch().appIsInWatchMode());
        QVERIFY(m_fixture->isEnabled("StartWatchingFolderButton")); // and once more
        m_fixture->click("StartWatchingFolderButton");
        QTRY_VERIFY(watchWindow().isVisible() && !m_fixture->window().isVisible());
        QTRY_COMPARE(watchWindow().windowOpacity(), 1.0);
    }

    void aFilmThatLandsInTheFolderIsConvertedAndTold()
    {
        startWatching();
        const QString film = m_fixture->film(support::textMp4(), u"in/a.mp4"_s);
        watch().watchLoop();
        QVERIFY(tells(u"  waiting  %1: until it has stopped growing."_s.arg(film)));
        watch().watchLoop();
        QVERIFY(tells(u"  started  a.mp4: MKV Conversion"_s));
        QVERIFY2(tells(u"  done     a.mp4: %1"_s.arg(m_fixture->path(u"in/a.m4v"_s))),
                 qPrintable(shown().join(u'\n')));
        QVERIFY(!m_fixture->window().isVisible()); // the drawer does not bring it back
    }

    void stoppingLeavesTheQueueAndShowsItInTheMainWindow()
    {
        startWatching();
        m_fixture->film(support::textMp4(), u"in/a.mp4"_s);
        watch().watchLoop();
        watch().watchLoop();
        QVERIFY(tells(u"  started  a.mp4: MKV Conversion"_s));
        press("EndWatchingButton");
        QTRY_VERIFY(m_fixture->window().isVisible());
        QCOMPARE(m_fixture->rows("QueueTable", 0).size(), 1);
        QTRY_VERIFY(m_fixture->find<QWidget>("QueueTable")->isVisible()); // the drawer is open
        QVERIFY(m_fixture->waitForJobs());
        QVERIFY(QFile::exists(m_fixture->path(u"in/a.m4v"_s)));
    }

    void aSecondStartNeverBringsTheMainWindowBack()
    {
        startWatching();
        const QString other = m_fixture->film(support::textMp4(), u"other.mp4"_s);
        m_fixture->delegate().filesRequested({other});
        QVERIFY(tells(u"%1: it is not opened while a folder is watched."_s.arg(other)));
        m_fixture->delegate().filesRequested({});
        QTest::qWait(500); // longer than files take on their way
        QVERIFY(watchWindow().isVisible() && !m_fixture->window().isVisible());
        QVERIFY(m_fixture->delegate().openQueue().entries().isEmpty());
    }

    void itsMenuHasTheKeysOfTheMainWindow()
    {
        startWatching();
        QMap<QString, QString> keys;
        for (const QAction *menu : part<QMenuBar>("WatchMenu")->actions()) {
            for (const QAction *action : menu->menu()->actions())
                keys.insert(action->text().remove(u'&'), action->shortcut().toString());
        }
        keys.remove(QString()); // the line between them
        keys.remove(u"Online Guide"_s);
        keys.remove(u"Close Window"_s);
        QCOMPARE(keys, (QMap<QString, QString>{{u"Pause or Resume"_s, u"Ctrl+."_s},
                                               {u"Stop Watching"_s, u"Ctrl+Shift+W"_s},
                                               {u"Quit"_s, u"Ctrl+Q"_s}}));
    }

    void quittingAsksWhileAFilmIsOnItsWay()
    {
        startWatching();
        m_fixture->film(support::textMp4(), u"in/a.mp4"_s);
        watch().watchLoop();
        watch().watchLoop(); // it is opened now and started in a moment
        QVERIFY(m_fixture->queue().qJobList().isEmpty());
        QTest::keyClick(&watchWindow(), Qt::Key_Q, Qt::ControlModifier);
        QMessageBox *question = nullptr;
        QVERIFY(waitFor([&] {
            question = watchWindow().findChild<QMessageBox *>(u"Alert"_s);
            return question != nullptr && question->isVisible();
        }));
        QCOMPARE(question->text(), u"Videos are still being processed.  Quit anyways?"_s);
        for (QAbstractButton *button : question->buttons()) {
            if (button->text().remove(u'&') == u"Cancel"_s)
                QTest::mouseClick(button, Qt::LeftButton);
        }
        m_fixture->queue().pauseQueueButton(u"Resume"_s);
        QVERIFY(waitFor([this] {
            watch().watchLoop();
            return QFile::exists(m_fixture->path(u"in/a.m4v"_s));
        }));
    }

    void filmsThatAreThereAreTakenWithATick()
    {
        m_fixture->film(support::textMp4(), u"in/a.mp4"_s);
        QTest::mouseClick(m_fixture->find<QAbstractButton>("WatchExistingTick"), Qt::LeftButton);
        startWatching();
        QVERIFY(waitFor([this] {
            watch().watchLoop();
            return QFile::exists(m_fixture->path(u"in/a.m4v"_s));
        }));
    }

    void aNameThatIsMarkupIsShownAsItIs()
    {
        startWatching();
        QVERIFY(!m_fixture->film(support::emptyMkv(), u"in/<b>x<b>.mkv"_s).isEmpty());
        watch().watchLoop();
        QVERIFY(tells(u"<b>x<b>.mkv: until it has stopped growing."_s));
    }

private:
    KXWatchModeController &watch() { return m_fixture->delegate().program().watchMode(); }
    QWidget &watchWindow() { return m_fixture->program().watchWindow(); }

    template <typename Control>
    Control *part(const char *name)
    {
        auto *found = watchWindow().findChild<Control *>(QString::fromLatin1(name));
        if (found == nullptr)
            qFatal("There is no %s.", name);
        return found;
    }

    void press(const char *button) { QTest::mouseClick(part<QAbstractButton>(button), Qt::LeftButton); }

    void choosePresets()
    {
        m_fixture->pick("PresetSelectionsPopUp", u"First Track"_s);
        m_fixture->pick("PresetSettingsPopUp", u"Set"_s);
        QTRY_VERIFY(m_fixture->isEnabled("StartWatchingFolderButton"));
    }

    void startWatching()
    {
        choosePresets();
        m_fixture->delegate().program().preferences().setWatchFolderURL(
            QUrl::fromLocalFile(m_fixture->path(u"in"_s)));
        m_placeBefore = m_fixture->window().pos();
        m_fixture->click("StartWatchingFolderButton");
        QVERIFY(m_fixture->window().isVisible()); // for a moment still
        QTRY_VERIFY(watchWindow().isVisible() && !m_fixture->window().isVisible());
        QTRY_COMPARE(watchWindow().windowOpacity(), 1.0);
    }

    QStringList shown()
    {
        QStringList lines;
        const auto *list = part<QListWidget>("WatchLog");
        for (int row = list->count() - 1; row >= 0; --row) // the newest stands first
            lines.append(list->item(row)->text());
        return lines;
    }

    bool tells(const QString &part)
    {
        return waitFor([&] { return !shown().filter(part).isEmpty(); });
    }

    std::unique_ptr<WindowFixture> m_fixture;
    QPoint m_placeBefore;
};

TESSARAY_TEST(WatchWindowTest)
#include "WatchWindowTest.moc"

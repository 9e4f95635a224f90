// Everything by keyboard alone: what has the focus says its name, Tab goes on as one reads, commands have
// their keys.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;
using namespace driver;

class KeyboardTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void whatTabReachesHasANameAndLiesWhereOneReadsOn_data()
    {
        QTest::addColumn<int>("tab");
        QTest::addColumn<QStringList>("inOrder");
        QTest::newRow("MKV") << 0 << QStringList{u"OpenButton"_s,
                                                 u"Tabs"_s,
                                                 u"OpenFilesQueuePanelTable"_s,
                                                 u"PresetSelectionsPopUp"_s,
                                                 u"ConvertTrackTable"_s,
                                                 u"AddButton"_s,
                                                 u"PresetSettingsPopUp"_s,
                                                 u"DevicePopUp"_s,
                                                 u"ConvertButton"_s};
        QTest::newRow("Edit Files") << 1
                                    << QStringList{u"OpenButton"_s, u"Tabs"_s, u"EditFilesTable"_s,
                                                   u"JoinButton"_s};
    }

    void whatTabReachesHasANameAndLiesWhereOneReadsOn()
    {
        QFETCH(int, tab);
        QFETCH(QStringList, inOrder);
        m_fixture->chooseTab(tab);
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv(), u"1.mkv"_s),
                                 m_fixture->film(support::fullMkv(), u"2.mkv"_s)}));
        if (tab == 0)
            tick(*m_fixture, {u"h264"_s, u"ac3"_s, u"srt"_s});
        QStringList visited;
        m_fixture->find<QWidget>("OpenButton")->setFocus();
        for (int steps = 0; steps < 80; ++steps) {
            QWidget *focused = QApplication::focusWidget();
            QVERIFY(focused != nullptr);
            const bool isText = qobject_cast<QAbstractButton *>(focused) != nullptr; // says its own title
            QVERIFY2(isText || !focused->accessibleName().isEmpty(), qPrintable(focused->objectName()));
            if (!visited.isEmpty() && focused->objectName() == visited.constFirst())
                break;
            visited.append(focused->objectName());
            QTest::keyClick(focused, Qt::Key_Tab);
        }
        qsizetype last = -1;
        for (const QString &word : inOrder) {
            QVERIFY2(visited.indexOf(word) > last, qPrintable(word + u" in "_s + visited.join(u' ')));
            last = visited.indexOf(word);
        }
    }

    void commandsStandInMenusWithTheirKeysAndRoles()
    {
        const QAction *preferences = action(u"Preferences…"_s);
        QCOMPARE(preferences->menuRole(), QAction::PreferencesRole);
        QCOMPARE(preferences->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Comma));
        QCOMPARE(action(u"Quit"_s)->menuRole(), QAction::QuitRole);
        QCOMPARE(action(u"Quit"_s)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
        QCOMPARE(action(u"About Tessaray"_s)->menuRole(), QAction::AboutRole);
        QCOMPARE(action(u"Open…"_s)->shortcut(), QKeySequence(QKeySequence::Open));
        QCOMPARE(action(u"Close Window"_s)->shortcut(), QKeySequence(QKeySequence::Close));
        QCOMPARE(action(u"Online Guide"_s)->shortcut(), QKeySequence(QKeySequence::HelpContents));
        for (const QString &text :
             {u"Add Tracks…"_s, u"Save File Info"_s, u"Play"_s, u"Send"_s, u"Edit Tracks: Go"_s, u"Join"_s,
              u"Split"_s, u"Re-Mux"_s, u"Convert"_s, u"Pause or Resume"_s, u"Delete Selected Job"_s,
              u"Clear Completed Jobs"_s, u"Edit Track Presets…"_s, u"Edit Settings Presets…"_s})
            QVERIFY2(action(text) != nullptr, qPrintable(text));
    }

    void aFilmIsTickedAndConvertedByKeys()
    {
        const QString film = m_fixture->film(support::textMp4(), u"a.mp4"_s);
        QVERIFY(m_fixture->open({film}));
        auto *table = m_fixture->find<QTreeView>("ConvertTrackTable");
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->rows("ConvertTrackTable", Kind).size(), 3, 15000);
        QTRY_VERIFY(table->isEnabled() && table->isVisible());
        table->setFocus();
        QTest::keyClick(table, Qt::Key_Home);
        QTest::keyClick(table, Qt::Key_Space);
        QTest::keyClick(table, Qt::Key_Down);
        QTest::keyClick(table, Qt::Key_Space);
        QTRY_VERIFY(m_fixture->isEnabled("DevicePopUp") && m_fixture->isEnabled("ConvertButton"));
        m_fixture->pick("DevicePopUp", u"MKV"_s);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(m_fixture->rows("QueueTable", File), QStringList{u"a.mp4"_s});
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(support::codecsOf(m_fixture->path(u"a.mkv"_s)), u"h264 aac"_s);
        auto *jobs = m_fixture->find<QTreeView>("QueueTable");
        jobs->setFocus();
        QTest::keyClick(jobs, Qt::Key_Home);
        QTest::keyClick(jobs, Qt::Key_Delete);
        QTRY_COMPARE(m_fixture->rows("QueueTable", File), QStringList());
    }

    void aKeyOpensThePanelAndEscapeLeavesIt()
    {
        QTest::keyClick(&m_fixture->window(), Qt::Key_O, Qt::ControlModifier);
        const auto panel = [this] { return m_fixture->window().findChild<QFileDialog *>(u"FileChooser"_s); };
        QTRY_VERIFY(panel() != nullptr && panel()->isVisible());
        QTest::keyClick(panel(), Qt::Key_Escape);
        QTRY_VERIFY(panel() == nullptr);
        QCOMPARE(m_fixture->rows("ConvertTrackTable", Kind), QStringList());
    }

private:
    /// Null when no menu has it.
    QAction *action(const QString &text)
    {
        for (QAction *top : m_fixture->window().menuBar()->actions()) {
            for (QAction *command : top->menu()->actions()) {
                if (command->text().remove(u'&') == text)
                    return command;
            }
        }
        return nullptr;
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(KeyboardTest)
#include "KeyboardTest.moc"

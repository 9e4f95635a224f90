// The menu of the queue's rows: every item is pressed, and does what it says.
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QDesktopServices>
#include <QMenu>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

/// Takes what the desktop would open.
class Opened final : public QObject
{
    Q_OBJECT

public:
    Opened() { QDesktopServices::setUrlHandler(u"file"_s, this, "take"); }
    ~Opened() override { QDesktopServices::unsetUrlHandler(u"file"_s); }
    Q_DISABLE_COPY_MOVE(Opened)

    Q_INVOKABLE void take(const QUrl &url) { urls.append(url); }

    QList<QUrl> urls;
};

class QueueMenuTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
        m_fixture->pick("PresetSelectionsPopUp", u"All Tracks"_s);
    }
    void cleanup() { m_fixture.reset(); }

    void aRunningAndWaitingRows()
    {
        addSlow(3);
        QVERIFY(waitFor([this] { return queue().qJobIsRunning(); }));
        QCOMPARE(itemsOf(2), (QStringList{u"Move to Top"_s, u"Delete"_s}));
        const JobPointer third = queue().qJobList().at(2);
        press(2, u"Move to Top"_s);
        QCOMPARE(queue().qJobList().at(0), third);
        const int running = static_cast<int>(queue().currentJobRowIndex());
        QVERIFY(itemsOf(running).contains(u"Stop After This One"_s));
        press(running, u"Stop After This One"_s);
        QVERIFY(queue().stopsAfterThisJob());
        press(running, u"Stop After This One"_s);
        QVERIFY(!queue().stopsAfterThisJob());
        press(2, u"Delete"_s);
        QCOMPARE(queue().qJobList().size(), 2);
        press(running, u"Delete"_s);
        QVERIFY(m_fixture->waitForAlert(u"Stop the currently running job?"_s));
        m_fixture->pressAlertButton(0);
        QTRY_COMPARE(queue().qJobList().size(), 1);
    }

    /// The menu stays open while the rows above it go.
    void theMenuKeepsToItsJob()
    {
        addSlow(4);
        QVERIFY(waitFor([this] { return queue().qJobIsRunning(); }));
        const JobPointer last = queue().qJobList().at(3);
        QMenu *menu = openMenu(3);
        queue().deleteJobRow(0, 1);
        QCOMPARE(queue().qJobList().at(2), last);
        trigger(menu, u"Delete"_s);
        QCOMPARE(queue().qJobList().size(), 2);
        QVERIFY(!queue().qJobList().contains(last));
    }

    void anEndedRow()
    {
        Opened opened;
        QVERIFY(m_fixture->open({m_fixture->film(support::film1920())}));
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        QVERIFY(waitFor([this] { return !queue().qJobIsRunning(); }));
        const JobPointer done = queue().qJobList().constFirst();
        QVERIFY(!done->outputs().isEmpty());
        QCOMPARE(itemsOf(0), (QStringList{u"Reveal"_s, u"Log"_s, u"Details"_s, u"Delete"_s}));
        press(0, u"Reveal"_s);
        press(0, u"Log"_s);
        QCOMPARE(opened.urls.size(), 2);
        QCOMPARE(opened.urls.at(0), QUrl::fromLocalFile(m_fixture->path()));
        QVERIFY(QFileInfo(opened.urls.at(1).toLocalFile()).isFile());
        press(0, u"Details"_s);
        QTRY_VERIFY(QApplication::activeModalWidget() != nullptr);
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
        press(0, u"Delete"_s);
        QVERIFY(queue().qJobList().isEmpty());
    }

    void anInterruptedRowRunsAgain()
    {
        addSlow(1);
        QVERIFY(waitFor([this] { return queue().qJobIsRunning(); }));
        m_fixture->restart();
        QCOMPARE(queue().qJobList().size(), 1);
        QCOMPARE(queue().qJobList().constFirst()->outcome().word(), u"interrupted"_s);
        QCOMPARE(itemsOf(0), (QStringList{u"Retry"_s, u"Delete"_s}));
        press(0, u"Retry"_s);
        QCOMPARE(queue().qJobList().size(), 1);
        QVERIFY(waitFor([this] { return queue().qJobIsRunning(); }));
        QVERIFY(!queue().qJobList().constFirst()->hasEnded());
    }

    void whatFollowsTheQueueIsChosenInTheMenu()
    {
        for (const QString &word : {u"sleep"_s, u"quit"_s, u"nothing"_s}) {
            QMenu *menu = whenDone();
            Q_EMIT menu->aboutToShow();
            const QHash<QString, int> places{{u"nothing"_s, 0}, {u"sleep"_s, 1}, {u"quit"_s, 2}};
            menu->actions().at(places.value(word))->trigger();
            QCOMPARE(m_fixture->delegate().whenQueueIsDone(), word);
            Q_EMIT menu->aboutToShow();
            for (const auto &[each, place] : places.asKeyValueRange())
                QCOMPARE(menu->actions().at(place)->isChecked(), each == word);
        }
    }

private:
    KXQueueController &queue() { return m_fixture->queue(); }

    /// Jobs that take long, of one film.
    void addSlow(int count)
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::longMkv(120))}));
        m_fixture->pick("DevicePopUp", u"iPhone 4"_s);
        choose(*m_fixture, "TheVideoMatrix2");
        for (int i = 0; i < count; ++i)
            m_fixture->click("ConvertButton");
        QCOMPARE(queue().qJobList().size(), count);
    }

    QMenu *openMenu(int row)
    {
        auto *table = m_fixture->find<QTreeView>("QueueTable");
        const QPoint place = table->visualRect(table->model()->index(row, File)).center();
        Q_EMIT table->customContextMenuRequested(place);
        return qobject_cast<QMenu *>(QApplication::activePopupWidget());
    }

    static QStringList titlesOf(const QMenu &menu)
    {
        QStringList titles;
        for (const QAction *action : menu.actions())
            titles.append(action->text());
        return titles;
    }

    QStringList itemsOf(int row)
    {
        QMenu *menu = openMenu(row);
        const QStringList titles = menu == nullptr ? QStringList() : titlesOf(*menu);
        delete menu;
        return titles;
    }

    static void trigger(QMenu *menu, const QString &title)
    {
        QVERIFY(menu != nullptr);
        QVERIFY2(titlesOf(*menu).contains(title), qPrintable(titlesOf(*menu).join(u", "_s)));
        menu->actions().at(titlesOf(*menu).indexOf(title))->trigger();
        menu->close();
        QTest::qWait(0);
    }

    void press(int row, const QString &title) { trigger(openMenu(row), title); }

    QMenu *whenDone()
    {
        for (QMenu *menu : m_fixture->window().findChildren<QMenu *>()) {
            if (menu->title().remove(u'&') == u"When Done"_s)
                return menu;
        }
        qFatal("There is no such menu.");
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(QueueMenuTest)
#include "QueueMenuTest.moc"

// The list of opened videos, and what of the current one is kept in it.
#include "app/OpenQueue.h"

#include "support/TestMain.h"
#include "support/app/AppFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;
using support::convertible;

class OpenQueueTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>();
        m_popover = std::make_unique<QSignalSpy>(&queue(), &app::OpenQueue::popoverWanted);
    }
    void cleanup()
    {
        m_popover.reset();
        m_fixture.reset();
    }

    void aFreshListIsEmpty()
    {
        QCOMPARE(queue().openFileCount(), 0);
        QCOMPARE(queue().selectedRow(), -1);
        QVERIFY(!queue().canOpenQueuePopover());
    }

    void popoverByTheNumberOfFiles_data()
    {
        QTest::addColumn<int>("files");
        QTest::addColumn<bool>("may");
        QTest::newRow("none") << 0 << false;
        QTest::newRow("one") << 1 << false;
        QTest::newRow("two") << 2 << true;
        QTest::newRow("three") << 3 << true;
    }

    void popoverByTheNumberOfFiles()
    {
        QFETCH(int, files);
        QFETCH(bool, may);
        open(files);
        QCOMPARE(queue().canOpenQueuePopover(), may);
        QCOMPARE(wasClosed(), !may);
    }

    void itIsShownAndClosedOnDemand()
    {
        queue().showOpenQ();
        QCOMPARE(m_popover->takeFirst().constFirst().toBool(), true);
        queue().closeOpenQ();
        QCOMPARE(m_popover->takeFirst().constFirst().toBool(), false);
    }

    /// The misspelling is meant.
    void removeSelecetedItemFromOpenQ_data()
    {
        QTest::addColumn<int>("files");
        QTest::addColumn<int>("selected");
        QTest::addColumn<QString>("left");
        QTest::addColumn<int>("current");
        QTest::newRow("the first") << 3 << 0 << u"1.mkv 2.mkv"_s << 0;
        QTest::newRow("one in the middle") << 3 << 1 << u"0.mkv 2.mkv"_s << 0;
        QTest::newRow("the last") << 3 << 2 << u"0.mkv 1.mkv"_s << 1;
        QTest::newRow("the first of two") << 2 << 0 << u"1.mkv"_s << 0;
        QTest::newRow("the second of two") << 2 << 1 << u"0.mkv"_s << 0;
        QTest::newRow("the only one stays") << 1 << 0 << u"0.mkv"_s << 0;
    }

    void removeSelecetedItemFromOpenQ()
    {
        QFETCH(int, files);
        QFETCH(int, selected);
        QFETCH(QString, left);
        QFETCH(int, current);
        open(files);
        queue().select(selected);
        m_popover->clear();
        queue().removeSelecetedItemFromOpenQ();
        QCOMPARE(m_fixture->openNames().join(u' '), left);
        QCOMPARE(queue().selectedRow(), current);
        QCOMPARE(m_fixture->file().theFileName(), left.split(u' ').at(current));
        QCOMPARE(m_fixture->selection().videoTrackFileName(), left.split(u' ').at(current));
        QCOMPARE(queue().canOpenQueuePopover(), left.contains(u' '));
        QCOMPARE(wasClosed(), !left.contains(u' '));
    }

    void whatWasRemovedIsNotStoredInAnotherEntry()
    {
        open(2);
        tick(0);
        queue().removeSelecetedItemFromOpenQ();
        QCOMPARE(queue().entries().at(0).videoFile->theFileName(), u"1.mkv"_s);
        QVERIFY(m_fixture->selection().trackList().isEmpty());
    }

    void selectingKeepsTheCurrentOneInItsEntryAndShowsTheOther()
    {
        open(2);
        tick(0);
        QCOMPARE(m_fixture->selection().vidCount(), u"1"_s);
        queue().select(1);
        QCOMPARE(queue().selectedRow(), 1);
        QCOMPARE(m_fixture->file().theFileName(), u"1.mkv"_s);
        QCOMPARE(m_fixture->selection().vidCount(), u"0"_s);
        QCOMPARE(queue().entries().at(0).videoSelection->vidCount(), u"1"_s);
        queue().select(0);
        QCOMPARE(m_fixture->file().theFileName(), u"0.mkv"_s);
        QCOMPARE(m_fixture->selection().vidCount(), u"1"_s);
        QVERIFY(m_fixture->file().trackList().at(0)->trackSelected());
    }

    void anAddedTrackIsKeptToo()
    {
        open(2);
        const auto added = support::probedSubtitle();
        m_fixture->program().currentFile().file()->setTrackList(m_fixture->file().trackList() << added);
        queue().select(1);
        QCOMPARE(m_fixture->file().trackList().size(), 2);
        queue().select(0);
        QCOMPARE(m_fixture->file().trackList().constLast(), added);
    }

    void entriesAreCopies()
    {
        open(2);
        QVERIFY(queue().entries().at(0).videoFile != m_fixture->program().currentFile().file());
        QVERIFY(queue().entries().at(0).videoSelection != m_fixture->controller().currentSelection());
    }

    void aRowOutsideKeepsTheSelection_data()
    {
        QTest::addColumn<int>("row");
        QTest::newRow("beyond the end") << 2;
        QTest::newRow("before the first") << -1;
    }

    void aRowOutsideKeepsTheSelection()
    {
        QFETCH(int, row);
        open(2);
        queue().select(1);
        queue().select(row);
        QCOMPARE(queue().selectedRow(), 1);
        QCOMPARE(m_fixture->file().theFileName(), u"1.mkv"_s);
    }

    void replacingDoesNotStoreTheOldFileInANewEntry()
    {
        open(2);
        tick(0);
        m_fixture->openByHand({convertible(u"/v/new.mkv"_s), convertible(u"/v/newer.mkv"_s)});
        QCOMPARE(queue().entries().at(0).videoFile->theFileName(), u"new.mkv"_s);
        QCOMPARE(queue().entries().at(0).videoSelection->videoTrackFileName(), u"new.mkv"_s);
        QCOMPARE(m_fixture->file().theFileName(), u"new.mkv"_s);
        QVERIFY(m_fixture->selection().trackList().isEmpty());
    }

    void rowsAboveTheSelectedOneAreRemovedFromTheEnd()
    {
        open(4);
        queue().select(2);
        queue().removeRows({0, 1, 3});
        QCOMPARE(m_fixture->openNames(), QStringList{u"2.mkv"_s});
        QCOMPARE(queue().selectedRow(), 0);
        QVERIFY(!queue().canOpenQueuePopover());
        QVERIFY(wasClosed());
    }

private:
    app::OpenQueue &queue() { return m_fixture->openQueue(); }
    void open(int files)
    {
        QList<std::pair<QString, TrackList>> films;
        for (int i = 0; i < files; ++i)
            films.append(convertible(u"/v/%1.mkv"_s.arg(i)));
        m_fixture->openByHand(films);
    }
    void tick(qsizetype row)
    {
        m_fixture->file().trackList().at(row)->setTrackSelected(true);
        m_fixture->controller().trackTableSelectionChanged(KXSelectionController::Sender::TrackTable);
    }
    bool wasClosed() const { return !m_popover->isEmpty() && !m_popover->constLast().constFirst().toBool(); }

    std::unique_ptr<AppFixture> m_fixture;
    std::unique_ptr<QSignalSpy> m_popover;
};

TESSARAY_TEST(OpenQueueTest)
#include "OpenQueueTest.moc"

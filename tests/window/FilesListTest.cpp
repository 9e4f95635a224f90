// The list of whole files: what is known of each, how they go together, and their order.
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QApplication>
#include <QLabel>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

class FilesListTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
        m_fixture->chooseTab(1);
    }
    void cleanup() { m_fixture.reset(); }

    void lengthsAndWhatDiffersAreTold()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::longMkv(20), u"1.mkv"_s),
                                 m_fixture->film(support::longMkv(8), u"2.mkv"_s),
                                 m_fixture->film(support::fullMkv(), u"3.mkv"_s)}));
        QCOMPARE(m_fixture->rows("EditFilesTable", 0), QStringList({u"1.mkv"_s, u"2.mkv"_s, u"3.mkv"_s}));
        QVERIFY(m_fixture->isEnabled("JoinButton")); // before anything is known of them
        QTRY_COMPARE(m_fixture->rows("EditFilesTable", 1),
                     QStringList({u"0:00:20"_s, u"0:00:08"_s, u"0:00:08"_s}));
        const QStringList joining = m_fixture->rows("EditFilesTable", 3);
        QCOMPARE(joining.mid(0, 2), QStringList({u"First file"_s, u"Matches"_s}));
        QCOMPARE(joining.at(2), u"Sound differs: AC3 5.1, AAC Stereo, DTS 5.1, not AAC Stereo"_s);
        QTRY_COMPARE(m_fixture->find<QLabel>("JoinWarning")->text(), u"File 3: %1."_s.arg(joining.at(2)));
        QVERIFY(m_fixture->find<QLabel>("JoinWarning")->isVisible());
        QCOMPARE(m_fixture->find<QWidget>("FileListFacts")->accessibleDescription().section(u',', 0, 0),
                 u"0:00:36"_s);
    }

    void whatIsNoFilmIsNamed()
    {
        QFile notes(m_fixture->path(u"notes.mkv"_s));
        QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("not a film") > 0);
        notes.close();
        QVERIFY(m_fixture->open({m_fixture->film(support::longMkv(8), u"1.mkv"_s), notes.fileName()}));
        QTRY_COMPARE(m_fixture->rows("EditFilesTable", 3), QStringList({u"First file"_s, u"Not a film"_s}));
    }

    void theOrderIsThatOfTheResult()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::longMkv(2), u"long.mkv"_s),
                                 m_fixture->film(support::longMkv(1), u"short.mkv"_s)}));
        auto *table = m_fixture->find<QTreeView>("EditFilesTable");
        table->setFocus();
        QTest::keyClick(table, Qt::Key_End);
        QTest::keyClick(table, Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(m_fixture->rows("EditFilesTable", 0), QStringList({u"short.mkv"_s, u"long.mkv"_s}));
        QCOMPARE(table->currentIndex().row(), 0); // the row that was moved
        QTest::keyClick(&m_fixture->window(), Qt::Key_T, Qt::AltModifier);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_J); // Join
        QVERIFY(waitFor([this] { return m_fixture->rows("QueueTable", File).size() == 1; }));
        QVERIFY(m_fixture->waitForJobs());
        const KXJob &job = *m_fixture->queue().qJobList().constFirst();
        QVERIFY2(QFile::exists(m_fixture->path(u"short.mkv.joined.mkv"_s)), // named after the first
                 qPrintable(job.outcome().sentence));
    }

private:
    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(FilesListTest)
#include "FilesListTest.moc"

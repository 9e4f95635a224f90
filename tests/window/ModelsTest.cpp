// The models behind the tables keep Qt's rules while what they show changes.
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/FilesModel.h"
#include "window/JobModel.h"
#include "window/QueueDriver.h"
#include "window/TrackModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace driver;

class ModelsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void tracksComeAreTickedEditedAndGo()
    {
        const QAbstractItemModelTester tester(modelOf("ConvertTrackTable"), fatal);
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        QCOMPARE(m_fixture->rows("ConvertTrackTable", Kind).size(), 6);
        for (int row = 0; row < 6; ++row)
            tickCell(*m_fixture, row);
        writeTitle(*m_fixture, 1, u"other"_s);
        QCOMPARE(m_fixture->rows("ConvertTrackTable", Title).at(1), u"other"_s);
        QVERIFY(m_fixture->open({m_fixture->film(support::srtFile(), u"s.srt"_s)}));
        QCOMPARE(m_fixture->rows("ConvertTrackTable", Kind).size(), 7);
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"b.mp4"_s)}));
        QCOMPARE(m_fixture->rows("ConvertTrackTable", Kind).size(), 3);
    }

    void filesComeAndAreReplaced()
    {
        m_fixture->chooseTab(1);
        const QAbstractItemModelTester tester(modelOf("EditFilesTable"), fatal);
        QVERIFY(m_fixture->open(films(3)));
        QCOMPARE(m_fixture->rows("EditFilesTable", 0), QStringList({u"1.mkv"_s, u"2.mkv"_s, u"3.mkv"_s}));
        QVERIFY(m_fixture->open({m_fixture->path(u"2.mkv"_s)}));
        QVERIFY(m_fixture->rows("EditFilesTable", 0).contains(u"2.mkv"_s));
    }

    void jobsAndTheirStepsComeMoveAndGo()
    {
        const QAbstractItemModelTester jobs(modelOf("QueueTable"), fatal);
        QSignalSpy jobResets(modelOf("QueueTable"), &QAbstractItemModel::modelReset);
        m_fixture->chooseTab(1);
        QVERIFY(m_fixture->open(films(3)));
        m_fixture->click("RemuxButton");
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList({u"1.mkv"_s, u"2.mkv"_s, u"3.mkv"_s}));
        deleteRow(*m_fixture, 1);
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(m_fixture->rows("QueueTable", Status), QStringList(2, u"Completed"_s));
        m_fixture->click("JoinButton");
        QCOMPARE(m_fixture->rows("QueueTable", Type).size(), 3);
        m_fixture->click("QueueClearButton");
        QVERIFY(m_fixture->waitForJobs());
        m_fixture->click("QueueClearButton");
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList());
        QCOMPARE(jobResets.size(), 0);
    }

private:
    static constexpr auto fatal = QAbstractItemModelTester::FailureReportingMode::Fatal;

    QAbstractItemModel *modelOf(const char *table) { return m_fixture->find<QTreeView>(table)->model(); }

    QStringList films(int count)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(m_fixture->film(support::longMkv(8), u"%1.mkv"_s.arg(i)));
        return paths;
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(ModelsTest)
#include "ModelsTest.moc"

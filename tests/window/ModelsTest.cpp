// The models behind the tables keep Qt's rules while what they show changes.
#include "support/Clips.h"
#include "window/FilesModel.h"
#include "window/JobModel.h"
#include "window/ProgressModel.h"
#include "window/QueueHand.h"
#include "window/TrackModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace hand;

class ModelsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_desk = std::make_unique<WindowDesk>();
        m_desk->start();
    }
    void cleanup() { m_desk.reset(); }

    void tracksComeAreTickedEditedAndGo()
    {
        const QAbstractItemModelTester tester(modelOf("ConvertTrackTable"), fatal);
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        QCOMPARE(m_desk->rows("ConvertTrackTable", Kind).size(), 6);
        for (int row = 0; row < 6; ++row)
            tickCell(*m_desk, row);
        writeTitle(*m_desk, 1, u"other"_s);
        QCOMPARE(m_desk->rows("ConvertTrackTable", Title).at(1), u"other"_s);
        QVERIFY(m_desk->open({m_desk->film(support::srtFile(), u"s.srt"_s)}));
        QCOMPARE(m_desk->rows("ConvertTrackTable", Kind).size(), 7);
        QVERIFY(m_desk->open({m_desk->film(support::textMp4(), u"b.mp4"_s)}));
        QCOMPARE(m_desk->rows("ConvertTrackTable", Kind).size(), 3);
    }

    void filesComeAndAreReplaced()
    {
        m_desk->chooseTab(1);
        const QAbstractItemModelTester tester(modelOf("EditFilesTable"), fatal);
        QVERIFY(m_desk->open(films(3)));
        QCOMPARE(m_desk->rows("EditFilesTable", 0), QStringList({u"1.mkv"_s, u"2.mkv"_s, u"3.mkv"_s}));
        QVERIFY(m_desk->open({m_desk->path(u"2.mkv"_s)}));
        QVERIFY(m_desk->rows("EditFilesTable", 0).contains(u"2.mkv"_s));
    }

    void jobsAndTheirStepsComeMoveAndGo()
    {
        const QAbstractItemModelTester jobs(modelOf("QueueTable"), fatal);
        const QAbstractItemModelTester steps(modelOf("QueueJobTable"), fatal);
        QSignalSpy jobResets(modelOf("QueueTable"), &QAbstractItemModel::modelReset);
        QSignalSpy stepResets(modelOf("QueueJobTable"), &QAbstractItemModel::modelReset);
        m_desk->chooseTab(1);
        QVERIFY(m_desk->open(films(3)));
        m_desk->click("RemuxButton");
        QCOMPARE(m_desk->rows("QueueTable", File), QStringList({u"1.mkv"_s, u"2.mkv"_s, u"3.mkv"_s}));
        deleteRow(*m_desk, 1);
        QVERIFY(m_desk->waitForJobs());
        QCOMPARE(m_desk->rows("QueueTable", Status), QStringList(2, u"Completed"_s));
        m_desk->click("JoinButton");
        QCOMPARE(m_desk->rows("QueueTable", Type).size(), 3);
        m_desk->click("QueueClearButton");
        QVERIFY(m_desk->waitForJobs());
        m_desk->click("QueueClearButton");
        QCOMPARE(m_desk->rows("QueueTable", File), QStringList());
        QCOMPARE(jobResets.size(), 0);
        QCOMPARE(stepResets.size(), 0);
    }

private:
    static constexpr auto fatal = QAbstractItemModelTester::FailureReportingMode::Fatal;

    QAbstractItemModel *modelOf(const char *table) { return m_desk->find<QTreeView>(table)->model(); }

    QStringList films(int count)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(m_desk->film(support::longMkv(8), u"%1.mkv"_s.arg(i)));
        return paths;
    }

    std::unique_ptr<WindowDesk> m_desk;
};

QTEST_MAIN(ModelsTest)
#include "ModelsTest.moc"

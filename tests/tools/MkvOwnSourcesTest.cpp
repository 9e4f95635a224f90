// A source of an operation on Matroska files is never its output, whatever it is called, and neither is
// anything else that was there before.
#include "support/TestMain.h"
#include "support/engines/MkvFaults.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;
using steps::WhenTaken;

class MkvOwnSourcesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { make(WhenTaken::NextFreeName); }

    void theSourceStandsWhereTheOutputGoes_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<bool>("isHardLink");
        QTest::addColumn<WhenTaken>("taken");
        const QStringList operations{mkv::join,   mkv::split, mkv::remux,
                                     mkv::remove, mkv::mux,   mkv::editRemux};
        for (const bool isHardLink : {false, true}) {
            for (const WhenTaken taken : {WhenTaken::NextFreeName, WhenTaken::Replace}) {
                for (const QString &operation : drawn(operations, 2))
                    QTest::addRow("%s, %s, %s", qPrintable(operation), isHardLink ? "hard link" : "symlink",
                                  taken == WhenTaken::Replace ? "replacing" : "next name")
                        << operation << isHardLink << taken;
            }
        }
    }

    void theSourceStandsWhereTheOutputGoes()
    {
        QFETCH(QString, operation);
        QFETCH(bool, isHardLink);
        QFETCH(WhenTaken, taken);
        make(taken);
        const QString source = m_fault->sourceFor(operation);
        const QString place = m_fault->output(operation);
        if (isHardLink)
            QCOMPARE(::link(qPrintable(source), qPrintable(place)), 0);
        else
            QVERIFY(QFile::link(source, place));
        const auto job = m_fault->runs.add(operation, source);
        m_fault->runWithAnother();
        if (taken == WhenTaken::Replace) {
            compareVerdict(*job, Verdict::Failed, u"would be one of the job's own sources"_s);
        } else {
            compareVerdict(*job, Verdict::Ok, {});
            QVERIFY(job->outputs().constFirst().toLocalFile() != place);
            QVERIFY(secondsOf(job->outputs().constFirst().toLocalFile()) > 1);
        }
        QCOMPARE(QFileInfo(place).isSymLink(), !isHardLink);
        QVERIFY(contentOf(place) == contentOf(source));
    }

    void theSecondFileIsWhatAnEarlierJoinWrote_data()
    {
        QTest::addColumn<QString>("spelling");
        QTest::newRow("as it is") << u"a.mkv.joined.mkv"_s;
        QTest::newRow("another spelling") << u"other/../a.mkv.joined.mkv"_s;
        QTest::newRow("two slashes") << u"/a.mkv.joined.mkv"_s;
        QTest::newRow("a linked folder") << u"linked/a.mkv.joined.mkv"_s;
        QTest::newRow("a symlink") << u"soft.mkv"_s;
        QTest::newRow("a hard link") << u"hard.mkv"_s;
    }

    void theSecondFileIsWhatAnEarlierJoinWrote()
    {
        QFETCH(QString, spelling);
        for (const WhenTaken taken :
             drawn(QList<WhenTaken>{WhenTaken::NextFreeName, WhenTaken::Replace}, 1)) {
            make(taken);
            const QString first = m_fault->film(fullMkv(), u"a.mkv"_s);
            const QString earlier = m_fault->film(fullMkv(), u"a.mkv.joined.mkv"_s);
            QDir().mkpath(m_fault->runs.path(u"other"_s));
            QVERIFY(QFile::link(m_fault->runs.path(), m_fault->runs.path(u"linked"_s)));
            QVERIFY(QFile::link(earlier, m_fault->runs.path(u"soft.mkv"_s)));
            QCOMPARE(::link(qPrintable(earlier), qPrintable(m_fault->runs.path(u"hard.mkv"_s))), 0);
            const QString second = m_fault->runs.path() + u'/' + spelling;
            const auto job = m_fault->runs.add(MkvRuns::filesSelection({first, second}, u"MKV Joining"_s));
            m_fault->runWithAnother();
            if (taken == WhenTaken::NextFreeName)
                compareVerdict(*job, Verdict::Ok, {});
            else
                compareVerdict(*job, Verdict::Failed, u"would be one of the job's own sources"_s);
        }
    }

    void whatStandsInTheWayIsLeftAlone_data()
    {
        rowsFor({mkv::join, mkv::split, mkv::remux, mkv::remove, mkv::mux, mkv::editJoin, mkv::editSplit,
                 mkv::editRemux},
                3);
    }

    void whatStandsInTheWayIsLeftAlone()
    {
        QFETCH(QString, operation);
        const QString source = m_fault->sourceFor(operation);
        const QStringList logs{u"a.mkv.joined.log"_s, u"a.mkv.split.log"_s, u"a.mkv.remuxing.log"_s,
                               u"a.mkv.removed.log"_s, u"a.h264.muxed.log"_s};
        for (const QString &name : logs + QStringList{MkvRuns::outputName(operation)}) {
            writeContent(m_fault->runs.path(name), "mine");
            m_fault->before[m_fault->runs.path(name)] = "mine";
        }
        m_fault->runs.runs.base.setKeepLogs(true);
        const auto job = m_fault->runs.add(operation, source);
        m_fault->runWithAnother();
        compareVerdict(*job, Verdict::Ok, {});
        QVERIFY(secondsOf(job->outputs().constFirst().toLocalFile()) > 1);
    }

private:
    void make(WhenTaken taken)
    {
        m_fault.reset();
        m_fault = std::make_unique<MkvFaultRun>(taken);
    }

    std::unique_ptr<MkvFaultRun> m_fault;
};

TESSARAY_TEST(MkvOwnSourcesTest)
#include "MkvOwnSourcesTest.moc"

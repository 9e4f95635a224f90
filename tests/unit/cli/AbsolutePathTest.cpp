#include "cli/Session.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

class AbsolutePathTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_scratch.write(u"data/films/a.mkv"_s, "film");
        m_scratch.write(u"data/b.mkv"_s, "the other film");
        m_scratch.write(u"fixture/b.mkv"_s, "the wrong film");
        QVERIFY(QFile::link(m_scratch.path(u"data/films"_s), m_scratch.path(u"fixture/link"_s)));
        QVERIFY(QDir::setCurrent(m_scratch.path(u"fixture"_s)));
        m_work = QDir::currentPath();
        m_data = QFileInfo(m_scratch.path(u"data"_s)).canonicalFilePath();
    }

    void paths_data()
    {
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("absolute");
        QTest::newRow("a name") << u"b.mkv"_s << u"WORK/b.mkv"_s;
        QTest::newRow("here") << u"./b.mkv"_s << u"WORK/b.mkv"_s;
        QTest::newRow("dot") << u"."_s << u"WORK"_s;
        QTest::newRow("absolute") << u"/v/a.mkv"_s << u"/v/a.mkv"_s;
        QTest::newRow("several slashes") << u"//v///a.mkv"_s << u"/v/a.mkv"_s;
        QTest::newRow("up") << u"../data/b.mkv"_s << u"DATA/b.mkv"_s;
        QTest::newRow("up from where nothing is") << u"/not/there/../a.mkv"_s << u"/not/a.mkv"_s;
        QTest::newRow("a link stays") << u"link/a.mkv"_s << u"WORK/link/a.mkv"_s;
        QTest::newRow("up from a link") << u"link/../b.mkv"_s << u"DATA/b.mkv"_s;
        QTest::newRow("up from a link, alone") << u"link/.."_s << u"DATA"_s;
        QTest::newRow("a link behind up") << u"../fixture/link/a.mkv"_s << u"WORK/link/a.mkv"_s;
        QTest::newRow("dots in a name") << u"a..b.mkv"_s << u"WORK/a..b.mkv"_s;
        QTest::newRow("leading colon") << u":a.mkv"_s << u"WORK/:a.mkv"_s;
        QTest::newRow("leading colon and slash") << u":/a.mkv"_s << u"WORK/:/a.mkv"_s;
        QTest::newRow("like a location") << u"file:a.mkv"_s << u"WORK/file:a.mkv"_s;
        QTest::newRow("home is the shell's") << u"~/a.mkv"_s << u"WORK/~/a.mkv"_s;
        QTest::newRow("blanks stay") << u" a .mkv "_s << u"WORK/ a .mkv "_s;
        QTest::newRow("backslashes stay") << u"a\\b.mkv"_s << u"WORK/a\\b.mkv"_s;
        QTest::newRow("nothing") << QString() << QString();
    }

    void paths()
    {
        QFETCH(QString, given);
        QFETCH(QString, absolute);
        QCOMPARE(cli::absolutePath(given), absolute.replace(u"WORK"_s, m_work).replace(u"DATA"_s, m_data));
    }

private:
    support::Scratch m_scratch;
    QString m_work;
    QString m_data;
};

TESSARAY_TEST(AbsolutePathTest)
#include "AbsolutePathTest.moc"

#include "cli/BugReport.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

void writeLog(const support::Scratch &scratch, const QString &name, const QByteArray &text, int secondsAgo)
{
    scratch.write(name, text);
    QFile file(scratch.path(name));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-secondsAgo),
                             QFileDevice::FileModificationTime));
}

} // namespace

/// What goes into a report of a bug.
class BugReportTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNewestOfOurLogsIsTaken()
    {
        const support::Scratch scratch;
        writeLog(scratch, u"a/old.log"_s, "Tessaray: meant: old\n", 500);
        writeLog(scratch, u"a/new.log"_s, "Tessaray: meant: new\nProgress: 1%\rProgress: 2%\nTessaray: ok\n",
                 100);
        writeLog(scratch, u"b/between.log"_s, "Tessaray: meant: between\n", 200);
        writeLog(scratch, u"b/other.log"_s, "another program's\n", 1);
        const cli::KeptLog log =
            cli::newestLog({{}, scratch.path(u"b"_s), scratch.path(u"none"_s), scratch.path(u"a"_s)});
        QCOMPARE(log.path, scratch.path(u"a/new.log"_s));
        QCOMPARE(log.lines, QStringList({u"Tessaray: meant: new"_s, u"Progress: 1%"_s, u"Progress: 2%"_s,
                                         u"Tessaray: ok"_s}));
    }

    void withoutALogThereIsNone()
    {
        const support::Scratch scratch;
        scratch.write(u"other.log"_s, "another program's\n");
        QVERIFY(cli::newestLog({scratch.path()}).path.isNull());
        const QStringList lines = cli::bugReport({}, {});
        QVERIFY(lines.constFirst().startsWith(u"tessaray-cli "_s));
        QVERIFY(lines.constLast().startsWith(u"No log was found."_s));
    }

    void aLongLogKeepsItsEnds()
    {
        const support::Scratch scratch;
        QByteArray text;
        for (int line = 1; line <= 500; ++line)
            text += "Tessaray: line " + QByteArray::number(line) + "\n";
        scratch.write(u"long.log"_s, text);
        const QStringList lines = cli::newestLog({scratch.path()}).lines;
        QCOMPARE(lines.size(), 121);
        QCOMPARE(lines.at(19), u"Tessaray: line 20"_s);
        QCOMPARE(lines.at(20), u"... 380 lines left out ..."_s);
        QCOMPARE(lines.at(21), u"Tessaray: line 401"_s);
        QCOMPARE(lines.constLast(), u"Tessaray: line 500"_s);
    }

    void theHomeFolderIsShortened()
    {
        const QString home = QDir::homePath();
        QCOMPARE(cli::withoutHome(u"-i %1/film.mkv '%1' %1"_s.arg(home)), u"-i ~/film.mkv '~' ~"_s);
        QCOMPARE(cli::withoutHome(home + u"2/film.mkv"_s), home + u"2/film.mkv"_s); // another folder
        const QStringList lines =
            cli::bugReport({}, {home + u"/film.log"_s, {u"made "_s + home + u"/film.m4v"_s}});
        QVERIFY(lines.contains(u"The last log, ~/film.log:"_s));
        QCOMPARE(lines.constLast(), u"made ~/film.m4v"_s);
    }
};

TESSARAY_TEST(BugReportTest)
#include "BugReportTest.moc"

// Folders of films, names of results, and lines that go on where they were cut short.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

/// 160x120, 1 s: h264 (0).
QString shortFilm()
{
    return support::clip(u"folder-film.mkv"_s, [](const QString &path) {
        support::runProgram(u"ffmpeg"_s,
                            u"-nostdin -y -v error -f lavfi -i testsrc2=s=160x120:r=25:d=1 -c:v libx264 "
                            "-preset ultrafast"_s.split(u' ')
                                << path);
    });
}

} // namespace

class CliFoldersTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        QDir media(m_cli->media());
        for (const QString &folder : {u"in/deep/er"_s, u"in/.hidden"_s, u"out"_s, u"elsewhere"_s})
            media.mkpath(folder);
        for (const QString &name : {u"in/a.mkv"_s, u"in/deep/b.mkv"_s, u"in/deep/er/c.MKV"_s,
                                    u"in/.hidden/d.mkv"_s, u"elsewhere/e.mkv"_s})
            QVERIFY(QFile::copy(shortFilm(), m_cli->media(name)));
        support::writeContent(m_cli->media(u"in/notes.txt"_s), "no film");
        QVERIFY(QFile::link(m_cli->media(u"elsewhere"_s), m_cli->media(u"in/link"_s)));
    }

    void aFolderNeedsTheOption()
    {
        const auto run = m_cli->run({u"convert"_s, u"in"_s});
        QCOMPARE(run.status, 64);
        QVERIFY(run.said().contains(u"--recursive"_s));
    }

    /// The second night does not convert the first night's results.
    void besideTheFilmsAndAgain()
    {
        const QStringList words{u"convert"_s, u"in"_s, u"--recursive"_s, u"--no-keep-logs"_s};
        const auto first = m_cli->run(words);
        QVERIFY2(first.status == 0, first.error.constData());
        QCOMPARE(filmsIn(u"in"_s), u"a.m4v a.mkv deep/b.m4v deep/b.mkv deep/er/c.MKV deep/er/c.m4v"_s);
        const auto again = m_cli->run(words + QStringList{u"--skip-existing"_s});
        QVERIFY2(again.status == 0, again.error.constData());
        QCOMPARE(again.said().count(u"is there, so it is passed over."_s), 3);
        QCOMPARE(filmsIn(u"in"_s), u"a.m4v a.mkv deep/b.m4v deep/b.mkv deep/er/c.MKV deep/er/c.m4v"_s);
        QFile::remove(m_cli->media(u"in/deep/b.m4v"_s));
        QCOMPARE(m_cli->run(words + QStringList{u"--skip-existing"_s}).status, 0);
        QVERIFY(QFile::exists(m_cli->media(u"in/deep/b.m4v"_s)));
        QCOMPARE(m_cli->run(words).status, 2); // they are there
    }

    void treesAreMirrored()
    {
        const QStringList words{u"in"_s, u"--recursive"_s, u"--save-dir"_s, u"out"_s, u"--no-keep-logs"_s};
        const auto plan = m_cli->run(QStringList{u"plan"_s, u"--json"_s} + words);
        QVERIFY2(plan.status == 0, plan.error.constData());
        QCOMPARE(filmsIn(u"out"_s), QString());
        QCOMPARE(QDir(m_cli->media(u"out"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList());
        const auto run = m_cli->run(QStringList{u"convert"_s} + words);
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(filmsIn(u"out"_s), u"a.m4v deep/b.m4v deep/er/c.m4v"_s);
        QStringList planned;
        for (const QJsonObject &film : plan.objects())
            planned.append(film.value(u"outputs"_s).toArray().at(0).toString());
        QCOMPARE(planned, QStringList({m_cli->media(u"out/a.m4v"_s), m_cli->media(u"out/deep/b.m4v"_s),
                                       m_cli->media(u"out/deep/er/c.m4v"_s)}));
    }

    void aResultIsNamed()
    {
        const auto run = m_cli->run(
            {u"convert"_s, u"in/a.mkv"_s, u"--output"_s, u"out/My film.mp4"_s, u"--no-keep-logs"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(filmsIn(u"out"_s), u"My film.mp4"_s);
        QCOMPARE(run.lines(), QStringList{m_cli->media(u"out/My film.mp4"_s)});
    }

    void namesThatCantBe_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<int>("status");
        QTest::newRow("two films") << QStringList{u"in/a.mkv"_s, u"in/deep/b.mkv"_s, u"--output"_s,
                                                  u"x.m4v"_s}
                                   << 64;
        QTest::newRow("a folder") << QStringList{u"in"_s, u"--recursive"_s, u"--output"_s, u"x.m4v"_s} << 64;
        QTest::newRow("another kind") << QStringList{u"in/a.mkv"_s, u"--output"_s, u"x.mkv"_s} << 64;
        QTest::newRow("no kind") << QStringList{u"in/a.mkv"_s, u"--output"_s, u"x"_s} << 64;
        QTest::newRow("a save folder")
            << QStringList{u"in/a.mkv"_s, u"--output"_s, u"x.m4v"_s, u"--save-dir"_s, u"out"_s} << 64;
        QTest::newRow("no such folder") << QStringList{u"in/a.mkv"_s, u"--output"_s, u"none/x.m4v"_s} << 2;
        QTest::newRow("the film itself")
            << QStringList{u"in/a.mkv"_s, u"--kind"_s, u"mkv"_s, u"--force"_s, u"--skip-existing"_s} << 64;
    }

    void namesThatCantBe()
    {
        QFETCH(QStringList, words);
        const auto run = m_cli->run(QStringList{u"convert"_s} + words);
        QTEST(run.status, "status");
        QCOMPARE(filmsIn(u"in"_s), u"a.mkv deep/b.mkv deep/er/c.MKV"_s);
    }

    /// As a pool of machines does it: each line by itself, in any order, and once more from the start.
    void linesOfAPlanGoOn()
    {
        QDir(m_cli->media()).rmdir(u"out"_s);
        const auto plan = m_cli->run({u"plan"_s, u"in"_s, u"--recursive"_s, u"--save-dir"_s, u"out"_s,
                                      u"--commands"_s, u"--skip-existing"_s, u"--no-keep-logs"_s});
        QCOMPARE(plan.lines().size(), 3);
        QCOMPARE(shellStatus(plan.lines().at(1)), 0);
        QCOMPARE(filmsIn(u"out"_s), u"deep/b.m4v"_s);
        for (const QString &line : plan.lines())
            QCOMPARE(shellStatus(line), 0);
        QCOMPARE(filmsIn(u"out"_s), u"a.m4v deep/b.m4v deep/er/c.m4v"_s);
    }

private:
    /// The films below a folder but for those in hidden folders and behind links.
    QString filmsIn(const QString &folder) const
    {
        QStringList names;
        QDirIterator files(m_cli->media(folder), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString name = QDir(m_cli->media(folder)).relativeFilePath(files.next());
            if (!name.startsWith(u'.') && !name.endsWith(u".txt"_s))
                names.append(name);
        }
        names.sort();
        return names.join(u' ');
    }

    int shellStatus(const QString &line) const
    {
        QProcess shell;
        shell.setProcessEnvironment(m_cli->environment());
        shell.setWorkingDirectory(m_cli->scratch().path());
        shell.start(u"/bin/sh"_s, {u"-c"_s, line});
        return shell.waitForFinished(240000) ? shell.exitCode() : -1;
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliFoldersTest)
#include "CliFoldersTest.moc"

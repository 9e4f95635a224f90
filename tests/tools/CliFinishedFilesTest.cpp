// What scripts do with finished files: --print, --exec, and the films they name with --list; and the report
// of a bug.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::words;

class CliFinishedFilesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
    }

    void onlyFinishedFilesArePrinted()
    {
        m_cli->scratch().write(u"media/bad.mkv"_s, "no film");
        const auto run = m_cli->run(words(u"remux film.mkv bad.mkv --print outputs --no-keep-logs"_s));
        QCOMPARE(run.status, 2); // of the bad one, which leaves nothing finished
        QCOMPARE(QString::fromUtf8(run.output), m_cli->media(u"film.mkv.remux.mkv"_s) + u'\n');
        const auto split =
            m_cli->run(words(u"split film.mkv --duration 00:00:03 --print outputs --no-keep-logs"_s));
        QVERIFY2(split.status < 2, split.error.constData());
        QVERIFY(split.lines().size() > 1);
        for (const QString &path : split.lines())
            QVERIFY2(QFile::exists(path), qPrintable(path));
    }

    void namesOfAnyKindEndWithNul()
    {
        const QString odd = u"line one\nline two\u001b[31m"_s;
        QVERIFY(QDir().mkpath(m_cli->media(odd)));
        m_cli->clip(support::fullMkv(), odd + u"/film.mkv"_s);
        const auto run =
            m_cli->run({u"remux"_s, odd + u"/film.mkv"_s, u"film.mkv"_s, u"--print"_s, u"outputs0"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.output.split('\0'),
                 QByteArrayList({m_cli->media(odd + u"/film.mkv.remux.mkv"_s).toUtf8(),
                                 m_cli->media(u"film.mkv.remux.mkv"_s).toUtf8(),
                                 {}}));
    }

    /// No shell sees the path, and the program gets nothing but that.
    void aProgramRunsForEachFinishedFile()
    {
        const QString odd = u"a $(touch x) 'b' ; c"_s;
        QVERIFY(QDir().mkpath(m_cli->media(odd)));
        m_cli->clip(support::fullMkv(), odd + u"/film.mkv"_s);
        script(u"after"_s,
               "printf '%s|' \"$#\" \"$1\" >> told; echo seen; ls \"$1\" > /dev/null && sleep 0.3");
        const auto run = m_cli->run({u"remux"_s, odd + u"/film.mkv"_s, u"film.mkv"_s, u"--exec"_s,
                                     u"./after"_s, u"--no-keep-logs"_s, u"--quiet"_s});
        QVERIFY2(run.status == 0 && run.error.isEmpty(), run.error.constData());
        QCOMPARE(QString::fromUtf8(m_cli->scratch().read(u"media/told"_s)),
                 u"1|%1|1|%2|"_s.arg(m_cli->media(odd + u"/film.mkv.remux.mkv"_s),
                                     m_cli->media(u"film.mkv.remux.mkv"_s)));
        QCOMPARE(run.lines().count(u"seen"_s), 2);
        QVERIFY(!m_cli->mediaNames().contains(u"x"_s));
    }

    void whatItPrintsStaysOutOfObjectsAndPaths()
    {
        script(u"after"_s, "echo seen");
        const auto json = m_cli->run(words(u"remux film.mkv --exec ./after --json"_s));
        QCOMPARE(json.objects().constLast().value(u"event"_s).toString(), u"done"_s);
        QVERIFY2(json.error.contains("seen\n"), json.error.constData());
        const auto print = m_cli->run(words(u"remux film.mkv --exec ./after --print outputs --force"_s));
        QCOMPARE(print.lines(), QStringList{m_cli->media(u"film.mkv.remux.mkv"_s)});
    }

    void itsFailureIsAWarning()
    {
        script(u"after"_s, "exit 7");
        const auto run = m_cli->run(words(u"remux film.mkv --exec ./after --quiet"_s));
        QCOMPARE(run.status, 1);
        QVERIFY2(run.said().contains(u"ended with status 7"_s), run.error.constData());
        script(u"after"_s, "kill -9 $$");
        const auto killed = m_cli->run(words(u"remux film.mkv --exec ./after --quiet --force"_s));
        QCOMPARE(killed.status, 1);
        QVERIFY2(killed.said().contains(u"did not end by itself"_s), killed.error.constData());
    }

    void nothingRunsForWhatFailed()
    {
        m_cli->scratch().write(u"media/bad.mkv"_s, "no film");
        script(u"after"_s, "touch ran");
        QCOMPARE(m_cli->run(words(u"remux bad.mkv --exec ./after"_s)).status, 2);
        QVERIFY(!m_cli->mediaNames().contains(u"ran"_s));
    }

    void wrongWordsAreWrongUsage_data()
    {
        QTest::addColumn<QStringList>("more");
        QTest::addColumn<QString>("told");
        QTest::newRow("print") << QStringList{u"--print"_s, u"paths"_s} << u"outputs or outputs0"_s;
        QTest::newRow("json") << QStringList{u"--print"_s, u"outputs"_s, u"--json"_s}
                              << u"exclude each other"_s;
        QTest::newRow("dry run") << QStringList{u"--print=outputs0"_s, u"--dry-run"_s}
                                 << u"exclude each other"_s;
        QTest::newRow("no program") << QStringList{u"--exec"_s, u"no-such-program"_s} << u"no program"_s;
        QTest::newRow("a line") << QStringList{u"--exec"_s, u"ls -l"_s} << u"without arguments"_s;
        QTest::newRow("a folder") << QStringList{u"--exec"_s, u"/tmp"_s} << u"no program \"/tmp\""_s;
        QTest::newRow("nothing") << QStringList{u"--exec="_s} << u"no program"_s;
    }

    void wrongWordsAreWrongUsage()
    {
        QFETCH(const QStringList, more);
        QFETCH(const QString, told);
        const auto run = m_cli->run(QStringList{u"remux"_s, u"film.mkv"_s} + more);
        QCOMPARE(run.status, 64);
        QVERIFY2(run.said().contains(told), run.error.constData());
        QCOMPARE(m_cli->mediaNames(), QStringList{u"film.mkv"_s});
    }

    void filmsAreNamedByAList()
    {
        m_cli->clip(support::fullMkv(), u"second film.mkv"_s);
        m_cli->scratch().write(u"media/list"_s, "\nsecond film.mkv\n\nfilm.mkv");
        const auto file = m_cli->run(words(u"remux --list list --dry-run"_s));
        QVERIFY2(file.status == 0, file.error.constData());
        QCOMPARE(file.lines().size(), 2);
        QVERIFY2(file.lines().constFirst().contains(u"second film.mkv"_s), file.output.constData());
        const auto both = m_cli->run({u"probe"_s, u"film.mkv"_s, u"--list"_s, u"list"_s, u"--json"_s});
        QCOMPARE(both.objects().size(), 3);
        for (const QByteArray &input :
             {QByteArray("film.mkv\n"), QByteArray("film.mkv\0second film.mkv\0", 25)}) {
            const auto run = withInput(words(u"probe --list - --json"_s), input);
            QCOMPARE(run.status, 0);
            QCOMPARE(run.objects().size(), input.contains('\0') ? 2 : 1);
        }
    }

    void aListThatIsNoneFails()
    {
        m_cli->scratch().write(u"media/empty"_s, "\n\n");
        m_cli->scratch().write(u"media/latin"_s, "f\xfcr.mkv\n");
        QCOMPARE(m_cli->run(words(u"remux --list gone"_s)).status, 2);
        QCOMPARE(m_cli->run(words(u"remux --list empty"_s)).status, 2);
        const auto latin = m_cli->run(words(u"remux --list latin"_s));
        QCOMPARE(latin.status, 2);
        QVERIFY2(latin.said().contains(u"not UTF-8"_s), latin.error.constData());
        QCOMPARE(m_cli->run(words(u"tools --list list"_s)).status, 64);
    }

    void theReportHasVersionsAndTheLastLog()
    {
        QCOMPARE(m_cli->run(words(u"remux film.mkv --keep-logs"_s)).status, 0);
        const auto run = m_cli->run(words(u"tools --report"_s));
        QCOMPARE(run.status, 0);
        QVERIFY(run.lines().constFirst().startsWith(u"tessaray-cli "_s));
        for (const auto *part : {"Qt ", "ffmpeg", "mkvmerge", "The last log", "film.mkv.remuxing.log",
                                 "Tessaray: meant: ", "Tracks:", "Tessaray: ok"})
            QVERIFY2(run.output.contains(part), part);
        const auto json = m_cli->run(words(u"tools --report --json"_s));
        QCOMPARE(json.objects().size(), 1);
        QCOMPARE(json.objects().constFirst().value(u"report"_s).toString(),
                 QString::fromUtf8(run.output).chopped(1));
    }

private:
    void script(const QString &name, const QByteArray &lines) const
    {
        m_cli->scratch().write(u"media/"_s + name, "#!/bin/sh\n" + lines + "\n");
        QVERIFY(QFile::setPermissions(m_cli->media(name),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    CliFixture::Run withInput(const QStringList &line, const QByteArray &input) const
    {
        QProcess process;
        process.setProcessEnvironment(m_cli->environment());
        process.setWorkingDirectory(m_cli->media());
        process.start(m_cli->program(),
                      QStringList{u"--defaults"_s, m_cli->scratch().path(u"defaults.json"_s)} + line);
        process.write(input);
        process.closeWriteChannel();
        return CliFixture::outcomeOf(process);
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliFinishedFilesTest)
#include "CliFinishedFilesTest.moc"

// Names of files and texts in them come from strangers. A thousand bad ones go through the step that
// makes a shell line, into real shells: each arrives to the byte, and nothing else happens.
#include "support/HostileTexts.h"
#include "support/FakePlaces.h"
#include "support/FakeTool.h"
#include "support/Scratch.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "tools/KXHelpers.h"
#include "tools/ShellRunner.h"

#include <QDir>
#include <QProcess>
#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;
using support::FakeTool;
using tools::OptionItem;
using tools::OptionList;
using tools::Quoting;
using tools::ShellKind;

namespace {

const qsizetype textCount = support::times(1000, 250);

/// Every way a text can stand in a list.
OptionList optionsWith(const QString &text, const QString &name)
{
    return {u"-i",
            QUrl::fromLocalFile(u"/films/"_s + name),
            OptionItem(u"title=").withData(text, Quoting::None),
            OptionItem(u"--track-name 0:").withData(text, Quoting::Single),
            OptionItem::ofData(text, Quoting::None),
            OptionItem::ofData(text, Quoting::Double),
            OptionItem(u"a").withData(text, Quoting::None).with(u"z"),
            u"end"};
}

QByteArrayList expectedFrom(const QString &text, const QString &name)
{
    const QByteArray bytes = text.toUtf8();
    return {"-i",
            "/films/" + name.toUtf8(),
            "title=" + bytes,
            "--track-name",
            "0:" + bytes,
            bytes,
            bytes,
            'a' + bytes + 'z',
            "end"};
}

} // namespace

class HostileTextsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QDir().mkpath(canary());
        for (const QString &program : support::temptingPrograms())
            FakeTool::install(m_scratch.path(u"bin/"_s + program));
        QVERIFY(QFile::exists(u"/bin/sh"_s));
        QVERIFY(QFile::exists(u"/bin/bash"_s));
    }

    void textsAreManyAndBad()
    {
        const QStringList texts = support::hostileTexts(textCount);
        QCOMPARE(texts.size(), textCount);
        QVERIFY(QSet<QString>(texts.begin(), texts.end()).size() > textCount / 10 * 9);
        for (const QChar c : u"'\"`$()\\;&|<>*?~!#\n\t\r -ü"_s) {
            const auto holding = std::count_if(texts.begin(), texts.end(),
                                               [&](const QString &text) { return text.contains(c); });
            QVERIFY2(holding > textCount / 50, qPrintable(QString(c)));
        }
        QCOMPARE(support::hostileTexts(textCount), texts);
    }

    void eachArrivesToTheByteAndNothingElseRuns_data()
    {
        QTest::addColumn<QString>("shell");
        QTest::addColumn<ShellKind>("kind");
        QTest::newRow("/bin/sh") << u"/bin/sh"_s << tools::shellKind();
        QTest::newRow("bash") << u"/bin/bash"_s << ShellKind::KnowsAmpersandRedirect;
    }

    void eachArrivesToTheByteAndNothingElseRuns()
    {
        QFETCH(QString, shell);
        QFETCH(ShellKind, kind);
        const QStringList texts = support::hostileTexts(textCount);
        const QStringList names = support::hostileNames(textCount);
        QFile::remove(record());
        for (qsizetype i = 0; i < textCount; ++i) {
            const auto line = tools::toolLine(m_tool, optionsWith(texts.at(i), names.at(i)), m_places, kind);
            const QString trouble = troubleWith(shell, line.launched);
            QVERIFY2(trouble.isNull(), qPrintable(line.launched + u'\n' + trouble));
        }
        const auto runs = FakeTool::recordedRuns(record());
        QCOMPARE(runs.size(), textCount);
        for (qsizetype i = 0; i < textCount; ++i) {
            QCOMPARE(runs.at(i).program, m_tool.toLocalFile().toUtf8());
            QCOMPARE(runs.at(i).arguments, expectedFrom(texts.at(i), names.at(i)));
        }
        QVERIFY2(canaryNames().isEmpty(), qPrintable(canaryNames().join(u'|')));
    }

    void badTextsWouldDoHarmUnquoted()
    {
        // Shows that the snares work: the same canary and the same record tell of a line made naively.
        QFile::remove(record());
        troubleWith(u"/bin/sh"_s, KXHelpers::doubleQuotedFormOf(m_tool.toLocalFile()) + u" '"_s +
                                      u"';touch X;#"_s + u"'"_s);
        troubleWith(u"/bin/sh"_s, u"> X"_s);
        const auto runs = FakeTool::recordedRuns(record());
        QCOMPARE(runs.size(), 2);
        QVERIFY(runs.at(1).program.endsWith("touch"));
        QCOMPARE(canaryNames(), QStringList({u"X"_s}));
        QFile::remove(canary() + u"/X"_s);
    }

    void toolMayStandInABadFolder()
    {
        const QStringList names = support::drawn(support::hostileNames(120), 30);
        for (const QString &name : names) {
            QFile::remove(record());
            const QString tool = FakeTool::install(m_scratch.path(u"bad/"_s + name.left(60) + u"/mplayer"_s));
            const auto line =
                tools::toolLine(QUrl::fromLocalFile(tool), {u"x"}, m_places, tools::shellKind());
            const QString trouble = troubleWith(u"/bin/sh"_s, line.launched);
            QVERIFY2(trouble.isNull(), qPrintable(line.launched + u'\n' + trouble));
            const auto runs = FakeTool::recordedRuns(record());
            QCOMPARE(runs.size(), 1);
            QCOMPARE(runs.first().program, tool.toUtf8());
        }
    }

    void resourcesMayStandInABadFolder()
    {
        const QString seen = m_scratch.path(u"seen"_s);
        const QString mkv = FakeTool::install(m_scratch.path(u"tools/mkvtoolnix/mkvmerge"_s),
                                              {u"environment LD_LIBRARY_PATH "_s + seen});
        const QString ffmpeg = FakeTool::install(m_scratch.path(u"tools/ffmpeg/ffmpeg"_s),
                                                 {u"environment FONTCONFIG_FILE "_s + seen});
        for (const QString &name : support::drawn(support::hostileNames(60), 15)) {
            const support::FakePlaces places(m_scratch.path(u"homes/"_s + name.left(60)));
            const QString resources = places.resourcesLocation().toLocalFile();
            QFile::remove(seen);
            const auto mkvLine = tools::toolLine(QUrl::fromLocalFile(mkv), {}, places, tools::shellKind());
            QVERIFY(troubleWith(u"/bin/sh"_s, mkvLine.launched).isNull());
            const auto burning =
                tools::toolLine(QUrl::fromLocalFile(ffmpeg), {u"subtitles=a"}, places, tools::shellKind());
            QVERIFY(troubleWith(u"/bin/sh"_s, burning.launched).isNull());
            QCOMPARE(m_scratch.read(u"seen"_s),
                     (u"LD_LIBRARY_PATH="_s + resources + u"/mkvtoolnix/lib\nFONTCONFIG_FILE="_s + resources +
                      u"/fonts/fonts.conf\n"_s)
                         .toUtf8());
        }
    }

    void logMayHaveABadName()
    {
        const KXHelpers helpers(&m_places);
        for (const QString &name : support::drawn(support::hostileNames(120), 30)) {
            const QUrl log = m_scratch.url(u"logs/"_s + name);
            QDir().mkpath(m_scratch.path(u"logs"_s));
            const QString pid = helpers.doShellScriptForWithOptions(
                m_tool,
                {u"--do", OptionItem::ofData(u"out said"_s, Quoting::Single), u"&>", log, u"& echo $!"});
            bool isNumber = false;
            QVERIFY2(pid.toLongLong(&isNumber) > 1 && isNumber, qPrintable(name));
            QTRY_VERIFY(!helpers.processIsRunningWithPID(pid));
            QCOMPARE(helpers.doUnixCommandWithOptions(u"tr '\\r' '\\n' < ",
                                                      {log, u"| tail -20", u"| grep 'said'"}),
                     u"said"_s);
            QVERIFY(QFile::remove(log.toLocalFile()));
        }
        QVERIFY(QDir(m_scratch.path(u"logs"_s)).isEmpty());
    }

private:
    QString canary() const { return m_scratch.path(u"canary"_s); }
    QString record() const { return m_scratch.path(u"record"_s); }
    QStringList canaryNames() const
    {
        return QDir(canary()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                        QDir::NoDotAndDotDot);
    }

    /// Runs the line where every program but the recorded ones is missing, and answers what went wrong.
    QString troubleWith(const QString &shell, const QString &line) const
    {
        QProcess process;
        QProcessEnvironment environment;
        environment.insert(u"PATH"_s, m_scratch.path(u"bin"_s));
        environment.insert(u"HOME"_s, u"/nobody's home"_s);
        environment.insert(u"FAKETOOL_RECORD"_s, record());
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(canary());
        process.start(shell, {u"-c"_s, line});
        if (!process.waitForFinished(support::patience))
            return u"it did not end"_s;
        const QByteArray said = process.readAllStandardOutput() + process.readAllStandardError();
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0 || !said.isEmpty())
            return u"status %1: %2"_s.arg(process.exitCode()).arg(QString::fromUtf8(said));
        return {};
    }

    support::Scratch m_scratch;
    support::FakePlaces m_places{m_scratch.path()};
    QUrl m_tool = QUrl::fromLocalFile(FakeTool::install(m_scratch.path(u"tools/ffmpeg/ffprobe"_s)));
};

TESSARAY_TEST(HostileTextsTest)
#include "HostileTextsTest.moc"

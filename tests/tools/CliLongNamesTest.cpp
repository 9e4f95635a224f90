// A source whose name is as long as a folder allows: what is written gets a name that fits, or nothing
// starts.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

constexpr qsizetype longest = 255;

/// 255 bytes; an even number of them in front of the extension holds only whole letters.
QString longName(const QString &letters, const QString &extension)
{
    QString name;
    while (QFile::encodeName(name + letters + extension).size() <= longest)
        name += letters;
    while (QFile::encodeName(name + extension).size() < longest)
        name.prepend(u'x');
    return name + extension;
}

} // namespace

class CliLongNamesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOperationSaysSoOrItsNamesFit_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("letters");
        QTest::addColumn<bool>("fits");
        // Letters of one, two and four bytes.
        const auto rows = [](const QString &line, bool fits) {
            for (const QString &letters : support::drawn(QStringList{u"a"_s, u"é"_s, u"\U0001F3AC"_s}, 1))
                QTest::addRow("%s, of %s", qPrintable(line), qPrintable(letters)) << line << letters << fits;
        };
        rows(u"convert NAME"_s, true);
        rows(u"convert NAME --video 2pass --video-bitrate 300"_s, true);
        rows(u"convert NAME --video 1pass --subtitles burn"_s, true);
        rows(u"convert NAME --kind mkv"_s, true);
        rows(u"convert NAME --kind avi --video 1pass"_s, true);
        for (const QString &line :
             {u"remux NAME"_s, u"remove NAME --tracks 1"_s, u"extract NAME"_s, u"join NAME NAME"_s,
              u"split NAME --duration 00:00:02"_s, u"split NAME --time 00:00:01-00:00:03"_s, u"send NAME"_s})
            rows(line, false);
    }

    void anOperationSaysSoOrItsNamesFit()
    {
        QFETCH(QString, line);
        QFETCH(QString, letters);
        QFETCH(bool, fits);
        const CliFixture cli;
        const QString name = longName(letters, u".mkv"_s);
        QCOMPARE(QFile::encodeName(name).size(), longest);
        cli.clip(support::blackMkv(), name);
        QVERIFY(QDir().mkpath(cli.media(u"out"_s)));
        QStringList words = line.split(u' ');
        words.replaceInStrings(u"NAME"_s, name);
        const auto run = cli.run(words + QStringList{u"--keep-logs"_s, u"--save-dir"_s, u"out"_s});
        QVERIFY2(run.status == (fits ? 0 : 2), qPrintable(u"%1: %2"_s.arg(run.status).arg(run.said())));
        QCOMPARE(run.said().contains(u"would be too long, so nothing was started"_s), !fits);
        const QStringList names = QDir(cli.media(u"out"_s)).entryList(QDir::Files | QDir::Hidden);
        QCOMPARE(names.isEmpty(), !fits);
        for (const QString &made : names) {
            QVERIFY2(!made.contains(QChar::ReplacementCharacter), qPrintable(made)); // cut at a whole letter
            QVERIFY(QFile::encodeName(made).size() <= longest);
        }
    }

    void theNextFreeNameFitsToo()
    {
        const CliFixture cli;
        const QString name = longName(u"a"_s, u".mkv"_s);
        cli.clip(support::blackMkv(), name);
        const QString output = name.chopped(3) + u"m4v"_s;
        cli.scratch().write(u"media/"_s + output, "old");
        const auto run = cli.run({u"convert"_s, u"--force"_s, u"--no-keep-logs"_s, name});
        QVERIFY2(run.status == 0, qPrintable(run.said()));
        QCOMPARE(cli.mediaNames(), QStringList({output, name})); // the old one was aside meanwhile
        QCOMPARE(support::codecsOf(cli.media(output)).section(u' ', 0, 0), u"h264"_s);
    }
};

TESSARAY_TEST(CliLongNamesTest)
#include "CliLongNamesTest.moc"

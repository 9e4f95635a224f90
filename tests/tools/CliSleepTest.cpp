// The machine sleeps while a film is converted: all processes stand still, and the clock has moved on by ten
// days when they go on. The job ends as if nothing had been, and nobody took what it holds for abandoned.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::waitFor;
using support::words;

namespace {

const QByteArray tenDays = "864000";

} // namespace

class CliSleepTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->useOwnTools();
        m_cli->setTool(u"ffmpeg/ffmpeg"_s, u"/usr/bin/ffmpeg -re \"$@\""_s); // at the speed of the film
        m_cli->setEnvironment(u"LD_PRELOAD"_s, QStringLiteral(TESSARAY_FAULT_LIBRARY));
        m_cli->setEnvironment(u"TESSARAY_CLOCK_AHEAD"_s, m_cli->scratch().path(u"ahead"_s));
        m_cli->clip(support::longMkv(4), u"film.mkv"_s);
        m_cli->clip(support::film1920(), u"next.mkv"_s);
    }

    void cleanup()
    {
        signalAll(SIGKILL); // only after a failure
        m_cli.reset();
    }

    void aJobSleepsThrough_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("output");
        QTest::newRow("a conversion") << u"convert film.mkv --json"_s << u"film.m4v"_s;
        QTest::newRow("two passes") << u"convert film.mkv --video 2pass --video-bitrate 300 --json"_s
                                    << u"film.m4v"_s;
    }

    void aJobSleepsThrough()
    {
        QFETCH(QString, line);
        QFETCH(QString, output);
        const auto program = m_cli->start(words(line));
        QVERIFY(waitFor([this] { return toolsRun(); }));
        const QList<qint64> asleep = m_cli->processes();
        signalAll(SIGSTOP);
        m_cli->scratch().write(u"ahead"_s, tenDays);
        const QStringList held = hiddenNames();
        QVERIFY(held.size() >= 2); // a claim and a work folder
        // Another program works in that folder meanwhile, and would like the same name.
        QCOMPARE(m_cli->run(words(u"remux next.mkv --quiet"_s)).status, 0);
        QCOMPARE(m_cli->run(words(line)).status, 2);
        QCOMPARE(hiddenNames(), held);
        for (const qint64 pid : asleep)
            ::kill(static_cast<pid_t>(pid), SIGCONT);
        const CliFixture::Run run = CliFixture::outcomeOf(*program);
        QVERIFY2(run.status == 0, qPrintable(run.said()));
        QVERIFY(support::secondsOf(m_cli->media(output)) > 3.5);
        QCOMPARE(hiddenNames(), QStringList());
        checkTimes(run);
    }

private:
    bool toolsRun() const
    {
        for (const QString &words : m_cli->commandLines()) {
            if (words.startsWith(u"/usr/bin/ffmpeg"_s))
                return true;
        }
        return false;
    }

    void signalAll(int number) const
    {
        for (const qint64 pid : m_cli->processes())
            ::kill(static_cast<pid_t>(pid), number);
    }

    QStringList hiddenNames() const
    {
        return QDir(m_cli->media())
            .entryList({u".tessaray-*"_s}, QDir::AllEntries | QDir::Hidden, QDir::Name);
    }

    /// No time that is shown knows of the days.
    static void checkTimes(const CliFixture::Run &run)
    {
        int told = 0;
        for (const QJsonObject &event : run.objects()) {
            for (const QString &word : {u"elapsedSeconds"_s, u"leftSeconds"_s, u"queueLeftSeconds"_s}) {
                const double seconds = event.value(word).toDouble();
                told += seconds > 0 ? 1 : 0;
                QVERIFY2(seconds >= 0 && seconds < 3600, qPrintable(u"%1 %2"_s.arg(word).arg(seconds)));
            }
        }
        QVERIFY(told > 0);
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliSleepTest)
#include "CliSleepTest.moc"

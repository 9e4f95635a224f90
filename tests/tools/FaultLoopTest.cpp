// Each call by which the program writes fails once, or is its end: the first, the second, and so on until
// none is left. Whatever comes of it, the sources stay, a file that bears a finished name is whole, and the
// next start in that folder leaves nothing else. The short form draws some of the calls, the long form takes
// each with each error.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::waitFor;
using support::words;

namespace {

constexpr int theEnd = 0; // of the program, in the place of an error
constexpr int mostCalls = 400;

struct Errand
{
    const char *name;
    QString line;
    QString output;
    double seconds;
};

/// What is done with a fault in its way. A further one needs a row.
QList<Errand> errands()
{
    return {{"a conversion", u"convert a.mkv --kind mkv --tracks 0,1 --quiet"_s, u"a.mkv.mkv"_s, 1.5},
            {"a join", u"join a.mkv b.mkv --quiet"_s, u"a.mkv.joined.mkv"_s, 3.5}};
}

} // namespace

class FaultLoopTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_cli.clip(support::fullMkv(), u"a.mkv"_s);
        m_cli.clip(support::fullMkv(), u"b.mkv"_s);
        m_cli.clip(support::film1920(), u"next.mkv"_s);
        m_names = m_cli.mediaNames();
        m_sources = sources();
        m_met = m_cli.scratch().path(u"met"_s);
        m_cli.setEnvironment(u"TESSARAY_FAULT_MET"_s, m_met);
    }

    void everyFault_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("output");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("error");
        for (const Errand &errand : errands()) {
            for (const int error : {ENOSPC, EIO, EACCES, theEnd})
                QTest::addRow("%s, %s", errand.name, error == theEnd ? "the end" : ::strerror(error))
                    << errand.line << errand.output << errand.seconds << error;
        }
    }

    void everyFault()
    {
        QFETCH(QString, line);
        QFETCH(QString, output);
        QFETCH(double, seconds);
        QFETCH(int, error);
        int calls = 0;
        for (const int call : callsToFail(line)) {
            const CliFixture::Run run = runWithFault(line, call, error);
            if (!QFile::exists(m_met))
                break;
            ++calls;
            const QString where = u"call %1: status %2, %3 %4"_s.arg(call)
                                      .arg(run.status)
                                      .arg(run.said(), m_cli.mediaNames().join(u' '));
            QVERIFY2(waitFor([&] { return m_cli.processes().isEmpty(); }), qPrintable(where));
            const bool isDone = m_cli.mediaNames().contains(output);
            QVERIFY2(!isDone || support::secondsOf(m_cli.media(output)) > seconds, qPrintable(where));
            QVERIFY2(isDone || run.status > 1, qPrintable(where));
            QVERIFY2(error == theEnd || run.status < 3, qPrintable(where));
            QVERIFY2(run.status != 2 || !run.error.isEmpty(), qPrintable(where));
            checkNextStart(where);
        }
        QVERIFY(calls > 0);
    }

private:
    /// All of them, one after the other, or some that are drawn among so many as there are.
    QList<int> callsToFail(const QString &line)
    {
        QList<int> all;
        const int count = support::isSoak() ? mostCalls : callsIn(line);
        for (int call = 1; call <= count; ++call)
            all.append(call);
        return support::drawn(all, 4);
    }

    /// How many there are: the last one that is met when it is looked for by halves.
    int callsIn(const QString &line)
    {
        int met = 0;
        int notMet = mostCalls;
        while (notMet - met > 1) {
            const int middle = (met + notMet) / 2;
            runWithFault(line, middle, theEnd);
            (QFile::exists(m_met) ? met : notMet) = middle;
            waitFor([&] { return m_cli.processes().isEmpty(); });
            clearUp();
        }
        return met;
    }

    CliFixture::Run runWithFault(const QString &line, int call, int error)
    {
        QFile::remove(m_met);
        m_cli.setEnvironment(u"LD_PRELOAD"_s, QStringLiteral(TESSARAY_FAULT_LIBRARY));
        m_cli.setEnvironment(u"TESSARAY_FAULT"_s, u"%1 %2"_s.arg(call).arg(error));
        const CliFixture::Run run = m_cli.run(words(line));
        m_cli.setEnvironment(u"LD_PRELOAD"_s, {});
        return run;
    }

    void clearUp()
    {
        m_cli.run(words(u"remux next.mkv --quiet --force"_s));
        for (const QString &name : m_cli.mediaNames()) {
            if (!m_names.contains(name) && !name.startsWith(u".tessaray"_s))
                QFile::remove(m_cli.media(name));
        }
    }

    void checkNextStart(const QString &where)
    {
        clearUp();
        QVERIFY2(m_cli.mediaNames() == m_names, qPrintable(where + m_cli.mediaNames().join(u' ')));
        QVERIFY2(m_cli.temporaryNames().isEmpty(), qPrintable(where));
        QVERIFY2(sources() == m_sources, qPrintable(where));
    }

    QByteArray sources() const
    {
        return m_cli.scratch().read(u"media/a.mkv"_s) + m_cli.scratch().read(u"media/b.mkv"_s);
    }

    CliFixture m_cli;
    QStringList m_names;
    QByteArray m_sources;
    QString m_met;
};

TESSARAY_TEST(FaultLoopTest)
#include "FaultLoopTest.moc"

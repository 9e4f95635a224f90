// Each call by which the program writes fails once, or is its end: the first, the second, and so on until
// none is left. Whatever comes of it, the sources stay, a file that bears a finished name is whole, a preset
// that was said to be stored is there, and the next start leaves nothing else. The short form draws some of
// the calls, the long form takes each with each error.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::waitFor;
using support::words;

namespace {

constexpr int theEnd = 0;        // of the program, in the place of an error
constexpr int atTheSameTime = 3; // calls that are made only now and then

struct Errand
{
    QString line;
    QString output;
    double seconds;
};

/// A call that fails, and how.
struct Fault
{
    int call;
    int error;

    QString text() const
    {
        const QString what = error == theEnd ? u"the end"_s : QString::fromLocal8Bit(std::strerror(error));
        return u"%1 at call %2"_s.arg(what).arg(call);
    }
};

const Errand conversion{u"convert a.mkv --kind mkv --tracks 0,1 --quiet"_s, u"a (2).mkv"_s, 1.5};
const Errand join{u"join a.mkv b.mkv --quiet"_s, u"a.mkv.joined.mkv"_s, 3.5};
const QString savePreset = u"presets add settings New --quiet"_s;

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
        QCOMPARE(m_cli.run(words(u"presets add settings Old"_s)).status, 0);
        m_settings = m_cli.scratch().read(u"defaults.json"_s);
    }

    void cleanup() { clearUp(); }

    void jobs_data()
    {
        QTest::addColumn<Errand>("errand");
        QTest::addColumn<Fault>("fault");
        for (const Errand &errand : {conversion, join}) {
            for (const Fault &fault : faultsOf(errand.line, 4))
                QTest::addRow("%s: %s", qPrintable(errand.line.section(u' ', 0, 0)), qPrintable(fault.text()))
                    << errand << fault;
        }
    }

    void jobs()
    {
        QFETCH(Errand, errand);
        QFETCH(Fault, fault);
        const CliFixture::Run run = runWithFault(errand.line, fault);
        QVERIFY2(isMet() || run.status == 0, qPrintable(run.said()));
        if (!isMet())
            return;
        const QString where =
            u"status %1: %2 %3"_s.arg(run.status).arg(run.said(), m_cli.mediaNames().join(u' '));
        QVERIFY2(waitFor([&] { return m_cli.processes().isEmpty(); }), qPrintable(where));
        const bool isDone = m_cli.mediaNames().contains(errand.output);
        QVERIFY2(!isDone || support::secondsOf(m_cli.media(errand.output)) > errand.seconds,
                 qPrintable(where));
        QVERIFY2(isDone || run.status > 1, qPrintable(where));
        QVERIFY2(fault.error == theEnd || run.status < 3, qPrintable(where));
        QVERIFY2(run.status != 2 || !run.error.isEmpty(), qPrintable(where));
        checkNextStart(where);
    }

    void aSaveOfPresets_data()
    {
        QTest::addColumn<Fault>("fault");
        for (const Fault &fault : faultsOf(savePreset, 6))
            QTest::addRow("%s", qPrintable(fault.text())) << fault;
    }

    void aSaveOfPresets()
    {
        QFETCH(Fault, fault);
        const CliFixture::Run run = runWithFault(savePreset, fault);
        const QString where = u"status %1: %2"_s.arg(run.status).arg(run.said());
        QVERIFY2(isMet() || run.status == 0, qPrintable(where));
        const CliFixture::Run next = m_cli.run(words(u"presets list --json"_s));
        QVERIFY2(next.status == 0, qPrintable(where + next.said()));
        const bool isStored = next.output.contains("\"New\"");
        QVERIFY2(next.output.contains("\"Old\""), qPrintable(where));
        QVERIFY2(isStored || run.status != 0, qPrintable(where)); // what was confirmed is there
        QVERIFY2(isStored || fault.error == theEnd || !run.error.isEmpty(), qPrintable(where));
    }

    void cleanupTestCase()
    {
        qInfo("%d faults were met", m_numberMet);
        QVERIFY(m_numberMet > 0);
    }

private:
    /// Each call of that line with each error, or some that are drawn.
    QList<Fault> faultsOf(const QString &line, int count)
    {
        const QString counted = m_cli.scratch().path(u"counted"_s);
        QFile::remove(counted);
        m_cli.setEnvironment(u"TESSARAY_FAULT_COUNT"_s, counted);
        const CliFixture::Run run = runWithFault(line, {1'000'000, theEnd});
        if (run.status != 0)
            qFatal("%s", qPrintable(run.said()));
        m_cli.setEnvironment(u"TESSARAY_FAULT_COUNT"_s, {});
        clearUp();
        const auto calls = static_cast<int>(QFileInfo(counted).size());
        qInfo("%s: %d calls", qPrintable(line), calls);
        QList<Fault> faults;
        for (int call = 1; call <= calls + atTheSameTime; ++call) {
            for (const int error : {ENOSPC, EIO, EACCES, theEnd})
                faults.append({call, error});
        }
        return support::partOf(support::drawn(faults, count, static_cast<int>(line.size())));
    }

    bool isMet() const { return QFile::exists(m_met); }

    CliFixture::Run runWithFault(const QString &line, const Fault &fault)
    {
        QFile::remove(m_met);
        m_cli.setEnvironment(u"LD_PRELOAD"_s, QStringLiteral(TESSARAY_FAULT_LIBRARY));
        m_cli.setEnvironment(u"TESSARAY_FAULT"_s, u"%1 %2"_s.arg(fault.call).arg(fault.error));
        m_cli.setEnvironment(u"TESSARAY_FAULT_IN"_s, u"tessaray-cli"_s);
        m_cli.setEnvironment(u"TESSARAY_FAULT_MET"_s, m_met);
        const CliFixture::Run run = m_cli.run(words(line));
        m_cli.setEnvironment(u"LD_PRELOAD"_s, {});
        m_numberMet += isMet() ? 1 : 0;
        return run;
    }

    void clearUp() const
    {
        m_cli.run(words(u"remux next.mkv --quiet --force"_s));
        for (const QString &name : m_cli.mediaNames()) {
            if (!m_names.contains(name) && !name.startsWith(u".tessaray"_s))
                QFile::remove(m_cli.media(name));
        }
        m_cli.scratch().write(u"defaults.json"_s, m_settings);
    }

    /// A lock that was being written is left to its writer for two seconds, and a temporary folder without
    /// one for a minute.
    void checkNextStart(const QString &where) const
    {
        const auto isClear = [this] {
            clearUp();
            return m_cli.mediaNames() == m_names;
        };
        QVERIFY2(waitFor(isClear), qPrintable(where + m_cli.mediaNames().join(u' ')));
        for (const QString &folder : m_cli.temporaryNames())
            QVERIFY2(!QFile::exists(m_cli.scratch().path(u"tmp/"_s + folder + u"/lock"_s)),
                     qPrintable(where));
        QVERIFY2(sources() == m_sources, qPrintable(where));
    }

    QByteArray sources() const
    {
        return m_cli.scratch().read(u"media/a.mkv"_s) + m_cli.scratch().read(u"media/b.mkv"_s);
    }

    CliFixture m_cli;
    QStringList m_names;
    QByteArray m_sources;
    QByteArray m_settings;
    QString m_met;
    int m_numberMet = 0;
};

Q_DECLARE_METATYPE(Errand)
Q_DECLARE_METATYPE(Fault)

TESSARAY_TEST(FaultLoopTest)
#include "FaultLoopTest.moc"

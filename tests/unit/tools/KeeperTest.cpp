#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::runs;
using support::waitFor;

namespace {

/// Longer than a tool is given to end; for what must not happen.
constexpr int aWhileMs = 2000;

QByteArray record(char word, const QByteArray &text)
{
    return QByteArray(1, word) + static_cast<char>(text.size()) + text;
}

/// A group of its own that a keeper is told of.
class Group final
{
public:
    Group()
    {
        m_process.setChildProcessModifier([] { ::setpgid(0, 0); });
        m_process.start(u"/bin/sh"_s, {u"-c"_s, u"exec sleep 1000"_s});
        m_process.waitForStarted();
    }
    ~Group()
    {
        ::kill(static_cast<pid_t>(-m_process.processId()), SIGKILL);
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(Group)

    QByteArray id() const { return QByteArray::number(m_process.processId()); }
    bool isRunning() const { return runs(m_process.processId()); }

private:
    QProcess m_process;
};

} // namespace

class KeeperTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scratch = std::make_unique<support::Scratch>();
        m_said.clear();
    }

    void cleanup()
    {
        if (m_program && m_program->state() != QProcess::NotRunning) {
            m_program->kill();
            m_program->waitForFinished();
        }
        m_program.reset();
    }

    void toolsEndWithUs_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("signal");
        for (const char *kind : {"process", "paused", "deaf", "grandchild", "shell", "background"})
            QTest::newRow(kind) << QString::fromLatin1(kind) << SIGKILL;
        QTest::newRow("abort") << u"process"_s << SIGABRT;
        QTest::newRow("segmentation fault") << u"shell"_s << SIGSEGV;
    }

    void toolsEndWithUs()
    {
        QFETCH(QString, kind);
        QFETCH(int, signal);
        start(kind);
        const qint64 tool = toolId();
        QVERIFY(runs(tool) && keeperId() > 0);
        QVERIFY(kind != u"paused"_s || waitFor([&] { return support::stateOf(tool) == 'T'; }));
        end(signal);
        QVERIFY(waitFor([&] { return !runs(tool); }));
        QVERIFY(waitFor([&] { return !runs(keeperId()); }));
    }

    void whatIsMeantToRunOnDoes()
    {
        start(u"released"_s);
        const qint64 tool = toolId();
        const qint64 keeper = keeperId();
        end(SIGKILL);
        QVERIFY(waitFor([&] { return !runs(keeper); }));
        QVERIFY(runs(tool));
        ::kill(static_cast<pid_t>(tool), SIGKILL);
    }

    void theKeeperHearsNoSignalsAndComesBack()
    {
        start(u"process"_s);
        const qint64 tool = toolId();
        const qint64 first = keeperId();
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            ::kill(static_cast<pid_t>(first), signal);
            ::kill(static_cast<pid_t>(-first), signal);
        }
        QVERIFY(!waitFor([&] { return !runs(first); }, 200));
        QVERIFY(::getsid(static_cast<pid_t>(first)) == first);
        ::kill(static_cast<pid_t>(first), SIGKILL);
        QVERIFY(waitFor([&] { return keeperId() != first && runs(keeperId()); }));
        QVERIFY(runs(tool));
        end(SIGKILL);
        QVERIFY(waitFor([&] { return !runs(tool); }));
        QVERIFY(waitFor([&] { return !holdsAnything(); })); // the second one was told of it too
    }

    void whatWeHeldGoes()
    {
        start(u"ended"_s);
        QVERIFY(keeperId() > 0 && holdsAnything());
        end(SIGKILL);
        QVERIFY(waitFor([&] { return !holdsAnything(); }));
    }

    void whatSomebodyTookOverStays()
    {
        start(u"ended"_s);
        const qint64 keeper = keeperId();
        m_scratch->write(u"held/lock"_s, "another");
        m_scratch->write(u"claim"_s, "another");
        end(SIGKILL);
        QVERIFY(waitFor([&] { return !runs(keeper); }));
        QCOMPARE(m_scratch->read(u"held/half.mkv"_s), "half");
        QCOMPARE(m_scratch->read(u"claim"_s), "another");
    }

    void finishedFilesThatWaitForTheirNamesStay()
    {
        start(u"ended"_s);
        const qint64 keeper = keeperId();
        m_scratch->write(u"held/list"_s, "of renames");
        end(SIGKILL);
        QVERIFY(waitFor([&] { return !runs(keeper); }));
        QCOMPARE(m_scratch->read(u"held/half.mkv"_s), "half");
        QVERIFY(!QFile::exists(m_scratch->path(u"claim"_s)));
    }

    void nothingOfTheCallersIsHeldOpen()
    {
        start(u"process"_s);
        QVERIFY(toolId() > 0 && keeperId() > 0);
        const qint64 keeper = keeperId();
        const auto open = [&] {
            return QDir(u"/proc/%1/fd"_s.arg(keeper))
                .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System);
        };
        QVERIFY2(waitFor([&] {
                     return open() == QStringList({u"0"_s, u"1"_s, u"2"_s});
                 }),
                 qPrintable(open().join(u' ')));
        QCOMPARE(QFile::symLinkTarget(u"/proc/%1/fd/1"_s.arg(keeper)), u"/dev/null"_s);
    }

    // What a keeper is told, by hand.

    void groupsThatAreToRunOnDo()
    {
        const Group other;
        QProcess keeper;
        startKeeper(keeper);
        keeper.write(record('+', other.id()) + record('~', {}));
        endKeeper(keeper);
        QVERIFY(!waitFor([&] { return !other.isRunning(); }, aWhileMs));
    }

    void aGroupWhoseLeaderEndedIsKept()
    {
        const Group first;
        QProcess keeper;
        startKeeper(keeper);
        keeper.write(record('+', first.id()) + record('-', first.id()));
        endKeeper(keeper);
        QVERIFY(waitFor([&] { return !first.isRunning(); }));
    }

    void recordsThatComeInPiecesAreRead()
    {
        const Group group;
        QProcess keeper;
        startKeeper(keeper);
        for (const char byte : record('+', group.id())) {
            keeper.write(&byte, 1);
            keeper.waitForBytesWritten();
            QTest::qWait(5);
        }
        endKeeper(keeper);
        QVERIFY(waitFor([&] { return !group.isRunning(); }));
    }

    void itIsNoCommand()
    {
        QProcess program;
        program.setStandardInputFile(QProcess::nullDevice());
        program.start(QCoreApplication::applicationFilePath(), {u"--keeper"_s});
        QVERIFY(program.waitForFinished(support::patience));
        QCOMPARE(program.exitCode(), 64); // as any other word
    }

private:
    void start(const QString &kind)
    {
        m_program = std::make_unique<QProcess>();
        m_program->setWorkingDirectory(m_scratch->path());
        m_program->start(QStringLiteral(TESSARAY_KEPT_PROGRAM), {kind, m_scratch->path()});
    }

    void end(int signal)
    {
        m_keeper = keeperId();
        ::kill(static_cast<pid_t>(m_program->processId()), signal);
        QVERIFY(m_program->waitForFinished(support::patience));
    }

    qint64 toolId() const
    {
        waitFor([&] { return m_scratch->read(u"tool"_s).endsWith('\n'); });
        return m_scratch->read(u"tool"_s).trimmed().toLongLong();
    }

    /// The newest one.
    qint64 keeperId()
    {
        if (m_program->state() == QProcess::NotRunning)
            return m_keeper;
        waitFor([&] {
            m_said += m_program->readAllStandardOutput();
            return m_said.endsWith('\n');
        });
        return m_said.trimmed().split('\n').constLast().toLongLong();
    }

    bool holdsAnything() const
    {
        return QFile::exists(m_scratch->path(u"held"_s)) || QFile::exists(m_scratch->path(u"claim"_s));
    }

    static void startKeeper(QProcess &keeper)
    {
        keeper.start(QCoreApplication::applicationFilePath(), {u"--keeper"_s});
        QVERIFY(keeper.waitForStarted());
    }

    static void endKeeper(QProcess &keeper)
    {
        keeper.closeWriteChannel();
        QVERIFY(keeper.waitForFinished(support::patience));
        QCOMPARE(keeper.exitCode(), 0);
    }

    std::unique_ptr<support::Scratch> m_scratch;
    std::unique_ptr<QProcess> m_program;
    QByteArray m_said;
    qint64 m_keeper = 0;
};

TESSARAY_TEST(KeeperTest)
#include "KeeperTest.moc"

// A file that bears its final name is whole: while others look on, with several programs at once, and
// whatever is killed in the middle. The rounds of the long form are drawn by a seed.
#include "steps/OutputClaims.h"
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>
#if defined(Q_OS_LINUX)
#include <sys/xattr.h>
#endif

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

constexpr double lengthOfFilm = 8;
constexpr double tolerance = 0.3;

QByteArray hashOf(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
}

QStringList hiddenIn(const QString &folder)
{
    return QDir(folder).entryList({u".tessaray-*"_s}, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

/// An operation on "f.mkv" or on it twice, and how long each of its films must be.
struct Operation
{
    const char *line;
    double seconds;
    const char *replaced = nullptr; ///< a film of that name stands there before
};

const QList<Operation> &operations()
{
    static const QList<Operation> list{
        {"convert f.mkv --kind mkv --video 2pass --video-bitrate 200", lengthOfFilm},
        {"convert f.mkv", lengthOfFilm},
        {"extract f.mkv --tracks 0", -1},
        {"join f.mkv f.mkv", 2 * lengthOfFilm},
        {"split f.mkv --duration 00:00:04", -1},
        {"remux f.mkv", lengthOfFilm}};
    return list;
}

/// Those, and one that replaces a film.
QList<Operation> killedOperations()
{
    return operations() + QList<Operation>{{"remux f.mkv --force", lengthOfFilm, "f.mkv.remux.mkv"}};
}

/// As a program writes it: process, its start, host, machine, boot, a word of its own.
constexpr const char *otherMachinesClaim = "4242\n1\nanother-host\nanother-machine\nboot\nword\n";

bool isLog(const QString &name)
{
    return name.endsWith(u".log"_s);
}

} // namespace

class CliPublishTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->clip(support::longMkv(static_cast<int>(lengthOfFilm)), u"f.mkv"_s);
        QVERIFY(QDir().mkpath(out()));
        m_source = hashOf(m_cli->media(u"f.mkv"_s));
    }
    void cleanup()
    {
        if (m_cli)
            QCOMPARE(hashOf(m_cli->media(u"f.mkv"_s)), m_source);
    }

    void aNameIsSeenOnceItsFileIsWhole_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("isPlain");
        for (const Operation &operation : operations())
            QTest::newRow(operation.line) << QString::fromLatin1(operation.line) << false;
#if defined(TESSARAY_ODD_VOLUME_LIBRARY)
        QTest::newRow("where renames are plain") << u"remux f.mkv"_s << true;
#endif
    }

    void aNameIsSeenOnceItsFileIsWhole()
    {
        QFETCH(QString, line);
        QFETCH(bool, isPlain);
        if (isPlain)
            useOddVolume(u"plain-renames"_s);
        const auto process = m_cli->start(inOut(line));
        QMap<QString, qint64> sizes;
        while (process->state() != QProcess::NotRunning) {
            for (const QString &name : namesIn(out())) {
                const qint64 size = QFileInfo(out() + u'/' + name).size();
                if (!sizes.contains(name) && !isLog(name) && !(isPlain && size == 0))
                    sizes.insert(name, size);
            }
            QTest::qWait(2);
        }
        const auto run = CliFixture::outcomeOf(*process);
        QVERIFY2(run.status == 0, qPrintable(run.said()));
        QVERIFY(!namesIn(out()).isEmpty());
        for (auto seen = sizes.constBegin(); seen != sizes.constEnd(); ++seen)
            QCOMPARE(seen.value(), QFileInfo(out() + u'/' + seen.key()).size());
        QCOMPARE(hiddenIn(out()), QStringList());
    }

    void theOldFileIsThereUntilTheNewOneReplacesIt()
    {
        const QString film = out() + u"/f.mkv.remux.mkv"_s;
        const QByteArray old(1000, 'o');
        m_cli->scratch().write(u"media/out/f.mkv.remux.mkv"_s, old);
        const auto process = m_cli->start(inOut(u"remux f.mkv --force"_s));
        while (process->state() != QProcess::NotRunning) {
            QVERIFY(QFileInfo(film).size() == old.size() || QFileInfo(film).size() > 10 * old.size());
            QTest::qWait(1);
        }
        QCOMPARE(CliFixture::outcomeOf(*process).status, 0);
        QVERIFY(std::abs(support::secondsOf(film) - lengthOfFilm) < tolerance);
        m_cli->scratch().write(u"media/out/f.m4v"_s, old);
        m_cli->scratch().write(u"media/f.mkv.bad"_s, "no film");
        const auto refused = m_cli->run(inOut(u"convert f.mkv --force --add f.mkv.bad"_s));
        QVERIFY(refused.status != 0);
        QCOMPARE(m_cli->scratch().read(u"media/out/f.m4v"_s), old);
    }

    void severalProgramsAtOnceMakeOneFilm_data()
    {
        QTest::addColumn<QString>("volume");
        QTest::addColumn<int>("programs");
        for (const QString &volume : volumes()) {
            for (const int programs : {2, 5}) {
                const bool isShort = programs == 5 && volume != u"plain-renames"_s;
                if (support::isSoak() || isShort || volume.isEmpty())
                    QTest::addRow("%i, %s", programs, qPrintable(volume)) << volume << programs;
            }
        }
    }

    void severalProgramsAtOnceMakeOneFilm()
    {
        QFETCH(QString, volume);
        QFETCH(int, programs);
        useOddVolume(volume);
        support::Chances chances(support::seed());
        for (int round = 0; round < support::times(50, 1); ++round) {
            const Operation operation =
                support::isSoak() ? operations().at(chances.below(operations().size())) : operations().last();
            const QStringList alone = namesOfLoneRun(operation);
            if (round % 2 == 0) // one that was killed has left its claim
                leaveClaim(operation);
            std::vector<std::unique_ptr<QProcess>> processes;
            for (int i = 0; i < programs; ++i)
                processes.push_back(m_cli->start(inOut(QString::fromLatin1(operation.line))));
            int well = 0;
            for (const auto &process : processes)
                well += CliFixture::outcomeOf(*process).status == 0;
            QVERIFY2(well == 1, operation.line);
            QCOMPARE(namesIn(out()), alone);
            lookAtFilms(operation);
            lookAtParts();
            QVERIFY2(hiddenIn(out()).isEmpty(), qPrintable(hiddenIn(out()).join(u' ')));
        }
    }

    /// Whether its program runs can't be told from here: only time tells that it is left over.
    void aClaimOfAnotherMachineHoldsItsName_data()
    {
        QTest::addColumn<QString>("volume");
        for (const QString &volume : volumes())
            QTest::newRow(qPrintable(u"on "_s + volume)) << volume;
    }

    void aClaimOfAnotherMachineHoldsItsName()
    {
        QFETCH(QString, volume);
        useOddVolume(volume);
        const QString film = u"f.mkv.remux.mkv"_s;
        const QUrl claim = steps::OutputClaims::claimOf(QUrl::fromLocalFile(out() + u'/' + film));
        const QString claimName = QFileInfo(claim.toLocalFile()).fileName();
        for (int round = 0; round < support::times(10, 1); ++round) {
            m_cli->scratch().write(u"media/out/"_s + claimName, otherMachinesClaim);
            std::vector<std::unique_ptr<QProcess>> processes;
            for (int i = 0; i < 2; ++i)
                processes.push_back(m_cli->start(inOut(u"remux f.mkv"_s)));
            for (const auto &process : processes) {
                const auto refused = CliFixture::outcomeOf(*process);
                QCOMPARE(refused.status, 2);
                QVERIFY2(refused.said().contains(u"is being made by another program"_s),
                         qPrintable(refused.said()));
            }
            QCOMPARE(namesIn(out()), QStringList());
            QCOMPARE(hiddenIn(out()), QStringList{claimName});
            makeOld(claim);
            const auto run = m_cli->run(inOut(u"remux f.mkv"_s));
            QVERIFY2(run.status == 0, qPrintable(run.said()));
            QCOMPARE(QDir(out()).entryList({u"*.mkv"_s}), QStringList{film});
            QCOMPARE(hiddenIn(out()), QStringList());
            clearOut();
        }
    }

    void whateverIsKilledNothingHalfMadeLooksFinished_data()
    {
        QTest::addColumn<QString>("volume");
        QTest::addColumn<int>("rounds");
        for (const QString &volume : volumes()) {
            if (volume.isEmpty() || support::isSoak())
                QTest::newRow(qPrintable(u"on "_s + volume))
                    << volume << support::times(volume.isEmpty() ? 100 : 25, 4);
        }
    }

    void whateverIsKilledNothingHalfMadeLooksFinished()
    {
        QFETCH(QString, volume);
        QFETCH(int, rounds);
        useOddVolume(volume);
        support::Chances chances(support::seed());
        const QList<Operation> all = killedOperations();
        for (int round = 0; round < rounds; ++round) {
            const Operation operation = all.at(chances.below(all.size()));
            if (operation.replaced != nullptr)
                support::copyOf(m_cli->media(u"f.mkv"_s), m_cli->scratch(),
                                u"media/out/"_s + QString::fromLatin1(operation.replaced));
            killWithin(operation, static_cast<int>(chances.below(3)), static_cast<int>(chances.below(900)));
            lookAtFilms(operation);
            QVERIFY(operation.replaced == nullptr ||
                    namesIn(out()).contains(QString::fromLatin1(operation.replaced)));
            const auto next = m_cli->run(inOut(u"remux f.mkv --force"_s)); // clears what was left
            QVERIFY2(next.status == 0, qPrintable(next.said()));
            QCOMPARE(hiddenIn(out()), QStringList());
            lookAtParts();
            clearOut();
        }
    }

    void aResultIsAsOthersAreInItsFolder()
    {
        const QString folder = m_cli->media(u"shared"_s);
        QVERIFY(QDir().mkpath(folder));
        const QByteArray path = QFile::encodeName(folder);
        gid_t groups[64];
        const int count = ::getgroups(64, groups);
        const gid_t group = count > 0 ? groups[count - 1] : ::getgid();
        QCOMPARE(::chown(path.constData(), static_cast<uid_t>(-1), ::getuid() == 0 ? 100 : group), 0);
        QCOMPARE(::chmod(path.constData(), 02775), 0);
        giveDefaultAccess(path);
        const auto run =
            m_cli->run({u"--save-dir"_s, folder, u"--keep-logs"_s, u"remux"_s, m_cli->media(u"f.mkv"_s)});
        QVERIFY2(run.status == 0, qPrintable(run.said()));
        m_cli->scratch().write(u"media/shared/ordinary"_s, "x");
        struct stat ordinary = {};
        QCOMPARE(::stat((path + "/ordinary").constData(), &ordinary), 0);
        for (const char *name : {"/f.mkv.remux.mkv", "/f.mkv.remuxing.log"}) {
            struct stat made = {};
            QCOMPARE(::stat((path + name).constData(), &made), 0);
            QCOMPARE(made.st_gid, ordinary.st_gid);
            QCOMPARE(made.st_mode, ordinary.st_mode);
            QCOMPARE(accessOf(path + name), accessOf(path + "/ordinary"));
        }
    }

private:
    QString out() const
    {
        return m_cli->media(u"out"_s);
    }
    QStringList inOut(const QString &line) const
    {
        QStringList words{u"--save-dir"_s, out()};
        for (const QString &word : line.split(u' '))
            words.append(word.startsWith(u"f.mkv"_s) ? m_cli->media(word) : word);
        return words;
    }
    void useOddVolume(const QString &words) const
    {
        if (words.isEmpty())
            return;
#if defined(TESSARAY_ODD_VOLUME_LIBRARY)
        m_cli->setEnvironment(u"LD_PRELOAD"_s, QStringLiteral(TESSARAY_ODD_VOLUME_LIBRARY));
#endif
        m_cli->setEnvironment(u"TESSARAY_ODD_VOLUME"_s, words);
    }
    /// The volumes on which the rules must hold: an ordinary one, and what the preloaded library makes.
    static QStringList volumes()
    {
        QStringList all{u""_s};
#if defined(TESSARAY_ODD_VOLUME_LIBRARY)
        all += {u"locks-lie"_s, u"no-locks"_s, u"plain-renames"_s};
#endif
        return all;
    }
    void clearOut() const
    {
        for (const QString &name : namesIn(out()))
            QFile::remove(out() + u'/' + name);
    }
    /// What the operation leaves when nobody disturbs it; the folder is empty again.
    QStringList namesOfLoneRun(const Operation &operation) const
    {
        clearOut();
        const auto run = m_cli->run(inOut(QString::fromLatin1(operation.line)));
        const QStringList names = run.status == 0 ? namesIn(out()) : QStringList();
        clearOut();
        return names;
    }
    /// By making a program die that holds one.
    void leaveClaim(const Operation &operation) const
    {
        const auto process = m_cli->start(inOut(QString::fromLatin1(operation.line)));
        support::waitFor([&] {
            return !support::filesAtWork(out(), u"*"_s).isEmpty() || process->state() == QProcess::NotRunning;
        });
        killAll();
        CliFixture::outcomeOf(*process);
        clearOut();
    }
    void killAll() const
    {
        for (const qint64 pid : m_cli->processes())
            ::kill(static_cast<pid_t>(pid), SIGKILL);
    }
    /// After that time the program (0), its tools (1) or all of them (2) die.
    void killWithin(const Operation &operation, int who, int milliseconds) const
    {
        const auto process = m_cli->start(inOut(QString::fromLatin1(operation.line)));
        QTest::qWait(milliseconds);
        for (const qint64 pid : m_cli->processes()) {
            if (who == 2 || (who == 0) == (pid == process->processId()))
                ::kill(static_cast<pid_t>(pid), SIGKILL);
        }
        CliFixture::outcomeOf(*process);
        killAll();
    }
    static void makeOld(const QUrl &file)
    {
        constexpr qint64 days = 8;
        QFile open(file.toLocalFile());
        QVERIFY(open.open(QIODevice::ReadWrite));
        QVERIFY(open.setFileTime(QDateTime::currentDateTime().addDays(-days), QFile::FileModificationTime));
    }
    void lookAtFilms(const Operation &operation) const
    {
        for (const QString &name : namesIn(out())) {
            if (isLog(name) || name.contains(u"(incomplete)"_s))
                continue;
            const double seconds = support::secondsOf(out() + u'/' + name);
            QVERIFY2(seconds > 0 || name.endsWith(u".h264"_s), qPrintable(name)); // a raw stream tells none
            if (operation.seconds > 0)
                QVERIFY2(std::abs(seconds - operation.seconds) < tolerance, qPrintable(name));
        }
    }
    /// After the next start there are all parts or none.
    void lookAtParts() const
    {
        double seconds = 0;
        for (const QString &name : QDir(out()).entryList({u"f.mkv.split-*.mkv"_s})) {
            if (!name.contains(u"(incomplete)"_s))
                seconds += support::secondsOf(out() + u'/' + name);
        }
        QVERIFY2(seconds == 0 || std::abs(seconds - lengthOfFilm) < tolerance,
                 qPrintable(QString::number(seconds)));
    }
#if defined(Q_OS_LINUX)
    /// Files in that folder may be read and written by the group 100, and by nobody else but their owner.
    static void giveDefaultAccess(const QByteArray &folder)
    {
        struct Entry
        {
            quint16 tag;
            quint16 rights;
            quint32 id;
        };
        constexpr quint32 nobody = 0xffffffff;
        const struct
        {
            quint32 version = 2;
            Entry entries[5] = {{0x01, 7, nobody}, {0x04, 5, nobody}, {0x08, 7, 100}, {0x10, 7, nobody}, {
                                    0x20,
                                    0,
                                    nobody
                                }};
        } access;
        QCOMPARE(::setxattr(folder.constData(), "system.posix_acl_default", &access, sizeof access, 0), 0);
    }
    static QByteArray accessOf(const QByteArray &file)
    {
        QByteArray access(256, 0);
        const ssize_t size = ::getxattr(file.constData(), "system.posix_acl_access", access.data(), 256);
        return size < 0 ? QByteArray("none") : access.first(size);
    }
#else
    static void giveDefaultAccess(const QByteArray &) {}
    static QByteArray accessOf(const QByteArray &)
    {
        return {};
    }
#endif

    std::unique_ptr<CliFixture> m_cli;
    QByteArray m_source;
};

TESSARAY_TEST(CliPublishTest)
#include "CliPublishTest.moc"

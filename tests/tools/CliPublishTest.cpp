// A file that bears its final name is whole: while others look on, with several programs at once, and
// whatever is killed in the middle. The rounds of the long form are drawn by a seed.
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
        QTest::newRow("two") << u""_s << 2;
        QTest::newRow("five") << u""_s << 5;
#if defined(TESSARAY_ODD_VOLUME_LIBRARY)
        QTest::newRow("five where every lock is granted") << u"locks-lie"_s << 5;
        QTest::newRow("five where there are no locks") << u"no-locks"_s << 5;
#endif
    }

    void severalProgramsAtOnceMakeOneFilm()
    {
        QFETCH(QString, volume);
        QFETCH(int, programs);
        useOddVolume(volume);
        for (int round = 0; round < support::times(50, 1); ++round) {
            for (const QString &name : namesIn(out()))
                QFile::remove(out() + u'/' + name);
            if (round % 2 == 0) // one that was killed has left its claim
                leaveClaim();
            std::vector<std::unique_ptr<QProcess>> processes;
            for (int i = 0; i < programs; ++i)
                processes.push_back(m_cli->start(inOut(u"remux f.mkv"_s)));
            int well = 0;
            for (const auto &process : processes)
                well += CliFixture::outcomeOf(*process).status == 0;
            QCOMPARE(well, 1);
            const QStringList films = QDir(out()).entryList({u"*.mkv"_s});
            QCOMPARE(films, QStringList{u"f.mkv.remux.mkv"_s});
            QVERIFY(std::abs(support::secondsOf(out() + u'/' + films.first()) - lengthOfFilm) < tolerance);
            QVERIFY2(hiddenIn(out()).isEmpty(), qPrintable(hiddenIn(out()).join(u' ')));
        }
    }

    void whateverIsKilledNothingHalfMadeLooksFinished()
    {
        support::Chances chances(support::seed());
        for (int round = 0; round < support::times(100, 4); ++round) {
            const Operation operation = operations().at(chances.below(operations().size()));
            const qsizetype who = chances.below(3);
            const auto afterMs = static_cast<int>(chances.below(900));
            const auto process = m_cli->start(inOut(QString::fromLatin1(operation.line)));
            QTest::qWait(afterMs);
            const QList<qint64> all = m_cli->processes();
            for (const qint64 pid : all) {
                const bool isProgram = pid == process->processId();
                if (who == 2 || (who == 0) == isProgram)
                    ::kill(static_cast<pid_t>(pid), SIGKILL);
            }
            CliFixture::outcomeOf(*process);
            for (const qint64 pid : m_cli->processes())
                ::kill(static_cast<pid_t>(pid), SIGKILL);
            lookAtFilms(operation);
            const auto next = m_cli->run(inOut(u"remux f.mkv --force"_s)); // clears what was left
            QVERIFY2(next.status == 0, qPrintable(next.said()));
            QCOMPARE(hiddenIn(out()), QStringList());
            lookAtParts();
            for (const QString &name : namesIn(out()))
                QFile::remove(out() + u'/' + name);
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
    /// By making a program die that holds one.
    void leaveClaim() const
    {
        const auto process = m_cli->start(inOut(u"remux f.mkv"_s));
        support::waitFor([&] {
            return !support::filesAtWork(out(), u"*.mkv"_s).isEmpty() ||
                   process->state() == QProcess::NotRunning;
        });
        for (const qint64 pid : m_cli->processes())
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        CliFixture::outcomeOf(*process);
        for (const QString &name : namesIn(out()))
            QFile::remove(out() + u'/' + name);
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
        for (const QString &name : QDir(out()).entryList({u"f.mkv.split-*.mkv"_s}))
            seconds += support::secondsOf(out() + u'/' + name);
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

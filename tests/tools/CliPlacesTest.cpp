// Folders and files that are not what they should be: a home that is no whole path, settings that are a
// device, sources that the system only shows.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

const QStringList folderNames{u"XDG_CONFIG_HOME"_s, u"XDG_DATA_HOME"_s, u"XDG_CACHE_HOME"_s,
                              u"XDG_STATE_HOME"_s, u"XDG_RUNTIME_DIR"_s};

} // namespace

class CliPlacesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void relativeFoldersAreIgnored_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("a name") << u"here"_s;
        QTest::newRow("the current folder") << u"."_s;
        QTest::newRow("a tilde") << u"~/config"_s;
        QTest::newRow("empty") << u""_s;
    }

    void relativeFoldersAreIgnored()
    {
        QFETCH(QString, value);
        for (const QString &name : folderNames)
            m_cli->setEnvironment(name, value);
        const auto run = start({u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, u"false"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(m_cli->mediaNames(), QStringList());
        const QString settings = u"home/.config/tessaray/defaults.json"_s;
        QVERIFY(m_cli->scratch().read(settings).replace(" ", "").contains("\"keepLogsFlag\":false"));
    }

    /// Where the settings lie is said by another folder here, so that no user's own are touched.
    void aHomeThatIsNoneIsLookedUp_data() { relativeFoldersAreIgnored_data(); }

    void aHomeThatIsNoneIsLookedUp()
    {
        QFETCH(QString, value);
        m_cli->useOwnTools();
        m_cli->setTool(u"ffmpeg/ffprobe"_s, u"env > \"$SEEN\""_s);
        m_cli->setEnvironment(u"SEEN"_s, m_cli->scratch().path(u"seen"_s));
        m_cli->setEnvironment(u"HOME"_s, value);
        m_cli->setEnvironment(u"XDG_DATA_HOME"_s, u"data"_s);
        m_cli->setEnvironment(u"XDG_CONFIG_HOME"_s, m_cli->scratch().path(u"config"_s));
        m_cli->scratch().write(u"media/film.mkv"_s, "x");
        QVERIFY(start({u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, u"false"_s}).status == 0);
        start({u"probe"_s, u"film.mkv"_s});
        QVERIFY(QFile::exists(m_cli->scratch().path(u"config/tessaray/defaults.json"_s)));
        QCOMPARE(m_cli->mediaNames().filter(u"film.mkv"_s).size(), m_cli->mediaNames().size());
        const QByteArrayList seen = m_cli->scratch().read(u"seen"_s).split('\n');
        QVERIFY(seen.contains(QByteArray("HOME=") + ::getpwuid(::getuid())->pw_dir));
        QVERIFY(std::none_of(seen.begin(), seen.end(),
                             [](const QByteArray &line) { return line.startsWith("XDG_DATA_HOME="); }));
        QVERIFY(seen.contains("XDG_CONFIG_HOME=" + m_cli->scratch().path(u"config"_s).toUtf8()));
    }

    void settingsAreAnOrdinaryFile_data()
    {
        QTest::addColumn<QString>("path");
        for (const char *path : {"/dev/zero", "/dev/null", "/dev/full", "/proc/self/mem", "/proc/kmsg", "/",
                                 "pipe", "large", "folder", "linked"})
            QTest::newRow(path) << QString::fromLatin1(path);
    }

    void settingsAreAnOrdinaryFile()
    {
        QFETCH(QString, path);
        makePlaces();
        const auto run = start({u"--defaults"_s, path, u"prefs"_s, u"get"_s, u"keepLogsFlag"_s}, 30000);
        QCOMPARE(run.status, 64);
        QVERIFY2(run.saidOneSentence() && run.said().contains(u"can't be read: it is "_s),
                 run.error.constData());
        QVERIFY(run.output.isEmpty());
    }

    void nothingTakesThePlaceOfAPipe()
    {
        makePlaces();
        for (const QString &path : {u"pipe"_s, u"linked"_s}) {
            const auto run =
                start({u"--defaults"_s, path, u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, u"false"_s}, 30000);
            QCOMPARE(run.status, 64);
        }
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(m_cli->media(u"pipe"_s)).constData(), &status), 0);
        QVERIFY(S_ISFIFO(status.st_mode));
        QVERIFY(QFileInfo(m_cli->media(u"linked"_s)).isSymLink());
    }

    void presetsComeFromAnOrdinaryFile_data() { settingsAreAnOrdinaryFile_data(); }

    void presetsComeFromAnOrdinaryFile()
    {
        QFETCH(QString, path);
        makePlaces();
        const auto run = m_cli->run({u"presets"_s, u"import"_s, path}, 30000);
        QCOMPARE(run.status, 2);
        QVERIFY2(run.saidOneSentence() && run.said().contains(u"can't be read: it is "_s),
                 run.error.constData());
        QVERIFY(!QFile::exists(m_cli->scratch().path(u"defaults.json"_s)));
    }

    void whatTheSystemShowsIsNoFilm_data()
    {
        QTest::addColumn<QString>("path");
        for (const char *path : {"/proc/self/mem", "/proc/kmsg", "/proc/self/environ", "/proc/kallsyms",
                                 "/sys/kernel/uevent_seqnum", "/sys/kernel/mm/transparent_hugepage/enabled",
                                 "mem.mkv", "/dev/zero", "pipe"})
            QTest::newRow(path) << QString::fromLatin1(path);
    }

    void whatTheSystemShowsIsNoFilm()
    {
        QFETCH(QString, path);
        makePlaces();
        m_cli->useOwnTools();
        const QString film = m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const QStringList names = m_cli->mediaNames();
        for (const QStringList &words :
             {QStringList{u"probe"_s, path}, QStringList{u"convert"_s, path}, QStringList{u"extract"_s, path},
              QStringList{u"remux"_s, path}, QStringList{u"split"_s, path, u"--size"_s, u"1"_s},
              QStringList{u"join"_s, film, path}, QStringList{u"convert"_s, film, u"--add"_s, path}}) {
            m_cli->forgetRecorded();
            const auto run = m_cli->run(words + QStringList{u"--save-dir"_s, m_cli->media()}, 60000);
            QCOMPARE(run.status, 2);
            QVERIFY2(run.error.count('\n') == 1, run.error.constData());
            for (const QByteArrayList &started : m_cli->recorded())
                QVERIFY2(!started.contains(path.toUtf8()), started.join(' ').constData());
        }
        QCOMPARE(m_cli->mediaNames(), names);
    }

    void longTextsDoNotDrownThePerson()
    {
        const QByteArray name(10 * 1024 * 1024, 'x');
        m_cli->scratch().write(u"media/presets"_s, "{\"" + name + "\": 1, \"version\": 1}");
        const auto run = m_cli->run({u"presets"_s, u"import"_s, u"presets"_s});
        QCOMPARE(run.status, 2);
        QVERIFY(run.saidOneSentence() && run.error.size() < 1000);
    }

private:
    void makePlaces() const
    {
        QCOMPARE(::mkfifo(QFile::encodeName(m_cli->media(u"pipe"_s)).constData(), 0600), 0);
        QVERIFY(QFile::link(m_cli->media(u"pipe"_s), m_cli->media(u"linked"_s)));
        QVERIFY(QFile::link(u"/proc/self/mem"_s, m_cli->media(u"mem.mkv"_s)));
        QVERIFY(QDir().mkpath(m_cli->media(u"folder"_s)));
        QFile large(m_cli->media(u"large"_s));
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(64 * 1024 * 1024 + 1));
    }

    /// Without the settings that a test has else.
    CliFixture::Run start(const QStringList &words, int timeoutMs = 60000) const
    {
        QProcess process;
        process.setProcessEnvironment(m_cli->environment());
        process.setWorkingDirectory(m_cli->media());
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(m_cli->program(), words);
        return CliFixture::outcomeOf(process, timeoutMs);
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliPlacesTest)
#include "CliPlacesTest.moc"

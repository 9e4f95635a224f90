// A save folder that takes nothing more, turns read-only or goes away at any moment of a job, and programs
// that die there: nothing half-made looks finished, the sentence says what is the matter, and the next start
// clears up.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

constexpr int lengthOfFilm = 8;
constexpr double tolerance = 0.3;
constexpr qsizetype rowsOfShortForm = 10;
/// More than any operation makes of one kind of call.
constexpr int mostCalls = 4000;

QByteArray hashOf(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

struct Operation
{
    QString line;
    QString films; ///< a pattern
    QString tool;
    int count = 1;  ///< of films
    double seconds; ///< of all together; negative for one that tells none
};

const QList<Operation> &operations()
{
    static const QList<Operation> list{
        {u"remux f.mkv"_s, u"*.remux.mkv"_s, u"mkvmerge"_s, 1, lengthOfFilm},
        {u"convert f.mkv"_s, u"*.m4v"_s, u"ffmpeg"_s, 1, lengthOfFilm},
        {u"split f.mkv --duration 00:00:01"_s, u"*.split-*.mkv"_s, u"mkvmerge"_s, 8, lengthOfFilm},
        {u"extract f.mkv --tracks 0"_s, u"*.h264"_s, u"ffmpeg"_s, 1, -1},
        {u"join f.mkv f.mkv"_s, u"*.joined.mkv"_s, u"mkvmerge"_s, 1, 2 * lengthOfFilm}};
    return list;
}

struct Fault
{
    const char *program;
    const char *call;
    const char *what;
    const char *words; ///< that a sentence on it has
};

/// Those of the program at each kind of call, and those of the tool where it writes.
QList<Fault> faults()
{
    QList<Fault> all;
    for (const char *call : {"mkdir", "create", "write", "flush", "rename"}) {
        all.append({"tessaray-cli", call, "full", "no room left"});
        all.append({"tessaray-cli", call, "read-only", "read-only"});
        all.append({"tessaray-cli", call, "kill", nullptr});
    }
    all.append({"tool", "write", "full", "no room left"});
    all.append({"tool", "write", "read-only", "read-only"});
    all.append({"tool", "create", "full", "no room left"});
    return all;
}

} // namespace

class CliDiskFaultsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->clip(support::longMkv(lengthOfFilm), u"f.mkv"_s);
        QVERIFY(QDir().mkpath(out()));
        m_source = hashOf(m_cli->media(u"f.mkv"_s));
    }
    void cleanup() { QCOMPARE(hashOf(m_cli->media(u"f.mkv"_s)), m_source); }

#if defined(TESSARAY_ODD_VOLUME_LIBRARY)
    void aVolumeFailsAtAnyCall_data()
    {
        QTest::addColumn<Operation>("operation");
        QTest::addColumn<Fault>("fault");
        QList<std::pair<Operation, Fault>> rows;
        for (const Operation &operation : operations()) {
            for (const Fault &fault : faults())
                rows.append({operation, fault});
        }
        for (const auto &[operation, fault] : support::drawn(rows, rowsOfShortForm))
            QTest::addRow("%s: %s %s, %s", qPrintable(operation.line), fault.program, fault.call, fault.what)
                << operation << fault;
    }

    /// From each call on in the long form, till no call is left that could fail; else from one drawn.
    void aVolumeFailsAtAnyCall()
    {
        QFETCH(Operation, operation);
        QFETCH(Fault, fault);
        support::Chances chances(support::seed());
        const int calls = support::isSoak() ? mostCalls : 1;
        bool isMet = true;
        // A tool writes in so many pieces that the steps grow.
        for (int number = support::isSoak() ? 1 : 1 + static_cast<int>(chances.below(3)), tried = 0;
             isMet && tried < calls; number += 1 + number / 16, ++tried) {
            setFault(operation, fault, number);
            const auto run = m_cli->run(inOut(operation.line));
            isMet = QFileInfo::exists(mark());
            lookAtRun(operation, fault, run, isMet);
            if (QTest::currentTestFailed()) {
                qWarning("at call %i: %i %s", number, run.status, qPrintable(run.said()));
                return;
            }
            lookAtNextStart(operation);
            if (QTest::currentTestFailed()) {
                qWarning("at call %i", number);
                return;
            }
        }
        QVERIFY(!support::isSoak() || !isMet);
    }
#endif

    void theFolderGoesAwayWhileTheToolWorks_data()
    {
        QTest::addColumn<QString>("instead");
        QTest::newRow("and nothing is there") << u"true"_s;
        QTest::newRow("and another one is there") << u"mkdir \"$OUT\""_s;
    }

    void theFolderGoesAwayWhileTheToolWorks()
    {
        QFETCH(QString, instead);
        const QString away = m_cli->media(u"away"_s);
        duringTool(u"mv \"$OUT\" \"$AWAY\" && "_s + instead);
        const auto run = m_cli->run(inOut(operations().first().line));
        QCOMPARE(run.status, 2);
        QVERIFY2(instead != u"true"_s || run.said().contains(u"its folder is not there"_s),
                 qPrintable(run.said()));
        QVERIFY(!QDir(out()).exists() || namesIn(out()).isEmpty());
        QCOMPARE(filmsIn(away, operations().first()), QStringList());
        QDir().rmdir(out());
        QVERIFY(QDir().rename(away, out()));
        m_cli->setTool(u"mkvtoolnix/mkvmerge"_s, u"exec /usr/bin/mkvmerge \"$@\""_s);
        lookAtNextStart(operations().first());
    }

    void theFolderTurnsReadOnlyWhileTheToolWorks()
    {
        duringTool(u"chmod 555 \"$OUT\""_s);
        m_cli->runUnprivileged();
        const auto run = m_cli->run(inOut(operations().first().line));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"its folder can't be written to"_s), qPrintable(run.said()));
        QCOMPARE(namesIn(out()), QStringList());
        QVERIFY(QFile::setPermissions(out(), QFile::Permissions(0x7777)));
        m_cli->setTool(u"mkvtoolnix/mkvmerge"_s, u"exec /usr/bin/mkvmerge \"$@\""_s);
        lookAtNextStart(operations().first());
    }

private:
    QString out() const
    {
        return m_cli->media(u"out"_s);
    }
    QString mark() const
    {
        return m_cli->scratch().path(u"fault begins"_s);
    }
    QStringList inOut(const QString &line) const
    {
        QStringList words{u"--save-dir"_s, out()};
        for (const QString &word : line.split(u' '))
            words.append(word.startsWith(u"f.mkv"_s) ? m_cli->media(word) : word);
        return words;
    }
    static QStringList namesIn(const QString &folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
    static QStringList hiddenIn(const QString &folder)
    {
        return QDir(folder).entryList({u".tessaray-*"_s},
                                      QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    static QStringList filmsIn(const QString &folder, const Operation &operation)
    {
        QStringList films = QDir(folder).entryList({operation.films});
        films.removeIf([](const QString &name) { return name.contains(u"(incomplete)"_s); });
        return films;
    }

    /// mkvmerge, and at its end, before the program hears of it, that.
    void duringTool(const QString &then)
    {
        m_cli->useOwnTools();
        m_cli->setEnvironment(u"OUT"_s, out());
        m_cli->setEnvironment(u"AWAY"_s, m_cli->media(u"away"_s));
        m_cli->setTool(u"mkvtoolnix/mkvmerge"_s, u"/usr/bin/mkvmerge \"$@\"\nstatus=$?\n"
                                                 "for word; do [ \"$word\" != -o ] || { "_s +
                                                     then + u"; }; done\nexit $status"_s);
    }

#if defined(TESSARAY_ODD_VOLUME_LIBRARY)
    void setFault(const Operation &operation, const Fault &fault, int number)
    {
        const QString program =
            fault.program == QByteArray("tool") ? operation.tool : QString::fromLatin1(fault.program);
        m_cli->setEnvironment(u"LD_PRELOAD"_s, QStringLiteral(TESSARAY_ODD_VOLUME_LIBRARY));
        m_cli->setEnvironment(u"TESSARAY_FAULT_FOLDER"_s, out());
        m_cli->setEnvironment(u"TESSARAY_FAULT_MARK"_s, mark());
        m_cli->setEnvironment(u"TESSARAY_FAULT"_s, QStringLiteral("%1 %2 %3 %4")
                                                       .arg(program)
                                                       .arg(QLatin1String(fault.call))
                                                       .arg(number)
                                                       .arg(QLatin1String(fault.what)));
    }

    void lookAtRun(const Operation &operation, const Fault &fault, const CliFixture::Run &run, bool isMet)
    {
        // What can't be renamed can't be given its old name back either.
        const bool isStuck = QByteArray("rename") == fault.call && QByteArray("read-only") == fault.what;
        const bool isKilled = fault.words == nullptr;
        lookAtFilms(operation, isKilled || isStuck);
        const bool isAll = filmsIn(out(), operation).size() == operation.count;
        if (!isMet)
            QVERIFY(run.status == 0 && isAll);
        else if (isKilled)
            QCOMPARE(run.status, 128 + 9);
        else if (isAll)
            QVERIFY(run.status == 0 || run.status == 1);
        else {
            QCOMPARE(run.status, 2);
            QVERIFY(run.said().contains(QLatin1String(fault.words), Qt::CaseInsensitive));
        }
    }
#endif
    /// All films or none, each of them whole; some of them where a program died between the renames.
    void lookAtFilms(const Operation &operation, bool maySomeLack)
    {
        const QStringList films = filmsIn(out(), operation);
        double seconds = 0;
        for (const QString &name : films) {
            const double length = support::secondsOf(out() + u'/' + name);
            QVERIFY2(length > 0 || operation.seconds < 0, qPrintable(name));
            QVERIFY(QFileInfo(out() + u'/' + name).size() > 0);
            seconds += length;
        }
        const bool isAll = films.size() == operation.count;
        QVERIFY2(films.isEmpty() || isAll || maySomeLack, qPrintable(films.join(u' ')));
        QVERIFY2(!isAll || operation.seconds < 0 || std::abs(seconds - operation.seconds) < tolerance,
                 qPrintable(QString::number(seconds)));
    }

    /// Without the fault: it finishes renames that had begun, and clears the rest.
    void lookAtNextStart(const Operation &operation)
    {
        m_cli->setEnvironment(u"TESSARAY_FAULT"_s, {});
        QFile::remove(mark());
        letAMinutePass();
        const auto next = m_cli->run(inOut(u"remux f.mkv --force"_s));
        QVERIFY2(next.status == 0, qPrintable(next.said()));
        QCOMPARE(hiddenIn(out()), QStringList());
        lookAtFilms(operation, false);
        for (const QString &name : namesIn(out()))
            QVERIFY(QFile::remove(out() + u'/' + name));
    }

    /// Half a claim or lock counts as being written for so long.
    void letAMinutePass() const
    {
        QDirIterator all(out(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (all.hasNext()) {
            constexpr int aMinuteAndMore = 90;
            QFile file(all.next());
            if (file.open(QIODevice::ReadOnly))
                file.setFileTime(QDateTime::currentDateTime().addSecs(-aMinuteAndMore),
                                 QFile::FileModificationTime);
        }
    }

    std::unique_ptr<CliFixture> m_cli;
    QByteArray m_source;
};

Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(Fault)

TESSARAY_TEST(CliDiskFaultsTest)
#include "CliDiskFaultsTest.moc"

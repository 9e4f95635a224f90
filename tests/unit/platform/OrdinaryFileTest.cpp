#include "platform/OrdinaryFile.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::Scratch;

class OrdinaryFileTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesAndLinksToThemAreOrdinary()
    {
        const Scratch scratch;
        const QString path = scratch.write(u"a"_s, "text");
        QVERIFY(platform::isOrdinaryFile(path));
        QVERIFY(QFile::link(path, scratch.path(u"link"_s)));
        QVERIFY(platform::isOrdinaryFile(scratch.path(u"link"_s)));
    }

    void nothingElseIs_data()
    {
        QTest::addColumn<QString>("path");
        for (const char *path :
             {"/dev/null", "/dev/zero", "/dev/tty", "/proc", "/proc/self/mem", "/proc/self/maps",
              "/proc/kmsg", "/proc/version", "/sys/kernel/uevent_seqnum", "/sys/fs/cgroup/cgroup.procs", "/",
              "", "/none"})
            QTest::newRow(path) << QString::fromLatin1(path);
    }

    void nothingElseIs()
    {
        QFETCH(QString, path);
        QVERIFY(!platform::isOrdinaryFile(path));
    }

    void aLinkToWhatTheSystemShowsOfItselfIsNone()
    {
        const Scratch scratch;
        QVERIFY(QFile::link(u"/proc/self/mem"_s, scratch.path(u"film.mkv"_s)));
        QVERIFY(!platform::isOrdinaryFile(scratch.path(u"film.mkv"_s)));
    }

    void aFileIsReadWhole()
    {
        const Scratch scratch;
        QByteArray bytes;
        for (int i = 0; i < 300000; ++i)
            bytes.append(static_cast<char>(i * 31 / 7));
        const auto file = platform::readWhole(scratch.write(u"a"_s, bytes));
        QVERIFY(file.problem.isNull());
        QCOMPARE(file.bytes, bytes);
        QVERIFY(platform::readWhole(scratch.write(u"empty"_s, {})).problem.isNull());
    }

    void aLargerOneIsNot()
    {
        const Scratch scratch;
        const QString path = scratch.write(u"a"_s, QByteArray(1024 * 1024, 'x'));
        QCOMPARE(platform::readWhole(path, 1024 * 1024).bytes.size(), 1024 * 1024);
        QVERIFY(QFile::resize(path, 1024 * 1024 + 1));
        const auto file = platform::readWhole(path, 1024 * 1024);
        QCOMPARE(file.problem, u"it is too large, with more than 1 MB"_s);
        QVERIFY(file.bytes.isEmpty());
        QCOMPARE(platform::problemOfWholeFile(path, 1024 * 1024), file.problem);
    }

    void pipesAndDevicesAreNotWaitedFor_data() { nothingElseIs_data(); }

    void pipesAndDevicesAreNotWaitedFor()
    {
        QFETCH(QString, path);
        const auto file = platform::readWhole(path);
        QVERIFY(!file.problem.isNull());
        QVERIFY(file.bytes.isEmpty());
    }

    void aPipeIsNotWaitedFor()
    {
        const Scratch scratch;
        const QString path = scratch.path(u"pipe"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        QCOMPARE(platform::readWhole(path).problem, u"it is no ordinary file"_s);
        QCOMPARE(platform::problemOfWholeFile(path), u"it is no ordinary file"_s);
    }

    void whatIsNotThereIsNoProblemYet()
    {
        const Scratch scratch;
        QVERIFY(platform::problemOfWholeFile(scratch.path(u"none"_s)).isNull());
        QCOMPARE(platform::readWhole(scratch.path(u"none"_s)).problem, u"No such file or directory"_s);
    }
};

TESSARAY_TEST(OrdinaryFileTest)
#include "OrdinaryFileTest.moc"

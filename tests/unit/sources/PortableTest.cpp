// What only one system has stands in src/platform: the sources are read for it.
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QRegularExpression &oneSystemOnly()
{
    static const QRegularExpression words(
        u"\\bprctl\\b|\\bPR_SET_|/proc\\b|\"/sys/|\\bpidfd|\\bsignalfd\\b|\\binotify|\\bepoll|\\beventfd\\b"
        "|\\btimerfd|\\bpipe2\\b|\\brenameat2\\b|\\bclose_range\\b|::clone3?\\(|\\bkqueue\\b|\\bsysctl"
        "|<linux/|<mach/|<libproc|\\bcgroup"_s);
    return words;
}

QStringList findingsIn(const QString &root)
{
    static const QRegularExpression comment(u"^\\s*//.*| // .*"_s);
    QStringList found;
    QDirIterator files(root, {u"*.cpp"_s, u"*.h"_s, u"*.mm"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            qFatal("can't read %s", qPrintable(file.fileName()));
        for (QString line : QString::fromUtf8(file.readAll()).split(u'\n')) {
            line.remove(comment);
            if (line.contains(oneSystemOnly()))
                found.append(file.fileName().mid(root.size() + 1) + u": "_s + line.trimmed());
        }
    }
    return found;
}

} // namespace

class PortableTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatOneSystemHasStandsInThePlatform()
    {
        QStringList found = findingsIn(QStringLiteral(TESSARAY_SOURCE_DIR "/src"));
        const qsizetype all = found.size();
        found.removeIf([](const QString &line) { return line.startsWith(u"platform/"_s); });
        QVERIFY2(found.isEmpty(), qPrintable(found.join(u'\n')));
        QVERIFY(all > 0); // it has read them
    }

    void wouldCatch_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("isOneSystems");
        for (const char *line : {"::prctl(PR_SET_PDEATHSIG, SIGKILL);", "QFile stat(u\"/proc/1/stat\"_s);",
                                 "::signalfd(-1, &set, 0);", "::pipe2(ends, O_CLOEXEC);",
                                 "#include <linux/fs.h>", "QFile file(u\"/sys/class/power_supply\"_s);"})
            QTest::newRow(line) << QByteArray(line) << true;
        for (const char *line : {"::pipe(ends);", "/// where there is no /proc", "process.start();"})
            QTest::newRow(line) << QByteArray(line) << false;
    }

    void wouldCatch()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, isOneSystems);
        const support::Scratch scratch;
        scratch.write(u"src/tools/A.cpp"_s, "void f()\n{\n    " + line + "\n}\n");
        QCOMPARE(findingsIn(scratch.path(u"src"_s)).size(), isOneSystems ? 1 : 0);
    }
};

TESSARAY_TEST(PortableTest)
#include "PortableTest.moc"

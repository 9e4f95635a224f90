// What runs elsewhere: the workflow file has the commands that the README shows to begin with, and its
// systems.
#include "support/TestMain.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString contentOf(const QString &name)
{
    QFile file(QStringLiteral(TESSARAY_SOURCE_DIR "/") + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// What stands in the first group, of each place where the pattern fits.
QStringList all(const QString &text, const QString &pattern)
{
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    QStringList found;
    for (auto match = expression.globalMatch(text); match.hasNext();)
        found.append(match.next().captured(1));
    return found;
}

/// The items of every list under the key: "key: [a, b]".
QList<QStringList> listsOf(const QString &workflow, const QString &key)
{
    QList<QStringList> lists;
    for (const QString &items : all(workflow, u"^ +%1: \\[(.*)\\]$"_s.arg(key)))
        lists.append(QString(items).remove(u'"').split(u", "_s));
    return lists;
}

/// The commands under "Start" that stand alone, as a newcomer types them.
QStringList commandsToBegin()
{
    const QString start = contentOf(u"README.md"_s).section(u"\n## "_s, 1, 1);
    return all(start, u"^(scripts/\\w+)(?: +#.*)?$"_s);
}

} // namespace

class WorkflowTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theReadmeBeginsWithTwoCommands()
    {
        QCOMPARE(commandsToBegin(), QStringList({u"scripts/run"_s, u"scripts/test"_s}));
    }

    void everyJobRunsThem()
    {
        const QString workflow = contentOf(u".github/workflows/test.yml"_s);
        const QList<QStringList> lists = listsOf(workflow, u"command"_s);
        QCOMPARE(lists.size(), 2);
        for (const QStringList &commands : lists)
            QCOMPARE(commands, commandsToBegin());
        const QStringList runs = all(workflow, u"^ +- run: (.*)$"_s);
        QCOMPARE(runs, QStringList(lists.size(), u"${{ matrix.command }}"_s));
        for (const QString &command : commandsToBegin())
            QVERIFY(QFile::permissions(QStringLiteral(TESSARAY_SOURCE_DIR "/") + command) & QFile::ExeOwner);
    }

    void theyRunOnMacUbuntuAndDebian()
    {
        const QString workflow = contentOf(u".github/workflows/test.yml"_s);
        QStringList systems;
        for (const QStringList &list : listsOf(workflow, u"system"_s))
            systems += list;
        QCOMPARE(systems, QStringList({u"macos-14"_s, u"ubuntu-24.04"_s, u"debian:12"_s}));
        QCOMPARE(all(workflow, u"^    runs-on: (.*)$"_s),
                 QStringList({u"${{ matrix.system }}"_s, u"ubuntu-24.04"_s}));
        QCOMPARE(all(workflow, u"^      image: (.*)$"_s), QStringList({u"${{ matrix.system }}"_s}));
    }
};

TESSARAY_TEST(WorkflowTest)
#include "WorkflowTest.moc"

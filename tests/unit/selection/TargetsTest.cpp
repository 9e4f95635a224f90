#include "selection/Targets.h"
#include "support/TestMain.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// What stands in a file of the project between two texts.
QString partOf(const QString &file, const QString &before, const QString &behind)
{
    QFile source(QStringLiteral(TESSARAY_SOURCE_DIR "/") + file);
    if (!source.open(QIODevice::ReadOnly))
        return file + u" can't be read"_s;
    return QString::fromUtf8(source.readAll()).section(before, 1, 1).section(behind, 0, 0);
}

QStringList matchesOf(const QString &pattern, const QString &text)
{
    QStringList found;
    for (auto match = QRegularExpression(pattern).globalMatch(text); match.hasNext();) {
        const auto names = match.next();
        found.append(names.captured(names.lastCapturedIndex()));
    }
    return found;
}

} // namespace

class TargetsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void devicesAreThoseThatAConversionKnows()
    {
        const QStringList expected{u"iPod (All non-Touch)"_s,
                                   u"iPhone (3 and Earlier)"_s,
                                   u"iPod Touch (3 and Earlier)"_s,
                                   u"iPad (2 and Earlier)"_s,
                                   u"Apple TV 2"_s,
                                   u"iPhone 4"_s,
                                   u"iPod Touch (4 and Later)"_s,
                                   u"Apple TV (3 and Later)"_s,
                                   u"iPad (3 and Later)"_s,
                                   u"iPad Mini (All)"_s,
                                   u"iPhone (4S and Later)"_s,
                                   u"PS3"_s,
                                   u"Xbox"_s};
        QCOMPARE(selection::deviceNames(), expected);
    }

    void popupOffersGeneralTheDevicesAndTheTwoKindsOfFile()
    {
        const QStringList targets = selection::targetNames();
        QCOMPARE(targets.size(), 16);
        QCOMPARE(targets.first(), u"General"_s);
        QCOMPARE(targets.mid(1, 13), selection::deviceNames());
        QCOMPARE(targets.mid(14), QStringList({u"MKV"_s, u"AVI"_s}));
    }

    void theReadmeNamesEveryDevice()
    {
        const QString devices = partOf(u"README.md"_s, u"\nDevices: "_s, u"\n\n"_s);
        QCOMPARE(matchesOf(u"`([^`]+)`"_s, devices), selection::deviceNames());
    }

    void theManualPageNamesEveryDevice()
    {
        QString devices = partOf(u"packaging/man/tessaray-cli.1"_s, u".SH DEVICES\n"_s, u".\n"_s);
        devices.replace(u"\\-"_s, u"-"_s).replace(u'\n', u' ');
        QCOMPARE(devices.split(u", "_s), QStringList{u"General"_s} + selection::deviceNames());
    }

    void bothCompletionsNameEveryTarget()
    {
        const QString zsh =
            partOf(u"packaging/completions/_tessaray-cli"_s, u"local -a devices=(\n"_s, u")\n"_s);
        QCOMPARE(matchesOf(u"'([^']+)'|([^' \\n]+)"_s, zsh), selection::targetNames());
        const QString bash =
            partOf(u"packaging/completions/tessaray-cli.bash"_s, u"printf '%s\\n' "_s, u"\n}"_s);
        QCOMPARE(matchesOf(u"\"([^\"]+)\"|([^\" \\\\\n]+)"_s, bash), selection::targetNames());
    }

    void noTargetStandsTwice()
    {
        QStringList targets = selection::targetNames();
        QCOMPARE(targets.removeDuplicates(), 0);
    }
};

TESSARAY_TEST(TargetsTest)
#include "TargetsTest.moc"

// Settings that two programs write at once, on volumes whose locks are good for something or not, and on
// disks that have no room.
#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "support/Scratch.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using support::Scratch;

namespace {

const QString selectionsKey = u"presetSelectionsArray"_s;

QVariantMap presetOf(const QString &presetName, const QString &language)
{
    return {{u"pName"_s, presetName}, {u"pSelectedAudioLanguage"_s, language}};
}

/// Adds a preset of its own each time and changes one that all have; says what was confirmed.
int changePresets(const QString &path, const QString &who, int changes)
{
    platform::JsonDefaultsStore store(path, support::patience);
    KXPreferences preferences(store, {});
    preferences.loadPreferencesFromDefaults();
    QVariantList list = preferences.userPresetSelectionsList();
    for (int i = 0; i < changes; ++i) {
        const QString change = who + QString::number(i);
        list.append(presetOf(change, u"English"_s));
        list[0] = presetOf(u"shared"_s, change);
        const QString problem = preferences.saveUserPresetSelectionsListFor(list);
        if (!problem.isNull()) {
            std::fputs(qPrintable(problem), stderr);
            return 1;
        }
    }
    std::puts("all confirmed");
    return 0;
}

QList<QJsonObject> presetsIn(const QString &path)
{
    QFile file(path);
    QList<QJsonObject> presets;
    if (!file.open(QIODevice::ReadOnly))
        return presets;
    for (const QJsonValue &value :
         QJsonDocument::fromJson(file.readAll()).object().value(selectionsKey).toArray())
        presets.append(value.toObject());
    return presets;
}

QProcessEnvironment volumeOf(const QString &words)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
#ifdef TESSARAY_ODD_VOLUME_LIBRARY
    if (!words.isEmpty()) {
        environment.insert(u"LD_PRELOAD"_s, QStringLiteral(TESSARAY_ODD_VOLUME_LIBRARY));
        environment.insert(u"TESSARAY_ODD_VOLUME"_s, words);
    }
#endif
    return environment;
}

/// Saves a value of so many bytes where there is no room for it. 0: that was said, and the old value stands.
int saveWithoutRoom(const QString &path, const QString &limit, int size)
{
    platform::JsonDefaultsStore store(path, 200);
    if (!store.store({{u"old"_s, u"kept"_s}}).isNull())
        return 2;
    QFile before(path);
    const QByteArray old = before.open(QIODevice::ReadOnly) ? before.readAll() : QByteArray();
    if (!limit.isEmpty()) { // no file may grow larger
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit most{static_cast<rlim_t>(limit.toInt()), static_cast<rlim_t>(limit.toInt())};
        if (::setrlimit(RLIMIT_FSIZE, &most) != 0)
            return 3;
    } else {
        QFile filler(QFileInfo(path).absolutePath() + u"/filler"_s);
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return 4;
        while (filler.write(QByteArray(4096, 'x')) == 4096) {
        }
        filler.resize(filler.size() - size);
    }
    const QString problem = store.store({{u"new"_s, QString(20000, u'n')}});
    QFile after(path);
    const bool isKept = after.open(QIODevice::ReadOnly) && after.readAll() == old;
    std::puts(qPrintable(problem));
    return !problem.isNull() && isKept && store.value(u"old"_s) == u"kept"_s ? 0 : 5;
}

} // namespace

class StoreSharingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingThatWasConfirmedIsLost_data()
    {
        QTest::addColumn<QString>("volume");
        QTest::newRow("an ordinary volume") << QString();
#ifdef TESSARAY_ODD_VOLUME_LIBRARY
        QTest::newRow("every lock is granted") << u"locks-lie"_s;
        QTest::newRow("there are no locks") << u"no-locks"_s;
#endif
    }

    void nothingThatWasConfirmedIsLost()
    {
        QFETCH(QString, volume);
        const int changes = support::times(500, 25);
        const Scratch scratch;
        const QString path = scratch.path(u"defaults.json"_s);
        QCOMPARE(platform::JsonDefaultsStore(path).store(
                     {{selectionsKey, QVariantList{presetOf(u"shared"_s, u"0"_s)}}}),
                 QString());
        QProcess programs[2];
        for (int i = 0; i < 2; ++i) {
            programs[i].setProcessEnvironment(volumeOf(volume));
            programs[i].start(
                QCoreApplication::applicationFilePath(),
                {u"--change-presets"_s, path, QString(QChar(u'a' + i)), QString::number(changes)});
        }
        for (QProcess &program : programs) {
            QVERIFY(program.waitForFinished(10 * support::patience));
            QVERIFY2(program.exitCode() == 0, program.readAllStandardError().constData());
        }
        QSet<QString> found;
        QSet<QString> versions;
        for (const QJsonObject &preset : presetsIn(path)) {
            found.insert(preset.value(u"pName"_s).toString());
            if (preset.value(u"pName"_s) == u"shared"_s)
                versions.insert(preset.value(u"pSelectedAudioLanguage"_s).toString());
        }
        for (int i = 0; i < changes; ++i)
            QVERIFY2(found.contains(u'a' + QString::number(i)) && found.contains(u'b' + QString::number(i)),
                     qPrintable(QString::number(i)));
        const QString last = QString::number(changes - 1);
        QCOMPARE(versions, QSet<QString>({u'a' + last, u'b' + last})); // what both made of the same one
        QCOMPARE(scratch.names(), QStringList{u"defaults.json"_s});
    }

    void noRoomIsToldAndCostsNothing_data()
    {
        QTest::addColumn<QString>("limit"); // of a file, else a full disk
        QTest::addColumn<int>("left");
        QTest::newRow("a full disk") << QString() << 0;
        QTest::newRow("4,096 bytes left") << QString() << 4096;
        for (const int most : {0, 1, 4096})
            QTest::addRow("%d bytes a file", most) << QString::number(most) << 0;
    }

    void noRoomIsToldAndCostsNothing()
    {
        QFETCH(QString, limit);
        QFETCH(int, left);
        const Scratch scratch;
        QDir().mkpath(scratch.path(u"disk"_s));
        const QStringList words{u"--save-without-room"_s, scratch.path(u"disk/defaults.json"_s), limit,
                                QString::number(left)};
        QProcess program;
        program.setProcessChannelMode(QProcess::MergedChannels);
        if (limit.isEmpty()) {
            const QString line = u"mount -t tmpfs -o size=200k tmpfs \"$1\" && shift && exec \"$@\""_s;
            program.start(u"unshare"_s,
                          QStringList{u"-rm"_s, u"sh"_s, u"-c"_s, line, u"sh"_s, scratch.path(u"disk"_s),
                                      QCoreApplication::applicationFilePath()} +
                              words);
        } else {
            program.start(QCoreApplication::applicationFilePath(), words);
        }
        QVERIFY(program.waitForFinished(support::patience));
        const QByteArray said = program.readAll();
        QVERIFY2(program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0, said.constData());
        QVERIFY2(said.contains("can't be saved"), said.constData());
    }
};

TESSARAY_TEST(StoreSharingTest)
TESSARAY_ROLE("--change-presets", changePresets(words.value(1), words.value(2), words.value(3).toInt()))
TESSARAY_ROLE("--save-without-room", saveWithoutRoom(words.value(1), words.value(2), words.value(3).toInt()))
#include "StoreSharingTest.moc"

#include "platform/DefaultsStore.h"

#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Unprivileged.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QJsonDocument>
#include <QLockFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int additions = 20;

/// What the second program of twoProgramsCountTogether() does.
int countUpIn(const QString &path)
{
    platform::JsonDefaultsStore store(path);
    for (int turn = 0; turn < additions; ++turn) {
        const QString problem = store.update([](const QVariantMap &stored) {
            return QVariantMap{{u"count"_s, stored.value(u"count"_s).toInt() + 1}};
        });
        if (!problem.isNull())
            return 1;
    }
    return 0;
}

} // namespace

class DefaultsStoreTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registeredDefaultsAnswerAndAreNeverWritten()
    {
        const support::Scratch scratch;
        platform::JsonDefaultsStore store(scratch.path(u"d.json"_s));
        QVERIFY(store.load().isNull()); // a missing file is a fresh user
        store.registerDefaults({{u"a"_s, u"default"_s}, {u"b"_s, true}});
        QCOMPARE(store.value(u"a"_s), QVariant(u"default"_s));
        QVERIFY(!QFileInfo::exists(scratch.path(u"d.json"_s)));
        QVERIFY(!store.value(u"unknown"_s).isValid());
        QVERIFY(store.store({{u"a"_s, u"mine"_s}}).isNull());
        QCOMPARE(store.value(u"a"_s), QVariant(u"mine"_s));
        QVERIFY(scratch.read(u"d.json"_s).contains("\"a\""));
        QVERIFY(!scratch.read(u"d.json"_s).contains("\"b\""));
    }

    void everyKindOfValueIsReadBack()
    {
        const support::Scratch scratch;
        platform::JsonDefaultsStore store(scratch.path(u"deep/er/d.json"_s)); // folders are made
        const QVariantMap values{
            {u"text"_s, u"Füße 🎬 \"x\"\n"_s},
            {u"flag"_s, false},
            {u"number"_s, 9007199254740991LL},
            {u"list"_s, QVariantList{u"a"_s, 1, true}},
            {u"dictionary"_s, QVariantMap{{u"inner"_s, QVariantMap{{u"k"_s, u""_s}}}}},
        };
        QVERIFY(store.store(values).isNull());
        platform::JsonDefaultsStore again(store.path());
        QVERIFY(again.load().isNull());
        for (auto item = values.cbegin(); item != values.cend(); ++item)
            QCOMPARE(again.value(item.key()), item.value());
    }

    void keysOfAnotherProgramStay()
    {
        const support::Scratch scratch;
        platform::JsonDefaultsStore one(scratch.path(u"d.json"_s));
        platform::JsonDefaultsStore other(scratch.path(u"d.json"_s));
        QVERIFY(one.load().isNull());
        QVERIFY(other.load().isNull());
        QVERIFY(other.store({{u"theirs"_s, 1}}).isNull());
        QVERIFY(one.store({{u"ours"_s, 2}}).isNull());
        QCOMPARE(one.value(u"theirs"_s).toInt(), 1);
        QVERIFY(other.load().isNull());
        QCOMPARE(other.value(u"ours"_s).toInt(), 2);
    }

    void updateIsAskedWithWhatIsStoredNow()
    {
        const support::Scratch scratch;
        platform::JsonDefaultsStore one(scratch.path(u"d.json"_s));
        platform::JsonDefaultsStore other(scratch.path(u"d.json"_s));
        QVERIFY(other.store({{u"n"_s, 5}}).isNull());
        QVariant seen;
        QVERIFY(one.update([&](const QVariantMap &stored) {
                       seen = stored.value(u"n"_s);
                       return QVariantMap{{u"n"_s, 6}};
                   })
                    .isNull());
        QCOMPARE(seen.toInt(), 5);
        QVERIFY(other.load().isNull());
        QCOMPARE(other.value(u"n"_s).toInt(), 6);
    }

    void noChangeTouchesNoFile()
    {
        const support::Scratch scratch;
        platform::JsonDefaultsStore store(scratch.path(u"d.json"_s));
        QVERIFY(store.store({}).isNull());
        QCOMPARE(scratch.names(), QStringList());
    }

    void twoProgramsCountTogether()
    {
        const support::Scratch scratch;
        const QString path = scratch.path(u"d.json"_s);
        QProcess other;
        other.start(QCoreApplication::applicationFilePath(), {u"--count-up"_s, path});
        QVERIFY(other.waitForStarted());
        QCOMPARE(countUpIn(path), 0);
        QVERIFY(other.waitForFinished());
        QCOMPARE(other.exitCode(), 0);
        platform::JsonDefaultsStore store(path);
        QVERIFY(store.load().isNull());
        QCOMPARE(store.value(u"count"_s).toInt(), 2 * additions);
        QCOMPARE(scratch.names(), QStringList({u"d.json"_s})); // the lock is gone
    }

    void damagedFileIsSetAsideBeforeTheFirstWrite()
    {
        const support::Scratch scratch;
        const QString aside = u"d.json damaged "_s + QDate::currentDate().toString(Qt::ISODate);
        scratch.write(u"d.json"_s, "{ \"half\": ");
        scratch.write(aside, "an older one");
        platform::JsonDefaultsStore store(scratch.path(u"d.json"_s));
        QVERIFY(store.load().contains(scratch.path(u"d.json"_s)));
        QCOMPARE(scratch.read(u"d.json"_s), QByteArray("{ \"half\": "));
        QVERIFY(store.store({{u"k"_s, 1}}).isNull());
        QCOMPARE(scratch.read(aside), QByteArray("an older one"));
        QCOMPARE(scratch.read(aside + u" (2)"_s), QByteArray("{ \"half\": "));
        QVERIFY(store.takeNotice().contains(aside + u" (2)"_s));
        QVERIFY(store.load().isNull());
        QCOMPARE(store.value(u"k"_s).toInt(), 1);
        QVERIFY(store.store({{u"k"_s, 2}}).isNull()); // and not again
        QCOMPARE(scratch.names().size(), 3);
    }

    void aFileThatIsNoDictionaryIsDamaged()
    {
        const support::Scratch scratch;
        scratch.write(u"d.json"_s, "[1]");
        platform::JsonDefaultsStore store(scratch.path(u"d.json"_s));
        QVERIFY(!store.load().isNull());
    }

    void whatCannotBeReadIsNeverOverwritten()
    {
        const support::Scratch scratch;
        const QString path = scratch.path(u"d.json"_s);
        QVERIFY(QDir().mkpath(path + u"/kept"_s)); // a folder of that name can't be read as a file
        platform::JsonDefaultsStore store(path);
        QVERIFY(store.load().contains(path));
        QVERIFY(store.store({{u"k"_s, 1}}).contains(path));
        QVERIFY(QDir(path + u"/kept"_s).exists());
    }

    void whatIsClosedToUsIsNeverReplaced()
    {
        const support::Scratch scratch;
        const QString path = scratch.write(u"d.json"_s, R"({"kept": 1})");
        const QByteArray before = scratch.read(u"d.json"_s);
        QVERIFY(QFile::setPermissions(path, QFile::Permissions())); // but its folder is open
        QVERIFY(QFile::setPermissions(scratch.path(), QFile::Permissions(0x7777)));
        QString problem;
        {
            const support::Unprivileged other;
            problem = platform::JsonDefaultsStore(path).store({{u"k"_s, 1}});
        }
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY2(problem.contains(path), qPrintable(problem));
        QCOMPARE(scratch.read(u"d.json"_s), before);
    }

    void aFolderThatCannotBeMadeIsSaid()
    {
        const support::Scratch scratch;
        scratch.write(u"file"_s, "x");
        platform::JsonDefaultsStore store(scratch.path(u"file/d.json"_s));
        QVERIFY(store.store({{u"k"_s, 1}}).contains(u"can't be made"_s));
    }

    void whileAnotherProgramWritesNothingIsWritten()
    {
        const support::Scratch scratch;
        QLockFile lock(scratch.path(u"d.json.lock"_s));
        QVERIFY(lock.lock());
        platform::JsonDefaultsStore store(scratch.path(u"d.json"_s), 100);
        QVERIFY(store.store({{u"k"_s, 1}}).contains(u"locked"_s));
        QVERIFY(!scratch.names().contains(u"d.json"_s));
    }

    /// A kill at the wrong moment and a full disk leave this.
    void anEmptyLockBlocksNothing()
    {
        const support::Scratch scratch;
        scratch.write(u"d.json.lock"_s, {});
        platform::JsonDefaultsStore store(scratch.path(u"d.json"_s));
        QCOMPARE(store.store({{u"k"_s, 1}}), QString());
        QVERIFY(scratch.read(u"d.json"_s).contains("\"k\""));
    }

    void whatIsNoOrdinaryFileIsNeitherReadNorReplaced()
    {
        const support::Scratch scratch;
        const QString path = scratch.path(u"pipe"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        platform::JsonDefaultsStore store(path);
        const QString sentence = u"The settings in %1 can't be read: it is no ordinary file."_s.arg(path);
        QCOMPARE(platform::JsonDefaultsStore::problemWith(path), sentence);
        QCOMPARE(store.load(), sentence);
        QCOMPARE(store.store({{u"k"_s, 1}}), sentence);
        QCOMPARE(scratch.names(), QStringList({u"pipe"_s}));
        QVERIFY(!QFileInfo(path).isFile());
    }

    void whatWouldBeTooLargeToBeReadIsNotWritten()
    {
        const support::Scratch scratch;
        platform::JsonDefaultsStore store(scratch.path(u"d.json"_s));
        QCOMPARE(store.store({{u"k"_s, 1}}), QString());
        const QByteArray before = scratch.read(u"d.json"_s);
        QVERIFY(store.store({{u"long"_s, QString(70'000'000, u'x')}}).contains(u"too large"_s));
        QCOMPARE(scratch.read(u"d.json"_s), before);
        QCOMPARE(store.value(u"k"_s), QVariant(1));
    }

    void aFileThatIsTooLargeIsKept()
    {
        const support::Scratch scratch;
        const QString path = scratch.write(u"d.json"_s, "{}");
        QVERIFY(QFile::resize(path, 64 * 1024 * 1024 + 1));
        platform::JsonDefaultsStore store(path);
        QVERIFY(store.load().contains(u"too large"_s));
        QVERIFY(store.store({{u"k"_s, 1}}).contains(u"too large"_s));
        QCOMPARE(scratch.names(), QStringList({u"d.json"_s}));
        QCOMPARE(QFileInfo(path).size(), 64 * 1024 * 1024 + 1);
    }

    void standardPathKeepsToTheTestMode()
    {
        const QString real = platform::JsonDefaultsStore::standardPath();
        QStandardPaths::setTestModeEnabled(true);
        const QString test = platform::JsonDefaultsStore::standardPath();
        QVERIFY(test.endsWith(u"/defaults.json"_s));
        QVERIFY(test != real);
        QVERIFY(test.contains(u"qttest"_s));
    }
};

TESSARAY_TEST(DefaultsStoreTest)
TESSARAY_ROLE("--count-up", countUpIn(words.value(1)))
#include "DefaultsStoreTest.moc"

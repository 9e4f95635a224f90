// What a store keeps whatever happens to its file, and that a failed save says so.
#include "platform/DefaultsStore.h"

#include "platform/HolderFile.h"
#include "platform/SafeReplace.h"
#include "platform/StoredForm.h"
#include "support/Scratch.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Unprivileged.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using support::Scratch;

namespace {

const QString name = u"d.json"_s;
constexpr int patience = 100; // milliseconds
const QVariantMap keys{{u"list"_s, QVariantList()}, {u"panel"_s, QVariantMap()}, {u"text"_s, u""_s}};

QVariantMap fileOf(const Scratch &scratch)
{
    return QJsonDocument::fromJson(scratch.read(name)).object().toVariantMap();
}

/// Knows two values, as a program that runs does.
struct Running
{
    explicit Running(const Scratch &scratch)
        : store(scratch.path(name), patience)
    {
        store.registerDefaults(keys);
        store.load();
        problem = store.store({{u"list"_s, QVariantList{u"a"_s, u"b"_s}}, {u"text"_s, u"kept"_s}});
    }
    platform::JsonDefaultsStore store;
    QString problem;
};

QString asideOf(const Scratch &scratch, int number = 1)
{
    const QString plain = name + u" damaged "_s + QDate::currentDate().toString(Qt::ISODate);
    return scratch.path(number == 1 ? plain : plain + u" (%1)"_s.arg(number));
}

} // namespace

class SafeStoreTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatRunsSurvivesTheFile_data()
    {
        QTest::addColumn<QByteArray>("content"); // null: deleted
        QTest::addColumn<bool>("isSetAside");
        QTest::newRow("deleted") << QByteArray() << false;
        QTest::newRow("emptied") << QByteArray("") << true;
        QTest::newRow("cut") << QByteArray(R"({"list": ["a")") << true;
        QTest::newRow("never written") << QByteArray(300, '\0') << true;
        QTest::newRow("without keys") << QByteArray("{}") << false;
        QTest::newRow("lost a key") << QByteArray(R"({"text": "kept"})") << false;
    }

    void whatRunsSurvivesTheFile()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, isSetAside);
        const Scratch scratch;
        Running running(scratch);
        QCOMPARE(running.problem, QString());
        QVERIFY(QFile::remove(scratch.path(name)));
        if (!content.isNull())
            scratch.write(name, content);
        QCOMPARE(running.store.store({{u"panel"_s, QVariantMap{{u"k"_s, 1}}}}), QString());
        QCOMPARE(fileOf(scratch), QVariantMap({{u"list"_s, QVariantList{u"a"_s, u"b"_s}},
                                               {u"text"_s, u"kept"_s},
                                               {u"panel"_s, QVariantMap{{u"k"_s, 1.0}}}}));
        QCOMPARE(QFileInfo::exists(asideOf(scratch)), isSetAside);
        if (isSetAside)
            QCOMPARE(scratch.read(QFileInfo(asideOf(scratch)).fileName()), content);
        const bool isTold = isSetAside || content.isNull();
        const QString notice = running.store.takeNotice();
        QCOMPARE(notice.contains(scratch.path(name)), isTold);
        QVERIFY(running.store.takeNotice().isNull()); // once
    }

    /// Also when nothing is to be changed: the program may end after it.
    void whatWasLostIsSavedWithoutAChange()
    {
        const Scratch scratch;
        Running running(scratch);
        QVERIFY(QFile::remove(scratch.path(name)));
        QCOMPARE(running.store.update([](const QVariantMap &) { return QVariantMap(); }), QString());
        QCOMPARE(fileOf(scratch).value(u"text"_s).toString(), u"kept"_s);
    }

    void whatAnotherProgramEmptiedStaysEmpty()
    {
        const Scratch scratch;
        Running running(scratch);
        platform::JsonDefaultsStore other(scratch.path(name));
        QCOMPARE(other.store({{u"list"_s, QVariantList()}}), QString());
        QCOMPARE(running.store.store({{u"text"_s, u"new"_s}}), QString());
        QCOMPARE(fileOf(scratch).value(u"list"_s), QVariant(QVariantList()));
    }

    void somethingElseIsNeverWrittenOver_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("another program's object") << QByteArray(R"({"name": "x", "version": "1.0"})");
        QTest::newRow("a list") << QByteArray("[1, 2]");
        QTest::newRow("a value of another kind") << QByteArray(R"({"list": {"of": "a newer form"}})");
        QTest::newRow("no JSON") << QByteArray("\x1a\x45\xdf\xa3 a film");
        QTest::newRow("a letter") << QByteArray("Dear user");
    }

    void somethingElseIsNeverWrittenOver()
    {
        QFETCH(QByteArray, content);
        const Scratch scratch;
        Running running(scratch);
        scratch.write(name, content);
        platform::JsonDefaultsStore fresh(scratch.path(name));
        fresh.registerDefaults(keys);
        QVERIFY(fresh.load().contains(scratch.path(name)));
        QVERIFY(fresh.store({{u"text"_s, u"x"_s}}).contains(scratch.path(name)));
        QVERIFY(running.store.store({{u"text"_s, u"x"_s}}).contains(scratch.path(name)));
        QCOMPARE(scratch.read(name), content);
        QCOMPARE(scratch.names(), QStringList{name});
        QVERIFY(QFile::remove(scratch.path(name))); // once it is out of the way nothing is lost
        QCOMPARE(running.store.store({{u"panel"_s, QVariantMap()}}), QString());
        QCOMPARE(fileOf(scratch).value(u"text"_s).toString(), u"kept"_s);
    }

    void aCutAnywhereIsSetAsideAndTold()
    {
        const Scratch whole;
        const Running running(whole);
        const QByteArray bytes = whole.read(name);
        QList<qsizetype> places;
        for (qsizetype place = 0; place < bytes.trimmed().size(); ++place)
            places.append(place);
        for (const qsizetype place : support::drawn(places, 12)) {
            const Scratch scratch;
            scratch.write(name, bytes.first(place));
            platform::JsonDefaultsStore store(scratch.path(name));
            store.registerDefaults(keys);
            QVERIFY2(store.load().contains(u"damaged"_s), qPrintable(QString::number(place)));
            QCOMPARE(store.store({{u"text"_s, u"new"_s}}), QString());
            QCOMPARE(scratch.read(QFileInfo(asideOf(scratch)).fileName()), bytes.first(place));
            QCOMPARE(fileOf(scratch), QVariantMap({{u"text"_s, u"new"_s}}));
        }
    }

    void aLinkIsReadAndNeverWrittenThrough()
    {
        const Scratch scratch;
        const Running running(scratch);
        const QByteArray before = scratch.read(name);
        QVERIFY(QFile::link(scratch.path(name), scratch.path(u"link.json"_s)));
        platform::JsonDefaultsStore store(scratch.path(u"link.json"_s));
        store.registerDefaults(keys);
        QCOMPARE(store.load(), QString());
        QCOMPARE(store.value(u"text"_s).toString(), u"kept"_s);
        QVERIFY(store.store({{u"text"_s, u"x"_s}}).contains(u"no ordinary file"_s));
        QCOMPARE(scratch.read(name), before);
        QVERIFY(QFileInfo(scratch.path(u"link.json"_s)).isSymLink());
        QCOMPARE(scratch.names().size(), 2);
    }

    void aLinkToNowhereIsNotFollowed()
    {
        const Scratch scratch;
        QVERIFY(QFile::link(scratch.path(u"elsewhere"_s), scratch.path(name)));
        platform::JsonDefaultsStore store(scratch.path(name));
        QVERIFY(!store.store({{u"text"_s, u"x"_s}}).isNull());
        QVERIFY(!QFileInfo::exists(scratch.path(u"elsewhere"_s)));
    }

    void aFileThatIsClosedToWritingStays()
    {
        const Scratch scratch;
        Running running(scratch);
        const QByteArray before = scratch.read(name);
        QVERIFY(QFile::setPermissions(scratch.path(name), QFile::Permissions(0x4444)));
        QVERIFY(QFile::setPermissions(scratch.path(), QFile::Permissions(0x7777)));
        QString problem;
        {
            const support::Unprivileged other;
            problem = running.store.store({{u"text"_s, u"x"_s}});
        }
        QVERIFY2(problem.contains(u"may not be written"_s), qPrintable(problem));
        QCOMPARE(scratch.read(name), before);
    }

    void aClosedFolderIsToldAsWhatItIs()
    {
        const Scratch scratch;
        Running running(scratch);
        const QByteArray before = scratch.read(name);
        QVERIFY(QFile::setPermissions(scratch.path(), QFile::Permissions(0x5555)));
        QString problem;
        {
            const support::Unprivileged other;
            problem = running.store.store({{u"text"_s, u"x"_s}});
        }
        QVERIFY(QFile::setPermissions(scratch.path(), QFile::Permissions(0x7777)));
        QVERIFY2(!problem.isNull() && !problem.contains(u"locked"_s), qPrintable(problem));
        QCOMPARE(scratch.read(name), before);
        QCOMPARE(running.store.value(u"text"_s).toString(), u"kept"_s);
    }

    void aFolderThatVanishedIsMadeAnew()
    {
        const Scratch scratch;
        platform::JsonDefaultsStore store(scratch.path(u"deep/d.json"_s));
        QCOMPARE(store.store({{u"text"_s, u"kept"_s}}), QString());
        QVERIFY(QDir(scratch.path(u"deep"_s)).removeRecursively());
        QCOMPARE(store.store({{u"panel"_s, QVariantMap()}}), QString());
        QVERIFY(scratch.read(u"deep/d.json"_s).contains("kept"));
    }

    void whatAKillLeftBesideIsCleared()
    {
        const Scratch scratch;
        Running running(scratch);
        QFile left(platform::besideOf(scratch.path(name)));
        QVERIFY(left.open(QIODevice::WriteOnly) && left.write("half") == 4);
        left.close();
        QCOMPARE(running.store.store({{u"text"_s, u"x"_s}}), QString());
        QCOMPARE(scratch.names(), QStringList{name});
    }

    void permissionsStay()
    {
        const Scratch scratch;
        Running running(scratch);
        const QFile::Permissions own =
            QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
        QVERIFY(QFile::setPermissions(scratch.path(name), own));
        QCOMPARE(running.store.store({{u"text"_s, u"x"_s}}), QString());
        QCOMPARE(QFile::permissions(scratch.path(name)), own);
    }

    void whoIsAtItKeepsOthersOut()
    {
        const Scratch scratch;
        Running running(scratch);
        platform::HolderFile holder(QUrl::fromLocalFile(scratch.path(name + u".holder"_s)));
        QCOMPARE(holder.take(), platform::HolderFile::Answer::Held);
        QVERIFY(running.store.store({{u"text"_s, u"x"_s}}).contains(u"locked"_s));
        QCOMPARE(fileOf(scratch).value(u"text"_s).toString(), u"kept"_s);
    }

    void anotherMachineThatLeftItsMarkBlocksForAWhile()
    {
        const Scratch scratch;
        Running running(scratch);
        const QByteArray theirs = "1\n1\nelsewhere\n" + QByteArray(32, 'm') + "\nboot\nword\n";
        const QString holder = scratch.write(name + u".holder"_s, theirs);
        QVERIFY(running.store.store({{u"text"_s, u"x"_s}}).contains(u"locked"_s));
        QFile file(holder);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-3600), QFile::FileModificationTime));
        file.close();
        QCOMPARE(running.store.store({{u"text"_s, u"x"_s}}), QString());
        QCOMPARE(scratch.names(), QStringList{name});
    }

    void textsOfTheLastTimeAreNoOthers()
    {
        platform::StoredForm form;
        const auto read = [&](const QVariantMap &values) {
            return QJsonDocument::fromJson(form.bytesOf(values)).object().toVariantMap();
        };
        const QVariantMap one{{u"n"_s, u"a"_s}, {u"w"_s, 1.0}};
        const QVariantMap two{{u"n"_s, u"b"_s}, {u"w"_s, true}};
        for (const QVariantList &list : QList<QVariantList>{{one},
                                                            {one, two},
                                                            {two, one},
                                                            {two},
                                                            {},
                                                            {one, one},
                                                            {QVariantMap{{u"n"_s, u"a"_s}, {u"w"_s, true}}},
                                                            {QVariantList{one}, u"text \"x\"\n"_s}})
            QCOMPARE(read({{u"l"_s, list}, {u"m"_s, one}}).value(u"l"_s).toList(), list);
        QVERIFY(!platform::isSameValue(QVariantList{true}, QVariantList{1}));
        QVERIFY(!platform::isSameValue(one, two));
        QVERIFY(platform::isSameValue(one, QVariantMap(one)));
    }
};

TESSARAY_TEST(SafeStoreTest)
#include "SafeStoreTest.moc"

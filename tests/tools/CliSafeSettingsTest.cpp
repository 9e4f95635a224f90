// What the command line says of settings that can't be read or saved, and its exit status.
#include "platform/DefaultsStore.h"
#include "support/CliFixture.h"
#include "support/TestMain.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

const QString selectionsKey = u"presetSelectionsArray"_s;

QJsonArray presetsOf(const CliFixture &cli)
{
    return QJsonDocument::fromJson(cli.scratch().read(u"defaults.json"_s))
        .object()
        .value(selectionsKey)
        .toArray();
}

} // namespace

class CliSafeSettingsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSettingThatCouldNotBeSavedIsAFailure()
    {
        const CliFixture cli;
        cli.scratch().write(u"defaults.json"_s, "{\"name\": \"another program's\"}");
        const auto run = cli.run({u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, u"false"_s});
        QCOMPARE(run.status, 2);
        QVERIFY(run.error.contains("something else than settings"));
        QCOMPARE(cli.scratch().read(u"defaults.json"_s), QByteArray("{\"name\": \"another program's\"}"));
    }

    void damagedSettingsAreAWarning()
    {
        const CliFixture cli;
        cli.scratch().write(u"defaults.json"_s, "{\"preferencePanelDictionary\": {\"keep");
        const auto list = cli.run({u"prefs"_s, u"list"_s});
        QCOMPARE(list.status, 1);
        QVERIFY(list.error.contains("damaged"));
        const auto set = cli.run({u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, u"false"_s});
        QCOMPARE(set.status, 1);
        QVERIFY(set.error.contains("that file is kept as"));
        QCOMPARE(cli.run({u"prefs"_s, u"get"_s, u"keepLogsFlag"_s}).status, 0);
    }

    void whatANewerVersionStoredInAPresetStays()
    {
        const CliFixture cli;
        QCOMPARE(cli.run({u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, u"false"_s}).status, 0);
        const QString path = cli.scratch().path(u"defaults.json"_s);
        const QVariantMap newer{{u"pName"_s, u"Newer"_s}, {u"isEditable"_s, true}, {u"pBeyond"_s, 7}};
        QCOMPARE(platform::JsonDefaultsStore(path).store({{selectionsKey, QVariantList{newer}}}), QString());
        cli.scratch().write(u"more.json"_s, cli.run({u"presets"_s, u"export"_s}).output);
        QCOMPARE(cli.run({u"presets"_s, u"import"_s, cli.scratch().path(u"more.json"_s)}).status, 0);
        const QJsonArray presets = presetsOf(cli);
        QCOMPARE(presets.size(), 2);
        QCOMPARE(presets.at(0).toObject().value(u"pBeyond"_s).toInt(), 7);
        QVERIFY(!presets.at(1).toObject().contains(u"pBeyond"_s)); // an export has the words that are known
    }
};

TESSARAY_TEST(CliSafeSettingsTest)
#include "CliSafeSettingsTest.moc"

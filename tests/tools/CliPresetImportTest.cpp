// What "presets import" does not take, and that it then changes nothing.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QStringEncoder>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::objectIn;
using support::presetFile;
using support::settingsPreset;
using support::someRules;
using support::someSettings;
using support::storedPresets;
using support::storePresets;
using support::trackPreset;
using support::words;

namespace {

QByteArray binary()
{
    QByteArray bytes;
    for (int i = 0; i < 4096; ++i)
        bytes.append(static_cast<char>(i * 7));
    return bytes;
}

QByteArray utf16(const QByteArray &text)
{
    QStringEncoder encoder(QStringEncoder::Utf16LE);
    return encoder.encode(QString::fromUtf8(text));
}

/// An undefined value takes the key away.
QByteArray changed(const QByteArray &file, const QString &key, const QJsonValue &value)
{
    QJsonObject object = objectIn(file);
    object.insert(key, value);
    return QJsonDocument(object).toJson();
}

QJsonObject without(QJsonObject object, const QString &key)
{
    object.remove(key);
    return object;
}

} // namespace

class CliPresetImportTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        storePresets(*m_cli, someRules(), someSettings());
    }

    void whatDoesNotFitIsRefusedWhole_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("named");
        const QByteArray valid =
            presetFile({trackPreset(u"Rule"_s, u"#1"_s)}, {settingsPreset(u"Set"_s, u"PS3"_s)});
        const QString damaged = u"damaged, or no preset file"_s;
        const QString foreign = u"no preset file"_s;
        const auto row = [](const char *name, const QByteArray &file, const QString &named) {
            QTest::newRow(name) << file << named;
        };
        row("empty", {}, damaged);
        row("blanks", "  \n\t\n", damaged);
        row("binary", binary(), damaged);
        row("truncated", valid.chopped(valid.size() / 3), damaged);
        row("one brace missing", valid.trimmed().chopped(1), damaged);
        row("something behind it", valid + "x", damaged);
        row("twice", valid + valid, damaged);
        row("another encoding", QByteArray(valid).replace("Rule", "R\xfcle"), damaged);
        row("another alphabet", utf16(valid), damaged);
        row("too deep", QByteArray(5000, '[') + QByteArray(5000, ']'), damaged);
        row("too large", QByteArray(16 * 1024 * 1024, ' ') + valid, u"too large"_s);
        row("a list", "[" + valid + "]", foreign);
        row("a text", "\"presets\"", foreign);
        row("nothing", "null", foreign);
        row("another object", R"({"name": "x"})", foreign);
        row("an empty object", "{}", foreign);
        row("stored settings", storedPresets(someRules(), someSettings()), foreign);
        for (const auto *version : {"2", "0", "-1", "1.5", "\"1\"", "true", "null", "[1]", "11"})
            row(qPrintable(u"version "_s + QString::fromLatin1(version)),
                QByteArray(valid).replace("\"version\": 1", QByteArray("\"version\": ") + version),
                u"version"_s);
        row("no tracks", changed(valid, u"presetSelectionsArray"_s, QJsonValue::Undefined),
            u"presetSelectionsArray"_s);
        row("no settings", changed(valid, u"presetSettingsArray"_s, QJsonValue::Undefined),
            u"presetSettingsArray"_s);
        row("tracks are no list", changed(valid, u"presetSelectionsArray"_s, QJsonObject()),
            u"presetSelectionsArray"_s);
        row("settings are no list", changed(valid, u"presetSettingsArray"_s, u"x"_s),
            u"presetSettingsArray"_s);
        row("more than that", changed(valid, u"watchFolder"_s, u"/"_s), u"watchFolder"_s);
        row("a text among the tracks", presetFile({u"x"_s}, {}), u"Entry 1"_s);
        row("an empty record", presetFile({}, {QJsonObject()}), u"Entry 1"_s);
        row("the second one", presetFile({trackPreset(u"Rule"_s, u"#1"_s), 7}, {}), u"Entry 2"_s);
        row("settings among the tracks", presetFile({settingsPreset(u"Set"_s, u"PS3"_s)}, {}), u"Entry 1"_s);
        row("tracks among the settings", presetFile({}, {trackPreset(u"Rule"_s, u"#1"_s)}), u"Entry 1"_s);
    }

    void whatDoesNotFitIsRefusedWhole()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, named);
        compareRefused(file, named);
    }

    void everyKeyOfARecordIsNeeded()
    {
        const QJsonObject rule = trackPreset(u"Rule"_s, u"#1"_s);
        const QJsonObject settings = settingsPreset(u"Set"_s, u"PS3"_s);
        QCOMPARE(rule.size() + settings.size(), 15 + 18);
        for (const QString &key : rule.keys())
            compareRefused(presetFile({without(rule, key)}, {settings}), u"lacks \"%1\""_s.arg(key));
        for (const QString &key : settings.keys())
            compareRefused(presetFile({rule}, {without(settings, key)}), u"lacks \"%1\""_s.arg(key));
    }

    void whatNoRecordHoldsIsRefused_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QJsonValue>("value");
        const auto row = [](const char *key, const QJsonValue &value, const char *kind) {
            QTest::addRow("%s, %s", key, kind) << QString::fromLatin1(key) << value;
        };
        row("pComment", u"x"_s, "an unknown key");
        row("PNAME", u"x"_s, "in capitals");
        row("pVideoActionIsBestGuess", false, "what is never stored");
        row("pName", 7, "a number");
        row("pName", QJsonValue::Null, "nothing");
        row("pDevice", QJsonArray(), "a list");
        row("pWidth", 320, "a number");
        row("pVideoActionIndex", u"1"_s, "a text");
        row("pVideoActionIndex", 1.5, "a fraction");
        row("pVideoActionIndex", 1e6, "a huge number");
        row("pVideoActionIndex", true, "a flag");
        row("pAudioAddStereo", 1, "a number");
        row("pAudioAddStereo", u"true"_s, "a text");
        row("isEditable", u"true"_s, "a text");
        row("isEditable", false, "a built-in");
        for (const char *name : {"Manual", "First Track", "All Tracks", "Extract Tracks", "Remove Tracks"})
            row("pName", QString::fromLatin1(name), name);
        row("pName", u""_s, "empty");
        row("pName", u" \t "_s, "blanks");
    }

    void whatNoRecordHoldsIsRefused()
    {
        QFETCH(QString, key);
        QFETCH(QJsonValue, value);
        QJsonObject settings = settingsPreset(u"Set"_s, u"PS3"_s);
        settings.insert(key, value);
        compareRefused(presetFile({trackPreset(u"Rule"_s, u"#1"_s)}, {settings}), u"Entry 1"_s);
        QJsonObject rule = trackPreset(u"Rule"_s, u"#1"_s);
        if (!rule.contains(key) && settingsPreset({}, {}).contains(key))
            return;
        rule.insert(key, value);
        compareRefused(presetFile({trackPreset(u"Good"_s, u"#1"_s), rule}, {}), u"Entry 2"_s);
    }

    void whatIsNoFilterIsRefused_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QJsonValue>("value");
        for (const QString &list : {u"pAudioFilterArray"_s, u"pSubtitleFilterArray"_s}) {
            const QJsonObject good =
                trackPreset({}, u"#1"_s, u"#1"_s).value(list).toArray().first().toObject();
            const auto row = [&](const char *name, const QJsonValue &value) {
                QTest::addRow("%s, %s", qPrintable(list), name) << list << value;
            };
            row("an object", good);
            row("a text", u"all"_s);
            row("nothing", QJsonValue::Null);
            row("a text in it", QJsonArray{u"all"_s});
            row("an empty one", QJsonArray{good, QJsonObject()});
            for (const QString &key : good.keys()) {
                row(qPrintable(u"without "_s + key), QJsonArray{without(good, key)});
                QJsonObject number = good;
                number.insert(key, 1);
                row(qPrintable(u"a number as "_s + key), QJsonArray{good, number});
            }
        }
    }

    void whatIsNoFilterIsRefused()
    {
        QFETCH(QString, list);
        QFETCH(QJsonValue, value);
        QJsonObject rule = trackPreset(u"Rule"_s, u"#1"_s);
        rule.insert(list, value);
        compareRefused(presetFile({rule}, {}), list);
    }

    void whatIsNoFileIsRefused_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name :
             {u"gone.json"_s, u"folder"_s, u"pipe"_s, u"film.mkv"_s, u"/dev/null"_s, u"/dev/zero"_s})
            QTest::newRow(qPrintable(name)) << name;
    }

    void whatIsNoFileIsRefused()
    {
        QFETCH(QString, name);
        QVERIFY(QDir().mkpath(m_cli->media(u"folder"_s)));
        QCOMPARE(::mkfifo(QFile::encodeName(m_cli->media(u"pipe"_s)).constData(), 0600), 0);
        m_cli->clip(support::longMkv(10), u"film.mkv"_s);
        const QByteArray before = defaults();
        const auto run = m_cli->run({u"presets"_s, u"import"_s, name}, 20000);
        QCOMPARE(run.status, 2);
        QVERIFY2(run.saidOneSentence() && run.said().contains(name), run.error.constData());
        QCOMPARE(defaults(), before);
    }

private:
    QByteArray defaults() const { return m_cli->scratch().read(u"defaults.json"_s); }
    QByteArray content(const QString &name) const { return m_cli->scratch().read(u"media/"_s + name); }
    void write(const QString &name, const QByteArray &bytes) const
    {
        m_cli->scratch().write(u"media/"_s + name, bytes);
    }

    /// Refused with one sentence that names the file and the fault; what is stored stays to the byte.
    void compareRefused(const QByteArray &file, const QString &named) const
    {
        const QByteArray before = defaults();
        write(u"refused.json"_s, file);
        const auto run = m_cli->run(words(u"presets import refused.json --json"_s));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.output.isEmpty(), run.output.constData());
        QVERIFY2(run.error.count('\n') == 1 && run.error.endsWith(".\n"), run.error.constData());
        QVERIFY2(run.said().startsWith(m_cli->media(u"refused.json"_s)), run.error.constData());
        QVERIFY2(run.said().contains(named), run.error.constData());
        QCOMPARE(defaults(), before);
        QCOMPARE(m_cli->scratch().names().filter(u"defaults"_s), QStringList{u"defaults.json"_s});
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliPresetImportTest)
#include "CliPresetImportTest.moc"

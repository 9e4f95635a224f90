#include "prefs/KXPreferences.h"

#include "platform/DefaultsStore.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// One program: its own store on the same file, and its preferences.
struct Program
{
    explicit Program(const support::Scratch &scratch)
        : store(scratch.path(u"defaults.json"_s))
        , preferences(store, {scratch.path(u"Resources"_s), scratch.path()})
    {
        problem = preferences.initialize();
    }

    void setPanel(const QString &key, const QVariant &value)
    {
        QVariantMap panel = preferences.preferencePanelDictionary();
        panel.insert(key, value);
        preferences.setPreferencePanelDictionary(panel);
    }

    platform::JsonDefaultsStore store;
    KXPreferences preferences;
    QString problem;
};

QVariantMap fileContent(const support::Scratch &scratch)
{
    return QJsonDocument::fromJson(scratch.read(u"defaults.json"_s)).toVariant().toMap();
}

QVariantMap preset(const QString &name)
{
    return {{u"pName"_s, name}};
}

} // namespace

class KXPreferencesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshUserGetsTheDefaults()
    {
        const support::Scratch scratch;
        const Program program(scratch);
        const KXPreferences &preferences = program.preferences;
        QVERIFY(program.problem.isNull());
        QVERIFY(preferences.panelFlag(u"keepLogsFlag"_s));
        QVERIFY(preferences.panelFlag(u"showToolTipsFlag"_s));
        QVERIFY(preferences.panelFlag(u"moovInFrontFlag"_s));
        QVERIFY(!preferences.panelFlag(u"metadataPaddingFlag"_s));
        QVERIFY(preferences.panelFlag(u"useDpliiFlag"_s));
        const QVariantMap panel{{u"saveDirectoryPath"_s, u""_s},     {u"lintwickPath"_s, u""_s},
                                {u"showToolTipsFlag"_s, true},       {u"keepLogsFlag"_s, true},
                                {u"moovInFrontFlag"_s, true},        {u"metadataPaddingFlag"_s, false},
                                {u"useDpliiFlag"_s, true},           {u"verifyFlag"_s, false},
                                {u"newerCodecsFlag"_s, false},       {u"watchExistingFlag"_s, false},
                                {u"lowPriorityFlag"_s, false},       {u"pauseOnBatteryFlag"_s, false},
                                {u"whenQueueIsDone"_s, u"nothing"_s}};
        QCOMPARE(preferences.preferencePanelDictionary(), panel);
        QCOMPARE(preferences.preferencePanelDefaultsDictionary(), panel);
        QVERIFY(preferences.userPresetSelectionsList().isEmpty());
        QVERIFY(preferences.userPresetSettingsList().isEmpty());
        QVERIFY(preferences.guiSettingsDictionary().isEmpty());
        QVERIFY(preferences.saveDirectoryURL().path().isEmpty());
        QVERIFY(preferences.watchFolderURL().path().isEmpty());
    }

    void panelKeysHaveTheirOrder()
    {
        const support::Scratch scratch;
        const Program program(scratch);
        const QStringList expected{u"saveDirectoryPath"_s, u"lintwickPath"_s,    u"showToolTipsFlag"_s,
                                   u"keepLogsFlag"_s,      u"moovInFrontFlag"_s, u"metadataPaddingFlag"_s,
                                   u"useDpliiFlag"_s,      u"verifyFlag"_s,      u"newerCodecsFlag"_s,
                                   u"watchExistingFlag"_s, u"lowPriorityFlag"_s, u"pauseOnBatteryFlag"_s,
                                   u"whenQueueIsDone"_s};
        QCOMPARE(program.preferences.preferencePanelPropertiesList(), expected);
    }

    void storedPanelThatLacksANewerKeyGetsItsDefault()
    {
        const support::Scratch scratch;
        scratch.write(
            u"defaults.json"_s,
            R"({"preferencePanelDictionary": {"keepLogsFlag": false, "metadataPaddingFlag": true}})");
        const Program program(scratch);
        QVERIFY(!program.preferences.panelFlag(u"keepLogsFlag"_s));
        QVERIFY(program.preferences.panelFlag(u"metadataPaddingFlag"_s));
        QVERIFY(program.preferences.panelFlag(u"useDpliiFlag"_s));
        QCOMPARE(program.preferences.panelValue(u"lintwickPath"_s), QVariant(u""_s));
    }

    void hiddenToolTipsAreTheEmptyText()
    {
        const support::Scratch scratch;
        Program program(scratch);
        const QSignalSpy modified(&program.preferences, &KXPreferences::toolTipsModified);
        program.preferences.modifyToolTips();
        QCOMPARE(program.preferences.toolTipsMenuItemTitle(), u"Hide Tool Tips"_s);
        QCOMPARE(program.preferences.ttPrefToolTipsButton(), u"Turns tool tips on/off."_s);
        program.setPanel(u"showToolTipsFlag"_s, false);
        program.preferences.modifyToolTips();
        QCOMPARE(program.preferences.toolTipsMenuItemTitle(), u"Show Tool Tips"_s);
        QCOMPARE(program.preferences.ttPrefToolTipsButton(), u""_s);
        QCOMPARE(program.preferences.ttVidBitRateField(), u""_s);
        QCOMPARE(modified.count(), 2);
    }

    void everythingSavedIsReadBack()
    {
        const support::Scratch scratch;
        Program program(scratch);
        program.setPanel(u"saveDirectoryPath"_s, u"/films out"_s);
        program.setPanel(u"moovInFrontFlag"_s, false);
        program.preferences.setWatchFolderURL(QUrl::fromLocalFile(u"/in böx"_s));
        program.preferences.setUserPresetSelectionsList({preset(u"one"_s)});
        program.preferences.setUserPresetSettingsList({preset(u"two"_s), preset(u"three"_s)});
        program.preferences.setGuiSettingsDictionary({{u"tab"_s, u"Convert"_s}, {u"index"_s, 3}});
        QVERIFY(program.preferences.savePreferencesToDefaults().isNull());

        const Program next(scratch);
        QCOMPARE(next.preferences.saveDirectoryPath(), u"/films out"_s);
        QCOMPARE(next.preferences.saveDirectoryURL(), QUrl::fromLocalFile(u"/films out"_s));
        QVERIFY(!next.preferences.panelFlag(u"moovInFrontFlag"_s));
        QCOMPARE(next.preferences.watchFolderPath(), u"/in böx"_s);
        QCOMPARE(next.preferences.userPresetSelectionsList(), QVariantList{preset(u"one"_s)});
        QCOMPARE(next.preferences.userPresetSettingsList(),
                 QVariantList({preset(u"two"_s), preset(u"three"_s)}));
        QCOMPARE(next.preferences.guiSettingsDictionary().value(u"index"_s).toInt(), 3);
        QCOMPARE(fileContent(scratch).value(u"watchFolder"_s).toString(), u"/in böx"_s);
    }

    void savingSetsTheSaveFolderFromThePanel()
    {
        const support::Scratch scratch;
        Program program(scratch);
        program.setPanel(u"saveDirectoryPath"_s, u"/out"_s);
        QVERIFY(program.preferences.saveDirectoryURL().path().isEmpty()); // not before it is saved
        QVERIFY(program.preferences.savePreferencesToDefaults().isNull());
        QCOMPARE(program.preferences.saveDirectoryPath(), u"/out"_s);
        program.setPanel(u"saveDirectoryPath"_s, u""_s);
        QVERIFY(program.preferences.savePreferencesToDefaults().isNull());
        QVERIFY(program.preferences.saveDirectoryURL().path().isEmpty());
    }

    void nothingChangedWritesNothing()
    {
        const support::Scratch scratch;
        Program program(scratch);
        QVERIFY(program.preferences.savePreferencesToDefaults().isNull());
        QVERIFY(!scratch.names().contains(u"defaults.json"_s));
    }

    void onlyWhatChangedIsWritten()
    {
        const support::Scratch scratch;
        Program program(scratch);
        program.setPanel(u"keepLogsFlag"_s, false);
        QVERIFY(program.preferences.savePreferencesToDefaults().isNull());
        const QVariantMap expected{{u"preferencePanelDictionary"_s, QVariantMap{{u"keepLogsFlag"_s, false}}}};
        QCOMPARE(fileContent(scratch), expected);
    }

    void presetListsAreStoredAtOnce()
    {
        const support::Scratch scratch;
        Program program(scratch);
        program.setPanel(u"keepLogsFlag"_s, false); // changed, but not to be saved here
        QVERIFY(program.preferences.saveUserPresetSelectionsListFor({preset(u"a"_s)}).isNull());
        QVERIFY(program.preferences.saveUserPresetSettingsListFor({preset(u"b"_s)}).isNull());
        QCOMPARE(program.preferences.userPresetSelectionsList(), QVariantList{preset(u"a"_s)});
        QCOMPARE(program.preferences.userPresetSettingsList(), QVariantList{preset(u"b"_s)});
        const QVariantMap expected{{u"presetSelectionsArray"_s, QVariantList{preset(u"a"_s)}},
                                   {u"presetSettingsArray"_s, QVariantList{preset(u"b"_s)}}};
        QCOMPARE(fileContent(scratch), expected);
    }

    void emptiedPresetListIsStoredEmpty()
    {
        const support::Scratch scratch;
        Program program(scratch);
        QVERIFY(program.preferences.saveUserPresetSelectionsListFor({preset(u"a"_s)}).isNull());
        QVERIFY(program.preferences.saveUserPresetSelectionsListFor({}).isNull());
        QCOMPARE(fileContent(scratch).value(u"presetSelectionsArray"_s), QVariant(QVariantList()));
    }

    void twoProgramsKeepEachOthersPanelValues()
    {
        const support::Scratch scratch;
        Program window(scratch);
        Program cli(scratch);
        cli.setPanel(u"keepLogsFlag"_s, false);
        QVERIFY(cli.preferences.savePreferencesToDefaults().isNull());
        window.setPanel(u"useDpliiFlag"_s, false);
        QVERIFY(window.preferences.savePreferencesToDefaults().isNull());
        QVERIFY(window.preferences.savePreferencesToDefaults().isNull());
        const Program next(scratch);
        QVERIFY(!next.preferences.panelFlag(u"keepLogsFlag"_s));
        QVERIFY(!next.preferences.panelFlag(u"useDpliiFlag"_s));
    }

    void twoProgramsKeepEachOthersPresets()
    {
        const support::Scratch scratch;
        Program window(scratch);
        Program cli(scratch);
        QVERIFY(cli.preferences.saveUserPresetSettingsListFor({preset(u"cli"_s)}).isNull());
        QVERIFY(window.preferences.saveUserPresetSettingsListFor({preset(u"window"_s)}).isNull());
        window.setPanel(u"keepLogsFlag"_s, false);
        QVERIFY(window.preferences.savePreferencesToDefaults().isNull()); // not even when saving again
        const Program next(scratch);
        QCOMPARE(next.preferences.userPresetSettingsList(),
                 QVariantList({preset(u"window"_s), preset(u"cli"_s)}));
    }

    void failedSaveIsMadeUpForByTheNext()
    {
        const support::Scratch scratch;
        Program program(scratch);
        program.setPanel(u"keepLogsFlag"_s, false);
        QVERIFY(QDir().mkdir(scratch.path(u"defaults.json"_s))); // can be neither read nor replaced
        QVERIFY(!program.preferences.savePreferencesToDefaults().isNull());
        QVERIFY(QDir().rmdir(scratch.path(u"defaults.json"_s)));
        QVERIFY(program.preferences.savePreferencesToDefaults().isNull());
        QVERIFY(!Program(scratch).preferences.panelFlag(u"keepLogsFlag"_s));
    }

    void overrideHoldsForThisRunOnly()
    {
        const support::Scratch scratch;
        Program program(scratch);
        program.preferences.overrideForThisRun(u"keepLogsFlag"_s, false);
        program.preferences.overrideForThisRun(u"saveDirectoryPath"_s, u"/elsewhere"_s);
        QVERIFY(!program.preferences.panelFlag(u"keepLogsFlag"_s));
        QCOMPARE(program.preferences.saveDirectoryPath(), u"/elsewhere"_s);
        program.setPanel(u"useDpliiFlag"_s, false);
        QVERIFY(program.preferences.savePreferencesToDefaults().isNull());
        QCOMPARE(program.preferences.saveDirectoryPath(), u"/elsewhere"_s);
        const QVariantMap expected{{u"preferencePanelDictionary"_s, QVariantMap{{u"useDpliiFlag"_s, false}}}};
        QCOMPARE(fileContent(scratch), expected);
        QVERIFY(Program(scratch).preferences.panelFlag(u"keepLogsFlag"_s));
    }

    void damagedSettingsGiveTheDefaultsAndASentence()
    {
        const support::Scratch scratch;
        scratch.write(u"defaults.json"_s, "{ half");
        const Program program(scratch);
        QVERIFY(program.problem.contains(u"damaged"_s));
        QVERIFY(program.preferences.panelFlag(u"keepLogsFlag"_s));
    }

    void keysOfANewerVersionStay()
    {
        const support::Scratch scratch;
        scratch.write(u"defaults.json"_s, R"({"preferencePanelDictionary": {"newerFlag": 7}, "newer": "x"})");
        Program program(scratch);
        program.setPanel(u"keepLogsFlag"_s, false);
        QVERIFY(program.preferences.savePreferencesToDefaults().isNull());
        const QVariantMap panel = fileContent(scratch).value(u"preferencePanelDictionary"_s).toMap();
        QCOMPARE(panel.value(u"newerFlag"_s).toInt(), 7);
        QCOMPARE(fileContent(scratch).value(u"newer"_s).toString(), u"x"_s);
    }

    void toolsLiveInTheResources()
    {
        const support::Scratch scratch;
        const Program program(scratch);
        QCOMPARE(program.preferences.toolsLocationURL(), scratch.url(u"Resources"_s));
        QCOMPARE(program.preferences.urlOfApp(u"mkvmerge"_s),
                 scratch.url(u"Resources/mkvtoolnix/mkvmerge"_s));
        QCOMPARE(program.preferences.urlOfApp(u"ffmpeg.zip"_s), scratch.url(u"Resources/ffmpeg.zip"_s));
        QCOMPARE(program.preferences.workingFolder(), scratch.path());
        QVERIFY(program.preferences.toolsProblem().isNull());
        QVERIFY(!scratch.names().contains(u"Resources"_s)); // without archives nothing is made
    }
};

TESSARAY_TEST(KXPreferencesTest)
#include "KXPreferencesTest.moc"

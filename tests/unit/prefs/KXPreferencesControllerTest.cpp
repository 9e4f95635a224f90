// The preferences panel without its widgets.
#include "prefs/KXPreferencesController.h"

#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "support/Scratch.h"
#include "support/ScriptedChooser.h"
#include "support/TestMain.h"

#include <QJsonDocument>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using What = platform::ChooserRequest::What;

namespace {

QVariantMap freshPanel()
{
    return {
        {u"saveDirectoryPath"_s, u""_s},     {u"lintwickPath"_s, u""_s},    {u"showToolTipsFlag"_s, true},
        {u"keepLogsFlag"_s, true},           {u"moovInFrontFlag"_s, true},  {u"metadataPaddingFlag"_s, false},
        {u"useDpliiFlag"_s, true},           {u"verifyFlag"_s, false},      {u"newerCodecsFlag"_s, false},
        {u"watchExistingFlag"_s, false},     {u"lowPriorityFlag"_s, false}, {u"pauseOnBatteryFlag"_s, false},
        {u"whenQueueIsDone"_s, u"nothing"_s}};
}

/// Each value is another one than that of a fresh user.
QVariantMap otherPanel()
{
    return {{u"saveDirectoryPath"_s, u"/out"_s}, {u"lintwickPath"_s, u"/apps/lintwick"_s},
            {u"showToolTipsFlag"_s, false},      {u"keepLogsFlag"_s, false},
            {u"moovInFrontFlag"_s, false},       {u"metadataPaddingFlag"_s, true},
            {u"useDpliiFlag"_s, false},          {u"verifyFlag"_s, true},
            {u"newerCodecsFlag"_s, true},        {u"watchExistingFlag"_s, true},
            {u"lowPriorityFlag"_s, true},        {u"pauseOnBatteryFlag"_s, true},
            {u"whenQueueIsDone"_s, u"sleep"_s}};
}

struct Panel
{
    explicit Panel(const QString &file = {})
        : store(file.isEmpty() ? scratch.path(u"defaults.json"_s) : file)
    {
        preferences.initialize();
        preferences.modifyToolTips();
    }
    QVariantMap properties() const
    {
        QVariantMap map;
        for (const QString &key : preferences.preferencePanelPropertiesList())
            map.insert(key, controller.property(qPrintable(key)));
        return map;
    }
    void enter(const QVariantMap &values)
    {
        for (auto value = values.begin(); value != values.end(); ++value)
            controller.setProperty(qPrintable(value.key()), value.value());
    }
    QVariantMap stored() const
    {
        return QJsonDocument::fromJson(scratch.read(u"defaults.json"_s))
            .toVariant()
            .toMap()
            .value(u"preferencePanelDictionary"_s)
            .toMap();
    }
    void writeStored(const QByteArray &panel) const
    {
        scratch.write(u"defaults.json"_s, "{\"preferencePanelDictionary\": " + panel + '}');
    }

    support::Scratch scratch;
    platform::JsonDefaultsStore store;
    KXPreferences preferences{store, {scratch.path(u"Resources"_s), scratch.path()}};
    support::ScriptedChooser chooser;
    KXPreferencesController controller{preferences, chooser};
    QSignalSpy wanted{&controller, &KXPreferencesController::panelWanted};
};

} // namespace

class KXPreferencesControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFreshUserFindsTheDefaults()
    {
        Panel panel;
        panel.controller.openPreferencesPanel();
        QCOMPARE(panel.wanted.size(), 1);
        QVERIFY(panel.wanted.constFirst().constFirst().toBool());
        QCOMPARE(panel.properties(), freshPanel());
    }

    void aStoredPanelThatLacksANewerKeyGetsItsDefault()
    {
        Panel panel;
        panel.writeStored("{\"keepLogsFlag\": false, \"lintwickPath\": \"/l\"}");
        panel.preferences.loadPreferencesFromDefaults();
        panel.controller.openPreferencesPanel();
        QVariantMap expected = freshPanel();
        expected.insert(u"keepLogsFlag"_s, false);
        expected.insert(u"lintwickPath"_s, u"/l"_s);
        QCOMPARE(panel.properties(), expected);
    }

    void okStoresEveryKeyAndCloses()
    {
        Panel panel;
        panel.controller.openPreferencesPanel();
        panel.enter(otherPanel());
        QVERIFY(panel.controller.okPreferencesButton().isNull());
        QCOMPARE(panel.stored(), otherPanel());
        QCOMPARE(panel.preferences.preferencePanelDictionary(), otherPanel());
        QCOMPARE(panel.preferences.saveDirectoryPath(), u"/out"_s);
        QVERIFY(!panel.wanted.constLast().constFirst().toBool());
    }

    void okThatCannotSaveKeepsThePanelOpenAndTheValuesForThisRun()
    {
        const support::Scratch scratch;
        scratch.write(u"no-folder"_s, "a file");
        Panel panel(scratch.path(u"no-folder/defaults.json"_s));
        panel.controller.openPreferencesPanel();
        panel.enter(otherPanel());
        QVERIFY(!panel.controller.okPreferencesButton().isEmpty());
        QCOMPARE(panel.wanted.size(), 1); // opened, and not closed
        QVERIFY(!panel.preferences.panelFlag(u"keepLogsFlag"_s));
    }

    void cancelStoresNothingAndCloses()
    {
        Panel panel;
        panel.controller.openPreferencesPanel();
        panel.enter(otherPanel());
        panel.controller.cancelPreferencesButton();
        QVERIFY(!panel.wanted.constLast().constFirst().toBool());
        QVERIFY(panel.stored().isEmpty());
        QVERIFY(panel.preferences.panelFlag(u"keepLogsFlag"_s));
        QVERIFY(panel.preferences.saveDirectoryPath().isEmpty());
        panel.controller.openPreferencesPanel();
        QCOMPARE(panel.properties(), freshPanel());
    }

    void theSaveFolderIsChosenAndCleared()
    {
        Panel panel;
        panel.controller.changeSaveButton();
        QCOMPARE(panel.chooser.asked().constLast().title, u"Select save directory location:"_s);
        QCOMPARE(panel.chooser.asked().constLast().what, What::Folder);
        panel.chooser.answer({u"/out"_s});
        QCOMPARE(panel.controller.saveDirectoryPath(), u"/out"_s);
        QVERIFY(panel.preferences.saveDirectoryPath().isEmpty()); // until it is saved
        panel.controller.clearSaveDirectory();
        QVERIFY(panel.controller.saveDirectoryPath().isEmpty());
        QVERIFY(!panel.controller.saveDirectoryPath().isNull());
    }

    void theSubtitleApplicationIsChosen()
    {
        Panel panel;
        panel.controller.changeLintwickPathButton();
        QCOMPARE(panel.chooser.asked().constLast().title, u"Find the Path to Lintwick:"_s);
        QCOMPARE(panel.chooser.asked().constLast().what, What::Application);
        panel.chooser.answer({u"/apps/lintwick"_s});
        QCOMPARE(panel.controller.lintwickPath(), u"/apps/lintwick"_s);
        QVERIFY(panel.controller.saveDirectoryPath().isEmpty());
    }

    void choosingNothingChangesNothing()
    {
        Panel panel;
        panel.enter(otherPanel());
        panel.controller.changeSaveButton();
        panel.chooser.answer({});
        panel.controller.changeLintwickPathButton();
        panel.chooser.answer({});
        QCOMPARE(panel.properties(), otherPanel());
    }

    void theSearchStartsWhereItEndedLast()
    {
        Panel panel;
        panel.enter(otherPanel());
        panel.controller.changeSaveButton();
        QCOMPARE(panel.chooser.asked().constLast().startPath, u"/out"_s);
        panel.controller.changeLintwickPathButton();
        QCOMPARE(panel.chooser.asked().constLast().startPath, u"/apps/lintwick"_s);
    }

    void theToolTipsSwitchAtOnce()
    {
        Panel panel;
        panel.controller.openPreferencesPanel();
        QVERIFY(!panel.preferences.ttConvertButton().isEmpty());
        panel.controller.tooltipsCheckboxClicked(false);
        QVERIFY(!panel.controller.showToolTipsFlag());
        QVERIFY(!panel.preferences.panelFlag(u"showToolTipsFlag"_s));
        QCOMPARE(panel.preferences.toolTipsMenuItemTitle(), u"Show Tool Tips"_s);
        QVERIFY(panel.preferences.ttConvertButton().isEmpty());
        panel.controller.tooltipsCheckboxClicked(true);
        QCOMPARE(panel.preferences.toolTipsMenuItemTitle(), u"Hide Tool Tips"_s);
        QVERIFY(!panel.preferences.ttConvertButton().isEmpty());
    }

    void withoutToolTipsEveryOneIsTheEmptyText()
    {
        Panel panel;
        panel.controller.tooltipsCheckboxClicked(false);
        int tips = 0;
        const QMetaObject &meta = *panel.preferences.metaObject();
        for (int i = 0; i < meta.propertyCount(); ++i) {
            if (!QByteArray(meta.property(i).name()).startsWith("tt"))
                continue;
            ++tips;
            QVERIFY2(meta.property(i).read(&panel.preferences).toString().isEmpty(), meta.property(i).name());
        }
        QCOMPARE(tips, 58);
    }

    void cancelSwitchesTheToolTipsBack()
    {
        Panel panel;
        panel.controller.openPreferencesPanel();
        panel.controller.tooltipsCheckboxClicked(false);
        panel.controller.cancelPreferencesButton();
        QVERIFY(!panel.preferences.ttConvertButton().isEmpty());
        QVERIFY(panel.preferences.panelFlag(u"showToolTipsFlag"_s));
    }

    void onlyTheToolTipsHoldBeforeOk()
    {
        Panel panel;
        panel.controller.openPreferencesPanel();
        panel.enter(otherPanel());
        panel.controller.tooltipsCheckboxClicked(false);
        QVERIFY(panel.preferences.panelFlag(u"keepLogsFlag"_s));
        QVERIFY(panel.stored().isEmpty());
    }
};

TESSARAY_TEST(KXPreferencesControllerTest)
#include "KXPreferencesControllerTest.moc"

#include "window/PreferencesPanel.h"

#include "platform/Chooser.h"
#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "prefs/KXPreferencesController.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "window/SheetDriver.h"
#include "window/ToolTipBinder.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QLabel>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

/// Always chooses the same.
class OneChoice final : public platform::Chooser
{
public:
    void choose(const platform::ChooserRequest &request, Chosen chosen) override
    {
        asked = request.title;
        if (!path.isEmpty())
            chosen({QUrl::fromLocalFile(path)});
    }

    QString asked;
    QString path;
};

/// A fresh user's program whose preferences panel can be opened.
struct Fixture
{
    Fixture()
        : store(scratch.path(u"defaults.json"_s))
        , preferences(store, {scratch.path(u"Resources"_s), scratch.path()})
        , controller(preferences, chooser)
        , tips(preferences, nullptr)
    {
        preferences.initialize();
        preferences.modifyToolTips();
    }
    ~Fixture() { delete panel; }

    SheetDriver open()
    {
        controller.openPreferencesPanel();
        panel = new window::PreferencesPanel(controller, preferences, tips, nullptr);
        panel->open();
        if (!QTest::qWaitForWindowActive(panel))
            qFatal("The panel is not active.");
        return SheetDriver(*panel);
    }
    bool isChecked(const char *word) const { return SheetDriver(*panel).find<QCheckBox>(word)->isChecked(); }
    void toggle(const char *word) const
    {
        SheetDriver(*panel).find(word)->setFocus();
        SheetDriver(*panel).key(Qt::Key_Space);
    }
    void addPaddingTool() const
    {
        QFile(scratch.write(u"Resources/atomicparsley"_s, "#!/bin/sh\n"))
            .setPermissions(QFile::ReadOwner | QFile::ReadOther | QFile::ExeOwner | QFile::ExeOther);
    }
    QVariantMap storedPanel() const
    {
        const QVariantMap content =
            QJsonDocument::fromJson(scratch.read(u"defaults.json"_s)).toVariant().toMap();
        return content.value(u"preferencePanelDictionary"_s).toMap();
    }

    support::Scratch scratch;
    platform::JsonDefaultsStore store;
    KXPreferences preferences;
    OneChoice chooser;
    KXPreferencesController controller;
    window::ToolTipBinder tips;
    QPointer<window::PreferencesPanel> panel;
};

} // namespace

class PreferencesPanelTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFreshUserSeesTheDefaults()
    {
        Fixture fixture;
        const SheetDriver driver = fixture.open();
        QVERIFY(fixture.panel->isModal());
        QCOMPARE(driver.entered("SaveDirectoryPath"), QString());
        QCOMPARE(driver.find<QLineEdit>("SaveDirectoryPath")->placeholderText(),
                 u"Next to the source movie"_s);
        QCOMPARE(driver.entered("LintwickPath"), QString());
        QVERIFY(!driver.isEnabled("ClearSaveDirectoryButton"));
        for (const char *word :
             {"PrefToolTipsButton", "PrefLogsButton", "PrefOptimizeStreamingButton", "PrefUseDpliiButton"})
            QVERIFY2(fixture.isChecked(word), word);
        QVERIFY(!fixture.isChecked("PrefAddPaddingButton"));
        QVERIFY(!fixture.isChecked("PrefVerifyButton"));
        QVERIFY(!fixture.isChecked("PrefNewerCodecsButton"));
    }

    void everySwitchIsStored_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("toggled");
        QTest::newRow("tips") << QByteArray("PrefToolTipsButton") << u"showToolTipsFlag"_s << false;
        QTest::newRow("logs") << QByteArray("PrefLogsButton") << u"keepLogsFlag"_s << false;
        QTest::newRow("streaming") << QByteArray("PrefOptimizeStreamingButton") << u"moovInFrontFlag"_s
                                   << false;
        QTest::newRow("padding") << QByteArray("PrefAddPaddingButton") << u"metadataPaddingFlag"_s << true;
        QTest::newRow("dolby") << QByteArray("PrefUseDpliiButton") << u"useDpliiFlag"_s << false;
        QTest::newRow("newer codecs") << QByteArray("PrefNewerCodecsButton") << u"newerCodecsFlag"_s << true;
        QTest::newRow("verify") << QByteArray("PrefVerifyButton") << u"verifyFlag"_s << true;
        QTest::newRow("priority") << QByteArray("PrefLowPriorityButton") << u"lowPriorityFlag"_s << true;
        QTest::newRow("battery") << QByteArray("PrefPauseOnBatteryButton") << u"pauseOnBatteryFlag"_s << true;
    }

    void everySwitchIsStored()
    {
        QFETCH(const QByteArray, box);
        QFETCH(const QString, key);
        QFETCH(const bool, toggled);
        Fixture fixture;
        fixture.addPaddingTool();
        const SheetDriver driver = fixture.open();
        fixture.toggle(box.constData());
        QCOMPARE(fixture.isChecked(box.constData()), toggled);
        driver.click("OkPreferencesButton");
        QTRY_VERIFY(fixture.panel.isNull());
        QCOMPARE(fixture.storedPanel().value(key).toBool(), toggled);
        fixture.open();
        QCOMPARE(fixture.isChecked(box.constData()), toggled);
    }

    void cancelStoresNothing_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("cancel") << u"cancel"_s;
        QTest::newRow("escape") << u"escape"_s;
        QTest::newRow("the window's button") << u"close"_s;
    }

    void cancelStoresNothing()
    {
        QFETCH(const QString, how);
        Fixture fixture;
        const SheetDriver driver = fixture.open();
        fixture.toggle("PrefLogsButton");
        if (how == u"cancel"_s)
            driver.click("CancelPreferencesButton");
        else if (how == u"escape"_s)
            QTest::keyClick(fixture.panel, Qt::Key_Escape);
        else
            fixture.panel->close();
        QTRY_VERIFY(fixture.panel.isNull());
        QVERIFY(!fixture.storedPanel().contains(u"keepLogsFlag"_s));
        QVERIFY(fixture.preferences.panelFlag(u"keepLogsFlag"_s));
        fixture.open();
        QVERIFY(fixture.isChecked("PrefLogsButton"));
    }

    void toolTipsSwitchAtOnceAndBackWithCancel()
    {
        Fixture fixture;
        const SheetDriver driver = fixture.open();
        const QString tip = driver.find("PrefLogsButton")->toolTip();
        QVERIFY(tip.contains(u"Check to keep the log and temporary files"_s));
        fixture.toggle("PrefToolTipsButton");
        QCOMPARE(driver.find("PrefLogsButton")->toolTip(), QString());
        QCOMPARE(fixture.preferences.toolTipsMenuItemTitle(), u"Show Tool Tips"_s);
        fixture.toggle("PrefToolTipsButton");
        QCOMPARE(driver.find("PrefLogsButton")->toolTip(), tip);
        fixture.toggle("PrefToolTipsButton");
        driver.click("CancelPreferencesButton");
        QTRY_VERIFY(fixture.panel.isNull());
        QCOMPARE(fixture.preferences.toolTipsMenuItemTitle(), u"Hide Tool Tips"_s);
    }

    void theSaveFolderIsChosenAndCleared()
    {
        Fixture fixture;
        fixture.chooser.path = fixture.scratch.path(u"Fertige Filme"_s);
        const SheetDriver driver = fixture.open();
        driver.click("ChangeSaveButton");
        QCOMPARE(fixture.chooser.asked, u"Select save directory location:"_s);
        QCOMPARE(driver.entered("SaveDirectoryPath"), fixture.chooser.path);
        QCOMPARE(driver.find("SaveDirectoryPath")->toolTip(), fixture.chooser.path);
        driver.click("OkPreferencesButton");
        QTRY_VERIFY(fixture.panel.isNull());
        QCOMPARE(fixture.storedPanel().value(u"saveDirectoryPath"_s).toString(), fixture.chooser.path);
        const SheetDriver again = fixture.open();
        again.click("ClearSaveDirectoryButton");
        QCOMPARE(again.entered("SaveDirectoryPath"), QString());
        again.click("OkPreferencesButton");
        QTRY_VERIFY(fixture.panel.isNull());
        QCOMPARE(fixture.storedPanel().value(u"saveDirectoryPath"_s).toString(), QString());
    }

    void whatFollowsTheQueueIsChosen()
    {
        Fixture fixture;
        const SheetDriver driver = fixture.open();
        auto *box = driver.find<QComboBox>("PrefWhenDoneBox");
        QCOMPARE(box->currentText(), u"Do Nothing"_s);
        driver.find<QListWidget>("PreferencesPanes")->setCurrentRow(2);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(box->currentText(), u"Sleep"_s);
        driver.click("OkPreferencesButton");
        QTRY_VERIFY(fixture.panel.isNull());
        QCOMPARE(fixture.storedPanel().value(u"whenQueueIsDone"_s).toString(), u"sleep"_s);
        fixture.open();
        QCOMPARE(fixture.panel->findChild<QComboBox *>(u"PrefWhenDoneBox"_s)->currentText(), u"Sleep"_s);
    }

    void lintwickIsChosen()
    {
        Fixture fixture;
        fixture.chooser.path = fixture.scratch.path(u"lintwick"_s);
        const SheetDriver driver = fixture.open();
        driver.click("ChangeLintwickPathButton");
        QCOMPARE(fixture.chooser.asked, u"Find the Path to Lintwick:"_s);
        QCOMPARE(driver.entered("LintwickPath"), fixture.chooser.path);
        driver.click("OkPreferencesButton");
        QTRY_VERIFY(fixture.panel.isNull());
        QCOMPARE(fixture.storedPanel().value(u"lintwickPath"_s).toString(), fixture.chooser.path);
    }

    void whoChoosesNothingKeepsThePath()
    {
        Fixture fixture;
        const SheetDriver driver = fixture.open();
        fixture.controller.setSaveDirectoryPath(u"/v"_s);
        driver.click("ChangeSaveButton");
        QCOMPARE(driver.entered("SaveDirectoryPath"), u"/v"_s);
    }

    void pathsAreNotTyped()
    {
        Fixture fixture;
        const SheetDriver driver = fixture.open();
        driver.type("LintwickPath", u"x"_s);
        QCOMPARE(driver.entered("LintwickPath"), QString());
    }

    void paddingIsOffWithoutItsTool()
    {
        Fixture fixture;
        const SheetDriver driver = fixture.open();
        QVERIFY(!driver.isEnabled("PrefAddPaddingButton"));
        driver.find<QListWidget>("PreferencesPanes")->setCurrentRow(1);
        QVERIFY(driver.isVisible("PaddingReason"));
        const QString reason = u"Padding needs the tool atomicparsley, which is missing."_s;
        QCOMPARE(driver.find<QLabel>("PaddingReason")->text(), reason);
        QVERIFY(driver.find("PrefAddPaddingButton")->toolTip().contains(reason));
    }

    void paddingIsOfferedWithItsTool()
    {
        Fixture fixture;
        fixture.addPaddingTool();
        const SheetDriver driver = fixture.open();
        QVERIFY(driver.isEnabled("PrefAddPaddingButton"));
        driver.find<QListWidget>("PreferencesPanes")->setCurrentRow(1);
        QVERIFY(!driver.isVisible("PaddingReason"));
        QVERIFY(
            driver.find("PrefAddPaddingButton")->toolTip().contains(u"This adds free space to the moov"_s));
    }

    void aToolThatCannotRunIsMissing()
    {
        Fixture fixture;
        fixture.scratch.write(u"Resources/atomicparsley"_s, "no program");
        QVERIFY(!fixture.open().isEnabled("PrefAddPaddingButton"));
    }

    void aFailedSavingIsTold()
    {
        Fixture fixture;
        const SheetDriver driver = fixture.open();
        QFile::remove(fixture.scratch.path(u"defaults.json"_s));
        QVERIFY(QDir().mkdir(fixture.scratch.path(u"defaults.json"_s)));
        fixture.toggle("PrefLogsButton");
        driver.click("OkPreferencesButton");
        QVERIFY(fixture.panel != nullptr && fixture.panel->isVisible());
        QVERIFY(!driver.find<QLabel>("PreferencesProblem")->text().isEmpty());
        driver.click("CancelPreferencesButton");
        QTRY_VERIFY(fixture.panel.isNull());
    }

    void theKeyboardReachesEverythingInOrder()
    {
        Fixture fixture;
        fixture.addPaddingTool();
        const SheetDriver driver = fixture.open();
        fixture.controller.setSaveDirectoryPath(u"/v"_s);
        // The subjects, what stands in each, and the end.
        const QList<QStringList> panes{
            {u"SaveDirectoryPath"_s, u"ChangeSaveButton"_s, u"ClearSaveDirectoryButton"_s,
             u"PrefLogsButton"_s},
            {u"PrefNewerCodecsButton"_s, u"PrefOptimizeStreamingButton"_s, u"PrefAddPaddingButton"_s,
             u"PrefUseDpliiButton"_s, u"PrefVerifyButton"_s},
            {u"PrefLowPriorityButton"_s, u"PrefPauseOnBatteryButton"_s, u"PrefWhenDoneBox"_s},
            {u"PrefToolTipsButton"_s},
            {},
            {u"LintwickPath"_s, u"ChangeLintwickPathButton"_s}};
        QStringList order;
        QStringList expected;
        for (int pane = 0; pane < panes.size(); ++pane) {
            driver.find<QListWidget>("PreferencesPanes")->setFocus();
            driver.find<QListWidget>("PreferencesPanes")->setCurrentRow(pane);
            expected += QStringList{u"PreferencesPanes"_s} + panes.at(pane) +
                        QStringList{u"CancelPreferencesButton"_s, u"OkPreferencesButton"_s};
            for (qsizetype i = 0; i < panes.at(pane).size() + 3; ++i) {
                order.append(driver.focus());
                driver.key(Qt::Key_Tab);
            }
        }
        QCOMPARE(order, expected);
    }

    void everyControlHasANameForTheReader()
    {
        Fixture fixture;
        fixture.open();
        for (const QWidget *control : fixture.panel->findChildren<QWidget *>()) {
            if (control->focusPolicy() != Qt::NoFocus)
                QVERIFY2(!control->accessibleName().isEmpty(), control->metaObject()->className());
        }
    }
};

TESSARAY_TEST(PreferencesPanelTest)
#include "PreferencesPanelTest.moc"

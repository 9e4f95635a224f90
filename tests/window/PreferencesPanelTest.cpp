#include "window/PreferencesPanel.h"

#include "platform/Chooser.h"
#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "prefs/KXPreferencesController.h"
#include "support/Scratch.h"
#include "window/SheetHand.h"
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
struct Desk
{
    Desk()
        : store(scratch.path(u"defaults.json"_s))
        , preferences(store, {scratch.path(u"Resources"_s), scratch.path()})
        , controller(preferences, chooser)
        , tips(preferences, nullptr)
    {
        preferences.initialize();
        preferences.modifyToolTips();
    }
    ~Desk() { delete panel; }

    SheetHand open()
    {
        controller.openPreferencesPanel();
        panel = new window::PreferencesPanel(controller, preferences, tips, nullptr);
        panel->open();
        if (!QTest::qWaitForWindowActive(panel))
            qFatal("The panel is not active.");
        return SheetHand(*panel);
    }
    bool isChecked(const char *word) const { return SheetHand(*panel).find<QCheckBox>(word)->isChecked(); }
    void toggle(const char *word) const
    {
        SheetHand(*panel).find(word)->setFocus();
        SheetHand(*panel).key(Qt::Key_Space);
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
        Desk desk;
        const SheetHand hand = desk.open();
        QVERIFY(desk.panel->isModal());
        QCOMPARE(hand.entered("SaveDirectoryPath"), QString());
        QCOMPARE(hand.find<QLineEdit>("SaveDirectoryPath")->placeholderText(), u"Next to the source movie"_s);
        QCOMPARE(hand.entered("LintwickPath"), QString());
        QVERIFY(!hand.isEnabled("ClearSaveDirectoryButton"));
        for (const char *word :
             {"PrefToolTipsButton", "PrefLogsButton", "PrefOptimizeStreamingButton", "PrefUseDpliiButton"})
            QVERIFY2(desk.isChecked(word), word);
        QVERIFY(!desk.isChecked("PrefAddPaddingButton"));
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
    }

    void everySwitchIsStored()
    {
        QFETCH(const QByteArray, box);
        QFETCH(const QString, key);
        QFETCH(const bool, toggled);
        Desk desk;
        desk.addPaddingTool();
        const SheetHand hand = desk.open();
        desk.toggle(box.constData());
        QCOMPARE(desk.isChecked(box.constData()), toggled);
        hand.click("OkPreferencesButton");
        QTRY_VERIFY(desk.panel.isNull());
        QCOMPARE(desk.storedPanel().value(key).toBool(), toggled);
        desk.open();
        QCOMPARE(desk.isChecked(box.constData()), toggled);
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
        Desk desk;
        const SheetHand hand = desk.open();
        desk.toggle("PrefLogsButton");
        if (how == u"cancel"_s)
            hand.click("CancelPreferencesButton");
        else if (how == u"escape"_s)
            QTest::keyClick(desk.panel, Qt::Key_Escape);
        else
            desk.panel->close();
        QTRY_VERIFY(desk.panel.isNull());
        QVERIFY(!desk.storedPanel().contains(u"keepLogsFlag"_s));
        QVERIFY(desk.preferences.panelFlag(u"keepLogsFlag"_s));
        desk.open();
        QVERIFY(desk.isChecked("PrefLogsButton"));
    }

    void toolTipsSwitchAtOnceAndBackWithCancel()
    {
        Desk desk;
        const SheetHand hand = desk.open();
        const QString tip = hand.find("PrefLogsButton")->toolTip();
        QVERIFY(tip.contains(u"Check to keep the log and temporary files"_s));
        desk.toggle("PrefToolTipsButton");
        QCOMPARE(hand.find("PrefLogsButton")->toolTip(), QString());
        QCOMPARE(desk.preferences.toolTipsMenuItemTitle(), u"Show Tool Tips"_s);
        desk.toggle("PrefToolTipsButton");
        QCOMPARE(hand.find("PrefLogsButton")->toolTip(), tip);
        desk.toggle("PrefToolTipsButton");
        hand.click("CancelPreferencesButton");
        QTRY_VERIFY(desk.panel.isNull());
        QCOMPARE(desk.preferences.toolTipsMenuItemTitle(), u"Hide Tool Tips"_s);
    }

    void theSaveFolderIsChosenAndCleared()
    {
        Desk desk;
        desk.chooser.path = desk.scratch.path(u"Fertige Filme"_s);
        const SheetHand hand = desk.open();
        hand.click("ChangeSaveButton");
        QCOMPARE(desk.chooser.asked, u"Select save directory location:"_s);
        QCOMPARE(hand.entered("SaveDirectoryPath"), desk.chooser.path);
        QCOMPARE(hand.find("SaveDirectoryPath")->toolTip(), desk.chooser.path);
        hand.click("OkPreferencesButton");
        QTRY_VERIFY(desk.panel.isNull());
        QCOMPARE(desk.storedPanel().value(u"saveDirectoryPath"_s).toString(), desk.chooser.path);
        const SheetHand again = desk.open();
        again.click("ClearSaveDirectoryButton");
        QCOMPARE(again.entered("SaveDirectoryPath"), QString());
        again.click("OkPreferencesButton");
        QTRY_VERIFY(desk.panel.isNull());
        QCOMPARE(desk.storedPanel().value(u"saveDirectoryPath"_s).toString(), QString());
    }

    void lintwickIsChosen()
    {
        Desk desk;
        desk.chooser.path = desk.scratch.path(u"lintwick"_s);
        const SheetHand hand = desk.open();
        hand.click("ChangeLintwickPathButton");
        QCOMPARE(desk.chooser.asked, u"Find the Path to Lintwick:"_s);
        QCOMPARE(hand.entered("LintwickPath"), desk.chooser.path);
        hand.click("OkPreferencesButton");
        QTRY_VERIFY(desk.panel.isNull());
        QCOMPARE(desk.storedPanel().value(u"lintwickPath"_s).toString(), desk.chooser.path);
    }

    void whoChoosesNothingKeepsThePath()
    {
        Desk desk;
        const SheetHand hand = desk.open();
        desk.controller.setSaveDirectoryPath(u"/v"_s);
        hand.click("ChangeSaveButton");
        QCOMPARE(hand.entered("SaveDirectoryPath"), u"/v"_s);
    }

    void pathsAreNotTyped()
    {
        Desk desk;
        const SheetHand hand = desk.open();
        hand.type("LintwickPath", u"x"_s);
        QCOMPARE(hand.entered("LintwickPath"), QString());
    }

    void paddingIsOffWithoutItsTool()
    {
        Desk desk;
        const SheetHand hand = desk.open();
        QVERIFY(!hand.isEnabled("PrefAddPaddingButton"));
        QVERIFY(hand.isVisible("PaddingReason"));
        const QString reason = u"Padding needs the tool atomicparsley, which is missing."_s;
        QCOMPARE(hand.find<QLabel>("PaddingReason")->text(), reason);
        QVERIFY(hand.find("PrefAddPaddingButton")->toolTip().contains(reason));
    }

    void paddingIsOfferedWithItsTool()
    {
        Desk desk;
        desk.addPaddingTool();
        const SheetHand hand = desk.open();
        QVERIFY(hand.isEnabled("PrefAddPaddingButton"));
        QVERIFY(!hand.isVisible("PaddingReason"));
        QVERIFY(hand.find("PrefAddPaddingButton")->toolTip().contains(u"This adds free space to the moov"_s));
    }

    void aToolThatCannotRunIsMissing()
    {
        Desk desk;
        desk.scratch.write(u"Resources/atomicparsley"_s, "no program");
        QVERIFY(!desk.open().isEnabled("PrefAddPaddingButton"));
    }

    void aFailedSavingIsTold()
    {
        Desk desk;
        const SheetHand hand = desk.open();
        QFile::remove(desk.scratch.path(u"defaults.json"_s));
        QVERIFY(QDir().mkdir(desk.scratch.path(u"defaults.json"_s)));
        desk.toggle("PrefLogsButton");
        hand.click("OkPreferencesButton");
        QVERIFY(desk.panel != nullptr && desk.panel->isVisible());
        QVERIFY(!hand.find<QLabel>("PreferencesProblem")->text().isEmpty());
        hand.click("CancelPreferencesButton");
        QTRY_VERIFY(desk.panel.isNull());
    }

    void theKeyboardReachesEverythingInOrder()
    {
        Desk desk;
        desk.addPaddingTool();
        const SheetHand hand = desk.open();
        desk.controller.setSaveDirectoryPath(u"/v"_s);
        QStringList order;
        for (int i = 0; i < 12; ++i) {
            order.append(hand.focus());
            hand.key(Qt::Key_Tab);
        }
        const QStringList expected{u"SaveDirectoryPath"_s,        u"ChangeSaveButton"_s,
                                   u"ClearSaveDirectoryButton"_s, u"LintwickPath"_s,
                                   u"ChangeLintwickPathButton"_s, u"PrefToolTipsButton"_s,
                                   u"PrefLogsButton"_s,           u"PrefOptimizeStreamingButton"_s,
                                   u"PrefAddPaddingButton"_s,     u"PrefUseDpliiButton"_s,
                                   u"CancelPreferencesButton"_s,  u"OkPreferencesButton"_s};
        QCOMPARE(order, expected);
    }

    void everyControlHasANameForTheReader()
    {
        Desk desk;
        desk.open();
        for (const QWidget *control : desk.panel->findChildren<QWidget *>()) {
            if (control->focusPolicy() != Qt::NoFocus)
                QVERIFY2(!control->accessibleName().isEmpty(), control->metaObject()->className());
        }
    }
};

QTEST_MAIN(PreferencesPanelTest)
#include "PreferencesPanelTest.moc"

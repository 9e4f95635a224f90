// What the main window remembers: the tab and the presets that are chosen.
#include "app/KXAppDelegate.h"

#include "support/TestMain.h"
#include "support/app/AppFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;

namespace {

QVariantMap settings(const QVariant &selection, const QVariant &setting, const QVariant &tab)
{
    QVariantMap map;
    if (selection.isValid())
        map.insert(u"selectionMethodIndex"_s, selection);
    if (setting.isValid())
        map.insert(u"settingMethodIndex"_s, setting);
    if (tab.isValid())
        map.insert(u"currentTab"_s, tab);
    return map;
}

} // namespace

class GuiSettingsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<AppFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void aFreshProgramStartsOnMkvWithManualPresets()
    {
        QCOMPARE(m_fixture->delegate().createGuiSettingsDictionary(), settings(0, 0, u"MKV"_s));
        QCOMPARE(m_fixture->delegate().fileTextField(), u"Drop Video File(s) in the Table Below"_s);
    }

    void theDictionaryTellsWhatIsChosen()
    {
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
        m_fixture->presets().setSelectionMethodIndex(2);
        m_fixture->presets().setSettingMethodIndex(1);
        QCOMPARE(m_fixture->delegate().createGuiSettingsDictionary(), settings(2, 1, u"Edit Files"_s));
    }

    /// Of a fresh user: three presets of tracks, two of settings.
    void restoring_data()
    {
        QTest::addColumn<QVariantMap>("stored");
        QTest::addColumn<int>("selection");
        QTest::addColumn<int>("setting");
        QTest::addColumn<QString>("tab");
        const QVariant none;
        const QString mkv = u"MKV"_s;
        const QString edit = u"Edit Files"_s;
        QTest::newRow("nothing") << settings(none, none, none) << 0 << 0 << mkv;
        QTest::newRow("the first of each") << settings(0, 0, edit) << 0 << 0 << edit;
        QTest::newRow("the last of each") << settings(2, 1, mkv) << 2 << 1 << mkv;
        QTest::newRow("the tab of files") << settings(1, 1, edit) << 1 << 1 << edit;
        QTest::newRow("tracks out of range") << settings(3, 1, mkv) << 0 << 1 << mkv;
        QTest::newRow("settings out of range") << settings(2, 2, mkv) << 2 << 0 << mkv;
        QTest::newRow("below 0") << settings(-1, -1, mkv) << 0 << 0 << mkv;
        QTest::newRow("texts of numbers") << settings(u"2"_s, u"1"_s, mkv) << 2 << 1 << mkv;
        QTest::newRow("no numbers") << settings(u"x"_s, QVariantList{}, mkv) << 0 << 0 << mkv;
        QTest::newRow("an empty tab") << settings(1, 1, u""_s) << 1 << 1 << mkv;
        // This spelling is meant, though the tab bears another name.
        QTest::newRow("Edit Tracks starts on MKV") << settings(1, 1, u"Edit Tracks"_s) << 1 << 1 << mkv;
    }

    void restoring()
    {
        QFETCH(QVariantMap, stored);
        QFETCH(int, selection);
        QFETCH(int, setting);
        QFETCH(QString, tab);
        m_fixture->delegate().initGuiSettingsFrom(stored);
        QCOMPARE(m_fixture->presets().selectionMethodIndex(), selection);
        QCOMPARE(m_fixture->presets().settingMethodIndex(), setting);
        QCOMPARE(m_fixture->controller().currentTab(), tab);
    }

    void restoringTheSameTabKeepsThePreset()
    {
        m_fixture->presets().setSettingMethodIndex(1);
        m_fixture->controller().setCurrentTab(u"MKV"_s); // where it is
        QCOMPARE(m_fixture->presets().settingMethodIndex(), 1);
        m_fixture->delegate().initGuiSettingsFrom(settings(0, 1, u"MKV"_s));
        QCOMPARE(m_fixture->presets().settingMethodIndex(), 1);
    }

    void theNextStartIsAsItWas()
    {
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
        m_fixture->presets().setSelectionMethodIndex(1);
        m_fixture->presets().setSettingMethodIndex(1);
        QVERIFY(m_fixture->delegate().applicationShouldTerminate());
        m_fixture->restart();
        QCOMPARE(m_fixture->delegate().createGuiSettingsDictionary(), settings(1, 1, u"Edit Files"_s));
    }

    void whatIsChosenIsNotStoredBeforeTheEnd()
    {
        m_fixture->presets().setSelectionMethodIndex(1);
        m_fixture->program().preferences().savePreferencesToDefaults();
        m_fixture->restart();
        QCOMPARE(m_fixture->presets().selectionMethodIndex(), 0);
    }

    void theToolTipsAreAsTheyWere()
    {
        QVERIFY(!m_fixture->program().preferences().ttConvertButton().isEmpty());
        m_fixture->delegate().helpMenuItemSelected(u"Hide Tool Tips"_s);
        QVERIFY(m_fixture->program().preferences().ttConvertButton().isEmpty());
        m_fixture->restart();
        QVERIFY(m_fixture->program().preferences().ttConvertButton().isEmpty());
        QCOMPARE(m_fixture->program().preferences().toolTipsMenuItemTitle(), u"Show Tool Tips"_s);
        m_fixture->delegate().helpMenuItemSelected(u"Show Tool Tips"_s);
        QVERIFY(!m_fixture->program().preferences().ttConvertButton().isEmpty());
        QCOMPARE(m_fixture->program().preferences().toolTipsMenuItemTitle(), u"Hide Tool Tips"_s);
    }

private:
    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(GuiSettingsTest)
#include "GuiSettingsTest.moc"

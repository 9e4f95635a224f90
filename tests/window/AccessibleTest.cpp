// What a screen reader is told: the tree of the window and its sheets, each control with its name, role and
// state.
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QFrame>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

namespace {

bool isControl(QAccessible::Role role)
{
    static const QSet<int> roles{
        QAccessible::PushButton,   QAccessible::CheckBox, QAccessible::RadioButton, QAccessible::ComboBox,
        QAccessible::EditableText, QAccessible::List,     QAccessible::Tree,        QAccessible::Table,
        QAccessible::PageTabList,  QAccessible::PageTab,  QAccessible::ButtonMenu,  QAccessible::MenuItem,
        QAccessible::TreeItem,     QAccessible::ListItem, QAccessible::ProgressBar};
    return roles.contains(role);
}

/// Every control below it that can be seen, and what is wrong with it.
class Reader final
{
public:
    int controls = 0;
    QStringList faults;

    void read(QAccessibleInterface *told)
    {
        if (told == nullptr || !told->isValid() || told->state().invisible)
            return;
        if (isControl(told->role()))
            look(*told);
        for (int i = 0; i < told->childCount(); ++i)
            read(told->child(i));
    }

private:
    void look(QAccessibleInterface &told)
    {
        ++controls;
        auto *widget = qobject_cast<QWidget *>(told.object());
        const QString what = widget == nullptr ? u"part of role %1"_s.arg(int(told.role()))
                                               : widget->objectName() + u' ' +
                                                     QLatin1String(widget->metaObject()->className());
        const bool isCell = told.role() == QAccessible::TreeItem; // a title may be empty
        if (told.text(QAccessible::Name).trimmed().isEmpty() && !isCell)
            faults.append(what + u": no name"_s);
        if (widget == nullptr)
            return;
        if (bool(told.state().disabled) == widget->isEnabled())
            faults.append(what + u": its state is another"_s);
        if (const auto *button = qobject_cast<QAbstractButton *>(widget);
            button != nullptr && button->isCheckable() && bool(told.state().checked) != button->isChecked())
            faults.append(what + u": is it checked?"_s);
    }
};

} // namespace

class AccessibleTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void everyAreaOfTheWindow()
    {
        readAll(m_fixture->window(), 10); // empty
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv(), u"1.mkv"_s),
                                 m_fixture->film(support::fullMkv(), u"2.mkv"_s)}));
        tick(*m_fixture, {u"h264"_s, u"ac3"_s, u"srt"_s});
        readAll(m_fixture->window(), 40);
        QTest::keyClick(&m_fixture->window(), Qt::Key_F8);
        QTRY_VERIFY(m_fixture->find<QTreeView>("SeasonTable")->isVisible());
        readAll(m_fixture->window(), 20);
        m_fixture->click("CloseSeasonButton");
        m_fixture->click("ConvertButton");
        QTRY_COMPARE(m_fixture->rows("QueueTable", File).size(), 1);
        readAll(m_fixture->window(), 40);
        QVERIFY(m_fixture->waitForJobs());
        m_fixture->click("WatchFolderButton");
        readAll(*m_fixture->find<QFrame>("WatchPopover"), 4);
        m_fixture->find<QFrame>("WatchPopover")->hide();
        m_fixture->chooseTab(1);
        QVERIFY(m_fixture->open({m_fixture->path(u"1.mkv"_s), m_fixture->path(u"2.mkv"_s)}));
        readAll(m_fixture->window(), 25);
    }

    void everySheet_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QString>("command");
        QTest::newRow("track presets") << u"Presets"_s << u"Edit Track Presets…"_s;
        QTest::newRow("settings presets") << u"Presets"_s << u"Edit Settings Presets…"_s;
        QTest::newRow("preferences") << u"File"_s << u"Preferences…"_s;
    }

    void everySheet()
    {
        QFETCH(QString, menu);
        QFETCH(QString, command);
        m_fixture->command(menu, command);
        QWidget *sheet = nullptr;
        QVERIFY(waitFor([&] { return (sheet = QApplication::activeModalWidget()) != nullptr; }));
        if (auto *add = sheet->findChild<QAbstractButton *>(u"AddPresetButton"_s))
            QTest::mouseClick(add, Qt::LeftButton);
        readAll(*sheet, 6);
        QTest::keyClick(sheet, Qt::Key_Escape);
    }

private:
    static void readAll(QWidget &window, int atLeast)
    {
        QTest::qWait(50);
        Reader reader;
        reader.read(QAccessible::queryAccessibleInterface(&window));
        QVERIFY2(reader.faults.isEmpty(), qPrintable(reader.faults.join(u'\n')));
        QVERIFY2(reader.controls >= atLeast, qPrintable(QString::number(reader.controls)));
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(AccessibleTest)
#include "AccessibleTest.moc"

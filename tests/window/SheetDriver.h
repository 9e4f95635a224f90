#pragma once

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>

/// A person's hand on a sheet: mouse and keys. A control that is not found fails the test.
class SheetDriver final
{
public:
    explicit SheetDriver(QWidget &sheet)
        : m_sheet(sheet)
    {
    }

    template <typename Control = QWidget>
    Control *find(const char *word) const
    {
        auto *found = m_sheet.findChild<Control *>(QString::fromLatin1(word));
        if (found == nullptr)
            qFatal("There is no %s.", word);
        return found;
    }
    bool isEnabled(const char *word) const { return find(word)->isEnabled(); }
    bool isVisible(const char *word) const { return find(word)->isVisible(); }
    QString title(const char *button) const { return find<QAbstractButton>(button)->text(); }
    QString entered(const char *field) const { return find<QLineEdit>(field)->text(); }
    /// What a popup shows, chosen or not.
    QString shown(const char *popup) const
    {
        const auto *box = find<QComboBox>(popup);
        return box->currentIndex() < 0 ? box->placeholderText() : box->currentText();
    }

    void click(const char *button) const { QTest::mouseClick(find(button), Qt::LeftButton); }
    void pointAt(const char *word) const
    {
        pointAtNothing();
        QTest::mouseMove(find(word));
    }
    void pointAtNothing() const { QTest::mouseMove(&m_sheet, QPoint(1, 1)); }
    /// Types in the place of what the field holds.
    void type(const char *field, const QString &text) const
    {
        click(field);
        QTest::keySequence(find(field), QKeySequence(QKeySequence::SelectAll));
        QTest::keyClick(find(field), Qt::Key_Delete);
        QTest::keyClicks(find(field), text);
    }
    /// Goes through the popup with the arrow keys.
    void pick(const char *popup, const QString &entry) const
    {
        auto *box = find<QComboBox>(popup);
        if (box->findText(entry) < 0)
            qFatal("%s does not offer %s.", popup, qPrintable(entry));
        QTest::keyClick(box, Qt::Key_Home);
        while (box->currentText() != entry)
            QTest::keyClick(box, Qt::Key_Down);
    }
    void chooseRow(int row) const
    {
        const auto *list = find<QListWidget>("PresetTable");
        const QPoint middle = list->visualItemRect(list->item(row)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, middle);
    }
    /// "one, two".
    QString rows() const
    {
        QStringList names;
        const auto *list = find<QListWidget>("PresetTable");
        for (int i = 0; i < list->count(); ++i)
            names.append(list->item(i)->text());
        return names.join(QStringLiteral(", "));
    }
    int selectedRow() const { return find<QListWidget>("PresetTable")->currentRow(); }
    /// The name of the control that gets the keys.
    QString focus() const
    {
        const QWidget *widget = m_sheet.focusWidget();
        return widget == nullptr ? QString() : widget->objectName();
    }
    void key(Qt::Key key) const { QTest::keyClick(m_sheet.focusWidget(), key); }
    /// Tabs until the control has the focus.
    bool tabTo(const char *word) const
    {
        for (int i = 0; i < 60 && focus() != QString::fromLatin1(word); ++i)
            key(Qt::Key_Tab);
        return focus() == QString::fromLatin1(word);
    }

private:
    QWidget &m_sheet;
};

#pragma once

#include "window/PresetTable.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>

class QFormLayout;
class QVBoxLayout;

namespace window {

/// What the two sheets of presets share: the table, the name, a line that says what was refused, and the end.
/// OK stores and applies; closed in any other way, by Escape too, it changes nothing. It is deleted when it
/// closes.
class PresetSheet : public QDialog
{
    Q_OBJECT

public:
    ~PresetSheet() override;
    Q_DISABLE_COPY_MOVE(PresetSheet)

    void accept() override { finish(); }
    void reject() override;

protected:
    /// The list's first preset, which has no row: the manual choice.
    static constexpr int hiddenPresets = 1;

    PresetSheet(ToolTipBinder &tips, const QString &title, QWidget *parent);

    void showEvent(QShowEvent *event) override;

    /// Starts with the name; the preset's other fields go below it.
    QFormLayout *form() const { return m_form; }
    /// What needs more room than a row stands below the form.
    void addBelowForm(QWidget *widget);
    /// The card below everything: what the preset means.
    void showFoot(const QString &head, const QString &text);
    /// Shows everything as it is now. To be called at the end of construction, and whenever it changed.
    void refresh();

    virtual QList<PresetTable::Row> rows() const = 0;
    /// The selected one; -1 is none.
    virtual int row() const = 0;
    virtual void choose(int row) = 0;
    virtual void add() = 0;
    virtual void remove() = 0;
    /// Answers a null text, or says why the preset can't have that name.
    virtual QString rename(int row, const QString &name) = 0;
    /// Answers a null text, or a sentence when saving failed.
    virtual QString store() = 0;
    /// Everything as it was when the sheet was opened.
    virtual void undo() = 0;
    virtual void showPreset(bool isEditable) = 0;

private:
    void buildFrame();
    void connectTable();
    void addAndName();
    bool commitName();
    bool say(const QString &refusal);
    void finish();

    PresetTable *m_table;
    QLineEdit *m_name;
    QLabel *m_hint;
    QLabel *m_refusal;
    QLabel *m_footHead;
    QLabel *m_footText;
    QLabel *m_applies;
    QPushButton *m_ok;
    QFormLayout *m_form;
    QVBoxLayout *m_side;
    bool m_closesUnsaved = false;
};

} // namespace window

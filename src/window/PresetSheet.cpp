#include "window/PresetSheet.h"

#include "window/Controls.h"
#include "window/ToolTipBinder.h"

#include <QFormLayout>
#include <QVBoxLayout>

namespace window {

namespace {

constexpr int spaceBetweenParts = 16;

} // namespace

PresetSheet::PresetSheet(ToolTipBinder &tips, const QString &title, QWidget *parent)
    : QDialog(parent)
    , m_table(new PresetTable(tips))
    , m_name(named(new QLineEdit, "PresetName", tr("Name of the preset")))
    , m_hint(hint(tr("A built-in preset can't be changed. Add one of your own.")))
    , m_refusal(named(new QLabel, "PresetRefusal", {}))
    , m_ok(named(new QPushButton(tr("OK")), "OkPresetButton", tr("Save the presets and close")))
    , m_form(new QFormLayout)
    , m_side(new QVBoxLayout)
{
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    m_ok->setDefault(true);
    m_refusal->setWordWrap(true);
    setReddened(m_refusal, true);
    tips.bind(m_name, "ttPresetName");
    buildFrame();
    connectTable();
}

void PresetSheet::buildFrame()
{
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_form->addRow(tr("&Name:"), m_name);
    m_form->addRow(m_hint);
    m_side->addLayout(m_form);
    auto *upper = new QHBoxLayout;
    upper->setSpacing(spaceBetweenParts);
    upper->addWidget(m_table);
    upper->addLayout(m_side, 1);
    auto *lower = new QHBoxLayout;
    lower->addWidget(m_refusal, 1);
    lower->addWidget(m_ok);
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(spaceBetweenParts);
    layout->addLayout(upper, 1);
    layout->addLayout(lower);
}

void PresetSheet::connectTable()
{
    connect(m_table, &PresetTable::rowChosen, this, [this](int row) { choose(row); });
    connect(m_table, &PresetTable::nameTyped, this, [this](int row, const QString &name) {
        say(rename(row, name));
        refresh();
    });
    connect(m_table, &PresetTable::addWanted, this, &PresetSheet::addAndName);
    connect(m_table, &PresetTable::removeWanted, this, [this] { remove(); });
    connect(m_name, &QLineEdit::textEdited, this, [this] { say({}); });
    connect(m_name, &QLineEdit::editingFinished, this, &PresetSheet::commitName);
    connect(m_ok, &QPushButton::clicked, this, &PresetSheet::finish);
}

/// The children end their editing while they are destroyed, and must not announce it.
PresetSheet::~PresetSheet()
{
    m_table->disconnect(this);
    m_name->disconnect(this);
}

void PresetSheet::addBelowForm(QWidget *widget)
{
    m_side->addWidget(widget, 1);
}

void PresetSheet::refresh()
{
    const QList<PresetTable::Row> shown = rows();
    const PresetTable::Row selected = shown.value(row());
    m_table->showRows(shown, row());
    m_name->setText(selected.name);
    m_name->setEnabled(selected.isEditable);
    m_hint->setVisible(!selected.isEditable && row() >= 0);
    showPreset(selected.isEditable);
}

void PresetSheet::addAndName()
{
    commitName();
    add();
    choose(static_cast<int>(rows().size()) - 1);
    m_name->setFocus(Qt::OtherFocusReason);
    m_name->selectAll();
}

/// False when the typed name was refused; it stays in the field.
bool PresetSheet::commitName()
{
    if (!m_name->isEnabled() || m_name->text() == rows().value(row()).name)
        return true;
    if (!say(rename(row(), m_name->text())))
        return false;
    refresh();
    return true;
}

bool PresetSheet::say(const QString &refusal)
{
    m_refusal->setText(refusal);
    return refusal.isNull();
}

/// A refused name, and a failed saving, keep the sheet open once, so that one learns of it.
void PresetSheet::finish()
{
    if (QWidget *field = focusWidget())
        field->clearFocus(); // takes what is being typed in the table
    if (!commitName()) {
        m_name->setText(rows().value(row()).name);
        m_name->setFocus(Qt::OtherFocusReason);
        return;
    }
    const QString problem = store();
    if (problem.isNull() || m_closesUnsaved) {
        QDialog::accept();
        return;
    }
    m_closesUnsaved = true;
    choose(row());
    say(problem);
    m_ok->setText(tr("Close Unsaved"));
}

void PresetSheet::reject()
{
    m_name->disconnect(this); // what is typed there is not taken on the way out
    undo();
    QDialog::reject();
}

} // namespace window

#include "window/PresetSheet.h"

#include "window/Controls.h"
#include "window/ToolTipBinder.h"

#include <QFormLayout>
#include <QVBoxLayout>

namespace window {

PresetSheet::PresetSheet(ToolTipBinder &tips, const QString &title, QWidget *parent)
    : QDialog(parent)
    , m_table(new PresetTable(tips))
    , m_name(named(new QLineEdit, "PresetName", tr("Name of the preset")))
    , m_hint(hint(tr("A built-in preset can't be changed. Add one of your own.")))
    , m_refusal(named(new InkLabel({}, Role::Bad, Type::Second), "PresetRefusal", {}))
    , m_footHead(named(new InkLabel({}, Role::Second, Type::Second), "PresetFootHead", {}))
    , m_footText(named(new InkLabel({}, Role::Text, Type::Second), "PresetFootText", {}))
    , m_applies(hint())
    , m_ok(named(primaryButton(tr("OK")), "OkPresetButton", tr("Save the presets and close")))
    , m_form(new QFormLayout)
    , m_side(new QVBoxLayout)
{
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    m_ok->setDefault(true);
    m_refusal->setWordWrap(true);
    m_footText->setWordWrap(true);
    tips.bind(m_name, "ttPresetName");
    buildFrame();
    connectTable();
}

void PresetSheet::buildFrame()
{
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_form->setSpacing(space::small);
    m_form->addRow(tr("&Name"), m_name);
    m_form->addRow(m_hint);
    m_side->setContentsMargins(space::large, space::large, space::large, space::large);
    m_side->setSpacing(space::small);
    m_side->addLayout(m_form);
    auto *card = new Ground(Role::Base);
    card->setEdge(Qt::TopEdge | Qt::BottomEdge | Qt::LeftEdge | Qt::RightEdge);
    auto *words = new QVBoxLayout(card);
    words->setContentsMargins(space::middle, space::small, space::middle, space::small);
    words->setSpacing(0);
    words->addWidget(m_footHead);
    words->addWidget(m_footText);
    auto *right = new QVBoxLayout;
    right->setSpacing(0);
    right->addLayout(m_side, 1);
    auto *inset = new QHBoxLayout;
    inset->setContentsMargins(space::large, 0, space::large, space::large);
    inset->addWidget(card);
    right->addLayout(inset);
    auto *upper = new QHBoxLayout;
    upper->setSpacing(0);
    upper->addWidget(m_table);
    upper->addLayout(right, 1);
    QWidget *lower = rowOf({m_refusal, m_applies, m_ok});
    static_cast<QHBoxLayout *>(lower->layout())->setStretch(1, 1); // NOLINT: rowOf() makes one
    lower->layout()->setContentsMargins(space::large, space::middle, space::large, space::middle);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(upper, 1);
    layout->addWidget(separatorLine());
    layout->addWidget(lower);
}

void PresetSheet::showFoot(const QString &head, const QString &text)
{
    m_footHead->setText(head);
    m_footText->setText(text);
    m_footText->setVisible(!text.isEmpty());
}

/// A label as high as its field stands in its middle.
void PresetSheet::showEvent(QShowEvent *event)
{
    for (int row = 0; row < m_form->rowCount(); ++row) {
        const QLayoutItem *label = m_form->itemAt(row, QFormLayout::LabelRole);
        if (label != nullptr && label->widget() != nullptr)
            label->widget()->setMinimumHeight(controlHeight);
    }
    QDialog::showEvent(event);
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
    m_applies->setText(selected.name.isEmpty() ? QString() : tr("OK applies “%1”.").arg(selected.name));
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

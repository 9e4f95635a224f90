#include "window/PresetTable.h"

#include "window/Controls.h"
#include "window/ToolTipBinder.h"

#include <QSignalBlocker>
#include <QVBoxLayout>

namespace window {

namespace {

void showRow(QListWidgetItem *item, const PresetTable::Row &row)
{
    item->setText(row.name);
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    item->setFlags(row.isEditable ? shown | Qt::ItemIsEditable : shown);
}

} // namespace

PresetTable::PresetTable(ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_list(named(new QListWidget, "PresetTable", tr("Presets")))
    , m_add(named(new QPushButton(tr("&Add")), "AddPresetButton", tr("Add a preset")))
    , m_remove(named(new QPushButton(tr("&Remove")), "RemovePresetButton", tr("Remove the preset")))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list, 1);
    layout->addWidget(rowOf({m_add, m_remove, nullptr}));
    m_list->setMinimumWidth(fontMetrics().averageCharWidth() * 26);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (QPushButton *button : {m_add, m_remove})
        button->setAutoDefault(false);
    tips.bind(m_list, "ttPresetTable");
    tips.bind(m_add, "ttAddPresetButton");
    tips.bind(m_remove, "ttRemovePresetButton");
    connect(m_list, &QListWidget::currentRowChanged, this, &PresetTable::rowChosen);
    connect(m_list, &QListWidget::itemChanged, this,
            [this](QListWidgetItem *item) { Q_EMIT nameTyped(m_list->row(item), item->text()); });
    connect(m_add, &QPushButton::clicked, this, &PresetTable::addWanted);
    connect(m_remove, &QPushButton::clicked, this, &PresetTable::removeWanted);
}

/// Rows that stay are changed in place: making them anew would scroll the table and end its editing.
void PresetTable::showRows(const QList<Row> &rows, int selected)
{
    const QSignalBlocker quiet(m_list);
    while (m_list->count() > rows.size())
        delete m_list->takeItem(m_list->count() - 1);
    while (m_list->count() < rows.size())
        m_list->addItem(QString());
    for (int i = 0; i < rows.size(); ++i)
        showRow(m_list->item(i), rows.at(i));
    m_list->setCurrentRow(selected);
    if (QListWidgetItem *item = m_list->item(selected))
        m_list->scrollToItem(item);
    m_remove->setEnabled(selected >= 0);
}

} // namespace window

#include "window/PresetTable.h"

#include "window/Badges.h"
#include "window/Controls.h"
#include "window/ToolTipBinder.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace window {

namespace {

constexpr int presetListWidth = 184;
constexpr int presetRowHeight = 32;

/// A name, and what can't be changed is marked so.
class PresetDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const override
    {
        return {presetListWidth, presetRowHeight};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const bool isCurrent = option.state.testFlag(QStyle::State_Selected);
        painter->save();
        if (isCurrent)
            paintChosenRow(*painter, option.rect);
        QRect words = option.rect.adjusted(space::middle, 0, -space::middle, 0);
        if (!index.flags().testFlag(Qt::ItemIsEditable)) {
            const QString word = PresetTable::tr("built-in");
            paintBadge(*painter, {words.right() - badgeWidth(word), words.center().y()},
                       {word, Role::Second, Role::Groove});
            words.setRight(words.right() - badgeWidth(word) - space::tiny);
        }
        painter->setPen(color(Role::Text));
        painter->setFont(fontOf(Type::Body));
        painter->drawText(
            words, Qt::AlignVCenter,
            painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideRight, words.width()));
        painter->restore();
    }
};

void showRow(QListWidgetItem *item, const PresetTable::Row &row)
{
    item->setText(row.name);
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    item->setFlags(row.isEditable ? shown | Qt::ItemIsEditable : shown);
}

} // namespace

PresetTable::PresetTable(ToolTipBinder &tips, QWidget *parent)
    : Ground(Role::Side, parent)
    , m_list(named(new QListWidget, "PresetTable", tr("Presets")))
    , m_add(named(new QPushButton(tr("&Add")), "AddPresetButton", tr("Add a preset")))
    , m_remove(named(new QPushButton(tr("&Remove")), "RemovePresetButton", tr("Remove the preset")))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_list, 1);
    layout->addWidget(separatorLine());
    QWidget *buttons = rowOf({m_add, m_remove});
    buttons->layout()->setContentsMargins(space::middle, space::middle, space::middle, space::middle);
    layout->addWidget(buttons);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setItemDelegate(new PresetDelegate(m_list));
    m_list->viewport()->setAutoFillBackground(false);
    setFixedWidth(presetListWidth);
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

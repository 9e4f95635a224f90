#include "window/FilterBox.h"

#include "presets/FilterEditor.h"
#include "window/Controls.h"
#include "window/FilterPanel.h"
#include "window/KXFilterButton.h"
#include "window/ToolTipBinder.h"

#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using presets::FilterRows;

namespace window {

namespace {

const QStringList modes{u"Apply All"_s, u"Prioritized"_s};

constexpr int firstRowWithAdd = 2;

} // namespace

FilterBox::FilterBox(FilterEditor &editor, FilterPanel &panel, ToolTipBinder &tips, QWidget *parent)
    : QGroupBox(panel.kind() == FilterKind::Audio ? tr("Audio") : tr("Subtitles"), parent)
    , m_editor(editor)
    , m_panel(panel)
    , m_tips(tips)
    , m_mode(isAudio()
                 ? named(new QComboBox, "AudioFilterModePopUp", tr("How audio filters are applied"))
                 : named(new QComboBox, "SubtitleFilterModePopUp", tr("How subtitle filters are applied")))
{
    m_mode->addItems(modes);
    auto *layout = new QVBoxLayout(this);
    QLabel *label = labelFor(m_mode, isAudio() ? tr("Filter &mode:") : tr("Filter m&ode:"));
    layout->addWidget(rowOf({label, m_mode, nullptr}));
    for (int position = 1; position <= FilterRows::mostFilters; ++position)
        layout->addWidget(makeRow(position));
    connect(m_mode, &QComboBox::activated, this, [this](int index) { Q_EMIT modeChosen(modes.at(index)); });
    connect(&editor, &FilterEditor::changed, this, &FilterBox::refresh);
    connect(&panel, &FilterPanel::leftByKey, this, &FilterBox::finishEditing);
    refresh();
}

bool FilterBox::isAudio() const
{
    return m_panel.kind() == FilterKind::Audio;
}

QWidget *FilterBox::makeRow(int position)
{
    const int tag = m_editor.rows(m_panel.kind()).filterButton(position).tag;
    m_filters.append(new KXFilterButton(m_editor, tag, m_panel));
    QList<QWidget *> controls{m_filters.constLast()};
    if (position >= firstRowWithAdd)
        controls.append(makeAddButton(position));
    controls.append(nullptr);
    QWidget *row = rowOf(controls);
    row->setMinimumHeight(m_filters.constLast()->sizeHint().height()); // an empty row keeps its place
    return row;
}

QPushButton *FilterBox::makeAddButton(int row)
{
    auto *button = new QPushButton;
    button->setObjectName((isAudio() ? u"af%1AddButton"_s : u"sf%1AddButton"_s).arg(row));
    button->setAutoDefault(false);
    button->setFixedWidth(button->fontMetrics().averageCharWidth() * 5);
    m_tips.bind(button, "ttAddFilterButton");
    const int tag = m_editor.rows(m_panel.kind()).addButton(row).tag;
    connect(button, &QPushButton::clicked, this, [this, tag] { m_editor.addFilterButtonClicked(tag); });
    m_adds.append(button);
    return button;
}

/// The button gets the focus back before its panel goes, which would pass it to any other widget.
void FilterBox::finishEditing()
{
    const int position = m_editor.rows(m_panel.kind()).edited();
    if (position == 0)
        return;
    KXFilterButton *button = m_filters.at(position - 1);
    button->setFocus(Qt::OtherFocusReason);
    m_editor.editFilterPanel(button->tag());
}

void FilterBox::showMode(const QString &mode, bool isEditable)
{
    m_mode->setEnabled(isEditable);
    m_mode->setCurrentIndex(mode == modes.at(1) ? 1 : 0); // every other mode applies all
}

void FilterBox::refresh()
{
    for (int row = firstRowWithAdd; row <= FilterRows::mostFilters; ++row) {
        const presets::RowButton &state = m_editor.rows(m_panel.kind()).addButton(row);
        QPushButton *button = m_adds.at(row - firstRowWithAdd);
        button->setText(state.title);
        button->setAccessibleName(state.title == u"+"_s ? tr("Add a filter") : tr("Remove a filter"));
        button->setEnabled(state.enabled);
        button->setVisible(state.visible);
    }
}

} // namespace window

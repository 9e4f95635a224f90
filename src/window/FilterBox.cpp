#include "window/FilterBox.h"

#include "presets/FilterEditor.h"
#include "summary/RuleSentences.h"
#include "window/FilterPanel.h"
#include "window/KXFilterButton.h"
#include "window/ToolTipBinder.h"

#include <QGridLayout>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using presets::FilterRows;

namespace window {

namespace {

const QStringList modes{u"Apply All"_s, u"Prioritized"_s};

constexpr int firstRowWithAdd = 2;
constexpr int buttonWidth = 84;

/// Values stand out, as what can be chosen.
QString markup(const summary::Sentence &sentence)
{
    QString text;
    for (const summary::SentencePart &part : sentence) {
        const QString escaped = part.text.toHtmlEscaped();
        text +=
            part.isValue
                ? u"<span style='color:%1;font-weight:600'>%2</span>"_s.arg(color(Role::Link).name(), escaped)
                : escaped;
    }
    return text;
}

} // namespace

FilterBox::FilterBox(FilterEditor &editor, FilterPanel &panel, ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_editor(editor)
    , m_panel(panel)
    , m_tips(tips)
    , m_mode(isAudio()
                 ? named(new QComboBox, "AudioFilterModePopUp", tr("How audio filters are applied"))
                 : named(new QComboBox, "SubtitleFilterModePopUp", tr("How subtitle filters are applied")))
    , m_meaning(hint())
{
    m_mode->addItems(modes);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(head());
    for (int position = 1; position <= FilterRows::mostFilters; ++position) {
        makeRow(position);
        layout->addWidget(m_rows.constLast().ground);
    }
    connect(m_mode, &QComboBox::activated, this, [this](int index) {
        m_meaning->setText(summary::modeText(modes.at(index)));
        Q_EMIT modeChosen(modes.at(index));
    });
    connect(&editor, &FilterEditor::changed, this, &FilterBox::refresh);
    connect(&panel, &FilterPanel::leftByKey, this, &FilterBox::finishEditing);
    refresh();
}

bool FilterBox::isAudio() const
{
    return m_panel.kind() == FilterKind::Audio;
}

QWidget *FilterBox::head()
{
    m_meaning->setWordWrap(false);
    QWidget *row = rowOf({iconLabel(isAudio() ? u"audio-x-generic"_s : u"media-view-subtitles-symbolic"_s,
                                    isAudio() ? Role::Audio : Role::Subtitle),
                          headLabel(isAudio() ? tr("Audio") : tr("Subtitles")), m_meaning, nullptr, m_mode});
    row->layout()->setContentsMargins(0, 0, 0, space::tiny);
    return row;
}

void FilterBox::makeRow(int position)
{
    const int tag = m_editor.rows(m_panel.kind()).filterButton(position).tag;
    auto *ground = new Ground(Role::Base);
    const Qt::Edges below = Qt::BottomEdge | Qt::LeftEdge | Qt::RightEdge;
    ground->setEdge(position == 1 ? below | Qt::TopEdge : below); // the line above is that of the row before
    auto *grid = new QGridLayout(ground);
    grid->setContentsMargins(space::small, space::small, space::small, space::small);
    grid->setSpacing(space::small);
    auto *button = new KXFilterButton(m_editor, tag, m_panel);
    button->setProperty("small", true);
    button->setMinimumWidth(buttonWidth);
    auto *sentence = new QLabel;
    sentence->setWordWrap(true);
    sentence->setTextFormat(Qt::RichText);
    QPushButton *add = position >= firstRowWithAdd ? makeAddButton(position) : nullptr;
    QLabel *addHint = hint(tr("Add a filter, up to three"));
    grid->addWidget(button, 0, 0, Qt::AlignTop);
    grid->addWidget(sentence, 0, 1);
    grid->addWidget(addHint, 0, 1);
    if (add != nullptr)
        grid->addWidget(add, 0, 2, Qt::AlignTop);
    grid->setColumnStretch(1, 1);
    m_rows.append({ground, grid, button, sentence, add, addHint});
}

QPushButton *FilterBox::makeAddButton(int row)
{
    auto *button = new QPushButton;
    button->setObjectName((isAudio() ? u"af%1AddButton"_s : u"sf%1AddButton"_s).arg(row));
    button->setAutoDefault(false);
    button->setProperty("small", true);
    button->setFixedWidth(28);
    m_tips.bind(button, "ttAddFilterButton");
    const int tag = m_editor.rows(m_panel.kind()).addButton(row).tag;
    connect(button, &QPushButton::clicked, this, [this, tag] { m_editor.addFilterButtonClicked(tag); });
    return button;
}

/// The button gets the focus back before its panel goes, which would pass it to any other widget.
void FilterBox::finishEditing()
{
    const int position = m_editor.rows(m_panel.kind()).edited();
    if (position == 0)
        return;
    KXFilterButton *button = m_rows.at(position - 1).button;
    button->setFocus(Qt::OtherFocusReason);
    m_editor.editFilterPanel(button->tag());
}

void FilterBox::showMode(const QString &mode, bool isEditable)
{
    m_mode->setEnabled(isEditable);
    m_mode->setCurrentIndex(mode == modes.at(1) ? 1 : 0); // every other mode applies all
    m_meaning->setText(summary::modeText(modes.at(m_mode->currentIndex())));
}

/// The editor stands in the row of its filter.
void FilterBox::refreshRow(int position)
{
    const Row &row = m_rows.at(position - 1);
    const FilterRows &rows = m_editor.rows(m_panel.kind());
    const QVariantList filters =
        isAudio() ? m_editor.currentAudioFilterArray() : m_editor.currentSubtitleFilterArray();
    const bool exists = rows.filterButton(position).visible;
    const bool isEdited = rows.edited() == position;
    row.sentence->setText(
        markup(summary::filterSentence(m_panel.kind(), filters.value(position - 1).toMap())));
    row.sentence->setVisible(exists && !isEdited);
    row.ground->setGround(exists && m_editor.panelTag() == row.button->tag() ? Role::Soft : Role::Base);
    if (isEdited && row.layout->indexOf(&m_panel) < 0)
        row.layout->addWidget(&m_panel, 0, 1);
    bool hasButton = exists;
    if (row.add != nullptr) {
        const presets::RowButton &state = rows.addButton(position);
        row.add->setText(state.title);
        row.add->setAccessibleName(state.title == u"+"_s ? tr("Add a filter") : tr("Remove a filter"));
        row.add->setEnabled(state.enabled);
        row.add->setVisible(state.visible);
        hasButton = hasButton || state.visible;
    }
    row.addHint->setVisible(hasButton && !exists);
    row.ground->setVisible(hasButton);
}

void FilterBox::refresh()
{
    for (int position = 1; position <= FilterRows::mostFilters; ++position)
        refreshRow(position);
}

} // namespace window

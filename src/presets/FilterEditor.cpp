#include "presets/FilterEditor.h"

using namespace Qt::StringLiterals;
using presets::FilterKind;
using presets::FilterRows;

namespace {

constexpr int audioTags = 100;
constexpr int subtitleTags = 200;
constexpr qsizetype removedPosition = 1; // the second filter, from either row: meant

FilterKind kindOf(int tag)
{
    return tag >= subtitleTags ? FilterKind::Subtitle : FilterKind::Audio;
}

/// 1 to 3 for a filter button, 92 and 93 for a button that adds or removes.
int numberOf(int tag)
{
    return tag % audioTags;
}

int rowOf(int addTag)
{
    return addTag % 10;
}

bool isFilterButton(int tag)
{
    return tag > audioTags && tag / audioTags <= 2 && numberOf(tag) >= 1 &&
           numberOf(tag) <= FilterRows::mostFilters;
}

bool isAddButton(int tag)
{
    return tag / audioTags >= 1 && tag / audioTags <= 2 && (numberOf(tag) == 92 || numberOf(tag) == 93);
}

} // namespace

FilterEditor::FilterEditor()
    : m_audio{presets::FilterFields(FilterKind::Audio), FilterRows(audioTags)}
    , m_subtitle{presets::FilterFields(FilterKind::Subtitle), FilterRows(subtitleTags)}
{
    setPreset(nullptr);
}

FilterEditor::Side &FilterEditor::sideOf(int tag)
{
    return kindOf(tag) == FilterKind::Audio ? m_audio : m_subtitle;
}

const presets::FilterFields &FilterEditor::fields(FilterKind kind) const
{
    return kind == FilterKind::Audio ? m_audio.fields : m_subtitle.fields;
}

const FilterRows &FilterEditor::rows(FilterKind kind) const
{
    return kind == FilterKind::Audio ? m_audio.rows : m_subtitle.rows;
}

QVariantList FilterEditor::filtersOf(FilterKind kind) const
{
    if (!m_preset)
        return {};
    return kind == FilterKind::Audio ? m_preset->pAudioFilterArray() : m_preset->pSubtitleFilterArray();
}

void FilterEditor::setFilters(FilterKind kind, const QVariantList &filters)
{
    if (kind == FilterKind::Audio)
        m_preset->setPAudioFilterArray(filters);
    else
        m_preset->setPSubtitleFilterArray(filters);
}

QVariantList FilterEditor::currentAudioFilterArray() const
{
    return filtersOf(FilterKind::Audio);
}

QVariantList FilterEditor::currentSubtitleFilterArray() const
{
    return filtersOf(FilterKind::Subtitle);
}

void FilterEditor::setPreset(const PresetSelectionsPointer &preset)
{
    windowDidResignKey();
    m_preset = preset;
    m_panelTag = 0;
    const bool editable = preset && preset->isEditable();
    m_audio.rows.setEnabled(editable);
    m_subtitle.rows.setEnabled(editable);
    adjustFilterButtonsCount();
}

void FilterEditor::adjustFilterButtonsCount()
{
    m_audio.rows.adjustTo(currentAudioFilterArray().size());
    m_subtitle.rows.adjustTo(currentSubtitleFilterArray().size());
    Q_EMIT changed();
}

void FilterEditor::addFilterButtonClicked(int tag)
{
    if (!isAddButton(tag))
        return;
    const FilterKind kind = kindOf(tag);
    const presets::RowButton &button = rows(kind).addButton(rowOf(tag));
    if (!button.enabled)
        return;
    if (button.title == u"+"_s && kind == FilterKind::Audio) {
        m_preset->addDictionaryToAudioFilterArray();
    } else if (button.title == u"+"_s) {
        m_preset->addDictionaryToSubtitleFilterArray();
    } else {
        QVariantList filters = filtersOf(kind);
        filters.remove(removedPosition);
        setFilters(kind, filters);
        stopEditingFiltersForButton(tag / audioTags * audioTags + rowOf(tag));
    }
    adjustFilterButtonsCount();
}

void FilterEditor::openFilterPanelForButton(int tag)
{
    if (!isFilterButton(tag))
        return;
    sideOf(tag).fields.load(filtersOf(kindOf(tag)).value(numberOf(tag) - 1).toMap());
    Q_EMIT changed();
}

void FilterEditor::pointerEntered(int tag)
{
    if (!isFilterButton(tag))
        return;
    FilterRows &rows = sideOf(tag).rows;
    const presets::RowButton &button = rows.filterButton(numberOf(tag));
    if (!button.enabled || button.isInEditMode)
        return;
    openFilterPanelForButton(tag);
    rows.setHovered(numberOf(tag), true);
    m_panelTag = tag;
    Q_EMIT changed();
}

void FilterEditor::pointerLeft(int tag)
{
    if (!isFilterButton(tag))
        return;
    FilterRows &rows = sideOf(tag).rows;
    const presets::RowButton &button = rows.filterButton(numberOf(tag));
    if (!button.enabled || button.isInEditMode)
        return;
    rows.setHovered(numberOf(tag), false);
    m_panelTag = editedTag();
    Q_EMIT changed();
}

void FilterEditor::editFilterPanel(int tag)
{
    if (!isFilterButton(tag))
        return;
    const QString title = sideOf(tag).rows.filterButton(numberOf(tag)).title;
    if (title == u"Edit"_s) {
        startEditingFiltersForButton(tag);
    } else if (title == u"Done"_s) {
        writeBack(tag);
        stopEditingFiltersForButton(tag);
    }
}

void FilterEditor::writeBack(int tag)
{
    QVariantList filters = filtersOf(kindOf(tag));
    const qsizetype position = numberOf(tag) - 1;
    if (position >= filters.size())
        return; // a button without a filter
    filters[position] = sideOf(tag).fields.filter();
    setFilters(kindOf(tag), filters);
}

void FilterEditor::startEditingFiltersForButton(int tag)
{
    if (m_panelTag != tag)
        openFilterPanelForButton(tag); // since the pointer came, the panel was with another filter
    sideOf(tag).rows.startEditing(numberOf(tag));
    m_panelTag = tag;
    Q_EMIT changed();
}

void FilterEditor::stopEditingFiltersForButton(int tag)
{
    sideOf(tag).rows.stopEditing(numberOf(tag));
    m_panelTag = editedTag();
    Q_EMIT changed();
}

/// Of an edit in progress, of either kind; 0 when there is none.
int FilterEditor::editedTag() const
{
    if (const int position = m_audio.rows.edited(); position != 0)
        return audioTags + position;
    const int position = m_subtitle.rows.edited();
    return position != 0 ? subtitleTags + position : 0;
}

void FilterEditor::windowDidResignKey()
{
    for (const int base : {audioTags, subtitleTags}) {
        if (const int position = sideOf(base + 1).rows.edited(); position != 0)
            editFilterPanel(base + position);
    }
}

void FilterEditor::setField(FilterKind kind, const QString &word, const QString &value)
{
    presets::FilterFields &fields = kind == FilterKind::Audio ? m_audio.fields : m_subtitle.fields;
    fields.set(word, value);
    Q_EMIT changed();
}

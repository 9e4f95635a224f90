#include "presets/FilterRows.h"

using namespace Qt::StringLiterals;

namespace presets {

namespace {

constexpr int addTagOffset = 90; // 192 is the button in row 2

const QString edit = u"Edit"_s;
const QString done = u"Done"_s;

} // namespace

FilterRows::FilterRows(int tagBase)
{
    for (int position = 1; position <= mostFilters; ++position)
        m_filters.append({tagBase + position, restingTitle(position)});
    for (int row = 2; row <= mostFilters; ++row)
        m_adds.append({tagBase + addTagOffset + row, u"+"_s});
}

QString FilterRows::restingTitle(int position)
{
    return u"Filter #%1"_s.arg(position);
}

void FilterRows::adjustTo(qsizetype filterCount)
{
    for (int position = 2; position <= mostFilters; ++position)
        m_filters[position - 1].visible = filterCount >= position;
    m_adds[0].title = filterCount >= 2 ? u"-"_s : u"+"_s;
    m_adds[1].title = filterCount >= 3 ? u"-"_s : u"+"_s;
    m_adds[1].visible = filterCount >= 2;
}

void FilterRows::setEnabled(bool enabled)
{
    m_enabled = enabled;
    for (int position = 1; position <= mostFilters; ++position)
        stopEditing(position);
}

void FilterRows::enableAll(bool enabled)
{
    for (RowButton &button : m_filters)
        button.enabled = enabled;
    for (RowButton &button : m_adds)
        button.enabled = enabled;
}

void FilterRows::setHovered(int position, bool hovered)
{
    m_filters[position - 1].title = hovered ? edit : restingTitle(position);
}

void FilterRows::startEditing(int position)
{
    enableAll(false);
    RowButton &button = m_filters[position - 1];
    button.enabled = true;
    button.isInEditMode = true;
    button.title = done;
}

void FilterRows::stopEditing(int position)
{
    RowButton &button = m_filters[position - 1];
    button.isInEditMode = false;
    button.title = restingTitle(position);
    enableAll(m_enabled);
}

int FilterRows::edited() const
{
    for (int position = 1; position <= mostFilters; ++position) {
        if (filterButton(position).title == done)
            return position;
    }
    return 0;
}

} // namespace presets

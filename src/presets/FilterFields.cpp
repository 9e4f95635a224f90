#include "presets/FilterFields.h"

using namespace Qt::StringLiterals;

namespace presets {

namespace {

constexpr int lowPanel = 100;
constexpr int audioPanel = 260;
constexpr int subtitlePanel = 202;

} // namespace

void FilterFields::set(const QString &word, const QString &value)
{
    if (filterWords(m_kind).contains(word))
        m_values.insert(word, value);
}

bool FilterFields::isByProperties() const
{
    return userTrackChoice() == u"Tracks w/ Properties ..."_s;
}

int FilterFields::panelHeight() const
{
    if (!isByProperties())
        return lowPanel;
    return m_kind == FilterKind::Audio ? audioPanel : subtitlePanel;
}

void FilterFields::load(const QVariantMap &filter)
{
    for (const QString &word : filterWords(m_kind))
        m_values.insert(word, filter.value(word).toString());
}

} // namespace presets

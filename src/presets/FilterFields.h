#pragma once

#include "presets/TrackFilters.h"

namespace presets {

/// The filter that is shown in the filter editor, as its controls have it: `afUserTrackChoice` and its kin
/// for audio, `sfUserTrackChoice` and its kin for subtitles. A value; the editor owns one of each kind.
class FilterFields final
{
public:
    explicit FilterFields(FilterKind kind)
        : m_kind(kind)
    {
    }

    QString userTrackChoice() const { return text(QStringLiteral("currentTrackChoice")); }
    QString userTrackNumber() const { return text(QStringLiteral("currentTrackNumber")); }
    QString userLanguage() const { return text(QStringLiteral("currentLanguage")); }
    QString userCodec() const { return text(QStringLiteral("currentCodec")); }
    /// Audio only; absent for subtitles.
    QString userChannels() const { return text(QStringLiteral("currentChannels")); }
    /// The word is one of filterWords() of the kind; others are not taken.
    void set(const QString &word, const QString &value);

    // Which part of the editor is shown.
    bool isByTrackNumber() const { return userTrackChoice() == numberedChoice(m_kind); }
    bool isByProperties() const;
    /// In pixels.
    int panelHeight() const;

    void load(const QVariantMap &filter);
    /// A new filter with what the fields hold.
    QVariantMap filter() const { return m_values; }

private:
    QString text(const QString &word) const { return m_values.value(word).toString(); }

    FilterKind m_kind;
    QVariantMap m_values;
};

} // namespace presets

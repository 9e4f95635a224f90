#pragma once

#include "presets/FilterEditor.h"
#include "support/selection/ControllerFixture.h"

namespace support {

/// Three filters of each kind, as filterOf() reads them; no two have a value in common but the first two's
/// "English".
extern const QStringList sounds;
extern const QStringList subtitles;
QVariantList filtersOf(const QStringList &texts);

/// A user's preset with that many of these filters, shown in an editor. Buttons are told by their tags, be
/// it that they stand for a filter or that they add and remove.
struct FilterFixture
{
    explicit FilterFixture(qsizetype audio = 3, qsizetype subtitle = 3);

    const presets::RowButton &button(int tag) const;
    QString title(int tag) const { return button(tag).title; }
    /// The preset's filters.
    QString audio() const;
    QString subtitle() const;
    /// The buttons of a kind that are on: "101 102".
    QString enabled(presets::FilterKind kind) const;
    /// The pointer comes to a button and clicks.
    void edit(int tag);
    /// The number is entered in the panel.
    void setNumber(int tag, const QString &number);

    ControllerFixture window;
    PresetSelectionsPointer preset;
    FilterEditor editor;
};

extern const QString allAudioButtons;
extern const QString allSubtitleButtons;

} // namespace support

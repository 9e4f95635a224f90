#pragma once

#include "presets/FilterFields.h"
#include "presets/FilterRows.h"
#include "presets/KXPresetSelections.h"

/// The filter buttons of the sheet and the panel in which one filter is edited, as a window shows them.
/// Owned by the presets' controller. It changes the filters of the preset that the sheet shows, and nothing
/// else; buttons are told apart by their tags. Every change is announced by changed().
class FilterEditor final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isEditingAudioFilter READ isEditingAudioFilter NOTIFY changed)
    Q_PROPERTY(bool isEditingSubtitleFilter READ isEditingSubtitleFilter NOTIFY changed)
    Q_PROPERTY(bool af2Visibility READ af2Visibility NOTIFY changed)
    Q_PROPERTY(bool af3Visibility READ af3Visibility NOTIFY changed)
    Q_PROPERTY(bool sf2Visibility READ sf2Visibility NOTIFY changed)
    Q_PROPERTY(bool sf3Visibility READ sf3Visibility NOTIFY changed)
    Q_PROPERTY(int afPanelHeight READ afPanelHeight NOTIFY changed)
    Q_PROPERTY(int sfPanelHeight READ sfPanelHeight NOTIFY changed)

public:
    FilterEditor();

    /// Shows the filters of a preset; null shows none. An edit in progress is written back first, to the
    /// preset that it belongs to. Those of presets that are not editable can't be changed.
    void setPreset(const PresetSelectionsPointer &preset);
    QVariantList currentAudioFilterArray() const;
    QVariantList currentSubtitleFilterArray() const;

    /// Tags 192, 193, 292, 293: "+" appends a filter, "-" removes the second one, also in row 3: meant.
    void addFilterButtonClicked(int tag);
    void adjustFilterButtonsCount();
    // Tags 101 to 103 and 201 to 203.
    void openFilterPanelForButton(int tag);
    /// A click: "Edit" starts editing, "Done" writes the fields back.
    void editFilterPanel(int tag);
    void startEditingFiltersForButton(int tag);
    void stopEditingFiltersForButton(int tag);
    void pointerEntered(int tag);
    void pointerLeft(int tag);
    /// The sheet lost the focus: what is being edited is finished.
    void windowDidResignKey();

    /// One of filterWords() of the tag's kind was set in the panel.
    void setField(presets::FilterKind kind, const QString &word, const QString &value);
    const presets::FilterFields &fields(presets::FilterKind kind) const;
    const presets::FilterRows &rows(presets::FilterKind kind) const;
    /// The button beside which the panel is shown; 0 while it is hidden.
    int panelTag() const { return m_panelTag; }

    bool isEditingAudioFilter() const { return m_audio.rows.edited() != 0; }
    bool isEditingSubtitleFilter() const { return m_subtitle.rows.edited() != 0; }
    bool af2Visibility() const { return m_audio.rows.filterButton(2).visible; }
    bool af3Visibility() const { return m_audio.rows.filterButton(3).visible; }
    bool sf2Visibility() const { return m_subtitle.rows.filterButton(2).visible; }
    bool sf3Visibility() const { return m_subtitle.rows.filterButton(3).visible; }
    int afPanelHeight() const { return m_audio.fields.panelHeight(); }
    int sfPanelHeight() const { return m_subtitle.fields.panelHeight(); }

Q_SIGNALS:
    void changed();

private:
    struct Side
    {
        presets::FilterFields fields;
        presets::FilterRows rows;
    };

    Side &sideOf(int tag);
    QVariantList filtersOf(presets::FilterKind kind) const;
    void setFilters(presets::FilterKind kind, const QVariantList &filters);
    void writeBack(int tag);
    int editedTag() const;

    PresetSelectionsPointer m_preset;
    Side m_audio;
    Side m_subtitle;
    int m_panelTag = 0;
};

#pragma once

#include <QList>
#include <QString>

namespace presets {

/// A button that stands for one filter, or one that adds and removes a row, as a window shows it.
struct RowButton
{
    int tag = 0;
    QString title;
    bool enabled = true;
    bool visible = true;
    bool isInEditMode = false;
};

/// The rows of one kind of filters in the sheet: three filter buttons, and a button to add or remove in
/// rows 2 and 3. It holds state only; what a button does is the editor's. Positions count from 1.
class FilterRows final
{
public:
    static constexpr int mostFilters = 3;

    /// 100 for audio, 200 for subtitles: filter buttons carry 101 to 103, add buttons 192 and 193.
    explicit FilterRows(int tagBase);

    const RowButton &filterButton(int position) const { return m_filters.at(position - 1); }
    /// For rows 2 and 3.
    const RowButton &addButton(int row) const { return m_adds.at(row - 2); }

    /// The rows as they are for so many filters; more than three show as three.
    void adjustTo(qsizetype filterCount);
    /// All buttons, at rest. Those that are off show their filters but open nothing.
    void setEnabled(bool enabled);
    void setHovered(int position, bool hovered);
    /// The button becomes "Done", and all others of the kind are off, until the editing stops.
    void startEditing(int position);
    void stopEditing(int position);
    /// The position whose button reads "Done"; 0 when none does.
    int edited() const;

private:
    static QString restingTitle(int position);
    void enableAll(bool enabled);

    QList<RowButton> m_filters;
    QList<RowButton> m_adds;
    bool m_enabled = true;
};

} // namespace presets

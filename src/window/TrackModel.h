#pragma once

#include "media/KXVideoTrack.h"
#include "summary/TrackLook.h"

#include <QAbstractTableModel>

#include <optional>

class KXSelectionController;

namespace window {

/// The current file's tracks as a table: a tick with the kind, language, title, default, forced and what
/// comes out. What is edited goes into the track itself. Owned by the table.
class TrackModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Kind, Language, Title, Default, Forced, Becomes, ColumnCount };
    /// What a delegate draws of a track, in its first column; tone and reason in the last.
    enum DataRole { KindRole = Qt::UserRole, CodecRole, FactRole, AddedRole, TickedRole, ToneRole };

    /// The controller must outlive the model.
    TrackModel(KXSelectionController &controller, QObject *parent);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// The file has other tracks, or their ticks changed.
    void refresh();
    /// The last column tells of the editing of tracks, not of the conversion; none goes back to it.
    void tellEdit(std::optional<selection::TrackEdit> edit);

private:
    QVariant textOf(const KXVideoTrack &track, int column) const;
    static QVariant checkStateOf(const KXVideoTrack &track, int column);
    bool setChecked(KXVideoTrack &track, int column, bool checked);
    bool setText(KXVideoTrack &track, int column, const QString &text);

    summary::Becoming becomes(const KXVideoTrack &track) const;
    QVariant accessibleText(const KXVideoTrack &track, int column) const;
    QVariant toolTip(const KXVideoTrack &track, int column) const;

    KXSelectionController &m_controller;
    TrackList m_tracks;
    std::optional<selection::TrackEdit> m_edit;
};

} // namespace window

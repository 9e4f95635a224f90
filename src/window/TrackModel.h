#pragma once

#include "media/KXVideoTrack.h"

#include <QAbstractTableModel>

class KXSelectionController;

namespace window {

/// The current file's tracks as a table: a tick with the kind, language, title, default and forced. What is
/// edited goes into the track itself. Owned by the table.
class TrackModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Kind, Language, Title, Default, Forced, ColumnCount };

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

private:
    QVariant textOf(const KXVideoTrack &track, int column) const;
    static QVariant checkStateOf(const KXVideoTrack &track, int column);
    bool setChecked(KXVideoTrack &track, int column, bool checked);
    bool setText(KXVideoTrack &track, int column, const QString &text);

    KXSelectionController &m_controller;
    TrackList m_tracks;
};

} // namespace window

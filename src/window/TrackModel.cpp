#include "window/TrackModel.h"

#include "media/KXVideoFile.h"
#include "selection/KXSelectionController.h"

namespace window {

TrackModel::TrackModel(KXSelectionController &controller, QObject *parent)
    : QAbstractTableModel(parent)
    , m_controller(controller)
    , m_tracks(controller.currentVideoFile()->trackList())
{
}

int TrackModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_tracks.size());
}

int TrackModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int{ColumnCount};
}

QVariant TrackModel::textOf(const KXVideoTrack &track, int column) const
{
    switch (column) {
    case Kind:
        return track.externalTrackFlag() ? tr("%1, added").arg(track.trackInfo()) : track.trackInfo();
    case Language:
        return track.trackLanguage();
    case Title:
        return track.trackTitle();
    default:
        return {};
    }
}

QVariant TrackModel::checkStateOf(const KXVideoTrack &track, int column)
{
    const auto state = [](bool on) { return QVariant(on ? Qt::Checked : Qt::Unchecked); };
    switch (column) {
    case Kind:
        return state(track.trackSelected());
    case Default:
        return state(track.trackDefaultFlag());
    case Forced:
        return state(track.trackForcedFlag());
    default:
        return {};
    }
}

QVariant TrackModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const KXVideoTrack &track = *m_tracks.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return textOf(track, index.column());
    case Qt::CheckStateRole:
        return checkStateOf(track, index.column());
    case Qt::ToolTipRole:
        return index.column() == Title || track.externalTrackFlag() ? QVariant(track.trackFileName())
                                                                    : QVariant();
    default:
        return {};
    }
}

bool TrackModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    const TrackPointer track = m_tracks.at(index.row());
    const bool done = role == Qt::CheckStateRole
                          ? setChecked(*track, index.column(), value.toInt() == Qt::Checked)
                          : role == Qt::EditRole && setText(*track, index.column(), value.toString());
    if (done)
        Q_EMIT dataChanged(index, index, {role, Qt::DisplayRole});
    return done;
}

bool TrackModel::setChecked(KXVideoTrack &track, int column, bool checked)
{
    switch (column) {
    case Kind:
        track.setTrackSelected(checked);
        m_controller.trackTableSelectionChanged(KXSelectionController::Sender::TrackTable);
        return true;
    case Default:
        track.setTrackDefaultFlag(checked);
        return true;
    case Forced:
        track.setTrackForcedFlag(checked);
        return true;
    default:
        return false;
    }
}

bool TrackModel::setText(KXVideoTrack &track, int column, const QString &text)
{
    if (column == Language) {
        track.setTrackLanguage(text);
        m_controller.upddateAudioTrackPopupFor(); // its labels tell the language
        return true;
    }
    if (column == Title)
        track.setTrackTitle(text);
    return column == Title;
}

Qt::ItemFlags TrackModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags base = QAbstractTableModel::flags(index);
    if (!index.isValid())
        return base;
    if (index.column() == Language || index.column() == Title)
        return base | Qt::ItemIsEditable;
    return base | Qt::ItemIsUserCheckable;
}

QVariant TrackModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList titles{tr("Track"), tr("Language"), tr("Title"), tr("Default"), tr("Forced")};
    return titles.value(section);
}

void TrackModel::refresh()
{
    const TrackList tracks = m_controller.currentVideoFile()->trackList();
    if (tracks == m_tracks) {
        if (!m_tracks.isEmpty())
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
        return;
    }
    beginResetModel();
    m_tracks = tracks;
    endResetModel();
}

} // namespace window

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
    case Becomes:
        return becomes(track).text;
    default:
        return {};
    }
}

summary::Becoming TrackModel::becomes(const KXVideoTrack &track) const
{
    if (m_edit)
        return summary::becomesBy(*m_edit, track);
    if (!m_controller.canConvert())
        return {};
    return summary::becomesBy(*m_controller.currentSelection(), track);
}

QVariant TrackModel::accessibleText(const KXVideoTrack &track, int column) const
{
    if (column == Default || column == Forced) {
        const bool on = column == Default ? track.trackDefaultFlag() : track.trackForcedFlag();
        const QString word = headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        return on ? word : tr("not %1").arg(word);
    }
    if (column != Kind)
        return textOf(track, column);
    const QString ticked = track.trackSelected() ? tr("ticked") : tr("not ticked");
    const QString fate = becomes(track).text;
    return fate.isEmpty() ? tr("%1, %2").arg(track.trackInfo(), ticked)
                          : tr("%1, %2, Becomes %3").arg(track.trackInfo(), ticked, fate);
}

QVariant TrackModel::toolTip(const KXVideoTrack &track, int column) const
{
    QString text;
    if (column == Becomes)
        text = becomes(track).reason;
    else if (track.externalTrackFlag())
        text = track.trackFileName();
    else if (column == Title)
        text = track.trackTitle();
    return text.isEmpty() ? QVariant() : QVariant(text.toHtmlEscaped());
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
        return toolTip(track, index.column());
    case Qt::AccessibleTextRole:
        return accessibleText(track, index.column());
    case KindRole:
        return static_cast<int>(summary::kindOf(track));
    case CodecRole:
        return summary::codecText(track);
    case FactRole:
        return summary::factText(track, *m_controller.currentVideoFile());
    case AddedRole:
        return track.externalTrackFlag();
    case TickedRole:
        return track.trackSelected();
    case ToneRole:
        return static_cast<int>(becomes(track).tone);
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
    return index.column() == Becomes ? base : base | Qt::ItemIsUserCheckable;
}

QVariant TrackModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList titles{tr("Track"),   tr("Language"), tr("Title"),
                             tr("Default"), tr("Forced"),   tr("Becomes")};
    return titles.value(section);
}

void TrackModel::tellEdit(std::optional<selection::TrackEdit> edit)
{
    if (m_edit == edit)
        return;
    m_edit = edit;
    if (!m_tracks.isEmpty())
        Q_EMIT dataChanged(index(0, Becomes), index(rowCount() - 1, Becomes));
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

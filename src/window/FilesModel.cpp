#include "window/FilesModel.h"

#include "app/FilesLook.h"
#include "summary/EditForecast.h"
#include "summary/Figures.h"
#include "window/Thumbnails.h"

#include <QFileInfo>
#include <QImage>

using namespace Qt::StringLiterals;

namespace window {

FilesModel::FilesModel(const app::FilesLook &look, Thumbnails &thumbnails, QObject *parent)
    : QAbstractTableModel(parent)
    , m_look(look)
    , m_thumbnails(thumbnails)
{
}

int FilesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_files.size());
}

int FilesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int{ColumnCount};
}

QString FilesModel::joining(const QUrl &file, int row) const
{
    const VideoFilePointer film = m_look.film(file);
    if (row == 0)
        return film || !m_look.isKnown(file) ? tr("First file") : tr("Not a film");
    if (!m_look.isKnown(file))
        return {};
    const VideoFilePointer first = m_look.film(m_files.constFirst());
    if (!film)
        return tr("Not a film");
    return first ? summary::joiningText(*first, *film).text : QString();
}

bool FilesModel::differs(const QUrl &file, int row) const
{
    const VideoFilePointer film = m_look.film(file);
    if (!film)
        return m_look.isKnown(file);
    const VideoFilePointer first = m_look.film(m_files.constFirst());
    return row > 0 && first && summary::joiningText(*first, *film).isReason;
}

QString FilesModel::text(const QUrl &file, int row, int column) const
{
    const VideoFilePointer film = m_look.film(file);
    switch (column) {
    case Name:
        return file.fileName();
    case Length:
        return film ? summary::lengthText(film->seconds().value_or(0)) : QString();
    case Size:
        return summary::sizeText(QFileInfo(file.toLocalFile()).size());
    default:
        return joining(file, row);
    }
}

QVariant FilesModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const QUrl file = m_files.at(index.row());
    const VideoFilePointer film = m_look.film(file);
    switch (role) {
    case Qt::DisplayRole:
        return text(file, index.row(), index.column());
    case Qt::ToolTipRole:
        return file.toLocalFile().toHtmlEscaped();
    case Qt::AccessibleTextRole:
        return index.column() == Name ? tr("%1, %2").arg(index.row() + 1).arg(file.fileName())
                                      : text(file, index.row(), index.column());
    case FactsRole:
        return film ? summary::fileText(*film) : QFileInfo(file.toLocalFile()).absolutePath();
    case PictureRole:
        return film ? m_thumbnails.of(file, film->seconds().value_or(0)) : QImage();
    case DiffersRole:
        return differs(file, index.row());
    default:
        return {};
    }
}

QVariant FilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QStringList{tr("File"), tr("Length"), tr("Size"), tr("For joining")}.value(section);
}

Qt::ItemFlags FilesModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags usual = QAbstractTableModel::flags(index);
    return index.isValid() ? usual | Qt::ItemIsDragEnabled : usual;
}

void FilesModel::setFiles(const QList<QUrl> &files)
{
    if (files == m_files)
        return;
    beginResetModel();
    m_files = files;
    endResetModel();
}

void FilesModel::refreshFacts()
{
    if (!m_files.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

} // namespace window

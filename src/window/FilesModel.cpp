#include "window/FilesModel.h"

#include <QFileInfo>

namespace window {

int FilesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_files.size());
}

int FilesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant FilesModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const QUrl file = m_files.at(index.row());
    return index.column() == 0 ? file.fileName() : QFileInfo(file.toLocalFile()).absolutePath();
}

QVariant FilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == 0 ? tr("File") : tr("Folder");
}

void FilesModel::setFiles(const QList<QUrl> &files)
{
    if (files == m_files)
        return;
    beginResetModel();
    m_files = files;
    endResetModel();
}

} // namespace window

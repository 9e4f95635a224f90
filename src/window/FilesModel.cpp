#include "window/FilesModel.h"

#include "summary/Figures.h"

#include <QFileInfo>
#include <QSize>

namespace window {

namespace {

constexpr int rowHeight = 36;

} // namespace

int FilesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_files.size());
}

int FilesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int{ColumnCount};
}

QVariant FilesModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role == Qt::TextAlignmentRole && index.column() == Size)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::SizeHintRole)
        return QSize(0, rowHeight);
    const QUrl file = m_files.at(index.row());
    const QFileInfo info(file.toLocalFile());
    if (role == Qt::ToolTipRole)
        return file.toLocalFile().toHtmlEscaped();
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case Name:
        return file.fileName();
    case Folder:
        return info.absolutePath();
    default:
        return summary::sizeText(info.size());
    }
}

QVariant FilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QStringList{tr("File"), tr("Folder"), tr("Size")}.value(section);
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

#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QUrl>

namespace window {

/// The MKV files that are gathered for editing, in their order: name, folder and size. Owned by the table.
class FilesModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, Folder, Size, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    void setFiles(const QList<QUrl> &files);
    const QList<QUrl> &files() const { return m_files; }

private:
    QList<QUrl> m_files;
};

} // namespace window

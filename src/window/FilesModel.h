#pragma once

#include <QAbstractTableModel>
#include <QUrl>

namespace app {
class FilesLook;
}

namespace window {

class Thumbnails;

/// The files of the tab "Edit Files", in the order in which they are joined. Owned by its panel.
class FilesModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, Length, Size, Joining, ColumnCount };
    enum DataRole { FactsRole = Qt::UserRole, PictureRole, DiffersRole };

    /// Both must outlive it.
    FilesModel(const app::FilesLook &look, Thumbnails &thumbnails, QObject *parent);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    void setFiles(const QList<QUrl> &files);
    const QList<QUrl> &files() const { return m_files; }
    /// More is known of them.
    void refreshFacts();

private:
    QString text(const QUrl &file, int row, int column) const;
    QString joining(const QUrl &file, int row) const;
    bool differs(const QUrl &file, int row) const;

    const app::FilesLook &m_look;
    Thumbnails &m_thumbnails;
    QList<QUrl> m_files;
};

} // namespace window

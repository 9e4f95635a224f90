#pragma once

#include "window/TrackDelegate.h"

#include <QStringList>

namespace window {

/// Offers the program's languages where a track's language is edited; one that is not among them stays
/// what it is. Owned by the table.
class LanguageDelegate final : public TrackDelegate
{
    Q_OBJECT

public:
    LanguageDelegate(const QStringList &languages, QObject *parent);
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

private:
    QStringList m_languages;
};

} // namespace window

#include "window/LanguageDelegate.h"

#include <QComboBox>

using namespace Qt::StringLiterals;

namespace window {

LanguageDelegate::LanguageDelegate(const QStringList &languages, QObject *parent)
    : TrackDelegate(parent)
    , m_languages(languages)
{
}

QWidget *LanguageDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                        const QModelIndex &index) const
{
    auto *menu = new QComboBox(parent);
    menu->setObjectName(u"TrackLanguage"_s);
    menu->setAccessibleName(tr("Language of the track"));
    menu->addItems(m_languages);
    const QString current = index.data(Qt::EditRole).toString();
    if (!m_languages.contains(current))
        menu->insertItem(0, current);
    connect(menu, &QComboBox::activated, this, [this, menu] {
        auto *self = const_cast<LanguageDelegate *>(this); // NOLINT: the signals of delegates are not const
        Q_EMIT self->commitData(menu);
        Q_EMIT self->closeEditor(menu);
    });
    return menu;
}

void LanguageDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *menu = qobject_cast<QComboBox *>(editor);
    menu->setCurrentText(index.data(Qt::EditRole).toString());
}

void LanguageDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                    const QModelIndex &index) const
{
    model->setData(index, qobject_cast<QComboBox *>(editor)->currentText(), Qt::EditRole);
}

} // namespace window

#include "window/RadioMatrix.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace window {

RadioMatrix::RadioMatrix(const char *word, const QStringList &titles, Qt::Orientation orientation,
                         QWidget *parent)
    : QWidget(parent)
    , m_group(new QButtonGroup(this))
{
    setObjectName(QString::fromLatin1(word));
    auto *layout = new QBoxLayout(
        orientation == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
    layout->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < titles.size(); ++i) {
        auto *button = new QRadioButton(titles.at(i));
        button->setObjectName(u"%1%2"_s.arg(objectName()).arg(i));
        button->setAccessibleName(QString(titles.at(i)).replace(u'\n', u' '));
        m_group->addButton(button, i);
        layout->addWidget(button);
    }
    if (orientation == Qt::Horizontal)
        layout->addStretch(1);
    connect(m_group, &QButtonGroup::idClicked, this, &RadioMatrix::chosen);
}

void RadioMatrix::setIndex(int index)
{
    if (QAbstractButton *button = m_group->button(index)) {
        button->setChecked(true);
    } else if (QAbstractButton *checked = m_group->checkedButton()) {
        m_group->setExclusive(false);
        checked->setChecked(false);
        m_group->setExclusive(true);
    }
}

QRadioButton *RadioMatrix::option(int index) const
{
    return qobject_cast<QRadioButton *>(m_group->button(index));
}

} // namespace window

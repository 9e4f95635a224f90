#include "window/Segments.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace window {

Segments::Segments(const char *word, const QStringList &titles, QWidget *parent)
    : QWidget(parent)
    , m_group(new QButtonGroup(this))
{
    setObjectName(QString::fromLatin1(word));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int i = 0; i < titles.size(); ++i) {
        auto *button = new QPushButton(titles.at(i));
        button->setObjectName(u"%1%2"_s.arg(objectName()).arg(i));
        button->setCheckable(true);
        button->setAutoDefault(false);
        button->setProperty("segment", i == 0                   ? u"first"_s
                                       : i + 1 == titles.size() ? u"last"_s
                                                                : u"middle"_s);
        m_group->addButton(button, i);
        layout->addWidget(button);
    }
    connect(m_group, &QButtonGroup::idClicked, this, &Segments::chosen);
}

void Segments::setIndex(int index)
{
    if (QAbstractButton *button = m_group->button(index))
        button->setChecked(true);
}

int Segments::index() const
{
    return m_group->checkedId();
}

QPushButton *Segments::option(int index) const
{
    return qobject_cast<QPushButton *>(m_group->button(index));
}

} // namespace window

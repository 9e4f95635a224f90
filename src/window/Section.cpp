#include "window/Section.h"

#include "window/Icons.h"

using namespace Qt::StringLiterals;

namespace window {

Section::Section(const QString &iconName, Role ink, const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_head(new QHBoxLayout)
    , m_column(new QVBoxLayout(this))
{
    m_column->setContentsMargins(space::large, space::small, space::large, space::small);
    m_column->setSpacing(0);
    m_head->setSpacing(space::small);
    m_head->addWidget(iconLabel(iconName, ink));
    m_head->addWidget(headLabel(title));
    m_head->addStretch(1);
    m_column->addLayout(m_head);
    m_column->addSpacing(space::tiny);
}

void Section::addToHead(QWidget *widget)
{
    m_head->addWidget(widget);
}

OptionCaption::OptionCaption(QWidget *option, const QString &meaning, QWidget *parent)
    : QWidget(parent)
    , m_option(option)
    , m_meaning(meaning)
    , m_mark(iconLabel(u"dialog-warning"_s, Role::Bad))
    , m_words(new ElidedLabel(Qt::ElideRight, Role::Second, Type::Second))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(space::tiny);
    layout->addWidget(option);
    layout->addStretch(1);
    layout->addWidget(m_mark);
    layout->addWidget(m_words);
    m_words->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setMinimumHeight(26);
    setFault({});
}

void OptionCaption::setFault(const QString &fault)
{
    const bool isFault = !fault.isNull();
    m_mark->setVisible(isFault);
    m_words->setText(isFault ? fault : m_meaning);
    m_words->setInk(isFault ? Role::Bad : Role::Second);
    m_words->updateGeometry();
    setReddened(m_option, isFault);
    m_option->setAccessibleDescription(m_words->text());
}

} // namespace window

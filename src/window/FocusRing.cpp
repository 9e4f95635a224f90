#include "window/FocusRing.h"

#include "window/AppStyle.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

namespace window {

namespace {

/// Lists mark their current row themselves.
bool isRinged(const QWidget *widget)
{
    const bool isControl = qobject_cast<const QAbstractButton *>(widget) != nullptr ||
                           qobject_cast<const QLineEdit *>(widget) != nullptr ||
                           qobject_cast<const QComboBox *>(widget) != nullptr;
    return isControl && qobject_cast<const QAbstractScrollArea *>(widget->parentWidget()) == nullptr &&
           !widget->parentWidget()->inherits("QAbstractItemView");
}

} // namespace

FocusRing::FocusRing(QObject *parent)
    : QObject(parent)
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) { follow(now); });
}

FocusRing::~FocusRing()
{
    delete m_frame;
}

void FocusRing::follow(QWidget *focused)
{
    if (!AppStyle::isInUse())
        return;
    const bool rings = focused != nullptr && focused->parentWidget() != nullptr && isRinged(focused);
    if (!rings) {
        if (m_frame)
            m_frame->setWidget(nullptr);
        return;
    }
    if (!m_frame)
        m_frame = new QFocusFrame(focused->parentWidget());
    m_frame->setWidget(focused);
}

} // namespace window

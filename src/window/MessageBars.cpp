#include "window/MessageBars.h"

#include "app/FileIntake.h"
#include "window/Icons.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QProgressBar>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int tick = 1000; // milliseconds
constexpr int mostShown = 3;
constexpr int lowBar = 40;

struct Look
{
    QString icon;
    Role ink;
    Role ground;
};

Look lookOf(MessageBar::Kind kind)
{
    switch (kind) {
    case MessageBar::Kind::Ok:
        return {u"emblem-ok"_s, Role::Ok, Role::OkSoft};
    case MessageBar::Kind::Warning:
        return {u"dialog-warning"_s, Role::Warn, Role::WarnSoft};
    case MessageBar::Kind::Bad:
        return {u"dialog-error"_s, Role::Bad, Role::BadSoft};
    case MessageBar::Kind::Info:
        break;
    }
    return {u"dialog-information"_s, Role::Link, Role::Soft};
}

} // namespace

MessageBar::MessageBar(const Message &message, QWidget *parent)
    : Ground(lookOf(message.kind).ground, parent)
    , m_message(message)
    , m_left(message.closesAfter)
    , m_count(new InkLabel({}, Role::Second, Type::Second))
{
    setObjectName(message.word);
    setEdge(Qt::BottomEdge);
    setMinimumHeight(lowBar);
    auto *head = named(new InkLabel(message.head, Role::Text, Type::Head), "AlertHead", {});
    auto *text = named(new InkLabel(message.text, Role::Text, Type::Second), "AlertText", {});
    head->setWordWrap(true);
    text->setWordWrap(true);
    text->setVisible(!message.text.isEmpty());
    auto *words = new QVBoxLayout;
    words->setSpacing(0);
    words->addWidget(head);
    words->addWidget(text);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(space::middle, space::small, space::middle, space::small);
    layout->setSpacing(space::small);
    const Look look = lookOf(message.kind);
    layout->addWidget(iconLabel(look.icon, look.ink));
    layout->addLayout(words, 1);
    layout->addWidget(m_count);
    if (!message.action.isEmpty()) {
        QPushButton *button = named(smallButton(message.action), "AlertAction", message.action);
        connect(button, &QPushButton::clicked, this, [this] {
            m_message.act();
            if (!m_message.stays)
                Q_EMIT closed();
        });
        layout->addWidget(button);
    }
    QPushButton *cross = flatButton(u"window-close"_s, tr("Close this message"));
    cross->setObjectName(u"AlertButton0"_s);
    cross->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it was
    connect(cross, &QPushButton::clicked, this, &MessageBar::closed);
    layout->addWidget(cross);
    setAccessibleName(message.head);
    setAccessibleDescription(message.text);
    m_timer.setInterval(tick);
    connect(&m_timer, &QTimer::timeout, this, &MessageBar::countDown);
    if (m_left.count() > 0)
        m_timer.start();
    showCountDown();
    setAttribute(Qt::WA_Hover);
}

void MessageBar::showCountDown()
{
    const auto seconds = (m_left.count() + tick - 1) / tick;
    m_count->setText(m_left.count() > 0 ? tr("closes in %1 s").arg(seconds) : QString());
}

/// Nobody is read to by a bar that goes away under the pointer.
void MessageBar::countDown()
{
    const QWidget *focused = focusWidget();
    if (underMouse() || (focused != nullptr && focused->hasFocus()))
        return;
    m_left -= std::chrono::milliseconds(tick);
    showCountDown();
    if (m_left.count() <= 0) {
        m_timer.stop();
        Q_EMIT closed();
    }
}

bool MessageBar::event(QEvent *event)
{
    if (event->type() == QEvent::Show) {
        QAccessibleEvent announced(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&announced);
    }
    return Ground::event(event);
}

MessageBars::MessageBars(app::FileIntake &intake, QWidget *parent)
    : QWidget(parent)
    , m_intake(intake)
    , m_layout(new QVBoxLayout(this))
    , m_more(new InkLabel({}, Role::Second, Type::Second))
{
    setObjectName(u"MessageBars"_s);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_probing = probing();
    m_layout->addWidget(m_probing);
    m_layout->addWidget(m_more);
    m_more->setContentsMargins(space::large, space::tiny, space::large, space::tiny);
    m_more->hide();
    m_probing->hide();
    connect(&intake, &app::FileIntake::probing, this, &MessageBars::showProbing);
    connect(&intake, &app::FileIntake::busyChanged, this, [this] {
        if (!m_intake.isBusy())
            m_probing->hide();
    });
}

QWidget *MessageBars::probing()
{
    auto *row = new Ground(Role::Soft);
    row->setEdge(Qt::BottomEdge);
    row->setFixedHeight(lowBar);
    m_probingText = named(new ElidedLabel(Qt::ElideMiddle), "ProbingText", tr("What is being opened"));
    m_probingBar = named(new QProgressBar, "ProbingBar", tr("Progress of opening"));
    m_probingBar->setTextVisible(false);
    m_probingBar->setFixedWidth(160);
    QPushButton *stop = named(smallButton(tr("Stop")), "ProbingStopButton", tr("Stop opening files"));
    connect(stop, &QPushButton::clicked, &m_intake, &app::FileIntake::stopProbing);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(space::middle, 0, space::middle, 0);
    layout->addWidget(iconLabel(u"clock"_s, Role::Link));
    layout->addWidget(m_probingText, 1);
    layout->addWidget(m_probingBar);
    layout->addWidget(stop);
    return row;
}

void MessageBars::showProbing(int done, int total, const QString &fileName)
{
    m_probingText->setText(tr("Opening %1 of %2: %3").arg(done + 1).arg(total).arg(fileName));
    m_probingBar->setMaximum(total);
    m_probingBar->setValue(done);
    m_probing->setVisible(total > 0);
}

MessageBar *MessageBars::show(const MessageBar::Message &message)
{
    auto *bar = new MessageBar(message);
    if (message.stays) {
        m_bars.append(bar);
        m_layout->addWidget(bar);
    } else {
        m_bars.prepend(bar);
        m_layout->insertWidget(1, bar);
    }
    connect(bar, &MessageBar::closed, this, [this, bar] {
        m_bars.removeOne(bar);
        bar->hide();
        bar->deleteLater();
        arrange();
    });
    arrange();
    return bar;
}

bool MessageBars::closeTopmost()
{
    if (m_bars.isEmpty())
        return false;
    Q_EMIT m_bars.constFirst()->closed();
    return true;
}

void MessageBars::arrange()
{
    int passing = 0;
    for (MessageBar *bar : std::as_const(m_bars))
        bar->setVisible(bar->stays() || passing++ < mostShown);
    const int hidden = passing - mostShown;
    m_more->setVisible(hidden > 0);
    if (hidden > 0)
        m_more->setText(tr("%n more", nullptr, hidden));
}

} // namespace window

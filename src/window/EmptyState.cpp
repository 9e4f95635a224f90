#include "window/EmptyState.h"

#include "window/Icons.h"

#include <QHBoxLayout>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int fieldWidth = 664;
constexpr int fieldHeight = 236;
constexpr int bigIcon = 48;

} // namespace

/// Stands for the table that is not there yet.
class EmptyState::DashedField final : public QWidget
{
public:
    bool isTarget = false;

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPen pen(color(isTarget ? Role::Accent : Role::Edge), 2);
        if (!isTarget)
            pen.setDashPattern({4, 3});
        painter.setPen(pen);
        painter.setBrush(color(isTarget ? Role::Soft : Role::Base));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }
};

EmptyState::EmptyState(const QString &title, bool hasCards, QWidget *parent)
    : QWidget(parent)
    , m_text(title)
    , m_title(named(new InkLabel(title, Role::Text, Type::Title), "EmptyTitle", {}))
{
    setObjectName(u"EmptyState"_s);
    m_title->setAlignment(Qt::AlignCenter);
    m_title->setWordWrap(true);
    auto *column = new QVBoxLayout;
    column->setSpacing(space::large);
    column->addStretch(1);
    column->addWidget(m_title);
    column->addWidget(field());
    if (hasCards) {
        auto *cards = new QHBoxLayout;
        cards->setSpacing(space::large);
        cards->addWidget(card(u"video-x-generic"_s, tr("Films for a device"),
                              tr("Pick tracks, pick a target, convert one film or many."), tr("Open…"),
                              &EmptyState::openWanted),
                         1);
        cards->addWidget(card(u"join-files"_s, tr("Whole MKV files"),
                              tr("Join, split or re-mux them. Nothing is re-encoded."),
                              tr("Go to Edit Files"), &EmptyState::editFilesWanted),
                         1);
        cards->addWidget(card(u"view-visible"_s, tr("A watched folder"),
                              tr("Every film that arrives in it is converted by your presets."),
                              tr("Watch Folder…"), &EmptyState::watchWanted),
                         1);
        column->addLayout(cards);
    }
    column->addStretch(1);
    auto *middle = new QWidget;
    middle->setLayout(column);
    middle->setFixedWidth(fieldWidth);
    column->setContentsMargins(0, 0, 0, 0);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(middle, 0, Qt::AlignHCenter);
}

QWidget *EmptyState::field()
{
    m_field = new DashedField;
    m_field->setMinimumHeight(fieldHeight);
    m_field->setMaximumHeight(fieldHeight);
    auto *picture = new QLabel;
    picture->setPixmap(icon(u"open-files"_s, Role::Link).pixmap(bigIcon, bigIcon));
    picture->setAlignment(Qt::AlignCenter);
    auto *words = new InkLabel(tr("One film, or a whole evening of them.\n"
                                  "Once a film is open, drop a subtitle or a sound file to add it."),
                               Role::Second);
    words->setAlignment(Qt::AlignCenter);
    m_open = named(primaryButton(tr("Open…")), "EmptyOpenButton", tr("Open video files"));
    m_open->setIcon(icon(u"folder-open"_s, Role::OnAccent));
    connect(m_open, &QPushButton::clicked, this, &EmptyState::openWanted);
    auto *layout = new QVBoxLayout(m_field);
    layout->setSpacing(space::middle);
    layout->addStretch(1);
    layout->addWidget(picture);
    layout->addWidget(words);
    layout->addWidget(m_open, 0, Qt::AlignHCenter);
    layout->addStretch(1);
    return m_field;
}

QWidget *EmptyState::card(const QString &iconName, const QString &head, const QString &text,
                          const QString &link, void (EmptyState::*wanted)())
{
    auto *card = new Ground(Role::Base);
    card->setEdge(Qt::TopEdge | Qt::BottomEdge | Qt::LeftEdge | Qt::RightEdge);
    QPushButton *button = linkButton(link);
    button->setAccessibleDescription(head);
    connect(button, &QPushButton::clicked, this, wanted);
    auto *layout = new QVBoxLayout(card);
    layout->setContentsMargins(space::middle, space::middle, space::middle, space::middle);
    layout->setSpacing(space::tiny);
    layout->addWidget(rowOf({iconLabel(iconName, Role::Link), headLabel(head), nullptr}));
    layout->addWidget(hint(text), 1);
    layout->addWidget(button, 0, Qt::AlignLeading);
    return card;
}

void EmptyState::showDrag(const QString &title)
{
    m_field->isTarget = !title.isNull();
    m_title->setText(title.isNull() ? m_text : title);
    m_field->update();
}

void EmptyState::focusOpen()
{
    m_open->setFocus(Qt::OtherFocusReason);
}

} // namespace window

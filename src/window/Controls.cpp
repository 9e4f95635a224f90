#include "window/Controls.h"

#include "window/Icons.h"

#include <QBoxLayout>
#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QStyle>

namespace window {

namespace {

constexpr int narrowestText = 24;

/// A drawing that follows the palette.
class Drawn final : public QLabel
{
public:
    void show(const QString &name, Role ink)
    {
        m_name = name;
        m_ink = ink;
        update();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        paintIcon(painter, rect(), m_name, color(isEnabled() ? m_ink : Role::Off));
    }

private:
    QString m_name;
    Role m_ink = Role::Text;
};

} // namespace

InkLabel::InkLabel(const QString &text, Role ink, Type type, QWidget *parent)
    : QLabel(text, parent)
    , m_ink(ink)
    , m_type(type)
{
    setTextFormat(Qt::PlainText);
    setFont(fontOf(type));
    takeInk();
}

void InkLabel::setInk(Role ink)
{
    m_ink = ink;
    takeInk();
}

void InkLabel::takeInk()
{
    QPalette own = palette();
    own.setColor(QPalette::Active, QPalette::WindowText, color(m_ink));
    own.setColor(QPalette::Inactive, QPalette::WindowText, color(m_ink));
    own.setColor(QPalette::Disabled, QPalette::WindowText, color(Role::Off));
    m_taking = true;
    setPalette(own);
    m_taking = false;
}

void InkLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (m_taking)
        return;
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        takeInk();
    else if (event->type() == QEvent::ApplicationFontChange)
        setFont(fontOf(m_type));
}

ElidedLabel::ElidedLabel(Qt::TextElideMode mode, Role ink, Type type, QWidget *parent)
    : InkLabel({}, ink, type, parent)
    , m_mode(mode)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {text().isEmpty() ? 0 : narrowestText, fontMetrics().height()};
}

QSize ElidedLabel::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 1, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QString shown = fontMetrics().elidedText(text(), m_mode, width());
    style()->drawItemText(&painter, rect(), static_cast<int>(alignment() | Qt::AlignVCenter), palette(),
                          isEnabled(), shown, foregroundRole());
}

void ElidedLabel::resizeEvent(QResizeEvent *event)
{
    InkLabel::resizeEvent(event);
    showWhole();
}

void ElidedLabel::changeEvent(QEvent *event)
{
    InkLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        updateGeometry();
}

void ElidedLabel::showWhole()
{
    setToolTip(sizeHint().width() > width() ? QStringLiteral("<qt>%1</qt>").arg(text().toHtmlEscaped())
                                            : QString());
}

QLabel *labelFor(QWidget *control, const QString &text)
{
    auto *label = new InkLabel(text, Role::Second, Type::Body);
    label->setBuddy(control);
    return label;
}

QLabel *hint(const QString &text)
{
    auto *label = new InkLabel(text, Role::Second, Type::Second);
    label->setWordWrap(true);
    return label;
}

QLabel *headLabel(const QString &text)
{
    return new InkLabel(text, Role::Text, Type::Head);
}

QLabel *iconLabel(const QString &name, Role ink)
{
    constexpr int side = 16;
    auto *label = new Drawn;
    label->setFixedSize(side, side);
    label->show(name, ink);
    return label;
}

void setIconOf(QLabel *label, const QString &name, Role ink)
{
    static_cast<Drawn *>(label)->show(name, ink); // NOLINT: made by iconLabel()
}

void setReddened(QWidget *widget, bool red)
{
    if (!red) {
        widget->setPalette(QPalette());
        return;
    }
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Active, QPalette::WindowText, color(Role::Bad));
    palette.setColor(QPalette::Inactive, QPalette::WindowText, color(Role::Bad));
    widget->setPalette(palette);
}

QWidget *rowOf(const QList<QWidget *> &controls)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(space::small);
    for (QWidget *control : controls) {
        if (control == nullptr)
            layout->addStretch(1);
        else
            layout->addWidget(control);
    }
    return row;
}

QPushButton *smallButton(const QString &text, const QString &iconName)
{
    auto *button = new QPushButton(text);
    button->setProperty("small", true);
    button->setAutoDefault(false);
    button->setFont(fontOf(Type::Second));
    if (!iconName.isEmpty()) {
        button->setIcon(icon(iconName));
        button->setIconSize(QSize(14, 14));
    }
    return button;
}

QPushButton *flatButton(const QString &iconName, const QString &accessibleName)
{
    auto *button = new QPushButton(icon(iconName), {});
    button->setProperty("flat", true);
    button->setFlat(true);
    button->setAutoDefault(false);
    button->setAccessibleName(accessibleName);
    button->setToolTip(accessibleName);
    button->setFixedSize(controlHeight, controlHeight);
    return button;
}

QPushButton *linkButton(const QString &text)
{
    auto *button = new QPushButton(text);
    button->setProperty("flat", true);
    button->setProperty("link", true);
    button->setFlat(true);
    button->setAutoDefault(false);
    button->setFont(fontOf(Type::Second));
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

QPushButton *primaryButton(const QString &text)
{
    auto *button = new QPushButton(text);
    button->setProperty("primary", true);
    QFont bold = button->font();
    bold.setWeight(QFont::DemiBold);
    button->setFont(bold);
    return button;
}

QWidget *separatorLine(Qt::Orientation orientation)
{
    auto *line = new Ground(Role::Line);
    if (orientation == Qt::Horizontal)
        line->setFixedHeight(1);
    else
        line->setFixedWidth(1);
    return line;
}

void paintChosenRow(QPainter &painter, const QRect &row)
{
    constexpr int accentBar = 3;
    painter.fillRect(row, color(Role::Soft));
    QRect bar = row;
    bar.setWidth(accentBar);
    if (QGuiApplication::isRightToLeft())
        bar.moveRight(row.right());
    painter.fillRect(bar, color(Role::Accent));
}

Ground::Ground(Role ground, QWidget *parent)
    : QWidget(parent)
    , m_ground(ground)
{
}

void Ground::setGround(Role ground)
{
    m_ground = ground;
    update();
}

void Ground::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), color(m_ground));
    painter.setPen(color(Role::Line));
    const QRect edge = rect();
    if (m_edges.testFlag(Qt::TopEdge))
        painter.drawLine(edge.topLeft(), edge.topRight());
    if (m_edges.testFlag(Qt::BottomEdge))
        painter.drawLine(edge.bottomLeft(), edge.bottomRight());
    if (m_edges.testFlag(Qt::LeftEdge))
        painter.drawLine(edge.topLeft(), edge.bottomLeft());
    if (m_edges.testFlag(Qt::RightEdge))
        painter.drawLine(edge.topRight(), edge.bottomRight());
}

} // namespace window

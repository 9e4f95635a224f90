#pragma once

#include "window/Theme.h"

#include <QLabel>
#include <QPushButton>
#include <QString>

class QBoxLayout;
class QButtonGroup;

namespace window {

/// Gives a control the word by which tests find it and the name that a screen reader says.
template <typename Control>
Control *named(Control *control, const char *word, const QString &accessibleName)
{
    control->setObjectName(QString::fromLatin1(word));
    control->setAccessibleName(accessibleName);
    return control;
}

/// A text in the ink and the type of its use, which it keeps when the palette changes.
class InkLabel : public QLabel
{
    Q_OBJECT

public:
    explicit InkLabel(const QString &text = {}, Role ink = Role::Text, Type type = Type::Body,
                      QWidget *parent = nullptr);
    void setInk(Role ink);

protected:
    void changeEvent(QEvent *event) override;

private:
    void takeInk();

    Role m_ink;
    Type m_type;
    bool m_taking = false;
};

/// One line that is cut with an ellipsis where it is too long, and then shows all of it as a tool tip. Its
/// text() stays the whole.
class ElidedLabel final : public InkLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(Qt::TextElideMode mode = Qt::ElideRight, Role ink = Role::Text,
                         Type type = Type::Body, QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showWhole();

    Qt::TextElideMode m_mode;
};

/// A label for a control, whose underlined letter leads to it.
QLabel *labelFor(QWidget *control, const QString &text);
/// A quiet line of explanation that wraps.
QLabel *hint(const QString &text = {});
QLabel *headLabel(const QString &text);
/// One of our drawings as a label.
QLabel *iconLabel(const QString &name, Role ink);
void setIconOf(QLabel *label, const QString &name, Role ink);
/// The text in the palette's warning red, or as usual.
void setReddened(QWidget *widget, bool red);
/// A row of controls without margins; null stands for the space that grows.
QWidget *rowOf(const QList<QWidget *> &controls);

QPushButton *smallButton(const QString &text, const QString &iconName = {});
/// A button without a frame that shows only its drawing; its name stands in its tool tip.
QPushButton *flatButton(const QString &iconName, const QString &accessibleName);
/// Words in the colour of a link that do something.
QPushButton *linkButton(const QString &text);
QPushButton *primaryButton(const QString &text);
/// A line of the theme.
QWidget *separatorLine(Qt::Orientation orientation = Qt::Horizontal);

/// The ground of the chosen row of a list.
void paintChosenRow(QPainter &painter, const QRect &row);

/// A part of the window with a ground of its own.
class Ground : public QWidget
{
    Q_OBJECT

public:
    explicit Ground(Role ground, QWidget *parent = nullptr);
    void setGround(Role ground);
    /// A line of the theme along that edge.
    void setEdge(Qt::Edges edges) { m_edges = edges; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Role m_ground;
    Qt::Edges m_edges;
};

} // namespace window

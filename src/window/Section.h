#pragma once

#include "window/Controls.h"

#include <QVBoxLayout>

namespace window {

/// A part of the settings: its head with a drawing, and what stands below. Divided from the next by a line.
class Section : public QWidget
{
    Q_OBJECT

public:
    Section(const QString &iconName, Role ink, const QString &title, QWidget *parent = nullptr);

protected:
    QVBoxLayout *column() const { return m_column; }
    /// At the right of the head.
    void addToHead(QWidget *widget);

private:
    QHBoxLayout *m_head;
    QVBoxLayout *m_column;
};

/// An option with a few plain words at the right: what it means, or why it is no good choice.
class OptionCaption final : public QWidget
{
    Q_OBJECT

public:
    OptionCaption(QWidget *option, const QString &meaning, QWidget *parent = nullptr);

    /// Shown in the place of the meaning, with a mark; a null text goes back to it.
    void setFault(const QString &fault);

private:
    QWidget *m_option;
    QString m_meaning;
    QLabel *m_mark;
    ElidedLabel *m_words;
};

} // namespace window

#pragma once

#include <QWidget>

class QButtonGroup;
class QPushButton;

namespace window {

/// A few joined buttons of which exactly one holds, told apart by their index. It only shows an index and
/// says what was chosen by hand.
class Segments final : public QWidget
{
    Q_OBJECT

public:
    /// The buttons are named after the word with their index behind it.
    Segments(const char *word, const QStringList &titles, QWidget *parent = nullptr);

    void setIndex(int index);
    int index() const;
    QPushButton *option(int index) const;

Q_SIGNALS:
    void chosen(int index);

private:
    QButtonGroup *m_group;
};

} // namespace window

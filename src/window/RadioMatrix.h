#pragma once

#include <QWidget>

class QButtonGroup;
class QRadioButton;

namespace window {

/// Options of which exactly one holds, in a column or a row, told apart by their index. It only shows an
/// index and says what was chosen by hand.
class RadioMatrix final : public QWidget
{
    Q_OBJECT

public:
    /// The buttons are named after the word with their index behind it.
    RadioMatrix(const char *word, const QStringList &titles, Qt::Orientation orientation,
                QWidget *parent = nullptr);

    /// An index without an option leaves none chosen.
    void setIndex(int index);
    QRadioButton *option(int index) const;

Q_SIGNALS:
    void chosen(int index);

private:
    QButtonGroup *m_group;
};

} // namespace window

#pragma once

#include "window/Controls.h"

#include <QListWidget>
#include <QPushButton>

namespace window {

class ToolTipBinder;

/// The presets that a sheet shows, and the buttons that add and remove one. It only shows them and says what
/// was done by hand.
class PresetTable final : public Ground
{
    Q_OBJECT

public:
    struct Row
    {
        QString name;
        bool isEditable = false;
    };

    explicit PresetTable(ToolTipBinder &tips, QWidget *parent = nullptr);

    /// A row of -1 selects none.
    void showRows(const QList<Row> &rows, int selected);

Q_SIGNALS:
    void rowChosen(int row);
    /// A new name was typed in that row.
    void nameTyped(int row, const QString &name);
    void addWanted();
    void removeWanted();

private:
    QListWidget *m_list;
    QPushButton *m_add;
    QPushButton *m_remove;
};

} // namespace window

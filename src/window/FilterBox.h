#pragma once

#include "window/Controls.h"

#include <QComboBox>

class FilterEditor;
class KXFilterButton;
class QGridLayout;

namespace window {

class FilterPanel;
class ToolTipBinder;

/// The filters of one kind in the sheet of presets: how they are applied, and each as a sentence that is
/// edited in its row.
class FilterBox final : public QWidget
{
    Q_OBJECT

public:
    FilterBox(FilterEditor &editor, FilterPanel &panel, ToolTipBinder &tips, QWidget *parent = nullptr);

    /// The preset's filter mode.
    void showMode(const QString &mode, bool isEditable);

Q_SIGNALS:
    void modeChosen(const QString &mode);

private:
    struct Row
    {
        Ground *ground;
        QGridLayout *layout;
        KXFilterButton *button;
        QLabel *sentence;
        QPushButton *add; ///< null in the first row
        QLabel *addHint;
    };

    QWidget *head();
    void makeRow(int position);
    QPushButton *makeAddButton(int row);
    bool isAudio() const;
    void finishEditing();
    void refresh();
    void refreshRow(int position);

    FilterEditor &m_editor;
    FilterPanel &m_panel;
    ToolTipBinder &m_tips;
    QComboBox *m_mode;
    QLabel *m_meaning;
    QList<Row> m_rows;
};

} // namespace window

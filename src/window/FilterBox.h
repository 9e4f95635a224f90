#pragma once

#include <QComboBox>
#include <QGroupBox>
#include <QPushButton>

class FilterEditor;
class KXFilterButton;

namespace window {

class FilterPanel;
class ToolTipBinder;

/// The filters of one kind in the sheet: how they are applied together, a button for each, and the buttons
/// that add and remove one.
class FilterBox final : public QGroupBox
{
    Q_OBJECT

public:
    /// Of the panel's kind. Both must outlive it.
    FilterBox(FilterEditor &editor, FilterPanel &panel, ToolTipBinder &tips, QWidget *parent = nullptr);

    void showMode(const QString &mode, bool isEditable);

Q_SIGNALS:
    void modeChosen(const QString &mode);

private:
    bool isAudio() const;
    QWidget *makeRow(int position);
    QPushButton *makeAddButton(int row);
    void finishEditing();
    void refresh();

    FilterEditor &m_editor;
    FilterPanel &m_panel;
    ToolTipBinder &m_tips;
    QComboBox *m_mode;
    QList<KXFilterButton *> m_filters;
    QList<QPushButton *> m_adds; // of rows 2 and 3
};

} // namespace window

#pragma once

#include <QPushButton>

class FilterEditor;

namespace window {
class FilterPanel;
}

/// Stands for one filter in the sheet of presets. While the pointer is over it, or it has the keyboard's
/// focus, the filter panel beside it shows its filter; pressing it starts and ends the editing there.
class KXFilterButton final : public QPushButton
{
    Q_OBJECT

public:
    /// Tags 101 to 103 for audio, 201 to 203 for subtitles. Editor and panel must outlive it.
    KXFilterButton(FilterEditor &editor, int tag, window::FilterPanel &filterPanel,
                   QWidget *parent = nullptr);

    int tag() const { return m_tag; }
    bool isInEditMode() const;

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    int position() const;
    void press();
    void refresh();

    FilterEditor &m_editor;
    int m_tag;
    window::FilterPanel &m_filterPanel;
};

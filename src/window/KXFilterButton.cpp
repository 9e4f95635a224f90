#include "window/KXFilterButton.h"

#include "presets/FilterEditor.h"
#include "window/FilterPanel.h"

#include <QEnterEvent>

using namespace Qt::StringLiterals;

KXFilterButton::KXFilterButton(FilterEditor &editor, int tag, window::FilterPanel &filterPanel,
                               QWidget *parent)
    : QPushButton(parent)
    , m_editor(editor)
    , m_tag(tag)
    , m_filterPanel(filterPanel)
{
    const bool isAudio = filterPanel.kind() == presets::FilterKind::Audio;
    setObjectName((isAudio ? u"af%1EditButton"_s : u"sf%1EditButton"_s).arg(position()));
    setAccessibleName((isAudio ? tr("Audio filter %1") : tr("Subtitle filter %1")).arg(position()));
    setAutoDefault(false);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QPushButton::clicked, this, &KXFilterButton::press);
    connect(&editor, &FilterEditor::changed, this, &KXFilterButton::refresh);
    refresh();
}

int KXFilterButton::position() const
{
    return m_tag % 100;
}

bool KXFilterButton::isInEditMode() const
{
    return m_editor.rows(m_filterPanel.kind()).filterButton(position()).isInEditMode;
}

void KXFilterButton::enterEvent(QEnterEvent *event)
{
    QPushButton::enterEvent(event);
    m_editor.pointerEntered(m_tag);
}

void KXFilterButton::leaveEvent(QEvent *event)
{
    QPushButton::leaveEvent(event);
    m_editor.pointerLeft(m_tag);
}

/// Who works with the keyboard sees the filter like who points at it.
void KXFilterButton::focusInEvent(QFocusEvent *event)
{
    QPushButton::focusInEvent(event);
    m_editor.pointerEntered(m_tag);
}

void KXFilterButton::focusOutEvent(QFocusEvent *event)
{
    QPushButton::focusOutEvent(event);
    m_editor.pointerLeft(m_tag);
}

/// After "Done" the button is at rest though the pointer never left: pressing it again edits again.
void KXFilterButton::press()
{
    if (!isInEditMode())
        m_editor.pointerEntered(m_tag);
    m_editor.editFilterPanel(m_tag);
    if (isInEditMode())
        m_filterPanel.takeFocusAfter(this);
}

void KXFilterButton::refresh()
{
    const presets::RowButton &state = m_editor.rows(m_filterPanel.kind()).filterButton(position());
    setText(state.title);
    setAccessibleDescription(state.title);
    setEnabled(state.enabled);
    setVisible(state.visible);
}

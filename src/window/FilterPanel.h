#pragma once

#include "presets/TrackFilters.h"

#include <QComboBox>
#include <QFrame>
#include <QLabel>

class FilterEditor;

namespace window {

/// What a filter chooses, as the editor has it, in the row of its button while it is edited. It shows only
/// the fields that its choice needs.
class FilterPanel final : public QFrame
{
    Q_OBJECT

public:
    /// The editor must outlive it.
    FilterPanel(FilterEditor &editor, presets::FilterKind kind, QWidget *parent);

    presets::FilterKind kind() const { return m_kind; }
    /// The first field gets the focus; from there one tabs back to the button.
    void takeFocusAfter(QWidget *button);

Q_SIGNALS:
    /// Escape: back to the button.
    void leftByKey();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct Field
    {
        QString word; ///< in the filter
        QLabel *label;
        QComboBox *popup;
    };

    void addField(const char *name, const QString &word, const QString &title, const QStringList &choices);
    bool needs(const QString &word) const;
    void refresh();

    FilterEditor &m_editor;
    presets::FilterKind m_kind;
    QList<Field> m_fields;
};

} // namespace window

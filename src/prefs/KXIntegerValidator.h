#pragma once

#include "prefs/FieldEdit.h"

/// Guards one text field for whole numbers, bit rates and widths. The field asks it when editing begins
/// and after every change, and shows what it answers. It knows no range: any row of digits is good, and
/// so is nothing.
class KXIntegerValidator final
{
public:
    /// The last text that was accepted.
    const QString &oldText() const { return m_oldText; }

    bool controlTextShouldBeginEditing(const QString &text);
    prefs::FieldEdit controlTextDidChange(const QString &newText, qsizetype caret,
                                          prefs::FieldKind kind = prefs::FieldKind::TextField);

private:
    QString m_oldText;
};

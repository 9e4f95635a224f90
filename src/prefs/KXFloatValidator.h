#pragma once

#include "prefs/FieldEdit.h"

/// Guards one text field or combo box for decimal numbers, frame rates. The field asks it when editing
/// begins and after every change, and shows what it answers. The point is a point in every language, and
/// texts that are on their way to a number ("", ".", "23.") are good.
class KXFloatValidator final
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

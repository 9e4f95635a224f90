#pragma once

#include "prefs/FieldEdit.h"

namespace prefs {

/// What a user did to a text: from "start" on so many characters went, and these came in their place.
struct TypedChange
{
    qsizetype start = 0;
    qsizetype removed = 0;
    QString inserted;
};

/// The change that made the new text of the old one and left the caret there. What stands behind the
/// caret is taken for untouched as far as it is the end of the old text too. Takes any caret.
TypedChange typedChange(const QString &oldText, const QString &newText, qsizetype caret);

/// True when every character of the text is one of those allowed.
bool holdsOnly(QStringView text, QStringView allowed);

/// The old text again with a beep, the caret where the refused change began.
FieldEdit refusal(const QString &oldText, const QString &newText, qsizetype caret);

} // namespace prefs

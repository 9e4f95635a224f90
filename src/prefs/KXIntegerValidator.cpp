#include "prefs/KXIntegerValidator.h"

#include "prefs/TypedChange.h"

bool KXIntegerValidator::controlTextShouldBeginEditing(const QString &text)
{
    m_oldText = text;
    return true;
}

prefs::FieldEdit KXIntegerValidator::controlTextDidChange(const QString &newText, qsizetype caret,
                                                          prefs::FieldKind kind)
{
    if (kind != prefs::FieldKind::TextField)
        return {newText, caret};
    if (!prefs::holdsOnly(newText, u"0123456789"))
        return prefs::refusal(m_oldText, newText, caret);
    m_oldText = newText;
    return {newText, caret};
}

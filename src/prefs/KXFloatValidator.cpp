#include "prefs/KXFloatValidator.h"

#include "prefs/TypedChange.h"

bool KXFloatValidator::controlTextShouldBeginEditing(const QString &text)
{
    m_oldText = text;
    return true;
}

prefs::FieldEdit KXFloatValidator::controlTextDidChange(const QString &newText, qsizetype caret,
                                                        prefs::FieldKind kind)
{
    if (kind == prefs::FieldKind::Other)
        return {newText, caret};
    if (!prefs::holdsOnly(newText, u"0123456789.") || newText.count(u'.') > 1)
        return prefs::refusal(m_oldText, newText, caret);
    m_oldText = newText;
    return {newText, caret};
}

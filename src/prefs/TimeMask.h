#pragma once

#include "prefs/FieldEdit.h"

namespace prefs {

struct TypedChange;

/// A time of fixed length that is typed over: "00:00:00", or "00:00:00,000" with milliseconds. It turns
/// each change of the text into the text and caret that are to be shown. Its separators never move, and
/// it knows no field.
class TimeMask final
{
public:
    enum class Precision { Seconds, Milliseconds };
    explicit TimeMask(Precision precision);

    /// The mask with nothing but zeros.
    const QString &zero() const { return m_zero; }
    /// True for a text with digits and separators just where the mask has them.
    bool fits(const QString &text) const;
    /// The text itself when it fits, else the zeros.
    QString fitted(const QString &text) const { return fits(text) ? text : m_zero; }
    /// What to show when the old text was changed to the new one and the caret stands there.
    FieldEdit edited(const QString &oldText, const QString &newText, qsizetype caret) const;

private:
    bool isSeparator(qsizetype position) const;
    QString cleared(QString text, const TypedChange &change) const;
    qsizetype behindNextSeparator(qsizetype position) const;
    qsizetype put(QString &text, qsizetype position, QChar digit) const;

    QString m_zero;
};

} // namespace prefs

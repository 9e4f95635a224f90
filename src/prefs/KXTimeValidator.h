#pragma once

#include "prefs/FieldEdit.h"

#include <QVariant>

class KXNotificationCenter;

/// Guards one time field, which is typed over like a mask. The field asks it when editing begins, after
/// every change and when it is left, and shows what it answers. It announces each accepted change and
/// the leaving to everybody, under the field's tag; it never touches the field itself.
class KXTimeValidator final
{
public:
    /// The centre must outlive it.
    KXTimeValidator(KXNotificationCenter &center, qint64 tag);

    /// The last text that was accepted, always in the shape of the mask once editing has begun.
    const QString &oldText() const { return m_oldText; }
    /// What was selected when editing began.
    prefs::TextRange oldSelectedRange() const { return m_oldSelectedRange; }
    /// Any text here gives the field milliseconds behind a comma. To be set before editing begins.
    const QString &srtTimeFormat() const { return m_srtTimeFormat; }
    void setSrtTimeFormat(const QString &format) { m_srtTimeFormat = format; }

    bool controlTextShouldBeginEditing(const QString &text, prefs::TextRange selected);
    /// Announces before it answers; the announcement carries the text that the field is about to show.
    prefs::FieldEdit controlTextDidChange(const QString &newText, qsizetype caret,
                                          prefs::FieldKind kind = prefs::FieldKind::TextField);
    bool controlTextShouldEndEditing() const { return true; }
    /// The field is left with that text in it.
    bool controlIsValidObject(const QVariant &field, const QString &text);

    /// Whole seconds of an H:M:S text; milliseconds behind a comma don't count.
    static qint64 convertTimeInSecondsFrom(const QString &time);
    /// Not what a time field shows: "%02ld:", the hours and the minutes.
    static QString convertToTextTimeFrom(qint64 seconds);

private:
    KXNotificationCenter &m_center;
    QString m_tag;
    QString m_oldText;
    prefs::TextRange m_oldSelectedRange;
    QString m_srtTimeFormat;
};

#include "prefs/KXTimeValidator.h"

#include "platform/KXNotificationCenter.h"
#include "prefs/TimeMask.h"
#include "tools/Times.h"

using namespace Qt::StringLiterals;

namespace {

prefs::TimeMask maskFor(const QString &format)
{
    using Precision = prefs::TimeMask::Precision;
    return prefs::TimeMask(format.isEmpty() ? Precision::Seconds : Precision::Milliseconds);
}

} // namespace

KXTimeValidator::KXTimeValidator(KXNotificationCenter &center, qint64 tag)
    : m_center(center)
    , m_tag(QString::number(tag))
{
}

bool KXTimeValidator::controlTextShouldBeginEditing(const QString &text, prefs::TextRange selected)
{
    m_oldText = maskFor(m_srtTimeFormat).fitted(text);
    m_oldSelectedRange = selected;
    return true;
}

prefs::FieldEdit KXTimeValidator::controlTextDidChange(const QString &newText, qsizetype caret,
                                                       prefs::FieldKind kind)
{
    if (kind != prefs::FieldKind::TextField)
        return {newText, caret};
    prefs::FieldEdit edit = maskFor(m_srtTimeFormat).edited(m_oldText, newText, caret);
    if (edit.beep)
        return edit;
    m_oldText = edit.text;
    m_center.post(u"timeTextFieldChangedNotification"_s, edit.text, {{u"textFieldID"_s, m_tag}});
    return edit;
}

bool KXTimeValidator::controlIsValidObject(const QVariant &field, const QString &text)
{
    m_center.post(u"timeTextFieldExitedNotification"_s, text,
                  {{u"theTextField"_s, field}, {u"textFieldID"_s, m_tag}});
    return true;
}

qint64 KXTimeValidator::convertTimeInSecondsFrom(const QString &time)
{
    return tools::secondsIn(time); // a comma ends its seconds just as a point does
}

QString KXTimeValidator::convertToTextTimeFrom(qint64 seconds)
{
    const qint64 hours = seconds / 3600;
    const qint64 minutes = seconds % 3600 / 60;
    // Meant like this. The format is "%0%02ld:%02ld:%02lu" for hours, minutes and seconds, and in it "%0%"
    // is a percent sign: "02ld:" is plain text, hours and minutes fill what is left, seconds have no place.
    return QString::asprintf("%%02ld:%02lld:%02llu", static_cast<long long>(hours),
                             static_cast<unsigned long long>(minutes));
}

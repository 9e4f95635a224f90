#include "window/ToolTipBinder.h"

#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

namespace window {

namespace {

/// Long texts are broken into lines; plain texts would stand in one.
QString shown(const QString &text)
{
    return text.isEmpty() ? QString() : u"<qt>%1</qt>"_s.arg(text.toHtmlEscaped());
}

} // namespace

ToolTipBinder::ToolTipBinder(KXPreferences &preferences, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
{
    connect(&preferences, &KXPreferences::toolTipsModified, this, &ToolTipBinder::updateAll);
}

void ToolTipBinder::bind(QWidget *control, const char *property)
{
    Bound &bound = boundOf(control);
    bound.property = property;
    update(bound);
}

void ToolTipBinder::setReason(QWidget *control, const QString &reason)
{
    Bound &bound = boundOf(control);
    bound.reason = reason;
    update(bound);
}

ToolTipBinder::Bound &ToolTipBinder::boundOf(QWidget *control)
{
    for (Bound &bound : m_bound) {
        if (bound.control == control)
            return bound;
    }
    m_bound.append({control, {}, {}});
    return m_bound.last();
}

void ToolTipBinder::update(const Bound &bound) const
{
    if (bound.control.isNull())
        return;
    const QString tip = m_preferences.property(bound.property.constData()).toString();
    const bool shows = m_preferences.panelFlag(u"showToolTipsFlag"_s) || !bound.control->isEnabled();
    bound.control->setToolTip(shown(!bound.reason.isEmpty() && shows ? bound.reason : tip));
}

void ToolTipBinder::updateAll() const
{
    for (const Bound &bound : m_bound)
        update(bound);
}

} // namespace window

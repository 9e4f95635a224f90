#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class KXPreferences;

namespace window {

/// Shows the preferences' tool-tip texts at their controls, and in their place a reason where a control
/// can't do what it says. Owned by the window it serves.
class ToolTipBinder final : public QObject
{
    Q_OBJECT

public:
    /// The preferences must outlive it.
    ToolTipBinder(KXPreferences &preferences, QObject *parent);

    /// The text of that property ("ttConvertButton") belongs to the control.
    void bind(QWidget *control, const char *property);
    /// Shown instead while it is not empty; a control that is off says why even when tips are hidden.
    void setReason(QWidget *control, const QString &reason);

private:
    struct Bound
    {
        QPointer<QWidget> control;
        QByteArray property;
        QString reason;
    };

    void update(const Bound &bound) const;
    void updateAll() const;
    Bound &boundOf(QWidget *control);

    KXPreferences &m_preferences;
    QList<Bound> m_bound;
};

} // namespace window

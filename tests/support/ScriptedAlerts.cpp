#include "support/ScriptedAlerts.h"

namespace support {

void ScriptedAlerts::show(const platform::AlertPointer &alert, Answered answered)
{
    m_shown.append(alert);
    if (m_script.isEmpty()) {
        m_open.append({alert, std::move(answered)});
        return;
    }
    const int returnCode = m_script.takeFirst();
    if (answered)
        answered(returnCode);
}

void ScriptedAlerts::close(const platform::AlertPointer &alert)
{
    m_closed.append(alert);
    m_open.removeIf([&](const auto &open) { return open.first == alert; });
}

bool ScriptedAlerts::answer(int returnCode)
{
    if (m_open.isEmpty())
        return false;
    const auto answered = m_open.takeFirst().second;
    if (answered)
        answered(returnCode);
    return true;
}

QStringList ScriptedAlerts::messages() const
{
    QStringList messages;
    for (const platform::AlertPointer &alert : m_shown)
        messages.append(alert->message);
    return messages;
}

} // namespace support

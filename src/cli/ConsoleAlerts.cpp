#include "cli/ConsoleAlerts.h"

#include "cli/Console.h"

namespace cli {

ConsoleAlerts::ConsoleAlerts(Console &console)
    : m_console(console)
{
}

void ConsoleAlerts::show(const platform::AlertPointer &alert, Answered answered)
{
    m_console.say(alert->message + u' ' + alert->informativeText);
    if (answered)
        answered(platform::firstButtonReturn + static_cast<int>(alert->buttons.size()) - 1);
}

void ConsoleAlerts::close(const platform::AlertPointer &) {}

} // namespace cli

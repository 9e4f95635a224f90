#pragma once

#include "platform/AlertPresenter.h"

namespace cli {

class Console;

/// Alerts as sentences on standard error. There is no user to ask: a question is answered with its
/// last button, which changes nothing.
class ConsoleAlerts final : public platform::AlertPresenter
{
public:
    explicit ConsoleAlerts(Console &console);
    void show(const platform::AlertPointer &alert, Answered answered) override;
    void close(const platform::AlertPointer &alert) override;

private:
    Console &m_console;
};

} // namespace cli

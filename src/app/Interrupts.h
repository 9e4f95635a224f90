#pragma once

#include "tools/ShellRunner.h"

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace app {

/// Turns the first interrupt, terminate or hang-up signal into a Qt signal; the second one ends the program
/// at once. A program that is busy with something that hears of no signal ends within a second all the same.
/// One per program.
class Interrupts final : public QObject
{
    Q_OBJECT

public:
    Interrupts();
    ~Interrupts() override;

    /// 0 until a signal came, then its number.
    int signalNumber() const;
    /// As if a signal of that number had come; for what must end the work like one.
    void interruptAs(int number);
    /// Set at the moment a signal comes: ends the waits that were given it, also those on the main thread.
    const tools::StopFlag &flag() const { return m_flag; }

Q_SIGNALS:
    void interrupted();

private:
    void wake();

    std::unique_ptr<QSocketNotifier> m_notifier;
    tools::StopFlag m_flag;
};

} // namespace app

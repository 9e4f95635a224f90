#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

enum class AlertStyle { Plain, Informational, Warning };

/// What an alert says. Identity matters: closing an alert takes the object that was shown.
struct Alert
{
    QString message;
    QString informativeText;
    AlertStyle style = AlertStyle::Plain;
    QStringList buttons = {QStringLiteral("OK")};
    /// After this time the alert closes itself; 0 means that it stays until it is answered.
    std::chrono::milliseconds closesAfter{0};
    /// The one thing that can be done about it, its title and what does it; empty where there is nothing. A
    /// presenter without buttons leaves it out.
    QString action;
    std::function<void()> act;
};

using AlertPointer = std::shared_ptr<const Alert>;

/// Answers are counted from the first button: 1000, 1001, ...
inline constexpr int firstButtonReturn = 1000;
inline constexpr int secondButtonReturn = 1001;

/// Shows alerts and questions: as sheets, on standard error, or with answers from a script. Owned by the
/// program; an answer comes later, it is not waited for.
class AlertPresenter
{
public:
    using Answered = std::function<void(int returnCode)>;

    virtual ~AlertPresenter() = default;
    /// Shows the alert; answered (may be empty) is called once, when a button was pressed.
    virtual void show(const AlertPointer &alert, Answered answered) = 0;
    /// Closes the alert if it is still shown; it is then not answered.
    virtual void close(const AlertPointer &alert) = 0;
};

} // namespace platform

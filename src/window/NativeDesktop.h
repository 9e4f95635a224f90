#pragma once

#include "platform/Desktop.h"

#include <memory>

namespace window {

/// The services of the desktop the window is on: it keeps the machine awake and shows notifications where
/// the desktop can, and is silent where it can't. Asks without waiting.
class NativeDesktop final : public platform::Desktop
{
public:
    NativeDesktop();
    ~NativeDesktop() override;

    void keepAwake(const QString &reason) override;
    void allowSleep() override;
    void sleep() override;
    void tell(const QString &title, const QString &text) override;

private:
    struct Hold;
    std::unique_ptr<Hold> m_hold;
};

} // namespace window

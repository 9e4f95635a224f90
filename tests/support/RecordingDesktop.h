#pragma once

#include "platform/Desktop.h"

#include <QStringList>

namespace support {

/// A desktop that does nothing but remember what it was asked.
class RecordingDesktop final : public platform::Desktop
{
public:
    void keepAwake(const QString &reason) override
    {
        awake = true;
        reasons.append(reason);
    }
    void allowSleep() override { awake = false; }
    void tell(const QString &title, const QString &text) override
    {
        told.append(title + QStringLiteral(": ") + text);
    }

    void sleep() override { ++slept; }

    bool awake = false;
    int slept = 0;
    QStringList reasons;
    /// "TITLE: TEXT"
    QStringList told;
};

} // namespace support

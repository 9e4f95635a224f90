#pragma once

#include "tools/KXHelpers.h"
#include "tools/OptionItem.h"

namespace support {

/// Keeps what is logged.
class ListeningHelpers final : public KXHelpers
{
public:
    using KXHelpers::KXHelpers;
    void logString(const QString &text) const override { strings.append(text); }
    void logObjectWithString(const QVariant &object, const QString &label) const override
    {
        lines.append(label + object.toString());
    }

    mutable QStringList strings;
    mutable QStringList lines;
};

/// The arguments by which a FakeTool plays these commands, each one word of data.
inline tools::OptionList playing(const QStringList &commands)
{
    tools::OptionList options{u"--do"};
    for (const QString &command : commands)
        options.append(tools::OptionItem::ofData(command, tools::Quoting::Single));
    return options;
}

} // namespace support

#pragma once

#include "tools/OptionItem.h"

namespace tools {

class ToolPlaces;

/// A shell line twice: as the rules write it, and as it runs. They differ only where a text from a
/// file could be read as syntax, and where /bin/sh does not know "&>".
struct ShellLine
{
    QString meant;
    QString launched;
};

/// Whether the shell sends both streams to a file at "&>".
enum class ShellKind { KnowsAmpersandRedirect, PlainBourne };

/// The line for a tool: the environment exports of its family, its quoted path, and the options.
ShellLine toolLine(const QUrl &tool, const OptionList &options, const ToolPlaces &places, ShellKind kind);
/// The line for a command: the command text, then the options.
ShellLine commandLine(Literal command, const OptionList &options, ShellKind kind);

} // namespace tools

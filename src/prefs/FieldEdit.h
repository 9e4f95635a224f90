#pragma once

#include <QString>

namespace prefs {

/// What a text is typed into. Each validator guards some kinds and lets the others alone.
enum class FieldKind { TextField, ComboBox, Other };

/// Where the selection of a field stands; a caret is a range without length.
struct TextRange
{
    qsizetype location = 0;
    qsizetype length = 0;

    bool operator==(const TextRange &) const = default;
};

/// What a field shows after a change: its text, its caret, and whether the user hears that it was refused.
struct FieldEdit
{
    QString text;
    qsizetype caret = 0;
    bool beep = false;

    bool operator==(const FieldEdit &) const = default;
};

} // namespace prefs

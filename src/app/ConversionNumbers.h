#pragma once

#include <QString>

namespace app {

class Program;

/// What another tab resets: the settings preset, and the numbers that are the source's again. A plain value.
struct ConversionNumbers
{
    int settingsPreset = 0;
    QString bitRate;
    QString width;

    bool operator==(const ConversionNumbers &) const = default;
};

ConversionNumbers conversionNumbers(Program &program);
/// Sets them again; a preset is applied.
void takeConversionNumbers(Program &program, const ConversionNumbers &numbers);
/// "the settings preset “Living room”, the bit rate 900 and the width 640": what of these is no longer so.
QString resetText(Program &program, const ConversionNumbers &before);

} // namespace app

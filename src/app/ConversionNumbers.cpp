#include "app/ConversionNumbers.h"

#include "app/Program.h"

using namespace Qt::StringLiterals;

namespace app {

ConversionNumbers conversionNumbers(Program &program)
{
    const KXSelectionController &controller = program.selectionController();
    return {program.presets().settingMethodIndex(), controller.enteredUserVideoBitRate(),
            controller.enteredUserWidth()};
}

void takeConversionNumbers(Program &program, const ConversionNumbers &numbers)
{
    program.presets().setSettingMethodIndex(numbers.settingsPreset);
    KXSelectionController &controller = program.selectionController();
    controller.setEnteredUserVideoBitRate(numbers.bitRate);
    controller.setEnteredUserWidth(numbers.width);
    controller.updateTabs();
}

QString resetText(Program &program, const ConversionNumbers &before)
{
    const ConversionNumbers now = conversionNumbers(program);
    QStringList parts;
    if (before.settingsPreset != now.settingsPreset)
        parts.append(u"the settings preset “%1”"_s.arg(
            program.presets().presetSettingsNamesList().value(before.settingsPreset)));
    const bool isOpen = !program.selectionController().currentVideoFile()->trackList().isEmpty();
    if (isOpen && before.bitRate != now.bitRate)
        parts.append(u"the bit rate %1"_s.arg(before.bitRate));
    if (isOpen && before.width != now.width)
        parts.append(u"the width %1"_s.arg(before.width));
    if (parts.isEmpty())
        return {};
    const QString last = parts.takeLast();
    return parts.isEmpty() ? last : parts.join(u", "_s) + u" and "_s + last;
}

} // namespace app

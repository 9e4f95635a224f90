#pragma once

/// What the rules of the main window ask of the presets: to leave a preset when the user decides by hand,
/// and to fill in the conversion settings again. Implemented by the presets' controller; index 0 is
/// "Manual".
class PresetDriver
{
public:
    virtual ~PresetDriver() = default;
    virtual void setSelectionMethodIndex(int index) = 0;
    virtual int settingMethodIndex() const = 0;
    virtual void setSettingMethodIndex(int index) = 0;
    /// True while a settings preset that was just chosen fills in its settings.
    virtual bool changingPresetSetting() const = 0;
    virtual void applyCurrentPresetSettings() = 0;
};

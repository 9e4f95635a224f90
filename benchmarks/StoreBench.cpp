#include "Bench.h"

#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "presets/KXPresetsController.h"
#include "selection/KXSelectionController.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int storeRounds = 5;

/// The presets as the program has them, with a store of their own.
struct PresetStore
{
    PresetStore()
        : store(folder.filePath(u"defaults.json"_s))
        , preferences(store, {})
        , file(std::make_shared<KXVideoFile>(nullptr))
        , controller(center, file, std::make_shared<KXSelection>())
        , presets(preferences, file, controller)
    {
        preferences.loadPreferencesFromDefaults();
        presets.initialize();
    }

    /// One preset after the other, each stored when it is made.
    void fill(int count)
    {
        for (int number = 1; number <= count; ++number) {
            presets.addPresetSelection();
            presets.renamePresetSelection(static_cast<int>(presets.presetSelectionsList().size()) - 2,
                                          u"Preset %1"_s.arg(number));
            if (const QString problem = presets.savePresetSelectionsListToUserDefaults(); !problem.isNull())
                qFatal("%s", qPrintable(problem));
        }
    }

    QTemporaryDir folder;
    platform::JsonDefaultsStore store;
    KXPreferences preferences;
    KXNotificationCenter center;
    VideoFilePointer file;
    KXSelectionController controller;
    KXPresetsController presets;
};

double medianSecondsFor(int count)
{
    QList<double> times;
    for (int round = 0; round < storeRounds; ++round) {
        PresetStore presets;
        times.append(seconds([&] { presets.fill(count); }));
    }
    return median(times);
}

} // namespace

int store()
{
    const double hundred = medianSecondsFor(100);
    const double many = medianSecondsFor(400);
    say(u"presets made and stored one after the other: 100 in %1 s, 400 in %2 s, %3 times as long"_s
            .arg(hundred, 0, 'f', 3)
            .arg(many, 0, 'f', 3)
            .arg(many / hundred, 0, 'f', 1));
    return 0;
}

} // namespace bench

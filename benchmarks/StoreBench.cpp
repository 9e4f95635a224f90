#include "Bench.h"

#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "presets/KXPresetsController.h"
#include "selection/KXSelectionController.h"

#include <QTemporaryDir>

#include <ctime>

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

    void make(int number)
    {
        presets.addPresetSelection();
        presets.renamePresetSelection(static_cast<int>(presets.presetSelectionsList().size()) - 2,
                                      u"Preset %1"_s.arg(number));
    }
    void save()
    {
        if (const QString problem = presets.savePresetSelectionsListToUserDefaults(); !problem.isNull())
            qFatal("%s", qPrintable(problem));
    }
    /// One preset after the other, each stored when it is made.
    void fill(int count)
    {
        for (int number = 1; number <= count; ++number) {
            make(number);
            save();
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

/// By the clock, and of the processor alone: a disk that others keep busy tells little.
struct Cost
{
    double clock = 0;
    double processor = 0;
};

Cost costOf(int count)
{
    QList<double> clock;
    QList<double> processor;
    for (int round = 0; round < storeRounds; ++round) {
        PresetStore presets;
        const std::clock_t before = std::clock();
        clock.append(seconds([&] { presets.fill(count); }));
        processor.append(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC);
    }
    return {median(clock), median(processor)};
}

/// All of them made, and stored by one save.
Cost costAtOnce(int count)
{
    QList<double> clock;
    QList<double> processor;
    for (int round = 0; round < storeRounds; ++round) {
        PresetStore presets;
        for (int number = 1; number <= count; ++number)
            presets.make(number);
        const std::clock_t before = std::clock();
        clock.append(seconds([&] { presets.save(); }));
        processor.append(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC);
    }
    return {median(clock), median(processor)};
}

void tellAtOnce()
{
    const Cost hundred = costAtOnce(100);
    const Cost many = costAtOnce(400);
    say(u"presets stored by one save: 100 in %1 ms (%2 ms of the processor), 400 in %3 ms (%4 ms), %5 times "
        u"as long "
        "(%6)"_s.arg(hundred.clock * 1000, 0, 'f', 1)
            .arg(hundred.processor * 1000, 0, 'f', 1)
            .arg(many.clock * 1000, 0, 'f', 1)
            .arg(many.processor * 1000, 0, 'f', 1)
            .arg(many.clock / hundred.clock, 0, 'f', 1)
            .arg(many.processor / hundred.processor, 0, 'f', 1));
}

} // namespace

int store()
{
    tellAtOnce();
    const Cost hundred = costOf(100);
    const Cost many = costOf(400);
    say(u"presets made and stored one after the other: 100 in %1 s (%2 s of the processor), 400 in %3 s (%4 "
        u"s), "
        "%5 times as long (%6)"_s.arg(hundred.clock, 0, 'f', 3)
            .arg(hundred.processor, 0, 'f', 3)
            .arg(many.clock, 0, 'f', 3)
            .arg(many.processor, 0, 'f', 3)
            .arg(many.clock / hundred.clock, 0, 'f', 1)
            .arg(many.processor / hundred.processor, 0, 'f', 1));
    return 0;
}

} // namespace bench

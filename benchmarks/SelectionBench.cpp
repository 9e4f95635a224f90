#include "Bench.h"

#include "platform/DefaultsStore.h"
#include "prefs/KXPreferences.h"
#include "presets/KXPresetsController.h"
#include "presets/TrackFilters.h"
#include "selection/KXSelectionController.h"

#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int rounds = 201;

TrackPointer track(const QString &type, int number)
{
    auto made = std::make_shared<KXVideoTrack>();
    made->setTrackType(type);
    made->setTrackFfmpegID(QString::number(number));
    made->setTrackLanguage(number % 3 == 0 ? u"English"_s : u"German"_s);
    made->setTrackCodec(type == u"Audio"_s ? u"ac3"_s : u"srt"_s);
    made->setTrackNumberOfChannels(number % 2 == 0 ? u"6"_s : u"2"_s);
    made->setTrackSelected(number % 2 == 0);
    made->setUserAudioSettingsDictionaryArray(
        {{{u"userCodec"_s, u"passthru"_s}, {u"userBitRate"_s, u"0"_s}, {u"userNumberOfChannels"_s, u"2"_s}}});
    return made;
}

/// The controllers as the program has them, with an open file of so many tracks.
struct Desk
{
    explicit Desk(int trackCount)
        : store(QDir::temp().filePath(u"tessaray-bench-defaults.json"_s)) // never written
        , preferences(store, {})
        , file(std::make_shared<KXVideoFile>(nullptr))
        , selection(std::make_shared<KXSelection>())
        , controller(center, file, selection)
        , presets(preferences, file, controller)
    {
        TrackList tracks{track(u"Video"_s, 0)};
        for (int number = 1; number < trackCount; ++number)
            tracks.append(track(number % 4 == 0 ? u"Subtitle"_s : u"Audio"_s, number));
        file->setTrackList(tracks);
        file->setTheNumberOfAudioTracks(
            QString::number(std::count_if(tracks.begin(), tracks.end(), [](const TrackPointer &one) {
                return one->trackType() == u"Audio"_s;
            })));
        file->setTheFileName(u"film.mkv"_s);
        file->setTheFileExtension(u"mkv"_s);
        selection->initialize();
        controller.initialize();
        controller.setPresetsController(&presets);
        controller.setCurrentTab(u"MKV"_s);
        addPresets();
        controller.takeLoadedFile();
    }

    void addPresets()
    {
        presets.initialize();
        presets.addPresetSelection();
        presets.addPresetSettings();
        QVariantList filters;
        for (const QString &language : {u"English"_s, u"German"_s, u"French"_s})
            filters.append(
                presets::makeFilter(presets::FilterKind::Audio, u"Tracks w/ Properties ..."_s, language));
        presets.presetSelectionsList().constLast()->setPAudioFilterArray(filters);
        const PresetSettingsPointer settings = presets.presetSettingsList().constLast();
        settings->setPSurroundActionIndex(3);
        settings->setPAudioAddStereo(true);
        settings->setPKeepSurroundTrack(true);
        presets.setSettingMethodIndex(static_cast<int>(presets.presetSettingsList().size()) - 1);
    }

    platform::JsonDefaultsStore store;
    KXPreferences preferences;
    KXNotificationCenter center;
    VideoFilePointer file;
    SelectionPointer selection;
    KXSelectionController controller;
    KXPresetsController presets;
};

double medianMilliseconds(const std::function<void()> &work)
{
    QList<double> times;
    for (int round = 0; round < rounds; ++round)
        times.append(seconds(work) * 1000);
    return median(times);
}

void measure(int trackCount)
{
    Desk desk(trackCount);
    const TrackPointer last = desk.file->trackList().constLast();
    const double tick = medianMilliseconds([&] {
        last->setTrackSelected(!last->trackSelected());
        desk.controller.trackTableSelectionChanged(KXSelectionController::Sender::TrackTable);
    });
    const double all = medianMilliseconds([&] { desk.controller.toggleAllAudio(); });
    const int preset = static_cast<int>(desk.presets.presetSelectionsList().size()) - 1;
    const double applied = medianMilliseconds([&] { desk.presets.setSelectionMethodIndex(preset); });
    const double control = medianMilliseconds([&] { desk.controller.updateTabs(); });
    say(u"selection, %1 tracks: one tick %2 ms, all audio %3 ms, presets applied %4 ms, a control %5 ms"_s
            .arg(trackCount)
            .arg(tick, 0, 'f', 3)
            .arg(all, 0, 'f', 3)
            .arg(applied, 0, 'f', 3)
            .arg(control, 0, 'f', 3));
}

} // namespace

int selection()
{
    for (const int trackCount : {50, 100, 200, 400, 800})
        measure(trackCount);
    return 0;
}

} // namespace bench

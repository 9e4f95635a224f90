#include "presets/KXPresetSelections.h"

#include "presets/TrackFilters.h"
#include "selection/KXSelectionController.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using presets::FilterKind;
using presets::makeFilter;

namespace {

const QString anyLanguage = u"Any Language"_s;
const QString applyAll = u"Apply All"_s;
const QString byProperties = u"Tracks w/ Properties ..."_s;

/// The filters of built-ins are decided by their choice alone; what is empty in them is meant to be.
QVariantMap bareAudioFilter(const QString &choice, const QString &number)
{
    return {{u"currentTrackChoice"_s, choice},
            {u"currentTrackNumber"_s, number},
            {u"currentLanguage"_s, u""_s},
            {u"currentCodec"_s, u""_s},
            {u"currentChannels"_s, u""_s}};
}

TrackList tracksOfTypes(const TrackList &tracks, const QStringList &types)
{
    TrackList found;
    std::copy_if(tracks.begin(), tracks.end(), std::back_inserter(found),
                 [&](const TrackPointer &track) { return types.contains(track->trackType()); });
    return found;
}

} // namespace

KXPresetSelections::KXPresetSelections(const VideoFilePointer &currentVideoFile,
                                       KXSelectionController &selectionController)
    : m_currentVideoFile(currentVideoFile)
    , m_selectionController(selectionController)
{
}

const QStringList &KXPresetSelections::recordWords()
{
    static const QStringList words = platform::fieldsFor(staticMetaObject, u"stored"_s);
    return words;
}

QVariantMap KXPresetSelections::makeRecord() const
{
    return presets::recordOf(*this, recordWords());
}

void KXPresetSelections::initFromRecord(const QVariantMap &record)
{
    presets::takeRecord(*this, record, recordWords());
    m_otherFields = presets::otherFields(record, recordWords());
    setPSelectedAudioTrack(pSelectedAudioTrack()); // whether it is by language follows from the choice
    setPSelectedSubtitleTrack(pSelectedSubtitleTrack());
    if (record.value(u"pAudioFilterMode"_s).isNull())
        setPAudioFilterMode(applyAll);
    if (record.value(u"pSubtitleFilterMode"_s).isNull())
        setPSubtitleFilterMode(applyAll);
    if (pAudioFilterArray().isEmpty())
        setPAudioFilterArray({legacyAudioFilter()});
    if (pSubtitleFilterArray().isEmpty())
        setPSubtitleFilterArray({legacySubtitleFilter()});
}

QVariantMap KXPresetSelections::legacyAudioFilter() const
{
    if (pSelectedAudioTrack() == u"All Tracks"_s)
        return makeFilter(FilterKind::Audio, u"All"_s, anyLanguage);
    if (pSelectedAudioTrack() == u"By Language"_s)
        return makeFilter(FilterKind::Audio, byProperties, pSelectedAudioLanguage());
    return presets::defaultFilter(FilterKind::Audio);
}

/// By language it takes the audio's language, on purpose.
QVariantMap KXPresetSelections::legacySubtitleFilter() const
{
    if (pSelectedSubtitleTrack() == u"First Track"_s)
        return presets::defaultFilter(FilterKind::Subtitle);
    if (pSelectedSubtitleTrack() == u"All Tracks"_s)
        return makeFilter(FilterKind::Subtitle, u"All"_s, anyLanguage);
    if (pSelectedSubtitleTrack() == u"By Language"_s)
        return makeFilter(FilterKind::Subtitle, byProperties, pSelectedAudioLanguage());
    return makeFilter(FilterKind::Subtitle, u"None"_s, anyLanguage);
}

void KXPresetSelections::setPSelectedAudioTrack(const QString &choice)
{
    m_pSelectedAudioTrack = choice;
    m_pAudioIsByLanguage = choice == u"By Language"_s;
}

void KXPresetSelections::setPSelectedSubtitleTrack(const QString &choice)
{
    m_pSelectedSubtitleTrack = choice;
    m_pSubtitleIsByLanguage = choice == u"By Language"_s;
}

void KXPresetSelections::setLegacyChoices(const QString &video, const QString &audio, const QString &subtitle)
{
    setPSelectedVideoTrack(video);
    setPSelectedAudioTrack(audio);
    setPSelectedSubtitleTrack(subtitle);
    setPSelectedAudioLanguage(u"English"_s);
    setPSelectedSubtitleLanguage(u"English"_s);
    setUseFirstIfNoAudioLanguageMatch(true);
    setUseFirstIfNoSubtitleLanguageMatch(true);
}

void KXPresetSelections::initializeAsByID()
{
    setPName(u"Manual"_s);
    setLegacyChoices(u"0"_s, u"0"_s, u"0"_s);
    setIsEditable(false);
    setPAudioFilterArray({bareAudioFilter(u"None"_s, u"1"_s)});
    QVariantMap none = makeFilter(FilterKind::Subtitle, u"None"_s, anyLanguage);
    none.insert(u"currentChannels"_s, u"Any Type"_s); // meaningless for subtitles, and meant
    setPSubtitleFilterArray({none});
}

void KXPresetSelections::initializeAsFirst()
{
    setPName(u"First Track"_s);
    setLegacyChoices(u"First Track"_s, u"First Track"_s, u"First Track"_s);
    setIsEditable(false);
    setPAudioFilterArray({bareAudioFilter(u"Audio Track Number"_s, u"1"_s)});
    setPSubtitleFilterArray({presets::defaultFilter(FilterKind::Subtitle)});
}

void KXPresetSelections::initializeAsAll()
{
    setPName(u"All Tracks"_s);
    setLegacyChoices(u"First Track"_s, u"All Tracks"_s, u"All Tracks"_s);
    setIsEditable(false);
    setPAudioFilterArray({bareAudioFilter(u"All"_s, u""_s)});
    setPSubtitleFilterArray({makeFilter(FilterKind::Subtitle, u"All"_s, anyLanguage)});
}

void KXPresetSelections::initializeAsNewUserPreset()
{
    setPName(u"User Preset"_s);
    setLegacyChoices(u"First Track"_s, u"First Track"_s, u"None"_s);
    setIsEditable(true);
    setPAudioFilterMode(applyAll);
    setPAudioFilterArray({presets::defaultFilter(FilterKind::Audio)});
    setPSubtitleFilterMode(applyAll);
    setPSubtitleFilterArray({makeFilter(FilterKind::Subtitle, u"None"_s, anyLanguage)});
}

void KXPresetSelections::addDictionaryToAudioFilterArray()
{
    setPAudioFilterArray(pAudioFilterArray() << presets::defaultFilter(FilterKind::Audio));
}

void KXPresetSelections::addDictionaryToSubtitleFilterArray()
{
    setPSubtitleFilterArray(pSubtitleFilterArray() << presets::defaultFilter(FilterKind::Subtitle));
}

// How a rule ticks tracks.

void KXPresetSelections::makeSelections()
{
    if (pName() == u"Manual"_s || m_currentVideoFile->theFileName() == u"none"_s)
        return;
    tick(m_currentVideoFile->trackList());
    m_selectionController.trackTableSelectionChanged(KXSelectionController::Sender::MakeSelections);
}

void KXPresetSelections::tick(const TrackList &tracks) const
{
    for (const TrackPointer &track : tracks)
        track->setTrackSelected(false);
    if (pSelectedVideoTrack() == u"First Track"_s && !tracks.isEmpty() &&
        tracks.constFirst()->trackType() == u"Video"_s)
        tracks.constFirst()->setTrackSelected(true);
    presets::applyFilters(FilterKind::Audio, pAudioFilterArray(), pAudioFilterMode(),
                          tracksOfTypes(tracks, {u"Audio"_s}));
    presets::applyFilters(FilterKind::Subtitle, pSubtitleFilterArray(), pSubtitleFilterMode(),
                          tracksOfTypes(tracks, {u"Subtitle"_s, u"External Subtitle"_s}));
}

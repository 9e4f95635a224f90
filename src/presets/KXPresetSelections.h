#pragma once

#include "media/KXVideoFile.h"
#include "platform/Fields.h"
#include "presets/PresetRecord.h"

#include <memory>

class KXPresetSelections;
class KXSelectionController;

using PresetSelectionsPointer = std::shared_ptr<KXPresetSelections>;

/// A named rule that ticks tracks of the current file. Owned by the presets' controller; user presets are
/// stored as records. It keeps nothing of a run: each one starts by unticking everything.
class KXPresetSelections final : public QObject
{
    Q_OBJECT
    KX_FIELD_FOR("stored", QString, pName, setPName, QStringLiteral(""))
    /// "First Track" takes the file's first track if it is video; anything else takes none.
    KX_FIELD_FOR("stored", QString, pSelectedVideoTrack, setPSelectedVideoTrack,
                 QStringLiteral("First Track"))
    /// The older way to choose, one rule a kind; a record without filters gets one made from it.
    KX_RULED_FIELD_FOR("stored", QString, pSelectedAudioTrack, setPSelectedAudioTrack,
                       QStringLiteral("First Track"))
    KX_FIELD_FOR("stored", bool, pAudioIsByLanguage, setPAudioIsByLanguage, false)
    KX_FIELD_FOR("stored", QString, pSelectedAudioLanguage, setPSelectedAudioLanguage,
                 QStringLiteral("English"))
    KX_RULED_FIELD_FOR("stored", QString, pSelectedSubtitleTrack, setPSelectedSubtitleTrack,
                       QStringLiteral("First Track"))
    KX_FIELD_FOR("stored", bool, pSubtitleIsByLanguage, setPSubtitleIsByLanguage, false)
    KX_FIELD_FOR("stored", QString, pSelectedSubtitleLanguage, setPSelectedSubtitleLanguage,
                 QStringLiteral("English"))
    /// These two are kept in records; no rule reads them.
    KX_FIELD_FOR("stored", bool, useFirstIfNoAudioLanguageMatch, setUseFirstIfNoAudioLanguageMatch, true)
    KX_FIELD_FOR("stored", bool, useFirstIfNoSubtitleLanguageMatch, setUseFirstIfNoSubtitleLanguageMatch,
                 true)
    /// User presets only; the others are never stored.
    KX_FIELD_FOR("stored", bool, isEditable, setIsEditable, false)
    /// "Apply All" or "Prioritized".
    KX_FIELD_FOR("stored", QString, pAudioFilterMode, setPAudioFilterMode, QStringLiteral(""))
    KX_FIELD_FOR("stored", QVariantList, pAudioFilterArray, setPAudioFilterArray, {})
    KX_FIELD_FOR("stored", QString, pSubtitleFilterMode, setPSubtitleFilterMode, QStringLiteral(""))
    KX_FIELD_FOR("stored", QVariantList, pSubtitleFilterArray, setPSubtitleFilterArray, {})

public:
    /// The current file, whose contents change; the controller must outlive the preset.
    KXPresetSelections(const VideoFilePointer &currentVideoFile, KXSelectionController &selectionController);

    /// The words of a record.
    static const QStringList &recordWords();
    QVariantMap makeRecord() const;
    /// The same with what a newer version has stored beside it.
    QVariantMap recordToStore() const { return presets::withOthers(makeRecord(), m_otherFields); }
    void initFromRecord(const QVariantMap &record);

    // Each for an object that was just made.
    void initializeAsByID();
    void initializeAsFirst();
    void initializeAsAll();
    void initializeAsNewUserPreset();

    void addDictionaryToAudioFilterArray();
    void addDictionaryToSubtitleFilterArray();

    /// Ticks what the rules choose and has the selection made anew. "Manual", or no file, changes nothing.
    void makeSelections();
    /// Ticks what the rules choose among the tracks of a film, and nothing else of them.
    void tick(const TrackList &tracks) const;

private:
    void setLegacyChoices(const QString &video, const QString &audio, const QString &subtitle);
    QVariantMap legacyAudioFilter() const;
    QVariantMap legacySubtitleFilter() const;

    QVariantMap m_otherFields; ///< of its record, of words that are not ours
    VideoFilePointer m_currentVideoFile;
    KXSelectionController &m_selectionController;
};

#include "selection/KXSelection.h"

#include "media/KXVideoFile.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace {

struct FieldValue
{
    const char *field;
    QVariant value;
};

const QList<FieldValue> &defaultValues()
{
    static const QList<FieldValue> values{
        {"videoTrackFilePath", u"none"_s},
        {"videoTrackFileURL", QUrl::fromLocalFile(u""_s)},
        {"videoTrackFileName", u"none"_s},
        {"videoTrackFileShortName", u"none"_s},
        {"videoTrackFileExtension", u"none"_s},
        {"videoTrackCodec", u"none"_s},
        {"videoTrackFPS", u"0"_s},
        {"videoTrackWidth", u"0"_s},
        {"videoTrackHeight", u"0"_s},
        {"videoTrackBitRate", u"0"_s},
        {"videoTrackPAR", u"0"_s},
        {"videoTrackProfile", u"none"_s},
        {"headerRemovalFlag", false},
        {"jobType", u"none"_s},
        {"jobStepList", QStringList{u""_s}},
        {"jobStatus", u"Queued"_s},
        {"theDevice", u"none"_s},
        {"userVideoBitRate", u"0"_s},
        {"userAudioBitRate", u"0"_s},
        {"userFPS", u"29.97"_s},
        {"userHeight", u"0"_s},
        {"userWidth", u""_s},
        {"userPassNumber", u"0"_s},
        {"userParWidth", u"0"_s},
        {"userParHeight", u"0"_s},
        {"splitType", u"none"_s},
        {"splitSize", u"0"_s},
        {"splitNumber", u"0"_s},
        {"splitStartTimeText", u"00:00:00"_s},
        {"splitEndTimeText", u"00:00:00"_s},
        {"splitStartTimeSeconds", u"0"_s},
        {"splitEndTimeSeconds", u"0"_s},
        {"splitDurationText", u"00:00:00"_s},
        {"splitDurationSeconds", u"0"_s},
    };
    return values;
}

/// What a selection takes from a file: its own field, the file's.
const QList<std::pair<const char *, const char *>> &fileFields()
{
    static const QList<std::pair<const char *, const char *>> pairs{
        {"videoTrackFilePath", "theFilePath"},
        {"videoTrackFileURL", "theFileURL"},
        {"videoTrackFileName", "theFileName"},
        {"videoTrackFileShortName", "theFileShortName"},
        {"videoTrackFileExtension", "theFileExtension"},
        {"videoTrackCodec", "theVideoCodec"},
        {"videoTrackFPS", "theFPS"},
        {"videoTrackWidth", "theWidth"},
        {"videoTrackHeight", "theHeight"},
        {"videoTrackBitRate", "theVideoBitRate"},
        {"videoTrackPAR", "videoPAR"},
        {"videoTrackProfile", "codecProfile"},
        {"headerRemovalFlag", "headerRemovalFlag"},
        {"userVideoBitRate", "theVideoBitRate"},
        {"userFPS", "theFPS"},
        {"userWidth", "theWidth"},
    };
    return pairs;
}

/// The split duration is left out on purpose: a copy keeps its receiver's.
const QStringList &copiedKeys()
{
    static const QStringList keys{u"editFilesURLsList"_s,
                                  u"trackList"_s,
                                  u"keepTracksList"_s,
                                  u"jobStepList"_s,
                                  u"addedAudioTrackList"_s,
                                  u"videoTrackFilePath"_s,
                                  u"videoTrackFileURL"_s,
                                  u"videoTrackFileName"_s,
                                  u"videoTrackFileShortName"_s,
                                  u"videoTrackFileExtension"_s,
                                  u"videoTrackCodec"_s,
                                  u"videoTrackFPS"_s,
                                  u"videoTrackWidth"_s,
                                  u"videoTrackHeight"_s,
                                  u"videoTrackBitRate"_s,
                                  u"videoTrackPAR"_s,
                                  u"videoTrackProfile"_s,
                                  u"headerRemovalFlag"_s,
                                  u"jobType"_s,
                                  u"jobStatus"_s,
                                  u"theDevice"_s,
                                  u"userVideoBitRate"_s,
                                  u"userAudioBitRate"_s,
                                  u"userFPS"_s,
                                  u"userHeight"_s,
                                  u"userWidth"_s,
                                  u"userPassNumber"_s,
                                  u"userParWidth"_s,
                                  u"userParHeight"_s,
                                  u"splitType"_s,
                                  u"splitSize"_s,
                                  u"splitNumber"_s,
                                  u"splitStartTimeText"_s,
                                  u"splitEndTimeText"_s,
                                  u"splitStartTimeSeconds"_s,
                                  u"splitEndTimeSeconds"_s,
                                  u"vidCount"_s,
                                  u"audCount"_s,
                                  u"subCount"_s};
    return keys;
}

const QStringList &loggedKeys()
{
    static const QStringList keys{u"videoTrackFilePath"_s,
                                  u"videoTrackFileName"_s,
                                  u"videoTrackFileShortName"_s,
                                  u"videoTrackFileExtension"_s,
                                  u"videoTrackCodec"_s,
                                  u"videoTrackFPS"_s,
                                  u"videoTrackWidth"_s,
                                  u"videoTrackHeight"_s,
                                  u"videoTrackBitRate"_s,
                                  u"videoTrackPAR"_s,
                                  u"videoTrackProfile"_s,
                                  u"headerRemovalFlag"_s,
                                  u"jobType"_s,
                                  u"theDevice"_s,
                                  u"userVideoBitRate"_s,
                                  u"userAudioBitRate"_s,
                                  u"userFPS"_s,
                                  u"userHeight"_s,
                                  u"userWidth"_s,
                                  u"userPassNumber"_s,
                                  u"splitType"_s,
                                  u"splitSize"_s,
                                  u"splitNumber"_s,
                                  u"splitStartTimeText"_s,
                                  u"splitEndTimeText"_s,
                                  u"splitStartTimeSeconds"_s,
                                  u"splitEndTimeSeconds"_s,
                                  u"splitDurationText"_s,
                                  u"splitDurationSeconds"_s};
    return keys;
}

/// What a stereo copy has in common with its source; its choices are its own.
const QStringList &stereoCopyKeys()
{
    static const QStringList keys{
        u"trackSelected"_s,          u"trackType"_s,         u"trackMp4boxID"_s,
        u"trackMencoderID"_s,        u"trackIndex"_s,        u"trackFfmpegID"_s,
        u"trackLanguage"_s,          u"trackExtension"_s,    u"trackNumberOfChannels"_s,
        u"trackMkvmergeID"_s,        u"trackDefaultFlag"_s,  u"trackForcedFlag"_s,
        u"trackFileURL"_s,           u"trackFilePath"_s,     u"trackFileName"_s,
        u"trackFileExtension"_s,     u"externalTrackFlag"_s, u"wasReEncoded"_s,
        u"selectedAudioTrackIndex"_s};
    return keys;
}

void takeValues(QObject &receiver, const QObject &source, const QStringList &keys)
{
    for (const QString &key : keys)
        receiver.setProperty(key.toLatin1().constData(), source.property(key.toLatin1().constData()));
}

std::shared_ptr<KXVideoTrack> stereoCopyOf(const KXVideoTrack &source)
{
    auto track = std::make_shared<KXVideoTrack>();
    takeValues(*track, source, stereoCopyKeys());
    track->setTrackTitle(u"Added Stereo Track"_s);
    track->setTrackCodec(u"aac"_s);
    track->setUserCodec(u"aac"_s);
    track->setUserNumberOfChannels(u"2"_s);
    track->setUserBitRate(u"160"_s);
    track->setUserAudioSettingsDictionaryArray(
        {{{u"userCodec"_s, track->userCodec()},
          {u"userBitRate"_s, track->userBitRate()},
          {u"userNumberOfChannels"_s, track->userNumberOfChannels()}}});
    track->setIsStereoCopyFlag(true);
    track->setCreateStereoCopyFlag(false);
    return track;
}

/// By position, as the text is trusted to be HH:MM:SS; what is no digit counts as 0.
QString secondsOf(const QString &time)
{
    const auto numberAt = [&](int position) { return tools::leadingInteger(time.mid(position, 2)); };
    return QString::number(numberAt(0) * 3600 + numberAt(3) * 60 + numberAt(6));
}

} // namespace

KXSelection::KXSelection()
{
    setPropertiesKeysList(copiedKeys());
}

void KXSelection::initialize()
{
    setDefaultSelectionProperties();
}

void KXSelection::setDefaultSelectionProperties()
{
    for (const FieldValue &entry : defaultValues())
        setProperty(entry.field, entry.value);
}

void KXSelection::initializeFrom(const KXVideoFile &file)
{
    for (const auto &[own, theirs] : fileFields())
        setProperty(own, file.property(theirs));
    setVidCount(u"0"_s);
    setAudCount(u"0"_s);
    setSubCount(u"0"_s);
    setAddedAudioTrackList({});
}

SelectionPointer KXSelection::copy() const
{
    auto result = std::make_shared<KXSelection>();
    takeValues(*result, *this, copiedKeys());
    takeValues(*result, *this, {u"splitDurationText"_s, u"splitDurationSeconds"_s});
    return result;
}

void KXSelection::makeSelfCopyOfSelection(const KXSelection &other)
{
    takeValues(*this, other, propertiesKeysList());
    setTrackList(other.trackList());
}

void KXSelection::addAnyStereoTracks()
{
    TrackList added;
    for (const auto &track : trackList()) {
        if (track->trackType() == u"Audio"_s && track->createStereoCopyFlag())
            added.append(stereoCopyOf(*track));
    }
    setAddedAudioTrackList(added);
}

void KXSelection::initializeSplitForStartTimeAndEndTime(const QString &start, const QString &end)
{
    setSplitStartTimeText(start.isNull() ? u"00:00:00"_s : start);
    setSplitStartTimeSeconds(secondsOf(splitStartTimeText()));
    setSplitEndTimeText(end.isNull() ? u"00:00:00"_s : end);
    setSplitEndTimeSeconds(secondsOf(splitEndTimeText()));
}

void KXSelection::initializeSplitDurationForTimeText(const QString &duration)
{
    setSplitDurationText(duration);
    setSplitDurationSeconds(secondsOf(duration));
}

void KXSelection::logSelectionProperties() const
{
    logString(u"#############################  NEW SELECTION PROPERTIES  ################################"_s);
    for (const QString &key : loggedKeys())
        logObjectWithString(property(key.toLatin1().constData()), key);
    qint64 number = 0;
    for (const auto &track : trackList()) {
        logIntegerWithString(++number, u"############################# PROPERTIES FOR TRACK"_s);
        track->logTrackProperties();
        track->logMuxingTrackProperties();
    }
}

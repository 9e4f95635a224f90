#include "selection/KXSelection.h"

#include "media/KXVideoFile.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace {

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
    static const QStringList keys = platform::fieldsFor(KXSelection::staticMetaObject, u"copied"_s);
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
    // Its choices are its own.
    takeValues(*track, source, platform::fieldsFor(KXVideoTrack::staticMetaObject, u"stereoCopy"_s));
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
    for (int i = staticMetaObject.propertyOffset(); i < staticMetaObject.propertyCount(); ++i) {
        if (const QMetaProperty property = staticMetaObject.property(i); property.isResettable())
            property.reset(this);
    }
}

void KXSelection::initializeFrom(const KXVideoFile &file)
{
    for (const auto &[own, theirs] : fileFields())
        setProperty(own, file.property(theirs));
    setOutputFolder({});
    setOutputName({});
    setSourceSeconds(file.seconds());
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
    result->setOutputFolder(outputFolder());
    result->setOutputName(outputName());
    result->setSourceSeconds(sourceSeconds());
    return result;
}

void KXSelection::makeSelfCopyOfSelection(const KXSelection &other)
{
    takeValues(*this, other, propertiesKeysList());
    setOutputFolder(other.outputFolder());
    setOutputName(other.outputName());
    setSourceSeconds(other.sourceSeconds());
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
    for (const QString &key : platform::fieldsFor(staticMetaObject, u"printed"_s))
        logObjectWithString(property(key.toLatin1().constData()), key);
    qint64 number = 0;
    for (const auto &track : trackList()) {
        logIntegerWithString(++number, u"############################# PROPERTIES FOR TRACK"_s);
        track->logTrackProperties();
        track->logMuxingTrackProperties();
    }
}

#include "media/KXVideoTrack.h"

#include "tools/Numbers.h"

#include <QMetaProperty>

using namespace Qt::StringLiterals;

namespace {

/// The words of the text form: locations, audio settings and the snapshot stay out.
const QStringList &printedTrackNames()
{
    static const QStringList names{u"trackSelected"_s,
                                   u"trackType"_s,
                                   u"trackMp4boxID"_s,
                                   u"trackFfmpegID"_s,
                                   u"trackInfo"_s,
                                   u"trackTitle"_s,
                                   u"trackMencoderID"_s,
                                   u"trackIndex"_s,
                                   u"selectedAudioTrackIndex"_s,
                                   u"trackLanguage"_s,
                                   u"trackCodec"_s,
                                   u"trackExtension"_s,
                                   u"trackBitRate"_s,
                                   u"trackNumberOfChannels"_s,
                                   u"trackMkvmergeID"_s,
                                   u"trackDefaultFlag"_s,
                                   u"trackForcedFlag"_s,
                                   u"userCodec"_s,
                                   u"userBitRate"_s,
                                   u"userNumberOfChannels"_s,
                                   u"trackFilePath"_s,
                                   u"trackPathToFileFolder"_s,
                                   u"trackFileName"_s,
                                   u"trackFileExtension"_s,
                                   u"isStereoCopyFlag"_s,
                                   u"createStereoCopyFlag"_s,
                                   u"externalTrackFlag"_s,
                                   u"convertSubFlag"_s,
                                   u"wasReEncoded"_s};
    return names;
}

QStringList declaredNames(const QMetaObject &meta)
{
    QStringList names;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        names.append(QString::fromLatin1(meta.property(i).name()));
    return names;
}

std::optional<int> numberIn(const QString &text)
{
    constexpr qint64 most = 1'000'000;
    if (!tools::isAllDigits(text) || tools::leadingInteger(text) > most)
        return std::nullopt;
    return static_cast<int>(tools::leadingInteger(text));
}

} // namespace

const QStringList &KXVideoTrack::fieldNames()
{
    static const QStringList names = declaredNames(staticMetaObject);
    return names;
}

int KXVideoTrack::streamIndex() const
{
    return numberIn(trackFfmpegID()).value_or(0);
}

std::optional<int> KXVideoTrack::mkvmergeNumber() const
{
    return numberIn(trackMkvmergeID());
}

TrackPointer KXVideoTrack::copy() const
{
    auto track = std::make_shared<KXVideoTrack>();
    for (const QString &name : fieldNames())
        track->setProperty(qPrintable(name), property(qPrintable(name)));
    track->setProbedCodecName(probedCodecName());
    track->setHasCompany(hasCompany());
    return track;
}

void KXVideoTrack::initializeForMuxing()
{
    setMuxingTrackType(trackType());
    setMuxingTrackLanguage(trackLanguage());
    setMuxingTrackTitle(trackTitle());
    setMuxingTrackMp4boxID(externalTrackFlag() ? u"one track"_s : trackMp4boxID());
    setMuxingTrackMencoderID(externalTrackFlag() ? u"one track"_s : trackMencoderID());
    if (wasReEncoded())
        setTrackMkvmergeID({}); // it now comes from its converted file, not from the source
    setMuxingTrackCodec(trackCodec());
    setMuxingTrackFileURL(trackFileURL());
    setWasReEncoded(false);
    setMuxingTrackExtension(trackExtension());
    setMuxingTrackFileExtension(trackFileExtension());
}

QString KXVideoTrack::stringFromTrackProperties() const
{
    QString text;
    for (const QString &name : printedTrackNames())
        text += name + u" = "_s + platform::printedField(property(qPrintable(name))) + u'\n';
    return text;
}

void KXVideoTrack::logTrackProperties() const
{
    logFields(printedTrackNames());
}

void KXVideoTrack::logMuxingTrackProperties() const
{
    logFields(printedTrackNames());
    logFields(fieldNames().filter(u"muxing"_s));
    logFields({u"trackMkvmergeID"_s, u"wasReEncoded"_s});
}

void KXVideoTrack::logFields(const QStringList &names) const
{
    for (const QString &name : names)
        logObjectWithString(property(qPrintable(name)), name);
}

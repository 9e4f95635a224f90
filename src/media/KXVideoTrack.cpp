#include "media/KXVideoTrack.h"

#include "tools/Numbers.h"

#include <QMetaProperty>

using namespace Qt::StringLiterals;

namespace {

/// Locations, audio settings and the snapshot stay out of the text form.
const QStringList &printedTrackNames()
{
    static const QStringList names = platform::fieldsFor(KXVideoTrack::staticMetaObject, u"printed"_s);
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
    track->setIsCover(isCover());
    track->setForm(form());
    track->setChoiceReason(choiceReason());
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

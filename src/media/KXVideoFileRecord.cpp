// The half of KXVideoFile that is a record: defaults, copies, text forms and the vocabulary.
#include "media/KXVideoFile.h"

#include "media/CodecVocabulary.h"

#include <QMetaProperty>

using namespace Qt::StringLiterals;
using media::CodecVocabulary;
using media::TrackKind;

namespace {

const QString heading =
    u"################################   Video File Porperties  ######################################"_s;

/// What a reset sets: every writable property but the probe's results.
QStringList resetNames()
{
    QStringList names;
    const QMetaObject &meta = KXVideoFile::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (meta.property(i).isWritable())
            names.append(QString::fromLatin1(meta.property(i).name()));
    }
    names.removeOne(u"ffprobeResultsDictionaryArray"_s);
    return names;
}

const QStringList &printedFileNames()
{
    static const QStringList names{u"theFilePath"_s,
                                   u"theFileName"_s,
                                   u"theFileShortName"_s,
                                   u"theFileExtension"_s,
                                   u"pathToFileFolder"_s,
                                   u"theFPS"_s,
                                   u"videoPAR"_s,
                                   u"theWidth"_s,
                                   u"theHeight"_s,
                                   u"codecProfile"_s,
                                   u"theVideoBitRate"_s,
                                   u"theVideoCodec"_s,
                                   u"headerRemovalFlag"_s,
                                   u"theNumberOfVideoTracks"_s,
                                   u"theNumberOfAudioTracks"_s,
                                   u"theNumberOfSubTracks"_s};
    return names;
}

void copyProperties(const QStringList &names, const KXVideoFile &from, KXVideoFile &to)
{
    for (const QString &name : names)
        to.setProperty(qPrintable(name), from.property(qPrintable(name)));
}

} // namespace

const QStringList &KXVideoFile::propertiesKeysList()
{
    static const QStringList words{u"theFilePath"_s,
                                   u"theFileURL"_s,
                                   u"theFileName"_s,
                                   u"theFileExtension"_s,
                                   u"theFileShortName"_s,
                                   u"pathToFileFolder"_s,
                                   u"theNumberOfVideoTracks"_s,
                                   u"theNumberOfAudioTracks"_s,
                                   u"theNumberOfSubTracks"_s,
                                   u"theDuration"_s,
                                   u"theFPS"_s,
                                   u"videoPAR"_s,
                                   u"theWidth"_s,
                                   u"theHeight"_s,
                                   u"codecProfile"_s,
                                   u"theVideoBitRate"_s,
                                   u"theVideoCodec"_s,
                                   u"headerRemovalFlag"_s};
    return words;
}

void KXVideoFile::setFileDefaultPropertyValues()
{
    const KXVideoFile fresh(nullptr);
    copyProperties(resetNames(), fresh, *this);
}

VideoFilePointer KXVideoFile::copy() const
{
    auto file = std::make_shared<KXVideoFile>(places());
    file->makeSelfCopyOfVideoFile(*this);
    return file;
}

void KXVideoFile::makeSelfCopyOfVideoFile(const KXVideoFile &other)
{
    copyProperties(propertiesKeysList(), other, *this);
    setTrackList(other.trackList());
}

QString KXVideoFile::stringFromFileProperties() const
{
    QString text = u"\n\n\n"_s + heading + u'\n';
    for (const QString &name : printedFileNames())
        text += name + u" = "_s + platform::printedField(property(qPrintable(name))) + u'\n';
    int number = 0;
    for (const TrackPointer &track : trackList()) {
        text +=
            u"\n################################   Track #%1  ######################################\n"_s.arg(
                ++number);
        text += track->stringFromTrackProperties();
    }
    return text;
}

void KXVideoFile::logFileProperties() const
{
    logString(heading);
    for (const QString &name : printedFileNames())
        logObjectWithString(property(qPrintable(name)), name);
    int number = 0;
    for (const TrackPointer &track : trackList()) {
        logIntegerWithString(++number, u"############################# TRACK"_s);
        track->logTrackProperties();
    }
}

CodecGroups KXVideoFile::videoCodecList() const
{
    return CodecVocabulary::of(TrackKind::Video).codecList();
}

QStringList KXVideoFile::videoInfoList() const
{
    return CodecVocabulary::of(TrackKind::Video).infoList();
}

QStringList KXVideoFile::videoExtList() const
{
    return CodecVocabulary::of(TrackKind::Video).extensionList();
}

CodecGroups KXVideoFile::audioCodecList() const
{
    return CodecVocabulary::of(TrackKind::Audio).codecList();
}

QStringList KXVideoFile::audioInfoList() const
{
    return CodecVocabulary::of(TrackKind::Audio).infoList();
}

QStringList KXVideoFile::audioExtList() const
{
    return CodecVocabulary::of(TrackKind::Audio).extensionList();
}

CodecGroups KXVideoFile::subtitleCodecList() const
{
    return CodecVocabulary::of(TrackKind::Subtitle).codecList();
}

QStringList KXVideoFile::subtitleInfoList() const
{
    return CodecVocabulary::of(TrackKind::Subtitle).infoList();
}

QStringList KXVideoFile::subtitleExtList() const
{
    return CodecVocabulary::of(TrackKind::Subtitle).extensionList();
}

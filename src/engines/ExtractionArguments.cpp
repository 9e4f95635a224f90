#include "engines/ExtractionArguments.h"

#include "media/KXVideoTrack.h"

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;

namespace engines {

namespace {

bool isPictureSubtitle(const KXVideoTrack &track)
{
    return track.trackCodec() == u"pgs"_s || track.trackCodec() == u"vobsub"_s;
}

/// The groups of words that say what is copied; a shell line takes each group as one item.
QStringList codecGroups(const KXVideoTrack &track)
{
    if (track.trackType() == u"Video"_s) {
        QStringList groups{u"-vcodec copy"_s};
        if (track.trackCodec() == u"h264"_s)
            groups << u"-bsf:v h264_mp4toannexb"_s; // a raw stream needs start codes
        return groups << u"-an -sn"_s;
    }
    if (track.trackType() == u"Audio"_s)
        return {u"-acodec copy -vn -sn"_s};
    // No track has this type: subtitles get no codec words on purpose, and ffmpeg chooses by the
    // output's extension.
    if (track.trackType() == u"Subittle"_s)
        return {track.trackCodec() == u"ttxt"_s ? u"-vn -an"_s : u"-scodec copy -vn -an"_s};
    return {};
}

} // namespace

QString extractionLabel(const KXVideoTrack &track)
{
    static const QStringList kinds{u"Video"_s, u"Audio"_s, u"Subtitle"_s};
    return kinds.contains(track.trackType()) ? u"Extracting %1 Track"_s.arg(track.trackType())
                                             : u"Extracting"_s;
}

QUrl extractionOutput(const QString &base, const KXVideoTrack &track)
{
    const QString extension = track.trackCodec() == u"ttxt"_s ? u"ass"_s : track.trackExtension();
    return QUrl::fromLocalFile(u"%1.stream"_s.arg(base) + track.trackFfmpegID() + u'.' + extension);
}

QUrl extractionCompanion(const QUrl &output, const KXVideoTrack &track)
{
    const QString path = output.toLocalFile();
    if (!isForMkvextract(track) || track.trackCodec() != u"vobsub"_s || !path.endsWith(u".idx"_s))
        return {};
    return QUrl::fromLocalFile(path.chopped(3) + u"sub"_s);
}

bool isForMkvextract(const KXVideoTrack &track)
{
    return isPictureSubtitle(track) && track.trackFileExtension().toLower() == u"mkv"_s;
}

bool isForMp4box(const KXVideoTrack &track)
{
    const QStringList family{u"mp4"_s, u"m4v"_s, u"mov"_s};
    return isPictureSubtitle(track) && family.contains(track.trackFileExtension().toLower());
}

OptionList mkvextractArguments(const KXVideoTrack &track, const QUrl &output)
{
    return {u"tracks"_s, track.trackFileURL(),
            QString(track.trackMkvmergeID() + u':' + output.toLocalFile())};
}

OptionList ffmpegExtractionArguments(const KXVideoTrack &track, const QUrl &output)
{
    OptionList list{u"-i"_s, track.trackFileURL(), u"-map"_s, QString(u"0:"_s + track.trackFfmpegID())};
    for (const QString &group : codecGroups(track)) {
        for (const QString &word : group.split(u' '))
            list << word;
    }
    return list << u"-y"_s << output;
}

OptionList mkvextractShellItems(const KXVideoTrack &track, const QUrl &output, const QUrl &log)
{
    return {
        u"tracks"_s,
        track.trackFileURL(),
        OptionItem::withData(track.trackMkvmergeID() + u':', output.toLocalFile(), tools::Quoting::Double),
        u"&>"_s,
        log,
        u"& echo $!"_s};
}

OptionList ffmpegExtractionShellItems(const KXVideoTrack &track, const QUrl &output, const QUrl &log)
{
    OptionList list{u"-i"_s, track.trackFileURL(), QString(u"-map 0:"_s + track.trackFfmpegID())};
    for (const QString &group : codecGroups(track))
        list << group;
    return list << u"-y"_s << output << u"&>"_s << log << u"& echo $!"_s;
}

OptionList extractionLaunchForm(const OptionList &meant, const QUrl &output)
{
    if (!output.path().endsWith(u".dtshd"_s))
        return meant;
    OptionList list = meant;
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (!list.at(i).isFile() && list.at(i).text() == u"-y"_s) {
            list.insert(i, u"dts"_s);
            list.insert(i, u"-f"_s);
            break;
        }
    }
    return list;
}

} // namespace engines

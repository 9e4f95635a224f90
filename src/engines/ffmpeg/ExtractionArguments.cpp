#include "engines/ffmpeg/ExtractionArguments.h"

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
OptionList codecGroups(const KXVideoTrack &track)
{
    if (track.trackType() == u"Video"_s) {
        OptionList groups{u"-vcodec copy"};
        if (track.trackCodec() == u"h264"_s)
            groups << u"-bsf:v h264_mp4toannexb"; // a raw stream needs start codes
        return groups << u"-an -sn";
    }
    if (track.trackType() == u"Audio"_s)
        return {u"-acodec copy -vn -sn"};
    // No track has this type: subtitles get no codec words on purpose, and ffmpeg chooses by the
    // output's extension.
    if (track.trackType() == u"Subittle"_s)
        return {track.trackCodec() == u"ttxt"_s ? OptionItem(u"-vn -an")
                                                : OptionItem(u"-scodec copy -vn -an")};
    return {};
}

/// "3:" in front of the output. An unknown number is none.
OptionItem mkvextractTarget(const KXVideoTrack &track, const QUrl &output, tools::Quoting quoting)
{
    const auto number = track.mkvmergeNumber();
    const OptionItem item = number ? OptionItem::ofNumber(*number).with(u":") : OptionItem(u":");
    return item.withData(output.toLocalFile(), quoting);
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
    return QUrl::fromLocalFile(base + u".stream%1."_s.arg(track.streamIndex()) + extension);
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
    return {u"tracks", track.trackFileURL(), mkvextractTarget(track, output, tools::Quoting::None)};
}

OptionList ffmpegExtractionArguments(const KXVideoTrack &track, const QUrl &output)
{
    OptionList list{u"-i", track.trackFileURL(), u"-map", OptionItem(u"0:").with(track.streamIndex())};
    for (const OptionItem &group : codecGroups(track))
        list << group.words();
    return list << u"-y" << output;
}

OptionList mkvextractShellItems(const KXVideoTrack &track, const QUrl &output, const QUrl &log)
{
    return {u"tracks", track.trackFileURL(), mkvextractTarget(track, output, tools::Quoting::Double), u"&>",
            log,       u"& echo $!"};
}

OptionList ffmpegExtractionShellItems(const KXVideoTrack &track, const QUrl &output, const QUrl &log)
{
    OptionList list{u"-i", track.trackFileURL(), OptionItem(u"-map 0:").with(track.streamIndex())};
    list << codecGroups(track);
    return list << u"-y" << output << u"&>" << log << u"& echo $!";
}

OptionList extractionLaunchForm(const OptionList &meant, const QUrl &output)
{
    if (!output.path().endsWith(u".dtshd"_s))
        return meant;
    OptionList list = meant;
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (!list.at(i).isFile() && list.at(i).text() == u"-y"_s) {
            list.insert(i, u"dts");
            list.insert(i, u"-f");
            break;
        }
    }
    return list;
}

} // namespace engines

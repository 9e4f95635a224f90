#include "engines/ffmpeg/FfmpegSingleTrack.h"

#include "engines/ffmpeg/FfmpegArguments.h"
#include "media/KXVideoTrack.h"
#include "selection/KXSelection.h"

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;
using tools::Quoting;

namespace engines {

namespace {

OptionList videoWords(const KXSelection &selection, const KXVideoTrack &track)
{
    OptionList list;
    if (track.userCodec() == u"passthru"_s) {
        list << u"-vcodec copy";
    } else {
        list << u"-vcodec libx264";
        const FilterText scale = scaleFilter(selection);
        if (!scale.isEmpty())
            list << u"-vf" << scale.item(Quoting::Single);
        list << OptionItem(u"-b:v ").withData(selection.userVideoBitRate() + u'k');
    }
    const QString language = KXHelpers::language3CodeFor(track.trackLanguage());
    list << OptionItem(u"-metadata:s:v language=").withData(language);
    return list << OptionItem(u"-metadata:s:v title=").withTitle(track.trackTitle());
}

OptionList audioWords(const KXVideoTrack &track)
{
    OptionList list;
    if (track.userCodec() == u"passthru"_s) {
        list << u"-c:a copy";
    } else {
        if (track.userCodec() == u"aac"_s)
            list << u"-c:a aac -strict experimental";
        else if (track.userCodec() == u"ac3"_s)
            list << u"-c:a ac3";
        list << OptionItem(u"-ab:a:0 ").withData(track.userBitRate() + u'k');
        list << OptionItem(u"-ac:a:0 ").withData(track.userNumberOfChannels()) << u"-ar:a:0 48000";
    }
    const QString language = KXHelpers::language3CodeFor(track.trackLanguage());
    list << u"-metadata:s:a:0" << OptionItem(u"language=").withData(language);
    return list << u"-metadata:s:a:0" << OptionItem(u"title=").withTitle(track.trackTitle());
}

} // namespace

QString singleTrackSuffix(const KXVideoTrack &track)
{
    return track.isStereoCopyFlag() ? u".added"_s : QString();
}

ConversionLists singleTrackLists(const KXSelection &selection, const KXVideoTrack &track, const QUrl &output,
                                 const QUrl &log)
{
    ConversionLists lists;
    lists.first = {u"-i", track.trackFileURL(), u"-map 0:0"};
    if (track.trackType() == u"Video"_s) {
        lists.first += videoWords(selection, track);
        if (selection.userPassNumber() == u"2"_s) {
            lists.second = lists.first;
            lists.first.insert(passPosition, u"-pass 1");
            lists.second.insert(passPosition, u"-pass 2");
            lists.currentPass = 1;
        }
    } else if (track.trackType() == u"Audio"_s) {
        lists.first += audioWords(track);
    }
    const OptionList tail{u"-y", output, u"&>", log, u"& echo $!"};
    lists.first += tail;
    lists.second += tail;
    return lists;
}

} // namespace engines

#include "engines/FfmpegSingleTrack.h"

#include "media/KXVideoTrack.h"
#include "selection/KXSelection.h"

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;
using tools::Quoting;

namespace engines {

namespace {

constexpr qsizetype passPosition = 2;

/// A text of the file on a shell line: unquoted in the list, which is meant, and quoted when it runs.
OptionItem unquoted(const QString &before, const QString &data)
{
    return OptionItem::withData(before, data, Quoting::None);
}

OptionList videoWords(const KXSelection &selection, const KXVideoTrack &track)
{
    OptionList list;
    if (track.userCodec() == u"passthru"_s) {
        list << u"-vcodec copy"_s;
    } else {
        list << u"-vcodec libx264"_s;
        const QString scale = scaleFilter(selection);
        if (!scale.isNull())
            list << u"-vf"_s << OptionItem::withData({}, scale, Quoting::Single);
        list << unquoted(u"-b:v "_s, selection.userVideoBitRate() + u'k');
    }
    list << unquoted(u"-metadata:s:v language="_s, KXHelpers::language3CodeFor(track.trackLanguage()));
    list << unquoted(u"-metadata:s:v title="_s, track.trackTitle());
    return list;
}

OptionList audioWords(const KXVideoTrack &track)
{
    OptionList list;
    if (track.userCodec() == u"passthru"_s) {
        list << u"-c:a copy"_s;
    } else {
        if (track.userCodec() == u"aac"_s)
            list << u"-c:a aac -strict experimental"_s;
        else if (track.userCodec() == u"ac3"_s)
            list << u"-c:a ac3"_s;
        list << unquoted(u"-ab:a:0 "_s, track.userBitRate() + u'k');
        list << unquoted(u"-ac:a:0 "_s, track.userNumberOfChannels()) << u"-ar:a:0 48000"_s;
    }
    list << u"-metadata:s:a:0"_s
         << unquoted(u"language="_s, KXHelpers::language3CodeFor(track.trackLanguage()));
    list << u"-metadata:s:a:0"_s << unquoted(u"title="_s, track.trackTitle());
    return list;
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
    lists.first = {u"-i"_s, track.trackFileURL(), u"-map 0:0"_s};
    if (track.trackType() == u"Video"_s) {
        lists.first += videoWords(selection, track);
        if (selection.userPassNumber() == u"2"_s) {
            lists.second = lists.first;
            lists.first.insert(passPosition, u"-pass 1"_s);
            lists.second.insert(passPosition, u"-pass 2"_s);
            lists.currentPass = 1;
        }
    } else if (track.trackType() == u"Audio"_s) {
        lists.first += audioWords(track);
    }
    const OptionList tail{u"-y"_s, output, u"&>"_s, log, u"& echo $!"_s};
    lists.first += tail;
    lists.second += tail;
    return lists;
}

} // namespace engines

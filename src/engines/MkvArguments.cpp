#include "engines/MkvArguments.h"

#include "engines/FfmpegSubtitles.h"
#include "selection/KXSelection.h"
#include "tools/KXHelpers.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;
using tools::Quoting;

namespace engines {

namespace {

constexpr double kilobytesPerMegabyte = 1000;

/// An absent one means that the track does not come from this file, an odd one that nobody knows it.
bool hasNumber(const KXVideoTrack &track)
{
    return tools::isAllDigits(track.trackMkvmergeID());
}

QString flag(bool on)
{
    return on ? u"1"_s : u"0"_s;
}

OptionList trackItems(const KXVideoTrack &track)
{
    const QString id = track.trackMkvmergeID() + u':';
    return {OptionItem::withData(u"--language "_s + id,
                                 KXHelpers::language3CodeFor(track.muxingTrackLanguage()), Quoting::None),
            OptionItem::withData(u"--track-name "_s + id, track.muxingTrackTitle(), Quoting::Single),
            QString(u"--default-track "_s + id + flag(track.trackDefaultFlag())),
            QString(u"--forced-track "_s + id + flag(track.trackForcedFlag())),
            QString(u"--compression "_s + id + u"none"_s)};
}

/// "-d 0,1", or "-D" when there is none of the types.
QString selectionItem(const TrackList &tracks, const QStringList &types, const QString &some,
                      const QString &none)
{
    QStringList ids;
    for (const TrackPointer &track : tracks) {
        if (types.contains(track->muxingTrackType()))
            ids.append(track->trackMkvmergeID());
    }
    return ids.isEmpty() ? none : some + u' ' + ids.join(u',');
}

OptionList fileItems(const TrackList &tracks, const QString &path)
{
    OptionList list;
    for (const TrackPointer &track : tracks)
        list += trackItems(*track);
    list << selectionItem(tracks, {u"Video"_s}, u"-d"_s, u"-D"_s);
    list << selectionItem(tracks, {u"Audio"_s}, u"-a"_s, u"-A"_s);
    list << selectionItem(tracks, {u"Subtitle"_s, u"External Subtitle"_s}, u"-s"_s, u"-S"_s);
    return list << OptionItem::withData({}, path, Quoting::Single);
}

OptionList inBackground(OptionList list, const QUrl &log)
{
    return list << u"&>"_s << log << u"& echo $!"_s;
}

const QString noCompression = u"-1:none"_s;

} // namespace

OptionList muxShellItems(const TrackList &tracks, const QUrl &output, const QUrl &log)
{
    QStringList paths;
    QHash<QString, TrackList> byPath;
    for (const TrackPointer &track : tracks) {
        const QString path = track->muxingTrackFileURL().toLocalFile();
        if (!paths.contains(path))
            paths.append(path);
        if (hasNumber(*track))
            byPath[path].append(track);
    }
    OptionList list{u"-o"_s, output};
    for (const QString &path : paths)
        list += fileItems(byPath.value(path), path);
    return inBackground(list, log);
}

OptionList joinArguments(const QList<QUrl> &files, const QUrl &output)
{
    OptionList list{u"-o"_s, output};
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (i > 0)
            list << u"+"_s;
        list << files.at(i);
    }
    return list;
}

OptionList joinShellItems(const QList<QUrl> &files, const QUrl &output, const QUrl &log)
{
    OptionList list{u"-o"_s, output};
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (i == 0)
            list << files.at(i);
        else
            list << OptionItem::withData(u"+"_s, files.at(i).toLocalFile(), Quoting::Single);
    }
    return inBackground(list, log);
}

QString splitWord(const KXSelection &selection)
{
    if (selection.splitType() == u"time"_s)
        return u"parts:"_s + selection.splitStartTimeText() + u'-' + selection.splitEndTimeText();
    if (selection.splitType() == u"size"_s) {
        const double kilobytes = selection.splitSize().toDouble() * kilobytesPerMegabyte;
        return QString::number(static_cast<qint64>(kilobytes)) + u'k';
    }
    if (selection.splitType() == u"duration"_s)
        return selection.splitDurationSeconds() + u's';
    return {};
}

OptionList splitArguments(const QString &word, const QUrl &input, const QUrl &output)
{
    return {u"-o"_s, output, u"--split"_s, word, u"--compression"_s, noCompression, input};
}

/// By size there are two blanks, on purpose.
OptionList splitShellItems(const KXSelection &selection, const QUrl &input, const QUrl &output,
                           const QUrl &log)
{
    const QString option = selection.splitType() == u"size"_s ? u"--split  "_s : u"--split "_s;
    return inBackground({u"-o"_s, output, OptionItem::withData(option, splitWord(selection), Quoting::None),
                         QString(u"--compression "_s + noCompression), input},
                        log);
}

OptionList remuxArguments(const QUrl &input, const QUrl &output)
{
    return {u"-o"_s, output, u"--compression"_s, noCompression, input};
}

OptionList remuxShellItems(const QUrl &input, const QUrl &output, const QUrl &log)
{
    return inBackground({u"-o"_s, output, QString(u"--compression "_s + noCompression), input}, log);
}

} // namespace engines

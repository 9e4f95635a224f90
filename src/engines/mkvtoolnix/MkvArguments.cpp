#include "engines/mkvtoolnix/MkvArguments.h"

#include "engines/ffmpeg/FfmpegSubtitles.h"
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

OptionItem withFlag(const OptionItem &item, bool on)
{
    return on ? item.with(u"1") : item.with(u"0");
}

OptionList trackItems(const KXVideoTrack &track, int number)
{
    const auto option = [number](tools::Literal name) { return OptionItem(name).with(number).with(u":"); };
    return {option(u"--language ").withData(KXHelpers::language3CodeFor(track.muxingTrackLanguage())),
            option(u"--track-name ").withTitle(track.muxingTrackTitle(), Quoting::Single),
            withFlag(option(u"--default-track "), track.trackDefaultFlag()),
            withFlag(option(u"--forced-track "), track.trackForcedFlag()),
            option(u"--compression ").with(u"none")};
}

/// Tracks of one file, each with its number in it.
using NumberedTracks = QList<std::pair<TrackPointer, int>>;

/// "-d 0,1", or "-D" when there is none of the types.
OptionItem selectionItem(const NumberedTracks &tracks, const QStringList &types, tools::Literal some,
                         tools::Literal none)
{
    OptionItem item(some);
    bool isEmpty = true;
    for (const auto &[track, number] : tracks) {
        if (!types.contains(track->muxingTrackType()))
            continue;
        item = isEmpty ? item.with(u" ").with(number) : item.with(u",").with(number);
        isEmpty = false;
    }
    return isEmpty ? OptionItem(none) : item;
}

OptionList fileItems(const NumberedTracks &tracks, const QString &path)
{
    OptionList list;
    for (const auto &[track, number] : tracks)
        list += trackItems(*track, number);
    list << selectionItem(tracks, {u"Video"_s}, u"-d", u"-D");
    list << selectionItem(tracks, {u"Audio"_s}, u"-a", u"-A");
    list << selectionItem(tracks, {u"Subtitle"_s, u"External Subtitle"_s}, u"-s", u"-S");
    return list << OptionItem::ofData(path, Quoting::Single);
}

OptionList inBackground(OptionList list, const QUrl &log)
{
    return list << u"&>" << log << u"& echo $!";
}

} // namespace

OptionList muxShellItems(const TrackList &tracks, const QUrl &output, const QUrl &log,
                         const QHash<QString, TrackNumbers> &numbersByPath)
{
    QStringList paths;
    QHash<QString, NumberedTracks> byPath;
    for (const TrackPointer &track : tracks) {
        const QString path = track->muxingTrackFileURL().toLocalFile();
        if (!paths.contains(path))
            paths.append(path);
        // Without a number it does not come from this file, or its track in there is unknown.
        if (const auto number = track->mkvmergeNumber())
            byPath[path].append({track, numbersByPath.value(path).value(*number, *number)});
    }
    OptionList list{u"-o", output};
    for (const QString &path : paths)
        list += fileItems(byPath.value(path), path);
    return inBackground(list, log);
}

OptionList joinArguments(const QList<QUrl> &files, const QUrl &output)
{
    OptionList list{u"-o", output};
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (i > 0)
            list << u"+";
        list << files.at(i);
    }
    return list;
}

OptionList joinShellItems(const QList<QUrl> &files, const QUrl &output, const QUrl &log)
{
    OptionList list{u"-o", output};
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (i == 0)
            list << files.at(i);
        else
            list << OptionItem(u"+").withData(files.at(i).toLocalFile(), Quoting::Single);
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
    return {u"-o", output, u"--split", OptionItem::ofData(word), u"--compression", u"-1:none", input};
}

/// By size there are two blanks, on purpose.
OptionList splitShellItems(const KXSelection &selection, const QUrl &input, const QUrl &output,
                           const QUrl &log)
{
    const OptionItem option =
        selection.splitType() == u"size"_s ? OptionItem(u"--split  ") : OptionItem(u"--split ");
    return inBackground(
        {u"-o", output, option.withData(splitWord(selection)), u"--compression -1:none", input}, log);
}

OptionList remuxArguments(const QUrl &input, const QUrl &output)
{
    return {u"-o", output, u"--compression", u"-1:none", input};
}

OptionList remuxShellItems(const QUrl &input, const QUrl &output, const QUrl &log)
{
    return inBackground({u"-o", output, u"--compression -1:none", input}, log);
}

} // namespace engines

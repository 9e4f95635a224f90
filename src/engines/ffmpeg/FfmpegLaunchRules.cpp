#include "engines/ffmpeg/FfmpegLaunchRules.h"

#include "engines/ffmpeg/FfmpegDevices.h"
#include "engines/ffmpeg/FilterText.h"
#include "tools/Numbers.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;

namespace engines {

bool holdsSubtitle(OutputKind kind, const MappedStream &stream)
{
    static const QStringList texts{u"srt"_s, u"ass"_s, u"ssa"_s, u"sub"_s, u"ttxt"_s};
    if (kind == OutputKind::Mp4)
        return texts.contains(stream.codec);
    return stream.probedCodec != u"dvb_teletext"_s; // Matroska takes every other kind we know
}

} // namespace engines

namespace engines::launchrules {

namespace {

bool isOption(const OptionItem &item, const QString &text)
{
    return !item.isFile() && item.text() == text;
}

qsizetype indexOfOption(const OptionList &list, const QString &text, qsizetype from = 0)
{
    for (qsizetype i = from; i < list.size(); ++i) {
        if (isOption(list.at(i), text))
            return i;
    }
    return -1;
}

qsizetype lastInput(const OptionList &list)
{
    qsizetype last = -1;
    for (qsizetype i = indexOfOption(list, u"-i"_s); i >= 0; i = indexOfOption(list, u"-i"_s, i + 2))
        last = i;
    return last;
}

/// "-codec:a:3" gives 3 for 'a'; nothing for anything else.
std::optional<qint64> streamNumber(const OptionItem &item, QChar kind)
{
    const QString start = u"-codec:"_s + kind + u':';
    if (item.isFile() || !item.text().startsWith(start))
        return std::nullopt;
    return tools::leadingInteger(item.text().mid(start.size()));
}

bool copiesAudio(const OptionList &list)
{
    for (qsizetype i = 0; i + 1 < list.size(); ++i) {
        if (streamNumber(list.at(i), u'a') && isOption(list.at(i + 1), u"copy"_s))
            return true;
    }
    return false;
}

constexpr char16_t evenScale[] = u"scale=trunc(iw/2)*2:trunc(ih/2)*2";
constexpr char16_t evenScaleAtEnd[] = u",scale=trunc(iw/2)*2:trunc(ih/2)*2[outv]";

/// Takes one soft subtitle out: its "-map" up to its last metadata item.
void removeSubtitleAt(OptionList &list, qsizetype map, qint64 number)
{
    qsizetype end = map + 4; // -map X -codec:s:N word
    while (end + 1 < list.size() && isOption(list.at(end), u"-metadata:s:s:%1"_s.arg(number)))
        end += 2;
    list.remove(map, end - map);
}

/// The subtitles that are left are counted from 0 without a gap.
void renumberSubtitles(OptionList &list)
{
    int next = -1;
    for (OptionItem &item : list) {
        if (streamNumber(item, u's'))
            item = OptionItem(u"-codec:s:").with(++next);
        else if (!item.isFile() && item.text().startsWith(u"-metadata:s:s:"_s))
            item = OptionItem(u"-metadata:s:s:").with(next);
    }
}

/// The format chosen by the extension ".m4v" takes AAC and AC-3 only.
bool needsPlainMp4(const OptionList &list, const LaunchFacts &facts)
{
    for (qsizetype i = 0; i + 1 < list.size(); ++i) {
        if (!streamNumber(list.at(i), u'a'))
            continue;
        if (isOption(list.at(i + 1), u"libmp3lame"_s))
            return true;
        if (!isOption(list.at(i + 1), u"copy"_s) || i == 0)
            continue;
        const MappedStream stream = facts.streams.value(list.at(i - 1).text());
        const QString codec = stream.probedCodec.isNull() ? stream.codec : stream.probedCodec;
        if (codec != u"aac"_s && codec != u"ac3"_s)
            return true;
    }
    return false;
}

} // namespace

void splitShellWords(LaunchForm &form, const LaunchFacts &facts)
{
    const qsizetype redirection = indexOfOption(form.list, u"&>"_s);
    if (facts.isShellLine || redirection < 0)
        return;
    OptionList words;
    for (const OptionItem &item : form.list.first(redirection))
        words << item.words();
    form.list = words;
}

void placeStatistics(LaunchForm &form, const LaunchFacts &facts)
{
    const bool hasPass = std::any_of(form.list.begin(), form.list.end(), [](const OptionItem &item) {
        return !item.isFile() && (item.text() == u"-pass"_s || item.text().startsWith(u"-pass "_s));
    });
    const qsizetype tail = indexOfOption(form.list, u"-y"_s);
    if (!hasPass || tail < 0 || indexOfOption(form.list, u"-passlogfile"_s) >= 0)
        return;
    form.list.insert(tail, OptionItem::ofData(facts.passlogfile, tools::Quoting::Single));
    form.list.insert(tail, u"-passlogfile");
}

void movePassBehindInputs(LaunchForm &form, const LaunchFacts &)
{
    const qsizetype pass = indexOfOption(form.list, u"-pass"_s);
    if (pass < 0 || lastInput(form.list) < pass)
        return;
    const OptionItem number = form.list.at(pass + 1);
    form.list.remove(pass, 2);
    const qsizetype behind = lastInput(form.list) + 2;
    form.list.insert(behind, number);
    form.list.insert(behind, u"-pass");
}

void endOverlay(LaunchForm &form, const LaunchFacts &)
{
    const qsizetype graph = indexOfOption(form.list, u"-filter_complex"_s) + 1;
    if (graph < 1 || graph >= form.list.size())
        return;
    form.list[graph] = form.list.at(graph).withReplaced(u"overlay[outv]", u"overlay=eof_action=pass[outv]");
}

void narrowAudioFilter(LaunchForm &form, const LaunchFacts &)
{
    if (!copiesAudio(form.list))
        return;
    const QString rate = u"-ar:a:"_s; // stands in front of the filter of its stream
    for (qsizetype i = 2; i < form.list.size(); ++i) {
        const OptionItem &before = form.list.at(i - 2);
        if (isOption(form.list.at(i), u"-af"_s) && !before.isFile() && before.text().startsWith(rate))
            form.list[i] =
                OptionItem(u"-filter:a:").with(tools::leadingInteger(before.text().mid(rate.size())));
    }
}

void makeSizeEven(LaunchForm &form, const LaunchFacts &facts)
{
    const bool isOdd = facts.sourceWidth % 2 != 0 || facts.sourceHeight % 2 != 0;
    const bool isX264 =
        indexOfOption(form.list, u"libx264"_s) >= 0 || indexOfOption(form.list, u"-vcodec libx264"_s) >= 0;
    if (!isOdd || !isX264)
        return;
    const qsizetype graph = indexOfOption(form.list, u"-filter_complex"_s) + 1;
    const qsizetype filter = indexOfOption(form.list, u"-vf"_s) + 1;
    if (graph > 0) {
        const OptionItem item = form.list.at(graph);
        if (!item.text().contains(u"scale=trunc("_s)) // else the picture is scaled to an even size already
            form.list[graph] = item.withReplaced(u"[outv]", evenScaleAtEnd);
    } else if (filter > 0) {
        const OptionItem item = form.list.at(filter);
        if (!item.argument().contains(u"scale=trunc("_s))
            form.list[filter] = item.withMoreData(u",").withMoreData(evenScale);
    } else {
        const qsizetype behindCodec = facts.isShellLine ? indexOfOption(form.list, u"-vcodec libx264"_s) + 1
                                                        : indexOfOption(form.list, u"libx264"_s) + 1;
        if (behindCodec < 1)
            return;
        form.list.insert(behindCodec, (FilterText() << evenScale).item(tools::Quoting::Single));
        form.list.insert(behindCodec, u"-vf");
    }
}

void leaveOutSubtitles(LaunchForm &form, const LaunchFacts &facts)
{
    bool changed = false;
    for (qsizetype i = 2; i < form.list.size(); ++i) {
        const auto number = streamNumber(form.list.at(i), u's');
        const QString mapped = form.list.at(i - 1).text();
        if (!number || !facts.streams.contains(mapped) || holdsSubtitle(facts.kind, facts.streams[mapped]))
            continue;
        form.warnings << u"The %1 can't be held by the output and was left out."_s.arg(
            facts.streams[mapped].label);
        removeSubtitleAt(form.list, i - 2, *number);
        i = 1; // from the start: positions have moved
        changed = true;
    }
    if (changed)
        renumberSubtitles(form.list);
}

void textForMatroska(LaunchForm &form, const LaunchFacts &facts)
{
    if (facts.kind != OutputKind::Mkv)
        return;
    for (qsizetype i = 1; i + 1 < form.list.size(); ++i) {
        const bool isSubtitle = streamNumber(form.list.at(i), u's').has_value();
        if (isSubtitle && facts.streams.value(form.list.at(i - 1).text()).codec == u"ttxt"_s)
            form.list[i + 1] = u"srt";
    }
}

void nameMp4Format(LaunchForm &form, const LaunchFacts &facts)
{
    const bool hasFormat = indexOfOption(form.list, u"-f"_s) >= 0;
    if (!facts.isSecondPass || hasFormat || form.list.isEmpty() || !form.list.last().isFile())
        return;
    if (!form.list.last().text().endsWith(u".m4v"_s) || !needsPlainMp4(form.list, facts))
        return;
    const qsizetype tail = indexOfOption(form.list, u"-y"_s);
    form.list.insert(tail, u"mp4");
    form.list.insert(tail, u"-f");
}

void tagHevc(LaunchForm &form, const LaunchFacts &facts)
{
    const qsizetype codec = indexOfOption(form.list, u"-vcodec"_s);
    if (facts.kind != OutputKind::Mp4 || codec < 1 || codec + 1 >= form.list.size() ||
        !isOption(form.list.at(codec + 1), u"copy"_s))
        return;
    if (facts.streams.value(form.list.at(codec - 1).text()).probedCodec != u"hevc"_s)
        return;
    form.list.insert(codec + 2, u"-tag:v");
    form.list.insert(codec + 3, u"hvc1");
}

void generateTimestamps(LaunchForm &form, const LaunchFacts &facts)
{
    if (!facts.generatesTimestamps || !facts.isSecondPass)
        return;
    form.list.prepend(u"genpts");
    form.list.prepend(u"-fflags");
}

void pickAddedTracks(LaunchForm &form, const LaunchFacts &facts)
{
    for (qsizetype i = 1; i < form.list.size(); ++i) {
        if (!isOption(form.list.at(i - 1), u"-map"_s))
            continue;
        const auto picked = facts.streams.value(form.list.at(i).text()).picked;
        if (picked)
            form.list[i] = form.list.at(i).with(u":").with(*picked);
    }
}

void pickSingleTrack(LaunchForm &form, const LaunchFacts &facts)
{
    if (facts.singleStream.value_or(0) <= 0)
        return;
    for (qsizetype i = 0; i < form.list.size(); ++i) {
        if (isOption(form.list.at(i), u"-map 0:0"_s)) // two words of a shell line
            form.list[i] = OptionItem(u"-map 0:").with(*facts.singleStream);
        else if (i > 0 && isOption(form.list.at(i - 1), u"-map"_s) && isOption(form.list.at(i), u"0:0"_s))
            form.list[i] = OptionItem(u"0:").with(*facts.singleStream);
    }
}

} // namespace engines::launchrules

#include "cli/CommandLine.h"

#include "cli/NearestWord.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cli {

const QList<OptionSpec> &allOptions()
{
    static const QList<OptionSpec> options{
        {u"help"_s, {}, u"Show help with an example, and exit."_s, true},
        {u"version"_s, {}, u"Show the version and exit."_s, true},
        {u"json"_s, {}, u"Print one JSON object per line on standard output."_s, true},
        {u"quiet"_s, {}, u"Show no progress."_s, true},
        {u"save-dir"_s, u"DIR"_s, u"Write results into this folder, for this run."_s, true},
        {u"keep-logs"_s, {}, u"Keep logs and temporary files, for this run."_s, true},
        {u"no-keep-logs"_s, {}, u"Remove logs and temporary files, for this run."_s, true},
        {u"nice"_s, {}, u"Run tools at low priority, for this run."_s, true},
        {u"defaults"_s, u"FILE"_s, u"Use the settings in this file."_s, true},
        {u"newer-codecs"_s,
         {},
         u"Open films with newer codecs too (HEVC, AV1, VP9, Opus, ...), for this run."_s,
         true},
        {u"tracks"_s, u"LIST"_s, u"Stream indexes as probe shows them, separated by commas."_s},
        {u"device"_s, u"NAME"_s, u"The device to convert for; \"General\" for any."_s},
        {u"kind"_s, u"mp4|mkv|avi"_s, u"The kind of file to write."_s},
        {u"video"_s, u"passthru|1pass|2pass"_s, u"Copy the video, or re-encode it in one pass or two."_s},
        {u"video-bitrate"_s, u"KBPS"_s, u"Video bit rate in kb/s; the source's when not given."_s},
        {u"width"_s, u"PX"_s, u"Width in pixels; the source's when not given. Never enlarges."_s},
        {u"audio"_s, u"TRACK=SETTINGS"_s,
         u"passthru or CODEC:CHANNELS:KBPS (aac, ac3, mp3), or several, separated by commas; repeatable."_s},
        {u"subtitles"_s, u"mux|burn"_s, u"Keep subtitles as tracks, or draw one into the picture."_s},
        {u"add"_s, u"FILE"_s, u"A subtitle or audio file to add as a further track; repeatable."_s},
        {u"track-preset"_s, u"NAME"_s, u"Let this preset choose the tracks."_s},
        {u"settings-preset"_s, u"NAME"_s, u"Let this preset choose the settings; options override it."_s},
        {u"auto"_s, u"quality|speed"_s,
         u"Copy what the device plays and re-encode the rest, in two passes or one; options override it."_s},
        {u"for"_s, u"DEVICE"_s, u"Make the new settings preset ready for this device."_s},
        {u"time"_s, u"START-END"_s, u"Take this part, as HH:MM:SS-HH:MM:SS."_s},
        {u"size"_s, u"MB"_s, u"Make parts of at most this size in megabytes."_s},
        {u"duration"_s, u"HH:MM:SS"_s, u"Make parts of this duration."_s},
        {u"force"_s, {}, u"Replace an existing output; the old one is kept until the job has succeeded."_s},
        {u"existing"_s, {}, u"Convert films too that are in the folder already and were never converted."_s},
        {u"status"_s, {}, u"Show in one line how the folder is doing, and end."_s},
        {u"verify"_s, {}, u"Compare what was copied with its source, bit for bit."_s},
        {u"output"_s, u"FILE"_s, u"Name the result of a single film."_s},
        {u"recursive"_s, {}, u"Take the films in folders too; with --save-dir their trees are mirrored."_s},
        {u"skip-existing"_s, {}, u"Pass over films whose result is there already."_s},
        {u"commands"_s, {}, u"Print one line for a shell per film that could be converted: its convert."_s},
        {u"list"_s, u"FILE"_s,
         u"Take the files that are named in this one too, a path a line; - is standard input."_s},
        {u"print"_s, u"outputs|outputs0"_s,
         u"Print the paths of finished files and nothing else, a line each or ended by NUL."_s},
        {u"exec"_s, u"PROGRAM"_s,
         u"Run this program for each finished file, with its path as the argument."_s},
        {u"report"_s, {}, u"Show what a report of a bug needs."_s},
        {u"dry-run"_s, {}, u"Print the commands that would run, without running them."_s},
    };
    return options;
}

CommandLine::CommandLine(const QStringList &words)
{
    bool optionsMayCome = true;
    for (qsizetype i = 0; i < words.size() && m_error.isNull(); ++i) {
        const QString &word = words.at(i);
        if (optionsMayCome && word == u"--"_s)
            optionsMayCome = false;
        else if (optionsMayCome && word.startsWith(u"--"_s))
            takeOption(word, words, i);
        else if (optionsMayCome && word.size() > 1 && word.startsWith(u'-'))
            m_error =
                u"Unknown option %1. A file name that begins with \"-\" must come after \"--\"."_s.arg(word);
        else if (m_command.isNull())
            m_command = word;
        else
            m_arguments.append(word);
    }
}

void CommandLine::takeOption(const QString &word, const QStringList &words, qsizetype &position)
{
    const QString name = word.section(u'=', 0, 0).mid(2);
    const auto &options = allOptions();
    const auto spec = std::find_if(options.begin(), options.end(),
                                   [&](const OptionSpec &option) { return option.name == name; });
    if (spec == options.end()) {
        QStringList names;
        for (const OptionSpec &option : options)
            names.append(option.name);
        m_error = u"Unknown option --%1.%2"_s.arg(name, didYouMean(name, names, u"--"_s));
        return;
    }
    const bool hasInlineValue = word.contains(u'=');
    if (spec->valueName.isEmpty()) {
        if (hasInlineValue)
            m_error = u"The option --%1 takes no value."_s.arg(name);
        m_values[name].append(u""_s);
    } else if (hasInlineValue) {
        m_values[name].append(word.mid(word.indexOf(u'=') + 1)); // never null, even if empty
    } else if (position + 1 < words.size()) {
        m_values[name].append(words.at(++position));
    } else {
        m_error = u"The option --%1 needs a value (%2)."_s.arg(name, spec->valueName);
    }
}

QString CommandLine::value(const QString &option) const
{
    return m_values.contains(option) ? m_values.value(option).constLast() : QString();
}

} // namespace cli

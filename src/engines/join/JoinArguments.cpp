#include "engines/join/JoinArguments.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;

namespace engines {

namespace {

bool allHave(const QList<QUrl> &files, const QStringList &extensions)
{
    return std::all_of(files.begin(), files.end(), [&](const QUrl &file) {
        return extensions.contains(QFileInfo(file.toLocalFile()).suffix().toLower());
    });
}

qsizetype positionOf(const OptionList &list, const QString &option)
{
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (!list.at(i).isFile() && list.at(i).text() == option)
            return i;
    }
    return -1;
}

} // namespace

QString joinerFor(const QList<QUrl> &files, bool mp4boxIsInstalled)
{
    if (allHave(files, {u"mkv"_s}))
        return u"mkvmerge"_s;
    const bool isMp4 = allHave(files, {u"mp4"_s, u"m4v"_s, u"mov"_s});
    return isMp4 && mp4boxIsInstalled ? u"mp4box"_s : u"ffmpeg"_s;
}

QString concatListMeant(const QList<QUrl> &files)
{
    QString list;
    for (const QUrl &file : files)
        list += u"file '"_s + file.toLocalFile() + u"'\n"_s;
    return list;
}

QString concatListLaunched(const QList<QUrl> &files)
{
    QString list;
    for (const QUrl &file : files)
        list += u"file "_s + tools::safelySingleQuoted(file.toLocalFile()) + u'\n';
    return list;
}

OptionList concatArguments(const QUrl &listFile, const QUrl &output)
{
    return {u"-f", u"concat", u"-i", listFile, u"-c", u"copy", u"-y", output};
}

OptionList concatLaunchForm(const OptionList &meant)
{
    OptionList list = meant;
    const qsizetype input = positionOf(list, u"-i"_s);
    if (input < 0)
        return list;
    list.insert(input + 2, u"0");
    list.insert(input + 2, u"-map");
    list.insert(input, u"0");
    list.insert(input, u"-safe");
    return list;
}

OptionList retimeArguments(const QUrl &file, const QString &timescale, const QUrl &output)
{
    OptionList list{u"-i", file, u"-map", u"0", u"-c", u"copy"};
    if (!timescale.isEmpty())
        list << u"-video_track_timescale" << OptionItem::ofData(timescale);
    return list << u"-y" << output;
}

OptionList mp4boxJoinArguments(const QList<QUrl> &files, const QUrl &folder, const QUrl &output)
{
    OptionList list;
    for (const QUrl &file : files)
        list << u"-cat" << file;
    return list << u"-tmp" << folder << u"-new" << output;
}

} // namespace engines

#include "support/StartedShapes.h"

#include "support/StartedPrograms.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace support::started {

namespace {

/// One or two words of a program's line. FILM stands for a file beside the films, OWN for one among our own
/// temporary ones, either also for one in a job's hidden folder beside the films, N for a number, SCALE for
/// the filter that makes a picture smaller.
struct Shape
{
    QString word;
    QString value; ///< null where none follows
};

const QList<Shape> probing{
    {u"-i"_s, u"FILM"_s},
    {u"-show_streams"_s, {}},
    {u"-show_data_hash"_s, u"md5"_s},
    {u"-print_format"_s, u"json"_s},
};

const QList<Shape> converting{
    {u"-i"_s, u"FILM|OWN"_s},
    {u"-map"_s, u"N(:N)?|\\[outv\\]"_s},
    {u"-pass"_s, u"1|2"_s},
    {u"-passlogfile"_s, u"OWN"_s},
    {u"-vcodec"_s, u"copy|libx264|mpeg4"_s},
    {u"-acodec"_s, u"copy"_s},
    {u"-codec:[as]:N"_s, u"copy|aac|ac3|libmp3lame|mov_text"_s},
    {u"-bsf:v"_s, u"h264_mp4toannexb"_s},
    {u"-strict"_s, u"experimental"_s},
    {u"-level"_s, u"N"_s},
    {u"-b:v"_s, u"Nk"_s},
    {u"-ab:a:N"_s, u"Nk"_s},
    {u"-a[cr]:a:N"_s, u"N"_s},
    {u"-af"_s, u"aresample=matrix_encoding=dplii"_s},
    {u"-filter:a:N"_s, u"aresample=matrix_encoding=dplii"_s},
    {u"-vf"_s, u"SCALE|subtitles=(FILM|OWN)(,SCALE)?"_s},
    {u"-filter_complex"_s,
     u"\\[0:N\\]scale=N:N\\[sub\\];\\[0:v\\]\\[sub\\]overlay(=eof_action=pass)?\\[outv\\]|"
     "\\[0:N\\]scale=N:N\\[subInitialize\\];\\[subInitialize\\]SCALE\\[sub\\];"
     "\\[0:v\\]SCALE\\[vid\\];\\[vid\\]\\[sub\\]overlay(=eof_action=pass)?\\[outv\\]"_s},
    {u"-metadata:s:(v|[as]:N)"_s, u"language=[a-z]{3}|title=.*"_s},
    {u"-movflags"_s, u"faststart"_s},
    {u"-f"_s, u"mp4|matroska|avi|dts"_s},
    {u"-(an|sn|vn)"_s, {}},
    {u"-y"_s, u"FILM|OWN|/dev/null"_s},
};

const QList<Shape> muxing{
    {u"-o"_s, u"FILM"_s},
    {u"FILM"_s, {}},
    {u"\\+"_s, {}},
    {u"--split"_s, u"Ns"_s},
    {u"--compression"_s, u"(-1|N):none"_s},
    {u"--language"_s, u"N:[a-z]{3}"_s},
    {u"--track-name"_s, u"N:.*"_s},
    {u"--(default|forced)-track"_s, u"N:[01]"_s},
    {u"-[das]"_s, u"N(,N)*"_s},
    {u"-[DASBTM]"_s, {}},
};

const QList<Shape> playing{
    {u"FILM"_s, {}},
    {u"-[vas]id"_s, u"N"_s},
    {u"-font"_s, u"/Library/Fonts/Arial Unicode\\.ttf"_s},
    {u"-ass"_s, {}},
    {u"-ass-font-scale"_s, u"1\\.0"_s},
    {u"-ass-color"_s, u"FFFFFF00"_s},
};

const QHash<QString, QList<Shape>> &programs()
{
    static const QHash<QString, QList<Shape>> all{
        {u"ffprobe"_s, probing},
        {u"ffmpeg"_s, converting},
        {u"mkvmerge"_s, muxing},
        {u"mkvextract"_s, {{u"tracks"_s, u"FILM"_s}, {u"N:FILM"_s, {}}}},
        {u"mkvinfo"_s, {{u"FILM"_s, {}}}},
        {u"mplayer"_s, playing},
        {u"lintwick"_s, {{u"FILM"_s, {}}}},
        {u"grep"_s, {{u"Stream #|Durations|time=|N"_s, {}}}},
        {u"ps"_s, {{u"-p"_s, u"N"_s}}},
        {u"tail"_s, {{u"-1"_s, {}}}},
        {u"tr"_s, {{u"\\\\[rn]"_s, {}}}},
        {u"awk"_s, {{u"\\{print \\$1;\\}"_s, {}}}},
    };
    return all;
}

QRegularExpression expressionOf(QString pattern, const QString &scratch)
{
    const QString folder = QRegularExpression::escape(scratch);
    // In this order: what is put in holds none of the later words.
    pattern.replace(u"SCALE"_s, u"(scale=trunc\\(N/N\\*iw/2\\)\\*2:trunc\\(ow/a/2\\)\\*2)"_s);
    pattern.replace(QRegularExpression(u"\\bN(?=\\W|$|k|s)"_s), u"[0-9]{1,9}"_s);
    const QString plain = u"/media/(in/)?\\.tessaray-[a-z0-9]{6}/[0-9]+(-[0-9]{3})?\\.[A-Za-z0-9]+"_s;
    const QString named = u"/media/(in/)?(film|other|extra)(\\.[A-Za-z0-9]+| \\([0-9]+\\)|-[0-9]+)*"_s;
    const QString own = u"/tmp/tessaray-\\w{6}/job[0-9]+/[A-Za-z0-9.-]+"_s;
    pattern.replace(u"FILM"_s, u"%1(%2|%3)"_s.arg(folder, named, plain));
    pattern.replace(u"OWN"_s, u"%1(%2|%3)"_s.arg(folder, own, plain));
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern),
                              QRegularExpression::DotMatchesEverythingOption);
}

bool fits(const QString &word, const QString &pattern, const QString &scratch)
{
    static QHash<QString, QRegularExpression> made;
    const QString key = pattern + scratch;
    if (!made.contains(key))
        made.insert(key, expressionOf(pattern, scratch));
    return made.value(key).match(word).hasMatch();
}

/// How many words at that place have a form that the program's line may have; 0 where none fits.
qsizetype fittingAt(const QStringList &words, qsizetype place, const QList<Shape> &shapes,
                    const QString &scratch)
{
    for (const Shape &shape : shapes) {
        if (!fits(words.at(place), shape.word, scratch))
            continue;
        if (shape.value.isNull())
            return 1;
        if (place + 1 < words.size() && fits(words.at(place + 1), shape.value, scratch))
            return 2;
    }
    return 0;
}

} // namespace

QString offenceOf(const QByteArrayList &run, const QString &scratch)
{
    const QString checked = checkedFile(run);
    if (!checked.isNull())
        return fits(checked, u"FILM"_s, scratch) ? QString() : u"a check of another file"_s;
    QStringList words;
    for (const QByteArray &bytes : run)
        words.append(QString::fromUtf8(bytes));
    const QString program = words.takeFirst().section(u'/', -1);
    if (!programs().contains(program))
        return u"a program that is not needed"_s;
    for (qsizetype i = 0; i < words.size();) {
        const qsizetype count = fittingAt(words, i, programs().value(program), scratch);
        if (count == 0)
            return u"\"%1\" \"%2\""_s.arg(words.at(i), words.value(i + 1));
        i += count;
    }
    return {};
}

} // namespace support::started

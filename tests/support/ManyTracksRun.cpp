#include "support/ManyTracksRun.h"

#include "support/Clips.h"
#include "support/PresetLists.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace support {

namespace {

constexpr int filmWidth = 2048;

/// A stream of the film as the commands name it.
struct Stream
{
    QString language;
    bool isSurround;
};

const QMap<QString, Stream> &streams()
{
    static const QMap<QString, Stream> all{{u"1"_s, {u"eng"_s, true}},  {u"2"_s, {u"deu"_s, false}},
                                           {u"3"_s, {u"eng"_s, false}}, {u"4"_s, {u"fra"_s, false}},
                                           {u"5"_s, {u"und"_s, true}},  {u"6"_s, {u"eng"_s, false}},
                                           {u"7"_s, {u"deu"_s, false}}, {u"8"_s, {u"fra"_s, false}}};
    return all;
}

QStringList blankSeparated(const QString &text)
{
    return text.split(u' ', Qt::SkipEmptyParts);
}

QStringList tags(const QString &stream, const QString &language, const QString &title)
{
    const QString option = u"-metadata:s:"_s + stream;
    return {option, u"language="_s + language, option, u"title="_s + title};
}

/// The picture's arguments, a burned subtitle before the scaling included.
QStringList videoArguments(const ManyTracksRun &expected, const QString &drawn)
{
    QStringList list{u"-map"_s, u"0:0"_s, u"-vcodec"_s};
    if (expected.video == u"copy"_s)
        return list + QStringList{u"copy"_s} + tags(u"v"_s, u"und"_s, u"Video Track"_s);
    list << (expected.device == u"AVI"_s ? u"mpeg4"_s : u"libx264"_s);
    for (const QString &word : blankSeparated(expected.video)) {
        const QString scale = u"scale=trunc(%1/%2*iw/2)*2:trunc(ow/a/2)*2"_s.arg(word.mid(1)).arg(filmWidth);
        if (word.startsWith(u'L'))
            list << u"-level"_s << word.mid(1);
        else if (word.startsWith(u'w'))
            list << u"-vf"_s << (drawn.isEmpty() ? scale : u"subtitles="_s + drawn + u',' + scale);
        else
            list << u"-b:v"_s << word;
    }
    return list + tags(u"v"_s, u"und"_s, u"Video Track"_s);
}

QStringList encoderOf(const QString &codec, const QString &option)
{
    if (codec == u"aac"_s)
        return {option, u"aac"_s, u"-strict"_s, u"experimental"_s};
    return {option, codec};
}

QStringList audioArguments(const QString &audio)
{
    QStringList list;
    int number = 0;
    for (const QString &word : blankSeparated(audio)) {
        const QStringList parts = word.split(u':');
        const QString index = QString::number(number++);
        const Stream stream = streams().value(parts.at(0));
        list << u"-map"_s << u"0:"_s + parts.at(0);
        list += encoderOf(parts.at(1), u"-codec:a:"_s + index);
        if (parts.at(1) != u"copy"_s)
            list << u"-ab:a:"_s + index << parts.at(3) + u'k' << u"-ac:a:"_s + index << parts.at(2)
                 << u"-ar:a:"_s + index << u"48000"_s;
        if (parts.value(2) == u"2"_s && stream.isSurround)
            list << u"-af"_s << u"aresample=matrix_encoding=dplii"_s;
        list += tags(u"a:"_s + index, stream.language, u"Audio Track"_s);
    }
    return list;
}

QStringList subtitleArguments(const ManyTracksRun &expected)
{
    QStringList list;
    int number = 0;
    for (const QString &stream : blankSeparated(expected.subtitles)) {
        const QString index = QString::number(number++);
        list << u"-map"_s << u"0:"_s + stream << u"-codec:s:"_s + index
             << (expected.device == u"MKV"_s ? u"copy"_s : u"mov_text"_s);
        list += tags(u"s:"_s + index, streams().value(stream).language, u"Subtitle Track"_s);
    }
    return list;
}

/// "7.ass": how a subtitle's file ends.
QString extracted(const QString &stream)
{
    return stream + (stream == u"7"_s ? u".ass"_s : u".srt"_s);
}

/// In front of the tail, of the only pass or the first of two.
QStringList format(const QString &device)
{
    if (device == u"AVI"_s)
        return {u"-vtag"_s, u"xvid"_s, u"-f"_s, u"avi"_s};
    return {u"-f"_s, device == u"MKV"_s ? u"matroska"_s : u"mp4"_s};
}

QStringList argumentsOf(const QJsonObject &step)
{
    QStringList list;
    for (const QJsonValue &value : step.value(u"arguments"_s).toArray())
        list.append(list.isEmpty() || list.constLast() != u"-passlogfile"_s ? value.toString() : u"P"_s);
    return list;
}

QString videoRateOf(const QString &film)
{
    QProcess ffprobe;
    ffprobe.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_format"_s, u"-of"_s, u"json"_s, film});
    ffprobe.waitForFinished(60000);
    const QJsonObject answer = QJsonDocument::fromJson(ffprobe.readAllStandardOutput()).object();
    const int whole = answer.value(u"format"_s).toObject().value(u"bit_rate"_s).toString().toInt() / 1000;
    return QString::number(whole - 384 - 192); // what the AC-3 tracks take
}

} // namespace

QString ManyTracksRun::outputName() const
{
    if (device == u"MKV"_s)
        return u"film (2).mkv"_s;
    return device == u"AVI"_s ? u"film.avi"_s : device == u"Xbox"_s ? u"film.mp4"_s : u"film.m4v"_s;
}

QList<QStringList> ManyTracksRun::lists(const QString &film, const QString &output) const
{
    const bool burns = subtitles.startsWith(u"burn "_s);
    const bool isMp4 = device != u"MKV"_s && device != u"AVI"_s;
    const bool isTwice = passes == 2;
    const QString drawn = burns ? film + u".stream"_s + extracted(subtitles.mid(5)) : QString();
    const QStringList front = QStringList{u"-i"_s, film} + videoArguments(*this, {});
    QStringList last = QStringList{u"-i"_s, film} + videoArguments(*this, drawn);
    last += audioArguments(audio);
    if (burns && !last.contains(u"-vf"_s))
        last << u"-vf"_s << u"subtitles="_s + drawn;
    if (!burns && device != u"AVI"_s)
        last += subtitleArguments(*this);
    if (isMp4)
        last << u"-movflags"_s << u"faststart"_s;
    if (!isTwice)
        return {last + format(device) + QStringList{u"-y"_s, output}};
    QStringList first = front + audioArguments(audio);
    if (!burns && device != u"AVI"_s)
        first << u"-sn"_s;
    first += format(device) + QStringList{u"-passlogfile"_s, u"P"_s, u"-y"_s, u"/dev/null"_s};
    last += QStringList{u"-passlogfile"_s, u"P"_s, u"-y"_s, output};
    first = first.mid(0, 2) + QStringList{u"-pass"_s, u"1"_s} + first.mid(2);
    last = last.mid(0, 2) + QStringList{u"-pass"_s, u"2"_s} + last.mid(2);
    return {first, last};
}

ManyTracksFixture::ManyTracksFixture()
    : m_film(m_cli.clip(manyTracksMkv(), u"film.mkv"_s))
    , m_videoRate(videoRateOf(m_film))
{
}

QString ManyTracksFixture::difference(const QJsonObject &rule, const QJsonObject &settings,
                                      const ManyTracksRun &expected, const QStringList &options) const
{
    storePresets(m_cli, {rule}, {settings});
    const auto run =
        m_cli.run(QStringList{u"convert"_s, u"film.mkv"_s, u"--track-preset"_s,
                              rule.value(u"pName"_s).toString(), u"--settings-preset"_s,
                              settings.value(u"pName"_s).toString(), u"--dry-run"_s, u"--json"_s} +
                  options);
    if (run.status != 0 || !run.error.isEmpty())
        return u"%1: %2"_s.arg(QString::number(run.status), run.said());
    QList<QJsonObject> steps = run.objects();
    const bool burns = expected.subtitles.startsWith(u"burn "_s);
    const QString extraction = burns ? steps.takeFirst().value(u"line"_s).toString() : QString();
    if (burns && !extraction.contains(u" -map 0:%1 "_s.arg(expected.subtitles.mid(5))))
        return u"no extraction: "_s + extraction;
    const QString output = m_cli.media(expected.outputName());
    const auto lists = expected.lists(m_film, output);
    if (steps.size() != lists.size())
        return u"%1 steps instead of %2"_s.arg(QString::number(steps.size()), QString::number(lists.size()));
    QString all;
    for (qsizetype i = 0; i < lists.size(); ++i)
        all += differenceOf(steps.at(i), lists.at(i), output);
    return all;
}

QString ManyTracksFixture::differenceOf(const QJsonObject &step, const QStringList &list,
                                        const QString &output) const
{
    const QString meant = step.value(u"jobType"_s).toString() + u" to "_s +
                          step.value(u"output"_s).toString() + u": "_s + argumentsOf(step).join(u' ');
    const QString expected = u"MKV Conversion to %1: "_s.arg(output) + list.join(u' ');
    return argumentsOf(step) == list && meant == expected
               ? QString()
               : u"\n  it would run: %1\n  expected:     %2"_s.arg(meant, expected);
}

} // namespace support

#include "support/StartedPrograms.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace support::started {

namespace {

QByteArrayList bytesOf(const QStringList &words)
{
    QByteArrayList bytes;
    for (const QString &word : words)
        bytes.append(word.toUtf8());
    return bytes;
}

/// Words of one blank each, as the words of a program that are joined by NULs, which stand in none of them.
QRegularExpression runExpression(QString pattern)
{
    pattern.replace(u"PACKETS"_s, u"packet=stream_index,pts_time,dts_time,duration_time,size,flags"_s);
    pattern.replace(u"TIME"_s, u"[0-9]+\\.[0-9]{3}"_s);
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern.replace(u' ', u"\\x00"_s)));
}

/// All that stands in front of "-i" and the file: of a look at the header, at parts of a film with all that
/// is told of it, and at packets alone.
const QRegularExpression &checkExpression()
{
    static const QRegularExpression expression =
        runExpression(u"ffprobe -v error (-show_entries format=format_name,start_time,duration,size -of json|"
                      "-show_format -show_streams -show_chapters -show_data_hash md5 "
                      "-read_intervals (%\\+#(60|20000)|%\\+#60(,TIME%TIME)*,TIME%\\+#20000) -show_entries "
                      "PACKETS -of json|"
                      "(-read_intervals TIME%TIME )?-show_entries PACKETS -of csv=p=0)"_s);
    return expression;
}

/// Which final name each plain one in a hidden folder stands for, both without their extensions.
class WorkNames final
{
public:
    /// Whether the run is that one. What its plain names stand for is kept.
    bool take(const QByteArrayList &run, const QByteArrayList &expected)
    {
        QHash<QString, QString> stems = m_stems;
        if (run.size() != expected.size())
            return false;
        for (qsizetype i = 0; i < run.size(); ++i) {
            if (run.at(i) != expected.at(i) &&
                !takeWord(QString::fromUtf8(run.at(i)), QString::fromUtf8(expected.at(i)), stems))
                return false;
        }
        m_stems = stems;
        return true;
    }

    /// A file by its final name; null for one in a hidden folder that no run wrote.
    QString finalOf(const QString &file) const
    {
        static const QRegularExpression plain(
            u"^(/.*/\\.tessaray-[a-z0-9]{6}/[0-9]+)((-[0-9]{3})?\\.[A-Za-z0-9]+)$"_s);
        if (!file.contains(u"/.tessaray-"_s))
            return file;
        const auto match = plain.match(file);
        return m_stems.contains(match.captured(1)) ? m_stems.value(match.captured(1)) + match.captured(2)
                                                   : QString();
    }

private:
    /// The hidden folder lies in the one that the final name is for.
    static bool takeWord(const QString &word, const QString &expected, QHash<QString, QString> &stems)
    {
        static const QRegularExpression plain(
            u"^(subtitles=)?((/.*/)\\.tessaray-[a-z0-9]{6}/[0-9]+)(\\.[A-Za-z0-9]+)$"_s);
        const auto match = plain.match(word);
        if (!match.hasMatch() || !expected.startsWith(match.captured(1)) ||
            !expected.endsWith(match.captured(4)))
            return false;
        const QString stem = expected.mid(match.capturedLength(1)).chopped(match.capturedLength(4));
        const QString plainStem = match.captured(2);
        if (stem.left(stem.lastIndexOf(u'/') + 1) != match.captured(3))
            return false;
        const bool isKnown = stems.value(plainStem, stem) == stem && stems.key(stem, plainStem) == plainStem;
        stems.insert(plainStem, stem);
        return isKnown;
    }

    QHash<QString, QString> m_stems;
};

/// Takes the expected runs out of those that were recorded; answers the ones that are not there.
Started takeExpected(Started &recorded, const Started &expected, WorkNames &names)
{
    Started missing;
    for (const QByteArrayList &run : expected) {
        const auto found = std::find_if(recorded.begin(), recorded.end(),
                                        [&](const QByteArrayList &one) { return names.take(one, run); });
        if (found == recorded.end())
            missing.append(run);
        else
            recorded.erase(found);
    }
    return missing;
}

} // namespace

Started probeOf(const QString &path)
{
    return {bytesOf({u"ffprobe"_s, u"-i"_s, path, u"-show_streams"_s, u"-print_format"_s, u"json"_s}),
            bytesOf({u"ffprobe"_s, u"-i"_s, path}), bytesOf({u"grep"_s, u"Stream #"_s}),
            bytesOf({u"ffprobe"_s, u"-i"_s, path, u"-print_format"_s, u"json"_s}),
            bytesOf({u"grep"_s, u"Durations"_s})};
}

Started durationOf(const QString &path)
{
    return {bytesOf({u"ffprobe"_s, u"-i"_s, path})};
}

Started ffmpeg(const QStringList &words)
{
    return {bytesOf(QStringList{u"ffmpeg"_s} + words)};
}

QStringList tags(const QString &stream, const QString &title)
{
    return {u"-metadata:s:"_s + stream, u"language=eng"_s, u"-metadata:s:"_s + stream, u"title="_s + title};
}

QString shown(const Started &runs)
{
    QStringList lines;
    for (const QByteArrayList &run : runs)
        lines.append(QString::fromUtf8(run.join('|')));
    return lines.join(u'\n');
}

QString checkedFile(const QByteArrayList &run)
{
    if (run.size() < 3 || run.at(run.size() - 2) != "-i")
        return {};
    const QString front = QString::fromUtf8(run.mid(0, run.size() - 2).join('\0'));
    return checkExpression().match(front).hasMatch() ? QString::fromUtf8(run.constLast()) : QString();
}

QString difference(const Started &recorded, const Started &expected, const QStringList &checked)
{
    Started checks;
    Started others;
    for (const QByteArrayList &run : recorded)
        (checkedFile(run).isNull() ? others : checks).append(run);
    WorkNames names;
    Started missing = takeExpected(others, expected, names);
    QSet<QByteArrayList> made;
    QStringList unread = checked;
    for (const QByteArrayList &run : std::as_const(checks)) {
        const QString file = names.finalOf(checkedFile(run));
        if (!checked.contains(file) || made.contains(run))
            others.append(run);
        made.insert(run);
        unread.removeAll(file);
    }
    for (const QString &file : std::as_const(unread))
        missing.append({"a check of", file.toUtf8()});
    if (others.isEmpty() && missing.isEmpty())
        return {};
    return u"started, but should not be:\n%1\nmissing:\n%2"_s.arg(shown(others), shown(missing));
}

} // namespace support::started

#include "steps/FailureCause.h"

#include "steps/FfmpegProgress.h"
#include "steps/ToolLog.h"

#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

/// The first of the private characters that stand for files.
constexpr char16_t firstMark = 0xE000;

/// What stands in a line, and what is said then; where that is empty, the line says it well.
struct KnownLine
{
    const char16_t *part;
    const char16_t *sentence;
};

constexpr std::array knownLines = {
    // ffmpeg
    KnownLine{u"moov atom not found", u"The file has no index: it is incomplete."},
    KnownLine{u"packet with unknown timestamp", u"The frames have no times."},
    KnownLine{u" incompatible with output codec id ", u""},
    KnownLine{u"use the video bitstream filter", u""},
    KnownLine{u"Unknown encoder ", u""},
    KnownLine{u"Unknown decoder ", u""},
    KnownLine{u"Specified channel layout ", u""},
    KnownLine{u"Specified sample rate ", u""},
    KnownLine{u"not divisible by 2", u""},
    KnownLine{u"is incompatible with 2pass", u""},
    KnownLine{u"but codec copy was selected", u""},
    KnownLine{u"matches no streams", u""},
    KnownLine{u"Unable to open ", u""},
    KnownLine{u"Invalid UTF-8 in decoded subtitles text", u""},
    KnownLine{u"only possible from text to text", u""},
    KnownLine{u"No such file or directory", u""},
    KnownLine{u"Permission denied", u""},
    KnownLine{u"Read-only file system", u""},
    KnownLine{u"Invalid data found when processing input", u""},
    // mkvmerge and mkvextract
    KnownLine{u"Have not found any header atoms", u"The file has no index: it is incomplete."},
    KnownLine{u"Could not read chunk number ", u"The source ends early."},
    KnownLine{u"create_directory() failed", u""},
    KnownLine{u"could not be recognized", u""},
};

/// Each means a full disk; the tools say it each in their own way.
constexpr std::array fullDisk = {u"No space left on device", u"No space left to write to",
                                 u"Disk quota exceeded"};

constexpr std::array passing = {u"no room left",      u"the volume may be full", u"can't be written",
                                u"Permission denied", u"Read-only file system",  u"could not be started"};

/// They follow every failure and name none.
constexpr std::array consequences = {u"Conversion failed",
                                     u"Error initializing output stream",
                                     u"Could not write header for output file",
                                     u"Error while opening",
                                     u"Error reinitializing filters",
                                     u"Failed to inject frame",
                                     u"Error while processing the decoded data",
                                     u"Error while decoding stream",
                                     u"av_interleaved_write_frame(): Invalid argument",
                                     u"Exiting normally"};

/// Said on sound work too, or about a file by name; what a codec calls itself comes from the file.
constexpr std::array noErrors = {u"non monoton",
                                 u"Timestamps are unset in a packet",
                                 u"Application provided invalid",
                                 u"Estimating duration",
                                 u"detected only with low score",
                                 u"No append mapping was given",
                                 u"Using the demultiplexer",
                                 u"Using the output module",
                                 u"Extracting track ",
                                 u"To ignore this, add",
                                 u"Multiple -c, -codec",
                                 u"left in the queue on closing"};

bool contains(const QString &line, const auto &parts)
{
    return std::any_of(parts.begin(), parts.end(),
                       [&](const char16_t *part) { return line.contains(QStringView(part)); });
}

bool speaksOfError(const QString &line)
{
    static const QRegularExpression words(
        u"error|fail|invalid|unable|cannot|can't|could ?n[o']t|no "
        u"such|unknown|denied|incompatible|unsupported|"
        "not (supported|found|set|possible|divisible)|does not|exception|refused"_s,
        QRegularExpression::CaseInsensitiveOption);
    return words.match(line).hasMatch() && !isStatusLine(line);
}

/// "Subtitle codec 94213 is not supported."
QString subtitleCodecNamed(const QString &number)
{
    static const QHash<QString, QString> names{{u"94208"_s, u"DVD_SUBTITLE"_s},
                                               {u"94209"_s, u"DVB_SUBTITLE"_s},
                                               {u"94213"_s, u"MOV_TEXT"_s},
                                               {u"94214"_s, u"HDMV_PGS_SUBTITLE"_s},
                                               {u"94215"_s, u"DVB_TELETEXT"_s}};
    return names.value(number, u"This kind of subtitle"_s);
}

QString containerOf(const QString &line)
{
    static const QHash<QString, QString> names{{u"matroska"_s, u"MKV"_s},
                                               {u"ipod"_s, u"MP4"_s},
                                               {u"mp4"_s, u"MP4"_s},
                                               {u"mov"_s, u"MOV"_s},
                                               {u"avi"_s, u"AVI"_s}};
    const QString tool = line.startsWith(u'[') ? line.mid(1).section(u" @ "_s, 0, 0) : QString();
    return names.value(tool, u"this container"_s);
}

/// A null text for a line that speaks of no codec that the container can't hold.
QString sentenceOfContainer(const QString &line)
{
    static const QRegularExpression tag(u"Could not find tag for codec (\\w+) in stream"_s);
    static const QRegularExpression experiment(u"\\] (\\w+) in MP4 support is experimental"_s);
    static const QRegularExpression number(u"Subtitle codec ([0-9]+) is not supported"_s);
    for (const auto &pattern : {tag, experiment}) {
        if (const auto found = pattern.match(line); found.hasMatch())
            return notInContainer(found.captured(1), containerOf(line));
    }
    const auto found = number.match(line);
    return found.hasMatch() ? u"%1 can't be copied into %2."_s.arg(subtitleCodecNamed(found.captured(1)),
                                                                   containerOf(line))
                            : QString();
}

/// "00:01:02.02" as "1:02".
QString shortTime(const QString &time)
{
    const QString seconds = time.section(u'.', 0, 0);
    return seconds.startsWith(u"00:0"_s)  ? seconds.mid(4)
           : seconds.startsWith(u"00:"_s) ? seconds.mid(3)
                                          : seconds;
}

/// mkvmerge tells both ends of what it passed over, in two lines; the first pair counts.
QString sentenceOfGap(const QStringList &lines)
{
    static const QRegularExpression before(u"last timestamp processed before the error[^0-9]*([0-9:.]+)"_s);
    static const QRegularExpression after(u"timestamp after the resync is[^0-9]*([0-9:.]+)"_s);
    const QString text = lines.join(u'\n');
    const auto from = before.match(text);
    if (!from.hasMatch())
        return {};
    const auto to = after.match(text, from.capturedEnd());
    return to.hasMatch() ? u"The source is damaged from %1 to %2."_s.arg(shortTime(from.captured(1)),
                                                                         shortTime(to.captured(1)))
                         : u"The source is damaged from %1 on."_s.arg(shortTime(from.captured(1)));
}

} // namespace

QString notInContainer(const QString &codec, const QString &container)
{
    const QString other = container == u"MKV"_s ? QString() : u" or choose MKV"_s;
    return u"%1 can't be in %2: re-encode it%3."_s.arg(codec.toUpper(), container, other);
}

FailureCause::FailureCause(const QString &log, const QList<QUrl> &files, const QUrl &output)
    : m_text(log)
    , m_files(files)
    , m_output(output)
{
    if (!m_files.contains(output) && !output.isEmpty())
        m_files.append(output);
    m_files.removeIf([](const QUrl &file) { return file.toLocalFile().isEmpty(); });
    std::stable_sort(m_files.begin(), m_files.end(), [](const QUrl &one, const QUrl &other) {
        return one.toLocalFile().size() > other.toLocalFile().size(); // one name may begin another
    });
    for (qsizetype i = 0; i < m_files.size(); ++i)
        m_text.replace(m_files.at(i).toLocalFile(), QString(QChar(static_cast<char16_t>(firstMark + i))));
}

QString FailureCause::cleaned(QString line)
{
    static const QRegularExpression colours(u"\x1b\\[[0-9;]*[A-Za-z]"_s);
    static const QRegularExpression part(u"^(\\[[^\\]]* @ 0x[0-9a-fA-F]+\\] ?)+"_s);
    static const QRegularExpression controls(u"[\\x00-\\x1f\\x7f]"_s);
    return line.remove(colours).remove(part).remove(controls).trimmed();
}

QString FailureCause::shown(const QString &line) const
{
    QString text = cleaned(line);
    for (qsizetype i = 0; i < m_files.size(); ++i)
        text.replace(QChar(static_cast<char16_t>(firstMark + i)), m_files.at(i).fileName());
    return text;
}

bool FailureCause::mayPass(const QString &sentence)
{
    return contains(sentence, fullDisk) || contains(sentence, passing);
}

QString FailureCause::noRoomFor(const QUrl &output)
{
    const QString folder = QFileInfo(output.toLocalFile()).path();
    return output.isEmpty() ? u"There is no room left for the output."_s
                            : u"There is no room left in %1."_s.arg(folder);
}

/// Null for a line that is not known.
QString FailureCause::sentenceOfKnown(const QString &line) const
{
    if (contains(line, fullDisk))
        return noRoomFor(m_output);
    if (line.contains(u"mm_io::read_write_x"_s))
        return u"The output could not be written: the volume may be full."_s;
    if (const QString sentence = sentenceOfContainer(line); !sentence.isNull())
        return sentence;
    if (contains(line, consequences) || contains(line, noErrors))
        return {};
    for (const KnownLine &known : knownLines) {
        if (line.contains(QStringView(known.part)))
            return QStringView(known.sentence).isEmpty() ? shown(line) : QString::fromUtf16(known.sentence);
    }
    return {};
}

QString FailureCause::known() const
{
    const ToolLog log(m_text);
    for (const QString &line : log.lines()) {
        if (const QString sentence = sentenceOfKnown(line); !sentence.isNull())
            return sentence;
    }
    return {};
}

QString FailureCause::warning() const
{
    const ToolLog log(m_text);
    if (const QString gap = sentenceOfGap(log.lines()); !gap.isNull())
        return gap;
    const QString line = log.firstLineStartingWith(u"Warning:"_s);
    const QString sentence = sentenceOfKnown(line);
    return sentence.isNull() ? shown(line) : sentence;
}

QString FailureCause::sentence() const
{
    const ToolLog log(m_text);
    if (const QString error = log.firstLineStartingWith(u"Error:"_s); !error.isNull()) {
        const QString sentence = sentenceOfKnown(error); // mkvmerge and mkvextract mark theirs
        return sentence.isNull() ? shown(error) : sentence;
    }
    if (const QString sentence = known(); !sentence.isNull())
        return sentence;
    for (const QString &line : log.lines()) {
        const bool tells = speaksOfError(line) && !contains(line, consequences) && !contains(line, noErrors);
        if (tells)
            return shown(line);
    }
    const QString consequence = log.firstLineContaining({u"Could not write header for output file"_s});
    return shown(consequence.isNull() ? log.lastMessage() : consequence);
}

} // namespace steps

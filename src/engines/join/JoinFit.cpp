#include "engines/join/JoinFit.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace engines {

namespace {

/// Average rates of one camera's clips differ by less, those of different films by more.
constexpr double toleratedRateShare = 0.01;

/// mkvmerge and mp4box go by tracks; ffmpeg by the places of all streams.
QList<JoinStream> comparedStreams(const JoinFile &file, const QString &joiner)
{
    QList<JoinStream> streams = file.streams;
    if (joiner != u"ffmpeg"_s)
        streams.removeIf([](const JoinStream &stream) { return stream.isExtra(); });
    return streams;
}

qsizetype countOfTracks(const QList<JoinStream> &streams)
{
    return std::count_if(streams.begin(), streams.end(),
                         [](const JoinStream &stream) { return !stream.isExtra(); });
}

/// Nothing where the rate is not told.
std::optional<double> rateOf(const QString &ratio)
{
    const double above = ratio.section(u'/', 0, 0).toDouble();
    const double below = ratio.section(u'/', 1, 1).toDouble();
    return above > 0 && below > 0 ? std::optional(above / below) : std::nullopt;
}

bool ratesDiffer(const QString &one, const QString &other)
{
    const auto first = rateOf(one);
    const auto second = rateOf(other);
    return first && second && std::abs(*first - *second) > toleratedRateShare * *first;
}

QString shownRate(const QString &ratio)
{
    return QString::number(rateOf(ratio).value_or(0), 'g', 5);
}

/// These carry what their decoders need among the pictures, at each key frame.
bool carriesHeadersInStream(const JoinFile &file)
{
    return file.format == u"mpegts"_s || file.format == u"mpeg"_s;
}

/// What one track has otherwise than the first file's track in its place.
class TrackDifferences final
{
public:
    TrackDifferences(const JoinStream &first, const JoinStream &other, qsizetype place)
        : m_first(first)
        , m_other(other)
        , m_track(u"track %1 "_s.arg(place + 1))
    {
    }

    QStringList found(bool comparesHeaders)
    {
        if (m_first.type != m_other.type || m_first.isCover != m_other.isCover)
            return {m_track + u"is %1 and not %2"_s.arg(wordOf(m_other), wordOf(m_first))};
        compare(u"codec"_s, m_other.codec, m_first.codec);
        compare(u"size"_s, m_other.size, m_first.size);
        compare(u"pixel format"_s, m_other.pixelFormat, m_first.pixelFormat);
        if (ratesDiffer(m_first.frameRate, m_other.frameRate))
            compare(u"frame rate"_s, shownRate(m_other.frameRate), shownRate(m_first.frameRate));
        compare(u"sample rate"_s, m_other.sampleRate, m_first.sampleRate);
        compare(u"number of channels"_s, m_other.channels, m_first.channels);
        const bool isText = m_first.type == u"subtitle"_s; // its head holds styles, and no reader needs it
        if (m_texts.isEmpty() && comparesHeaders && !isText && m_first.extradata != m_other.extradata)
            m_texts << m_track + u"(%1) was encoded with other settings"_s.arg(m_first.codec);
        return m_texts;
    }

private:
    static QString wordOf(const JoinStream &stream) { return stream.isCover ? u"a cover"_s : stream.type; }

    void compare(const QString &what, const QString &other, const QString &first)
    {
        if (other != first)
            m_texts << m_track + u"has the %1 %2 and not %3"_s.arg(what, other, first);
    }

    const JoinStream &m_first;
    const JoinStream &m_other;
    QString m_track;
    QStringList m_texts;
};

/// A film may well lack the subtitles that the first one has, never the other way round: there is no place
/// for them.
bool mayLack(const JoinStream &stream)
{
    return stream.isExtra() || stream.type == u"subtitle"_s;
}

bool numbersFit(const QList<JoinStream> &first, const QList<JoinStream> &other)
{
    const qsizetype common = std::min(first.size(), other.size());
    return std::all_of(first.begin() + common, first.end(), mayLack) &&
           std::all_of(other.begin() + common, other.end(),
                       [](const JoinStream &stream) { return stream.isExtra(); });
}

QStringList differences(const JoinFile &first, const JoinFile &other, const QString &joiner)
{
    const QList<JoinStream> ones = comparedStreams(first, joiner);
    const QList<JoinStream> others = comparedStreams(other, joiner);
    QStringList texts;
    if (!numbersFit(ones, others))
        texts << u"the number of its tracks is %1 and not %2"_s.arg(QString::number(countOfTracks(others)),
                                                                    QString::number(countOfTracks(ones)));
    const bool comparesHeaders = !carriesHeadersInStream(first) || !carriesHeadersInStream(other);
    for (qsizetype i = 0; i < std::min(ones.size(), others.size()); ++i) {
        if (!ones.at(i).isExtra() || !others.at(i).isExtra())
            texts += TrackDifferences(ones.at(i), others.at(i), i).found(comparesHeaders);
    }
    return texts;
}

enum class TimeBases { Alike, PicturesDiffer, OthersDiffer };

TimeBases timeBasesOf(const JoinFile &first, const JoinFile &other)
{
    TimeBases found = TimeBases::Alike;
    for (qsizetype i = 0; i < std::min(first.streams.size(), other.streams.size()); ++i) {
        const JoinStream &one = first.streams.at(i);
        if (one.isExtra() || one.timeBase == other.streams.at(i).timeBase)
            continue;
        if (one.type != u"video"_s)
            return TimeBases::OthersDiffer;
        found = TimeBases::PicturesDiffer;
    }
    return found;
}

/// The units a second of the file's pictures; empty for anything but "1/N".
QString timescaleOf(const JoinFile &file)
{
    for (const JoinStream &stream : file.streams) {
        if (stream.type == u"video"_s && !stream.isCover && stream.timeBase.startsWith(u"1/"_s))
            return stream.timeBase.mid(2);
    }
    return {};
}

/// A copy of the first file's kind counts in units that are known before.
bool canRetimeInto(const QUrl &first)
{
    static const QStringList kinds{u"mp4"_s, u"m4v"_s, u"mov"_s, u"mkv"_s};
    return kinds.contains(QFileInfo(first.toLocalFile()).suffix().toLower());
}

void addRetiming(JoinFit &fit, const QList<JoinFile> &files)
{
    const JoinFile &first = files.constFirst();
    bool all = false;
    for (qsizetype i = 1; i < files.size(); ++i) {
        const TimeBases bases = timeBasesOf(first, files.at(i));
        all = all || bases == TimeBases::OthersDiffer;
        if (bases != TimeBases::Alike)
            fit.toRetime.append(i);
    }
    if (fit.toRetime.isEmpty())
        return;
    if (!canRetimeInto(first.url)) {
        fit.refusal =
            u"%1 can't be joined to %2, so nothing was started: it counts time in other units."_s.arg(
                files.at(fit.toRetime.constFirst()).url.fileName(), first.url.fileName());
        return;
    }
    for (qsizetype i = 0; all && i < files.size(); ++i) {
        if (!fit.toRetime.contains(i))
            fit.toRetime.append(i);
    }
    fit.timescale = timescaleOf(first);
}

QString refusalOf(const QList<JoinFile> &files, const QString &joiner)
{
    const JoinFile &first = files.constFirst();
    QString sentence;
    qsizetype more = 0;
    for (const JoinFile &file : files) {
        const QStringList texts = file.streams.isEmpty() ? QStringList() : differences(first, file, joiner);
        if (texts.isEmpty())
            continue;
        if (sentence.isNull())
            sentence = u"%1 can't be joined to %2, so nothing was started: %3"_s.arg(
                file.url.fileName(), first.url.fileName(), texts.join(u", "_s));
        else
            ++more;
    }
    if (more > 0)
        sentence += more == 1 ? u"; 1 more file differs"_s : u"; %1 more files differ"_s.arg(more);
    return sentence.isNull() ? sentence : sentence + u'.';
}

} // namespace

JoinFit joinFitOf(const QList<JoinFile> &files, const QString &joiner)
{
    JoinFit fit;
    for (const JoinFile &file : files) {
        if (!file.problem.isNull()) {
            fit.refusal = file.problem;
            return fit;
        }
    }
    if (files.isEmpty() || files.constFirst().streams.isEmpty())
        return fit;
    fit.refusal = refusalOf(files, joiner);
    if (fit.refusal.isNull() && joiner == u"ffmpeg"_s)
        addRetiming(fit, files);
    return fit;
}

} // namespace engines

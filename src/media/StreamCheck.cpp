#include "media/StreamCheck.h"

#include "media/CheckWords.h"
#include "media/SampledTimes.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace media {

namespace {

constexpr double sumTolerance = 0.05;
constexpr double textTolerance = 1;
constexpr double toldTolerance = 1;

/// What is missing between the start and the end of a sound, by its count of packets; absent where not known.
std::optional<double> holesIn(const StreamFacts &stream, std::optional<qint64> packets)
{
    const auto packed = packedSeconds(stream, packets);
    const auto start = stream.startOfCopy();
    if (!packed || !start || !stream.lastEnd)
        return std::nullopt;
    const double missing = *stream.lastEnd - *start - *packed;
    return missing > 2 * *packetSeconds(stream) + 0.002 ? missing : 0; // times in milliseconds
}

bool isSameCodec(const QString &one, const QString &other)
{
    const QStringList layers{u"mp2"_s, u"mp3"_s}; // a reader may take one for the other
    return one == other || (layers.contains(one) && layers.contains(other));
}

} // namespace

const FilmFacts *OutputBeside::onlySource() const
{
    if (output.extent != Extent::Whole || output.sources.size() != 1)
        return nullptr;
    const auto found = films.constFind(output.sources.constFirst());
    return found == films.constEnd() || !found->isOpen ? nullptr : &*found;
}

std::optional<StreamFigures> OutputBeside::readOf(const TrackFate &fate) const
{
    const auto input = output.sources.indexOf(fate.source);
    const auto read = figures.read.constFind({static_cast<int>(input), fate.index});
    return read == figures.read.constEnd() ? std::nullopt : std::optional(*read);
}

QString OutputBeside::labelOf(const StreamFacts &found) const
{
    const QString behind = u" of "_s + name();
    const auto all = film.ofKind(found.kind);
    if (all.size() == 1)
        return u"The %1"_s.arg(found.kind == u"video"_s ? found.kind : found.kind + u" track"_s) + behind;
    qsizetype number = 0;
    while (number < all.size() && all.at(number)->index != found.index)
        ++number;
    return u"The %1 track %2"_s.arg(found.kind).arg(number + 1) + behind;
}

bool compareToldLengths(std::optional<double> meant, std::optional<double> found, const QString &label,
                        Findings &findings)
{
    if (!meant || !found)
        return false;
    if (std::abs(*meant - *found) <= std::max(toldTolerance, *meant * 0.0005))
        return true;
    findings.failWholly(withTimes(label + u" lasts %1 instead of %2."_s, *found, *meant));
    return false;
}

StreamCheck::StreamCheck(OutputBeside &beside, const ExpectedStream &expected, const StreamFacts &found,
                         Findings &findings)
    : m_beside(beside)
    , m_expected(expected)
    , m_found(found)
    , m_findings(findings)
    , m_label(beside.output.isRaw ? beside.name() : beside.labelOf(found))
    , m_counted(countThere())
{
}

void StreamCheck::compare()
{
    compareCodec();
    fillFates();
    const qsizetype failures = m_findings.failures.size();
    compareStart();
    compareTimes();
    const Measured length = compareLength();
    const Measured count = compareCount();
    compareHoles();
    if (length == Measured::Off && count == Measured::Same && hasBackwardTimes())
        believeCount(failures);
    setProof(m_findings.failures.size() > failures ? Measured::Off : length, count);
}

void StreamCheck::compareHeaders()
{
    compareCodec();
    const bool isSame =
        m_beside.onlySource() != nullptr && source() != nullptr && m_expected.isTimed() &&
        compareToldLengths(source()->headerSeconds, m_found.headerSeconds, m_label, m_findings);
    for (const int at : m_expected.fates) {
        m_beside.output.tracks[at].outputIndex = m_found.index;
        m_beside.output.tracks[at].proof = isSame ? Proof::Lengths : Proof::NotProven;
    }
}

void StreamCheck::compareRaw()
{
    fillFates();
    for (const int at : m_expected.fates) {
        m_beside.output.tracks[at].outputBytes = m_beside.film.bytes;
        m_beside.output.tracks[at].outputSeconds.reset();
    }
    const Measured count = compareCount();
    Measured length = Measured::NotKnown;
    const auto seconds = packedSeconds(m_found, m_counted);
    if (seconds && m_expected.seconds) {
        m_beside.output.tracks[m_expected.fates.constFirst()].outputSeconds = *seconds;
        length = compareRawLength(*seconds, count);
    }
    setProof(length, count);
}

void StreamCheck::compareCodec()
{
    if (!m_expected.codec.isEmpty() && !isSameCodec(m_expected.codec, m_found.codec))
        m_findings.failWholly(u"%1 is %2 instead of %3."_s.arg(m_label, m_found.codec, m_expected.codec));
}

std::optional<double> StreamCheck::startThere() const
{
    return m_expected.isCopied ? m_found.startOfCopy() : m_found.startOfPicture();
}

std::optional<qint64> StreamCheck::countThere() const
{
    if (m_found.packets)
        return m_found.packets;
    const auto muxed = m_beside.figures.muxed.constFind({0, m_found.index});
    return muxed == m_beside.figures.muxed.constEnd() ? std::nullopt : std::optional(muxed->packets);
}

std::optional<qint64> StreamCheck::countMeant() const
{
    if (m_expected.packets || m_expected.fates.size() != 1 || m_beside.output.extent != Extent::Whole)
        return m_expected.packets;
    const auto read = m_beside.readOf(m_beside.output.tracks.at(m_expected.fates.constFirst()));
    return read ? std::optional(read->packets) : std::nullopt;
}

void StreamCheck::fillFates()
{
    const auto start = startThere();
    for (qsizetype i = 0; i < m_expected.fates.size(); ++i) {
        TrackFate &fate = m_beside.output.tracks[m_expected.fates.at(i)];
        fate.outputIndex = m_found.index;
        if (start && m_found.lastEnd)
            fate.outputSeconds = *m_found.lastEnd - *start;
        fate.outputBytes = m_found.bytes;
        const auto muxed = m_beside.figures.muxed.constFind({0, m_found.index});
        if (!fate.outputBytes && m_counted && muxed != m_beside.figures.muxed.constEnd())
            fate.outputBytes = muxed->bytes;
        fillSource(fate, m_expected.sources.at(i));
    }
}

void StreamCheck::fillSource(TrackFate &fate, const StreamFacts *source) const
{
    if (source == nullptr)
        return;
    const auto start = source->startOfCopy();
    if (start && source->lastEnd)
        fate.sourceSeconds = *source->lastEnd - *start;
    fate.sourceBytes = source->bytes;
    const auto read = m_beside.readOf(fate);
    if (!fate.sourceBytes && read)
        fate.sourceBytes = read->bytes;
}

double StreamCheck::slack() const
{
    const MeantOutput &output = m_beside.output;
    const double files = output.extent == Extent::Sum ? double(output.sources.size()) : 0;
    const double atKeyFrames = output.extent == Extent::Stretch ? 0.1 : 0;
    return m_expected.tolerance(m_found) + sumTolerance * files + atKeyFrames + ragged();
}

/// Where a film was cut its readers stop at different packets: one of them leaves a chunk out that another
/// one still takes a piece of.
double StreamCheck::ragged() const
{
    double seconds = 0;
    for (const QUrl &source : std::as_const(m_beside.output.sources)) {
        const auto film = m_beside.films.constFind(source);
        seconds += film != m_beside.films.constEnd() && film->isShort() ? 1 : 0;
    }
    return seconds;
}

void StreamCheck::compareStart()
{
    const auto start = startThere();
    const auto begin = m_beside.film.earliestStart();
    if (!m_expected.isTimed() || !m_expected.start || !start || !begin ||
        m_beside.output.extent == Extent::Part || m_expected.seconds == 0.0)
        return;
    const double late = *start - *begin - *m_expected.start;
    const bool isLate = late > m_expected.mostLater + slack();
    if ((late < -slack() || isLate) && std::abs(late + m_expected.hidden) > slack())
        m_findings.failures << u"%1 begins %2 s too %3."_s.arg(m_label, fineSeconds(std::abs(late)),
                                                               late > 0 ? u"late"_s : u"early"_s);
}

void StreamCheck::compareTimes()
{
    const FilmFacts *film = m_beside.onlySource();
    if (film == nullptr || source() == nullptr || !m_beside.shift || !m_expected.isCopied)
        return;
    if (sampledTimes(*film, *source(), m_beside.film, m_found, *m_beside.shift) == Sampled::Different)
        m_findings.failures << u"%1 does not lie where it lay in the source."_s.arg(m_label);
}

StreamCheck::Measured StreamCheck::compareLength()
{
    if (!m_expected.seconds || m_beside.output.extent == Extent::Part)
        return Measured::NotKnown;
    if (!m_expected.isTimed())
        return compareLastText();
    const auto start = startThere();
    if (!start || !m_found.lastEnd)
        return sayItIsEmpty();
    const double length = *m_found.lastEnd - *start;
    const double more = length - *m_expected.seconds;
    const bool isSame = more >= -slack() && more <= m_expected.mostMore + slack();
    if (isSame || std::abs(more - m_expected.hidden) <= slack())
        return Measured::Same;
    m_findings.failures << withTimes(m_label + u" lasts %1 instead of %2."_s, length, *m_expected.seconds);
    return Measured::Off;
}

/// One that ended long before the others was not looked for.
StreamCheck::Measured StreamCheck::sayItIsEmpty()
{
    const bool wasSeen = m_beside.film.wasReadWhole || !m_found.firstTime;
    if (!wasSeen || *m_expected.seconds <= slack())
        return Measured::NotKnown;
    m_findings.failWholly(u"%1 holds nothing."_s.arg(m_label));
    return Measured::Off;
}

StreamCheck::Measured StreamCheck::compareLastText()
{
    const StreamFacts *from = source();
    const auto begin = m_beside.film.earliestStart();
    if (m_beside.onlySource() == nullptr || from == nullptr || !from->lastEnd || !m_found.lastEnd || !begin ||
        !m_beside.shift)
        return Measured::NotKnown;
    const double meant = *from->lastEnd + *m_beside.shift;
    if (std::abs(*m_found.lastEnd - meant) <= textTolerance)
        return Measured::Same;
    m_findings.failures << withTimes(m_label + u" ends at %1 instead of %2."_s, *m_found.lastEnd - *begin,
                                     meant - *begin);
    return Measured::Off;
}

/// Edit lists and AVI are off by one or two.
StreamCheck::Measured StreamCheck::compareCount()
{
    const auto meant = countMeant();
    const Extent extent = m_beside.output.extent;
    const bool isCounted = m_expected.isCopied && !m_found.codec.startsWith(u"pcm_"_s) && hasLikePackets() &&
                           extent != Extent::Stretch && extent != Extent::Part;
    if (!meant || !m_counted || !isCounted)
        return Measured::NotKnown;
    const qint64 off = std::max<qint64>(3 * m_expected.fates.size(), *meant / 1000);
    const qint64 hidden =
        m_expected.hidden > 0 ? std::llround(m_expected.hidden / *packetSeconds(m_found)) : 0;
    if (std::abs(*meant - *m_counted) <= off || std::abs(*meant - hidden - *m_counted) <= off)
        return Measured::Same;
    m_findings.failures << u"%1 holds %2 packets instead of %3."_s.arg(m_label).arg(*m_counted).arg(*meant);
    return Measured::Off;
}

/// Texts in MP4 have packets for the time between them, and pictures of text are packed by segments or as a
/// whole, as the container does it.
bool StreamCheck::hasLikePackets() const
{
    static const QStringList ofSegments{u"hdmv_pgs_subtitle"_s, u"dvd_subtitle"_s, u"dvb_subtitle"_s,
                                        u"xsub"_s};
    if (m_found.codec == u"mov_text"_s)
        return false;
    return !ofSegments.contains(m_found.codec) ||
           std::all_of(m_expected.fates.begin(), m_expected.fates.end(), [this](int at) {
               return m_beside.films.value(m_beside.output.tracks.at(at).source).format ==
                      m_beside.film.format;
           });
}

void StreamCheck::compareHoles()
{
    const double missing = holesIn(m_found, m_counted).value_or(0);
    if (missing <= 0)
        return;
    const auto before = source() == nullptr ? std::nullopt : holesIn(*source(), countMeant());
    const double most = 0.1 * double(std::max<qsizetype>(1, m_expected.fates.size()));
    const bool isJoined = m_beside.output.extent == Extent::Sum; // its films' own tails lie in between
    if (isJoined || missing <= before.value_or(0) + most)
        return;
    const double all = m_found.lastEnd.value_or(0) - m_found.startOfCopy().value_or(0);
    const QString sentence =
        u"%1 has holes: %2 s of %3 s are missing."_s.arg(m_label, fineSeconds(missing), fineSeconds(all));
    (before ? m_findings.failures : m_findings.warnings) << sentence;
}

/// Where pictures are older than those before them, ends tell nothing.
bool StreamCheck::hasBackwardTimes() const
{
    const FilmFacts *film = m_beside.onlySource();
    if (film == nullptr || source() == nullptr)
        return false;
    return std::any_of(film->errors.begin(), film->errors.end(), [](const QString &line) {
        return line.contains(u"non monoton"_s) || line.contains(u"Non-monotonous"_s);
    });
}

void StreamCheck::believeCount(qsizetype failures)
{
    while (m_findings.failures.size() > failures)
        m_findings.failures.removeLast();
    m_findings.warnings
        << u"%1 has times that run backwards, as in the source; all its packets are there."_s.arg(m_label);
}

void StreamCheck::setProof(Measured length, Measured count)
{
    for (const int at : m_expected.fates) {
        Proof &proof = m_beside.output.tracks[at].proof;
        proof = Proof::NotProven;
        if (length == Measured::Same)
            proof = Proof::Lengths;
        if (count == Measured::Same && length != Measured::Off)
            proof = Proof::Packets;
    }
}

StreamCheck::Measured StreamCheck::compareRawLength(double seconds, Measured count)
{
    const double holes = source() == nullptr ? 0 : holesIn(*source(), countMeant()).value_or(0);
    if (std::abs(seconds + holes - *m_expected.seconds) <= m_expected.tolerance(m_found))
        return Measured::Same;
    if (count == Measured::NotKnown) // the holes of a source that is not counted are not known
        m_findings.warnings << withTimes(m_label + u" lasts %1 instead of %2."_s, seconds,
                                         *m_expected.seconds);
    return Measured::NotKnown;
}

} // namespace media

#pragma once

#include "media/ExpectedStreams.h"
#include "media/FilmCheck.h"

namespace media {

/// What the check of an output has found, in words.
struct Findings
{
    QStringList failures;
    QStringList warnings;
    bool isUsable = true; ///< else no damage of a source excuses the failures

    void failWholly(const QString &sentence)
    {
        failures << sentence;
        isUsable = false;
    }
};

/// One output, its sources and what the tool counted of it: what the checks of all its streams go by. It
/// refers to what its maker holds.
struct OutputBeside
{
    MeantOutput &output;
    const Films &films;
    const FilmFacts &film; ///< the output itself
    const RunFigures &figures;
    std::optional<double> shift; ///< what its times have more than those of its one source

    /// The source that it was made of as a whole; null when there are several, when it holds a part, or when
    /// that can't be read.
    const FilmFacts *onlySource() const;
    /// ffmpeg's own figures of a stream of one of its inputs.
    std::optional<StreamFigures> readOf(const TrackFate &fate) const;
    /// "The video of a.mkv", "The audio track 2 of a.mkv".
    QString labelOf(const StreamFacts &found) const;
    QString name() const { return output.output.fileName(); }
};

/// Whether the lengths that two headers tell are both known, and alike; where they differ that is a failure.
bool compareToldLengths(std::optional<double> meant, std::optional<double> found, const QString &label,
                        Findings &findings);

/// Holds one stream of an output against what it was meant to be, and writes what was measured, and what that
/// proves, into its fates.
class StreamCheck final
{
public:
    StreamCheck(OutputBeside &beside, const ExpectedStream &expected, const StreamFacts &found,
                Findings &findings);

    /// By its packets' times and numbers.
    void compare();
    /// By what headers tell.
    void compareHeaders();
    /// One that stands alone in a file without times: a sound that is always packed alike is as long as its
    /// packets.
    void compareRaw();

private:
    enum class Measured { NotKnown, Same, Off };

    void compareCodec();
    void fillFates();
    void fillSource(TrackFate &fate, const StreamFacts *source) const;
    double slack() const;
    double ragged() const;
    void compareStart();
    void compareTimes();
    Measured compareLength();
    Measured sayItIsEmpty();
    Measured compareLastText();
    Measured compareCount();
    void compareHoles();
    Measured compareRawLength(double seconds, Measured count);
    std::optional<qint64> countThere() const;
    std::optional<qint64> countMeant() const;
    std::optional<double> startThere() const;
    bool hasLikePackets() const;
    bool hasBackwardTimes() const;
    void believeCount(qsizetype failures);
    void setProof(Measured length, Measured count);
    const StreamFacts *source() const { return m_expected.sources.constFirst(); }

    OutputBeside &m_beside;
    const ExpectedStream &m_expected;
    const StreamFacts &m_found;
    Findings &m_findings;
    const QString m_label;
    const std::optional<qint64> m_counted;
};

} // namespace media

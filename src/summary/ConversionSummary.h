#pragma once

#include <QStringList>

class KXSelection;
class KXVideoFile;

namespace summary {

/// What is known of a film, each as a short text: length, picture, codec with its profile, frame rate, bit
/// rate, size. What is not known is missing.
struct FilmFact
{
    enum class Kind { Plain, Codec };

    QString text;
    Kind kind = Kind::Plain;
};
QList<FilmFact> factsOf(const KXVideoFile &film);

/// What a conversion makes, in a sentence: "Picture copied as it is · sound AC3 5.1 copied · 1 subtitle as a
/// track".
QString conversionText(const KXSelection &selection);
/// Of an extraction: "3 files, one for each ticked track".
QString extractionText(const KXSelection &selection);
/// "about 1.5 GB", "size not known"
QString conversionSizeText(const KXVideoFile &film, const KXSelection &selection);

/// What is wrong with a conversion before it starts, and what mends it.
struct Problem
{
    enum class Mend { None, TakeFirstTracks };

    QString text; ///< empty when nothing is
    Mend mend = Mend::None;
    bool prevents = false; ///< it can't be started at all
};
Problem conversionProblem(const KXVideoFile &film, const KXSelection &selection);
/// Of a film that stays behind when the others are converted: "no video ticked"; empty when it does not.
QString reasonToStay(const KXVideoFile &film);

} // namespace summary

#pragma once

#include <QString>

namespace media {

// How the sentences of a check put numbers and kinds.

/// "6.02".
QString fineSeconds(double seconds);
/// The sentence with both times, as clockTime() has them, in the places of %1 and %2; with hundredths where
/// whole seconds would not show the difference.
QString withTimes(const QString &sentence, double one, double other);
/// With a full stop.
QString asSentence(const QString &words);
/// "audio tracks", "cover".
QString kindWord(const QString &kind, qint64 count);

} // namespace media

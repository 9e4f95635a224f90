#pragma once

#include <QString>

/// What a person is told of films, choices and jobs, in words. Each function makes one text of plain values;
/// none decides anything.
namespace summary {

// A value that is not known gives an empty text.

/// "812 MB", "1.9 GB": powers of ten.
QString sizeText(qint64 bytes);
/// "0:48:12", in whole seconds.
QString lengthText(double seconds);
/// "640 kb/s", "6.2 Mb/s".
QString rateText(qint64 kilobits);
/// "23.976 fps" of the text of a probe.
QString frameRateText(const QString &rate);
/// "1920 × 1080"
QString pictureText(const QString &width, const QString &height);
/// "14:20", "1:02:05"
QString elapsedText(qint64 seconds);
/// "about 8 min left", "less than a minute left"
QString leftText(qint64 seconds);

} // namespace summary

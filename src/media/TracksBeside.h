#pragma once

#include <QList>
#include <QUrl>

namespace media {

/// The separate subtitles that lie beside a film and belong to it by name, in the order of their names:
/// "film.srt" and "film.en.srt" belong to "film.mkv", but not where there is a "film.en.mkv" as well.
QList<QUrl> tracksBeside(const QUrl &film);

} // namespace media

#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace support {

/// A film with a bad name, all of whose tracks have a bad title.
struct Film
{
    QString stem; ///< of the name in front of ".mkv"
    QString title;
};

/// Sixty of them, each with what a shell, a filter, a tool or a reader of its output could take for its
/// own. The last one's name has 255 bytes.
QList<Film> hostileFilms();

/// How a title comes out of a probe: as ffprobe writes it, without double quotes and commas, without what
/// stands behind ": " and without blanks around it.
QString asRead(const QString &title);

constexpr int filmLanes = 6;

/// Lanes (each with a `cli`) of their own tools, which record what is started, with the films dealt out among
/// them.
template <typename Lane>
std::vector<std::unique_ptr<Lane>> lanesWith(const QList<Film> &films,
                                             const std::function<void(Lane &, const Film &)> &makeFilm)
{
    std::vector<std::unique_ptr<Lane>> lanes;
    for (int number = 0; number < filmLanes; ++number)
        lanes.push_back(std::make_unique<Lane>());
    for (qsizetype i = 0; i < films.size(); ++i)
        makeFilm(*lanes.at(static_cast<size_t>(i % filmLanes)), films.at(i));
    for (const auto &lane : lanes) {
        lane->cli.useOwnTools();
        lane->cli.recordEverything();
    }
    return lanes;
}

} // namespace support

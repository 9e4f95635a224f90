#pragma once

#include "selection/OpenFiles.h"

namespace app {

class OpenQueue;
class Program;

/// A film with the choices that it will have when its turn comes. A plain value of its own.
struct TriedFilm
{
    VideoFilePointer file;
    SelectionPointer selection;
};

/// An open film as Convert will find it: the current one as it stands, another one by the presets and
/// controls where they count for each film, else as it was left. Everything is tried on a copy; nothing is
/// announced.
TriedFilm triedFilm(Program &program, const OpenQueue &openQueue, int row);

} // namespace app

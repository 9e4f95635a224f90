#pragma once

namespace platform::keeper {

/// Whether the program was started to be a keeper. Asked first of all in main().
bool isWanted(int argc, char *argv[]);
/// Reads what is told until nobody is left to tell anything, then ends what still runs and removes what was
/// left. Answers the exit status. Makes no application object.
int run();

} // namespace platform::keeper

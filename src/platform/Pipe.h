#pragma once

namespace platform {

/// Two ends, to read and to write, which no program that is started inherits. False where none can be made.
bool makePipe(int (&ends)[2]);

} // namespace platform

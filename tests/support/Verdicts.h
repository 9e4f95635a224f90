#pragma once

#include "support/CliFixture.h"

namespace support {

/// Whether a run that was asked for JSON lines said something that is not true, or nothing at all. Null when
/// all is well: an end by itself with a status that the help names, a reason wherever it is not 0, and for
/// each job that it calls "ok" outputs that are there and hold packets: in every stream, but for those that
/// are empty in the source too, and for parts of a film, each of which must hold some.
QString untruthOf(const CliFixture::Run &run);

} // namespace support

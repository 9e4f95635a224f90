#pragma once

#include "steps/Launch.h"
#include "tools/ToolProcess.h"

namespace steps {

/// Starts what the converters want started, in the one place for it. Owned by the program.
class StepLauncher
{
public:
    virtual ~StepLauncher() = default;
    virtual tools::ToolProcessPointer start(const Launch &launch, const tools::ToolProcess::Request &request);
};

} // namespace steps

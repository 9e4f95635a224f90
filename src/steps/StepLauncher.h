#pragma once

#include "steps/Launch.h"
#include "tools/ToolProcess.h"

#include <functional>
#include <utility>

namespace steps {

/// Starts what the converters want started, in the one place for it. Owned by the program.
class StepLauncher
{
public:
    virtual ~StepLauncher() = default;
    /// Asked at every start: whether the tools of a job leave the processor to other programs.
    void setLowPriority(std::function<bool()> isWanted) { m_lowPriority = std::move(isWanted); }
    virtual tools::ToolProcessPointer start(const Launch &launch, const tools::ToolProcess::Request &request);

private:
    std::function<bool()> m_lowPriority;
};

} // namespace steps

#include "steps/StepLauncher.h"

namespace steps {

tools::ToolProcessPointer StepLauncher::start(const Launch &, const tools::ToolProcess::Request &request)
{
    tools::ToolProcess::Request asked = request;
    asked.atLowPriority = m_lowPriority && m_lowPriority();
    return tools::ToolProcess::start(asked);
}

} // namespace steps

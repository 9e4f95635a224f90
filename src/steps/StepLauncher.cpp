#include "steps/StepLauncher.h"

namespace steps {

tools::ToolProcessPointer StepLauncher::start(const Launch &, const tools::ToolProcess::Request &request)
{
    return tools::ToolProcess::start(request);
}

} // namespace steps

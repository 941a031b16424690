#include "base/Application.h"

#include "base/BootstrapOptionGroup.h"
#include "base/OS.h"

namespace Kx::Application {

void initialize()
{
    OS::markUIThread();
    // A corrupt file has been logged by load(); the defaults are a working start.
    BootstrapOptionGroup::get().load();
}

} // namespace Kx::Application
